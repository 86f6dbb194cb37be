#include <algorithm>
#include <optional>

#include "tools/fxc/code_adaption.h"

#include "tools/fxc/matrix_swizzle.h"
#include "tools/fxc/token_tools.h"
#include "tools/fxc/type_parser.h"

namespace sparkrig::fxc {

std::vector<Element> ParseMatrixSwizzle(std::string_view word) {
    std::vector<Element> elements;
    while (!word.empty()) {
        const bool from_zero = word.size() >= 4 && word[1] == 'm';
        const std::size_t size = from_zero ? 4 : 3;
        if (word.size() < size || word[0] != '_') return {};
        const char base = from_zero ? '0' : '1';
        const Element element{word[size - 2] - base, word[size - 1] - base};
        if (element.row < 0 || element.row > 3 || element.column < 0 || element.column > 3) return {};
        elements.push_back(element);
        word.remove_prefix(size);
    }
    return elements.size() <= 4 ? elements : std::vector<Element>{};
}

namespace {

constexpr std::size_t kMostTokens = 2'000'000;

/// The first token of the operand that ends before `end`: a name with indices, members and calls, or parentheses.
std::size_t OperandStart(const Tokens& code, std::size_t end) {
    std::size_t start = end;
    while (start > 0) {
        if (code[start - 1].Is("]") || code[start - 1].Is(")")) {
            int depth = 0;
            do {
                --start;
                depth += code[start].Is("]") || code[start].Is(")")   ? 1
                         : code[start].Is("[") || code[start].Is("(") ? -1
                                                                      : 0;
            } while (depth > 0 && start > 0);
            const bool named = start > 0 && (code[start - 1].kind == TokenKind::Identifier || code[start - 1].Is("]"));
            if (!named) return start;
            continue;
        }
        if (code[start - 1].kind != TokenKind::Identifier) return start;
        --start;
        if (start == 0 || !code[start - 1].Is(".")) return start;
        --start;
    }
    return start;
}

void AppendElement(Tokens& code, const Element& element, const Token& place) {
    for (const int index : {element.row, element.column}) {
        code.push_back(MadeAt(place, TokenKind::Symbol, "["));
        code.push_back(MadeAt(place, TokenKind::Number, std::to_string(index)));
        code.push_back(MadeAt(place, TokenKind::Symbol, "]"));
    }
}

/// M._m30_m31 becomes float2(M[3][0], M[3][1]), and M._m30 becomes M[3][0].
void ReplaceSwizzle(Tokens& code, const std::vector<Element>& elements, const Token& place) {
    if (elements.size() == 1) return AppendElement(code, elements[0], place);
    const std::size_t start = OperandStart(code, code.size());
    const Tokens operand(code.begin() + static_cast<std::ptrdiff_t>(start), code.end());
    code.resize(start);
    code.push_back(MadeAt(place, TokenKind::Identifier, "float" + std::to_string(elements.size())));
    code.back().joined = false;
    const char* separator = "(";
    for (const Element& element : elements) {
        code.push_back(MadeAt(place, TokenKind::Symbol, separator));
        code.insert(code.end(), operand.begin(), operand.end());
        AppendElement(code, element, place);
        separator = ",";
    }
    code.push_back(MadeAt(place, TokenKind::Symbol, ")"));
}

void ReplaceSwizzles(Tokens& code, Diagnostics& diagnostics) {
    Tokens result;
    result.reserve(code.size());
    for (std::size_t i = 0; i < code.size(); ++i) {
        std::vector<Element> elements;
        if (code[i].Is(".") && i + 1 < code.size()) elements = ParseMatrixSwizzle(code[i + 1].text);
        if (elements.empty()) {
            result.push_back(code[i]);
            continue;
        }
        ReplaceSwizzle(result, elements, code[i]);
        ++i;
        if (result.size() > kMostTokens)
            return diagnostics.Error(code[i].place, ErrorCode::Code, "the matrix elements are nested too deeply");
    }
    code = std::move(result);
}

// ---- Assignments that the compiler does not take

bool BeginsStatement(const Tokens& code, std::size_t at) {
    if (at == 0) return false;
    const Token& before = code[at - 1];
    return before.Is(";") || before.Is("{") || before.Is("}") || before.Is(")") || before.IsName("else");
}

/// Behind an operand: a name or parentheses, with indices and members.
std::size_t EndOfOperand(const Tokens& code, std::size_t start) {
    std::size_t i = code[start].Is("(") ? ClosingBracket(code, start) + 1 : start + 1;
    while (i < code.size()) {
        if (code[i].Is("[") || (code[i].Is("(") && i == start + 1 && code[start].kind == TokenKind::Identifier))
            i = ClosingBracket(code, i) + 1;
        else if (code[i].Is(".") && i + 1 < code.size())
            i += 2;
        else
            break;
    }
    return std::min(i, code.size());
}

/// What is known of the variables while the code is read from front to back: the type that a name was declared with
/// last. Scopes do not matter, since a cast to a variable's own type changes nothing.
using Declared = std::map<std::string, Type>;

std::optional<Type> NumbersAt(const Tokens& code, std::size_t at) {
    if (code[at].kind != TokenKind::Identifier) return std::nullopt;
    const std::optional<Type> type = BuiltInType(code[at].text, LetterCase::Exact);
    return type && IsNumeric(type->kind) ? type : std::nullopt;
}

class AssignmentRewriter {
  public:
    explicit AssignmentRewriter(Tokens& code) : code_(code) {}

