// A picture that can be drawn: up to four layers, a sequence of frames, or a video source.
//
// Life: made empty -> KRN_Gfx::LoadTexture or CreateTexture, as often as wanted -> Release or destruction, before
// KRN_Gfx goes. Pictures in the default pool are gone after a device reset (HasSurface) and are made again by the
// owner.
#pragma once
#include <cstdint>
#include <vector>

#include "base/string.h"
#include "gfx/device/surface_base.h"
#include "gfx/textures/texture_sequence.h"
#include "scene/text_matrix_ani.h"

namespace sparkrig {

class GraphicsDevice;
class KRN_Texture;
class TextureRegistry;

/// Who binds textures to the device's stages.
class TextureBinder {
  public:
    virtual void SetTexture(KRN_Texture* texture, int stage) = 0;

  protected:
    ~TextureBinder() = default;
};

/// What a layer does to the picture. Kind 1 stands at any stage, 3 and 6 at stage 0 only.
enum class MapKind : std::int32_t {
    None = 0,
    Diffuse = 1,
    Bump = 2,
    Reflection = 3,
    Light = 4,              // multiplies
    Detail = 5,             // multiplies, twice as bright
    SphereReflection = 6,   // a reflection whose coordinates the program computes
    Decal = 7,              // covers by its own alpha
};

class KRN_Texture final : public KRN_SurfaceBase {
  public:
    static constexpr int kLayers = 4;

    KRN_Texture();
    ~KRN_Texture() { Release(); }
    KRN_Texture(const KRN_Texture&) = delete;
    KRN_Texture& operator=(const KRN_Texture&) = delete;

    /// Lets go of every layer and frame; what was set for the layers stays.
    void Release();

    // ---- As a surface: the level chosen by SetMipLevel of the device texture in use.
    bool IsValid() const override;
    bool Lock(const RECT* rectangle, DWORD flags) override;
    bool Unlock() override;
    void GetRect(RECT& rectangle) const override;
    POINT GetSize() const override;
    bool GetSize(UINT& width, UINT& height) const override;
    /// Whether a device texture is in use.
    bool HasSurface() const override { return DeviceTexture() != nullptr; }
    void SetMipLevel(UINT level) { mip_level_ = level; }
    UINT MipLevel() const { return mip_level_; }
    DevicePtr<IDirect3DSurface9> GetSurfaceLevel(UINT level);
    /// A rectangle only for textures of the default pool; others are filled whole.
    void Clear(D3DCOLOR colour, const RECT* rectangle);
    /// Looks for alpha strictly between none and full in at most 64 x 64 samples. A picture of the default pool cannot
    /// be locked: its file is read once more.
    void AnalyseAlpha();

    // ---- Layers. The current layer, 0 at first, is the one that loading and locking act on.
    /// With `apply` the layer's texture is also bound to the stage of the same number.
    bool SelectLayer(int layer, bool apply);
    int CurrentLayer() const { return current_layer_; }
    bool SetStageMap(int layer, MapKind kind, float amount);
    MapKind KindOf(int layer) const { return layers_[layer].kind; }
    float AmountOf(int layer) const { return layers_[layer].amount; }
    void SetLayerMatrix(int layer, const TextureMatrixValues& constants);
    /// Update moves the layer from now on; until then it stands as at the start.
    void SetLayerAnimation(int layer, const KRN_TextMatrixAni& animation);
    const D3DXMATRIX& LayerMatrix(int layer) const { return layers_[layer].matrix; }
    /// Borrowed; null for a layer without a picture. Layer 0 of a sequence is the current frame.
    IDirect3DTexture9* LayerTexture(int layer) const;

    // ---- Sequences
    bool SelectSequenceFrame(int frame);
    void SetSequenceTiming(const SequenceTiming& timing) { timing_ = timing; }
    int SequenceFrames() const { return static_cast<int>(frames_.size()); }
    int CurrentFrame() const { return current_frame_; }
    void FreeSequenceFrame(int frame);
    /// Advances the matrices of layers with a picture and the sequence frame to time t (seconds).
    void Update(float t);

