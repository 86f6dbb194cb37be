// Surfaces: rectangles of pixels in system memory, in OpenGL, or both.
#pragma once
#include <memory>
#include <vector>

#include "platform/com/ref_counted.h"
#include "platform/d3d9/d3d9.h"
#include "platform/d3d9_gl/formats.h"
#include "platform/d3d9_gl/gl_context.h"

namespace sparkrig {

/// What every surface of the layer is: a texture level or a surface of its own.
class Surface : public IDirect3DSurface9 {
  public:
    Surface(const Surface&) = delete;
    Surface& operator=(const Surface&) = delete;

    HRESULT GetDesc(D3DSURFACE_DESC* desc) override;
    HRESULT LockRect(D3DLOCKED_RECT* locked, const RECT* rect, DWORD flags) override;
    HRESULT UnlockRect() override;

    const D3DSURFACE_DESC& Desc() const { return desc_; }
    const PixelFormat& Format() const { return *format_; }
    /// Rows from top to bottom, Format().Pitch(width) apart; null when there is no copy in system memory.
    std::byte* Bytes() { return bytes_.empty() ? nullptr : bytes_.data(); }
    bool Locked() const { return locked_; }

    /// The OpenGL texture level that holds the pixels, with everything written so far; name 0 when there is none.
    struct Image {
        GLuint texture = 0;
        GLint level = 0;
        GLuint renderbuffer = 0;
    };
    virtual Image GlImage() = 0;
    /// The pixels in OpenGL have changed by other means than a lock.
    virtual void DrawnInto() {}

    /// The framebuffer that draws into this surface, with this depth buffer (0: none).
    GLuint Framebuffer(GLuint depth_renderbuffer, bool stencil);
    /// The same, as a source or target of copies: whatever depth buffer it has stays.
    GLuint Framebuffer();

  protected:
    Surface() = default;
    ~Surface();

    void Describe(std::shared_ptr<GlContext> context, const D3DSURFACE_DESC& desc);
    void AllocateBytes() { bytes_.resize(format_->Bytes(desc_.Width, desc_.Height)); }

    virtual bool Lockable() const = 0;
    virtual void BeforeLock() {}
    /// Pixel rows top to bottom - 1 have been written.
    virtual void AfterWrite(UINT top, UINT bottom) = 0;

    std::shared_ptr<GlContext> context_;

  private:
    D3DSURFACE_DESC desc_ = {};
    const PixelFormat* format_ = nullptr;
    std::vector<std::byte> bytes_;
    bool locked_ = false;
    UINT dirty_top_ = 0, dirty_bottom_ = 0;   // of the lock
    GLuint framebuffer_ = 0;
    GLuint attached_depth_ = 0;
};

enum class SurfaceKind {
    System,      // bytes only
    Plain,       // default pool, off screen; lockable
    Target,      // render target
    SwapChain,   // back buffer: a target that the device owns
    Depth,       // depth buffer that the device owns
};

/// A surface that belongs to no texture.
class OwnSurface final : public RefCounted<Surface> {
  public:
    /// Null when OpenGL refuses. `desc` must have been checked.
    static OwnSurface* Create(std::shared_ptr<GlContext> context, SurfaceKind kind, const D3DSURFACE_DESC& desc,
                              bool lockable);

    Image GlImage() override { return image_; }
    SurfaceKind Kind() const { return kind_; }

  private:
    OwnSurface() = default;
    ~OwnSurface() override;

    bool Lockable() const override { return lockable_; }
    void BeforeLock() override;
    void AfterWrite(UINT top, UINT bottom) override;
    bool CreateImage();

    SurfaceKind kind_ = SurfaceKind::System;
    bool lockable_ = false;
    Image image_;
};

/// Copies the pixels of a single-sampled surface in OpenGL to memory laid out by its format. A channel that the format
/// does not have is filled with ones.
void ReadPixels(Surface& surface, std::byte* bytes);

/// Sends pixel rows from memory laid out by the format to a texture level.
void WritePixels(const PixelFormat& format, GLuint texture, GLint level, UINT width, UINT height,
                 const std::byte* bytes, UINT top, UINT bottom);

}   // namespace sparkrig
