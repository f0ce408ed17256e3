#include "sheethost/formula_parser.h"

#include <algorithm>
#include <array>
#include <utility>

#include "sheethost/formula_evaluator.h"

namespace sheethost::formula {
namespace {

// The evaluator recurses once per tree level, and the parser a few times per parenthesis or
// function level; these bounds keep both far inside the stack of any thread.
constexpr int kMaxHeight = 1000;
constexpr int kMaxNesting = 100;
// The longest formula the spreadsheet accepts, in characters.
constexpr std::size_t kMaxLength = 8192;

struct BinarySpelling {
    std::string_view text;
    BinaryOperator op;
    int level;  // 0 binds loosest
};

constexpr std::array<BinarySpelling, 12> kBinaryOperators{{
    {"=", BinaryOperator::kEqual, 0},
    {"<>", BinaryOperator::kNotEqual, 0},
    {"<", BinaryOperator::kLess, 0},
    {"<=", BinaryOperator::kLessEqual, 0},
    {">", BinaryOperator::kGreater, 0},
    {">=", BinaryOperator::kGreaterEqual, 0},
    {"&", BinaryOperator::kJoin, 1},
    {"+", BinaryOperator::kAdd, 2},
    {"-", BinaryOperator::kSubtract, 2},
    {"*", BinaryOperator::kMultiply, 3},
    {"/", BinaryOperator::kDivide, 3},
    {"^", BinaryOperator::kPower, 4},
}};
constexpr int kLevelCount = 5;

class Parser {
  public:
    explicit Parser(std::vector<Token> tokens) : tokens_(std::move(tokens)) {}

    ParseResult Run() {
        auto root = Expression();
        if (root && pos_ != tokens_.size()) root.reset();
        if (!root) return {nullptr, refusal_};
        return {std::move(root), ErrorValue::kName};
    }

  private:
    using NodePtr = std::unique_ptr<Node>;

    const Token* Peek() const { return pos_ < tokens_.size() ? &tokens_[pos_] : nullptr; }

    bool PeekKind(TokenKind kind) const { return Peek() && Peek()->kind == kind; }

    bool PeekOperator(std::string_view op) const {
        return PeekKind(TokenKind::kOperator) && Peek()->text == op;
    }

    // A node over `children`; null when the tree grows deeper than the evaluator may recurse.
    NodePtr Make(Node::Kind kind, std::vector<NodePtr> children = {}) {
        auto node = std::make_unique<Node>();
        node->kind = kind;
        for (const auto& child : children) node->height = std::max(node->height, child->height + 1);
        node->children = std::move(children);
        if (node->height > kMaxHeight) return nullptr;
        return node;
    }

    NodePtr Expression() {
        if (++nesting_ > kMaxNesting) return nullptr;
        auto node = Level(0);
        --nesting_;
        return node;
    }

    // The operand of a binary operator is parsed one level tighter; the loop makes each level
    // group from the left.
    NodePtr Level(int level) {
        if (level == kLevelCount) return Postfix();
        auto left = Level(level + 1);
        while (left && PeekKind(TokenKind::kOperator)) {
            const auto* spelling = std::find_if(
                kBinaryOperators.begin(), kBinaryOperators.end(), [&](const BinarySpelling& entry) {
                    return entry.level == level && entry.text == Peek()->text;
                });
            if (spelling == kBinaryOperators.end()) break;
            ++pos_;
            auto right = Level(level + 1);
            if (!right) return nullptr;
            std::vector<NodePtr> operands;
            operands.push_back(std::move(left));
            operands.push_back(std::move(right));
            left = Make(Node::Kind::kBinary, std::move(operands));
            if (left) left->binary = spelling->op;
        }
        return left;
    }

    NodePtr Postfix() {
        auto node = Prefix();
        while (node && PeekOperator("%")) {
            ++pos_;
            std::vector<NodePtr> operand;
            operand.push_back(std::move(node));
            node = Make(Node::Kind::kPercent, std::move(operand));
        }
        return node;
    }

