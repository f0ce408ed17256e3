// Line and fill: the style copy the drawing commands make from template shapes, and the values
// the host accepts.
#include "sheethost/shape_test_support.h"

namespace drawingtest {
namespace {

using ShapeFormatTest = DrawingTest;

// The copy the drawing commands make: each property read from the template and written to the
// new shape, then the template's pattern applied with Patterned.
void CopyStyle(IDispatch* source, IDispatch* target) {
    for (const OLECHAR* path :
         {OLESTR(".Line.Weight"), OLESTR(".Line.DashStyle"), OLESTR(".Line.style")}) {
        Put(target, (std::basic_string<OLECHAR>(path) + OLESTR("=%e")).c_str(),
            Number(source, path));
    }
    Put(target, OLESTR(".Line.Visible=%e"), -1.0);
    for (const OLECHAR* path : {OLESTR(".Line.ForeColor.RGB"), OLESTR(".Line.BackColor.RGB"),
                                OLESTR(".Fill.Transparency"), OLESTR(".Fill.ForeColor.RGB")}) {
        Put(target, (std::basic_string<OLECHAR>(path) + OLESTR("=%e")).c_str(),
            Number(source, path));
    }
    Put(target, OLESTR(".Fill.Visible=%e"), -1.0);
    Call(target, OLESTR(".Fill.Patterned(%e)"), Number(source, OLESTR(".Fill.Pattern")));
}

TEST_F(ShapeFormatTest, ATemplatesLineAndFillCopyOntoANewShape) {
    Object source = AddRectangle(0, 0, 10, 10);
    ASSERT_EQ(Put(source.get(), OLESTR(".Line.Weight=%e"), 2.25), S_OK);
    ASSERT_EQ(Put(source.get(), OLESTR(".Line.DashStyle=%d"), 4), S_OK);
    ASSERT_EQ(Put(source.get(), OLESTR(".line.STYLE=%d"), 3), S_OK);
    ASSERT_EQ(Put(source.get(), OLESTR(".Line.ForeColor.RGB=%d"), 0x0000FF), S_OK);
    ASSERT_EQ(Put(source.get(), OLESTR(".Line.BackColor.RGB=%d"), 0x00FF00), S_OK);
    ASSERT_EQ(Put(source.get(), OLESTR(".Fill.Transparency=%e"), 0.25), S_OK);
    ASSERT_EQ(Put(source.get(), OLESTR(".Fill.ForeColor.RGB=%d"), 0x123456), S_OK);
    Object solidTarget = AddRectangle(0, 0, 10, 10);
    Put(solidTarget.get(), OLESTR(".Line.Visible=%d"), 0);

    CopyStyle(source.get(), solidTarget.get());

    const sheethost::Shape& solid = ShapeAt(2);
    EXPECT_EQ(solid.line, ShapeAt(1).line);
    EXPECT_EQ(solid.fill.foreColor, 0x123456);
    EXPECT_EQ(solid.fill.transparency, 0.25);
    // A solid template's pattern reads as "mixed", which Patterned refuses: the copy stays solid.
    EXPECT_EQ(solid.fill.type, sheethost::mso::kFillSolid);

    ASSERT_EQ(Call(source.get(), OLESTR(".Fill.Patterned(%d)"), 5), S_OK);
    Object patternedTarget = AddRectangle(0, 0, 10, 10);
    CopyStyle(source.get(), patternedTarget.get());
    EXPECT_EQ(ShapeAt(3).fill, ShapeAt(1).fill);
    EXPECT_EQ(Number(patternedTarget.get(), OLESTR(".Fill.Pattern")), 5);
    EXPECT_EQ(Number(patternedTarget.get(), OLESTR(".Fill.Type")), 2);
    ASSERT_EQ(Call(patternedTarget.get(), OLESTR(".Fill.Solid")), S_OK);
    EXPECT_EQ(Number(patternedTarget.get(), OLESTR(".Fill.Pattern")), -2);
}

TEST_F(ShapeFormatTest, ArgumentsAreCoercedAsTheSpreadsheetCoercesThem) {
    Object shape = AddRectangle(0, 0, 10, 10);

    EXPECT_EQ(Put(shape.get(), OLESTR(".Line.Weight=%s"), "1.5"), S_OK);
    EXPECT_EQ(Put(shape.get(), OLESTR(".Fill.Visible=%b"), 0), S_OK);
    EXPECT_EQ(Put(shape.get(), OLESTR(".Left=%s"), "12.5"), S_OK);
    EXPECT_EQ(Text(shape.get(), OLESTR(".Line.Weight")), "1.5");
    EXPECT_EQ(Number(shape.get(), OLESTR(".Fill.Visible")), 0);
    EXPECT_EQ(Number(shape.get(), OLESTR(".Line.Visible")), -1);
    EXPECT_EQ(ShapeAt(1).left, 12.5);

    EXPECT_EQ(Put(shape.get(), OLESTR(".Line.Weight=%s"), "heavy"), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(Put(shape.get(), OLESTR(".Fill.Transparency=%e"), 1.5), DISP_E_EXCEPTION);
    EXPECT_EQ(LastDescription(), "The specified value is out of range.");
    EXPECT_EQ(Put(shape.get(), OLESTR(".Line.ForeColor.RGB=%d"), -5), DISP_E_EXCEPTION);
    EXPECT_EQ(Put(shape.get(), OLESTR(".Line.EndArrowheadStyle=%d"), 2), S_OK);
    EXPECT_EQ(ShapeAt(1).line.endArrowheadStyle, 2);
    EXPECT_EQ(Put(shape.get(), OLESTR(".Type=%d"), 5), DISP_E_MEMBERNOTFOUND);
}

TEST_F(ShapeFormatTest, ChangingTheAutoShapeTypeResetsItsAdjustments) {
    Object shape = AddRectangle(0, 0, 10, 10);
    EXPECT_EQ(Number(shape.get(), OLESTR(".Adjustments.Count")), 0);

    ASSERT_EQ(Put(shape.get(), OLESTR(".AutoShapeType=%d"), 5), S_OK);  // rounded rectangle
    EXPECT_EQ(Number(shape.get(), OLESTR(".Adjustments.Count")), 1);
    ASSERT_EQ(Put(shape.get(), OLESTR(".Adjustments.Item(%d)=%e"), 1, 0.3), S_OK);
    EXPECT_EQ(Number(shape.get(), OLESTR(".Adjustments.Item(%d)"), 1), 0.3);
    EXPECT_EQ(Put(shape.get(), OLESTR(".Adjustments.Item(%d)=%e"), 2, 0.3), DISP_E_EXCEPTION);
    EXPECT_EQ(Text(shape.get(), OLESTR(".Name")), "Rectangle 1");
}

}  // namespace
}  // namespace drawingtest
