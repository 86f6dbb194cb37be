#include <set>
#include <utility>

#include "tools/fxc/code_adaption.h"
#include "tools/fxc/token_tools.h"

namespace sparkrig::fxc {

namespace {

bool IsName(const Tokens& code, std::size_t at, const std::string& name) {
    return code[at].IsName(name.c_str()) && !(at > 0 && code[at - 1].Is("."));
}

/// Behind a name with its indices and members.
std::size_t EndOfPlace(const Tokens& code, std::size_t name) {
    std::size_t i = name + 1;
    while (i + 1 < code.size()) {
        if (code[i].Is("["))
            i = ClosingBracket(code, i) + 1;
        else if (code[i].Is(".") && code[i + 1].kind == TokenKind::Identifier)
            i += 2;
        else
            break;
    }
    return std::min(i, code.size());
}

bool IsPair(const Tokens& code, std::size_t at, char symbol) {
    const std::string text(1, symbol);
    return at + 1 < code.size() && code[at].Is(text.c_str()) && code[at + 1].Is(text.c_str()) && code[at + 1].joined;
}

/// Whether what is named at `name` gets a value there: NAME.x = ..., NAME += ..., NAME++, --NAME.
bool IsAssigned(const Tokens& code, std::size_t name) {
    const std::size_t end = EndOfPlace(code, name);
    if (end + 1 >= code.size()) return false;
    if (IsAssignment(code, end) || IsPair(code, end, '+') || IsPair(code, end, '-')) return true;
    if (name >= 2 && (IsPair(code, name - 2, '+') || IsPair(code, name - 2, '-'))) return true;
    const std::string_view operators = "+-*/%&|^";
    return code[end].kind == TokenKind::Symbol && operators.find(code[end].text) != std::string_view::npos &&
           code[end + 1].Is("=") && code[end + 1].joined;
}

/// A declaration: the name stands behind the name of its type.
bool IsDeclared(const Tokens& code, std::size_t name) {
    return name > 0 && code[name - 1].kind == TokenKind::Identifier && !code[name - 1].IsName("return") &&
           !code[name - 1].IsName("else") && !code[name - 1].IsName("do");
}

/// The parameters that functions assign and do not declare for themselves.
std::set<std::string> AssignedParameters(const ParsedEffect& effect) {
    const Tokens& code = effect.code;
    std::set<std::string> assigned, own;
    int depth = 0;
    for (std::size_t i = 0; i < code.size(); ++i) {
        depth += code[i].Is("{") ? 1 : code[i].Is("}") ? -1 : 0;
        if (depth == 0 && (code[i].Is("}") || code[i].Is(";"))) own.clear();
        const std::string& name = code[i].text;
        if (code[i].kind != TokenKind::Identifier || !effect.symbols.parameters.contains(name)) continue;
        if (!IsName(code, i, name)) continue;
        if (IsDeclared(code, i))
            own.insert(name);
        else if (depth > 0 && !own.contains(name) && IsAssigned(code, i))
            assigned.insert(name);
    }
    return assigned;
}

/// The places of a parameter, or of what is in it, under the name that takes its value; false for no parameter.
bool MovePlaces(const std::string& name, std::map<std::string, DWORD>& places) {
    std::map<std::string, DWORD> moved;
    for (const auto& [path, parameter] : places)
        if (path.starts_with(name) &&
            (path.size() == name.size() || path[name.size()] == '.' || path[name.size()] == '['))
            moved["fxc_in_" + path] = parameter;
    places.insert(moved.begin(), moved.end());
    return !moved.empty();
}

}   // namespace

void CopyAssignedGlobals(ParsedEffect& effect) {
    std::set<std::string> left = AssignedParameters(effect);
    if (left.empty()) return;
    Tokens result, starts;
    int depth = 0;
    std::size_t declaration = 0;   // the first token of the one that is being read
    for (std::size_t i = 0; i < effect.code.size(); ++i) {
        const Token token = effect.code[i];
        depth += token.Is("{") || token.Is("(") ? 1 : token.Is("}") || token.Is(")") ? -1 : 0;
        if (token.IsName("fxc_initialise") && effect.code[i + 1].Is("(") && IsDeclared(effect.code, i)) {
            AppendTo(result, Part(effect.code, i, i + 4));   // NAME ( ) {
            AppendTo(result, starts);
            i += 3;
            ++depth;
            continue;
        }
        result.push_back(token);
        const bool ends = depth == 0 && (token.Is(";") || token.Is("}"));
        if (!ends) continue;
        const std::size_t first = std::exchange(declaration, i + 1);
        const auto name = left.find(i > first + 1 ? effect.code[first + 1].text : std::string());
        if (name == left.end() || !MovePlaces(*name, effect.places)) continue;
        // TYPE NAME [n]; becomes TYPE fxc_in_NAME [n]; static TYPE NAME [n];
        Tokens line = Part(effect.code, first, i + 1);
        result[result.size() - line.size() + 1].text = "fxc_in_" + *name;
        AppendText(result, token, "static");
        AppendTo(result, line);
        AppendText(starts, token, *name + " = fxc_in_" + *name + " ;");
        left.erase(name);
    }
    effect.code = std::move(result);
}

}   // namespace sparkrig::fxc
