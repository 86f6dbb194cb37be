// What the keys and the mouse do, once per frame.
#pragma once
#include "app/tester_state.h"
#include "effects/visual_effect_system.h"
#include "input/input_keyboard.h"

namespace sparkrig {

inline constexpr char kEffectsFile[] = "cfg\\effects.cfg";

/// Reads the effects file again, or for the first time. An empty one is an error of the effect system. A current effect
/// beyond the end of a shortened file becomes the last one.
void ReloadEffects(VisualEffectSystem& effects, TesterState& state, LoopState& loop, bool keep_instances);

void StartCurrentEffect(VisualEffectSystem& effects, const TesterState& state, const D3DXVECTOR3& position);

/// The keyboard commands in their order.
///   seconds  the length of the frame, already clamped
void RunKeyboardCommands(KRN_InputKeyboard& keyboard, TesterState& state, LoopState& loop, VisualEffectSystem& effects,
                         double seconds);

/// Starts the current effect under a click that has not been acted on.
void RunPendingClick(TesterState& state, VisualEffectSystem& effects, KRN_Gfx& gfx);

}   // namespace sparkrig
