#include "settings/settings.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "calendar/calendar.h"
#include "engine/engine_state.h"
#include "support/engine_workbook.h"
#include "values/values.h"

namespace {

using sheethost::Sheet;
using values::DateSerial;
using values::TimeSerial;

// A settings sheet with every WS key in column C from row 3 down, the calendar unit below them, a
// task sheet whose table's last column (M) is bordered on rows 5..40, and a calendar of 1 April
// 08:00 to 3 April 17:00.
class LoadSettingsTest : public ::testing::Test {
  protected:
    void SetUp() override {
        Sheet& settings = workbook_.AddSheet("Settings", "wsSettings");
        settings_ = &settings;
        wbs_ = &workbook_.AddSheet("WBS", "wsWBS");
        calendar_ = &workbook_.AddSheet("Calendar", "wsCalendar");
        const std::pair<const char*, sheethost::Value> keys[] = {
            {"WSWBSSheetName", std::string("WBS")},
            {"WSFirstCol", std::string("B")},
            {"WSLastCol", std::string("M")},
            {"WSProjectStartDateCell", std::string("D2")},
            {"WSProjectEndDateCell", std::string("F2")},
            {"WSCalendarDateRow", 3.0},
            {"WSCalendarFirstCol", std::string("N")},
            {"WSFirstTaskRow", 5.0},
            {"WSWBSNoCol", std::string("B")},
            {"WSTaskNameCol", std::string("C")},
            {"WSTaskTypeCol", std::string("M")},
            {"WSResourceCol", std::string("N")},
            {"WSPVByTaskCol", std::string("P")},
            {"WSPlannedStartDateCol", std::string("Q")},
            {"WSPlannedEndDateCol", std::string("R")},
            {"WSACByTaskCol", std::string("S")},
            {"WSActualStartDateCol", std::string("T")},
            {"WSActualEndDateCol", std::string("U")},
            {"WSPercentCompleteCol", std::string("V")},
            {"WSPredecessorsCol", std::string("W")},
            {"WSWBSNoBegin", 1.0},
            {"WSWBSNoFormat", std::string(".")},
            {"WSTaskColorCompletedFlg", 1.0},
            {"WSTaskColorUseFlg", 1.0},
            {"WSFilterOptionShowDependence", 0.0},
            {"WSFilterOptionShowSummary", 1.0},
            {"WSAutoUpdateMode", 1.0},
            {"WSTaskLinkerColorFlg", 1.0},
            {"CSCalendarUnit", 1440.0},
        };
        int row = 3;
        for (const auto& [name, value] : keys) {
            workbook_.SetNamedCell(settings, name, row++, 3, value);
        }
        BorderRightEdge(5, 40);
        AddCalendarDay(3, DateSerial(2024, 4, 1), TimeSerial(8, 0, 0), TimeSerial(17, 0, 0));
        AddCalendarDay(4, DateSerial(2024, 4, 2), TimeSerial(8, 0, 0), TimeSerial(17, 0, 0));
        AddCalendarDay(5, DateSerial(2024, 4, 3), TimeSerial(8, 0, 0), TimeSerial(17, 0, 0));
    }

    // The settings sheet's cell of a key, to change it before Bind.
    void SetKey(const std::string& name, sheethost::Value value) {
        const sheethost::DefinedName* defined = sheethost::FindName(workbook_.book->names, name);
        ASSERT_NE(defined, nullptr) << name;
        const std::string row = defined->refersTo.substr(defined->refersTo.rfind('$') + 1);
        sheethost::CellAt(*settings_, std::stoi(row), 3).value = std::move(value);
    }

    void RemoveKey(std::string_view name) {
        std::erase_if(workbook_.book->names, [name](const sheethost::DefinedName& defined) {
            return defined.name == name;
        });
    }

    void BorderRightEdge(int firstRow, int lastRow) {
        for (int row = firstRow; row <= lastRow; ++row) {
            sheethost::CellAt(*wbs_, row, 13)
                .style.borders[sheethost::xl::kEdgeRight - sheethost::xl::kDiagonalDown]
                .lineStyle = sheethost::xl::kContinuous;
        }
    }

