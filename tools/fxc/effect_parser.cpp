#include "tools/fxc/effect_parser.h"

#include <algorithm>
#include <cmath>
#include <set>

#include <fmt/format.h>

#include "tools/fxc/code_names.h"
#include "tools/fxc/constants.h"
#include "tools/fxc/cursor.h"
#include "tools/fxc/expression_parser.h"
#include "tools/fxc/initial_values.h"
#include "tools/fxc/object_parser.h"
#include "tools/fxc/state_parser.h"
#include "tools/fxc/token_tools.h"
#include "tools/fxc/type_parser.h"

namespace sparkrig::fxc {

namespace {

struct Usages {
    bool shared = false;
    bool is_static = false;
    bool constant = false;
};

/// What stands after a name: the sizes of an array.
struct Dimensions {
    Tokens tokens;        // with their brackets
    DWORD elements = 0;   // all together; 0 for a single value
    bool open = false;    // "[]": as many as there are values
};

class EffectParser {
  public:
    EffectParser(const Tokens& tokens, Diagnostics& diagnostics) : cursor_(tokens, diagnostics) {}

    ParsedEffect Run() {
        while (!cursor_.AtEnd()) {
            if (cursor_.Accept(";")) continue;
            if (cursor_.AcceptWord("technique"))
                ParseTechnique();
            else if (cursor_.AcceptWord("stateblock"))
                ParseStateBlock();
            else if (IsPassedOver())
                PassOver();
            else if (cursor_.Peek(1).kind == TokenKind::Identifier &&
                     (cursor_.AcceptWord("cbuffer") || cursor_.AcceptWord("tbuffer")))
                OpenBuffer();
            else if (buffers_ > 0 && cursor_.Accept("}"))
                --buffers_;
            else if (cursor_.Peek().IsName("typedef"))
                ParseTypedef();
            else
                ParseDeclaration();
        }
        AppendInitialisation();
        return std::move(effect_);
    }

  private:
    // ---- Structures and typedefs

    bool StructureFollows() const {
        return cursor_.Peek().IsName("struct") &&
               (cursor_.Peek(1).Is("{") || cursor_.Peek(2).Is("{") || cursor_.Peek(2).Is(":"));
    }

    /// "struct NAME { members }"; the code gets it as a declaration of its own.
    Type ParseStructure() {
        const std::size_t start = cursor_.Position();
        const Token word = cursor_.Take();
        std::string name;
        if (cursor_.Peek().Is("{"))
            name = fmt::format("fxc_structure_{}", effect_.symbols.structures.size());
        else
            name = cursor_.ExpectName("the name of the structure");
        std::string base;
        if (cursor_.Accept(":")) base = cursor_.ExpectName("the structure that it continues");
        cursor_.Expect("{", "after the name of the structure");
        const std::size_t open = cursor_.Position();
        std::vector<StructureMember> members;
        if (const auto found = effect_.symbols.structures.find(base); found != effect_.symbols.structures.end())
            members = found->second;
        while (!cursor_.AtEnd() && !cursor_.Peek().Is("}"))
            if (!cursor_.Accept(";")) ParseMember(members);
        Tokens& body = member_code_[name];
        body = member_code_[base];
        AppendTo(body, cursor_.Since(open));
        cursor_.Expect("}", "after the members");
        Tokens code = {word, MadeAt(word, TokenKind::Identifier, name, false)};
        AppendText(code, word, "{");
        AppendTo(code, body);
        AppendText(code, word, "} ;");
        if (start < open) Append(code);
        effect_.symbols.structures[name] = std::move(members);
        Type type;
        type.kind = VariableClass::Structure;
        type.structure = name;
        type.spelling = {MadeAt(word, TokenKind::Identifier, name)};
        return type;
    }

    void ParseTypedef() {
        const Token word = cursor_.Take();
        ParseUsages();
        std::optional<Type> type = StructureFollows() ? ParseStructure() : AcceptType(cursor_, effect_.symbols);
        if (!type) return cursor_.Fail(cursor_.Peek(), "expected a type");
        do {
            const std::string name = cursor_.ExpectName("a name for the type");
            const Dimensions dimensions = ParseDimensions();
            Type named = *type;
            if (dimensions.elements > 0) named.elements = dimensions.elements * std::max<DWORD>(1, type->elements);
            Tokens code = {word};
            code.insert(code.end(), type->spelling.begin(), type->spelling.end());
            code.push_back(MadeAt(word, TokenKind::Identifier, name, false));
            code.insert(code.end(), dimensions.tokens.begin(), dimensions.tokens.end());
            code.push_back(MadeAt(word, TokenKind::Symbol, ";"));
            for (Token& token : code) token.place = word.place;
            for (std::size_t i = 1; i <= type->spelling.size(); ++i) code[i].joined = false;
            if (name != type->structure) Append(code);
            named.spelling = {MadeAt(word, TokenKind::Identifier, name)};
            effect_.symbols.types[name] = std::move(named);
        } while (cursor_.Accept(","));
        cursor_.Expect(";", "after the typedef");
    }

