#include "platform/d3d9_gl/presenter.h"

#include <SDL.h>

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "platform/d3d9_gl/program_cache.h"

namespace sparkrig {

namespace {

constexpr GLsizei kRampEntries = 256;
constexpr std::size_t kIdentityStep = 257;   // 0xFFFF / 0xFF

constexpr const char* kRampVertexGlsl = R"(#version 450
void main() { gl_Position = vec4(gl_VertexID == 1 ? 3.0 : -1.0, gl_VertexID == 2 ? 3.0 : -1.0, 0.0, 1.0); }
)";
constexpr const char* kRampPixelGlsl = R"(#version 450
layout(binding = 0) uniform sampler2D picture;
layout(binding = 1) uniform sampler2D ramp;
layout(location = 0) uniform vec2 size;
layout(location = 0) out vec4 pixel_color;
float Looked(float value, int channel) {
    return texelFetch(ramp, ivec2(int(value * 255.0 + 0.5), 0), 0)[channel];
}
void main() {
    vec2 place = gl_FragCoord.xy / size;
    vec3 colour = texture(picture, vec2(place.x, 1.0 - place.y)).rgb;
    pixel_color = vec4(Looked(colour.r, 0), Looked(colour.g, 1), Looked(colour.b, 2), 1.0);
}
)";

/// The whole of a surface over the rectangle of a framebuffer.
void Blit(Surface& from, GLuint framebuffer, const RECT& to) {
    const GLint width = static_cast<GLint>(from.Desc().Width), height = static_cast<GLint>(from.Desc().Height);
    const bool same_size = to.right == width && std::max(to.top, to.bottom) == height;
    glDisable(GL_SCISSOR_TEST);
    glBlitNamedFramebuffer(from.Framebuffer(), framebuffer, 0, 0, width, height, to.left, to.top, to.right, to.bottom,
                           GL_COLOR_BUFFER_BIT, same_size ? GL_NEAREST : GL_LINEAR);
    glEnable(GL_SCISSOR_TEST);
}

int SwapInterval(DWORD presentation_interval) {
    switch (presentation_interval) {
        case D3DPRESENT_INTERVAL_IMMEDIATE: return 0;
        case D3DPRESENT_INTERVAL_TWO: return 2;
        case D3DPRESENT_INTERVAL_THREE: return 3;
        case D3DPRESENT_INTERVAL_FOUR: return 4;
        default: return 1;
    }
}

}   // namespace

Presenter::Presenter(std::shared_ptr<GlContext> context, PresentWindow window)
    : context_(std::move(context)), window_(std::move(window)) {}

bool Presenter::Minimised() const { return (SDL_GetWindowFlags(window_.native) & SDL_WINDOW_MINIMIZED) != 0; }

void Presenter::SetInterval(DWORD presentation_interval) {
    SDL_GL_SetSwapInterval(SwapInterval(presentation_interval));
}

void Presenter::LeaveFullScreen() {
    window_.set_full_screen_size(0, 0);
    const bool is_full = (SDL_GetWindowFlags(window_.native) & SDL_WINDOW_FULLSCREEN) != 0;
    if (is_full) SDL_SetWindowFullscreen(window_.native, 0);
}

void Presenter::SetScreen(const D3DPRESENT_PARAMETERS& parameters) {
    if (parameters.Windowed) return LeaveFullScreen();
    SDL_DisplayMode wanted = {}, found = {};
    wanted.w = static_cast<int>(parameters.BackBufferWidth);
    wanted.h = static_cast<int>(parameters.BackBufferHeight);
    window_.set_full_screen_size(wanted.w, wanted.h);
    wanted.refresh_rate = static_cast<int>(parameters.FullScreen_RefreshRateInHz);
    const int monitor = SDL_GetWindowDisplayIndex(window_.native);
    const bool has_mode = SDL_GetClosestDisplayMode(monitor, &wanted, &found) != nullptr && found.w == wanted.w &&
                          found.h == wanted.h && SDL_SetWindowDisplayMode(window_.native, &found) == 0;
    // Where the screen cannot change its mode, the picture is stretched over it.
    if (has_mode && SDL_SetWindowFullscreen(window_.native, SDL_WINDOW_FULLSCREEN) == 0) return;
    SDL_SetWindowFullscreen(window_.native, SDL_WINDOW_FULLSCREEN_DESKTOP);
}

