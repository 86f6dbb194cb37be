#include "tools/fxc/preprocessor.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <optional>

#include <fmt/format.h>

#include "platform/system/system.h"
#include "tools/fxc/condition.h"
#include "tools/fxc/lexer.h"
#include "tools/fxc/macros.h"

namespace sparkrig::fxc {

namespace {

constexpr std::size_t kMostBytes = 4 * 1024 * 1024;   // of one file
constexpr std::size_t kMostFiles = 256;               // opened in one run
constexpr std::size_t kDeepestInclude = 32;

std::optional<std::string> ReadText(const std::string& path) {
    std::FILE* file = OpenFileStream(path.c_str(), "rb");
    if (!file) return std::nullopt;
    std::string text(kMostBytes + 1, '\0');
    text.resize(std::fread(text.data(), 1, text.size(), file));
    const bool read = std::ferror(file) == 0;
    std::fclose(file);
    return read ? std::optional(std::move(text)) : std::nullopt;
}

class Preprocessor {
  public:
    explicit Preprocessor(Diagnostics& diagnostics) : diagnostics_(diagnostics), expander_(macros_, diagnostics) {}

    Tokens Run(const std::string& path) {
        Place nowhere;
        nowhere.file = diagnostics_.AddFile(path);
        ProcessFile(path, nowhere.file, nowhere);
        Token end;
        if (!out_.empty()) end.place = out_.back().place;
        out_.push_back(end);
        return std::move(out_);
    }

  private:
    /// One #if with its branches.
    struct Condition {
        Place place;
        bool outer_active;   // what surrounds it is read
        bool active;         // the present branch is read
        bool taken;          // a branch was read
        bool last = false;   // in the #else branch
    };

    struct File {
        std::string path;
        std::vector<Condition> conditions;
        bool Active() const { return conditions.empty() || conditions.back().active; }
    };

    void Error(const Place& place, const std::string& message) {
        diagnostics_.Error(place, ErrorCode::Source, message);
    }

    void ProcessFile(const std::string& path, int file, const Place& from) {
        const std::optional<std::string> text = ReadText(path);
        if (!text) return Error(from, fmt::format("can not open '{}'", path));
        if (text->size() > kMostBytes) return Error(from, fmt::format("'{}' is too large", path));
        Tokens tokens = ReadTokens(*text, file, diagnostics_);
        files_.push_back({path, {}});
        for (std::size_t first = 0; tokens[first].kind != TokenKind::End;) {
            std::size_t last = first + 1;
            const bool directive = tokens[first].Is("#") && tokens[first].starts_line;
            while (tokens[last].kind != TokenKind::End &&
                   !(tokens[last].starts_line && (directive || tokens[last].Is("#"))))
                ++last;
            Tokens part(tokens.begin() + static_cast<std::ptrdiff_t>(first),
                        tokens.begin() + static_cast<std::ptrdiff_t>(last));
            if (files_.back().Active()) CheckStrings(part);
            if (directive)
                ProcessDirective(part);
            else if (files_.back().Active())
                expander_.Expand(std::move(part), out_);
            first = last;
        }
        for (const Condition& open : files_.back().conditions) Error(open.place, "the condition has no #endif");
        files_.pop_back();
    }

    void CheckStrings(const Tokens& part) {
        const auto open = std::ranges::find(part, TokenKind::OpenString, &Token::kind);
        if (open != part.end()) Error(open->place, "the string is not closed");
    }

    void ProcessDirective(const Tokens& line) {
        if (line.size() < 2) return;
        using Handler = void (Preprocessor::*)(const Tokens&);
        struct Row {
            const char* name;
            bool always;   // also where the text is left out
            Handler handle;
        };
        // clang-format off
        static constexpr Row kRows[] = {
            {"define",  false, &Preprocessor::Define},  {"undef",  false, &Preprocessor::Undefine},
            {"include", false, &Preprocessor::Include}, {"error",  false, &Preprocessor::ReportError},
            {"pragma",  false, &Preprocessor::Ignore},  {"line",   false, &Preprocessor::Ignore},
            {"if",      true,  &Preprocessor::If},      {"ifdef",  true,  &Preprocessor::IfDefined},
            {"ifndef",  true,  &Preprocessor::IfNotDefined},
            {"elif",    true,  &Preprocessor::ElseIf},  {"else",   true,  &Preprocessor::Else},
            {"endif",   true,  &Preprocessor::EndIf},
        };
        // clang-format on
        for (const Row& row : kRows) {
            if (!line[1].IsName(row.name)) continue;
            if (row.always || files_.back().Active()) (this->*row.handle)(line);
            return;
        }
        if (files_.back().Active()) Error(line[1].place, fmt::format("unknown directive '#{}'", line[1].text));
    }

    void Ignore(const Tokens&) {}

