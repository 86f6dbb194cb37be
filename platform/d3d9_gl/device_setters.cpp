// States and bindings: each call is checked, kept, and marks what the next draw has to send.
#include "platform/d3d9_gl/device.h"

namespace sparkrig {

namespace {

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
    return Mark(state_.SetViewport(viewport, bindings_.target->Desc()), kDirtyTarget);
}

HRESULT Device::SetTransform(D3DTRANSFORMSTATETYPE type, const D3DMATRIX* matrix) {
    return Mark(state_.SetTransform(type, matrix), TransformGroups(type));
}

HRESULT Device::SetMaterial(const D3DMATERIAL9* material) { return Mark(state_.SetMaterial(material), kDirtyLighting); }

HRESULT Device::SetLight(DWORD index, const D3DLIGHT9* light) {
    return Mark(state_.SetLight(index, light), kDirtyLighting);
}

HRESULT Device::LightEnable(DWORD index, BOOL enable) {
    return Mark(state_.LightEnable(index, enable), kDirtyLighting);
}

HRESULT Device::SetRenderState(D3DRENDERSTATETYPE state, DWORD value) {
    const Kept kept = state_.SetRenderState(state, value);
    if (kept == Kept::Changed) pipeline_.Mark(RenderStateGroups(state));
    return ResultOf(kept);
}

HRESULT Device::SetTextureStageState(DWORD stage, D3DTEXTURESTAGESTATETYPE state, DWORD value) {
    const Kept kept = state_.SetTextureStageState(stage, state, value);
    if (kept == Kept::Changed) pipeline_.Mark(StageStateGroups(state));
    return ResultOf(kept);
}

HRESULT Device::SetSamplerState(DWORD sampler, D3DSAMPLERSTATETYPE state, DWORD value) {
    const Kept kept = state_.SetSamplerState(sampler, state, value);
    if (kept == Kept::Changed) pipeline_.MarkSampler(sampler);
    return ResultOf(kept);
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

HRESULT Device::SetFVF(DWORD fvf) { return Mark(state_.SetFVF(fvf), kDirtyProgram); }

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
