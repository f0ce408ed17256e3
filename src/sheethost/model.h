// The in-memory workbook as plain data: sheets, cells, formats, row heights, column widths, hidden
// flags, defined names, the selection and the drawing layer. The automation objects read and
// change these records; the JSON loader and dumper translate them.
//
// Rows and columns are 1-based, as the spreadsheet counts them. Formats follow the spreadsheet's
// own model: a cell's style is its own when the cell has an entry, else its row's style when the
// row has one, else its column's, else the default style.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sheethost/cell_store.h"
#include "sheethost/formula.h"
#include "sheethost/formula_results.h"
#include "sheethost/shape_list.h"
#include "sheethost/shape_model.h"
#include "sheethost/value.h"

namespace sheethost {

inline constexpr double kStandardColumnWidth = 8.43;  // characters of the default font
inline constexpr double kStandardRowHeight = 15;      // points

// The spreadsheet's own enumeration values for the cell members the host answers.
namespace xl {
inline constexpr int kNone = -4142;       // xlNone, xlColorIndexNone, xlLineStyleNone
inline constexpr int kAutomatic = -4105;  // xlColorIndexAutomatic
// Border line styles and weights
inline constexpr int kContinuous = 1;
inline constexpr int kHairline = 1;
inline constexpr int kThin = 2;
inline constexpr int kMedium = -4138;
inline constexpr int kThick = 4;
// Borders(index)
inline constexpr int kDiagonalDown = 5;
inline constexpr int kDiagonalUp = 6;
inline constexpr int kEdgeLeft = 7;
inline constexpr int kEdgeTop = 8;
inline constexpr int kEdgeBottom = 9;
inline constexpr int kEdgeRight = 10;
inline constexpr int kInsideVertical = 11;
inline constexpr int kInsideHorizontal = 12;
// Alignments
inline constexpr int kHAlignGeneral = 1;
inline constexpr int kHAlignLeft = -4131;
inline constexpr int kHAlignCenter = -4108;
inline constexpr int kHAlignRight = -4152;
inline constexpr int kVAlignTop = -4160;
inline constexpr int kVAlignCenter = -4108;
inline constexpr int kVAlignBottom = -4107;
// Interior.Pattern
inline constexpr int kPatternSolid = 1;
// FormatConditions.Add type and operator
inline constexpr int kCellValue = 1;
inline constexpr int kExpression = 2;
inline constexpr int kBetween = 1;
inline constexpr int kNotBetween = 2;
inline constexpr int kEqual = 3;
inline constexpr int kNotEqual = 4;
inline constexpr int kGreater = 5;
inline constexpr int kLess = 6;
inline constexpr int kGreaterEqual = 7;
inline constexpr int kLessEqual = 8;
// PasteSpecial and Insert
inline constexpr int kPasteAll = -4104;
inline constexpr int kPasteValues = -4163;
inline constexpr int kPasteFormats = -4122;
inline constexpr int kShiftDown = -4121;
inline constexpr int kShiftToRight = -4161;
}  // namespace xl

struct Border {
    int lineStyle = xl::kNone;
    int weight = xl::kThin;
    int colorIndex = xl::kAutomatic;

    bool operator==(const Border&) const = default;
};

// The borders of one cell, indexed by Borders(index) - xl::kDiagonalDown (diagonal down, diagonal
// up, left, top, bottom, right).
using CellBorders = std::array<Border, 6>;

struct Interior {
    int colorIndex = xl::kNone;
    std::int32_t color = 0xFFFFFF;  // RGB long
    int pattern = xl::kNone;

    bool operator==(const Interior&) const = default;
};

struct CellFont {
    std::string name = "Calibri";
    double size = 11;
    bool bold = false;
    bool italic = false;
    int colorIndex = xl::kAutomatic;

    bool operator==(const CellFont&) const = default;
};

// A conditional format: when the cell's value compares with formula1 (and formula2 for the
// between operators) its font or interior colour changes.
struct FormatCondition {
    int type = xl::kCellValue;
    int comparison = xl::kBetween;
    std::string formula1;
    std::string formula2;
    std::optional<int> fontColorIndex;
    std::optional<int> interiorColorIndex;

    bool operator==(const FormatCondition&) const = default;
};

struct Style {
    std::string numberFormat = "General";
    int horizontalAlignment = xl::kHAlignGeneral;
    int verticalAlignment = xl::kVAlignBottom;
    bool wrapText = false;
    CellFont font;
    Interior interior;
    CellBorders borders;
    std::vector<FormatCondition> conditions;

