#include "tools/fxc/type_parser.h"

#include <algorithm>

#include "platform/system/ascii.h"
#include "tools/fxc/state_table.h"

namespace sparkrig::fxc {

namespace {

struct NumberWord {
    std::string_view word;
    NumberType number;
    const char* spelling;   // the layer's functions know one size of float
};

constexpr NumberWord kNumberWords[] = {
    {"float", NumberType::Float, "float"}, {"half", NumberType::Float, "float"}, {"double", NumberType::Float, "float"},
    {"int", NumberType::Int, "int"},       {"uint", NumberType::Int, "uint"},    {"dword", NumberType::Int, "uint"},
    {"bool", NumberType::Bool, "bool"},
};

struct ObjectWord {
    std::string_view word;
    VariableClass kind;
    SamplerShape shape;
};

constexpr ObjectWord kObjectWords[] = {
    {"string", VariableClass::String, SamplerShape::Unknown},
    {"texture", VariableClass::Texture, SamplerShape::Unknown},
    {"texture1D", VariableClass::Texture, SamplerShape::Unknown},
    {"texture2D", VariableClass::Texture, SamplerShape::Unknown},
    {"texture3D", VariableClass::Texture, SamplerShape::Unknown},
    {"textureCUBE", VariableClass::Texture, SamplerShape::Unknown},
    {"sampler", VariableClass::Sampler, SamplerShape::Unknown},
    {"sampler1D", VariableClass::Sampler, SamplerShape::Flat},
    {"sampler2D", VariableClass::Sampler, SamplerShape::Flat},
    {"sampler3D", VariableClass::Sampler, SamplerShape::Volume},
    {"samplerCUBE", VariableClass::Sampler, SamplerShape::Cube},
    {"vertexshader", VariableClass::Shader, SamplerShape::Unknown},
    {"pixelshader", VariableClass::Shader, SamplerShape::Unknown},
};

Tokens Spelled(const std::string& word) {
    Token token;
    token.kind = TokenKind::Identifier;
    token.text = word;
    return {token};
}

DWORD Dimension(char c) { return c >= '1' && c <= '4' ? static_cast<DWORD>(c - '0') : 0; }

void MakeVector(Type& type, DWORD columns) {
    type.columns = columns;
    type.kind = columns == 1 ? VariableClass::Scalar : VariableClass::Vector;
}

/// float, float3, float4x3.
std::optional<Type> NumericType(std::string word, LetterCase letters) {
    if (letters == LetterCase::Any) std::ranges::transform(word, word.begin(), AsciiLower);
    for (const NumberWord& row : kNumberWords) {
        if (!word.starts_with(row.word)) continue;
        const std::string rest = word.substr(row.word.size());
        Type type;
        type.number = row.number;
        type.spelling = Spelled(row.spelling + rest);
        if (rest.empty()) return type;
        const DWORD first = Dimension(rest[0]);
        if (first == 0) continue;
        if (rest.size() == 1) {
            MakeVector(type, first);
            return type;
        }
        if (rest.size() != 3 || rest[1] != 'x' || Dimension(rest[2]) == 0) continue;
        // The layer's functions have matrices of floats only, and those of one row or column as vectors.
        type.number = NumberType::Float;
        type.spelling = Spelled("float" + rest);
        if (const DWORD second = Dimension(rest[2]); first == 1 || second == 1) {
            MakeVector(type, std::max(first, second));
            return type;
        }
        type.kind = VariableClass::Matrix;
        type.rows = first;
        type.columns = Dimension(rest[2]);
        return type;
    }
    return std::nullopt;
}

DWORD TakeDimension(Cursor& cursor) {
    const Token& token = cursor.Peek();
    const DWORD dimension = token.kind == TokenKind::Number && token.text.size() == 1 ? Dimension(token.text[0]) : 0;
    if (dimension == 0) cursor.Fail(token, "expected a dimension from 1 to 4");
    cursor.Take();
    return dimension == 0 ? 1 : dimension;
}

/// vector<float, 4> and matrix<float, 4, 3>; without brackets they are float4 and float4x4.
std::optional<Type> TemplateType(Cursor& cursor) {
    const bool vector = cursor.Peek().IsName("vector"), matrix = cursor.Peek().IsName("matrix");
    if (!vector && !matrix) return std::nullopt;
    cursor.Take();
    std::string word = "float";
    DWORD first = 4, second = 4;
    if (cursor.Accept("<")) {
        word = cursor.ExpectName("a type of numbers");
        cursor.Expect(",", "after the type of numbers");
        first = TakeDimension(cursor);
        if (matrix) {
            cursor.Expect(",", "after the rows");
            second = TakeDimension(cursor);
        }
        cursor.Expect(">", "after the dimensions");
    }
    std::optional<Type> type =
        NumericType(word + std::to_string(first) + (matrix ? "x" + std::to_string(second) : ""), LetterCase::Any);
    if (!type) cursor.Fail(cursor.Peek(), "unknown type of numbers");
    return type;
}

}   // namespace

std::optional<Type> BuiltInType(const std::string& word, LetterCase letters) {
    if (std::optional<Type> type = NumericType(word, letters)) return type;
    for (const ObjectWord& row : kObjectWords) {
        if (letters == LetterCase::Exact ? word != row.word : !EqualIgnoringCase(word, row.word)) continue;
        Type type;
        type.kind = row.kind;
        type.shape = row.shape;
        type.spelling = Spelled(std::string(row.word));
        return type;
    }
    return std::nullopt;
}

std::optional<Type> AcceptType(Cursor& cursor, const Symbols& symbols) {
    if (cursor.Peek().kind != TokenKind::Identifier) return std::nullopt;
    if (std::optional<Type> type = TemplateType(cursor)) return type;
    for (const char* word : {"struct", "unsigned"})
        if (cursor.Peek(1).kind == TokenKind::Identifier) cursor.AcceptWord(word);
    const std::string word = cursor.Peek().text;
    std::optional<Type> type = BuiltInType(word, LetterCase::Exact);
    if (const auto found = symbols.types.find(word); !type && found != symbols.types.end()) type = found->second;
    if (!type && symbols.structures.contains(word)) {
        type = Type{};
        type->kind = VariableClass::Structure;
        type->structure = word;
        type->spelling = Spelled(word);
    }
    if (!type) type = BuiltInType(word);
    if (type) cursor.Take();
    if (type && type->kind == VariableClass::Texture && cursor.Accept("<"))
        cursor.SkipPast("<", ">");   // Texture2D<float4>
    return type;
}

}   // namespace sparkrig::fxc
