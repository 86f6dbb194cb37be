#include "tools/fxc/effect_parser.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include <fmt/format.h>

#include "tools/fxc/cursor.h"
#include "tools/fxc/expression_parser.h"
#include "tools/fxc/state_parser.h"
#include "tools/fxc/type_parser.h"

namespace sparkrig::fxc {

namespace {

struct Usages {
    bool shared = false;
    bool is_static = false;
    bool constant = false;
};

DWORD NumberWord(NumberType number, double value) {
    if (number == NumberType::Float) return std::bit_cast<DWORD>(static_cast<float>(value));
    if (number == NumberType::Bool) return value != 0 ? 1 : 0;
    if (std::isnan(value)) return 0;
    // An unsigned number keeps its bits.
    const double whole = std::trunc(std::clamp(value, -2147483648.0, 4294967295.0));
    return whole < 0 ? static_cast<DWORD>(static_cast<std::int32_t>(whole)) : static_cast<DWORD>(whole);
}

class EffectParser {
  public:
    EffectParser(const Tokens& tokens, Diagnostics& diagnostics) : cursor_(tokens, diagnostics) {}

    ParsedEffect Run() {
        while (!cursor_.AtEnd()) {
            if (cursor_.Accept(";")) continue;
            if (cursor_.AcceptWord("technique"))
                ParseTechnique();
            else if (cursor_.Peek().IsName("typedef"))
                ParseTypedef();
            else if (cursor_.Peek().IsName("struct") && cursor_.Peek(2).Is("{"))
                ParseStructure();
            else
                ParseDeclaration();
        }
        return std::move(effect_);
    }

  private:
    // ---- Structures and typedefs

    void ParseTypedef() {
        const std::size_t start = cursor_.Position();
        cursor_.Take();
        ParseUsages();
        std::optional<Type> type = AcceptType(cursor_, effect_.symbols);
        if (!type) return cursor_.Fail(cursor_.Peek(), "expected a type");
        const std::string name = cursor_.ExpectName("a name for the type");
        if (cursor_.Peek().Is("[")) return cursor_.Fail(cursor_.Peek(), "a name for an array type is not supported");
        cursor_.Expect(";", "after the typedef");
        Append(cursor_.Since(start));
        effect_.symbols.types[name] = std::move(*type);
    }

    void ParseStructure() {
        const std::size_t start = cursor_.Position();
        cursor_.Take();
        const std::string name = cursor_.ExpectName("the name of the structure");
        cursor_.Expect("{", "after the name of the structure");
        std::vector<StructureMember> members;
        while (!cursor_.AtEnd() && !cursor_.Peek().Is("}")) ParseMember(members);
        cursor_.Expect("}", "after the members");
        cursor_.Expect(";", "after the structure");
        Append(cursor_.Since(start));
        effect_.symbols.structures[name] = std::move(members);
    }

    void ParseMember(std::vector<StructureMember>& members) {
        ParseUsages();
        const std::optional<Type> type = AcceptType(cursor_, effect_.symbols);
        if (!type) return cursor_.Fail(cursor_.Peek(), "expected the type of a member");
        do {
            StructureMember member{cursor_.ExpectName("the name of a member"), *type, 0};
            member.elements = ParseArraySize();
            while (cursor_.Accept(":")) {
                cursor_.ExpectName("a semantic");
                if (cursor_.Accept("(")) cursor_.SkipPast("(", ")");
            }
            members.push_back(std::move(member));
        } while (cursor_.Accept(","));
        cursor_.Expect(";", "after the member");
    }

    // ---- Parameters, static variables and functions

