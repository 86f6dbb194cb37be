// The states, bindings and draws of the recording device.
#pragma once
#include <array>
#include <bit>
#include <cstring>

#include "platform/d3d9/device_rules.h"
#include "tests/support/recorded_objects.h"

namespace sparkrig {

/// What is bound. A reset puts it back, as it does the states.
struct RecordedBindings {
    UINT stream_offset = 0, stride = 0;
    DevicePtr<IDirect3DVertexBuffer9> stream;
    DevicePtr<IDirect3DIndexBuffer9> indices;
    std::array<DevicePtr<IDirect3DTexture9>, kSamplers> textures;
    DevicePtr<IDirect3DVertexShader9> vertex_shader;
    DevicePtr<IDirect3DPixelShader9> pixel_shader;
    DevicePtr<IDirect3DSurface9> target;
};

inline DWORD Bits(float value) { return std::bit_cast<DWORD>(value); }

/// The calls that set and get them.
class RecordedStateCalls : public RecordedObject<IDirect3DDevice9> {
  public:
    explicit RecordedStateCalls(Recording& recording) : RecordedObject(recording, false), state_(false) {}

    HRESULT SetViewport(const D3DVIEWPORT9* viewport) override;
    HRESULT GetViewport(D3DVIEWPORT9* v) override { return Get("GetViewport", {}, &DeviceState::GetViewport, v); }
    HRESULT SetTransform(D3DTRANSFORMSTATETYPE state, const D3DMATRIX* matrix) override {
        return Set("SetTransform", {state}, &DeviceState::SetTransform, state, matrix);
    }
    HRESULT GetTransform(D3DTRANSFORMSTATETYPE state, D3DMATRIX* matrix) override {
        return Get("GetTransform", {state}, &DeviceState::GetTransform, state, matrix);
    }
    HRESULT SetMaterial(const D3DMATERIAL9* material) override {
        return Set("SetMaterial", {Bits(material->Diffuse.r)}, &DeviceState::SetMaterial, material);
    }
    HRESULT GetMaterial(D3DMATERIAL9* material) override {
        return Get("GetMaterial", {}, &DeviceState::GetMaterial, material);
    }
    HRESULT SetLight(DWORD index, const D3DLIGHT9* light) override {
        return Set("SetLight", {index, light->Type}, &DeviceState::SetLight, index, light);
    }
    HRESULT GetLight(DWORD index, D3DLIGHT9* light) override {
        return Get("GetLight", {index}, &DeviceState::GetLight, index, light);
    }
    HRESULT LightEnable(DWORD index, BOOL enable) override {
        return Set("LightEnable", {index, static_cast<DWORD>(enable)}, &DeviceState::LightEnable, index, enable);
    }
    HRESULT GetLightEnable(DWORD index, BOOL* enable) override {
        return Get("GetLightEnable", {index}, &DeviceState::GetLightEnable, index, enable);
    }
    HRESULT SetRenderState(D3DRENDERSTATETYPE state, DWORD value) override {
        return Set("SetRenderState", {state, value}, &DeviceState::SetRenderState, state, value);
    }
    HRESULT GetRenderState(D3DRENDERSTATETYPE state, DWORD* value) override {
        return Get("GetRenderState", {state}, &DeviceState::GetRenderState, state, value);
    }
    HRESULT SetTextureStageState(DWORD stage, D3DTEXTURESTAGESTATETYPE state, DWORD value) override {
        return Set("SetTextureStageState", {stage, state, value}, &DeviceState::SetTextureStageState, stage, state,
                   value);
    }
    HRESULT GetTextureStageState(DWORD stage, D3DTEXTURESTAGESTATETYPE state, DWORD* value) override {
        return Get("GetTextureStageState", {stage, state}, &DeviceState::GetTextureStageState, stage, state, value);
    }
    HRESULT SetSamplerState(DWORD sampler, D3DSAMPLERSTATETYPE state, DWORD value) override {
        return Set("SetSamplerState", {sampler, state, value}, &DeviceState::SetSamplerState, sampler, state, value);
    }
    HRESULT GetSamplerState(DWORD sampler, D3DSAMPLERSTATETYPE state, DWORD* value) override {
        return Get("GetSamplerState", {sampler, state}, &DeviceState::GetSamplerState, sampler, state, value);
    }

