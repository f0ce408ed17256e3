// Reading and writing cell contents the way the spreadsheet does: text put into a cell is read
// as if typed, formulas are evaluated when read, and values travel as automation variants.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "com/com.h"
#include "sheethost/formula.h"
#include "sheethost/model.h"

namespace sheethost {

// Evaluates formula cells on demand for the formula engine, keeping their results until a cell
// changes. A formula that depends on itself, directly or through other cells, reads as #REF!.
class BookFormulaContext final : public FormulaContext {
  public:
    explicit BookFormulaContext(const Workbook& book) : book_(book) {}

    // The value a cell shows: its constant, or its formula's result.
    Value Evaluate(const Sheet& sheet, int row, int column);

    Value CellValue(std::string_view sheet, int row, int column) override;
    std::string NameAddress(std::string_view sheet, std::string_view name) override;
    int LastUsedRow(std::string_view sheet) override;
    int LastUsedColumn(std::string_view sheet) override;

  private:
    const Sheet* SheetNamed(std::string_view name) const;
    // The sheet a formula reads from: the formulas being evaluated on other sheets now depend on
    // its cells.
    const Sheet* SheetRead(std::string_view name);
    ResultSources SourcesOf(const Sheet& sheet) const;

    const Workbook& book_;
    // The formula cells being evaluated, innermost last; their sheets resolve unqualified
    // references.
    std::vector<std::pair<const Sheet*, CellRef>> evaluating_;
    // Counts the results that depend on where the evaluation started: a cycle cut short, or a
    // chain too deep to follow. A result computed while this stayed is the cell's own, and is
    // kept in its sheet's FormulaResults.
    int partialResults_ = 0;
};

// The value a cell shows (Blank for an empty cell).
Value CellDisplayValue(const Workbook& book, const Sheet& sheet, int row, int column);

// Puts text into a cell as typing it would: "" empties the cell; "=..." is a formula; a leading
// apostrophe keeps the rest as text; numbers ("90", "0.375", "1e3", "50%"), dates and times
// ("2024/04/01", "8:30") and "TRUE"/"FALSE" become values of their kind; anything else stays
// text. A date, time or percentage typed into a General cell gives the cell a matching format.
// False (and the cell unchanged) for a formula the spreadsheet would not accept.
bool TypeIntoCell(Sheet& sheet, int row, int column, std::string_view text);

// Puts an automation value into a cell (the Value property). Text is typed; a VT_DATE gives a
// General cell a date format; empty and null empty the cell. False for a variant that is no
// cell value (an object, an array) and for a malformed formula.
bool PutCellVariant(Sheet& sheet, int row, int column, const VARIANT& value);

// The cell's value as the Value property answers it: VT_EMPTY, VT_R8, VT_BSTR, VT_BOOL, VT_DATE
// for numbers in a date or time format, VT_ERROR for error values (the host's error codes,
// 0x800A07E7 for #DIV/0! and so on). The caller clears the variant.
VARIANT CellVariant(const Workbook& book, const Sheet& sheet, int row, int column);
// The same for Value2, which never answers dates.
VARIANT CellVariant2(const Workbook& book, const Sheet& sheet, int row, int column);

// How Value (CellVariant) and Value2 (CellVariant2) read one cell.
using CellReader = VARIANT (*)(const Workbook& book, const Sheet& sheet, int row, int column);

// The Value of a range's area: one cell answers its value; a block answers an array of VARIANT,
// rows by columns, both counted from 1 (row first in the indices). False when the block is too
// large to hold.
bool AreaVariant(const Workbook& book, const Sheet& sheet, const Area& area, CellReader read,
                 VARIANT& out);

// Puts an array (two-dimensional rows by columns; one-dimensional = one row) into the cells of
// `area`, element by element as PutCellVariant does. An array of a single row or column repeats
// over the area's further rows or columns; other cells past the array's end get #N/A. False when
// some element is no cell value or the array is not one of one or two dimensions.
bool PutArrayVariant(Sheet& sheet, const Area& area, const VARIANT& value);

// The variant of a value without looking at formats.
VARIANT ValueVariant(const Value& value);

// The Formula property: the formula, or the constant as typed back ("100", "TRUE", "text");
// a date reads as its serial.
std::string CellFormulaText(const Sheet& sheet, int row, int column);

// The format a General cell takes when the date or time `serial` is typed into it: "yyyy/m/d",
// "yyyy/m/d h:mm" or "h:mm".
std::string TypedDateFormat(double serial);
// Gives a General cell the number format `format`, as typing a date or a percentage does; cells
// given the same format share one copy of it.
void GiveFormatIfGeneral(Sheet& sheet, int row, int column, const std::string& format);

// Empties the cell's value and formula, keeping its format.
void ClearCellContents(Sheet& sheet, int row, int column);

}  // namespace sheethost