void Presenter::SetGammaRamp(const D3DGAMMARAMP& ramp) {
    std::array<WORD, 4 * kRampEntries> texels = {};
    ramp_changes_ = false;
    for (std::size_t i = 0; i < kRampEntries; ++i) {
        const WORD channels[] = {ramp.red[i], ramp.green[i], ramp.blue[i]};
        for (std::size_t channel = 0; channel < 3; ++channel) {
            texels[4 * i + channel] = channels[channel];
            ramp_changes_ = ramp_changes_ || channels[channel] != i * kIdentityStep;
        }
    }
    if (!ramp_changes_) return;
    if (ramp_texture_ == 0) {
        glCreateTextures(GL_TEXTURE_2D, 1, &ramp_texture_);
        glTextureStorage2D(ramp_texture_, 1, GL_RGBA16, kRampEntries, 1);
    }
    glTextureSubImage2D(ramp_texture_, 0, 0, 0, kRampEntries, 1, GL_RGBA, GL_UNSIGNED_SHORT, texels.data());
}

bool Presenter::Present(Surface& back_buffer, bool full_screen) {
    const bool by_picture = DrawPicture(back_buffer, full_screen);
    const bool touched = window_.draw_menu() || by_picture;
    SDL_GL_SwapWindow(window_.native);
    return touched;
}

bool Presenter::DrawPicture(Surface& back_buffer, bool full_screen) {
    GLint width = 0, height = 0;
    if (full_screen) {
        SDL_GetWindowSize(window_.native, &width, &height);
    } else {
        const RECT client = window_.client_area();
        width = client.right - client.left, height = client.bottom - client.top;
    }
    if (width <= 0 || height <= 0) return false;
    const bool through_ramp = full_screen && ramp_changes_ && CreateRampProgram();
    if (through_ramp) {
        DrawThroughRamp(back_buffer, width, height);
    } else {
        ShowIn(back_buffer, width, height);
    }
    return through_ramp;
}

// The window's rows run from the bottom up, those of the back buffer from the top down.
void Presenter::ShowIn(Surface& back_buffer, GLint width, GLint height) { Blit(back_buffer, 0, {0, height, width, 0}); }

void Presenter::Copy(Surface& from, Surface& to) {
    Blit(from, to.Framebuffer(), {0, 0, static_cast<LONG>(to.Desc().Width), static_cast<LONG>(to.Desc().Height)});
}

bool Presenter::CreateRampProgram() {
    if (ramp_program_ != 0) return true;
    std::string errors;
    const GLuint vertex = CompileGlsl(GL_VERTEX_SHADER, kRampVertexGlsl, errors);
    const GLuint pixel = CompileGlsl(GL_FRAGMENT_SHADER, kRampPixelGlsl, errors);
    if (vertex == 0 || pixel == 0) return false;
    ramp_program_ = glCreateProgram();
    glAttachShader(ramp_program_, vertex);
    glAttachShader(ramp_program_, pixel);
    glLinkProgram(ramp_program_);
    glDeleteShader(vertex);
    glDeleteShader(pixel);
    glCreateVertexArrays(1, &empty_array_);
    return true;
}

void Presenter::DrawThroughRamp(Surface& back_buffer, GLint width, GLint height) {
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, 0);
    for (const GLenum capability : {GL_SCISSOR_TEST, GL_BLEND, GL_DEPTH_TEST, GL_CULL_FACE}) glDisable(capability);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glViewport(0, 0, width, height);
    glUseProgram(ramp_program_);
    glBindVertexArray(empty_array_);
    glBindTextureUnit(0, back_buffer.GlImage().texture);
    glBindTextureUnit(1, ramp_texture_);
    glBindSampler(0, 0);
    glBindSampler(1, 0);
    glUniform2f(0, static_cast<GLfloat>(width), static_cast<GLfloat>(height));
    glDrawArrays(GL_TRIANGLES, 0, 3);
    glEnable(GL_SCISSOR_TEST);
}

}   // namespace sparkrig
