// Where a chart lives: embedded in a worksheet, framed by a chart shape, or on a chart sheet of
// its own. A chart moves between the two with Location.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "sheethost/model.h"

namespace sheethost {

// The size the spreadsheet gives a new embedded chart.
inline constexpr double kDefaultChartWidth = 360;
inline constexpr double kDefaultChartHeight = 216;

struct ChartPlace {
    std::shared_ptr<Sheet> sheet;  // set with `frame` for an embedded chart
    std::shared_ptr<Shape> frame;
    ChartSheet* chartSheet = nullptr;  // set for a chart on a chart sheet
};

// Nullopt once the chart has been deleted.
std::optional<ChartPlace> FindChartPlace(Workbook& book, const std::shared_ptr<Chart>& chart);

// Embeds the chart in the sheet, in a new frame with the given box, in front of all shapes.
std::shared_ptr<Shape> EmbedChart(Sheet& sheet, const std::shared_ptr<Chart>& chart, double left,
                                  double top, double width, double height);

// Takes the chart (and its frame or chart sheet) out of the workbook.
void RemoveChart(Workbook& book, const std::shared_ptr<Chart>& chart);

// The first of "Chart1", "Chart2", ... that no sheet of the workbook is called.
std::string NewChartSheetName(const Workbook& book);

}  // namespace sheethost
