#include "tools/fxc/macros.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

namespace sparkrig::fxc {

bool MacroExpander::Spend(std::size_t tokens, const Place& place) {
    const bool could = spent_ <= kBudget;
    spent_ += tokens;
    if (could && spent_ > kBudget) diagnostics_.Error(place, ErrorCode::Source, "the macros expand to too much text");
    return spent_ <= kBudget;
}

bool MacroExpander::Next(Sources& sources, Token& token) {
    while (!sources.empty()) {
        Source& source = sources.back();
        if (source.next < source.tokens.size()) {
            token = source.tokens[source.next++];
            return Spend(1, token.place);
        }
        if (source.macro) source.macro->busy = false;
        sources.pop_back();
    }
    return false;
}

void MacroExpander::Expand(Tokens tokens, Tokens& out) {
    Sources sources;
    sources.push_back({std::move(tokens)});
    Token token;
    while (Next(sources, token)) {
        const auto found = token.kind == TokenKind::Identifier ? macros_.find(token.text) : macros_.end();
        if (found != macros_.end() && !token.expanded) {
            Macro& macro = found->second;
            if (macro.busy)
                token.expanded = true;
            else if (ExpandMacro(sources, token, macro))
                continue;
        }
        out.push_back(token);
    }
    for (const Source& source : sources)   // what the spent budget has left
        if (source.macro) source.macro->busy = false;
}

bool MacroExpander::OpenParenthesisFollows(Sources& sources) {
    for (auto source = sources.rbegin(); source != sources.rend(); ++source)
        if (source->next < source->tokens.size()) return source->tokens[source->next].Is("(");
    return false;
}

/// False when the name is not a use of the macro, or when its arguments are wrong.
bool MacroExpander::ExpandMacro(Sources& sources, const Token& name, Macro& macro) {
    std::vector<Tokens> arguments;
    if (macro.takes_arguments) {
        if (!OpenParenthesisFollows(sources) || !ReadArguments(sources, name, arguments)) return false;
        const bool none = macro.parameters.empty() && arguments.size() == 1 && arguments[0].empty();
        if (!none && arguments.size() != macro.parameters.size()) {
            diagnostics_.Error(name.place, ErrorCode::Source,
                               fmt::format("macro '{}' takes {} arguments, not {}", name.text, macro.parameters.size(),
                                           arguments.size()));
            return false;
        }
    }
    Tokens body = Substitute(macro, arguments, name);
    if (!Spend(body.size(), name.place)) return false;
    macro.busy = true;
    sources.push_back({std::move(body), 0, &macro});
    return true;
}

bool MacroExpander::ReadArguments(Sources& sources, const Token& name, std::vector<Tokens>& arguments) {
    Token token;
    Next(sources, token);   // the parenthesis
    arguments.emplace_back();
    for (int open = 1; Next(sources, token);) {
        open += token.Is("(") ? 1 : token.Is(")") ? -1 : 0;
        if (open == 0) return true;
        if (open == 1 && token.Is(",")) {
            arguments.emplace_back();
        } else {
            token.joined &= !arguments.back().empty();   // to nothing in the body
            arguments.back().push_back(token);
        }
    }
    diagnostics_.Error(name.place, ErrorCode::Source, fmt::format("the arguments of '{}' do not end", name.text));
    return false;
}

namespace {

/// "#" before a parameter: the argument as a string.
Token Quote(const Tokens& argument) {
    Token quoted;
    quoted.kind = TokenKind::String;
    for (const Token& token : argument) {
        if (!quoted.text.empty() && !token.joined) quoted.text += ' ';
        quoted.text += token.text;
    }
    return quoted;
}

bool PasteFollows(const Tokens& body, std::size_t i) {
    return i + 1 < body.size() && body[i].Is("#") && body[i + 1].Is("#") && body[i + 1].joined;
}

}   // namespace

/// "##": what stands before it and `token` become one.
void MacroExpander::Paste(Tokens& result, Token token) {
    if (result.empty())
        result.push_back(std::move(token));
    else
        result.back().text += token.text;
}

Tokens MacroExpander::Substitute(const Macro& macro, const std::vector<Tokens>& arguments, const Token& name) {
    Tokens result;
    bool paste = false;
    const auto append = [&](const Tokens& tokens) {
        for (const Token& token : tokens) {
            if (std::exchange(paste, false)) {
                Paste(result, token);
                continue;
            }
            result.push_back(token);
        }
    };
    for (std::size_t i = 0; i < macro.body.size(); ++i) {
        if (PasteFollows(macro.body, i)) {
            paste = true;
            ++i;
            continue;
        }
        const bool quote = macro.body[i].Is("#") && i + 1 < macro.body.size();
        const Token& token = macro.body[quote ? i + 1 : i];
        const auto parameter = std::ranges::find(macro.parameters, token.text);
        if (token.kind != TokenKind::Identifier || parameter == macro.parameters.end()) {
            append({macro.body[i]});
            continue;
        }
        const Tokens& argument = arguments[static_cast<std::size_t>(parameter - macro.parameters.begin())];
        if (quote) {
            append({Quote(argument)});
            ++i;
        } else if (paste || PasteFollows(macro.body, i + 1)) {
            append(argument);
        } else if (++depth_ <= kDeepest) {
            Tokens expanded;
            Expand(argument, expanded);
            append(expanded);
            --depth_;
        } else {
            --depth_;
            append(argument);
        }
        if (!Spend(argument.size(), name.place)) break;
    }
    for (Token& token : result) token.place = name.place;
    if (!result.empty()) result.front().joined = false;
    return result;
}

}   // namespace sparkrig::fxc
