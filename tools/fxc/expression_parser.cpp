#include "tools/fxc/expression_parser.h"

#include <algorithm>
#include <bit>
#include <charconv>

#include <fmt/format.h>

#include "platform/d3dx/effect_expression.h"
#include "tools/fxc/constants.h"
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

struct Operator {
    const char* text;
    int level;   // a higher one binds tighter
    ExpressionCode code;
    bool swapped = false;   // its operands change places
};

// Longer ones first, so that "<=" is not read as "<".
constexpr Operator kOperators[] = {
    {"||", 1, ExpressionCode::Or},        {"&&", 2, ExpressionCode::And},
    {"==", 6, ExpressionCode::Equal},     {"!=", 6, ExpressionCode::NotEqual},
    {"<<", 8, ExpressionCode::ShiftLeft}, {">>", 8, ExpressionCode::ShiftRight},
    {"<=", 7, ExpressionCode::LessEqual}, {">=", 7, ExpressionCode::LessEqual, true},
    {"<", 7, ExpressionCode::Less},       {">", 7, ExpressionCode::Less, true},
    {"|", 3, ExpressionCode::BitOr},      {"^", 4, ExpressionCode::BitXor},
    {"&", 5, ExpressionCode::BitAnd},     {"+", 9, ExpressionCode::Add},
    {"-", 9, ExpressionCode::Subtract},   {"*", 10, ExpressionCode::Multiply},
    {"/", 10, ExpressionCode::Divide},    {"%", 10, ExpressionCode::Modulo},
};

class ExpressionParser {
  public:
    ExpressionParser(Cursor& cursor, const ParsedEffect& effect, Parameters parameters, const StateRow* state)
        : cursor_(cursor), effect_(effect), parameters_(parameters), state_(state) {}

    Expression ParseChoice() {
        Expression condition = ParseOperations(1);
        if (++depth_ > kDeepest) cursor_.Fail(cursor_.Peek(), "the expression is nested too deeply");
        if (cursor_.Accept("?")) {
            Expression yes = ParseChoice();
            cursor_.Expect(":", "after the first choice");
            Expression no = ParseChoice();
            condition = Combine(ExpressionCode::Select, {std::move(condition), std::move(yes), std::move(no)});
        }
        --depth_;
        return condition;
    }

    Expression ParseOperand() {
        const Token start = cursor_.Peek();
        Expression value;
        if (++depth_ > kDeepest)
            cursor_.Fail(start, "the expression is nested too deeply");
        else if (cursor_.Accept("+"))
            value = ParseOperand();
        else if (cursor_.Accept("-"))
            value = Combine(ExpressionCode::Negate, {ParseOperand()});
        else if (cursor_.Accept("!"))
            value = Combine(ExpressionCode::Not, {ParseOperand()});
        else if (cursor_.Accept("~"))
            value = Combine(ExpressionCode::Complement, {ParseOperand()});
        else
            value = ParsePicks(ParsePrimary());
        --depth_;
        if (value.constant.values.empty() && value.IsConstant()) value.constant = MakeScalar(0, false);
        value.start = start;
        return value;
    }

  private:
    const Operator* FindOperator() const {
        for (const Operator& candidate : kOperators) {
            if (!cursor_.Peek().Is(std::string(1, candidate.text[0]).c_str())) continue;
            if (candidate.text[1] == '\0') return &candidate;
            const Token& second = cursor_.Peek(1);
            if (second.joined && second.Is(candidate.text + 1)) return &candidate;
        }
        return nullptr;
    }

    Expression ParseOperations(int lowest) {
        Expression left = ParseOperand();
        for (const Operator* found = FindOperator(); found && found->level >= lowest; found = FindOperator()) {
            cursor_.Take();
            if (found->text[1] != '\0') cursor_.Take();
            Expression right = ParseOperations(found->level + 1);
            if (found->swapped) std::swap(left, right);
            left = Combine(found->code, {std::move(left), std::move(right)});
        }
        return left;
    }

