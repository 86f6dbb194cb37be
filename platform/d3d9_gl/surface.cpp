#include "platform/d3d9_gl/surface.h"

#include <algorithm>
#include <utility>

namespace sparkrig {

namespace {

constexpr UINT kBlock = 4;   // pixels along the edge of a compressed block

}   // namespace

Surface::~Surface() {
    if (framebuffer_ == 0 || !context_->Activate()) return;
    glDeleteFramebuffers(1, &framebuffer_);
    ++context_->deletions;
}

void Surface::Describe(std::shared_ptr<GlContext> context, const D3DSURFACE_DESC& desc, const FormatInfo& format) {
    context_ = std::move(context);
    desc_ = desc;
    format_ = &format;
}

HRESULT Surface::GetDesc(D3DSURFACE_DESC* desc) {
    if (desc == nullptr) return D3DERR_INVALIDCALL;
    *desc = desc_;
    return D3D_OK;
}

bool Surface::ValidRect(const RECT& rect) const {
    const LONG width = static_cast<LONG>(desc_.Width), height = static_cast<LONG>(desc_.Height);
    const bool inside = rect.left >= 0 && rect.top >= 0 && rect.left < rect.right && rect.top < rect.bottom &&
                        rect.right <= width && rect.bottom <= height;
    if (!inside || !format_->blocks) return inside;
    const auto on_block = [](LONG value, LONG edge) { return value % LONG{kBlock} == 0 || value == edge; };
    return rect.left % LONG{kBlock} == 0 && rect.top % LONG{kBlock} == 0 && on_block(rect.right, width) &&
           on_block(rect.bottom, height);
}

HRESULT Surface::LockRect(D3DLOCKED_RECT* locked, const RECT* rect, DWORD flags) {
    if (locked == nullptr || locked_ || !Lockable()) return D3DERR_INVALIDCALL;
    if (rect != nullptr && !ValidRect(*rect)) return D3DERR_INVALIDCALL;
    if ((flags & D3DLOCK_DISCARD) != 0 && ((desc_.Usage & D3DUSAGE_DYNAMIC) == 0 || rect != nullptr)) {
        return D3DERR_INVALIDCALL;
    }
    BeforeLock();
    const RECT all = {0, 0, static_cast<LONG>(desc_.Width), static_cast<LONG>(desc_.Height)};
    const RECT& area = rect != nullptr ? *rect : all;
    const UINT step = format_->blocks ? kBlock : 1;
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
    surface->Describe(std::move(context), desc, *FindFormat(desc.Format));
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
    if (kind_ == SurfaceKind::Depth || samples > 1) {
        glCreateRenderbuffers(1, &image_.renderbuffer);
        glNamedRenderbufferStorageMultisample(image_.renderbuffer, samples, Format().internal, width, height);
    } else {
        glCreateTextures(GL_TEXTURE_2D, 1, &image_.texture);
        glTextureStorage2D(image_.texture, 1, Format().internal, width, height);
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
    const FormatInfo& format = surface.Format();
    const UINT width = surface.Desc().Width, height = surface.Desc().Height;
    glBindFramebuffer(GL_READ_FRAMEBUFFER, surface.Framebuffer());
    glPixelStorei(GL_PACK_ALIGNMENT, 4);
    glReadPixels(0, 0, static_cast<GLsizei>(width), static_cast<GLsizei>(height), format.external, format.type, bytes);
    if (format.format != D3DFMT_X8R8G8B8) return;
    for (std::size_t pixel = 0; pixel < std::size_t{width} * height; ++pixel) bytes[4 * pixel + 3] = std::byte{255};
}

void WritePixels(const FormatInfo& format, GLuint texture, GLint level, UINT width, UINT height, const std::byte* bytes,
                 UINT top, UINT bottom) {
    const UINT step = format.blocks ? kBlock : 1;
    top = top / step * step;
    bottom = std::min((bottom + step - 1) / step * step, height);
    const UINT pitch = format.Pitch(width);
    const std::byte* first = bytes + std::size_t{pitch} * (top / step);
    const GLint y = static_cast<GLint>(top);
    const GLsizei columns = static_cast<GLsizei>(width), rows = static_cast<GLsizei>(bottom - top);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    if (format.blocks) {
        const GLsizei size = static_cast<GLsizei>(pitch * format.Rows(bottom - top));
        glCompressedTextureSubImage2D(texture, level, 0, y, columns, rows, format.internal, size, first);
    } else {
        glTextureSubImage2D(texture, level, 0, y, columns, rows, format.external, format.type, first);
    }
}

}   // namespace sparkrig
