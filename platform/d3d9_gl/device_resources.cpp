// Making resources: the rules of pools, usages and sizes.
#include <algorithm>
#include <utility>

#include "platform/d3d9/vertex_format.h"
#include "platform/d3d9_gl/capabilities.h"
#include "platform/d3d9_gl/device.h"

namespace sparkrig {

namespace {

bool UsageFitsPool(DWORD usage, D3DPOOL pool) {
    if (pool > D3DPOOL_SCRATCH) return false;
    constexpr DWORD kDrawnInto = D3DUSAGE_RENDERTARGET | D3DUSAGE_DEPTHSTENCIL;
    if ((usage & kDrawnInto) != 0 && pool != D3DPOOL_DEFAULT) return false;
    return (usage & D3DUSAGE_DYNAMIC) == 0 || pool == D3DPOOL_DEFAULT || pool == D3DPOOL_SYSTEMMEM;
}

// A size that the device takes; the product of such sizes and a pixel's bytes cannot wrap.
bool FitsDevice(UINT width, UINT height, const GlLimits& limits) {
    const UINT largest = static_cast<UINT>(limits.max_texture_size);
    return width > 0 && height > 0 && width <= largest && height <= largest;
}

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
    if (texture == nullptr || !FitsDevice(width, height, context_->Limits()) || !UsageFitsPool(usage, pool)) {
        return D3DERR_INVALIDCALL;
    }
    const UINT full = FullLevelCount(width, height);
    if (levels > full || (usage & D3DUSAGE_DEPTHSTENCIL) != 0) return D3DERR_INVALIDCALL;
    const FormatInfo* info = FindFormat(format);
    if (info != nullptr && info->blocks) usage &= ~D3DUSAGE_AUTOGENMIPMAP;   // OpenGL makes no levels of blocks
    const bool generated = (usage & D3DUSAGE_AUTOGENMIPMAP) != 0;
    if (generated && (levels > 1 || pool == D3DPOOL_SYSTEMMEM || pool == D3DPOOL_SCRATCH)) return D3DERR_INVALIDCALL;
    if (!SupportsFormat(context_->Limits(), usage, format)) return D3DERR_INVALIDCALL;
    const UINT count = levels == 0 || generated ? full : levels;
    *texture = Texture::Create(context_, {width, height, count, usage, pool, info});
    return *texture != nullptr ? D3D_OK : D3DERR_OUTOFVIDEOMEMORY;
}

HRESULT Device::CreateVertexBuffer(UINT bytes, DWORD usage, DWORD fvf, D3DPOOL pool, IDirect3DVertexBuffer9** buffer) {
    VertexFormat format;
    if (buffer == nullptr || bytes == 0 || pool == D3DPOOL_SCRATCH || !UsageFitsPool(usage, pool)) {
        return D3DERR_INVALIDCALL;
    }
    if (fvf != 0 && (!ParseVertexFormat(fvf, format) || bytes < format.stride)) return D3DERR_INVALIDCALL;
    const bool software = (usage & D3DUSAGE_SOFTWAREPROCESSING) != 0;
    if (software && (behaviour_ & D3DCREATE_HARDWARE_VERTEXPROCESSING) != 0) return D3DERR_INVALIDCALL;
    *buffer = new VertexBuffer(context_, bytes, pool, 0);
    return D3D_OK;
}

HRESULT Device::CreateIndexBuffer(UINT bytes, DWORD usage, D3DFORMAT format, D3DPOOL pool,
                                  IDirect3DIndexBuffer9** buffer) {
    const DWORD element = format == D3DFMT_INDEX16 ? 2 : format == D3DFMT_INDEX32 ? 4 : 0;
    if (buffer == nullptr || element == 0 || bytes < element || pool == D3DPOOL_SCRATCH ||
        !UsageFitsPool(usage, pool)) {
        return D3DERR_INVALIDCALL;
    }
    *buffer = new IndexBuffer(context_, bytes, pool, element);
    return D3D_OK;
}

HRESULT Device::CreateRenderTarget(UINT width, UINT height, D3DFORMAT format, DWORD multisample, DWORD /*quality*/,
                                   BOOL lockable, IDirect3DSurface9** surface) {
    if (surface == nullptr || !FitsDevice(width, height, context_->Limits())) return D3DERR_INVALIDCALL;
    if (lockable && multisample > 1) return D3DERR_INVALIDCALL;
    if (!SupportsFormat(context_->Limits(), D3DUSAGE_RENDERTARGET, format)) return D3DERR_INVALIDCALL;
    if (multisample > static_cast<DWORD>(context_->Limits().max_samples)) return D3DERR_NOTAVAILABLE;
    const auto desc = SurfaceDesc(width, height, format, D3DPOOL_DEFAULT, D3DUSAGE_RENDERTARGET, multisample);
    return Give(OwnSurface::Create(context_, SurfaceKind::Target, desc, lockable != FALSE), surface);
}

HRESULT Device::CreateOffscreenPlainSurface(UINT width, UINT height, D3DFORMAT format, D3DPOOL pool,
                                            IDirect3DSurface9** surface) {
    const FormatInfo* info = FindFormat(format);
    if (surface == nullptr || info == nullptr || !FitsDevice(width, height, context_->Limits())) {
        return D3DERR_INVALIDCALL;
    }
    if (pool == D3DPOOL_MANAGED || pool > D3DPOOL_SCRATCH || (info->roles & kRoleDepth) != 0) return D3DERR_INVALIDCALL;
    const bool plain = pool == D3DPOOL_DEFAULT;
    if (plain && !SupportsFormat(context_->Limits(), D3DUSAGE_RENDERTARGET, format)) return D3DERR_INVALIDCALL;
    const auto desc = SurfaceDesc(width, height, format, pool, 0, D3DMULTISAMPLE_NONE);
    const SurfaceKind kind = plain ? SurfaceKind::Plain : SurfaceKind::System;
    return Give(OwnSurface::Create(context_, kind, desc, /*lockable=*/true), surface);
}

HRESULT Device::CreateVertexShader(const ShaderCode& code, IDirect3DVertexShader9** shader) {
    return MakeShader<VertexShaderObject>(context_, GL_VERTEX_SHADER, code, shader);
}

HRESULT Device::CreatePixelShader(const ShaderCode& code, IDirect3DPixelShader9** shader) {
    return MakeShader<PixelShaderObject>(context_, GL_FRAGMENT_SHADER, code, shader);
}

}   // namespace sparkrig
