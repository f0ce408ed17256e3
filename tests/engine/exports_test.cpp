#include "engine/exports.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "calendar/calendar.h"
#include "engine/clock.h"
#include "engine/engine_state.h"
#include "engine/messages.h"
#include "engine/visible_rows.h"
#include "settings/settings.h"
#include "sheethost/dispatch_object.h"
#include "sheethost/objects.h"
#include "support/task_workbook.h"
#include "values/values.h"
#include "wbs/task_table.h"

namespace {

using testsupport::EngineWorkbook;
using testsupport::TaskWorkbook;

ULONG References(IDispatch* object) {
    object->AddRef();
    return object->Release();
}

IDispatch* Bound(const std::unique_ptr<XlRef>& holder) {
    return holder ? holder->object() : nullptr;
}

// Binds a workbook the way the workbook's macros do and checks the references it leaves. The
// engine never releases the sheets it found, so the test gives back every one it saw bound.
class BindingTest : public ::testing::Test {
  protected:
    BindingTest() : book_(std::make_shared<sheethost::Workbook>()) {}

    ~BindingTest() override {
        for (IDispatch* sheet : boundSheets_) {
            sheet->Release();
        }
        kpQuit();
        if (bookObject_ != nullptr) {
            bookObject_->Release();
        }
        kpSetMessageReceiver(nullptr);
    }

    sheethost::Sheet& AddSheet(std::string name, std::string codeName) {
        auto sheet = std::make_shared<sheethost::Sheet>();
        sheet->name = std::move(name);
        sheet->codeName = std::move(codeName);
        book_->sheets.push_back(sheet);
        return *sheet;
    }

    std::int32_t SetWorkBook() {
        if (bookObject_ == nullptr) {
            bookObject_ = sheethost::NewWorkbookObject(book_);
        }
        const std::int32_t result = kpSetWorkBook(&bookObject_);
        for (const auto* holder :
             {&Engine().wbsSheet, &Engine().settingsSheet, &Engine().resourceSheet}) {
            if (IDispatch* sheet = Bound(*holder)) {
                boundSheets_.push_back(sheet);
            }
        }
        return result;
    }

    static std::string BoundName(const std::unique_ptr<XlRef>& holder) {
        return holder->View().GetName();
    }

