// The host's formula engine: parses and evaluates the formulas a workbook holds, with the
// spreadsheet's rules for blanks, text in arithmetic, type ordering in comparisons and error
// propagation, and rewrites row references when rows are cut, inserted or deleted.
//
// Pure C++: nothing here knows about automation objects. The workbook model answers cell values
// and defined names through FormulaContext. Nothing throws: a formula that cannot be parsed or
// evaluated yields an error value.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "sheethost/value.h"

namespace sheethost {

class FormulaContext {
  public:
    virtual ~FormulaContext() = default;
    // The value of a cell; `sheet` empty = the formula's own sheet. The model evaluates a formula
    // cell on demand and detects cycles (a cycle gives ErrorValue::kRef).
    virtual Value CellValue(std::string_view sheet, int row, int column) = 0;
    // The address ("Sheet1!$B$3:$B$9" or "B3:B9") a defined name stands for, empty if none.
    virtual std::string NameAddress(std::string_view sheet, std::string_view name) = 0;
    // The last row and column of `sheet` (empty = the formula's own) that hold anything. Functions
    // over whole rows or columns stop there instead of visiting a million blank cells; the
    // defaults make them visit the whole sheet.
    virtual int LastUsedRow(std::string_view sheet);
    virtual int LastUsedColumn(std::string_view sheet);
};

// The value of `formula` (its text starts with "=") held by cell (row, column) of `sheet`.
// Formula cells it reads are evaluated through the context, which calls this again; a chain of
// more than 500 formulas each reading the next gives #NUM! at the link where the limit is hit,
// so the context should keep the results it has computed rather than re-follow long chains.
Value EvaluateFormula(std::string_view formula, std::string_view sheet, int row, int column,
                      FormulaContext& context);
// True while evaluations are nested as deep as a chain is followed: a formula evaluated now gives
// #NUM! for where it was read from, not for what it holds.
bool AtChainLimit();

// References to rows of `movedSheet` rewritten through mapRow(oldRow) -> newRow (0 = the row is
// gone, the reference becomes #REF!). Formulas on other sheets that refer to movedSheet by name
// are rewritten too. Text literals are left alone; a formula that cannot be tokenized is returned
// unchanged.
std::string RewriteRowReferences(std::string_view formula, std::string_view formulaSheet,
                                 std::string_view movedSheet,
                                 const std::function<int(int)>& mapRow);

// The formula as it reads after being copied `rowOffset` rows down and `columnOffset` columns
// right (negative = up or left): relative row and column parts move, absolute ($) parts stay, and
// a reference pushed off the sheet becomes #REF!. This is what pasting a copied formula does.
std::string OffsetReferences(std::string_view formula, int rowOffset, int columnOffset);

// Whether the spreadsheet would accept `formula` when it is entered: it parses, and every built-in
// function it calls has an allowed number of arguments ("=MIN()" is refused). Unknown function
// names and names are accepted; they evaluate to #NAME?. `row` and `column` are the cell it is
// entered into: its tree is kept for when the cell is read.
bool IsWellFormedFormula(std::string_view formula, int row, int column);

// A text read as a number the way arithmetic coerces it: blanks around it ignored, an optional
// sign, digits with optional thousands separators, a decimal point, an exponent, a trailing
// percent ("50%" = 0.5), or a date or time ("2024/03/01", "8:30"). Empty when it is none of those.
std::optional<double> TextToNumber(std::string_view text);

// The text a cell shows for a value in the General format: numbers in their shortest form with
// at most 15 significant digits ("0.375", "100", "1E+20"), booleans "TRUE"/"FALSE", errors as
// "#DIV/0!" and so on, blank as "". This is also the text a number becomes when a formula joins
// it with "&".
std::string DisplayText(const Value& value);

// The 1-based column number of letters such as "A", "AB" or "xfd"; 0 if `letters` is not a
// column within the sheet's 16384 columns.
int ColumnNumber(std::string_view letters);
// The letters of a 1-based column number ("A", "AB"); empty when out of range.
std::string ColumnLetters(int column);

// The sheet's size.
inline constexpr int kMaxRow = 1048576;
inline constexpr int kMaxColumn = 16384;

}  // namespace sheethost
