#pragma once
#include <string>

#include "tools/fxc/token.h"

namespace sparkrig::fxc {

/// A token that the compiler adds, at the place of one that was written.
Token MadeAt(const Token& place, TokenKind kind, std::string text, bool joined = true);

void AppendTo(Tokens& to, const Tokens& tokens);
/// Words and symbols with blanks between them, all at one place.
void AppendText(Tokens& to, const Token& place, std::string_view text);

/// The tokens from `first` up to `last`, that one excluded.
Tokens Part(const Tokens& tokens, std::size_t first, std::size_t last);

/// The bracket that closes the one at `open`; the number of tokens when there is none.
std::size_t ClosingBracket(const Tokens& tokens, std::size_t open);

/// The semicolon, comma or bracket that ends an expression which begins at `start`; commas end it when asked for.
std::size_t EndOfExpression(const Tokens& tokens, std::size_t start, bool at_comma);

/// Where "=" assigns: no comparison, and not the second half of another operator.
bool IsAssignment(const Tokens& tokens, std::size_t at);

}   // namespace sparkrig::fxc
