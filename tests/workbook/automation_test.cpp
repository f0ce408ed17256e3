// Member paths: walking, argument packing and result conversion, seen from the object's side.
#include "workbook/automation.h"

#include <gtest/gtest.h>

#include <ctime>

#include "support/recording_dispatch.h"

namespace {

using testsupport::HeldVariant;
using testsupport::OleString;
using testsupport::RecordingDispatch;

constexpr WORD kGet = DISPATCH_METHOD | DISPATCH_PROPERTYGET;

TEST(AutomationPathTest, WalksComponentsWithTheirOwnArguments) {
    RecordingDispatch sheet, range, borders;
    sheet.AnswerObject(OLESTR("Range"), &range);
    range.AnswerObject(OLESTR("Borders"), &borders);
    borders.Answer(OLESTR("LineStyle"), HeldVariant::Integer(1));

    LONG style = 0;
    ASSERT_EQ(automation::GetValue(OLESTR("%d"), &style, &sheet,
                                   OLESTR(".Range(%s).Borders(%d).LineStyle"), "A1", 10),
              S_OK);
    EXPECT_EQ(style, 1);
    EXPECT_EQ(sheet.lastCall().member, OLESTR("Range"));
    EXPECT_EQ(sheet.lastCall().flags, kGet);
    EXPECT_EQ(sheet.lastCall().Argument(0).text(), OLESTR("A1"));
    EXPECT_EQ(range.lastCall().Argument(0)->lVal, 10);
    EXPECT_TRUE(borders.lastCall().arguments.empty());

    // One leading dot is optional.
    ASSERT_EQ(automation::CallMethod(&sheet, OLESTR("Range.item(%S)"), OLESTR("7")), S_OK);
    EXPECT_EQ(range.lastCall().member, OLESTR("item"));
    EXPECT_EQ(range.lastCall().flags, DISPATCH_METHOD);
    EXPECT_EQ(range.lastCall().Argument(0).text(), OLESTR("7"));

    // Every object fetched on the way is released, also when the walk fails half-way.
    range.Fail(OLESTR("Borders"), DISP_E_MEMBERNOTFOUND);
    EXPECT_EQ(automation::CallMethod(&sheet, OLESTR("Range(%s).Borders(%d).Delete"), "A1", 1),
              DISP_E_MEMBERNOTFOUND);
    for (const RecordingDispatch* object : {&sheet, &range, &borders}) {
        EXPECT_EQ(object->outstanding(), 0);
    }
}

TEST(AutomationPathTest, OverlongPathsAndMissingObjectsAreRejected) {
    RecordingDispatch object;
    const OleString justFits = OLESTR(".") + OleString(510, OLECHAR{'A'});
    EXPECT_EQ(automation::CallMethod(&object, justFits.c_str()), S_OK);
    EXPECT_EQ(automation::CallMethod(&object, (justFits + OLESTR("A")).c_str()), E_INVALIDARG);
    EXPECT_EQ(automation::CallMethod(nullptr, OLESTR(".Go")), E_INVALIDARG);
    EXPECT_EQ(automation::CallMethod(&object, nullptr), E_INVALIDARG);
    EXPECT_EQ(object.calls().size(), 1u);
}

TEST(AutomationArgumentTest, PackedLastFirstForInvoke) {
    RecordingDispatch builder;
    ASSERT_EQ(automation::CallMethod(&builder, OLESTR(".AddNodes(%d,%u,%e,%b,%m)"), -3, 4u, 2.5, 7),
              S_OK);
    const RecordingDispatch::Call& call = builder.lastCall();
    ASSERT_EQ(call.arguments.size(), 5u);
    EXPECT_EQ(call.arguments[0]->vt, VT_ERROR);  // the last written comes first
    EXPECT_EQ(call.arguments[0]->scode, DISP_E_PARAMNOTFOUND);
    EXPECT_EQ(call.arguments[1]->boolVal, VARIANT_TRUE);
    EXPECT_EQ(call.arguments[2]->dblVal, 2.5);
    EXPECT_EQ(call.arguments[3]->vt, VT_UI4);
    EXPECT_EQ(call.arguments[3]->ulVal, 4u);
    EXPECT_EQ(call.arguments[4]->vt, VT_I4);
    EXPECT_EQ(call.arguments[4]->lVal, -3);
    EXPECT_TRUE(call.namedArguments.empty());

    // A put names its value argument; a put by reference too.
    RecordingDispatch other, cell;  // declared first: the cell's records hold it
    ASSERT_EQ(automation::PutValue(&cell, OLESTR(".Value=%e"), 1.5), S_OK);
    EXPECT_EQ(cell.lastCall().flags, DISPATCH_PROPERTYPUT);
    EXPECT_EQ(cell.lastCall().namedArguments, std::vector<DISPID>{DISPID_PROPERTYPUT});
    ASSERT_EQ(automation::PutRef(&cell, OLESTR("Target=%o"), static_cast<IDispatch*>(&other)),
              S_OK);
    EXPECT_EQ(cell.lastCall().flags, DISPATCH_PROPERTYPUTREF);
    EXPECT_EQ(cell.lastCall().namedArguments, std::vector<DISPID>{DISPID_PROPERTYPUT});
}

TEST(AutomationArgumentTest, TextsObjectsAndDates) {
    RecordingDispatch other, object;
    const BSTR given = SysAllocString(OLESTR("given"));
    automation::AutomationInit(FALSE, TRUE);  // T reads wide text
    ASSERT_EQ(automation::CallMethod(&object, OLESTR("Texts(%s,%S,%B,%T)"), "narrow",
                                     OLESTR("wide \u00e9\u4e2d"), given, OLESTR("mode")),
              S_OK);
    EXPECT_EQ(object.lastCall().Argument(0).text(), OLESTR("narrow"));
    EXPECT_EQ(object.lastCall().Argument(1).text(), OLESTR("wide \u00e9\u4e2d"));
    EXPECT_EQ(object.lastCall().Argument(2).text(), OLESTR("given"));
    EXPECT_EQ(object.lastCall().Argument(3).text(), OLESTR("mode"));
    SysFreeString(given);  // passed as it is, so still ours to free

    VARIANT variant;
    VariantInit(&variant);
    variant.vt = VT_I2;
    variant.iVal = 12;
    SYSTEMTIME noon{2024, 3, 5, 1, 12, 0, 0, 0};  // 2024-03-01 12:00
    FILETIME epoch{0xD53E8000u, 0x019DB1DEu};     // 1970-01-01 00:00
    ASSERT_EQ(automation::CallMethod(&object, OLESTR("All(%o,%O,%p,%D,%t,%W,%f,%v)"),
                                     static_cast<IDispatch*>(&other),
                                     static_cast<IUnknown*>(&other), INT_PTR{1} << 40, 45000.25,
                                     std::time_t{86400}, &noon, &epoch, &variant),
              S_OK);
    const RecordingDispatch::Call& call = object.lastCall();
    EXPECT_EQ(call.Argument(0)->vt, VT_DISPATCH);
    EXPECT_EQ(call.Argument(0)->pdispVal, &other);
    EXPECT_EQ(call.Argument(1)->vt, VT_UNKNOWN);
    EXPECT_EQ(call.Argument(2)->vt, VT_I8);
    EXPECT_EQ(call.Argument(2)->llVal, LONGLONG{1} << 40);
    const double dates[] = {45000.25, 25570.0, 45352.5, 25569.0};
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(call.Argument(3 + i)->vt, VT_DATE);
        EXPECT_DOUBLE_EQ(call.Argument(3 + i)->date, dates[i]);
    }
    EXPECT_EQ(call.Argument(7)->iVal, 12);
    object.ClearCalls();
    // The layer neither takes nor gives references of the objects it passes.
    EXPECT_EQ(other.outstanding(), 0);
}

