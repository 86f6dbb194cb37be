// The states, bindings and draws of the recording device.
#pragma once
#include <array>
#include <bit>
#include <cstring>
#include <map>

#include "platform/d3dx/d3dx_math.h"
#include "tests/support/recorded_objects.h"

namespace sparkrig {

using StateMap = std::map<DWORD, DWORD>;

/// Everything that a reset puts back.
struct RecordedStates {
    RecordedStates(bool depth_buffer, UINT width, UINT height);

    StateMap render;
    std::array<StateMap, kTextureStages> stages;
    std::array<StateMap, kSamplers> samplers;
    std::map<DWORD, D3DMATRIX> transforms;
    std::map<DWORD, D3DLIGHT9> lights;
    std::map<DWORD, BOOL> lights_on;
    D3DMATERIAL9 material = {};
    D3DVIEWPORT9 viewport;
    DWORD fvf = 0;
    UINT stride = 0;
    DevicePtr<IDirect3DVertexBuffer9> stream;
    DevicePtr<IDirect3DIndexBuffer9> indices;
    std::array<DevicePtr<IDirect3DTexture9>, kSamplers> textures;
    DevicePtr<IDirect3DVertexShader9> vertex_shader;
    DevicePtr<IDirect3DPixelShader9> pixel_shader;
    DevicePtr<IDirect3DSurface9> target;
    bool in_scene = false;
};

inline DWORD Bits(float value) { return std::bit_cast<DWORD>(value); }

template <class Map>
typename Map::mapped_type ValueOf(const Map& map, DWORD key, const typename Map::mapped_type& otherwise = {}) {
    const auto found = map.find(key);
    return found == map.end() ? otherwise : found->second;
}

/// The calls that set and get them.
class RecordedStateCalls : public RecordedObject<IDirect3DDevice9> {
  public:
    explicit RecordedStateCalls(Recording& recording) : RecordedObject(recording, false), states_(false, 0, 0) {}

    HRESULT SetViewport(const D3DVIEWPORT9* viewport) override;
    HRESULT GetViewport(D3DVIEWPORT9* viewport) override { return Get("GetViewport", {}, viewport, states_.viewport); }
    HRESULT SetTransform(D3DTRANSFORMSTATETYPE state, const D3DMATRIX* matrix) override {
        return Set("SetTransform", {state}, states_.transforms.try_emplace(state, kIdentityMatrix).first->second,
                   *matrix);
    }
    HRESULT GetTransform(D3DTRANSFORMSTATETYPE state, D3DMATRIX* matrix) override {
        return Get("GetTransform", {state}, matrix, ValueOf(states_.transforms, state, kIdentityMatrix));
    }
    HRESULT SetMaterial(const D3DMATERIAL9* material) override {
        return Set("SetMaterial", {Bits(material->Diffuse.r)}, states_.material, *material);
    }
    HRESULT GetMaterial(D3DMATERIAL9* material) override { return Get("GetMaterial", {}, material, states_.material); }
    HRESULT SetLight(DWORD index, const D3DLIGHT9* light) override {
        return Set("SetLight", {index, light->Type}, states_.lights[index], *light);
    }
    HRESULT GetLight(DWORD index, D3DLIGHT9* light) override {
        return Get("GetLight", {index}, light, ValueOf(states_.lights, index));
    }
    HRESULT LightEnable(DWORD index, BOOL enable) override {
        return Set("LightEnable", {index, static_cast<DWORD>(enable)}, states_.lights_on[index], enable);
    }
    HRESULT GetLightEnable(DWORD index, BOOL* enable) override {
        return Get("GetLightEnable", {index}, enable, ValueOf(states_.lights_on, index));
    }
    HRESULT SetRenderState(D3DRENDERSTATETYPE state, DWORD value) override {
        return Set("SetRenderState", {state, value}, states_.render[state], value);
    }
    HRESULT GetRenderState(D3DRENDERSTATETYPE state, DWORD* value) override {
        return Get("GetRenderState", {state}, value, ValueOf(states_.render, state));
    }
    HRESULT SetTextureStageState(DWORD stage, D3DTEXTURESTAGESTATETYPE state, DWORD value) override {
        return SetOf("SetTextureStageState", states_.stages, stage, state, value);
    }
    HRESULT GetTextureStageState(DWORD stage, D3DTEXTURESTAGESTATETYPE state, DWORD* value) override {
        return GetOf("GetTextureStageState", states_.stages, stage, state, value);
    }
    HRESULT SetSamplerState(DWORD sampler, D3DSAMPLERSTATETYPE state, DWORD value) override {
        return SetOf("SetSamplerState", states_.samplers, sampler, state, value);
    }
    HRESULT GetSamplerState(DWORD sampler, D3DSAMPLERSTATETYPE state, DWORD* value) override {
        return GetOf("GetSamplerState", states_.samplers, sampler, state, value);
    }

