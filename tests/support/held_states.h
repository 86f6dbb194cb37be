// What a device holds, for comparing it before and after.
#pragma once
#include <algorithm>
#include <cstring>
#include <vector>

#include "platform/d3d9/d3d9.h"

namespace sparkrig {

/// Every state, transform, light, material and viewport, and what is bound, in words; `textures` stand as their numbers
/// in that list, so that devices with textures of their own can be compared.
inline std::vector<DWORD> HeldStates(IDirect3DDevice9& device, const std::vector<IDirect3DTexture9*>& textures = {}) {
    std::vector<DWORD> words;
    const auto add = [&]<class Value>(HRESULT result, const Value& value) {
        words.resize(words.size() + sizeof(Value) / sizeof(DWORD));
        if (SUCCEEDED(result)) std::memcpy(&words.back() + 1 - sizeof(Value) / sizeof(DWORD), &value, sizeof(Value));
    };
    DWORD word = 0;
    for (DWORD i = 1; i < kRenderStateCount; ++i)
        add(device.GetRenderState(static_cast<D3DRENDERSTATETYPE>(i), &word), word);
    for (DWORD stage = 0; stage < kTextureStages; ++stage) {
        for (DWORD i = 1; i < kStageStateCount; ++i)
            add(device.GetTextureStageState(stage, static_cast<D3DTEXTURESTAGESTATETYPE>(i), &word), word);
        for (DWORD i = 1; i < kSamplerStateCount; ++i)
            add(device.GetSamplerState(stage, static_cast<D3DSAMPLERSTATETYPE>(i), &word), word);
        D3DLIGHT9 light;
        add(device.GetLight(stage, &light), light);
        BOOL on = FALSE;
        add(device.GetLightEnable(stage, &on), on);
        DevicePtr<IDirect3DTexture9> texture;
        const HRESULT result = device.GetTexture(stage, texture.Receive());
        const auto place = std::ranges::find(textures, texture.Get());
        if (place != textures.end())
            add(result, static_cast<std::size_t>(place - textures.begin() + 1));
        else
            add(result, texture.Get());
    }
    D3DMATRIX matrix;
    for (const auto type : {D3DTS_VIEW, D3DTS_PROJECTION, D3DTS_WORLDMATRIX(0), D3DTS_WORLDMATRIX(1)})
        add(device.GetTransform(type, &matrix), matrix);
    D3DVIEWPORT9 viewport;
    add(device.GetViewport(&viewport), viewport);
    D3DMATERIAL9 material;
    add(device.GetMaterial(&material), material);
    DevicePtr<IDirect3DVertexShader9> vertex;
    add(device.GetVertexShader(vertex.Receive()), vertex.Get());
    DevicePtr<IDirect3DPixelShader9> pixel;
    add(device.GetPixelShader(pixel.Receive()), pixel.Get());
    return words;
}

}   // namespace sparkrig
