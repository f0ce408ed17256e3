#include "settings/settings.h"

#include <gtest/gtest.h>

#include <string>

#include "calendar/calendar.h"
#include "core/engine_state.h"
#include "support/engine_workbook.h"
#include "values/values.h"

namespace {

using sheethost::Sheet;
using sheethost::Value;
using values::TimeSerial;

// Every WS key in column C of the settings sheet (key i on row i + 3), a task table whose last
// column M is right-bordered on rows 5..40, and calendar days 1 April 08:00 to 3 April 17:00.
class LoadSettingsTest : public ::testing::Test {
  protected:
    void SetUp() override {
        settings_ = &workbook_.AddSheet("Settings", "wsSettings");
        wbs_ = &workbook_.AddSheet("WBS", "wsWBS");
        Sheet& calendar = workbook_.AddSheet("Calendar", "wsCalendar");
        const char* const texts[][2] = {
            {"WSWBSSheetName", " Wbs "},  {"WSFirstCol", "B"},
            {"WSLastCol", "M"},           {"WSProjectStartDateCell", "D2"},
            {"WSCalendarFirstCol", "N"},  {"WSWBSNoCol", "B"},
            {"WSTaskNameCol", "c"},       {"WSResourceCol", "N"},
            {"WSPVByTaskCol", "P"},       {"WSACByTaskCol", "S"},
            {"WSPredecessorsCol", "W"},   {"WSWBSNoFormat", "."},
            {"WSFirstTaskRow", "5"},      {"WSCalendarDateRow", "3"},
            {"WSTaskColorUseFlg", "&H1"}, {"WSAutoUpdateMode", "1"},
        };
        for (const auto& [name, text] : texts) SetKey(name, std::string(text));
        SetKey("CSCalendarUnit", 1440.0);
        BorderRightEdge(5, 40);
        for (int day = 0; day < 3; ++day) {
            testsupport::EngineWorkbook::SetCell(calendar, 3 + day, 2, 45383.0 + day);
            testsupport::EngineWorkbook::SetCell(calendar, 3 + day, 3, TimeSerial(8, 0, 0));
            testsupport::EngineWorkbook::SetCell(calendar, 3 + day, 4, TimeSerial(17, 0, 0));
        }
    }

    // Sets the key's cell, naming it first when it has no name yet.
    void SetKey(const std::string& name, Value value) {
        if (const auto* defined = sheethost::FindName(workbook_.book->names, name)) {
            const int row = std::stoi(defined->refersTo.substr(defined->refersTo.rfind('$') + 1));
            sheethost::CellAt(*settings_, row, 3).value = std::move(value);
        } else {
            workbook_.SetNamedCell(*settings_, name, nextKeyRow_++, 3, std::move(value));
        }
    }

    void BorderRightEdge(int firstRow, int lastRow) {
        for (int row = firstRow; row <= lastRow; ++row) {
            sheethost::CellAt(*wbs_, row, 13)
                .style.Edit()
                .borders[sheethost::xl::kEdgeRight - sheethost::xl::kDiagonalDown]
                .lineStyle = sheethost::xl::kContinuous;
        }
    }

    bool Load() {
        workbook_.Bind();
        LoadCalendarSettings();
        return LoadSettings();
    }

