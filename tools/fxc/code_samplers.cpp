#include "tools/fxc/code_adaption.h"
#include "tools/fxc/token_tools.h"

namespace sparkrig::fxc {

namespace {

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
        std::string_view function = code[i].text;
        if (function.starts_with("fxc_")) function.remove_prefix(4);
        const SamplerShape shape = ShapeOfCall(function);
        if (shape != SamplerShape::Unknown && code[i + 1].Is("(")) shapes.try_emplace(code[i + 2].text, shape);
    }
    return shapes;
}

/// A sampler that is handed to a function has the shape of the function's parameter.
void FollowCalls(const ParsedEffect& effect, std::map<std::string, SamplerShape>& shapes) {
    const Tokens& code = effect.code;
    for (std::size_t i = 0; i + 1 < code.size(); ++i) {
        const auto function = effect.symbols.functions.find(code[i].text);
        if (function == effect.symbols.functions.end() || !code[i + 1].Is("(")) continue;
        std::size_t argument = i + 2;
        for (const FunctionParameter& parameter : function->second.back().parameters) {
            const std::size_t end = EndOfExpression(code, argument, true);
            SamplerShape shape = parameter.type.shape;
            if (const auto used = shapes.find(parameter.name); shape == SamplerShape::Unknown && used != shapes.end())
                shape = used->second;
            if (parameter.type.kind == VariableClass::Sampler && end == argument + 1 && shape != SamplerShape::Unknown)
                shapes.try_emplace(code[argument].text, shape);
            if (end >= code.size() || !code[end].Is(",")) break;
            argument = end + 1;
        }
    }
}

const char* SamplerWord(SamplerShape shape) {
    return shape == SamplerShape::Cube ? "samplerCUBE" : shape == SamplerShape::Volume ? "sampler3D" : "sampler2D";
}

/// f(S[i], uv) becomes (i == 0 ? f(fxc_S_0, uv) : f(fxc_S_1, uv)), with `call` behind the "(". The index behind the
/// call; `call` where it is none.
std::size_t ChooseElement(const Tokens& code, std::size_t call, DWORD elements, Tokens& result) {
    constexpr DWORD kMostSamplers = 16;   // that a function can have
    const Token& array = code[call];
    if (elements > kMostSamplers || result.size() < 2 || !result.back().Is("(") ||
        result[result.size() - 2].kind != TokenKind::Identifier)
        return call;
    const std::size_t close = ClosingBracket(code, call + 1), end = ClosingBracket(code, call - 1);
    if (close >= code.size() || end >= code.size()) return call;
    const Token& function = code[call - 2];
    result.resize(result.size() - 2);
    AppendText(result, array, "(");
    for (DWORD i = 0; i < elements; ++i) {
        if (i + 1 < elements) {
            AppendText(result, array, "(");
            AppendTo(result, Part(code, call + 2, close));
            AppendText(result, array, ") == " + std::to_string(i) + " ?");
        }
        result.push_back(function);
        AppendText(result, array, "( fxc_" + array.text + "_" + std::to_string(i));
        AppendTo(result, Part(code, close + 1, end + 1));
        if (i + 1 < elements) AppendText(result, array, ":");
    }
    AppendText(result, array, ")");
    return end + 1;
}

/// S[1] becomes the sampler that stands for it.
void NameElements(ParsedEffect& effect, Diagnostics& diagnostics) {
    Tokens result;
    for (std::size_t i = 0; i < effect.code.size(); ++i) {
        const Token& token = effect.code[i];
        const auto found = effect.symbols.parameters.find(token.text);
        const bool array = token.kind == TokenKind::Identifier && found != effect.symbols.parameters.end() &&
                           effect.file.parameters[found->second].variable.kind == VariableClass::Sampler &&
                           effect.file.parameters[found->second].variable.elements > 0;
        result.push_back(token);
        if (!array || i + 3 >= effect.code.size() || !effect.code[i + 1].Is("[")) continue;
        std::string index = effect.code[i + 2].text;
        if (const auto constant = effect.symbols.constants.find(index);
            constant != effect.symbols.constants.end() && !constant->second.values.empty())
            index = std::to_string(static_cast<int>(constant->second.values[0]));
        const std::string name = "fxc_" + token.text + "_" + index;
        if (effect.code[i + 3].Is("]") && effect.samplers.contains(name)) {
            result.back().text = name;
            i += 3;
            continue;
        }
        result.pop_back();
        const DWORD elements = effect.file.parameters[found->second].variable.elements;
        const std::size_t behind = ChooseElement(effect.code, i, elements, result);
        if (behind == i)
            return diagnostics.Error(token.place, ErrorCode::Unsupported,
                                     "a sampler of an array is chosen in the call of a function only");
        i = behind - 1;
    }
    effect.code = std::move(result);
}

void ShapeSamplersOf(ParsedEffect& effect) {
    std::map<std::string, SamplerShape> shapes = ShapesInUse(effect.code);
    FollowCalls(effect, shapes);
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
        Token token = MadeAt({}, TokenKind::Identifier, SamplerWord(shape), false);
        declarations.push_back(token);
        token.text = name;
        declarations.push_back(token);
        declarations.push_back(MadeAt({}, TokenKind::Symbol, ";"));
    }
    effect.code.insert(effect.code.begin(), declarations.begin(), declarations.end());
}

}   // namespace

void ShapeSamplers(ParsedEffect& effect, Diagnostics& diagnostics) {
    NameElements(effect, diagnostics);
    ShapeSamplersOf(effect);
}

}   // namespace sparkrig::fxc
