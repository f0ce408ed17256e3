// The members of Range that deal with rows and columns as a whole: position and size in points,
// hiding, heights and widths, fitting them to the contents, inserting and deleting rows.
#include <cmath>
#include <map>

#include "sheethost/cell_values.h"
#include "sheethost/range_object.h"
#include "sheethost/rows_edit.h"
#include "sheethost/sheet_edit.h"
#include "values/values.h"

namespace sheethost::range_layout {
namespace {

constexpr double kMaxRowHeight = 409;
constexpr double kMaxColumnWidth = 255;

enum class Lines { kRows, kColumns };

// Which lines Hidden talks about: rows for whole rows (and the whole sheet), columns for whole
// columns; refuses any other range.
Lines HiddenLines(const RangeSpan& span, std::string_view verb) {
    bool rows = true;
    bool columns = true;
    for (const Area& area : span.areas) {
        rows &= area.WholeRows();
        columns &= area.WholeColumns();
    }
    if (rows) return Lines::kRows;
    if (columns) return Lines::kColumns;
    RaiseProperty(verb, "Hidden", "Range");
}

// The common value of `get` over the rows (or columns) of the span; nullopt when they differ.
template <class Get>
std::optional<double> CommonLineValue(const RangeSpan& span, Lines lines, Get get) {
    std::optional<double> common;
    for (const Area& area : span.areas) {
        const int first = lines == Lines::kRows ? area.top : area.left;
        const int last = lines == Lines::kRows ? area.bottom : area.right;
        for (int line = first; line <= last; ++line) {
            const double value = get(line);
            if (common && *common != value) return std::nullopt;
            common = value;
        }
    }
    return common;
}

// Applies `change` to the rows (or columns) of the span. Lines without an entry are left alone
// when `missingToo` is false: a change that only resets a flag need not visit a million rows.
template <class Change>
void ChangeRows(const RangeSpan& span, Change change, bool missingToo = true) {
    auto& rows = span.sheet->rows.Edit();
    for (const Area& area : span.areas) {
        if (!missingToo) {
            for (auto it = rows.lower_bound(area.top); it != rows.end() && it->first <= area.bottom;
                 ++it) {
                change(it->second);
            }
            continue;
        }
        for (int row = area.top; row <= area.bottom; ++row) change(rows[row]);
    }
    for (const Area& area : span.areas) NormalizeRowInfos(*span.sheet, area.top, area.bottom);
}

template <class Change>
void ChangeColumns(const RangeSpan& span, Change change, bool missingToo = true) {
    auto& columns = span.sheet->columns;
    for (const Area& area : span.areas) {
        if (!missingToo) {
            for (auto it = columns.lower_bound(area.left);
                 it != columns.end() && it->first <= area.right; ++it) {
                change(it->second);
            }
            continue;
        }
        for (int column = area.left; column <= area.right; ++column) change(columns[column]);
    }
    for (const Area& area : span.areas) NormalizeColumnInfos(*span.sheet, area.left, area.right);
}

// The width in pixels a cell's shown text needs in its font: digits and Latin letters take about
// 7 pixels at 11 points, wide (non-ASCII) characters about twice that.
double TextPixels(const Workbook& book, const Sheet& sheet, int row, int column) {
    const Style& style = EffectiveStyle(sheet, row, column);
    const Value value = CellDisplayValue(book, sheet, row, column);
    std::size_t narrow = 0;
    std::size_t wide = 0;
    if (std::holds_alternative<double>(value) && IsDateFormat(style.numberFormat)) {
        narrow = style.numberFormat.size();
    } else {
        for (unsigned char c : DisplayText(value)) {
            if (c < 0x80) {
                ++narrow;
            } else if (c >= 0xC0) {
                ++wide;  // the lead byte of a UTF-8 sequence
            }
        }
    }
    const double scale = style.font.size / 11 * (style.font.bold ? 1.1 : 1.0);
    return (7.0 * narrow + 14.0 * wide) * scale;
}

void FitColumns(const RangeSpan& span) {
    const Sheet& sheet = *span.sheet;
    for (const Area& area : span.areas) {
        std::map<int, double> needed;  // column -> pixels of its widest text
        for (const CellRef& ref : CellsIn(sheet, area)) {
            const double pixels = TextPixels(*span.book, sheet, ref.row, ref.column);
            if (pixels > 0) needed[ref.column] = std::max(needed[ref.column], pixels);
        }
        for (int column = area.left; column <= area.right; ++column) {
            const auto found = needed.find(column);
            const auto info = span.sheet->columns.find(column);
            if (info != span.sheet->columns.end() && info->second.hidden) continue;
            if (found != needed.end()) {
                // The text, the cell's padding and a pixel either side.
                const double pixels = std::ceil(found->second) + 7;
                span.sheet->columns[column].width =
                    std::min(kMaxColumnWidth, PointsToCharacters(pixels * 0.75));
            } else if (area.WholeColumns() && info != span.sheet->columns.end()) {
                info->second.width.reset();  // an empty column falls back to the standard width
            }
        }
        NormalizeColumnInfos(*span.sheet, area.left, area.right);
    }
}

void FitRows(const RangeSpan& span) {
    const Sheet& sheet = *span.sheet;
    for (const Area& area : span.areas) {
        std::map<int, double> largest;  // row -> largest font size among its non-empty cells
        for (const CellRef& ref : CellsIn(sheet, area)) {
            const Value value = CellDisplayValue(*span.book, sheet, ref.row, ref.column);
            if (std::holds_alternative<Blank>(value)) continue;
            const double size = EffectiveStyle(sheet, ref.row, ref.column)->font.size;
            largest[ref.row] = std::max(largest[ref.row], size);
        }
        for (auto& [row, info] : span.sheet->rows.Edit()) {
            if (row >= area.top && row <= area.bottom && !largest.contains(row)) {
                info.height.reset();
            }
        }
        for (const auto& [row, size] : largest) {
            // The standard height suits the standard font; rows grow with larger text, in whole
            // pixels (0.75 points).
            const double height = std::round(size * kStandardRowHeight / 11 / 0.75) * 0.75;
            if (height > kStandardRowHeight) {
                span.sheet->rows[row].height = std::min(height, kMaxRowHeight);
            } else {
                span.sheet->rows[row].height.reset();
            }
        }
        NormalizeRowInfos(*span.sheet, area.top, area.bottom);
    }
}

bool SingleRowsArea(const RangeSpan& span) {
    return span.areas.size() == 1 && span.First().WholeRows() && !span.First().WholeColumns();
}

}  // namespace

void Left(RangeObject& range, Invocation& call) {
    call.ReturnNumber(ColumnLeft(*range.span.sheet, range.span.First().left));
}

void Top(RangeObject& range, Invocation& call) {
    call.ReturnNumber(RowTop(*range.span.sheet, range.span.First().top));
}

void Width(RangeObject& range, Invocation& call) {
    const Area& area = range.span.First();
    const Sheet& sheet = *range.span.sheet;
    call.ReturnNumber(ColumnLeft(sheet, area.right + 1) - ColumnLeft(sheet, area.left));
}

void Height(RangeObject& range, Invocation& call) {
    const Area& area = range.span.First();
    const Sheet& sheet = *range.span.sheet;
    call.ReturnNumber(RowTop(sheet, area.bottom + 1) - RowTop(sheet, area.top));
}

void Hidden(RangeObject& range, Invocation& call) {
    const RangeSpan& span = range.span;
    const Lines lines = HiddenLines(span, call.IsPut() ? "set" : "get");
    if (call.IsPut()) {
        const bool hidden = call.PutBoolean();
        if (lines == Lines::kRows) {
            ChangeRows(
                span, [hidden](RowInfo& info) { info.hidden = hidden; }, hidden);
        } else {
            ChangeColumns(
                span, [hidden](ColumnInfo& info) { info.hidden = hidden; }, hidden);
        }
        return;
    }
    const Sheet& sheet = *span.sheet;
    const auto common = CommonLineValue(span, lines, [&](int line) {
        if (lines == Lines::kRows) {
            const auto found = sheet.rows.find(line);
            return found != sheet.rows.end() && found->second.hidden ? 1.0 : 0.0;
        }
        const auto found = sheet.columns.find(line);
        return found != sheet.columns.end() && found->second.hidden ? 1.0 : 0.0;
    });
    if (!common) return call.ReturnNull();
    call.ReturnBoolean(*common != 0);
}

void RowHeight(RangeObject& range, Invocation& call) {
    const RangeSpan& span = range.span;
    if (!call.IsPut()) {
        const auto common = CommonLineValue(
            span, Lines::kRows, [&](int row) { return RowHeightPoints(*span.sheet, row); });
        return common ? call.ReturnNumber(*common) : call.ReturnNull();
    }
    const double height = call.PutNumber();
    if (height < 0 || height > kMaxRowHeight) RaiseProperty("set", "RowHeight", "Range");
    ChangeRows(span, [height](RowInfo& info) {
        // A height of 0 hides the row and keeps the height it had.
        info.hidden = height == 0;
        if (height > 0) info.height = height;
    });
}

void ColumnWidth(RangeObject& range, Invocation& call) {
    const RangeSpan& span = range.span;
    if (!call.IsPut()) {
        const auto common = CommonLineValue(span, Lines::kColumns, [&](int column) {
            return PointsToCharacters(ColumnWidthPoints(*span.sheet, column));
        });
        return common ? call.ReturnNumber(*common) : call.ReturnNull();
    }
    const double width = call.PutNumber();
    if (width < 0 || width > kMaxColumnWidth) RaiseProperty("set", "ColumnWidth", "Range");
    // Widths are kept in whole pixels, as the spreadsheet shows them.
    const double shown = PointsToCharacters(CharactersToPoints(width));
    ChangeColumns(span, [width, shown](ColumnInfo& info) {
        info.hidden = width == 0;
        if (width > 0) info.width = shown;
    });
}

void AutoFit(RangeObject& range, Invocation& call) {
    call.ExpectCount(0, 0);
    const RangeSpan& span = range.span;
    bool wholeColumns = true;
    bool wholeRows = true;
    for (const Area& area : span.areas) {
        wholeColumns &= area.WholeColumns();
        wholeRows &= area.WholeRows();
    }
    if (range.mode == RangeMode::kColumns || wholeColumns) {
        FitColumns(span);
    } else if (range.mode == RangeMode::kRows || wholeRows) {
        FitRows(span);
    } else {
        RaiseMethod("AutoFit", "Range");
    }
    call.ReturnBoolean(true);
}

void Insert(RangeObject& range, Invocation& call) {
    const RangeSpan& span = range.span;
    const int shift = call.OptionalInteger(0).value_or(xl::kShiftDown);
    if (!SingleRowsArea(span) || (shift != xl::kShiftDown && shift != xl::kShiftToRight)) {
        RaiseMethod("Insert", "Range");
    }
    Workbook& book = *span.book;
    const int at = span.First().top;
    const std::optional<Clipboard> clipboard = book.clipboard;
    if (clipboard && clipboard->area.WholeRows() && !clipboard->area.WholeColumns()) {
        // Inserting with rows on the clipboard inserts those rows: cut rows move here, copied
        // rows are inserted as copies.
        const Area& source = clipboard->area;
        if (clipboard->cut) {
            if (clipboard->sheet.lock() != span.sheet) RaiseMethod("Insert", "Range");
            MoveRows(book, *span.sheet, source.top, source.Rows(), at);
        } else {
            if (!InsertRows(book, *span.sheet, at, source.Rows())) RaiseMethod("Insert", "Range");
            PasteCells(*span.sheet, *clipboard, at, 1, PasteKind::kAll);
            book.clipboard = clipboard;
        }
    } else if (clipboard) {
        RaiseMethod("Insert", "Range");  // cells of another shape cannot be inserted as rows
    } else if (!InsertRows(book, *span.sheet, at, span.First().Rows())) {
        RaiseMethod("Insert", "Range");
    }
    call.ReturnBoolean(true);
}

void Delete(RangeObject& range, Invocation& call) {
    const RangeSpan& span = range.span;
    if (!SingleRowsArea(span)) RaiseMethod("Delete", "Range");
    DeleteRows(*span.book, *span.sheet, span.First().top, span.First().Rows());
    call.ReturnBoolean(true);
}

}  // namespace sheethost::range_layout