    testsupport::EngineWorkbook workbook_;
    Sheet* settings_ = nullptr;
    Sheet* wbs_ = nullptr;
    int nextKeyRow_ = 3;
};

TEST_F(LoadSettingsTest, ReadsTheKeysAndDerivesTheColumnsAndTheSpan) {
    ASSERT_TRUE(Load());
    const SettingsRecord& s = EngineSettings();
    EXPECT_EQ(s.wbsSheetName, " Wbs ");  // texts are kept as typed
    EXPECT_EQ(s.taskNameCol, "c");
    EXPECT_EQ(s.taskNameColNo, 35);       // letters are not folded
    EXPECT_EQ(s.projectEndDateCell, "");  // no such name
    EXPECT_EQ(s.taskTypeColNo, 0);
    EXPECT_EQ(s.firstTaskRow, 5);
    EXPECT_EQ(s.taskColorUseFlg, 1);
    EXPECT_EQ(s.autoUpdateMode, 1);
    EXPECT_EQ(s.lastColNo, 13);
    EXPECT_EQ(s.acByTaskColNo, 19);
    EXPECT_EQ(s.predecessorsColNo, 23);
    EXPECT_EQ(s.resourceToPvCols, 2);
    EXPECT_EQ(s.calendarHeadRow, 2);
    EXPECT_EQ(s.calendarBodyRow, 4);
    EXPECT_EQ(s.projectStart, 45383 + TimeSerial(8, 0, 0));
    EXPECT_EQ(s.projectEnd, 45385 + TimeSerial(17, 0, 0));
    EXPECT_EQ(s.projectMinutes, 3420);
    EXPECT_EQ(s.calendarLastColNo, 14 + 2);
    EXPECT_EQ(s.calendarLastCol, "P");
    EXPECT_EQ(s.lastTableRow, 40);
}

TEST_F(LoadSettingsTest, WholeNumbersFollowTheRuntimeRuleAndTheFlagIsReset) {
    workbook_.Bind();
    EngineSettings().filterRows = ",5,,7,";
    LoadCalendarSettings();
    const std::pair<Value, std::int64_t> cases[] = {
        {12.0, 12},
        {12.9, 12},
        {std::string("&H10"), 16},
        {sheethost::Blank{}, 0},
    };
    for (const auto& [cell, expected] : cases) {
        SetKey("WSFirstTaskRow", cell);
        EngineSettings().rescheduleFlag = 1;
        ASSERT_TRUE(LoadSettings());
        EXPECT_EQ(EngineSettings().firstTaskRow, expected);
        EXPECT_EQ(EngineSettings().rescheduleFlag, 0);
    }
    EXPECT_EQ(EngineSettings().filterRows, ",5,,7,");  // never loaded
}

TEST_F(LoadSettingsTest, AZeroUnitStopsTheLoadBeforeItChangesAnything) {
    SetKey("CSCalendarUnit", std::string("0"));
    workbook_.Bind();
    EngineSettings().firstTaskRow = 99;
    LoadCalendarSettings();
    EXPECT_FALSE(LoadSettings());
    EXPECT_EQ(EngineSettings().firstTaskRow, 99);
    EXPECT_EQ(CalendarDayCount(), 0);
    ASSERT_EQ(workbook_.messages().size(), 1u);
    EXPECT_NE(workbook_.messages()[0].find("CSCalendarUnit"), std::string::npos);
    EXPECT_EQ(Engine().lastRuntimeError, kRuntimeErrorDivisionByZero);
}

TEST_F(LoadSettingsTest, AnyUnitBelowOneMinuteIsRefusedNamingTheCellAndWhatItHolds) {
    const std::pair<Value, const char*> cases[] = {
        {-60.0, "\"-60\""},
        {0.5, "\"0.5\""},
        {std::string("a day"), "\"a day\""},
        {sheethost::Blank{}, "empty"},
    };
    workbook_.Bind();
    for (const auto& [cell, shown] : cases) {
        SetKey("CSCalendarUnit", cell);
        LoadCalendarSettings();
        const std::size_t before = workbook_.messages().size();
        EXPECT_FALSE(LoadSettings());
        ASSERT_EQ(workbook_.messages().size(), before + 1);
        const std::string& message = workbook_.messages().back();
        EXPECT_NE(message.find(shown), std::string::npos) << message;
        EXPECT_NE(message.find("$C$"), std::string::npos) << message;
        EXPECT_NE(message.find("\"Settings\""), std::string::npos) << message;
    }
}

TEST_F(LoadSettingsTest, AMissingUnitNameIsNamedAsTheCause) {
    std::erase_if(workbook_.book->names,
                  [](const sheethost::DefinedName& name) { return name.name == "CSCalendarUnit"; });
    workbook_.Bind();
    LoadCalendarSettings();
    EXPECT_FALSE(LoadSettings());
    EXPECT_NE(workbook_.messages().back().find("has no cell named CSCalendarUnit"),
              std::string::npos)
        << workbook_.messages().back();
}

TEST_F(LoadSettingsTest, AMistypedCodeNameIsNamedAsTheCause) {
    settings_->codeName = "wsSetting";  // hides the sheet from the engine
    workbook_.Bind();
    LoadCalendarSettings();
    EXPECT_FALSE(LoadSettings());
    EXPECT_NE(workbook_.messages().back().find("code name wsSettings"), std::string::npos)
        << workbook_.messages().back();
}

TEST_F(LoadSettingsTest, AMissingCalendarKeepsTheEarlierSpan) {
    workbook_.book->sheets.pop_back();  // the calendar sheet
    workbook_.Bind();
    EngineSettings().projectStart = 45000.25;
    EngineSettings().projectEnd = 45001.75;
    LoadCalendarSettings();
    ASSERT_TRUE(LoadSettings());
    EXPECT_EQ(EngineSettings().projectStart, 45000.25);
    EXPECT_EQ(EngineSettings().projectMinutes, 2160);
    EXPECT_EQ(EngineSettings().calendarLastColNo, 14 + 1);
}

TEST_F(LoadSettingsTest, LastTableRowFollowsTheRightBorderOnly) {
    sheethost::CellAt(*wbs_, 41, 13)
        .style.Edit()
        .borders[sheethost::xl::kEdgeBottom - sheethost::xl::kDiagonalDown]
        .lineStyle = sheethost::xl::kContinuous;
    ASSERT_TRUE(Load());
    EXPECT_EQ(LastTableRow(), 40);
    EngineSettings().firstTaskRow = 41;
    EXPECT_EQ(LastTableRow(), 40);  // no border on the first row: firstTaskRow - 1
}

TEST_F(LoadSettingsTest, LastTableRowReadInBlocksFindsTheSameRowWhateverTheLines) {
    // Read in blocks, the right edge of a long table with lines of different styles must still
    // end at the first row without one, wherever it falls.
    constexpr int kDashed = -4115;
    ASSERT_TRUE(Load());
    for (const int end : {40, 41, 63, 64, 1000, 1037}) {
        BorderRightEdge(5, end);
        for (int row = 5; row <= end; row += 7) {
            sheethost::CellAt(*wbs_, row, 13)
                .style.Edit()
                .borders[sheethost::xl::kEdgeRight - sheethost::xl::kDiagonalDown]
                .lineStyle = kDashed;
        }
        EXPECT_EQ(LastTableRow(), end);
    }
}

}  // namespace