    HRESULT SetTexture(DWORD sampler, IDirect3DTexture9* texture) override {
        return Do("SetTexture", {sampler, SerialOf(texture)},
                  [&] { return sampler < kSamplers ? Bind(states_.textures[sampler], texture) : D3DERR_INVALIDCALL; });
    }
    HRESULT GetTexture(DWORD sampler, IDirect3DTexture9** texture) override {
        return Do("GetTexture", {sampler},
                  [&] { return sampler < kSamplers ? Give(states_.textures[sampler], texture) : D3DERR_INVALIDCALL; });
    }
    HRESULT SetVertexShader(IDirect3DVertexShader9* shader) override {
        return Do("SetVertexShader", {SerialOf(shader)}, [&] { return Bind(states_.vertex_shader, shader); });
    }
    HRESULT GetVertexShader(IDirect3DVertexShader9** shader) override {
        return Do("GetVertexShader", {}, [&] { return Give(states_.vertex_shader, shader); });
    }
    HRESULT SetPixelShader(IDirect3DPixelShader9* shader) override {
        return Do("SetPixelShader", {SerialOf(shader)}, [&] { return Bind(states_.pixel_shader, shader); });
    }
    HRESULT GetPixelShader(IDirect3DPixelShader9** shader) override {
        return Do("GetPixelShader", {}, [&] { return Give(states_.pixel_shader, shader); });
    }
    HRESULT SetVertexShaderGlobals(const void* data, UINT bytes) override {
        return recording_.Record("SetVertexShaderGlobals", WordsOf(data, bytes));
    }
    HRESULT SetPixelShaderGlobals(const void* data, UINT bytes) override {
        return recording_.Record("SetPixelShaderGlobals", WordsOf(data, bytes));
    }

    HRESULT SetFVF(DWORD fvf) override {
        return Do("SetFVF", {fvf}, [&] { return states_.fvf = fvf, D3D_OK; });
    }
    HRESULT GetFVF(DWORD* fvf) override { return Get("GetFVF", {}, fvf, states_.fvf); }
    HRESULT SetStreamSource(UINT stream, IDirect3DVertexBuffer9* buffer, UINT offset, UINT stride) override;
    HRESULT SetIndices(IDirect3DIndexBuffer9* buffer) override;
    HRESULT DrawPrimitive(D3DPRIMITIVETYPE type, UINT first_vertex, UINT count) override;
    HRESULT DrawIndexedPrimitive(D3DPRIMITIVETYPE type, INT base_vertex, UINT min_index, UINT vertices,
                                 UINT first_index, UINT count) override;

  protected:
    /// Keeps a state that was sent. It is redundant when it was there already.
    template <class State>
    HRESULT Keep(State& held, const State& sent) {
        if (held == sent) recording_.LastWasRedundant();
        held = sent;
        return D3D_OK;
    }
    template <class Interface>
    HRESULT Bind(DevicePtr<Interface>& held, Interface* object) {
        return Keep(held, DevicePtr<Interface>::Share(object));
    }

    RecordedStates states_;

  private:
    template <class State>
    HRESULT Set(const char* method, const std::vector<DWORD>& arguments, State& held, const State& sent) {
        return Do(method, arguments, [&] { return Keep(held, sent); });
    }
    template <class State>
    HRESULT Get(const char* method, const std::vector<DWORD>& arguments, State* out, const State& held) {
        return Do(method, arguments, [&] { return *out = held, D3D_OK; });
    }
    template <std::size_t count>
    HRESULT SetOf(const char* method, std::array<StateMap, count>& units, DWORD unit, DWORD state, DWORD value) {
        return Do(method, {unit, state, value},
                  [&] { return unit < count ? Keep(units[unit][state], value) : D3DERR_INVALIDCALL; });
    }
    template <std::size_t count>
    HRESULT GetOf(const char* method, std::array<StateMap, count>& units, DWORD unit, DWORD state, DWORD* value) {
        if (unit >= count) return D3DERR_INVALIDCALL;
        return Get(method, {unit, state}, value, ValueOf(units[unit], state));
    }
    static std::vector<DWORD> WordsOf(const void* data, UINT bytes);
    /// The reason that forbids drawing now, or D3D_OK.
    HRESULT ReadyToDraw(UINT count) const;
    RecordedDraw DescribeDraw(D3DPRIMITIVETYPE type, UINT first, UINT count) const;
};

}   // namespace sparkrig
