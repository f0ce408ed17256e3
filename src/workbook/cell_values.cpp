// Blocks of cells read and written with one Value call each. In the spreadsheet program every call
// crosses its object model, so a row or a column of cells read at once costs what one cell costs.
#include <algorithm>
#include <utility>

#include "workbook/automation.h"
#include "workbook/workbook.h"

namespace {

bool IsCellArray(const VARIANT& value) {
    return value.vt == (VT_ARRAY | VT_VARIANT) && SafeArrayGetDim(value.parray) == 2;
}

}  // namespace

CellValues::CellValues(std::int64_t rows, std::int64_t columns)
    : rows_(rows), columns_(columns), readRows_(rows), readColumns_(columns) {
    SAFEARRAYBOUND bounds[2] = {{static_cast<ULONG>(rows), 1}, {static_cast<ULONG>(columns), 1}};
    block_.parray = SafeArrayCreate(VT_VARIANT, 2, bounds);
    block_.vt = block_.parray != nullptr ? VT_ARRAY | VT_VARIANT : VT_EMPTY;
}

CellValues::~CellValues() {
    VariantClear(&block_);
}

CellValues::CellValues(CellValues&& other) noexcept
    : block_(std::exchange(other.block_, VARIANT{})),
      rows_(other.rows_),
      columns_(other.columns_),
      rowOffset_(other.rowOffset_),
      columnOffset_(other.columnOffset_),
      readRows_(other.readRows_),
      readColumns_(other.readColumns_) {}

CellValues& CellValues::operator=(CellValues&& other) noexcept {
    if (this != &other) {
        VariantClear(&block_);
        block_ = std::exchange(other.block_, VARIANT{});
        rows_ = other.rows_;
        columns_ = other.columns_;
        rowOffset_ = other.rowOffset_;
        columnOffset_ = other.columnOffset_;
        readRows_ = other.readRows_;
        readColumns_ = other.readColumns_;
    }
    return *this;
}

CellValues CellValues::FromResult(VARIANT& result, std::int64_t rows, std::int64_t columns,
                                  std::int64_t rowOffset, std::int64_t columnOffset) {
    CellValues values;
    values.rows_ = rows;
    values.columns_ = columns;
    values.rowOffset_ = rowOffset;
    values.columnOffset_ = columnOffset;
    // A single cell answers its value; a block an array of rows by columns.
    if (IsCellArray(result)) {
        LONG lastRow = 0, lastColumn = 0, firstRow = 0, firstColumn = 0;
        SafeArrayGetLBound(result.parray, 1, &firstRow);
        SafeArrayGetUBound(result.parray, 1, &lastRow);
        SafeArrayGetLBound(result.parray, 2, &firstColumn);
        SafeArrayGetUBound(result.parray, 2, &lastColumn);
        values.readRows_ = lastRow - firstRow + 1;
        values.readColumns_ = lastColumn - firstColumn + 1;
    } else if ((result.vt & VT_ARRAY) == 0) {
        values.readRows_ = 1;
        values.readColumns_ = 1;
    } else {
        VariantClear(&result);
    }
    values.block_ = std::exchange(result, VARIANT{});
    return values;
}

const VARIANT* CellValues::At(std::int64_t row, std::int64_t column) const {
    const std::int64_t r = row - rowOffset_;
    const std::int64_t c = column - columnOffset_;
    if (r < 0 || c < 0 || r >= readRows_ || c >= readColumns_) return nullptr;
    if (!IsCellArray(block_)) return &block_;
    LONG firstRow = 0, firstColumn = 0;
    SafeArrayGetLBound(block_.parray, 1, &firstRow);
    SafeArrayGetLBound(block_.parray, 2, &firstColumn);
    LONG indices[2] = {firstRow + static_cast<LONG>(r), firstColumn + static_cast<LONG>(c)};
    void* element = nullptr;
    if (FAILED(SafeArrayPtrOfIndex(block_.parray, indices, &element))) return nullptr;
    return static_cast<const VARIANT*>(element);
}

VARIANT CellValues::Converted(std::int64_t row, std::int64_t column, VARTYPE type) const {
    VARIANT value;
    VariantInit(&value);
    const VARIANT* cell = At(row, column);
    if (cell == nullptr || FAILED(VariantCopy(&value, const_cast<VARIANT*>(cell))) ||
        FAILED(automation::ConvertResult(&value, type)) || value.vt != type) {
        VariantClear(&value);
    }
    return value;
}

std::string CellValues::Text(std::int64_t row, std::int64_t column) const {
    VARIANT text = Converted(row, column, VT_BSTR);
    std::string narrow = text.vt == VT_BSTR ? NarrowBstr(text.bstrVal) : std::string();
    VariantClear(&text);
    return narrow;
}