    bool operator==(const Style&) const = default;
};

// A format as cells, rows and columns hold it: one copy shared by all that have the same one,
// copied when one of them changes it. A sheet of a few hundred thousand cells has a handful of
// formats, and a cell that kept its own copy was three times the size of its contents, which made
// every walk over a large sheet wait on memory.
class SharedStyle {
  public:
    SharedStyle();  // the default format
    SharedStyle(Style style) : style_(std::make_shared<Style>(std::move(style))) {}

    const Style& operator*() const { return *style_; }
    const Style* operator->() const { return style_.get(); }
    operator const Style&() const { return *style_; }
    // The format to change, no longer shared with anyone else.
    Style& Edit();
    // The same format: the same copy, or equal ones.
    bool operator==(const SharedStyle& other) const {
        return style_ == other.style_ || *style_ == *other.style_;
    }
    bool operator==(const Style& other) const { return *style_ == other; }
    // Whether the two share one copy, which makes them the same without a look inside.
    bool Shares(const SharedStyle& other) const { return style_ == other.style_; }

  private:
    std::shared_ptr<Style> style_;
};

// The formats that changes have made lately on a sheet. A change that makes a format equal to
// one of them shares that copy: a column styled one cell at a time, or typed into with dates that
// each give their cell a date format, otherwise holds one copy per cell, and every later change
// of a block of those cells makes a new copy per cell again, one per cell for every change.
class RecentStyles {
  public:
    // `made`, or the equal format made lately.
    SharedStyle Share(SharedStyle made);

  private:
    static constexpr std::size_t kKept = 8;
    std::array<SharedStyle, kKept> kept_;  // the newest first
};

// A cell's formula text, kept apart from the cell record: most cells hold none, and records that
// stay small keep more of a large sheet's rows in the processor's cache.
class FormulaText {
  public:
    FormulaText() = default;
    explicit FormulaText(std::string text) { *this = std::move(text); }
    FormulaText(const FormulaText& other) { *this = other; }
    FormulaText(FormulaText&&) noexcept = default;
    FormulaText& operator=(const FormulaText& other) {
        if (this != &other) *this = other.Text();
        return *this;
    }
    FormulaText& operator=(FormulaText&&) noexcept = default;
    FormulaText& operator=(std::string text) {
        text_ = text.empty() ? nullptr : std::make_unique<std::string>(std::move(text));
        return *this;
    }
    ~FormulaText() = default;

    bool empty() const { return text_ == nullptr; }
    void clear() { text_.reset(); }
    const std::string& Text() const;
    operator const std::string&() const { return Text(); }
    operator std::string_view() const { return Text(); }
    char front() const { return Text().front(); }
    bool operator==(const FormulaText& other) const { return Text() == other.Text(); }
    bool operator==(std::string_view text) const { return Text() == text; }

  private:
    std::unique_ptr<std::string> text_;
};

struct Cell {
    Value value;          // Blank for a formula cell: formulas are evaluated when read
    FormulaText formula;  // starts with "=" when the cell holds a formula, else empty
    // The text was typed with a leading apostrophe: it stays text whatever it looks like.
    bool quotePrefix = false;
    SharedStyle style;

    bool operator==(const Cell&) const = default;
};

struct RowInfo {
    std::optional<double> height;  // points; the standard height when absent
    bool hidden = false;
    std::optional<SharedStyle> style;  // the format of the whole row

    bool operator==(const RowInfo&) const = default;
};

// The rows that differ from the standard row, by number. The top of a row is the sum of the
// heights above it; those sums are kept between changes, as every shape placed or read asks for
// a top and adding up the rows above each time made a chart's drawing grow with the square of
// its rows. Reading is as from a map; every change goes through Edit or [].
class RowInfos {
  public:
    using Map = std::map<int, RowInfo>;

    Map::const_iterator begin() const { return map_.begin(); }
    Map::const_iterator end() const { return map_.end(); }
    Map::const_reverse_iterator rbegin() const { return map_.rbegin(); }
    Map::const_iterator find(int row) const { return map_.find(row); }
    Map::const_iterator lower_bound(int row) const { return map_.lower_bound(row); }
    bool empty() const { return map_.empty(); }
    std::size_t size() const { return map_.size(); }
    const RowInfo& at(int row) const { return map_.at(row); }
    bool operator==(const RowInfos& other) const { return map_ == other.map_; }

