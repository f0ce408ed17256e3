// The built-in functions. They follow the spreadsheet's two rules for arguments: cells reached
// through a reference count only when they hold the function's own type (SUM skips text and
// booleans in a range), while a value written in the formula is coerced and refused when it cannot
// be (SUM("x") is #VALUE!). Errors propagate from either.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <optional>

#include "sheethost/formula_evaluator.h"
#include "sheethost/formula_values.h"

namespace sheethost::formula {
namespace {

constexpr int kAny = 255;  // the spreadsheet's limit on the number of arguments

// Calls `add` with every number the arguments contribute; the first error found stops the walk
// and is returned.
std::optional<ErrorValue> CollectNumbers(Evaluator& evaluator, Arguments arguments,
                                         const std::function<void(double)>& add) {
    std::optional<ErrorValue> error;
    for (const auto& argument : arguments) {
        const Operand operand = evaluator.Evaluate(*argument);
        if (operand.IsReference()) {
            evaluator.VisitCells(operand.areas, [&](const Value& value) {
                if (const auto* number = std::get_if<double>(&value)) add(*number);
                error = ErrorOf(value);
                return !error;
            });
        } else {
            const auto number = ToNumber(operand.value);
            error = number.error;
            if (!error) add(number.value);
        }
        if (error) return error;
    }
    return std::nullopt;
}

Operand Sum(Evaluator& evaluator, Arguments arguments) {
    double sum = 0;
    if (const auto error = CollectNumbers(evaluator, arguments, [&](double n) { sum += n; }))
        return {*error};
    return {NumberResult(sum)};
}

template <typename Better>
Operand Extreme(Evaluator& evaluator, Arguments arguments, Better better) {
    std::optional<double> best;
    const auto error = CollectNumbers(evaluator, arguments, [&](double n) {
        if (!best || better(n, *best)) best = n;
    });
    if (error) return {*error};
    return {best.value_or(0.0)};  // nothing numeric gives 0
}

Operand Min(Evaluator& evaluator, Arguments arguments) {
    return Extreme(evaluator, arguments, [](double a, double b) { return a < b; });
}

Operand Max(Evaluator& evaluator, Arguments arguments) {
    return Extreme(evaluator, arguments, [](double a, double b) { return a > b; });
}

Operand Average(Evaluator& evaluator, Arguments arguments) {
    double sum = 0;
    int count = 0;
    const auto error = CollectNumbers(evaluator, arguments, [&](double n) {
        sum += n;
        ++count;
    });
    if (error) return {*error};
    if (count == 0) return {ErrorValue::kDiv0};
    return {NumberResult(sum / count)};
}

// COUNT counts numbers (errors and text in ranges are not counted, never refused); COUNTA counts
// every cell that is not empty and every value written.
template <bool kAnyValue>
Operand Count(Evaluator& evaluator, Arguments arguments) {
    double count = 0;
    for (const auto& argument : arguments) {
        const Operand operand = evaluator.Evaluate(*argument);
        if (operand.IsReference()) {
            evaluator.VisitCells(operand.areas, [&](const Value& value) {
                if (kAnyValue ? !std::holds_alternative<Blank>(value)
                              : std::holds_alternative<double>(value))
                    ++count;
                return true;
            });
        } else if (kAnyValue || !ToNumber(operand.value).error) {
            ++count;
        }
    }
    return {count};
}

// OR and AND: booleans and numbers count, text and blanks in ranges are skipped; no logical
// value at all is #VALUE!.
template <bool kIsOr>
Operand Logical(Evaluator& evaluator, Arguments arguments) {
    std::optional<bool> result;
    std::optional<ErrorValue> error;
    const auto add = [&](bool value) {
        result = kIsOr ? (result.value_or(false) || value) : (result.value_or(true) && value);
    };
    for (const auto& argument : arguments) {
        const Operand operand = evaluator.Evaluate(*argument);
        if (operand.IsReference()) {
            evaluator.VisitCells(operand.areas, [&](const Value& value) {
                if (const auto* boolean = std::get_if<bool>(&value)) add(*boolean);
                if (const auto* number = std::get_if<double>(&value)) add(*number != 0);
                error = ErrorOf(value);
                return !error;
            });
        } else {
            const auto boolean = ToBoolean(operand.value);
            error = boolean.error;
            if (!error) add(boolean.value);
        }
        if (error) return {*error};
    }
    if (!result) return {ErrorValue::kValue};
    return {*result};
}

Operand Not(Evaluator& evaluator, Arguments arguments) {
    const auto boolean = ToBoolean(evaluator.EvaluateValue(*arguments[0]));
    if (boolean.error) return {*boolean.error};
    return {!boolean.value};
}

Operand If(Evaluator& evaluator, Arguments arguments) {
    const auto condition = ToBoolean(evaluator.EvaluateValue(*arguments[0]));
    if (condition.error) return {*condition.error};
    // Only the branch taken is evaluated; an omitted else-branch yields FALSE.
    if (condition.value) return evaluator.Evaluate(*arguments[1]);
    if (arguments.size() < 3) return {false};
    return evaluator.Evaluate(*arguments[2]);
}

Operand IfError(Evaluator& evaluator, Arguments arguments) {
    const Value value = evaluator.EvaluateValue(*arguments[0]);
    if (ErrorOf(value)) return evaluator.Evaluate(*arguments[1]);
    return {value};
}

Operand IsError(Evaluator& evaluator, Arguments arguments) {
    return {ErrorOf(evaluator.EvaluateValue(*arguments[0])).has_value()};
}

Operand IsBlank(Evaluator& evaluator, Arguments arguments) {
    return {std::holds_alternative<Blank>(evaluator.EvaluateValue(*arguments[0]))};
}

// N: numbers stay, TRUE is 1, errors propagate, everything else (text too) is 0. A reference
// gives its first cell.
Operand N(Evaluator& evaluator, Arguments arguments) {
    const Operand operand = evaluator.Evaluate(*arguments[0]);
    Value value = operand.value;
    if (operand.IsReference()) {
        const Area& first = operand.areas.front();
        value = evaluator.CellValue(first, first.top, first.left);
    }
    if (const auto* number = std::get_if<double>(&value)) return {*number};
    if (const auto* boolean = std::get_if<bool>(&value)) return {*boolean ? 1.0 : 0.0};
    if (const auto error = ErrorOf(value)) return {*error};
    return {0.0};
}

template <double (*kApply)(double)>
Operand Numeric(Evaluator& evaluator, Arguments arguments) {
    const auto number = ToNumber(evaluator.EvaluateValue(*arguments[0]));
    if (number.error) return {*number.error};
    return {NumberResult(kApply(number.value))};
}

double Absolute(double value) {
    return std::fabs(value);
}
double WholePart(double value) {
    return std::floor(value);
}

// ROUND works on the number as the spreadsheet shows it (15 significant digits), so 2.675 rounds
// to 2.68 although its binary value lies just below; halves round away from zero.
Operand Round(Evaluator& evaluator, Arguments arguments) {
    const auto number = ToNumber(evaluator.EvaluateValue(*arguments[0]));
    if (number.error) return {*number.error};
    const auto digits = ToNumber(evaluator.EvaluateValue(*arguments[1]));
    if (digits.error) return {*digits.error};
    const double places = std::trunc(digits.value);
    if (std::fabs(places) > 308) return {ErrorValue::kNum};
    const double scale = std::pow(10.0, std::fabs(places));
    const double scaled = places >= 0 ? number.value * scale : number.value / scale;
    std::array<char, 40> shown{};
    std::snprintf(shown.data(), shown.size(), "%.15g", scaled);
    const double rounded = std::round(std::strtod(shown.data(), nullptr));
    return {NumberResult(places >= 0 ? rounded / scale : rounded * scale)};
}

constexpr std::array<FunctionInfo, 17> kFunctions{{
    {"ABS", 1, 1, Numeric<Absolute>},
    {"AND", 1, kAny, Logical<false>},
    {"AVERAGE", 1, kAny, Average},
    {"COUNT", 1, kAny, Count<false>},
    {"COUNTA", 1, kAny, Count<true>},
    {"IF", 2, 3, If},
    {"IFERROR", 2, 2, IfError},
    {"INT", 1, 1, Numeric<WholePart>},
    {"ISBLANK", 1, 1, IsBlank},
    {"ISERROR", 1, 1, IsError},
    {"MAX", 1, kAny, Max},
    {"MIN", 1, kAny, Min},
    {"N", 1, 1, N},
    {"NOT", 1, 1, Not},
    {"OR", 1, kAny, Logical<true>},
    {"ROUND", 2, 2, Round},
    {"SUM", 1, kAny, Sum},
}};

}  // namespace

const FunctionInfo* FindFunction(std::string_view name) {
    const auto* found = std::find_if(kFunctions.begin(), kFunctions.end(),
                                     [&](const FunctionInfo& info) { return info.name == name; });
    return found == kFunctions.end() ? nullptr : found;
}

}  // namespace sheethost::formula