WideString CellValues::Wide(std::int64_t row, std::int64_t column) const {
    VARIANT text = Converted(row, column, VT_BSTR);
    WideString wide;
    if (text.vt == VT_BSTR) wide.assign(text.bstrVal, SysStringLen(text.bstrVal));
    VariantClear(&text);
    return wide;
}

double CellValues::Number(std::int64_t row, std::int64_t column) const {
    const VARIANT number = Converted(row, column, VT_R8);
    return number.vt == VT_R8 ? number.dblVal : 0.0;
}

void CellValues::SetText(std::int64_t row, std::int64_t column, std::string_view text) {
    if (!IsCellArray(block_)) return;
    const WideString wide = Widen(text);
    VARIANT value;
    value.vt = VT_BSTR;
    value.bstrVal = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
    LONG indices[2] = {static_cast<LONG>(row) + 1, static_cast<LONG>(column) + 1};
    SafeArrayPutElement(block_.parray, indices, &value);
    VariantClear(&value);
}

CellValues XlObject::GetValues() const {
    VARIANT result;
    VariantInit(&result);
    automation::GetValue(OLESTR("%v"), &result, object_, OLESTR(".Value"));
    LONG rows = 1, columns = 1;
    if (result.vt == (VT_ARRAY | VT_VARIANT)) {
        SafeArrayGetUBound(result.parray, 1, &rows);
        SafeArrayGetUBound(result.parray, 2, &columns);
    }
    return CellValues::FromResult(result, rows, columns, 0, 0);
}

void XlObject::SetValues(const CellValues& values) const {
    automation::PutValue(object_, OLESTR(".Value=%v"), &values.AsVariant());
}

XlObject::TriState XlObject::GetTriState(std::string_view name) const {
    VARIANT value;
    VariantInit(&value);
    automation::GetValue(OLESTR("%v"), &value, object_, Widen("." + std::string(name)).c_str());
    if (value.vt == VT_NULL) return TriState::kMixed;
    const bool set = SUCCEEDED(automation::ConvertResult(&value, VT_BOOL)) && value.vt == VT_BOOL &&
                     value.boolVal != VARIANT_FALSE;
    VariantClear(&value);
    return set ? TriState::kTrue : TriState::kFalse;
}

std::optional<double> XlObject::GetCommonNumberArg(std::string_view name, int n) const {
    VARIANT value;
    VariantInit(&value);
    const HRESULT read = automation::GetValue(OLESTR("%v"), &value, object_,
                                              Widen("." + std::string(name)).c_str(), n);
    std::optional<double> common;
    if (SUCCEEDED(read) && value.vt != VT_NULL &&
        SUCCEEDED(automation::ConvertResult(&value, VT_R8)) && value.vt == VT_R8) {
        common = value.dblVal;
    }
    VariantClear(&value);
    return common;
}

std::string BlockAddress(std::int64_t firstRow, std::int64_t firstColumn, std::int64_t lastRow,
                         std::int64_t lastColumn) {
    return ColumnLetters(firstColumn) + std::to_string(firstRow) + ":" + ColumnLetters(lastColumn) +
           std::to_string(lastRow);
}

CellValues ReadCellBlock(const XlObject& sheet, std::int64_t firstRow, std::int64_t firstColumn,
                         std::int64_t lastRow, std::int64_t lastColumn) {
    const std::int64_t rows = lastRow - firstRow + 1;
    const std::int64_t columns = lastColumn - firstColumn + 1;
    // Only the part on the sheet is asked for; the rest stays empty.
    const std::int64_t top = std::max<std::int64_t>(firstRow, 1);
    const std::int64_t left = std::max<std::int64_t>(firstColumn, 1);
    const std::int64_t bottom = std::min(lastRow, kSheetRows);
    const std::int64_t right = std::min(lastColumn, kSheetColumns);
    VARIANT result;
    VariantInit(&result);
    if (top <= bottom && left <= right) {
        automation::GetValue(OLESTR("%v"), &result, sheet.object(), OLESTR(".Range(%S).Value"),
                             Widen(BlockAddress(top, left, bottom, right)).c_str());
    }
    return CellValues::FromResult(result, std::max<std::int64_t>(rows, 0),
                                  std::max<std::int64_t>(columns, 0), top - firstRow,
                                  left - firstColumn);
}

void WriteCellBlock(const XlObject& sheet, std::int64_t firstRow, std::int64_t firstColumn,
                    const CellValues& values) {
    if (values.Rows() < 1 || values.Columns() < 1) return;
    const std::string address = BlockAddress(firstRow, firstColumn, firstRow + values.Rows() - 1,
                                             firstColumn + values.Columns() - 1);
    automation::PutValue(sheet.object(), OLESTR(".Range(%S).Value=%v"), Widen(address).c_str(),
                         &values.AsVariant());
}
