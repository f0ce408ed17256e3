#include "sheethost/rows_edit.h"

#include <functional>

#include "sheethost/formula.h"

namespace sheethost {
namespace {

// Rearranges the rows of `sheet` through mapRow (old row -> new row, 0 = gone). Rows that no old
// row maps to come out empty.
void RemapRows(Workbook& book, Sheet& sheet, const std::function<int(int)>& mapRow) {
    const RowInfos rowsBefore = sheet.rows;

    CellStore<Cell> cells;
    for (auto& [ref, cell] : sheet.cells) {
        if (const int row = mapRow(ref.row); row != 0) {
            cells.emplace(CellRef{row, ref.column}, std::move(cell));
        }
    }
    sheet.cells = std::move(cells);
    RowInfos::Map rows;
    for (auto& [row, info] : sheet.rows.Edit()) {
        if (const int moved = mapRow(row); moved != 0) rows.emplace(moved, std::move(info));
    }
    sheet.rows.Edit() = std::move(rows);

    for (const auto& other : book.sheets) {
        for (auto& [ref, cell] : other->cells) {
            if (!cell.formula.empty()) {
                cell.formula = RewriteRowReferences(cell.formula, other->name, sheet.name, mapRow);
            }
        }
        for (DefinedName& name : other->names) {
            name.refersTo = RewriteRowReferences(name.refersTo, other->name, sheet.name, mapRow);
        }
    }
    for (DefinedName& name : book.names) {
        name.refersTo = RewriteRowReferences(name.refersTo, "", sheet.name, mapRow);
    }
    book.clipboard.reset();

    const RowShift shift{
        mapRow,
        [&rowsBefore](int row) { return rowsBefore.Top(row); },
        [&sheet](int row) { return RowTop(sheet, row); },
    };
    MoveShapesWithRows(sheet, shift);
}

bool HoldsContent(const Sheet& sheet, int fromRow) {
    for (auto it = sheet.cells.lower_bound(CellRef{fromRow, 0}); it != sheet.cells.end(); ++it) {
        const Cell& cell = it->second;
        if (!cell.formula.empty() || !std::holds_alternative<Blank>(cell.value)) return true;
    }
    return false;
}

}  // namespace

bool InsertRows(Workbook& book, Sheet& sheet, int at, int count) {
    if (count < 1 || at < 1 || at > kMaxRow) return false;
    if (HoldsContent(sheet, kMaxRow - count + 1)) return false;
    RemapRows(book, sheet, [at, count](int row) {
        if (row < at) return row;
        return row + count <= kMaxRow ? row + count : 0;
    });
    if (at == 1) return true;
    // The new rows look like the row above them.
    const int above = at - 1;
    if (const auto found = sheet.rows.find(above); found != sheet.rows.end()) {
        for (int row = at; row < at + count; ++row) {
            RowInfo& info = sheet.rows[row];
            info = found->second;
            info.hidden = false;
        }
    }
    std::vector<std::pair<int, SharedStyle>> styles;
    for (auto it = sheet.cells.lower_bound(CellRef{above, 0});
         it != sheet.cells.end() && it->first.row == above; ++it) {
        styles.emplace_back(it->first.column, it->second.style);
    }
    for (const auto& [column, style] : styles) {
        for (int row = at; row < at + count; ++row) {
            CellAt(sheet, row, column).style = style;
            TrimCell(sheet, row, column);
        }
    }
    return true;
}

void DeleteRows(Workbook& book, Sheet& sheet, int first, int count) {
    if (count < 1 || first < 1) return;
    const int last = first + count - 1;
    RemapRows(book, sheet, [first, last, count](int row) {
        if (row < first) return row;
        return row > last ? row - count : 0;
    });
}

void MoveRows(Workbook& book, Sheet& sheet, int first, int count, int before) {
    const int last = first + count - 1;
    if (count < 1 || (before >= first && before <= last + 1)) return;
    if (before > last) {
        // The rows between the block and the target close up; the block lands above the target.
        RemapRows(book, sheet, [first, last, count, before](int row) {
            if (row >= first && row <= last) return before - count + (row - first);
            if (row > last && row < before) return row - count;
            return row;
        });
    } else {
        RemapRows(book, sheet, [first, last, count, before](int row) {
            if (row >= first && row <= last) return before + (row - first);
            if (row >= before && row < first) return row + count;
            return row;
        });
    }
}

}  // namespace sheethost
