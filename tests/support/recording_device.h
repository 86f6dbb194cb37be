// A device of the contract seen through a recording: every call is recorded, fails when the recording says so, and else
// goes on to the object behind. So any device can be made to fail, and the objects that are held can be counted.
#pragma once
#include "tests/support/recording.h"

namespace sparkrig {

/// Takes over the reference to the Direct3D object behind; null stays null. The recording outlives what is returned.
IDirect3D9* RecordCalls(Recording& recording, IDirect3D9* behind);

/// The object behind one that came from it.
IDirect3DDevice9& Behind(IDirect3DDevice9& recorded);
IDirect3DTexture9& Behind(IDirect3DTexture9& recorded);

}   // namespace sparkrig
