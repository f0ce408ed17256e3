// The JSON description of a workbook (FIXTURES.md): loading, with a message naming the first
// fault, and the canonical dump.
#include <cmath>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>
#include <vector>

#include "sheethost/address.h"
#include "sheethost/cell_values.h"
#include "sheethost/palette.h"
#include "sheethost/sheet_edit.h"
#include "sheethost/sheethost.h"
#include "values/values.h"

namespace sheethost {
namespace {

using json = nlohmann::json;

// The first fault of a description; caught by LoadWorkbookJson.
struct FixtureError {
    std::string message;
};

[[noreturn]] void Fail(const std::string& where, const std::string& what) {
    throw FixtureError{where + ": " + what};
}

// Runs `read`, naming `where` in a fault the JSON library finds (a text where a number belongs,
// a missing key): its own message names no place.
template <class Read>
auto At(const std::string& where, Read&& read) {
    try {
        return read();
    } catch (const json::exception& fault) {
        const std::string_view what = fault.what();
        const auto bracket = what.find("] ");
        Fail(where, std::string(bracket == what.npos ? what : what.substr(bracket + 2)));
    }
}

std::optional<double> OptionalNumber(const json& entry, const char* key, const std::string& where) {
    if (!entry.contains(key)) return std::nullopt;
    return At(where + "." + key, [&] { return entry[key].get<double>(); });
}

// Each row described is kept on its own: a range of rows is bounded so that a description cannot
// make the host hold a million of them.
constexpr int kMaxRowsAtOnce = 65536;

// Nesting deeper than any workbook needs is refused while parsing, before the copies the loader
// makes of values could exhaust the stack.
constexpr int kMaxNesting = 64;

// The whole number at `key`, `fallback` when absent; `what` names it in the fault of a fraction or
// a number outside `least` to `most`.
int WholeNumber(const json& entry, const char* key, int fallback, int least, int most,
                const std::string& where, const std::string& what) {
    const double number = OptionalNumber(entry, key, where).value_or(fallback);
    if (!(number >= least && number <= most) || number != std::floor(number)) {
        Fail(where + "." + key, what + " is a whole number from " + std::to_string(least) + " to " +
                                    std::to_string(most));
    }
    return static_cast<int>(number);
}

// Whole numbers are written without a fraction, so 15 and 15.0 dump alike.
json Number(double value) {
    if (std::isfinite(value) && value == std::floor(value) && std::fabs(value) < 1e15) {
        return static_cast<std::int64_t>(value);
    }
    return value;
}

// --- Styles ---------------------------------------------------------------------------------
// A style is written as its difference from the default style; it is read by laying such a
// difference over a base style.

constexpr std::array<const char*, 6> kBorderNames{"diagonalDown", "diagonalUp", "left",
                                                  "top",          "bottom",     "right"};

json FullStyle(const Style& style) {
    json borders = json::object();
    for (std::size_t k = 0; k < kBorderNames.size(); ++k) {
        const Border& border = style.borders[k];
        borders[kBorderNames[k]] = {{"lineStyle", border.lineStyle},
                                    {"weight", border.weight},
                                    {"colorIndex", border.colorIndex}};
    }
    json conditions = json::array();
    for (const FormatCondition& condition : style.conditions) {
        json entry = {{"type", condition.type},
                      {"operator", condition.comparison},
                      {"formula1", condition.formula1},
                      {"formula2", condition.formula2}};
        if (condition.fontColorIndex) entry["fontColorIndex"] = *condition.fontColorIndex;
        if (condition.interiorColorIndex) {
            entry["interiorColorIndex"] = *condition.interiorColorIndex;
        }
        conditions.push_back(std::move(entry));
    }
    return {
        {"numberFormat", style.numberFormat},
        {"horizontalAlignment", style.horizontalAlignment},
        {"verticalAlignment", style.verticalAlignment},
        {"wrapText", style.wrapText},
        {"font",
         {{"name", style.font.name},
          {"size", Number(style.font.size)},
          {"bold", style.font.bold},
          {"italic", style.font.italic},
          {"colorIndex", style.font.colorIndex}}},
        {"interior",
         {{"colorIndex", style.interior.colorIndex},
          {"color", style.interior.color},
          {"pattern", style.interior.pattern}}},
        {"borders", std::move(borders)},
        {"conditions", std::move(conditions)},
    };
}

Style StyleFromFull(const json& full) {
    Style style;
    style.numberFormat = full.at("numberFormat").get<std::string>();
    style.horizontalAlignment = full.at("horizontalAlignment").get<int>();
    style.verticalAlignment = full.at("verticalAlignment").get<int>();
    style.wrapText = full.at("wrapText").get<bool>();
    const json& font = full.at("font");
    style.font = CellFont{font.at("name").get<std::string>(), font.at("size").get<double>(),
                          font.at("bold").get<bool>(), font.at("italic").get<bool>(),
                          font.at("colorIndex").get<int>()};
    const json& interior = full.at("interior");
    style.interior =
        Interior{interior.at("colorIndex").get<int>(), interior.at("color").get<std::int32_t>(),
                 interior.at("pattern").get<int>()};
    for (std::size_t k = 0; k < kBorderNames.size(); ++k) {
        const json& border = full.at("borders").at(kBorderNames[k]);
        style.borders[k] = Border{border.at("lineStyle").get<int>(), border.at("weight").get<int>(),
                                  border.at("colorIndex").get<int>()};
    }
    for (const json& entry : full.at("conditions")) {
        FormatCondition condition;
        condition.type = entry.at("type").get<int>();
        condition.comparison = entry.value("operator", xl::kBetween);
        condition.formula1 = entry.value("formula1", "");
        condition.formula2 = entry.value("formula2", "");
        if (entry.contains("fontColorIndex")) {
            condition.fontColorIndex = entry["fontColorIndex"].get<int>();
        }
        if (entry.contains("interiorColorIndex")) {
            condition.interiorColorIndex = entry["interiorColorIndex"].get<int>();
        }
        style.conditions.push_back(std::move(condition));
    }
    return style;
}

json Difference(const json& full, const json& base) {
    json difference = json::object();
    for (const auto& [key, value] : full.items()) {
        const json& original = base.at(key);
        if (value.is_object()) {
            json inner = Difference(value, original);
            if (!inner.empty()) difference[key] = std::move(inner);
        } else if (value != original) {
            difference[key] = value;
        }
    }
    return difference;
}

void Overlay(json& full, const json& patch, const std::string& where) {
    if (!patch.is_object()) Fail(where, "a style must be an object");
    for (const auto& [key, value] : patch.items()) {
        if (!full.contains(key)) Fail(where, "unknown style property '" + key + "'");
        json& target = full[key];
        if (target.is_object()) {
            Overlay(target, value, where + "." + key);
        } else {
            target = value;
        }
    }
}

// A fill given by its colour index alone shows the palette's colour, as setting ColorIndex does.
void FillColourFromIndex(json& full, const json& patch) {
    const auto interior = patch.find("interior");
    if (interior == patch.end() || !interior->is_object()) return;
    if (!interior->contains("colorIndex") || interior->contains("color")) return;
    const int index = full["interior"]["colorIndex"].get<int>();
    if (index >= 1 && index <= 56) full["interior"]["color"] = PaletteColor(index);
}

// The properties of a cell, row, column or format entry that are not style properties.
bool IsStyleKey(const std::string& key) {
    static const json kDefault = FullStyle(Style{});
    return kDefault.contains(key);
}

class StyleReader {
  public:
    explicit StyleReader(const json& table) : table_(table) {}

