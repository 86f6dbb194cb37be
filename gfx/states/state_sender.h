// Sends states to the device and remembers what the device took.
#pragma once
#include <array>
#include <bit>
#include <concepts>
#include <cstdint>
#include <optional>
#include <vector>

#include "gfx/device/graphics_device.h"

namespace sparkrig {

inline constexpr DWORD kLights = 8;   // of the device

/// The last value that the device took for each state. Forgotten at creation and at every reset.
class StateCache {
  public:
    StateCache() { Forget(); }
    void Forget();

    bool Holds(D3DRENDERSTATETYPE state, DWORD value) const { return render_[state] == value; }
    /// Values of neighbouring types, the first of which is given: one question for all.
    template <std::same_as<DWORD>... Values>
    bool Holds(DWORD stage, D3DTEXTURESTAGESTATETYPE first, Values... values) const {
        const Value* held = &stages_[stage][first];
        Value differences = 0;
        ((differences |= *held++ ^ values), ...);
        return differences == 0;
    }
    bool Holds(DWORD sampler, D3DSAMPLERSTATETYPE type, DWORD value) const { return samplers_[sampler][type] == value; }
    bool Holds(DWORD stage, const IDirect3DTexture9* texture) const {
        return textures[stage] && textures[stage]->Get() == texture;
    }
    void Remember(D3DRENDERSTATETYPE state, DWORD value) { render_[state] = value; }
    void Remember(DWORD stage, D3DTEXTURESTAGESTATETYPE type, DWORD value) { stages_[stage][type] = value; }
    void Remember(DWORD sampler, D3DSAMPLERSTATETYPE type, DWORD value) { samplers_[sampler][type] = value; }
    /// The value of a state that was remembered.
    DWORD ValueOf(D3DRENDERSTATETYPE state) const { return static_cast<DWORD>(render_[state]); }
    DWORD ValueOf(DWORD stage, D3DTEXTURESTAGESTATETYPE type) const { return static_cast<DWORD>(stages_[stage][type]); }
    DWORD ValueOf(DWORD sampler, D3DSAMPLERSTATETYPE type) const {
        return static_cast<DWORD>(samplers_[sampler][type]);
    }

    // What is sent as a whole
    std::array<std::optional<D3DMATRIX>, D3DTS_WORLDMATRIX(256)> transforms;   // by kind
    std::optional<D3DMATERIAL9> material;
    std::array<std::optional<DevicePtr<IDirect3DTexture9>>, kTextureStages> textures;   // by stage
    std::array<std::optional<D3DLIGHT9>, kLights> lights;
    std::array<std::optional<bool>, kLights> lights_on;

  private:
    using Value = std::int64_t;   // wider than any state, so that no value looks unknown
    static constexpr Value kUnknown = -1;
    Value render_[kRenderStateCount];
    Value stages_[kTextureStages][kStageStateCount];
    Value samplers_[kTextureStages][kSamplerStateCount];
};

/// Send… sends always; Set… and Try… send what differs from the cache. What the device refuses is an error, but for
/// Try…, which return the device's answer; it is not remembered, so that it is tried again.
///
/// A shader effect changes states past the cache, and puts back at its end what it found at its beginning. Meanwhile
/// everything is sent, whatever the cache says, and what was sent is sent once more behind the end: what the program
/// asked for in between stands, and the cache is true.
class StateSender {
  public:
    explicit StateSender(const GraphicsDevice& graphics) : graphics_(graphics) {}

    void SendRenderState(D3DRENDERSTATETYPE state, DWORD value);
    void SendRenderState(D3DRENDERSTATETYPE state, float value) { SendRenderState(state, std::bit_cast<DWORD>(value)); }
    void SetRenderState(D3DRENDERSTATETYPE state, DWORD value) {
        if (!(Knows() && cache_.Holds(state, value))) [[unlikely]]
            SendRenderState(state, value);
    }
    void SetRenderState(D3DRENDERSTATETYPE state, float value) { SetRenderState(state, std::bit_cast<DWORD>(value)); }

    /// Stages are 0 to 7.
    void SendStageState(DWORD stage, D3DTEXTURESTAGESTATETYPE type, DWORD value);
    void SetStageState(DWORD stage, D3DTEXTURESTAGESTATETYPE type, DWORD value) {
        if (!(Knows() && cache_.Holds(stage, type, value))) [[unlikely]]
            SendStageState(stage, type, value);
    }
    /// Of neighbouring types, the first of which is given.
    template <std::same_as<DWORD>... Values>
    void SetStageStates(DWORD stage, D3DTEXTURESTAGESTATETYPE first, Values... values) {
        if (Knows() && cache_.Holds(stage, first, values...)) [[likely]]
            return;
        int type = first;
        (SetStageState(stage, static_cast<D3DTEXTURESTAGESTATETYPE>(type++), values), ...);
    }
    void SetSamplerState(DWORD sampler, D3DSAMPLERSTATETYPE type, DWORD value) {
        if (!(Knows() && cache_.Holds(sampler, type, value))) [[unlikely]]
            SetOtherSamplerState(sampler, type, value);
    }
    HRESULT TrySamplerState(DWORD sampler, D3DSAMPLERSTATETYPE type, DWORD value);
    void SetTransform(D3DTRANSFORMSTATETYPE kind, const D3DMATRIX& matrix);
    void SetMaterial(const D3DMATERIAL9& material);
    void SetTexture(DWORD stage, IDirect3DTexture9* texture) {
        if (!(Knows() && cache_.Holds(stage, texture))) [[unlikely]]
            SendTexture(stage, texture);
    }
    void SendTexture(DWORD stage, IDirect3DTexture9* texture);
    /// Lights are 0 to 7.
    void SendLight(DWORD index, const D3DLIGHT9& light);
    void SetLightEnable(DWORD index, bool on);

    /// Right after an effect's Begin and End, which nest. `ended` is the answer of End; the first failure is returned,
    /// and after one nothing is known any more.
    void EffectBegun() { marks_.push_back(sent_.size()); }
    HRESULT EffectEnded(HRESULT ended);

    /// After creation, and before a reset: nothing is known, nothing is held, no effect is begun.
    void Forget();
    const GraphicsDevice& Graphics() const { return graphics_; }
    IDirect3DDevice9& Device() const { return *graphics_.Device(); }
    const KRN_Base& Reporter() const { return graphics_.Reporter(); }

  private:
    /// One thing that was sent: its value is the cache's.
    struct Sent {
        enum class Kind { Render, Stage, Sampler, Transform, Material, Texture, Light, LightEnable } kind;
        DWORD index = 0, state = 0;
        bool operator==(const Sent&) const = default;
    };
    /// Whether the cache is to be believed: no effect is begun.
    bool Knows() const { return marks_.empty(); }
    void Note(const Sent& sent);
    void SetOtherSamplerState(DWORD sampler, D3DSAMPLERSTATETYPE type, DWORD value);
    /// With the value that the cache holds.
    HRESULT SendAgain(const Sent& sent);

    const GraphicsDevice& graphics_;
    StateCache cache_;
    std::vector<Sent> sent_;           // since the outermost effect began
    std::vector<std::size_t> marks_;   // how long that was when each effect began, the innermost last
};

}   // namespace sparkrig
