// How a chart takes its series from a block of cells (SetSourceData).
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "sheethost/model.h"

namespace sheethost {

struct ChartSource {
    std::string sourceData;  // "=Sheet1!$B$5:$E$9" (areas joined by ",")
    int plotBy = mso::kPlotByColumns;
    std::vector<ChartSeries> series;
};

// The series of the areas (side by side, over the same rows), one per column (plotBy 2) or per
// row (plotBy 1); without plotBy, one per column unless there are more columns than rows. As
// the spreadsheet guesses it: when the top-left cell is blank, the first row and the first column
// are headers; otherwise a first row (column) of text alone names the series (is the categories).
// Nullopt when the areas do not line up.
std::optional<ChartSource> ReadChartSource(const Sheet& sheet, const std::vector<Area>& areas,
                                           std::optional<int> plotBy);

// "Sheet1!$C$3:$C$9", with the sheet name quoted when it needs to be ('My Sheet'!$A$1).
std::string AbsoluteReference(const Sheet& sheet, const Area& area);

}  // namespace sheethost
