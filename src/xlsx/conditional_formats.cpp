#include "xlsx/conditional_formats.h"

#include <algorithm>
#include <array>
#include <climits>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "sheethost/address.h"
#include "sheethost/sheet_edit.h"
#include "xlsx/sheet_read.h"
#include "xlsx/sheet_write.h"
#include "xlsx/xlsx.h"
#include "xlsx/xml.h"

namespace xlsx {
namespace {

namespace xl = sheethost::xl;
using sheethost::Area;
using sheethost::FormatCondition;
using Conditions = std::vector<FormatCondition>;

// Comparisons 1 to 8 (between ... less or equal) as the file names them.
constexpr std::array<std::string_view, 8> kOperators{
    "between",  "notBetween",         "equal",          "notEqual", "greaterThan",
    "lessThan", "greaterThanOrEqual", "lessThanOrEqual"};

// More cells than this in one block are not spread over cells; the rule stays the file's.
constexpr long long kMaxCoveredCells = 1'000'000;

std::string WithoutEquals(const std::string& formula) {
    return formula.starts_with('=') ? formula.substr(1) : formula;
}

std::optional<FormatCondition> ReadRule(pugi::xml_node rule, const StyleSheet& styles) {
    const std::string_view type = rule.attribute("type").value();
    FormatCondition condition;
    const std::vector<pugi::xml_node> formulas = Children(rule, "formula");
    if (formulas.empty()) return std::nullopt;
    if (type == "cellIs") {
        condition.type = xl::kCellValue;
        const std::string_view name = rule.attribute("operator").as_string("between");
        const auto found = std::find(kOperators.begin(), kOperators.end(), name);
        if (found == kOperators.end()) return std::nullopt;
        condition.comparison = static_cast<int>(found - kOperators.begin()) + 1;
    } else if (type == "expression") {
        condition.type = xl::kExpression;
    } else {
        return std::nullopt;
    }
    condition.formula1 = "=" + std::string(formulas[0].text().get());
    if (formulas.size() > 1) condition.formula2 = "=" + std::string(formulas[1].text().get());
    if (auto dxf = rule.attribute("dxfId")) {
        const StyleSheet::Differential look = styles.DifferentialAt(dxf.as_int());
        condition.fontColorIndex = look.fontColorIndex;
        condition.interiorColorIndex = look.interiorColorIndex;
    }
    return condition;
}

// The element's rules, when the host models every one of them.
std::optional<Conditions> ReadRules(pugi::xml_node element, const StyleSheet& styles) {
    std::vector<std::pair<int, FormatCondition>> byPriority;
    for (pugi::xml_node rule : Children(element, "cfRule")) {
        auto condition = ReadRule(rule, styles);
        if (!condition) return std::nullopt;
        byPriority.emplace_back(rule.attribute("priority").as_int(), std::move(*condition));
    }
    std::stable_sort(byPriority.begin(), byPriority.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    Conditions conditions;
    for (auto& [priority, condition] : byPriority) conditions.push_back(std::move(condition));
    return conditions;
}

std::optional<std::vector<Area>> ReadAreas(pugi::xml_node element) {
    auto areas = ParseSqref(element.attribute("sqref").value());
    if (!areas || areas->empty()) return std::nullopt;
    for (const Area& area : *areas) {
        const bool whole = area.WholeRows() || area.WholeColumns();
        if (!whole && static_cast<long long>(area.Rows()) * area.Columns() > kMaxCoveredCells) {
            return std::nullopt;
        }
    }
    return areas;
}

bool Modelled(pugi::xml_node element, const StyleSheet& styles) {
    return ReadRules(element, styles) && ReadAreas(element);
}

// Lists of conditions with what they cover, in the order first met; there are few lists.
class ConditionGroups {
  public:
    std::vector<Area>& operator[](const Conditions& conditions) {
        for (auto& [known, areas] : groups_) {
            if (known == conditions) return areas;
        }
        return groups_.emplace_back(conditions, std::vector<Area>{}).second;
    }
    auto begin() { return groups_.begin(); }
    auto end() { return groups_.end(); }

  private:
    std::vector<std::pair<Conditions, std::vector<Area>>> groups_;
};

// The blocks of cells (and whole rows and columns) that share one list of conditions: runs
// along each row, then equal runs of consecutive rows joined.
ConditionGroups GroupConditions(const sheethost::Sheet& sheet) {
    ConditionGroups groups;
    for (const auto& [column, info] : sheet.columns) {
        if (info.style && !(*info.style)->conditions.empty()) {
            groups[(*info.style)->conditions].push_back(
                Area{1, column, sheethost::kMaxRow, column});
        }
    }
    for (const auto& [row, info] : sheet.rows) {
        if (info.style && !(*info.style)->conditions.empty()) {
            groups[(*info.style)->conditions].push_back(Area{row, 1, row, sheethost::kMaxColumn});
        }
    }
    ConditionGroups runs;
    for (const auto& [ref, cell] : sheet.cells) {
        if (cell.style->conditions.empty()) continue;
        auto& list = runs[cell.style->conditions];
        if (!list.empty() && list.back().top == ref.row && list.back().right + 1 == ref.column) {
            ++list.back().right;
        } else {
            list.push_back(Area{ref.row, ref.column, ref.row, ref.column});
        }
    }
    for (auto& [conditions, list] : runs) {
        std::vector<Area>& blocks = groups[conditions];
        std::map<std::pair<int, int>, std::size_t> openBlock;  // (left, right) -> index in blocks
        for (const Area& run : list) {
            const auto found = openBlock.find({run.left, run.right});
            if (found != openBlock.end() && blocks[found->second].bottom + 1 == run.top) {
                blocks[found->second].bottom = run.top;
                continue;
            }
            openBlock[{run.left, run.right}] = blocks.size();
            blocks.push_back(run);
        }
    }
    return groups;
}

}  // namespace

void ReadConditionalFormats(pugi::xml_node worksheet, const StyleSheet& styles,
                            sheethost::Sheet& sheet) {
    for (pugi::xml_node element : Children(worksheet, "conditionalFormatting")) {
        const auto conditions = ReadRules(element, styles);
        const auto areas = ReadAreas(element);
        if (!conditions || !areas) continue;
        if (sheethost::CellsStyledBy(sheet, *areas) > sheethost::kMostCellsStyledAtOnce) {
            throw XlsxError("the sheet \"" + sheet.name +
                            "\" has a conditional format over more cells than the host holds");
        }
        sheethost::ChangeStyle(sheet, *areas, [&](sheethost::Style& style) {
            style.conditions.insert(style.conditions.end(), conditions->begin(), conditions->end());
        });
    }
}

void WriteConditionalFormats(pugi::xml_node worksheet, StyleSheet& styles,
                             const sheethost::Sheet& sheet) {
    // The host's rules come after the rules kept. A kept priority may already be the largest a
    // file can hold; the rules after it then share it.
    const auto after = [](int priority) { return priority < INT_MAX ? priority + 1 : priority; };
    int priority = 1;
    for (pugi::xml_node element : Children(worksheet, "conditionalFormatting")) {
        if (Modelled(element, styles)) {
            worksheet.remove_child(element);
            continue;
        }
        for (pugi::xml_node rule : Children(element, "cfRule")) {
            priority = std::max(priority, after(rule.attribute("priority").as_int()));
        }
    }
    for (const auto& [conditions, areas] : GroupConditions(sheet)) {
        pugi::xml_node element = InsertInOrder(worksheet, "conditionalFormatting", kWorksheetOrder);
        element.append_attribute("sqref").set_value(SqrefText(areas).c_str());
        for (const FormatCondition& condition : conditions) {
            pugi::xml_node rule = element.append_child(QualifiedName(element, "cfRule").c_str());
            const bool value = condition.type == xl::kCellValue;
            rule.append_attribute("type").set_value(value ? "cellIs" : "expression");
            rule.append_attribute("dxfId").set_value(
                styles.DifferentialIndex({condition.fontColorIndex, condition.interiorColorIndex}));
            rule.append_attribute("priority").set_value(priority);
            priority = after(priority);
            if (value) {
                rule.append_attribute("operator")
                    .set_value(
                        std::string(kOperators[static_cast<std::size_t>(condition.comparison - 1)])
                            .c_str());
            }
            for (const std::string* formula : {&condition.formula1, &condition.formula2}) {
                if (formula->empty()) continue;
                rule.append_child(QualifiedName(rule, "formula").c_str())
                    .text()
                    .set(WithoutEquals(*formula).c_str());
            }
        }
    }
}

}  // namespace xlsx
