// Shapes: the drawing objects of a worksheet, by index (1-based, in z-order) and by name, and the
// ways to add new ones.
#include <cmath>

#include "sheethost/shape_geometry.h"
#include "sheethost/shape_objects.h"
#include "sheethost/shape_sheet.h"

namespace sheethost {
namespace {

constexpr std::int32_t kThemeAccent = 0xC47244;
constexpr std::int32_t kWhite = 0xFFFFFF;

// A box given with a negative width or height spans the other way from its corner.
void PlaceBox(Shape& shape, double left, double top, double width, double height) {
    shape.left = width < 0 ? left + width : left;
    shape.top = height < 0 ? top + height : top;
    shape.width = std::abs(width);
    shape.height = std::abs(height);
}

Shape NewAutoShape(int autoShapeType) {
    Shape shape;
    shape.type = mso::kAutoShape;
    shape.autoShapeType = autoShapeType;
    shape.adjustments = DefaultAdjustments(autoShapeType);
    TextFrame frame;
    frame.defaultFont.color = kWhite;
    frame.horizontalAlignment = -4108;
    frame.verticalAlignment = -4108;
    shape.textFrame = frame;
    return shape;
}

Shape NewTextbox(int orientation) {
    Shape shape;
    shape.type = mso::kTextBox;
    shape.autoShapeType = mso::kShapeRectangle;
    shape.fill.foreColor = kWhite;
    shape.line.foreColor = 0;
    TextFrame frame;
    frame.orientation = orientation;
    shape.textFrame = frame;
    return shape;
}

Shape NewConnector(int shapeType, int connectorType, Point begin, Point end) {
    Shape shape;
    shape.type = shapeType;
    shape.autoShapeType = mso::kShapeMixed;
    shape.connectorType = connectorType;
    shape.fill.visible = false;
    shape.line.foreColor = kThemeAccent;
    if (connectorType != mso::kConnectorStraight) shape.adjustments = {0.5};
    SetEndPoints(shape, begin, end);
    return shape;
}

class ShapesObject final : public DispatchObjectOf<ShapesObject> {
  public:
    ShapesObject(BookPtr book, SheetPtr sheet) : book_(std::move(book)), sheet_(std::move(sheet)) {}

    std::string_view TypeName() const override { return "Shapes"; }
    std::string Describe() const override { return "Shapes of " + sheet_->name; }

    static const MemberTable<ShapesObject>& Members() {
        static const MemberTable<ShapesObject> members{
            {
                {"Item", [](ShapesObject& self, Invocation& call) { self.Item(call); }},
                {"Count",
                 [](ShapesObject& self, Invocation& call) {
                     ReadOnly(call);
                     call.ExpectCount(0, 0);
                     call.ReturnInteger(static_cast<int>(self.sheet_->shapes.size()));
                 }},
                {"_NewEnum", [](ShapesObject& self, Invocation& call) { self.NewEnum(call); }},
                {"AddShape", [](ShapesObject& self, Invocation& call) { self.AddShape(call); }},
                {"AddTextbox", [](ShapesObject& self, Invocation& call) { self.AddTextbox(call); }},
                {"AddConnector",
                 [](ShapesObject& self, Invocation& call) { self.AddConnector(call); }},
                {"AddLine", [](ShapesObject& self, Invocation& call) { self.AddLine(call); }},
                {"BuildFreeform",
                 [](ShapesObject& self, Invocation& call) { self.BuildFreeform(call); }},
                {"Parent",
                 [](ShapesObject& self, Invocation& call) {
                     call.ExpectCount(0, 0);
                     call.ReturnObject(NewWorksheetObject(self.book_, self.sheet_));
                 }},
            },
            "Item"};
        return members;
    }

  private:
    void Item(Invocation& call) {
        ReadOnly(call);
        call.ExpectCount(1, 1);
        std::shared_ptr<Shape> shape;
        if (call.Argument(0).vt == VT_BSTR) {
            shape = FindShape(*sheet_, call.Text(0));
            if (!shape) return call.Decline(NotFound());
        } else {
            const int index = call.Integer(0);
            if (index < 1 || static_cast<std::size_t>(index) > sheet_->shapes.size()) {
                RaiseBadIndex();
            }
            shape = sheet_->shapes[static_cast<std::size_t>(index) - 1];
        }
        call.ReturnObject(NewShapeObject(book_, sheet_, shape));
    }

    // The enumerator reads the live list by position: deleting the shape just returned moves
    // the next one into its place, so the enumeration skips it, as the spreadsheet's does.
    void NewEnum(Invocation& call) {
        call.ExpectCount(0, 0);
        call.ReturnUnknown(
            NewEnumerator(Describe(), [book = book_, sheet = sheet_](std::size_t k) -> IDispatch* {
                if (k >= sheet->shapes.size()) return nullptr;
                return NewShapeObject(book, sheet, sheet->shapes[k]);
            }));
    }

    void Return(Invocation& call, Shape shape) {
        call.ReturnObject(
            NewShapeObject(book_, sheet_, AddShapeToSheet(*sheet_, std::move(shape))));
    }

    void AddShape(Invocation& call) {
        call.ExpectCount(5, 5);
        const int type = call.Integer(0);
        if (type < 1 || type > 183) RaiseOutOfRange();
        Shape shape = NewAutoShape(type);
        PlaceBox(shape, call.Number(1), call.Number(2), call.Number(3), call.Number(4));
        Return(call, std::move(shape));
    }

    void AddTextbox(Invocation& call) {
        call.ExpectCount(5, 5);
        const int orientation = call.Integer(0);
        if (orientation < 1 || orientation > 6) RaiseOutOfRange();
        Shape shape = NewTextbox(orientation);
        PlaceBox(shape, call.Number(1), call.Number(2), call.Number(3), call.Number(4));
        Return(call, std::move(shape));
    }

    void AddConnector(Invocation& call) {
        call.ExpectCount(5, 5);
        const int type = call.Integer(0);
        if (type < mso::kConnectorStraight || type > mso::kConnectorCurve) RaiseOutOfRange();
        const Point begin{call.Number(1), call.Number(2)};
        const Point end{call.Number(3), call.Number(4)};
        Return(call, NewConnector(mso::kAutoShape, type, begin, end));
    }

    void AddLine(Invocation& call) {
        call.ExpectCount(4, 4);
        const Point begin{call.Number(0), call.Number(1)};
        const Point end{call.Number(2), call.Number(3)};
        Return(call, NewConnector(mso::kLine, mso::kConnectorStraight, begin, end));
    }

    void BuildFreeform(Invocation& call) {
        call.ExpectCount(3, 3);
        const int editingType = call.Integer(0);
        if (editingType < 0 || editingType > 1) RaiseOutOfRange();
        const FreeformNode start{0, editingType, call.Number(1), call.Number(2)};
        call.ReturnObject(NewFreeformBuilderObject(book_, sheet_, start));
    }

    BookPtr book_;
    SheetPtr sheet_;
};

}  // namespace

IDispatch* NewShapesObject(const BookPtr& book, const SheetPtr& sheet) {
    return new ShapesObject(book, sheet);
}

}  // namespace sheethost
