// Brings OpenGL into the state of the device before a draw, sending only what has changed since the last one.
#pragma once
#include <memory>
#include <vector>

#include "platform/d3d9/device_state.h"
#include "platform/d3d9_gl/dirty.h"
#include "platform/d3d9_gl/gl_state.h"
#include "platform/d3d9_gl/program_cache.h"
#include "platform/d3d9_gl/sampler_cache.h"
#include "platform/d3d9_gl/surface.h"
#include "platform/d3d9_gl/texture.h"
#include "platform/d3d9_gl/vertex_arrays.h"

namespace sparkrig {

/// A vertex or pixel function of the program.
struct ShaderFunction {
    ShaderCode code;
    DWORD number;   // unique in the process
};

/// What is drawn with, besides the states.
struct Bindings {
    std::array<Texture*, kSamplers> textures = {};   // borrowed
    DWORD texture_mask = 0, signed_mask = 0;         // bit n: sampler n has a texture; of a signed format
    const ShaderFunction* vertex_shader = nullptr;   // borrowed, null: the fixed pipeline
    const ShaderFunction* pixel_shader = nullptr;
    std::vector<std::byte> vertex_globals, pixel_globals;
    Surface* target = nullptr;   // borrowed
    GLuint depth = 0;            // renderbuffer, 0: none
    bool stencil = false;        // the depth buffer has one
    float depth_steps = 1.0f;    // that the depth buffer makes of its range
};

class DrawPipeline {
  public:
    explicit DrawPipeline(std::shared_ptr<GlContext> context);

    /// The groups that must be sent before the next draw.
    void Mark(unsigned groups) { dirty_ |= groups; }
    void MarkSampler(DWORD sampler) { dirty_samplers_ |= 1u << sampler; }
    void MarkAll();

    /// False when the driver refuses the programs of this draw. Needs the context to be current.
    bool Prepare(const DeviceState& state, const Bindings& bindings, bool points);
    /// The vertex array of the state's format, bound.
    VertexArray& BindArray(const VertexFormat& format);
    /// Makes a target ready to be cleared inside a rectangle.
    void PrepareClear(Surface& target, GLuint depth, bool stencil, const GlRect& rect);
    /// The same for a surface that need not be the target.
    void PrepareFill(Surface& surface, const GlRect& rect);
    void Drawn() { context_->Ring().Sent(); }
    /// OpenGL was used by others.
    void ForgetGl();

    std::size_t ProgramCount() const { return programs_.Count(); }

  private:
    struct UniformSlot {
        std::uint64_t serial = 0;   // of the ring when it was placed, 0: never
    };

    bool PrepareProgram(const DeviceState& state, const Bindings& bindings, bool points);
    void PrepareTarget(const DeviceState& state, const Bindings& bindings);
    void PrepareUniforms(const DeviceState& state, const Bindings& bindings);
    void PrepareTextures(const DeviceState& state, const Bindings& bindings);
    void ForgetDeletedNames();
    /// True when the block has to be placed again, because of its group or because the ring has moved on.
    bool Stale(int binding, unsigned group) const;
    void Place(int binding, const void* data, std::size_t bytes);

    std::shared_ptr<GlContext> context_;
    GlState gl_;
    ProgramCache programs_;
    SamplerCache samplers_;
    VertexArrayCache arrays_;
    unsigned dirty_ = kDirtyAll;
    DWORD dirty_samplers_ = ~0u;
    std::uint32_t deletions_ = 0;
    GLint uniform_alignment_ = 256;
    std::array<UniformSlot, kUniformBindings> slots_;
    ProgramKey key_ = {};
    bool points_ = false, transformed_ = false;
    GLuint program_ = 0;
    DWORD samplers_read_ = 0;
};

}   // namespace sparkrig
