// Charts: made on a chart sheet, given their data and look, and moved onto a worksheet, as the
// report commands do; series taken from blocks of cells as the spreadsheet guesses them.
#include <cmath>

#include "sheethost/chart_place.h"
#include "sheethost/chart_source.h"
#include "sheethost/shape_test_support.h"

namespace drawingtest {
namespace {

using sheethost::Area;

class ChartTest : public DrawingTest {
  protected:
    ChartTest() {
        // A period table: blank corner, captions in row 5, labels in column B.
        const char* captions[] = {"PV", "EV", "AC"};
        for (int column = 3; column <= 5; ++column)
            Set(5, column, std::string(captions[column - 3]));
        Set(5, 8, std::string("SPI"));
        Set(5, 9, std::string("CPI"));
        for (int row = 6; row <= 8; ++row) {
            Set(row, 2, "2024/03/0" + std::to_string(row - 5));
            for (int column = 3; column <= 9; ++column) Set(row, column, row * 10.0 + column);
        }
    }

    void Set(int row, int column, sheethost::Value value) {
        sheethost::CellAt(*report, row, column).value = std::move(value);
    }

    // The recipe of the report commands, up to Location.
    Object MakeChart(const char* source, int plotBy) {
        Object chart = Get(workbook.get(), OLESTR(".Charts.Add"));
        EXPECT_EQ(Put(chart.get(), OLESTR(".HasTitle=%e"), -1.0), S_OK);
        EXPECT_EQ(
            Put(chart.get(), OLESTR(".ChartTitle.Characters.Text=%S"), OLESTR("EVM 20240315")),
            S_OK);
        EXPECT_EQ(Put(chart.get(), OLESTR(".HasAxis(%d,%d)=%b"), 1, 1, 1), S_OK);
        EXPECT_EQ(Put(chart.get(), OLESTR(".HasAxis(%d,%d)=%b"), 2, 1, 1), S_OK);
        EXPECT_EQ(Put(chart.get(), OLESTR(".Axes(%d,%d).CategoryType=%d"), 1, 1, 2), S_OK);
        EXPECT_EQ(Put(chart.get(), OLESTR(".ChartType = %d"), 65), S_OK);
        Object range = Get(reportSheet.get(), OLESTR(".Range(%s)"), source);
        EXPECT_EQ(Call(chart.get(), OLESTR(".SetSourceData(%o,%d)"), range.get(), plotBy), S_OK);
        return chart;
    }

