// A picture that can be drawn: up to four layers, a sequence of frames, or a video source.
#pragma once
#include <cstdint>
#include <vector>

#include "base/string.h"
#include "gfx/surface_base.h"

namespace sparkrig {

class KRN_Gfx;

enum class MapKind : std::int32_t { None = 0, Diffuse = 1, Bump = 2, Reflection = 3 };
enum class PlaybackMode : std::int32_t { Loop = 0, PingPong = 1, Once = 2 };

class KRN_Texture : public KRN_SurfaceBase {
  public:
    static constexpr int kLayers = 4;

    KRN_Texture();
    ~KRN_Texture();
    KRN_Texture(const KRN_Texture&) = delete;
    KRN_Texture& operator=(const KRN_Texture&) = delete;

    /// Lets go of every layer and frame.
    void Release();

    bool IsValid() const override;
    bool Lock(const RECT* rectangle, DWORD flags) override;
    bool Unlock() override;
    void GetRect(RECT& rectangle) const override;
    POINT GetSize() const override;
    bool GetSize(UINT& width, UINT& height) const override;
    /// Whether a device texture is in use.
    bool HasSurface() const override;

    bool SelectLayer(int layer, bool apply);
    bool SelectSequenceFrame(int frame);
    bool SetStageMap(int layer, MapKind kind, float amount);
    /// Start time and frame duration in seconds.
    void SetSequenceTiming(float start, float frame_seconds, PlaybackMode mode);
    /// Advances texture matrices and the sequence frame to time t (seconds).
    void Update(float t);

    bool GetCompressedPix(int x, int y, D3DCOLOR& argb) const;
    void AnalyseAlpha();
    bool HasPartialAlpha() const { return partial_alpha_; }
    void Clear(D3DCOLOR colour, const RECT* rectangle);
    DevicePtr<IDirect3DSurface9> GetSurfaceLevel(UINT level);

    /// The device texture in use: the current layer's, or the current frame's. Borrowed.
    IDirect3DTexture9* DeviceTexture() const;
    int SequenceFrames() const;
    int CurrentFrame() const;
    /// The name that the current layer was loaded by; empty for created ones.
    const String& Name() const;
    /// The texture's identifier: the registry index of what is in use, plus 1; 0 without a picture.
    int Identifier() const;
    /// Texture coordinates of the picture: u, v of the origin and its size.
    struct Rectangle {
        float u, v, size_u, size_v, extra_u, extra_v;
    };
    const Rectangle& TextureRectangle() const;
    void SetAlphaTest(bool on);
    bool AlphaTest() const;

  private:
    friend class TextureLoader;
    struct Data;
    Data* data_;   // owned
};

}   // namespace sparkrig
