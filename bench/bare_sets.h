// What OpenGL holds after a draw, and the calls that bring another draw there: what draws are compared with.
#pragma once
#include <epoxy/gl.h>

namespace sparkrig {

struct BareSet {
    GLint program, texture, uniform_buffer, source, destination, source_alpha, destination_alpha;
    GLint64 uniform_offset, uniform_size;
};

/// After a draw with the first texture stage in use.
inline BareSet ObserveSet() {
    constexpr GLuint kStatesBinding = 2;
    BareSet bare = {};
    glGetIntegerv(GL_CURRENT_PROGRAM, &bare.program);
    glActiveTexture(GL_TEXTURE0);
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &bare.texture);
    glGetIntegerv(GL_BLEND_SRC_RGB, &bare.source);
    glGetIntegerv(GL_BLEND_DST_RGB, &bare.destination);
    glGetIntegerv(GL_BLEND_SRC_ALPHA, &bare.source_alpha);
    glGetIntegerv(GL_BLEND_DST_ALPHA, &bare.destination_alpha);
    glGetIntegeri_v(GL_UNIFORM_BUFFER_BINDING, kStatesBinding, &bare.uniform_buffer);
    glGetInteger64i_v(GL_UNIFORM_BUFFER_START, kStatesBinding, &bare.uniform_offset);
    glGetInteger64i_v(GL_UNIFORM_BUFFER_SIZE, kStatesBinding, &bare.uniform_size);
    return bare;
}

inline void UseBareSet(const BareSet& set) {
    glUseProgram(static_cast<GLuint>(set.program));
    glBindTextureUnit(0, static_cast<GLuint>(set.texture));
    glBlendFuncSeparate(static_cast<GLenum>(set.source), static_cast<GLenum>(set.destination),
                        static_cast<GLenum>(set.source_alpha), static_cast<GLenum>(set.destination_alpha));
    glBindBufferRange(GL_UNIFORM_BUFFER, 2, static_cast<GLuint>(set.uniform_buffer), set.uniform_offset,
                      set.uniform_size);
}

}   // namespace sparkrig
