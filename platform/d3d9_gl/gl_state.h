// What OpenGL holds at the moment. A call that would change nothing is not made.
#pragma once
#include <epoxy/gl.h>

#include <array>

#include "platform/d3d9/device_state.h"
#include "platform/d3d9_gl/uniform_blocks.h"

namespace sparkrig {

struct GlRect {
    GLint x, y;
    GLsizei width, height;
    bool operator==(const GlRect&) const = default;
};

class GlState {
  public:
    /// Somebody else has used OpenGL, or names have got another meaning: nothing is known any more.
    void Forget() { *this = GlState(); }

    void UseProgram(GLuint program);
    void BindVertexArray(GLuint array);
    void BindFramebuffer(GLuint framebuffer);
    void BindTexture(GLuint unit, GLuint texture);
    void BindSampler(GLuint unit, GLuint sampler);
    void BindUniforms(GLuint binding, GLuint buffer, GLintptr offset, GLsizeiptr size);

    void SetViewport(const GlRect& rect, float min_z, float max_z);
    void SetScissor(const GlRect& rect);
    /// Blending and write mask of a target with or without an alpha channel.
    void SetOutput(const DeviceState& state, bool target_has_alpha);
    /// Opens what would keep a clear from reaching the target.
    void OpenMasks();
    void SetDepth(const DeviceState& state, bool target_has_depth);
    /// Triangles that stand for points are neither culled nor drawn as lines. depth_steps: of the depth buffer's range,
    /// in which OpenGL counts a bias.
    void SetRaster(const DeviceState& state, bool points, float depth_steps);

  private:
    struct Blend {
        bool on = false;
        std::array<GLenum, 4> factors = {};   // source, destination, of colour and of alpha
        std::array<GLenum, 2> operations = {};
        D3DCOLOR constant = 0;
        bool operator==(const Blend&) const = default;
    };
    struct Depth {
        bool test = false, write = false;
        GLenum function = 0;
        bool operator==(const Depth&) const = default;
    };
    struct Raster {
        GLenum cull = 0, fill = 0;   // cull 0: none
        float slope_bias = 0.0f, bias = 0.0f;
        bool operator==(const Raster&) const = default;
    };
    struct UniformRange {
        GLuint buffer = 0;
        GLintptr offset = 0;
        GLsizeiptr size = 0;
        bool operator==(const UniformRange&) const = default;
    };

    void SetWriteMask(DWORD mask);
    static Blend BlendOf(const DeviceState& state, bool target_has_alpha);

    static constexpr GLuint kUnknown = ~0u;
    GLuint program_ = kUnknown, array_ = kUnknown, framebuffer_ = kUnknown;
    std::array<GLuint, kSamplers> textures_ = Unknown(), samplers_ = Unknown();
    std::array<UniformRange, kUniformBindings> uniforms_ = {};
    GlRect viewport_ = {-1, -1, -1, -1}, scissor_ = {-1, -1, -1, -1};
    float min_z_ = -1.0f, max_z_ = -1.0f;
    bool output_known_ = false, depth_known_ = false, raster_known_ = false;
    Blend blend_;
    Depth depth_;
    Raster raster_;
    DWORD write_mask_ = kUnknown;

    static std::array<GLuint, kSamplers> Unknown() {
        std::array<GLuint, kSamplers> names;
        names.fill(kUnknown);
        return names;
    }
};

}   // namespace sparkrig
