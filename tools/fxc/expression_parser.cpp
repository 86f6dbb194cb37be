#include "tools/fxc/expression_parser.h"

#include <algorithm>
#include <charconv>

#include <fmt/format.h>

#include "platform/d3dx/effect_expression.h"
#include "tools/fxc/type_parser.h"

namespace sparkrig::fxc {

namespace {

constexpr int kDeepest = 100;                // parentheses in parentheses
constexpr std::size_t kMostSteps = 1000;     // of one expression
constexpr std::size_t kMostValues = 65536;   // of one initial value: an array of 4096 matrices

bool ReadNumber(std::string_view text, double& value) {
    const auto ends_with_one_of = [&](std::string_view letters) {
        return !text.empty() && letters.find(text.back()) != std::string_view::npos;
    };
    if (text.starts_with("0x") || text.starts_with("0X")) {
        while (ends_with_one_of("uUlL")) text.remove_suffix(1);
        std::uint32_t number = 0;
        const auto [end, error] = std::from_chars(text.data() + 2, text.data() + text.size(), number, 16);
        value = number;
        return error == std::errc() && end == text.data() + text.size();
    }
    while (ends_with_one_of("fFhHuUlL")) text.remove_suffix(1);
    if (text.ends_with('.')) text.remove_suffix(1);
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size();
}

/// The most values that wait at once while the steps are done.
int StackDepth(const std::vector<ExpressionStep>& steps) {
    int depth = 0, deepest = 0;
    for (const ExpressionStep& step : steps) {
        depth += 1 - OperandCount(step.code);
        deepest = std::max(deepest, depth);
    }
    return deepest;
}

class ExpressionParser {
  public:
    ExpressionParser(Cursor& cursor, const ParsedEffect& effect) : cursor_(cursor), effect_(effect) {}

    Expression ParseSum() {
        Expression left = ParseProduct();
        while (cursor_.Peek().Is("+") || cursor_.Peek().Is("-")) {
            const bool add = cursor_.Take().Is("+");
            left = Combine(add ? ExpressionCode::Add : ExpressionCode::Subtract, std::move(left), ParseProduct());
        }
        return left;
    }

  private:
    Expression ParseProduct() {
        Expression left = ParseOperand();
        while (cursor_.Peek().Is("*") || cursor_.Peek().Is("/")) {
            const bool multiply = cursor_.Take().Is("*");
            left =
                Combine(multiply ? ExpressionCode::Multiply : ExpressionCode::Divide, std::move(left), ParseOperand());
        }
        return left;
    }

    Expression ParseOperand() {
        const Token start = cursor_.Peek();
        Expression value;
        if (++depth_ > kDeepest)
            cursor_.Fail(start, "the expression is nested too deeply");
        else if (cursor_.Accept("+"))
            value = ParseOperand();
        else if (cursor_.Accept("-"))
            value = Negate(ParseOperand());
        else
            value = ParseSwizzles(ParsePrimary());
        --depth_;
        value.start = start;
        return value;
    }

    Expression ParsePrimary() {
        const Token token = cursor_.Peek();
        if (cursor_.Accept("(")) {
            if (const auto cast = AcceptType(cursor_, effect_.symbols)) {
                cursor_.Expect(")", "after the type of a cast");
                return ParseOperand();
            }
            Expression value = ParseSum();
            cursor_.Expect(")", "after the expression");
            return value;
        }
        if (token.kind == TokenKind::Number) {
            double number = 0;
            if (!ReadNumber(token.text, number)) cursor_.Fail(token, fmt::format("'{}' is no number", token.text));
            cursor_.Take();
            return {token, {number}, {}};
        }
        if (token.kind == TokenKind::Identifier) return ParseName(token);
        cursor_.Fail(token, "expected a value");
        return {token, {0}, {}};
    }

    Expression ParseName(const Token& token) {
        if (cursor_.AcceptWord("true")) return {token, {1}, {}};
        if (cursor_.AcceptWord("false")) return {token, {0}, {}};
        if (const auto type = AcceptType(cursor_, effect_.symbols)) return ParseConstructor(token, *type);
        cursor_.Take();
        const auto constant = effect_.symbols.constants.find(token.text);
        if (constant != effect_.symbols.constants.end()) return {token, {constant->second}, {}};
        const auto parameter = effect_.symbols.parameters.find(token.text);
        if (parameter == effect_.symbols.parameters.end()) {
            cursor_.Fail(token, fmt::format("unknown name '{}'", token.text));
            return {token, {0}, {}};
        }
        if (!IsNumeric(effect_.file.parameters[parameter->second].variable.kind))
            cursor_.Fail(token, fmt::format("'{}' is no number", token.text));
        ExpressionStep step;
        step.code = ExpressionCode::Parameter;
        step.parameter = parameter->second;
        return {token, {}, {step}};
    }

