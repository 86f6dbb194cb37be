#include "tools/fxc/constants.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "platform/d3dx/effect_expression.h"

namespace sparkrig::fxc {

namespace {

double At(const Constant& constant, std::size_t i) {
    if (constant.values.empty()) return 0;
    return constant.values[constant.values.size() == 1 ? 0 : std::min(i, constant.values.size() - 1)];
}

bool IsComparison(ExpressionCode code) {
    return code == ExpressionCode::Not || (code >= ExpressionCode::Less && code <= ExpressionCode::Or);
}

Constant Vector(std::vector<double> values) {
    Constant result;
    result.columns = static_cast<DWORD>(values.size());
    result.values = std::move(values);
    return result;
}

double DotOf(const Constant& a, const Constant& b) {
    double sum = 0;
    for (std::size_t i = 0; i < std::max(a.values.size(), b.values.size()); ++i) sum += At(a, i) * At(b, i);
    return sum;
}

Constant Dot(std::span<const Constant> of) { return MakeScalar(DotOf(of[0], of[1]), false); }
Constant Length(std::span<const Constant> of) { return MakeScalar(std::sqrt(DotOf(of[0], of[0])), false); }
Constant Distance(std::span<const Constant> of) {
    const Constant difference = Apply(ExpressionCode::Subtract, of);
    return Length({&difference, 1});
}
Constant Normalize(std::span<const Constant> of) {
    const Constant operands[] = {of[0], Length(of)};
    return Apply(ExpressionCode::Divide, operands);
}
Constant Cross(std::span<const Constant> of) {
    std::vector<double> result;
    for (const std::size_t i : {1, 2, 0})
        result.push_back(At(of[0], i) * At(of[1], (i + 1) % 3) - At(of[0], (i + 1) % 3) * At(of[1], i));
    return Vector(std::move(result));
}
Constant Any(std::span<const Constant> of) {
    return MakeScalar(std::ranges::any_of(of[0].values, [](double v) { return v != 0; }), true);
}
Constant All(std::span<const Constant> of) {
    return MakeScalar(std::ranges::all_of(of[0].values, [](double v) { return v != 0; }), true);
}
Constant Transpose(std::span<const Constant> of) {
    Constant result = of[0];
    std::swap(result.rows, result.columns);
    for (DWORD row = 0; row < result.rows; ++row)
        for (DWORD column = 0; column < result.columns; ++column)
            result.values[row * result.columns + column] = At(of[0], column * result.rows + row);
    return result;
}
/// The matrix product; a vector on the left is a row, one on the right a column.
Constant Mul(std::span<const Constant> of) {
    Constant left = of[0], right = of[1];
    if (left.values.size() == 1 || right.values.size() == 1) return Apply(ExpressionCode::Multiply, of);
    if (right.rows == 1) std::swap(right.rows, right.columns);
    const DWORD inner = std::min(left.columns, right.rows);
    Constant result;
    result.rows = left.rows;
    result.columns = right.columns;
    for (DWORD row = 0; row < left.rows; ++row)
        for (DWORD column = 0; column < right.columns; ++column) {
            double sum = 0;
            for (DWORD i = 0; i < inner; ++i)
                sum += At(left, row * left.columns + i) * At(right, i * right.columns + column);
            result.values.push_back(sum);
        }
    if (result.columns == 1) std::swap(result.rows, result.columns);
    return result;
}
Constant Scaled(const Constant& constant, double factor) {
    const Constant operands[] = {constant, MakeScalar(factor, false)};
    return Apply(ExpressionCode::Multiply, operands);
}
Constant Degrees(std::span<const Constant> of) { return Scaled(of[0], 180 / std::numbers::pi); }
Constant Radians(std::span<const Constant> of) { return Scaled(of[0], std::numbers::pi / 180); }

using C = ExpressionCode;
// clang-format off
constexpr Intrinsic kIntrinsics[] = {
    {"abs", 1, C::Absolute},     {"sign", 1, C::Sign},       {"floor", 1, C::Floor},   {"ceil", 1, C::Ceiling},
    {"round", 1, C::Round},      {"trunc", 1, C::Truncate},  {"frac", 1, C::Fraction}, {"saturate", 1, C::Saturate},
    {"sqrt", 1, C::SquareRoot},  {"rsqrt", 1, C::InverseRoot}, {"exp", 1, C::Exp},     {"exp2", 1, C::Exp2},
    {"log", 1, C::Log},          {"log2", 1, C::Log2},       {"log10", 1, C::Log10},   {"sin", 1, C::Sine},
    {"cos", 1, C::Cosine},       {"tan", 1, C::Tangent},     {"asin", 1, C::ArcSine},  {"acos", 1, C::ArcCosine},
    {"atan", 1, C::ArcTangent},  {"min", 2, C::Minimum},     {"max", 2, C::Maximum},   {"pow", 2, C::Power},
    {"fmod", 2, C::Modulo},      {"step", 2, C::Step},       {"atan2", 2, C::ArcTangent2}, {"lerp", 3, C::Lerp},
    {"clamp", 3, C::Clamp},      {"smoothstep", 3, C::SmoothStep},
    {"dot", 2, C::Last, Dot},    {"length", 1, C::Last, Length}, {"distance", 2, C::Last, Distance},
    {"normalize", 1, C::Last, Normalize}, {"cross", 2, C::Last, Cross}, {"any", 1, C::Last, Any}, {"all", 1, C::Last, All},
    {"transpose", 1, C::Last, Transpose}, {"mul", 2, C::Last, Mul}, {"degrees", 1, C::Last, Degrees},
    {"radians", 1, C::Last, Radians},
};
// clang-format on

}   // namespace

Constant MakeScalar(double value, bool whole) {
    Constant constant;
    constant.values = {value};
    constant.whole = whole;
    return constant;
}

Constant Apply(ExpressionCode code, std::span<const Constant> operands) {
    const Constant* shape = &operands[0];
    for (const Constant& operand : operands) {
        const bool shorter = operand.values.size() > 1 && operand.values.size() < shape->values.size();
        if (shape->values.size() <= 1 || shorter) shape = &operand;
    }
    Constant result = *shape;
    const auto value = [&](std::size_t operand, std::size_t i) {
        return operand < operands.size() ? At(operands[operand], i) : 0;
    };
    for (std::size_t i = 0; i < result.values.size(); ++i)
        result.values[i] = Compute(code, value(0, i), value(1, i), value(2, i));
    const auto first =
        code == ExpressionCode::Select ? operands.begin() + 1 : operands.begin();   // the condition does not count
    result.whole = std::all_of(first, operands.end(), [](const Constant& c) { return c.whole; });
    if (code == ExpressionCode::Divide && result.whole)
        for (double& number : result.values) number = std::trunc(number);
    if (IsComparison(code)) result.whole = true;
    return result;
}

Constant ElementOf(const Constant& constant, double index) {
    Constant element;
    element.whole = constant.whole;
    if (constant.elements > 0) {
        element.rows = constant.rows;
        element.columns = constant.columns;
    } else if (constant.rows > 1) {
        element.columns = constant.columns;
    }
    const std::size_t size = std::size_t{element.rows} * element.columns;
    element.values.assign(size, 0);
    if (index >= 0 && index < static_cast<double>(constant.values.size() / size))
        std::copy_n(constant.values.begin() + static_cast<std::ptrdiff_t>(static_cast<std::size_t>(index) * size), size,
                    element.values.begin());
    return element;
}

std::optional<Constant> Converted(Constant constant, const Type& type) {
    const std::size_t wanted = std::size_t{type.rows} * type.columns;
    std::vector<double>& values = constant.values;
    if (values.size() == 1) values.resize(wanted, values[0]);
    if (values.size() < wanted) return std::nullopt;
    if (constant.rows > 1 && type.rows > 1 && type.rows <= constant.rows && type.columns <= constant.columns)
        for (std::size_t i = 0; i < wanted; ++i)   // the upper left part of a larger matrix
            values[i] = values[i / type.columns * constant.columns + i % type.columns];
    values.resize(wanted);
    constant.rows = type.rows;
    constant.columns = type.columns;
    constant.elements = 0;
    constant.whole = type.number != NumberType::Float;
    for (double& value : values)
        value = type.number == NumberType::Bool ? value != 0 : constant.whole ? std::trunc(value) : value;
    return constant;
}

const Intrinsic* FindIntrinsic(std::string_view name) {
    const auto* found = std::ranges::find_if(kIntrinsics, [&](const Intrinsic& row) { return row.name == name; });
    return found == std::end(kIntrinsics) ? nullptr : found;
}

}   // namespace sparkrig::fxc
