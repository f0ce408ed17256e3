// Embedded chart parts (xl/charts/chartN.xml): the chart's kind, title, axes and the references
// of its series, which is what the host models of a chart.
#pragma once

#include <optional>
#include <string>

#include "sheethost/shape_model.h"
#include "xlsx/colors.h"

namespace xlsx {

// The chart a part describes; empty for a chart the host cannot model (a kind it does not know,
// several plots). The source-data address is not in the file, so it stays empty.
std::optional<sheethost::Chart> ReadChartPart(const std::string& bytes,
                                              const std::string& partName);

// The series are drawn in the theme's accent colours in turn.
std::string WriteChartPart(const sheethost::Chart& chart, const ThemeColors& theme);

// Whether two charts agree on everything a chart part holds.
bool SameChartInFile(const sheethost::Chart& a, const sheethost::Chart& b);

}  // namespace xlsx
