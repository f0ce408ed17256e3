// Holders of host objects and the fixed set of operations the engine performs on them.
//
// The engine's text is UTF-8. Every operation is one late-bound call of the automation layer; the
// member paths are written here once, so the logic above never builds a path of its own except
// through the general Call/Put/Get forms below. A failed call yields an empty text, 0, 0.0 or a
// null object, and the command carries on.
#pragma once

#include <cstdarg>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "com/com.h"
#include "com/text.h"

class CellValues;

// An owning (by default) holder of one host object reference. An owning holder releases its
// reference exactly once: on Destroy, on Assign of another reference, or when it goes out of scope.
class XlObject {
  public:
    XlObject() = default;                     // Init: empty, owning
    explicit XlObject(IDispatch* reference);  // InitWith: takes over a new reference
    ~XlObject();
    XlObject(XlObject&& other) noexcept;
    XlObject& operator=(XlObject&& other) noexcept;
    XlObject(const XlObject&) = delete;
    XlObject& operator=(const XlObject&) = delete;

    IDispatch* object() const { return object_; }
    bool owned() const { return owned_; }
    bool IsNothing() const { return object_ == nullptr; }
    void Assign(IDispatch* reference);
    void Destroy();
    void SetOwned() { owned_ = true; }
    // Copies the pointer and the owned flag without taking a reference of its own: the copy is a
    // borrowed view, and at most one of the two may own it when they are destroyed. A reference
    // this holder owned before is released first, as by Assign.
    void CopyFrom(const XlObject& other);
    // Gives up the reference without releasing it.
    IDispatch* Detach();

    // Generic properties. Names that these forms prefix with "." are member names or paths
    // ("Value", "Line.Weight"); the others are sent as written.
    std::string GetString(std::string_view name) const;
    void SetString(std::string_view name, std::string_view text) const;
    WideString GetWide(std::string_view name) const;
    void SetWide(std::string_view name, WideStringView text) const;
    XlObject GetObject(std::string_view name) const;
    // `name` holds one "%s", which receives `argument`: "Shapes(%s)".
    XlObject GetObjectArg(std::string_view name, std::string_view argument) const;
    double GetNumber(std::string_view name) const;
    double GetNumberArg(std::string_view name, int n) const;
    void SetNumber(std::string_view name, double value) const;
    void SetNumberArg(std::string_view name, int n, double value) const;
    void CopyString(std::string_view name, const XlObject& from) const;
    void CopyNumber(std::string_view name, const XlObject& from) const;

    // General member paths with the automation layer's specifiers. Text arguments are passed as
    // "%S" with a wide string (Widen(text).c_str()), so that no code page can change them.
    HRESULT Call(const char* path, ...) const;
    HRESULT Put(const char* path, ...) const;
    double GetNumberPath(const char* path, ...) const;
    std::string GetStringPath(const char* path, ...) const;
    XlObject GetObjectPath(const char* path, ...) const;

    // Fixed members.
    std::string GetValue() const;
    std::string GetText() const { return GetValue(); }
    void SetValue(std::string_view text) const;
    void SetText(std::string_view text) const { SetValue(text); }
    double GetValueNum() const;
    void SetValueNum(double value) const;
    void SetFormula(std::string_view formula) const;
    std::string GetName() const;
    std::string GetCodeName() const;
    std::int64_t GetRow() const;
    std::int64_t GetColumn() const;
    double GetLeft() const;
    double GetTop() const;
    double GetWidth() const;
    double GetHeight() const;
    void SetLeft(double points) const;
    void SetTop(double points) const;
    void SetWidth(double points) const;
    void SetHeight(double points) const;
    void Delete() const;
    void Clear() const;
    void ClearContents() const;
    XlObject CellItem(std::int64_t n) const;
    XlObject Cell(std::int64_t row, std::int64_t column) const;
    XlObject RangeOf(std::string_view address) const;
    void SetCell(std::int64_t row, std::int64_t column, std::string_view text) const;
    XlObject ShapeByName(std::string_view name) const;
    XlObject ShapeAt(int index) const;
    XlObject BuildFreeform(int editingType, double x, double y) const;
    void AddNodes(int segmentType, int editingType, double x, double y) const;
    XlObject ConvertToShape() const;
    XlObject GetAdjustments() const;
    double GetItemNum(int index) const;
    void SetItemNum(int index, double value) const;

    // A range's Value in one call: every cell of a block at once.
    CellValues GetValues() const;
    void SetValues(const CellValues& values) const;
    // A property that a block answers for all its cells: true, false, or mixed (Null) when its
    // cells differ, as HasFormula does. A failed call reads as false.
    enum class TriState { kFalse, kTrue, kMixed };
    TriState GetTriState(std::string_view name) const;
    // A number that a block answers for all its cells ("Borders(%d).LineStyle" with `n`); nothing
    // when its cells differ (Null) or the read fails.
    std::optional<double> GetCommonNumberArg(std::string_view name, int n) const;

