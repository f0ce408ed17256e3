#include "sheethost/chart_source.h"

#include <algorithm>

namespace sheethost {
namespace {

bool NeedsQuotes(std::string_view name) {
    if (name.empty() || (name[0] >= '0' && name[0] <= '9')) return true;
    return std::any_of(name.begin(), name.end(), [](char c) {
        const bool plain = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
                           (c >= '0' && c <= '9') || c == '_' || c == '.' ||
                           static_cast<unsigned char>(c) >= 0x80;
        return !plain;
    });
}

std::string SheetPrefix(const Sheet& sheet) {
    if (!NeedsQuotes(sheet.name)) return sheet.name + "!";
    std::string quoted = "'";
    for (char c : sheet.name) quoted += c == '\'' ? std::string("''") : std::string(1, c);
    return quoted + "'!";
}

std::string CellAddress(int row, int column) {
    return "$" + ColumnLetters(column) + "$" + std::to_string(row);
}

// The cells at the given rows and columns (one of them a single line) as a reference: one block
// when they are contiguous, a parenthesised union of blocks otherwise.
std::string LineReference(const Sheet& sheet, const std::vector<int>& rows,
                          const std::vector<int>& columns) {
    std::vector<Area> blocks;
    for (int row : rows) {
        for (int column : columns) {
            if (!blocks.empty()) {
                Area& last = blocks.back();
                if (rows.size() == 1 && last.right + 1 == column) {
                    last.right = column;
                    continue;
                }
                if (columns.size() == 1 && last.bottom + 1 == row) {
                    last.bottom = row;
                    continue;
                }
            }
            blocks.push_back(Area{row, column, row, column});
        }
    }
    std::string reference;
    for (const Area& block : blocks) {
        if (!reference.empty()) reference += ",";
        reference += AbsoluteReference(sheet, block);
    }
    return blocks.size() > 1 ? "=(" + reference + ")" : "=" + reference;
}

class SourceCells {
  public:
    explicit SourceCells(const Sheet& sheet) : sheet_(sheet) {}

    bool IsBlank(int row, int column) const {
        const Cell* cell = FindCell(sheet_, row, column);
        return cell == nullptr ||
               (cell->formula.empty() && std::holds_alternative<Blank>(cell->value));
    }
    bool IsText(int row, int column) const {
        const Cell* cell = FindCell(sheet_, row, column);
        return cell != nullptr && cell->formula.empty() &&
               std::holds_alternative<std::string>(cell->value);
    }
    // What a formula cell shows is worked out when it is read; a series name taken from one
    // stays empty until the chart's data is set again.
    std::string Shown(int row, int column) const {
        const Cell* cell = FindCell(sheet_, row, column);
        return cell == nullptr ? std::string() : DisplayText(cell->value);
    }

  private:
    const Sheet& sheet_;
};

std::vector<int> Without(const std::vector<int>& items, bool dropFirst) {
    return dropFirst ? std::vector<int>(items.begin() + 1, items.end()) : items;
}

}  // namespace

std::string AbsoluteReference(const Sheet& sheet, const Area& area) {
    std::string reference = SheetPrefix(sheet) + CellAddress(area.top, area.left);
    if (area.bottom != area.top || area.right != area.left) {
        reference += ":" + CellAddress(area.bottom, area.right);
    }
    return reference;
}

std::optional<ChartSource> ReadChartSource(const Sheet& sheet, const std::vector<Area>& areas,
                                           std::optional<int> plotBy) {
    if (areas.empty()) return std::nullopt;
    if (plotBy && *plotBy != mso::kPlotByRows && *plotBy != mso::kPlotByColumns) {
        return std::nullopt;
    }
    std::vector<int> rows;
    for (int row = areas.front().top; row <= areas.front().bottom; ++row) rows.push_back(row);
    std::vector<int> columns;
    for (const Area& area : areas) {
        if (area.top != areas.front().top || area.bottom != areas.front().bottom) {
            return std::nullopt;
        }
        for (int column = area.left; column <= area.right; ++column) columns.push_back(column);
    }

    const SourceCells cells(sheet);
    const bool cornerBlank = cells.IsBlank(rows.front(), columns.front());
    const auto allText = [&](const std::vector<int>& lineRows,
                             const std::vector<int>& lineColumns) {
        for (int row : lineRows) {
            for (int column : lineColumns) {
                if (!cells.IsText(row, column)) return false;
            }
        }
        return true;
    };
    const bool headerRow = rows.size() > 1 && (cornerBlank || allText({rows.front()}, columns));
    const bool headerColumn =
        columns.size() > 1 && (cornerBlank || allText(Without(rows, headerRow), {columns.front()}));
    const std::vector<int> dataRows = Without(rows, headerRow);
    const std::vector<int> dataColumns = Without(columns, headerColumn);
    if (dataRows.empty() || dataColumns.empty()) return std::nullopt;

    ChartSource source;
    source.plotBy =
        plotBy.value_or(columns.size() > rows.size() ? mso::kPlotByRows : mso::kPlotByColumns);
    for (const Area& area : areas) {
        source.sourceData +=
            (source.sourceData.empty() ? "=" : ",") + AbsoluteReference(sheet, area);
    }
    const bool byColumns = source.plotBy == mso::kPlotByColumns;
    const std::vector<int>& lines = byColumns ? dataColumns : dataRows;
    for (int line : lines) {
        ChartSeries series;
        const bool named = byColumns ? headerRow : headerColumn;
        if (named) {
            const int row = byColumns ? rows.front() : line;
            const int column = byColumns ? line : columns.front();
            series.name = cells.Shown(row, column);
            series.nameReference = "=" + AbsoluteReference(sheet, Area{row, column, row, column});
        } else {
            series.name = "Series" + std::to_string(source.series.size() + 1);
        }
        if (byColumns) {
            series.values = LineReference(sheet, dataRows, {line});
            if (headerColumn) series.xValues = LineReference(sheet, dataRows, {columns.front()});
        } else {
            series.values = LineReference(sheet, {line}, dataColumns);
            if (headerRow) series.xValues = LineReference(sheet, {rows.front()}, dataColumns);
        }
        source.series.push_back(std::move(series));
    }
    return source;
}

}  // namespace sheethost