    Usages ParseUsages() {
        Usages usages;
        constexpr std::string_view kWithoutMeaning[] = {"uniform",         "extern",       "row_major", "column_major",
                                                        "volatile",        "inline",       "linear",    "centroid",
                                                        "nointerpolation", "noperspective"};
        const auto accept_any = [&] {
            return std::ranges::any_of(kWithoutMeaning, [&](auto word) { return cursor_.AcceptWord(word); });
        };
        while (true) {
            if (cursor_.AcceptWord("shared"))
                usages.shared = true;
            else if (cursor_.AcceptWord("static"))
                usages.is_static = true;
            else if (cursor_.AcceptWord("const"))
                usages.constant = true;
            else if (!accept_any())
                return usages;
        }
    }

    void ParseDeclaration() {
        const std::size_t start = cursor_.Position();
        while (cursor_.Accept("[")) cursor_.SkipPast("[", "]");   // attributes of a function
        const Usages usages = ParseUsages();
        const std::size_t type_start = cursor_.Position();
        std::optional<Type> type = AcceptType(cursor_, effect_.symbols);
        if (!type && !cursor_.AcceptWord("void")) {
            const Token& token = cursor_.Peek();
            return cursor_.Fail(token, token.kind == TokenKind::Identifier
                                           ? fmt::format("unknown type '{}'", token.text)
                                           : fmt::format("unexpected '{}'", token.text));
        }
        const Tokens type_tokens = cursor_.Since(type_start);
        const Token name = cursor_.Peek();
        cursor_.ExpectName("a name");
        if (cursor_.Peek().Is("(")) return ParseFunction(start, type_tokens, name);
        if (!type) return cursor_.Fail(name, "a variable can not be void");
        if (usages.is_static) return ParseStatic(start, usages, name);
        ParseParameter(usages, *type, name);
        while (cursor_.Accept(",")) {
            const Token next = cursor_.Peek();
            cursor_.ExpectName("a name");
            ParseParameter(usages, *type, next);
        }
        cursor_.Expect(";", fmt::format("after '{}'", name.text));
    }

    /// The functions' own: it goes to the compiler as it is.
    void ParseStatic(std::size_t start, const Usages& usages, const Token& name) {
        if (usages.constant && cursor_.Peek().Is("=") && cursor_.Peek(2).Is(";")) {
            const std::size_t here = cursor_.Position();
            cursor_.Take();
            if (cursor_.Peek().kind == TokenKind::Number) {
                const std::vector<double> value = ParseConstants(cursor_, effect_);
                if (!value.empty()) effect_.symbols.constants[name.text] = value[0];
            }
            cursor_.Rewind(here);
        }
        while (!cursor_.AtEnd() && !cursor_.Peek().Is(";")) cursor_.Take();
        cursor_.Expect(";", fmt::format("after '{}'", name.text));
        Append(cursor_.Since(start));
    }

    DWORD ParseArraySize() {
        if (!cursor_.Accept("[")) return 0;
        const Token start = cursor_.Peek();
        const Expression size = ParseExpression(cursor_, effect_);
        cursor_.Expect("]", "after the size of the array");
        const bool good = size.IsConstant() && size.values.size() == 1 && size.values[0] >= 1 &&
                          size.values[0] <= kMaxElements && size.values[0] == std::floor(size.values[0]);
        if (!good) cursor_.Fail(start, fmt::format("the size of an array is a constant from 1 to {}", kMaxElements));
        if (cursor_.Peek().Is("[")) cursor_.Fail(cursor_.Peek(), "arrays of arrays are not supported");
        return good ? static_cast<DWORD>(size.values[0]) : 1;
    }

