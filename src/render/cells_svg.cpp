// The cell layer: the sheet's light grid lines, then fills, then texts, then borders, in the order
// the spreadsheet paints them.
#include <algorithm>
#include <cmath>
#include <map>
#include <optional>
#include <string>
#include <tuple>

#include "render/cell_text.h"
#include "render/drawing.h"
#include "render/svg.h"
#include "sheethost/cell_values.h"
#include "sheethost/formula.h"
#include "sheethost/palette.h"

namespace render {
namespace {

using sheethost::Style;
namespace xl = sheethost::xl;

constexpr double kCellPadding = 2.25;  // points between a text and its cell's edge
constexpr char kGridColour[] = "#d9d9d9";
constexpr int kMaxExtentRows = 2000;
constexpr int kMaxExtentColumns = 1000;

// The row (or column) whose span holds `position`, given the running edges.
int LineAt(const std::vector<double>& edges, double position) {
    int line = 1;
    while (line + 1 < static_cast<int>(edges.size()) &&
           edges[static_cast<std::size_t>(line) + 1] < position) {
        ++line;
    }
    return line;
}

std::vector<double> Edges(int last, double (*start)(const sheethost::Sheet&, int),
                          const sheethost::Sheet& sheet) {
    std::vector<double> edges(static_cast<std::size_t>(last) + 2, 0.0);
    for (int line = 1; line <= last + 1; ++line) {
        edges[static_cast<std::size_t>(line)] = start(sheet, line);
    }
    return edges;
}

double ColumnStart(const sheethost::Sheet& sheet, int column) {
    return sheethost::ColumnLeft(sheet, column);
}
double RowStart(const sheethost::Sheet& sheet, int row) {
    return sheethost::RowTop(sheet, row);
}

bool IsEmpty(const sheethost::Sheet& sheet, int row, int column) {
    const sheethost::Cell* cell = sheethost::FindCell(sheet, row, column);
    return cell == nullptr ||
           (std::holds_alternative<sheethost::Blank>(cell->value) && cell->formula.empty());
}

// The first condition of the cell's format its value meets: a comparison with constants, as
// conditional formats on figures hold them ("=0"). Conditions given as formulas are not drawn.
const sheethost::FormatCondition* MetCondition(const Style& style, const sheethost::Value& value) {
    const auto* number = std::get_if<double>(&value);
    if (number == nullptr) return nullptr;
    for (const sheethost::FormatCondition& condition : style.conditions) {
        if (condition.type != xl::kCellValue) continue;
        const auto bound = [](const std::string& formula) {
            return sheethost::TextToNumber(formula.starts_with('=') ? formula.substr(1) : formula);
        };
        const std::optional<double> first = bound(condition.formula1);
        const std::optional<double> second = bound(condition.formula2);
        if (!first) continue;
        const double x = *number;
        bool met = false;
        switch (condition.comparison) {
            case xl::kBetween:
            case xl::kNotBetween: {
                if (!second) continue;
                const bool inside =
                    x >= std::min(*first, *second) && x <= std::max(*first, *second);
                met = condition.comparison == xl::kBetween ? inside : !inside;
                break;
            }
            case xl::kEqual:
                met = x == *first;
                break;
            case xl::kNotEqual:
                met = x != *first;
                break;
            case xl::kGreater:
                met = x > *first;
                break;
            case xl::kLess:
                met = x < *first;
                break;
            case xl::kGreaterEqual:
                met = x >= *first;
                break;
            case xl::kLessEqual:
                met = x <= *first;
                break;
            default:
                break;
        }
        if (met) return &condition;
    }
    return nullptr;
}

std::string FontColour(int colorIndex) {
    return colorIndex == xl::kAutomatic || colorIndex == xl::kNone
               ? "#000000"
               : ColourText(sheethost::PaletteColor(colorIndex));
}

// How wide a border line is drawn, in points, and its dashes.
double BorderWidth(const sheethost::Border& border) {
    if (border.lineStyle == -4119) return 2.25;  // double
    switch (border.weight) {
        case xl::kHairline:
            return 0.5;
        case xl::kMedium:
            return 1.5;
        case xl::kThick:
            return 2.25;
        default:
            return 0.75;
    }
}

std::string BorderDashes(int lineStyle) {
    switch (lineStyle) {
        case -4115:
            return "3 1.5";  // dash
        case -4118:
            return "0.75 0.75";  // dot
        case 4:
            return "4.5 1.5 1.5 1.5";  // dash dot
        case 5:
            return "4.5 1.5 1.5 1.5 1.5 1.5";  // dash dot dot
        default:
            return "";
    }
}

void WriteGrid(std::string& svg, const SheetGeometry& g) {
    std::string path;
    for (int column = 1; column <= g.lastColumn + 1; ++column) {
        if (column <= g.lastColumn && g.ColumnWidth(column) <= 0) continue;
        path += "M" + Number(g.Left(column)) + " 0V" + Number(g.Height());
    }
    for (int row = 1; row <= g.lastRow + 1; ++row) {
        if (row <= g.lastRow && g.RowHeight(row) <= 0) continue;
        path += "M0 " + Number(g.Top(row)) + "H" + Number(g.Width());
    }
    svg += "<path d=\"" + path + "\" stroke=\"" + kGridColour +
           "\" stroke-width=\"0.75\" fill=\"none\"/>\n";
}

// One rectangle per run of equally filled cells along a row.
void WriteFills(std::string& svg, const sheethost::Workbook& book, const sheethost::Sheet& sheet,
                const SheetGeometry& g) {
    for (int row = 1; row <= g.lastRow; ++row) {
        if (g.RowHeight(row) <= 0) continue;
        int runStart = 0;
        std::int32_t runColour = 0;
        auto flush = [&](int end) {
            if (runStart == 0) return;
            svg += "<rect x=\"" + Number(g.Left(runStart)) + "\" y=\"" + Number(g.Top(row)) +
                   "\" width=\"" + Number(g.Left(end) - g.Left(runStart)) + "\" height=\"" +
                   Number(g.RowHeight(row)) + "\" fill=\"" + ColourText(runColour) + "\"/>\n";
            runStart = 0;
        };
        for (int column = 1; column <= g.lastColumn; ++column) {
            const Style& style = sheethost::EffectiveStyle(sheet, row, column);
            bool filled = style.interior.colorIndex != xl::kNone;
            std::int32_t colour = style.interior.color;
            if (!style.conditions.empty()) {
                const auto* met =
                    MetCondition(style, sheethost::CellDisplayValue(book, sheet, row, column));
                if (met != nullptr && met->interiorColorIndex) {
                    filled = true;
                    colour = sheethost::PaletteColor(*met->interiorColorIndex);
                }
            }
            if (runStart != 0 && (!filled || colour != runColour)) flush(column);
            if (filled && runStart == 0) {
                runStart = column;
                runColour = colour;
            }
        }
        flush(g.lastColumn + 1);
    }
}

// The columns a text may spread over: into empty neighbours, the way its alignment points.
std::pair<int, int> TextSpan(const sheethost::Sheet& sheet, const SheetGeometry& g, int row,
                             int column, int alignment) {
    int first = column;
    int last = column;
    if (alignment != xl::kHAlignRight) {
        while (last < g.lastColumn && IsEmpty(sheet, row, last + 1)) ++last;
    }
    if (alignment == xl::kHAlignRight || alignment == xl::kHAlignCenter) {
        while (first > 1 && IsEmpty(sheet, row, first - 1)) --first;
    }
    return {first, last};
}

void WriteText(std::string& svg, const sheethost::Workbook& book, const sheethost::Sheet& sheet,
               const SheetGeometry& g, int row, int column) {
    if (g.RowHeight(row) <= 0 || g.ColumnWidth(column) <= 0) return;
    const Style& style = sheethost::EffectiveStyle(sheet, row, column);
    const sheethost::Value value = sheethost::CellDisplayValue(book, sheet, row, column);
    // About half the font size per digit: how many characters a General number may take.
    const double room = (g.ColumnWidth(column) - 2 * kCellPadding) / (0.5 * style.font.size);
    const std::string text =
        ShownText(value, style.numberFormat, static_cast<std::size_t>(std::max(room, 1.0)));
    if (text.empty()) return;

    int alignment = style.horizontalAlignment;
    if (alignment == xl::kHAlignGeneral) {
        alignment = std::holds_alternative<double>(value) ? xl::kHAlignRight
                    : std::holds_alternative<bool>(value) ? xl::kHAlignCenter
                                                          : xl::kHAlignLeft;
    }
    // Texts spill into empty neighbours; numbers stay inside their cell.
    const bool spills = std::holds_alternative<std::string>(value) && !style.wrapText;
    const auto [first, last] =
        spills ? TextSpan(sheet, g, row, column, alignment) : std::pair{column, column};

    const sheethost::FormatCondition* met = MetCondition(style, value);
    const int fontColour =
        met != nullptr && met->fontColorIndex ? *met->fontColorIndex : style.font.colorIndex;
    const double size = style.font.size;
    const double left = g.Left(column);
    const double width = g.ColumnWidth(column);
    double x = left + kCellPadding;
    std::string anchor = "start";
    if (alignment == xl::kHAlignRight) {
        x = left + width - kCellPadding;
        anchor = "end";
    } else if (alignment == xl::kHAlignCenter) {
        x = left + width / 2;
        anchor = "middle";
    }
    const double top = g.Top(row);
    const double height = g.RowHeight(row);
    double baseline = top + height - 0.25 * size - 1;  // bottom: the descenders above the line
    if (style.verticalAlignment == xl::kVAlignCenter) baseline = top + height / 2 + 0.3 * size;
    if (style.verticalAlignment == xl::kVAlignTop) baseline = top + 0.8 * size + 1;

    // The clip box is its own viewport, so the text inside is placed relative to it.
    const double clipLeft = g.Left(first);
    svg += "<svg x=\"" + Number(clipLeft) + "\" y=\"" + Number(top) + "\" width=\"" +
           Number(g.Left(last + 1) - clipLeft) + "\" height=\"" + Number(height) +
           "\" overflow=\"hidden\"><text x=\"" + Number(x - clipLeft) + "\" y=\"" +
           Number(baseline - top) + "\" font-family=\"" + FontFamily(style.font.name) +
           "\" font-size=\"" + Number(size) + "\" fill=\"" + FontColour(fontColour) + "\"";
    if (anchor != "start") svg += " text-anchor=\"" + anchor + "\"";
    if (style.font.bold) svg += " font-weight=\"bold\"";
    if (style.font.italic) svg += " font-style=\"italic\"";
    svg += " xml:space=\"preserve\">" + Escaped(text) + "</text></svg>\n";
}

// Borders grouped by their look, one path each.
void WriteBorders(std::string& svg, const sheethost::Sheet& sheet, const SheetGeometry& g) {
    std::map<std::tuple<std::string, double, std::string>, std::string> paths;
    for (int row = 1; row <= g.lastRow; ++row) {
        if (g.RowHeight(row) <= 0) continue;
        const double top = g.Top(row);
        const double bottom = g.Top(row + 1);
        for (int column = 1; column <= g.lastColumn; ++column) {
            if (g.ColumnWidth(column) <= 0) continue;
            const double left = g.Left(column);
            const double right = g.Left(column + 1);
            const sheethost::CellBorders& borders =
                sheethost::EffectiveStyle(sheet, row, column)->borders;
            // Diagonal down, diagonal up, left, top, bottom, right.
            const std::string segments[6] = {
                "M" + Number(left) + " " + Number(top) + "L" + Number(right) + " " + Number(bottom),
                "M" + Number(left) + " " + Number(bottom) + "L" + Number(right) + " " + Number(top),
                "M" + Number(left) + " " + Number(top) + "V" + Number(bottom),
                "M" + Number(left) + " " + Number(top) + "H" + Number(right),
                "M" + Number(left) + " " + Number(bottom) + "H" + Number(right),
                "M" + Number(right) + " " + Number(top) + "V" + Number(bottom)};
            for (std::size_t edge = 0; edge < borders.size(); ++edge) {
                const sheethost::Border& border = borders[edge];
                if (border.lineStyle == xl::kNone) continue;
                paths[{FontColour(border.colorIndex), BorderWidth(border),
                       BorderDashes(border.lineStyle)}] += segments[edge];
            }
        }
    }
    for (const auto& [look, path] : paths) {
        const auto& [colour, width, dashes] = look;
        svg += "<path d=\"" + path + "\" stroke=\"" + colour + "\" stroke-width=\"" +
               Number(width) + "\"";
        if (!dashes.empty()) svg += " stroke-dasharray=\"" + dashes + "\"";
        svg += " fill=\"none\"/>\n";
    }
}

}  // namespace

SheetGeometry MeasureSheet(const sheethost::Sheet& sheet) {
    int lastRow = 1;
    int lastColumn = 1;
    for (const auto& [ref, cell] : sheet.cells) {
        lastRow = std::max(lastRow, ref.row);
        lastColumn = std::max(lastColumn, ref.column);
    }
    lastRow = std::min(lastRow, kMaxExtentRows);
    lastColumn = std::min(lastColumn, kMaxExtentColumns);
    // Shapes may reach past the last cell: measure far enough to hold them.
    std::vector<double> columns = Edges(kMaxExtentColumns, ColumnStart, sheet);
    std::vector<double> rows = Edges(kMaxExtentRows, RowStart, sheet);
    for (const auto& shape : sheet.shapes) {
        if (!shape->visible) continue;
        lastColumn = std::max(lastColumn, LineAt(columns, shape->left + shape->width));
        lastRow = std::max(lastRow, LineAt(rows, shape->top + shape->height));
    }
    SheetGeometry geometry;
    geometry.lastRow = lastRow;
    geometry.lastColumn = lastColumn;
    columns.resize(static_cast<std::size_t>(lastColumn) + 2);
    rows.resize(static_cast<std::size_t>(lastRow) + 2);
    geometry.columnLeft = std::move(columns);
    geometry.rowTop = std::move(rows);
    return geometry;
}

void WriteCells(std::string& svg, const sheethost::Workbook& book, const sheethost::Sheet& sheet,
                const SheetGeometry& geometry) {
    WriteGrid(svg, geometry);
    WriteFills(svg, book, sheet, geometry);
    for (const auto& [ref, cell] : sheet.cells) {
        if (ref.row <= geometry.lastRow && ref.column <= geometry.lastColumn) {
            WriteText(svg, book, sheet, geometry, ref.row, ref.column);
        }
    }
    WriteBorders(svg, sheet, geometry);
}

}  // namespace render
