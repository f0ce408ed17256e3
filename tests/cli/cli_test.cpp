#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

#include "cli/commands.h"
#include "cli/render_command.h"
#include "cli/session.h"
#include "cli/workbook_file.h"
#include "sheethost/sheethost.h"

namespace fs = std::filesystem;

namespace {

// A workbook whose settings sheet names a calendar unit of 0 minutes: the engine must refuse it.
constexpr const char* kZeroUnitWorkbook = R"({
  "names": {"CSCalendarUnit": "=Settings!$B$2", "WSFirstTaskRow": "=Settings!$B$3"},
  "sheets": [
    {"name": "WBS", "codeName": "wsWBS", "cells": {"B5": {"value": "Design"}}},
    {"name": "Settings", "codeName": "wsSettings",
     "cells": {"B2": {"value": 0}, "B3": {"value": 5}}}
  ]
})";

class TemporaryFolder {
  public:
    TemporaryFolder()
        : path_(fs::temp_directory_path() /
                ("vantora-cli-" + std::to_string(reinterpret_cast<std::uintptr_t>(this)))) {
        fs::create_directories(path_);
    }
    ~TemporaryFolder() { fs::remove_all(path_); }
    fs::path operator/(const std::string& name) const { return path_ / name; }
    std::size_t FileCount() const {
        return static_cast<std::size_t>(std::distance(fs::directory_iterator(path_), {}));
    }

  private:
    fs::path path_;
};

void WriteText(const fs::path& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

}  // namespace

TEST(WorkbookFile, WritesAtomicallyAndReadsBackTheSameWorkbook) {
    TemporaryFolder folder;
    WriteText(folder / "in.json", kZeroUnitWorkbook);
    const auto book = ReadWorkbookFile(folder / "in.json");
    WriteWorkbookFile(*book, folder / "in.json", folder / "out.json");

    EXPECT_EQ(folder.FileCount(), 2u) << "no temporary file may be left behind";
    const auto again = ReadWorkbookFile(folder / "out.json");
    EXPECT_EQ(sheethost::DumpWorkbookJson(*again), sheethost::DumpWorkbookJson(*book));
}

TEST(WorkbookFile, RefusesWhatItCannotReadWithTheFileNamed) {
    TemporaryFolder folder;
    WriteText(folder / "broken.json", "{\"sheets\": [");
    WriteText(folder / "book.xlsx", "PK not a package");
    for (const char* name : {"broken.json", "book.xlsx", "missing.json"}) {
        try {
            ReadWorkbookFile(folder / name);
            ADD_FAILURE() << name << " was read";
        } catch (const WorkbookFileError& error) {
            EXPECT_NE(std::string(error.what()).find(name), std::string::npos) << error.what();
        }
    }
}

TEST(WorkbookFile, WritesNothingForAnUnknownFormat) {
    TemporaryFolder folder;
    const auto book = sheethost::NewWorkbook();
    EXPECT_THROW(WriteWorkbookFile(*book, {}, folder / "out.ods"), WorkbookFileError);
    EXPECT_EQ(folder.FileCount(), 0u);
}

TEST(EngineSession, AZeroCalendarUnitStopsBeforeAnyCommandAndChangesNothing) {
    auto book = sheethost::LoadWorkbookJson(kZeroUnitWorkbook);
    ASSERT_NE(book, nullptr);
    const std::string before = sheethost::DumpWorkbookJson(*book);

    std::ostringstream messages;
    std::streambuf* saved = std::cerr.rdbuf(messages.rdbuf());
    const CommandCall update{FindEngineCommand("update-wbs"), {}};
    const bool ran = RunEngineSession(book, {&update, 1}, SessionOptions{});
    std::cerr.rdbuf(saved);

    EXPECT_FALSE(ran);
    EXPECT_NE(messages.str().find("CSCalendarUnit"), std::string::npos) << messages.str();
    EXPECT_EQ(sheethost::DumpWorkbookJson(*book), before);
    // kpSetWorkBook keeps the references of the sheets it found (wsWBS and wsSettings here)
    // without ever releasing them; nothing else may stay referenced.
    EXPECT_EQ(sheethost::LiveObjectCount(), 2)
        << testing::PrintToString(sheethost::LiveObjectReport());
}

