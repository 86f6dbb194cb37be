#pragma once
#include <string>
#include <vector>

namespace sparkrig::fxc {

/// Where something stands in the sources. `file` is an index into Diagnostics' names; line and column count from 1.
struct Place {
    int file = 0;
    int line = 1;
    int column = 1;
};

enum class TokenKind { Identifier, Number, String, OpenString, Symbol, End };

/// A symbol is one character; `joined` tells that it follows the token before it without a blank.
struct Token {
    TokenKind kind = TokenKind::End;
    std::string text;   // of a string: its content
    Place place;
    bool joined = false;
    bool starts_line = false;
    bool expanded = false;   // a macro's name inside its own expansion: it stays as it is

    bool Is(const char* symbol) const { return kind == TokenKind::Symbol && text == symbol; }
    bool IsName(const char* name) const { return kind == TokenKind::Identifier && text == name; }
};

using Tokens = std::vector<Token>;

}   // namespace sparkrig::fxc
