#include "tools/fxc/cursor.h"

#include <algorithm>

#include <fmt/format.h>

#include "tools/fxc/state_table.h"

namespace sparkrig::fxc {

namespace {
std::string Described(const Token& token) {
    if (token.kind == TokenKind::End) return "the end of the file";
    return token.kind == TokenKind::String ? "a string" : fmt::format("'{}'", token.text);
}
}   // namespace

const Token& Cursor::Peek(std::size_t ahead) const { return tokens_[std::min(next_ + ahead, tokens_.size() - 1)]; }

const Token& Cursor::Take() {
    const Token& token = Peek();
    if (next_ + 1 < tokens_.size()) ++next_;
    return token;
}

Tokens Cursor::Since(std::size_t position) const {
    const std::size_t first = std::min(position, next_);
    return {tokens_.begin() + static_cast<std::ptrdiff_t>(first), tokens_.begin() + static_cast<std::ptrdiff_t>(next_)};
}

bool Cursor::Accept(const char* symbol) {
    if (!Peek().Is(symbol)) return false;
    Take();
    return true;
}

bool Cursor::AcceptWord(std::string_view word) {
    if (Peek().kind != TokenKind::Identifier || !EqualIgnoringCase(Peek().text, word)) return false;
    Take();
    return true;
}

void Cursor::Expect(const char* symbol, std::string_view where) {
    if (Accept(symbol)) return;
    Fail(Peek(), fmt::format("expected '{}' {} before {}", symbol, where, Described(Peek())));
}

std::string Cursor::ExpectName(std::string_view what) {
    if (Peek().kind == TokenKind::Identifier) return Take().text;
    Fail(Peek(), fmt::format("expected {} before {}", what, Described(Peek())));
    return {};
}

void Cursor::SkipPast(const char* open, const char* close) {
    const Token& start = Peek();
    for (int depth = 1; depth > 0;) {
        if (AtEnd()) return Fail(start, fmt::format("the '{}' before this is not closed", open));
        const Token& token = Take();
        depth += token.Is(open) ? 1 : token.Is(close) ? -1 : 0;
    }
}

void Cursor::Fail(const Token& at, std::string_view message) {
    if (!failed_) diagnostics_.Error(at.place, ErrorCode::Syntax, message);
    failed_ = true;
    next_ = tokens_.size() - 1;
}

}   // namespace sparkrig::fxc
