// The states of a device: every value with its default after creation and after a reset, and what may be set.
#pragma once
#include <array>
#include <bit>
#include <map>

#include "platform/d3d9/d3d9_types.h"
#include "platform/d3d9/vertex_format.h"
#include "platform/system/result_codes.h"

namespace sparkrig {

inline constexpr DWORD kMaxActiveLights = 8;

struct LightSlot {
    D3DLIGHT9 light = {};
    bool enabled = false;
    bool operator==(const LightSlot&) const = default;
};

/// What became of a value that was to be set.
enum class Kept { Refused, Same, Changed };
inline HRESULT ResultOf(Kept kept) { return kept == Kept::Refused ? D3DERR_INVALIDCALL : D3D_OK; }

/// The members are for those who draw by them; whoever sets one goes through the functions, which check.
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
    bool in_scene = false;

    explicit DeviceState(bool auto_depth);

    bool On(D3DRENDERSTATETYPE state) const { return render[state] != 0; }
    float Float(D3DRENDERSTATETYPE state) const { return std::bit_cast<float>(render[state]); }

    Kept SetRenderState(D3DRENDERSTATETYPE state, DWORD value) {
        return state < kRenderStateCount ? Keep(render[state], value) : Kept::Refused;
    }
    HRESULT GetRenderState(D3DRENDERSTATETYPE state, DWORD* value) const;
    Kept SetTextureStageState(DWORD stage, D3DTEXTURESTAGESTATETYPE state, DWORD value);
    HRESULT GetTextureStageState(DWORD stage, D3DTEXTURESTAGESTATETYPE state, DWORD* value) const;
    Kept SetSamplerState(DWORD sampler, D3DSAMPLERSTATETYPE state, DWORD value);
    HRESULT GetSamplerState(DWORD sampler, D3DSAMPLERSTATETYPE state, DWORD* value) const;
    Kept SetTransform(D3DTRANSFORMSTATETYPE type, const D3DMATRIX* matrix);
    HRESULT GetTransform(D3DTRANSFORMSTATETYPE type, D3DMATRIX* matrix) const;
    Kept SetMaterial(const D3DMATERIAL9* value);
    HRESULT GetMaterial(D3DMATERIAL9* value) const;
    Kept SetLight(DWORD index, const D3DLIGHT9* light);
    HRESULT GetLight(DWORD index, D3DLIGHT9* light) const;
    /// An index that was never set gets a white light along +z.
    Kept LightEnable(DWORD index, BOOL enable);
    HRESULT GetLightEnable(DWORD index, BOOL* enable) const;
    /// A viewport lies in the target and is not empty.
    Kept SetViewport(const D3DVIEWPORT9* value, const D3DSURFACE_DESC& target);
    HRESULT GetViewport(D3DVIEWPORT9* value) const;
    Kept SetFVF(DWORD fvf);
    HRESULT GetFVF(DWORD* fvf) const;
    /// BeginScene and EndScene take turns.
    Kept SetInScene(bool begins);

    /// Keeps a value that may be kept.
    template <class Value>
    static Kept Keep(Value& held, const Value& value) {
        if (held == value) return Kept::Same;
        held = value;
        return Kept::Changed;
    }
};

}   // namespace sparkrig
