#include "platform/d3dx/effect_saved_states.h"

namespace sparkrig {

namespace {

HRESULT Read(IDirect3DDevice9& device, const StateKey& key, StateValue& value) {
    switch (key.group) {
        case StateGroup::Render:
            return device.GetRenderState(static_cast<D3DRENDERSTATETYPE>(key.state), &value.emplace<DWORD>());
        case StateGroup::TextureStage:
            return device.GetTextureStageState(key.index, static_cast<D3DTEXTURESTAGESTATETYPE>(key.state),
                                               &value.emplace<DWORD>());
        case StateGroup::SamplerState:
            return device.GetSamplerState(key.index, static_cast<D3DSAMPLERSTATETYPE>(key.state),
                                          &value.emplace<DWORD>());
        case StateGroup::Texture:
            return device.GetTexture(key.index, value.emplace<DevicePtr<IDirect3DTexture9>>().Receive());
        case StateGroup::Transform:
            return device.GetTransform(static_cast<D3DTRANSFORMSTATETYPE>(key.state), &value.emplace<D3DMATRIX>());
        case StateGroup::Light: return device.GetLight(key.index, &value.emplace<D3DLIGHT9>());
        case StateGroup::LightEnable: {
            BOOL enabled = FALSE;   // and stays so for a light that was never set, which the device does not know
            device.GetLightEnable(key.index, &enabled);
            value = static_cast<DWORD>(enabled);
            return D3D_OK;
        }
        case StateGroup::Material: return device.GetMaterial(&value.emplace<D3DMATERIAL9>());
        case StateGroup::VertexShader:
            return device.GetVertexShader(value.emplace<DevicePtr<IDirect3DVertexShader9>>().Receive());
        case StateGroup::PixelShader:
            return device.GetPixelShader(value.emplace<DevicePtr<IDirect3DPixelShader9>>().Receive());
        case StateGroup::Sampler: break;   // stands for textures and sampler states, which have keys of their own
    }
    return D3DERR_INVALIDCALL;
}

HRESULT Write(IDirect3DDevice9& device, const StateKey& key, const StateValue& value) {
    switch (key.group) {
        case StateGroup::Render:
            return device.SetRenderState(static_cast<D3DRENDERSTATETYPE>(key.state), std::get<DWORD>(value));
        case StateGroup::TextureStage:
            return device.SetTextureStageState(key.index, static_cast<D3DTEXTURESTAGESTATETYPE>(key.state),
                                               std::get<DWORD>(value));
        case StateGroup::SamplerState:
            return device.SetSamplerState(key.index, static_cast<D3DSAMPLERSTATETYPE>(key.state),
                                          std::get<DWORD>(value));
        case StateGroup::Texture:
            return device.SetTexture(key.index, std::get<DevicePtr<IDirect3DTexture9>>(value).Get());
        case StateGroup::Transform:
            return device.SetTransform(static_cast<D3DTRANSFORMSTATETYPE>(key.state), &std::get<D3DMATRIX>(value));
        case StateGroup::Light: return device.SetLight(key.index, &std::get<D3DLIGHT9>(value));
        case StateGroup::LightEnable: return device.LightEnable(key.index, static_cast<BOOL>(std::get<DWORD>(value)));
        case StateGroup::Material: return device.SetMaterial(&std::get<D3DMATERIAL9>(value));
        case StateGroup::VertexShader:
            return device.SetVertexShader(std::get<DevicePtr<IDirect3DVertexShader9>>(value).Get());
        case StateGroup::PixelShader:
            return device.SetPixelShader(std::get<DevicePtr<IDirect3DPixelShader9>>(value).Get());
        case StateGroup::Sampler: break;
    }
    return D3DERR_INVALIDCALL;
}

}   // namespace

HRESULT SetState(IDirect3DDevice9& device, const StateKey& key, const StateValue& value) {
    StateValue held;
    if (SUCCEEDED(Read(device, key, held)) && held == value) return D3D_OK;
    return Write(device, key, value);
}

HRESULT SavedStates::Capture(IDirect3DDevice9& device, const std::vector<StateKey>& keys) {
    saved_.clear();
    for (const StateKey& key : keys) {
        Saved& saved = saved_.emplace_back();
        saved.key = key;
        const HRESULT result = Read(device, key, saved.value);
        if (SUCCEEDED(result)) continue;
        saved_.pop_back();
        if (key.group == StateGroup::Light) continue;   // never set: there is nothing to put back
        saved_.clear();
        return result;
    }
    return D3D_OK;
}

HRESULT SavedStates::Restore(IDirect3DDevice9& device) {
    HRESULT first_failure = D3D_OK;
    for (const Saved& saved : saved_) {
        const HRESULT result = SetState(device, saved.key, saved.value);
        if (FAILED(result) && SUCCEEDED(first_failure)) first_failure = result;
    }
    saved_.clear();
    return first_failure;
}

}   // namespace sparkrig
