#include "platform/d3d9_gl/sampler_cache.h"

#include <algorithm>
#include <bit>

#include "platform/d3d9_gl/formats.h"

namespace sparkrig {

namespace {

constexpr GLint kAddress[] = {
    0, GL_REPEAT, GL_MIRRORED_REPEAT, GL_CLAMP_TO_EDGE, GL_CLAMP_TO_BORDER, GL_MIRROR_CLAMP_TO_EDGE};

// Rows: point, linear. Columns: mipmaps none, point, linear.
constexpr GLint kMinification[2][3] = {{GL_NEAREST, GL_NEAREST_MIPMAP_NEAREST, GL_NEAREST_MIPMAP_LINEAR},
                                       {GL_LINEAR, GL_LINEAR_MIPMAP_NEAREST, GL_LINEAR_MIPMAP_LINEAR}};

bool IsLinear(DWORD filter) { return filter >= D3DTEXF_LINEAR; }

}   // namespace

GLuint SamplerCache::For(const States& states, float max_anisotropy) {
    const auto [place, added] = samplers_.try_emplace(states, 0);
    if (!added) return place->second;
    GLuint& sampler = place->second;
    glCreateSamplers(1, &sampler);
    glSamplerParameteri(sampler, GL_TEXTURE_WRAP_S, kAddress[states[D3DSAMP_ADDRESSU]]);
    glSamplerParameteri(sampler, GL_TEXTURE_WRAP_T, kAddress[states[D3DSAMP_ADDRESSV]]);
    const Rgba border = ToRgba(states[D3DSAMP_BORDERCOLOR]);
    glSamplerParameterfv(sampler, GL_TEXTURE_BORDER_COLOR, &border.r);
    glSamplerParameteri(sampler, GL_TEXTURE_MAG_FILTER, IsLinear(states[D3DSAMP_MAGFILTER]) ? GL_LINEAR : GL_NEAREST);
    const GLint minification = kMinification[IsLinear(states[D3DSAMP_MINFILTER])][states[D3DSAMP_MIPFILTER]];
    glSamplerParameteri(sampler, GL_TEXTURE_MIN_FILTER, minification);
    glSamplerParameterf(sampler, GL_TEXTURE_LOD_BIAS, std::bit_cast<float>(states[D3DSAMP_MIPMAPLODBIAS]));
    const float anisotropy = std::min(static_cast<float>(states[D3DSAMP_MAXANISOTROPY]), max_anisotropy);
    if (states[D3DSAMP_MINFILTER] == D3DTEXF_ANISOTROPIC && anisotropy > 1.0f) {
        glSamplerParameterf(sampler, GL_TEXTURE_MAX_ANISOTROPY_EXT, anisotropy);
    }
    return sampler;
}

}   // namespace sparkrig
