// The OpenGL context of one device, shared by everything that owns OpenGL objects in it.
#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/d3d9/device_rules.h"
#include "platform/d3d9_gl/stream_ring.h"

struct SDL_Window;

namespace sparkrig {

/// What the OpenGL below can do.
struct GlLimits : DeviceLimits {
    std::string renderer;
    float max_anisotropy = 1.0f;   // 1: none
};

/// Sets the attributes of an OpenGL 4.5 core context for windows and contexts that SDL makes from now on.
void RequestOpenGl45();

class GlContext {
  public:
    /// Null when there is no OpenGL 4.5; Direct3DUnavailableReason() then says why.
    static std::shared_ptr<GlContext> Create(SDL_Window* window);
    ~GlContext();
    GlContext(const GlContext&) = delete;
    GlContext& operator=(const GlContext&) = delete;

    /// Makes the context current. False once its window is gone: OpenGL must not be called any more then, and nothing
    /// has to be deleted, because the objects go with the context.
    bool Activate();

    const GlLimits& Limits() const { return limits_; }
    StreamRing& Ring() { return *ring_; }
    SDL_Window* Window() const { return window_; }

    /// Default-pool resources that exist, without those of the swap chain.
    int default_pool_objects = 0;
    /// Frames presented.
    std::uint32_t frame = 0;
    /// OpenGL objects deleted. OpenGL gives their names to new ones, so whoever remembers names forgets them when this
    /// has changed.
    std::uint32_t deletions = 0;
    /// Numbers of vertex and pixel functions that are gone and whose programs are not needed any more.
    std::vector<std::uint32_t> retired_shaders;

  private:
    GlContext(SDL_Window* window, void* context);

    SDL_Window* window_;   // borrowed
    std::uint32_t window_id_;
    void* context_;
    GlLimits limits_;
    std::unique_ptr<StreamRing> ring_;
};

/// The limits of a context made for a moment; null when there is no OpenGL 4.5. Asked once, then remembered.
const GlLimits* ProbeLimits();

}   // namespace sparkrig
