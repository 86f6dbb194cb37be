#include "platform/d3d9_gl/program_cache.h"

namespace sparkrig {

GLuint CompileGlsl(GLenum stage, const std::string& glsl, std::string& errors) {
    const GLuint shader = glCreateShader(stage);
    const char* text = glsl.c_str();
    glShaderSource(shader, 1, &text, nullptr);
    glCompileShader(shader);
    GLint compiled = 0;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &compiled);
    if (compiled != 0) return shader;
    char log[1024] = "";
    glGetShaderInfoLog(shader, sizeof log, nullptr, log);
    errors = log;
    glDeleteShader(shader);
    return 0;
}

GLuint ProgramCache::VertexShader(const VertexKey& key, const ShaderCode* code) {
    const auto [place, added] = vertex_shaders_.try_emplace(key, 0);
    std::string errors;
    if (added) place->second = CompileGlsl(GL_VERTEX_SHADER, VertexGlsl(key, code), errors);
    return place->second;
}

GLuint ProgramCache::PixelShader(const PixelKey& key, const ShaderCode* code) {
    const auto [place, added] = pixel_shaders_.try_emplace(key, 0);
    std::string errors;
    if (added) place->second = CompileGlsl(GL_FRAGMENT_SHADER, PixelGlsl(key, code), errors);
    return place->second;
}

GLuint ProgramCache::For(const ProgramKey& key, const ShaderCode* vertex, const ShaderCode* pixel) {
    const auto [place, added] = programs_.try_emplace(key, 0);
    if (!added) return place->second;
    const GLuint vertex_shader = VertexShader(key.vertex, vertex), pixel_shader = PixelShader(key.pixel, pixel);
    if (vertex_shader == 0 || pixel_shader == 0) return 0;
    const GLuint program = glCreateProgram();
    glAttachShader(program, vertex_shader);
    glAttachShader(program, pixel_shader);
    glLinkProgram(program);
    GLint linked = 0;
    glGetProgramiv(program, GL_LINK_STATUS, &linked);
    if (linked == 0) {
        glDeleteProgram(program);
        return 0;
    }
    place->second = program;
    return program;
}

void ProgramCache::Forget(DWORD shader) {
    std::erase_if(programs_, [shader](const auto& entry) {
        if (entry.first.vertex.shader != shader && entry.first.pixel.shader != shader) return false;
        glDeleteProgram(entry.second);
        return true;
    });
    const auto of_shader = [shader](const auto& entry) {
        if (entry.first.shader != shader) return false;
        glDeleteShader(entry.second);
        return true;
    };
    std::erase_if(vertex_shaders_, of_shader);
    std::erase_if(pixel_shaders_, of_shader);
}

}   // namespace sparkrig
