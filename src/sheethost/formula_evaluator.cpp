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

Area AreaOf(const Reference& reference, Offset moved) {
    Area area;
    area.sheet = reference.sheet;
    const auto rowOf = [moved](const ReferenceEnd& end, int whole) {
        if (end.row == 0) return whole;
        return end.rowAbsolute ? end.row : end.row + moved.rows;
    };
    const auto columnOf = [moved](const ReferenceEnd& end, int whole) {
        if (end.column == 0) return whole;
        return end.columnAbsolute ? end.column : end.column + moved.columns;
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
            return std::vector<Area>{AreaOf(node.reference, moved_)};
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

using formula::ParseResult;
using formula::ReferenceEnd;
using formula::Token;
using formula::TokenKind;

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

// A formula's tokens written with its relative references as distances from its cell. Formulas
// copied down a table (the roll-ups of every summary row, say) differ only in their references'
// rows, so they share this form, and the tree parsed for one of them serves them all. Each token
// is written with its kind and length, so that no two token lists share a form.
std::string RelativeForm(const std::vector<Token>& tokens, int row, int column) {
    std::string form;
    const auto write = [&form](char kind, std::string_view text) {
        form += kind;
        form += std::to_string(text.size());
        form += ':';
        form += text;
    };
    const auto writeEnd = [&form, row, column](const ReferenceEnd& end) {
        form += end.rowAbsolute || end.row == 0 ? '$' : '~';
        form += std::to_string(end.rowAbsolute || end.row == 0 ? end.row : end.row - row);
        form += end.columnAbsolute || end.column == 0 ? '$' : '~';
        form += std::to_string(end.columnAbsolute || end.column == 0 ? end.column
                                                                     : end.column - column);
    };
    for (const Token& token : tokens) {
        if (token.kind != TokenKind::kReference) {
            write(static_cast<char>('a' + static_cast<int>(token.kind)), token.source);
            continue;
        }
        write('R', token.sheetPart);
        writeEnd(token.reference.first);
        if (token.reference.isRange) {
            form += ':';
            writeEnd(token.reference.last);
        }
    }
    return form;
}

// A tree and how far a formula's relative references lie from the tree's.
struct ParsedTree {
    std::shared_ptr<const ParseResult> tree;
    formula::Offset moved;
};

// A tree and the cell it was parsed for.
struct FormTree {
    std::shared_ptr<const ParseResult> tree;
    int row = 0;
    int column = 0;
};

// Formula texts, found without making a string of the one looked up.
struct TextHash : std::hash<std::string_view> {
    using is_transparent = void;
};
template <class Entry>
using ByText = std::unordered_map<std::string, Entry, TextHash, std::equal_to<>>;

// The trees of the formulas read lately. A text read again is found as it stands; a new text is
// tokenized and found by its relative form, and parsed only when that is new too. Trees are
// shared, so that forgetting them all while a formula that reads another is being evaluated
// leaves its tree alive.
ParsedTree ParsedFormula(std::string_view text, int row, int column) {
    constexpr std::size_t kKept = 512;
    thread_local ByText<ParsedTree> byText;
    thread_local ByText<FormTree> byForm;
    if (const auto found = byText.find(text); found != byText.end()) return found->second;
    if (byText.size() >= kKept) byText.clear();
    auto tokens = formula::FormulaTokens(text);
    if (!tokens) {
        static const auto refused = std::make_shared<const ParseResult>();
        return {refused, {}};
    }
    std::string form = RelativeForm(*tokens, row, column);
    auto found = byForm.find(form);
    if (found == byForm.end()) {
        if (byForm.size() >= kKept) byForm.clear();
        auto tree = std::make_shared<const ParseResult>(formula::Parse(std::move(*tokens)));
        found = byForm.emplace(std::move(form), FormTree{std::move(tree), row, column}).first;
    }
    const FormTree& shared = found->second;
    const ParsedTree parsed{shared.tree, {row - shared.row, column - shared.column}};
    byText.emplace(text, parsed);
    return parsed;
}

}  // namespace

Value EvaluateFormula(std::string_view formula, std::string_view sheet, int row, int column,
                      FormulaContext& context) {
    if (AtChainLimit()) return ErrorValue::kNum;
    const ChainLink link;
    const ParsedTree parsed = ParsedFormula(formula, row, column);
    if (!parsed.tree->root) return parsed.tree->refusal;
    formula::Evaluator evaluator(sheet, row, column, context, parsed.moved);
    Value result = evaluator.EvaluateValue(*parsed.tree->root);
    // A formula that refers to an empty cell shows 0.
    if (std::holds_alternative<Blank>(result)) return 0.0;
    return result;
}

bool AtChainLimit() {
    return chainedEvaluations >= kMaxChainedEvaluations;
}

bool IsWellFormedFormula(std::string_view formula, int row, int column) {
    return ParsedFormula(formula, row, column).tree->root != nullptr;
}

}  // namespace sheethost
