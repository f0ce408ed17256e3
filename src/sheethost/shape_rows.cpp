// Shapes following their rows when rows are cut and inserted, inserted or deleted. A shape is
// anchored by its top edge to the row that edge lies in and by its bottom edge to the row its
// last point lies in; after the rows move, each edge keeps its offset into its anchor row.
#include <algorithm>

#include "sheethost/model.h"
#include "sheethost/shape_geometry.h"

namespace sheethost {
namespace {

constexpr int kLastRow = 1048576;

// The last row r for which `before(r)` holds; `before` must hold for row 1 and, once false,
// stay false for all later rows.
int LastRowWhere(const std::function<bool(int)>& before) {
    int low = 1;
    int high = 2;
    while (high < kLastRow && before(high)) {
        low = high;
        high = std::min(high * 2, kLastRow);
    }
    if (before(high)) return high;
    while (high - low > 1) {
        const int middle = low + (high - low) / 2;
        (before(middle) ? low : high) = middle;
    }
    return low;
}

struct Anchor {
    int row = 1;
    double offset = 0;
};

// Where an anchored edge lands: at its offset into the row's new place, or, when its row was
// deleted, at the top of the first row after it that is still there.
double MovedEdge(const RowShift& shift, Anchor anchor) {
    for (int row = anchor.row; row <= kLastRow; ++row) {
        const int newRow = shift.mapRow(row);
        if (newRow != 0) return shift.topAfter(newRow) + (row == anchor.row ? anchor.offset : 0);
    }
    return shift.topAfter(kLastRow);
}

void MoveShape(Shape& shape, const RowShift& shift) {
    const double top = std::max(shape.top, 0.0);
    const double bottom = top + std::max(shape.height, 0.0);
    const int topRow = LastRowWhere([&](int row) { return shift.topBefore(row) <= top; });
    // A bottom edge on a row boundary belongs to the row above it, so a shape that ends where a
    // row begins does not stretch when rows are inserted there.
    const int bottomRow =
        bottom > top
            ? LastRowWhere([&](int row) { return row == 1 || shift.topBefore(row) < bottom; })
            : topRow;
    const double newTop = MovedEdge(shift, {topRow, top - shift.topBefore(topRow)});
    double newHeight = shape.height;
    if (shape.placement == mso::kMoveAndSize) {
        const double newBottom = MovedEdge(shift, {bottomRow, bottom - shift.topBefore(bottomRow)});
        newHeight = std::max(newBottom - newTop, 0.0);
    }
    SetBounds(shape, shape.left, newTop, shape.width, newHeight);
}

}  // namespace

void MoveShapesWithRows(Sheet& sheet, const RowShift& shift) {
    for (const auto& shape : sheet.shapes) {
        if (shape->placement == mso::kFreeFloating) continue;
        MoveShape(*shape, shift);
    }
    for (const auto& shape : sheet.shapes) {
        if (IsConnector(*shape)) RerouteConnector(*shape, sheet.shapes);
    }
}

}  // namespace sheethost
