#include "gfx/shaders/screen_buffers.h"

#include <algorithm>

#include "platform/d3dx/d3dx_texture.h"

namespace sparkrig {

RECT ScreenBuffers::CopiedPart(const D3DSURFACE_DESC& target, bool viewport_only) const {
    const RECT whole = {0, 0, static_cast<LONG>(target.Width), static_cast<LONG>(target.Height)};
    if (!viewport_only) return whole;
    const D3DVIEWPORT9& viewport = transforms_.Viewport();
    const RECT part = {static_cast<LONG>(viewport.X), static_cast<LONG>(viewport.Y),
                       std::min(static_cast<LONG>(viewport.X + viewport.Width), whole.right),
                       std::min(static_cast<LONG>(viewport.Y + viewport.Height), whole.bottom)};
    const bool outside = part.left >= part.right || part.top >= part.bottom;   // the target is not the viewport's
    return outside ? whole : part;
}

void ScreenBuffers::MakeCopyTexture(UINT width, UINT height, D3DFORMAT format) {
    if (copy_ && copy_width_ == width && copy_height_ == height) return;
    graphics_.Require(graphics_.Device()->CreateTexture(width, height, 1, D3DUSAGE_RENDERTARGET, format,
                                                        D3DPOOL_DEFAULT, copy_.Receive()),
                      "Could not create screen copy texture: ");
    copy_width_ = width;
    copy_height_ = height;
    textures_.CountCreated();
}

IDirect3DTexture9* ScreenBuffers::GetScreenCopy(bool viewport_only) {
    if (copy_ && frames_.Serves(copied_in_)) return copy_.Get();
    DevicePtr<IDirect3DSurface9> target, level;
    D3DSURFACE_DESC desc = {};
    graphics_.Require(graphics_.Device()->GetRenderTarget(0, target.Receive()), "Can not retrieve render target: ");
    graphics_.Require(target->GetDesc(&desc), "GetDesc failed: ");
    const RECT part = CopiedPart(desc, viewport_only);
    MakeCopyTexture(static_cast<UINT>(part.right - part.left), static_cast<UINT>(part.bottom - part.top), desc.Format);
    graphics_.Require(copy_->GetSurfaceLevel(0, level.Receive()), "GetSurfaceLevel failed: ");
    graphics_.Require(graphics_.Device()->StretchRect(target.Get(), &part, level.Get(), nullptr, D3DTEXF_NONE),
                      "StretchRect failed: ");
    copied_in_ = frames_.frame;
    return copy_.Get();
}

IDirect3DTexture9* ScreenBuffers::GetScreenBufferTexture(TargetKind kind, int index) {
    constexpr char kFailure[] = "GetScreenBufferTexture failed - can not create texture buffer: ";
    if (index < 0 || index >= BufferCount(kind)) graphics_.Require(D3DERR_INVALIDCALL, kFailure);
    const bool quarter = kind == TargetKind::QuarterBuffer;
    const auto slot = static_cast<std::size_t>(index);
    DevicePtr<IDirect3DTexture9>& buffer = quarter ? quarter_[slot] : full_[slot];
    const UINT divisor = quarter ? 4 : 1;
    if (!buffer) {
        graphics_.Require(
            D3DXCreateTexture(graphics_.Device(), targets_.Width() / divisor, targets_.Height() / divisor, 1,
                              D3DUSAGE_RENDERTARGET, D3DFMT_A8R8G8B8, D3DPOOL_DEFAULT, buffer.Receive()),
            kFailure);
    }
    return buffer.Get();
}

void ScreenBuffers::Release() {
    copy_.Reset();
    copied_in_ = -1;
    quarter_ = {};
    full_ = {};
}

}   // namespace sparkrig
