// Sixteen slots from which textures take moving pictures, named ">>Video1" to ">>Video16".
#pragma once
#include <functional>

#include "base/error.h"
#include "platform/d3d9/d3d9.h"

namespace sparkrig {

/// What the number of the slot, from 1, follows.
inline constexpr char kVideoPrefix[] = ">>Video";

/// Whether a texture of that name shows a video source: no file has such a name.
bool IsVideoName(const char* name);

struct VideoSource {
    D3DFORMAT format = D3DFMT_UNKNOWN;
    UINT width = 0, height = 0;
    /// Writes the next picture into the locked level 0 of the source's texture.
    std::function<void(D3DLOCKED_RECT* locked)> update;
    DevicePtr<IDirect3DTexture9> texture;   // made when a texture is loaded from the source
};

class VideoSources {
  public:
    static constexpr int kCount = 16;

    static bool IsSlot(int index) { return index >= 0 && index < kCount; }
    /// index in 0 .. 15.
    VideoSource& operator[](int index) { return sources_[index]; }
    /// Asks the source for its next picture. A wrong slot, a slot without update function or without texture, and what
    /// the device refuses are errors of `reporter`.
    void Update(const KRN_Base& reporter, int index);

  private:
    VideoSource sources_[kCount];
};

}   // namespace sparkrig