    // `base` with the entry's "style" (a table name, or an object over the default style) and
    // its style properties laid over it. Equal results are one shared format.
    SharedStyle Read(const json& entry, const SharedStyle& base, const std::string& where) const {
        json inline_ = json::object();
        for (const auto& [key, value] : entry.items()) {
            if (IsStyleKey(key)) inline_[key] = value;
        }
        if (!entry.contains("style") && inline_.empty()) return base;
        json full = FullStyle(*base);
        if (entry.contains("style")) {
            const json& style = entry["style"];
            full = FullStyle(Style{});
            if (style.is_string()) {
                const std::string name = style.get<std::string>();
                if (!table_.contains(name)) Fail(where, "unknown style '" + name + "'");
                Overlay(full, table_[name], where + ".style");
                FillColourFromIndex(full, table_[name]);
            } else {
                Overlay(full, style, where + ".style");
                FillColourFromIndex(full, style);
            }
        }
        Overlay(full, inline_, where);
        FillColourFromIndex(full, inline_);
        std::string key = full.dump();
        if (const auto made = made_.find(key); made != made_.end()) return made->second;
        return made_.emplace(std::move(key), SharedStyle(StyleFromFull(full))).first->second;
    }

  private:
    const json& table_;
    mutable std::unordered_map<std::string, SharedStyle> made_;
};

// One entry's format laid over many rows, columns or cells. Most of them start from the same
// few formats, so each distinct result is worked out once: a format over the whole sheet costs
// as much as one over a cell.
class StyleChange {
  public:
    StyleChange(const StyleReader& styles, const json& entry, std::string where)
        : styles_(styles), entry_(entry), where_(std::move(where)) {}

