#include <set>

#include "tools/fxc/code_adaption.h"
#include "tools/fxc/token_tools.h"

namespace sparkrig::fxc {

namespace {

constexpr int kDeepest = 200;   // statements in statements

/// The last token of the statement that begins at `start`.
std::size_t EndOfStatement(const Tokens& code, std::size_t start, int depth = 0) {
    if (start >= code.size() || depth > kDeepest) return code.size();
    if (code[start].Is("{")) return ClosingBracket(code, start);
    if (code[start].Is("[")) return EndOfStatement(code, ClosingBracket(code, start) + 1, depth + 1);
    const bool headed = code[start].IsName("for") || code[start].IsName("while") || code[start].IsName("if");
    if (headed && start + 1 < code.size() && code[start + 1].Is("(")) {
        const std::size_t end = EndOfStatement(code, ClosingBracket(code, start + 1) + 1, depth + 1);
        const bool otherwise = code[start].IsName("if") && end + 1 < code.size() && code[end + 1].IsName("else");
        return otherwise ? EndOfStatement(code, end + 2, depth + 1) : end;
    }
    std::size_t end = start;
    while (end < code.size() && !code[end].Is(";")) {
        if (code[end].Is("}")) return code.size();
        end = code[end].Is("(") || code[end].Is("[") || code[end].Is("{") ? ClosingBracket(code, end) + 1 : end + 1;
    }
    return end;
}

/// "for (TYPE NAME =" at `at`.
bool DeclaresVariable(const Tokens& code, std::size_t at) {
    return at + 4 < code.size() && code[at].IsName("for") && code[at + 1].Is("(") &&
           code[at + 2].kind == TokenKind::Identifier && code[at + 3].kind == TokenKind::Identifier;
}

/// Whether the rest of the block, from `start` on, reads the name before it declares it again.
bool IsReadAfter(const Tokens& code, std::size_t start, const std::string& name) {
    int depth = 0;
    for (std::size_t i = start; i < code.size(); ++i) {
        depth += code[i].Is("{") ? 1 : code[i].Is("}") ? -1 : 0;
        if (depth < 0) return false;
        if (DeclaresVariable(code, i) && code[i + 3].text == name) {
            if (depth == 0) return false;
            i = EndOfStatement(code, i);
        } else if (code[i].IsName(name.c_str()) && !code[i - 1].Is(".")) {
            return code[i - 1].kind != TokenKind::Identifier || code[i - 1].IsName("return");
        }
    }
    return false;
}

/// Whether one of the `depth` blocks around `at`, or the parameters of the function, have declared the name: a loop's
/// own one hides it.
bool IsHidden(const Tokens& code, std::size_t at, int depth, const std::string& name) {
    int closed = 0;   // blocks that ended before `at`
    for (std::size_t i = at; i > 1; --i) {
        const Token &token = code[i - 1], &before = code[i - 2];
        if (depth == 0 && (token.Is(";") || token.Is("}"))) return false;
        if (token.Is("}")) ++closed;
        if (token.Is("{")) --(closed > 0 ? closed : depth);
        const bool declared = closed == 0 && token.IsName(name.c_str()) && before.kind == TokenKind::Identifier &&
                              !before.IsName("return") && !before.IsName("else");
        if (declared && !(i >= 4 && DeclaresVariable(code, i - 4))) return true;
    }
    return false;
}

}   // namespace

void WidenLoopVariables(Tokens& code) {
    Tokens result;
    std::set<std::string> widened;   // in the function that is being read
    int depth = 0;
    for (std::size_t i = 0; i < code.size(); ++i) {
        depth += code[i].Is("{") ? 1 : code[i].Is("}") ? -1 : 0;
        if (depth == 0) widened.clear();
        if (DeclaresVariable(code, i)) {
            const std::size_t last = EndOfStatement(code, i);
            const std::size_t first = EndOfExpression(code, i + 2, false);
            const std::string& name = code[i + 3].text;
            if (last < code.size() && first < last && IsReadAfter(code, last + 1, name) &&
                !IsHidden(code, i, depth, name)) {
                // Before the loop's attributes, if it has some.
                std::size_t place = result.size();
                while (place > 0 && result[place - 1].Is("]"))
                    while (place > 0 && !result[--place].Is("[")) continue;
                const std::size_t start = widened.insert(name).second ? i + 2 : i + 3;   // declared once
                const Tokens declaration = Part(code, start, first + 1);
                result.insert(result.begin() + static_cast<std::ptrdiff_t>(place), declaration.begin(),
                              declaration.end());
                AppendTo(result, {code[i], code[i + 1], code[first]});
                i = first;
                continue;
            }
        }
        result.push_back(code[i]);
    }
    code = std::move(result);
}

}   // namespace sparkrig::fxc
