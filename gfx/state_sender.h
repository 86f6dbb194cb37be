// Sends states to the device and remembers what the device took.
#pragma once
#include <bit>
#include <cstdint>

#include "gfx/graphics_device.h"

namespace sparkrig {

/// The last value that the device took for each state that is filtered. Forgotten at creation and at every reset.
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
    void Forget(D3DRENDERSTATETYPE state) { render_[state] = kUnknown; }

  private:
    using Value = std::int64_t;   // wider than any state, so that no value looks unknown
    static constexpr Value kUnknown = -1;
    Value render_[kRenderStateCount];
    Value stages_[kTextureStages][kStageStateCount];
    Value samplers_[kTextureStages][kSamplerStateCount];
};

/// Send… sends always; Set… sends what differs from the cache. What the device refuses is an error and is not
/// remembered, so that it is tried again. A state is either always sent by Send… or always by Set….
class StateSender {
  public:
    explicit StateSender(const GraphicsDevice& graphics) : graphics_(graphics) {}

    void SendRenderState(D3DRENDERSTATETYPE state, DWORD value);
    void SendRenderState(D3DRENDERSTATETYPE state, float value) { SendRenderState(state, std::bit_cast<DWORD>(value)); }
    void SetRenderState(D3DRENDERSTATETYPE state, DWORD value) {
        if (cache_.Holds(state, value)) return;
        SendRenderState(state, value);
        cache_.Remember(state, value);
    }
    void SetRenderState(D3DRENDERSTATETYPE state, float value) { SetRenderState(state, std::bit_cast<DWORD>(value)); }

    /// Stages are 0 to 7.
    void SendStageState(DWORD stage, D3DTEXTURESTAGESTATETYPE type, DWORD value);
    void SetStageState(DWORD stage, D3DTEXTURESTAGESTATETYPE type, DWORD value);
    void SendSamplerState(DWORD sampler, D3DSAMPLERSTATETYPE type, DWORD value);
    /// The device's answer instead of an error.
    HRESULT TrySamplerState(DWORD sampler, D3DSAMPLERSTATETYPE type, DWORD value);

    StateCache& Cache() { return cache_; }
    const GraphicsDevice& Graphics() const { return graphics_; }
    IDirect3DDevice9& Device() const { return *graphics_.Device(); }
    const KRN_Base& Reporter() const { return graphics_.Reporter(); }

  private:
    const GraphicsDevice& graphics_;
    StateCache cache_;
};

}   // namespace sparkrig
