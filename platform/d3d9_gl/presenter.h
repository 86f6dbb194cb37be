// Shows the back buffer in the window: swap interval, full screen, gamma ramp.
#pragma once
#include <functional>
#include <memory>

#include "platform/d3d9_gl/surface.h"

namespace sparkrig {

/// Where pictures are shown.
struct PresentWindow {
    SDL_Window* native = nullptr;
    /// The client area in window coordinates; empty while minimised. What the window has above it (its menu) stays.
    std::function<RECT()> client_area;
    /// Takes over the size of the picture in full screen, which then is that of the client area; 0 x 0: windowed.
    std::function<void(int width, int height)> set_full_screen_size;
    /// Draws what stands above a picture that is about to be shown; true when OpenGL was used for it.
    std::function<bool()> draw_menu;
    /// Takes over how the frame presented last is drawn again; null when the device goes.
    std::function<void(std::function<bool()>)> set_picture;
};

class Presenter {
  public:
    Presenter(std::shared_ptr<GlContext> context, PresentWindow window);

    RECT ClientArea() const { return window_.client_area(); }
    bool Minimised() const;
    void SetInterval(DWORD presentation_interval);
    /// Windowed when the parameters say so.
    void SetScreen(const D3DPRESENT_PARAMETERS& parameters);
    void LeaveFullScreen();
    void SetGammaRamp(const D3DGAMMARAMP& ramp);

    /// True when OpenGL states were changed on the way.
    bool Present(Surface& back_buffer, bool full_screen);
    /// Draws the back buffer into the window without showing it yet. True as above.
    bool DrawPicture(Surface& back_buffer, bool full_screen);
    /// Stretches one picture over another.
    static void Copy(Surface& from, Surface& to);
    void OfferPicture(std::function<bool()> draw) { window_.set_picture(std::move(draw)); }

  private:
    void ShowIn(Surface& back_buffer, GLint width, GLint height);
    void DrawThroughRamp(Surface& back_buffer, GLint width, GLint height);
    bool CreateRampProgram();

    std::shared_ptr<GlContext> context_;
    PresentWindow window_;
    bool ramp_changes_ = false;   // it is not the identity
    GLuint ramp_texture_ = 0, ramp_program_ = 0, empty_array_ = 0;
};

}   // namespace sparkrig
