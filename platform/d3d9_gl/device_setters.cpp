// States and bindings: each call is checked, kept, and marks what the next draw has to send.

#include "platform/d3d9_gl/device.h"

namespace sparkrig {

namespace {

constexpr D3DLIGHT9 kDefaultLight = {D3DLIGHT_DIRECTIONAL, {1, 1, 1, 0}, {}, {}, {}, {0, 0, 1}, 0, 0, 0, 0, 0, 0, 0};

// Hands out a bound object with a reference for the caller.
template <class Object, class Interface>
HRESULT GiveBound(const DevicePtr<Object>& bound, Interface** out) {
    if (out == nullptr) return D3DERR_INVALIDCALL;
    *out = bound.Get();
    if (bound) bound->AddRef();
    return D3D_OK;
}

HRESULT KeepGlobals(const void* data, UINT bytes, std::vector<std::byte>& globals) {
    constexpr UINT kLargestBlock = 65536;
    if ((data == nullptr) != (bytes == 0) || bytes > kLargestBlock) return D3DERR_INVALIDCALL;
    const auto* first = static_cast<const std::byte*>(data);
    globals.assign(first, first + bytes);
    return D3D_OK;
}

}   // namespace

HRESULT Device::SetViewport(const D3DVIEWPORT9* viewport) {
    if (viewport == nullptr) return D3DERR_INVALIDCALL;
    if (life_ != DeviceLife::Operational) return D3D_OK;
    const D3DSURFACE_DESC& target = bindings_.target->Desc();
    const bool inside = viewport->Width > 0 && viewport->Height > 0 && viewport->Width <= target.Width &&
                        viewport->Height <= target.Height && viewport->X <= target.Width - viewport->Width &&
                        viewport->Y <= target.Height - viewport->Height;
    if (!inside) return D3DERR_INVALIDCALL;
    state_.viewport = *viewport;
    pipeline_.Mark(kDirtyTarget);
    return D3D_OK;
}

HRESULT Device::GetViewport(D3DVIEWPORT9* viewport) {
    if (viewport == nullptr) return D3DERR_INVALIDCALL;
    *viewport = state_.viewport;
    return D3D_OK;
}

HRESULT Device::SetTransform(D3DTRANSFORMSTATETYPE type, const D3DMATRIX* matrix) {
    D3DMATRIX* kept = FindTransform(state_, type);
    if (kept == nullptr || matrix == nullptr) return D3DERR_INVALIDCALL;
    if (*kept == *matrix) return D3D_OK;
    *kept = *matrix;
    pipeline_.Mark(TransformGroups(type));
    return D3D_OK;
}

HRESULT Device::GetTransform(D3DTRANSFORMSTATETYPE type, D3DMATRIX* matrix) {
    const D3DMATRIX* kept = FindTransform(state_, type);
    if (kept == nullptr || matrix == nullptr) return D3DERR_INVALIDCALL;
    *matrix = *kept;
    return D3D_OK;
}

HRESULT Device::SetMaterial(const D3DMATERIAL9* material) {
    if (material == nullptr) return D3DERR_INVALIDCALL;
    if (state_.material == *material) return D3D_OK;
    state_.material = *material;
    pipeline_.Mark(kDirtyLighting);
    return D3D_OK;
}

HRESULT Device::GetMaterial(D3DMATERIAL9* material) {
    if (material == nullptr) return D3DERR_INVALIDCALL;
    *material = state_.material;
    return D3D_OK;
}

HRESULT Device::SetLight(DWORD index, const D3DLIGHT9* light) {
    if (light == nullptr || light->Type < D3DLIGHT_POINT || light->Type > D3DLIGHT_DIRECTIONAL) {
        return D3DERR_INVALIDCALL;
    }
    D3DLIGHT9& kept = state_.lights[index].light;
    if (kept == *light) return D3D_OK;
    kept = *light;
    pipeline_.Mark(kDirtyLighting);
    return D3D_OK;
}

HRESULT Device::GetLight(DWORD index, D3DLIGHT9* light) {
    const auto found = state_.lights.find(index);
    if (light == nullptr || found == state_.lights.end()) return D3DERR_INVALIDCALL;
    *light = found->second.light;
    return D3D_OK;
}

HRESULT Device::LightEnable(DWORD index, BOOL enable) {
    state_.lights.try_emplace(index, LightSlot{kDefaultLight, false}).first->second.enabled = enable != FALSE;
    pipeline_.Mark(kDirtyLighting);
    return D3D_OK;
}

HRESULT Device::GetLightEnable(DWORD index, BOOL* enable) {
    const auto found = state_.lights.find(index);
    if (enable == nullptr || found == state_.lights.end()) return D3DERR_INVALIDCALL;
    *enable = found->second.enabled ? TRUE : FALSE;
    return D3D_OK;
}

HRESULT Device::SetRenderState(D3DRENDERSTATETYPE state, DWORD value) {
    if (state >= kRenderStateCount) return D3DERR_INVALIDCALL;
    if (state_.render[state] == value) return D3D_OK;
    state_.render[state] = value;
    pipeline_.Mark(RenderStateGroups(state));
    return D3D_OK;
}

HRESULT Device::GetRenderState(D3DRENDERSTATETYPE state, DWORD* value) {
    if (state >= kRenderStateCount || value == nullptr) return D3DERR_INVALIDCALL;
    *value = state_.render[state];
    return D3D_OK;
}

HRESULT Device::SetTextureStageState(DWORD stage, D3DTEXTURESTAGESTATETYPE state, DWORD value) {
    if (stage >= kTextureStages || !ValidStageState(state)) return D3DERR_INVALIDCALL;
    if (state_.stages[stage][state] == value) return D3D_OK;
    state_.stages[stage][state] = value;
    pipeline_.Mark(StageStateGroups(state));
    return D3D_OK;
}

HRESULT Device::GetTextureStageState(DWORD stage, D3DTEXTURESTAGESTATETYPE state, DWORD* value) {
    if (stage >= kTextureStages || !ValidStageState(state) || value == nullptr) return D3DERR_INVALIDCALL;
    *value = state_.stages[stage][state];
    return D3D_OK;
}

HRESULT Device::SetSamplerState(DWORD sampler, D3DSAMPLERSTATETYPE state, DWORD value) {
    if (sampler >= kSamplers || !ValidSamplerState(state, value)) return D3DERR_INVALIDCALL;
    if (state_.samplers[sampler][state] == value) return D3D_OK;
    state_.samplers[sampler][state] = value;
    pipeline_.MarkSampler(sampler);
    return D3D_OK;
}

HRESULT Device::GetSamplerState(DWORD sampler, D3DSAMPLERSTATETYPE state, DWORD* value) {
    if (sampler >= kSamplers || state == 0 || state >= kSamplerStateCount || value == nullptr) {
        return D3DERR_INVALIDCALL;
    }
    *value = state_.samplers[sampler][state];
    return D3D_OK;
}

HRESULT Device::SetTexture(DWORD sampler, IDirect3DTexture9* interface) {
    auto* texture = static_cast<Texture*>(interface);
    if (sampler >= kSamplers || (texture != nullptr && !texture->Drawable())) return D3DERR_INVALIDCALL;
    if (bindings_.textures[sampler] == texture) return D3D_OK;
    bound_.textures[sampler] = DevicePtr<Texture>::Share(texture);
    bindings_.textures[sampler] = texture;
    const DWORD bit = 1u << sampler;
    const DWORD set = texture != nullptr ? bit : 0, is_signed = set != 0 && texture->Signed() ? bit : 0;
    if ((bindings_.texture_mask & bit) != set || (bindings_.signed_mask & bit) != is_signed) {
        pipeline_.Mark(kDirtyProgram);
    }
    bindings_.texture_mask = (bindings_.texture_mask & ~bit) | set;
    bindings_.signed_mask = (bindings_.signed_mask & ~bit) | is_signed;
    pipeline_.Mark(kDirtyTextures);
    return D3D_OK;
}

HRESULT Device::GetTexture(DWORD sampler, IDirect3DTexture9** texture) {
    return sampler < kSamplers ? GiveBound(bound_.textures[sampler], texture) : D3DERR_INVALIDCALL;
}

HRESULT Device::SetVertexShader(IDirect3DVertexShader9* shader) {
    auto* object = static_cast<VertexShaderObject*>(shader);
    if (bound_.vertex_shader.Get() == object) return D3D_OK;
    bound_.vertex_shader = DevicePtr<VertexShaderObject>::Share(object);
    bindings_.vertex_shader = object != nullptr ? &object->Function() : nullptr;
    pipeline_.Mark(kDirtyProgram | kDirtyVertexGlobals);
    return D3D_OK;
}

HRESULT Device::GetVertexShader(IDirect3DVertexShader9** shader) { return GiveBound(bound_.vertex_shader, shader); }

HRESULT Device::SetPixelShader(IDirect3DPixelShader9* shader) {
    auto* object = static_cast<PixelShaderObject*>(shader);
    if (bound_.pixel_shader.Get() == object) return D3D_OK;
    bound_.pixel_shader = DevicePtr<PixelShaderObject>::Share(object);
    bindings_.pixel_shader = object != nullptr ? &object->Function() : nullptr;
    pipeline_.Mark(kDirtyProgram | kDirtyPixelGlobals | kDirtyTextures);
    return D3D_OK;
}

HRESULT Device::GetPixelShader(IDirect3DPixelShader9** shader) { return GiveBound(bound_.pixel_shader, shader); }

HRESULT Device::SetVertexShaderGlobals(const void* data, UINT bytes) {
    pipeline_.Mark(kDirtyVertexGlobals);
    return KeepGlobals(data, bytes, bindings_.vertex_globals);
}

HRESULT Device::SetPixelShaderGlobals(const void* data, UINT bytes) {
    pipeline_.Mark(kDirtyPixelGlobals);
    return KeepGlobals(data, bytes, bindings_.pixel_globals);
}

HRESULT Device::SetFVF(DWORD fvf) {
    if (fvf == state_.format.fvf && fvf != 0) return D3D_OK;
    VertexFormat format;
    if (!ParseVertexFormat(fvf, format)) return D3DERR_INVALIDCALL;
    state_.format = format;
    pipeline_.Mark(kDirtyProgram);
    return D3D_OK;
}

HRESULT Device::GetFVF(DWORD* fvf) {
    if (fvf == nullptr) return D3DERR_INVALIDCALL;
    *fvf = state_.format.fvf;
    return D3D_OK;
}

HRESULT Device::SetStreamSource(UINT stream, IDirect3DVertexBuffer9* buffer, UINT offset, UINT stride) {
    if (stream != 0) return D3DERR_INVALIDCALL;
    bound_.vertices = DevicePtr<VertexBuffer>::Share(static_cast<VertexBuffer*>(buffer));
    bound_.stream_offset = offset;
    bound_.stream_stride = stride;
    return D3D_OK;
}

HRESULT Device::SetIndices(IDirect3DIndexBuffer9* buffer) {
    bound_.indices = DevicePtr<IndexBuffer>::Share(static_cast<IndexBuffer*>(buffer));
    return D3D_OK;
}

}   // namespace sparkrig
