#include "sheethost/chart_place.h"

#include <algorithm>

#include "sheethost/shape_sheet.h"

namespace sheethost {

std::optional<ChartPlace> FindChartPlace(Workbook& book, const std::shared_ptr<Chart>& chart) {
    for (const auto& sheet : book.sheets) {
        if (std::find(sheet->charts.begin(), sheet->charts.end(), chart) != sheet->charts.end()) {
            return ChartPlace{sheet, FindShapeById(*sheet, chart->shapeId), nullptr};
        }
    }
    for (ChartSheet& chartSheet : book.chartSheets) {
        if (chartSheet.chart == chart) return ChartPlace{nullptr, nullptr, &chartSheet};
    }
    return std::nullopt;
}

std::shared_ptr<Shape> EmbedChart(Sheet& sheet, const std::shared_ptr<Chart>& chart, double left,
                                  double top, double width, double height) {
    Shape frame;
    frame.type = mso::kChart;
    frame.left = left;
    frame.top = top;
    frame.width = width;
    frame.height = height;
    frame.fill.foreColor = 0xFFFFFF;
    frame.line.foreColor = 0xD9D9D9;
    std::shared_ptr<Shape> added = AddShapeToSheet(sheet, std::move(frame));
    chart->shapeId = added->id;
    sheet.charts.push_back(chart);
    return added;
}

void RemoveChart(Workbook& book, const std::shared_ptr<Chart>& chart) {
    const std::optional<ChartPlace> place = FindChartPlace(book, chart);
    if (!place) return;
    if (place->sheet) {
        std::erase(place->sheet->charts, chart);
        if (place->frame) DeleteShapeFromSheet(*place->sheet, *place->frame);
    } else {
        std::erase_if(book.chartSheets,
                      [&](const ChartSheet& chartSheet) { return chartSheet.chart == chart; });
    }
}

std::string NewChartSheetName(const Workbook& book) {
    for (int number = 1;; ++number) {
        const std::string name = "Chart" + std::to_string(number);
        const bool taken =
            FindSheet(book, name) != nullptr ||
            std::any_of(book.chartSheets.begin(), book.chartSheets.end(),
                        [&](const ChartSheet& sheet) { return SameName(sheet.name, name); });
        if (!taken) return name;
    }
}

}  // namespace sheethost
