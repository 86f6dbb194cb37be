// Everything that state calls set, with its value after creation and after a reset.
#pragma once
#include <array>
#include <bit>
#include <map>

#include "platform/d3d9/d3d9_types.h"
#include "platform/d3d9/vertex_format.h"

namespace sparkrig {

inline constexpr DWORD kMaxActiveLights = 8;

struct LightSlot {
    D3DLIGHT9 light = {};
    bool enabled = false;
};

struct DeviceState {
    std::array<DWORD, kRenderStateCount> render = {};
    std::array<std::array<DWORD, kStageStateCount>, kTextureStages> stages = {};
    std::array<std::array<DWORD, kSamplerStateCount>, kSamplers> samplers = {};
    D3DMATRIX view, projection;
    std::array<D3DMATRIX, kTextureStages> texture_matrices;
    std::array<D3DMATRIX, kWorldMatrices> world;
    D3DMATERIAL9 material = {};
    std::map<DWORD, LightSlot> lights;   // by index
    D3DVIEWPORT9 viewport = {};
    VertexFormat format;

    explicit DeviceState(bool auto_depth);

    bool On(D3DRENDERSTATETYPE state) const { return render[state] != 0; }
    float Float(D3DRENDERSTATETYPE state) const { return std::bit_cast<float>(render[state]); }
};

/// The dirty groups of each state.
unsigned RenderStateGroups(D3DRENDERSTATETYPE state);
unsigned StageStateGroups(D3DTEXTURESTAGESTATETYPE state);

bool ValidSamplerState(D3DSAMPLERSTATETYPE state, DWORD value);
bool ValidStageState(D3DTEXTURESTAGESTATETYPE state);

/// The matrix of a transform state, null for one that does not exist; and the groups that it belongs to.
D3DMATRIX* FindTransform(DeviceState& state, D3DTRANSFORMSTATETYPE type);
unsigned TransformGroups(D3DTRANSFORMSTATETYPE type);

}   // namespace sparkrig
