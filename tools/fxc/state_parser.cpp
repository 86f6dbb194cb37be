#include "tools/fxc/state_parser.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include <fmt/format.h>

#include "platform/d3d9/d3d9_constants.h"
#include "platform/system/ascii.h"
#include "tools/fxc/expression_parser.h"
#include "tools/fxc/state_table.h"

namespace sparkrig::fxc {

namespace {

DWORD ToWord(double value) {
    if (std::isnan(value)) return 0;
    // Negative numbers wrap, as they do in the device's unsigned states.
    const double whole = std::round(std::clamp(value, -2147483648.0, 4294967295.0));
    return whole < 0 ? static_cast<DWORD>(static_cast<std::int32_t>(whole)) : static_cast<DWORD>(whole);
}

DWORD ToColour(const std::vector<double>& values) {
    if (values.size() == 1) return ToWord(values[0]);
    const auto channel = [&](std::size_t i) {
        const double value = i < values.size() ? values[i] : 1.0;
        return static_cast<DWORD>(std::lround(std::clamp(value, 0.0, 1.0) * 255.0));
    };
    return channel(3) << 24 | channel(0) << 16 | channel(1) << 8 | channel(2);
}

DWORD FloatBits(double value) { return std::bit_cast<DWORD>(static_cast<float>(value)); }

std::array<DWORD, 4> ToConstant(StateType type, const std::vector<double>& values) {
    if (values.empty()) return {};
    switch (type) {
        case StateType::Bool: return {values[0] != 0 ? 1u : 0u};
        case StateType::Float: return {FloatBits(values[0])};
        case StateType::Colour: return {ToColour(values)};
        case StateType::Vector: {
            std::array<DWORD, 4> words = {};
            for (std::size_t i = 0; i < words.size(); ++i)
                if (values.size() == 1 || i < values.size()) words[i] = FloatBits(values[values.size() == 1 ? 0 : i]);
            return words;
        }
        default: return {ToWord(values[0])};
    }
}

constexpr const char* kLaterModel = "later shader models are not supported";

/// A function that the layer can not run, and why.
DWORD AddUnsupported(ParsedEffect& effect, const Place& place, FunctionStage stage, const std::string& name,
                     const char* reason) {
    FunctionRequest request;
    request.place = place;
    request.entry = name;
    effect.requests.push_back(std::move(request));
    effect.file.functions.emplace_back().stage = stage;
    effect.file.functions.back().unsupported = reason;
    return static_cast<DWORD>(effect.requests.size() - 1);
}

class StateParser {
  public:
    StateParser(Cursor& cursor, ParsedEffect& effect, StateOwner owner)
        : cursor_(cursor), effect_(effect), owner_(owner) {}

    void ParseAssignment(std::vector<StateAssignment>& states) {
        const Token name = cursor_.Peek();
        cursor_.ExpectName("a state");
        if (owner_ == StateOwner::Pass && cursor_.Accept("(")) return ParseCall(name, states);
        const StateRow* row = FindState(name.text);
        StateAssignment state;
        const DWORD index = ParseIndex();
        cursor_.Expect("=", fmt::format("after the state '{}'", name.text));
        if (owner_ == StateOwner::Pass && EqualIgnoringCase(name.text, "StateBlock")) return ParseBlock(states);
        if (!row || !BelongsHere(*row)) return Refuse(name);
        if (row->unused) return PassOver(*row, name);
        state.group = row->group;
        state.state = row->state;
        state.type = row->type;
        if (owner_ == StateOwner::Pass) SettleIndex(*row, name, index, state);
        if (row->group == StateGroup::Sampler && cursor_.AcceptWord("sampler_state"))
            return ParseSampler(name, index, states);
        ParseValue(*row, state);
        ExpectEnd(name);
        Assign(std::move(state), states);
    }

  private:
    static void Assign(StateAssignment state, std::vector<StateAssignment>& states) {
        std::erase_if(states, [&](const StateAssignment& other) {
            return other.group == state.group && other.state == state.state && other.index == state.index;
        });
        states.push_back(std::move(state));
    }

