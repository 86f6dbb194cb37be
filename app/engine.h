// The objects that the program owns, made and released in a fixed order.
#pragma once
#include <optional>

#include "app/options.h"
#include "app/tester_state.h"
#include "app/video_generator.h"
#include "effects/visual_effect_system.h"
#include "gfx/gfx.h"
#include "gfx/shaders/shader_effect.h"
#include "gfx/text/font.h"
#include "gfx/textures/texture.h"
#include "input/input.h"
#include "input/input_keyboard.h"

namespace sparkrig {

struct Engine {
    std::optional<VideoGenerator> video;   // what textures named ">>Video1" show
    std::optional<KRN_Gfx> gfx;
    std::optional<KRN_Input> input;
    std::optional<KRN_InputKeyboard> keyboard;
    std::optional<KRN_Font> font;
    VisualEffectSystem effects;
    KRN_Texture background;
    KRN_ShaderEffect screen_effect;   // that the picture goes through, below the overlay
    KRN_ShaderEffect mesh_effect;     // that the meshes of effects are drawn through

    /// Makes device, keyboard and font on the window. Everything that fails is an error. A KRN_Gfx that is there
    /// already is used: tests bring one on a device of their own.
    ///   seed  of the random generator; none: the counter
    void Start(TesterState& state, std::optional<std::uint32_t> seed);
    /// Also after an error in Start: what was not made is not released.
    void ShutDown();
};

/// Reads "/full", "/resx" and "/resy". True when one of the two sizes is given.
bool ReadWindowOptions(TesterState& state, const std::string& command_line);

enum class WindowSize {
    Whole,     // the resolution is that of the window with its frame and menu
    Picture,   // that of the client area; there is no menu
    ChosenBySystem,
};

/// Registers the window class, makes the window and shows it. False when the system refuses.
bool MakeTesterWindow(TesterState& state, WindowSize size);

/// Sets size factor and colour of the overlay's letters.
void SetTextSize(KRN_Font& font, float size);

}   // namespace sparkrig
