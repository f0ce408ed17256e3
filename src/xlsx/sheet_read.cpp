#include "xlsx/sheet_read.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <map>
#include <string_view>

#include "sheethost/address.h"
#include "sheethost/formula.h"
#include "xlsx/page_setup.h"
#include "xlsx/sheet_view.h"
#include "xlsx/xlsx.h"
#include "xlsx/xml.h"

namespace xlsx {
namespace {

// The default font's widest digit in pixels and the padding a column adds around its text.
constexpr double kDigitPixels = 7;
constexpr double kPaddingPixels = 5;

std::optional<double> Number(std::string_view text) {
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

sheethost::Value ErrorFromText(std::string_view text) {
    using sheethost::ErrorValue;
    for (ErrorValue error :
         {ErrorValue::kNull, ErrorValue::kDiv0, ErrorValue::kValue, ErrorValue::kRef,
          ErrorValue::kName, ErrorValue::kNum, ErrorValue::kNA}) {
        if (text == sheethost::ErrorText(error)) return error;
    }
    return std::string(text);
}

// The master of a shared formula: its text and the cell it was written for.
struct SharedFormula {
    std::string formula;
    sheethost::CellRef origin;
};

class WorksheetReader {
  public:
    WorksheetReader(const std::vector<std::string>& sharedStrings, const StyleSheet& styles,
                    sheethost::Sheet& sheet)
        : sharedStrings_(sharedStrings), styles_(styles), sheet_(sheet) {}

    void ReadColumns(const pugi::xml_node& cols) {
        for (pugi::xml_node col : Children(cols, "col")) {
            const int first = std::max(1, col.attribute("min").as_int());
            const int last = std::min(sheethost::kMaxColumn, col.attribute("max").as_int(first));
            const int styleIndex = col.attribute("style").as_int();
            for (int column = first; column <= last; ++column) {
                sheethost::ColumnInfo& info = sheet_.columns[column];
                if (auto width = col.attribute("width")) {
                    info.width = FileWidthToCharacters(width.as_double());
                }
                info.hidden = col.attribute("hidden").as_bool();
                if (styleIndex != 0) info.style = styles_.StyleAt(styleIndex);
            }
        }
    }

    void ReadRows(const pugi::xml_node& sheetData) {
        int row = 0;
        for (const pugi::xml_node& rowNode : Children(sheetData, "row")) {
            // A row without a number follows the one before; past the last row, rows stay past
            // it (the number before may be the largest a file can write).
            row = rowNode.attribute("r").as_int(std::min(row, sheethost::kMaxRow) + 1);
            if (row < 1 || row > sheethost::kMaxRow) continue;
            ReadRowInfo(rowNode, row);
            const std::vector<pugi::xml_node> cellNodes = Children(rowNode, "c");
            if (!cellNodes.empty()) sheet_.cells.ReserveRow(row, cellNodes.size());
            int column = 0;
            for (const pugi::xml_node& cellNode : cellNodes) {
                if (auto reference = cellNode.attribute("r")) {
                    const auto area = sheethost::ParseArea(reference.value());
                    column = area ? area->left : column + 1;
                } else {
                    ++column;
                }
                ReadCell(cellNode, row, column);
            }
        }
    }

  private:
    void ReadRowInfo(const pugi::xml_node& rowNode, int row) {
        sheethost::RowInfo info;
        if (auto height = rowNode.attribute("ht")) info.height = height.as_double();
        info.hidden = rowNode.attribute("hidden").as_bool();
        if (rowNode.attribute("customFormat").as_bool()) {
            info.style = styles_.StyleAt(rowNode.attribute("s").as_int());
        }
        if (info != sheethost::RowInfo{}) sheet_.rows[row] = std::move(info);
    }

    void ReadCell(const pugi::xml_node& cellNode, int row, int column) {
        sheethost::Cell cell;
        const int styleIndex = cellNode.attribute("s").as_int();
        cell.style = styles_.StyleAt(styleIndex);
        cell.quotePrefix = styles_.QuotePrefixAt(styleIndex);
        cell.formula = Formula(Child(cellNode, "f"), row, column);
        if (cell.formula.empty()) cell.value = CellValue(cellNode);
        // The spreadsheet never writes a longer text; one that is longer was made to hurt.
        if (const auto* text = std::get_if<std::string>(&cell.value);
            text != nullptr && sheethost::CharacterCount(*text) > sheethost::kMaxCellCharacters) {
            throw XlsxError("the workbook is corrupt: cell " + sheethost::ColumnLetters(column) +
                            std::to_string(row) + " of the sheet \"" + sheet_.name +
                            "\" holds more than 32,767 characters");
        }
        const bool holdsSomething =
            !cell.formula.empty() || !std::holds_alternative<sheethost::Blank>(cell.value);
        if (holdsSomething || cell.style != sheethost::EffectiveStyle(sheet_, row, column)) {
            sheet_.cells[{row, column}] = std::move(cell);
        }
    }

    sheethost::Value CellValue(const pugi::xml_node& cellNode) const {
        const std::string_view type = cellNode.attribute("t").value();
        if (type == "inlineStr") return JoinedText(Child(cellNode, "is"));
        const pugi::xml_node v = Child(cellNode, "v");
        if (!v) return sheethost::Blank{};
        const std::string_view text = v.text().get();
        if (type == "s") {
            const auto index = Number(text);
            if (!index || *index < 0 || *index >= static_cast<double>(sharedStrings_.size())) {
                return sheethost::Blank{};
            }
            return sharedStrings_[static_cast<std::size_t>(*index)];
        }
        if (type == "b") return text == "1" || text == "true";
        if (type == "e") return ErrorFromText(text);
        if (type == "str" || type == "d") return std::string(text);
        if (const auto number = Number(text)) return *number;
        return std::string(text);
    }

    // The cell's formula with its "="; a cell of a shared formula gets the master's text moved
    // by its offset from the master's cell, as filling the formula would have written it.
    std::string Formula(const pugi::xml_node& f, int row, int column) {
        if (!f) return {};
        const std::string text = f.text().get();
        if (std::string_view(f.attribute("t").value()) == "shared") {
            const int group = f.attribute("si").as_int(-1);
            if (!text.empty()) {
                shared_[group] = SharedFormula{"=" + text, {row, column}};
                return "=" + text;
            }
            const auto master = shared_.find(group);
            if (master == shared_.end()) return {};
            return sheethost::OffsetReferences(master->second.formula,
                                               row - master->second.origin.row,
                                               column - master->second.origin.column);
        }
        return text.empty() ? std::string() : "=" + text;
    }

    const std::vector<std::string>& sharedStrings_;
    const StyleSheet& styles_;
    sheethost::Sheet& sheet_;
    std::map<int, SharedFormula> shared_;
};

}  // namespace

double FileWidthToCharacters(double fileWidth) {
    const double characters = (fileWidth * kDigitPixels - kPaddingPixels) / kDigitPixels;
    return std::max(0.0, std::trunc(characters * 100 + 0.5) / 100);
}

double CharactersToFileWidth(double characters) {
    if (characters <= 0) return 0;
    return std::trunc((characters * kDigitPixels + kPaddingPixels) / kDigitPixels * 256) / 256;
}

std::optional<std::vector<sheethost::Area>> ParseSqref(std::string_view text) {
    std::vector<sheethost::Area> areas;
    while (!text.empty()) {
        const std::size_t end = text.find(' ');
        if (end != 0) {
            const auto area = sheethost::ParseArea(text.substr(0, end));
            if (!area) return std::nullopt;
            areas.push_back(*area);
        }
        if (end == std::string_view::npos) break;
        text.remove_prefix(end + 1);
    }
    return areas;
}

void ReadWorksheet(const pugi::xml_node& worksheet, const std::vector<std::string>& sharedStrings,
                   const StyleSheet& styles, sheethost::Sheet& sheet) {
    sheet.codeName = Child(worksheet, "sheetPr").attribute("codeName").value();
    WorksheetReader reader(sharedStrings, styles, sheet);
    reader.ReadColumns(Child(worksheet, "cols"));
    reader.ReadRows(Child(worksheet, "sheetData"));
    ReadSheetView(worksheet, sheet);
    ReadPageSetup(worksheet, sheet);
}

}  // namespace xlsx
