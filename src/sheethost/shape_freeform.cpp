// FreeformBuilder: a polyline or curve built node by node, then made a shape.
#include <algorithm>

#include "sheethost/shape_objects.h"
#include "sheethost/shape_sheet.h"

namespace sheethost {
namespace {

class FreeformBuilderObject final : public DispatchObjectOf<FreeformBuilderObject> {
  public:
    FreeformBuilderObject(BookPtr book, SheetPtr sheet, FreeformNode start)
        : book_(std::move(book)), sheet_(std::move(sheet)), nodes_{start} {}

    std::string_view TypeName() const override { return "FreeformBuilder"; }
    std::string Describe() const override { return "FreeformBuilder on " + sheet_->name; }

    static const MemberTable<FreeformBuilderObject>& Members() {
        static const MemberTable<FreeformBuilderObject> members{
            {"AddNodes",
             [](FreeformBuilderObject& self, Invocation& call) { self.AddNodes(call); }},
            {"ConvertToShape",
             [](FreeformBuilderObject& self, Invocation& call) { self.ConvertToShape(call); }},
        };
        return members;
    }

  private:
    // A curved segment with corner editing gives its two control points before its end point;
    // every other segment gives only its end point.
    void AddNodes(Invocation& call) {
        call.ExpectCount(4, 8);
        const int segmentType = call.Integer(0);
        const int editingType = call.Integer(1);
        if (segmentType < 0 || segmentType > 1 || editingType < 0 || editingType > 1) {
            RaiseOutOfRange();
        }
        const bool withControlPoints = segmentType == 1 && editingType == 1;
        call.ExpectCount(withControlPoints ? 8 : 4, withControlPoints ? 8 : 4);
        for (std::size_t k = 2; k < call.Count(); k += 2) {
            nodes_.push_back({segmentType, editingType, call.Number(k), call.Number(k + 1)});
        }
        call.ReturnEmpty();
    }

    void ConvertToShape(Invocation& call) {
        call.ExpectCount(0, 0);
        if (nodes_.size() < 2) Raise("The freeform needs at least two nodes.");
        const auto [minX, maxX] = std::minmax_element(nodes_.begin(), nodes_.end(),
                                                      [](auto& a, auto& b) { return a.x < b.x; });
        const auto [minY, maxY] = std::minmax_element(nodes_.begin(), nodes_.end(),
                                                      [](auto& a, auto& b) { return a.y < b.y; });
        Shape shape;
        shape.type = mso::kFreeform;
        shape.autoShapeType = mso::kShapeNotPrimitive;
        shape.left = minX->x;
        shape.top = minY->y;
        shape.width = maxX->x - minX->x;
        shape.height = maxY->y - minY->y;
        shape.textFrame = TextFrame{};
        shape.nodes = nodes_;
        call.ReturnObject(
            NewShapeObject(book_, sheet_, AddShapeToSheet(*sheet_, std::move(shape))));
    }

    BookPtr book_;
    SheetPtr sheet_;
    std::vector<FreeformNode> nodes_;
};

}  // namespace

IDispatch* NewFreeformBuilderObject(const BookPtr& book, const SheetPtr& sheet,
                                    FreeformNode start) {
    return new FreeformBuilderObject(book, sheet, start);
}

}  // namespace sheethost
