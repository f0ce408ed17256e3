// A workbook with one sheet whose drawing objects the tests drive through the automation call
// layer, with the member paths the engine sends. The fixture checks at the end that every host
// object the test fetched has been released.
#pragma once

#include <gtest/gtest.h>

#include <cstdarg>
#include <memory>
#include <string>

#include "com/text.h"
#include "sheethost/dispatch_object.h"
#include "sheethost/model.h"
#include "sheethost/objects.h"
#include "sheethost/shape_objects.h"
#include "support/host_calls.h"
#include "workbook/automation.h"

namespace drawingtest {

using hosttest::Call;
using hosttest::Get;
using hosttest::LastDescription;
using hosttest::Number;
using hosttest::Object;
using hosttest::Put;

// A get of a text as a wide string turned into UTF-8, so that shape texts outside the narrow
// code page survive; "<failed>" when the call fails.
inline std::string Text(IDispatch* object, const OLECHAR* path, ...) {
    va_list arguments;
    va_start(arguments, path);
    BSTR result = nullptr;
    const HRESULT hr = automation::GetValueV(OLESTR("%B"), &result, object, path, arguments);
    va_end(arguments);
    if (FAILED(hr)) return "<failed>";
    std::string text = NarrowBstr(result);
    SysFreeString(result);
    return text;
}

class DrawingTest : public ::testing::Test {
  protected:
    DrawingTest() {
        sheet->name = "Sheet1";
        book->sheets.push_back(sheet);
    }
    ~DrawingTest() override {
        shapes = Object();
        EXPECT_EQ(sheethost::LiveObjectCount(), liveBefore_)
            << ::testing::PrintToString(sheethost::LiveObjectReport());
    }

    std::shared_ptr<sheethost::Sheet> AddSheet(std::string name) {
        auto added = std::make_shared<sheethost::Sheet>();
        added->name = std::move(name);
        book->sheets.push_back(added);
        return added;
    }

    Object AddRectangle(double left, double top, double width, double height) {
        return Get(shapes.get(), OLESTR(".AddShape(%d,%e,%e,%e,%e)"), 1, left, top, width, height);
    }

    // The model record of the n-th shape (1-based).
    sheethost::Shape& ShapeAt(std::size_t index) { return *sheet->shapes.at(index - 1); }

    std::shared_ptr<sheethost::Workbook> book = std::make_shared<sheethost::Workbook>();
    std::shared_ptr<sheethost::Sheet> sheet = std::make_shared<sheethost::Sheet>();

  private:
    long liveBefore_ = sheethost::LiveObjectCount();

  protected:
    Object shapes = Object::Adopt(sheethost::NewShapesObject(book, sheet));
};

}  // namespace drawingtest
