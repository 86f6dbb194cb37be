#include "tools/fxc/lexer.h"

#include <fmt/format.h>

namespace sparkrig::fxc {

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }
bool IsWordCharacter(char c) { return IsLetter(c) || IsDigit(c); }

class Lexer {
  public:
    Lexer(std::string_view text, int file, Diagnostics& diagnostics) : text_(text), diagnostics_(diagnostics) {
        here_.file = file;
        if (text_.starts_with("\xEF\xBB\xBF")) text_.remove_prefix(3);   // a byte-order mark
        if (text_.ends_with('\x1A')) text_.remove_suffix(1);             // an old end of a file
    }

    Tokens Run() {
        bool line_started = false;
        while (true) {
            const Skipped skipped = SkipBlanks();
            if (skipped == Skipped::Lines) line_started = false;
            Token token = ReadToken();
            token.joined = skipped == Skipped::Nothing;
            token.starts_line = !line_started;
            line_started = true;
            tokens_.push_back(std::move(token));
            if (tokens_.back().kind == TokenKind::End) return std::move(tokens_);
        }
    }

  private:
    enum class Skipped { Nothing, Blanks, Lines };

    char Peek(std::size_t ahead = 0) const { return next_ + ahead < text_.size() ? text_[next_ + ahead] : '\0'; }
    bool AtEnd() const { return next_ >= text_.size(); }

    void Advance() {
        if (text_[next_++] == '\n') {
            ++here_.line;
            here_.column = 1;
        } else {
            ++here_.column;
        }
    }

    /// A backslash before the end of a line joins the next line to it.
    bool SkipSplice() {
        const std::size_t length = Peek() != '\\'                       ? 0
                                   : Peek(1) == '\n'                    ? 2
                                   : Peek(1) == '\r' && Peek(2) == '\n' ? 3
                                                                        : 0;
        for (std::size_t i = 0; i < length; ++i) Advance();
        return length > 0;
    }

    void SkipLineComment() {
        while (!AtEnd() && Peek() != '\n')
            if (!SkipSplice()) Advance();
    }

    void SkipBlockComment() {
        const Place start = here_;
        Advance();
        Advance();
        while (!AtEnd() && !(Peek() == '*' && Peek(1) == '/')) Advance();
        if (AtEnd()) return diagnostics_.Error(start, ErrorCode::Source, "the comment is not closed");
        Advance();
        Advance();
    }

    Skipped SkipBlanks() {
        Skipped skipped = Skipped::Nothing;
        while (!AtEnd()) {
            const char c = Peek();
            if (c == '/' && Peek(1) == '/') {
                SkipLineComment();
            } else if (c == '/' && Peek(1) == '*') {
                SkipBlockComment();
            } else if (c == ' ' || (c >= '\t' && c <= '\r')) {
                if (c == '\n') skipped = Skipped::Lines;
                Advance();
            } else if (!SkipSplice()) {
                break;
            }
            if (skipped == Skipped::Nothing) skipped = Skipped::Blanks;
        }
        return skipped;
    }

    Token ReadToken() {
        Token token;
        token.place = here_;
        if (AtEnd()) return token;
        const std::size_t start = next_;
        const char c = Peek();
        if (c == '"') {
            ReadString(token);
            return token;
        }
        if (IsLetter(c)) {
            token.kind = TokenKind::Identifier;
            while (IsWordCharacter(Peek())) Advance();
        } else if (IsDigit(c) || (c == '.' && IsDigit(Peek(1)))) {
            token.kind = TokenKind::Number;
            SkipNumber();
        } else {
            token.kind = TokenKind::Symbol;
            Advance();
        }
        token.text = text_.substr(start, next_ - start);
        return token;
    }

    /// Everything that hangs together with a number, such as 1.5e-3f, 0x80FF or 1WEIGHTS.
    void SkipNumber() {
        const bool hexadecimal = Peek() == '0' && (Peek(1) == 'x' || Peek(1) == 'X');
        bool point = false;
        while (IsWordCharacter(Peek()) || (Peek() == '.' && !point && !ComponentsFollow())) {
            const bool exponent = !hexadecimal && (Peek() == 'e' || Peek() == 'E');
            point |= Peek() == '.';
            Advance();
            if (exponent && (Peek() == '+' || Peek() == '-')) Advance();
        }
    }

    /// The point of 1.xxx, not that of 1.f or 1.e3.
    bool ComponentsFollow() const {
        const bool suffix = std::string_view("eEfFhHlL").find(Peek(1)) != std::string_view::npos;
        return IsLetter(Peek(1)) && !(suffix && !IsLetter(Peek(2)));
    }

    /// Only \" and \\ are escapes: file names are full of backslashes.
    void ReadString(Token& token) {
        Advance();
        while (!AtEnd() && Peek() != '"' && Peek() != '\n') {
            if (SkipSplice()) continue;
            if (Peek() == '\\' && (Peek(1) == '"' || Peek(1) == '\\')) Advance();
            token.text += Peek();
            Advance();
        }
        token.kind = Peek() == '"' ? TokenKind::String : TokenKind::OpenString;
        if (token.kind == TokenKind::String) Advance();
    }

    std::string_view text_;
    Diagnostics& diagnostics_;
    std::size_t next_ = 0;
    Place here_;
    Tokens tokens_;
};

}   // namespace

Tokens ReadTokens(std::string_view text, int file, Diagnostics& diagnostics) {
    return Lexer(text, file, diagnostics).Run();
}

}   // namespace sparkrig::fxc
