// The device surfaces that KRN_Gfx holds beside those of the swap chain.
#pragma once
#include <vector>

#include "base/error.h"
#include "platform/d3d9/d3d9.h"

namespace sparkrig {

class SurfaceRegistry {
  public:
    /// What fails is reported by `reporter`, which outlives the registry.
    explicit SurfaceRegistry(const KRN_Base& reporter) : reporter_(reporter) {}

    /// The new slot's index. It is the caller's until Remove.
    int Add(DevicePtr<IDirect3DSurface9> surface);
    /// -1 does nothing.
    void Remove(int index);
    /// Borrowed; null for -1 and for a slot that was cleared.
    IDirect3DSurface9* Get(int index) const;
    /// Before a reset: clears the slots of all surfaces of the default pool.
    void ReleaseDefaultPool();

  private:
    struct Slot {
        DevicePtr<IDirect3DSurface9> surface;
        bool in_use = false;
    };
    bool IsSlot(int index) const;

    const KRN_Base& reporter_;
    std::vector<Slot> slots_;
};

}   // namespace sparkrig
