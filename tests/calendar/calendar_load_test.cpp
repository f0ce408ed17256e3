#include <gtest/gtest.h>

#include <string>

#include "calendar/calendar.h"
#include "engine/engine_state.h"
#include "support/engine_workbook.h"
#include "values/values.h"

namespace {

using sheethost::Sheet;
using testsupport::EngineWorkbook;
using values::DateSerial;
using values::TimeSerial;

TEST(LoadCalendarSettings, ReadsTextsAndWholeNumbersAndDerivesTheGridRows) {
    EngineWorkbook workbook;
    Sheet& settings = workbook.AddSheet("Settings", "wsSettings");
    const std::pair<const char*, sheethost::Value> keys[] = {
        {"CSFirstdayCol", std::string("N")},      {"CSLastdayCol", std::string("ab")},
        {"CSHolidayCol", std::string("C")},       {"CSWorkdayCol", std::string("D")},
        {"CSMonth1stdayCol", std::string("E")},   {"CSHolidayCancelCol", std::string("F")},
        {"CSBodyRange", std::string("N5:AB40")},  {"CSWeekdayRow", 3.0},
        {"CSLastTaskRow", std::string("40.7")},   {"CSCalendarUnit", std::string("&H3C")},
        {"CSUseCalendarDlg", sheethost::Blank{}}, {"CSCalendarDlgDispFlg", std::string("yes")},
    };
    int row = 2;
    for (const auto& [name, value] : keys) workbook.SetNamedCell(settings, name, row++, 2, value);
    workbook.Bind();

    LoadCalendarSettings();
    const CalendarSettings& cs = EngineCalendarSettings();
    EXPECT_EQ(cs.CSFirstdayCol, "N");
    EXPECT_EQ(cs.CSLastdayCol, "ab");
    EXPECT_EQ(cs.CSHolidayCol, "C");
    EXPECT_EQ(cs.CSWorkdayCol, "D");
    EXPECT_EQ(cs.CSMonth1stdayCol, "E");
    EXPECT_EQ(cs.CSHolidayCancelCol, "F");
    EXPECT_EQ(cs.CSBodyRange, "N5:AB40");
    EXPECT_EQ(cs.CSWeekdayRow, 3);
    EXPECT_EQ(cs.CSLastTaskRow, 40);
    EXPECT_EQ(cs.CSCalendarUnit, 60);
    EXPECT_EQ(cs.CSUseCalendarDlg, 0);
    EXPECT_EQ(cs.CSCalendarDlgDispFlg, 0);
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

    void Load() {
        workbook_.Bind();
        LoadCalendarDays();
    }

    EngineWorkbook workbook_;
    Sheet* calendar_ = nullptr;
    const double april1_ = DateSerial(2024, 4, 1);
};

TEST_F(CalendarDaysTest, ReadsRowsFromThreeToTheFirstEmptyDate) {
    EngineWorkbook::SetCell(*calendar_, 2, 2, std::string("Date"));  // a heading, never read
    Day(3, april1_, TimeSerial(8, 0, 0), TimeSerial(17, 0, 0));
    Day(4, april1_ + 1, TimeSerial(22, 0, 0), 1.0 + TimeSerial(6, 0, 0));
    Day(5, april1_ + 2, sheethost::Blank{}, std::string("late"));
    Day(7, april1_ + 4, TimeSerial(8, 0, 0), TimeSerial(17, 0, 0));  // below the blank row
    Load();

    ASSERT_EQ(CalendarDayCount(), 3);
    const CalendarDay* first = FirstCalendarDay();
    EXPECT_EQ(first->date, april1_);
    EXPECT_EQ(first->start, april1_ + TimeSerial(8, 0, 0));
    EXPECT_EQ(first->end, april1_ + TimeSerial(17, 0, 0));
    // A working period past midnight ends on the next date.
    EXPECT_EQ(CalendarDayAt(2)->end, april1_ + 2 + TimeSerial(6, 0, 0));
    // Empty and non-numeric times collapse the period to the date's midnight.
    EXPECT_EQ(LastCalendarDay()->start, april1_ + 2);
    EXPECT_EQ(LastCalendarDay()->end, april1_ + 2);
    EXPECT_EQ(FindCalendarDay("2024/04/02"), CalendarDayAt(2));
    EXPECT_EQ(FindCalendarDay("2024/04/05"), nullptr);
    EXPECT_EQ(FindCalendarDay("2024/4/2"), nullptr);
}

TEST_F(CalendarDaysTest, IndexesPastTheEndGiveTheLastDay) {
    Day(3, april1_, TimeSerial(8, 0, 0), TimeSerial(17, 0, 0));
    Day(4, april1_ + 1, TimeSerial(8, 0, 0), TimeSerial(17, 0, 0));
    Load();
    EXPECT_EQ(CalendarDayAt(1), FirstCalendarDay());
    EXPECT_EQ(CalendarDayAt(2 + 5), LastCalendarDay());
    EXPECT_EQ(CalendarDayAt(0), nullptr);
    EXPECT_EQ(CalendarDayAt(-1), nullptr);
}

TEST_F(CalendarDaysTest, ADuplicateDateIsKeptAndTheFirstIsFound) {
    Day(3, april1_, TimeSerial(8, 0, 0), TimeSerial(12, 0, 0));
    Day(4, april1_ + TimeSerial(13, 0, 0), TimeSerial(1, 0, 0), TimeSerial(4, 0, 0));
    Load();
    ASSERT_EQ(CalendarDayCount(), 2);
    EXPECT_EQ(FindCalendarDay("2024/04/01"), FirstCalendarDay());
}

TEST_F(CalendarDaysTest, ReloadingReplacesTheListAndAnEmptySheetEmptiesIt) {
    Day(3, april1_, TimeSerial(8, 0, 0), TimeSerial(17, 0, 0));
    Load();
    LoadCalendarDays();
    EXPECT_EQ(CalendarDayCount(), 1);
    calendar_->cells.clear();
    LoadCalendarDays();
    EXPECT_EQ(CalendarDayCount(), 0);
    EXPECT_EQ(FirstCalendarDay(), nullptr);
    EXPECT_EQ(LastCalendarDay(), nullptr);
}

TEST(LoadCalendarDays, AWorkbookWithoutACalendarSheetGivesNoDays) {
    EngineWorkbook workbook;
    workbook.AddSheet("Settings", "wsSettings");
    workbook.Bind();
    LoadCalendarDays();
    EXPECT_EQ(CalendarDayCount(), 0);
}

class ResourcesTest : public ::testing::Test {
  protected:
    void SetUp() override { sheet_ = &workbook_.AddSheet("Resources", "wsResource"); }

