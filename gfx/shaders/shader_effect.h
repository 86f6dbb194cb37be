// A compiled effect file whose parameters the engine fills by their semantics.
//
// Loaded by KRN_Gfx::LoadShaderEffect. To draw: fill the semantics, Begin, for each pass BeginPass, draw, EndPass, then
// End. The drawers of KRN_Gfx do so by themselves (shader_effect_passes.h). An effect without file, because none was
// loaded or none was found, fills nothing, has no passes and takes no parameters.
#pragma once
#include <memory>
#include <span>

#include "base/resource_manager.h"
#include "base/string.h"
#include "platform/d3dx/d3dx_effect.h"

namespace sparkrig {

class ShaderEffectRegistry;
enum class Semantic;
struct ShaderEffectContext;
struct ShaderEffectData;
struct TechniqueTargets;
struct PassTarget;

class KRN_ShaderEffect : public KRN_ResourceBase {
  public:
    KRN_ShaderEffect();
    ~KRN_ShaderEffect();
    KRN_ShaderEffect(const KRN_ShaderEffect&) = delete;
    KRN_ShaderEffect& operator=(const KRN_ShaderEffect&) = delete;

    void Release();
    /// Present and validated.
    bool IsValid() const override;
    /// Chooses the first technique that this device can run, or checks the chosen one again. False when none, or not
    /// this one, can be run: the last technique, or this one, stays chosen.
    bool SelectTechnique();

    /// Null for a semantic that the effect does not have.
    D3DXHANDLE ParameterBySemantic(const char* semantic) const;
    // What the effect does not take is an error.
    void SetParameter(D3DXHANDLE handle, float value);
    void SetParameter(D3DXHANDLE handle, bool value);
    void SetParameter(D3DXHANDLE handle, const D3DXVECTOR4& value);
    void SetParameter(D3DXHANDLE handle, const INT (&value)[4]);
    void SetParameter(D3DXHANDLE handle, const D3DXVECTOR4* values, std::size_t count);
    void SetParameter(D3DXHANDLE handle, const D3DXMATRIX& value);
    void SetParameter(D3DXHANDLE handle, std::span<const D3DXMATRIX> values);
    void SetParameter(D3DXHANDLE handle, IDirect3DTexture9* value);

    /// Fills every matrix, time, fog and viewport parameter that the effect has, its resource textures and the textures
    /// of the screen. With the frame cache on: once in a frame.
    void ApplyFrameSemantics();
    /// The number of blend weights of the object that is drawn and its bone matrices, as many as the device has room
    /// for. With the frame cache on: once in a frame.
    void ApplyObjectSemantics(int blend_weights, std::span<const D3DXMATRIX> palette);
    /// From the eight lights of the device: the first two directional ones, the first six others, ambient light.
    void ApplyLightSemantics();
    /// The current material, the textures that are bound to the stages, by their kinds, and their matrices.
    void ApplyMaterialSemantics();

    /// The number of passes; each is drawn between BeginPass and EndPass, all before End.
    int Begin();
    /// The pass's screen buffer becomes the render target. False, and no EndPass follows, for an init pass of an effect
    /// whose screen buffers are not new.
    bool BeginPass(int pass);
    void EndPass();
    void End();
    /// After an error: ends what is begun, without reports.
    void Abandon();
    /// Between BeginPass and EndPass, of this object or of one that shares the effect.
    bool InPass() const;
    /// Begins the open pass again, with the values that the parameters have now.
    void RepeatPass();

    /// Of the chosen technique: whether one of its passes, or that pass, has a pixel shader.
    bool TechniqueHasPixelShader() const;
    bool PassHasPixelShader(int pass) const;
    /// Of the chosen technique: whether a vertex shader of it asks for TANGENT or BINORMAL.
    bool ReadsTangents() const;

    /// SelectTechnique gives stages 0 to 5 the texture coordinates of their own number.
    void SetOwnTextureCoordinates(bool on) { own_texture_coordinates_ = on; }
    /// Whether the effect has a parameter that ApplyLightSemantics fills: drawers call it then.
    bool LightSemantics() const;
    /// Overrides the effect's own value of fParam1 to fParam8 or vParam1 to vParam8, for all that share its file. False
    /// when it has no such parameter; a number outside 1 to 8 is an error.
    bool SetNumberedParameter(int number, float value);
    bool SetNumberedParameter(int number, const D3DXVECTOR4& value);
    /// End gives fParam1 to vParam8 their stored values, the overrides or the effect's own, again.
    void SetReapplyDefaults(bool on) { reapply_defaults_ = on; }

    ID3DXEffect* Effect() const;   // borrowed; null while nothing is loaded
    /// The chosen technique, -1 before one was chosen.
    int Technique() const { return technique_; }

  private:
    friend class ShaderEffectLoader;
    void Check(HRESULT result) const;
    void Require(HRESULT result, const char* call) const;
    const TechniqueTargets* Targets() const;   // null before a technique was chosen
    PassTarget TargetOf(int pass) const;       // plain for what is not known
    void ReapplyDefaults();
    template <class Value>
    bool SetNumbered(int number, const Value& value, Semantic first, Value (ShaderEffectData::*stored)[8]);

    const ShaderEffectContext* context_ = nullptr;     // borrowed
    std::shared_ptr<ShaderEffectRegistry> registry_;   // of KRN_Gfx; null while nothing is loaded
    int registry_index_ = -1;
    int technique_ = -1;
    bool own_texture_coordinates_ = false;
    bool reapply_defaults_ = false;

    ShaderEffectData* Data() const;
};

}   // namespace sparkrig
