// From a name to a KRN_Texture: image files, image-file lists, video sources, and empty textures.
//
// The same file is loaded once: its device texture is shared through the registry under the file's name and time.
#pragma once
#include <memory>
#include <string>

#include "base/file_validator.h"
#include "gfx/device/graphics_device.h"
#include "gfx/device/presentation.h"
#include "gfx/textures/texture.h"
#include "gfx/textures/texture_format.h"
#include "gfx/textures/texture_paths.h"
#include "gfx/textures/texture_registry.h"
#include "gfx/textures/video_sources.h"
#include "platform/d3dx/d3dx_texture.h"

namespace sparkrig {

struct TextureSettings {
    bool sharing = true;
    /// No file is read: every texture becomes one grey 8 x 8 picture.
    bool placeholders = false;
    /// Images of at least so many pixels (both sizes rounded up to powers of two) become DXT1 or DXT5.
    bool compression = false;
    UINT compression_threshold = 65536;
};

/// Bits that stand beside the load parameter proper, which is 0 or 2 (managed pool), 1 (default pool) or 3 (a render
/// target in the default pool). -1 is 0 without bits.
inline constexpr int kLoadWithoutStretching = 0x1000, kLoadKeepsTexture = 0x2000;
/// Bit that stands beside CreateTexture's mode, which is 1 (default pool), 2 (system memory), 3 (render target) or 4
/// (managed). -1 is 4 without the bit.
inline constexpr int kCreateDynamic = 0x200;

class TextureLoader {
  public:
    /// All are borrowed. The display's format decides about formats that nobody asked for.
    TextureLoader(const GraphicsDevice& graphics, const PresentationSettings& presentation, TextureRegistry& registry,
                  VideoSources& videos, TextureBinder& binder);
    ~TextureLoader();

    /// What the name says is loaded into the texture's current layer. A file is read once.
    void LoadTexture(KRN_Texture* texture, const char* name, D3DCOLOR colour_key, int parameter, int format,
                     int mip_levels);
    /// An empty texture in the current layer. Format -1 is the device's alpha format.
    void CreateTexture(KRN_Texture* texture, UINT width, UINT height, int mode, int format, int mip_levels);
    /// Whether LoadTexture would find something under the name.
    bool CanLoad(const char* name) const;
    /// The same for many names in a row.
    bool CanLoad(const char* name, TextureLookup& lookup) const;

    TextureSettings& Settings() { return settings_; }
    TexturePaths& Paths() { return paths_; }
    const TexturePaths& Paths() const { return paths_; }
    const CFileValidator& Validator() const { return validator_; }

  private:
    /// What LoadTexture was asked for, its parameter taken apart.
    struct Request {
        D3DCOLOR colour_key;
        int format, mip_levels;
        bool stretching, keeps_texture;
        DWORD usage;
        D3DPOOL pool;
    };
    /// How an image file becomes a texture.
    struct Plan;
    using Picture = KRN_Texture::Picture;

    Request TakeApart(D3DCOLOR colour_key, int parameter, int format, int mip_levels) const;
    void LoadFile(KRN_Texture& texture, const char* name, const Request& request);
    Picture LoadVideoSource(const KRN_Texture& texture, const char* name);
    std::vector<Picture> LoadFrameList(const KRN_Texture& texture, const std::string& list, const Request& request);
    Picture LoadFrame(const KRN_Texture& texture, const char* directory, const char* name, const Request& request);
    Picture LoadPicture(const KRN_Texture& texture, const std::string& file, const Request& request);
    Picture LoadPlaceholder(const KRN_Texture& texture);
    int LoadImageFile(const std::string& file, const std::string& key, const Request& request);
    Plan MakePlan(const std::string& file, const D3DXIMAGE_INFO& info, const Request& request) const;

    const GraphicsDevice& graphics_;
    const PresentationSettings& presentation_;
    TextureRegistry& registry_;
    VideoSources& videos_;
    TextureBinder& binder_;   // of the textures
    CFileValidator validator_;
    TexturePaths paths_;
    TextureSettings settings_;
    std::unique_ptr<KRN_Texture> placeholder_;   // made at first use
};

}   // namespace sparkrig
