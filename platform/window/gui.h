// Dear ImGui on one window. It is fed with messages, so that what runs in a window runs in a test.
#pragma once
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "platform/window/gui_fonts.h"
#include "platform/window/window.h"

struct ImGuiContext;

namespace sparkrig {

class Gui {
  public:
    /// Null where there is no OpenGL for the window, which must outlive it.
    ///   gl_context  the one that the device draws with, which must outlive it as well: what is drawn by two contexts
    ///               may not meet in the window. Null: one of its own.
    ///   scale       pixels for what is one pixel on a screen of 96 dots per inch
    static std::unique_ptr<Gui> Create(SDL_Window* window, void* gl_context, float scale);
    ~Gui();
    Gui(const Gui&) = delete;
    Gui& operator=(const Gui&) = delete;

    /// Pixels for what is one pixel on a screen of 96 dots per inch, and the height of a line of text.
    float Scale() const { return scale_; }
    float LineHeight() const;
    /// Any bytes as text that can be shown: characters that are new come with the next frame.
    std::string Show(std::string_view bytes);
    /// The size of a text made by Show, broken at so many pixels; 0: not broken.
    float TextWidth(std::string_view text) const;
    float TextHeight(std::string_view text, float wrap_width) const;

    /// Hands an input message to the widgets.
    ///   place  of the mouse, window coordinates
    void Feed(const MSG& message, POINT place);
    /// Runs widgets for one frame, again when they have asked for new characters. Nothing is drawn.
    void Run(const std::function<void()>& widgets);
    /// Draws what the last Run made over the window's picture. What the device has told OpenGL is not known any more,
    /// but for what it told it once and for all.
    void Draw();
    /// Brings what was drawn to the screen.
    void Present();
    /// Fills the window.
    void Clear(float red, float green, float blue);

  private:
    Gui(SDL_Window* window, void* gl_context, bool owns_context, float scale);
    void FeedByte(char byte);
    void RunOnce(const std::function<void()>& widgets);

    SDL_Window* window_;   // borrowed
    void* gl_context_;
    bool owns_context_;
    ImGuiContext* context_;
    float scale_;
    GuiFonts fonts_;
    std::uint64_t last_frame_;   // milliseconds
    std::string unfinished_;     // the bytes of a character that is being typed
};

}   // namespace sparkrig
