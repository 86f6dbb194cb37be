#include "tools/fxc/condition.h"

#include <charconv>

namespace sparkrig::fxc {

namespace {

struct Operator {
    const char* text;
    int level;   // a higher one binds tighter
};

// Longer ones first, so that "<=" is not read as "<".
constexpr Operator kOperators[] = {
    {"||", 1}, {"&&", 2}, {"==", 6}, {"!=", 6}, {"<=", 7}, {">=", 7}, {"<<", 8}, {">>", 8}, {"|", 3},
    {"^", 4},  {"&", 5},  {"<", 7},  {">", 7},  {"+", 9},  {"-", 9},  {"*", 10}, {"/", 10}, {"%", 10},
};

class ConditionParser {
  public:
    explicit ConditionParser(std::span<const Token> tokens) : left_(tokens) {}

    bool Run(std::int64_t& value) {
        value = ParseChoice();
        return !failed_ && left_.empty();
    }

  private:
    static constexpr int kDeepest = 100;

    bool At(const char* symbol) const { return !left_.empty() && left_[0].Is(symbol); }
    void Advance(std::size_t count = 1) { left_ = left_.subspan(count); }
    std::int64_t Fail() {
        failed_ = true;
        left_ = {};
        return 0;
    }

    const Operator* FindOperator() const {
        for (const Operator& candidate : kOperators) {
            if (!At(std::string(1, candidate.text[0]).c_str())) continue;
            if (candidate.text[1] == '\0') return &candidate;
            if (left_.size() > 1 && left_[1].joined && left_[1].text == candidate.text + 1) return &candidate;
        }
        return nullptr;
    }

    std::int64_t ParseChoice() {
        const std::int64_t condition = ParseOperations(1);
        if (!At("?")) return condition;
        if (++depth_ > kDeepest) return Fail();
        Advance();
        const std::int64_t yes = ParseChoice();
        if (!At(":")) return Fail();
        Advance();
        const std::int64_t no = ParseChoice();
        --depth_;
        return condition ? yes : no;
    }

    std::int64_t ParseOperations(int lowest) {
        std::int64_t value = ParseOperand();
        for (const Operator* found = FindOperator(); found && found->level >= lowest; found = FindOperator()) {
            Advance(found->text[1] == '\0' ? 1 : 2);
            value = Apply(found->text, value, ParseOperations(found->level + 1));
        }
        return value;
    }

    std::int64_t ParseOperand() {
        if (left_.empty() || ++depth_ > kDeepest) return Fail();
        const Token token = left_[0];
        Advance();
        std::int64_t value = 0;
        if (token.Is("("))
            value = ParseParenthesis();
        else if (token.Is("!"))
            value = ParseOperand() == 0;
        else if (token.Is("-"))
            value = static_cast<std::int64_t>(0 - static_cast<std::uint64_t>(ParseOperand()));
        else if (token.Is("+"))
            value = ParseOperand();
        else if (token.Is("~"))
            value = ~ParseOperand();
        else if (token.kind == TokenKind::Number)
            value = ParseNumber(token.text);
        else if (token.kind != TokenKind::Identifier)
            return Fail();
        --depth_;
        return value;
    }

    std::int64_t ParseParenthesis() {
        const std::int64_t value = ParseChoice();
        if (!At(")")) return Fail();
        Advance();
        return value;
    }

    std::int64_t ParseNumber(const std::string& text) {
        const bool hexadecimal = text.size() > 2 && (text[1] == 'x' || text[1] == 'X');
        const char* const first = text.data() + (hexadecimal ? 2 : 0);
        const char* const last = text.data() + text.size();
        std::uint64_t value = 0;
        const auto [end, error] = std::from_chars(first, last, value, hexadecimal ? 16 : 10);
        for (const char* suffix = end; suffix != last; ++suffix)
            if (*suffix != 'u' && *suffix != 'U' && *suffix != 'l' && *suffix != 'L') return Fail();
        return error == std::errc() ? static_cast<std::int64_t>(value) : Fail();
    }

    std::int64_t Apply(std::string_view text, std::int64_t a, std::int64_t b) {
        const auto ua = static_cast<std::uint64_t>(a), ub = static_cast<std::uint64_t>(b);
        switch (text[0]) {
            case '|': return text.size() == 2 ? a || b : a | b;
            case '&': return text.size() == 2 ? a && b : a & b;
            case '^': return a ^ b;
            case '=': return a == b;
            case '!': return a != b;
            case '+': return static_cast<std::int64_t>(ua + ub);
            case '-': return static_cast<std::int64_t>(ua - ub);
            case '*': return static_cast<std::int64_t>(ua * ub);
            case '/': return b == 0 ? Fail() : b == -1 ? static_cast<std::int64_t>(0 - ua) : a / b;
            case '%': return b == 0 ? Fail() : b == -1 ? 0 : a % b;
            case '<': return text == "<<" ? static_cast<std::int64_t>(ua << (ub & 63)) : text == "<=" ? a <= b : a < b;
            default: return text == ">>" ? a >> (ub & 63) : text == ">=" ? a >= b : a > b;
        }
    }

    std::span<const Token> left_;
    int depth_ = 0;
    bool failed_ = false;
};

}   // namespace

std::int64_t EvaluateCondition(std::span<const Token> tokens, const Place& place, Diagnostics& diagnostics) {
    std::int64_t value = 0;
    if (ConditionParser(tokens).Run(value)) return value;
    diagnostics.Error(place, ErrorCode::Source, "the condition is not an expression of whole numbers");
    return 0;
}

}   // namespace sparkrig::fxc
