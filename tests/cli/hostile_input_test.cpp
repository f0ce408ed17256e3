// Input a hostile or careless user gives the program: every case ends in a clear refusal that
// names the cause, or in a correct result, never in a crash, a hang or a damaged file.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <iostream>
#include <sstream>

#include "cli/command_word.h"
#include "cli/session.h"
#include "cli/workbook_file.h"
#include "sheethost/sheethost.h"
#include "xlsx/package_files.h"

namespace fs = std::filesystem;
using xlsx::testing::ReadFile;
using xlsx::testing::TempFolder;
using xlsx::testing::WriteFile;

namespace {

// The smallest workbook the engine runs on: a unit of a day, tasks from C5 down, a table whose
// last column M has no border (so the search for the table's end stops at once).
std::string Workbook(const std::string& firstTaskRow, const std::string& taskNameCol,
                     int tasks = 1) {
    std::string cells;
    for (int k = 0; k < tasks; ++k) cells += ", \"C" + std::to_string(5 + k) + "\": \"Task\"";
    return R"({"names": {"CSCalendarUnit": "=Settings!$B$2", "WSFirstTaskRow": "=Settings!$B$3",
                "WSTaskNameCol": "=Settings!$B$4", "WSLastCol": "=Settings!$B$5"},
      "sheets": [
        {"name": "WBS", "codeName": "wsWBS", "cells": {"A1": 0)" +
           cells + R"(}},
        {"name": "Settings", "codeName": "wsSettings",
         "cells": {"B2": 1440, "B3": )" +
           firstTaskRow + R"(, "B4": ")" + taskNameCol + R"(", "B5": "M"}}]})";
}

// Runs update-wbs (or, with `command` false, only what precedes the first command: settings and
// task table) on the workbook and answers whether it ran, with what it printed.
std::pair<bool, std::string> Update(const std::string& json, bool command = true) {
    auto book = sheethost::LoadWorkbookJson(json);
    EXPECT_NE(book, nullptr);
    std::ostringstream messages;
    std::streambuf* saved = std::cerr.rdbuf(messages.rdbuf());
    const CommandCall update{FindEngineCommand("update-wbs"), {}};
    const bool ran = RunEngineSession(book, {&update, command ? 1u : 0u}, SessionOptions{});
    std::cerr.rdbuf(saved);
    return {ran, messages.str()};
}

std::string WhyRefused(const fs::path& file) {
    try {
        ReadWorkbookFile(file);
    } catch (const WorkbookFileError& error) {
        return error.what();
    }
    return "read";
}

}  // namespace

TEST(HostileInput, SettingsThatCannotWorkAreNamedWithTheirCell) {
    const auto [runs, quiet] = Update(Workbook("5", "C"));
    EXPECT_TRUE(runs) << quiet;

    const auto [zeroRow, rowMessage] = Update(Workbook("0", "C"));
    EXPECT_FALSE(zeroRow);
    EXPECT_NE(rowMessage.find("WSFirstTaskRow (cell $B$3 of the settings sheet \"Settings\") is 0"),
              std::string::npos)
        << rowMessage;

    // Column 20000 and the nine name columns after it lie past the sheet's last column.
    const auto [farColumn, columnMessage] = Update(Workbook("5", "ACOF"));
    EXPECT_FALSE(farColumn);
    EXPECT_NE(columnMessage.find("WSTaskNameCol (cell $B$4"), std::string::npos) << columnMessage;
    EXPECT_NE(columnMessage.find("(column 20000)"), std::string::npos) << columnMessage;
}

TEST(HostileInput, TaskRowsPastTheLimitAreToldToTheUser) {
    const auto [atLimit, none] = Update(Workbook("5", "C", 10000), false);
    EXPECT_TRUE(atLimit);
    EXPECT_EQ(none.find("10,000"), std::string::npos) << none;
    const auto [pastLimit, warning] = Update(Workbook("5", "C", 10001), false);
    EXPECT_TRUE(pastLimit);
    EXPECT_NE(warning.find("rows from row 10005 on"), std::string::npos) << warning;
}

TEST(HostileInput, CommandWordsAreWholeNumbersOrRefused) {
    std::string error;
    EXPECT_EQ(ParseCommandWord("offset:1,-3", error)->arguments, (std::vector<int>{1, -3}));
    for (const char* word :
         {"gantt:5abc", "gantt:", "offset:1,,3", "gantt:99999999999", "gantt: 5"}) {
        EXPECT_FALSE(ParseCommandWord(word, error)) << word;
        EXPECT_NE(error.find("whole numbers"), std::string::npos) << word << ": " << error;
    }
}

TEST(HostileInput, OnlyRegularFilesAreReadAndCapitalExtensionsCount) {
    TempFolder folder;
    WriteFile(folder / "PLAN.JSON", Workbook("5", "C"));
    const auto book = ReadWorkbookFile(folder / "PLAN.JSON");
    WriteWorkbookFile(*book, folder / "PLAN.JSON", folder / "OUT.XLSX");
    EXPECT_NE(ReadWorkbookFile(folder / "OUT.XLSX"), nullptr);

    // A pipe would block for ever, a device never end.
    ASSERT_EQ(mkfifo((folder / "pipe.json").c_str(), 0600), 0);
    EXPECT_NE(WhyRefused(folder / "pipe.json").find("not a regular file"), std::string::npos);
    fs::create_symlink("/dev/zero", folder / "zero.json");
    EXPECT_NE(WhyRefused(folder / "zero.json").find("not a regular file"), std::string::npos);
}

TEST(HostileInput, TheJsonOutputNeverFollowsAPlantedLinkNorLeavesATemporaryFile) {
    TempFolder folder;
    WriteFile(folder / "in.json", Workbook("5", "C"));
    WriteFile(folder / "victim.txt", "keep me");
    const auto book = ReadWorkbookFile(folder / "in.json");
    // The old fixed temporary name, and the output itself, made links to an unrelated file.
    fs::create_symlink(folder / "victim.txt", folder / "out.json.vantora-tmp");
    fs::create_symlink(folder / "victim.txt", folder / "out.json");
    WriteWorkbookFile(*book, folder / "in.json", folder / "out.json");
    EXPECT_EQ(ReadFile(folder / "victim.txt"), "keep me");
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(folder / "out.json")));
    EXPECT_EQ(folder.FileCount(), 4u);

    // A file name too long for the file system, and a loop of links: an error, no file.
    const fs::path tooLong = folder / (std::string(300, 'a') + ".json");
    EXPECT_THROW(WriteWorkbookFile(*book, {}, tooLong), WorkbookFileError);
    fs::create_symlink(folder / "loop2", folder / "loop1");
    fs::create_symlink(folder / "loop1", folder / "loop2");
    EXPECT_THROW(WriteWorkbookFile(*book, {}, folder / "loop1" / "out.json"), WorkbookFileError);
    EXPECT_EQ(folder.FileCount(), 6u);
}
