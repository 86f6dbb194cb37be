#include "platform/window/gui.h"

#include <SDL2/SDL.h>
#include <backends/imgui_impl_opengl3.h>
#include <epoxy/gl.h>
#include <imgui.h>

#include <algorithm>

#include "platform/window/display_text.h"
#include "platform/window/gui_style.h"
#include "platform/window/virtual_keys.h"
#include "platform/window/window_object.h"

namespace sparkrig {

namespace {

constexpr float kTextPixels = 16, kShortestFrame = 1e-4f;   // seconds
const ImVec2 kNowhere(-1e6f, -1e6f);

/// Makes a context current and puts back the one that was.
class CurrentContext {
  public:
    CurrentContext(SDL_Window* window, void* context)
        : window_(SDL_GL_GetCurrentWindow()), context_(SDL_GL_GetCurrentContext()) {
        SDL_GL_MakeCurrent(window, context);
    }
    ~CurrentContext() { SDL_GL_MakeCurrent(window_, context_); }
    CurrentContext(const CurrentContext&) = delete;
    CurrentContext& operator=(const CurrentContext&) = delete;

  private:
    SDL_Window* window_;
    void* context_;
};

/// OpenGL as the widgets know it: drawing into the window, whose rows run from the bottom up.
class WindowCoordinates {
  public:
    WindowCoordinates() {
        glGetIntegerv(GL_CLIP_ORIGIN, &origin_);
        glGetIntegerv(GL_CLIP_DEPTH_MODE, &depth_);
        glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &framebuffer_);
        glBindFramebuffer(GL_DRAW_FRAMEBUFFER, 0);
        glClipControl(GL_LOWER_LEFT, GL_NEGATIVE_ONE_TO_ONE);
    }
    ~WindowCoordinates() {
        glClipControl(static_cast<GLenum>(origin_), static_cast<GLenum>(depth_));
        glBindFramebuffer(GL_DRAW_FRAMEBUFFER, static_cast<GLuint>(framebuffer_));
    }
    WindowCoordinates(const WindowCoordinates&) = delete;
    WindowCoordinates& operator=(const WindowCoordinates&) = delete;

  private:
    GLint origin_ = 0, depth_ = 0, framebuffer_ = 0;
};

struct KeyRow {
    ImGuiKey widget_key;
    WPARAM virtual_key;
};

constexpr KeyRow kKeyRows[] = {
    {ImGuiKey_LeftArrow, VK_LEFT},
    {ImGuiKey_RightArrow, VK_RIGHT},
    {ImGuiKey_Home, VK_HOME},
    {ImGuiKey_End, VK_END},
    {ImGuiKey_Delete, VK_DELETE},
    {ImGuiKey_Backspace, VK_BACK},
    {ImGuiKey_A, 'A'},
    {ImGuiKey_C, 'C'},
    {ImGuiKey_V, 'V'},
    {ImGuiKey_X, 'X'},
    {ImGuiKey_Y, 'Y'},
    {ImGuiKey_Z, 'Z'},
};

const char* ClipboardText(void*) {
    static std::string text;
    char* from_system = SDL_GetClipboardText();
    text = from_system ? from_system : "";
    SDL_free(from_system);
    return text.c_str();
}

void SetUp(ImGuiIO& io) {
    io.IniFilename = io.LogFilename = nullptr;
    io.ConfigInputTextCursorBlink = false;   // a window at rest is not drawn
    io.MousePos = kNowhere;
    io.GetClipboardTextFn = ClipboardText;
    io.SetClipboardTextFn = [](void*, const char* text) { SDL_SetClipboardText(text); };
    for (const KeyRow& row : kKeyRows) io.KeyMap[row.widget_key] = static_cast<int>(row.virtual_key);
}

void FeedKey(ImGuiIO& io, WPARAM key, bool down) {
    if (key >= std::size(io.KeysDown)) return;
    io.KeysDown[key] = down;
    io.KeysDownDuration[key] = -1;   // a repeat counts as a press
    if (key == VK_SHIFT) io.KeyShift = down;
    if (key == VK_CONTROL) io.KeyCtrl = down;
}

}   // namespace

std::unique_ptr<Gui> Gui::Create(SDL_Window* window, void* gl_context, float scale) {
    SDL_Window* const shown_window = SDL_GL_GetCurrentWindow();
    void* const shown_context = SDL_GL_GetCurrentContext();
    const bool own = gl_context == nullptr;
    if (own) {
        ChooseOpenGL();
        gl_context = SDL_GL_CreateContext(window);
    }
    std::unique_ptr<Gui> gui;
    if (gl_context && SDL_GL_MakeCurrent(window, gl_context) == 0) gui.reset(new Gui(window, gl_context, own, scale));
    SDL_GL_MakeCurrent(shown_window, shown_context);
    return gui;
}

