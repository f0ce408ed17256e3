// The Workbook and its sheet collections: Worksheets (worksheets only), Sheets (worksheets, then
// chart sheets) and Charts (chart sheets).
#include <algorithm>

#include "sheethost/dispatch_object.h"
#include "sheethost/objects.h"

namespace sheethost {
namespace {

class WorkbookObject final : public DispatchObjectOf<WorkbookObject> {
  public:
    explicit WorkbookObject(BookPtr book) : book(std::move(book)) {}
    static const MemberTable<WorkbookObject>& Members();
    std::string_view TypeName() const override { return "Workbook"; }
    std::string Describe() const override { return "Workbook " + book->name; }
    const BookPtr book;
};

enum class SheetKinds { kWorksheets, kAll, kCharts };

class SheetsObject final : public DispatchObjectOf<SheetsObject> {
  public:
    SheetsObject(BookPtr book, SheetKinds kinds) : book(std::move(book)), kinds(kinds) {}
    static const MemberTable<SheetsObject>& Members();
    std::string_view TypeName() const override {
        switch (kinds) {
            case SheetKinds::kWorksheets:
                return "Worksheets";
            case SheetKinds::kCharts:
                return "Charts";
            case SheetKinds::kAll:
                break;
        }
        return "Sheets";
    }

    std::size_t WorksheetCount() const {
        return kinds == SheetKinds::kCharts ? 0 : book->sheets.size();
    }
    std::size_t Count() const {
        return WorksheetCount() + (kinds == SheetKinds::kWorksheets ? 0 : book->chartSheets.size());
    }
    // A new reference to the k-th (0-based) sheet of the collection; null past the end.
    IDispatch* At(std::size_t k) const {
        if (k < WorksheetCount()) return NewWorksheetObject(book, book->sheets[k]);
        k -= WorksheetCount();
        if (kinds == SheetKinds::kWorksheets || k >= book->chartSheets.size()) return nullptr;
        return NewChartObject(book, book->chartSheets[k].chart, nullptr);
    }
    std::optional<std::size_t> Find(std::string_view name) const {
        for (std::size_t k = 0; k < WorksheetCount(); ++k) {
            if (SameName(book->sheets[k]->name, name)) return k;
        }
        if (kinds != SheetKinds::kWorksheets) {
            for (std::size_t k = 0; k < book->chartSheets.size(); ++k) {
                if (SameName(book->chartSheets[k].name, name)) return WorksheetCount() + k;
            }
        }
        return std::nullopt;
    }

