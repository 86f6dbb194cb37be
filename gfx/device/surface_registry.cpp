#include "gfx/device/surface_registry.h"

#include <algorithm>
#include <utility>

namespace sparkrig {

bool SurfaceRegistry::IsSlot(int index) const {
    return index >= 0 && index < static_cast<int>(slots_.size()) && slots_[static_cast<std::size_t>(index)].in_use;
}

int SurfaceRegistry::Add(DevicePtr<IDirect3DSurface9> surface) {
    auto slot = std::ranges::find(slots_, false, &Slot::in_use);
    if (slot == slots_.end()) slot = slots_.emplace(slots_.end());
    *slot = {std::move(surface), true};
    return static_cast<int>(slot - slots_.begin());
}

void SurfaceRegistry::Remove(int index) {
    if (IsSlot(index)) slots_[static_cast<std::size_t>(index)] = {};
}

IDirect3DSurface9* SurfaceRegistry::Get(int index) const {
    return IsSlot(index) ? slots_[static_cast<std::size_t>(index)].surface.Get() : nullptr;
}

void SurfaceRegistry::ReleaseDefaultPool() {
    for (Slot& slot : slots_) {
        D3DSURFACE_DESC desc = {};
        if (!slot.surface) continue;
        const HRESULT result = slot.surface->GetDesc(&desc);
        if (FAILED(result)) reporter_.Error("GetDesc failed: %s", DXGetErrorString9(result));
        if (desc.Pool == D3DPOOL_DEFAULT) slot.surface.Reset();
    }
}

}   // namespace sparkrig
