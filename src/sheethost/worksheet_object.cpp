#include <algorithm>

#include "sheethost/address.h"
#include "sheethost/range_object.h"
#include "sheethost/shape_objects.h"
#include "sheethost/sheet_edit.h"

namespace sheethost {
namespace {

class WorksheetObject final : public DispatchObjectOf<WorksheetObject> {
  public:
    WorksheetObject(BookPtr book, SheetPtr sheet)
        : book(std::move(book)), sheet(std::move(sheet)) {}

    static const MemberTable<WorksheetObject>& Members();
    std::string_view TypeName() const override { return "Worksheet"; }
    std::string Describe() const override { return "Worksheet " + sheet->name; }

    RangeSpan Whole() const { return RangeSpan{book, sheet, {Area{1, 1, kMaxRow, kMaxColumn}}}; }
    std::size_t Index() const {
        const auto found = std::find(book->sheets.begin(), book->sheets.end(), sheet);
        return static_cast<std::size_t>(found - book->sheets.begin());
    }

    const BookPtr book;
    const SheetPtr sheet;
};

namespace members {

void Name(WorksheetObject& ws, Invocation& call) {
    if (!call.IsPut()) return call.ReturnText(ws.sheet->name);
    const std::string name = call.PutText();
    const auto existing = FindSheet(*ws.book, name);
    if (!IsValidSheetName(name) || (existing && existing != ws.sheet)) {
        RaiseProperty("set", "Name", "Worksheet");
    }
    ++ws.book->sheetNameChanges;  // formulas that name the sheet find it, or no longer do
    ws.sheet->name = name;
}

void CodeName(WorksheetObject& ws, Invocation& call) {
    call.ReturnText(ws.sheet->codeName);
}

void Index(WorksheetObject& ws, Invocation& call) {
    call.ReturnInteger(static_cast<std::int32_t>(ws.Index() + 1));
}

void Cells(WorksheetObject& ws, Invocation& call) {
    if (call.Count() > 0) return call.ReturnObject(RangeItem(ws.Whole(), RangeMode::kCells, call));
    call.ReturnObject(NewRange(ws.Whole(), RangeMode::kCells));
}

void Rows(WorksheetObject& ws, Invocation& call) {
    if (call.Count() > 0) return call.ReturnObject(RangeItem(ws.Whole(), RangeMode::kRows, call));
    call.ReturnObject(NewRange(ws.Whole(), RangeMode::kRows));
}

void Columns(WorksheetObject& ws, Invocation& call) {
    if (call.Count() > 0) {
        return call.ReturnObject(RangeItem(ws.Whole(), RangeMode::kColumns, call));
    }
    call.ReturnObject(NewRange(ws.Whole(), RangeMode::kColumns));
}

// One argument of Range(): an address or name on this sheet, or a Range object of it.
std::vector<Area> RangeArgument(WorksheetObject& ws, const Invocation& call, std::size_t index) {
    const VARIANT& argument = call.Argument(index);
    if (argument.vt == VT_DISPATCH) {
        const auto target = RangeTargetOf(call.Object(index));
        if (target && target->sheet == ws.sheet) return target->areas;
    } else {
        const auto resolved = ResolveAddress(*ws.book, ws.sheet, call.Text(index));
        if (resolved && resolved->sheet == ws.sheet) return resolved->areas;
    }
    Raise("Method 'Range' of object '_Worksheet' failed");
}

void Range(WorksheetObject& ws, Invocation& call) {
    call.ExpectCount(1, 2);
    std::vector<Area> areas = RangeArgument(ws, call, 0);
    if (call.Has(1)) {
        // Range(corner1, corner2): the block spanning both.
        const std::vector<Area> other = RangeArgument(ws, call, 1);
        Area box = areas.front();
        for (const Area& area : other) {
            box = Area{std::min(box.top, area.top), std::min(box.left, area.left),
                       std::max(box.bottom, area.bottom), std::max(box.right, area.right)};
        }
        areas = {box};
    }
    call.ReturnObject(NewRange(RangeSpan{ws.book, ws.sheet, std::move(areas)}));
}

void UsedRange(WorksheetObject& ws, Invocation& call) {
    Area used{1, 1, 1, 1};
    bool first = true;
    for (const auto& [ref, cell] : ws.sheet->cells) {
        if (first) used = Area{ref.row, ref.column, ref.row, ref.column};
        first = false;
        used = Area{std::min(used.top, ref.row), std::min(used.left, ref.column),
                    std::max(used.bottom, ref.row), std::max(used.right, ref.column)};
    }
    call.ReturnObject(NewRange(RangeSpan{ws.book, ws.sheet, {used}}));
}

void Shapes(WorksheetObject& ws, Invocation& call) {
    ReturnItemOrCollection(call, NewShapesObject(ws.book, ws.sheet));
}

void ChartObjects(WorksheetObject& ws, Invocation& call) {
    ReturnItemOrCollection(call, NewChartObjectsObject(ws.book, ws.sheet));
}

void Activate(WorksheetObject& ws, Invocation& call) {
    call.ExpectCount(0, 0);
    ws.book->activeSheet = ws.Index();
    call.ReturnEmpty();
}

void Select(WorksheetObject& ws, Invocation& call) {
    ws.book->activeSheet = ws.Index();
    call.ReturnEmpty();
}

// Paste([Destination]): what Copy took, at the destination or at the sheet's selection.
void Paste(WorksheetObject& ws, Invocation& call) {
    const auto& clipboard = ws.book->clipboard;
    if (!clipboard || clipboard->cut || clipboard->sheet.expired()) {
        RaiseMethod("Paste", "Worksheet");
    }
    SheetPtr sheet = ws.sheet;
    Area corner = ws.sheet->selection.front();
    if (call.Has(0)) {
        const auto destination = RangeTargetOf(call.Object(0));
        if (!destination) RaiseMethod("Paste", "Worksheet");
        sheet = destination->sheet;
        corner = destination->areas.front();
    } else if (ws.book->sheets[ws.book->activeSheet] != ws.sheet) {
        RaiseMethod("Paste", "Worksheet");  // without a destination only the active sheet pastes
    }
    PasteCells(*sheet, *clipboard, corner.top, corner.left, PasteKind::kAll);
    call.ReturnEmpty();
}

void Parent(WorksheetObject& ws, Invocation& call) {
    call.ReturnObject(NewWorkbookObject(ws.book));
}

void Application(WorksheetObject& ws, Invocation& call) {
    call.ReturnObject(NewApplicationObject(ws.book));
}

}  // namespace members
}  // namespace

const MemberTable<WorksheetObject>& WorksheetObject::Members() {
    static const MemberTable<WorksheetObject> table({
        {"Name", members::Name},
        {"CodeName", members::CodeName},
        {"Index", members::Index},
        {"Cells", members::Cells},
        {"Rows", members::Rows},
        {"Columns", members::Columns},
        {"Range", members::Range},
        {"UsedRange", members::UsedRange},
        {"Shapes", members::Shapes},
        {"ChartObjects", members::ChartObjects},
        {"Activate", members::Activate},
        {"Select", members::Select},
        {"Paste", members::Paste},
        {"Parent", members::Parent},
        {"Application", members::Application},
    });
    return table;
}

IDispatch* NewWorksheetObject(const BookPtr& book, const SheetPtr& sheet) {
    return new WorksheetObject(book, sheet);
}

SheetPtr WorksheetOf(IDispatch* object) {
    const auto* ws = dynamic_cast<const WorksheetObject*>(DispatchObject::FromDispatch(object));
    return ws ? ws->sheet : nullptr;
}

}  // namespace sheethost
