// What OpenGL holds after a draw, and the calls that bring another draw there: what draws are compared with.
#pragma once
#include <benchmark/benchmark.h>
#include <epoxy/gl.h>

#include <vector>

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

/// Times `count` draws and their end; `draw` gets the number of each.
template <class Draw>
void TimeDraws(benchmark::State& state, int count, Draw draw) {
    for (auto _ : state) {
        for (int i = 0; i < count; ++i) draw(i);
        glFinish();
    }
}

/// The same of bare draws in sets of states by turns. It ends with the last set, which was observed last.
inline void TimeBareSets(benchmark::State& state, const std::vector<BareSet>& sets, int count, GLsizei vertices) {
    const int size = static_cast<int>(sets.size()), shift = size - count % size;
    TimeDraws(state, count, [&](int i) {
        UseBareSet(sets[static_cast<std::size_t>((i + shift) % size)]);
        glDrawArrays(GL_TRIANGLES, 0, vertices);
    });
}

}   // namespace sparkrig
