#include "platform/d3d9_gl/gl_state.h"

#include <bit>

namespace sparkrig {

namespace {

struct BlendFactorRow {
    DWORD factor;
    GLenum gl;
    GLenum without_alpha;   // for a target whose alpha reads as 1
};
// clang-format off
constexpr BlendFactorRow kBlendFactors[] = {
    {D3DBLEND_ZERO,           GL_ZERO,                     GL_ZERO},
    {D3DBLEND_ONE,            GL_ONE,                      GL_ONE},
    {D3DBLEND_SRCCOLOR,       GL_SRC_COLOR,                GL_SRC_COLOR},
    {D3DBLEND_INVSRCCOLOR,    GL_ONE_MINUS_SRC_COLOR,      GL_ONE_MINUS_SRC_COLOR},
    {D3DBLEND_SRCALPHA,       GL_SRC_ALPHA,                GL_SRC_ALPHA},
    {D3DBLEND_INVSRCALPHA,    GL_ONE_MINUS_SRC_ALPHA,      GL_ONE_MINUS_SRC_ALPHA},
    {D3DBLEND_DESTALPHA,      GL_DST_ALPHA,                GL_ONE},
    {D3DBLEND_INVDESTALPHA,   GL_ONE_MINUS_DST_ALPHA,      GL_ZERO},
    {D3DBLEND_DESTCOLOR,      GL_DST_COLOR,                GL_DST_COLOR},
    {D3DBLEND_INVDESTCOLOR,   GL_ONE_MINUS_DST_COLOR,      GL_ONE_MINUS_DST_COLOR},
    {D3DBLEND_SRCALPHASAT,    GL_SRC_ALPHA_SATURATE,       GL_ZERO},
    {D3DBLEND_BLENDFACTOR,    GL_CONSTANT_COLOR,           GL_CONSTANT_COLOR},
    {D3DBLEND_INVBLENDFACTOR, GL_ONE_MINUS_CONSTANT_COLOR, GL_ONE_MINUS_CONSTANT_COLOR},
};
constexpr GLenum kBlendOperations[] = {GL_FUNC_ADD, GL_FUNC_ADD, GL_FUNC_SUBTRACT, GL_FUNC_REVERSE_SUBTRACT, GL_MIN,
                                       GL_MAX};
constexpr GLenum kCompare[] = {GL_ALWAYS, GL_NEVER, GL_LESS, GL_EQUAL, GL_LEQUAL, GL_GREATER, GL_NOTEQUAL, GL_GEQUAL,
                               GL_ALWAYS};
constexpr GLenum kCull[] = {0, 0, GL_FRONT, GL_BACK};   // by D3DCULL; clockwise is the front
constexpr GLenum kFill[] = {GL_FILL, GL_FILL, GL_LINE, GL_FILL};   // by D3DFILL; points are drawn as triangles
// clang-format on

template <std::size_t N>
GLenum At(const GLenum (&table)[N], DWORD index) {
    return table[index < N ? index : 0];
}

GLenum BlendFactor(DWORD factor, bool target_has_alpha) {
    for (const BlendFactorRow& row : kBlendFactors) {
        if (row.factor == factor) return target_has_alpha ? row.gl : row.without_alpha;
    }
    return GL_ONE;
}

void Enable(GLenum capability, bool on) {
    if (on) {
        glEnable(capability);
    } else {
        glDisable(capability);
    }
}

}   // namespace

void GlState::UseProgram(GLuint program) {
    if (program_ == program) return;
    glUseProgram(program);
    program_ = program;
}

void GlState::BindVertexArray(GLuint array) {
    if (array_ == array) return;
    glBindVertexArray(array);
    array_ = array;
}

void GlState::BindFramebuffer(GLuint framebuffer) {
    if (framebuffer_ == framebuffer) return;
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, framebuffer);
    framebuffer_ = framebuffer;
}

void GlState::BindTexture(GLuint unit, GLuint texture) {
    if (textures_[unit] == texture) return;
    glBindTextureUnit(unit, texture);
    textures_[unit] = texture;
}

void GlState::BindSampler(GLuint unit, GLuint sampler) {
    if (samplers_[unit] == sampler) return;
    glBindSampler(unit, sampler);
    samplers_[unit] = sampler;
}

void GlState::BindUniforms(GLuint binding, GLuint buffer, GLintptr offset, GLsizeiptr size) {
    const UniformRange range = {buffer, offset, size};
    if (uniforms_[binding] == range) return;
    glBindBufferRange(GL_UNIFORM_BUFFER, binding, buffer, offset, size);
    uniforms_[binding] = range;
}

