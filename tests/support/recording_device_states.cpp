// The recording device's states, bindings and draws.
#include <bit>
#include <cstring>

#include "tests/support/recording_device.h"

namespace sparkrig {

namespace {

DWORD ValueOf(const std::map<DWORD, DWORD>& states, DWORD state) {
    const auto found = states.find(state);
    return found == states.end() ? 0 : found->second;
}

/// Whole words only: a block of globals is made of them.
std::vector<DWORD> WordsOf(const void* data, UINT bytes) {
    std::vector<DWORD> words(bytes / sizeof(DWORD));
    if (!words.empty()) std::memcpy(words.data(), data, words.size() * sizeof(DWORD));
    return words;
}

UINT VerticesFor(D3DPRIMITIVETYPE type, UINT count) {
    switch (type) {
        case D3DPT_POINTLIST: return count;
        case D3DPT_LINELIST: return 2 * count;
        case D3DPT_LINESTRIP: return count + 1;
        case D3DPT_TRIANGLELIST: return 3 * count;
        default: return count + 2;
    }
}

}   // namespace

HRESULT RecordingDevice::SetViewport(const D3DVIEWPORT9* viewport) {
    const HRESULT result =
        recording_.Record("SetViewport", {viewport->X, viewport->Y, viewport->Width, viewport->Height,
                                          std::bit_cast<DWORD>(viewport->MinZ), std::bit_cast<DWORD>(viewport->MaxZ)});
    if (FAILED(result)) return result;
    const D3DSURFACE_DESC& target = static_cast<RecordedSurface*>(states_.target.Get())->Image().desc;
    if (viewport->Width == 0 || viewport->Height == 0 || viewport->X > target.Width || viewport->Y > target.Height ||
        viewport->Width > target.Width - viewport->X || viewport->Height > target.Height - viewport->Y) {
        return D3DERR_INVALIDCALL;
    }
    Keep(states_.viewport, *viewport);
    return D3D_OK;
}

HRESULT RecordingDevice::GetViewport(D3DVIEWPORT9* viewport) {
    if (const HRESULT refused = recording_.Record("GetViewport", {}); FAILED(refused)) return refused;
    *viewport = states_.viewport;
    return D3D_OK;
}

HRESULT RecordingDevice::SetTransform(D3DTRANSFORMSTATETYPE state, const D3DMATRIX* matrix) {
    const HRESULT result = recording_.Record("SetTransform", {state});
    if (SUCCEEDED(result)) Keep(states_.transforms.try_emplace(state, kIdentityMatrix).first->second, *matrix);
    return result;
}

HRESULT RecordingDevice::GetTransform(D3DTRANSFORMSTATETYPE state, D3DMATRIX* matrix) {
    if (const HRESULT refused = recording_.Record("GetTransform", {state}); FAILED(refused)) return refused;
    const auto found = states_.transforms.find(state);
    *matrix = found == states_.transforms.end() ? kIdentityMatrix : found->second;
    return D3D_OK;
}

HRESULT RecordingDevice::SetMaterial(const D3DMATERIAL9* material) {
    const HRESULT result = recording_.Record("SetMaterial", {std::bit_cast<DWORD>(material->Diffuse.r)});
    if (SUCCEEDED(result)) Keep(states_.material, *material);
    return result;
}

HRESULT RecordingDevice::GetMaterial(D3DMATERIAL9* material) {
    if (const HRESULT refused = recording_.Record("GetMaterial", {}); FAILED(refused)) return refused;
    *material = states_.material;
    return D3D_OK;
}

HRESULT RecordingDevice::SetLight(DWORD index, const D3DLIGHT9* light) {
    const HRESULT result = recording_.Record("SetLight", {index, light->Type});
    if (FAILED(result)) return result;
    Keep(states_.lights[index], *light);
    states_.lights_on.try_emplace(index, FALSE);
    return result;
}

HRESULT RecordingDevice::GetLight(DWORD index, D3DLIGHT9* light) {
    if (const HRESULT refused = recording_.Record("GetLight", {index}); FAILED(refused)) return refused;
    const auto found = states_.lights.find(index);
    if (found == states_.lights.end()) return D3DERR_INVALIDCALL;
    *light = found->second;
    return D3D_OK;
}

HRESULT RecordingDevice::LightEnable(DWORD index, BOOL enable) {
    const HRESULT result = recording_.Record("LightEnable", {index, static_cast<DWORD>(enable)});
    if (SUCCEEDED(result)) Keep(states_.lights_on[index], enable);
    return result;
}

HRESULT RecordingDevice::GetLightEnable(DWORD index, BOOL* enable) {
    if (const HRESULT refused = recording_.Record("GetLightEnable", {index}); FAILED(refused)) return refused;
    const auto found = states_.lights_on.find(index);
    if (found == states_.lights_on.end()) return D3DERR_INVALIDCALL;
    *enable = found->second;
    return D3D_OK;
}

HRESULT RecordingDevice::SetRenderState(D3DRENDERSTATETYPE state, DWORD value) {
    const HRESULT result = recording_.Record("SetRenderState", {state, value});
    if (SUCCEEDED(result)) Keep(states_.render[state], value);
    return result;
}

HRESULT RecordingDevice::GetRenderState(D3DRENDERSTATETYPE state, DWORD* value) {
    if (const HRESULT refused = recording_.Record("GetRenderState", {state}); FAILED(refused)) return refused;
    *value = ValueOf(states_.render, state);
    return D3D_OK;
}

HRESULT RecordingDevice::SetTextureStageState(DWORD stage, D3DTEXTURESTAGESTATETYPE state, DWORD value) {
    const HRESULT result = recording_.Record("SetTextureStageState", {stage, state, value});
    if (FAILED(result)) return result;
    if (stage >= kTextureStages) return D3DERR_INVALIDCALL;
    Keep(states_.stages[stage][state], value);
    return D3D_OK;
}

HRESULT RecordingDevice::GetTextureStageState(DWORD stage, D3DTEXTURESTAGESTATETYPE state, DWORD* value) {
    if (const HRESULT refused = recording_.Record("GetTextureStageState", {stage, state}); FAILED(refused))
        return refused;
    if (stage >= kTextureStages) return D3DERR_INVALIDCALL;
    *value = ValueOf(states_.stages[stage], state);
    return D3D_OK;
}

HRESULT RecordingDevice::SetSamplerState(DWORD sampler, D3DSAMPLERSTATETYPE state, DWORD value) {
    const HRESULT result = recording_.Record("SetSamplerState", {sampler, state, value});
    if (FAILED(result)) return result;
    if (sampler >= kSamplers) return D3DERR_INVALIDCALL;
    Keep(states_.samplers[sampler][state], value);
    return D3D_OK;
}

HRESULT RecordingDevice::GetSamplerState(DWORD sampler, D3DSAMPLERSTATETYPE state, DWORD* value) {
    if (const HRESULT refused = recording_.Record("GetSamplerState", {sampler, state}); FAILED(refused)) return refused;
    if (sampler >= kSamplers) return D3DERR_INVALIDCALL;
    *value = ValueOf(states_.samplers[sampler], state);
    return D3D_OK;
}

HRESULT RecordingDevice::SetTexture(DWORD sampler, IDirect3DTexture9* texture) {
    const HRESULT result = recording_.Record("SetTexture", {sampler, SerialOf(texture)});
    if (FAILED(result)) return result;
    if (sampler >= kSamplers) return D3DERR_INVALIDCALL;
    Keep(states_.textures[sampler], DevicePtr<IDirect3DTexture9>::Share(texture));
    return D3D_OK;
}

HRESULT RecordingDevice::GetTexture(DWORD sampler, IDirect3DTexture9** texture) {
    if (const HRESULT refused = recording_.Record("GetTexture", {sampler}); FAILED(refused)) return refused;
    return sampler < kSamplers ? Give(states_.textures[sampler], texture) : D3DERR_INVALIDCALL;
}

HRESULT RecordingDevice::SetVertexShader(IDirect3DVertexShader9* shader) {
    const HRESULT result = recording_.Record("SetVertexShader", {SerialOfShader(shader)});
    if (SUCCEEDED(result)) Keep(states_.vertex_shader, DevicePtr<IDirect3DVertexShader9>::Share(shader));
    return result;
}

HRESULT RecordingDevice::GetVertexShader(IDirect3DVertexShader9** shader) {
    if (const HRESULT refused = recording_.Record("GetVertexShader", {}); FAILED(refused)) return refused;
    return Give(states_.vertex_shader, shader);
}

HRESULT RecordingDevice::SetPixelShader(IDirect3DPixelShader9* shader) {
    const HRESULT result = recording_.Record("SetPixelShader", {SerialOfShader(shader)});
    if (SUCCEEDED(result)) Keep(states_.pixel_shader, DevicePtr<IDirect3DPixelShader9>::Share(shader));
    return result;
}

HRESULT RecordingDevice::GetPixelShader(IDirect3DPixelShader9** shader) {
    if (const HRESULT refused = recording_.Record("GetPixelShader", {}); FAILED(refused)) return refused;
    return Give(states_.pixel_shader, shader);
}

HRESULT RecordingDevice::SetVertexShaderGlobals(const void* data, UINT bytes) {
    return recording_.Record("SetVertexShaderGlobals", WordsOf(data, bytes));
}

HRESULT RecordingDevice::SetPixelShaderGlobals(const void* data, UINT bytes) {
    return recording_.Record("SetPixelShaderGlobals", WordsOf(data, bytes));
}

HRESULT RecordingDevice::SetFVF(DWORD fvf) {
    const HRESULT result = recording_.Record("SetFVF", {fvf});
    if (SUCCEEDED(result)) states_.fvf = fvf;
    return result;
}

HRESULT RecordingDevice::GetFVF(DWORD* fvf) {
    if (const HRESULT refused = recording_.Record("GetFVF", {}); FAILED(refused)) return refused;
    *fvf = states_.fvf;
    return D3D_OK;
}

HRESULT RecordingDevice::SetStreamSource(UINT stream, IDirect3DVertexBuffer9* buffer, UINT offset, UINT stride) {
    const HRESULT result = recording_.Record("SetStreamSource", {stream, SerialOf(buffer), offset, stride});
    if (FAILED(result)) return result;
    if (stream != 0) return D3DERR_INVALIDCALL;
    states_.stream = DevicePtr<IDirect3DVertexBuffer9>::Share(buffer);
    states_.stride = stride;
    return D3D_OK;
}

HRESULT RecordingDevice::SetIndices(IDirect3DIndexBuffer9* buffer) {
    const HRESULT result = recording_.Record("SetIndices", {SerialOf(buffer)});
    if (SUCCEEDED(result)) states_.indices = DevicePtr<IDirect3DIndexBuffer9>::Share(buffer);
    return result;
}

HRESULT RecordingDevice::ReadyToDraw(UINT count) const {
    if (!states_.in_scene || count == 0 || !states_.stream || states_.fvf == 0) return D3DERR_INVALIDCALL;
    return static_cast<RecordedVertexBuffer&>(*states_.stream).locks > 0 ? D3DERR_INVALIDCALL : D3D_OK;
}

RecordedDraw RecordingDevice::DescribeDraw(D3DPRIMITIVETYPE type, UINT first, UINT count) const {
    RecordedDraw draw = {};
    draw.type = type;
    draw.first = first;
    draw.count = count;
    draw.fvf = states_.fvf;
    draw.stride = states_.stride;
    draw.texture = SerialOf(states_.textures[0].Get());
    draw.render_states = states_.render;
    const auto world = states_.transforms.find(D3DTS_WORLD);
    draw.world = world == states_.transforms.end() ? kIdentityMatrix : world->second;
    return draw;
}

HRESULT RecordingDevice::DrawPrimitive(D3DPRIMITIVETYPE type, UINT first_vertex, UINT count) {
    const HRESULT result = recording_.Record("DrawPrimitive", {type, first_vertex, count});
    if (FAILED(result)) return result;
    if (const HRESULT refused = ReadyToDraw(count); FAILED(refused)) return refused;
    RecordedDraw draw = DescribeDraw(type, first_vertex, count);
    const std::vector<BYTE>& bytes = static_cast<RecordedVertexBuffer&>(*states_.stream).bytes;
    const std::size_t begin = static_cast<std::size_t>(first_vertex) * states_.stride;
    const std::size_t size = static_cast<std::size_t>(VerticesFor(type, count)) * states_.stride;
    if (begin > bytes.size() || size > bytes.size() - begin) return D3DERR_INVALIDCALL;
    draw.vertices.assign(bytes.data() + begin, bytes.data() + begin + size);
    recording_.RecordDraw(std::move(draw));
    return D3D_OK;
}

HRESULT RecordingDevice::DrawIndexedPrimitive(D3DPRIMITIVETYPE type, INT base_vertex, UINT min_index, UINT vertices,
                                              UINT first_index, UINT count) {
    const HRESULT result = recording_.Record(
        "DrawIndexedPrimitive", {type, static_cast<DWORD>(base_vertex), min_index, vertices, first_index, count});
    if (FAILED(result)) return result;
    if (const HRESULT refused = ReadyToDraw(count); FAILED(refused)) return refused;
    if (!states_.indices) return D3DERR_INVALIDCALL;
    recording_.RecordDraw(DescribeDraw(type, first_index, count));
    return D3D_OK;
}

}   // namespace sparkrig
