// Sends states to the device and remembers what the device took.
#pragma once
#include <array>
#include <bit>
#include <cstdint>
#include <optional>

#include "gfx/graphics_device.h"

namespace sparkrig {

/// The last value that the device took for each state. Forgotten at creation and at every reset.
class StateCache {
  public:
    StateCache() { Forget(); }
    void Forget();

    bool Holds(D3DRENDERSTATETYPE state, DWORD value) const { return render_[state] == value; }
    bool Holds(DWORD stage, D3DTEXTURESTAGESTATETYPE type, DWORD value) const { return stages_[stage][type] == value; }
    bool Holds(DWORD sampler, D3DSAMPLERSTATETYPE type, DWORD value) const { return samplers_[sampler][type] == value; }
    void Remember(D3DRENDERSTATETYPE state, DWORD value) { render_[state] = value; }
    void Remember(DWORD stage, D3DTEXTURESTAGESTATETYPE type, DWORD value) { stages_[stage][type] = value; }
    void Remember(DWORD sampler, D3DSAMPLERSTATETYPE type, DWORD value) { samplers_[sampler][type] = value; }

    // What is sent as a whole
    std::array<std::optional<D3DMATRIX>, D3DTS_WORLDMATRIX(256)> transforms;   // by kind
    std::optional<D3DMATERIAL9> material;
    std::optional<D3DVIEWPORT9> viewport;   // a new render target changes it

  private:
    using Value = std::int64_t;   // wider than any state, so that no value looks unknown
    static constexpr Value kUnknown = -1;
    Value render_[kRenderStateCount];
    Value stages_[kTextureStages][kStageStateCount];
    Value samplers_[kTextureStages][kSamplerStateCount];
};

/// Send… sends always; Set… and Try… send what differs from the cache. What the device refuses is an error, but for
/// Try…, which return the device's answer; it is not remembered, so that it is tried again.
class StateSender {
  public:
    explicit StateSender(const GraphicsDevice& graphics) : graphics_(graphics) {}

    void SendRenderState(D3DRENDERSTATETYPE state, DWORD value);
    void SendRenderState(D3DRENDERSTATETYPE state, float value) { SendRenderState(state, std::bit_cast<DWORD>(value)); }
    void SetRenderState(D3DRENDERSTATETYPE state, DWORD value) {
        if (!cache_.Holds(state, value)) SendRenderState(state, value);
    }
    void SetRenderState(D3DRENDERSTATETYPE state, float value) { SetRenderState(state, std::bit_cast<DWORD>(value)); }

    /// Stages are 0 to 7.
    void SendStageState(DWORD stage, D3DTEXTURESTAGESTATETYPE type, DWORD value);
    void SetStageState(DWORD stage, D3DTEXTURESTAGESTATETYPE type, DWORD value) {
        if (!cache_.Holds(stage, type, value)) SendStageState(stage, type, value);
    }
    void SetSamplerState(DWORD sampler, D3DSAMPLERSTATETYPE type, DWORD value);
    HRESULT TrySamplerState(DWORD sampler, D3DSAMPLERSTATETYPE type, DWORD value);
    void SetTransform(D3DTRANSFORMSTATETYPE kind, const D3DMATRIX& matrix);
    void SetMaterial(const D3DMATERIAL9& material);
    HRESULT TryViewport(const D3DVIEWPORT9& viewport);

    StateCache& Cache() { return cache_; }
    const GraphicsDevice& Graphics() const { return graphics_; }
    IDirect3DDevice9& Device() const { return *graphics_.Device(); }
    const KRN_Base& Reporter() const { return graphics_.Reporter(); }

  private:
    const GraphicsDevice& graphics_;
    StateCache cache_;
};

}   // namespace sparkrig
