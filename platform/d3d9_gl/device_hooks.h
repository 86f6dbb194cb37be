// For automation, tests and measurements: what the contract has no call for. The device must be one of this layer.
#pragma once
#include <cstddef>

#include "platform/d3d9/d3d9.h"

struct SDL_Window;

namespace sparkrig {

/// The device answers as lost from now on; after RestoreDevice it can be reset.
void LoseDevice(IDirect3DDevice9& device);
void RestoreDevice(IDirect3DDevice9& device);

/// A blind device answers every call as it would, and nothing is drawn, cleared or presented.
void SetBlind(IDirect3DDevice9& device, bool blind);

/// A device on a window that SDL made with SDL_WINDOW_OPENGL and that must outlive it.
HRESULT CreateDeviceOnWindow(SDL_Window* window, const D3DPRESENT_PARAMETERS& parameters, IDirect3DDevice9** device);

/// How many programs the device has made so far.
std::size_t ProgramCount(IDirect3DDevice9& device);

}   // namespace sparkrig