    /// The name of a block stands for its states.
    void ParseBlock(std::vector<StateAssignment>& states) {
        const char* close = cursor_.Accept("<") ? ">" : cursor_.Accept("(") ? ")" : nullptr;
        const Token name = cursor_.Peek();
        const auto block = effect_.symbols.state_blocks.find(cursor_.ExpectName("a state block"));
        if (block == effect_.symbols.state_blocks.end())
            return cursor_.Fail(name, fmt::format("'{}' is not a state block", name.text));
        for (const StateAssignment& state : block->second) Assign(state, states);
        if (close) cursor_.Expect(close, "after the state block");
        ExpectEnd(name);
    }

    /// What a sampler of the pass's own would have.
    void ParseSampler(const Token& name, DWORD index, std::vector<StateAssignment>& states) {
        std::vector<StateAssignment> own;
        ParseStates(cursor_, effect_, StateOwner::Sampler, own);
        for (StateAssignment& state : own) {
            state.index = index;
            Assign(std::move(state), states);
        }
        ExpectEnd(name);
    }

    /// SetPixelShader(...) and the like, of later shader models: the pass can not be drawn.
    void ParseCall(const Token& name, std::vector<StateAssignment>& states) {
        cursor_.SkipPast("(", ")");
        ExpectEnd(name);
        StateAssignment state;
        state.group = StateGroup::PixelShader;
        state.type = StateType::Shader;
        state.value = ValueKind::Function;
        state.reference = AddUnsupported(effect_, name.place, FunctionStage::Pixel, name.text, kLaterModel);
        effect_.later_models = true;
        Assign(std::move(state), states);
    }

    bool BelongsHere(const StateRow& row) const {
        return owner_ == StateOwner::Pass || row.group == StateGroup::SamplerState || row.group == StateGroup::Texture;
    }

    /// The last value of a sampler may stand without a semicolon.
    void ExpectEnd(const Token& name) {
        if (owner_ == StateOwner::Sampler && cursor_.Peek().Is("}")) return;
        cursor_.Expect(";", fmt::format("after the value of '{}'", name.text));
    }

    void SkipValue() {
        while (!cursor_.AtEnd() && !cursor_.Peek().Is(";") && !cursor_.Peek().Is("}"))
            if (cursor_.Take().Is("{")) cursor_.SkipPast("{", "}");
    }

    /// Reports a name that is no state, and goes on behind its value.
    void Refuse(const Token& name) {
        if (!cursor_.Failed())
            cursor_.Errors().Error(name.place, ErrorCode::Syntax,
                                   owner_ == StateOwner::Pass
                                       ? fmt::format("unknown state '{}'", name.text)
                                       : fmt::format("'{}' is no state of a sampler", name.text));
        SkipValue();
        cursor_.Expect(";", "after the value");
    }

    /// A state that the device has no use for is named once.
    void PassOver(const StateRow& row, const Token& name) {
        if (!cursor_.Failed() && effect_.unused_states.insert(row.name).second)
            cursor_.Errors().Warning(name.place, ErrorCode::Unsupported,
                                     fmt::format("the state '{}' has no effect here", row.name));
        SkipValue();
        ExpectEnd(name);
    }

    DWORD ParseIndex() {
        if (!cursor_.Accept("[")) return 0;
        const Expression index = ParseExpression(cursor_, effect_, Parameters::Known);
        cursor_.Expect("]", "after the index");
        const bool good = index.IsConstant() && !index.Values().empty() && index.Values()[0] >= 0;
        if (!good) cursor_.Fail(index.start, "an index is a constant from 0");
        return good ? ToWord(index.Values()[0]) : 0;
    }

    void SettleIndex(const StateRow& row, const Token& name, DWORD index, StateAssignment& state) {
        if (index >= IndexCount(row.group, row.state))
            cursor_.Errors().Error(name.place, ErrorCode::Syntax,
                                   fmt::format("'{}' has no index {}", name.text, index));
        else if (row.group == StateGroup::Transform)
            state.state += index;   // a transform's number says which one
        else
            state.index = index;
    }

    void ParseValue(const StateRow& row, StateAssignment& state) {
        switch (row.type) {
            case StateType::Texture: return ParseReference(state, VariableClass::Texture, "a texture");
            case StateType::Sampler: return ParseReference(state, VariableClass::Sampler, "a sampler");
            case StateType::Matrix: return ParseMatrix(state);
            case StateType::Shader: return ParseShader(row, state);
            default: return ParseNumber(row, state);
        }
    }