    sheethost::BookPtr book_;
    IDispatch* bookObject_ = nullptr;
    std::vector<IDispatch*> boundSheets_;
};

TEST_F(BindingTest, FindsSheetsByExactCodeNameAndTakesNoReferenceOfItsOwn) {
    AddSheet("Notes", "wsNotes");
    AddSheet("wbs in lower case", "wswbs");
    AddSheet("WBS", "wsWBS");
    AddSheet("Settings", "wsSettings");
    AddSheet("Resources", "wsResource");
    AddSheet("Old resources", "wsResource");
    kpInit();
    bookObject_ = sheethost::NewWorkbookObject(book_);
    const long liveBefore = sheethost::LiveObjectCount();

    EXPECT_EQ(SetWorkBook(), 0);

    EXPECT_EQ(References(bookObject_), 1u);
    EXPECT_EQ(BoundName(Engine().wbsSheet), "WBS");
    EXPECT_EQ(BoundName(Engine().settingsSheet), "Settings");
    EXPECT_EQ(BoundName(Engine().resourceSheet), "Resources");
    // Each bound sheet holds the one reference the enumeration handed out; every other sheet, the
    // collection and the enumerator were released.
    for (IDispatch* sheet : boundSheets_) {
        EXPECT_EQ(References(sheet), 1u);
    }
    EXPECT_EQ(sheethost::LiveObjectCount(), liveBefore + 3);
}

TEST_F(BindingTest, MissingResourceSheetIsNotAnError) {
    AddSheet("WBS", "wsWBS");
    AddSheet("Settings", "wsSettings");
    kpInit();
    EXPECT_EQ(SetWorkBook(), 0);
    EXPECT_NE(Bound(Engine().wbsSheet), nullptr);
    EXPECT_NE(Bound(Engine().settingsSheet), nullptr);
    EXPECT_EQ(Bound(Engine().resourceSheet), nullptr);
}

TEST_F(BindingTest, SecondBindingReplacesWithoutReleasing) {
    AddSheet("WBS", "wsWBS");
    kpInit();
    SetWorkBook();
    IDispatch* first = Bound(Engine().wbsSheet);
    SetWorkBook();
    IDispatch* second = Bound(Engine().wbsSheet);
    ASSERT_NE(second, nullptr);
    // A released first sheet would be gone by now (and the check would touch freed memory).
    EXPECT_EQ(References(first), first == second ? 2u : 1u);
    EXPECT_EQ(References(bookObject_), 1u);
}

TEST_F(BindingTest, ZeroCalendarUnitIsReportedAndStopsTheCommand) {
    sheethost::Sheet& settings = AddSheet("Settings", "wsSettings");
    sheethost::CellAt(settings, 3, 3).value = 0.0;
    book_->names.push_back({"CSCalendarUnit", "='Settings'!$C$3"});
    AddSheet("WBS", "wsWBS");
    static std::vector<UINT> icons;
    icons.clear();
    kpSetMessageReceiver([](const OLECHAR*, UINT icon) { icons.push_back(icon); });
    kpInit();
    EXPECT_EQ(SetWorkBook(), 0);

    kpDrawCalendar(0);
    EXPECT_EQ(icons.size(), 1u);
    EXPECT_EQ(SetWorkBook(), kRuntimeErrorDivisionByZero);

    // A fresh engine has no failure on record.
    kpInit();
    EXPECT_EQ(SetWorkBook(), 0);
}

TEST_F(BindingTest, InitStartsFreshAndQuitFreesTheState) {
    AddSheet("WBS", "wsWBS");
    kpInit();
    SetWorkBook();
    EngineSettings().filterRows = ",5,";
    kpInit();
    EXPECT_EQ(EngineSettings().filterRows, "");
    EXPECT_EQ(Engine().workbook, nullptr);
    EXPECT_EQ(EngineTasks().poolSize, 200);
    kpQuit();
    EXPECT_EQ(Engine().settings, nullptr);
    EXPECT_EQ(Engine().calendarSettings, nullptr);
    EXPECT_EQ(Engine().tasks, nullptr);
    kpInit();
}

TEST_F(BindingTest, SheetEventsReleaseTheTargetOnce) {
    AddSheet("WBS", "wsWBS");
    kpInit();
    SetWorkBook();
    IDispatch* target = EngineWbsSheet().Cell(5, 3).Detach();
    ASSERT_NE(target, nullptr);
    target->AddRef();
    target->AddRef();
    kpWBSEventOnChange(&target);
    EXPECT_EQ(References(target), 2u);
    kpWBSEventOnSelectionChange(&target);
    EXPECT_EQ(References(target), 1u);
    target->Release();
}

// Tasks on rows 5..8 of the small project workbook.
class VisibleRowsTest : public ::testing::Test {
  protected:
    void AddTasks(int lastRow) {
        for (int row = TaskWorkbook::kFirstTaskRow; row <= lastRow; ++row) {
            project_.AddTask(row, 1, "Task on row " + std::to_string(row));
        }
    }

    void Load() {
        ASSERT_TRUE(project_.Bind());
        TaskTable_Load();
    }

    std::vector<int> HiddenRows(int lastRow) const {
        std::vector<int> hidden;
        for (int row = 1; row <= lastRow + 1; ++row) {
            if (project_.RowHidden(row)) {
                hidden.push_back(row);
            }
        }
        return hidden;
    }

    std::string CellText(const char* name) {
        return EngineSettingsSheet().RangeOf(name).GetValue();
    }

