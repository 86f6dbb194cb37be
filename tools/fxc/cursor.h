#pragma once
#include <string_view>

#include "tools/fxc/diagnostics.h"

namespace sparkrig::fxc {

/// Walks over tokens. The first syntax error is reported and puts the cursor at the end, where nothing is accepted
/// and every loop stops; so nobody has to ask whether a step before went well.
class Cursor {
  public:
    Cursor(const Tokens& tokens, Diagnostics& diagnostics) : tokens_(tokens), diagnostics_(diagnostics) {}

    bool AtEnd() const { return Peek().kind == TokenKind::End; }
    const Token& Peek(std::size_t ahead = 0) const;
    const Token& Take();
    std::size_t Position() const { return next_; }
    void Rewind(std::size_t position) {
        if (!failed_) next_ = position;
    }
    /// The tokens from a position up to the cursor.
    Tokens Since(std::size_t position) const;

    bool Accept(const char* symbol);
    /// A word, in any letter case.
    bool AcceptWord(std::string_view word);
    /// Reports "expected 'symbol' WHERE" when something else comes.
    void Expect(const char* symbol, std::string_view where);
    /// An identifier; empty and reported when something else comes.
    std::string ExpectName(std::string_view what);
    /// Over everything up to the bracket that closes the one just taken, that one included.
    void SkipPast(const char* open, const char* close);

    void Fail(const Token& at, std::string_view message);
    bool Failed() const { return failed_; }
    Diagnostics& Errors() { return diagnostics_; }

  private:
    const Tokens& tokens_;   // the last one is of kind End
    Diagnostics& diagnostics_;
    std::size_t next_ = 0;
    bool failed_ = false;
};

}   // namespace sparkrig::fxc