    RowInfo& operator[](int row) { return Edit()[row]; }
    // The rows to change; the tops are summed again on the next read.
    Map& Edit() {
        summed_ = false;
        return map_;
    }

    // The top of `row` in points, hidden rows counting 0.
    double Top(int row) const;

  private:
    Map map_;
    // For the n-th entry of the map, its row and the height the entries before it add to (or
    // take from) rows of the standard height.
    mutable std::vector<int> summedRows_;
    mutable std::vector<double> extraAbove_;
    mutable bool summed_ = false;
};

struct ColumnInfo {
    std::optional<double> width;  // characters; the standard width when absent
    bool hidden = false;
    std::optional<SharedStyle> style;  // the format of the whole column

    bool operator==(const ColumnInfo&) const = default;
};

// A defined name. refersTo is a formula such as "=WBS!$B$5" or "=Settings!$C$3:$C$9".
struct DefinedName {
    std::string name;
    std::string refersTo;

    bool operator==(const DefinedName&) const = default;
};

// A rectangular block of cells on one sheet (inclusive bounds).
struct Area {
    int top = 1;
    int left = 1;
    int bottom = 1;
    int right = 1;

    int Rows() const { return bottom - top + 1; }
    int Columns() const { return right - left + 1; }
    bool Contains(int row, int column) const {
        return row >= top && row <= bottom && column >= left && column <= right;
    }
    bool WholeRows() const { return left == 1 && right == kMaxColumn; }
    bool WholeColumns() const { return top == 1 && bottom == kMaxRow; }
    bool operator==(const Area&) const = default;
};

// How a sheet prints.
struct PageSetup {
    bool landscape = false;
    // The print shrinks to fit this many pages across and down; 0 leaves that direction free, and
    // both 0 print at full size.
    int fitToPagesWide = 0;
    int fitToPagesTall = 0;

    bool operator==(const PageSetup&) const = default;
};

// What the last change of a block by parts (ChangeStyleByPart) left: the parts' cells, the
// formats it left in them, with the parts each format's cells lie in, and the count of changes to
// the sheet's cells after it. Borders are set a property at a time (line style, then weight, then
// colour) over the same cells, and the later properties mostly ask for what the first already
// left; a change that would leave each of those formats as it is passes over the cells unwalked.
class PartWalkMemo {
  public:
    struct Result {
        std::uint32_t parts = 0;  // a bit per part
        SharedStyle style;
    };
    PartWalkMemo() = default;
    PartWalkMemo(std::vector<Area> parts, std::uint64_t cellChanges, std::vector<Result> results)
        : parts_(std::move(parts)), cellChanges_(cellChanges), results_(std::move(results)) {}
    // A sheet copied walks anew.
    PartWalkMemo(const PartWalkMemo&) {}
    PartWalkMemo& operator=(const PartWalkMemo& other) {
        if (this != &other) *this = PartWalkMemo();
        return *this;
    }
    PartWalkMemo(PartWalkMemo&&) noexcept = default;
    PartWalkMemo& operator=(PartWalkMemo&&) noexcept = default;
    ~PartWalkMemo() = default;

    // The formats the last walk left, when it walked `parts` and the cells are as it left them;
    // else null. A memo of no walk has no parts, and no walk by parts has none.
    const std::vector<Result>* LeftIn(const std::vector<Area>& parts,
                                      std::uint64_t cellChanges) const {
        return !parts_.empty() && parts == parts_ && cellChanges == cellChanges_ ? &results_
                                                                                 : nullptr;
    }

