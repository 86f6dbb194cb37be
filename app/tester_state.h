// What the window procedure, the commands and the frame loop share.
#pragma once
#include <string>

#include "app/clock.h"
#include "platform/window/window.h"
#include "scene/camera.h"
#include "scene/mesh.h"

namespace sparkrig {

struct Engine;

inline constexpr D3DXVECTOR3 kCameraHome = {0, 200, 100};

/// A left click that has not been acted on.
struct PendingClick {
    int button = -1;   // 0 the left button, -1 none
    int pressed = 0;
    int x = 0, y = 0;   // client area
};

/// A sentence that the overlay shows for a while.
struct Notice {
    std::string text;
    double until = 0;   // on the clock
};

/// The program-wide settings and state.
struct TesterState {
    static constexpr int kPathBytes = 1024;

    HWND window = nullptr;
    int windowed = 1;
    int resolution_x = 1024, resolution_y = 768;
    int client_width = 0, client_height = 0;
    char base_path[kPathBytes] = "";
    char background_path[kPathBytes] = "";
    std::string screen_effect_path, mesh_effect_path;   // shader effects that the options name; empty for none
    int window_visible = 1;
    int application_active = 1;
    int quit_requested = 0;
    int paused = 0;
    int current_effect = 0;   // index in file order
    PendingClick click;
    double last_click_time = -1.0;
    int initialised = 0;
    FrameClock clock;
    Engine* engine = nullptr;   // borrowed, while it plays in the window
    Notice notice;

    void Note(const std::string& text);
    /// Takes over the size of the window's client area.
    void ReadClientSize();
    /// Nothing is drawn until the window can be seen and used again.
    bool MustWait() const { return !quit_requested && (!window_visible || !application_active); }
};

/// The one instance, which the window procedure reaches.
TesterState& Tester();

/// What lives as long as the frame loop.
struct LoopState {
    KRN_Camera camera;
    KRN_Mesh stage_mesh;   // the backdrop
    float speed = 1.0f;    // multiplies effect time
    bool show_backdrop = false;
    bool show_overlay = true;
    int effect_count = 0;
    int drawn_particles = 0, most_drawn_particles = 0;
    FrameRate rate;
};

}   // namespace sparkrig
