// Making resources.
#include <utility>

#include "platform/d3d9_gl/device.h"

namespace sparkrig {

namespace {

D3DSURFACE_DESC SurfaceDesc(UINT width, UINT height, D3DFORMAT format, D3DPOOL pool, DWORD usage, DWORD samples) {
    return {format, D3DRTYPE_SURFACE, usage, pool, samples, 0, width, height};
}

HRESULT Give(OwnSurface* made, IDirect3DSurface9** surface) {
    *surface = made;
    return made != nullptr ? D3D_OK : D3DERR_OUTOFVIDEOMEMORY;
}

DWORD NextShaderNumber() {
    static DWORD number = 0;
    return ++number;
}

template <class Object, class Interface>
HRESULT MakeShader(std::shared_ptr<GlContext> context, GLenum stage, const ShaderCode& code, Interface** shader) {
    if (shader == nullptr || !context->Activate()) return D3DERR_INVALIDCALL;
    std::string errors;
    const GLuint compiled = CompileGlsl(stage, WithVersion(code.glsl), errors);
    if (compiled == 0) return D3DERR_INVALIDCALL;
    glDeleteShader(compiled);
    *shader = new Object(std::move(context), ShaderFunction{code, NextShaderNumber()});
    return D3D_OK;
}

}   // namespace

HRESULT Device::CreateTexture(UINT width, UINT height, UINT levels, DWORD usage, D3DFORMAT format, D3DPOOL pool,
                              IDirect3DTexture9** texture) {
    TextureRequest request = {width, height, levels, usage, format, pool};
    if (texture == nullptr) return D3DERR_INVALIDCALL;
    if (const HRESULT result = CheckTexture(context_->Limits(), request); FAILED(result)) return result;
    *texture = Texture::Create(context_, request);
    return *texture != nullptr ? D3D_OK : D3DERR_OUTOFVIDEOMEMORY;
}

HRESULT Device::CreateVertexBuffer(UINT bytes, DWORD usage, DWORD fvf, D3DPOOL pool, IDirect3DVertexBuffer9** buffer) {
    if (buffer == nullptr) return D3DERR_INVALIDCALL;
    if (const HRESULT result = CheckVertexBuffer(behaviour_, bytes, usage, fvf, pool); FAILED(result)) return result;
    *buffer = new VertexBuffer(context_, bytes, pool, 0);
    return D3D_OK;
}

HRESULT Device::CreateIndexBuffer(UINT bytes, DWORD usage, D3DFORMAT format, D3DPOOL pool,
                                  IDirect3DIndexBuffer9** buffer) {
    if (buffer == nullptr) return D3DERR_INVALIDCALL;
    if (const HRESULT result = CheckIndexBuffer(bytes, usage, format, pool); FAILED(result)) return result;
    *buffer = new IndexBuffer(context_, bytes, pool, IndexBytes(format));
    return D3D_OK;
}

HRESULT Device::CreateRenderTarget(UINT width, UINT height, D3DFORMAT format, DWORD multisample, DWORD /*quality*/,
                                   BOOL lockable, IDirect3DSurface9** surface) {
    if (surface == nullptr) return D3DERR_INVALIDCALL;
    const HRESULT result = CheckRenderTarget(context_->Limits(), width, height, format, multisample, lockable);
    if (FAILED(result)) return result;
    const auto desc = SurfaceDesc(width, height, format, D3DPOOL_DEFAULT, D3DUSAGE_RENDERTARGET, multisample);
    return Give(OwnSurface::Create(context_, SurfaceKind::Target, desc, lockable != FALSE), surface);
}

HRESULT Device::CreateOffscreenPlainSurface(UINT width, UINT height, D3DFORMAT format, D3DPOOL pool,
                                            IDirect3DSurface9** surface) {
    if (surface == nullptr) return D3DERR_INVALIDCALL;
    const HRESULT result = CheckPlainSurface(context_->Limits(), width, height, format, pool);
    if (FAILED(result)) return result;
    const auto desc = SurfaceDesc(width, height, format, pool, 0, D3DMULTISAMPLE_NONE);
    const SurfaceKind kind = pool == D3DPOOL_DEFAULT ? SurfaceKind::Plain : SurfaceKind::System;
    return Give(OwnSurface::Create(context_, kind, desc, /*lockable=*/true), surface);
}

HRESULT Device::CreateVertexShader(const ShaderCode& code, IDirect3DVertexShader9** shader) {
    return MakeShader<VertexShaderObject>(context_, GL_VERTEX_SHADER, code, shader);
}

HRESULT Device::CreatePixelShader(const ShaderCode& code, IDirect3DPixelShader9** shader) {
    return MakeShader<PixelShaderObject>(context_, GL_FRAGMENT_SHADER, code, shader);
}

}   // namespace sparkrig
