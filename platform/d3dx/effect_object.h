// The effect that programs hold: ID3DXEffect over a checked file, its values and its passes.
#pragma once
#include <memory>
#include <vector>

#include "platform/com/device_ptr.h"
#include "platform/com/ref_counted.h"
#include "platform/d3dx/d3dx_effect.h"
#include "platform/d3dx/effect_program.h"

namespace sparkrig {

/// What a handle points at.
struct D3DXHandleTag {
    enum class Kind { Parameter, Annotation, Technique, Pass };
    Kind kind;
    std::size_t index;                          // parameter, technique; pass in its technique
    const EffectVariable* variable = nullptr;   // parameter, annotation
    const EffectPass* pass = nullptr;
    std::size_t first_child = 0, children = 0;   // annotations: numbers of further handles
    std::size_t first_pass = 0;                  // technique
};

/// An effect: handles, values and techniques over an EffectProgram.
class Effect final : public RefCounted<ID3DXEffect> {
  public:
    /// `effect` was checked. Pool may be null.
    Effect(IDirect3DDevice9* device, EffectFile effect, EffectPool* pool);

    const EffectFile& File() const { return program_.File(); }

    HRESULT GetDesc(D3DXEFFECT_DESC* desc) override;
    HRESULT GetTechniqueDesc(D3DXHANDLE technique, D3DXTECHNIQUE_DESC* desc) override;
    HRESULT GetPassDesc(D3DXHANDLE pass, D3DXPASS_DESC* desc) override;
    D3DXHANDLE GetParameter(D3DXHANDLE parent, UINT index) override;
    D3DXHANDLE GetParameterByName(D3DXHANDLE parent, const char* name) override;
    D3DXHANDLE GetParameterBySemantic(D3DXHANDLE parent, const char* semantic) override;
    D3DXHANDLE GetTechnique(UINT index) override;
    D3DXHANDLE GetPass(D3DXHANDLE technique, UINT index) override;
    D3DXHANDLE GetAnnotationByName(D3DXHANDLE object, const char* name) override;

    HRESULT GetString(D3DXHANDLE parameter, const char** text) override;
    HRESULT GetFloat(D3DXHANDLE parameter, float* value) override;
    HRESULT GetInt(D3DXHANDLE parameter, INT* value) override;
    HRESULT GetVector(D3DXHANDLE parameter, D3DXVECTOR4* vector) override;
    HRESULT SetFloat(D3DXHANDLE parameter, float value) override;
    HRESULT SetInt(D3DXHANDLE parameter, INT value) override;
    HRESULT SetBool(D3DXHANDLE parameter, BOOL value) override;
    HRESULT SetVector(D3DXHANDLE parameter, const D3DXVECTOR4* vector) override;
    HRESULT SetVectorArray(D3DXHANDLE parameter, const D3DXVECTOR4* vectors, UINT count) override;
    HRESULT SetMatrix(D3DXHANDLE parameter, const D3DXMATRIX* matrix) override;
    HRESULT SetMatrixArray(D3DXHANDLE parameter, const D3DXMATRIX* matrices, UINT count) override;
    HRESULT SetTexture(D3DXHANDLE parameter, IDirect3DTexture9* texture) override;

    HRESULT ValidateTechnique(D3DXHANDLE technique) override;
    HRESULT SetTechnique(D3DXHANDLE technique) override;
    HRESULT Begin(UINT* passes, DWORD flags) override;
    HRESULT BeginPass(UINT pass) override;
    HRESULT EndPass() override;
    HRESULT End() override;
    HRESULT OnLostDevice() override;
    HRESULT OnResetDevice() override;

  private:
    using Kind = D3DXHandleTag::Kind;

    void MakeHandles();
    void AddAnnotations(std::size_t owner, const std::vector<EffectVariable>& annotations);
    /// The thing behind a handle if it is of this effect and of that kind.
    const D3DXHandleTag* Find(D3DXHANDLE handle, Kind kind) const;
    /// A parameter or annotation.
    const D3DXHandleTag* FindVariable(D3DXHANDLE handle) const;
    const std::vector<DWORD>& WordsOf(const D3DXHandleTag& variable);
    /// A parameter of a class, single or, if asked for, an array.
    const D3DXHandleTag* FindParameter(D3DXHANDLE handle, bool (*good)(VariableClass), bool array);
    template <class Match>
    D3DXHANDLE FindMember(D3DXHANDLE parent, const Match& match) const;
    template <class Number>
    HRESULT SetScalar(D3DXHANDLE parameter, Number value);

    DevicePtr<IDirect3DDevice9> device_;
    EffectProgram program_;
    DevicePtr<EffectPool> pool_;
    std::vector<D3DXHandleTag> handles_;   // parameters first, then techniques; never changes after the start
    SavedStates saved_;
    std::size_t technique_ = 0;   // the current one
    bool begun_ = false, in_pass_ = false;
};

}   // namespace sparkrig
