// Earned value of the project by period: the period labels, the spreading of each task over the
// periods, the period and cumulative tables, the blanked future, the charts, and resource rates.
#include <gtest/gtest.h>

#include <string>
#include <variant>
#include <vector>

#include "engine/exports.h"
#include "report_project.h"
#include "reports/periods.h"
#include "reports/report_sheet.h"

namespace {

using reportstest::k0800;
using reportstest::k1200;
using reportstest::k1700;
using reportstest::ProjectJson;
using Labels = std::vector<std::string>;

constexpr char kSheet[] = "EVM1_20240401";

TEST(PeriodLabels, EachKindStartsAtThePeriodHoldingTheStart) {
    const double wednesday = values::DateSerial(2024, 4, 3) + k0800;
    EXPECT_EQ(PeriodLabels(2, 0, wednesday, values::DateSerial(2024, 4, 15) + k1700),
              (Labels{"2024/04/01", "2024/04/08", "2024/04/15"}));
    EXPECT_EQ(PeriodLabels(3, 0, values::DateSerial(2024, 1, 31), values::DateSerial(2024, 3, 10)),
              (Labels{"2024/01", "2024/02", "2024/03"}));
    EXPECT_EQ(PeriodLabels(1, 2, wednesday, values::DateSerial(2024, 4, 8)),
              (Labels{"2024/04/03", "2024/04/05", "2024/04/07"}));
    // A step that would never move on counts as one day.
    EXPECT_EQ(PeriodLabels(1, 0, wednesday, values::DateSerial(2024, 4, 4) + k1700),
              (Labels{"2024/04/03", "2024/04/04"}));
    EXPECT_TRUE(PeriodLabels(4, 1, wednesday, wednesday + 30).empty());
}

TEST(PeriodLabels, LabelsReadBackAsTheFirstDayOfTheirPeriod) {
    EXPECT_EQ(DateFromText("2024/03"), values::DateSerial(2024, 3, 1));
    EXPECT_EQ(DateFromText("2024/03/15"), values::DateSerial(2024, 3, 15));
    EXPECT_EQ(DateFromText("20240315"), values::DateSerial(2024, 3, 15));
    // The last label's period runs to the day after the end.
    const Labels labels{"2024/01", "2024/02"};
    const double end = values::DateSerial(2024, 2, 10);
    EXPECT_EQ(PeriodAt(labels, 0, 45300.5, end).start, 45300.5);
    EXPECT_EQ(PeriodAt(labels, 0, 45300.5, end).limit, values::DateSerial(2024, 2, 1));
    EXPECT_EQ(PeriodAt(labels, 1, 45300.5, end).limit, end + 1);
}

class EvmByProject : public reportstest::ReportProject {
  protected:
    EvmByProject() {
        // Half done today and 200 spent; tomorrow's task has not begun.
        project.Task(12, 1, "Today",
                     {{ProjectJson::kResource, "AL"},
                      {ProjectJson::kPv, 540},
                      {ProjectJson::kAc, 200},
                      {ProjectJson::kPlannedStart, k0800},
                      {ProjectJson::kPlannedEnd, k1700},
                      {ProjectJson::kActualStart, k0800},
                      {ProjectJson::kPercent, 50},
                      {"CA", 1}});
        project.Task(13, 1, "Tomorrow",
                     {{ProjectJson::kResource, "BO"},
                      {ProjectJson::kPv, 240},
                      {ProjectJson::kPlannedStart, k0800},
                      {ProjectJson::kPlannedEnd, k1200},
                      {"CA", 1}});
    }