    NodePtr Prefix() {
        if (!PeekOperator("-") && !PeekOperator("+")) return Primary();
        const bool negate = Peek()->text == "-";
        ++pos_;
        if (++nesting_ > kMaxNesting) return nullptr;
        auto operand = Prefix();
        --nesting_;
        if (!operand || !negate) return operand;  // a unary plus changes nothing
        std::vector<NodePtr> children;
        children.push_back(std::move(operand));
        return Make(Node::Kind::kNegate, std::move(children));
    }

    NodePtr Primary() {
        const Token* token = Peek();
        if (!token) return nullptr;
        ++pos_;
        switch (token->kind) {
            case TokenKind::kNumber:
                return Constant(token->number);
            case TokenKind::kText:
                return Constant(token->text);
            case TokenKind::kBoolean:
                return Constant(token->boolean);
            case TokenKind::kError:
                return Constant(token->error);
            case TokenKind::kReference: {
                auto node = Make(Node::Kind::kReference);
                node->reference = token->reference;
                return node;
            }
            case TokenKind::kName: {
                auto node = Make(Node::Kind::kName);
                node->name = token->text;
                node->reference.sheet = token->reference.sheet;
                return node;
            }
            case TokenKind::kFunction:
                return Function(token->text);
            case TokenKind::kOpenParen: {
                auto inner = Expression();
                if (!inner || !PeekKind(TokenKind::kCloseParen)) return nullptr;
                ++pos_;
                return inner;
            }
            default:
                return nullptr;
        }
    }

    NodePtr Constant(Value value) {
        auto node = Make(Node::Kind::kConstant);
        node->constant = std::move(value);
        return node;
    }

    // After the function name: "(" arguments ")". An argument may be left empty ("IF(A1,,2)").
    NodePtr Function(const std::string& name) {
        if (!PeekKind(TokenKind::kOpenParen) || ++nesting_ > kMaxNesting) return nullptr;
        ++pos_;
        std::vector<NodePtr> arguments;
        if (PeekKind(TokenKind::kCloseParen)) {
            ++pos_;
        } else {
            for (;;) {
                auto argument = (PeekKind(TokenKind::kComma) || PeekKind(TokenKind::kCloseParen))
                                    ? Make(Node::Kind::kMissing)
                                    : Level(0);
                if (!argument) return nullptr;
                arguments.push_back(std::move(argument));
                if (PeekKind(TokenKind::kCloseParen)) {
                    ++pos_;
                    break;
                }
                if (!PeekKind(TokenKind::kComma)) return nullptr;
                ++pos_;
            }
        }
        --nesting_;
        const FunctionInfo* function = FindFunction(name);
        const int count = static_cast<int>(arguments.size());
        if (function && (count < function->minArguments || count > function->maxArguments)) {
            refusal_ = ErrorValue::kValue;
            return nullptr;
        }
        auto node = Make(Node::Kind::kFunction, std::move(arguments));
        if (node) node->function = function;
        return node;
    }

    std::vector<Token> tokens_;
    std::size_t pos_ = 0;
    int nesting_ = 0;
    ErrorValue refusal_ = ErrorValue::kName;
};

}  // namespace

std::optional<std::vector<Token>> FormulaTokens(std::string_view formula) {
    if (formula.empty() || formula.front() != '=' || formula.size() > kMaxLength) {
        return std::nullopt;
    }
    auto tokens = Tokenize(formula.substr(1));
    if (!tokens || tokens->empty()) return std::nullopt;
    return tokens;
}

ParseResult Parse(std::vector<Token> tokens) {
    return Parser(std::move(tokens)).Run();
}

ParseResult Parse(std::string_view formula) {
    auto tokens = FormulaTokens(formula);
    if (!tokens) return {nullptr, ErrorValue::kName};
    return Parse(std::move(*tokens));
}

}  // namespace sheethost::formula
