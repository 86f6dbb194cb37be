#include "tools/fxc/function_text.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

namespace sparkrig::fxc {

namespace {

constexpr const char* kPreamble =
    "#pragma pack_matrix(row_major)\n"
    "#define tex1D(s, x) tex2D(s, float2((x), 0.5))\n";

/// Writes tokens so that each stands in the line that it came from.
class TokenPrinter {
  public:
    void Print(const Tokens& tokens) {
        for (const Token& token : tokens) Print(token);
    }

    void MoveTo(const Place& place) {
        text_ += fmt::format("\n#line {} \"{}\"\n", place.line, place.file);
        file_ = place.file;
        line_ = place.line;
    }
    std::string Take() { return std::move(text_); }

  private:
    void Print(const Token& token) {
        constexpr int kMostEmptyLines = 8;
        if (token.place.file != file_ || token.place.line < line_ || token.place.line > line_ + kMostEmptyLines) {
            MoveTo(token.place);
        } else if (token.place.line > line_) {
            text_.append(static_cast<std::size_t>(token.place.line - line_), '\n');
            line_ = token.place.line;
        } else if (!token.joined) {
            text_ += ' ';
        }
        text_ += token.kind == TokenKind::String ? '"' + token.text + '"' : token.text;
    }

    std::string text_;
    int file_ = -1;
    int line_ = 0;
};

Tokens Placed(Tokens tokens, const Place& place) {
    for (Token& token : tokens) {
        token.place = place;
        token.joined = false;
    }
    return tokens;
}

Token Word(const std::string& text) {
    Token token;
    token.kind = TokenKind::Symbol;
    token.text = text;
    return token;
}

/// RESULT fxc_entry(the other parameters) SEMANTIC { return ENTRY(all parameters); }
Tokens Wrapper(const FunctionSignature& signature, const FunctionRequest& request, const std::string& name) {
    Tokens head = signature.result, body;
    const auto add = [](Tokens& to, const Tokens& tokens) { to.insert(to.end(), tokens.begin(), tokens.end()); };
    add(head, {Word(name), Word("(")});
    const bool is_void = signature.result.size() == 1 && signature.result[0].text == "void";
    add(body, {Word("{"), Word(is_void ? "" : "return"), Word(request.entry), Word("(")});
    bool first_head = true, first_body = true;
    auto argument = request.arguments.begin();
    for (const FunctionParameter& parameter : signature.parameters) {
        if (!std::exchange(first_body, false)) body.push_back(Word(","));
        if (parameter.uniform) {
            add(body, *argument++);
            continue;
        }
        if (!std::exchange(first_head, false)) head.push_back(Word(","));
        add(head, parameter.declaration);
        body.push_back(Word(parameter.name));
    }
    head.push_back(Word(")"));
    add(head, signature.result_semantic);
    add(body, {Word(")"), Word(";"), Word("}")});
    add(head, body);
    return Placed(std::move(head), request.place);
}

}   // namespace

bool WriteFunctionText(const ParsedEffect& effect, const FunctionRequest& request, FunctionText& out,
                       std::string& error) {
    const auto found = effect.symbols.functions.find(request.entry);
    if (found == effect.symbols.functions.end()) {
        error = fmt::format("there is no function '{}'", request.entry);
        return false;
    }
    const FunctionSignature& signature = found->second;
    const auto uniforms = static_cast<std::size_t>(
        std::ranges::count_if(signature.parameters, [](const FunctionParameter& p) { return p.uniform; }));
    if (uniforms != request.arguments.size()) {
        error =
            fmt::format("'{}' has {} uniform parameters, not {}", request.entry, uniforms, request.arguments.size());
        return false;
    }
    TokenPrinter printer;
    printer.Print(effect.code);
    out.entry = request.entry;
    if (uniforms > 0) {
        out.entry = "fxc_entry";
        printer.Print(Wrapper(signature, request, out.entry));
    }
    out.text = kPreamble + printer.Take() + "\n";
    return true;
}

}   // namespace sparkrig::fxc