    Expression Known(const Token& token, Constant constant) const { return {token, std::move(constant), {}}; }
    Expression Number(const Token& token, double value, bool whole = true) const {
        return Known(token, MakeScalar(value, whole));
    }

    Expression ParsePrimary() {
        const Token token = cursor_.Peek();
        const bool word = token.kind == TokenKind::Identifier || token.kind == TokenKind::Number;
        if (const NamedValue* value = state_ && word ? FindValue(*state_, token.text) : nullptr) {
            cursor_.Take();
            return Number(token, value->value);
        }
        if (cursor_.Accept("(")) return ParseParenthesis();
        if (token.kind == TokenKind::Number) {
            double number = 0;
            if (!ReadNumber(token.text, number)) cursor_.Fail(token, fmt::format("'{}' is no number", token.text));
            cursor_.Take();
            const bool hexadecimal = token.text.starts_with("0x") || token.text.starts_with("0X");
            return Number(token, number, hexadecimal || token.text.find_first_of(".eEfFhH") == std::string::npos);
        }
        if (token.kind == TokenKind::Identifier) return ParseName(token);
        cursor_.Fail(token, "expected a value");
        return Number(token, 0);
    }

    /// A cast, or a list whose last value counts.
    Expression ParseParenthesis() {
        const std::size_t start = cursor_.Position();
        if (const auto cast = AcceptType(cursor_, effect_.symbols); cast && cursor_.Accept(")")) {
            Expression value = ParseOperand();
            if (!value.IsConstant()) return value;
            const std::optional<Constant> converted = Converted(value.constant, *cast);
            if (!converted) cursor_.Fail(value.start, "the cast has too few values");
            return Known(value.start, converted.value_or(value.constant));
        }
        cursor_.Rewind(start);
        Expression value = ParseChoice();
        while (cursor_.Accept(",")) value = ParseChoice();
        cursor_.Expect(")", "after the expression");
        return value;
    }

    Expression ParseName(const Token& token) {
        if (cursor_.AcceptWord("true")) return Number(token, 1);
        if (cursor_.AcceptWord("false")) return Number(token, 0);
        if (const Intrinsic* intrinsic = cursor_.Peek(1).Is("(") ? FindIntrinsic(token.text) : nullptr)
            return ParseIntrinsic(*intrinsic);
        if (const auto type = AcceptType(cursor_, effect_.symbols)) return ParseConstructor(token, *type);
        cursor_.Take();
        const auto constant = effect_.symbols.constants.find(token.text);
        if (constant != effect_.symbols.constants.end()) return Known(token, constant->second);
        const auto parameter = effect_.symbols.parameters.find(token.text);
        if (parameter == effect_.symbols.parameters.end()) {
            cursor_.Fail(token, fmt::format("unknown name '{}'", token.text));
            return Number(token, 0);
        }
        return ParseParameter(token, parameter->second);
    }

    Expression ParseParameter(const Token& token, DWORD index) {
        const EffectVariable& variable = effect_.file.parameters[index].variable;
        if (!IsNumeric(variable.kind)) cursor_.Fail(token, fmt::format("'{}' is no number", token.text));
        Constant shape;
        shape.rows = variable.rows;
        shape.columns = variable.columns;
        shape.elements = variable.elements;
        ExpressionStep step;
        step.code = ExpressionCode::Parameter;
        step.parameter = index;
        if (parameters_ == Parameters::AtRunTime) return {token, shape, {step}};
        shape.whole = variable.number != NumberType::Float;
        for (const DWORD word : variable.words)
            shape.values.push_back(shape.whole ? static_cast<double>(std::bit_cast<std::int32_t>(word))
                                               : static_cast<double>(std::bit_cast<float>(word)));
        return Known(token, std::move(shape));
    }

    std::vector<Expression> ParseOperands() {
        std::vector<Expression> operands;
        cursor_.Expect("(", "after the name");
        do {
            operands.push_back(ParseChoice());
            if (operands.size() > 16) cursor_.Fail(operands.back().start, "too many values");
        } while (cursor_.Accept(","));
        cursor_.Expect(")", "after the values");
        return operands;
    }

