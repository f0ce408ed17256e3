// A small project for the report tests: the test project of the other subsystems with a
// dictionary sheet, a duration column (CA) and load columns (CB, CC, CD beside the resource
// slots C, D, E). "Now" is noon of 1 April 2024 unless a test pins another time.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "calendar/resources.h"
#include "engine/refresh.h"
#include "sheethost/cell_values.h"
#include "support/project_json.h"
#include "support/times_of_day.h"
#include "values/values.h"
#include "wbs/task_table.h"

namespace reportstest {

using testsupport::k0800;
using testsupport::k1000;
using testsupport::k1200;
using testsupport::k1700;

using testsupport::ProjectJson;

class ReportProject : public ::testing::Test {
  protected:
    ReportProject() {
        project.AddSheet("Dictionary", "wsDictionary",
                         {{"B3", "BAC"},         {"C3", "Budget"},  {"B4", "PV"},
                          {"C4", "Planned"},     {"B5", "EV"},      {"C5", "Earned"},
                          {"B6", "AC"},          {"C6", "Actual"},  {"B7", "SV"},
                          {"C7", "SV"},          {"B8", "CV"},      {"C8", "CV"},
                          {"B9", "SPI"},         {"C9", "SPI"},     {"B10", "CPI"},
                          {"C10", "CPI"},        {"B11", "EAC"},    {"C11", "EAC"},
                          {"B12", "ENDDATEORG"}, {"C12", "End"},    {"B13", "ENDDATECHGTO"},
                          {"C13", "Forecast"},   {"B14", "EVMRPT"}, {"C14", "EVM as of \\* (\\*)"},
                          {"B15", "WLRPT"},      {"C15", "Load"}});
        project.AddSetting("WSDurationCol", "C33", "CA");
        project.AddSetting("WSLoadCol", "C34", "CB");
        project.AddSetting("WSForecastBySpiFlg", "C35", 1);
    }

    // Calendar days 1 April 2024 onwards, 08:00 to 17:00, one per top-level task group.
    void CalendarDays(int count) {
        for (int i = 0; i < count; ++i) {
            const std::string row = std::to_string(3 + i);
            project.Cells("Calendar")["B" + row] = ProjectJson::kDay1 + i;
            project.Cells("Calendar")["C" + row] = k0800;
            project.Cells("Calendar")["D" + row] = k1700;
        }
    }

    // Binds the project and loads it as an earlier command would have left it (the update pass
    // itself would rewrite the planned work the tests set).
    void Load() {
        project.Bind();
        ASSERT_TRUE(RefreshSettings());
        LoadResources();
        TaskTable_Load();
    }

    const sheethost::Sheet* Report(std::string_view name) const {
        return sheethost::FindSheet(project.Book(), name).get();
    }
    sheethost::Value Shown(std::string_view sheet, int row, int column) const {
        return sheethost::CellDisplayValue(project.Book(), *Report(sheet), row, column);
    }
    std::string Text(std::string_view sheet, int row, int column) const {
        const sheethost::Value value = Shown(sheet, row, column);
        if (const auto* text = std::get_if<std::string>(&value)) return *text;
        if (const auto* number = std::get_if<double>(&value)) return values::NumberText(*number);
        return {};
    }
    double Number(std::string_view sheet, int row, int column) const {
        const sheethost::Value value = Shown(sheet, row, column);
        const auto* number = std::get_if<double>(&value);
        return number != nullptr ? *number : -1.0e300;
    }
    std::string Formula(std::string_view sheet, int row, int column) const {
        const sheethost::Cell* cell = sheethost::FindCell(*Report(sheet), row, column);
        return cell != nullptr ? cell->formula : std::string();
    }
    int SheetsNamed(std::string_view prefix) const {
        int count = 0;
        for (const auto& sheet : project.Book().sheets) count += sheet->name.starts_with(prefix);
        return count;
    }

    ProjectJson project;
};

}  // namespace reportstest
