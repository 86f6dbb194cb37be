#include "tools/fxc/entry_functions.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "tools/fxc/code_names.h"
#include "tools/fxc/token_tools.h"

namespace sparkrig::fxc {

namespace {

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

/// Of functions with one name, the one that has semantics is the one to start with.
const FunctionSignature* FindEntry(const Symbols& symbols, const std::string& name) {
    const auto found = symbols.functions.find(name);
    if (found == symbols.functions.end()) return nullptr;
    const auto has_semantics = [](const FunctionSignature& signature) {
        return !signature.result_semantic.empty() ||
               std::ranges::any_of(signature.parameters, [](const auto& p) { return !p.semantic.empty(); });
    };
    const auto chosen = std::ranges::find_if(found->second, has_semantics);
    return chosen == found->second.end() ? &found->second.back() : &*chosen;
}

class EntryWriter {
  public:
    EntryWriter(const FunctionRequest& request, const FunctionSignature& signature)
        : request_(request), signature_(signature) {
        at_.place = request.place;
    }

    /// RESULT NAME(parameters) SEMANTIC { fxc_initialise(); uniform values; return ENTRY(all parameters); }
    Tokens Write(const std::string& name) {
        AppendText(body_, at_, "{ fxc_initialise ( ) ;");
        for (const FunctionParameter& parameter : signature_.parameters) {
            if (!call_.empty()) AppendText(call_, at_, ",");
            if (parameter.uniform)
                AddUniform(parameter);
            else
                AddParameter(parameter);
        }
        if (signature_.result_type)
            AppendTo(entry_, signature_.result_type->spelling);
        else
            AppendText(entry_, at_, "void");
        AppendText(entry_, at_, name + " (");
        AppendTo(entry_, parameters_);
        AppendText(entry_, at_, ")");
        AppendTo(entry_, signature_.result_semantic);
        AppendTo(entry_, body_);
        if (signature_.result_type) AppendText(entry_, at_, "return");
        AppendText(entry_, at_, request_.entry + " (");
        AppendTo(entry_, call_);
        AppendText(entry_, at_, ") ; }");
        for (Token& token : entry_) {
            token.place = request_.place;
            token.joined = false;
        }
        return std::move(entry_);
    }

  private:
    /// A number is converted as an assignment does; what is left out has its default, or is 0.
    void AddUniform(const FunctionParameter& parameter) {
        Tokens value = next_ < request_.arguments.size() ? request_.arguments[next_] : parameter.default_value;
        ++next_;
        const bool object = !IsNumeric(parameter.type.kind) || !parameter.dimensions.empty();
        if (object && !value.empty()) return AppendTo(call_, value);
        const std::string name = fmt::format("fxc_uniform_{}", next_);
        AppendTo(body_, parameter.type.spelling);
        AppendText(body_, at_, name);
        AppendTo(body_, parameter.dimensions);
        if (parameter.dimensions.empty()) {
            AppendText(body_, at_, "= (");
            AppendTo(body_, parameter.type.spelling);
            AppendText(body_, at_, ") (");
            if (value.empty()) AppendText(body_, at_, "0");
            AppendTo(body_, value);
            AppendText(body_, at_, ")");
        }
        AppendText(body_, at_, ";");
        AppendText(call_, at_, name);
    }

    void AddParameter(const FunctionParameter& parameter) {
        if (!parameters_.empty()) AppendText(parameters_, at_, ",");
        AppendTo(parameters_, parameter.direction);
        AppendTo(parameters_, parameter.type.spelling);
        AppendText(parameters_, at_, parameter.name);
        AppendTo(parameters_, parameter.dimensions);
        AppendTo(parameters_, parameter.semantic);
        AppendText(call_, at_, parameter.name);
    }

    const FunctionRequest& request_;
    const FunctionSignature& signature_;
    Token at_;
    Tokens entry_, parameters_, body_, call_;
    std::size_t next_ = 0;   // argument
};

}   // namespace

std::string EntryName(std::size_t request) { return fmt::format("fxc_entry_{}", request); }

void AddEntryFunctions(ParsedEffect& effect, Diagnostics& diagnostics) {
    for (std::size_t i = 0; i < effect.requests.size(); ++i) {
        const FunctionRequest& request = effect.requests[i];
        if (!effect.file.functions[i].unsupported.empty()) continue;
        const auto error = [&](const std::string& text) {
            diagnostics.Error(request.place, ErrorCode::Code, fmt::format("{}: {}", request.entry, text));
        };
        const FunctionSignature* signature = FindEntry(effect.symbols, request.entry);
        if (!signature) {
            error(fmt::format("there is no function '{}'", request.entry));
            continue;
        }
        const auto uniforms =
            static_cast<std::size_t>(std::ranges::count_if(signature->parameters, &FunctionParameter::uniform));
        if (request.arguments.size() > uniforms) {
            error(fmt::format("'{}' has {} uniform parameters, not {}", request.entry, uniforms,
                              request.arguments.size()));
            continue;
        }
        AppendTo(effect.code, EntryWriter(request, *signature).Write(EntryName(i)));
    }
}

std::string CodeText(const Tokens& code) {
    TokenPrinter printer;
    printer.Print(code);
    return kIntrinsicFunctions + printer.Take() + "\n";
}

}   // namespace sparkrig::fxc