    std::shared_ptr<sheethost::Sheet> report = AddSheet("Report");
    Object workbook = Object::Adopt(sheethost::NewWorkbookObject(book));
    Object reportSheet = Object::Adopt(sheethost::NewWorksheetObject(book, report));
};

TEST_F(ChartTest, AChartIsMadeOnItsOwnSheetThenEmbeddedWhereTheReportWantsIt) {
    Object chart = MakeChart("B5:E8", 2);
    ASSERT_EQ(book->chartSheets.size(), 1u);
    EXPECT_TRUE(std::isnan(Number(chart.get(), OLESTR(".Top"))));  // not embedded yet
    EXPECT_EQ(Put(chart.get(), OLESTR(".Top=%e"), 5.0), DISP_E_EXCEPTION);

    Object placed = Get(chart.get(), OLESTR(".Location(%d,%s)"), 2, "Report");
    ASSERT_TRUE(placed);
    ASSERT_EQ(Put(placed.get(), OLESTR(".Top=%e"), 200.0), S_OK);

    EXPECT_TRUE(book->chartSheets.empty());
    ASSERT_EQ(report->charts.size(), 1u);
    ASSERT_EQ(report->shapes.size(), 1u);
    const sheethost::Shape& frame = *report->shapes[0];
    EXPECT_EQ(frame.type, sheethost::mso::kChart);
    EXPECT_EQ(frame.name, "Chart 1");
    EXPECT_EQ(frame.top, 200);
    EXPECT_EQ(frame.width, sheethost::kDefaultChartWidth);

    const sheethost::Chart& made = *report->charts[0];
    EXPECT_EQ(made.shapeId, frame.id);
    EXPECT_TRUE(made.hasTitle);
    EXPECT_EQ(made.title, "EVM 20240315");
    EXPECT_EQ(made.categoryAxis.categoryType, 2);
    EXPECT_EQ(made.chartType, 65);
    EXPECT_EQ(made.sourceData, "=Report!$B$5:$E$8");
    ASSERT_EQ(made.series.size(), 3u);
    EXPECT_EQ(made.series[0].name, "PV");
    EXPECT_EQ(made.series[0].nameReference, "=Report!$C$5");
    EXPECT_EQ(made.series[2].values, "=Report!$E$6:$E$8");
    EXPECT_EQ(made.series[2].xValues, "=Report!$B$6:$B$8");

    // The chart is the same wherever it went: the first reference follows it.
    EXPECT_EQ(Text(chart.get(), OLESTR(".Name")), "Report Chart 1");
    EXPECT_EQ(Text(placed.get(), OLESTR(".SeriesCollection(%d).Formula"), 1),
              "=SERIES(Report!$C$5,Report!$B$6:$B$8,Report!$C$6:$C$8,1)");
    EXPECT_EQ(Number(placed.get(), OLESTR(".SeriesCollection.Count")), 3);
    EXPECT_EQ(Text(placed.get(), OLESTR(".ChartTitle.Characters(%d,%d).Text"), 5, 8), "20240315");
}

TEST_F(ChartTest, AUnionTakesItsFirstColumnAsCategoriesAndTheRestAsSeries) {
    Object chart = MakeChart("B5:B8,H5:I8", 2);
    Object placed = Get(chart.get(), OLESTR(".Location(%d,%s)"), 2, "Report");

    const sheethost::Chart& made = *report->charts.at(0);
    EXPECT_EQ(made.sourceData, "=Report!$B$5:$B$8,Report!$H$5:$I$8");
    ASSERT_EQ(made.series.size(), 2u);
    EXPECT_EQ(made.series[0].name, "SPI");
    EXPECT_EQ(made.series[1].values, "=Report!$I$6:$I$8");
    EXPECT_EQ(made.series[1].xValues, "=Report!$B$6:$B$8");
}

TEST_F(ChartTest, SeriesInRowsAreNamedByTheirFirstCell) {
    Object chart = MakeChart("B5:E8", 1);
    const sheethost::Chart& made = *book->chartSheets.at(0).chart;
    ASSERT_EQ(made.series.size(), 3u);
    EXPECT_EQ(made.series[1].name, "2024/03/02");
    EXPECT_EQ(made.series[1].values, "=Report!$C$7:$E$7");
    EXPECT_EQ(made.series[1].xValues, "=Report!$C$5:$E$5");

    // Without headers the series are numbered and have no categories.
    const auto numbers = sheethost::ReadChartSource(*report, {Area{6, 3, 8, 4}}, std::nullopt);
    ASSERT_TRUE(numbers.has_value());
    EXPECT_EQ(numbers->plotBy, sheethost::mso::kPlotByColumns);
    EXPECT_EQ(numbers->series.at(1).name, "Series2");
    EXPECT_EQ(numbers->series.at(1).values, "=Report!$D$6:$D$8");
    EXPECT_TRUE(numbers->series.at(1).xValues.empty());

    sheethost::Sheet quoted;
    quoted.name = "EVM 'Q1'";
    EXPECT_EQ(sheethost::AbsoluteReference(quoted, Area{1, 1, 2, 28}), "'EVM ''Q1'''!$A$1:$AB$2");
}

TEST_F(ChartTest, RefusalsAnswerAsTheSpreadsheetDoes) {
    Object chart = Get(workbook.get(), OLESTR(".Charts.Add"));
    EXPECT_EQ(Call(chart.get(), OLESTR(".ChartTitle.Characters.Text")), DISP_E_EXCEPTION);
    EXPECT_EQ(Call(chart.get(), OLESTR(".Axes(%d,%d)"), 3, 1), DISP_E_EXCEPTION);
    EXPECT_EQ(Put(chart.get(), OLESTR(".ChartType=%d"), 3), DISP_E_EXCEPTION);
    EXPECT_EQ(Call(chart.get(), OLESTR(".SetSourceData(%o,%d)"), shapes.get(), 2),
              DISP_E_TYPEMISMATCH);
    EXPECT_EQ(Call(chart.get(), OLESTR(".Location(%d,%s)"), 2, "Nowhere"), DISP_E_EXCEPTION);
    ASSERT_EQ(Put(chart.get(), OLESTR(".HasAxis(%d)=%b"), 1, 0), S_OK);
    EXPECT_EQ(Call(chart.get(), OLESTR(".Axes(%d).CategoryType"), 1), DISP_E_EXCEPTION);
    EXPECT_EQ(Text(chart.get(), OLESTR(".HasAxis(%d,%d)"), 1, 1), "False");
}

TEST_F(ChartTest, DeletingTheFrameDeletesTheChart) {
    Object chart = MakeChart("B5:E8", 2);
    Object placed = Get(chart.get(), OLESTR(".Location(%d,%s)"), 2, "Report");
    Object frame = Get(placed.get(), OLESTR(".Parent"));
    EXPECT_EQ(Text(frame.get(), OLESTR(".Chart.ChartTitle.Text")), "EVM 20240315");

    // The report sheet is emptied by walking its shapes and deleting each.
    Object reportShapes = Get(reportSheet.get(), OLESTR(".Shapes"));
    ASSERT_EQ(Call(reportShapes.get(), OLESTR(".Item(%d).Delete"), 1), S_OK);

    EXPECT_TRUE(report->charts.empty());
    EXPECT_TRUE(report->shapes.empty());
    EXPECT_TRUE(FAILED(Call(chart.get(), OLESTR(".ChartType"))));
    EXPECT_TRUE(FAILED(Call(frame.get(), OLESTR(".Chart"))));
}

TEST_F(ChartTest, ChartObjectsListTheEmbeddedChartsOfASheet) {
    Object chartObjects = Object::Adopt(sheethost::NewChartObjectsObject(book, report));
    AddRectangle(0, 0, 5, 5);  // on Sheet1: not counted on Report
    Object added = Get(chartObjects.get(), OLESTR(".Add(%e,%e,%e,%e)"), 10.0, 20.0, 300.0, 200.0);
    Get(reportSheet.get(), OLESTR(".Shapes.AddShape(%d,%e,%e,%e,%e)"), 1, 0.0, 0.0, 5.0, 5.0);

    EXPECT_EQ(Number(chartObjects.get(), OLESTR(".Count")), 1);
    EXPECT_EQ(Text(chartObjects.get(), OLESTR(".Item(%s).Name"), "chart 1"), "Chart 1");
    EXPECT_EQ(Number(chartObjects.get(), OLESTR(".Item(%d).Chart.ChartType"), 1), 51);
    ASSERT_EQ(Put(added.get(), OLESTR(".Chart.Left=%e"), 40.0), S_OK);
    EXPECT_EQ(Number(added.get(), OLESTR(".Left")), 40);

    ASSERT_EQ(Call(chartObjects.get(), OLESTR(".Delete")), S_OK);
    EXPECT_EQ(report->shapes.size(), 1u);
    EXPECT_TRUE(report->charts.empty());
}

}  // namespace
}  // namespace drawingtest
