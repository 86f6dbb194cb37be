#include "tools/fxc/object_parser.h"

#include <fmt/format.h>

#include "tools/fxc/code_names.h"
#include "tools/fxc/state_parser.h"

namespace sparkrig::fxc {

namespace {

class ObjectParser {
  public:
    ObjectParser(Cursor& cursor, ParsedEffect& effect, const Type& type)
        : cursor_(cursor), effect_(effect), type_(type) {}

    void ParseOne(DWORD index, const std::string& code_name) {
        if (type_.kind == VariableClass::Sampler) AddSampler(index, code_name);
        if (type_.kind == VariableClass::Sampler && cursor_.Peek().Is("{"))   // an older form, without a sign
            return ParseSamplerStates(index);
        if (cursor_.Accept("=")) ParseValue(index);
    }

    void ParseArray(DWORD index, DWORD elements, const Token& name) {
        const bool listed = cursor_.Accept("=");
        if (listed) cursor_.Expect("{", "before the values");
        for (DWORD i = 0; i < elements && !cursor_.Failed(); ++i) {
            const DWORD element = AddElement(cursor_, effect_, index, i, name);
            if (type_.kind == VariableClass::Sampler) AddSampler(element, fmt::format("fxc_{}_{}", name.text, i));
            if (listed && !cursor_.Peek().Is("}")) ParseValue(element);
            if (listed) cursor_.Accept(",");
        }
        if (listed) cursor_.Expect("}", "after the values");
    }

  private:
    void AddSampler(DWORD index, const std::string& code_name) {
        effect_.samplers[code_name] = type_.shape;
        effect_.places[code_name] = index;
    }

    void ParseSamplerStates(DWORD index) {
        std::vector<StateAssignment> states;
        ParseStates(cursor_, effect_, StateOwner::Sampler, states);
        effect_.file.parameters[index].states = std::move(states);
    }

    void ParseSamplerValue(DWORD index) {
        const bool braces = cursor_.Accept("{");
        if (!cursor_.AcceptWord("sampler_state")) return cursor_.Fail(cursor_.Peek(), "expected sampler_state");
        ParseSamplerStates(index);
        if (braces) cursor_.Expect("}", "after the sampler");
    }

    void ParseValue(DWORD index) {
        switch (type_.kind) {
            case VariableClass::Sampler: return ParseSamplerValue(index);
            case VariableClass::Texture:
                if (!AcceptNull(cursor_)) cursor_.Fail(cursor_.Peek(), "a texture starts as NULL");
                return;
            case VariableClass::Shader: return ParseShader(index);
            default: effect_.file.parameters[index].variable.text = ParseString(cursor_);
        }
    }

    void ParseShader(DWORD index) {
        if (AcceptNull(cursor_)) return;
        const FunctionStage stage =
            type_.spelling[0].text == "vertexshader" ? FunctionStage::Vertex : FunctionStage::Pixel;
        const std::optional<DWORD> function = AcceptFunction(cursor_, effect_, stage);
        if (!function) return cursor_.Fail(cursor_.Peek(), "expected compile");
        effect_.file.parameters[index].function = static_cast<std::int32_t>(*function);
    }

    Cursor& cursor_;
    ParsedEffect& effect_;
    const Type& type_;
};

}   // namespace

void ParseObjects(Cursor& cursor, ParsedEffect& effect, const Type& type, const Token& name, DWORD index) {
    const DWORD elements = effect.file.parameters[index].variable.elements;
    ObjectParser parser(cursor, effect, type);
    if (elements == 0) return parser.ParseOne(index, CodeName(name.text));
    parser.ParseArray(index, elements, name);
}

void ReadSamplerRegister(Cursor& cursor, ParsedEffect& effect, DWORD index) {
    const std::string& text = cursor.Peek().text;
    if (text.size() < 2 || text[0] != 's') return;
    constexpr DWORD kSamplerCount = 16;
    DWORD number = 0;
    for (std::size_t i = 1; i < text.size(); ++i) {
        if (text[i] < '0' || text[i] > '9' || number >= kSamplerCount)
            return cursor.Fail(cursor.Peek(), "a sampler register is s0 to s15");
        number = number * 10 + static_cast<DWORD>(text[i] - '0');
    }
    if (number >= kSamplerCount) return cursor.Fail(cursor.Peek(), "a sampler register is s0 to s15");
    effect.sampler_registers[index] = number;
}

std::string ParseString(Cursor& cursor) {
    std::string text;
    const bool braces = cursor.Accept("{");
    if (cursor.Peek().kind != TokenKind::String) cursor.Fail(cursor.Peek(), "expected a string");
    while (cursor.Peek().kind == TokenKind::String) text += cursor.Take().text;
    if (braces) cursor.Expect("}", "after the string");
    return text;
}

DWORD AddChild(Cursor& cursor, ParsedEffect& effect, DWORD parent, EffectVariable variable, const Token& name) {
    constexpr std::size_t kMostParameters = 65536;
    if (effect.file.parameters.size() >= kMostParameters) cursor.Fail(name, "too many members");
    EffectParameter& child = effect.file.parameters.emplace_back();
    child.variable = std::move(variable);
    child.parent = static_cast<std::int32_t>(parent);
    if (IsNumeric(child.variable.kind)) child.variable.words.resize(child.variable.WordCount());
    return static_cast<DWORD>(effect.file.parameters.size() - 1);
}

DWORD AddElement(Cursor& cursor, ParsedEffect& effect, DWORD array, DWORD element, const Token& name) {
    EffectVariable variable = effect.file.parameters[array].variable;
    variable.name = fmt::format("{}[{}]", variable.name, element);
    variable.elements = 0;
    return AddChild(cursor, effect, array, std::move(variable), name);
}

}   // namespace sparkrig::fxc
