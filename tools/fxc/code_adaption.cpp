#include "tools/fxc/code_adaption.h"

#include <optional>

#include "tools/fxc/type_parser.h"

namespace sparkrig::fxc {

namespace {

constexpr std::size_t kMostTokens = 2'000'000;

Token MadeAt(const Token& place, TokenKind kind, std::string text) {
    Token token;
    token.kind = kind;
    token.text = std::move(text);
    token.place = place.place;
    token.joined = true;
    return token;
}

void RenameType(Token& token) {
    for (const std::string_view word : {"half", "double"})
        if (token.text.starts_with(word) && BuiltInType(token.text)) token.text.replace(0, word.size(), "float");
    if (token.text == "sampler1D") token.text = "sampler2D";
}

// ---- Samplers

SamplerShape ShapeOfCall(std::string_view function) {
    if (function.starts_with("tex1D") || function.starts_with("tex2D")) return SamplerShape::Flat;
    if (function.starts_with("texCUBE")) return SamplerShape::Cube;
    if (function.starts_with("tex3D")) return SamplerShape::Volume;
    return SamplerShape::Unknown;
}

/// What the first use of each name as a sampler says about its shape.
std::map<std::string, SamplerShape> ShapesInUse(const Tokens& code) {
    std::map<std::string, SamplerShape> shapes;
    for (std::size_t i = 0; i + 2 < code.size(); ++i) {
        const SamplerShape shape = ShapeOfCall(code[i].text);
        if (shape != SamplerShape::Unknown && code[i + 1].Is("(")) shapes.try_emplace(code[i + 2].text, shape);
    }
    return shapes;
}

const char* SamplerWord(SamplerShape shape) {
    return shape == SamplerShape::Cube ? "samplerCUBE" : shape == SamplerShape::Volume ? "sampler3D" : "sampler2D";
}

void ShapeSamplers(ParsedEffect& effect) {
    const std::map<std::string, SamplerShape> shapes = ShapesInUse(effect.code);
    const auto shape_of = [&](const std::string& name) {
        const auto found = shapes.find(name);
        return found == shapes.end() ? SamplerShape::Flat : found->second;
    };
    for (auto& [name, shape] : effect.samplers)
        if (shape == SamplerShape::Unknown) shape = shape_of(name);
    for (std::size_t i = 0; i + 1 < effect.code.size(); ++i)
        if (effect.code[i].IsName("sampler")) effect.code[i].text = SamplerWord(shape_of(effect.code[i + 1].text));
    Tokens declarations;
    for (const auto& [name, shape] : effect.samplers) {
        Token token = MadeAt({}, TokenKind::Identifier, SamplerWord(shape));
        declarations.push_back(token);
        token.joined = false;
        token.text = name;
        declarations.push_back(token);
        declarations.push_back(MadeAt({}, TokenKind::Symbol, ";"));
    }
    effect.code.insert(effect.code.begin(), declarations.begin(), declarations.end());
}

// ---- Matrix swizzles

struct Element {
    int row, column;   // from 0
};

/// The elements that _m30_m31 or _41_42 name; none for any other word.
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

}   // namespace

void AdaptCode(ParsedEffect& effect, Diagnostics& diagnostics) {
    for (Token& token : effect.code)
        if (token.kind == TokenKind::Identifier) RenameType(token);
    ShapeSamplers(effect);
    ReplaceSwizzles(effect.code, diagnostics);
}

}   // namespace sparkrig::fxc