    Expression ParseIntrinsic(const Intrinsic& intrinsic) {
        const Token name = cursor_.Take();
        std::vector<Expression> operands = ParseOperands();
        if (operands.size() != intrinsic.operands) {
            cursor_.Fail(name,
                         fmt::format("'{}' takes {} values, not {}", name.text, intrinsic.operands, operands.size()));
            return Number(name, 0);
        }
        if (!intrinsic.whole) return Combine(intrinsic.code, std::move(operands));
        std::vector<Constant> constants;
        for (const Expression& operand : operands) {
            if (!operand.IsConstant())
                cursor_.Fail(operand.start, fmt::format("'{}' takes constants only here", name.text));
            constants.push_back(operand.constant);
        }
        return cursor_.Failed() ? Number(name, 0) : Known(name, intrinsic.whole(constants));
    }

    Expression ParseConstructor(const Token& token, const Type& type) {
        if (!IsNumeric(type.kind)) cursor_.Fail(token, fmt::format("'{}' holds no numbers", token.text));
        const std::vector<Expression> parts = ParseOperands();
        if (std::ranges::all_of(parts, &Expression::IsConstant)) return ConstantOf(token, type, parts);
        if (type.rows == 1) return StepsOfParts(token, type, parts);
        cursor_.Fail(token, "a matrix is made of constants only here");
        return Number(token, 0);
    }

    Expression ConstantOf(const Token& token, const Type& type, const std::vector<Expression>& parts) {
        Constant constant;
        for (const Expression& part : parts)
            constant.values.insert(constant.values.end(), part.Values().begin(), part.Values().end());
        if (parts.size() == 1) constant = parts[0].constant;
        const std::size_t wanted = std::size_t{type.rows} * type.columns, given = constant.values.size();
        std::optional<Constant> converted = Converted(std::move(constant), type);
        if ((!converted || (parts.size() > 1 && given != wanted)) && !cursor_.Failed())
            cursor_.Fail(token, fmt::format("'{}' takes {} values, not {}", token.text, wanted, given));
        return converted ? Known(token, std::move(*converted)) : Number(token, 0);
    }

    /// The sum of the parts, each moved to its place and 0 elsewhere.
    Expression StepsOfParts(const Token& token, const Type& type, const std::vector<Expression>& parts) {
        Expression sum;
        DWORD place = 0;
        for (const Expression& part : parts) {
            ExpressionStep move;
            move.code = ExpressionCode::Swizzle;
            Constant mask;
            mask.values.resize(4);
            mask.columns = 4;
            const DWORD width = parts.size() == 1 ? 4 : std::min(part.constant.columns, 4 - std::min<DWORD>(place, 4));
            for (DWORD i = 0; i < width && place < 4; ++i, ++place) {
                move.swizzle[place] = static_cast<BYTE>(part.constant.columns == 1 ? 0 : i);
                mask.values[place] = 1;
            }
            Expression moved{token, part.constant, StepsOf(part)};
            moved.steps.push_back(move);
            moved = Combine(ExpressionCode::Multiply, {std::move(moved), Known(token, mask)});
            sum =
                sum.steps.empty() ? std::move(moved) : Combine(ExpressionCode::Add, {std::move(sum), std::move(moved)});
        }
        sum.constant.columns = type.columns;
        return sum;
    }

    Expression ParsePicks(Expression value) {
        while (!cursor_.Failed()) {
            if (cursor_.Peek().Is(".") && cursor_.Peek(1).kind == TokenKind::Identifier) {
                cursor_.Take();
                value = Swizzled(std::move(value), cursor_.Take());
            } else if (cursor_.Peek().Is("[")) {
                value = ParseElement(std::move(value));
            } else {
                break;
            }
        }
        return value;
    }

