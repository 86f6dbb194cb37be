#include "gfx/shaders/shader_effect.h"

#include <utility>

#include "gfx/shaders/shader_effect_context.h"
#include "gfx/shaders/shader_effect_registry.h"
#include "gfx/shaders/shader_effect_values.h"

namespace sparkrig {

KRN_ShaderEffect::KRN_ShaderEffect() { SetName("KRN_ShaderEffect"); }
KRN_ShaderEffect::~KRN_ShaderEffect() { Release(); }

void KRN_ShaderEffect::Release() {
    Abandon();
    if (registry_) registry_->Release(registry_index_);
    registry_.reset();
    registry_index_ = -1;
    technique_ = -1;
}

ShaderEffectData* KRN_ShaderEffect::Data() const { return registry_ ? &registry_->Get(registry_index_) : nullptr; }
ID3DXEffect* KRN_ShaderEffect::Effect() const { return registry_ ? Data()->effect.Get() : nullptr; }
bool KRN_ShaderEffect::IsValid() const { return registry_ && !Data()->not_valid; }

bool KRN_ShaderEffect::LightSemantics() const { return registry_ && Data()->light_semantics; }

// ---- Technique

bool KRN_ShaderEffect::SelectTechnique() {
    constexpr DWORD kStages = 6;
    if (!registry_) return false;
    if (own_texture_coordinates_)
        for (DWORD stage = 0; stage < kStages; ++stage)
            context_->states.sender.SendStageState(stage, D3DTSS_TEXCOORDINDEX, stage);
    ID3DXEffect& effect = *Effect();
    if (technique_ >= 0) return SUCCEEDED(effect.ValidateTechnique(effect.GetTechnique(static_cast<UINT>(technique_))));
    for (UINT i = 0; i < Data()->techniques; ++i) {
        const D3DXHANDLE technique = effect.GetTechnique(i);
        const bool valid = SUCCEEDED(effect.ValidateTechnique(technique));
        if (!valid && i + 1 < Data()->techniques) continue;
        effect.SetTechnique(technique);
        technique_ = static_cast<int>(i);
        return valid;
    }
    return false;
}

// ---- Parameters

D3DXHANDLE KRN_ShaderEffect::ParameterBySemantic(const char* semantic) const {
    return registry_ ? Effect()->GetParameterBySemantic(nullptr, semantic) : nullptr;
}

void KRN_ShaderEffect::Check(HRESULT result) const {
    if (FAILED(result)) Error("Can not SetParameter :%s", DXGetErrorString9(result));
}

void KRN_ShaderEffect::SetParameter(D3DXHANDLE handle, float value) {
    Check(registry_ ? Effect()->SetFloat(handle, value) : D3DERR_INVALIDCALL);
}
void KRN_ShaderEffect::SetParameter(D3DXHANDLE handle, bool value) {
    Check(registry_ ? Effect()->SetBool(handle, value) : D3DERR_INVALIDCALL);
}
void KRN_ShaderEffect::SetParameter(D3DXHANDLE handle, const D3DXVECTOR4& value) {
    Check(registry_ ? Effect()->SetVector(handle, &value) : D3DERR_INVALIDCALL);
}
void KRN_ShaderEffect::SetParameter(D3DXHANDLE handle, const INT (&value)[4]) {
    SetParameter(handle, D3DXVECTOR4{static_cast<float>(value[0]), static_cast<float>(value[1]),
                                     static_cast<float>(value[2]), static_cast<float>(value[3])});
}
void KRN_ShaderEffect::SetParameter(D3DXHANDLE handle, const D3DXVECTOR4* values, std::size_t count) {
    Check(registry_ ? Effect()->SetVectorArray(handle, values, static_cast<UINT>(count)) : D3DERR_INVALIDCALL);
}
void KRN_ShaderEffect::SetParameter(D3DXHANDLE handle, const D3DXMATRIX& value) {
    Check(registry_ ? Effect()->SetMatrix(handle, &value) : D3DERR_INVALIDCALL);
}
void KRN_ShaderEffect::SetParameter(D3DXHANDLE handle, std::span<const D3DXMATRIX> values) {
    const UINT count = static_cast<UINT>(values.size());
    Check(registry_ ? Effect()->SetMatrixArray(handle, values.data(), count) : D3DERR_INVALIDCALL);
}
void KRN_ShaderEffect::SetParameter(D3DXHANDLE handle, IDirect3DTexture9* value) {
    Check(registry_ ? Effect()->SetTexture(handle, value) : D3DERR_INVALIDCALL);
}

void KRN_ShaderEffect::ApplyFrameSemantics() {
    if (!registry_) return;
    ShaderEffectSettings& settings = registry_->settings;
    const FrameCache& frames = context_->frame_cache;
    if (frames.Serves(Data()->filled_in)) return;
    Data()->filled_in = frames.frame;
    FillFrameSemantics(*context_, *this, *Data(), settings);
    FillResourceTextures(*context_, *this, *Data());
    FillScreenTextures(*context_, *this, *Data());
}

void KRN_ShaderEffect::ApplyObjectSemantics(int blend_weights, std::span<const D3DXMATRIX> palette) {
    if (!registry_) return;
    const FrameCache& frames = context_->frame_cache;
    if (frames.Serves(Data()->object_filled_in)) return;
    Data()->object_filled_in = frames.frame;
    FillObjectSemantics(*context_, *this, *Data(), blend_weights, palette);
}

void KRN_ShaderEffect::ApplyLightSemantics() {
    if (registry_) FillLightSemantics(*context_, *this, *Data());
}
void KRN_ShaderEffect::ApplyMaterialSemantics() {
    if (registry_) FillMaterialSemantics(*context_, *this, *Data());
}

template <class Value>
bool KRN_ShaderEffect::SetNumbered(int number, const Value& value, Semantic first,
                                   Value (ShaderEffectData::*stored)[8]) {
    if (number < 1 || number > static_cast<int>(kNumberedParameters)) Error("Invalid parameter number: %i", number);
    const auto index = static_cast<std::size_t>(number - 1);
    const D3DXHANDLE handle = registry_ ? Data()->handles[static_cast<std::size_t>(first) + index] : nullptr;
    if (!handle) return false;
    SetParameter(handle, value);
    (Data()->*stored)[index] = value;
    return true;
}

bool KRN_ShaderEffect::SetNumberedParameter(int number, float value) {
    return SetNumbered(number, value, Semantic::FloatParameter1, &ShaderEffectData::float_parameters);
}
bool KRN_ShaderEffect::SetNumberedParameter(int number, const D3DXVECTOR4& value) {
    return SetNumbered(number, value, Semantic::VectorParameter1, &ShaderEffectData::vector_parameters);
}

void KRN_ShaderEffect::ReapplyDefaults() {
    const ShaderEffectData& data = *Data();
    constexpr auto kFirstFloat = static_cast<std::size_t>(Semantic::FloatParameter1);
    constexpr auto kFirstVector = static_cast<std::size_t>(Semantic::VectorParameter1);
    for (std::size_t i = 0; i < kNumberedParameters; ++i) {
        if (const D3DXHANDLE handle = data.handles[kFirstFloat + i]) SetParameter(handle, data.float_parameters[i]);
        if (const D3DXHANDLE handle = data.handles[kFirstVector + i]) SetParameter(handle, data.vector_parameters[i]);
    }
}

// ---- Drawing

void KRN_ShaderEffect::Require(HRESULT result, const char* call) const {
    if (FAILED(result)) Error("%s failed: %s", call, DXGetErrorString9(result));
}

const TechniqueTargets* KRN_ShaderEffect::Targets() const {
    return technique_ >= 0 ? &Data()->targets[static_cast<std::size_t>(technique_)] : nullptr;
}

bool KRN_ShaderEffect::TechniqueHasPixelShader() const { return Targets() && Targets()->has_pixel_shader; }
bool KRN_ShaderEffect::ReadsTangents() const { return Targets() && Targets()->reads_tangents; }
bool KRN_ShaderEffect::PassHasPixelShader(int pass) const { return !TargetOf(pass).no_pixel_shader; }

PassTarget KRN_ShaderEffect::TargetOf(int pass) const {
    const TechniqueTargets* targets = Targets();
    const bool known = targets && pass >= 0 && static_cast<std::size_t>(pass) < targets->passes.size();
    return known ? targets->passes[static_cast<std::size_t>(pass)] : PassTarget{.no_pixel_shader = true};
}

int KRN_ShaderEffect::Begin() {
    if (!registry_) return 0;
    UINT passes = 0;
    Require(Effect()->Begin(&passes, 0), "Begin");
    context_->states.sender.EffectBegun();
    Data()->begun_by = this;
    return static_cast<int>(passes);
}

bool KRN_ShaderEffect::BeginPass(int pass) {
    if (!registry_) return false;
    const PassTarget target = TargetOf(pass);
    ShaderEffectData& data = *Data();
    if (target.init_pass && data.initialised) return false;
    Require(Effect()->BeginPass(static_cast<UINT>(pass)), "BeginPass");
    data.open_pass = pass;
    data.passes_around = context_->pass_switch.Depth();
    context_->pass_switch.Begin(target, *this);
    return true;
}

bool KRN_ShaderEffect::InPass() const { return registry_ && Data()->open_pass >= 0; }

void KRN_ShaderEffect::RepeatPass() {
    if (!InPass()) return;
    Require(Effect()->EndPass(), "EndPass");
    Require(Effect()->BeginPass(static_cast<UINT>(Data()->open_pass)), "BeginPass");
}

void KRN_ShaderEffect::EndPass() {
    if (!registry_) return;
    const HRESULT result = Effect()->EndPass();
    if (std::exchange(Data()->open_pass, -1) >= 0) context_->pass_switch.End();
    Require(result, "EndPass");
}

void KRN_ShaderEffect::End() {
    if (!registry_) return;
    if (InPass()) EndPass();
    Data()->begun_by = nullptr;
    Require(context_->states.sender.EffectEnded(Effect()->End()), "End");
    Data()->initialised = true;
    if (reapply_defaults_) ReapplyDefaults();
}

void KRN_ShaderEffect::Abandon() {
    if (!registry_ || Data()->begun_by != this) return;
    ShaderEffectData& data = *Data();
    if (data.open_pass >= 0) {
        data.effect->EndPass();
        context_->pass_switch.UnwindTo(data.passes_around);
    }
    context_->states.sender.EffectEnded(data.effect->End());
    data.EndDrawing();
}

}   // namespace sparkrig
