// Factories of the host's automation objects. Each returns a new object holding one reference,
// which the caller owns. Objects keep the workbook (and their sheet) alive through shared
// pointers, so a reference outliving a deleted sheet stays valid.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "com/com.h"
#include "sheethost/model.h"

namespace sheethost {

using BookPtr = std::shared_ptr<Workbook>;
using SheetPtr = std::shared_ptr<Sheet>;

// The worksheet side (application_object.cpp, workbook_object.cpp, worksheet_object.cpp,
// range_object.cpp).
IDispatch* NewApplicationObject(const BookPtr& book);
IDispatch* NewWorkbookObject(const BookPtr& book);
IDispatch* NewWorksheetObject(const BookPtr& book, const SheetPtr& sheet);
// A range of one or more areas of a sheet (a union when more than one; no areas means A1).
IDispatch* NewRangeObject(const BookPtr& book, const SheetPtr& sheet, std::vector<Area> areas);

// The sheet and areas behind a Range object of this host; nullopt for any other object.
struct RangeTarget {
    SheetPtr sheet;
    std::vector<Area> areas;
};
std::optional<RangeTarget> RangeTargetOf(IDispatch* object);
// The sheet behind a Worksheet object of this host; null for any other object.
SheetPtr WorksheetOf(IDispatch* object);

// The drawing side (shape_*.cpp, chart_*.cpp).
IDispatch* NewShapesObject(const BookPtr& book, const SheetPtr& sheet);
// The chart of a chart sheet (sheet null) or of a chart embedded in `sheet`.
IDispatch* NewChartObject(const BookPtr& book, const std::shared_ptr<Chart>& chart,
                          const SheetPtr& sheet);

}  // namespace sheethost