  private:
    std::vector<Area> parts_;
    std::uint64_t cellChanges_ = 0;
    std::vector<Result> results_;
};

struct Sheet {
    std::string name;
    std::string codeName;
    CellStore<Cell> cells;  // only cells with a value, a formula or their own style
    RowInfos rows;
    std::map<int, ColumnInfo> columns;
    std::vector<DefinedName> names;  // names local to this sheet
    // The selection as areas, and the active cell.
    std::vector<Area> selection = std::vector<Area>(1);
    CellRef activeCell;
    int zoom = 100;  // of the window showing this sheet
    // The first cell that scrolls: the rows above it and the columns left of it are frozen panes.
    // A1 when nothing is frozen.
    CellRef frozenAt;
    PageSetup pageSetup;
    ShapeList shapes;  // in z-order, back to front
    std::vector<std::shared_ptr<Chart>> charts;
    // Kept by the formula evaluation, which reads the sheet as const.
    mutable FormulaResults formulaResults;
    PartWalkMemo lastPartWalk;
    RecentStyles recentStyles;
};

// A chart that stands as a sheet of its own, as Charts.Add makes it, until Location moves it
// onto a worksheet.
struct ChartSheet {
    std::string name;
    std::shared_ptr<Chart> chart;
};

// A cell as Copy took it: its contents and effective format, and the value it showed.
struct ClippedCell {
    Cell cell;
    Value shown;
};

// What Copy or Cut put on the clipboard.
struct Clipboard {
    std::weak_ptr<Sheet> sheet;
    Area area;
    bool cut = false;
    // The copied cells, by row and column offset from the area's top-left corner (0-based).
    std::map<CellRef, ClippedCell> cells;
};

struct Workbook {
    std::string name = "Book1";
    std::vector<std::shared_ptr<Sheet>> sheets;  // worksheets in tab order
    std::vector<ChartSheet> chartSheets;
    std::vector<DefinedName> names;  // workbook-level names
    std::size_t activeSheet = 0;     // index in sheets
    std::optional<Clipboard> clipboard;
    // The numbers the last sheet and chart sheet added were named with ("Sheet3", "Chart1"): the
    // spreadsheet counts on and does not reuse the names of renamed sheets.
    int lastSheetNumber = 0;
    int lastChartNumber = 0;
    // Counts the sheets added and renamed: formulas find other sheets by name, and what they
    // found before may have changed.
    std::uint64_t sheetNameChanges = 0;
    // The program's Application.ScreenUpdating, which a command switches off while it works.
    bool screenUpdating = true;
    // The text a macro put into the program's status bar; none while the program shows its own.
    std::optional<std::string> statusBar;
};

// Style lookups and cell access that keep the format inheritance (cell, row, column, default).
const SharedStyle& EffectiveStyle(const Sheet& sheet, int row, int column);
// The cell's entry, created with its inherited style when it has none.
Cell& CellAt(Sheet& sheet, int row, int column);
const Cell* FindCell(const Sheet& sheet, int row, int column);
// Drops the cell's entry when it holds nothing its row or column would not give it.
void TrimCell(Sheet& sheet, int row, int column);
// The format a cell without an entry of its own shows: its row's, else its column's.
const SharedStyle& InheritedStyle(const Sheet& sheet, int row, int column);
// The row's own format, or null; the column's own format, or the default.
const SharedStyle* RowStyle(const Sheet& sheet, int row);
const SharedStyle& ColumnStyle(const Sheet& sheet, int column);
// The entry holds nothing its row or column would not give it.
bool IsBareCell(const Sheet& sheet, const CellRef& ref, const Cell& cell);
// No value, formula or apostrophe: only a format, if that.
bool HoldsNothing(const Cell& cell);

// The spreadsheet's limits on texts, in the UTF-16 units it counts.
inline constexpr std::size_t kMaxCellCharacters = 32767;
inline constexpr std::size_t kMaxSheetNameCharacters = 31;
std::size_t CharacterCount(std::string_view utf8);
// At most 31 characters, none of ":\/?*[]", and no quote at either end.
bool IsValidSheetName(std::string_view name);

// Sheets and names are matched without regard to case (ASCII letters), as the spreadsheet does.
bool SameName(std::string_view a, std::string_view b);
std::shared_ptr<Sheet> FindSheet(const Workbook& book, std::string_view name);
const DefinedName* FindName(const std::vector<DefinedName>& names, std::string_view name);

// Geometry in points.
double ColumnWidthPoints(const Sheet& sheet, int column);  // 0 when hidden
double RowHeightPoints(const Sheet& sheet, int row);       // 0 when hidden
double ColumnLeft(const Sheet& sheet, int column);         // left edge of the column
double RowTop(const Sheet& sheet, int row);                // top edge of the row
// A column width in characters as the spreadsheet shows it, in points (8.43 -> 48).
double CharactersToPoints(double characters);
double PointsToCharacters(double points);

// A date or time number format ("yyyy/mm/dd", "h:mm", "m/d/yyyy"): its values read as dates.
bool IsDateFormat(std::string_view numberFormat);

}  // namespace sheethost
