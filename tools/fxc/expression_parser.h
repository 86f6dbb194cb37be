#pragma once
#include "tools/fxc/cursor.h"
#include "tools/fxc/effect_syntax.h"

namespace sparkrig::fxc {

/// A value of one or more components: numbers, or, when parameters take part, the steps that compute it.
struct Expression {
    Token start;
    std::vector<double> values;          // of a constant
    std::vector<ExpressionStep> steps;   // of anything else

    bool IsConstant() const { return steps.empty(); }
};

/// Takes sums, products, constructors, swizzles and names. What is not an expression is reported.
Expression ParseExpression(Cursor& cursor, const ParsedEffect& effect);

/// Constants and lists of them in braces, one after the other.
std::vector<double> ParseConstants(Cursor& cursor, const ParsedEffect& effect);

/// The steps of any expression, as the compiled form keeps them.
std::vector<ExpressionStep> StepsOf(const Expression& expression);

}   // namespace sparkrig::fxc