TEST(RenderCommand, DrawsTheTaskSheetAndNeverReplacesTheWorkbook) {
    TemporaryFolder folder;
    WriteText(folder / "in.json", kZeroUnitWorkbook);
    RenderRequest request{(folder / "in.json").string(), (folder / "chart.svg").string(), "",
                          false};
    ASSERT_TRUE(RunRender(request));
    std::ifstream svg(folder / "chart.svg");
    std::stringstream text;
    text << svg.rdbuf();
    EXPECT_TRUE(text.str().starts_with("<?xml")) << text.str();
    EXPECT_NE(text.str().find("<title>WBS</title>"), std::string::npos);
    EXPECT_NE(text.str().find(">Design</text>"), std::string::npos);
    EXPECT_EQ(folder.FileCount(), 2u) << "no temporary file may be left behind";

    // Another sheet by name; an unknown one is refused and nothing is written.
    request.sheet = "Settings";
    request.output = (folder / "settings.svg").string();
    EXPECT_TRUE(RunRender(request));
    request.sheet = "Gantt";
    request.output = (folder / "gantt.svg").string();
    EXPECT_FALSE(RunRender(request));
    EXPECT_FALSE(fs::exists(folder / "gantt.svg"));

    // The picture may not take the workbook's place.
    request = {(folder / "in.json").string(), (folder / "in.json").string(), "", false};
    EXPECT_FALSE(RunRender(request));
    EXPECT_NE(ReadWorkbookFile(folder / "in.json"), nullptr);
}

namespace {

std::shared_ptr<sheethost::Workbook> SampleWorkbook() {
    return ReadWorkbookFile(fs::path(__FILE__).parent_path().parent_path().parent_path() /
                            "examples" / "sample.json");
}

std::string TextAt(const sheethost::Sheet& sheet, int row, int column) {
    const sheethost::Cell* cell = sheethost::FindCell(sheet, row, column);
    const auto* text = cell != nullptr ? std::get_if<std::string>(&cell->value) : nullptr;
    return text != nullptr ? *text : std::string();
}

// Runs the named commands on `book` with the session options, messages swallowed.
void RunCommands(const std::shared_ptr<sheethost::Workbook>& book,
                 std::initializer_list<const char*> names, const SessionOptions& options) {
    std::vector<CommandCall> calls;
    for (const char* name : names) calls.push_back({FindEngineCommand(name), {}});
    std::ostringstream messages;
    std::streambuf* saved = std::cerr.rdbuf(messages.rdbuf());
    RunEngineSession(book, calls, options);
    std::cerr.rdbuf(saved);
}

}  // namespace

// The selection given once is the user's: each move selects the moved rows again, so the next
// move of the same run carries the same task on.
TEST(EngineSession, MovesOfOneRunFollowTheSelection) {
    const auto book = SampleWorkbook();
    SessionOptions options;
    options.selectedRows = RowSpan{21, 21};
    RunCommands(book, {"update-wbs", "move-down", "move-down"}, options);

    const sheethost::Sheet& wbs = *sheethost::FindSheet(*book, "WBS");
    EXPECT_EQ(TextAt(wbs, 23, 5), "D2: Drive to Mill Lane");
    EXPECT_EQ(TextAt(wbs, 22, 4), "Building");
    ASSERT_EQ(wbs.selection.size(), 1u);
    EXPECT_EQ(wbs.selection.front().top, 23);
    EXPECT_EQ(wbs.selection.front().bottom, 23);
}

TEST(EngineSession, TheFilterSettingIsWrittenBeforeTheFilterRuns) {
    const auto book = SampleWorkbook();
    SessionOptions options;
    options.filterSetting = "6,0";
    RunCommands(book, {"filter"}, options);

    const sheethost::Sheet& settings = *sheethost::FindSheet(*book, "Settings");
    EXPECT_EQ(TextAt(settings, 500, 1), "6,0");
    // Only the three top-level tasks stay visible.
    const sheethost::Sheet& wbs = *sheethost::FindSheet(*book, "WBS");
    std::vector<int> visible;
    for (int row = 5; row <= 40; ++row) {
        const auto found = wbs.rows.find(row);
        if (found == wbs.rows.end() || !found->second.hidden) visible.push_back(row);
    }
    EXPECT_EQ(visible, (std::vector<int>{5, 18, 31}));
}
