#include "engine/exports.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "core/clock.h"
#include "core/engine_state.h"
#include "core/messages.h"
#include "engine/refresh.h"
#include "settings/settings.h"
#include "sheethost/dispatch_object.h"
#include "support/project_json.h"
#include "values/values.h"
#include "wbs/task_table.h"
#include "wbs/visible_rows.h"

namespace {

using testsupport::ProjectJson;

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

TEST_F(BindingTest, ZeroCalendarUnitStopsTheCommandAndItsErrorStaysWithIt) {
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
    EXPECT_EQ(Engine().lastRuntimeError, kRuntimeErrorDivisionByZero);

    // The error number belongs to the command that raised it: binding again succeeds.
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
    kpQuit();
    EXPECT_EQ(Engine().settings, nullptr);
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

// Task rows from the first task row (12) down to `lastRow`.
class VisibleRowsTest : public ::testing::Test {
  protected:
    void Load(int lastRow) {
        for (int row = ProjectJson::kFirstTaskRow; row <= lastRow; ++row) {
            project_.Task(row, 1, "Task on row " + std::to_string(row));
        }
        project_.Bind();
        ASSERT_TRUE(RefreshSettings());
        TaskTable_Load();
    }

    std::vector<int> HiddenRows() const {
        std::vector<int> hidden;
        for (const auto& [row, info] : project_.Host("WBS").rows) {
            if (info.hidden) {
                hidden.push_back(row);
            }
        }
        return hidden;
    }

    static std::string SettingText(const char* name) {
        return EngineSettingsSheet().RangeOf(name).GetValue();
    }

    ProjectJson project_;
};

TEST_F(VisibleRowsTest, KeysMatchWholeRowNumbers) {
    Load(120);
    ApplyVisibleRows(",12,,14,");
    EXPECT_FALSE(project_.RowHidden(12));
    EXPECT_TRUE(project_.RowHidden(13));
    EXPECT_FALSE(project_.RowHidden(14));
    EXPECT_TRUE(project_.RowHidden(120));
    // Neither ",12" nor "12," may be taken for a row of ",120," or ",112,".
    ApplyVisibleRows(",120,,112,");
    EXPECT_TRUE(project_.RowHidden(12));
    EXPECT_FALSE(project_.RowHidden(112));
    ApplyVisibleRows("");
    EXPECT_EQ(HiddenRows(), std::vector<int>());
}

TEST_F(VisibleRowsTest, TextListsTheVisibleRowsOnlyWhenSomeAreHidden) {
    Load(15);
    EXPECT_EQ(VisibleRowsText(), "");
    project_.Host("WBS").rows[13].hidden = true;
    project_.Host("WBS").rows[15].hidden = true;
    EXPECT_EQ(VisibleRowsText(), ",12,,14,");
}

TEST_F(VisibleRowsTest, EmptyTableTouchesNoRow) {
    project_.HideRow(ProjectJson::kFirstTaskRow);
    Load(0);
    ApplyVisibleRows("");
    EXPECT_TRUE(project_.RowHidden(ProjectJson::kFirstTaskRow));
}

TEST_F(VisibleRowsTest, DrawingKeepsHandHiddenRowsAndReappliesTheFilter) {
    project_.HideRow(13);
    Load(15);
    kpDrawGanntChart(1);
    EXPECT_EQ(HiddenRows(), std::vector<int>{13});
    EngineSettings().filterRows = ",13,,14,";
    kpDrawGanntChart(1);
    EXPECT_EQ(HiddenRows(), (std::vector<int>{12, 15}));
}

TEST_F(VisibleRowsTest, DrawCommandsWriteTheirSettingsCells) {
    Load(15);
    kpDrawGanntChart(-3);
    EXPECT_EQ(SettingText("GanntBarStyle"), "-3");
    kpDrawCalendar(0);
    kpDrawCalendar(-5);
    EXPECT_EQ(SettingText("CSCalendarUnit"), "60");
    kpDrawCalendar(30);
    EXPECT_EQ(SettingText("CSCalendarUnit"), "30");
    EXPECT_EQ(EngineCalendarSettings().CSCalendarUnit, 30);
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