    Expression ParseConstructor(const Token& token, const Type& type) {
        Expression value{token, {}, {}};
        if (!IsNumeric(type.kind)) cursor_.Fail(token, fmt::format("'{}' holds no numbers", token.text));
        cursor_.Expect("(", "after the type");
        do {
            const Expression part = ParseSum();
            if (!part.IsConstant()) cursor_.Fail(part.start, "a constructor takes constants only");
            value.values.insert(value.values.end(), part.values.begin(), part.values.end());
            if (value.values.size() > 16) cursor_.Fail(part.start, "too many values");
        } while (cursor_.Accept(","));
        cursor_.Expect(")", "after the values");
        const std::size_t wanted = static_cast<std::size_t>(type.rows) * type.columns;
        if (value.values.size() == 1) value.values.resize(wanted, value.values[0]);
        if (value.values.size() != wanted && !cursor_.Failed())
            cursor_.Fail(token, fmt::format("'{}' takes {} values, not {}", token.text, wanted, value.values.size()));
        return value;
    }

    Expression ParseSwizzles(Expression value) {
        while (cursor_.Peek().Is(".") && cursor_.Peek(1).kind == TokenKind::Identifier) {
            cursor_.Take();
            const Token& name = cursor_.Take();
            ExpressionStep step;
            step.code = ExpressionCode::Swizzle;
            constexpr std::string_view kPositions = "xyzw", kColours = "rgba";
            for (std::size_t i = 0; i < 4; ++i) {
                const char letter = name.text[std::min(i, name.text.size() - 1)];
                const std::size_t found = std::min(kPositions.find(letter), kColours.find(letter));
                if (found > 3 || name.text.size() > 4) {
                    cursor_.Fail(name, fmt::format("'{}' names no components", name.text));
                    return value;
                }
                step.swizzle[i] = static_cast<BYTE>(found);
            }
            value = Swizzled(std::move(value), step, name.text.size());
        }
        return value;
    }

    Expression Swizzled(Expression value, const ExpressionStep& step, std::size_t width) {
        if (value.IsConstant()) {
            std::vector<double> picked;
            for (std::size_t i = 0; i < width; ++i) {
                const std::size_t source = value.values.size() == 1 ? 0 : step.swizzle[i];
                picked.push_back(source < value.values.size() ? value.values[source] : 0);
            }
            value.values = std::move(picked);
        } else {
            value.steps.push_back(step);
        }
        return value;
    }

    static Expression Negate(Expression value) {
        for (double& number : value.values) number = -number;
        ExpressionStep step;
        step.code = ExpressionCode::Negate;
        if (!value.IsConstant()) value.steps.push_back(step);
        return value;
    }

    static double Fold(ExpressionCode code, double a, double b) {
        switch (code) {
            case ExpressionCode::Add: return a + b;
            case ExpressionCode::Subtract: return a - b;
            case ExpressionCode::Multiply: return a * b;
            default: return b == 0 ? 0 : a / b;
        }
    }

    Expression Combine(ExpressionCode code, Expression left, Expression right) {
        if (left.IsConstant() && right.IsConstant()) {
            if (left.values.empty() || right.values.empty()) return left;
            std::vector<double> result(std::max(left.values.size(), right.values.size()));
            for (std::size_t i = 0; i < result.size(); ++i)
                result[i] = Fold(code, left.values[std::min(i, left.values.size() - 1)],
                                 right.values[std::min(i, right.values.size() - 1)]);
            left.values = std::move(result);
            return left;
        }
        left.steps = StepsOf(left);
        left.values.clear();
        const std::vector<ExpressionStep> others = StepsOf(right);
        left.steps.insert(left.steps.end(), others.begin(), others.end());
        left.steps.emplace_back().code = code;
        if (left.steps.size() > kMostSteps || StackDepth(left.steps) > static_cast<int>(kExpressionDepth))
            cursor_.Fail(right.start, "the expression is too large");
        return left;
    }

    Cursor& cursor_;
    const ParsedEffect& effect_;
    int depth_ = 0;
};

void ParseConstantsInto(Cursor& cursor, const ParsedEffect& effect, std::vector<double>& values, int depth) {
    if (depth > kDeepest || values.size() > kMostValues) return cursor.Fail(cursor.Peek(), "too many values");
    if (cursor.Accept("{")) {
        do {
            if (cursor.Peek().Is("}")) break;   // a comma before the brace is allowed
            ParseConstantsInto(cursor, effect, values, depth + 1);
        } while (cursor.Accept(","));
        return cursor.Expect("}", "after the values");
    }
    const Expression value = ParseExpression(cursor, effect);
    if (!value.IsConstant()) cursor.Fail(value.start, "expected a constant");
    values.insert(values.end(), value.values.begin(), value.values.end());
}

}   // namespace

std::vector<ExpressionStep> StepsOf(const Expression& expression) {
    if (!expression.IsConstant()) return expression.steps;
    ExpressionStep step;
    for (std::size_t i = 0; i < step.constant.size(); ++i) {
        const std::size_t source = expression.values.size() == 1 ? 0 : i;
        if (source < expression.values.size()) step.constant[i] = static_cast<float>(expression.values[source]);
    }
    return {step};
}

Expression ParseExpression(Cursor& cursor, const ParsedEffect& effect) {
    return ExpressionParser(cursor, effect).ParseSum();
}

std::vector<double> ParseConstants(Cursor& cursor, const ParsedEffect& effect) {
    std::vector<double> values;
    ParseConstantsInto(cursor, effect, values, 0);
    return values;
}

}   // namespace sparkrig::fxc
