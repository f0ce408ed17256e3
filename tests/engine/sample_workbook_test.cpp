// The sample project that the demo and many tests start from must load, bind and read back as the
// project it describes: every setting, template, resource, caption and link in place.
#include <gtest/gtest.h>

#include <cctype>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "calendar/bstr.h"
#include "calendar/calendar.h"
#include "calendar/task_tests.h"
#include "core/engine_state.h"
#include "engine/refresh.h"
#include "settings/settings.h"
#include "sheethost/sheethost.h"
#include "support/engine_workbook.h"
#include "wbs/task_table.h"

namespace {

std::string SampleText() {
    const auto path = std::filesystem::path(__FILE__).parent_path().parent_path().parent_path() /
                      "examples" / "sample.json";
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

class SampleWorkbookTest : public ::testing::Test {
  protected:
    void SetUp() override {
        std::string error;
        workbook_.book = sheethost::LoadWorkbookJson(SampleText(), &error);
        ASSERT_NE(workbook_.book, nullptr) << error;
        workbook_.Bind();
        ASSERT_TRUE(RefreshSettings());
        LoadResources();
        TaskTable_Load();
        for (TaskRecord* task = Tasks_First(); task != nullptr; task = Tasks_Next(*task)) {
            TaskRecord_ReadRow(*task);
        }
    }

    testsupport::EngineWorkbook workbook_;
};

TEST_F(SampleWorkbookTest, IsAThreeDayProjectInThreeLevels) {
    EXPECT_EQ(CalendarDayCount(), 3);
    EXPECT_EQ(EngineSettings().projectMinutes, (3 * 24 + 10) * 60);
    EXPECT_EQ(EngineSettings().lastTableRow, 44);
    EXPECT_EQ(EngineTasks().taskCount, 36);

    std::set<std::int64_t> groups;
    int summaries = 0;
    int complete = 0;
    int started = 0;
    for (TaskRecord* task = Tasks_First(); task != nullptr; task = Tasks_Next(*task)) {
        groups.insert(task->groupIndex);
        EXPECT_LE(task->level, 3);
        // The sheet is saved as an update leaves it: the WBS column agrees with the outline.
        EXPECT_EQ(EngineWbsSheet().Cell(task->row, EngineSettings().wbsNoColNo).GetValue(),
                  task->wbsNo);
        if (task->isLeaf == 0) {
            ++summaries;
        } else if (IsTaskComplete(*task)) {
            ++complete;
        } else if (IsTaskStarted(*task)) {
            ++started;
        }
    }
    EXPECT_EQ(groups, (std::set<std::int64_t>{1, 2, 3}));
    EXPECT_EQ(summaries, 11);
    EXPECT_GT(complete, 0);
    EXPECT_GT(started, 0);
    EXPECT_GT(EngineTasks().taskCount - summaries - complete - started, 0);
}

TEST_F(SampleWorkbookTest, EveryLinkResourceAndTemplateResolves) {
    std::set<std::string> linkTypes;
    for (TaskRecord* task = Tasks_First(); task != nullptr; task = Tasks_Next(*task)) {
        if (task->isLeaf == 0) {
            continue;
        }
        if (!task->predecessors.empty()) {
            const std::string& text = task->predecessors;
            const bool typed = text.size() > 2 && !std::isdigit(text.back());
            const std::string reference = typed ? text.substr(0, text.size() - 2) : text;
            linkTypes.insert(typed ? text.substr(text.size() - 2) : "FS");
            EXPECT_NE(Tasks_Find(reference), nullptr) << task->wbsNo << " " << text;
        }
        if (!ParseTaskCycle(*task)) {
            EXPECT_NE(FindResource(task->resourceCell), nullptr) << task->wbsNo;
        }
    }
    EXPECT_EQ(linkTypes, (std::set<std::string>{"FS", "SS", "FF", "SF"}));

    for (const char* name :
         {"GanntBar", "GanntBar%", "GanntBar100%", "GanntBar1", "GanntBar2", "TaskConnector",
          "ProgressLines", "WSDependsCheckError", "WSTaskColorStyleDelay", "WSTaskColorStyleEnd",
          "WSTaskColorStyleStart"}) {
        EXPECT_FALSE(EngineSettingsSheet().ShapeByName(name).IsNothing()) << name;
    }
    // Each resource draws its bars from its own template on the resource sheet.
    int resources = 0;
    for (int row = 4;; ++row) {
        const std::string name = EngineResourceSheet().Cell(row, 2).GetValue();
        if (name.empty()) {
            break;
        }
        ++resources;
        EXPECT_FALSE(EngineResourceSheet().ShapeByName("GanntBarByRes" + name).IsNothing()) << name;
    }
    EXPECT_EQ(resources, 5);
    EXPECT_EQ(EngineSettingsSheet().RangeOf("TaskType").GetNumberPath(".Rows.Count"), 3.0);
}

TEST_F(SampleWorkbookTest, DictionaryHoldsEveryCaption) {
    const XlRef dictionary = SheetByCodeName("wsDictionary");
    ASSERT_FALSE(dictionary.IsNothing());
    std::set<std::string> keys;
    for (int row = 3; !dictionary.View().Cell(row, 2).GetValue().empty(); ++row) {
        keys.insert(dictionary.View().Cell(row, 2).GetValue());
    }
    dictionary.object()->Release();
    EXPECT_EQ(keys,
              (std::set<std::string>{"BAC", "PV", "EV", "AC", "SV", "CV", "SPI", "CPI", "EAC",
                                     "ETC", "ENDDATEORG", "ENDDATECHGTO", "EVMRPT", "WLRPT"}));
}

}  // namespace

namespace {

// The Application.ScreenUpdating calls a command made, in order.
std::vector<std::string> ScreenUpdatingCalls(const std::vector<std::string>& log) {
    std::vector<std::string> calls;
    for (const std::string& entry : log) {
        if (entry.starts_with("Application.ScreenUpdating")) calls.push_back(entry);
    }
    return calls;
}

TEST(CommandScreenTest, ACommandWorksWithScreenUpdatingOffAndPutsItBack) {
    testsupport::EngineWorkbook workbook;
    std::string error;
    workbook.book = sheethost::LoadWorkbookJson(SampleText(), &error);
    ASSERT_NE(workbook.book, nullptr) << error;
    workbook.Bind();

    std::vector<std::string> log;
    sheethost::SetMemberLog(&log);
    kpUpdateWBS();
    EXPECT_EQ(
        ScreenUpdatingCalls(log),
        (std::vector<std::string>{"Application.ScreenUpdating", "Application.ScreenUpdating=False",
                                  "Application.ScreenUpdating=True"}));
    EXPECT_TRUE(workbook.book->screenUpdating);

    // A command that stops early, on a calendar unit of 0, puts it back too.
    log.clear();
    sheethost::Sheet& settings = *sheethost::FindSheet(*workbook.book, "Settings");
    settings.cells[{40, 3}].value = 0.0;  // CSCalendarUnit
    kpUpdateWBS();
    EXPECT_EQ(ScreenUpdatingCalls(log).size(), 3u);
    EXPECT_TRUE(workbook.book->screenUpdating);

    // A screen the macros switched off stays off.
    log.clear();
    workbook.book->screenUpdating = false;
    kpUpdateWBS();
    EXPECT_EQ(ScreenUpdatingCalls(log), std::vector<std::string>{"Application.ScreenUpdating"});
    EXPECT_FALSE(workbook.book->screenUpdating);
    sheethost::SetMemberLog(nullptr);
}

}  // namespace