    // ---- What is in use
    /// Borrowed; null without a picture.
    IDirect3DTexture9* DeviceTexture() const;
    /// The name that the current layer, or the sequence, was loaded by; empty for created ones.
    const String& Name() const { return layers_[current_layer_].name; }
    /// Seconds since 1970 of the file of what is in use, 0 without one.
    std::uint32_t TimeStamp() const { return InUse().time_stamp; }
    /// The registry index of what is in use, plus 1; 0 without a picture. Textures that share have the same.
    int Identifier() const { return InUse().entry + 1; }
    /// The video source of what is in use: 0 to 15, or -1.
    int VideoSourceIndex() const { return InUse().video_source; }
    /// That of a layer; layer 0 of a sequence is the current frame.
    int VideoSourceOf(int layer) const;
    /// The picture's own size, which may be less than the device texture's.
    float Width() const { return InUse().width; }
    float Height() const { return InUse().height; }
    /// Texture coordinates of the picture: its origin, its size, and what lies beyond.
    struct Rectangle {
        float u = 0, v = 0, size_u = 1, size_v = 1, extra_u = 0, extra_v = 0;
    };
    const Rectangle& TextureRectangle() const { return InUse().rectangle; }
    void SetTextureRectangle(const Rectangle& rectangle) { InUse().rectangle = rectangle; }

    // ---- How it is drawn
    /// SetTexture switches the alpha test on or off by this.
    void SetAlphaTest(bool on) { alpha_test_ = on; }
    bool AlphaTest() const { return alpha_test_; }
    /// Whether screen-space drawing lets it repeat beyond its edges.
    void SetRepeats(bool repeats) { repeats_ = repeats; }
    bool Repeats() const { return repeats_; }
    /// The four vertices of its screen-space drawing; made by the drawer.
    DevicePtr<IDirect3DVertexBuffer9>& ScreenQuad() { return screen_quad_; }

  private:
    friend class TextureLoader;

    /// One device texture, by its registry entry, and the picture in it.
    struct Picture {
        int entry = -1;
        D3DFORMAT format = D3DFMT_UNKNOWN;
        bool default_pool = false;
        UINT texture_width = 0, texture_height = 0;   // level 0
        std::uint32_t time_stamp = 0;                 // of its file
        float width = 0, height = 0;
        Rectangle rectangle;
        int video_source = -1;   // 0 to 15 where one shows in it

        /// It covers only the upper left width x height pixels of its device texture.
        void SetSize(float picture_width, float picture_height);
    };
    struct Layer {
        Picture picture;
        String name;
        MapKind kind = MapKind::None;
        float amount = 1;
        KRN_TextMatrixAni animation;
        D3DXMATRIX matrix = kIdentityMatrix;   // of the animation at the time of the last Update
    };

    const Picture& InUse() const { return frames_.empty() ? layers_[current_layer_].picture : frames_[current_frame_]; }
    const Picture& PictureOf(int layer) const {
        return layer == 0 && !frames_.empty() ? frames_[current_frame_] : layers_[layer].picture;
    }
    Picture& InUse() { return frames_.empty() ? layers_[current_layer_].picture : frames_[current_frame_]; }
    IDirect3DTexture9* TextureOf(const Picture& picture) const;
    /// A texture with the same pixels that can be locked.
    DevicePtr<IDirect3DTexture9> Lockable(IDirect3DTexture9& texture, const D3DSURFACE_DESC& desc) const;

    // For the loader.
    void Attach(const GraphicsDevice& graphics, TextureRegistry& registry, TextureBinder& binder);
    void ReleasePicture(Picture& picture);
    /// The picture in use, and what is known of its file.
    void ReleaseCurrent();
    void ReleaseFrames();
    /// Of an entry, one user of which it takes over. The picture's size is the device texture's.
    Picture PictureOfEntry(int entry) const;
    /// In place of the picture in use, and of any sequence.
    void Show(const Picture& picture);
    /// In place of the sequence that was.
    void ShowFrames(std::vector<Picture> frames);

    // Borrowed, since the first load
    const GraphicsDevice* graphics_ = nullptr;
    TextureRegistry* registry_ = nullptr;
    TextureBinder* binder_ = nullptr;
    Layer layers_[kLayers];
    int current_layer_ = 0;
    std::vector<Picture> frames_;   // of the sequence; empty for none
    int current_frame_ = 0;
    SequenceTiming timing_;
    UINT mip_level_ = 0;
    bool alpha_test_ = false;
    bool repeats_ = false;
    DevicePtr<IDirect3DVertexBuffer9> screen_quad_;
};

}   // namespace sparkrig
