#include "platform/d3d9_gl/draw_pipeline.h"

#include <cstring>
#include <utility>

namespace sparkrig {

namespace {

BoundShader AsBound(const ShaderFunction* shader) {
    if (shader == nullptr) return {};
    return {shader->number, shader->code.varyings, shader->code.writes_point_size};
}

const ShaderCode* CodeOf(const ShaderFunction* shader) { return shader != nullptr ? &shader->code : nullptr; }

GlRect ViewportRect(const D3DVIEWPORT9& viewport) {
    return {static_cast<GLint>(viewport.X), static_cast<GLint>(viewport.Y), static_cast<GLsizei>(viewport.Width),
            static_cast<GLsizei>(viewport.Height)};
}

}   // namespace

DrawPipeline::DrawPipeline(std::shared_ptr<GlContext> context) : context_(std::move(context)) {
    glGetIntegerv(GL_UNIFORM_BUFFER_OFFSET_ALIGNMENT, &uniform_alignment_);
    // What a vertex function reads where the format has nothing; all other inputs read (0, 0, 0, 1).
    glVertexAttrib4f(kInputColor0, 1.0f, 1.0f, 1.0f, 1.0f);
}

void DrawPipeline::MarkAll() {
    dirty_ = kDirtyAll;
    dirty_samplers_ = ~0u;
}

void DrawPipeline::ForgetGl() {
    gl_.Forget();
    arrays_.Forget();
    MarkAll();
    for (UniformSlot& slot : slots_) slot.serial = 0;
}

void DrawPipeline::ForgetDeletedNames() {
    if (deletions_ == context_->deletions) return;
    deletions_ = context_->deletions;
    for (const DWORD shader : context_->retired_shaders) programs_.Forget(shader);
    context_->retired_shaders.clear();
    ForgetGl();
}

VertexArray& DrawPipeline::BindArray(const VertexFormat& format) {
    VertexArray& array = arrays_.For(format);
    gl_.BindVertexArray(array.Name());
    return array;
}

bool DrawPipeline::Prepare(const DeviceState& state, const Bindings& bindings, bool points) {
    ForgetDeletedNames();
    const bool transformed = bindings.vertex_shader == nullptr && state.format.Transformed();
    if (points != points_) Mark(kDirtyProgram | kDirtyRaster);
    if (transformed != transformed_) Mark(kDirtyTarget);
    points_ = points;
    transformed_ = transformed;

    if ((dirty_ & kDirtyProgram) != 0 && !PrepareProgram(state, bindings, points)) return false;
    if (program_ == 0) return false;
    if ((dirty_ & kDirtyTarget) != 0) PrepareTarget(state, bindings);
    if ((dirty_ & (kDirtyOutput | kDirtyTarget)) != 0) gl_.SetOutput(state, bindings.target->Format().alpha);
    if ((dirty_ & (kDirtyDepth | kDirtyTarget)) != 0) gl_.SetDepth(state, bindings.depth != 0);
    if ((dirty_ & kDirtyRaster) != 0) gl_.SetRaster(state, points, bindings.depth_steps);
    dirty_ &= ~(kDirtyProgram | kDirtyOutput | kDirtyDepth | kDirtyRaster);
    PrepareUniforms(state, bindings);
    PrepareTextures(state, bindings);
    dirty_ &= ~kDirtyTarget;
    gl_.UseProgram(program_);
    return true;
}

bool DrawPipeline::PrepareProgram(const DeviceState& state, const Bindings& bindings, bool points) {
    const ProgramKey key = CollectKey({state, bindings.texture_mask, bindings.signed_mask,
                                       AsBound(bindings.vertex_shader), AsBound(bindings.pixel_shader), points});
    if (program_ == 0 || key != key_) {
        key_ = key;
        program_ = programs_.For(key, CodeOf(bindings.vertex_shader), CodeOf(bindings.pixel_shader));
    }
    samplers_read_ = bindings.pixel_shader != nullptr ? bindings.texture_mask : SamplersRead(key.pixel);
    return program_ != 0;
}

// Transformed vertices are in pixels of the whole target and still end at the viewport's edge.
void DrawPipeline::PrepareTarget(const DeviceState& state, const Bindings& bindings) {
    gl_.BindFramebuffer(bindings.target->Framebuffer(bindings.depth, bindings.stencil));
    const GlRect viewport = ViewportRect(state.viewport);
    const D3DSURFACE_DESC& desc = bindings.target->Desc();
    if (transformed_) {
        gl_.SetViewport({0, 0, static_cast<GLsizei>(desc.Width), static_cast<GLsizei>(desc.Height)}, 0.0f, 1.0f);
    } else {
        gl_.SetViewport(viewport, state.viewport.MinZ, state.viewport.MaxZ);
    }
    gl_.SetScissor(viewport);
}

bool DrawPipeline::Stale(int binding, unsigned group) const {
    return (dirty_ & group) != 0 || slots_[static_cast<std::size_t>(binding)].serial != context_->Ring().Serial();
}

void DrawPipeline::Place(int binding, const void* data, std::size_t bytes) {
    StreamRing& ring = context_->Ring();
    const StreamRing::Place place = ring.Allocate(bytes, static_cast<std::size_t>(uniform_alignment_));
    std::memcpy(place.memory, data, bytes);
    gl_.BindUniforms(static_cast<GLuint>(binding), ring.Buffer(), static_cast<GLintptr>(place.offset),
                     static_cast<GLsizeiptr>(bytes));
    slots_[static_cast<std::size_t>(binding)].serial = ring.Serial();
}

void DrawPipeline::PrepareUniforms(const DeviceState& state, const Bindings& bindings) {
    if (Stale(kStatesBinding, kDirtyStates | kDirtyTarget)) {
        StatesBlock block;
        FillStates(state, bindings.target->Desc().Width, bindings.target->Desc().Height, block);
        Place(kStatesBinding, &block, sizeof block);
        dirty_ &= ~kDirtyStates;
    }
    if (bindings.vertex_shader == nullptr) {
        if (Stale(kTransformsBinding, kDirtyTransforms)) {
            TransformsBlock block;
            FillTransforms(state, block);
            Place(kTransformsBinding, &block, sizeof block);
            dirty_ &= ~kDirtyTransforms;
        }
        if (Stale(kLightingBinding, kDirtyLighting)) {
            LightingBlock block;
            FillLighting(state, block);
            Place(kLightingBinding, &block, sizeof block);
            dirty_ &= ~kDirtyLighting;
        }
        if (key_.vertex.matrices > 0 && Stale(kPaletteBinding, kDirtyPalette)) {
            Place(kPaletteBinding, state.world.data(), sizeof state.world);
            dirty_ &= ~kDirtyPalette;
        }
    } else if (!bindings.vertex_globals.empty() && Stale(kVertexGlobalsBinding, kDirtyVertexGlobals)) {
        Place(kVertexGlobalsBinding, bindings.vertex_globals.data(), bindings.vertex_globals.size());
        dirty_ &= ~kDirtyVertexGlobals;
    }
    if (bindings.pixel_shader != nullptr && !bindings.pixel_globals.empty() &&
        Stale(kPixelGlobalsBinding, kDirtyPixelGlobals)) {
        Place(kPixelGlobalsBinding, bindings.pixel_globals.data(), bindings.pixel_globals.size());
        dirty_ &= ~kDirtyPixelGlobals;
    }
}

void DrawPipeline::PrepareTextures(const DeviceState& state, const Bindings& bindings) {
    if ((dirty_ & kDirtyTextures) != 0 && bindings.pixel_shader != nullptr) {
        for (DWORD unit = 0; unit < kSamplers; ++unit) {   // a sampler without a texture reads black
            if ((bindings.texture_mask >> unit & 1) == 0) gl_.BindTexture(unit, 0);
        }
    }
    dirty_ &= ~kDirtyTextures;
    for (DWORD unit = 0, left = samplers_read_; left != 0; ++unit, left >>= 1) {
        if ((left & 1) == 0) continue;
        Texture* texture = bindings.textures[unit];
        gl_.BindTexture(unit, texture != nullptr ? texture->Name() : 0);
        if (texture != nullptr) texture->SampleFrom(state.samplers[unit][D3DSAMP_MAXMIPLEVEL]);
        if ((dirty_samplers_ >> unit & 1) == 0) continue;
        gl_.BindSampler(unit, samplers_.For(state.samplers[unit], context_->Limits().max_anisotropy));
        dirty_samplers_ &= ~(1u << unit);
    }
}

void DrawPipeline::PrepareClear(Surface& target, GLuint depth, bool stencil, const GlRect& rect) {
    ForgetDeletedNames();
    target.Framebuffer(depth, stencil);
    PrepareFill(target, rect);
}

void DrawPipeline::PrepareFill(Surface& surface, const GlRect& rect) {
    ForgetDeletedNames();
    gl_.BindFramebuffer(surface.Framebuffer());
    gl_.SetScissor(rect);
    gl_.OpenMasks();
    Mark(kDirtyTarget | kDirtyOutput | kDirtyDepth);
}

}   // namespace sparkrig