    SharedStyle operator()(const SharedStyle& base) {
        for (const auto& [before, after] : known_) {
            if (before == base) return after;
        }
        SharedStyle changed = styles_.Read(entry_, base, where_);
        known_.emplace_back(base, changed);
        return changed;
    }

  private:
    const StyleReader& styles_;
    const json& entry_;
    const std::string where_;
    std::vector<std::pair<SharedStyle, SharedStyle>> known_;
};

void CheckKeys(const json& entry, std::initializer_list<const char*> known,
               const std::string& where, bool styleKeys) {
    if (!entry.is_object()) Fail(where, "must be an object");
    for (const auto& [key, value] : entry.items()) {
        bool found = styleKeys && IsStyleKey(key);
        for (const char* name : known) found |= key == name;
        if (!found) Fail(where, "unknown property '" + key + "'");
    }
}

// --- Loading --------------------------------------------------------------------------------

std::vector<DefinedName> ReadNames(const json& names, const std::string& where) {
    std::vector<DefinedName> read;
    if (!names.is_object()) Fail(where, "must be an object of name: reference");
    for (const auto& [name, refersTo] : names.items()) {
        read.push_back(DefinedName{name, At(where + "." + name, [&value = refersTo] {
                                       return value.get<std::string>();
                                   })});
    }
    return read;
}

Area ReadLines(const std::string& key, bool rows, const std::string& where) {
    const std::string text = key.find(':') == std::string::npos ? key + ":" + key : key;
    const auto area = ParseArea(text);
    if (!area || (rows ? !area->WholeRows() : !area->WholeColumns())) {
        Fail(where, "'" + key + "' is not a " + (rows ? "row" : "column") + " or a range of them");
    }
    return *area;
}

Value ReadValue(const json& value, const std::string& where) {
    if (value.is_number()) return value.get<double>();
    if (value.is_string()) {
        std::string text = value.get<std::string>();
        if (CharacterCount(text) > kMaxCellCharacters) {
            Fail(where, "a cell holds at most 32,767 characters");
        }
        return text;
    }
    if (value.is_boolean()) return value.get<bool>();
    if (value.is_object() && value.size() == 1 && value.contains("date")) {
        const auto serial = values::ParseDateText(value["date"].get<std::string>());
        if (!serial) Fail(where, "not a date: " + value["date"].dump());
        return *serial;
    }
    if (value.is_object() && value.size() == 1 && value.contains("error")) {
        const std::string text = value["error"].get<std::string>();
        for (ErrorValue error :
             {ErrorValue::kNull, ErrorValue::kDiv0, ErrorValue::kValue, ErrorValue::kRef,
              ErrorValue::kName, ErrorValue::kNum, ErrorValue::kNA}) {
            if (text == ErrorText(error)) return error;
        }
        Fail(where, "not an error value: " + text);
    }
    Fail(where, "a value is a number, a text, a boolean, {\"date\": ...} or {\"error\": ...}");
}

void ReadCell(Sheet& sheet, const std::string& address, const json& entry,
              const StyleReader& styles, const std::string& where) {
    const auto area = ParseArea(address);
    if (!area || area->Rows() != 1 || area->Columns() != 1) Fail(where, "not a cell address");
    Cell& cell = CellAt(sheet, area->top, area->left);
    const bool bareValue =
        !entry.is_object() ||
        (entry.size() == 1 && (entry.contains("date") || entry.contains("error")));
    if (bareValue) {
        ReadCell(sheet, address, json{{"value", entry}}, styles, where);
        return;
    }
    CheckKeys(entry, {"value", "formula", "quotePrefix", "style"}, where, true);
    cell.style = styles.Read(entry, cell.style, where);
    if (entry.contains("value")) {
        cell.value = ReadValue(entry["value"], where);
        const bool isDate = entry["value"].is_object() && entry["value"].contains("date");
        if (isDate) {
            GiveFormatIfGeneral(sheet, area->top, area->left,
                                TypedDateFormat(std::get<double>(cell.value)));
        }
    }
    if (entry.contains("formula")) {
        cell.formula = entry["formula"].get<std::string>();
        if (cell.formula.empty() || cell.formula.front() != '=')
            Fail(where, "a formula starts with =");
    }
    cell.quotePrefix = entry.value("quotePrefix", false);
    TrimCell(sheet, area->top, area->left);
}

std::shared_ptr<Sheet> ReadSheet(const Workbook& book, const json& entry, const StyleReader& styles,
                                 const std::string& where) {
    CheckKeys(entry,
              {"name", "codeName", "zoom", "selection", "activeCell", "freezePanes", "pageSetup",
               "columns", "rows", "cells", "formats", "names", "shapes", "charts"},
              where, false);
    auto sheet = std::make_shared<Sheet>();
    At(where + ".name", [&] { sheet->name = entry.at("name").get<std::string>(); });
    if (!IsValidSheetName(sheet->name)) {
        Fail(where + ".name",
             "a sheet name has 1 to 31 characters, none of :\\/?*[] and no quote "
             "at either end");
    }
    At(where + ".codeName", [&] { sheet->codeName = entry.value("codeName", sheet->name); });
    sheet->zoom = WholeNumber(entry, "zoom", 100, 10, 400, where, "a zoom");
    if (entry.contains("freezePanes")) {
        const auto cell = ParseArea(
            At(where + ".freezePanes", [&] { return entry["freezePanes"].get<std::string>(); }));
        if (!cell || cell->Rows() != 1 || cell->Columns() != 1) Fail(where, "bad freezePanes");
        sheet->frozenAt = CellRef{cell->top, cell->left};
    }
    if (entry.contains("pageSetup")) {
        const std::string at = where + ".pageSetup";
        const json& page = entry["pageSetup"];
        CheckKeys(page, {"orientation", "fitToPagesWide", "fitToPagesTall"}, at, false);
        const std::string orientation =
            At(at + ".orientation", [&] { return page.value("orientation", "portrait"); });
        if (orientation != "portrait" && orientation != "landscape") {
            Fail(at, "orientation must be portrait or landscape");
        }
        sheet->pageSetup.landscape = orientation == "landscape";
        // The spreadsheet shrinks a sheet onto at most 32767 pages each way; 0 leaves it free.
        sheet->pageSetup.fitToPagesWide =
            WholeNumber(page, "fitToPagesWide", 0, 0, 32767, at, "a page count");
        sheet->pageSetup.fitToPagesTall =
            WholeNumber(page, "fitToPagesTall", 0, 0, 32767, at, "a page count");
    }

    // value() answers a temporary: keep it alive for the loop over its items.
    const json columns = entry.value("columns", json::object());
    for (const auto& [key, line] : columns.items()) {
        const std::string at = where + ".columns." + key;
        CheckKeys(line, {"width", "hidden", "style"}, at, true);
        const Area area = ReadLines(key, false, at);
        const auto width = OptionalNumber(line, "width", at);
        const bool hidden = At(at, [&entry = line] { return entry.value("hidden", false); });
        StyleChange change(styles, line, at);
        for (int column = area.left; column <= area.right; ++column) {
            ColumnInfo& info = sheet->columns[column];
            if (width) info.width = width;
            info.hidden = hidden;
            info.style = change(info.style.value_or(SharedStyle{}));
        }
    }
    const json rows = entry.value("rows", json::object());
    for (const auto& [key, line] : rows.items()) {
        const std::string at = where + ".rows." + key;
        CheckKeys(line, {"height", "hidden", "style"}, at, true);
        const Area area = ReadLines(key, true, at);
        if (area.bottom - area.top >= kMaxRowsAtOnce) {
            Fail(at, "give rows their height, visibility or format at most 65,536 at a time");
        }
        const auto height = OptionalNumber(line, "height", at);
        const bool hidden = At(at, [&entry = line] { return entry.value("hidden", false); });
        StyleChange change(styles, line, at);
        for (int row = area.top; row <= area.bottom; ++row) {
            RowInfo& info = sheet->rows[row];
            if (height) info.height = height;
            info.hidden = hidden;
            info.style = change(info.style.value_or(SharedStyle{}));
        }
    }
    NormalizeLineInfos(*sheet);
    const json cells = entry.value("cells", json::object());
    for (const auto& [address, cell] : cells.items()) {
        const std::string at = where + ".cells." + address;
        At(at,
           [&, &address = address, &cell = cell] { ReadCell(*sheet, address, cell, styles, at); });
    }
    const json formats = entry.value("formats", json::array());
    for (std::size_t k = 0; k < formats.size(); ++k) {
        const std::string at = where + ".formats[" + std::to_string(k) + "]";
        const json& format = formats[k];
        CheckKeys(format, {"range", "style"}, at, true);
        const auto resolved = ResolveAddress(
            book, sheet, At(at + ".range", [&] { return format.at("range").get<std::string>(); }));
        if (!resolved || resolved->sheet != sheet) Fail(at, "not a range of this sheet");
        if (CellsStyledBy(*sheet, resolved->areas) > kMostCellsStyledAtOnce) {
            Fail(at, "formats more cells one by one than the host holds at once");
        }
        StyleChange change(styles, format, at);
        ChangeStyle(*sheet, resolved->areas, [&](Style& style) { style = change(style); });
    }
    sheet->names = ReadNames(entry.value("names", json::object()), where + ".names");

    const json shapes = entry.value("shapes", json::array());
    for (const json& shape : shapes) {
        auto read = ShapeFromJson(shape);
        if (!read) Fail(where + ".shapes", "not a shape: " + shape.dump());
        sheet->shapes.push_back(std::make_shared<Shape>(std::move(*read)));
    }
    const json charts = entry.value("charts", json::array());
    for (const json& chart : charts) {
        auto read = ChartFromJson(chart);
        if (!read) Fail(where + ".charts", "not a chart: " + chart.dump());
        sheet->charts.push_back(std::make_shared<Chart>(std::move(*read)));
    }
    return sheet;
}

void ReadSelection(const Workbook& book, const std::shared_ptr<Sheet>& sheet, const json& entry,
                   const std::string& where) {
    if (entry.contains("selection")) {
        const auto resolved = ResolveAddress(book, sheet, entry["selection"].get<std::string>());
        if (!resolved || resolved->sheet != sheet) Fail(where, "bad selection");
        sheet->selection = resolved->areas;
        sheet->activeCell = CellRef{sheet->selection.front().top, sheet->selection.front().left};
    }
    if (entry.contains("activeCell")) {
        const auto area = ParseArea(entry["activeCell"].get<std::string>());
        if (!area) Fail(where, "bad activeCell");
        sheet->activeCell = CellRef{area->top, area->left};
    }
}

std::shared_ptr<Workbook> ReadWorkbook(const json& root) {
    CheckKeys(root,
              {"name", "activeSheet", "names", "styles", "sheets", "chartSheets", "statusBar"},
              "workbook", false);
    auto book = std::make_shared<Workbook>();
    At("name", [&] { book->name = root.value("name", book->name); });
    if (root.contains("statusBar")) {
        At("statusBar", [&] { book->statusBar = root["statusBar"].get<std::string>(); });
    }
    const json styleTable = root.value("styles", json::object());
    const StyleReader styles(styleTable);
    book->names = ReadNames(root.value("names", json::object()), "names");

    const json sheets = root.value("sheets", json::array());
    if (sheets.empty()) Fail("sheets", "a workbook has at least one sheet");
    for (std::size_t k = 0; k < sheets.size(); ++k) {
        const std::string where = "sheets[" + std::to_string(k) + "]";
        auto sheet = At(where, [&] { return ReadSheet(*book, sheets[k], styles, where); });
        if (FindSheet(*book, sheet->name)) Fail(where, "two sheets named " + sheet->name);
        book->sheets.push_back(std::move(sheet));
    }
    // Selections may name defined names of any sheet: read them once every sheet is there.
    for (std::size_t k = 0; k < sheets.size(); ++k) {
        const std::string where = "sheets[" + std::to_string(k) + "]";
        At(where, [&] { ReadSelection(*book, book->sheets[k], sheets[k], where); });
    }
    const json chartSheets = root.value("chartSheets", json::array());
    for (std::size_t k = 0; k < chartSheets.size(); ++k) {
        const std::string where = "chartSheets[" + std::to_string(k) + "]";
        const json& entry = chartSheets[k];
        CheckKeys(entry, {"name", "chart"}, where, false);
        At(where, [&] {
            auto chart = ChartFromJson(entry.at("chart"));
            if (!chart) Fail(where, "not a chart: " + entry.dump());
            book->chartSheets.push_back(ChartSheet{entry.at("name").get<std::string>(),
                                                   std::make_shared<Chart>(std::move(*chart))});
        });
    }
    if (root.contains("activeSheet")) {
        const auto active = FindSheet(
            *book, At("activeSheet", [&] { return root["activeSheet"].get<std::string>(); }));
        if (!active) Fail("activeSheet", "no such sheet");
        book->activeSheet = static_cast<std::size_t>(
            std::find(book->sheets.begin(), book->sheets.end(), active) - book->sheets.begin());
    }
    return book;
}

// --- Dumping --------------------------------------------------------------------------------

// Gives each distinct style a name, in the order the dump meets them.
class StyleTable {
  public:
    std::string NameOf(const Style& style) {
        const json difference = Difference(FullStyle(style), FullStyle(Style{}));
        const std::string key = difference.dump();
        const auto found = names_.find(key);
        if (found != names_.end()) return found->second;
        std::string name = "s" + std::to_string(names_.size() + 1);
        names_.emplace(key, name);
        table_[name] = difference;
        return name;
    }
    const json& Table() const { return table_; }

