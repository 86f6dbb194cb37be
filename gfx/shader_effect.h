// A compiled effect file whose parameters the engine fills by their semantics.
#pragma once
#include "base/resource_manager.h"
#include "base/string.h"
#include "platform/d3dx/d3dx_effect.h"

namespace sparkrig {

class KRN_Gfx;
struct ShaderEffectData;

class KRN_ShaderEffect : public KRN_ResourceBase {
  public:
    KRN_ShaderEffect();
    ~KRN_ShaderEffect();
    KRN_ShaderEffect(const KRN_ShaderEffect&) = delete;
    KRN_ShaderEffect& operator=(const KRN_ShaderEffect&) = delete;

    void Release();
    /// Present and validated.
    bool IsValid() const override;
    bool SelectTechnique();

    D3DXHANDLE ParameterBySemantic(const char* semantic) const;
    void SetParameter(D3DXHANDLE handle, float value);
    void SetParameter(D3DXHANDLE handle, bool value);
    void SetParameter(D3DXHANDLE handle, const D3DXVECTOR4& value);
    void SetParameter(D3DXHANDLE handle, const D3DXMATRIX& value);

    /// Fills every matrix, time, fog and viewport parameter that the effect has.
    void ApplyFrameSemantics();
    /// The number of passes; each is drawn between BeginPass and EndPass, all before End.
    int Begin();
    void BeginPass(int pass);
    void EndPass();
    void End();

    ID3DXEffect* Effect() const;

  private:
    friend class ShaderEffectLoader;
    KRN_Gfx* gfx_ = nullptr;   // borrowed
    int registry_index_ = -1;
    ShaderEffectData* data_ = nullptr;   // shared through the registry of KRN_Gfx
    int technique_ = -1;
};

}   // namespace sparkrig