    void AddCalendarDay(int row, double date, double start, double end) {
        testsupport::EngineWorkbook::SetCell(*calendar_, row, 2, date);
        testsupport::EngineWorkbook::SetCell(*calendar_, row, 3, start);
        testsupport::EngineWorkbook::SetCell(*calendar_, row, 4, end);
    }

    // Binds the book and runs the loads in the refresh's order.
    bool Load() {
        workbook_.Bind();
        LoadCalendarSettings();
        return LoadSettings();
    }

    testsupport::EngineWorkbook workbook_;
    Sheet* settings_ = nullptr;
    Sheet* wbs_ = nullptr;
    Sheet* calendar_ = nullptr;
};

TEST_F(LoadSettingsTest, ReadsEveryKeyAndDerivesTheColumnsAndTheSpan) {
    ASSERT_TRUE(Load());
    const SettingsRecord& s = EngineSettings();
    EXPECT_EQ(s.wbsSheetName, "WBS");
    EXPECT_EQ(s.projectStartDateCell, "D2");
    EXPECT_EQ(s.projectEndDateCell, "F2");
    EXPECT_EQ(s.calendarDateRow, 3);
    EXPECT_EQ(s.firstTaskRow, 5);
    EXPECT_EQ(s.wbsNoBegin, 1);
    EXPECT_EQ(s.wbsNoFormat, ".");
    EXPECT_EQ(s.taskColorCompletedFlg, 1);
    EXPECT_EQ(s.filterOptionShowDependence, 0);
    EXPECT_EQ(s.filterOptionShowSummary, 1);
    EXPECT_EQ(s.autoUpdateMode, 1);
    EXPECT_EQ(s.taskLinkerColorFlg, 1);

    EXPECT_EQ(s.firstColNo, 2);
    EXPECT_EQ(s.lastColNo, 13);
    EXPECT_EQ(s.calendarFirstColNo, 14);
    EXPECT_EQ(s.taskNameColNo, 3);
    EXPECT_EQ(s.resourceColNo, 14);
    EXPECT_EQ(s.pvByTaskColNo, 16);
    EXPECT_EQ(s.acByTaskColNo, 19);
    EXPECT_EQ(s.predecessorsColNo, 23);
    EXPECT_EQ(s.resourceToPvCols, 2);
    EXPECT_EQ(s.calendarHeadRow, 2);
    EXPECT_EQ(s.calendarBodyRow, 4);

    EXPECT_EQ(s.projectStart, DateSerial(2024, 4, 1) + TimeSerial(8, 0, 0));
    EXPECT_EQ(s.projectEnd, DateSerial(2024, 4, 3) + TimeSerial(17, 0, 0));
    EXPECT_EQ(s.projectMinutes, 3420);
    EXPECT_EQ(s.calendarLastColNo, 14 + 2);
    EXPECT_EQ(s.calendarLastCol, "P");
    EXPECT_EQ(s.lastTableRow, 40);
    EXPECT_EQ(CalendarDayCount(), 3);
}

TEST_F(LoadSettingsTest, WholeNumbersFollowTheRuntimeRule) {
    const std::pair<sheethost::Value, std::int64_t> cases[] = {
        {12.0, 12},
        {12.9, 12},
        {std::string("&H10"), 16},
        {sheethost::Blank{}, 0},
        {std::string("  7 rows"), 7},
    };
    for (const auto& [cell, expected] : cases) {
        testsupport::EngineWorkbook workbook;
        Sheet& settings = workbook.AddSheet("Settings", "wsSettings");
        workbook.SetNamedCell(settings, "WSFirstTaskRow", 3, 3, cell);
        workbook.SetNamedCell(settings, "CSCalendarUnit", 4, 3, 60.0);
        // An unbordered table, so the border scan stops at once.
        workbook.SetNamedCell(settings, "WSLastCol", 5, 3, std::string("M"));
        workbook.AddSheet("WBS", "wsWBS");
        workbook.Bind();
        LoadCalendarSettings();
        ASSERT_TRUE(LoadSettings());
        EXPECT_EQ(EngineSettings().firstTaskRow, expected);
    }
}

TEST_F(LoadSettingsTest, TextsAreKeptAsTypedAndLettersAreNotFolded) {
    SetKey("WSTaskNameCol", std::string("c"));
    SetKey("WSWBSSheetName", std::string(" Wbs Sheet "));
    SetKey("WSWBSNoFormat", std::string(""));
    ASSERT_TRUE(Load());
    EXPECT_EQ(EngineSettings().taskNameCol, "c");
    EXPECT_EQ(EngineSettings().taskNameColNo, 35);
    EXPECT_EQ(EngineSettings().wbsSheetName, " Wbs Sheet ");
    EXPECT_EQ(EngineSettings().wbsNoFormat, "");
}

TEST_F(LoadSettingsTest, MissingNamesReadAsEmptyAndZero) {
    RemoveKey("WSFirstCol");
    RemoveKey("WSFirstTaskRow");
    ASSERT_TRUE(Load());
    EXPECT_EQ(EngineSettings().firstCol, "");
    EXPECT_EQ(EngineSettings().firstColNo, 0);
    EXPECT_EQ(EngineSettings().firstTaskRow, 0);
    EXPECT_EQ(EngineSettings().lastCol, "M");
}

TEST_F(LoadSettingsTest, ResetsTheRescheduleFlagAndKeepsTheFilter) {
    workbook_.Bind();
    EngineSettings().rescheduleFlag = 1;
    EngineSettings().filterRows = ",5,,7,";
    LoadCalendarSettings();
    ASSERT_TRUE(LoadSettings());
    EXPECT_EQ(EngineSettings().rescheduleFlag, 0);
    EXPECT_EQ(EngineSettings().filterRows, ",5,,7,");
}

TEST_F(LoadSettingsTest, AZeroUnitStopsTheLoadBeforeItChangesAnything) {
    SetKey("CSCalendarUnit", std::string("0"));
    workbook_.Bind();
    EngineSettings().firstTaskRow = 99;
    EngineSettings().projectMinutes = 123;
    LoadCalendarSettings();
    EXPECT_FALSE(LoadSettings());
    EXPECT_EQ(EngineSettings().firstTaskRow, 99);
    EXPECT_EQ(EngineSettings().projectMinutes, 123);
    EXPECT_EQ(CalendarDayCount(), 0);
    ASSERT_EQ(workbook_.messages().size(), 1u);
    EXPECT_NE(workbook_.messages()[0].find("CSCalendarUnit"), std::string::npos);
    EXPECT_EQ(Engine().lastRuntimeError, kRuntimeErrorDivisionByZero);
}

TEST_F(LoadSettingsTest, AnEmptyCalendarKeepsTheEarlierSpan) {
    calendar_->cells.clear();
    workbook_.Bind();
    EngineSettings().projectStart = 45000.25;
    EngineSettings().projectEnd = 45001.75;
    LoadCalendarSettings();
    ASSERT_TRUE(LoadSettings());
    EXPECT_EQ(EngineSettings().projectStart, 45000.25);
    EXPECT_EQ(EngineSettings().projectEnd, 45001.75);
    EXPECT_EQ(EngineSettings().projectMinutes, 2160);
    EXPECT_EQ(EngineSettings().calendarLastColNo, 14 + 1);
}

TEST_F(LoadSettingsTest, LastTableRowFollowsTheRightBorder) {
    ASSERT_TRUE(Load());
    EXPECT_EQ(LastTableRow(), 40);
    // A border on another edge does not extend the table.
    sheethost::CellAt(*wbs_, 41, 13)
        .style.borders[sheethost::xl::kEdgeBottom - sheethost::xl::kDiagonalDown]
        .lineStyle = sheethost::xl::kContinuous;
    EXPECT_EQ(LastTableRow(), 40);
    EngineSettings().firstTaskRow = 41;
    EXPECT_EQ(LastTableRow(), 40);  // no border on the first row: firstTaskRow - 1
}

}  // namespace
