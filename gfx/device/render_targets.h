// The surfaces that are drawn into: the back buffer, the depth buffer, the target in use; clearing and reading them.
#pragma once
#include <optional>
#include <vector>

#include "gfx/device/graphics_device.h"
#include "gfx/device/surface.h"

namespace sparkrig {

class RenderTargets {
  public:
    explicit RenderTargets(const GraphicsDevice& graphics) : graphics_(graphics) {}

    /// After creation and every reset. z_buffer_bits as the device was made with.
    void Fetch(int z_buffer_bits);
    /// Before a reset: nothing of the swap chain stays held.
    void Release();

    /// Target 0 decides whether depths can be cleared: the depth buffer must be as large at least.
    void Set(IDirect3DSurface9* surface, DWORD index, const char* failure = "Can not set render target: ");
    /// The same with what is known of a target that was set before, without reports.
    HRESULT PutBack(IDirect3DSurface9* surface, bool has_depth);
    /// The device's answer. What is there already is not sent again; a new target has a viewport of its own, the whole.
    HRESULT SetViewport(const D3DVIEWPORT9& viewport);
    bool HasDepthBuffer() const { return has_depth_; }

    /// A rectangle in pixels, or null for the whole viewport.
    int Clear(D3DCOLOR colour, float z, const D3DRECT* rectangle) const;
    /// 0 when there is no depth buffer at all; an error when only the target has none.
    int ClearZBuffer(float z, const D3DRECT* rectangle) const;

    UINT Width() const { return width_; }
    UINT Height() const { return height_; }
    KRN_Surface& BackBuffer() { return back_buffer_; }
    /// The back buffer as A8R8G8B8, row by row from the top.
    void Read(std::vector<D3DCOLOR>& pixels) const;

  private:
    const GraphicsDevice& graphics_;
    DevicePtr<IDirect3DSurface9> target_, depth_;
    KRN_Surface back_buffer_;
    UINT width_ = 0, height_ = 0;   // of the back buffer
    int z_buffer_bits_ = 0;
    bool has_depth_ = true;
    std::optional<D3DVIEWPORT9> viewport_;   // as the device has it
};

}   // namespace sparkrig
