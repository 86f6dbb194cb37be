// The second implementation of the device contract: everything lies in memory. It follows the rules, keeps states,
// locks, copies and fills, and notes each draw, but draws nothing.
#pragma once
#include <array>
#include <set>
#include <string>
#include <vector>

#include "platform/d3d9/d3d9.h"
#include "platform/d3d9/device_rules.h"

namespace sparkrig {

/// One draw call, with a copy of the vertices that it reads and what was bound to stage 0.
struct RecordedDraw {
    D3DPRIMITIVETYPE type;
    UINT first, count;
    DWORD fvf;
    UINT stride;
    std::vector<BYTE> vertices;   // of a draw without indices: the count that it needs, from `first` on
    UINT texture;                 // a number of its own, 0 for none
    std::array<DWORD, kRenderStateCount> render_states;
    D3DMATRIX world;
};

/// What the adapter offers, set before the device is made; and what its device tells.
struct MemoryAdapter {
    D3DCAPS9 caps;
    D3DDISPLAYMODE desktop = {1920, 1080, 60, D3DFMT_X8R8G8B8};
    std::vector<D3DDISPLAYMODE> modes;
    std::vector<std::string> adapters = {"Recording adapter"};
    std::set<D3DFORMAT> refused_texture_formats = {D3DFMT_R8G8B8};
    UINT client_width = 640, client_height = 480;   // the back buffer of a window

    DeviceLife life = DeviceLife::Operational;
    int lost_polls = 0;             // of TestCooperativeLevel, until a lost device can be reset
    int default_pool_objects = 0;   // that there are
    int repeated_states = 0;        // set to what the device held already
    UINT textures_made = 0;
    std::vector<RecordedDraw> draws;

    MemoryAdapter();
};

/// The adapter outlives it.
IDirect3D9* MakeMemoryDirect3D(MemoryAdapter& adapter);

}   // namespace sparkrig
