// What every device of the contract answers from the states that it holds.
#pragma once
#include "platform/com/ref_counted.h"
#include "platform/d3d9/d3d9.h"
#include "platform/d3d9/device_rules.h"

namespace sparkrig {

class StateDevice : public RefCounted<IDirect3DDevice9> {
  public:
    HRESULT SetSoftwareVertexProcessing(BOOL software) override {
        return CheckSoftwareProcessing(behaviour_, software);   // both run the same programs
    }
    HRESULT BeginScene() override { return ResultOf(state_.SetInScene(true)); }
    HRESULT EndScene() override { return ResultOf(state_.SetInScene(false)); }

    HRESULT GetViewport(D3DVIEWPORT9* viewport) override { return state_.GetViewport(viewport); }
    HRESULT GetTransform(D3DTRANSFORMSTATETYPE type, D3DMATRIX* matrix) override {
        return state_.GetTransform(type, matrix);
    }
    HRESULT GetMaterial(D3DMATERIAL9* material) override { return state_.GetMaterial(material); }
    HRESULT GetLight(DWORD index, D3DLIGHT9* light) override { return state_.GetLight(index, light); }
    HRESULT GetLightEnable(DWORD index, BOOL* enable) override { return state_.GetLightEnable(index, enable); }
    HRESULT GetRenderState(D3DRENDERSTATETYPE state, DWORD* value) override {
        return state_.GetRenderState(state, value);
    }
    HRESULT GetTextureStageState(DWORD stage, D3DTEXTURESTAGESTATETYPE state, DWORD* value) override {
        return state_.GetTextureStageState(stage, state, value);
    }
    HRESULT GetSamplerState(DWORD sampler, D3DSAMPLERSTATETYPE state, DWORD* value) override {
        return state_.GetSamplerState(sampler, state, value);
    }
    HRESULT GetFVF(DWORD* fvf) override { return state_.GetFVF(fvf); }

  protected:
    /// With the flags of its creation, which have been checked.
    explicit StateDevice(DWORD behaviour) : behaviour_(behaviour) {}

    DWORD behaviour_;
    DeviceState state_{/*auto_depth=*/false};
};

}   // namespace sparkrig
