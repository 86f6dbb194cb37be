// The arithmetic of states and initial values: one set of operations, for fxc while it compiles an effect and for the
// passes that depend on parameters.
#pragma once
#include <algorithm>
#include <span>

#include "platform/d3dx/effect_file.h"

namespace sparkrig {

using ExpressionValue = std::array<float, 4>;

/// Up to four components of a numeric variable's `words` from `first` on, as floats; a scalar stands in all four.
ExpressionValue LoadVariable(const EffectVariable& variable, std::span<const DWORD> words);
/// The element that an Element step picks; outside of the variable, all zero.
ExpressionValue LoadElement(const EffectVariable& variable, std::span<const DWORD> words, float index);

/// How many operands a step takes, 0 to 3.
int OperandCount(ExpressionCode code);

/// One component of an operation. Divisions by zero and functions outside of their domain give 0.
double Compute(ExpressionCode code, double a, double b, double c);

/// One step's result for its operands; further ones than it takes do not count.
ExpressionValue ApplyStep(const ExpressionStep& step, const ExpressionValue& a, const ExpressionValue& b,
                          const ExpressionValue& c);

/// The value that a checked expression leaves. `load(parameter)` gives the value of a parameter, `element(parameter,
/// index)` that of one of its elements.
template <class Load, class Element>
ExpressionValue EvaluateExpression(std::span<const ExpressionStep> steps, const Load& load, const Element& element) {
    std::array<ExpressionValue, kExpressionDepth> stack = {};
    std::size_t depth = 0;
    for (const ExpressionStep& step : steps) {
        depth -= static_cast<std::size_t>(OperandCount(step.code));
        ExpressionValue& top = stack[depth];
        switch (step.code) {
            case ExpressionCode::Constant: top = step.constant; break;
            case ExpressionCode::Parameter: top = load(step.parameter); break;
            case ExpressionCode::Element: top = element(step.parameter, top[0]); break;
            default:
                top = ApplyStep(step, top, stack[std::min<std::size_t>(depth + 1, kExpressionDepth - 1)],
                                stack[std::min<std::size_t>(depth + 2, kExpressionDepth - 1)]);
        }
        ++depth;
    }
    return stack[0];
}

}   // namespace sparkrig
