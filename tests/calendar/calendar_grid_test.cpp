// The calendar grid drawn on the sample project (three calendar days: Friday 5 April 2024 08:00
// to 18:00, Saturday 6 April 07:00 to 20:00, Monday 8 April 08:00 to 18:00; the chart starts in
// column W, its header rows are 2 to 4 and its body rows 5 to 44).
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "calendar/calendar.h"
#include "core/clock.h"
#include "core/engine_state.h"
#include "engine/exports.h"
#include "sheethost/model.h"
#include "support/project_json.h"
#include "values/values.h"
#include "workbook/workbook.h"

namespace {

constexpr int kFirstChartColumn = 23;  // W
constexpr std::int32_t kNowFill = 0x99E6FF;

nlohmann::json Sample() {
    const auto path = std::filesystem::path(__FILE__).parent_path().parent_path().parent_path() /
                      "examples" / "sample.json";
    std::ifstream file(path, std::ios::binary);
    return nlohmann::json::parse(file);
}

class CalendarGridTest : public ::testing::Test {
  protected:
    CalendarGridTest() : project_(Sample()) {}

    void Draw(std::int32_t unit, const char* now = "2024/04/15 12:00") {
        PinNow(*values::ParseDateText(now));
        kpDrawCalendar(unit);
    }

    // The chart column that holds the time `minutes` after the project start.
    static int ColumnAt(int minutes, int unit) { return kFirstChartColumn + minutes / unit; }
    std::string Label(int row, int column) const {
        return project_.Text(ColumnLetters(column) + std::to_string(row));
    }
    bool Hidden(int column) const {
        const auto& columns = project_.Host("WBS").columns;
        const auto found = columns.find(column);
        return found != columns.end() && found->second.hidden;
    }
    const sheethost::Style& StyleOf(int row, int column) const {
        return project_.StyleAt(ColumnLetters(column) + std::to_string(row));
    }
    // The chart columns whose cells on `row` hold a text (the hour grid ends at DA).
    std::vector<int> LabelledColumns(int row, int last = 105) const {
        std::vector<int> columns;
        for (int column = kFirstChartColumn; column <= last; ++column) {
            if (!Label(row, column).empty()) columns.push_back(column);
        }
        return columns;
    }

