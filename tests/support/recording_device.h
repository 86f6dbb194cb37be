// The second implementation of the device contract: it draws nothing, records every call, keeps states for the Get
// functions and enforces the rules of scenes, locks and resets.
#pragma once
#include "tests/support/recorded_objects.h"

namespace sparkrig {

/// What `recording` offers as Direct3D. The recording outlives it.
IDirect3D9* MakeRecordingDirect3D(Recording& recording);

}   // namespace sparkrig
