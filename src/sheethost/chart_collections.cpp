// ChartObjects: the embedded charts of a worksheet.
#include "sheethost/chart_place.h"
#include "sheethost/shape_objects.h"
#include "sheethost/shape_sheet.h"

namespace sheethost {
namespace {

class ChartObjectsObject final : public DispatchObjectOf<ChartObjectsObject> {
  public:
    ChartObjectsObject(BookPtr book, SheetPtr sheet)
        : book_(std::move(book)), sheet_(std::move(sheet)) {}

    std::string_view TypeName() const override { return "ChartObjects"; }
    std::string Describe() const override { return "ChartObjects of " + sheet_->name; }

    static const MemberTable<ChartObjectsObject>& Members() {
        static const MemberTable<ChartObjectsObject> members{
            {
                {"Item", [](ChartObjectsObject& self, Invocation& call) { self.Item(call); }},
                {"Count",
                 [](ChartObjectsObject& self, Invocation& call) {
                     ReadOnly(call);
                     call.ExpectCount(0, 0);
                     call.ReturnInteger(static_cast<int>(self.Frames().size()));
                 }},
                {"Add", [](ChartObjectsObject& self, Invocation& call) { self.Add(call); }},
                {"Delete",
                 [](ChartObjectsObject& self, Invocation& call) {
                     call.ExpectCount(0, 0);
                     for (const auto& frame : self.Frames()) {
                         DeleteShapeFromSheet(*self.sheet_, *frame);
                     }
                     call.ReturnEmpty();
                 }},
            },
            "Item"};
        return members;
    }

  private:
    // The chart frames of the sheet in z-order: the embedded charts as the collection counts them.
    std::vector<std::shared_ptr<Shape>> Frames() const {
        std::vector<std::shared_ptr<Shape>> frames;
        for (const auto& shape : sheet_->shapes) {
            if (FindChartOfShape(*sheet_, shape->id)) frames.push_back(shape);
        }
        return frames;
    }

    void Item(Invocation& call) {
        ReadOnly(call);
        call.ExpectCount(1, 1);
        const std::vector<std::shared_ptr<Shape>> frames = Frames();
        std::shared_ptr<Shape> frame;
        if (call.Argument(0).vt == VT_BSTR) {
            const std::string name = call.Text(0);
            for (const auto& candidate : frames) {
                if (SameName(candidate->name, name)) frame = candidate;
            }
            if (!frame) return call.Decline(NotFound());
        } else {
            const int index = call.Integer(0);
            if (index < 1 || static_cast<std::size_t>(index) > frames.size()) RaiseBadIndex();
            frame = frames[static_cast<std::size_t>(index) - 1];
        }
        call.ReturnObject(NewShapeObject(book_, sheet_, frame));
    }

    void Add(Invocation& call) {
        call.ExpectCount(4, 4);
        const double width = call.Number(2);
        const double height = call.Number(3);
        if (width < 0 || height < 0) RaiseOutOfRange();
        const std::shared_ptr<Shape> frame = EmbedChart(
            *sheet_, std::make_shared<Chart>(), call.Number(0), call.Number(1), width, height);
        call.ReturnObject(NewShapeObject(book_, sheet_, frame));
    }

    BookPtr book_;
    SheetPtr sheet_;
};

}  // namespace

IDispatch* NewChartObjectsObject(const BookPtr& book, const SheetPtr& sheet) {
    return new ChartObjectsObject(book, sheet);
}

}  // namespace sheethost
