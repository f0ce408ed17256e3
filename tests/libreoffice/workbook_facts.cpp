// Prints what the LibreOffice check compares of a workbook file, as the in-memory host reads it,
// in JSON: every formula cell with the value the host computes for it
// ({"sheet": ..., "cell": "B7", "formula": "=...", "value": ...}; a value is a number, a text, a
// boolean, null for an empty result, or {"error": "#DIV/0!"}) and every shape by sheet and name.
#include <iostream>
#include <nlohmann/json.hpp>
#include <variant>

#include "sheethost/address.h"
#include "sheethost/cell_values.h"
#include "xlsx/xlsx.h"

namespace {

nlohmann::json ValueJson(const sheethost::Value& value) {
    return std::visit(
        [](const auto& v) -> nlohmann::json {
            using T = std::decay_t<decltype(v)>;
            if constexpr (std::is_same_v<T, sheethost::Blank>) {
                return nullptr;
            } else if constexpr (std::is_same_v<T, sheethost::ErrorValue>) {
                return {{"error", sheethost::ErrorText(v)}};
            } else {
                return v;
            }
        },
        value);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: workbook_facts WORKBOOK.xlsx\n";
        return 2;
    }
    try {
        const auto book = xlsx::LoadXlsx(argv[1]);
        nlohmann::json cells = nlohmann::json::array();
        nlohmann::json shapes = nlohmann::json::array();
        for (const auto& sheet : book->sheets) {
            for (const auto& shape : sheet->shapes) {
                shapes.push_back({{"sheet", sheet->name}, {"name", shape->name}});
            }
            for (const auto& [ref, cell] : sheet->cells) {
                if (cell.formula.empty()) continue;
                const sheethost::Area area{ref.row, ref.column, ref.row, ref.column};
                cells.push_back({{"sheet", sheet->name},
                                 {"cell", sheethost::AreaAddress(area, false, false)},
                                 {"formula", cell.formula},
                                 {"value", ValueJson(sheethost::CellDisplayValue(
                                               *book, *sheet, ref.row, ref.column))}});
            }
        }
        std::cout << nlohmann::json{{"formulas", cells}, {"shapes", shapes}}.dump(1) << '\n';
    } catch (const xlsx::XlsxError& error) {
        std::cerr << argv[1] << ": " << error.what() << '\n';
        return 1;
    }
    return 0;
}
