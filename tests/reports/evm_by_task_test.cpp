// Earned value by task: which tasks get a row, the figures and formulas of a row, the forecast
// end date, the captions and title, and a second run on the same day.
#include <gtest/gtest.h>

#include "engine/exports.h"
#include "report_project.h"

namespace {

using reportstest::k0800;
using reportstest::k1700;
using reportstest::ProjectJson;

constexpr char kSheet[] = "EVM0_20240401";

class EvmByTask : public reportstest::ReportProject {
  protected:
    // A task of the first day from 08:00 to 17:00 under the summary of row 12, begun at 08:00;
    // at noon 240 minutes have elapsed, so the planned value is 240 and SPI = percent x budget /
    // 24000.
    void Running(int row, std::string_view name, int budget, int percent, int days) {
        project.Task(12, 1, "Group");
        project.Task(row, 2, name,
                     {{ProjectJson::kPv, budget},
                      {ProjectJson::kPlannedStart, k0800},
                      {ProjectJson::kPlannedEnd, k1700},
                      {ProjectJson::kActualStart, k0800},
                      {ProjectJson::kPercent, percent},
                      {"CA", days}});
    }
};

TEST_F(EvmByTask, TheForecastFollowsTheScheduleIndexWithinItsLimits) {
    Running(12, "Half speed", 1200, 10, 10);  // SPI 0.5: twice the 10 days
    Running(13, "Crawling", 960, 1, 10);      // SPI 0.04: 250 days, 25 times the plan
    Running(14, "On time", 2400, 10, 10);     // SPI 1: nothing changes
    Running(15, "No duration", 1200, 10, 0);  // SPI 0.5 but no duration to stretch
    Load();
    kpEVMByTask();

    // The 20th working day counted from 1 April, the start itself the first.
    EXPECT_EQ(Number(kSheet, 3, 14), values::DateSerial(2024, 4, 20));
    EXPECT_EQ(Text(kSheet, 4, 14), "?");
    EXPECT_EQ(Text(kSheet, 5, 14), "");
    EXPECT_EQ(Text(kSheet, 6, 14), "");
    EXPECT_DOUBLE_EQ(Number(kSheet, 3, 9), 0.5);
    EXPECT_DOUBLE_EQ(Number(kSheet, 4, 9), 0.04);
}

TEST_F(EvmByTask, TheForecastUsesCostWhenTheSettingAsksForIt) {
    project.Setting("WSForecastBySpiFlg", 0);
    // 120 earned for 60 spent: CPI 2 halves the 10 days.
    project.Task(12, 1, "Cheap",
                 {{ProjectJson::kPv, 1200},
                  {ProjectJson::kAc, 60},
                  {ProjectJson::kPlannedStart, k0800},
                  {ProjectJson::kPlannedEnd, k1700},
                  {ProjectJson::kActualStart, k0800},
                  {ProjectJson::kPercent, 10},
                  {"CA", 10}});
    Load();
    kpEVMByTask();
    EXPECT_EQ(Number(kSheet, 3, 14), values::DateSerial(2024, 4, 5));
}

TEST_F(EvmByTask, ARowHoldsTheFiguresAndTheFormulasThatFollowThem) {
    project.Task(12, 1, "Plan");
    project.Task(13, 2, "Design",
                 {{ProjectJson::kPv, 1200},
                  {ProjectJson::kAc, 300},
                  {ProjectJson::kPlannedStart, k0800},
                  {ProjectJson::kPlannedEnd, k1700},
                  {ProjectJson::kPercent, 10}});
    // Starts tomorrow: no planned or earned value yet, so no row.
    project.Task(14, 1, "Later",
                 {{ProjectJson::kPv, 60},
                  {ProjectJson::kPlannedStart, k0800},
                  {ProjectJson::kPlannedEnd, k1700}});
    Load();
    kpEVMByTask();

    // The summary holds no dates or budget of its own, so it has no value and no row either.
    EXPECT_EQ(Text(kSheet, 3, 2), "    1.1Design");
    EXPECT_EQ(Text(kSheet, 3, 3), "1200");
    EXPECT_EQ(Text(kSheet, 3, 4), "240");
    EXPECT_EQ(Text(kSheet, 3, 5), "120");
    EXPECT_EQ(Text(kSheet, 3, 6), "300");
    EXPECT_EQ(Formula(kSheet, 3, 7), "=E3-D3");
    EXPECT_EQ(Formula(kSheet, 3, 8), "=E3-F3");
    EXPECT_EQ(Formula(kSheet, 3, 9), "=IF(ISERROR(E3/D3),\"\",E3/D3)");
    EXPECT_EQ(Formula(kSheet, 3, 10), "=IF(ISERROR(E3/F3),\"\",E3/F3)");
    EXPECT_EQ(Formula(kSheet, 3, 11), "=IF(ISERROR(F3+(C3-E3)/J3),\"\",F3+(C3-E3)/J3)");
    EXPECT_EQ(Formula(kSheet, 3, 12), "=IF(ISERROR(K3-F3),\"\",K3-F3)");
    // EAC = 300 + (1200 - 120) / 0.4 and ETC = EAC - 300.
    EXPECT_DOUBLE_EQ(Number(kSheet, 3, 11), 3000);
    EXPECT_DOUBLE_EQ(Number(kSheet, 3, 12), 2700);
    EXPECT_EQ(Number(kSheet, 3, 13), values::DateSerial(2024, 4, 1));
    EXPECT_EQ(Text(kSheet, 4, 2), "");

    const sheethost::Style& variance = sheethost::EffectiveStyle(*Report(kSheet), 3, 7);
    ASSERT_EQ(variance.conditions.size(), 1U);
    EXPECT_EQ(variance.conditions[0].formula1, "=0.0");
    EXPECT_EQ(variance.conditions[0].fontColorIndex, 3);
    EXPECT_EQ(sheethost::EffectiveStyle(*Report(kSheet), 3, 9)->conditions.at(0).formula1, "=1.0");
    EXPECT_EQ(variance.numberFormat, "0.00_ ");
    EXPECT_EQ(sheethost::EffectiveStyle(*Report(kSheet), 2, 2)->interior.colorIndex, 35);
}

TEST_F(EvmByTask, CaptionsComeFromTheDictionaryAndAMissingOneIsEmpty) {
    Load();
    kpEVMByTask();
    EXPECT_EQ(Text(kSheet, 2, 3), "Budget");
    EXPECT_EQ(Text(kSheet, 2, 11), "EAC");
    EXPECT_EQ(Text(kSheet, 2, 12), "");  // "ETC" is not in the dictionary
    EXPECT_EQ(Text(kSheet, 2, 14), "Forecast");
    // Only the first placeholder takes the date.
    EXPECT_EQ(Text(kSheet, 1, 2), "EVM as of 20240401 (\\*)");
    EXPECT_TRUE(ProjectJson::Messages().empty());
}

TEST_F(EvmByTask, ASecondRunOnTheSameDayReusesTheSheet) {
    Running(13, "Task", 1200, 10, 10);
    Load();
    kpEVMByTask();
    const std::size_t sheets = project.Book().sheets.size();
    // A stale figure left below the table by hand goes with the second run.
    sheethost::CellAt(*sheethost::FindSheet(project.Book(), kSheet), 9, 3).value = 5.0;
    kpEVMByTask();
    EXPECT_EQ(project.Book().sheets.size(), sheets);
    EXPECT_EQ(SheetsNamed("EVM0_"), 1);
    EXPECT_EQ(Text(kSheet, 3, 3), "1200");
    EXPECT_EQ(Text(kSheet, 9, 3), "");
}

}  // namespace
