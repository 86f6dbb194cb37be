#include "platform/d3d9_gl/surface.h"

#include <algorithm>
#include <utility>

namespace sparkrig {

Surface::~Surface() {
    if (framebuffer_ == 0 || !context_->Activate()) return;
    glDeleteFramebuffers(1, &framebuffer_);
    ++context_->deletions;
}

void Surface::Describe(std::shared_ptr<GlContext> context, const D3DSURFACE_DESC& desc) {
    context_ = std::move(context);
    desc_ = desc;
    format_ = FindPixelFormat(desc.Format);
}

HRESULT Surface::GetDesc(D3DSURFACE_DESC* desc) {
    if (desc == nullptr) return D3DERR_INVALIDCALL;
    *desc = desc_;
    return D3D_OK;
}

HRESULT Surface::LockRect(D3DLOCKED_RECT* locked, const RECT* rect, DWORD flags) {
    if (locked == nullptr || locked_ || !Lockable()) return D3DERR_INVALIDCALL;
    if (const HRESULT result = CheckLock(desc_, rect, flags); FAILED(result)) return result;
    BeforeLock();
    RECT area;
    TakeRect(desc_, rect, area);
    const UINT step = format_->Step();
    const UINT pitch = format_->Pitch(desc_.Width);
    locked->Pitch = static_cast<INT>(pitch);
    locked->pBits = bytes_.data() + std::size_t{pitch} * (static_cast<UINT>(area.top) / step) +
                    std::size_t{format_->bytes} * (static_cast<UINT>(area.left) / step);
    locked_ = true;
    const bool writes = (flags & (D3DLOCK_READONLY | D3DLOCK_NO_DIRTY_UPDATE)) == 0;
    dirty_top_ = writes ? static_cast<UINT>(area.top) : 0;
    dirty_bottom_ = writes ? static_cast<UINT>(area.bottom) : 0;
    return D3D_OK;
}

HRESULT Surface::UnlockRect() {
    if (!locked_) return D3DERR_INVALIDCALL;
    locked_ = false;
    if (dirty_bottom_ > dirty_top_) AfterWrite(dirty_top_, dirty_bottom_);
    return D3D_OK;
}

GLuint Surface::Framebuffer() {
    if (framebuffer_ != 0) return framebuffer_;
    const Image image = GlImage();
    glCreateFramebuffers(1, &framebuffer_);
    if (image.renderbuffer != 0) {
        glNamedFramebufferRenderbuffer(framebuffer_, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, image.renderbuffer);
    } else {
        glNamedFramebufferTexture(framebuffer_, GL_COLOR_ATTACHMENT0, image.texture, image.level);
    }
    return framebuffer_;
}

GLuint Surface::Framebuffer(GLuint depth_renderbuffer, bool stencil) {
    const GLuint framebuffer = Framebuffer();
    if (attached_depth_ != depth_renderbuffer) {
        const GLenum attachment = stencil ? GL_DEPTH_STENCIL_ATTACHMENT : GL_DEPTH_ATTACHMENT;
        glNamedFramebufferRenderbuffer(framebuffer, GL_DEPTH_STENCIL_ATTACHMENT, GL_RENDERBUFFER, 0);
        glNamedFramebufferRenderbuffer(framebuffer, attachment, GL_RENDERBUFFER, depth_renderbuffer);
        attached_depth_ = depth_renderbuffer;
    }
    return framebuffer;
}

OwnSurface* OwnSurface::Create(std::shared_ptr<GlContext> context, SurfaceKind kind, const D3DSURFACE_DESC& desc,
                               bool lockable) {
    auto* surface = new OwnSurface;
    surface->kind_ = kind;
    surface->lockable_ = lockable;
    surface->Describe(std::move(context), desc);
    if (lockable) surface->AllocateBytes();
    if (kind == SurfaceKind::Plain || kind == SurfaceKind::Target) ++surface->context_->default_pool_objects;
    if (kind != SurfaceKind::System && !surface->CreateImage()) {
        surface->Release();
        return nullptr;
    }
    return surface;
}

OwnSurface::~OwnSurface() {
    if (kind_ == SurfaceKind::Plain || kind_ == SurfaceKind::Target) --context_->default_pool_objects;
    if (kind_ == SurfaceKind::System || !context_->Activate()) return;
    if (image_.texture != 0) glDeleteTextures(1, &image_.texture);
    if (image_.renderbuffer != 0) glDeleteRenderbuffers(1, &image_.renderbuffer);
    ++context_->deletions;
}

bool OwnSurface::CreateImage() {
    if (!context_->Activate()) return false;
    const GLsizei width = static_cast<GLsizei>(Desc().Width), height = static_cast<GLsizei>(Desc().Height);
    const GLsizei samples = static_cast<GLsizei>(Desc().MultiSampleType);
    const GLenum internal = FindGlFormat(Desc().Format).internal;
    if (kind_ == SurfaceKind::Depth || samples > 1) {
        glCreateRenderbuffers(1, &image_.renderbuffer);
        glNamedRenderbufferStorageMultisample(image_.renderbuffer, samples, internal, width, height);
    } else {
        glCreateTextures(GL_TEXTURE_2D, 1, &image_.texture);
        glTextureStorage2D(image_.texture, 1, internal, width, height);
    }
    return glGetError() != GL_OUT_OF_MEMORY;
}

void OwnSurface::BeforeLock() {
    if (kind_ != SurfaceKind::System && context_->Activate()) ReadPixels(*this, Bytes());
}

void OwnSurface::AfterWrite(UINT top, UINT bottom) {
    if (kind_ == SurfaceKind::System || !context_->Activate()) return;
    WritePixels(Format(), image_.texture, 0, Desc().Width, Desc().Height, Bytes(), top, bottom);
}

void ReadPixels(Surface& surface, std::byte* bytes) {
    const GlFormat& format = FindGlFormat(surface.Desc().Format);
    const UINT width = surface.Desc().Width, height = surface.Desc().Height;
    glBindFramebuffer(GL_READ_FRAMEBUFFER, surface.Framebuffer());
    glPixelStorei(GL_PACK_ALIGNMENT, 4);
    glReadPixels(0, 0, static_cast<GLsizei>(width), static_cast<GLsizei>(height), format.external, format.type, bytes);
    if (format.format != D3DFMT_X8R8G8B8) return;
    for (std::size_t pixel = 0; pixel < std::size_t{width} * height; ++pixel) bytes[4 * pixel + 3] = std::byte{255};
}

void WritePixels(const PixelFormat& format, GLuint texture, GLint level, UINT width, UINT height,
                 const std::byte* bytes, UINT top, UINT bottom) {
    const GlFormat& gl = FindGlFormat(format.format);
    const UINT step = format.Step();
    top = top / step * step;
    bottom = std::min((bottom + step - 1) / step * step, height);
    const UINT pitch = format.Pitch(width);
    const std::byte* first = bytes + std::size_t{pitch} * (top / step);
    const GLint y = static_cast<GLint>(top);
    const GLsizei columns = static_cast<GLsizei>(width), rows = static_cast<GLsizei>(bottom - top);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    if (format.blocks) {
        const GLsizei size = static_cast<GLsizei>(pitch * format.Rows(bottom - top));
        glCompressedTextureSubImage2D(texture, level, 0, y, columns, rows, gl.internal, size, first);
    } else {
        glTextureSubImage2D(texture, level, 0, y, columns, rows, gl.external, gl.type, first);
    }
}

}   // namespace sparkrig
