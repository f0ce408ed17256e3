// The Range object and the format objects hanging off it (Borders, Interior, Font,
// FormatConditions). Private to the host.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sheethost/dispatch_object.h"
#include "sheethost/objects.h"

namespace sheethost {

// What Count, Item and enumeration count in: cells, or whole rows or columns of the range (the
// ranges Rows and Columns answer).
enum class RangeMode { kCells, kRows, kColumns };

// The cells a Range or one of its format objects stands for.
struct RangeSpan {
    BookPtr book;
    SheetPtr sheet;
    std::vector<Area> areas;

    const Area& First() const { return areas.front(); }
    // "WBS!$B$3:$B$9", for messages and the live-object report.
    std::string Describe() const;
};

class RangeObject final : public DispatchObjectOf<RangeObject> {
  public:
    RangeObject(RangeSpan span, RangeMode mode) : span(std::move(span)), mode(mode) {}

    static const MemberTable<RangeObject>& Members();
    std::string_view TypeName() const override { return "Range"; }
    std::string Describe() const override { return "Range " + span.Describe(); }

    const RangeSpan span;
    const RangeMode mode;
};

IDispatch* NewRange(const RangeSpan& span, RangeMode mode = RangeMode::kCells);

// Item(row, column) or Item(index) of a range counted in `mode`, as Cells(3, 2), Rows(5),
// Rows("5:7") and Columns("C") answer it. Refuses positions off the sheet.
IDispatch* RangeItem(const RangeSpan& span, RangeMode mode, const Invocation& call);

// The sheet is the one its window shows: only then can its cells be selected.
bool IsActiveSheet(const RangeSpan& span);

// The format objects of a range.
IDispatch* NewBordersObject(const RangeSpan& span);
IDispatch* NewBorderObject(const RangeSpan& span, int index);  // refuses an unknown index
IDispatch* NewInteriorObject(const RangeSpan& span);
IDispatch* NewFontObject(const RangeSpan& span);
IDispatch* NewFormatConditionsObject(const RangeSpan& span);
IDispatch* NewFormatConditionObject(const RangeSpan& span, int index);  // refuses a missing one

// The handlers of the row and column layout members of Range (range_layout.cpp).
namespace range_layout {
void Left(RangeObject& range, Invocation& call);
void Top(RangeObject& range, Invocation& call);
void Width(RangeObject& range, Invocation& call);
void Height(RangeObject& range, Invocation& call);
void Hidden(RangeObject& range, Invocation& call);
void RowHeight(RangeObject& range, Invocation& call);
void ColumnWidth(RangeObject& range, Invocation& call);
void AutoFit(RangeObject& range, Invocation& call);
void Insert(RangeObject& range, Invocation& call);
void Delete(RangeObject& range, Invocation& call);
}  // namespace range_layout

// Visits the effective style of every cell of the span (whole rows and columns: each distinct
// source of style once) until `visit` returns false.
void VisitStyles(const RangeSpan& span, const std::function<bool(const Style&)>& visit);

// The one value all styles of the span share, or nothing when they differ ("mixed").
template <class T, class Get>
std::optional<T> CommonStyleValue(const RangeSpan& span, Get get) {
    std::optional<T> common;
    bool mixed = false;
    VisitStyles(span, [&](const Style& style) {
        T value = get(style);
        if (!common) {
            common = std::move(value);
        } else if (*common != value) {
            mixed = true;
        }
        return !mixed;
    });
    return mixed ? std::nullopt : common;
}

}  // namespace sheethost