    const BookPtr book;
    const SheetKinds kinds;
};

bool NameTaken(const Workbook& book, std::string_view name) {
    if (FindSheet(book, name)) return true;
    return std::any_of(book.chartSheets.begin(), book.chartSheets.end(),
                       [&](const ChartSheet& chart) { return SameName(chart.name, name); });
}

// The next of base + 1, base + 2, ... after the last one given that no sheet has.
std::string NewSheetName(const Workbook& book, std::string_view base, int& lastNumber) {
    for (int n = lastNumber + 1;; ++n) {
        std::string name = std::string(base) + std::to_string(n);
        if (!NameTaken(book, name)) {
            lastNumber = n;
            return name;
        }
    }
}

// Where Add puts new worksheets: before Before, after After, else before the active sheet.
std::size_t InsertPosition(const SheetsObject& sheets, const Invocation& call) {
    const Workbook& book = *sheets.book;
    for (std::size_t argument : {0u, 1u}) {
        if (!call.Has(argument)) continue;
        const SheetPtr target = WorksheetOf(call.Object(argument));
        const auto found = std::find(book.sheets.begin(), book.sheets.end(), target);
        if (!target || found == book.sheets.end()) RaiseMethod("Add", sheets.TypeName());
        const auto index = static_cast<std::size_t>(found - book.sheets.begin());
        return argument == 0 ? index : index + 1;
    }
    return std::min(book.activeSheet, book.sheets.size());
}

void SheetsCount(SheetsObject& sheets, Invocation& call) {
    call.ReturnInteger(static_cast<std::int32_t>(sheets.Count()));
}

void SheetsItem(SheetsObject& sheets, Invocation& call) {
    call.ExpectCount(1, 1);
    std::optional<std::size_t> index;
    if (call.Argument(0).vt == VT_BSTR) {
        index = sheets.Find(call.Text(0));
    } else {
        const int number = call.Integer(0);
        if (number >= 1) index = static_cast<std::size_t>(number - 1);
    }
    IDispatch* item = index ? sheets.At(*index) : nullptr;
    if (item == nullptr) Refuse(DISP_E_BADINDEX);
    call.ReturnObject(item);
}

void SheetsNewEnum(SheetsObject& sheets, Invocation& call) {
    call.ReturnUnknown(NewEnumerator(
        std::string(sheets.TypeName()),
        [self = ComRef<SheetsObject>::Share(&sheets)](std::size_t k) { return self->At(k); }));
}

void SheetsAdd(SheetsObject& sheets, Invocation& call) {
    Workbook& book = *sheets.book;
    if (sheets.kinds == SheetKinds::kCharts) {
        auto chart = std::make_shared<Chart>();
        book.chartSheets.push_back(
            ChartSheet{NewSheetName(book, "Chart", book.lastChartNumber), chart});
        return call.ReturnObject(NewChartObject(sheets.book, chart, nullptr));
    }
    constexpr int kWorksheetType = -4167;
    if (call.Has(3) && call.Integer(3) != kWorksheetType) RaiseMethod("Add", sheets.TypeName());
    const int count = call.OptionalInteger(2).value_or(1);
    if (count < 1) RaiseMethod("Add", sheets.TypeName());
    std::size_t position = InsertPosition(sheets, call);
    for (int k = 0; k < count; ++k, ++position) {
        ++book.sheetNameChanges;  // formulas that name the new sheet now find it
        auto sheet = std::make_shared<Sheet>();
        sheet->name = NewSheetName(book, "Sheet", book.lastSheetNumber);
        sheet->codeName = sheet->name;
        book.sheets.insert(book.sheets.begin() + static_cast<std::ptrdiff_t>(position), sheet);
        book.activeSheet = position;
    }
    call.ReturnObject(NewWorksheetObject(sheets.book, book.sheets[book.activeSheet]));
}

void WorkbookName(WorkbookObject& wb, Invocation& call) {
    call.ReturnText(wb.book->name);
}

void Worksheets(WorkbookObject& wb, Invocation& call) {
    ComRef<IDispatch> sheets =
        ComRef<IDispatch>::Adopt(new SheetsObject(wb.book, SheetKinds::kWorksheets));
    if (call.Count() == 0) return call.ReturnObject(sheets.Detach());
    SheetsItem(*static_cast<SheetsObject*>(sheets.get()), call);
}

void Sheets(WorkbookObject& wb, Invocation& call) {
    ComRef<IDispatch> sheets =
        ComRef<IDispatch>::Adopt(new SheetsObject(wb.book, SheetKinds::kAll));
    if (call.Count() == 0) return call.ReturnObject(sheets.Detach());
    SheetsItem(*static_cast<SheetsObject*>(sheets.get()), call);
}

void Charts(WorkbookObject& wb, Invocation& call) {
    ComRef<IDispatch> charts =
        ComRef<IDispatch>::Adopt(new SheetsObject(wb.book, SheetKinds::kCharts));
    if (call.Count() == 0) return call.ReturnObject(charts.Detach());
    SheetsItem(*static_cast<SheetsObject*>(charts.get()), call);
}

void ActiveSheet(WorkbookObject& wb, Invocation& call) {
    const Workbook& book = *wb.book;
    if (book.activeSheet >= book.sheets.size()) Refuse(DISP_E_BADINDEX);
    call.ReturnObject(NewWorksheetObject(wb.book, book.sheets[book.activeSheet]));
}

void Application(WorkbookObject& wb, Invocation& call) {
    call.ReturnObject(NewApplicationObject(wb.book));
}

}  // namespace

const MemberTable<WorkbookObject>& WorkbookObject::Members() {
    static const MemberTable<WorkbookObject> table({
        {"Name", WorkbookName},
        {"Worksheets", Worksheets},
        {"Sheets", Sheets},
        {"Charts", Charts},
        {"ActiveSheet", ActiveSheet},
        {"Application", Application},
        {"Parent", Application},
    });
    return table;
}

const MemberTable<SheetsObject>& SheetsObject::Members() {
    static const MemberTable<SheetsObject> table(
        {
            {"Count", SheetsCount},
            {"Item", SheetsItem},
            {"_NewEnum", SheetsNewEnum},
            {"Add", SheetsAdd},
        },
        "Item");
    return table;
}

IDispatch* NewWorkbookObject(const BookPtr& book) {
    return new WorkbookObject(book);
}

}  // namespace sheethost
