// What the chart's drawing files share inside the Gantt subsystem: the builders of bars, shaped
// bars, labels and connectors. Each builder adds its shape to the task sheet, styles and names it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "com/text.h"
#include "gantt/templates.h"
#include "wbs/task_table.h"
#include "workbook/workbook.h"

// Placement: the shape moves and sizes with the cells under it.
inline constexpr double kMoveAndSize = 1;

// Longest texts a label shows.
inline constexpr std::size_t kLabelLength = 100;
inline constexpr std::size_t kPercentLabelLength = 10;

// The right edge of a drawn shape as the host reports it (0 for no shape).
double RightEdge(const XlObject& shape);

// One bar of `look`'s height centred in the row box {left, top, width, rowHeight}. Summary tasks
// under a bar style from 1 to 6 get the style's shaped bar over an invisible rectangle that keeps
// the connection sites; the shaped bar is the result then (none for another positive style).
XlObject DrawBarShape(TaskRecord& task, double left, double top, double width, double rowHeight,
                      const ShapeTemplate& look);
double DrawBar(TaskRecord& task, const BarRect& rect, const ShapeTemplate& look);
// The freeform of bar style 1..6 for the bar box {left, top, width, height}; none for any other
// style.
XlObject BuildShapedBar(std::int64_t style, double left, double top, double width, double height);

// A borderless text box in the label font at x, vertically centred on the planned bar whose top is
// y; returns its right edge.
double AddLabel(const TaskRecord& task, WideStringView text, double x, double y);
// The text shown for a started task of `type`, from the "TaskType" table; empty when none.
WideString LookupTaskTypeLabel(WideStringView type);
// Draws a typed task's symbols; returns the planned and actual right edges.
std::pair<double, double> DrawTypedSymbols(TaskRecord& task);
// The progress of a started task: its bar at the actual start when that left the plan, and the
// percentage label; returns the label's right edge.
double DrawProgressBar(TaskRecord& task);
// The first `length` characters of `text`.
WideString Cut(WideString text, std::size_t length);

// Shape letters run from "A" through the following character codes and stop before the
// surrogate range, where a single code unit is no longer a character.
inline constexpr OLECHAR kFirstSurrogate = 0xD800;

// The name of the n-th shape (0 = "A") of a row with this prefix.
std::string RowShapeName(std::string_view prefix, std::int64_t row, int index);

// A connector being drawn from one shape to another.
struct ConnectorLink {
    XlObject fromShape;
    XlObject toShape;
    XlObject connector;
    // 1 = line colour from the connector template, otherwise black.
    std::int64_t colourFromTemplate = 0;
    // 1 = re-shape the elbow.
    std::int64_t adjustElbow = 0;
};

// Adds the connector from site `begin` of the link's from shape to site `end` of its to shape,
// straight when the two ends nearly meet, else elbow.
void AddConnector(ConnectorLink& link, int begin, int end);
// The elbow's position and offset for the link's new connector.
std::pair<float, float> ComputeElbowAdjustments(const ConnectorLink& link);
// The level line from a typed task's planned symbol to its actual one.
void DrawSlipConnector(const TaskRecord& task);
