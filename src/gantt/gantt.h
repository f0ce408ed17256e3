// The Gantt drawing state and the shape helpers every drawing on the task sheet shares: the
// template shapes of the settings sheet, where drawn shapes copy their look from, how shapes are
// named after their template and row, and how all shapes of a kind are deleted again.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

#include "com/text.h"
#include "core/engine_state.h"
#include "wbs/task_table.h"
#include "workbook/workbook.h"

// Template shapes on the settings sheet. The misspelling "Gannt" is the workbook's own.
inline constexpr char kCompleteBarTemplate[] = "GanntBar100%";
inline constexpr char kProgressBarTemplate[] = "GanntBar%";
inline constexpr char kBarTemplate[] = "GanntBar";
// Followed by a resource's name, on the resource sheet: that resource's bar look.
inline constexpr char kResourceBarTemplate[] = "GanntBarByRes";
inline constexpr char kConnectorTemplate[] = "TaskConnector";
inline constexpr char kProgressLineTemplate[] = "ProgressLines";
// The named two-column table of the settings sheet: a task type, and the text shown for it.
inline constexpr char kTaskTypeTable[] = "TaskType";
// Named cell of the settings sheet holding the bar style the last drawing used.
inline constexpr char kBarStyleCell[] = "GanntBarStyle";

// Refilled on every refresh; the templates are released when the record is refilled or freed.
struct GanttStyles {
    XlObject completeBarTemplate;
    XlObject progressBarTemplate;
    XlObject barTemplate;
    XlObject connectorTemplate;
    XlObject progressLineTemplate;
    // The font of the first task's name cell, which bar labels use.
    WideString labelFontName;
    float labelFontSize = 0;
    std::int64_t barStyle = 0;
};

// The engine's Gantt drawing state (EngineGanttStyles): kpInit creates it empty, kpQuit frees it
// (releasing the templates). Commands use it in between.
void CreateGanttStyles();
void FreeGanttStyles();

// Fills the drawing state from the settings and task sheets (part of the refresh).
void LoadGanttStyles();

// The name of the plain bar template: the prefix of every bar and label drawn, and with a level
// appended the template of that summary level's colour. A workbook without the template still
// gets its usual name, so that deleting by prefix never runs with an empty one (which would
// delete every shape of the sheet).
std::string BarTemplateName();
// The name of the connector template: the prefix of every connector drawn.
std::string ConnectorTemplateName();
// The name of the progress-line template: the prefix of every day's progress line.
std::string ProgressLineTemplateName();

// Copies the line and fill of a template onto a new shape.
void CopyShapeStyle(const XlObject& source, const XlObject& target);

// Names `shape` base + row + the first letter ("A", "B", ...) not yet used on the task sheet; an
// empty base means the bar template's name.
void NameNewShape(const XlObject& shape, const TaskRecord& task, std::string_view base);

// Deletes every shape of the task sheet whose name begins with `prefix` (exact, case-sensitive).
void DeleteShapesByPrefix(std::string_view prefix);
void DeleteTaskBars();
void DeleteTaskConnectors();

// Geometry of a task row's chart cells.
// The places of cells of the task sheet, each read once: a cell's left and width follow from its
// column and its top and height from its row. Kept for as long as nothing changes the sheet's
// rows or columns, such as while the bars of the whole table are drawn.
class ChartGeometry {
  public:
    BarRect CellRect(std::int64_t row, std::int64_t column);

  private:
    struct Extent {
        double start = 0;
        double size = 0;
    };
    std::unordered_map<std::int64_t, Extent> columns_;
    std::unordered_map<std::int64_t, Extent> rows_;
};
// The one-minute slot of the chart cell on `row` that holds time `t`.
BarRect TimeToCellRect(std::int64_t row, double t, ChartGeometry& geometry);
BarRect TimeToCellRect(std::int64_t row, double t);
// From a's left edge to b's right edge.
BarRect SpanRect(const BarRect& a, const BarRect& b);
// Fills the task's slots and its planned and actual bars from its dates.
void ComputeTaskBarRects(TaskRecord& task, ChartGeometry& geometry);
