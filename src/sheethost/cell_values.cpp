#include "sheethost/cell_values.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "com/text.h"
#include "sheethost/any_cell_changes.h"
#include "sheethost/dispatch_object.h"
#include "values/values.h"

namespace sheethost {
namespace {

// The host's error numbers; as automation values they are VT_ERROR with 0x800A0000 added.
constexpr std::array<std::pair<ErrorValue, int>, 7> kErrorNumbers{{
    {ErrorValue::kNull, 2000},
    {ErrorValue::kDiv0, 2007},
    {ErrorValue::kValue, 2015},
    {ErrorValue::kRef, 2023},
    {ErrorValue::kName, 2029},
    {ErrorValue::kNum, 2036},
    {ErrorValue::kNA, 2042},
}};
constexpr SCODE kErrorBase = static_cast<SCODE>(0x800A0000);

std::string_view TrimBlanks(std::string_view text) {
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
    return text;
}

std::optional<ErrorValue> ErrorNamed(std::string_view text) {
    for (const auto& [error, number] : kErrorNumbers) {
        if (SameName(text, ErrorText(error))) return error;
    }
    return std::nullopt;
}

void SetConstant(Sheet& sheet, int row, int column, Value value, bool quotePrefix) {
    Cell& cell = CellAt(sheet, row, column);
    cell.value = std::move(value);
    cell.formula.clear();
    cell.quotePrefix = quotePrefix;
    TrimCell(sheet, row, column);
}

}  // namespace

void GiveFormatIfGeneral(Sheet& sheet, int row, int column, const std::string& format) {
    Cell& cell = CellAt(sheet, row, column);
    if (cell.style->numberFormat != "General") return;
    SharedStyle formatted = cell.style;
    formatted.Edit().numberFormat = format;
    cell.style = sheet.recentStyles.Share(std::move(formatted));
}

std::string TypedDateFormat(double serial) {
    const double day = std::floor(serial);
    if (day == 0 && serial != 0) return "h:mm";
    if (serial != day) return "yyyy/m/d h:mm";
    return "yyyy/m/d";
}

// --- Formula evaluation -------------------------------------------------------------------

ResultSources BookFormulaContext::SourcesOf(const Sheet& sheet) const {
    return {sheet.cells.Changes(), book_.sheetNameChanges, AnyCellChanges()};
}

Value BookFormulaContext::Evaluate(const Sheet& sheet, int row, int column) {
    const Cell* cell = FindCell(sheet, row, column);
    if (cell == nullptr) return Blank{};
    if (cell->formula.empty()) return cell->value;
    const ResultSources sources = SourcesOf(sheet);
    if (const Value* known = sheet.formulaResults.Find(sources, row, column)) return *known;
    const std::pair<const Sheet*, CellRef> key{&sheet, CellRef{row, column}};
    if (std::find(evaluating_.begin(), evaluating_.end(), key) != evaluating_.end()) {
        ++partialResults_;
        return ErrorValue::kRef;
    }
    const int partialBefore = partialResults_;
    if (AtChainLimit()) ++partialResults_;  // the evaluation below is cut for its depth alone
    evaluating_.push_back(key);
    Value value = EvaluateFormula(cell->formula, sheet.name, row, column, *this);
    evaluating_.pop_back();
    if (partialResults_ == partialBefore) sheet.formulaResults.Keep(sources, row, column, value);
    return value;
}

const Sheet* BookFormulaContext::SheetNamed(std::string_view name) const {
    if (name.empty()) return evaluating_.empty() ? nullptr : evaluating_.back().first;
    return FindSheet(book_, name).get();
}

const Sheet* BookFormulaContext::SheetRead(std::string_view name) {
    const Sheet* found = SheetNamed(name);
    if (found == nullptr) return nullptr;
    for (const auto& [reading, cell] : evaluating_) {
        if (reading != found) reading->formulaResults.ReadOtherSheets(SourcesOf(*reading));
    }
    return found;
}

Value BookFormulaContext::CellValue(std::string_view sheet, int row, int column) {
    const Sheet* found = SheetRead(sheet);
    if (found == nullptr || row < 1 || row > kMaxRow || column < 1 || column > kMaxColumn) {
        return ErrorValue::kRef;
    }
    return Evaluate(*found, row, column);
}

std::string BookFormulaContext::NameAddress(std::string_view sheet, std::string_view name) {
    const Sheet* found = SheetNamed(sheet);
    const DefinedName* defined = found ? FindName(found->names, name) : nullptr;
    if (defined == nullptr) defined = FindName(book_.names, name);
    if (defined == nullptr) return {};
    std::string_view refersTo = defined->refersTo;
    if (!refersTo.empty() && refersTo.front() == '=') refersTo.remove_prefix(1);
    return std::string(refersTo);
}

int BookFormulaContext::LastUsedRow(std::string_view sheet) {
    const Sheet* found = SheetRead(sheet);
    return found == nullptr ? 0 : found->cells.LastRow();
}

int BookFormulaContext::LastUsedColumn(std::string_view sheet) {
    const Sheet* found = SheetRead(sheet);
    int last = 0;
    if (found != nullptr) {
        for (const auto& [ref, cell] : found->cells) last = std::max(last, ref.column);
    }
    return last;
}

Value CellDisplayValue(const Workbook& book, const Sheet& sheet, int row, int column) {
    BookFormulaContext context(book);
    return context.Evaluate(sheet, row, column);
}

// --- Writing --------------------------------------------------------------------------------

bool TypeIntoCell(Sheet& sheet, int row, int column, std::string_view text) {
    if (text.empty()) {
        ClearCellContents(sheet, row, column);
        return true;
    }
    if (text.front() == '\'') {
        SetConstant(sheet, row, column, std::string(text.substr(1)), true);
        return true;
    }
    // A cell formatted as text keeps what is typed into it as it stands: "1.10" stays "1.10" and
    // "=A1" is not a formula, as the spreadsheet does.
    if (EffectiveStyle(sheet, row, column)->numberFormat == "@") {
        SetConstant(sheet, row, column, std::string(text), false);
        return true;
    }
    if (text.front() == '=' && text.size() > 1) {
        if (!IsWellFormedFormula(text, row, column)) return false;
        Cell& cell = CellAt(sheet, row, column);
        cell.value = Blank{};
        cell.formula = std::string(text);
        cell.quotePrefix = false;
        return true;
    }
    const std::string_view trimmed = TrimBlanks(text);
    if (SameName(trimmed, "TRUE") || SameName(trimmed, "FALSE")) {
        SetConstant(sheet, row, column, SameName(trimmed, "TRUE"), false);
        return true;
    }
    if (const auto error = ErrorNamed(trimmed)) {
        SetConstant(sheet, row, column, *error, false);
        return true;
    }
    if (const auto number = TextToNumber(text)) {
        SetConstant(sheet, row, column, *number, false);
        if (!trimmed.empty() && trimmed.back() == '%') {
            GiveFormatIfGeneral(sheet, row, column, "0%");
        } else if (values::ParseDateText(trimmed)) {
            GiveFormatIfGeneral(sheet, row, column, TypedDateFormat(*number));
        }
        return true;
    }
    SetConstant(sheet, row, column, std::string(text), false);
    return true;
}

bool PutCellVariant(Sheet& sheet, int row, int column, const VARIANT& value) {
    switch (value.vt) {
        case VT_EMPTY:
        case VT_NULL:
            ClearCellContents(sheet, row, column);
            return true;
        case VT_BSTR:
            return TypeIntoCell(sheet, row, column, NarrowBstr(value.bstrVal));
        case VT_BOOL:
            SetConstant(sheet, row, column, value.boolVal != VARIANT_FALSE, false);
            return true;
        case VT_DATE:
            SetConstant(sheet, row, column, value.date, false);
            GiveFormatIfGeneral(sheet, row, column, TypedDateFormat(value.date));
            return true;
        case VT_ERROR:
            for (const auto& [error, number] : kErrorNumbers) {
                if (value.scode == kErrorBase + number) {
                    SetConstant(sheet, row, column, error, false);
                    return true;
                }
            }
            return false;
        case VT_DISPATCH:
        case VT_UNKNOWN:
            return false;
        default:
            break;
    }
    VARIANT number;
    VariantInit(&number);
    if (FAILED(ChangeVariantType(number, value, VT_R8))) return false;
    SetConstant(sheet, row, column, number.dblVal, false);
    return true;
}

void ClearCellContents(Sheet& sheet, int row, int column) {
    if (FindCell(sheet, row, column) == nullptr) return;
    SetConstant(sheet, row, column, Blank{}, false);
}

// --- Reading --------------------------------------------------------------------------------

VARIANT ValueVariant(const Value& value) {
    VARIANT variant;
    VariantInit(&variant);
    if (const auto* number = std::get_if<double>(&value)) {
        variant.vt = VT_R8;
        variant.dblVal = *number;
    } else if (const auto* text = std::get_if<std::string>(&value)) {
        const WideString wide = Widen(*text);
        variant.vt = VT_BSTR;
        variant.bstrVal = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
    } else if (const auto* flag = std::get_if<bool>(&value)) {
        variant.vt = VT_BOOL;
        variant.boolVal = *flag ? VARIANT_TRUE : VARIANT_FALSE;
    } else if (const auto* error = std::get_if<ErrorValue>(&value)) {
        variant.vt = VT_ERROR;
        for (const auto& [known, number] : kErrorNumbers) {
            if (known == *error) variant.scode = kErrorBase + number;
        }
    }
    return variant;
}

VARIANT CellVariant2(const Workbook& book, const Sheet& sheet, int row, int column) {
    return ValueVariant(CellDisplayValue(book, sheet, row, column));
}

VARIANT CellVariant(const Workbook& book, const Sheet& sheet, int row, int column) {
    VARIANT variant = CellVariant2(book, sheet, row, column);
    if (variant.vt == VT_R8 && IsDateFormat(EffectiveStyle(sheet, row, column)->numberFormat)) {
        variant.vt = VT_DATE;  // same 8 bytes: a date is its serial
    }
    return variant;
}

std::string CellFormulaText(const Sheet& sheet, int row, int column) {
    const Cell* cell = FindCell(sheet, row, column);
    if (cell == nullptr) return {};
    if (!cell->formula.empty()) return cell->formula;
    return DisplayText(cell->value);
}

}  // namespace sheethost
