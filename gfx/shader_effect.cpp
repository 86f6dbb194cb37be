#include "gfx/shader_effect.h"

#include "gfx/gfx_parts.h"
#include "gfx/shader_effect_registry.h"
#include "gfx/shader_effect_values.h"

namespace sparkrig {

KRN_ShaderEffect::KRN_ShaderEffect() { SetName("KRN_ShaderEffect"); }
KRN_ShaderEffect::~KRN_ShaderEffect() { Release(); }

void KRN_ShaderEffect::Release() {
    if (registry_) registry_->Release(registry_index_);
    registry_.reset();
    registry_index_ = -1;
    technique_ = -1;
}

ShaderEffectData* KRN_ShaderEffect::Data() const { return registry_ ? &registry_->Get(registry_index_) : nullptr; }
ID3DXEffect* KRN_ShaderEffect::Effect() const { return registry_ ? Data()->effect.Get() : nullptr; }
bool KRN_ShaderEffect::IsValid() const { return registry_ && !Data()->not_valid; }

// ---- Technique

bool KRN_ShaderEffect::SelectTechnique() {
    constexpr DWORD kStages = 6;
    if (!registry_) return false;
    if (own_texture_coordinates_)
        for (DWORD stage = 0; stage < kStages; ++stage)
            gfx_->Parts().sender.SendStageState(stage, D3DTSS_TEXCOORDINDEX, stage);
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

void KRN_ShaderEffect::SetParameter(D3DXHANDLE handle, float value) { Check(Effect()->SetFloat(handle, value)); }
void KRN_ShaderEffect::SetParameter(D3DXHANDLE handle, bool value) { Check(Effect()->SetBool(handle, value)); }
void KRN_ShaderEffect::SetParameter(D3DXHANDLE handle, const D3DXVECTOR4& value) {
    Check(Effect()->SetVector(handle, &value));
}
void KRN_ShaderEffect::SetParameter(D3DXHANDLE handle, const INT (&value)[4]) {
    SetParameter(handle, D3DXVECTOR4{static_cast<float>(value[0]), static_cast<float>(value[1]),
                                     static_cast<float>(value[2]), static_cast<float>(value[3])});
}
void KRN_ShaderEffect::SetParameter(D3DXHANDLE handle, const D3DXVECTOR4* values, std::size_t count) {
    Check(Effect()->SetVectorArray(handle, values, static_cast<UINT>(count)));
}
void KRN_ShaderEffect::SetParameter(D3DXHANDLE handle, const D3DXMATRIX& value) {
    Check(Effect()->SetMatrix(handle, &value));
}
void KRN_ShaderEffect::SetParameter(D3DXHANDLE handle, IDirect3DTexture9* value) {
    Check(Effect()->SetTexture(handle, value));
}

void KRN_ShaderEffect::ApplyFrameSemantics() {
    ShaderEffectSettings& settings = registry_->settings;
    if (settings.frame_cache && Data()->filled_in == settings.frame) return;
    Data()->filled_in = settings.frame;
    FillFrameSemantics(*gfx_, *this, *Data(), settings);
    FillResourceTextures(*gfx_, *this, *Data());
}

void KRN_ShaderEffect::ApplyLightSemantics() { FillLightSemantics(*gfx_, *this, *Data()); }
void KRN_ShaderEffect::ApplyMaterialSemantics() { FillMaterialSemantics(*gfx_, *this, *Data()); }

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

int KRN_ShaderEffect::Begin() {
    UINT passes = 0;
    const HRESULT result = Effect()->Begin(&passes, 0);
    if (FAILED(result)) Error("Begin failed: %s", DXGetErrorString9(result));
    return static_cast<int>(passes);
}

void KRN_ShaderEffect::BeginPass(int pass) {
    const HRESULT result = Effect()->BeginPass(static_cast<UINT>(pass));
    if (FAILED(result)) Error("BeginPass failed: %s", DXGetErrorString9(result));
}

void KRN_ShaderEffect::EndPass() {
    const HRESULT result = Effect()->EndPass();
    if (FAILED(result)) Error("EndPass failed: %s", DXGetErrorString9(result));
}

void KRN_ShaderEffect::End() {
    const HRESULT result = Effect()->End();
    if (FAILED(result)) Error("End failed: %s", DXGetErrorString9(result));
    if (reapply_defaults_) ReapplyDefaults();
}

}   // namespace sparkrig
