#include "sheethost/range_object.h"

#include <cmath>
#include <limits>

#include "sheethost/address.h"
#include "sheethost/cell_values.h"
#include "sheethost/sheet_edit.h"

namespace sheethost {
namespace {

constexpr const char* kObjectError = "Application-defined or object-defined error";

int FloorDiv(int a, int b) {
    return a >= 0 ? a / b : -((-a + b - 1) / b);
}

bool OnSheet(const Area& area) {
    return area.top >= 1 && area.left >= 1 && area.bottom <= kMaxRow && area.right <= kMaxColumn &&
           area.top <= area.bottom && area.left <= area.right;
}

RangeSpan WithAreas(const RangeSpan& span, std::vector<Area> areas) {
    for (const Area& area : areas) {
        if (!OnSheet(area)) Raise(kObjectError);
    }
    return RangeSpan{span.book, span.sheet, std::move(areas)};
}

double CellCount(const RangeSpan& span, RangeMode mode) {
    double count = 0;
    for (const Area& area : span.areas) {
        switch (mode) {
            case RangeMode::kCells:
                count += double(area.Rows()) * area.Columns();
                break;
            case RangeMode::kRows:
                count += area.Rows();
                break;
            case RangeMode::kColumns:
                count += area.Columns();
                break;
        }
    }
    return count;
}

// A column given as a number or as letters ("C").
int ColumnArgument(const Invocation& call, std::size_t index) {
    const VARIANT& value = call.Argument(index);
    if (value.vt == VT_BSTR) {
        const std::string text = call.Text(index);
        if (!TextToNumber(text)) {
            const int column = ColumnNumber(text);
            if (column == 0) Raise(kObjectError);
            return column;
        }
    }
    return call.Integer(index);
}

// The k-th (0-based) item of the first area counted in `mode`.
Area ItemArea(const Area& area, RangeMode mode, int k) {
    switch (mode) {
        case RangeMode::kRows:
            return Area{area.top + k, area.left, area.top + k, area.right};
        case RangeMode::kColumns:
            return Area{area.top, area.left + k, area.bottom, area.left + k};
        case RangeMode::kCells:
            break;
    }
    const int row = area.top + FloorDiv(k, area.Columns());
    const int column = area.left + (k - FloorDiv(k, area.Columns()) * area.Columns());
    return Area{row, column, row, column};
}

// The n-th item over all areas, for enumeration; nullopt past the end.
std::optional<Area> NthItem(const RangeSpan& span, RangeMode mode, std::size_t n) {
    for (const Area& area : span.areas) {
        const RangeSpan one{span.book, span.sheet, {area}};
        const auto count = static_cast<std::size_t>(CellCount(one, mode));
        if (n < count) return ItemArea(area, mode, static_cast<int>(n));
        n -= count;
    }
    return std::nullopt;
}

template <class Visit>
void ForEachCell(const RangeSpan& span, Visit visit) {
    for (const Area& area : span.areas) {
        for (int row = area.top; row <= area.bottom; ++row) {
            for (int column = area.left; column <= area.right; ++column) visit(row, column);
        }
    }
}

void RefuseHugeFill(const RangeSpan& span) {
    if (CellCount(span, RangeMode::kCells) > kMostCellsAtOnce) Raise(kObjectError);
}

bool IsEmptyPut(const VARIANT& value) {
    return value.vt == VT_EMPTY || value.vt == VT_NULL ||
           (value.vt == VT_BSTR && SysStringLen(value.bstrVal) == 0);
}

namespace members {

// --- Contents ---------------------------------------------------------------------------------

void PutValue(RangeObject& range, Invocation& call) {
    const RangeSpan& span = range.span;
    const VARIANT& value = call.PutValue();
    span.book->clipboard.reset();
    if (IsEmptyPut(value)) {
        ClearContents(*span.sheet, span.areas);
        return;
    }
    bool refused = false;
    if (value.vt & VT_ARRAY) {
        // Each area takes the array from its own top-left cell.
        for (const Area& area : span.areas) {
            if (!PutArrayVariant(*span.sheet, area, value)) refused = true;
        }
    } else {
        RefuseHugeFill(span);
        ForEachCell(span, [&](int row, int column) {
            if (!PutCellVariant(*span.sheet, row, column, value)) refused = true;
        });
    }
    if (refused) Raise(kObjectError);
}

// A block answers the values of its first area as an array, as the spreadsheet does.
void ReturnValues(const RangeSpan& span, Invocation& call, CellReader read) {
    VARIANT value;
    if (!AreaVariant(*span.book, *span.sheet, span.First(), read, value)) Refuse(E_OUTOFMEMORY);
    call.ReturnVariant(value);
}

void Value(RangeObject& range, Invocation& call) {
    if (call.IsPut()) return PutValue(range, call);
    ReturnValues(range.span, call, CellVariant);
}

void Value2(RangeObject& range, Invocation& call) {
    if (call.IsPut()) return PutValue(range, call);
    ReturnValues(range.span, call, CellVariant2);
}

void Formula(RangeObject& range, Invocation& call) {
    const RangeSpan& span = range.span;
    const Area& first = span.First();
    if (!call.IsPut()) return call.ReturnText(CellFormulaText(*span.sheet, first.top, first.left));
    const std::string text = call.PutText();
    span.book->clipboard.reset();
    if (text.empty()) return ClearContents(*span.sheet, span.areas);
    // Entered into a block, a formula is filled: its relative references follow each cell.
    RefuseHugeFill(span);
    const bool fill = text.front() == '=' && CellCount(span, RangeMode::kCells) > 1;
    bool refused = false;
    ForEachCell(span, [&](int row, int column) {
        const std::string cellText =
            fill ? OffsetReferences(text, row - first.top, column - first.left) : text;
        if (!TypeIntoCell(*span.sheet, row, column, cellText)) refused = true;
    });
    if (refused) Raise(kObjectError);
}

void HasFormula(RangeObject& range, Invocation& call) {
    const RangeSpan& span = range.span;
    double formulas = 0;
    for (const Area& area : span.areas) {
        for (const CellRef& ref : CellsIn(*span.sheet, area)) {
            if (!FindCell(*span.sheet, ref.row, ref.column)->formula.empty()) ++formulas;
        }
    }
    if (formulas == 0) return call.ReturnBoolean(false);
    if (formulas == CellCount(span, RangeMode::kCells)) return call.ReturnBoolean(true);
    call.ReturnNull();
}

void ClearContentsMember(RangeObject& range, Invocation& call) {
    call.ExpectCount(0, 0);
    range.span.book->clipboard.reset();
    ClearContents(*range.span.sheet, range.span.areas);
    call.ReturnBoolean(true);
}

void ClearFormatsMember(RangeObject& range, Invocation& call) {
    call.ExpectCount(0, 0);
    ClearFormats(*range.span.sheet, range.span.areas);
    call.ReturnBoolean(true);
}

void Clear(RangeObject& range, Invocation& call) {
    call.ExpectCount(0, 0);
    range.span.book->clipboard.reset();
    ClearContents(*range.span.sheet, range.span.areas);
    ClearFormats(*range.span.sheet, range.span.areas);
    call.ReturnBoolean(true);
}

// --- Structure --------------------------------------------------------------------------------

void Row(RangeObject& range, Invocation& call) {
    call.ReturnInteger(range.span.First().top);
}

void Column(RangeObject& range, Invocation& call) {
    call.ReturnInteger(range.span.First().left);
}

void Count(RangeObject& range, Invocation& call) {
    const double count = CellCount(range.span, range.mode);
    if (count <= std::numeric_limits<std::int32_t>::max()) {
        return call.ReturnInteger(static_cast<std::int32_t>(count));
    }
    Raise(kObjectError);  // past a 32-bit count the host answers only through CountLarge
}

void Item(RangeObject& range, Invocation& call) {
    call.ReturnObject(RangeItem(range.span, range.mode, call));
}

void Default(RangeObject& range, Invocation& call) {
    if (call.Count() > 0) return Item(range, call);
    Value(range, call);
}

void Cells(RangeObject& range, Invocation& call) {
    if (call.Count() > 0) return call.ReturnObject(RangeItem(range.span, RangeMode::kCells, call));
    call.ReturnObject(NewRange(range.span, RangeMode::kCells));
}

void Rows(RangeObject& range, Invocation& call) {
    if (call.Count() > 0) return call.ReturnObject(RangeItem(range.span, RangeMode::kRows, call));
    call.ReturnObject(NewRange(range.span, RangeMode::kRows));
}

void Columns(RangeObject& range, Invocation& call) {
    if (call.Count() > 0) {
        return call.ReturnObject(RangeItem(range.span, RangeMode::kColumns, call));
    }
    call.ReturnObject(NewRange(range.span, RangeMode::kColumns));
}

void EntireRow(RangeObject& range, Invocation& call) {
    std::vector<Area> areas;
    for (const Area& area : range.span.areas) {
        areas.push_back(Area{area.top, 1, area.bottom, kMaxColumn});
    }
    call.ReturnObject(NewRange(WithAreas(range.span, std::move(areas)), RangeMode::kRows));
}

void EntireColumn(RangeObject& range, Invocation& call) {
    std::vector<Area> areas;
    for (const Area& area : range.span.areas) {
        areas.push_back(Area{1, area.left, kMaxRow, area.right});
    }
    call.ReturnObject(NewRange(WithAreas(range.span, std::move(areas)), RangeMode::kColumns));
}

void Address(RangeObject& range, Invocation& call) {
    const bool rowAbsolute = call.Has(0) ? call.Boolean(0) : true;
    const bool columnAbsolute = call.Has(1) ? call.Boolean(1) : true;
    call.ReturnText(AreasAddress(range.span.areas, rowAbsolute, columnAbsolute));
}

void Offset(RangeObject& range, Invocation& call) {
    const int rows = call.OptionalInteger(0).value_or(0);
    const int columns = call.OptionalInteger(1).value_or(0);
    std::vector<Area> areas;
    for (const Area& area : range.span.areas) {
        areas.push_back(
            Area{area.top + rows, area.left + columns, area.bottom + rows, area.right + columns});
    }
    call.ReturnObject(NewRange(WithAreas(range.span, std::move(areas)), range.mode));
}

void Resize(RangeObject& range, Invocation& call) {
    const Area& first = range.span.First();
    const int rows = call.OptionalInteger(0).value_or(first.Rows());
    const int columns = call.OptionalInteger(1).value_or(first.Columns());
    if (rows < 1 || columns < 1) Raise(kObjectError);
    const Area area{first.top, first.left, first.top + rows - 1, first.left + columns - 1};
    call.ReturnObject(NewRange(WithAreas(range.span, {area}), range.mode));
}

void Worksheet(RangeObject& range, Invocation& call) {
    call.ReturnObject(NewWorksheetObject(range.span.book, range.span.sheet));
}

void NewEnum(RangeObject& range, Invocation& call) {
    const RangeSpan span = range.span;
    const RangeMode mode = range.mode;
    call.ReturnUnknown(NewEnumerator(range.Describe(), [span, mode](std::size_t n) -> IDispatch* {
        const auto area = NthItem(span, mode, n);
        if (!area) return nullptr;
        return NewRange(RangeSpan{span.book, span.sheet, {*area}}, mode);
    }));
}

// --- Clipboard and selection ------------------------------------------------------------------

void Copy(RangeObject& range, Invocation& call) {
    const RangeSpan& span = range.span;
    if (span.areas.size() > 1) Raise("This action won't work on multiple selections.");
    Clipboard clipboard = CopyCells(*span.book, span.sheet, span.First(), false);
    if (call.Has(0)) {
        const auto destination = RangeTargetOf(call.Object(0));
        if (!destination) RaiseMethod("Copy", "Range");
        const Area& corner = destination->areas.front();
        PasteCells(*destination->sheet, clipboard, corner.top, corner.left, PasteKind::kAll);
    } else {
        span.book->clipboard = std::move(clipboard);
    }
    call.ReturnBoolean(true);
}

void Cut(RangeObject& range, Invocation& call) {
    call.ExpectCount(0, 0);
    const RangeSpan& span = range.span;
    if (span.areas.size() > 1) Raise("This action won't work on multiple selections.");
    span.book->clipboard = CopyCells(*span.book, span.sheet, span.First(), true);
    call.ReturnBoolean(true);
}

void PasteSpecial(RangeObject& range, Invocation& call) {
    const RangeSpan& span = range.span;
    const int paste = call.OptionalInteger(0).value_or(xl::kPasteAll);
    PasteKind kind = PasteKind::kAll;
    if (paste == xl::kPasteValues) {
        kind = PasteKind::kValues;
    } else if (paste == xl::kPasteFormats) {
        kind = PasteKind::kFormats;
    } else if (paste != xl::kPasteAll) {
        RaiseMethod("PasteSpecial", "Range");
    }
    const auto& clipboard = span.book->clipboard;
    if (!clipboard || clipboard->cut || clipboard->sheet.expired()) {
        RaiseMethod("PasteSpecial", "Range");
    }
    PasteCells(*span.sheet, *clipboard, span.First().top, span.First().left, kind);
    call.ReturnBoolean(true);
}

void Select(RangeObject& range, Invocation& call) {
    if (!IsActiveSheet(range.span)) RaiseMethod("Select", "Range");
    Sheet& sheet = *range.span.sheet;
    sheet.selection = range.span.areas;
    sheet.activeCell = CellRef{range.span.First().top, range.span.First().left};
    call.ReturnBoolean(true);
}

void Activate(RangeObject& range, Invocation& call) {
    if (!IsActiveSheet(range.span)) RaiseMethod("Activate", "Range");
    Sheet& sheet = *range.span.sheet;
    const CellRef cell{range.span.First().top, range.span.First().left};
    bool inSelection = false;
    for (const Area& area : sheet.selection) inSelection |= area.Contains(cell.row, cell.column);
    if (!inSelection) sheet.selection = {Area{cell.row, cell.column, cell.row, cell.column}};
    sheet.activeCell = cell;
    call.ReturnBoolean(true);
}

// --- Formats ----------------------------------------------------------------------------------

template <class T>
void StyleProperty(RangeObject& range, Invocation& call, T Style::*field) {
    const RangeSpan& span = range.span;
    if (!call.IsPut()) {
        const auto common =
            CommonStyleValue<T>(span, [field](const Style& style) { return style.*field; });
        if (!common) return call.ReturnNull();
        if constexpr (std::is_same_v<T, std::string>) {
            call.ReturnText(*common);
        } else if constexpr (std::is_same_v<T, bool>) {
            call.ReturnBoolean(*common);
        } else {
            call.ReturnInteger(*common);
        }
        return;
    }
    T value;
    if constexpr (std::is_same_v<T, std::string>) {
        value = call.PutText();
    } else if constexpr (std::is_same_v<T, bool>) {
        value = call.PutBoolean();
    } else {
        value = call.PutInteger();
    }
    ChangeStyle(*span.sheet, span.areas, [&](Style& style) { style.*field = value; });
}

void Borders(RangeObject& range, Invocation& call) {
    if (call.Has(0)) return call.ReturnObject(NewBorderObject(range.span, call.Integer(0)));
    call.ReturnObject(NewBordersObject(range.span));
}

void Interior(RangeObject& range, Invocation& call) {
    call.ReturnObject(NewInteriorObject(range.span));
}

void Font(RangeObject& range, Invocation& call) {
    call.ReturnObject(NewFontObject(range.span));
}

void FormatConditions(RangeObject& range, Invocation& call) {
    if (call.Has(0)) {
        return call.ReturnObject(NewFormatConditionObject(range.span, call.Integer(0)));
    }
    call.ReturnObject(NewFormatConditionsObject(range.span));
}

}  // namespace members
}  // namespace

std::string RangeSpan::Describe() const {
    return QuotedSheetName(sheet->name) + "!" + AreasAddress(areas);
}

bool IsActiveSheet(const RangeSpan& span) {
    const Workbook& book = *span.book;
    return book.activeSheet < book.sheets.size() && book.sheets[book.activeSheet] == span.sheet;
}

IDispatch* NewRangeObject(const BookPtr& book, const SheetPtr& sheet, std::vector<Area> areas) {
    if (areas.empty()) areas.push_back(Area{});
    return NewRange(RangeSpan{book, sheet, std::move(areas)});
}

IDispatch* NewRange(const RangeSpan& span, RangeMode mode) {
    return new RangeObject(span, mode);
}

IDispatch* RangeItem(const RangeSpan& span, RangeMode mode, const Invocation& call) {
    const Area& first = span.First();
    if (call.Count() >= 2 && call.Has(1)) {
        const int row = first.top + call.Integer(0) - 1;
        const int column = first.left + ColumnArgument(call, 1) - 1;
        return NewRange(WithAreas(span, {Area{row, column, row, column}}));
    }
    // Rows("5:7") and Columns("C:D") name their items by address, relative to the range.
    if (mode != RangeMode::kCells && call.Argument(0).vt == VT_BSTR) {
        const std::string text = call.Text(0);
        // "21:21" would read as a time of day; with its colon it is an address.
        if (text.find(':') != std::string::npos || !TextToNumber(text)) {
            auto area = ParseArea(mode == RangeMode::kRows || text.find(':') != std::string::npos
                                      ? text
                                      : text + ":" + text);
            if (!area) Raise(kObjectError);
            if (mode == RangeMode::kRows && area->WholeRows()) {
                return NewRange(WithAreas(span, {Area{first.top + area->top - 1, first.left,
                                                      first.top + area->bottom - 1, first.right}}),
                                mode);
            }
            if (mode == RangeMode::kColumns && area->WholeColumns()) {
                return NewRange(WithAreas(span, {Area{first.top, first.left + area->left - 1,
                                                      first.bottom, first.left + area->right - 1}}),
                                mode);
            }
            Raise(kObjectError);
        }
    }
    const int index = call.Integer(0);
    return NewRange(WithAreas(span, {ItemArea(first, mode, index - 1)}), mode);
}

void VisitStyles(const RangeSpan& span, const std::function<bool(const Style&)>& visit) {
    static const Style kDefault;
    const Sheet& sheet = *span.sheet;
    for (const Area& area : span.areas) {
        if (!area.WholeRows() && !area.WholeColumns()) {
            for (int row = area.top; row <= area.bottom; ++row) {
                for (int column = area.left; column <= area.right; ++column) {
                    if (!visit(EffectiveStyle(sheet, row, column))) return;
                }
            }
            continue;
        }
        // Whole rows or columns: the cells with a format of their own, the formatted rows or
        // columns, and the default format when some row or column has none.
        for (const CellRef& ref : CellsIn(sheet, area)) {
            if (!visit(FindCell(sheet, ref.row, ref.column)->style)) return;
        }
        int styled = 0;
        if (area.WholeRows()) {
            for (auto it = sheet.rows.lower_bound(area.top);
                 it != sheet.rows.end() && it->first <= area.bottom; ++it) {
                if (!it->second.style) continue;
                ++styled;
                if (!visit(*it->second.style)) return;
            }
        } else {
            for (auto it = sheet.columns.lower_bound(area.left);
                 it != sheet.columns.end() && it->first <= area.right; ++it) {
                if (!it->second.style) continue;
                ++styled;
                if (!visit(*it->second.style)) return;
            }
        }
        const int lines = area.WholeRows() ? area.Rows() : area.Columns();
        if (styled < lines && !visit(kDefault)) return;
    }
}

const MemberTable<RangeObject>& RangeObject::Members() {
    static const MemberTable<RangeObject> table(
        {
            {"_Default", members::Default},
            {"Item", members::Item},
            {"Value", members::Value},
            {"Value2", members::Value2},
            {"Formula", members::Formula},
            {"HasFormula", members::HasFormula},
            {"Row", members::Row},
            {"Column", members::Column},
            {"Count", members::Count},
            {"Cells", members::Cells},
            {"Rows", members::Rows},
            {"Columns", members::Columns},
            {"EntireRow", members::EntireRow},
            {"EntireColumn", members::EntireColumn},
            {"Address", members::Address},
            {"Offset", members::Offset},
            {"Resize", members::Resize},
            {"Worksheet", members::Worksheet},
            {"Parent", members::Worksheet},
            {"_NewEnum", members::NewEnum},
            {"Copy", members::Copy},
            {"Cut", members::Cut},
            {"PasteSpecial", members::PasteSpecial},
            {"Insert", range_layout::Insert},
            {"Delete", range_layout::Delete},
            {"Clear", members::Clear},
            {"ClearContents", members::ClearContentsMember},
            {"ClearFormats", members::ClearFormatsMember},
            {"Select", members::Select},
            {"Activate", members::Activate},
            {"Borders", members::Borders},
            {"Interior", members::Interior},
            {"Font", members::Font},
            {"FormatConditions", members::FormatConditions},
            {"HorizontalAlignment",
             [](RangeObject& r, Invocation& c) {
                 members::StyleProperty(r, c, &Style::horizontalAlignment);
             }},
            {"VerticalAlignment",
             [](RangeObject& r, Invocation& c) {
                 members::StyleProperty(r, c, &Style::verticalAlignment);
             }},
            {"WrapText",
             [](RangeObject& r, Invocation& c) { members::StyleProperty(r, c, &Style::wrapText); }},
            {"NumberFormat",
             [](RangeObject& r, Invocation& c) {
                 members::StyleProperty(r, c, &Style::numberFormat);
             }},
            {"NumberFormatLocal",
             [](RangeObject& r, Invocation& c) {
                 members::StyleProperty(r, c, &Style::numberFormat);
             }},
            {"Left", range_layout::Left},
            {"Top", range_layout::Top},
            {"Width", range_layout::Width},
            {"Height", range_layout::Height},
            {"Hidden", range_layout::Hidden},
            {"RowHeight", range_layout::RowHeight},
            {"ColumnWidth", range_layout::ColumnWidth},
            {"AutoFit", range_layout::AutoFit},
        },
        "_Default");
    return table;
}

std::optional<RangeTarget> RangeTargetOf(IDispatch* object) {
    const auto* range = dynamic_cast<const RangeObject*>(DispatchObject::FromDispatch(object));
    if (range == nullptr) return std::nullopt;
    return RangeTarget{range->span.sheet, range->span.areas};
}

}  // namespace sheethost
