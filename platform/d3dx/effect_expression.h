// The expressions that states of a pass take their values from, in postfix order.
#pragma once
#include <span>

#include "platform/d3dx/effect_file.h"

namespace sparkrig {

using ExpressionValue = std::array<float, 4>;

/// The first four components of a numeric variable's `words`, as floats; a scalar stands in all four.
ExpressionValue LoadVariable(const EffectVariable& variable, std::span<const DWORD> words);

/// One step's result for its operands; a step of one operand takes `left`.
ExpressionValue ApplyStep(const ExpressionStep& step, const ExpressionValue& left, const ExpressionValue& right);

/// How many operands a step takes.
int OperandCount(ExpressionCode code);

/// The value that a checked expression leaves. `load(parameter)` gives the value of a parameter.
template <class Load>
ExpressionValue EvaluateExpression(std::span<const ExpressionStep> steps, const Load& load) {
    std::array<ExpressionValue, kExpressionDepth> stack;
    std::size_t depth = 0;
    for (const ExpressionStep& step : steps) {
        if (step.code == ExpressionCode::Constant) {
            stack[depth++] = step.constant;
        } else if (step.code == ExpressionCode::Parameter) {
            stack[depth++] = load(step.parameter);
        } else {
            const ExpressionValue right = stack[depth - 1];
            depth -= static_cast<std::size_t>(OperandCount(step.code));
            stack[depth] = ApplyStep(step, stack[depth], right);
            ++depth;
        }
    }
    return stack[0];
}

}   // namespace sparkrig
