// A workbook reduced to what formulas ask of it: cells by sheet, row and column, some holding
// formulas (evaluated on demand, a cycle giving #REF!), and defined names.
#pragma once

#include <map>
#include <ostream>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "sheethost/formula.h"

namespace sheethost::testing {

class FakeWorkbook : public FormulaContext {
  public:
    // `address` is "B3" (on Sheet1) or "Other Sheet!B3".
    void Put(std::string_view address, Value value) {
        cells_[Key(address)].value = std::move(value);
    }
    void PutFormula(std::string_view address, std::string formula) {
        cells_[Key(address)].formula = std::move(formula);
    }
    void Name(std::string name, std::string address) { names_[name] = std::move(address); }

    // Evaluates `formula` as if it stood in `address`.
    Value Eval(std::string_view formula, std::string_view address = "A1") {
        const CellKey key = Key(address);
        sheets_.push_back(std::get<0>(key));
        Value value =
            EvaluateFormula(formula, std::get<0>(key), std::get<1>(key), std::get<2>(key), *this);
        sheets_.pop_back();
        return value;
    }

    Value CellValue(std::string_view sheet, int row, int column) override {
        ++cellReads;
        const CellKey key{std::string(sheet.empty() ? std::string_view(sheets_.back()) : sheet),
                          row, column};
        const auto found = cells_.find(key);
        if (found == cells_.end()) return Blank{};
        if (found->second.formula.empty()) return found->second.value;
        if (!evaluating_.insert(key).second) return ErrorValue::kRef;
        sheets_.push_back(std::get<0>(key));
        Value value = EvaluateFormula(found->second.formula, std::get<0>(key), row, column, *this);
        sheets_.pop_back();
        evaluating_.erase(key);
        return value;
    }

    std::string NameAddress(std::string_view sheet, std::string_view name) override {
        lastNameScope = sheet;
        const auto found = names_.find(std::string(name));
        return found == names_.end() ? std::string() : found->second;
    }

    int LastUsedRow(std::string_view sheet) override {
        int last = 0;
        for (const auto& [key, cell] : cells_) {
            if (std::get<0>(key) == Own(sheet)) last = std::max(last, std::get<1>(key));
        }
        return last;
    }

    int LastUsedColumn(std::string_view sheet) override {
        int last = 0;
        for (const auto& [key, cell] : cells_) {
            if (std::get<0>(key) == Own(sheet)) last = std::max(last, std::get<2>(key));
        }
        return last;
    }

    int cellReads = 0;
    std::string lastNameScope;

  private:
    using CellKey = std::tuple<std::string, int, int>;
    struct Entry {
        Value value;
        std::string formula;
    };

    std::string Own(std::string_view sheet) const {
        return std::string(sheet.empty() ? std::string_view(sheets_.back()) : sheet);
    }

    static CellKey Key(std::string_view address) {
        std::string sheet = "Sheet1";
        if (const auto bang = address.rfind('!'); bang != std::string_view::npos) {
            sheet = address.substr(0, bang);
            address.remove_prefix(bang + 1);
        }
        const auto digits = address.find_first_of("0123456789");
        return {sheet, std::stoi(std::string(address.substr(digits))),
                ColumnNumber(address.substr(0, digits))};
    }

    std::map<CellKey, Entry> cells_;
    std::map<std::string, std::string> names_;
    std::set<CellKey> evaluating_;
    std::vector<std::string> sheets_;
};

}  // namespace sheethost::testing

namespace sheethost {
// Readable test failures for the value alternatives.
inline void PrintTo(const Blank&, std::ostream* out) {
    *out << "(blank)";
}
inline void PrintTo(ErrorValue error, std::ostream* out) {
    *out << ErrorText(error);
}
}  // namespace sheethost
