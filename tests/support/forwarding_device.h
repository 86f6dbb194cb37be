// A device of the contract seen through a recording: every call is recorded, fails when the recording says so, and else
// goes on to the object behind. So a real device can be made to fail, and the objects that are held can be counted.
#pragma once
#include "tests/support/recording.h"

namespace sparkrig {

/// Takes over the reference to the Direct3D object behind; null stays null. The recording outlives what is returned.
IDirect3D9* Forward(Recording& recording, IDirect3D9* behind);

/// The device behind one that Forward's object made.
IDirect3DDevice9& DeviceBehind(IDirect3DDevice9& forwarding);

}   // namespace sparkrig