    void Run() {
        Tokens result;
        for (std::size_t i = 0; i < code_.size();) {
            Learn(i);
            std::size_t next = i;
            if (BeginsStatement(code_, i)) next = Rewrite(i, result);
            if (next == i && code_[i].Is("=")) next = RewriteArrayValue(i, result);
            if (next == i) result.push_back(code_[next++]);
            i = next;
        }
        code_ = std::move(result);
    }

  private:
    void Learn(std::size_t i) {
        const std::optional<Type> type = i + 2 < code_.size() ? NumbersAt(code_, i) : std::nullopt;
        if (type && code_[i + 1].kind == TokenKind::Identifier) declared_[code_[i + 1].text] = *type;
    }

    /// Behind the statement when it was rewritten, `i` otherwise.
    std::size_t Rewrite(std::size_t i, Tokens& result) {
        if (code_[i].kind != TokenKind::Identifier) return i;
        if (NumbersAt(code_, i) && i + 1 < code_.size() && code_[i + 1].Is("(")) return RewriteConstructor(i, result);
        const std::size_t end = EndOfOperand(code_, i);
        if (end < i + 3 || end + 1 >= code_.size()) return RewriteArray(i, end, result);
        const std::vector<Element> elements = ParseMatrixSwizzle(code_[end - 1].text);
        const bool compound = code_[end + 1].Is("=") && code_[end + 1].joined &&
                              std::string_view("+-*/").find(code_[end].text) != std::string_view::npos;
        if (elements.size() < 2 || !code_[end - 2].Is(".") || !(compound || IsAssignment(code_, end)))
            return RewriteArray(i, end, result);
        const std::size_t value = end + (compound ? 2 : 1), last = EndOfExpression(code_, value, false);
        const Token& at = code_[i];
        Open(at, "float" + std::to_string(elements.size()), "", value, last, result);
        for (std::size_t k = 0; k < elements.size(); ++k) {
            AppendTo(result, Part(code_, i, end - 2));
            AppendElement(result, elements[k], at);
            AppendText(result, at,
                       std::string(compound ? code_[end].text + "=" : "=") + " fxc_value . " + "xyzw"[k] + " ;");
        }
        AppendText(result, at, "}");
        return last + 1;
    }

    /// { TYPE fxc_value = (the value);
    void Open(const Token& at, const std::string& type, const std::string& dimensions, std::size_t value,
              std::size_t last, Tokens& result) {
        AppendText(result, at, "{ " + type + " fxc_value" + dimensions + " =");
        if (dimensions.empty()) AppendText(result, at, "(");
        AppendTo(result, Part(code_, value, last));
        AppendText(result, at, dimensions.empty() ? ") ;" : ";");
    }

    std::size_t WidthOf(std::size_t first, std::size_t last) const {
        if (last > first + 1 && code_[last - 2].Is(".")) return code_[last - 1].text.size();
        const auto found = declared_.find(code_[first].text);
        return found == declared_.end() || last > first + 1 ? 1 : found->second.columns;
    }

