// The shape list answers from its indexes exactly what a walk over the z-order would.
#include "sheethost/shape_list.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using sheethost::Shape;
using sheethost::ShapeList;

ShapeList::Pointer Made(int id, std::string name) {
    auto shape = std::make_shared<Shape>();
    shape->id = id;
    shape->name = std::move(name);
    return shape;
}

TEST(ShapeList, SharedNamesAndIdsFindTheBackmostWhateverTheOrderOfChanges) {
    ShapeList shapes;
    const auto a = shapes.push_back(Made(1, "Bar"));
    const auto b = shapes.push_back(Made(2, "bar"));
    EXPECT_EQ(shapes.Named("BAR"), a);
    shapes.move(1, 0);  // b goes to the back
    EXPECT_EQ(shapes.Named("bar"), b);
    shapes.Rename(*b, "Label");
    EXPECT_EQ(shapes.Named("bar"), a);
    EXPECT_EQ(shapes.Named("LABEL"), b);
    // A change of case only keeps the shape findable.
    shapes.Rename(*b, "LABEL");
    EXPECT_EQ(shapes.Named("label"), b);
    EXPECT_EQ(shapes.IndexOf(*a), 1);

    const auto twin = shapes.push_back(Made(1, "Twin"));
    EXPECT_EQ(shapes.WithId(1), a);
    shapes.erase(*a);
    EXPECT_FALSE(shapes.Holds(*a));
    EXPECT_EQ(shapes.WithId(1), twin);
    EXPECT_EQ(shapes.Named("Bar"), nullptr);
    // A shape off the sheet renamed stays off it.
    shapes.Rename(*a, "Twin");
    EXPECT_EQ(shapes.Named("twin"), twin);
}

TEST(ShapeList, IdsAndGlueFollowTheShapesThatComeAndGo) {
    ShapeList shapes;
    shapes.push_back(Made(3, "A"));
    const auto top = shapes.push_back(Made(9, "B"));
    EXPECT_EQ(shapes.LastId(), 9);
    ShapeList copy = shapes;
    shapes.erase(*top);
    EXPECT_EQ(shapes.LastId(), 3);
    EXPECT_EQ(copy.LastId(), 9);
    // A copy holds copies: each list holds its own shapes and not the other's.
    ASSERT_NE(copy.Named("b"), nullptr);
    EXPECT_EQ(*copy.Named("b"), *top);
    EXPECT_TRUE(copy.Holds(*copy.Named("a")));
    EXPECT_FALSE(shapes.Holds(*copy.Named("a")));
    EXPECT_FALSE(copy.Holds(*shapes.Named("a")));
    ShapeList moved = std::move(copy);
    EXPECT_TRUE(moved.Holds(*moved.Named("b")));
    // Both ends on one shape: the connector is named once; loosened, it is named no more.
    auto connector = Made(10, "Link");
    connector->beginConnection = sheethost::ConnectorEnd{3, 1};
    shapes.push_back(connector);
    shapes.Glue(*connector, &Shape::endConnection, sheethost::ConnectorEnd{3, 2});
    EXPECT_EQ(shapes.GluedTo(3), std::vector<ShapeList::Pointer>{connector});
    shapes.Glue(*connector, &Shape::beginConnection, std::nullopt);
    EXPECT_EQ(shapes.GluedTo(3).size(), 1U);
    shapes.Glue(*connector, &Shape::endConnection, sheethost::ConnectorEnd{9, 2});
    EXPECT_TRUE(shapes.GluedTo(3).empty());
    shapes.erase(*connector);
    EXPECT_TRUE(shapes.GluedTo(9).empty());
    shapes.clear();
    EXPECT_EQ(shapes.LastId(), 0);
}

// Thousands of shapes come and go, as a chart's redraw makes and deletes them, under names many
// of them share: each shape left is found by its name, in any case, and none taken off is.
TEST(ShapeList, EveryShapeLeftIsFoundByNameAfterManyComeAndGo) {
    ShapeList shapes;
    std::vector<ShapeList::Pointer> made;
    for (int id = 1; id <= 3000; ++id) {
        made.push_back(shapes.push_back(Made(id, "Bar " + std::to_string(id % 1000))));
    }
    for (int k = 0; k < 3000; k += 3) shapes.erase(*made[static_cast<std::size_t>(k)]);
    for (int k = 1; k < 3000; k += 3) {
        shapes.Rename(*made[static_cast<std::size_t>(k)], "LABEL " + std::to_string(k));
    }
    for (int k = 0; k < 3000; ++k) {
        const Shape& shape = *made[static_cast<std::size_t>(k)];
        if (k % 3 == 0) {
            EXPECT_FALSE(shapes.Holds(shape));
            continue;
        }
        const auto found = shapes.Named(k % 3 == 1 ? "label " + std::to_string(k) : shape.name);
        ASSERT_NE(found, nullptr) << k;
        // A shared name finds the backmost of the shapes that bear it.
        if (k % 3 == 2) {
            EXPECT_EQ(found->id % 1000, shape.id % 1000);
            EXPECT_LE(found->id, shape.id);
        } else {
            EXPECT_EQ(found.get(), &shape);
        }
    }
    // Of ids 1000, 2000 and 3000, the first was taken off and the second renamed.
    EXPECT_EQ(shapes.Named("bar 0")->id, 3000);
}

}  // namespace