Gui::Gui(SDL_Window* window, void* gl_context, bool owns_context, float scale)
    : window_(window),
      gl_context_(gl_context),
      owns_context_(owns_context),
      context_(ImGui::CreateContext()),
      scale_(scale),
      fonts_((ImGui::SetCurrentContext(context_), *ImGui::GetIO().Fonts), kTextPixels * scale_),
      last_frame_(SDL_GetTicks64()) {
    SetUp(ImGui::GetIO());
    SetStyle(ImGui::GetStyle(), scale_);
    fonts_.Build();
    ImGui_ImplOpenGL3_Init("#version 330 core");
    ImGui_ImplOpenGL3_NewFrame();   // makes its objects
}

Gui::~Gui() {
    {
        const CurrentContext current(window_, gl_context_);
        ImGui::SetCurrentContext(context_);
        ImGui_ImplOpenGL3_Shutdown();
        ImGui::DestroyContext(context_);
    }
    if (owns_context_) SDL_GL_DeleteContext(gl_context_);
}

float Gui::LineHeight() const { return kTextPixels * scale_; }

std::string Gui::Show(std::string_view bytes) {
    std::string text = DisplayText(bytes);
    fonts_.Ask(text);
    return text;
}

float Gui::TextWidth(std::string_view text) const {
    return fonts_.Font().CalcTextSizeA(LineHeight(), FLT_MAX, 0, text.data(), text.data() + text.size()).x;
}

float Gui::TextHeight(std::string_view text, float wrap_width) const {
    return fonts_.Font().CalcTextSizeA(LineHeight(), FLT_MAX, wrap_width, text.data(), text.data() + text.size()).y;
}

void Gui::Feed(const MSG& message, POINT place) {
    ImGui::SetCurrentContext(context_);
    ImGuiIO& io = ImGui::GetIO();
    const int wheel = HighWord(static_cast<LPARAM>(message.wParam));
    switch (message.message) {
        case WM_LBUTTONDOWN:
        case WM_LBUTTONUP: io.MouseDown[0] = message.message == WM_LBUTTONDOWN; [[fallthrough]];
        case WM_MOUSEMOVE: io.MousePos = {static_cast<float>(place.x), static_cast<float>(place.y)}; break;
        case WM_MOUSEWHEEL: io.MouseWheel += static_cast<float>(wheel) / WHEEL_DELTA; break;
        case WM_KEYDOWN:
        case WM_KEYUP: FeedKey(io, message.wParam, message.message == WM_KEYDOWN); break;
        case WM_CHAR: FeedByte(static_cast<char>(message.wParam)); break;
        default: break;
    }
}

// Characters come byte by byte.
void Gui::FeedByte(char byte) {
    unfinished_ += byte;
    std::string_view rest = unfinished_;
    const std::size_t length = CharacterLength(unfinished_[0]);
    if (unfinished_.size() < length) return;
    ImGui::GetIO().AddInputCharacter(static_cast<unsigned>(TakeCharacter(rest)));
    unfinished_.clear();
}

void Gui::RunOnce(const std::function<void()>& widgets) {
    ImGuiIO& io = ImGui::GetIO();
    int width = 0, height = 0;
    SDL_GetWindowSize(window_, &width, &height);
    io.DisplaySize = {static_cast<float>(std::max(width, 1)), static_cast<float>(std::max(height, 1))};
    const std::uint64_t now = SDL_GetTicks64();
    io.DeltaTime = std::max(static_cast<float>(now - last_frame_) / 1000, kShortestFrame);
    last_frame_ = now;
    ImGui::NewFrame();
    widgets();
    ImGui::Render();
}

void Gui::Run(const std::function<void()>& widgets) {
    ImGui::SetCurrentContext(context_);
    RunOnce(widgets);
    if (!fonts_.Build()) return;
    const CurrentContext current(window_, gl_context_);
    ImGui_ImplOpenGL3_DestroyFontsTexture();
    ImGui_ImplOpenGL3_CreateFontsTexture();
    RunOnce(widgets);
}

void Gui::Draw() {
    ImGui::SetCurrentContext(context_);
    const CurrentContext current(window_, gl_context_);
    const WindowCoordinates coordinates;
    ImGui_ImplOpenGL3_RenderDrawData(ImGui::GetDrawData());
}

void Gui::Present() {
    const CurrentContext current(window_, gl_context_);
    SDL_GL_SwapWindow(window_);
}

void Gui::Clear(float red, float green, float blue) {
    const CurrentContext current(window_, gl_context_);
    const WindowCoordinates coordinates;
    int width = 0, height = 0;
    SDL_GetWindowSize(window_, &width, &height);
    glDisable(GL_SCISSOR_TEST);
    glViewport(0, 0, width, height);   // the software driver learns of a new size by this
    glClearColor(red, green, blue, 1);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glClear(GL_COLOR_BUFFER_BIT);
    glEnable(GL_SCISSOR_TEST);
}

}   // namespace sparkrig
