// Freeforms built node by node, as the progress line and the shaped bars are.
#include "sheethost/shape_test_support.h"

namespace drawingtest {
namespace {

using ShapeFreeformTest = DrawingTest;

TEST_F(ShapeFreeformTest, APolylineBecomesAShapeSpanningItsNodes) {
    Object builder = Get(shapes.get(), OLESTR(".BuildFreeform(%d,%e,%e)"), 0, 100.0, 20.0);
    ASSERT_TRUE(builder);
    for (const auto& [x, y] :
         {std::pair{100.0, 35.0}, {80.0, 42.5}, {100.0, 50.0}, {100.0, 90.0}}) {
        ASSERT_EQ(Call(builder.get(), OLESTR(".AddNodes(%d,%d,%e,%e)"), 0, 0, x, y), S_OK);
    }
    Object line = Get(builder.get(), OLESTR(".ConvertToShape"));
    ASSERT_TRUE(line);
    Put(line.get(), OLESTR(".Name=%s"), "ProgressLines20240315");

    EXPECT_EQ(Number(line.get(), OLESTR(".Type")), 5);
    EXPECT_EQ(Number(line.get(), OLESTR(".Left")), 80);
    EXPECT_EQ(Number(line.get(), OLESTR(".Top")), 20);
    EXPECT_EQ(Number(line.get(), OLESTR(".Width")), 20);
    EXPECT_EQ(Number(line.get(), OLESTR(".Height")), 70);
    EXPECT_EQ(Text(shapes.get(), OLESTR(".Item(%d).Name"), 1), "ProgressLines20240315");
    ASSERT_EQ(ShapeAt(1).nodes.size(), 5u);
    EXPECT_EQ(ShapeAt(1).nodes[2].x, 80);

    // The nodes move and stretch with the shape's box.
    Put(line.get(), OLESTR(".Left=%e"), 90.0);
    Put(line.get(), OLESTR(".Width=%e"), 40.0);
    EXPECT_EQ(ShapeAt(1).nodes[2].x, 90);
    EXPECT_EQ(ShapeAt(1).nodes[0].x, 130);
    EXPECT_EQ(ShapeAt(1).nodes[4].y, 90);
}

TEST_F(ShapeFreeformTest, NodesAreCheckedAsTheSpreadsheetChecksThem) {
    Object builder = Get(shapes.get(), OLESTR(".BuildFreeform(%d,%e,%e)"), 0, 0.0, 0.0);
    EXPECT_EQ(Call(builder.get(), OLESTR(".ConvertToShape")), DISP_E_EXCEPTION);
    // A corner curve gives two control points and its end.
    EXPECT_EQ(Call(builder.get(), OLESTR(".AddNodes(%d,%d,%e,%e)"), 1, 1, 5.0, 5.0),
              DISP_E_BADPARAMCOUNT);
    EXPECT_EQ(Call(builder.get(), OLESTR(".AddNodes(%d,%d,%e,%e,%e,%e,%e,%e)"), 1, 1, 5.0, 0.0,
                   10.0, 0.0, 10.0, 10.0),
              S_OK);
    EXPECT_EQ(Call(builder.get(), OLESTR(".AddNodes(%d,%d,%e,%e)"), 2, 0, 5.0, 5.0),
              DISP_E_EXCEPTION);
    EXPECT_EQ(Call(shapes.get(), OLESTR(".BuildFreeform(%d,%e,%e)"), 3, 0.0, 0.0),
              DISP_E_EXCEPTION);

    ASSERT_EQ(Call(builder.get(), OLESTR(".ConvertToShape")), S_OK);
    EXPECT_EQ(ShapeAt(1).nodes.size(), 4u);
    EXPECT_EQ(ShapeAt(1).name, "Freeform 1");
    EXPECT_EQ(ShapeAt(1).height, 10);
}

}  // namespace
}  // namespace drawingtest