    void ParseParameter(const Usages& usages, const Type& type, const Token& name) {
        const DWORD index = static_cast<DWORD>(effect_.file.parameters.size());
        const auto [place, is_new] = effect_.symbols.parameters.try_emplace(name.text, index);
        if (!is_new) return cursor_.Fail(name, fmt::format("'{}' stands for another parameter already", name.text));
        EffectParameter parameter;
        parameter.shared = usages.shared;
        parameter.variable = MakeVariable(type, name.text);
        parameter.variable.elements = ParseArraySize();
        const bool structure = type.kind == VariableClass::Structure;
        if (parameter.variable.elements > 0 && !IsNumeric(type.kind))
            return cursor_.Fail(name, "only numbers can be an array");
        ParseSemantics(index, parameter);
        if (cursor_.Accept("<")) ParseAnnotations(parameter.annotations);
        if (IsNumeric(type.kind) || structure) Declare(type, name, parameter.variable.elements);
        if (type.kind == VariableClass::Sampler) effect_.samplers[name.text] = type.shape;
        ParseInitialValue(type, name, parameter);
        parameter.variable.words.resize(IsNumeric(type.kind) ? parameter.variable.WordCount() : 0);
        effect_.file.parameters.push_back(std::move(parameter));
        if (structure) AddMembers(index, type, name, 0);
    }

    static EffectVariable MakeVariable(const Type& type, const std::string& name) {
        EffectVariable variable;
        variable.name = name;
        variable.kind = type.kind;
        variable.number = type.number;
        variable.rows = type.rows;
        variable.columns = type.columns;
        return variable;
    }

    void AddMembers(DWORD parent, const Type& type, const Token& name, int depth) {
        constexpr int kDeepest = 16;
        if (depth > kDeepest) return cursor_.Fail(name, "the structures are nested too deeply");
        const auto found = effect_.symbols.structures.find(type.structure);
        if (found == effect_.symbols.structures.end()) return;
        constexpr std::size_t kMostParameters = 65536;
        for (const StructureMember& member : found->second) {
            if (effect_.file.parameters.size() >= kMostParameters) return cursor_.Fail(name, "too many members");
            const DWORD index = static_cast<DWORD>(effect_.file.parameters.size());
            EffectParameter& parameter = effect_.file.parameters.emplace_back();
            parameter.variable = MakeVariable(member.type, member.name);
            parameter.variable.elements = member.elements;
            parameter.parent = static_cast<std::int32_t>(parent);
            const bool nested = member.type.kind == VariableClass::Structure;
            if (!IsNumeric(member.type.kind) && (!nested || member.elements > 0))
                return cursor_.Fail(name, "a parameter's structure holds numbers and structures only");
            if (!nested) parameter.variable.words.resize(parameter.variable.WordCount());
            if (nested) AddMembers(index, member.type, name, depth + 1);
        }
    }

    void ParseSemantics(DWORD index, EffectParameter& parameter) {
        while (cursor_.Accept(":")) {
            const bool reserved = cursor_.Peek().IsName("register") || cursor_.Peek().IsName("packoffset");
            const std::string word = cursor_.ExpectName("a semantic");
            if (!reserved) {
                parameter.semantic = word;
                continue;
            }
            cursor_.Expect("(", fmt::format("after {}", word));
            ReadRegister(index, parameter);
            cursor_.SkipPast("(", ")");
        }
    }

    /// Only samplers keep their register; the place of everything else is found by name.
    void ReadRegister(DWORD index, const EffectParameter& parameter) {
        const std::string& text = cursor_.Peek().text;
        if (parameter.variable.kind != VariableClass::Sampler || text.size() < 2 || text[0] != 's') return;
        constexpr DWORD kSamplerCount = 16;
        DWORD number = 0;
        for (std::size_t i = 1; i < text.size(); ++i) {
            if (text[i] < '0' || text[i] > '9' || number >= kSamplerCount)
                return cursor_.Fail(cursor_.Peek(), "a sampler register is s0 to s15");
            number = number * 10 + static_cast<DWORD>(text[i] - '0');
        }
        if (number >= kSamplerCount) return cursor_.Fail(cursor_.Peek(), "a sampler register is s0 to s15");
        effect_.sampler_registers[index] = number;
    }

