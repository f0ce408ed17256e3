#include <gtest/gtest.h>

#include <string>

#include "calendar/calendar.h"
#include "core/engine_state.h"
#include "support/engine_workbook.h"
#include "values/values.h"

namespace {

using sheethost::Sheet;
using testsupport::EngineWorkbook;
using values::TimeSerial;

TEST(LoadCalendarSettings, ReadsTextsAndWholeNumbersAndDerivesTheGridRows) {
    EngineWorkbook workbook;
    Sheet& settings = workbook.AddSheet("Settings", "wsSettings");
    const std::pair<const char*, sheethost::Value> keys[] = {
        {"CSFirstdayCol", std::string("N")},      {"CSLastdayCol", std::string("ab")},
        {"CSBodyRange", std::string("N5:AB40")},  {"CSWeekdayRow", 3.0},
        {"CSLastTaskRow", std::string("40.7")},   {"CSCalendarUnit", std::string("&H3C")},
        {"CSUseCalendarDlg", sheethost::Blank{}},
    };
    int row = 2;
    for (const auto& [name, value] : keys) workbook.SetNamedCell(settings, name, row++, 2, value);
    workbook.Bind();

    LoadCalendarSettings();
    const CalendarSettings& cs = EngineCalendarSettings();
    EXPECT_EQ(cs.CSFirstdayCol, "N");
    EXPECT_EQ(cs.CSLastdayCol, "ab");
    EXPECT_EQ(cs.CSBodyRange, "N5:AB40");
    EXPECT_EQ(cs.CSHolidayCol, "");  // no such name
    EXPECT_EQ(cs.CSLastTaskRow, 40);
    EXPECT_EQ(cs.CSCalendarUnit, 60);
    EXPECT_EQ(cs.CSUseCalendarDlg, 0);
    EXPECT_EQ(cs.headerRow1, 1);
    EXPECT_EQ(cs.headerRow2, 2);
    EXPECT_EQ(cs.firstBodyRow, 4);
}

class CalendarDaysTest : public ::testing::Test {
  protected:
    void SetUp() override { calendar_ = &workbook_.AddSheet("Calendar", "wsCalendar"); }

    void Day(int row, sheethost::Value date, sheethost::Value start, sheethost::Value end) {
        EngineWorkbook::SetCell(*calendar_, row, 2, std::move(date));
        EngineWorkbook::SetCell(*calendar_, row, 3, std::move(start));
        EngineWorkbook::SetCell(*calendar_, row, 4, std::move(end));
    }

    EngineWorkbook workbook_;
    Sheet* calendar_ = nullptr;
    const double april1_ = 45383;
};

TEST_F(CalendarDaysTest, ReadsRowsFromThreeToTheFirstEmptyDate) {
    EngineWorkbook::SetCell(*calendar_, 2, 2, std::string("Date"));  // a heading, never read
    Day(3, april1_, TimeSerial(8, 0, 0), TimeSerial(17, 0, 0));
    Day(4, april1_ + 1, TimeSerial(22, 0, 0), 1.0 + TimeSerial(6, 0, 0));  // past midnight
    Day(5, april1_ + 2, sheethost::Blank{}, std::string("late"));
    Day(7, april1_ + 4, TimeSerial(8, 0, 0), TimeSerial(17, 0, 0));  // below the blank row
    workbook_.Bind();
    LoadCalendarDays();

    ASSERT_EQ(CalendarDayCount(), 3);
    EXPECT_EQ(FirstCalendarDay()->start, april1_ + TimeSerial(8, 0, 0));
    EXPECT_EQ(FirstCalendarDay()->end, april1_ + TimeSerial(17, 0, 0));
    EXPECT_EQ(CalendarDayAt(2)->end, april1_ + 2 + TimeSerial(6, 0, 0));
    // Empty and non-numeric times collapse the period to the date's midnight.
    EXPECT_EQ(LastCalendarDay()->start, april1_ + 2);
    EXPECT_EQ(LastCalendarDay()->end, april1_ + 2);
    EXPECT_EQ(FindCalendarDay("2024/04/02"), CalendarDayAt(2));
    EXPECT_EQ(FindCalendarDay("2024/4/2"), nullptr);
    EXPECT_EQ(CalendarDayAt(3 + 5), LastCalendarDay());
    EXPECT_EQ(CalendarDayAt(0), nullptr);

    calendar_->cells.clear();
    LoadCalendarDays();
    EXPECT_EQ(CalendarDayCount(), 0);
    EXPECT_EQ(LastCalendarDay(), nullptr);
}

TEST_F(CalendarDaysTest, ADuplicateDateIsKeptAndTheFirstIsFound) {
    Day(3, april1_, TimeSerial(8, 0, 0), TimeSerial(12, 0, 0));
    Day(4, april1_ + TimeSerial(13, 0, 0), TimeSerial(1, 0, 0), TimeSerial(4, 0, 0));
    workbook_.Bind();
    LoadCalendarDays();
    ASSERT_EQ(CalendarDayCount(), 2);
    EXPECT_EQ(FindCalendarDay("2024/04/01"), FirstCalendarDay());
}

ResourceRecord* FindByKey(const OLECHAR* keyText) {
    Bstr key;
    BstrSet(key, keyText);
    return FindResource(key);
}

TEST(LoadResources, ReadsRowsFromFourToTheFirstEmptyKeyAndClearsOnReload) {
    EngineWorkbook workbook;
    Sheet& sheet = workbook.AddSheet("Resources", "wsResource");
    const std::pair<const char*, const char*> rows[] = {
        {"Name", "Key"}, {"Alice Moreau", "AM"}, {"Chen Wei", "\xE9\x99\x88"},
        {"", ""},        {"Dana Okafor", "DO"},
    };
    int row = 3;
    for (const auto& [name, key] : rows) {
        EngineWorkbook::SetCell(sheet, row, 2, std::string(name));
        EngineWorkbook::SetCell(sheet, row++, 3, std::string(key));
    }
    workbook.Bind();
    LoadResources();

    ASSERT_NE(FirstResource(), nullptr);
    EXPECT_EQ(FirstResource()->name, "Alice Moreau");
    EXPECT_EQ(FindByKey(OLESTR("AM")), FirstResource());
    EXPECT_EQ(FindByKey(OLESTR("\u9648"))->name, "Chen Wei");
    EXPECT_EQ(FindByKey(OLESTR("am")), nullptr);   // keys are exact
    EXPECT_EQ(FindByKey(OLESTR("DO")), nullptr);   // below the empty key
    EXPECT_EQ(FindByKey(OLESTR("Key")), nullptr);  // heading

    FirstResource()->nextFree = 45383.5;
    LoadResources();
    EXPECT_EQ(FirstResource()->nextFree, 0.0);
}

}  // namespace
