// Inserting, deleting and moving whole rows of a sheet. Cell contents, formats, row heights and
// hidden flags move with their rows; formulas and defined names anywhere in the workbook that
// refer to moved rows follow them (deleted rows become #REF!); shapes placed to move with cells
// move with their rows.
#pragma once

#include "sheethost/model.h"

namespace sheethost {

// Inserts `count` empty rows before row `at`; they take the format and height of the row above.
// False, and nothing changes, when non-empty cells would be pushed off the sheet.
bool InsertRows(Workbook& book, Sheet& sheet, int at, int count);

void DeleteRows(Workbook& book, Sheet& sheet, int first, int count);

// Moves rows first .. first + count - 1 so that they stand before row `before`, as inserting cut
// rows does; the rows in between close up. Nothing happens when `before` lies inside the block or
// just below it.
void MoveRows(Workbook& book, Sheet& sheet, int first, int count, int before);

}  // namespace sheethost
