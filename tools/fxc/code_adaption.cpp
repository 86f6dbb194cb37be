#include "tools/fxc/code_adaption.h"

#include <fmt/format.h>

#include "tools/fxc/code_names.h"
#include "tools/fxc/token_tools.h"

namespace sparkrig::fxc {

void AdaptCode(ParsedEffect& effect, Diagnostics& diagnostics) {
    if (effect.later_models) DropUnusedFunctions(effect);
    CheckOperands(effect.code, diagnostics);
    CopyAssignedGlobals(effect);
    SpellOut(effect);
    FlattenThinMatrices(effect.code);
    ShapeSamplers(effect, diagnostics);
    WidenLoopVariables(effect.code);
    ShapeLists(effect);
    AdaptMatrices(effect, diagnostics);
}

namespace {

bool IsOneOf(const Token& token, std::string_view symbols) {
    return token.kind == TokenKind::Symbol && symbols.find(token.text) != std::string_view::npos;
}

/// "++" and "--", whose halves are no operators.
bool IsStep(const Tokens& code, std::size_t at) {
    const auto same = [&](std::size_t other) {
        return other < code.size() && IsOneOf(code[at], "+-") && code[other].Is(code[at].text.c_str());
    };
    return (at > 0 && code[at].joined && same(at - 1)) || (same(at + 1) && code[at + 1].joined);
}

}   // namespace

void CheckOperands(const Tokens& code, Diagnostics& diagnostics) {
    for (std::size_t i = 0; i + 1 < code.size(); ++i) {
        const Token &token = code[i], &next = code[i + 1];
        const bool wants_operand = IsOneOf(token, "*/%+-=<&|^?!~.") && !IsStep(code, i);
        const bool ends = wants_operand && IsOneOf(next, ");],}");
        const bool second = IsOneOf(next, "*/%") && (IsOneOf(token, "(,[") || (wants_operand && !next.joined));
        if (!ends && !second) continue;
        diagnostics.Error(next.place, ErrorCode::Code, fmt::format("expected a value before '{}'", next.text));
        return;
    }
}

}   // namespace sparkrig::fxc
