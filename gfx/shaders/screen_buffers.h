// The textures in which effects find what was drawn: the copy of the screen and the scratch buffers of passes. All are
// made on first use and let go before a reset.
#pragma once
#include <array>
#include <cstdint>

#include "gfx/device/frame_cache.h"
#include "gfx/device/render_targets.h"
#include "gfx/shaders/pass_target.h"
#include "gfx/states/transforms.h"
#include "gfx/textures/texture_registry.h"

namespace sparkrig {

class ScreenBuffers {
  public:
    ScreenBuffers(const GraphicsDevice& graphics, const RenderTargets& targets, const Transforms& transforms,
                  const FrameCache& frames, TextureRegistry& textures)
        : graphics_(graphics), targets_(targets), transforms_(transforms), frames_(frames), textures_(textures) {}

    /// What the render target shows now, or only the viewport of it. With the frame cache on, the copy that was made
    /// first in this frame, whatever it shows. Borrowed.
    IDirect3DTexture9* GetScreenCopy(bool viewport_only);
    /// A full buffer has the size of the back buffer, a quarter buffer a quarter of it in each direction. index from 0.
    /// What a new one holds is undefined. Borrowed.
    IDirect3DTexture9* GetScreenBufferTexture(TargetKind kind, int index);
    void Release();

  private:
    RECT CopiedPart(const D3DSURFACE_DESC& target, bool viewport_only) const;
    void MakeCopyTexture(UINT width, UINT height, D3DFORMAT format);

    const GraphicsDevice& graphics_;
    const RenderTargets& targets_;
    const Transforms& transforms_;
    const FrameCache& frames_;
    TextureRegistry& textures_;   // counts the copy
    DevicePtr<IDirect3DTexture9> copy_;
    UINT copy_width_ = 0, copy_height_ = 0;
    std::int64_t copied_in_ = -1;   // frame
    std::array<DevicePtr<IDirect3DTexture9>, BufferCount(TargetKind::QuarterBuffer)> quarter_;
    std::array<DevicePtr<IDirect3DTexture9>, BufferCount(TargetKind::FullBuffer)> full_;
};

}   // namespace sparkrig
