// Evaluates a parsed formula for one cell. An operand is either a value or a reference; the
// functions that treat cells of a reference differently from values written in the formula (SUM
// skips text in a range but refuses text given directly) look at which one they received.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "sheethost/formula.h"
#include "sheethost/formula_parser.h"

namespace sheethost::formula {

// A block of cells; `sheet` empty = the formula's own sheet.
struct Area {
    std::string sheet;
    int top = 1;
    int left = 1;
    int bottom = 1;
    int right = 1;
};

struct Operand {
    Operand(Value result) : value(std::move(result)) {}
    Operand(std::vector<Area> reference) : areas(std::move(reference)) {}

    Value value;              // when `areas` is empty
    std::vector<Area> areas;  // a reference (several areas for a name such as "B3:B9,H3:I9")

    bool IsReference() const { return !areas.empty(); }
};

// How far a tree's relative references move: a tree parsed for one cell serves every cell whose
// formula is the same but for relative references that keep their distance.
struct Offset {
    int rows = 0;
    int columns = 0;
};

class Evaluator {
  public:
    Evaluator(std::string_view sheet, int row, int column, FormulaContext& context,
              Offset moved = {})
        : sheet_(sheet), row_(row), column_(column), moved_(moved), context_(context) {}

    Operand Evaluate(const Node& node);

    // The one value an operand stands for. A reference to one cell gives that cell; a block one
    // column wide gives its cell in the formula's row, one row high its cell in the formula's
    // column; any other reference is #VALUE!.
    Value Dereference(const Operand& operand);
    Value EvaluateValue(const Node& node) { return Dereference(Evaluate(node)); }

    Value CellValue(const Area& area, int row, int column) {
        return context_.CellValue(area.sheet, row, column);
    }

    // Calls `visit` with every cell of the areas, row by row, until it returns false. Large areas
    // (whole rows or columns) stop at the used part of their sheet.
    void VisitCells(const std::vector<Area>& areas, const std::function<bool(const Value&)>& visit);

  private:
    Operand Leaf(const Node& node);
    Operand Binary(const Node& node);
    Operand ResolveName(const Node& node);

    std::string_view sheet_;
    int row_;
    int column_;
    Offset moved_;  // from the cell the tree was parsed for to this one
    FormulaContext& context_;
};

using Arguments = std::span<const std::unique_ptr<Node>>;

struct FunctionInfo {
    std::string_view name;
    int minArguments;
    int maxArguments;
    // The arguments come unevaluated, so IF evaluates only the branch it takes.
    Operand (*call)(Evaluator& evaluator, Arguments arguments);
};

// The built-in function of that upper-case name, null when the host does not know it.
const FunctionInfo* FindFunction(std::string_view name);

// The area a written reference covers, whole rows and columns reaching the sheet's edges.
Area AreaOf(const Reference& reference, Offset moved = {});

}  // namespace sheethost::formula
