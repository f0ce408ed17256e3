// The Application, its active window and its worksheet functions.
#include <algorithm>

#include "com/text.h"
#include "sheethost/cell_values.h"
#include "sheethost/formula_values.h"
#include "sheethost/range_object.h"
#include "sheethost/sheet_edit.h"

namespace sheethost {
namespace {

SheetPtr ActiveSheetOf(const Workbook& book) {
    if (book.activeSheet >= book.sheets.size()) Raise("Object required");
    return book.sheets[book.activeSheet];
}

class ApplicationObject final : public DispatchObjectOf<ApplicationObject> {
  public:
    explicit ApplicationObject(BookPtr book) : book(std::move(book)) {}
    static const MemberTable<ApplicationObject>& Members();
    std::string_view TypeName() const override { return "Application"; }
    const BookPtr book;
};

// The window showing the workbook; its zoom is the active sheet's.
class WindowObject final : public DispatchObjectOf<WindowObject> {
  public:
    explicit WindowObject(BookPtr book) : book(std::move(book)) {}
    static const MemberTable<WindowObject>& Members();
    std::string_view TypeName() const override { return "Window"; }
    const BookPtr book;
};

class WorksheetFunctionObject final : public DispatchObjectOf<WorksheetFunctionObject> {
  public:
    explicit WorksheetFunctionObject(BookPtr book) : book(std::move(book)) {}
    static const MemberTable<WorksheetFunctionObject>& Members();
    std::string_view TypeName() const override { return "WorksheetFunction"; }
    const BookPtr book;
};

void Selection(ApplicationObject& app, Invocation& call) {
    const SheetPtr sheet = ActiveSheetOf(*app.book);
    call.ReturnObject(NewRange(RangeSpan{app.book, sheet, sheet->selection}));
}

void ActiveCell(ApplicationObject& app, Invocation& call) {
    const SheetPtr sheet = ActiveSheetOf(*app.book);
    const CellRef cell = sheet->activeCell;
    call.ReturnObject(
        NewRange(RangeSpan{app.book, sheet, {Area{cell.row, cell.column, cell.row, cell.column}}}));
}

void ActiveSheet(ApplicationObject& app, Invocation& call) {
    call.ReturnObject(NewWorksheetObject(app.book, ActiveSheetOf(*app.book)));
}

// False while the program shows its own status; putting False gives it back, anything else is
// shown as text.
void StatusBar(ApplicationObject& app, Invocation& call) {
    if (!call.IsPut()) {
        if (!app.book->statusBar) return call.ReturnBoolean(false);
        return call.ReturnText(*app.book->statusBar);
    }
    const VARIANT& value = call.PutValue();
    if (value.vt == VT_BOOL && value.boolVal == VARIANT_FALSE) {
        app.book->statusBar.reset();
    } else {
        app.book->statusBar = call.PutText();
    }
}

// Only False is accepted: it ends the copy mode, so that the copied cells are no longer on the
// clipboard.
void CutCopyMode(ApplicationObject& app, Invocation& call) {
    if (!call.IsPut()) return call.ReturnBoolean(app.book->clipboard.has_value());
    if (call.PutBoolean()) RaiseProperty("set", "CutCopyMode", "Application");
    app.book->clipboard.reset();
}

void Zoom(WindowObject& window, Invocation& call) {
    const SheetPtr sheet = ActiveSheetOf(*window.book);
    if (!call.IsPut()) return call.ReturnInteger(sheet->zoom);
    const int zoom = call.PutInteger();
    if (zoom < 10 || zoom > 400) RaiseProperty("set", "Zoom", "Window");
    sheet->zoom = zoom;
}

// The lookup value as a cell value, for comparing with the cells of the lookup range.
Value LookupValue(const VARIANT& key) {
    switch (key.vt) {
        case VT_BSTR:
            return NarrowBstr(key.bstrVal);
        case VT_BOOL:
            return key.boolVal != VARIANT_FALSE;
        case VT_EMPTY:
            return Blank{};
        default:
            break;
    }
    VARIANT number;
    VariantInit(&number);
    if (FAILED(ChangeVariantType(number, key, VT_R8))) return ErrorValue::kValue;
    return number.dblVal;
}

// MATCH(key, range, type): the 1-based position of the key in a one-row or one-column range;
// type 0 finds an equal value (texts compared without regard to case), 1 the largest value not
// above the key in an ascending list, -1 the smallest not below it in a descending one.
void Match(WorksheetFunctionObject& functions, Invocation& call) {
    call.ExpectCount(2, 3);
    const auto fail = [] { RaiseProperty("get", "Match", "WorksheetFunction"); };
    const Value key = LookupValue(call.Argument(0));
    const auto target = RangeTargetOf(call.Object(1));
    const int type = call.OptionalInteger(2).value_or(1);
    if (!target || std::holds_alternative<Blank>(key) || std::holds_alternative<ErrorValue>(key)) {
        fail();
    }
    Area area = target->areas.front();
    const bool vertical = area.Columns() == 1;
    if (!vertical && area.Rows() != 1) fail();
    // A whole column or row is searched only as far as the sheet has cells.
    int lastRow = 0;
    int lastColumn = 0;
    for (const auto& [ref, cell] : target->sheet->cells) {
        lastRow = std::max(lastRow, ref.row);
        lastColumn = std::max(lastColumn, ref.column);
    }
    area.bottom = std::min(area.bottom, std::max(lastRow, area.top));
    area.right = std::min(area.right, std::max(lastColumn, area.left));

    const int length = vertical ? area.Rows() : area.Columns();
    int found = 0;
    for (int k = 0; k < length; ++k) {
        const int row = vertical ? area.top + k : area.top;
        const int column = vertical ? area.left : area.left + k;
        const Value value = CellDisplayValue(*functions.book, *target->sheet, row, column);
        if (value.index() != key.index()) continue;
        const auto order = formula::Compare(value, key);
        if (order.error) continue;
        if (order.value == 0) {
            found = k + 1;
            break;
        }
        if ((type > 0 && order.value > 0) || (type < 0 && order.value < 0)) break;
        if (type != 0) found = k + 1;
    }
    if (found == 0) fail();
    call.ReturnNumber(found);
}

}  // namespace

const MemberTable<ApplicationObject>& ApplicationObject::Members() {
    static const MemberTable<ApplicationObject> table({
        {"Name", [](ApplicationObject&, Invocation& c) { c.ReturnText("Microsoft Excel"); }},
        {"Selection", Selection},
        {"ActiveCell", ActiveCell},
        {"ActiveSheet", ActiveSheet},
        {"StatusBar", StatusBar},
        {"CutCopyMode", CutCopyMode},
        {"ActiveWorkbook",
         [](ApplicationObject& a, Invocation& c) { c.ReturnObject(NewWorkbookObject(a.book)); }},
        {"ThisWorkbook",
         [](ApplicationObject& a, Invocation& c) { c.ReturnObject(NewWorkbookObject(a.book)); }},
        {"ActiveWindow",
         [](ApplicationObject& a, Invocation& c) { c.ReturnObject(new WindowObject(a.book)); }},
        {"WorksheetFunction",
         [](ApplicationObject& a, Invocation& c) {
             c.ReturnObject(new WorksheetFunctionObject(a.book));
         }},
    });
    return table;
}

const MemberTable<WindowObject>& WindowObject::Members() {
    static const MemberTable<WindowObject> table({{"Zoom", Zoom}});
    return table;
}

const MemberTable<WorksheetFunctionObject>& WorksheetFunctionObject::Members() {
    static const MemberTable<WorksheetFunctionObject> table({{"Match", Match}});
    return table;
}

IDispatch* NewApplicationObject(const BookPtr& book) {
    return new ApplicationObject(book);
}

}  // namespace sheethost
