#include "platform/d3dx/effect_expression.h"

#include <bit>
#include <cmath>
#include <numbers>

namespace sparkrig {

namespace {

float NumberOf(const EffectVariable& variable, DWORD word) {
    return variable.number == NumberType::Float ? std::bit_cast<float>(word)
                                                : static_cast<float>(std::bit_cast<std::int32_t>(word));
}

ExpressionValue Spread(float number) { return {number, number, number, number}; }

/// A whole number of at most 32 bits, as the operators of bits take it.
std::int64_t Whole(double value) {
    return std::isnan(value) ? 0 : static_cast<std::int64_t>(std::clamp(value, -2147483648.0, 4294967295.0));
}

double SmoothStep(double low, double high, double x) {
    const double t = high == low ? (x >= low ? 1.0 : 0.0) : std::clamp((x - low) / (high - low), 0.0, 1.0);
    return t * t * (3 - 2 * t);
}

double ComputeOfBits(ExpressionCode code, std::int64_t a, std::int64_t b) {
    const auto left = static_cast<std::uint32_t>(a), right = static_cast<std::uint32_t>(b);
    const auto result = [](std::uint32_t bits) { return static_cast<double>(std::bit_cast<std::int32_t>(bits)); };
    switch (code) {
        case ExpressionCode::BitAnd: return result(left & right);
        case ExpressionCode::BitOr: return result(left | right);
        case ExpressionCode::BitXor: return result(left ^ right);
        case ExpressionCode::ShiftLeft: return result(left << (right & 31));
        case ExpressionCode::ShiftRight: return static_cast<double>(a >> (right & 31));
        default: return result(~left);
    }
}

double ComputeOfOne(ExpressionCode code, double a) {
    switch (code) {
        case ExpressionCode::Negate: return -a;
        case ExpressionCode::Not: return a == 0;
        case ExpressionCode::Absolute: return std::abs(a);
        case ExpressionCode::Sign: return (a > 0) - (a < 0);
        case ExpressionCode::Floor: return std::floor(a);
        case ExpressionCode::Ceiling: return std::ceil(a);
        case ExpressionCode::Round: return std::nearbyint(a);
        case ExpressionCode::Truncate: return std::trunc(a);
        case ExpressionCode::Fraction: return a - std::floor(a);
        case ExpressionCode::Saturate: return std::clamp(a, 0.0, 1.0);
        case ExpressionCode::SquareRoot: return std::sqrt(std::abs(a));
        case ExpressionCode::InverseRoot: return 1 / std::sqrt(std::abs(a));
        case ExpressionCode::Exp: return std::exp(a);
        case ExpressionCode::Exp2: return std::exp2(a);
        case ExpressionCode::Log: return std::log(std::abs(a));
        case ExpressionCode::Log2: return std::log2(std::abs(a));
        case ExpressionCode::Log10: return std::log10(std::abs(a));
        case ExpressionCode::Sine: return std::sin(a);
        case ExpressionCode::Cosine: return std::cos(a);
        case ExpressionCode::Tangent: return std::tan(a);
        case ExpressionCode::ArcSine: return std::asin(a);
        case ExpressionCode::ArcCosine: return std::acos(a);
        default: return std::atan(a);
    }
}

double ComputeOfMore(ExpressionCode code, double a, double b, double c) {
    switch (code) {
        case ExpressionCode::Add: return a + b;
        case ExpressionCode::Subtract: return a - b;
        case ExpressionCode::Multiply: return a * b;
        case ExpressionCode::Divide: return b == 0 ? 0 : a / b;
        case ExpressionCode::Modulo: return b == 0 ? 0 : std::fmod(a, b);   // with the sign of the dividend
        case ExpressionCode::Less: return a < b;
        case ExpressionCode::LessEqual: return a <= b;
        case ExpressionCode::Equal: return a == b;
        case ExpressionCode::NotEqual: return a != b;
        case ExpressionCode::And: return a != 0 && b != 0;
        case ExpressionCode::Or: return a != 0 || b != 0;
        case ExpressionCode::Minimum: return std::min(a, b);
        case ExpressionCode::Maximum: return std::max(a, b);
        case ExpressionCode::Power: return std::pow(std::abs(a), b);
        case ExpressionCode::Step: return b >= a;
        case ExpressionCode::ArcTangent2: return std::atan2(a, b);
        case ExpressionCode::Select: return a != 0 ? b : c;
        case ExpressionCode::Lerp: return a + (b - a) * c;
        case ExpressionCode::Clamp: return std::min(std::max(a, b), c);
        default: return SmoothStep(a, b, c);
    }
}

}   // namespace

ExpressionValue LoadVariable(const EffectVariable& variable, std::span<const DWORD> words) {
    ExpressionValue value = {};
    for (std::size_t i = 0; i < value.size(); ++i) {
        const std::size_t source = variable.kind == VariableClass::Scalar ? 0 : i;
        if (source < words.size()) value[i] = NumberOf(variable, words[source]);
    }
    return value;
}

ExpressionValue LoadElement(const EffectVariable& variable, std::span<const DWORD> words, float index) {
    // What one step into the variable is: an element of an array, else a row, else a component.
    const bool component = variable.elements == 0 && variable.kind != VariableClass::Matrix;
    const std::size_t size = variable.elements > 0 ? variable.WordsPerElement() : component ? 1 : variable.columns;
    if (!(index >= 0) || index >= static_cast<float>(words.size() / size)) return {};
    const std::span<const DWORD> element = words.subspan(static_cast<std::size_t>(index) * size, size);
    return component ? Spread(NumberOf(variable, element[0])) : LoadVariable(variable, element);
}

int OperandCount(ExpressionCode code) {
    if (code <= ExpressionCode::Parameter) return 0;
    if (code < ExpressionCode::Add) return 1;
    return code < ExpressionCode::Select ? 2 : 3;
}

double Compute(ExpressionCode code, double a, double b, double c) {
    const bool bits =
        code == ExpressionCode::Complement || (code >= ExpressionCode::BitAnd && code <= ExpressionCode::ShiftRight);
    const double result = bits                      ? ComputeOfBits(code, Whole(a), Whole(b))
                          : OperandCount(code) == 1 ? ComputeOfOne(code, a)
                                                    : ComputeOfMore(code, a, b, c);
    return std::isfinite(result) ? result : 0;
}

ExpressionValue ApplyStep(const ExpressionStep& step, const ExpressionValue& a, const ExpressionValue& b,
                          const ExpressionValue& c) {
    ExpressionValue result;
    for (std::size_t i = 0; i < result.size(); ++i)
        result[i] = step.code == ExpressionCode::Swizzle ? a[step.swizzle[i]]
                                                         : static_cast<float>(Compute(step.code, a[i], b[i], c[i]));
    return result;
}

}   // namespace sparkrig
