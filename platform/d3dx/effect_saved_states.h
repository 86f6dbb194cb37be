// What an effect changes of a device, kept at Begin and put back at End.
#pragma once
#include <tuple>
#include <variant>
#include <vector>

#include "platform/d3d9/d3d9.h"
#include "platform/d3dx/effect_file.h"

namespace sparkrig {

/// One thing that the device holds. Lights and the material are things as a whole: their members have no keys.
struct StateKey {
    StateGroup group = StateGroup::Render;
    DWORD state = 0;
    DWORD index = 0;
    bool operator==(const StateKey&) const = default;
    bool operator<(const StateKey& other) const {
        return std::tie(group, state, index) < std::tie(other.group, other.state, other.index);
    }
};

/// A value that a state of the device can have.
using StateValue = std::variant<DWORD, D3DMATRIX, D3DLIGHT9, D3DMATERIAL9, DevicePtr<IDirect3DTexture9>,
                                DevicePtr<IDirect3DVertexShader9>, DevicePtr<IDirect3DPixelShader9>>;

/// Sets a state, unless the device holds the value already.
HRESULT SetState(IDirect3DDevice9& device, const StateKey& key, const StateValue& value);

/// What a technique may change, as the device held it.
class SavedStates {
  public:
    /// Reads every state of `keys` from the device.
    HRESULT Capture(IDirect3DDevice9& device, const std::vector<StateKey>& keys);
    /// Puts all of them back and lets go of what they hold.
    HRESULT Restore(IDirect3DDevice9& device);
    /// Lets go without putting anything back.
    void Forget() { saved_.clear(); }

  private:
    struct Saved {
        StateKey key;
        StateValue value;
    };

    std::vector<Saved> saved_;   // keeps its memory from one use to the next
};

}   // namespace sparkrig
