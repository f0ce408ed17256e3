// Connectors glued to the connection sites of other shapes, following them when they move.
#include "sheethost/shape_test_support.h"

namespace drawingtest {
namespace {

class ShapeConnectorTest : public DrawingTest {
  protected:
    // A: box (10, 20, 100, 30), right middle (110, 35); B: box (200, 80, 50, 20), left middle
    // (200, 90). The connector is added between their corners and then glued, as the engine does.
    ShapeConnectorTest()
        : from(AddRectangle(10, 20, 100, 30)),
          to(AddRectangle(200, 80, 50, 20)),
          connector(Get(shapes.get(), OLESTR(".AddConnector(%d,%e,%e,%e,%e)"), 2, 10.0, 20.0, 200.0,
                        80.0)) {}

    void Glue(int beginSite, int endSite) {
        ASSERT_EQ(Call(connector.get(), OLESTR(".ConnectorFormat.BeginConnect(%o,%d)"), from.get(),
                       beginSite),
                  S_OK);
        ASSERT_EQ(
            Call(connector.get(), OLESTR(".ConnectorFormat.EndConnect(%o,%d)"), to.get(), endSite),
            S_OK);
    }

    double Value(const OLECHAR* path) { return Number(connector.get(), path); }

    Object from;
    Object to;
    Object connector;
};

TEST_F(ShapeConnectorTest, GluedEndsSitOnTheSidesOfTheirShapes) {
    Glue(4, 2);

    EXPECT_EQ(Value(OLESTR(".Left")), 110);
    EXPECT_EQ(Value(OLESTR(".Top")), 35);
    EXPECT_EQ(Value(OLESTR(".Width")), 90);
    EXPECT_EQ(Value(OLESTR(".Height")), 55);
    EXPECT_EQ(Value(OLESTR(".HorizontalFlip")), 0);
    EXPECT_EQ(Value(OLESTR(".ConnectorFormat.BeginConnected")), -1);
    EXPECT_EQ(Value(OLESTR(".ConnectorFormat.EndConnectionSite")), 2);
    EXPECT_EQ(Text(connector.get(), OLESTR(".ConnectorFormat.BeginConnectedShape.Name")),
              "Rectangle 1");
    // A route that runs straight on from site to site has its middle segment half way.
    EXPECT_EQ(Value(OLESTR(".Adjustments.Count")), 1);
    EXPECT_EQ(Number(connector.get(), OLESTR(".Adjustments.Item(%d)"), 1), 0.5);

    // Sites go round counter-clockwise from the top: 1 top middle, 3 bottom middle.
    Glue(1, 3);
    EXPECT_EQ(Value(OLESTR(".Left")), 60);
    EXPECT_EQ(Value(OLESTR(".Top")), 20);
    EXPECT_EQ(Value(OLESTR(".Width")), 165);
    EXPECT_EQ(Value(OLESTR(".Height")), 80);
}

TEST_F(ShapeConnectorTest, AConnectorFollowsTheShapesItIsGluedTo) {
    Glue(4, 2);
    // The engine lifts its connectors by 1.5 points; the glue holds regardless.
    Put(connector.get(), OLESTR(".Top=%e"), Value(OLESTR(".Top")) - 1.5);
    EXPECT_EQ(Value(OLESTR(".Top")), 33.5);

    ASSERT_EQ(Put(to.get(), OLESTR(".Left=%e"), 50.0), S_OK);

    // The end now lies left of the begin: the connector is flipped, and its elbow route doubles
    // back around both ends, with the first and last segments 18 points out from the sites.
    EXPECT_EQ(Value(OLESTR(".Left")), 50);
    EXPECT_EQ(Value(OLESTR(".Width")), 60);
    EXPECT_EQ(Value(OLESTR(".Top")), 35);
    EXPECT_EQ(Value(OLESTR(".HorizontalFlip")), -1);
    EXPECT_EQ(Value(OLESTR(".Adjustments.Count")), 3);
    EXPECT_DOUBLE_EQ(Number(connector.get(), OLESTR(".Adjustments.Item(%d)"), 1), -0.3);
    EXPECT_DOUBLE_EQ(Number(connector.get(), OLESTR(".Adjustments.Item(%d)"), 3), 1.3);

    // Now the begin lies below the end as well.
    ASSERT_EQ(Put(from.get(), OLESTR(".Top=%e"), 100.0), S_OK);
    EXPECT_EQ(Value(OLESTR(".Top")), 90);
    EXPECT_EQ(Value(OLESTR(".Height")), 25);
    EXPECT_EQ(Value(OLESTR(".VerticalFlip")), -1);

    // Both sites facing right: one elbow beyond the farther of the two.
    Glue(4, 4);
    EXPECT_EQ(Value(OLESTR(".Adjustments.Count")), 1);
    EXPECT_DOUBLE_EQ(Number(connector.get(), OLESTR(".Adjustments.Item(%d)"), 1),
                     (110 + 18 - 110) / (100.0 - 110));
}

TEST_F(ShapeConnectorTest, GlueIsRefusedWhereTheSpreadsheetRefusesIt) {
    EXPECT_EQ(Call(connector.get(), OLESTR(".ConnectorFormat.BeginConnect(%o,%d)"), from.get(), 5),
              DISP_E_EXCEPTION);
    EXPECT_EQ(
        Call(connector.get(), OLESTR(".ConnectorFormat.BeginConnect(%o,%d)"), connector.get(), 1),
        DISP_E_EXCEPTION);
    EXPECT_EQ(
        Call(connector.get(), OLESTR(".ConnectorFormat.BeginConnect(%o,%d)"), shapes.get(), 1),
        DISP_E_EXCEPTION);
    EXPECT_EQ(Call(from.get(), OLESTR(".ConnectorFormat.BeginConnect(%o,%d)"), to.get(), 1),
              DISP_E_EXCEPTION);
    EXPECT_TRUE(FAILED(Call(connector.get(), OLESTR(".ConnectorFormat.EndConnectedShape"))));
    EXPECT_EQ(Value(OLESTR(".ConnectorFormat.BeginConnected")), 0);
}

TEST_F(ShapeConnectorTest, DeletingAGluedShapeLeavesTheConnectorLooseInPlace) {
    Glue(4, 2);
    ASSERT_EQ(Call(from.get(), OLESTR(".Delete")), S_OK);

    EXPECT_EQ(Value(OLESTR(".ConnectorFormat.BeginConnected")), 0);
    EXPECT_EQ(Value(OLESTR(".ConnectorFormat.EndConnected")), -1);
    EXPECT_EQ(Value(OLESTR(".Left")), 110);
    ASSERT_EQ(Put(to.get(), OLESTR(".Top=%e"), 100.0), S_OK);
    EXPECT_EQ(Value(OLESTR(".Left")), 110);
    EXPECT_EQ(Value(OLESTR(".Top")), 35);
    EXPECT_EQ(Value(OLESTR(".Height")), 75);
}

TEST_F(ShapeConnectorTest, AStraightConnectorHasNoElbowToAdjust) {
    ASSERT_EQ(Put(connector.get(), OLESTR(".ConnectorFormat.Type=%d"), 1), S_OK);
    Glue(4, 2);
    EXPECT_EQ(Value(OLESTR(".Adjustments.Count")), 0);
    EXPECT_EQ(Call(connector.get(), OLESTR(".Adjustments.Item(%d)"), 1), DISP_E_EXCEPTION);
    EXPECT_EQ(Text(connector.get(), OLESTR(".Name")), "Elbow Connector 3");
}

}  // namespace
}  // namespace drawingtest
