#include "platform/d3dx/effect_program.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <map>
#include <optional>

#include "platform/d3dx/effect_expression.h"

namespace sparkrig {

struct EffectProgram::WholeStates {
    std::map<DWORD, D3DLIGHT9> lights;
    std::optional<D3DMATERIAL9> material;
};

EffectProgram::EffectProgram(IDirect3DDevice9& device, EffectFile effect, EffectPool* pool)
    : device_(device), file_(std::move(effect)) {
    for (const EffectParameter& parameter : file_.parameters) {
        auto value = std::make_shared<ParameterValue>();
        value->words = parameter.variable.words;
        values_.push_back(parameter.shared && pool ? pool->Share(parameter.variable, std::move(value))
                                                   : std::move(value));
    }
    D3DCAPS9 caps = {};
    const bool known = SUCCEEDED(device_.GetDeviceCaps(&caps));
    functions_.resize(file_.functions.size());
    for (std::size_t i = 0; i < functions_.size() && known; ++i)
        CreateFunction(file_.functions[i], caps, functions_[i]);
    for (const EffectTechnique& technique : file_.techniques) {
        std::vector<StateKey>& keys = changed_.emplace_back();
        for (const EffectPass& pass : technique.passes)
            for (const StateAssignment& state : pass.states) CollectKeys(state, keys);
        std::sort(keys.begin(), keys.end());
        keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
    }
}

void EffectProgram::CreateFunction(const EffectFunction& source, const D3DCAPS9& caps, Function& function) {
    constexpr DWORD kVersionMask = 0xFFFF;
    const bool vertex = source.stage == FunctionStage::Vertex;
    const DWORD possible = (vertex ? caps.VertexShaderVersion : caps.PixelShaderVersion) & kVersionMask;
    if (!source.unsupported.empty() || source.version > possible) return;
    function.globals.resize(source.code.globals_bytes);
    function.usable = SUCCEEDED(vertex ? device_.CreateVertexShader(source.code, function.vertex.Receive())
                                       : device_.CreatePixelShader(source.code, function.pixel.Receive()));
}

// ---- What a technique is

const EffectFunction* EffectProgram::FunctionOf(const StateAssignment& state) const {
    if (state.type != StateType::Shader || state.value == ValueKind::Null) return nullptr;
    if (state.value == ValueKind::Function) return &file_.functions[state.reference];
    return FunctionOf(state.expression.empty() ? state.reference : ChosenElement(state));
}

const EffectFunction* EffectProgram::FunctionOf(DWORD parameter) const {
    const std::int32_t function = file_.parameters[parameter].function;
    return function < 0 ? nullptr : &file_.functions[static_cast<std::size_t>(function)];
}

/// An index beside the array's elements is moved to the nearest.
DWORD EffectProgram::ChosenElement(const StateAssignment& state) const {
    const DWORD elements = file_.parameters[state.reference].variable.elements;
    const float index = ValueOf(state)[0];
    return state.reference + (elements == 0 ? 0 : 1 + static_cast<DWORD>(std::clamp(index, 0.0f, elements - 1.0f)));
}

std::vector<const EffectFunction*> EffectProgram::PossibleFunctions(const StateAssignment& state) const {
    std::vector<const EffectFunction*> functions;
    if (state.type == StateType::Shader && state.value == ValueKind::Parameter && !state.expression.empty()) {
        for (DWORD i = 1; i <= file_.parameters[state.reference].variable.elements; ++i)
            functions.push_back(FunctionOf(state.reference + i));
    } else {
        functions.push_back(FunctionOf(state));
    }
    std::erase(functions, nullptr);
    return functions;
}

std::string EffectProgram::WhyNot(std::size_t technique) const {
    for (const EffectPass& pass : file_.techniques[technique].passes) {
        for (const StateAssignment& state : pass.states) {
            for (const EffectFunction* function : PossibleFunctions(state)) {
                const bool pixel = function->stage == FunctionStage::Pixel;
                if (pixel != (state.group == StateGroup::PixelShader)) return "a function is of the other stage";
                if (!function->unsupported.empty()) return function->unsupported;
                if (!functions_[static_cast<std::size_t>(function - file_.functions.data())].usable)
                    return "the device does not take '" + function->call + "'";
            }
        }
    }
    return {};
}

void EffectProgram::CollectSamplerKeys(DWORD parameter, DWORD sampler, std::vector<StateKey>& keys) const {
    for (const StateAssignment& state : file_.parameters[parameter].states)
        keys.push_back({state.group, state.state, sampler});
}

void EffectProgram::CollectKeys(const StateAssignment& state, std::vector<StateKey>& keys) const {
    switch (state.group) {
        case StateGroup::Sampler: return CollectSamplerKeys(state.reference, state.index, keys);
        case StateGroup::Light:
        case StateGroup::Material: return keys.push_back({state.group, 0, state.index});
        default: keys.push_back({state.group, state.state, state.index});
    }
    for (const EffectFunction* function : PossibleFunctions(state))
        for (const SamplerBinding& binding : function->samplers)
            CollectSamplerKeys(binding.parameter, binding.sampler, keys);
}

// ---- Applying a pass

namespace {

DWORD ColourWord(const ExpressionValue& value) {
    const auto channel = [](float component) {
        const float clamped = component > 0 ? std::min(component, 1.0f) : 0.0f;   // not a number: 0
        return static_cast<DWORD>(std::lround(clamped * 255.0f));
    };
    return channel(value[3]) << 24 | channel(value[0]) << 16 | channel(value[1]) << 8 | channel(value[2]);
}

std::array<DWORD, 4> WordsOf(StateType type, const ExpressionValue& value) {
    switch (type) {
        case StateType::Bool: return {WordOf(NumberType::Bool, value[0])};
        case StateType::Float: return {WordOf(NumberType::Float, value[0])};
        case StateType::Colour: return {ColourWord(value)};
        case StateType::Vector: return std::bit_cast<std::array<DWORD, 4>>(value);
        default: return {WordOf(NumberType::Int, value[0])};
    }
}

D3DCOLORVALUE ColourOf(const std::array<DWORD, 4>& words) { return std::bit_cast<D3DCOLORVALUE>(words); }

D3DVECTOR VectorOf(const std::array<DWORD, 4>& words) {
    const D3DCOLORVALUE v = ColourOf(words);
    return {v.r, v.g, v.b};
}

void SetMember(D3DLIGHT9& light, LightMember member, const std::array<DWORD, 4>& words) {
    const float number = std::bit_cast<float>(words[0]);
    switch (member) {
        case LightMember::Type: light.Type = static_cast<D3DLIGHTTYPE>(words[0]); break;
        case LightMember::Diffuse: light.Diffuse = ColourOf(words); break;
        case LightMember::Specular: light.Specular = ColourOf(words); break;
        case LightMember::Ambient: light.Ambient = ColourOf(words); break;
        case LightMember::Position: light.Position = VectorOf(words); break;
        case LightMember::Direction: light.Direction = VectorOf(words); break;
        case LightMember::Range: light.Range = number; break;
        case LightMember::Falloff: light.Falloff = number; break;
        case LightMember::Attenuation0: light.Attenuation0 = number; break;
        case LightMember::Attenuation1: light.Attenuation1 = number; break;
        case LightMember::Attenuation2: light.Attenuation2 = number; break;
        case LightMember::Theta: light.Theta = number; break;
        case LightMember::Phi: light.Phi = number; break;
    }
}

void SetMember(D3DMATERIAL9& material, MaterialMember member, const std::array<DWORD, 4>& words) {
    switch (member) {
        case MaterialMember::Diffuse: material.Diffuse = ColourOf(words); break;
        case MaterialMember::Ambient: material.Ambient = ColourOf(words); break;
        case MaterialMember::Specular: material.Specular = ColourOf(words); break;
        case MaterialMember::Emissive: material.Emissive = ColourOf(words); break;
        case MaterialMember::Power: material.Power = std::bit_cast<float>(words[0]); break;
    }
}

D3DMATRIX MatrixOf(const std::vector<DWORD>& words) {
    D3DMATRIX matrix = {};
    std::memcpy(&matrix, words.data(), sizeof matrix);
    return matrix;
}

/// A number parameter as it is, so that all 32 bits of an integer survive; otherwise none.
const ExpressionStep* PlainParameter(const StateAssignment& state) {
    const bool plain = state.expression.size() == 1 && state.expression[0].code == ExpressionCode::Parameter &&
                       (state.type == StateType::Int || state.type == StateType::Colour);
    return plain ? &state.expression[0] : nullptr;
}

}   // namespace

std::array<DWORD, 4> EffectProgram::Evaluate(const StateAssignment& state) const {
    if (state.value == ValueKind::Constant) return state.constant;
    if (const ExpressionStep* step = PlainParameter(state)) {
        const EffectVariable& variable = file_.parameters[step->parameter].variable;
        const DWORD word = values_[step->parameter]->words[0];
        if (variable.kind == VariableClass::Scalar && variable.number == NumberType::Int) return {word};
    }
    return WordsOf(state.type, ValueOf(state));
}

ExpressionValue EffectProgram::ValueOf(const StateAssignment& state) const {
    const auto load = [this](DWORD parameter) {
        return LoadVariable(file_.parameters[parameter].variable, values_[parameter]->words);
    };
    const auto element = [this](DWORD parameter, float index) {
        return LoadElement(file_.parameters[parameter].variable, values_[parameter]->words, index);
    };
    return EvaluateExpression(state.expression, load, element);
}

HRESULT EffectProgram::Apply(const StateAssignment& state, DWORD index, WholeStates& whole) {
    const StateKey key = {state.group, state.state, index};
    switch (state.group) {
        case StateGroup::Render:
        case StateGroup::TextureStage:
        case StateGroup::SamplerState:
        case StateGroup::LightEnable: return SetState(device_, key, Evaluate(state)[0]);
        case StateGroup::Texture:
            return SetState(
                device_, key,
                state.value == ValueKind::Null ? DevicePtr<IDirect3DTexture9>() : values_[state.reference]->texture);
        case StateGroup::Sampler: return ApplySampler(state.reference, index);
        case StateGroup::Transform: {
            if (state.value == ValueKind::Constant) return SetState(device_, key, MatrixOf(state.matrix));
            const EffectVariable& variable = file_.parameters[state.reference].variable;
            return SetState(device_, key, MatrixOf(variable, values_[state.reference]->words, 0));
        }
        case StateGroup::Light:
            SetMember(whole.lights[index], static_cast<LightMember>(state.state), Evaluate(state));
            return D3D_OK;
        case StateGroup::Material:
            if (!whole.material) whole.material.emplace(D3DMATERIAL9{});
            SetMember(*whole.material, static_cast<MaterialMember>(state.state), Evaluate(state));
            return D3D_OK;
        case StateGroup::VertexShader:
        case StateGroup::PixelShader: return ApplyFunction(state);
    }
    return D3DERR_INVALIDCALL;
}

HRESULT EffectProgram::ApplyPass(const EffectPass& pass) {
    WholeStates whole;
    for (const StateAssignment& state : pass.states) {
        const HRESULT result = Apply(state, state.index, whole);
        if (FAILED(result)) return result;
    }
    for (const auto& [index, light] : whole.lights) {
        const HRESULT result = SetState(device_, {StateGroup::Light, 0, index}, light);
        if (FAILED(result)) return result;
    }
    return whole.material ? SetState(device_, {StateGroup::Material}, *whole.material) : D3D_OK;
}

HRESULT EffectProgram::ApplySampler(DWORD parameter, DWORD sampler) {
    WholeStates none;
    for (const StateAssignment& state : file_.parameters[parameter].states) {
        const HRESULT result = Apply(state, sampler, none);
        if (FAILED(result)) return result;
    }
    return D3D_OK;
}

HRESULT EffectProgram::ApplyFunction(const StateAssignment& state) {
    const EffectFunction* source = FunctionOf(state);
    const bool vertex = state.group == StateGroup::VertexShader;
    if (source && vertex != (source->stage == FunctionStage::Vertex)) return D3DERR_INVALIDCALL;
    Function none;
    Function& function = source ? functions_[static_cast<std::size_t>(source - file_.functions.data())] : none;
    const StateKey key = {state.group};
    HRESULT result = vertex ? SetState(device_, key, function.vertex) : SetState(device_, key, function.pixel);
    if (!source) return result;
    if (SUCCEEDED(result) && !function.globals.empty()) {
        FillGlobals(*source, function.globals);
        const UINT bytes = static_cast<UINT>(function.globals.size());
        result = vertex ? device_.SetVertexShaderGlobals(function.globals.data(), bytes)
                        : device_.SetPixelShaderGlobals(function.globals.data(), bytes);
    }
    for (const SamplerBinding& binding : source->samplers)
        if (SUCCEEDED(result)) result = ApplySampler(binding.parameter, binding.sampler);
    return result;
}

void EffectProgram::FillGlobals(const EffectFunction& source, std::vector<BYTE>& globals) const {
    for (const GlobalBinding& binding : source.globals)
        CopyToGlobals(file_.parameters[binding.parameter].variable, values_[binding.parameter]->words,
                      globals.data() + binding.offset);
}

void EffectProgram::ReleaseDefaultPool() {
    for (const std::shared_ptr<ParameterValue>& value : values_) {
        D3DSURFACE_DESC desc = {};
        if (value->texture && SUCCEEDED(value->texture->GetLevelDesc(0, &desc)) && desc.Pool == D3DPOOL_DEFAULT)
            value->texture.Reset();
    }
}

}   // namespace sparkrig
