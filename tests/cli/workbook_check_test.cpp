#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iostream>
#include <sstream>

#include "cli/blank_workbook.h"
#include "cli/commands.h"
#include "cli/session.h"
#include "cli/workbook_commands.h"
#include "cli/workbook_file.h"
#include "sheethost/address.h"
#include "sheethost/cell_values.h"
#include "sheethost/sheethost.h"
#include "values/values.h"

namespace fs = std::filesystem;
using sheethost::Sheet;
using sheethost::Workbook;

namespace {

std::shared_ptr<Workbook> Blank() {
    // Monday 2024-04-01: the ten working days run to Friday 2024-04-12.
    return NewBlankWorkbook(BlankProject{values::DateSerial(2024, 4, 1), 10});
}

Sheet& SheetCoded(Workbook& book, std::string_view codeName) {
    for (auto& sheet : book.sheets) {
        if (sheet->codeName == codeName) return *sheet;
    }
    throw std::logic_error("no sheet " + std::string(codeName));
}

void Type(Workbook& book, std::string_view codeName, const std::string& address,
          const std::string& text) {
    const auto area = sheethost::ParseArea(address);
    ASSERT_TRUE(area) << address;
    ASSERT_TRUE(sheethost::TypeIntoCell(SheetCoded(book, codeName), area->top, area->left, text));
}

// Types into the named settings cell; answers its place, such as "Settings!C10".
std::string SetSetting(Workbook& book, const std::string& key, const std::string& text) {
    Sheet& settings = SheetCoded(book, "wsSettings");
    const auto range = sheethost::ResolveAddress(book, book.sheets[1], key);
    EXPECT_TRUE(range) << key;
    const sheethost::Area& cell = range->areas.front();
    EXPECT_TRUE(sheethost::TypeIntoCell(settings, cell.top, cell.left, text));
    return "Settings!" + sheethost::ColumnLetters(cell.left) + std::to_string(cell.top);
}

// A small project: a summary, two tasks of the team, the second after the first.
void TypeProject(Workbook& book) {
    Type(book, "wsWBS", "C5", "Build the shed");
    Type(book, "wsWBS", "D6", "F1: Lay the foundation");
    Type(book, "wsWBS", "N6", "TEAM");
    Type(book, "wsWBS", "P6", "8:00");
    Type(book, "wsWBS", "Q6", "12:00");
    Type(book, "wsWBS", "D7", "W1: Raise the walls");
    Type(book, "wsWBS", "N7", "TEAM");
    Type(book, "wsWBS", "P7", "13:00");
    Type(book, "wsWBS", "Q7", "16:30");
    Type(book, "wsWBS", "V7", "F1");
}

std::string Texts(const std::vector<Finding>& findings) {
    std::string text;
    for (const Finding& finding : findings) {
        text += (finding.blocking ? "error " : "warning ") + FindingText(finding) + "\n";
    }
    return text;
}

class TemporaryFolder {
  public:
    TemporaryFolder()
        : path_(fs::temp_directory_path() /
                ("vantora-new-" + std::to_string(reinterpret_cast<std::uintptr_t>(this)))) {
        fs::create_directories(path_);
    }
    ~TemporaryFolder() { fs::remove_all(path_); }
    fs::path operator/(const std::string& name) const { return path_ / name; }

