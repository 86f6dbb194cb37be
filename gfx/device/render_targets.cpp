#include "gfx/device/render_targets.h"

namespace sparkrig {

void RenderTargets::Fetch(int z_buffer_bits) {
    IDirect3DDevice9& device = *graphics_.Device();
    z_buffer_bits_ = z_buffer_bits;
    has_depth_ = true;
    graphics_.Require(device.GetRenderTarget(0, target_.Receive()), "Can not retrieve render target: ");
    if (z_buffer_bits > 0) {
        graphics_.Require(device.GetDepthStencilSurface(depth_.Receive()), "Can not retrieve zbuffer: ");
    }
    DevicePtr<IDirect3DSurface9> back_buffer;
    graphics_.Require(device.GetBackBuffer(0, 0, 0, back_buffer.Receive()), "GetBackBuffer failed: ");
    D3DSURFACE_DESC desc = {};
    graphics_.Require(back_buffer->GetDesc(&desc), "GetDesc failed: ");
    width_ = desc.Width;
    height_ = desc.Height;
    back_buffer_.Wrap(back_buffer.Get());
}

void RenderTargets::Release() {
    back_buffer_.Wrap(nullptr);
    target_.Reset();
    depth_.Reset();
    viewport_.reset();
}

HRESULT RenderTargets::PutBack(IDirect3DSurface9* surface, bool has_depth) {
    const HRESULT result = graphics_.Device()->SetRenderTarget(0, surface);
    if (FAILED(result)) return result;
    viewport_.reset();   // as in Set
    target_ = DevicePtr<IDirect3DSurface9>::Share(surface);
    has_depth_ = has_depth;
    return result;
}

void RenderTargets::Set(IDirect3DSurface9* surface, DWORD index, const char* failure) {
    graphics_.Require(graphics_.Device()->SetRenderTarget(index, surface), failure);
    if (index != 0) return;
    viewport_.reset();   // it covers the whole of the new target now
    target_ = DevicePtr<IDirect3DSurface9>::Share(surface);
    has_depth_ = false;
    if (!depth_) return;
    D3DSURFACE_DESC target = {}, depth = {};
    graphics_.Require(surface->GetDesc(&target), "GetDesc failed: ");
    graphics_.Require(depth_->GetDesc(&depth), "GetDesc failed: ");
    has_depth_ = depth.Width >= target.Width && depth.Height >= target.Height;
}

HRESULT RenderTargets::SetViewport(const D3DVIEWPORT9& viewport) {
    if (viewport_ == viewport) return D3D_OK;
    const HRESULT result = graphics_.Device()->SetViewport(&viewport);
    if (SUCCEEDED(result)) viewport_ = viewport;
    return result;
}

int RenderTargets::Clear(D3DCOLOR colour, float z, const D3DRECT* rectangle) const {
    const bool depth = z_buffer_bits_ > 0 && has_depth_;
    const DWORD flags = depth ? D3DCLEAR_TARGET | D3DCLEAR_ZBUFFER : D3DCLEAR_TARGET;
    const HRESULT result = graphics_.Device()->Clear(rectangle ? 1 : 0, rectangle, flags, colour, z, 0);
    if (FAILED(result)) graphics_.Reporter().Error("Clear failed!");
    return 1;
}

int RenderTargets::ClearZBuffer(float z, const D3DRECT* rectangle) const {
    if (z_buffer_bits_ < 1) return 0;
    if (!has_depth_) graphics_.Reporter().Error("Render target has no zbuffer!");
    const HRESULT result = graphics_.Device()->Clear(rectangle ? 1 : 0, rectangle, D3DCLEAR_ZBUFFER, 0, z, 0);
    if (FAILED(result)) graphics_.Reporter().Error("Clear failed!");
    return 1;
}

void RenderTargets::Read(std::vector<D3DCOLOR>& pixels) const {
    IDirect3DSurface9* source = back_buffer_.Get();
    D3DSURFACE_DESC desc = {};
    graphics_.Require(source->GetDesc(&desc), "GetDesc failed: ");
    const PixelCodec* codec = FindPixelCodec(desc.Format);
    if (!codec) graphics_.Reporter().Error("Unsupported pixel format! (%i)", static_cast<int>(desc.Format));

    DevicePtr<IDirect3DSurface9> copy;
    graphics_.Require(graphics_.Device()->CreateOffscreenPlainSurface(desc.Width, desc.Height, desc.Format,
                                                                      D3DPOOL_SYSTEMMEM, copy.Receive()),
                      "CreateOffscreenPlainSurface failed: ");
    graphics_.Require(graphics_.Device()->GetRenderTargetData(source, copy.Get()), "GetRenderTargetData failed: ");
    KRN_Surface surface;
    surface.Wrap(copy.Get());
    surface.Lock(nullptr, D3DLOCK_READONLY);
    pixels.resize(static_cast<std::size_t>(desc.Width) * desc.Height);
    D3DCOLOR* pixel = pixels.data();
    for (UINT y = 0; y < desc.Height; ++y) {
        for (UINT x = 0; x < desc.Width; ++x) {
            *pixel++ = surface.GetPixel(static_cast<int>(x), static_cast<int>(y));
        }
    }
    surface.Unlock();
}

}   // namespace sparkrig
