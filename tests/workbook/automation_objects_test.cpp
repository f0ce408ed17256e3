// Enumerating collections, and objects made or found by name.
#include <gtest/gtest.h>

#include "support/recording_dispatch.h"
#include "workbook/automation.h"

namespace {

using testsupport::HeldVariant;
using testsupport::OleString;
using testsupport::RecordingDispatch;

TEST(AutomationEnumTest, WalksACollectionAndReleasesEverything) {
    RecordingDispatch workbook, sheets, first, second;
    workbook.AnswerObject(OLESTR("Worksheets"), &sheets);
    sheets.AnswerObjects({&first, &second});

    IEnumVARIANT* enumerator = nullptr;
    ASSERT_EQ(automation::EnumBegin(&enumerator, &workbook, OLESTR(".Worksheets")), S_OK);
    EXPECT_EQ(sheets.lastCall().member, OLESTR("_NewEnum"));
    EXPECT_EQ(sheets.lastCall().locale, 1024u);
    EXPECT_EQ(sheets.lastCall().flags, DISPATCH_METHOD | DISPATCH_PROPERTYGET);

    std::vector<IDispatch*> found;
    IDispatch* sheet = nullptr;
    while (automation::EnumNextObject(enumerator, &sheet) == S_OK) {
        found.push_back(sheet);
        sheet->Release();
    }
    EXPECT_EQ(automation::EnumNextObject(enumerator, &sheet), S_FALSE);
    EXPECT_EQ(found, (std::vector<IDispatch*>{&first, &second}));
    enumerator->Release();

    for (const RecordingDispatch* object : {&workbook, &sheets, &first, &second}) {
        EXPECT_EQ(object->outstanding(), 0);
    }
}

TEST(AutomationEnumTest, WithoutAPathTheObjectItselfIsEnumerated) {
    RecordingDispatch list;
    list.AnswerItems({HeldVariant::Number(1.5)});
    IEnumVARIANT* enumerator = nullptr;
    ASSERT_EQ(automation::EnumBegin(&enumerator, &list, nullptr), S_OK);
    VARIANT item;
    ASSERT_EQ(automation::EnumNextVariant(enumerator, &item), S_OK);
    EXPECT_EQ(item.dblVal, 1.5);
    EXPECT_EQ(automation::EnumNextVariant(enumerator, &item), S_FALSE);
    enumerator->Release();
    enumerator = nullptr;

    // A failed or non-object enumerator.
    list.Fail(OLESTR("_NewEnum"), DISP_E_MEMBERNOTFOUND);
    EXPECT_EQ(automation::EnumBegin(&enumerator, &list, OLESTR("")), DISP_E_MEMBERNOTFOUND);
    const automation::ErrorRecord* record = automation::LastError();
    EXPECT_EQ(OleString(record->member), OLESTR("_NewEnum"));
    EXPECT_EQ(OleString(record->functionName), OLESTR("EnumBeginV"));
    EXPECT_TRUE(record->fromInvoke);
    RecordingDispatch numbers;
    numbers.AnswerNumber(OLESTR("_NewEnum"), 3.0);
    EXPECT_EQ(automation::EnumBegin(&enumerator, &numbers, nullptr), E_NOINTERFACE);
    EXPECT_EQ(enumerator, nullptr);
}

TEST(AutomationObjectTest, UnknownClassesYieldNoObject) {
    IDispatch* object = nullptr;
    EXPECT_TRUE(FAILED(automation::CreateObject(OLESTR("Vantora.NoSuchClass"), &object)));
    EXPECT_EQ(object, nullptr);
    const automation::ErrorRecord* record = automation::LastError();
    EXPECT_EQ(OleString(record->functionName), OLESTR("CreateObject"));
    EXPECT_EQ(OleString(record->errorFunction), OLESTR("CreateObjectEx"));
    EXPECT_EQ(OleString(record->member), OLESTR("Vantora.NoSuchClass"));

    EXPECT_TRUE(FAILED(automation::CreateObject(OLESTR("{not a class id}"), &object)));
    EXPECT_TRUE(FAILED(automation::GetObject(nullptr, OLESTR("Vantora.NoSuchClass"), &object)));
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(automation::GetObject(nullptr, nullptr, &object), E_INVALIDARG);
}

#ifdef _WIN32
// The system's own late-bound dictionary proves the layer against a real automation server.
TEST(AutomationObjectTest, DrivesASystemAutomationObject) {
    ASSERT_TRUE(SUCCEEDED(automation::AutomationInit(TRUE, TRUE)));
    IDispatch* dictionary = nullptr;
    ASSERT_EQ(automation::CreateObject(OLESTR("Scripting.Dictionary"), &dictionary), S_OK);

    EXPECT_EQ(automation::CallMethod(dictionary, OLESTR(".Add(%S,%e)"), OLESTR("task"), 2.5), S_OK);
    EXPECT_EQ(automation::PutValue(dictionary, OLESTR(".Item(%s)=%b"), "done", TRUE), S_OK);
    LONG count = 0;
    EXPECT_EQ(automation::GetValue(OLESTR("%d"), &count, dictionary, OLESTR(".Count")), S_OK);
    EXPECT_EQ(count, 2);
    BSTR text = nullptr;
    EXPECT_EQ(
        automation::GetValue(OLESTR("%S"), &text, dictionary, OLESTR(".Item(%S)"), OLESTR("done")),
        S_OK);
    EXPECT_EQ(OleString(text), OLESTR("True"));
    SysFreeString(text);
    double value = 0.0;
    EXPECT_EQ(automation::GetValue(OLESTR("%e"), &value, dictionary, OLESTR("Item(%s)"), "task"),
              S_OK);
    EXPECT_EQ(value, 2.5);

    dictionary->Release();
    automation::AutomationShutdown(TRUE);
}
#endif

}  // namespace
