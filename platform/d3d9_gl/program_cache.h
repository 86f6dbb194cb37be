// Linked programs by key. A program is made at its first draw and kept; the two shaders of it are shared with others.
#pragma once
#include <epoxy/gl.h>

#include <unordered_map>

#include "platform/d3d9_gl/shader_glsl.h"

namespace sparkrig {

class ProgramCache {
  public:
    /// 0 when the driver refuses a shader of the key. The functions are those that the key names, null for none.
    GLuint For(const ProgramKey& key, const ShaderCode* vertex, const ShaderCode* pixel);
    /// Drops every program of a vertex or pixel function that is gone.
    void Forget(DWORD shader);

    std::size_t Count() const { return programs_.size(); }

  private:
    GLuint VertexShader(const VertexKey& key, const ShaderCode* code);
    GLuint PixelShader(const PixelKey& key, const ShaderCode* code);

    std::unordered_map<ProgramKey, GLuint, KeyHash> programs_;
    std::unordered_map<VertexKey, GLuint, KeyHash> vertex_shaders_;
    std::unordered_map<PixelKey, GLuint, KeyHash> pixel_shaders_;
};

/// Compiles one stage; 0, with the driver's words in `errors`, when it does not.
GLuint CompileGlsl(GLenum stage, const std::string& glsl, std::string& errors);

}   // namespace sparkrig
