#include "platform/d3d9_gl/vertex_arrays.h"

namespace sparkrig {

namespace {

void SetFormat(GLuint array, const VertexElement& element) {
    const GLuint input = static_cast<GLuint>(element.input);
    switch (element.kind) {
        case ElementKind::Floats:
            glVertexArrayAttribFormat(array, input, element.components, GL_FLOAT, GL_FALSE, element.offset);
            break;
        case ElementKind::Colour:
            glVertexArrayAttribFormat(array, input, GL_BGRA, GL_UNSIGNED_BYTE, GL_TRUE, element.offset);
            break;
        case ElementKind::Bytes:
            glVertexArrayAttribFormat(array, input, 4, GL_UNSIGNED_BYTE, GL_FALSE, element.offset);
            break;
    }
    glVertexArrayAttribBinding(array, input, 0);
    glEnableVertexArrayAttrib(array, input);
}

}   // namespace

VertexArray::VertexArray(const VertexFormat& format) {
    glCreateVertexArrays(1, &name_);
    for (int i = 0; i < format.element_count; ++i) SetFormat(name_, format.elements[static_cast<std::size_t>(i)]);
}

void VertexArray::SetVertices(GLuint buffer, std::size_t offset, DWORD stride) {
    if (vertices_ == buffer && offset_ == offset && stride_ == stride) return;
    glVertexArrayVertexBuffer(name_, 0, buffer, static_cast<GLintptr>(offset), static_cast<GLsizei>(stride));
    vertices_ = buffer;
    offset_ = offset;
    stride_ = stride;
}

void VertexArray::SetIndices(GLuint buffer) {
    if (indices_ == buffer) return;
    glVertexArrayElementBuffer(name_, buffer);
    indices_ = buffer;
}

}   // namespace sparkrig