    /// <name>, (name), name or NULL; an element of an array by "[index]".
    void ParseReference(StateAssignment& state, VariableClass kind, const char* what) {
        const char* close = cursor_.Accept("<") ? ">" : cursor_.Accept("(") ? ")" : nullptr;
        const Token name = cursor_.Peek();
        if (AcceptNull(cursor_)) {
            if (kind == VariableClass::Matrix) cursor_.Fail(name, fmt::format("expected {}", what));
            if (kind == VariableClass::Sampler) state.group = StateGroup::Texture, state.type = StateType::Texture;
        } else {
            cursor_.ExpectName(what);
            const auto found = effect_.symbols.parameters.find(name.text);
            if (found == effect_.symbols.parameters.end() ||
                effect_.file.parameters[found->second].variable.kind != kind) {
                cursor_.Fail(name, fmt::format("'{}' is not {}", name.text, what));
                return;
            }
            state.value = ValueKind::Parameter;
            state.reference = found->second;
            if (effect_.file.parameters[found->second].variable.elements > 0) ParseElement(name, state);
        }
        if (close) cursor_.Expect(close, fmt::format("after {}", what));
    }

    /// The elements of an array of objects follow it. What is no constant is looked up when the pass begins.
    void ParseElement(const Token& name, StateAssignment& state) {
        const DWORD elements = effect_.file.parameters[state.reference].variable.elements;
        if (!cursor_.Accept("[")) return cursor_.Fail(name, fmt::format("'{}' is an array", name.text));
        const Expression index = ParseExpression(cursor_, effect_, Parameters::AtRunTime);
        cursor_.Expect("]", "after the index");
        if (!index.IsConstant() && state.type == StateType::Shader) {
            state.expression = index.steps;
            return;
        }
        const double element = index.Values().empty() ? -1 : index.Values()[0];
        if (element < 0 || element >= elements || state.type == StateType::Matrix)
            return cursor_.Fail(index.start, fmt::format("'{}' has no such element", name.text));
        state.reference += 1 + static_cast<DWORD>(element);
    }

    void ParseMatrix(StateAssignment& state) {
        const Token& first = cursor_.Peek(cursor_.Peek().Is("<") || cursor_.Peek().Is("(") ? 1 : 0);
        if (effect_.symbols.parameters.contains(first.text) && !effect_.symbols.constants.contains(first.text))
            return ParseReference(state, VariableClass::Matrix, "a matrix");
        const Token start = cursor_.Peek();
        const Constant constant = ParseConstant(cursor_, effect_);
        if (constant.values.size() != 1 && constant.values.size() != 16)
            return cursor_.Fail(start, "expected a matrix");
        state.value = ValueKind::Constant;
        for (std::size_t i = 0; i < 16; ++i)
            state.matrix.push_back(FloatBits(constant.values[constant.values.size() == 1 ? 0 : i]));
    }

    void ParseShader(const StateRow& row, StateAssignment& state) {
        const FunctionStage stage =
            row.group == StateGroup::VertexShader ? FunctionStage::Vertex : FunctionStage::Pixel;
        const std::optional<DWORD> function = AcceptFunction(cursor_, effect_, stage);
        if (!function) return ParseReference(state, VariableClass::Shader, "a function");
        state.value = ValueKind::Function;
        state.reference = *function;
    }

    void ParseNumber(const StateRow& row, StateAssignment& state) {
        Expression value;
        if (cursor_.Peek().Is("{")) {
            value.constant = ParseConstant(cursor_, effect_);
        } else if (cursor_.Accept("<")) {
            value = ParseOperand(cursor_, effect_, Parameters::AtRunTime);
            cursor_.Expect(">", "after the name");
        } else {
            value = ParseExpression(cursor_, effect_, Parameters::AtRunTime, &row);
        }
        state.value = value.IsConstant() ? ValueKind::Constant : ValueKind::Expression;
        state.expression = value.steps;
        if (value.IsConstant()) state.constant = ToConstant(row.type, value.Values());
        // Between levels there is nothing finer than linear.
        if (row.group == StateGroup::SamplerState && row.state == D3DSAMP_MIPFILTER)
            state.constant[0] = std::min<DWORD>(state.constant[0], D3DTEXF_LINEAR);
    }

