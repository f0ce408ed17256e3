// The holders, the member path each workbook operation sends, and the column conversions.
#include "workbook/workbook.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <string>

#include "support/recording_dispatch.h"

namespace {

using testsupport::OleString;
using testsupport::OleStringView;
using testsupport::RecordingDispatch;

std::string Ascii(OleStringView text) {
    return std::string(text.begin(), text.end());
}

// "d3", "u4", "e1.5", "b1" or "Stext".
std::string ArgumentText(const testsupport::HeldVariant& argument) {
    if (argument.type() == VT_BSTR) return std::string("S").append(Ascii(argument.text()));
    char text[32] = {};
    if (argument.type() == VT_I4) std::snprintf(text, sizeof text, "d%d", int{argument->lVal});
    if (argument.type() == VT_UI4)
        std::snprintf(text, sizeof text, "u%u", unsigned{argument->ulVal});
    if (argument.type() == VT_R8) std::snprintf(text, sizeof text, "e%g", argument->dblVal);
    if (argument.type() == VT_BOOL) std::snprintf(text, sizeof text, "b%d", argument->boolVal != 0);
    return text;
}

// "Member/flags(arguments)", the arguments in written order: "Cells/4(u3,u4,Sx)".
std::string Describe(const RecordingDispatch::Call& call) {
    std::string text = Ascii(call.member);
    text.append("/").append(std::to_string(call.flags)).append("(");
    for (std::size_t i = 0; i < call.arguments.size(); ++i) {
        text.append(i == 0 ? "" : ",").append(ArgumentText(call.Argument(i)));
    }
    return text.append(")");
}

struct PathCase {
    const char* name;
    std::function<void(const XlObject&)> operation;
    const char* expected;  // the calls on the object, then on the object it led to
};

TEST(WorkbookPathTest, EachOperationSendsItsPath) {
    const PathCase cases[] = {
        {"GetValue", [](const XlObject& o) { o.GetValue(); }, "Value/3()"},
        {"SetText", [](const XlObject& o) { o.SetText("x"); }, "Value/4(Sx)"},
        {"GetValueNum", [](const XlObject& o) { o.GetValueNum(); }, "Value/3()"},
        {"SetValueNum", [](const XlObject& o) { o.SetValueNum(2.5); }, "Value/4(e2.5)"},
        {"SetFormula", [](const XlObject& o) { o.SetFormula("=A1"); }, "Formula/4(S=A1)"},
        {"GetCodeName", [](const XlObject& o) { o.GetCodeName(); }, "codeName/3()"},
        {"GetRow", [](const XlObject& o) { o.GetRow(); }, "Row/3()"},
        {"GetLeft", [](const XlObject& o) { o.GetLeft(); }, "Left/3()"},
        {"SetHeight", [](const XlObject& o) { o.SetHeight(1.5); }, "Height/4(e1.5)"},
        {"Delete", [](const XlObject& o) { o.Delete(); }, "Delete/1()"},
        {"ClearContents", [](const XlObject& o) { o.ClearContents(); }, "ClearContents/1()"},
        {"CellItem", [](const XlObject& o) { o.CellItem(7); }, "Cells/3() item/3(S7)"},
        {"Cell", [](const XlObject& o) { o.Cell(3, 4); }, "Cells/3(u3,u4)"},
        {"RangeOf", [](const XlObject& o) { o.RangeOf("B2:C3"); }, "Range/3(SB2:C3)"},
        {"SetCell", [](const XlObject& o) { o.SetCell(3, 4, "x"); }, "Cells/4(u3,u4,Sx)"},
        {"ShapeByName", [](const XlObject& o) { o.ShapeByName("Bar 5"); }, "Shapes/3(SBar 5)"},
        {"ShapeAt", [](const XlObject& o) { o.ShapeAt(2); }, "Shapes/3(d2)"},
        {"BuildFreeform", [](const XlObject& o) { o.BuildFreeform(0, 1.5, 2.5); },
         "Shapes/3() BuildFreeform/3(d0,e1.5,e2.5)"},
        {"AddNodes", [](const XlObject& o) { o.AddNodes(0, 1, 1.5, 2.5); },
         "AddNodes/1(d0,d1,e1.5,e2.5)"},
        {"ConvertToShape", [](const XlObject& o) { o.ConvertToShape(); }, "ConvertToShape/3()"},
        {"GetAdjustments", [](const XlObject& o) { o.GetAdjustments(); }, "Adjustments/3()"},
        {"GetItemNum", [](const XlObject& o) { o.GetItemNum(2); }, "Item/3(d2)"},
        {"SetItemNum", [](const XlObject& o) { o.SetItemNum(2, 0.5); }, "Item/4(d2,e0.5)"},
        {"GetObjectArg", [](const XlObject& o) { o.GetObjectArg("Worksheets(%s)", "Plan"); },
         "Worksheets/3(SPlan)"},
        {"GetNumberArg", [](const XlObject& o) { o.GetNumberArg("Columns(%d).ColumnWidth", 3); },
         "Columns/3(d3) ColumnWidth/3()"},
        {"SetNumberArg", [](const XlObject& o) { o.SetNumberArg(".Rows(%d).RowHeight", 2, 15); },
         "Rows/3(d2) RowHeight/4(e15)"},
        {"GetWide", [](const XlObject& o) { o.GetWide("Line.Weight"); }, "Line/3() Weight/3()"},
        {"CopyString", [](const XlObject& o) { o.CopyString("Name", o); }, "Name/3() Name/4(S)"},
        {"Call", [](const XlObject& o) { o.Call(".Rows(%d).Delete", 3); }, "Rows/3(d3) Delete/1()"},
        {"Put", [](const XlObject& o) { o.Put(".Range(%S).Hidden=%b", OLESTR("A1"), 1); },
         "Range/3(SA1) Hidden/4(b1)"},
        {"GetStringPath", [](const XlObject& o) { o.GetStringPath(".Range(%S)", OLESTR("A1")); },
         "Range/3(SA1)"},
    };
    const OLECHAR* const containers[] = {OLESTR("Cells"), OLESTR("Shapes"), OLESTR("Columns"),
                                         OLESTR("Rows"),  OLESTR("Range"),  OLESTR("Line")};
    for (const PathCase& testCase : cases) {
        RecordingDispatch sheet, child;
        for (const OLECHAR* member : containers) sheet.AnswerObject(member, &child);
        XlRef reference;
        reference.Set(&sheet);
        testCase.operation(reference.View());

        std::string calls;
        for (const RecordingDispatch* object : {&sheet, &child}) {
            for (const RecordingDispatch::Call& call : object->calls()) {
                calls.append(calls.empty() ? "" : " ").append(Describe(call));
            }
        }
        EXPECT_EQ(calls, testCase.expected) << testCase.name;
        // What the operation fetched was released, and the sheet itself never touched.
        EXPECT_EQ(child.outstanding(), 0) << testCase.name;
        EXPECT_EQ(sheet.outstanding(), 0) << testCase.name;
    }
}

TEST(WorkbookValueTest, TextTravelsAsUtf16AndFailuresYieldEmptyResults) {
    RecordingDispatch sheet;
    XlRef reference;
    reference.Set(&sheet);
    const XlObject view = reference.View();

    view.SetCell(1, 2, "Gr\u00f6\u00dfe \u4e2d");
    EXPECT_EQ(sheet.lastCall().Argument(2).text(), OLESTR("Gr\u00f6\u00dfe \u4e2d"));
    sheet.AnswerText(OLESTR("Value"), OLESTR("Gr\u00f6\u00dfe \u4e2d"));
    EXPECT_EQ(view.GetValue(), "Gr\u00f6\u00dfe \u4e2d");
    sheet.AnswerBool(OLESTR("HasFormula"), true);
    EXPECT_EQ(view.GetString("HasFormula"), "True");
    sheet.AnswerNumber(OLESTR("Row"), 12.0);
    EXPECT_EQ(view.GetRow(), 12);

    for (const OLECHAR* member : {OLESTR("Value"), OLESTR("Row"), OLESTR("Range")}) {
        sheet.Fail(member, DISP_E_EXCEPTION);
    }
    EXPECT_EQ(view.GetValue(), "");
    EXPECT_EQ(view.GetValueNum(), 0.0);
    EXPECT_EQ(view.GetRow(), 0);
    EXPECT_TRUE(view.RangeOf("A1").IsNothing());
    EXPECT_TRUE(XlObject().ShapeAt(1).IsNothing());
}

TEST(WorkbookHolderTest, AnOwningHolderReleasesExactlyOnce) {
    RecordingDispatch shape, other;
    shape.AddRef();
    other.AddRef();
    {
        XlObject holder(&shape);
        holder.Assign(&other);  // releases the shape
        EXPECT_EQ(shape.outstanding(), 0);
        XlObject moved(std::move(holder));
        moved.Destroy();
        moved.Destroy();
        EXPECT_TRUE(moved.IsNothing());
    }
    EXPECT_EQ(other.outstanding(), 0);

    shape.AddRef();
    XlObject owner(&shape);
    {
        XlObject borrowed;  // a copy takes no reference of its own
        borrowed.CopyFrom(owner);
        EXPECT_EQ(borrowed.object(), &shape);
        borrowed.Detach();
    }
    EXPECT_EQ(shape.outstanding(), 1);
    owner.Destroy();
    EXPECT_EQ(shape.outstanding(), 0);
}

TEST(WorkbookHolderTest, ReferencesAndTheirViewsNeverRelease) {
    RecordingDispatch workbook;
    XlRef reference;
    reference.Attach(&workbook);
    {
        XlObject view = reference.View();
        view.Assign(nullptr);
        XlRef copy;
        copy.CopyFrom(reference);
        copy.Destroy();
    }
    reference.Reset();
    EXPECT_TRUE(reference.IsNothing());
    EXPECT_EQ(workbook.releases(), 0);
}

TEST(ColumnTest, LettersAndNumbers) {
    EXPECT_EQ(ColumnNumber("A"), 1);
    EXPECT_EQ(ColumnNumber("AZ"), 52);
    EXPECT_EQ(ColumnNumber("XFD"), 16384);
    EXPECT_EQ(ColumnNumber("a"), 33);  // not folded to upper case
    EXPECT_EQ(ColumnNumber(""), 0);
    EXPECT_EQ(ColumnNumber(std::string(20, 'Z')), 0);  // too long to be a column
    EXPECT_EQ(ColumnLetters(26), "Z");
    EXPECT_EQ(ColumnLetters(27), "AA");
    EXPECT_EQ(ColumnLetters(52), "AZ");
    EXPECT_EQ(ColumnLetters(702), "ZZ");
    EXPECT_EQ(ColumnLetters(703), "AAA");
    EXPECT_EQ(ColumnLetters(0), "@");
    for (std::int32_t column = 1; column <= 18278; ++column) {
        ASSERT_EQ(ColumnNumber(ColumnLetters(column)), column);
    }
}

}  // namespace