    void ParseAnnotations(std::vector<EffectVariable>& annotations) {
        while (!cursor_.AtEnd() && !cursor_.Peek().Is(">")) {
            if (cursor_.Accept(";")) continue;
            const Token start = cursor_.Peek();
            const std::optional<Type> type = AcceptType(cursor_, effect_.symbols);
            if (!type || (!IsNumeric(type->kind) && type->kind != VariableClass::String))
                return cursor_.Fail(start, "an annotation is a number or a string");
            const Token name = cursor_.Peek();
            EffectVariable variable = MakeVariable(*type, cursor_.ExpectName("the name of an annotation"));
            variable.elements = ParseArraySize();
            cursor_.Expect("=", "before the value of the annotation");
            ParseValue(name, variable);
            cursor_.Expect(";", "after the annotation");
            annotations.push_back(std::move(variable));
        }
        cursor_.Expect(">", "after the annotations");
    }

    void ParseInitialValue(const Type& type, const Token& name, EffectParameter& parameter) {
        if (type.kind == VariableClass::Sampler && cursor_.Peek().Is("{"))   // the older form, without a sign
            return ParseStates(cursor_, effect_, StateOwner::Sampler, parameter.states);
        if (!cursor_.Accept("=")) return;
        switch (type.kind) {
            case VariableClass::Sampler:
                if (!cursor_.AcceptWord("sampler_state")) return cursor_.Fail(cursor_.Peek(), "expected sampler_state");
                return ParseStates(cursor_, effect_, StateOwner::Sampler, parameter.states);
            case VariableClass::Texture:
                if (!cursor_.AcceptWord("NULL")) cursor_.Fail(cursor_.Peek(), "a texture starts as NULL");
                return;
            case VariableClass::Shader: return ParseShaderValue(type, parameter);
            case VariableClass::Structure:
                return cursor_.Fail(cursor_.Peek(), "an initial value of a structure is not supported");
            default: ParseValue(name, parameter.variable);
        }
    }

    void ParseShaderValue(const Type& type, EffectParameter& parameter) {
        if (cursor_.AcceptWord("NULL")) return;
        if (!cursor_.AcceptWord("compile")) return cursor_.Fail(cursor_.Peek(), "expected compile");
        const bool vertex = type.spelling[0].text == "vertexshader";
        parameter.function = static_cast<std::int32_t>(
            ParseCompile(cursor_, effect_, vertex ? FunctionStage::Vertex : FunctionStage::Pixel));
    }

    void ParseValue(const Token& name, EffectVariable& variable) {
        if (variable.kind == VariableClass::String) {
            if (cursor_.Peek().kind != TokenKind::String) return cursor_.Fail(cursor_.Peek(), "expected a string");
            while (cursor_.Peek().kind == TokenKind::String) variable.text += cursor_.Take().text;
            return;
        }
        const bool listed = cursor_.Peek().Is("{");
        std::vector<double> values = ParseConstants(cursor_, effect_);
        const std::size_t wanted = variable.WordCount();
        if (values.size() == 1 && !listed) values.resize(wanted, values[0]);
        if (values.size() != wanted && !cursor_.Failed())
            return cursor_.Fail(name, fmt::format("'{}' takes {} values, not {}", name.text, wanted, values.size()));
        for (const double value : values) variable.words.push_back(NumberWord(variable.number, value));
    }

    // ---- Code for the compiler

    void Append(const Tokens& tokens) { effect_.code.insert(effect_.code.end(), tokens.begin(), tokens.end()); }

    /// A parameter as the functions see it: without value, semantic and register.
    void Declare(const Type& type, const Token& name, DWORD elements) {
        Tokens line = type.spelling;
        Token token = name;
        token.joined = false;
        line.push_back(token);
        const auto add = [&](TokenKind kind, const std::string& text) {
            token.kind = kind;
            token.text = text;
            token.joined = true;
            line.push_back(token);
        };
        if (elements > 0) {
            add(TokenKind::Symbol, "[");
            add(TokenKind::Number, std::to_string(elements));
            add(TokenKind::Symbol, "]");
        }
        add(TokenKind::Symbol, ";");
        for (Token& part : line) part.place = name.place;
        Append(line);
    }