    void Resource(int row, std::string name, std::string key) {
        EngineWorkbook::SetCell(*sheet_, row, 2, std::move(name));
        EngineWorkbook::SetCell(*sheet_, row, 3, std::move(key));
    }

    static ResourceRecord* Find(const OLECHAR* keyText) {
        Bstr key;
        BstrSet(key, keyText);
        return FindResource(key);
    }

    EngineWorkbook workbook_;
    Sheet* sheet_ = nullptr;
};

TEST_F(ResourcesTest, ReadsRowsFromFourToTheFirstEmptyKey) {
    Resource(3, "Name", "Key");  // heading
    Resource(4, "Alice Moreau", "AM");
    Resource(5, "Bogdan Ilic", "BI");
    Resource(6, "Chen Wei", "\xE9\x99\x88");  // a key outside ASCII
    Resource(8, "Dana Okafor", "DO");         // below the blank row
    workbook_.Bind();
    LoadResources();

    ASSERT_NE(FirstResource(), nullptr);
    EXPECT_EQ(FirstResource()->name, "Alice Moreau");
    const ResourceRecord* bogdan = Find(OLESTR("BI"));
    ASSERT_NE(bogdan, nullptr);
    EXPECT_EQ(bogdan->name, "Bogdan Ilic");
    EXPECT_EQ(bogdan->nextFree, 0.0);
    EXPECT_EQ(BstrText(bogdan->keyText), "BI");
    EXPECT_NE(Find(OLESTR("\u9648")), nullptr);
    EXPECT_EQ(Find(OLESTR("bi")), nullptr);  // keys are exact
    EXPECT_EQ(Find(OLESTR("DO")), nullptr);
    EXPECT_EQ(Find(OLESTR("Key")), nullptr);
}

TEST_F(ResourcesTest, ReloadingClearsTheSchedulingValues) {
    Resource(4, "Alice Moreau", "AM");
    workbook_.Bind();
    LoadResources();
    Find(OLESTR("AM"))->nextFree = 45383.5;
    LoadResources();
    EXPECT_EQ(Find(OLESTR("AM"))->nextFree, 0.0);
    FreeResources();
    EXPECT_EQ(FirstResource(), nullptr);
}

}  // namespace
