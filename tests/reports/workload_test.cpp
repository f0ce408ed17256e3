// Workload by resource: the even spread over a task's days, loads of one resource adding up,
// the order of the rows, the totals, the chart below them, the fallback to planned work, and a
// second run.
#include <gtest/gtest.h>

#include "engine/exports.h"
#include "report_project.h"

namespace {

using reportstest::k0800;
using reportstest::k1700;
using reportstest::ProjectJson;

constexpr char kSheet[] = "Workload1";

class Workload : public reportstest::ReportProject {
  protected:
    Workload() { CalendarDays(4); }

    void Assignment(int row, std::string_view resource, double load, int days) {
        project.Task(row, 1, "Task " + std::to_string(row),
                     {{ProjectJson::kResource, resource},
                      {ProjectJson::kPv, 60},
                      {ProjectJson::kPlannedStart, k0800},
                      {ProjectJson::kPlannedEnd, k1700},
                      {"CB", load},
                      {"CA", days}});
    }
};

TEST_F(Workload, LoadsSpreadEvenlyAndAddUpPerResourceAndDay) {
    Assignment(12, "BO", 10, 4);  // 2.5 a day from 1 to 4 April
    Assignment(13, "AL", 3, 1);   // 2 April
    Assignment(14, "BO", 1, 1);   // 3 April, on top of the 2.5
    Assignment(15, "AL", 8, 0);   // no days: nothing
    Load();
    kpWorkload(1, 1);

    EXPECT_EQ(Text(kSheet, 1, 2), "Load");
    EXPECT_EQ(Text(kSheet, 3, 2), "BO");
    EXPECT_EQ(Text(kSheet, 4, 2), "AL");
    for (int column = 3; column <= 6; ++column) {
        EXPECT_DOUBLE_EQ(Number(kSheet, 3, column), column == 5 ? 3.5 : 2.5) << column;
    }
    EXPECT_DOUBLE_EQ(Number(kSheet, 4, 3), 0);
    EXPECT_DOUBLE_EQ(Number(kSheet, 4, 4), 3);
    EXPECT_EQ(Formula(kSheet, 5, 4), "=SUM(D3:D4)");
    EXPECT_DOUBLE_EQ(Number(kSheet, 5, 4), 5.5);
    EXPECT_EQ(Text(kSheet, 6, 3), "");

    ASSERT_EQ(Report(kSheet)->charts.size(), 1U);
    const sheethost::Chart& chart = *Report(kSheet)->charts[0];
    EXPECT_EQ(chart.sourceData, "=Workload1!$B$2:$F$4");
    ASSERT_EQ(chart.series.size(), 2U);
    EXPECT_EQ(chart.series[1].name, "AL");
    // Two rows below the totals.
    EXPECT_DOUBLE_EQ(Report(kSheet)->shapes.at(0)->top, sheethost::RowTop(*Report(kSheet), 7));
}

TEST_F(Workload, WeeksAndMonthsSumTheDaysOfTheirPeriods) {
    Assignment(12, "BO", 10, 4);
    // The periods run to the last planned end: tasks of the next groups take them to the fourth
    // day.
    for (int row = 13; row <= 15; ++row) Assignment(row, "AL", 1, 1);
    Load();
    kpWorkload(3, 0);
    EXPECT_DOUBLE_EQ(Number("Workload3", 3, 3), 10);
    kpWorkload(2, 0);
    EXPECT_DOUBLE_EQ(Number("Workload2", 3, 3), 10);
    EXPECT_DOUBLE_EQ(Number("Workload2", 4, 3), 3);
    EXPECT_DOUBLE_EQ(Number("Workload2", 5, 3), 13);
}

TEST_F(Workload, WithoutLoadColumnsTheTaskCarriesItsPlannedWork) {
    project.Setting("WSLoadCol", "");
    project.Setting("WSDurationCol", "");
    Assignment(12, "BO", 10, 4);
    Load();
    kpWorkload(1, 1);
    // 60 minutes over the one day of its planned dates.
    EXPECT_DOUBLE_EQ(Number(kSheet, 3, 3), 60);
}

TEST_F(Workload, ASecondRunReusesTheSheetAndReplacesTheChart) {
    Assignment(12, "BO", 10, 4);
    Load();
    kpWorkload(1, 1);
    kpWorkload(1, 1);
    EXPECT_EQ(SheetsNamed("Workload"), 1);
    EXPECT_EQ(Report(kSheet)->charts.size(), 1U);
    EXPECT_DOUBLE_EQ(Number(kSheet, 3, 3), 2.5);
}

}  // namespace
