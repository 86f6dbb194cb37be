// Effects: parameters, techniques and passes, from a compiled .fxo or from a .fx that tools/fxc compiles first.
// They work through the device contract alone, so that they run on either device.
#pragma once
#include "platform/d3d9/d3d9.h"
#include "platform/d3dx/d3dx_math.h"

namespace sparkrig {

/// Opaque, stable and unique; null means not found, or the top level as a parent.
using D3DXHANDLE = const struct D3DXHandleTag*;

struct D3DXEFFECT_DESC {
    const char* Creator;
    UINT Parameters, Techniques, Functions;
};

struct D3DXTECHNIQUE_DESC {
    const char* Name;
    UINT Passes, Annotations;
};

/// Null for a function that the pass does not have. A vertex function's first number has bit n set when it reads vertex
/// input n (VertexInput).
struct D3DXPASS_DESC {
    const char* Name;
    UINT Annotations;
    const DWORD* pVertexShaderFunction;
    const DWORD* pPixelShaderFunction;
};

inline constexpr DWORD D3DXSHADER_DEBUG = 1, D3DXSHADER_SKIPVALIDATION = 2, D3DXSHADER_SKIPOPTIMIZATION = 4,
                       D3DXSHADER_PACKMATRIX_ROWMAJOR = 8, D3DXSHADER_PACKMATRIX_COLUMNMAJOR = 16;

class ID3DXBuffer : public IUnknown {
  public:
    virtual void* GetBufferPointer() = 0;
    virtual DWORD GetBufferSize() = 0;
};

/// Parameters marked `shared` have one value in all effects of a pool.
class ID3DXEffectPool : public IUnknown {};

class ID3DXEffect : public IUnknown {
  public:
    virtual HRESULT GetDesc(D3DXEFFECT_DESC* desc) = 0;
    virtual HRESULT GetTechniqueDesc(D3DXHANDLE technique, D3DXTECHNIQUE_DESC* desc) = 0;
    virtual HRESULT GetPassDesc(D3DXHANDLE pass, D3DXPASS_DESC* desc) = 0;
    virtual D3DXHANDLE GetParameter(D3DXHANDLE parent, UINT index) = 0;
    virtual D3DXHANDLE GetParameterByName(D3DXHANDLE parent, const char* name) = 0;
    virtual D3DXHANDLE GetParameterBySemantic(D3DXHANDLE parent, const char* semantic) = 0;
    virtual D3DXHANDLE GetTechnique(UINT index) = 0;
    virtual D3DXHANDLE GetPass(D3DXHANDLE technique, UINT index) = 0;
    virtual D3DXHANDLE GetAnnotationByName(D3DXHANDLE object, const char* name) = 0;

    virtual HRESULT GetString(D3DXHANDLE parameter, const char** text) = 0;
    virtual HRESULT GetFloat(D3DXHANDLE parameter, float* value) = 0;
    virtual HRESULT GetInt(D3DXHANDLE parameter, INT* value) = 0;
    virtual HRESULT GetVector(D3DXHANDLE parameter, D3DXVECTOR4* vector) = 0;
    virtual HRESULT SetFloat(D3DXHANDLE parameter, float value) = 0;
    virtual HRESULT SetInt(D3DXHANDLE parameter, INT value) = 0;
    virtual HRESULT SetBool(D3DXHANDLE parameter, BOOL value) = 0;
    virtual HRESULT SetVector(D3DXHANDLE parameter, const D3DXVECTOR4* vector) = 0;
    virtual HRESULT SetVectorArray(D3DXHANDLE parameter, const D3DXVECTOR4* vectors, UINT count) = 0;
    virtual HRESULT SetMatrix(D3DXHANDLE parameter, const D3DXMATRIX* matrix) = 0;
    virtual HRESULT SetMatrixArray(D3DXHANDLE parameter, const D3DXMATRIX* matrices, UINT count) = 0;
    virtual HRESULT SetTexture(D3DXHANDLE parameter, IDirect3DTexture9* texture) = 0;

    virtual HRESULT ValidateTechnique(D3DXHANDLE technique) = 0;
    virtual HRESULT SetTechnique(D3DXHANDLE technique) = 0;
    /// With flags 0, End puts the device back exactly as Begin found it.
    virtual HRESULT Begin(UINT* passes, DWORD flags) = 0;
    virtual HRESULT BeginPass(UINT pass) = 0;
    virtual HRESULT EndPass() = 0;
    virtual HRESULT End() = 0;
    virtual HRESULT OnLostDevice() = 0;
    virtual HRESULT OnResetDevice() = 0;
};

/// `errors` may receive a buffer of zero-terminated text, a line "file(line): error X0000: message" each; of an effect
/// that is made, its warnings, and of one without a valid technique the reasons.
HRESULT D3DXCreateEffectFromFileA(IDirect3DDevice9* device, const char* file, DWORD flags, ID3DXEffectPool* pool,
                                  ID3DXEffect** effect, ID3DXBuffer** errors);
HRESULT D3DXCreateEffectPool(ID3DXEffectPool** pool);

}   // namespace sparkrig
