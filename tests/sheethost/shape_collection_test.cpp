// The Shapes collection: adding, finding, enumerating while deleting, stacking.
#include <vector>

#include "sheethost/shape_test_support.h"

namespace drawingtest {
namespace {

using ShapesTest = DrawingTest;

TEST_F(ShapesTest, NewShapesTakeTheSpreadsheetsNamesNumberedByUniqueIds) {
    AddRectangle(10, 20, 30, 40);
    Get(shapes.get(), OLESTR(".AddTextbox(%d,%e,%e,%e,%e)"), 1, 0.0, 0.0, 5.0, 5.0);
    Get(shapes.get(), OLESTR(".AddConnector(%d,%e,%e,%e,%e)"), 2, 0.0, 0.0, 5.0, 5.0);
    Get(shapes.get(), OLESTR(".AddLine(%e,%e,%e,%e)"), 0.0, 0.0, 5.0, 5.0);
    Get(shapes.get(), OLESTR(".AddShape(%d,%e,%e,%e,%e)"), 9, 0.0, 0.0, 5.0, 5.0);

    EXPECT_EQ(Number(shapes.get(), OLESTR(".Count")), 5);
    const std::vector<std::string> names = {"Rectangle 1", "TextBox 2", "Elbow Connector 3",
                                            "Straight Connector 4", "Oval 5"};
    const std::vector<double> types = {1, 17, 1, 9, 1};
    for (int k = 1; k <= 5; ++k) {
        EXPECT_EQ(Text(shapes.get(), OLESTR(".Item(%d).Name"), k), names[k - 1]);
        EXPECT_EQ(Number(shapes.get(), OLESTR(".Item(%d).Type"), k), types[k - 1]);
        EXPECT_EQ(Number(shapes.get(), OLESTR(".Item(%d).ID"), k), k);
    }
    EXPECT_EQ(Number(shapes.get(), OLESTR(".Item(%d).Connector"), 3), -1);

    // A deleted number is not given again while a later shape holds a higher one.
    Call(shapes.get(), OLESTR(".Item(%d).Delete"), 2);
    Get(shapes.get(), OLESTR(".AddShape(%d,%e,%e,%e,%e)"), 1, 0.0, 0.0, 5.0, 5.0);
    EXPECT_EQ(ShapeAt(5).name, "Rectangle 6");
}

TEST_F(ShapesTest, AShapeIsFoundByNameWithoutRegardToCaseOrByItsPlace) {
    AddRectangle(10, 20, 30, 40);
    Put(AddRectangle(50, 60, 70, 80).get(), OLESTR(".Name=%s"), "GanntBar12A");

    EXPECT_EQ(Number(shapes.get(), OLESTR(".Item(%s).Left"), "ganntbar12a"), 50);
    EXPECT_EQ(Number(shapes.get(), OLESTR(".Item(%d).Top"), 1), 20);
    // A number passed as text is a name, as in the spreadsheet.
    EXPECT_EQ(Text(shapes.get(), OLESTR(".Item(%s).Name"), "2"), "<failed>");

    double left = 0;
    EXPECT_EQ(automation::GetValue(OLESTR("%e"), &left, shapes.get(), OLESTR(".Item(%s).Left"),
                                   "GanntBar12B"),
              DISP_E_EXCEPTION);
    EXPECT_EQ(LastDescription(), "The item with the specified name wasn't found.");
    EXPECT_EQ(Call(shapes.get(), OLESTR(".Item(%d)"), 3), DISP_E_EXCEPTION);
    EXPECT_EQ(LastDescription(), "The index into the specified collection is out of bounds.");
    EXPECT_EQ(Call(shapes.get(), OLESTR(".Item(%d)"), 0), DISP_E_EXCEPTION);
    EXPECT_EQ(Call(shapes.get(), OLESTR(".Frobnicate")), DISP_E_UNKNOWNNAME);
}

// The enumerator indexes the live list: deleting the shape it just returned moves the next one
// into that place, so every second shape survives a delete-all loop, as in the spreadsheet.
TEST_F(ShapesTest, DeletingWhileEnumeratingSkipsTheShapeThatSlidesIntoPlace) {
    for (int k = 0; k < 5; ++k) AddRectangle(k * 10.0, 0, 5, 5);
    IEnumVARIANT* enumerator = nullptr;
    ASSERT_EQ(automation::EnumBegin(&enumerator, shapes.get(), nullptr), S_OK);
    std::vector<std::string> visited;
    IDispatch* item = nullptr;
    while (automation::EnumNextObject(enumerator, &item) == S_OK) {
        Object shape = Object::Adopt(item);
        visited.push_back(Text(shape.get(), OLESTR(".Name")));
        Call(shape.get(), OLESTR(".Delete"));
    }
    enumerator->Release();

    EXPECT_EQ(visited, (std::vector<std::string>{"Rectangle 1", "Rectangle 3", "Rectangle 5"}));
    ASSERT_EQ(sheet->shapes.size(), 2u);
    EXPECT_EQ(ShapeAt(1).name, "Rectangle 2");
    EXPECT_EQ(ShapeAt(2).name, "Rectangle 4");
}

TEST_F(ShapesTest, AReferenceToADeletedShapeIsRefused) {
    Object shape = AddRectangle(1, 2, 3, 4);
    Object line = Get(shape.get(), OLESTR(".Line"));
    ASSERT_EQ(Call(shape.get(), OLESTR(".Delete")), S_OK);

    EXPECT_TRUE(sheet->shapes.empty());
    EXPECT_TRUE(FAILED(Call(shape.get(), OLESTR(".Left"))));
    EXPECT_TRUE(FAILED(Put(line.get(), OLESTR(".Weight=%e"), 2.0)));
}

TEST_F(ShapesTest, ZOrderRestacksTheCollection) {
    for (int k = 0; k < 4; ++k) AddRectangle(k, 0, 5, 5);
    ASSERT_EQ(Call(shapes.get(), OLESTR(".Item(%d).ZOrder(%d)"), 3, 1), S_OK);  // to back
    ASSERT_EQ(Call(shapes.get(), OLESTR(".Item(%s).ZOrder(%d)"), "Rectangle 1", 0), S_OK);
    ASSERT_EQ(Call(shapes.get(), OLESTR(".Item(%s).ZOrder(%d)"), "Rectangle 4", 3), S_OK);

    std::vector<std::string> order;
    for (const auto& shape : sheet->shapes) order.push_back(shape->name);
    EXPECT_EQ(order, (std::vector<std::string>{"Rectangle 3", "Rectangle 4", "Rectangle 2",
                                               "Rectangle 1"}));
    EXPECT_EQ(Number(shapes.get(), OLESTR(".Item(%s).ZOrderPosition"), "Rectangle 1"), 4);
    EXPECT_EQ(Call(shapes.get(), OLESTR(".Item(%d).ZOrder(%d)"), 1, 7), DISP_E_EXCEPTION);
}

TEST_F(ShapesTest, ABoxGivenWithANegativeSizeSpansBackFromItsCorner) {
    AddRectangle(100, 50, -1.0, 10);

    EXPECT_EQ(ShapeAt(1).left, 99);
    EXPECT_EQ(ShapeAt(1).width, 1);
    EXPECT_EQ(Put(shapes.get(), OLESTR(".Item(%d).Width=%e"), 1, -3.0), DISP_E_EXCEPTION);
    EXPECT_EQ(Put(shapes.get(), OLESTR(".Item(%d).Placement=%d"), 1, 4), DISP_E_EXCEPTION);
}

}  // namespace
}  // namespace drawingtest
