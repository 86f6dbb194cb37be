#include <set>

#include "tools/fxc/code_adaption.h"
#include "tools/fxc/token_tools.h"

namespace sparkrig::fxc {

namespace {

/// A declaration, or a function with its body.
struct Piece {
    std::size_t first = 0, last = 0;
    std::string function;   // its name; empty for anything else
};

/// The name in front of the first parenthesis, if it is that of a function of the effect.
std::string FunctionOf(const ParsedEffect& effect, std::size_t first, std::size_t last) {
    for (std::size_t i = first; i + 1 < last && !effect.code[i].Is("=") && !effect.code[i].Is("{"); ++i)
        if (effect.code[i + 1].Is("("))
            return effect.symbols.functions.contains(effect.code[i].text) ? effect.code[i].text : "";
    return {};
}

std::vector<Piece> Pieces(const ParsedEffect& effect) {
    std::vector<Piece> pieces;
    std::size_t first = 0;
    int depth = 0;
    for (std::size_t i = 0; i < effect.code.size(); ++i) {
        const Token& token = effect.code[i];
        depth += token.Is("{") || token.Is("(") ? 1 : token.Is("}") || token.Is(")") ? -1 : 0;
        if (depth > 0 || !(token.Is(";") || token.Is("}"))) continue;
        pieces.push_back({first, i + 1, FunctionOf(effect, first, i)});
        first = i + 1;
    }
    pieces.push_back({first, effect.code.size(), {}});
    return pieces;
}

}   // namespace

void DropUnusedFunctions(ParsedEffect& effect) {
    const std::vector<Piece> pieces = Pieces(effect);
    std::multimap<std::string, const Piece*> functions;
    std::vector<const Piece*> waiting;   // whose words are still to be looked at
    for (const Piece& piece : pieces) {
        if (piece.function.empty())
            waiting.push_back(&piece);
        else
            functions.emplace(piece.function, &piece);
    }
    std::set<std::string> used;
    while (!waiting.empty()) {
        const Piece piece = *waiting.back();
        waiting.pop_back();
        for (std::size_t i = piece.first; i < piece.last; ++i) {
            const auto [begin, end] = functions.equal_range(effect.code[i].text);
            if (begin == end || !used.insert(effect.code[i].text).second) continue;
            for (auto found = begin; found != end; ++found) waiting.push_back(found->second);
        }
    }
    Tokens code;
    for (const Piece& piece : pieces)
        if (piece.function.empty() || used.contains(piece.function))
            AppendTo(code, Part(effect.code, piece.first, piece.last));
    effect.code = std::move(code);
}

}   // namespace sparkrig::fxc