  private:
    friend class XlRef;
    XlObject(IDispatch* reference, bool owned) : object_(reference), owned_(owned) {}

    IDispatch* object_ = nullptr;
    bool owned_ = true;
};

// A holder that never releases what it holds: the engine's workbook and sheets, whose references
// belong to the workbook's macros.
class XlRef {
  public:
    XlRef() = default;
    IDispatch* object() const { return object_; }
    bool IsNothing() const { return object_ == nullptr; }
    void Reset() { object_ = nullptr; }
    void Attach(IDispatch* reference) { object_ = reference; }
    void Set(IDispatch* reference) { object_ = reference; }
    void CopyFrom(const XlRef& other) { object_ = other.object_; }
    void Destroy() { object_ = nullptr; }
    // A non-owning XlObject view, so the operations above work on the engine's sheets.
    XlObject View() const;

  private:
    IDispatch* object_ = nullptr;
};

// The values of a block of cells, rows by columns counted from 0, as one Value call of the host
// reads or writes them. Each cell reads as the single-cell operations read it: Text as GetValue,
// Wide as GetWide("Value"), Number as GetValueNum; a cell the host gave nothing for (a failed
// call, a cell off the sheet) reads as an empty text and 0.
class CellValues {
  public:
    CellValues() = default;
    // A block of empty cells, to be filled with SetText and written.
    CellValues(std::int64_t rows, std::int64_t columns);
    ~CellValues();
    CellValues(CellValues&& other) noexcept;
    CellValues& operator=(CellValues&& other) noexcept;
    CellValues(const CellValues&) = delete;
    CellValues& operator=(const CellValues&) = delete;

    std::int64_t Rows() const { return rows_; }
    std::int64_t Columns() const { return columns_; }
    std::string Text(std::int64_t row, std::int64_t column) const;
    WideString Wide(std::int64_t row, std::int64_t column) const;
    double Number(std::int64_t row, std::int64_t column) const;
    // Text is written as SetValue writes it: the host reads it as if typed.
    void SetText(std::int64_t row, std::int64_t column, std::string_view text);

    // What the host answered for `rows` x `columns` cells whose first `readRows` x `readColumns`
    // it was asked for, from (rowOffset, columnOffset) on: an array, a single value or nothing.
    static CellValues FromResult(VARIANT& result, std::int64_t rows, std::int64_t columns,
                                 std::int64_t rowOffset, std::int64_t columnOffset);
    // The block as the Value to put: an array of rows by columns counted from 1.
    const VARIANT& AsVariant() const { return block_; }

  private:
    // The cell's value converted as a member's result is, or empty when there is none.
    VARIANT Converted(std::int64_t row, std::int64_t column, VARTYPE type) const;
    const VARIANT* At(std::int64_t row, std::int64_t column) const;

    VARIANT block_{};  // VT_EMPTY, a single value, or VT_ARRAY | VT_VARIANT
    std::int64_t rows_ = 0;
    std::int64_t columns_ = 0;
    // Where the cells the host answered for lie in the block, and how many there are.
    std::int64_t rowOffset_ = 0;
    std::int64_t columnOffset_ = 0;
    std::int64_t readRows_ = 0;
    std::int64_t readColumns_ = 0;
};

// The size of a worksheet: cells beyond it cannot be addressed.
inline constexpr std::int64_t kSheetRows = 1048576;
inline constexpr std::int64_t kSheetColumns = 16384;

// The cells from (firstRow, firstColumn) to (lastRow, lastColumn) of a sheet, read in one call
// (two host calls: the range, its Value). Cells off the sheet read as empty, as a failed read of
// such a cell does.
CellValues ReadCellBlock(const XlObject& sheet, std::int64_t firstRow, std::int64_t firstColumn,
                         std::int64_t lastRow, std::int64_t lastColumn);
// Writes a block from (firstRow, firstColumn) on in one call. The block must lie on the sheet.
void WriteCellBlock(const XlObject& sheet, std::int64_t firstRow, std::int64_t firstColumn,
                    const CellValues& values);
// "C5:V40": the address of a block, with the columns in letters.
std::string BlockAddress(std::int64_t firstRow, std::int64_t firstColumn, std::int64_t lastRow,
                         std::int64_t lastColumn);

// Column letters and numbers as the settings give them: "A" = 1, "Z" = 26, "AA" = 27. Letters are
// not folded to upper case ("a" gives 33) and 0 gives "@".
std::int32_t ColumnNumber(std::string_view letters);
std::string ColumnLetters(std::int64_t number);