  private:
    std::map<std::string, std::string> names_;
    json table_ = json::object();
};

json NamesJson(const std::vector<DefinedName>& names) {
    json object = json::object();
    for (const DefinedName& name : names) object[name.name] = name.refersTo;
    return object;
}

json ValueJson(const Value& value) {
    if (const auto* number = std::get_if<double>(&value)) return Number(*number);
    if (const auto* text = std::get_if<std::string>(&value)) return *text;
    if (const auto* flag = std::get_if<bool>(&value)) return *flag;
    if (const auto* error = std::get_if<ErrorValue>(&value)) return {{"error", ErrorText(*error)}};
    return nullptr;
}

json CellJson(const Sheet& sheet, const CellRef& ref, const Cell& cell, StyleTable& styles) {
    const bool ownStyle = cell.style != InheritedStyle(sheet, ref.row, ref.column);
    const bool plainValue = !std::holds_alternative<Blank>(cell.value) &&
                            !std::holds_alternative<ErrorValue>(cell.value);
    if (!ownStyle && cell.formula.empty() && !cell.quotePrefix && plainValue) {
        return ValueJson(cell.value);
    }
    json entry = json::object();
    if (!std::holds_alternative<Blank>(cell.value)) entry["value"] = ValueJson(cell.value);
    if (!cell.formula.empty()) entry["formula"] = cell.formula;
    if (cell.quotePrefix) entry["quotePrefix"] = true;
    if (ownStyle) {
        // The default style is written as an empty object, since it has no table entry.
        entry["style"] = cell.style == Style{} ? json::object() : json(styles.NameOf(cell.style));
    }
    return entry;
}

json SheetJson(const Sheet& sheet, StyleTable& styles) {
    json columns = json::object();
    for (const auto& [column, info] : sheet.columns) {
        json entry = json::object();
        if (info.width) entry["width"] = Number(*info.width);
        if (info.hidden) entry["hidden"] = true;
        if (info.style) entry["style"] = styles.NameOf(*info.style);
        columns[ColumnLetters(column)] = std::move(entry);
    }
    json rows = json::object();
    for (const auto& [row, info] : sheet.rows) {
        json entry = json::object();
        if (info.height) entry["height"] = Number(*info.height);
        if (info.hidden) entry["hidden"] = true;
        if (info.style) entry["style"] = styles.NameOf(*info.style);
        rows[std::to_string(row)] = std::move(entry);
    }
    json cells = json::object();
    for (const auto& [ref, cell] : sheet.cells) {
        cells[ColumnLetters(ref.column) + std::to_string(ref.row)] =
            CellJson(sheet, ref, cell, styles);
    }
    json shapes = json::array();
    for (const auto& shape : sheet.shapes) shapes.push_back(ShapeToJson(*shape));
    json charts = json::array();
    for (const auto& chart : sheet.charts) charts.push_back(ChartToJson(*chart));
    const CellRef active = sheet.activeCell;
    json entry = {
        {"name", sheet.name},
        {"codeName", sheet.codeName},
        {"zoom", sheet.zoom},
        {"selection", AreasAddress(sheet.selection, false, false)},
        {"activeCell", ColumnLetters(active.column) + std::to_string(active.row)},
        {"columns", std::move(columns)},
        {"rows", std::move(rows)},
        {"cells", std::move(cells)},
        {"names", NamesJson(sheet.names)},
        {"shapes", std::move(shapes)},
        {"charts", std::move(charts)},
    };
    // Written only when set, so the dumps of sheets without them stay as they were.
    if (sheet.frozenAt != CellRef{}) {
        entry["freezePanes"] =
            ColumnLetters(sheet.frozenAt.column) + std::to_string(sheet.frozenAt.row);
    }
    if (sheet.pageSetup != PageSetup{}) {
        entry["pageSetup"] = {{"orientation", sheet.pageSetup.landscape ? "landscape" : "portrait"},
                              {"fitToPagesWide", sheet.pageSetup.fitToPagesWide},
                              {"fitToPagesTall", sheet.pageSetup.fitToPagesTall}};
    }
    return entry;
}

}  // namespace

std::shared_ptr<Workbook> NewWorkbook() {
    auto book = std::make_shared<Workbook>();
    auto sheet = std::make_shared<Sheet>();
    sheet->name = "Sheet1";
    sheet->codeName = "Sheet1";
    book->sheets.push_back(std::move(sheet));
    return book;
}

std::shared_ptr<Workbook> LoadWorkbookJson(std::string_view text, std::string* error) {
    try {
        if (text.size() > kMaxWorkbookJsonBytes) {
            Fail("workbook", "larger than any workbook (256 MB at most)");
        }
        const json::parser_callback_t nesting = [](int depth, json::parse_event_t, json&) {
            if (depth > kMaxNesting) {
                Fail("workbook", "nested deeper than " + std::to_string(kMaxNesting) + " levels");
            }
            return true;
        };
        return ReadWorkbook(json::parse(text, nesting));
    } catch (const FixtureError& fault) {
        if (error) *error = fault.message;
    } catch (const json::exception& fault) {
        if (error) *error = fault.what();
    }
    return nullptr;
}

std::string DumpWorkbookJson(const Workbook& book) {
    StyleTable styles;
    json sheets = json::array();
    for (const auto& sheet : book.sheets) sheets.push_back(SheetJson(*sheet, styles));
    json chartSheets = json::array();
    for (const ChartSheet& chart : book.chartSheets) {
        chartSheets.push_back({{"name", chart.name}, {"chart", ChartToJson(*chart.chart)}});
    }
    json root = {
        {"name", book.name},           {"names", NamesJson(book.names)},
        {"sheets", std::move(sheets)}, {"chartSheets", std::move(chartSheets)},
        {"styles", styles.Table()},
    };
    if (book.activeSheet < book.sheets.size()) {
        root["activeSheet"] = book.sheets[book.activeSheet]->name;
    }
    if (book.statusBar) root["statusBar"] = *book.statusBar;
    // A text that is no UTF-8 (read from a package, or written through the host) is dumped with
    // its faulty bytes replaced rather than refused.
    return root.dump(2, ' ', false, json::error_handler_t::replace) + "\n";
}

}  // namespace sheethost