    Expression ParseElement(Expression value) {
        const Token start = cursor_.Take();
        Expression index = ParseChoice();
        cursor_.Expect("]", "after the index");
        if (value.IsConstant() && index.IsConstant())
            return Known(start, ElementOf(value.constant, index.Values().empty() ? 0 : index.Values()[0]));
        const Constant shape = ElementOf(
            {std::vector<double>(1), value.constant.rows, value.constant.columns, value.constant.elements}, -1);
        if (value.steps.size() != 1 || value.steps[0].code != ExpressionCode::Parameter) {
            cursor_.Fail(start, "only a parameter has elements here");
            return value;
        }
        Expression element{start, shape, StepsOf(index)};
        element.constant.values.clear();
        element.steps.emplace_back(value.steps[0]).code = ExpressionCode::Element;
        return element;
    }

    Expression Swizzled(Expression value, const Token& name) {
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
        if (value.IsConstant()) {
            std::vector<double> picked;
            for (std::size_t i = 0; i < name.text.size(); ++i) {
                const std::size_t source = value.Values().size() == 1 ? 0 : step.swizzle[i];
                picked.push_back(source < value.Values().size() ? value.Values()[source] : 0);
            }
            value.constant.values = std::move(picked);
        } else {
            value.steps.push_back(step);
        }
        value.constant.rows = 1;
        value.constant.columns = static_cast<DWORD>(name.text.size());
        return value;
    }

    Expression Combine(ExpressionCode code, std::vector<Expression> operands) {
        std::vector<Constant> constants;
        for (const Expression& operand : operands) constants.push_back(operand.constant);
        Expression result{operands[0].start, {}, {}};
        if (std::ranges::all_of(operands, &Expression::IsConstant)) {
            result.constant = Apply(code, constants);
            return result;
        }
        result.constant.columns = 1;
        for (const Expression& operand : operands) {
            const std::vector<ExpressionStep> steps = StepsOf(operand);
            result.steps.insert(result.steps.end(), steps.begin(), steps.end());
            result.constant.columns = std::max(result.constant.columns, operand.constant.columns);
        }
        result.steps.emplace_back().code = code;
        if (result.steps.size() > kMostSteps || StackDepth(result.steps) > static_cast<int>(kExpressionDepth))
            cursor_.Fail(operands.back().start, "the expression is too large");
        return result;
    }

    Cursor& cursor_;
    const ParsedEffect& effect_;
    Parameters parameters_;
    const StateRow* state_;   // whose values have names; may be null
    int depth_ = 0;
};

void ParseConstantInto(Cursor& cursor, const ParsedEffect& effect, Constant& constant, int depth) {
    if (depth > kDeepest || constant.values.size() > kMostValues) return cursor.Fail(cursor.Peek(), "too many values");
    if (cursor.Accept("{")) {
        do {
            if (cursor.Peek().Is("}")) break;   // a comma before the brace is allowed
            ParseConstantInto(cursor, effect, constant, depth + 1);
        } while (cursor.Accept(","));
        return cursor.Expect("}", "after the values");
    }
    const Expression value = ParseExpression(cursor, effect, Parameters::Known);
    constant.values.insert(constant.values.end(), value.Values().begin(), value.Values().end());
}

}   // namespace

std::vector<ExpressionStep> StepsOf(const Expression& expression) {
    if (!expression.IsConstant()) return expression.steps;
    ExpressionStep step;
    const std::vector<double>& values = expression.Values();
    for (std::size_t i = 0; i < step.constant.size(); ++i) {
        const std::size_t source = values.size() == 1 ? 0 : i;
        if (source < values.size()) step.constant[i] = static_cast<float>(values[source]);
    }
    return {step};
}

Expression ParseExpression(Cursor& cursor, const ParsedEffect& effect, Parameters parameters, const StateRow* state) {
    return ExpressionParser(cursor, effect, parameters, state).ParseChoice();
}

Expression ParseOperand(Cursor& cursor, const ParsedEffect& effect, Parameters parameters) {
    return ExpressionParser(cursor, effect, parameters, nullptr).ParseOperand();
}

Constant ParseConstant(Cursor& cursor, const ParsedEffect& effect) {
    if (!cursor.Peek().Is("{")) return ParseExpression(cursor, effect, Parameters::Known).constant;
    Constant constant;
    ParseConstantInto(cursor, effect, constant, 0);
    return constant;
}

}   // namespace sparkrig::fxc
