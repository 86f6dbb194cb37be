#pragma once
#include <map>
#include <string>
#include <vector>

#include "tools/fxc/diagnostics.h"

namespace sparkrig::fxc {

struct Macro {
    bool takes_arguments = false;
    std::vector<std::string> parameters;
    Tokens body;
    bool busy = false;   // its expansion is being read
};

using MacroTable = std::map<std::string, Macro, std::less<>>;

/// Replaces macros by what they stand for. Every expansion of a run draws on one budget of tokens, so that macros
/// that multiply each other end in an error instead of in all the memory.
class MacroExpander {
  public:
    MacroExpander(MacroTable& macros, Diagnostics& diagnostics) : macros_(macros), diagnostics_(diagnostics) {}

    /// Appends the expanded tokens to `out`. Empty-handed after the budget is spent.
    void Expand(Tokens tokens, Tokens& out);

  private:
    struct Source {
        Tokens tokens;
        std::size_t next = 0;
        Macro* macro = nullptr;   // whose expansion this is; null for the text itself
    };
    using Sources = std::vector<Source>;

    static constexpr int kBudget = 1'000'000;
    static constexpr int kDeepest = 64;   // arguments in arguments

    bool Next(Sources& sources, Token& token);
    static bool OpenParenthesisFollows(Sources& sources);
    bool ReadArguments(Sources& sources, const Token& name, std::vector<Tokens>& arguments);
    bool ExpandMacro(Sources& sources, const Token& name, Macro& macro);
    Tokens Substitute(const Macro& macro, const std::vector<Tokens>& arguments, const Token& name);
    static void Paste(Tokens& result, Token token);
    bool Spend(std::size_t tokens, const Place& place);

    MacroTable& macros_;
    Diagnostics& diagnostics_;
    std::size_t spent_ = 0;
    int depth_ = 0;
};

}   // namespace sparkrig::fxc
