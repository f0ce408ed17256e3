// Task records and the task table.
//
// The task sheet holds one task per row from the first task row down to the first row without a
// name. The outline is not stored as numbers: it is the column in which a task's name stands among
// ten consecutive name columns (the first for top-level tasks, the second for level 2, ...). The
// table turns that layout into outline counters, WBS numbers, levels and leaf flags, and indexes
// the records by WBS number in sheet order. A row's cells are read into its record on demand
// (TaskRecord_ReadRow), not by the load.
//
// Everything here works on the engine's task table and settings record (engine/engine_state.h).
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "calendar/calendar.h"
#include "core/strdict.h"

// A rectangle in points on the task sheet.
struct BarRect {
    double left = 0.0;
    double top = 0.0;
    double width = 0.0;
    double height = 0.0;
};

// One task row. Records are pooled by the table and reused from one load to the next, so a record
// keeps the values of its previous row until TaskRecord_ReadRow runs on it.
struct TaskRecord {
    std::string wbsNo;
    Bstr nameCell;
    Bstr typeCell;
    // The key by which the task's resource is found.
    Bstr resourceCell;
    // Planned and actual work in minutes, as the cells hold them.
    std::string pvText;
    std::string acText;
    // Day serials with a time fraction; 0 = empty.
    double plannedStart = 0.0;
    double plannedEnd = 0.0;
    double actualStart = 0.0;
    double actualEnd = 0.0;
    std::string percentText;
    std::string predecessors;
    std::int64_t row = 0;
    // 1 = top level.
    std::int64_t level = 0;
    // 1 for an ordinary task, 0 for a summary task.
    std::int64_t isLeaf = 0;
    // The top-level group, counted from 1; it selects the task's calendar day.
    std::int64_t groupIndex = 0;

    // Earned value, filled by the earned-value computation.
    std::string durationText;
    double bac = 0.0;
    double ac = 0.0;
    double pv = 0.0;
    double ev = 0.0;
    double cv = 0.0;
    double sv = 0.0;
    double cpi = 0.0;
    double spi = 0.0;
    double eac = 0.0;
    double etc = 0.0;

    // Geometry of the task's bars, filled when the task is drawn.
    BarRect plannedStartSlot;
    BarRect plannedFinishSlot;
    BarRect actualStartSlot;
    BarRect actualFinishSlot;
    BarRect plannedBar;
    BarRect actualBar;

    // A recurring task's cycle ("W" or "M", empty for an ordinary task) and count.
    std::string cycleUnit;
    std::int64_t cycleCount = 0;
    // Shown beside the task's label on the chart.
    std::string noteText;

    // 1 once a predecessor constraint of the task is found violated.
    std::int64_t dependencyError = 0;
};

// The number of outline levels, one name column each.
inline constexpr int kNameColumns = 10;
// The most task rows a load sees.
inline constexpr std::int64_t kMaxTaskRows = 10000;

struct TaskTable {
    // WBS number -> record, in sheet order: entry n is the n-th task row.
    StrDict<TaskRecord> byWbs{Ownership::kIndexesOnly};
    std::int64_t taskCount = 0;
    // Case-folded task code -> the tasks with that code, in sheet order. Follows the names the
    // records hold, stale ones included, so a look-up finds what a walk down the table would.
    std::unordered_map<std::u32string, std::vector<TaskRecord*>> byCode;
    // "1", "2", ... -> record; owns every record.
    StrDict<TaskRecord> pool{Ownership::kOwnsRecords};
    std::int64_t poolSize = 0;
    // Row i belongs to sheet row firstTaskRow + i; column j < 10 is the running counter of outline
    // level j + 1 at that row. Column 10 stays 0, so a scan of a row always ends.
    std::array<std::array<std::int64_t, kNameColumns + 1>, kMaxTaskRows + 1> outline{};
};

// Creates the engine's task table with 200 pooled records.
void TaskTable_Init();
// Frees the engine's task table and every pooled record.
void TaskTable_Free();

// Counts the task rows, derives the outline and indexes the records by WBS number. Needs the
// settings loaded and the task sheet bound; touches no record field but the outline ones.
void TaskTable_Load();
// Reads the row's cells into the record and places its times on the task's calendar day.
void TaskRecord_ReadRow(TaskRecord& record);

// Look-ups; none reads the sheet. Null when there is no such task.
TaskRecord* Tasks_First();
TaskRecord* Tasks_Last();
TaskRecord* Tasks_Next(const TaskRecord& record);
TaskRecord* Tasks_ByRow(std::int64_t row);
TaskRecord* Tasks_ByWbs(std::string_view wbsText);
// The first task whose code (its name up to the first of ":|,_-#") equals `code`, ignoring case.
TaskRecord* Tasks_ByCode(std::string_view code);
// By code, else by WBS number.
TaskRecord* Tasks_Find(std::string_view reference);
// The rows of the task's parent, grandparent, ..., nearest first, each followed by ",".
std::string Tasks_AncestorRows(std::int64_t row);

// True when one of the row's ten name cells holds more than blanks.
bool IsTaskRow(std::int64_t row);
// The task rows on the sheet now: consecutive task rows from the first task row on, at most
// kMaxTaskRows. The load counts them the same way.
std::int64_t TaskRowCount();
// The number of components of a WBS text.
std::int64_t WbsLevel(std::string_view wbsText);
// The WBS text of outline row i.
std::string Outline_WbsText(std::int64_t i);
// 1 when no child follows the task (the next row has no counter one level deeper), else 0.
std::int64_t Outline_IsLeaf(const TaskRecord& record);
// A plain prefix test on the WBS texts.
bool IsDescendant(const TaskRecord& parent, const TaskRecord& other);
bool IsChild(const TaskRecord& parent, const TaskRecord& other);
