#include "platform/d3d9_gl/gl_context.h"

#include <SDL.h>
#include <epoxy/gl.h>
#include <malloc.h>

#include <optional>

#include "platform/d3d9/d3d9.h"

namespace sparkrig {

namespace {

constexpr int kNeededVersion = 45;

std::string& Reason() {
    static std::string reason;
    return reason;
}

void SetReason(const std::string& found) { Reason() = "OpenGL 4.5 is needed, but " + found + "."; }

GlLimits ReadLimits() {
    GlLimits limits;
    limits.renderer = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &limits.max_texture_size);
    glGetIntegerv(GL_MAX_SAMPLES, &limits.max_samples);
    limits.compressed_textures = epoxy_has_gl_extension("GL_EXT_texture_compression_s3tc");
    if (epoxy_has_gl_extension("GL_EXT_texture_filter_anisotropic")) {
        glGetFloatv(GL_MAX_TEXTURE_MAX_ANISOTROPY_EXT, &limits.max_anisotropy);
    }
    return limits;
}

// Software OpenGL takes the memory of a scene from the top of the heap and frees it when it has drawn. The C library
// would give it back to the system each time, and each of its pages would be fetched and cleared again for the next
// scene.
void KeepFreedMemory(const std::string& renderer) {
    constexpr int kKeptBytes = 64 << 20;
    if (renderer.find("llvmpipe") != std::string::npos) mallopt(M_TRIM_THRESHOLD, kKeptBytes);
}

// A current context of the needed version, or null with the reason set.
void* CreateCurrentContext(SDL_Window* window) {
    RequestOpenGl45();
    void* context = SDL_GL_CreateContext(window);
    if (context == nullptr) {
        SetReason(std::string("no such context can be made (") + SDL_GetError() + ")");
        return nullptr;
    }
    if (epoxy_gl_version() < kNeededVersion) {
        SetReason(std::string("the driver gives ") + reinterpret_cast<const char*>(glGetString(GL_VERSION)));
        SDL_GL_DeleteContext(context);
        return nullptr;
    }
    Reason().clear();
    return context;
}

}   // namespace

void RequestOpenGl45() {
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_MAJOR_VERSION, 4);
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_MINOR_VERSION, 5);
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_PROFILE_MASK, SDL_GL_CONTEXT_PROFILE_CORE);
}

std::shared_ptr<GlContext> GlContext::Create(SDL_Window* window) {
    void* context = CreateCurrentContext(window);
    if (context == nullptr) return nullptr;
    std::shared_ptr<GlContext> made(new GlContext(window, context));
    if (made->Ring().Valid()) return made;
    SetReason("its driver has no memory left");
    return nullptr;
}

GlContext::GlContext(SDL_Window* window, void* context)
    : window_(window),
      window_id_(SDL_GetWindowID(window)),
      context_(context),
      limits_(ReadLimits()),
      ring_(std::make_unique<StreamRing>()) {
    KeepFreedMemory(limits_.renderer);
    glClipControl(GL_UPPER_LEFT, GL_ZERO_TO_ONE);
    glProvokingVertex(GL_FIRST_VERTEX_CONVENTION);
    glFrontFace(GL_CW);
    glEnable(GL_SCISSOR_TEST);
}

GlContext::~GlContext() { SDL_GL_DeleteContext(context_); }

bool GlContext::Activate() {
    if (SDL_GL_GetCurrentContext() == context_) return true;
    if (SDL_GetWindowFromID(window_id_) != window_) return false;
    return SDL_GL_MakeCurrent(window_, context_) == 0;
}

const GlLimits* ProbeLimits() {
    static std::optional<GlLimits> limits;
    if (limits) return &*limits;
    SDL_Window* const shown_window = SDL_GL_GetCurrentWindow();
    void* const shown_context = SDL_GL_GetCurrentContext();
    RequestOpenGl45();
    SDL_Window* window = SDL_CreateWindow("", 0, 0, 16, 16, SDL_WINDOW_OPENGL | SDL_WINDOW_HIDDEN);
    if (window == nullptr) {
        SetReason(std::string("no window for it can be made (") + SDL_GetError() + ")");
        return nullptr;
    }
    if (void* context = CreateCurrentContext(window)) {
        limits = ReadLimits();
        SDL_GL_DeleteContext(context);
    }
    SDL_DestroyWindow(window);
    if (shown_context != nullptr) SDL_GL_MakeCurrent(shown_window, shown_context);
    return limits ? &*limits : nullptr;
}

const char* Direct3DUnavailableReason() { return Reason().c_str(); }

}   // namespace sparkrig