    const sheethost::Sheet& Sheet() const { return *Report(kSheet); }
};

TEST_F(EvmByProject, EachPeriodTakesItsShareAndTheFutureStaysBlankButForPlannedValue) {
    Load();
    kpEVMByProject(1, 1);

    EXPECT_EQ(Text(kSheet, 2, 3), "Planned");
    EXPECT_EQ(Text(kSheet, 3, 2), "2024/04/01");
    EXPECT_TRUE(sheethost::FindCell(Sheet(), 3, 2)->quotePrefix);
    EXPECT_EQ(Text(kSheet, 3, 3), "540");
    EXPECT_EQ(Text(kSheet, 3, 4), "270");
    EXPECT_EQ(Text(kSheet, 3, 5), "200");
    EXPECT_DOUBLE_EQ(Number(kSheet, 3, 8), 0.5);
    // Today's task lies entirely before tomorrow's period; tomorrow is in the future.
    EXPECT_EQ(Text(kSheet, 4, 3), "240");
    for (int column = 4; column <= 9; ++column) {
        EXPECT_EQ(Text(kSheet, 4, column), "") << column;
        EXPECT_EQ(Formula(kSheet, 4, column), "") << column;
    }
    EXPECT_EQ(Formula(kSheet, 5, 3), "=SUM(C3:C4)");
    EXPECT_EQ(Formula(kSheet, 5, 9), "=SUM(I3:I4)");
    EXPECT_DOUBLE_EQ(Number(kSheet, 5, 3), 780);

    // The cumulative copy from row 7: pasted formulas follow, the sums run on.
    EXPECT_EQ(Text(kSheet, 7, 4), "Earned");
    EXPECT_EQ(Formula(kSheet, 8, 6), "=D8-C8");
    EXPECT_EQ(Formula(kSheet, 9, 3), "=C4+C8");
    EXPECT_DOUBLE_EQ(Number(kSheet, 9, 3), 780);
    EXPECT_EQ(Formula(kSheet, 9, 4), "");
    EXPECT_EQ(Text(kSheet, 9, 8), "");
    EXPECT_EQ(sheethost::EffectiveStyle(Sheet(), 3, 6)->conditions.at(0).formula1, "=0.0");
}

TEST_F(EvmByProject, TwoLineChartsTakeTheirSeriesFromTheCumulativeTable) {
    Load();
    kpEVMByProject(1, 1);
    ASSERT_EQ(Sheet().charts.size(), 2U);
    const sheethost::Chart& values = *Sheet().charts[0];
    EXPECT_EQ(values.chartType, 65);
    EXPECT_EQ(values.title, "EVM as of 20240401 (\\*)");
    ASSERT_EQ(values.series.size(), 3U);
    EXPECT_EQ(values.series[0].name, "Planned");
    EXPECT_EQ(values.series[2].values, "=EVM1_20240401!$E$8:$E$9");
    EXPECT_EQ(values.series[0].xValues, "=EVM1_20240401!$B$8:$B$9");
    const sheethost::Chart& indexes = *Sheet().charts[1];
    ASSERT_EQ(indexes.series.size(), 2U);
    EXPECT_EQ(indexes.series[0].name, "SPI");
    EXPECT_EQ(indexes.series[1].values, "=EVM1_20240401!$I$8:$I$9");
    // Side by side, two rows below the cumulative table.
    const auto& frames = Sheet().shapes;
    ASSERT_EQ(frames.size(), 2U);
    EXPECT_DOUBLE_EQ(frames[0]->top, sheethost::RowTop(Sheet(), 11));
    EXPECT_DOUBLE_EQ(frames[1]->top, frames[0]->top);
    EXPECT_DOUBLE_EQ(frames[1]->left, frames[0]->left + frames[0]->width);
}

TEST_F(EvmByProject, ASecondRunReplacesTheTablesAndTheCharts) {
    Load();
    kpEVMByProject(1, 1);
    kpEVMByProject(1, 1);
    EXPECT_EQ(SheetsNamed("EVM1_"), 1);
    EXPECT_EQ(Sheet().charts.size(), 2U);
    EXPECT_EQ(Sheet().shapes.size(), 2U);
    EXPECT_EQ(Text(kSheet, 3, 3), "540");
}

TEST_F(EvmByProject, ResourceRatesMultiplyTheFiguresWhenSwitchedOn) {
    project.AddSetting("WSResourceRateFlg", "C36", 1);
    project.AddSetting("WSResourceRateCol", "C37", "D");
    project.Cells("Resources")["D4"] = 2;  // AL
    Load();
    kpEVMByProject(1, 1);
    EXPECT_EQ(Text(kSheet, 3, 3), "1080");
    EXPECT_EQ(Text(kSheet, 3, 5), "400");
    EXPECT_EQ(Text(kSheet, 4, 3), "240");  // BO has no rate
}

TEST_F(EvmByProject, ATaskOfNoDurationShowsItsUndefinedShareAsAnError) {
    // No days of no duration is no number; each period's planned sum holds the error value, as
    // the spreadsheet holds a number it cannot show.
    project.Cells("WBS")["CA13"] = 0;
    Load();
    kpEVMByProject(1, 1);
    for (const int row : {3, 4}) {
        EXPECT_EQ(std::get<sheethost::ErrorValue>(sheethost::FindCell(Sheet(), row, 3)->value),
                  sheethost::ErrorValue::kNum);
    }
    EXPECT_EQ(Text(kSheet, 3, 4), "270");
}

TEST_F(EvmByProject, WithoutADurationColumnTheDaysComeFromThePlannedDates) {
    project.Setting("WSDurationCol", "");
    Load();
    kpEVMByProject(3, 0);
    EXPECT_EQ(Text("EVM3_20240401", 3, 2), "2024/04");
    EXPECT_EQ(Text("EVM3_20240401", 3, 3), "780");
}

}  // namespace