    TaskWorkbook project_;
};

TEST_F(VisibleRowsTest, KeysMatchWholeRowNumbers) {
    AddTasks(60);
    Load();
    ApplyVisibleRows(",5,,7,");
    std::vector<int> expected;
    for (int row = 6; row <= 60; ++row) {
        if (row != 7) {
            expected.push_back(row);
        }
    }
    EXPECT_EQ(HiddenRows(60), expected);

    // Neither ",5" nor "7," may be taken for a row of ",57,".
    ApplyVisibleRows(",57,");
    EXPECT_TRUE(project_.RowHidden(5));
    EXPECT_TRUE(project_.RowHidden(7));
    EXPECT_FALSE(project_.RowHidden(57));
    ApplyVisibleRows(",5,");
    EXPECT_TRUE(project_.RowHidden(57));
    EXPECT_FALSE(project_.RowHidden(5));

    ApplyVisibleRows("");
    EXPECT_EQ(HiddenRows(60), std::vector<int>());
}

TEST_F(VisibleRowsTest, EmptyTableTouchesNoRow) {
    project_.wbs.rows[5].hidden = true;
    Load();
    ApplyVisibleRows("");
    EXPECT_TRUE(project_.RowHidden(5));
}

TEST_F(VisibleRowsTest, TextListsVisibleRowsOnlyWhenSomeAreHidden) {
    AddTasks(8);
    Load();
    EXPECT_EQ(VisibleRowsText(), "");
    project_.wbs.rows[6].hidden = true;
    project_.wbs.rows[8].hidden = true;
    EXPECT_EQ(VisibleRowsText(), ",5,,7,");
}

TEST_F(VisibleRowsTest, DrawCommandsWriteTheirSettingsCells) {
    AddTasks(8);
    Load();
    kpDrawGanntChart(-3);
    EXPECT_EQ(CellText("GanntBarStyle"), "-3");
    kpDrawCalendar(0);
    kpDrawCalendar(-5);
    EXPECT_EQ(CellText("CSCalendarUnit"), "60");
    kpDrawCalendar(30);
    EXPECT_EQ(CellText("CSCalendarUnit"), "30");
    EXPECT_EQ(EngineCalendarSettings().CSCalendarUnit, 30);
}

TEST_F(VisibleRowsTest, DrawingWithoutAFilterLeavesHiddenRowsAlone) {
    AddTasks(8);
    project_.wbs.rows[6].hidden = true;
    Load();
    kpDrawGanntChart(1);
    EXPECT_EQ(HiddenRows(8), std::vector<int>{6});
}

TEST_F(VisibleRowsTest, DrawingReappliesTheFilter) {
    AddTasks(8);
    project_.wbs.rows[5].hidden = true;
    Load();
    EngineSettings().filterRows = ",5,,7,";
    kpDrawGanntChart(1);
    EXPECT_EQ(HiddenRows(8), (std::vector<int>{6, 8}));
}

TEST(HostingExtrasTest, MessagesReachTheReceiverAsUtf16) {
    static std::vector<std::pair<WideString, UINT>> received;
    received.clear();
    kpSetMessageReceiver(
        [](const OLECHAR* text, UINT icon) { received.emplace_back(WideString(text), icon); });
    ShowMessage("Tâche « Design » ✓", MB_ICONWARNING);
    kpSetMessageReceiver(nullptr);
    ASSERT_EQ(received.size(), 1u);
    EXPECT_EQ(received[0].first, WideString(OLESTR("Tâche « Design » ✓")));
    EXPECT_EQ(received[0].second, static_cast<UINT>(MB_ICONWARNING));
}

TEST(HostingExtrasTest, StatusDatePinsNowUntilUnpinned) {
    const double statusDate = values::DateSerial(2024, 4, 2) + values::TimeSerial(12, 0, 0);
    kpSetStatusDate(statusDate);
    EXPECT_EQ(NowSerial(), statusDate);
    kpSetStatusDate(-1.0);
    EXPECT_GT(NowSerial(), values::DateSerial(2024, 6, 1));
    kpSetStatusDate(statusDate);
    kpSetStatusDate(0.0);
    EXPECT_NE(NowSerial(), statusDate);
}

}  // namespace
