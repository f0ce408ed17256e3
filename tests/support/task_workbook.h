// A small project workbook bound to the engine: a task sheet (wsWBS) with ten name columns from C,
// a settings sheet (wsSettings) with every WS key and the calendar unit as named cells, a calendar
// sheet (wsCalendar) and a resource sheet (wsResource). A test adds task names and calendar days,
// then calls Bind(), which also runs the refresh so the settings record is loaded.
//
//     testsupport::TaskWorkbook project;
//     project.AddTask(5, 1, "Plan");
//     project.AddTask(6, 2, "Scope");
//     project.Bind();
//     TaskTable_Load();
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "engine/refresh.h"
#include "sheethost/model.h"
#include "support/engine_workbook.h"

namespace testsupport {

// Columns of the task sheet: WBS number B, names C..L, then the fields, the chart area from X.
struct TaskColumns {
    static constexpr int kWbsNo = 2;
    static constexpr int kFirstName = 3;
    static constexpr int kType = 13;
    static constexpr int kResource = 14;
    static constexpr int kPv = 15;
    static constexpr int kPlannedStart = 16;
    static constexpr int kPlannedEnd = 17;
    static constexpr int kAc = 18;
    static constexpr int kActualStart = 19;
    static constexpr int kActualEnd = 20;
    static constexpr int kPercent = 21;
    static constexpr int kPredecessors = 22;
};

class TaskWorkbook {
  public:
    static constexpr int kFirstTaskRow = 5;

    TaskWorkbook()
        : wbs(workbook.AddSheet("WBS", "wsWBS")),
          settings(workbook.AddSheet("Settings", "wsSettings")),
          calendar(workbook.AddSheet("Calendar", "wsCalendar")),
          resources(workbook.AddSheet("Resources", "wsResource")) {
        const std::pair<const char*, sheethost::Value> keys[] = {
            {"WSWBSSheetName", std::string("WBS")},
            {"WSFirstCol", std::string("B")},
            {"WSLastCol", std::string("W")},
            {"WSProjectStartDateCell", std::string("D2")},
            {"WSProjectEndDateCell", std::string("F2")},
            {"WSCalendarDateRow", 3.0},
            {"WSCalendarFirstCol", std::string("X")},
            {"WSFirstTaskRow", static_cast<double>(kFirstTaskRow)},
            {"WSWBSNoCol", std::string("B")},
            {"WSTaskNameCol", std::string("C")},
            {"WSTaskTypeCol", std::string("M")},
            {"WSResourceCol", std::string("N")},
            {"WSPVByTaskCol", std::string("O")},
            {"WSPlannedStartDateCol", std::string("P")},
            {"WSPlannedEndDateCol", std::string("Q")},
            {"WSACByTaskCol", std::string("R")},
            {"WSActualStartDateCol", std::string("S")},
            {"WSActualEndDateCol", std::string("T")},
            {"WSPercentCompleteCol", std::string("U")},
            {"WSPredecessorsCol", std::string("V")},
            {"WSWBSNoBegin", 1.0},
            {"WSWBSNoFormat", std::string(".")},
            {"WSTaskColorCompletedFlg", 0.0},
            {"WSTaskColorUseFlg", 0.0},
            {"WSFilterOptionShowDependence", 0.0},
            {"WSFilterOptionShowSummary", 0.0},
            {"WSAutoUpdateMode", 0.0},
            {"WSTaskLinkerColorFlg", 0.0},
            {"CSCalendarUnit", 60.0},
            {"GanntBarStyle", 0.0},
        };
        int row = 3;
        for (const auto& [name, value] : keys) {
            workbook.SetNamedCell(settings, name, row++, 3, value);
        }
    }

    // Changes the value of a named settings cell before Bind.
    void SetSetting(std::string_view name, sheethost::Value value) {
        const sheethost::DefinedName* defined = sheethost::FindName(workbook.book->names, name);
        const std::string row = defined->refersTo.substr(defined->refersTo.rfind('$') + 1);
        sheethost::CellAt(settings, std::stoi(row), 3).value = std::move(value);
    }

    // A task name in the name column of outline `level` (1 = column C).
    void AddTask(int row, int level, std::string name) {
        EngineWorkbook::SetCell(wbs, row, TaskColumns::kFirstName + level - 1, std::move(name));
    }

    // The next calendar day, from row 3 of the calendar sheet down.
    void AddCalendarDay(double date, double start, double end) {
        EngineWorkbook::SetCell(calendar, nextCalendarRow_, 2, date);
        EngineWorkbook::SetCell(calendar, nextCalendarRow_, 3, start);
        EngineWorkbook::SetCell(calendar, nextCalendarRow_, 4, end);
        ++nextCalendarRow_;
    }

    bool RowHidden(int row) const {
        const auto found = wbs.rows.find(row);
        return found != wbs.rows.end() && found->second.hidden;
    }

    // kpInit, kpSetWorkBook and the refresh.
    bool Bind() {
        workbook.Bind();
        return RefreshSettings();
    }

    EngineWorkbook workbook;
    sheethost::Sheet& wbs;
    sheethost::Sheet& settings;
    sheethost::Sheet& calendar;
    sheethost::Sheet& resources;

  private:
    int nextCalendarRow_ = 3;
};

}  // namespace testsupport
