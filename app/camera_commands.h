#pragma once
#include "input/input_keyboard.h"
#include "scene/camera.h"

namespace sparkrig {

/// Moves and turns the camera by the keys that are down. With shift it moves sideways, with ctrl it circles the world's
/// origin, with neither it turns and moves along its view; shift wins.
void MoveCamera(const KRN_InputKeyboard& keyboard, bool shift, bool ctrl, KRN_Camera& camera, float seconds);

/// The camera at its place at the start: it looks at the origin.
void PlaceCameraAtHome(KRN_Camera& camera);

}   // namespace sparkrig
