// Edits of a sheet's cells over blocks of cells: formats, clearing, copy and paste. Formatting
// whole rows or columns changes the row or column format, as the spreadsheet does, rather than a
// million cells.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "sheethost/model.h"

namespace sheethost {

// One value or formula entered into, or the values read from, more cells than this at once are
// refused. The spreadsheet program runs out of memory over a whole sheet; the host must not, so
// that a mistyped address (a range of the whole sheet) ends in an error rather than exhaustion.
inline constexpr double kMostCellsAtOnce = 1000000;

// The cells with an entry inside the block, in row order.
std::vector<CellRef> CellsIn(const Sheet& sheet, const Area& area);

// A format change that would give more cells an entry of their own than this is refused before
// anything changes. The host keeps a format given to a block in each of its cells, and where a
// formatted row crosses formatted columns; a block of the whole sheet less one row, or whole rows
// under a sheet-wide column format, would exhaust memory.
inline constexpr double kMostCellsStyledAtOnce = 10000000;
// The cells a format change over `areas` may give an entry of their own.
double CellsStyledBy(const Sheet& sheet, const std::vector<Area>& areas);

// Applies `change` to the format of every cell of the areas (and to the row or column format of
// whole rows and columns), keeping what each cell inherited. Throws std::bad_alloc, having changed
// nothing, when the change is past kMostCellsStyledAtOnce.
void ChangeStyle(Sheet& sheet, const std::vector<Area>& areas,
                 const std::function<void(Style&)>& change);

// A change that differs between parts of a block, such as a border kept on both cells beside an
// edge: each part names its cells and its change. When every part is a block of cells, their
// bounding block is walked once and a cell in several parts takes their changes in order; the
// result is that of ChangeStyle called for each part in turn.
struct StylePart {
    Area cells;
    std::function<void(Style&)> change;
};
void ChangeStyleByPart(Sheet& sheet, const std::vector<StylePart>& parts);

// A row or column format equal to the default is no format, and an entry that holds nothing is
// dropped, so that equal sheets have equal records. The scoped forms look only at the entries of
// the rows (or columns) a change touched, so that a change row by row stays linear in the rows.
void NormalizeRowInfos(Sheet& sheet, int top, int bottom);
void NormalizeColumnInfos(Sheet& sheet, int left, int right);
void NormalizeLineInfos(Sheet& sheet);

void ClearContents(Sheet& sheet, const std::vector<Area>& areas);
void ClearFormats(Sheet& sheet, const std::vector<Area>& areas);

// The block as Copy (or Cut) takes it.
Clipboard CopyCells(const Workbook& book, const std::shared_ptr<Sheet>& sheet, const Area& area,
                    bool cut);

enum class PasteKind { kAll, kValues, kFormats };

// Pastes a copied block with its top-left corner at (top, left): everything (formulas follow
// the move), the values shown, or the formats. Parts that would fall off the sheet are dropped.
void PasteCells(Sheet& sheet, const Clipboard& clipboard, int top, int left, PasteKind kind);

}  // namespace sheethost
