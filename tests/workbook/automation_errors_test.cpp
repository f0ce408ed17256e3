// The per-thread error record, its message texts and the layer's error options.
#include <gtest/gtest.h>

#include <vector>

#include "support/recording_dispatch.h"
#include "workbook/automation.h"

namespace {

using testsupport::ExceptionReply;
using testsupport::OleString;
using testsupport::RecordingDispatch;

OleString Formatted(const automation::ErrorRecord* record, BOOL fixedFont, int size = 1024) {
    std::vector<WCHAR> buffer(static_cast<std::size_t>(size));
    EXPECT_EQ(automation::FormatError(record, buffer.data(), size, fixedFont), S_OK);
    return OleString(buffer.data());
}

OleString Description(const automation::ErrorRecord* record) {
    const OleString text = Formatted(record, TRUE);
    const auto start = text.find(OLESTR("Error:    ")) + 10;
    return text.substr(start, text.find(OLESTR("\r\nCode:")) - start);
}

class AutomationErrorTest : public testing::Test {
  protected:
    void TearDown() override {
        const automation::Options none{};
        automation::SetErrorOptions(&none);
        automation::AutomationShutdown(FALSE);
    }
};

TEST_F(AutomationErrorTest, FirstFailureOfTheChainFillsTheRecord) {
    RecordingDispatch sheet;
    sheet.RejectName(OLESTR("Colour"));
    double value = 0.0;
    ASSERT_EQ(automation::GetValue(OLESTR("%e"), &value, &sheet, OLESTR(".Colour")),
              DISP_E_UNKNOWNNAME);

    const automation::ErrorRecord* record = automation::LastError();
    ASSERT_NE(record, nullptr);
    EXPECT_TRUE(record->complete);
    EXPECT_FALSE(record->fromInvoke);
    EXPECT_EQ(Formatted(record, TRUE),
              OLESTR("Member:   Colour\r\nFunction: GetValueV\r\nError In: InternalInvokeV\r\n"
                     "Error:    Object doesn't support this property or method: 'Colour'\r\n"
                     "Code:     80020006\r\nSource:   Application"));
    EXPECT_EQ(Formatted(record, FALSE),
              OLESTR("Member:\t  Colour\r\nFunction:\t  GetValueV\t\t\r\nError In:\t  "
                     "InternalInvokeV\r\nError:\t  Object doesn't support this property or "
                     "method: 'Colour'\r\nCode:\t  80020006\r\nSource:\t  Application"));
    EXPECT_EQ(Formatted(record, TRUE, 7), OLESTR("Member"));  // cut, and always terminated
    EXPECT_EQ(Formatted(nullptr, FALSE), OLESTR("No error information available."));

    // Where the walk or the packing fails, that function is the one named.
    const OleString tooLong(600, OLECHAR{'A'});
    EXPECT_EQ(automation::CallMethod(&sheet, tooLong.c_str()), E_INVALIDARG);
    EXPECT_EQ(OleString(record->functionName), OLESTR("CallMethodV"));
    EXPECT_EQ(OleString(record->errorFunction), OLESTR("InvokeV"));
    EXPECT_EQ(OleString(record->member), tooLong.substr(0, 255));
    EXPECT_EQ(automation::PutValue(&sheet, OLESTR(".Value=%x"), 1), E_INVALIDARG);
    EXPECT_EQ(OleString(record->functionName), OLESTR("PutValueV"));
    EXPECT_EQ(OleString(record->errorFunction), OLESTR("CreateArgumentArray"));
    EXPECT_EQ(automation::PutRef(&sheet, OLESTR(".Missing.Value=%d"), 1), E_NOINTERFACE);
    EXPECT_EQ(OleString(record->member), OLESTR("Missing"));
    EXPECT_EQ(Description(record), OLESTR("Object required"));
}

TEST_F(AutomationErrorTest, InvokeFailuresKeepTheArgumentAndTheException) {
    RecordingDispatch cell;
    cell.Fail(OLESTR("Resize"), DISP_E_TYPEMISMATCH, 1);
    EXPECT_EQ(automation::CallMethod(&cell, OLESTR("Resize(%d,%s)"), 1, "x"), DISP_E_TYPEMISMATCH);
    const automation::ErrorRecord* record = automation::LastError();
    EXPECT_EQ(record->argumentIndex, 1u);
    EXPECT_EQ(Description(record), OLESTR("Type mismatch: 'Resize'. Argument Index: 1"));
    EXPECT_NE(Formatted(record, TRUE).find(OLESTR("Source:   IDispatch Interface")),
              OleString::npos);

    for (const bool deferred : {false, true}) {
        ExceptionReply exception{OLESTR("Unable to set the Value property"),
                                 OLESTR("Microsoft Excel"),
                                 OLESTR("xlmain.chm"),
                                 1004,
                                 static_cast<SCODE>(0x800A03EC),
                                 0,
                                 deferred};
        cell.Throw(OLESTR("Value"), exception);
        EXPECT_EQ(automation::PutValue(&cell, OLESTR("Value=%d"), 1), DISP_E_EXCEPTION);
        EXPECT_EQ(OleString(record->helpFile), OLESTR("xlmain.chm"));
        EXPECT_EQ(record->helpContext, 1004u);
        EXPECT_EQ(Formatted(record, TRUE),
                  OLESTR("Member:   Value\r\nFunction: PutValueV\r\nError In: InternalInvokeV\r\n"
                         "Error:    Unable to set the Value property\r\nCode:     800a03ec\r\n"
                         "Source:   Microsoft Excel"));
    }

    // Without a description of its own, the system's text for the code, or a last resort.
    cell.Fail(OLESTR("Go"), E_OUTOFMEMORY);
    automation::CallMethod(&cell, OLESTR("Go"));
    const OleString system = Description(record);
    EXPECT_FALSE(system.empty());
    EXPECT_FALSE(system.ends_with(OLESTR("\n")));
    EXPECT_NE(system, OLESTR("Unknown runtime error"));
    cell.Fail(OLESTR("Go"), static_cast<HRESULT>(0xA0BC1234));
    automation::CallMethod(&cell, OLESTR("Go"));
    EXPECT_EQ(Description(record), OLESTR("Unknown runtime error"));
}

TEST_F(AutomationErrorTest, OptionsDecideWhatIsRecordedAndReported) {
    static std::vector<HRESULT> reported;
    automation::Options options{};
    options.errorCallback = [](const automation::ErrorRecord* record) {
        reported.push_back(record->code);
    };
    ASSERT_EQ(automation::SetErrorOptions(&options), S_OK);

    RecordingDispatch object;
    object.Fail(OLESTR("Broken"), E_FAIL);
    EXPECT_EQ(automation::CallMethod(&object, OLESTR("Working")), S_OK);
    EXPECT_EQ(automation::CallMethod(&object, OLESTR("Broken.Value")), E_FAIL);
    EXPECT_EQ(reported, std::vector<HRESULT>{E_FAIL});  // once per chain, however deep

    // Without records, a failure neither replaces the last record nor is reported.
    options.noErrorRecord = TRUE;
    automation::SetErrorOptions(&options);
    EXPECT_EQ(automation::CallMethod(nullptr, OLESTR("Go")), E_INVALIDARG);
    EXPECT_EQ(automation::LastError()->code, E_FAIL);
    EXPECT_EQ(reported.size(), 1u);

    // Turning messages on turns recording back on, and it stays on.
    automation::ToggleErrors(TRUE);
    automation::ToggleErrors(FALSE);
    automation::Options current{};
    ASSERT_EQ(automation::GetErrorOptions(&current), S_OK);
    EXPECT_FALSE(current.noErrorRecord);
    EXPECT_EQ(automation::GetErrorOptions(nullptr), E_INVALIDARG);
    EXPECT_EQ(OleString(automation::LastError()->functionName), OLESTR("GetErrorOptions"));

    automation::AutomationShutdown(FALSE);
    EXPECT_EQ(automation::LastError(), nullptr);
}

}  // namespace
