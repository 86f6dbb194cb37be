// Textures: levels with their bytes in system memory where they can be locked, and an OpenGL texture where they can be
// drawn with. What was written through locks is sent when the texture is next used.
#pragma once
#include "platform/d3d9_gl/surface.h"

namespace sparkrig {

class Texture;

/// One level of a texture. Its references are those of the texture.
class TextureLevel final : public Surface {
  public:
    TextureLevel(Texture& texture, std::shared_ptr<GlContext> context, GLint level, const D3DSURFACE_DESC& desc,
                 bool lockable);

    ULONG AddRef() override;
    ULONG Release() override;
    Image GlImage() override;
    void DrawnInto() override;

    /// Sends the rows that were written since the last time.
    void Upload(GLuint texture);
    /// Replaces all pixels by those of a level of the same size and format.
    void Take(const std::byte* bytes);

  private:
    bool Lockable() const override { return lockable_; }
    void AfterWrite(UINT top, UINT bottom) override;

    Texture& texture_;
    GLint level_;
    bool lockable_;
    UINT dirty_top_ = 0, dirty_bottom_ = 0;   // rows to send
};

class Texture final : public RefCounted<IDirect3DTexture9> {
  public:
    /// Null when OpenGL refuses. The request has been checked.
    static Texture* Create(std::shared_ptr<GlContext> context, const TextureRequest& shape);

    DWORD GetLevelCount() override { return GeneratesLevels() ? 1 : shape_.levels; }
    HRESULT GetLevelDesc(UINT level, D3DSURFACE_DESC* desc) override;
    HRESULT GetSurfaceLevel(UINT level, IDirect3DSurface9** surface) override;
    HRESULT LockRect(UINT level, D3DLOCKED_RECT* locked, const RECT* rect, DWORD flags) override;
    HRESULT UnlockRect(UINT level) override;

    TextureLevel& Level(UINT level) { return *levels_[level]; }
    bool Drawable() const { return name_ != 0; }
    /// du and dv of a bump stage are signed in it.
    bool Signed() const { return shape_.format == D3DFMT_V8U8; }

    /// The OpenGL texture with everything that was written so far. Needs the context to be current.
    GLuint Name() {
        if (stale_) Update();
        return name_;
    }
    /// The largest level that samplers read; the last one for a number beyond it.
    void SampleFrom(DWORD level) {
        if (level != base_level_) SetBaseLevel(level);
    }
    void MarkStale() { stale_ = true; }
    /// The largest level was drawn or copied into: smaller ones that are made from it are old.
    void MarkDrawnInto() { stale_ = stale_ || GeneratesLevels(); }

  private:
    Texture(std::shared_ptr<GlContext> context, const TextureRequest& shape, GLuint name);
    ~Texture() override;

    void Update();
    void SetBaseLevel(DWORD level);
    bool GeneratesLevels() const { return (shape_.usage & D3DUSAGE_AUTOGENMIPMAP) != 0; }

    std::shared_ptr<GlContext> context_;
    TextureRequest shape_;
    std::vector<std::unique_ptr<TextureLevel>> levels_;
    GLuint name_ = 0;
    bool stale_ = false;
    DWORD base_level_ = 0;
};

}   // namespace sparkrig
