// Render targets, clearing, and copies between surfaces.
#include <algorithm>

#include "platform/d3d9_gl/device.h"

namespace sparkrig {

namespace {

Surface* AsSurface(IDirect3DSurface9* surface) { return static_cast<Surface*>(surface); }
Texture* AsTexture(IDirect3DTexture9* texture) { return static_cast<Texture*>(texture); }

bool SameSize(const RECT& a, const RECT& b) {
    return a.right - a.left == b.right - b.left && a.bottom - a.top == b.bottom - b.top;
}

GlRect ToGlRect(const RECT& rect) { return {rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top}; }

GlRect Intersect(const D3DRECT& rect, const D3DVIEWPORT9& viewport) {
    const LONG left = std::max(rect.x1, static_cast<LONG>(viewport.X));
    const LONG top = std::max(rect.y1, static_cast<LONG>(viewport.Y));
    const LONG right = std::min(rect.x2, static_cast<LONG>(viewport.X + viewport.Width));
    const LONG bottom = std::min(rect.y2, static_cast<LONG>(viewport.Y + viewport.Height));
    return {left, top, std::max(right - left, 0), std::max(bottom - top, 0)};
}

}   // namespace

// ---- Targets

void Device::UseTarget(Surface* target) {
    if (bound_.target) bound_.target->DrawnInto();
    bound_.target = DevicePtr<Surface>::Share(target);
    bindings_.target = target;
    bindings_.depth = DepthFor(*target);
    const GLenum depth_format = depth_ ? FindGlFormat(depth_->Desc().Format).internal : 0;
    bindings_.stencil = depth_format == GL_DEPTH24_STENCIL8;
    bindings_.depth_steps = depth_format == GL_DEPTH_COMPONENT16 ? 65536.0f : 16777216.0f;
    state_.viewport = {0, 0, target->Desc().Width, target->Desc().Height, 0.0f, 1.0f};
    pipeline_.Mark(kDirtyTarget);
}

// The automatic depth buffer where it fits; else, for a larger or multisampled target, one that does.
GLuint Device::DepthFor(Surface& target) {
    if (!depth_) return 0;
    const D3DSURFACE_DESC& wanted = target.Desc();
    const auto fits = [&wanted](const D3DSURFACE_DESC& depth) {
        return depth.Width >= wanted.Width && depth.Height >= wanted.Height &&
               depth.MultiSampleType == wanted.MultiSampleType;
    };
    if (fits(depth_->Desc())) return depth_->GlImage().renderbuffer;
    for (const auto& depth : fitting_depths_) {
        if (fits(depth->Desc())) return depth->GlImage().renderbuffer;
    }
    D3DSURFACE_DESC desc = depth_->Desc();
    desc.Width = wanted.Width;
    desc.Height = wanted.Height;
    desc.MultiSampleType = wanted.MultiSampleType;
    DevicePtr<OwnSurface> made(OwnSurface::Create(context_, SurfaceKind::Depth, desc, /*lockable=*/false));
    if (!made) return 0;
    fitting_depths_.push_back(made);
    return made->GlImage().renderbuffer;
}

HRESULT Device::GetBackBuffer(UINT swap_chain, UINT index, DWORD /*type*/, IDirect3DSurface9** surface) {
    if (surface == nullptr) return D3DERR_INVALIDCALL;
    if (const HRESULT result = CheckBackBuffer(swap_chain, index, parameters_.BackBufferCount); FAILED(result)) {
        return result;
    }
    if (!back_buffer_) return D3DERR_DEVICELOST;
    back_buffer_->AddRef();
    *surface = back_buffer_.Get();
    return D3D_OK;
}

HRESULT Device::SetRenderTarget(DWORD index, IDirect3DSurface9* surface) {
    if (surface == nullptr) return D3DERR_INVALIDCALL;
    Surface* target = AsSurface(surface);
    const HRESULT result = CheckTarget(index, target->Desc());
    if (FAILED(result) || !Alive()) return result;
    target->DrawnInto();
    UseTarget(target);
    return D3D_OK;
}

HRESULT Device::GetRenderTarget(DWORD index, IDirect3DSurface9** surface) {
    if (index != 0 || surface == nullptr) return D3DERR_INVALIDCALL;
    Surface* target = bound_.target ? bound_.target.Get() : back_buffer_.Get();
    if (target == nullptr) return D3DERR_DEVICELOST;
    target->AddRef();
    *surface = target;
    return D3D_OK;
}

HRESULT Device::GetDepthStencilSurface(IDirect3DSurface9** surface) {
    if (surface == nullptr) return D3DERR_INVALIDCALL;
    *surface = nullptr;
    if (!depth_) return D3DERR_NOTFOUND;
    depth_->AddRef();
    *surface = depth_.Get();
    return D3D_OK;
}

// ---- Clearing

HRESULT Device::Clear(DWORD count, const D3DRECT* rects, DWORD flags, D3DCOLOR colour, float z, DWORD stencil) {
    const HRESULT result = CheckClear(count, rects, flags, z, depth_ ? &depth_->Desc() : nullptr);
    if (FAILED(result) || blind_ || !Alive()) return result;
    const D3DVIEWPORT9& viewport = state_.viewport;
    const D3DRECT whole = {static_cast<LONG>(viewport.X), static_cast<LONG>(viewport.Y),
                           static_cast<LONG>(viewport.X + viewport.Width),
                           static_cast<LONG>(viewport.Y + viewport.Height)};
    for (DWORD i = 0; i < std::max<DWORD>(count, 1); ++i) {
        const GlRect area = Intersect(rects != nullptr ? rects[i] : whole, viewport);
        if (area.width > 0 && area.height > 0) ClearArea(area, flags, colour, z, stencil);
    }
    return D3D_OK;
}

void Device::ClearArea(const GlRect& area, DWORD flags, D3DCOLOR colour, float z, DWORD stencil) {
    pipeline_.PrepareClear(*bindings_.target, bindings_.depth, bindings_.stencil, area);
    const GLuint framebuffer = bindings_.target->Framebuffer();
    if ((flags & D3DCLEAR_TARGET) != 0) {
        const Rgba rgba = ToRgba(colour);
        glClearNamedFramebufferfv(framebuffer, GL_COLOR, 0, &rgba.r);
    }
    if ((flags & D3DCLEAR_ZBUFFER) != 0) glClearNamedFramebufferfv(framebuffer, GL_DEPTH, 0, &z);
    const GLint value = static_cast<GLint>(stencil);
    if ((flags & D3DCLEAR_STENCIL) != 0) glClearNamedFramebufferiv(framebuffer, GL_STENCIL, 0, &value);
}

// ---- Copies

HRESULT Device::StretchRect(IDirect3DSurface9* source, const RECT* from, IDirect3DSurface9* destination, const RECT* to,
                            DWORD filter) {
    if (source == nullptr || destination == nullptr) return D3DERR_INVALIDCALL;
    Surface &read = *AsSurface(source), &written = *AsSurface(destination);
    RECT area, target;
    if (!TakeRect(read.Desc(), from, area) || !TakeRect(written.Desc(), to, target)) return D3DERR_INVALIDCALL;
    const HRESULT result = CheckStretch({read.Desc(), area}, {written.Desc(), target}, &read == &written, filter);
    if (FAILED(result) || !Alive()) return result;
    read.GlImage();   // sends what was written through locks
    written.GlImage();
    glDisable(GL_SCISSOR_TEST);
    glBlitNamedFramebuffer(read.Framebuffer(), written.Framebuffer(), area.left, area.top, area.right, area.bottom,
                           target.left, target.top, target.right, target.bottom, GL_COLOR_BUFFER_BIT,
                           filter == D3DTEXF_LINEAR && !SameSize(area, target) ? GL_LINEAR : GL_NEAREST);
    glEnable(GL_SCISSOR_TEST);
    if (written.Format().alpha && !read.Format().alpha) FillAlpha(written, target);
    written.DrawnInto();
    return D3D_OK;
}

// An alpha that the source of a copy lacks is one.
void Device::FillAlpha(Surface& surface, const RECT& area) {
    constexpr float kOne[] = {1.0f, 1.0f, 1.0f, 1.0f};
    pipeline_.PrepareFill(surface, ToGlRect(area));
    glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_TRUE);
    glClearNamedFramebufferfv(surface.Framebuffer(), GL_COLOR, 0, kOne);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);   // as PrepareFill left it
}

