// Blocks of cells read and written in one call, as arrays of automation values: what a macro
// gets from `values = Range("B5:V40").Value` and gives with `Range("B5:V40").Value = values`.
#include <memory>
#include <optional>

#include "sheethost/cell_values.h"
#include "sheethost/sheet_edit.h"

namespace sheethost {
namespace {

struct DestroyArray {
    void operator()(SAFEARRAY* array) const { SafeArrayDestroy(array); }
};
using OwnedArray = std::unique_ptr<SAFEARRAY, DestroyArray>;

// Element `index` of an array of any element type, as a variant of its own.
VARIANT ElementAsVariant(SAFEARRAY* array, VARTYPE type, LONG* indices) {
    VARIANT value;
    VariantInit(&value);
    // A variant element is the variant; any other fills the variant's value bytes.
    void* into = type == VT_VARIANT ? static_cast<void*>(&value) : static_cast<void*>(&value.llVal);
    if (type == VT_DECIMAL) into = &value.decVal;
    if (FAILED(SafeArrayGetElement(array, indices, into))) {
        VariantInit(&value);
        return value;
    }
    if (type != VT_VARIANT) value.vt = type;
    return value;
}

// The array index for the k-th row or column of the area: past the array's end a single row or
// column repeats, otherwise there is no element.
std::optional<LONG> IndexFor(int k, LONG lower, LONG upper) {
    if (lower + k <= upper) return lower + k;
    if (lower == upper) return lower;
    return std::nullopt;
}

}  // namespace

bool AreaVariant(const Workbook& book, const Sheet& sheet, const Area& area, CellReader read,
                 VARIANT& out) {
    VariantInit(&out);
    if (area.Rows() == 1 && area.Columns() == 1) {
        out = read(book, sheet, area.top, area.left);
        return true;
    }
    if (double(area.Rows()) * area.Columns() > kMostCellsAtOnce) return false;
    SAFEARRAYBOUND bounds[2] = {{static_cast<ULONG>(area.Rows()), 1},
                                {static_cast<ULONG>(area.Columns()), 1}};
    OwnedArray array(SafeArrayCreate(VT_VARIANT, 2, bounds));
    if (array == nullptr) return false;
    // Elements lie row index fastest: column by column.
    auto* cells = static_cast<VARIANT*>(array->pvData);
    for (int column = area.left; column <= area.right; ++column) {
        for (int row = area.top; row <= area.bottom; ++row)
            *cells++ = read(book, sheet, row, column);
    }
    out.vt = VT_ARRAY | VT_VARIANT;
    out.parray = array.release();
    return true;
}

bool PutArrayVariant(Sheet& sheet, const Area& area, const VARIANT& value) {
    SAFEARRAY* array = (value.vt & VT_BYREF) ? *value.pparray : value.parray;
    const UINT dimensions = SafeArrayGetDim(array);
    VARTYPE type = VT_EMPTY;
    if (array == nullptr || dimensions < 1 || dimensions > 2 ||
        FAILED(SafeArrayGetVartype(array, &type))) {
        return false;
    }
    // A one-dimensional array is one row.
    LONG rowLower = 0, rowUpper = 0, columnLower = 0, columnUpper = 0;
    const UINT columnDimension = dimensions;
    if (dimensions == 2) {
        SafeArrayGetLBound(array, 1, &rowLower);
        SafeArrayGetUBound(array, 1, &rowUpper);
    }
    SafeArrayGetLBound(array, columnDimension, &columnLower);
    SafeArrayGetUBound(array, columnDimension, &columnUpper);

    const VARIANT notAvailable = ValueVariant(ErrorValue::kNA);
    bool refused = false;
    for (int r = 0; r < area.Rows(); ++r) {
        const std::optional<LONG> row = IndexFor(r, rowLower, rowUpper);
        for (int c = 0; c < area.Columns(); ++c) {
            const std::optional<LONG> column = IndexFor(c, columnLower, columnUpper);
            if (!row || !column) {
                PutCellVariant(sheet, area.top + r, area.left + c, notAvailable);
                continue;
            }
            LONG indices[2] = {*row, *column};
            VARIANT element =
                ElementAsVariant(array, type, dimensions == 2 ? indices : indices + 1);
            if (!PutCellVariant(sheet, area.top + r, area.left + c, element)) refused = true;
            VariantClear(&element);
        }
    }
    return !refused;
}

}  // namespace sheethost