    /// float4(a, b) = v; becomes { float4 fxc_value = v; a = fxc_value.xy; b = fxc_value.zw; }
    std::size_t RewriteConstructor(std::size_t i, Tokens& result) {
        const std::size_t close = ClosingBracket(code_, i + 1);
        if (!IsAssignment(code_, close + 1)) return i;
        const std::size_t last = EndOfExpression(code_, close + 2, false);
        const Token& at = code_[i];
        Tokens rewritten;
        Open(at, code_[i].text, "", close + 2, last, rewritten);
        std::size_t place = 0;
        for (std::size_t part = i + 2; part < close;) {
            const std::size_t end = EndOfExpression(code_, part, true), width = WidthOf(part, end);
            if (place + width > 4) return i;
            AppendTo(rewritten, Part(code_, part, end));
            AppendText(rewritten, at, "= fxc_value . " + std::string("xyzw").substr(place, width) + " ;");
            place += width;
            part = end + 1;
        }
        AppendText(rewritten, at, "}");
        AppendTo(result, rewritten);
        return last + 1;
    }

    /// The elements of "(float[4])operand" at `i`; empty for anything else.
    Tokens ArrayElements(std::size_t i, std::size_t& end) const {
        if (i + 6 >= code_.size() || !code_[i].Is("(") || !NumbersAt(code_, i + 1) || !code_[i + 2].Is("[")) return {};
        if (!code_[i + 4].Is("]") || !code_[i + 5].Is(")")) return {};
        const int count = std::atoi(code_[i + 3].text.c_str());
        if (count < 1 || count > 4) return {};
        end = EndOfOperand(code_, i + 6);
        Tokens elements;
        for (int k = 0; k < count; ++k) {
            AppendText(elements, code_[i], k == 0 ? "{" : ",");
            AppendText(elements, code_[i], "( " + code_[i + 1].text + " ) ( (");
            AppendTo(elements, Part(code_, i + 6, end));
            AppendText(elements, code_[i], ") [ " + std::to_string(k) + " ] )");
        }
        AppendText(elements, code_[i], "}");
        return elements;
    }

    /// The value of a declaration: = (float[4])v
    std::size_t RewriteArrayValue(std::size_t i, Tokens& result) {
        std::size_t end = i;
        const Tokens elements = ArrayElements(i + 1, end);
        if (elements.empty()) return i;
        result.push_back(code_[i]);
        AppendTo(result, elements);
        return end;
    }

    /// a = (float[4])v;
    std::size_t RewriteArray(std::size_t i, std::size_t equal, Tokens& result) {
        std::size_t end = i;
        if (!IsAssignment(code_, equal)) return i;
        const Tokens elements = ArrayElements(equal + 1, end);
        if (elements.empty()) return i;
        AppendText(result, code_[i], "{ " + code_[equal + 2].text + " fxc_value [ " + code_[equal + 4].text + " ] =");
        AppendTo(result, elements);
        AppendText(result, code_[i], ";");
        AppendTo(result, Part(code_, i, equal));
        AppendText(result, code_[i], "= fxc_value ; }");
        return end + 1;
    }

    Tokens& code_;
    Declared declared_;
};

// ---- Matrices that are cut

/// Puts a cast around every value that is given to a matrix.
class MatrixCutter {
  public:
    explicit MatrixCutter(ParsedEffect& effect) : effect_(effect), code_(effect.code) {}

    void Run() {
        for (std::size_t i = 0; i + 2 < code_.size(); ++i) {
            depth_ += code_[i].Is("{") ? 1 : code_[i].Is("}") ? -1 : 0;
            if (code_[i].kind != TokenKind::Identifier) continue;
            if (code_[i + 1].kind == TokenKind::Identifier) Declaration(i);
            if (code_[i].IsName("return") && result_) Cast(*result_, i + 1, false);
            if (BeginsStatement(code_, i) && IsAssignment(code_, i + 1)) Assignment(i);
            if (code_[i + 1].Is("(") &&
                (i == 0 || code_[i - 1].kind != TokenKind::Identifier || code_[i - 1].IsName("return")))
                Call(i);
        }
        Insert();
    }

