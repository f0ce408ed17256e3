// Workbooks made by another program: Debian's python3-openpyxl writes them in the test.
#include <gtest/gtest.h>

#include <cstdlib>

#include "package_files.h"
#include "sheethost/model.h"
#include "xlsx/xlsx.h"

namespace xlsx::testing {
namespace {

constexpr const char* kPython = "/usr/bin/python3";

constexpr const char* kScript = R"(
import sys, datetime, openpyxl
from openpyxl.styles import Font, PatternFill
from openpyxl.workbook.defined_name import DefinedName
book = openpyxl.Workbook()
plan = book.active
plan.title = "Plan"
plan["A1"] = "Name"
plan["B1"] = 2.5
plan["C1"] = "=B1*4"
plan["D1"] = datetime.datetime(2024, 3, 1)
plan["A1"].font = Font(bold=True, size=12)
plan["B1"].fill = PatternFill("solid", fgColor="FF0000")
plan.row_dimensions[3].hidden = True
plan.column_dimensions["A"].width = 25
plan.sheet_properties.codeName = "wsPlan"
other = book.create_sheet("Other Sheet")
other["A1"] = True
rate = DefinedName("Rate", attr_text="Plan!$B$1")
if hasattr(book.defined_names, "add"):
    book.defined_names.add(rate)
else:
    book.defined_names.append(rate)
book.save(sys.argv[1])
)";

bool OpenpyxlAvailable() {
    return std::system((std::string(kPython) + " -c 'import openpyxl' 2>/dev/null").c_str()) == 0;
}

TEST(OtherProgram, OpenpyxlWorkbookLoadsAndSurvivesASave) {
    if (!OpenpyxlAvailable()) {
        GTEST_SKIP() << "python3-openpyxl is not installed (apt-get install python3-openpyxl)";
    }
    TempFolder folder;
    WriteFile(folder / "make.py", kScript);
    const std::string command = std::string(kPython) + " " + (folder / "make.py").string() + " " +
                                (folder / "made.xlsx").string();
    ASSERT_EQ(std::system(command.c_str()), 0);

    const auto book = LoadXlsx(folder / "made.xlsx");
    ASSERT_EQ(book->sheets.size(), 2u);
    const sheethost::Sheet& plan = *book->sheets[0];
    EXPECT_EQ(plan.codeName, "wsPlan");
    EXPECT_EQ(book->sheets[1]->name, "Other Sheet");
    EXPECT_EQ(sheethost::FindCell(plan, 1, 1)->value, sheethost::Value(std::string("Name")));
    EXPECT_TRUE(sheethost::FindCell(plan, 1, 1)->style->font.bold);
    EXPECT_EQ(sheethost::FindCell(plan, 1, 2)->style->interior.colorIndex, 3);
    EXPECT_EQ(sheethost::FindCell(plan, 1, 3)->formula, "=B1*4");
    EXPECT_TRUE(sheethost::IsDateFormat(sheethost::FindCell(plan, 1, 4)->style->numberFormat));
    EXPECT_EQ(sheethost::FindCell(plan, 1, 4)->value, sheethost::Value(45352.0));
    EXPECT_TRUE(plan.rows.at(3).hidden);
    EXPECT_NEAR(*plan.columns.at(1).width, 25, 0.75);
    ASSERT_EQ(book->names.size(), 1u);
    EXPECT_EQ(book->names[0].refersTo, "=Plan!$B$1");

    SaveXlsx(*book, folder / "made.xlsx", folder / "saved.xlsx");
    const auto again = LoadXlsx(folder / "saved.xlsx");
    ASSERT_EQ(again->sheets.size(), 2u);
    for (std::size_t index = 0; index < 2; ++index) {
        EXPECT_EQ(again->sheets[index]->cells, book->sheets[index]->cells);
        EXPECT_EQ(again->sheets[index]->rows, book->sheets[index]->rows);
        EXPECT_EQ(again->sheets[index]->columns, book->sheets[index]->columns);
    }
    EXPECT_EQ(again->names, book->names);
    EXPECT_EQ(ReadPart(folder / "saved.xlsx", "xl/theme/theme1.xml"),
              ReadPart(folder / "made.xlsx", "xl/theme/theme1.xml"));
    // The saved file is one openpyxl reads back too.
    const std::string check = std::string(kPython) +
                              " -c 'import openpyxl,sys; b=openpyxl.load_workbook(sys.argv[1]); "
                              "assert b[\"Plan\"][\"C1\"].value == \"=B1*4\"' " +
                              (folder / "saved.xlsx").string();
    EXPECT_EQ(std::system(check.c_str()), 0);
}

}  // namespace
}  // namespace xlsx::testing