    HRESULT SetTexture(DWORD sampler, IDirect3DTexture9* texture) override {
        return Do("SetTexture", {sampler, SerialOf(texture)},
                  [&] { return sampler < kSamplers ? Bind(bound_.textures[sampler], texture) : D3DERR_INVALIDCALL; });
    }
    HRESULT GetTexture(DWORD sampler, IDirect3DTexture9** texture) override {
        return Do("GetTexture", {sampler},
                  [&] { return sampler < kSamplers ? Give(bound_.textures[sampler], texture) : D3DERR_INVALIDCALL; });
    }
    HRESULT SetVertexShader(IDirect3DVertexShader9* shader) override {
        return Do("SetVertexShader", {SerialOf(shader)}, [&] { return Bind(bound_.vertex_shader, shader); });
    }
    HRESULT GetVertexShader(IDirect3DVertexShader9** shader) override {
        return Do("GetVertexShader", {}, [&] { return Give(bound_.vertex_shader, shader); });
    }
    HRESULT SetPixelShader(IDirect3DPixelShader9* shader) override {
        return Do("SetPixelShader", {SerialOf(shader)}, [&] { return Bind(bound_.pixel_shader, shader); });
    }
    HRESULT GetPixelShader(IDirect3DPixelShader9** shader) override {
        return Do("GetPixelShader", {}, [&] { return Give(bound_.pixel_shader, shader); });
    }
    HRESULT SetVertexShaderGlobals(const void* data, UINT bytes) override {
        return recording_.Record("SetVertexShaderGlobals", WordsOf(data, bytes));
    }
    HRESULT SetPixelShaderGlobals(const void* data, UINT bytes) override {
        return recording_.Record("SetPixelShaderGlobals", WordsOf(data, bytes));
    }

    /// Never called redundant: DrawSubset of a mesh sets its format each time.
    HRESULT SetFVF(DWORD fvf) override {
        return Do("SetFVF", {fvf}, [&] { return ResultOf(state_.SetFVF(fvf)); });
    }
    HRESULT GetFVF(DWORD* fvf) override { return Get("GetFVF", {}, &DeviceState::GetFVF, fvf); }
    HRESULT SetStreamSource(UINT stream, IDirect3DVertexBuffer9* buffer, UINT offset, UINT stride) override;
    HRESULT SetIndices(IDirect3DIndexBuffer9* buffer) override;
    HRESULT DrawPrimitive(D3DPRIMITIVETYPE type, UINT first_vertex, UINT count) override;
    HRESULT DrawIndexedPrimitive(D3DPRIMITIVETYPE type, INT base_vertex, UINT min_index, UINT vertices,
                                 UINT first_index, UINT count) override;

  protected:
    /// What was sent is redundant when it was there already.
    HRESULT Note(Kept kept) {
        if (kept == Kept::Same) recording_.LastWasRedundant();
        return ResultOf(kept);
    }
    template <class Interface>
    HRESULT Bind(DevicePtr<Interface>& held, Interface* object) {
        return Note(DeviceState::Keep(held, DevicePtr<Interface>::Share(object)));
    }
    template <class Setter, class... Values>
    HRESULT Set(const char* method, const std::vector<DWORD>& arguments, Setter setter, Values... values) {
        return Do(method, arguments, [&] { return Note((state_.*setter)(values...)); });
    }

    DeviceState state_;
    RecordedBindings bound_;

  private:
    template <class Getter, class... Places>
    HRESULT Get(const char* method, const std::vector<DWORD>& arguments, Getter getter, Places... places) {
        return Do(method, arguments, [&] { return (state_.*getter)(places...); });
    }
    static std::vector<DWORD> WordsOf(const void* data, UINT bytes);
    StreamView Stream() const;
    IndexView Indices() const;
    RecordedDraw DescribeDraw(D3DPRIMITIVETYPE type, UINT first, UINT count) const;
};

}   // namespace sparkrig