    Cursor& cursor_;
    ParsedEffect& effect_;
    StateOwner owner_;
};

bool SameTokens(const Tokens& a, const Tokens& b) { return std::ranges::equal(a, b, {}, &Token::text, &Token::text); }

bool SameFunction(const FunctionRequest& a, const FunctionRequest& b) {
    return a.target == b.target && a.entry == b.entry && std::ranges::equal(a.arguments, b.arguments, SameTokens);
}

std::vector<Tokens> ParseArguments(Cursor& cursor) {
    std::vector<Tokens> arguments;
    cursor.Expect("(", "after the name of the function");
    if (cursor.Accept(")")) return arguments;
    arguments.emplace_back();
    for (int depth = 1; depth > 0;) {
        if (cursor.AtEnd()) {
            cursor.Expect(")", "after the arguments");
            break;
        }
        const Token& token = cursor.Take();
        depth += token.Is("(") ? 1 : token.Is(")") ? -1 : 0;
        if (depth == 1 && token.Is(","))
            arguments.emplace_back();
        else if (depth > 0)
            arguments.back().push_back(token);
    }
    return arguments;
}

/// "asm { ... }", before which the oldest form tells the vertex's streams: "decl { ... }".
DWORD ParseAssembly(Cursor& cursor, ParsedEffect& effect, FunctionStage stage) {
    const Place place = cursor.Peek().place;
    if (cursor.AcceptWord("decl")) {
        cursor.Expect("{", "after decl");
        cursor.SkipPast("{", "}");
    }
    if (!cursor.AcceptWord("asm")) cursor.Fail(cursor.Peek(), "expected asm");
    cursor.Expect("{", "after asm");
    cursor.SkipPast("{", "}");
    return AddUnsupported(effect, place, stage, "asm", "functions in assembly language are not supported");
}

DWORD ParseCompile(Cursor& cursor, ParsedEffect& effect, FunctionStage stage) {
    FunctionRequest request;
    request.place = cursor.Peek().place;
    request.target = cursor.ExpectName("a target such as vs_1_1");
    std::ranges::transform(request.target, request.target.begin(), AsciiLower);
    if (!request.target.starts_with(stage == FunctionStage::Vertex ? "vs_" : "ps_") && !cursor.Failed())
        cursor.Errors().Error(request.place, ErrorCode::Syntax,
                              fmt::format("'{}' is not a target for this kind of function", request.target));
    request.place = cursor.Peek().place;
    request.entry = cursor.ExpectName("the name of a function");
    request.arguments = ParseArguments(cursor);
    for (std::size_t i = 0; i < effect.requests.size(); ++i)
        if (SameFunction(effect.requests[i], request) && effect.file.functions[i].stage == stage)
            return static_cast<DWORD>(i);
    effect.requests.push_back(std::move(request));
    effect.file.functions.emplace_back().stage = stage;
    return static_cast<DWORD>(effect.requests.size() - 1);
}

}   // namespace

bool AcceptNull(Cursor& cursor) {
    if (cursor.AcceptWord("NULL")) return true;
    if (cursor.Peek().kind != TokenKind::Number || cursor.Peek().text != "0") return false;
    cursor.Take();
    return true;
}

std::optional<DWORD> AcceptFunction(Cursor& cursor, ParsedEffect& effect, FunctionStage stage) {
    if (cursor.Peek().IsName("asm") || (cursor.Peek().IsName("decl") && cursor.Peek(1).Is("{")))
        return ParseAssembly(cursor, effect, stage);
    const Token word = cursor.Peek();
    if (cursor.AcceptWord("compile")) return ParseCompile(cursor, effect, stage);
    if (!word.IsName("CompileShader") || !cursor.Peek(1).Is("(")) return std::nullopt;
    cursor.Take();
    cursor.Expect("(", "after CompileShader");
    cursor.SkipPast("(", ")");
    effect.later_models = true;
    return AddUnsupported(effect, word.place, stage, word.text, kLaterModel);
}

void ParseStates(Cursor& cursor, ParsedEffect& effect, StateOwner owner, std::vector<StateAssignment>& states) {
    cursor.Expect("{", "before the states");
    while (!cursor.AtEnd() && !cursor.Peek().Is("}")) {
        if (cursor.Accept(";")) continue;
        StateParser(cursor, effect, owner).ParseAssignment(states);
    }
    cursor.Expect("}", "after the states");
}

}   // namespace sparkrig::fxc
