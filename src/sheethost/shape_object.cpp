// Shape: one drawing object of a worksheet.
#include <algorithm>

#include "sheethost/shape_geometry.h"
#include "sheethost/shape_objects.h"
#include "sheethost/shape_sheet.h"
#include "sheethost/shape_text.h"

namespace sheethost {

Shape& ShapeHandle::Live() const {
    if (!sheet->shapes.Holds(*shape)) RaiseDeleted();
    return *shape;
}

void ShapeHandle::GeometryChanged() const {
    RerouteConnectorsOf(shape->id, sheet->shapes);
}

void ShapeHandle::TextChanged() const {
    if (!shape->textFrame || !shape->textFrame->autoSize) return;
    const TextExtent extent = MeasureText(*shape->textFrame);
    SetBounds(*shape, shape->left, shape->top, extent.width, extent.height);
    GeometryChanged();
}

std::string ShapeHandle::Describe(std::string_view typeName) const {
    return std::string(typeName) + " " + shape->name;
}

namespace {

class ShapeObject final : public DispatchObjectOf<ShapeObject> {
  public:
    explicit ShapeObject(ShapeHandle handle) : handle_(std::move(handle)) {}

    std::string_view TypeName() const override {
        return handle_.shape->type == mso::kChart ? "ChartObject" : "Shape";
    }
    std::string Describe() const override { return handle_.Describe(TypeName()); }
    const std::shared_ptr<Shape>& shape() const { return handle_.shape; }

    static const MemberTable<ShapeObject>& Members() {
        static const MemberTable<ShapeObject> members{
            {"Name", [](ShapeObject& self, Invocation& call) { self.Name(call); }},
            {"Left", [](ShapeObject& self, Invocation& call) { self.Edge(call, &Shape::left); }},
            {"Top", [](ShapeObject& self, Invocation& call) { self.Edge(call, &Shape::top); }},
            {"Width", [](ShapeObject& self, Invocation& call) { self.Size(call, &Shape::width); }},
            {"Height",
             [](ShapeObject& self, Invocation& call) { self.Size(call, &Shape::height); }},
            {"AutoShapeType",
             [](ShapeObject& self, Invocation& call) { self.AutoShapeType(call); }},
            {"Type",
             [](ShapeObject& self, Invocation& call) { self.ReadInteger(call, self.Live().type); }},
            {"ID",
             [](ShapeObject& self, Invocation& call) { self.ReadInteger(call, self.Live().id); }},
            {"ZOrderPosition",
             [](ShapeObject& self, Invocation& call) {
                 self.ReadInteger(call, ZOrderPosition(*self.handle_.sheet, self.Live()));
             }},
            {"ZOrder", [](ShapeObject& self, Invocation& call) { self.ZOrder(call); }},
            {"Delete", [](ShapeObject& self, Invocation& call) { self.Delete(call); }},
            {"Visible", [](ShapeObject& self,
                           Invocation& call) { TriStateProperty(call, self.Live().visible); }},
            {"Placement", [](ShapeObject& self, Invocation& call) { self.Placement(call); }},
            {"HorizontalFlip",
             [](ShapeObject& self, Invocation& call) {
                 self.ReadTriState(call, self.Live().horizontalFlip);
             }},
            {"VerticalFlip",
             [](ShapeObject& self, Invocation& call) {
                 self.ReadTriState(call, self.Live().verticalFlip);
             }},
            {"Connector",
             [](ShapeObject& self, Invocation& call) {
                 self.ReadTriState(call, IsConnector(self.Live()));
             }},
            {"ConnectionSiteCount",
             [](ShapeObject& self, Invocation& call) {
                 self.ReadInteger(call, ConnectionSiteCount(self.Live()));
             }},
            {"Line", [](ShapeObject& self,
                        Invocation& call) { self.Part(call, NewLineFormatObject(self.handle_)); }},
            {"Fill", [](ShapeObject& self,
                        Invocation& call) { self.Part(call, NewFillFormatObject(self.handle_)); }},
            {"TextFrame", [](ShapeObject& self, Invocation& call) { self.TextFrame(call); }},
            {"Adjustments",
             [](ShapeObject& self, Invocation& call) {
                 self.Part(call, NewAdjustmentsObject(self.handle_));
             }},
            {"ConnectorFormat",
             [](ShapeObject& self, Invocation& call) { self.ConnectorFormat(call); }},
            {"HasChart",
             [](ShapeObject& self, Invocation& call) {
                 self.ReadTriState(call, self.Live().type == mso::kChart);
             }},
            {"Chart", [](ShapeObject& self, Invocation& call) { self.Chart(call); }},
            {"Parent",
             [](ShapeObject& self, Invocation& call) {
                 self.Part(call, NewWorksheetObject(self.handle_.book, self.handle_.sheet));
             }},
        };
        return members;
    }

