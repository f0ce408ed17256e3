#include "sheethost/formula_evaluator.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

#include "sheethost/formula_values.h"

namespace sheethost {

int FormulaContext::LastUsedRow(std::string_view) {
    return kMaxRow;
}
int FormulaContext::LastUsedColumn(std::string_view) {
    return kMaxColumn;
}

namespace formula {
namespace {

// Areas larger than this are clipped to the used part of their sheet before their cells are
// visited; smaller ones are visited as they stand, which spares the context the question.
constexpr long long kClipThreshold = 4096;

Value Arithmetic(BinaryOperator op, double left, double right) {
    switch (op) {
        case BinaryOperator::kAdd:
            return NumberResult(left + right);
        case BinaryOperator::kSubtract:
            return NumberResult(left - right);
        case BinaryOperator::kMultiply:
            return NumberResult(left * right);
        case BinaryOperator::kDivide:
            if (right == 0) return ErrorValue::kDiv0;
            return NumberResult(left / right);
        case BinaryOperator::kPower:
            if (left == 0 && right == 0) return ErrorValue::kNum;
            if (left == 0 && right < 0) return ErrorValue::kDiv0;
            return NumberResult(std::pow(left, right));
        default:
            return ErrorValue::kValue;
    }
}

bool ComparisonHolds(BinaryOperator op, int order) {
    switch (op) {
        case BinaryOperator::kEqual:
            return order == 0;
        case BinaryOperator::kNotEqual:
            return order != 0;
        case BinaryOperator::kLess:
            return order < 0;
        case BinaryOperator::kLessEqual:
            return order <= 0;
        case BinaryOperator::kGreater:
            return order > 0;
        default:
            return order >= 0;
    }
}

// The operators work outside the evaluator's recursion so that its frames, one set per tree
// level and per formula a chain of formulas passes through, stay small.
Value ApplyUnary(Node::Kind kind, const Value& operand) {
    const auto number = ToNumber(operand);
    if (number.error) return *number.error;
    return kind == Node::Kind::kNegate ? -number.value : number.value / 100;
}

Value Combine(BinaryOperator op, const Value& left, const Value& right) {
    if (op == BinaryOperator::kJoin) {
        const auto leftText = ToText(left);
        if (leftText.error) return *leftText.error;
        const auto rightText = ToText(right);
        if (rightText.error) return *rightText.error;
        return leftText.value + rightText.value;
    }
    if (op >= BinaryOperator::kEqual) {
        const auto order = Compare(left, right);
        if (order.error) return *order.error;
        return ComparisonHolds(op, order.value);
    }
    const auto leftNumber = ToNumber(left);
    if (leftNumber.error) return *leftNumber.error;
    const auto rightNumber = ToNumber(right);
    if (rightNumber.error) return *rightNumber.error;
    return Arithmetic(op, leftNumber.value, rightNumber.value);
}

// The areas of an address a defined name stands for: references joined by ",".
std::optional<std::vector<Area>> AddressAreas(std::string_view address) {
    if (!address.empty() && address.front() == '=') address.remove_prefix(1);
    const auto tokens = Tokenize(address);
    if (!tokens || tokens->empty()) return std::nullopt;
    std::vector<Area> areas;
    for (std::size_t i = 0; i < tokens->size(); i += 2) {
        if ((*tokens)[i].kind != TokenKind::kReference) return std::nullopt;
        if (i + 1 < tokens->size() && (*tokens)[i + 1].kind != TokenKind::kComma)
            return std::nullopt;
        areas.push_back(AreaOf((*tokens)[i].reference));
    }
    if (tokens->size() % 2 == 0) return std::nullopt;  // a trailing ","
    return areas;
}

}  // namespace

Area AreaOf(const Reference& reference) {
    Area area;
    area.sheet = reference.sheet;
    const auto rowOf = [](const ReferenceEnd& end, int whole) { return end.row ? end.row : whole; };
    const auto columnOf = [](const ReferenceEnd& end, int whole) {
        return end.column ? end.column : whole;
    };
    const int top = rowOf(reference.first, 1);
    const int bottom = rowOf(reference.last, kMaxRow);
    const int left = columnOf(reference.first, 1);
    const int right = columnOf(reference.last, kMaxColumn);
    area.top = std::min(top, bottom);
    area.bottom = std::max(top, bottom);
    area.left = std::min(left, right);
    area.right = std::max(left, right);
    return area;
}

Operand Evaluator::Evaluate(const Node& node) {
    switch (node.kind) {
        case Node::Kind::kNegate:
        case Node::Kind::kPercent:
            return ApplyUnary(node.kind, EvaluateValue(*node.children[0]));
        case Node::Kind::kBinary:
            return Binary(node);
        case Node::Kind::kFunction:
            if (!node.function) return Leaf(node);
            return node.function->call(*this, node.children);
        case Node::Kind::kName:
            return ResolveName(node);
        default:
            return Leaf(node);
    }
}

// The nodes that need no evaluation of their own children.
Operand Evaluator::Leaf(const Node& node) {
    switch (node.kind) {
        case Node::Kind::kConstant:
            return node.constant;
        case Node::Kind::kMissing:
            return {0.0};
        case Node::Kind::kReference:
            return std::vector<Area>{AreaOf(node.reference)};
        default:
            return {ErrorValue::kName};  // a function the host does not know
    }
}

Operand Evaluator::Binary(const Node& node) {
    // Both sides are evaluated; an error on the left wins over one on the right.
    const Value left = EvaluateValue(*node.children[0]);
    const Value right = EvaluateValue(*node.children[1]);
    return Combine(node.binary, left, right);
}

Operand Evaluator::ResolveName(const Node& node) {
    const std::string_view scope = node.reference.sheet.empty() ? sheet_ : node.reference.sheet;
    const std::string address = context_.NameAddress(scope, node.name);
    if (address.empty()) return {ErrorValue::kName};
    if (auto areas = AddressAreas(address)) return std::move(*areas);
    // A name whose cells were deleted stands for "#REF!".
    return {address.find("#REF!") != std::string::npos ? ErrorValue::kRef : ErrorValue::kName};
}

Value Evaluator::Dereference(const Operand& operand) {
    if (!operand.IsReference()) return operand.value;
    if (operand.areas.size() != 1) return ErrorValue::kValue;
    const Area& area = operand.areas.front();
    if (area.top == area.bottom && area.left == area.right) {
        return CellValue(area, area.top, area.left);
    }
    if (area.left == area.right && row_ >= area.top && row_ <= area.bottom) {
        return CellValue(area, row_, area.left);
    }
    if (area.top == area.bottom && column_ >= area.left && column_ <= area.right) {
        return CellValue(area, area.top, column_);
    }
    return ErrorValue::kValue;
}

void Evaluator::VisitCells(const std::vector<Area>& areas,
                           const std::function<bool(const Value&)>& visit) {
    for (const Area& area : areas) {
        int bottom = area.bottom;
        int right = area.right;
        const long long cells =
            static_cast<long long>(bottom - area.top + 1) * (right - area.left + 1);
        if (cells > kClipThreshold) {
            bottom = std::min(bottom, context_.LastUsedRow(area.sheet));
            right = std::min(right, context_.LastUsedColumn(area.sheet));
        }
        for (int row = area.top; row <= bottom; ++row) {
            for (int column = area.left; column <= right; ++column) {
                if (!visit(CellValue(area, row, column))) return;
            }
        }
    }
}

}  // namespace formula

namespace {

// A formula that reads a formula cell has the context evaluate that cell, which calls back here:
// a chain of formulas each reading the next nests one evaluation per link, a few hundred bytes of
// stack each. Past this depth the chain is not followed, so no thread's stack can run out.
constexpr int kMaxChainedEvaluations = 500;
thread_local int chainedEvaluations = 0;

class ChainLink {
  public:
    ChainLink() { ++chainedEvaluations; }
    ~ChainLink() { --chainedEvaluations; }
    ChainLink(const ChainLink&) = delete;
    ChainLink& operator=(const ChainLink&) = delete;
};

// The trees of the formulas parsed lately, by text: a tree depends on the text alone, and a
// command reads the same roll-up formulas again and again. Each is shared, so that forgetting
// them all while a formula that reads another is being evaluated leaves its tree alive.
std::shared_ptr<const formula::ParseResult> ParsedFormula(std::string_view text) {
    constexpr std::size_t kKept = 512;
    thread_local std::unordered_map<std::string, std::shared_ptr<const formula::ParseResult>>
        parsed;
    const std::string key(text);
    if (const auto found = parsed.find(key); found != parsed.end()) return found->second;
    if (parsed.size() >= kKept) parsed.clear();
    auto tree = std::make_shared<const formula::ParseResult>(formula::Parse(text));
    parsed.emplace(key, tree);
    return tree;
}

}  // namespace

Value EvaluateFormula(std::string_view formula, std::string_view sheet, int row, int column,
                      FormulaContext& context) {
    if (chainedEvaluations >= kMaxChainedEvaluations) return ErrorValue::kNum;
    const ChainLink link;
    const std::shared_ptr<const formula::ParseResult> parsed = ParsedFormula(formula);
    if (!parsed->root) return parsed->refusal;
    formula::Evaluator evaluator(sheet, row, column, context);
    Value result = evaluator.EvaluateValue(*parsed->root);
    // A formula that refers to an empty cell shows 0.
    if (std::holds_alternative<Blank>(result)) return 0.0;
    return result;
}

bool IsWellFormedFormula(std::string_view formula) {
    return formula::Parse(formula).root != nullptr;
}

}  // namespace sheethost
