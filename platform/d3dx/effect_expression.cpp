#include "platform/d3dx/effect_expression.h"

#include <bit>

namespace sparkrig {

ExpressionValue LoadVariable(const EffectVariable& variable, std::span<const DWORD> words) {
    ExpressionValue value = {};
    for (std::size_t i = 0; i < value.size(); ++i) {
        const std::size_t source = variable.kind == VariableClass::Scalar ? 0 : i;
        if (source >= words.size()) break;
        value[i] = variable.number == NumberType::Float ? std::bit_cast<float>(words[source])
                                                        : static_cast<float>(static_cast<std::int32_t>(words[source]));
    }
    return value;
}

int OperandCount(ExpressionCode code) {
    switch (code) {
        case ExpressionCode::Constant:
        case ExpressionCode::Parameter: return 0;
        case ExpressionCode::Negate:
        case ExpressionCode::Swizzle: return 1;
        default: return 2;
    }
}

namespace {

float Combine(ExpressionCode code, float left, float right) {
    switch (code) {
        case ExpressionCode::Add: return left + right;
        case ExpressionCode::Subtract: return left - right;
        case ExpressionCode::Multiply: return left * right;
        case ExpressionCode::Divide: return right == 0 ? 0 : left / right;
        default: return -left;
    }
}

}   // namespace

ExpressionValue ApplyStep(const ExpressionStep& step, const ExpressionValue& left, const ExpressionValue& right) {
    ExpressionValue result;
    for (std::size_t i = 0; i < result.size(); ++i)
        result[i] =
            step.code == ExpressionCode::Swizzle ? left[step.swizzle[i]] : Combine(step.code, left[i], right[i]);
    return result;
}

}   // namespace sparkrig
