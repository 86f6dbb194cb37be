// One OpenGL vertex array object for each vertex format, with the buffers it was last given.
#pragma once
#include <epoxy/gl.h>

#include <unordered_map>

#include "platform/d3d9/vertex_format.h"

namespace sparkrig {

class VertexArray {
  public:
    explicit VertexArray(const VertexFormat& format);

    /// The buffer that vertices come from, from a byte offset on.
    void SetVertices(GLuint buffer, std::size_t offset, DWORD stride);
    void SetIndices(GLuint buffer);
    GLuint Name() const { return name_; }
    void Forget() { vertices_ = indices_ = 0; }

  private:
    GLuint name_ = 0;
    GLuint vertices_ = 0, indices_ = 0;
    std::size_t offset_ = 0;
    DWORD stride_ = 0;
};

class VertexArrayCache {
  public:
    VertexArray& For(const VertexFormat& format) { return arrays_.try_emplace(format.fvf, format).first->second; }
    /// Buffer names may have got another meaning.
    void Forget() {
        for (auto& [fvf, array] : arrays_) array.Forget();
    }

  private:
    std::unordered_map<DWORD, VertexArray> arrays_;   // by FVF code
};

}   // namespace sparkrig