    void ParseMember(std::vector<StructureMember>& members) {
        ParseUsages();
        const std::optional<Type> type = AcceptType(cursor_, effect_.symbols);
        if (!type) return cursor_.Fail(cursor_.Peek(), "expected the type of a member");
        do {
            StructureMember member{cursor_.ExpectName("the name of a member"), *type, 0};
            member.elements = std::max(ParseDimensions().elements, type->elements);
            while (cursor_.Accept(":")) {
                cursor_.ExpectName("a semantic");
                if (cursor_.Accept("(")) cursor_.SkipPast("(", ")");
            }
            if (cursor_.Accept("<")) cursor_.SkipPast("<", ">");
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
            // Before another word only: some are names of later models.
            return cursor_.Peek(1).kind == TokenKind::Identifier &&
                   std::ranges::any_of(kWithoutMeaning, [&](auto word) { return cursor_.AcceptWord(word); });
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
        Usages usages = ParseUsages();
        const std::size_t type_start = cursor_.Position();
        const bool structure = StructureFollows();
        std::optional<Type> type = structure ? ParseStructure() : AcceptType(cursor_, effect_.symbols);
        if (structure && cursor_.Accept(";")) return;
        if (!type && !cursor_.AcceptWord("void")) {
            const Token& token = cursor_.Peek();
            return cursor_.Fail(token, token.kind == TokenKind::Identifier
                                           ? fmt::format("unknown type '{}'", token.text)
                                           : fmt::format("unexpected '{}'", token.text));
        }
        const Tokens type_tokens = structure ? type->spelling : cursor_.Since(type_start);
        if (cursor_.Peek(1).kind == TokenKind::Identifier)
            usages.constant |= cursor_.AcceptWord("const");   // float const
        const Token name = cursor_.Peek();
        if (name.kind == TokenKind::Identifier && cursor_.Peek(1).Is("(")) {
            cursor_.Take();
            return ParseFunction(start, type, type_tokens, name);
        }
        if (!type) return cursor_.Fail(name, "a variable can not be void");
        do {
            const Token next = cursor_.Peek();
            cursor_.ExpectName("a name");
            if (usages.is_static)
                ParseStatic(usages, *type, next);
            else
                ParseParameter(usages, *type, next);
        } while (cursor_.Accept(","));
        cursor_.Expect(";", fmt::format("after '{}'", name.text));
    }

    Dimensions ParseDimensions() {
        Dimensions dimensions;
        const std::size_t begin = cursor_.Position();
        while (cursor_.Accept("[")) {
            if (cursor_.Accept("]")) {
                dimensions.open = true;
                continue;
            }
            const Token start = cursor_.Peek();
            const Constant size = ParseExpression(cursor_, effect_, Parameters::Known).constant;
            cursor_.Expect("]", "after the size of the array");
            const double count = size.values.size() == 1 ? size.values[0] * std::max<DWORD>(dimensions.elements, 1) : 0;
            if (count < 1 || count > kMaxElements || count != std::floor(count))
                cursor_.Fail(start, fmt::format("the size of an array is a constant from 1 to {}", kMaxElements));
            else
                dimensions.elements = static_cast<DWORD>(count);
        }
        dimensions.tokens = cursor_.Since(begin);
        return dimensions;
    }

    /// The tokens of an initial value, up to the comma or semicolon behind it.
    Tokens SkipValue() {
        const std::size_t start = cursor_.Position();
        while (!cursor_.AtEnd() && !cursor_.Peek().Is(";") && !cursor_.Peek().Is(",")) {
            const Token& token = cursor_.Take();
            if (token.Is("(")) cursor_.SkipPast("(", ")");
            if (token.Is("{")) cursor_.SkipPast("{", "}");
            if (token.Is("[")) cursor_.SkipPast("[", "]");
        }
        return cursor_.Since(start);
    }

    /// The constant at the cursor, if it is one; the cursor stays where it is.
    std::optional<Constant> TryConstant() {
        const Diagnostics::Mark mark = cursor_.Errors().Here();
        Cursor trial = cursor_;
        const Constant constant = ParseConstant(trial, effect_);
        const bool good = !trial.Failed() && (trial.Peek().Is(";") || trial.Peek().Is(","));
        cursor_.Errors().Return(mark);
        return good ? std::optional(constant) : std::nullopt;
    }

    /// Kept for the evaluation of later constants.
    void Remember(const Token& name, const Type& type, DWORD elements, const Constant& constant) {
        if (!IsNumeric(type.kind)) return;
        if (elements == 0) {
            if (const std::optional<Constant> converted = Converted(constant, type))
                effect_.symbols.constants[name.text] = *converted;
            return;
        }
        Constant array = constant;
        array.rows = type.rows;
        array.columns = type.columns;
        array.elements = elements;
        array.values.resize(std::size_t{elements} * type.rows * type.columns);
        effect_.symbols.constants[name.text] = std::move(array);
    }

    /// The functions' own.
    void ParseStatic(const Usages& usages, const Type& type, const Token& name) {
        const Dimensions dimensions = ParseDimensions();
        EffectParameter unused;
        ParseSemantics(0, unused);
        if (cursor_.Accept("<")) ParseAnnotations(unused.annotations);
        Tokens value;
        if (cursor_.Accept("=")) {
            const std::optional<Constant> constant = TryConstant();
            const DWORD size = type.rows * type.columns;
            const DWORD filled = constant ? static_cast<DWORD>(constant->values.size()) / size : 0;
            if (usages.constant && constant)
                Remember(name, type, dimensions.open ? filled : std::max(dimensions.elements, type.elements),
                         *constant);
            value = SkipValue();
        }
        DeclareStatic(usages.constant, type, name, dimensions, value);
    }

    /// Values of parameters and functions are given when a function begins: the compiler takes only constants.
    void DeclareStatic(bool constant, const Type& type, const Token& name, const Dimensions& dimensions,
                       const Tokens& value) {
        const bool late = std::ranges::any_of(value, [&](const Token& token) {
            const bool parameter =
                effect_.symbols.parameters.contains(token.text) && !effect_.symbols.constants.contains(token.text);
            return token.kind == TokenKind::Identifier &&
                   (parameter || declared_functions_.contains(token.text) || late_.contains(token.text));
        });
        Tokens line = {MadeAt(name, TokenKind::Identifier, "static")};
        if (constant && !late && !value.empty()) line.push_back(MadeAt(name, TokenKind::Identifier, "const", false));
        const Tokens declarator = Declarator(type, name, name.text, dimensions.tokens);
        line.insert(line.end(), declarator.begin(), declarator.end());
        if (!late && !value.empty()) {
            line.push_back(MadeAt(name, TokenKind::Symbol, "="));
            line.insert(line.end(), value.begin(), value.end());
        }
        line.push_back(MadeAt(name, TokenKind::Symbol, ";"));
        Append(line);
        if (!late) return;
        late_.insert(name.text);
        Initialise(type, name, dimensions.tokens, value);
    }

    /// TYPE NAME [dimensions], with the name's place.
    static Tokens Declarator(const Type& type, const Token& at, const std::string& name, const Tokens& dimensions) {
        Tokens tokens = type.spelling;
        for (Token& token : tokens) token.joined = false;
        tokens.push_back(MadeAt(at, TokenKind::Identifier, name, false));
        tokens.insert(tokens.end(), dimensions.begin(), dimensions.end());
        for (Token& token : tokens) token.place = at.place;
        return tokens;
    }

    /// { TYPE fxc_value [dimensions] = VALUE; NAME = fxc_value; }
    void Initialise(const Type& type, const Token& name, const Tokens& dimensions, const Tokens& value) {
        const auto add = [&](TokenKind kind, const std::string& text) {
            initialisation_.push_back(MadeAt(name, kind, text, false));
        };
        const auto add_all = [&](const Tokens& tokens) {
            initialisation_.insert(initialisation_.end(), tokens.begin(), tokens.end());
        };
        add(TokenKind::Symbol, "{");
        add_all(Declarator(type, name, "fxc_value", dimensions));
        add(TokenKind::Symbol, "=");
        add_all(value);
        add(TokenKind::Symbol, ";");
        add(TokenKind::Identifier, name.text);
        add(TokenKind::Symbol, "=");
        add(TokenKind::Identifier, "fxc_value");
        add(TokenKind::Symbol, ";");
        add(TokenKind::Symbol, "}");
    }

    /// void fxc_initialise() { ... }
    void AppendInitialisation() {
        Token at;
        if (!effect_.code.empty()) at = effect_.code.back();
        Tokens code = {MadeAt(at, TokenKind::Identifier, "void", false),
                       MadeAt(at, TokenKind::Identifier, "fxc_initialise", false)};
        for (const char* symbol : {"(", ")", "{"}) code.push_back(MadeAt(at, TokenKind::Symbol, symbol));
        code.insert(code.end(), initialisation_.begin(), initialisation_.end());
        code.push_back(MadeAt(at, TokenKind::Symbol, "}"));
        Append(code);
    }

    void ParseParameter(const Usages& usages, const Type& type, const Token& name) {
        const DWORD index = static_cast<DWORD>(effect_.file.parameters.size());
        if (effect_.symbols.parameters.contains(name.text))
            return cursor_.Fail(name, fmt::format("'{}' stands for another parameter already", name.text));
        Dimensions dimensions = ParseDimensions();
        EffectParameter parameter;
        parameter.shared = usages.shared;
        parameter.variable = MakeVariable(type, name.text);
        parameter.variable.elements =
            type.elements > 0 ? type.elements * std::max<DWORD>(1, dimensions.elements) : dimensions.elements;
        ParseSemantics(index, parameter);
        if (cursor_.Accept("<")) ParseAnnotations(parameter.annotations);
        effect_.symbols.parameters.emplace(name.text, index);   // its own dimensions can not speak of it
        effect_.file.parameters.push_back(std::move(parameter));
        if (IsNumeric(type.kind))
            ParseNumbers(usages, type, name, dimensions, index);
        else if (type.kind == VariableClass::Structure)
            ParseStructureValue(type, name, dimensions, index);
        else
            ParseObjects(cursor_, effect_, type, name, index);
    }

    // ---- Numbers and structures

    void ParseNumbers(const Usages& usages, const Type& type, const Token& name, Dimensions& dimensions, DWORD index) {
        EffectVariable variable = effect_.file.parameters[index].variable;
        Tokens value;
        if (cursor_.Accept("=")) {
            const bool listed = cursor_.Peek().Is("{");
            const std::optional<Constant> tried = TryConstant();
            const bool computed = usages.constant && !tried;   // by a function, when one begins
            if (tried && dimensions.open) {
                variable.elements = static_cast<DWORD>(tried->values.size() / variable.WordsPerElement());
                dimensions.tokens = {MadeAt(name, TokenKind::Symbol, "["),
                                     MadeAt(name, TokenKind::Number, std::to_string(variable.elements)),
                                     MadeAt(name, TokenKind::Symbol, "]")};
            }
            const std::size_t start = cursor_.Position();
            if (!computed) StoreValue(cursor_, name, ParseConstant(cursor_, effect_), listed, variable);
            if (computed) SkipValue();
            value = cursor_.Since(start);
            if (usages.constant && tried) Remember(name, type, variable.elements, *tried);
        }
        if (variable.elements > kMaxElements) return cursor_.Fail(name, "the array is too large");
        variable.words.resize(variable.WordCount());
        effect_.file.parameters[index].variable = std::move(variable);
        // What nothing changes is a constant for the functions too, such as the size of an array.
        if (usages.constant && !value.empty()) return DeclareStatic(true, type, name, dimensions, value);
        Declare(type, name, dimensions.tokens);
        effect_.places[CodeName(name.text)] = index;
    }

    void ParseStructureValue(const Type& type, const Token& name, const Dimensions& dimensions, DWORD index) {
        AddMembers(index, type.structure, name, 0);
        Declare(type, name, dimensions.tokens);
        FindPlaces(index, CodeName(name.text));
        if (cursor_.Accept("=")) StoreMembers(cursor_, name, ParseConstant(cursor_, effect_), effect_.file, index);
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

    void AddMembers(DWORD parent, const std::string& structure, const Token& name, int depth) {
        constexpr int kDeepest = 16;
        if (depth > kDeepest) return cursor_.Fail(name, "the structures are nested too deeply");
        const DWORD elements = effect_.file.parameters[parent].variable.elements;
        for (DWORD i = 0; i < elements && !cursor_.Failed(); ++i)
            AddMembers(AddElement(cursor_, effect_, parent, i, name), structure, name, depth + 1);
        if (elements > 0) return;
        for (const StructureMember& member : effect_.symbols.structures[structure]) {
            if (cursor_.Failed()) return;
            EffectVariable variable = MakeVariable(member.type, member.name);
            variable.elements = member.elements;
            const bool nested = member.type.kind == VariableClass::Structure;
            if (!nested && !IsNumeric(member.type.kind))
                return cursor_.Fail(name, "a parameter's structure holds numbers and structures only");
            const DWORD child = AddChild(cursor_, effect_, parent, std::move(variable), name);
            if (nested) AddMembers(child, member.type.structure, name, depth + 1);
        }
    }

    /// The paths of a structure's numbers in the code: "lights[1].colour".
    void FindPlaces(DWORD structure, const std::string& path) {
        std::vector<std::pair<DWORD, std::string>> paths = {{structure, path}};
        for (std::size_t i = structure + 1; i < effect_.file.parameters.size(); ++i) {
            const EffectParameter& child = effect_.file.parameters[i];
            const auto parent =
                std::ranges::find(paths, static_cast<DWORD>(child.parent), &std::pair<DWORD, std::string>::first);
            if (parent == paths.end()) continue;
            const bool element = effect_.file.parameters[parent->first].variable.elements > 0;
            const std::string& name = child.variable.name;
            std::string own = parent->second + (element ? name.substr(name.rfind('[')) : "." + CodeName(name));
            if (IsNumeric(child.variable.kind)) effect_.places[own] = static_cast<DWORD>(i);
            if (child.variable.kind == VariableClass::Structure)
                paths.emplace_back(static_cast<DWORD>(i), std::move(own));
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
            if (parameter.variable.kind == VariableClass::Sampler) ReadSamplerRegister(cursor_, effect_, index);
            cursor_.SkipPast("(", ")");
        }
    }

    void ParseAnnotations(std::vector<EffectVariable>& annotations) {
        while (!cursor_.AtEnd() && !cursor_.Peek().Is(">")) {
            if (cursor_.Accept(";")) continue;
            const Token start = cursor_.Peek();
            const std::optional<Type> type = AcceptType(cursor_, effect_.symbols);
            if (!type || (!IsNumeric(type->kind) && type->kind != VariableClass::String))
                return cursor_.Fail(start, "an annotation is a number or a string");
            do annotations.push_back(ParseAnnotation(*type));
            while (cursor_.Accept(","));
            if (!cursor_.Peek().Is(">")) cursor_.Expect(";", "after the annotation");
        }
        cursor_.Expect(">", "after the annotations");
    }

    EffectVariable ParseAnnotation(const Type& type) {
        const Token name = cursor_.Peek();
        EffectVariable variable = MakeVariable(type, cursor_.ExpectName("the name of an annotation"));
        variable.elements = ParseDimensions().elements;
        cursor_.Expect("=", "before the value of the annotation");
        ParseAnnotationValue(name, variable);
        return variable;
    }

    void ParseAnnotationValue(const Token& name, EffectVariable& variable) {
        if (variable.kind == VariableClass::String) {
            variable.text = ParseString(cursor_);
            return;
        }
        const bool listed = cursor_.Peek().Is("{");
        StoreValue(cursor_, name, ParseConstant(cursor_, effect_), listed, variable);
    }

    // ---- Code for the compiler

    void Append(const Tokens& tokens) { effect_.code.insert(effect_.code.end(), tokens.begin(), tokens.end()); }

    /// A parameter as the functions see it: without value, semantic and register.
    void Declare(const Type& type, const Token& name, const Tokens& dimensions) {
        Tokens line = Declarator(type, name, name.text, dimensions);
        line.push_back(MadeAt(name, TokenKind::Symbol, ";"));
        Append(line);
    }

    void ParseFunction(std::size_t start, const std::optional<Type>& type, const Tokens& result, const Token& name) {
        cursor_.Take();
        declared_functions_.insert(name.text);
        FunctionSignature signature;
        signature.result = result;
        signature.result_type = type;
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
            if (cursor_.Accept("<")) cursor_.SkipPast("<", ">");   // its annotations
            cursor_.Expect("{", fmt::format("before the body of '{}'", name.text));
            cursor_.SkipPast("{", "}");
        }
        Append(cursor_.Since(start));
        if (!prototype) effect_.symbols.functions[name.text].push_back(std::move(signature));
    }

    void ParseFunctionParameter(std::vector<FunctionParameter>& parameters) {
        if (cursor_.Peek(1).Is(")") && cursor_.AcceptWord("void")) return;
        FunctionParameter parameter;
        constexpr std::string_view kDirections[] = {"in",        "out",         "inout",           "const",
                                                    "linear",    "centroid",    "nointerpolation", "noperspective",
                                                    "row_major", "column_major"};
        while (cursor_.Peek().kind == TokenKind::Identifier) {
            if (cursor_.Peek().IsName("uniform"))
                parameter.uniform = true;
            else if (std::ranges::count(kDirections, cursor_.Peek().text) > 0)
                parameter.direction.push_back(cursor_.Peek());
            else
                break;
            cursor_.Take();
        }
        const std::optional<Type> type = AcceptType(cursor_, effect_.symbols);
        if (!type) return cursor_.Fail(cursor_.Peek(), fmt::format("unknown type '{}'", cursor_.Peek().text));
        parameter.type = *type;
        parameter.name = cursor_.ExpectName("the name of a parameter");
        parameter.dimensions = ParseDimensions().tokens;
        const std::size_t semantic = cursor_.Position();
        while (cursor_.Accept(":")) {
            cursor_.ExpectName("a semantic");
            if (cursor_.Accept("(")) cursor_.SkipPast("(", ")");
        }
        parameter.semantic = cursor_.Since(semantic);
        if (cursor_.Accept("=")) parameter.default_value = SkipDefaultValue();
        parameters.push_back(std::move(parameter));
    }

    Tokens SkipDefaultValue() {
        const std::size_t start = cursor_.Position();
        while (!cursor_.AtEnd() && !cursor_.Peek().Is(",") && !cursor_.Peek().Is(")"))
            if (cursor_.Take().Is("(")) cursor_.SkipPast("(", ")");
        return cursor_.Since(start);
    }

    // ---- State blocks, and what other programs and later models have

    void ParseStateBlock() {
        const std::string name = cursor_.ExpectName("the name of the state block");
        cursor_.Expect("=", "before the states");
        if (!cursor_.AcceptWord("stateblock_state")) return cursor_.Fail(cursor_.Peek(), "expected stateblock_state");
        ParseStates(cursor_, effect_, StateOwner::Pass, effect_.symbols.state_blocks[name]);
        cursor_.Expect(";", "after the state block");
    }

    bool IsPassedOver() {
        constexpr std::string_view kFragments[] = {"pixelfragment", "vertexfragment"};
        constexpr std::string_view kLater[] = {"technique10",     "technique11",    "fxgroup",
                                               "BlendState",      "SamplerState",   "SamplerComparisonState",
                                               "RasterizerState", "GeometryShader", "DepthStencilState"};
        const std::string& word = cursor_.Peek().text;
        if (cursor_.Peek().kind != TokenKind::Identifier || effect_.symbols.structures.contains(word)) return false;
        const bool later = std::ranges::count(kLater, word) > 0;
        effect_.later_models |= later;
        return later || std::ranges::count(kFragments, word) > 0;
    }

    /// Up to the semicolon or the braces that end it; named once.
    void PassOver() {
        const Token word = cursor_.Take();
        if (effect_.unused_states.insert(word.text).second)
            cursor_.Errors().Warning(word.place, ErrorCode::Unsupported,
                                     fmt::format("a {} has no effect here", word.text));
        while (!cursor_.AtEnd() && !cursor_.Accept(";")) {
            if (cursor_.Accept("<")) cursor_.SkipPast("<", ">");
            if (cursor_.Accept("{")) return cursor_.SkipPast("{", "}");
            if (!cursor_.Peek().Is(";")) cursor_.Take();
        }
    }

    /// "cbuffer NAME : register(b0) {": what is in it are parameters like others.
    void OpenBuffer() {
        EffectParameter unused;
        cursor_.ExpectName("the name of the buffer");
        ParseSemantics(0, unused);
        cursor_.Expect("{", "before the parameters");
        ++buffers_;
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
    std::set<std::string, std::less<>> declared_functions_;
    std::map<std::string, Tokens> member_code_;   // between the braces, by structure
    std::set<std::string, std::less<>> late_;     // static variables that get their value when a function begins
    Tokens initialisation_;
    int buffers_ = 0;   // that are open
};

}   // namespace

ParsedEffect ParseEffect(const Tokens& tokens, Diagnostics& diagnostics) {
    return EffectParser(tokens, diagnostics).Run();
}

}   // namespace sparkrig::fxc
