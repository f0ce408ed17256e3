// Shapes moving with their rows when rows are inserted, deleted or cut and inserted elsewhere.
// Rows are 15 points high, so row r spans [15 (r - 1), 15 r).
#include "sheethost/rows_edit.h"
#include "sheethost/shape_test_support.h"

namespace drawingtest {
namespace {

using sheethost::mso::kFreeFloating;
using sheethost::mso::kMove;
using sheethost::mso::kMoveAndSize;

class ShapeRowsTest : public DrawingTest {
  protected:
    sheethost::Shape& Add(double top, double height, int placement) {
        sheethost::Shape& shape = *sheet->shapes.push_back(std::make_shared<sheethost::Shape>());
        shape.id = static_cast<int>(sheet->shapes.size());
        shape.left = 10;
        shape.top = top;
        shape.width = 20;
        shape.height = height;
        shape.placement = placement;
        return shape;
    }
};

TEST_F(ShapeRowsTest, InsertedRowsPushShapesDownAndStretchThoseThatSpanThem) {
    const sheethost::Shape& above = Add(2, 10, kMoveAndSize);       // row 1
    const sheethost::Shape& below = Add(62, 10, kMoveAndSize);      // row 5
    const sheethost::Shape& spanning = Add(20, 30, kMoveAndSize);   // rows 2 to 4
    const sheethost::Shape& spanningFixed = Add(20, 30, kMove);     // rows 2 to 4, fixed size
    const sheethost::Shape& floating = Add(62, 10, kFreeFloating);  // row 5, stays
    const sheethost::Shape& endingAtRow3 = Add(15, 15, kMoveAndSize);

    ASSERT_TRUE(sheethost::InsertRows(*book, *sheet, 3, 2));

    EXPECT_EQ(above.top, 2);
    EXPECT_EQ(below.top, 92);
    EXPECT_EQ(below.height, 10);
    EXPECT_EQ(spanning.top, 20);
    EXPECT_EQ(spanning.height, 60);
    EXPECT_EQ(spanningFixed.height, 30);
    EXPECT_EQ(floating.top, 62);
    // Its bottom lies on the boundary of the insertion: it belongs to the row above.
    EXPECT_EQ(endingAtRow3.height, 15);
}

TEST_F(ShapeRowsTest, DeletedRowsCloseUpAndShrinkWhatTheyHeld) {
    const sheethost::Shape& inDeleted = Add(32, 5, kMoveAndSize);  // row 3
    const sheethost::Shape& below = Add(77, 5, kMoveAndSize);      // row 6
    const sheethost::Shape& spanning = Add(20, 60, kMoveAndSize);  // rows 2 to 6
    const sheethost::Shape& movedOnly = Add(32, 5, kMove);         // row 3, keeps its size

    sheethost::DeleteRows(*book, *sheet, 3, 2);

    EXPECT_EQ(inDeleted.top, 30);
    EXPECT_EQ(inDeleted.height, 0);
    EXPECT_EQ(below.top, 47);
    EXPECT_EQ(spanning.top, 20);
    EXPECT_EQ(spanning.height, 30);
    EXPECT_EQ(movedOnly.top, 30);
    EXPECT_EQ(movedOnly.height, 5);
}

TEST_F(ShapeRowsTest, CutRowsTakeTheirShapesAndConnectorsFollow) {
    Object moving = AddRectangle(10, 137, 20, 10);   // row 10
    Object staying = AddRectangle(100, 62, 20, 10);  // row 5, pushed down to row 6
    Object connector =
        Get(shapes.get(), OLESTR(".AddConnector(%d,%e,%e,%e,%e)"), 2, 0.0, 0.0, 1.0, 1.0);
    Call(connector.get(), OLESTR(".ConnectorFormat.BeginConnect(%o,%d)"), moving.get(), 4);
    Call(connector.get(), OLESTR(".ConnectorFormat.EndConnect(%o,%d)"), staying.get(), 2);
    // Connectors themselves stay where they are drawn unless glued.
    Put(connector.get(), OLESTR(".Placement=%d"), kFreeFloating);

    sheethost::MoveRows(*book, *sheet, 10, 1, 5);

    EXPECT_EQ(Number(moving.get(), OLESTR(".Top")), 62);
    EXPECT_EQ(Number(staying.get(), OLESTR(".Top")), 77);
    EXPECT_EQ(Number(connector.get(), OLESTR(".Top")), 67);
    EXPECT_EQ(Number(connector.get(), OLESTR(".Height")), 15);
    EXPECT_EQ(Number(connector.get(), OLESTR(".Left")), 30);
}

TEST(ShapeRowsShiftTest, HiddenRowsAndTallRowsKeepEachEdgeInItsRow) {
    // Before: row 2 is 30 points high and row 3 hidden. After: two rows were inserted at row 2.
    const auto topBefore = [](int row) {
        if (row <= 2) return 15.0 * (row - 1);
        if (row == 3) return 45.0;
        return 45.0 + 15.0 * (row - 4);
    };
    const auto topAfter = [&](int row) { return row <= 1 ? 0.0 : 30.0 + topBefore(row - 2); };
    const sheethost::RowShift shift{[](int row) { return row < 2 ? row : row + 2; }, topBefore,
                                    topAfter};
    sheethost::Sheet drawing;
    auto shape = std::make_shared<sheethost::Shape>();
    shape->top = 45;  // the top of row 4, since row 3 has no height
    shape->height = 20;
    drawing.shapes.push_back(shape);

    sheethost::MoveShapesWithRows(drawing, shift);

    EXPECT_EQ(shape->top, 75);
    EXPECT_EQ(shape->height, 20);
}

}  // namespace
}  // namespace drawingtest
