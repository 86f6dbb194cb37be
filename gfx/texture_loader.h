// From a name to a KRN_Texture: image files, image-file lists, video sources, and empty textures.
//
// The same file is loaded once: its device texture is shared through the registry under the file's name and time.
#pragma once
#include <string>

#include "gfx/texture_paths.h"
#include "gfx/texture_registry.h"
#include "gfx/video_sources.h"

namespace sparkrig {

class KRN_Gfx;
class KRN_Texture;

struct TextureSettings {
    bool sharing = true;
    /// No file is read: every texture becomes one grey 8 x 8 picture.
    bool placeholders = false;
    /// Images of at least so many pixels (both sizes rounded up to powers of two) become DXT1 or DXT5.
    bool compression = false;
    UINT compression_threshold = 65536;
};

/// Bits that stand beside the load parameter proper, which is -1, 0, 1, 2 or 3.
inline constexpr int kLoadWithoutStretching = 0x1000, kLoadKeepsTexture = 0x2000;
/// Bit that stands beside CreateTexture's mode, which is -1, 1, 2, 3 or 4.
inline constexpr int kCreateDynamic = 0x200;
/// Frames of one image-file list, and of everything that one LoadTexture reads.
inline constexpr int kMaxSequenceFrames = 4096;

class TextureLoader {
  public:
    /// `gfx` reports, and gives the device, its capabilities and its formats; all are borrowed.
    TextureLoader(KRN_Gfx& gfx, TextureRegistry& registry, VideoSources& videos);

    void LoadTexture(KRN_Texture* texture, const char* name, D3DCOLOR colour_key, int parameter, int format,
                     int mip_levels);
    void CreateTexture(KRN_Texture* texture, UINT width, UINT height, int mode, int format, int mip_levels);

    TextureSettings& Settings() { return settings_; }
    TexturePaths& Paths() { return paths_; }
    const TexturePaths& Paths() const { return paths_; }

  private:
    struct Request;
    void Load(KRN_Texture& texture, const Request& request);
    void LoadVideoSource(KRN_Texture& texture, const char* name);
    void LoadImageList(KRN_Texture& texture, const Request& request);
    void LoadPlaceholder(KRN_Texture& texture);
    void LoadImageFile(KRN_Texture& texture, const Request& request);

    KRN_Gfx& gfx_;
    TextureRegistry& registry_;
    VideoSources& videos_;
    TexturePaths paths_;
    TextureSettings settings_;
    int placeholder_ = -1;   // registry index, one user is the loader
};

}   // namespace sparkrig