  private:
    Shape& Live() const { return handle_.Live(); }

    void ReadInteger(Invocation& call, int value) {
        call.ExpectCount(0, 0);
        call.ReturnInteger(value);
    }
    void ReadTriState(Invocation& call, bool value) {
        call.ExpectCount(0, 0);
        call.ReturnInteger(value ? -1 : 0);
    }
    // A sub-object of the shape; the shape must still be there.
    void Part(Invocation& call, IDispatch* part) {
        ComRef<IDispatch> owned = ComRef<IDispatch>::Adopt(part);
        call.ExpectCount(0, 0);
        Live();
        call.ReturnObject(owned.Detach());
    }

    void Name(Invocation& call) {
        Shape& shape = Live();
        if (call.IsPut()) {
            std::string name = call.PutText();
            if (name.empty()) RaiseOutOfRange();
            handle_.sheet->shapes.Rename(shape, std::move(name));
            return;
        }
        TextProperty(call, shape.name);
    }

    void Edge(Invocation& call, double Shape::*edge) {
        Shape& shape = Live();
        double value = shape.*edge;
        NumberProperty(call, value);
        if (!call.IsPut()) return;
        const double left = edge == &Shape::left ? value : shape.left;
        const double top = edge == &Shape::top ? value : shape.top;
        SetBounds(shape, left, top, shape.width, shape.height);
        handle_.GeometryChanged();
    }

    void Size(Invocation& call, double Shape::*size) {
        Shape& shape = Live();
        double value = shape.*size;
        NumberProperty(call, value);
        if (!call.IsPut()) return;
        if (value < 0) RaiseOutOfRange();
        const double width = size == &Shape::width ? value : shape.width;
        const double height = size == &Shape::height ? value : shape.height;
        SetBounds(shape, shape.left, shape.top, width, height);
        handle_.GeometryChanged();
    }

    void AutoShapeType(Invocation& call) {
        Shape& shape = Live();
        const bool isAutoShape = shape.type == mso::kAutoShape || shape.type == mso::kTextBox;
        if (!call.IsPut()) return ReadInteger(call, shape.autoShapeType);
        call.ExpectCount(0, 0);
        const int type = call.PutInteger();
        if (!isAutoShape || IsConnector(shape) || type < 1 || type > 183) RaiseOutOfRange();
        shape.autoShapeType = type;
        shape.adjustments = DefaultAdjustments(type);
    }

    void ZOrder(Invocation& call) {
        call.ExpectCount(1, 1);
        const int command = call.Integer(0);
        if (!ZOrderShape(*handle_.sheet, Live(), command)) RaiseOutOfRange();
        call.ReturnEmpty();
    }

    void Delete(Invocation& call) {
        call.ExpectCount(0, 0);
        DeleteShapeFromSheet(*handle_.sheet, Live());
        call.ReturnEmpty();
    }

    void Placement(Invocation& call) {
        Shape& shape = Live();
        int placement = shape.placement;
        IntegerProperty(call, placement);
        if (!call.IsPut()) return;
        if (placement < mso::kMoveAndSize || placement > mso::kFreeFloating) RaiseOutOfRange();
        shape.placement = placement;
    }

    void TextFrame(Invocation& call) {
        if (!Live().textFrame) Raise("This object does not support text.");
        Part(call, NewTextFrameObject(handle_));
    }

    void ConnectorFormat(Invocation& call) {
        if (!IsConnector(Live())) Raise("This member can only be accessed for a connector shape.");
        Part(call, NewConnectorFormatObject(handle_));
    }

    void Chart(Invocation& call) {
        const std::shared_ptr<sheethost::Chart> chart = FindChartOfShape(*handle_.sheet, Live().id);
        if (!chart) Raise("This member can only be accessed for a chart object.");
        Part(call, NewChartObject(handle_.book, chart, handle_.sheet));
    }

    ShapeHandle handle_;
};

}  // namespace

IDispatch* NewShapeObject(const BookPtr& book, const SheetPtr& sheet,
                          const std::shared_ptr<Shape>& shape) {
    return new ShapeObject(ShapeHandle{book, sheet, shape});
}

std::shared_ptr<Shape> ShapeOf(IDispatch* object) {
    const auto* shape = dynamic_cast<const ShapeObject*>(DispatchObject::FromDispatch(object));
    return shape ? shape->shape() : nullptr;
}

}  // namespace sheethost
