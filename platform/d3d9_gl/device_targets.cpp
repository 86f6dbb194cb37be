// Render targets, clearing, and copies between surfaces.
#include <algorithm>
#include <cstring>

#include "platform/d3d9_gl/device.h"

namespace sparkrig {

namespace {

Surface* AsSurface(IDirect3DSurface9* surface) { return static_cast<Surface*>(surface); }
Texture* AsTexture(IDirect3DTexture9* texture) { return static_cast<Texture*>(texture); }

RECT WholeOf(const Surface& surface) {
    return {0, 0, static_cast<LONG>(surface.Desc().Width), static_cast<LONG>(surface.Desc().Height)};
}

// The rectangle, the whole surface for null. False when it is empty or leaves the surface.
bool TakeRect(const Surface& surface, const RECT* rect, RECT& taken) {
    const RECT whole = WholeOf(surface);
    taken = rect != nullptr ? *rect : whole;
    return taken.left >= 0 && taken.top >= 0 && taken.left < taken.right && taken.top < taken.bottom &&
           taken.right <= whole.right && taken.bottom <= whole.bottom;
}

bool SameSize(const RECT& a, const RECT& b) {
    return a.right - a.left == b.right - b.left && a.bottom - a.top == b.bottom - b.top;
}

bool SameShape(const D3DSURFACE_DESC& a, const D3DSURFACE_DESC& b) {
    return a.Width == b.Width && a.Height == b.Height && a.Format == b.Format;
}

bool Overlap(const RECT& a, const RECT& b) {
    return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

GlRect ToGlRect(const RECT& rect) { return {rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top}; }

GlRect Intersect(const D3DRECT& rect, const D3DVIEWPORT9& viewport) {
    const LONG left = std::max(rect.x1, static_cast<LONG>(viewport.X));
    const LONG top = std::max(rect.y1, static_cast<LONG>(viewport.Y));
    const LONG right = std::min(rect.x2, static_cast<LONG>(viewport.X + viewport.Width));
    const LONG bottom = std::min(rect.y2, static_cast<LONG>(viewport.Y + viewport.Height));
    return {left, top, std::max(right - left, 0), std::max(bottom - top, 0)};
}

bool Drawable(const Surface& surface) { return surface.IsTarget() && surface.Desc().Pool == D3DPOOL_DEFAULT; }

bool Fillable(const Surface& surface) {
    const auto* own = dynamic_cast<const OwnSurface*>(&surface);
    return Drawable(surface) || (own != nullptr && own->Kind() == SurfaceKind::Plain);
}

}   // namespace

// ---- Targets

void Device::UseTarget(Surface* target) {
    if (bound_.target) bound_.target->DrawnInto();
    bound_.target = DevicePtr<Surface>::Share(target);
    bindings_.target = target;
    bindings_.depth = DepthFor(*target);
    const GLenum depth_format = depth_ ? depth_->Format().internal : 0;
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
    if (swap_chain != 0 || index >= parameters_.BackBufferCount || surface == nullptr) return D3DERR_INVALIDCALL;
    if (!back_buffer_) return D3DERR_DEVICELOST;
    back_buffer_->AddRef();
    *surface = back_buffer_.Get();
    return D3D_OK;
}

HRESULT Device::SetRenderTarget(DWORD index, IDirect3DSurface9* surface) {
    if (index != 0 || surface == nullptr || !Drawable(*AsSurface(surface))) return D3DERR_INVALIDCALL;
    if (!Alive()) return D3D_OK;
    AsSurface(surface)->DrawnInto();
    UseTarget(AsSurface(surface));
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
    constexpr DWORD kKnown = D3DCLEAR_TARGET | D3DCLEAR_ZBUFFER | D3DCLEAR_STENCIL;
    if ((count == 0) != (rects == nullptr) || flags == 0 || (flags & ~kKnown) != 0) return D3DERR_INVALIDCALL;
    if ((flags & (D3DCLEAR_ZBUFFER | D3DCLEAR_STENCIL)) != 0 && !depth_) return D3DERR_INVALIDCALL;
    if ((flags & D3DCLEAR_STENCIL) != 0 && depth_->Desc().Format != D3DFMT_D24S8) return D3DERR_INVALIDCALL;
    if ((flags & D3DCLEAR_ZBUFFER) != 0 && !(z >= 0.0f && z <= 1.0f)) return D3DERR_INVALIDCALL;
    if (blind_ || !Alive()) return D3D_OK;
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
    if (source == nullptr || destination == nullptr || filter > D3DTEXF_LINEAR) return D3DERR_INVALIDCALL;
    Surface &read = *AsSurface(source), &written = *AsSurface(destination);
    RECT area, target;
    if (!TakeRect(read, from, area) || !TakeRect(written, to, target)) return D3DERR_INVALIDCALL;
    const bool stretches = !SameSize(area, target);
    const auto copyable = [](const Surface& surface) {
        return surface.Desc().Pool == D3DPOOL_DEFAULT && (surface.Format().roles & kRoleTarget) != 0;
    };
    if (!copyable(read) || !copyable(written) || !Drawable(written)) return D3DERR_INVALIDCALL;
    if (&read == &written && (stretches || Overlap(area, target))) return D3DERR_INVALIDCALL;
    if (written.Desc().MultiSampleType > 1) return D3DERR_INVALIDCALL;
    if (stretches && read.Desc().MultiSampleType > 1) return D3DERR_INVALIDCALL;
    if (!Alive()) return D3D_OK;
    read.GlImage();   // sends what was written through locks
    written.GlImage();
    glDisable(GL_SCISSOR_TEST);
    glBlitNamedFramebuffer(read.Framebuffer(), written.Framebuffer(), area.left, area.top, area.right, area.bottom,
                           target.left, target.top, target.right, target.bottom, GL_COLOR_BUFFER_BIT,
                           filter == D3DTEXF_LINEAR && stretches ? GL_LINEAR : GL_NEAREST);
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
    RECT area;
    if (surface == nullptr || !Fillable(*AsSurface(surface)) || !TakeRect(*AsSurface(surface), rect, area)) {
        return D3DERR_INVALIDCALL;
    }
    if (!Alive()) return D3D_OK;
    Surface& filled = *AsSurface(surface);
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
    if (from.Shape().pool != D3DPOOL_SYSTEMMEM || to.Shape().pool != D3DPOOL_DEFAULT) return D3DERR_INVALIDCALL;
    if (!SameShape(from.Level(0).Desc(), to.Level(0).Desc()) || from.GetLevelCount() < to.GetLevelCount()) {
        return D3DERR_INVALIDCALL;
    }
    if (!Alive()) return D3D_OK;
    for (DWORD level = 0; level < to.GetLevelCount(); ++level) to.Level(level).Take(from.Level(level).Bytes());
    return D3D_OK;
}

HRESULT Device::GetRenderTargetData(IDirect3DSurface9* target, IDirect3DSurface9* system_surface) {
    if (target == nullptr || system_surface == nullptr) return D3DERR_INVALIDCALL;
    Surface &from = *AsSurface(target), &to = *AsSurface(system_surface);
    if (!Drawable(from) || from.Desc().MultiSampleType > 1) return D3DERR_INVALIDCALL;
    if (to.Desc().Pool != D3DPOOL_SYSTEMMEM || !SameShape(from.Desc(), to.Desc())) return D3DERR_INVALIDCALL;
    if (life_ != DeviceLife::Operational) return D3DERR_DEVICELOST;
    if (context_->Activate()) ReadPixels(from, to.Bytes());
    return D3D_OK;
}

}   // namespace sparkrig