TEST(AutomationArgumentTest, BadSpecifiersAndTooManyArgumentsFailBeforeTheCall) {
    RecordingDispatch object;
    EXPECT_EQ(automation::CallMethod(&object, OLESTR("Go(%z)"), 1), E_INVALIDARG);
    EXPECT_EQ(automation::CallMethod(&object, OLESTR("Go(%"), 1), E_INVALIDARG);

    OleString path = OLESTR("Go(%d");
    for (int i = 1; i < automation::kMaxArguments; ++i) path += OLESTR(",%d");
    EXPECT_EQ(
        automation::CallMethod(&object, (path + OLESTR(")")).c_str(), 1, 2, 3, 4, 5, 6, 7, 8, 9, 10,
                               11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25),
        S_OK);
    EXPECT_EQ(object.lastCall().Argument(24)->lVal, 25);
    EXPECT_EQ(
        automation::CallMethod(&object, (path + OLESTR(",%d)")).c_str(), 1, 2, 3, 4, 5, 6, 7, 8, 9,
                               10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26),
        E_INVALIDARG);
    EXPECT_EQ(object.calls().size(), 1u);
}

TEST(AutomationResultTest, ConversionsUseInvariantWordsAndNumbers) {
    RecordingDispatch cell, font;
    cell.AnswerBool(OLESTR("HasFormula"), true);
    cell.AnswerNumber(OLESTR("Width"), 1234.5);
    cell.AnswerText(OLESTR("Row"), OLESTR("42"));
    cell.AnswerObject(OLESTR("Font"), &font);
    cell.Answer(OLESTR("Start"), HeldVariant::Date(25570.5));  // 1970-01-02 12:00

    BSTR wide = nullptr;
    ASSERT_EQ(automation::GetValue(OLESTR("%S"), &wide, &cell, OLESTR(".HasFormula")), S_OK);
    EXPECT_EQ(OleString(wide), OLESTR("True"));
    SysFreeString(wide);
    char* narrow = nullptr;
    ASSERT_EQ(automation::GetValue(OLESTR("%s"), &narrow, &cell, OLESTR("Width")), S_OK);
    EXPECT_STREQ(narrow, "1234.5");
    automation::FreeAutomationText(narrow);

    LONG row = 0;
    ULONG unsignedRow = 0;
    INT_PTR wideRow = 0;
    double number = 0.0;
    BOOL flag = FALSE;
    EXPECT_EQ(automation::GetValue(OLESTR("d"), &row, &cell, OLESTR("Row")), S_OK);
    EXPECT_EQ(automation::GetValue(OLESTR("%u"), &unsignedRow, &cell, OLESTR("Row")), S_OK);
    EXPECT_EQ(automation::GetValue(OLESTR("%p"), &wideRow, &cell, OLESTR("Row")), S_OK);
    EXPECT_EQ(automation::GetValue(OLESTR("%e"), &number, &cell, OLESTR("Row")), S_OK);
    EXPECT_EQ(automation::GetValue(OLESTR("%b"), &flag, &cell, OLESTR("HasFormula")), S_OK);
    EXPECT_EQ(row, 42);
    EXPECT_EQ(unsignedRow, 42u);
    EXPECT_EQ(wideRow, 42);
    EXPECT_EQ(number, 42.0);
    EXPECT_TRUE(flag);

    IUnknown* unknown = nullptr;
    EXPECT_EQ(automation::GetValue(OLESTR("%O"), &unknown, &cell, OLESTR("Font")), S_OK);
    EXPECT_EQ(unknown, static_cast<IUnknown*>(&font));
    unknown->Release();
    EXPECT_EQ(font.outstanding(), 0);

    double serial = 0.0;
    std::time_t time = 0;
    SYSTEMTIME parts{};
    FILETIME fileTime{};
    EXPECT_EQ(automation::GetValue(OLESTR("%D"), &serial, &cell, OLESTR("Start")), S_OK);
    EXPECT_EQ(automation::GetValue(OLESTR("%t"), &time, &cell, OLESTR("Start")), S_OK);
    EXPECT_EQ(automation::GetValue(OLESTR("%W"), &parts, &cell, OLESTR("Start")), S_OK);
    EXPECT_EQ(automation::GetValue(OLESTR("%f"), &fileTime, &cell, OLESTR("Start")), S_OK);
    EXPECT_EQ(serial, 25570.5);
    EXPECT_EQ(time, 86400 + 43200);
    EXPECT_EQ(parts.wDay, 2);
    EXPECT_EQ(parts.wHour, 12);
    const auto ticks = (ULONGLONG{fileTime.dwHighDateTime} << 32) | fileTime.dwLowDateTime;
    EXPECT_EQ(ticks, 116444736000000000ULL + 129600ULL * 10000000ULL);

    // "v" and the general form's VT_EMPTY keep the value as it came.
    VARIANT raw, kept;
    VariantInit(&raw);
    VariantInit(&kept);
    EXPECT_EQ(automation::GetValue(OLESTR("%v"), &raw, &cell, OLESTR("Row")), S_OK);
    EXPECT_EQ(automation::Invoke(kGet, VT_EMPTY, &kept, &cell, OLESTR("Width")), S_OK);
    EXPECT_EQ(raw.vt, VT_BSTR);
    EXPECT_EQ(kept.vt, VT_R8);
    VariantClear(&raw);
}

TEST(AutomationResultTest, FailedConversionLeavesTheOutputAlone) {
    RecordingDispatch cell;
    cell.AnswerText(OLESTR("Value"), OLESTR("not a number"));
    double value = -1.0;
    EXPECT_EQ(automation::GetValue(OLESTR("%e"), &value, &cell, OLESTR("Value")),
              DISP_E_TYPEMISMATCH);
    EXPECT_EQ(value, -1.0);
    IDispatch* object = nullptr;
    EXPECT_TRUE(FAILED(automation::GetValue(OLESTR("%o"), &object, &cell, OLESTR("Value"))));
    EXPECT_EQ(object, nullptr);

    // Unknown result specifiers fail before any call.
    const std::size_t calls = cell.calls().size();
    EXPECT_EQ(automation::GetValue(OLESTR("%q"), &value, &cell, OLESTR("Value")), E_INVALIDARG);
    EXPECT_EQ(automation::GetValue(OLESTR("%ee"), &value, &cell, OLESTR("Value")), E_INVALIDARG);
    EXPECT_EQ(cell.calls().size(), calls);
}

}  // namespace