    void ParseFunction(std::size_t start, const Tokens& result, const Token& name) {
        cursor_.Take();
        FunctionSignature signature;
        signature.result = result;
        while (!cursor_.AtEnd() && !cursor_.Peek().Is(")")) {
            ParseFunctionParameter(signature.parameters);
            if (!cursor_.Accept(",")) break;
        }
        cursor_.Expect(")", "after the parameters");
        const std::size_t semantic = cursor_.Position();
        if (cursor_.Accept(":")) cursor_.ExpectName("a semantic");
        signature.result_semantic = cursor_.Since(semantic);
        const bool prototype = cursor_.Accept(";");
        if (!prototype) {
            cursor_.Expect("{", fmt::format("before the body of '{}'", name.text));
            cursor_.SkipPast("{", "}");
        }
        Append(cursor_.Since(start));
        if (!prototype) effect_.symbols.functions[name.text] = std::move(signature);
    }

    void ParseFunctionParameter(std::vector<FunctionParameter>& parameters) {
        if (cursor_.AcceptWord("void")) return;
        FunctionParameter parameter;
        constexpr std::string_view kDirections[] = {
            "in", "out", "inout", "const", "linear", "centroid", "nointerpolation", "row_major", "column_major"};
        Tokens directions;
        while (cursor_.Peek().kind == TokenKind::Identifier) {
            if (cursor_.Peek().IsName("uniform"))
                parameter.uniform = true;
            else if (std::ranges::count(kDirections, cursor_.Peek().text) > 0)
                directions.push_back(cursor_.Peek());
            else
                break;
            cursor_.Take();
        }
        const std::size_t declared = cursor_.Position();
        if (!AcceptType(cursor_, effect_.symbols))
            return cursor_.Fail(cursor_.Peek(), fmt::format("unknown type '{}'", cursor_.Peek().text));
        parameter.name = cursor_.ExpectName("the name of a parameter");
        while (cursor_.Accept("[")) cursor_.SkipPast("[", "]");
        while (cursor_.Accept(":")) {
            cursor_.ExpectName("a semantic");
            if (cursor_.Accept("(")) cursor_.SkipPast("(", ")");
        }
        parameter.declaration = directions;
        const Tokens rest = cursor_.Since(declared);
        parameter.declaration.insert(parameter.declaration.end(), rest.begin(), rest.end());
        if (cursor_.Accept("=")) SkipDefaultValue();
        parameters.push_back(std::move(parameter));
    }

    void SkipDefaultValue() {
        while (!cursor_.AtEnd() && !cursor_.Peek().Is(",") && !cursor_.Peek().Is(")"))
            if (cursor_.Take().Is("(")) cursor_.SkipPast("(", ")");
    }

    // ---- Techniques

    std::string AcceptOptionalName() {
        return cursor_.Peek().kind == TokenKind::Identifier ? cursor_.Take().text : std::string();
    }

    void ParseTechnique() {
        EffectTechnique technique;
        technique.name = AcceptOptionalName();
        if (cursor_.Accept("<")) ParseAnnotations(technique.annotations);
        cursor_.Expect("{", "before the passes");
        while (cursor_.AcceptWord("pass")) {
            EffectPass pass;
            pass.name = AcceptOptionalName();
            if (cursor_.Accept("<")) ParseAnnotations(pass.annotations);
            ParseStates(cursor_, effect_, StateOwner::Pass, pass.states);
            while (cursor_.Accept(";")) continue;
            technique.passes.push_back(std::move(pass));
        }
        cursor_.Expect("}", "after the passes");
        effect_.file.techniques.push_back(std::move(technique));
    }

    Cursor cursor_;
    ParsedEffect effect_;
};

}   // namespace

ParsedEffect ParseEffect(const Tokens& tokens, Diagnostics& diagnostics) {
    return EffectParser(tokens, diagnostics).Run();
}

}   // namespace sparkrig::fxc
