// The one evaluator of constants: initial values, sizes of arrays, states.
#pragma once
#include "tools/fxc/cursor.h"
#include "tools/fxc/effect_syntax.h"
#include "tools/fxc/state_table.h"

namespace sparkrig::fxc {

/// A value of one or more components: numbers, or, when parameters take part, the steps that compute it.
struct Expression {
    Token start;
    Constant constant;
    std::vector<ExpressionStep> steps;   // of anything that is no constant

    bool IsConstant() const { return steps.empty(); }
    const std::vector<double>& Values() const { return constant.values; }
};

/// Parameters are read whenever a pass begins, or stand for their initial values.
enum class Parameters { AtRunTime, Known };

/// Takes all operators, constructors, intrinsic functions, swizzles, elements and names; with a state, the names of its
/// values too. What is not an expression is reported.
Expression ParseExpression(Cursor& cursor, const ParsedEffect& effect, Parameters parameters,
                           const StateRow* state = nullptr);
/// The same without operators between operands, as "<name>" holds one.
Expression ParseOperand(Cursor& cursor, const ParsedEffect& effect, Parameters parameters);

/// The numbers of an initial value: one expression, or lists in braces, flat or nested.
Constant ParseConstant(Cursor& cursor, const ParsedEffect& effect);

/// The steps of any expression, as the compiled form keeps them.
std::vector<ExpressionStep> StepsOf(const Expression& expression);

}   // namespace sparkrig::fxc