    testsupport::ProjectJson project_;
};

constexpr int kDateRow = 2;
constexpr int kTimeRow = 3;
constexpr int kWeekdayRow = 4;
constexpr int kLastBodyRow = 44;
// Minutes from the project start (Friday 08:00) to the start of Saturday's and Monday's work.
constexpr int kSaturday = 23 * 60;
constexpr int kMonday = 72 * 60;

TEST_F(CalendarGridTest, HourColumnsShowWorkingHoursAndHideNightsAndTheDayOff) {
    project_.Bind();
    Draw(60);
    // Every step of one hour is a column of its own, hidden when it lies outside its day's work.
    for (int hour = 0; hour <= 82; ++hour) {
        const int column = ColumnAt(hour * 60, 60);
        const int clock = (8 + hour) % 24;
        const int day = (8 + hour) / 24;  // 0 Friday, 1 Saturday, 2 Sunday, 3 Monday
        const bool working = (day == 0 && clock < 18) || (day == 1 && clock >= 7 && clock < 20) ||
                             (day == 3 && clock >= 8 && clock < 18);
        EXPECT_EQ(Hidden(column), !working) << "hour " << hour;
        EXPECT_EQ(Label(kTimeRow, column), working ? std::to_string(clock) : "") << hour;
    }
    // The date and weekday stand over the first column of each day only.
    const std::vector<int> firstColumns = {ColumnAt(0, 60), ColumnAt(kSaturday, 60),
                                           ColumnAt(kMonday, 60)};
    EXPECT_EQ(LabelledColumns(kDateRow), firstColumns);
    EXPECT_EQ(LabelledColumns(kWeekdayRow), firstColumns);
    EXPECT_EQ(Label(kDateRow, firstColumns[0]), "2024/04/05");
    EXPECT_EQ(Label(kDateRow, firstColumns[1]), "2024/04/06");
    EXPECT_EQ(Label(kDateRow, firstColumns[2]), "2024/04/08");
    EXPECT_EQ(Label(kWeekdayRow, firstColumns[0]), "Fri");
    EXPECT_EQ(Label(kWeekdayRow, firstColumns[1]), "Sat");
    EXPECT_EQ(Label(kWeekdayRow, firstColumns[2]), "Mon");
    // Labels are text, so that no program turns a date or an hour into a number.
    EXPECT_TRUE(project_.HostCell("W2")->quotePrefix);
}

TEST_F(CalendarGridTest, DaysBeginWithAHeavyLineAndHoursWithALightOne) {
    project_.Bind();
    Draw(60);
    const int left = 2;  // index of the left edge in a cell's borders
    for (int row : {kDateRow, kWeekdayRow, 20, kLastBodyRow}) {
        EXPECT_EQ(StyleOf(row, ColumnAt(kSaturday, 60)).borders[left].weight, -4138) << row;
        EXPECT_EQ(StyleOf(row, ColumnAt(60, 60)).borders[left].weight, 2) << row;
        EXPECT_EQ(StyleOf(row, ColumnAt(60, 60)).borders[left].lineStyle, 1) << row;
    }
    // Below the body nothing is drawn.
    EXPECT_EQ(StyleOf(kLastBodyRow + 1, ColumnAt(60, 60)).borders[left].lineStyle, -4142);
    // Each task row is ruled.
    EXPECT_EQ(StyleOf(20, ColumnAt(60, 60)).borders[4].lineStyle, 1);
}

TEST_F(CalendarGridTest, QuarterHoursLabelOnlyTheHoursAndShareTheirRoom) {
    project_.Bind();
    Draw(15);
    EXPECT_EQ(Label(kTimeRow, ColumnAt(0, 15)), "8");
    EXPECT_EQ(Label(kTimeRow, ColumnAt(15, 15)), "");
    EXPECT_EQ(Label(kTimeRow, ColumnAt(45, 15)), "");
    EXPECT_EQ(Label(kTimeRow, ColumnAt(60, 15)), "9");
    EXPECT_FALSE(Hidden(ColumnAt(10 * 60 - 15, 15)));   // 17:45
    EXPECT_TRUE(Hidden(ColumnAt(10 * 60, 15)));         // 18:00
    EXPECT_TRUE(Hidden(ColumnAt(kSaturday - 15, 15)));  // 06:45 on Saturday
    EXPECT_EQ(Label(kDateRow, ColumnAt(kSaturday, 15)), "2024/04/06");
    EXPECT_EQ(Label(kTimeRow, ColumnAt(kSaturday, 15)), "7");
    // The last step is Monday 18:00, the project's end.
    EXPECT_TRUE(Hidden(ColumnAt(82 * 60, 15)));
    EXPECT_EQ(project_.Host("WBS").columns.at(ColumnAt(0, 15)).width, 1.0);
    // Only the hours are ruled inside a day.
    EXPECT_EQ(StyleOf(20, ColumnAt(15, 15)).borders[2].lineStyle, -4142);
    EXPECT_EQ(StyleOf(20, ColumnAt(60, 15)).borders[2].lineStyle, 1);
}

TEST_F(CalendarGridTest, HalfHoursLabelTheFirstColumnOfEachHour) {
    project_.Bind();
    Draw(30);
    EXPECT_EQ(Label(kTimeRow, ColumnAt(0, 30)), "8");
    EXPECT_EQ(Label(kTimeRow, ColumnAt(30, 30)), "");
    EXPECT_EQ(Label(kTimeRow, ColumnAt(60, 30)), "9");
    EXPECT_EQ(LabelledColumns(kDateRow, ColumnAt(82 * 60, 30)).size(), 3u);
    EXPECT_TRUE(Hidden(ColumnAt(10 * 60, 30)));
}

TEST_F(CalendarGridTest, DayColumnsShowEveryDateAndAfterAnHourGridLeaveNothingBehind) {
    project_.Bind();
    Draw(60);
    Draw(1440);
    // 08:00 of each day: Friday, Saturday, Sunday (no calendar day, hidden) and Monday.
    EXPECT_EQ(Label(kDateRow, kFirstChartColumn), "2024/04/05");
    EXPECT_EQ(Label(kDateRow, kFirstChartColumn + 1), "2024/04/06");
    EXPECT_TRUE(Hidden(kFirstChartColumn + 2));
    EXPECT_EQ(Label(kDateRow, kFirstChartColumn + 3), "2024/04/08");
    EXPECT_EQ(Label(kWeekdayRow, kFirstChartColumn + 3), "Mon");
    EXPECT_EQ(Label(kTimeRow, kFirstChartColumn + 1), "07:00-20:00");
    EXPECT_EQ(project_.Host("WBS").columns.at(kFirstChartColumn).width, 11);
    // The hour grid reached column DA: its labels, lines and hidden columns are gone.
    for (int column = kFirstChartColumn + 4; column <= ColumnNumber("DA"); ++column) {
        EXPECT_FALSE(Hidden(column)) << column;
        EXPECT_EQ(Label(kTimeRow, column), "") << column;
        EXPECT_EQ(StyleOf(20, column).borders[2].lineStyle, -4142) << column;
    }
}

TEST_F(CalendarGridTest, TheColumnOfNowIsMarkedOnlyInsideTheProject) {
    project_.Bind();
    Draw(60, "2024/04/06 11:20");
    const int now = ColumnAt(kSaturday + 4 * 60, 60);  // 11:00 on Saturday
    for (int row = 5; row <= kLastBodyRow; ++row) {
        EXPECT_EQ(StyleOf(row, now).interior.color, kNowFill) << row;
    }
    EXPECT_EQ(StyleOf(kTimeRow, now).font.colorIndex, 3);
    EXPECT_NE(StyleOf(20, now - 1).interior.color, kNowFill);

    Draw(60, "2024/04/15 12:00");  // after the project: nothing marked
    for (int column = kFirstChartColumn; column <= ColumnNumber("DA"); ++column) {
        EXPECT_NE(StyleOf(20, column).interior.color, kNowFill) << column;
    }
}

TEST_F(CalendarGridTest, WritesTheProjectSpanAndLeavesTheTaskTableAlone) {
    project_.Bind();
    const std::string tableBefore = project_.Text("V4") + project_.Text("C5");
    Draw(60);
    EXPECT_EQ(project_.Number("N1"), *values::ParseDateText("2024/04/05 08:00"));
    EXPECT_EQ(project_.Number("V1"), *values::ParseDateText("2024/04/08 18:00"));
    EXPECT_EQ(project_.Text("V4") + project_.Text("C5"), tableBefore);
    EXPECT_EQ(StyleOf(kWeekdayRow, ColumnNumber("V")).interior.colorIndex, 35);
}

TEST_F(CalendarGridTest, KeepsWhatTheWorkbookHoldsBesideAndUnderTheChart) {
    project_.Cells("WBS")["X20"] = "a note in the chart";
    project_.Bind();
    Draw(60);
    Draw(1440);
    // The sample's duration and load columns stand right of the hour grid.
    EXPECT_EQ(project_.Text("DC4"), "Days");
    EXPECT_EQ(project_.Text("DD7"), "1.5");
    EXPECT_EQ(project_.Text("X20"), "a note in the chart");
    EXPECT_EQ(project_.Text("V4"), "Predecessors");
}

TEST_F(CalendarGridTest, WritesTheUnitAndLaysTheBarsOverTheNewGrid) {
    project_.Bind();
    Draw(30);
    EXPECT_EQ(EngineCalendarSettings().CSCalendarUnit, 30);  // written, then read back
    // Task row 7 is planned from Friday 08:00: its bar starts at the first chart column, whose
    // width the half-hour grid set.
    const auto bars = project_.ShapesNamed("GanntBar7");
    ASSERT_FALSE(bars.empty());
    EXPECT_NEAR(bars.front()->left, project_.CellBox("W7").left, 0.01);
    Draw(0);  // no unit: the one in force is kept
    EXPECT_EQ(EngineCalendarSettings().CSCalendarUnit, 30);
}

}  // namespace
