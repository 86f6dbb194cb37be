#include "platform/d3d9_gl/texture.h"

#include <algorithm>
#include <utility>

namespace sparkrig {

// ---- One level

TextureLevel::TextureLevel(Texture& texture, std::shared_ptr<GlContext> context, GLint level,
                           const D3DSURFACE_DESC& desc, bool lockable)
    : texture_(texture), level_(level), lockable_(lockable) {
    Describe(std::move(context), desc);
    if (lockable) AllocateBytes();
}

ULONG TextureLevel::AddRef() { return texture_.AddRef(); }
ULONG TextureLevel::Release() { return texture_.Release(); }

Surface::Image TextureLevel::GlImage() { return {texture_.Name(), level_, 0}; }

void TextureLevel::DrawnInto() {
    if (level_ == 0) texture_.MarkDrawnInto();
}

void TextureLevel::AfterWrite(UINT top, UINT bottom) {
    const bool clean = dirty_top_ == dirty_bottom_;
    dirty_top_ = clean ? top : std::min(dirty_top_, top);
    dirty_bottom_ = clean ? bottom : std::max(dirty_bottom_, bottom);
    texture_.MarkStale();
}

void TextureLevel::Upload(GLuint texture) {
    if (dirty_top_ == dirty_bottom_) return;
    WritePixels(Format(), texture, level_, Desc().Width, Desc().Height, Bytes(), dirty_top_, dirty_bottom_);
    dirty_top_ = dirty_bottom_ = 0;
}

void TextureLevel::Take(const std::byte* bytes) {
    if (Bytes() != nullptr) {
        std::copy_n(bytes, Format().Bytes(Desc().Width, Desc().Height), Bytes());
        AfterWrite(0, Desc().Height);
        return;
    }
    WritePixels(Format(), texture_.Name(), level_, Desc().Width, Desc().Height, bytes, 0, Desc().Height);
    DrawnInto();
}

// ---- The whole texture

namespace {

// An OpenGL texture of the shape; 0 when OpenGL refuses.
GLuint CreateName(const TextureRequest& shape) {
    const GlFormat& format = FindGlFormat(shape.format);
    GLuint name = 0;
    glCreateTextures(GL_TEXTURE_2D, 1, &name);
    glTextureStorage2D(name, static_cast<GLsizei>(shape.levels), format.internal, static_cast<GLsizei>(shape.width),
                       static_cast<GLsizei>(shape.height));
    glTextureParameteriv(name, GL_TEXTURE_SWIZZLE_RGBA, format.swizzle);
    if (glGetError() != GL_OUT_OF_MEMORY) return name;
    glDeleteTextures(1, &name);
    return 0;
}

}   // namespace

Texture* Texture::Create(std::shared_ptr<GlContext> context, const TextureRequest& shape) {
    GLuint name = 0;
    if (shape.pool == D3DPOOL_DEFAULT || shape.pool == D3DPOOL_MANAGED) {
        if (!context->Activate() || (name = CreateName(shape)) == 0) return nullptr;
    }
    return new Texture(std::move(context), shape, name);
}

Texture::Texture(std::shared_ptr<GlContext> context, const TextureRequest& shape, GLuint name)
    : context_(std::move(context)), shape_(shape), name_(name) {
    const bool lockable = LevelsLockable(shape.usage, shape.pool);
    for (UINT level = 0; level < GetLevelCount(); ++level) {
        const UINT width = std::max(shape.width >> level, 1u), height = std::max(shape.height >> level, 1u);
        const D3DSURFACE_DESC desc = {
            shape.format, D3DRTYPE_SURFACE, shape.usage, shape.pool, D3DMULTISAMPLE_NONE, 0, width, height};
        levels_.push_back(std::make_unique<TextureLevel>(*this, context_, static_cast<GLint>(level), desc, lockable));
    }
    if (shape.pool == D3DPOOL_DEFAULT) ++context_->default_pool_objects;
}

Texture::~Texture() {
    if (shape_.pool == D3DPOOL_DEFAULT) --context_->default_pool_objects;
    if (name_ == 0 || !context_->Activate()) return;
    glDeleteTextures(1, &name_);
    ++context_->deletions;
}

void Texture::Update() {
    for (const auto& level : levels_) level->Upload(name_);
    if (GeneratesLevels()) {
        SetBaseLevel(0);   // which the others are made from
        glGenerateTextureMipmap(name_);
    }
    stale_ = false;
}

void Texture::SetBaseLevel(DWORD level) {
    glTextureParameteri(name_, GL_TEXTURE_BASE_LEVEL, static_cast<GLint>(std::min<DWORD>(level, shape_.levels - 1)));
    base_level_ = level;
}

HRESULT Texture::GetLevelDesc(UINT level, D3DSURFACE_DESC* desc) {
    return level < levels_.size() ? levels_[level]->GetDesc(desc) : D3DERR_INVALIDCALL;
}

HRESULT Texture::GetSurfaceLevel(UINT level, IDirect3DSurface9** surface) {
    if (level >= levels_.size() || surface == nullptr) return D3DERR_INVALIDCALL;
    AddRef();
    *surface = levels_[level].get();
    return D3D_OK;
}

HRESULT Texture::LockRect(UINT level, D3DLOCKED_RECT* locked, const RECT* rect, DWORD flags) {
    return level < levels_.size() ? levels_[level]->LockRect(locked, rect, flags) : D3DERR_INVALIDCALL;
}

HRESULT Texture::UnlockRect(UINT level) {
    return level < levels_.size() ? levels_[level]->UnlockRect() : D3DERR_INVALIDCALL;
}

}   // namespace sparkrig