void GlState::SetViewport(const GlRect& rect, float min_z, float max_z) {
    if (viewport_ != rect) {
        glViewport(rect.x, rect.y, rect.width, rect.height);
        viewport_ = rect;
    }
    if (min_z_ != min_z || max_z_ != max_z) {
        glDepthRangef(min_z, max_z);
        min_z_ = min_z;
        max_z_ = max_z;
    }
}

void GlState::SetScissor(const GlRect& rect) {
    if (scissor_ == rect) return;
    glScissor(rect.x, rect.y, rect.width, rect.height);
    scissor_ = rect;
}

void GlState::SetWriteMask(DWORD mask) {
    if (write_mask_ == mask) return;
    glColorMask((mask & 1) != 0, (mask & 2) != 0, (mask & 4) != 0, (mask & 8) != 0);
    write_mask_ = mask;
}

GlState::Blend GlState::BlendOf(const DeviceState& state, bool target_has_alpha) {
    Blend blend;
    blend.on = state.On(D3DRS_ALPHABLENDENABLE);
    if (!blend.on) return blend;
    const bool separate = state.On(D3DRS_SEPARATEALPHABLENDENABLE);
    const auto factor = [&](D3DRENDERSTATETYPE common, D3DRENDERSTATETYPE alone) {
        return BlendFactor(state.render[separate ? alone : common], target_has_alpha);
    };
    blend.factors = {factor(D3DRS_SRCBLEND, D3DRS_SRCBLEND), factor(D3DRS_DESTBLEND, D3DRS_DESTBLEND),
                     factor(D3DRS_SRCBLEND, D3DRS_SRCBLENDALPHA), factor(D3DRS_DESTBLEND, D3DRS_DESTBLENDALPHA)};
    blend.operations = {At(kBlendOperations, state.render[D3DRS_BLENDOP]),
                        At(kBlendOperations, state.render[separate ? D3DRS_BLENDOPALPHA : D3DRS_BLENDOP])};
    blend.constant = state.render[D3DRS_BLENDFACTOR];
    return blend;
}

void GlState::SetOutput(const DeviceState& state, bool target_has_alpha) {
    SetWriteMask(state.render[D3DRS_COLORWRITEENABLE] & 0xF);
    const Blend blend = BlendOf(state, target_has_alpha);
    if (output_known_ && blend == blend_) return;
    if (!output_known_ || blend.on != blend_.on) Enable(GL_BLEND, blend.on);
    if (blend.on) {
        glBlendFuncSeparate(blend.factors[0], blend.factors[1], blend.factors[2], blend.factors[3]);
        glBlendEquationSeparate(blend.operations[0], blend.operations[1]);
        const Rgba constant = ToRgba(blend.constant);
        glBlendColor(constant.r, constant.g, constant.b, constant.a);
    }
    blend_ = blend;
    output_known_ = true;
}

void GlState::OpenMasks() {
    SetWriteMask(0xF);
    if (depth_known_ && depth_.write) return;
    glDepthMask(GL_TRUE);
    depth_known_ = false;
}

void GlState::SetDepth(const DeviceState& state, bool target_has_depth) {
    Depth depth;
    depth.test = target_has_depth && state.On(D3DRS_ZENABLE);
    depth.write = depth.test && state.On(D3DRS_ZWRITEENABLE);
    depth.function = At(kCompare, state.render[D3DRS_ZFUNC]);
    if (depth_known_ && depth == depth_) return;
    Enable(GL_DEPTH_TEST, depth.test);
    glDepthMask(depth.write ? GL_TRUE : GL_FALSE);
    glDepthFunc(depth.function);
    depth_ = depth;
    depth_known_ = true;
}

void GlState::SetRaster(const DeviceState& state, bool points, float depth_steps) {
    Raster raster;
    raster.cull = points ? 0 : At(kCull, state.render[D3DRS_CULLMODE]);
    raster.fill = points ? GL_FILL : At(kFill, state.render[D3DRS_FILLMODE]);
    raster.slope_bias = state.Float(D3DRS_SLOPESCALEDEPTHBIAS);
    raster.bias = state.Float(D3DRS_DEPTHBIAS) * depth_steps;
    if (raster_known_ && raster == raster_) return;
    Enable(GL_CULL_FACE, raster.cull != 0);
    if (raster.cull != 0) glCullFace(raster.cull);
    glPolygonMode(GL_FRONT_AND_BACK, raster.fill);
    const bool biased = raster.slope_bias != 0.0f || raster.bias != 0.0f;
    Enable(GL_POLYGON_OFFSET_FILL, biased);
    if (biased) glPolygonOffset(raster.slope_bias, raster.bias);
    raster_ = raster;
    raster_known_ = true;
}

}   // namespace sparkrig
