// The drawing side's automation objects beyond those in objects.h, and the helpers their member
// handlers share.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "sheethost/dispatch_object.h"
#include "sheethost/objects.h"

namespace sheethost {

// A shape of `sheet` (a chart's frame answers as the ChartObject the spreadsheet shows for it).
IDispatch* NewShapeObject(const BookPtr& book, const SheetPtr& sheet,
                          const std::shared_ptr<Shape>& shape);
// Worksheet.ChartObjects: the embedded charts of a sheet.
IDispatch* NewChartObjectsObject(const BookPtr& book, const SheetPtr& sheet);

// The shape behind a Shape object of this host, null for any other object.
std::shared_ptr<Shape> ShapeOf(IDispatch* object);

// What every object that belongs to one shape (its line, fill, text frame, ...) holds: the shape
// and the sheet and workbook it lives in, kept alive by the object.
struct ShapeHandle {
    BookPtr book;
    SheetPtr sheet;
    std::shared_ptr<Shape> shape;

    // The shape; refused once it has been deleted from its sheet.
    Shape& Live() const;
    // After its box changed: connectors glued to the shape follow it.
    void GeometryChanged() const;
    // After its text, font or margins changed: an auto-sized frame takes the size of its text.
    void TextChanged() const;
    // "Shape Rectangle 3" for the live-object report.
    std::string Describe(std::string_view typeName) const;
};

// The objects a shape hands out.
IDispatch* NewLineFormatObject(const ShapeHandle& handle);
IDispatch* NewFillFormatObject(const ShapeHandle& handle);
// A colour of the line or fill, chosen by `select`.
IDispatch* NewColorFormatObject(const ShapeHandle& handle, std::int32_t& (*select)(Shape&));
IDispatch* NewTextFrameObject(const ShapeHandle& handle);
IDispatch* NewAdjustmentsObject(const ShapeHandle& handle);
IDispatch* NewConnectorFormatObject(const ShapeHandle& handle);
IDispatch* NewFreeformBuilderObject(const BookPtr& book, const SheetPtr& sheet, FreeformNode start);

// A collection member called with an index: Shapes(2), Shapes("Name"), ChartObjects(1). Answers
// the collection itself when no argument is given.
void ReturnItemOrCollection(Invocation& call, IDispatch* collection);

// Plain properties: a get answers the field, a put stores into it. Office's tri-state booleans
// read as -1 (true) and 0 and accept any non-zero number as true; the spreadsheet's own booleans
// read as True/False.
void NumberProperty(Invocation& call, double& field);
void IntegerProperty(Invocation& call, int& field);
void ColorProperty(Invocation& call, std::int32_t& field);
void TriStateProperty(Invocation& call, bool& field);
void BooleanProperty(Invocation& call, bool& field);
void TextProperty(Invocation& call, std::string& field);
// Refuses a put on a read-only member.
void ReadOnly(Invocation& call);

// The spreadsheet's messages for the refusals the drawing side makes. Handlers Decline with the
// refusals a drawing command meets for every shape (a lookup by a name that is not there, an
// adjustment a shape does not have, a value out of range), and raise the rest.
Refusal OutOfRange();
Refusal BadIndex();
Refusal NotFound();
[[noreturn]] void RaiseOutOfRange();
[[noreturn]] void RaiseBadIndex();
[[noreturn]] void RaiseDeleted();

}  // namespace sheethost
