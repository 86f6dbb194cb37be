#include "tools/fxc/token_tools.h"

namespace sparkrig::fxc {

namespace {
bool Opens(const Token& token) { return token.Is("(") || token.Is("[") || token.Is("{"); }
bool Closes(const Token& token) { return token.Is(")") || token.Is("]") || token.Is("}"); }
}   // namespace

Token MadeAt(const Token& place, TokenKind kind, std::string text, bool joined) {
    Token token;
    token.kind = kind;
    token.text = std::move(text);
    token.place = place.place;
    token.joined = joined;
    return token;
}

void AppendTo(Tokens& to, const Tokens& tokens) { to.insert(to.end(), tokens.begin(), tokens.end()); }

void AppendText(Tokens& to, const Token& place, std::string_view text) {
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(' '), text.size());
        const std::string_view word = text.substr(0, end);
        const bool letter = std::isalpha(static_cast<unsigned char>(word[0])) != 0 || word[0] == '_';
        const bool digit = std::isdigit(static_cast<unsigned char>(word[0])) != 0;
        to.push_back(MadeAt(place,
                            letter  ? TokenKind::Identifier
                            : digit ? TokenKind::Number
                                    : TokenKind::Symbol,
                            std::string(word), false));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

Tokens Part(const Tokens& tokens, std::size_t first, std::size_t last) {
    return {tokens.begin() + static_cast<std::ptrdiff_t>(first), tokens.begin() + static_cast<std::ptrdiff_t>(last)};
}

std::size_t ClosingBracket(const Tokens& tokens, std::size_t open) {
    int depth = 0;
    for (std::size_t i = open; i < tokens.size(); ++i) {
        depth += Opens(tokens[i]) ? 1 : Closes(tokens[i]) ? -1 : 0;
        if (depth == 0) return i;
    }
    return tokens.size();
}

std::size_t EndOfExpression(const Tokens& tokens, std::size_t start, bool at_comma) {
    std::size_t i = start;
    for (; i < tokens.size(); ++i) {
        if (tokens[i].Is(";") || Closes(tokens[i]) || (at_comma && tokens[i].Is(","))) return i;
        if (Opens(tokens[i])) i = ClosingBracket(tokens, i);
    }
    return tokens.size();
}

bool IsAssignment(const Tokens& tokens, std::size_t at) {
    if (at >= tokens.size() || !tokens[at].Is("=")) return false;
    if (at + 1 < tokens.size() && tokens[at + 1].Is("=") && tokens[at + 1].joined) return false;
    if (at == 0 || !tokens[at].joined) return true;
    for (const char* first : {"=", "!", "<", ">", "+", "-", "*", "/", "%", "&", "|", "^"})
        if (tokens[at - 1].Is(first)) return false;
    return true;
}

}   // namespace sparkrig::fxc