  private:
    void Declaration(std::size_t i) {
        const std::optional<Type> type = NumbersAt(code_, i);
        const bool matrix = type && type->kind == VariableClass::Matrix;
        if (code_[i + 2].Is("(")) {
            if (depth_ == 0) result_ = matrix ? type : std::nullopt;
            return;
        }
        if (!type) return;
        for (std::size_t name = i + 1; name + 1 < code_.size();) {   // and those behind commas
            declared_[code_[name].text] = code_[name + 1].Is("[") ? Type{} : *type;
            if (matrix && IsAssignment(code_, name + 1)) Cast(*type, name + 2, true);
            const std::size_t end = EndOfExpression(code_, name, true);
            const bool more = end + 2 < code_.size() && code_[end].Is(",") &&
                              code_[end + 1].kind == TokenKind::Identifier &&
                              code_[end + 2].kind != TokenKind::Identifier;   // not the next parameter of a function
            if (!more) return;
            name = end + 1;
        }
    }

    void Assignment(std::size_t i) {
        const auto found = declared_.find(code_[i].text);
        if (found != declared_.end() && found->second.kind == VariableClass::Matrix) Cast(found->second, i + 2, false);
    }

    void Call(std::size_t i) {
        const auto found = effect_.symbols.functions.find(code_[i].text);
        if (found == effect_.symbols.functions.end() || found->second.size() != 1) return;
        std::size_t argument = i + 2;
        for (const FunctionParameter& parameter : found->second[0].parameters) {
            const bool out = std::ranges::any_of(parameter.direction,
                                                 [](const Token& token) { return token.text.ends_with("out"); });
            if (parameter.type.kind == VariableClass::Matrix && parameter.dimensions.empty() && !out)
                Cast(parameter.type, argument, true);
            const std::size_t end = EndOfExpression(code_, argument, true);
            if (end >= code_.size() || !code_[end].Is(",")) return;
            argument = end + 1;
        }
    }

    void Cast(const Type& type, std::size_t start, bool at_comma) {
        if (start >= code_.size() || code_[start].Is("{")) return;
        const std::size_t end = EndOfExpression(code_, start, at_comma);
        if (end >= code_.size() || end == start) return;
        AppendText(before_[start], code_[start], "( " + type.spelling[0].text + " ) (");
        AppendText(before_[end], code_[start], ")");
    }

    void Insert() {
        if (before_.empty()) return;
        Tokens result;
        for (std::size_t i = 0; i < code_.size(); ++i) {
            if (const auto found = before_.find(i); found != before_.end()) AppendTo(result, found->second);
            result.push_back(code_[i]);
        }
        code_ = std::move(result);
    }

    ParsedEffect& effect_;
    Tokens& code_;
    Declared declared_;
    std::optional<Type> result_;   // of the function that is being read, when it is a matrix
    int depth_ = 0;
    std::map<std::size_t, Tokens> before_;   // what is put in front of a token
};

/// (float2x2) 1 becomes (float2x2) 1.0: the compiler gets the first one wrong.
void PointWholeNumbers(Tokens& code) {
    for (std::size_t i = 0; i + 3 < code.size(); ++i) {
        const std::optional<Type> type = code[i].Is("(") && code[i + 2].Is(")") ? NumbersAt(code, i + 1) : std::nullopt;
        if (!type || type->kind != VariableClass::Matrix) continue;
        std::size_t at = i + 3;
        while (at + 1 < code.size() && (code[at].Is("(") || code[at].Is("-"))) ++at;
        const bool whole =
            code[at].kind == TokenKind::Number && code[at].text.find_first_not_of("0123456789") == std::string::npos;
        if (whole) code[at].text += ".0";
    }
}

}   // namespace

void AdaptMatrices(ParsedEffect& effect, Diagnostics& diagnostics) {
    AssignmentRewriter(effect.code).Run();
    OperateOnElements(effect);
    MatrixCutter(effect).Run();
    PointWholeNumbers(effect.code);
    ReplaceSwizzles(effect.code, diagnostics);
}

}   // namespace sparkrig::fxc