HRESULT Device::ColorFill(IDirect3DSurface9* surface, const RECT* rect, D3DCOLOR colour) {
    if (surface == nullptr) return D3DERR_INVALIDCALL;
    Surface& filled = *AsSurface(surface);
    const auto* own = dynamic_cast<const OwnSurface*>(&filled);
    const bool plain = own != nullptr && own->Kind() == SurfaceKind::Plain;
    RECT area;
    if (!TakeRect(filled.Desc(), rect, area)) return D3DERR_INVALIDCALL;
    if (const HRESULT result = CheckFill(filled.Desc(), plain); FAILED(result) || !Alive()) return result;
    filled.GlImage();
    pipeline_.PrepareFill(filled, ToGlRect(area));
    const Rgba rgba = ToRgba(colour);
    glClearNamedFramebufferfv(filled.Framebuffer(), GL_COLOR, 0, &rgba.r);
    filled.DrawnInto();
    return D3D_OK;
}

HRESULT Device::UpdateTexture(IDirect3DTexture9* source, IDirect3DTexture9* destination) {
    if (source == nullptr || destination == nullptr) return D3DERR_INVALIDCALL;
    Texture &from = *AsTexture(source), &to = *AsTexture(destination);
    const HRESULT result =
        CheckUpdate(from.Level(0).Desc(), from.GetLevelCount(), to.Level(0).Desc(), to.GetLevelCount());
    if (FAILED(result) || !Alive()) return result;
    for (DWORD level = 0; level < to.GetLevelCount(); ++level) to.Level(level).Take(from.Level(level).Bytes());
    return D3D_OK;
}

HRESULT Device::GetRenderTargetData(IDirect3DSurface9* target, IDirect3DSurface9* system_surface) {
    if (target == nullptr || system_surface == nullptr) return D3DERR_INVALIDCALL;
    Surface &from = *AsSurface(target), &to = *AsSurface(system_surface);
    if (const HRESULT result = CheckReadBack(from.Desc(), to.Desc()); FAILED(result)) return result;
    if (life_ != DeviceLife::Operational) return D3DERR_DEVICELOST;
    if (context_->Activate()) ReadPixels(from, to.Bytes());
    return D3D_OK;
}

}   // namespace sparkrig
