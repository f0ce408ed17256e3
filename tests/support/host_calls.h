// Driving the in-memory spreadsheet host through the automation call layer, with the member
// paths the engine sends, and a fixture that loads a workbook from JSON and checks at the end
// that every host object a test fetched was released.
//
//     class RangeTest : public hosttest::HostTest {};
//     TEST_F(RangeTest, ...) {
//         Load(R"({"sheets":[{"name":"WBS"}]})");
//         Object sheet = Sheet("WBS");
//         Put(sheet.get(), OLESTR(".Cells(%u,%u)=%s"), 3u, 2u, "90");
//         EXPECT_EQ(Text(sheet.get(), OLESTR(".Cells(%u,%u).Value"), 3u, 2u), "90");
//     }
#pragma once

#include <gtest/gtest.h>

#include <cstdarg>
#include <limits>
#include <memory>
#include <string>
#include <string_view>

#include "com/text.h"
#include "sheethost/sheethost.h"
#include "workbook/automation.h"

namespace hosttest {

using Object = sheethost::ComRef<IDispatch>;

// A get of an object; empty when the call fails.
inline Object Get(IDispatch* object, const OLECHAR* path, ...) {
    va_list arguments;
    va_start(arguments, path);
    IDispatch* result = nullptr;
    automation::GetValueV(OLESTR("%o"), &result, object, path, arguments);
    va_end(arguments);
    return Object::Adopt(result);
}

// A get of a number; NaN when the call fails.
inline double Number(IDispatch* object, const OLECHAR* path, ...) {
    va_list arguments;
    va_start(arguments, path);
    double result = std::numeric_limits<double>::quiet_NaN();
    automation::GetValueV(OLESTR("%e"), &result, object, path, arguments);
    va_end(arguments);
    return result;
}

// A get of a text as the engine reads it (narrow, "%s"); "<failed>" when the call fails.
inline std::string Text(IDispatch* object, const OLECHAR* path, ...) {
    va_list arguments;
    va_start(arguments, path);
    char* result = nullptr;
    const HRESULT hr = automation::GetValueV(OLESTR("%s"), &result, object, path, arguments);
    va_end(arguments);
    if (FAILED(hr) || result == nullptr) return "<failed>";
    std::string text = result;
    automation::FreeAutomationText(result);
    return text;
}

// The variant type a get answers (VT_EMPTY, VT_R8, VT_DATE, ...); VT_ILLEGAL-like 0xFFFF when
// the call fails.
inline VARTYPE TypeOf(IDispatch* object, const OLECHAR* path, ...) {
    va_list arguments;
    va_start(arguments, path);
    VARIANT result;
    VariantInit(&result);
    const HRESULT hr = automation::GetValueV(OLESTR("%v"), &result, object, path, arguments);
    va_end(arguments);
    const VARTYPE type = FAILED(hr) ? VARTYPE(0xFFFF) : result.vt;
    VariantClear(&result);
    return type;
}

inline HRESULT Put(IDispatch* object, const OLECHAR* path, ...) {
    va_list arguments;
    va_start(arguments, path);
    const HRESULT hr = automation::PutValueV(object, path, arguments);
    va_end(arguments);
    return hr;
}

inline HRESULT Call(IDispatch* object, const OLECHAR* path, ...) {
    va_list arguments;
    va_start(arguments, path);
    const HRESULT hr = automation::CallMethodV(object, path, arguments);
    va_end(arguments);
    return hr;
}

// What the call layer recorded of the last refused call.
inline HRESULT LastCode() {
    const automation::ErrorRecord* record = automation::LastError();
    return record == nullptr ? S_OK : record->code;
}

inline std::string LastDescription() {
    const automation::ErrorRecord* record = automation::LastError();
    return record == nullptr ? std::string() : NarrowBstr(record->description);
}

class HostTest : public ::testing::Test {
  protected:
    ~HostTest() override {
        application = Object();
        workbook = Object();
        EXPECT_EQ(sheethost::LiveObjectCount(), liveBefore_)
            << ::testing::PrintToString(sheethost::LiveObjectReport());
    }

    // Replaces the workbook with one loaded from JSON; fails the test if it does not load.
    void Load(std::string_view json) {
        std::string error;
        book = sheethost::LoadWorkbookJson(json, &error);
        ASSERT_NE(book, nullptr) << error;
        application = Object::Adopt(sheethost::NewApplicationObject(book));
        workbook = Object::Adopt(sheethost::NewWorkbookObject(book));
    }

    Object Sheet(const char* name) const {
        return Get(workbook.get(), OLESTR(".Worksheets(%s)"), name);
    }
    sheethost::Sheet& Model(const char* name) const { return *sheethost::FindSheet(*book, name); }

    std::shared_ptr<sheethost::Workbook> book;
    Object application;
    Object workbook;

  private:
    long liveBefore_ = sheethost::LiveObjectCount();
};

}  // namespace hosttest
