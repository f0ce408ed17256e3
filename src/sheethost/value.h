// The value a cell holds or a formula yields.
#pragma once

#include <string>
#include <variant>

namespace sheethost {

// The spreadsheet's error values, shown as "#NULL!", "#DIV/0!", "#VALUE!", "#REF!", "#NAME?",
// "#NUM!" and "#N/A".
enum class ErrorValue { kNull, kDiv0, kValue, kRef, kName, kNum, kNA };

struct Blank {
    bool operator==(const Blank&) const = default;
};

using Value = std::variant<Blank, double, std::string, bool, ErrorValue>;

const char* ErrorText(ErrorValue error);

}  // namespace sheethost