  private:
    fs::path path_;
};

// Runs the vantora program built beside the tests; answers its exit code.
int RunProgram(const std::string& arguments) {
    const int status = std::system(("../vantora " + arguments + " >/dev/null 2>&1").c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace

TEST(NewWorkbook, EveryFileKindReadsBackReadyAndTheUpdateNumbersTypedTasks) {
    TemporaryFolder folder;
    for (const char* name : {"project.xlsx", "project.xlsm", "project.json"}) {
        SCOPED_TRACE(name);
        WriteWorkbookFile(*Blank(), {}, folder / name);
        const auto book = ReadWorkbookFile(folder / name);
        EXPECT_EQ(Texts(CheckWorkbook(book)), "");

        TypeProject(*book);
        EXPECT_EQ(Texts(CheckWorkbook(book)), "");
        std::ostringstream messages;
        std::streambuf* saved = std::cerr.rdbuf(messages.rdbuf());
        const CommandCall update{FindEngineCommand("update-wbs"), {}};
        const bool ran = RunEngineSession(book, {&update, 1}, SessionOptions{});
        std::cerr.rdbuf(saved);
        EXPECT_TRUE(ran);
        EXPECT_EQ(messages.str(), "") << "a task of the new workbook drew a message";
        const Sheet& wbs = SheetCoded(*book, "wsWBS");
        EXPECT_EQ(sheethost::DisplayText(sheethost::CellDisplayValue(*book, wbs, 7, 2)), "1.2");
        EXPECT_EQ(sheethost::DisplayText(sheethost::CellDisplayValue(*book, wbs, 7, 15)), "210");
        EXPECT_EQ(sheethost::DisplayText(sheethost::CellDisplayValue(*book, wbs, 5, 15)), "450")
            << "the summary rolls its children's work up";
    }
}

TEST(NewWorkbook, TheCalendarHoldsWorkingDaysOnlyAndTheChartCoversThem) {
    // Friday 2024-04-05: the next day is Monday the 8th.
    const auto book = NewBlankWorkbook(BlankProject{values::DateSerial(2024, 4, 5), 3});
    const Sheet& calendar = SheetCoded(*book, "wsCalendar");
    std::vector<std::string> days;
    for (int row = 3; row <= 6; ++row) {
        days.push_back(values::FormatDate(
            sheethost::TextToNumber(
                sheethost::DisplayText(sheethost::CellDisplayValue(*book, calendar, row, 2)))
                .value_or(0),
            "yyyy/mm/dd"));
    }
    EXPECT_EQ(days,
              (std::vector<std::string>{"2024/04/05", "2024/04/08", "2024/04/09", "1899/12/30"}));
    // From Friday 08:00 to Tuesday 17:00 is 105 hours, one chart column an hour from W.
    const auto body = sheethost::ResolveAddress(*book, book->sheets[1], "CSBodyRange");
    const Sheet& settings = SheetCoded(*book, "wsSettings");
    EXPECT_EQ(sheethost::DisplayText(sheethost::CellDisplayValue(
                  *book, settings, body->areas.front().top, body->areas.front().left)),
              "W5:" + sheethost::ColumnLetters(23 + 105) + "44");
}

struct BrokenCase {
    const char* what;
    std::function<std::string(Workbook&)> breakIt;  // answers the place the finding names
    bool blocking;
};

TEST(CheckWorkbook, NamesEachFindingWithItsPlace) {
    const std::vector<BrokenCase> cases{
        {"task sheet under another code name",
         [](Workbook& book) {
             SheetCoded(book, "wsWBS").codeName = "Sheet1";
             return std::string("the workbook: no sheet has the code name wsWBS");
         },
         true},
        {"no dictionary sheet",
         [](Workbook& book) {
             book.sheets.erase(book.sheets.begin() + 4);
             return std::string("wsDictionary");
         },
         false},
        {"a named cell missing",
         [](Workbook& book) {
             std::erase_if(book.names,
                           [](const auto& name) { return name.name == "WSFirstTaskRow"; });
             return std::string("Settings: no cell of this sheet is named WSFirstTaskRow");
         },
         true},
        {"lower-case column letters",
         [](Workbook& book) { return SetSetting(book, "WSLastCol", "v") + ": WSLastCol"; }, true},
        {"a column that is no column",
         [](Workbook& book) { return SetSetting(book, "WSPredecessorsCol", "V1"); }, true},
        {"a zero unit", [](Workbook& book) { return SetSetting(book, "CSCalendarUnit", "0"); },
         true},
        {"a negative unit",
         [](Workbook& book) { return SetSetting(book, "CSCalendarUnit", "-60"); }, true},
        {"a first task row below the table",
         [](Workbook& book) {
             SetSetting(book, "WSFirstTaskRow", "60");
             return std::string("WBS!V60: the first task row 60 lies outside the task table");
         },
         true},
        {"a first task row on the chart's dates",
         [](Workbook& book) {
             SetSetting(book, "WSFirstTaskRow", "2");
             return std::string("is not below the chart's date row");
         },
         true},
        {"a renamed task sheet",
         [](Workbook& book) {
             SheetCoded(book, "wsWBS").name = "Plan";
             return std::string("Plan: WSWBSSheetName says 'WBS'");
         },
         false},
        {"a flag that is no flag",
         [](Workbook& book) { return SetSetting(book, "WSAutoUpdateMode", "yes"); }, false},
        {"a bar style out of range",
         [](Workbook& book) { return SetSetting(book, "GanntBarStyle", "7"); }, false},
        {"a missing template",
         [](Workbook& book) {
             auto& shapes = SheetCoded(book, "wsSettings").shapes;
             shapes.erase(*shapes.Named("ProgressLines"));
             return std::string("no template shape named ProgressLines");
         },
         false},
        {"a calendar without days",
         [](Workbook& book) {
             SheetCoded(book, "wsCalendar").cells.clear();
             return std::string("Calendar!B3: the calendar has no days");
         },
         true},
        {"a calendar with a gap",
         [](Workbook& book) {
             Type(book, "wsCalendar", "B5", "");
             return std::string("Calendar!B5: row 5 is empty, so the days from row 6 on");
         },
         false},
        {"a day that is no date",
         [](Workbook& book) {
             Type(book, "wsCalendar", "B4", "'Monday");
             return std::string("Calendar!B4: 'Monday' is not a date");
         },
         true},
        {"a predecessor that names no task",
         [](Workbook& book) {
             Type(book, "wsWBS", "V7", "F1,X9SS");
             return std::string("WBS!V7: the predecessor 'X9SS' of task 1.2");
         },
         false},
        {"an end before its start",
         [](Workbook& book) {
             Type(book, "wsWBS", "P6", "11:00");
             Type(book, "wsWBS", "Q6", "9:00");
             return std::string("WBS!Q6: the planned end of task 1.1");
         },
         false},
        {"a resource not on the resource sheet",
         [](Workbook& book) {
             Type(book, "wsWBS", "N7", "CREW");
             return std::string("WBS!N7: the resource 'CREW'");
         },
         false},
    };
    for (const BrokenCase& broken : cases) {
        SCOPED_TRACE(broken.what);
        const auto book = Blank();
        TypeProject(*book);
        const std::string place = broken.breakIt(*book);
        const std::vector<Finding> findings = CheckWorkbook(book);
        ASSERT_EQ(findings.size(), 1u) << Texts(findings);
        EXPECT_NE(FindingText(findings[0]).find(place), std::string::npos) << Texts(findings);
        EXPECT_EQ(findings[0].blocking, broken.blocking);
    }
}

TEST(CheckWorkbook, ACycleCodeIsNoMissingResource) {
    const auto book = Blank();
    TypeProject(*book);
    Type(*book, "wsWBS", "N7", "W2");
    EXPECT_EQ(Texts(CheckWorkbook(book)), "");
}

TEST(Program, EveryCommandStopsOnAnUnusableWorkbookAndNamesTheClosestCommand) {
    TemporaryFolder folder;
    const auto book = Blank();
    SetSetting(*book, "CSCalendarUnit", "0");
    WriteWorkbookFile(*book, {}, folder / "broken.json");
    const std::string broken = (folder / "broken.json").string();
    EXPECT_EQ(RunProgram("update-wbs " + broken), 5);
    EXPECT_EQ(RunProgram("check " + broken), 5);
    EXPECT_EQ(RunProgram("run " + broken + " update-wbs"), 5);
    EXPECT_EQ(RunProgram("new " + (folder / "fresh.xlsx").string()), 0);
    EXPECT_EQ(RunProgram("new " + (folder / "fresh.xlsx").string()), 2) << "never replaced";
    EXPECT_EQ(RunProgram("check " + (folder / "fresh.xlsx").string()), 0);
    EXPECT_EQ(RunProgram("update-wbs " + broken + " --rows 5:6"), 2)
        << "the update does not work on the selection";

    EXPECT_EQ(ClosestCommandName("updte-wbs", {}), "update-wbs");
    EXPECT_EQ(ClosestCommandName("evm-projet", {}), "evm-project");
    const std::string_view others[] = {"check"};
    EXPECT_EQ(ClosestCommandName("chek", others), "check");
    EXPECT_EQ(ClosestCommandName("frobnicate", others), "");
}

TEST(SampleWorkbook, TheShippedXlsxIsTheSampleJsonConverted) {
    TemporaryFolder folder;
    const fs::path examples =
        fs::path(__FILE__).parent_path().parent_path().parent_path() / "examples";
    WriteWorkbookFile(*ReadWorkbookFile(examples / "sample.json"), {}, folder / "fresh.xlsx");
    const auto shipped = ReadWorkbookFile(examples / "sample.xlsx");
    const auto fresh = ReadWorkbookFile(folder / "fresh.xlsx");
    shipped->name = fresh->name;  // a workbook read from a file is named after it
    EXPECT_EQ(sheethost::DumpWorkbookJson(*shipped), sheethost::DumpWorkbookJson(*fresh))
        << "make it again: vantora convert examples/sample.json -o examples/sample.xlsx "
           "--overwrite";
}