    void ReportError(const Tokens& line) {
        std::string message;
        for (std::size_t i = 2; i < line.size(); ++i)
            message += (message.empty() || line[i].joined ? "" : " ") + line[i].text;
        Error(line[0].place, "#error " + message);
    }

    /// The name that a directive is about; null and reported when there is none.
    const Token* NameOf(const Tokens& line) {
        if (line.size() > 2 && line[2].kind == TokenKind::Identifier) return &line[2];
        Error(line[1].place, fmt::format("#{} needs a name", line[1].text));
        return nullptr;
    }

    void Define(const Tokens& line) {
        const Token* name = NameOf(line);
        if (!name) return;
        Macro macro;
        std::size_t next = 3;
        if (next < line.size() && line[next].Is("(") && line[next].joined) {
            macro.takes_arguments = true;
            for (++next; next < line.size() && !line[next].Is(")"); ++next)
                if (line[next].kind == TokenKind::Identifier) macro.parameters.push_back(line[next].text);
            if (next == line.size()) return Error(name->place, "the macro's parameters do not end");
            ++next;
        }
        macro.body.assign(line.begin() + static_cast<std::ptrdiff_t>(next), line.end());
        macros_[name->text] = std::move(macro);
    }

    void Undefine(const Tokens& line) {
        if (const Token* name = NameOf(line)) macros_.erase(name->text);
    }

    void Include(const Tokens& line) {
        std::string name;
        if (line.size() > 2 && line[2].kind == TokenKind::String)
            name = line[2].text;
        else
            for (std::size_t i = 3; i + 1 < line.size(); ++i) name += line[i].text;
        if (name.empty()) return Error(line[1].place, "#include needs a file name");
        if (files_.size() >= kDeepestInclude || ++opened_ > kMostFiles)
            return Error(line[1].place, "too many files are included");
        const std::filesystem::path beside = std::filesystem::path(files_.back().path).parent_path();
        const std::string path = ResolvePath((beside / name).c_str());
        ProcessFile(path, diagnostics_.AddFile(path), line[1].place);
    }

    void Enter(const Tokens& line, bool holds) {
        const bool active = files_.back().Active();
        files_.back().conditions.push_back({line[0].place, active, active && holds, holds});
    }

    void If(const Tokens& line) { Enter(line, files_.back().Active() && Holds(line)); }
    void IfDefined(const Tokens& line) {
        const Token* name = NameOf(line);
        Enter(line, name && macros_.contains(name->text));
    }
    void IfNotDefined(const Tokens& line) {
        const Token* name = NameOf(line);
        Enter(line, name && !macros_.contains(name->text));
    }

    /// The open condition that an #elif, #else or #endif belongs to.
    Condition* OpenCondition(const Tokens& line) {
        if (!files_.back().conditions.empty()) return &files_.back().conditions.back();
        Error(line[1].place, fmt::format("#{} without #if", line[1].text));
        return nullptr;
    }

    void ElseIf(const Tokens& line) {
        Condition* open = OpenCondition(line);
        if (!open) return;
        if (open->last) return Error(line[1].place, "#elif after #else");
        open->active = open->outer_active && !open->taken && Holds(line);
        open->taken = open->taken || open->active;
    }

    void Else(const Tokens& line) {
        Condition* open = OpenCondition(line);
        if (!open) return;
        if (open->last) return Error(line[1].place, "a second #else");
        open->last = true;
        open->active = open->outer_active && !open->taken;
    }

    void EndIf(const Tokens& line) {
        if (OpenCondition(line)) files_.back().conditions.pop_back();
    }

    /// "defined NAME" and "defined(NAME)" become 1 or 0 before anything is expanded.
    bool Holds(const Tokens& line) {
        Tokens plain, expanded;
        for (std::size_t i = 2; i < line.size(); ++i) {
            Token token = line[i];
            if (token.IsName("defined")) {
                const bool parenthesis = i + 1 < line.size() && line[i + 1].Is("(");
                i += parenthesis ? 2 : 1;
                token.kind = TokenKind::Number;
                token.text = i < line.size() && macros_.contains(line[i].text) ? "1" : "0";
                if (parenthesis) ++i;
            }
            plain.push_back(token);
        }
        expander_.Expand(std::move(plain), expanded);
        return EvaluateCondition(expanded, line[1].place, diagnostics_) != 0;
    }

    Diagnostics& diagnostics_;
    MacroTable macros_;
    MacroExpander expander_;
    std::vector<File> files_;   // those that are being read, the innermost last
    std::size_t opened_ = 1;
    Tokens out_;
};

}   // namespace

Tokens Preprocess(const std::string& path, Diagnostics& diagnostics) { return Preprocessor(diagnostics).Run(path); }

}   // namespace sparkrig::fxc
