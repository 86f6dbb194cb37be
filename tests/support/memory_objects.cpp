#include "tests/support/memory_objects.h"

#include <algorithm>

namespace sparkrig {

MemoryImage::MemoryImage(const D3DSURFACE_DESC& description, bool is_lockable, bool is_plain)
    : desc(description), format(*FindPixelFormat(desc.Format)), lockable(is_lockable), plain(is_plain) {
    // Wider than the row, so that code that mistakes the pitch for the width is found out.
    pitch = static_cast<INT>(format.Pitch(desc.Width) + 16);
    bytes.resize(static_cast<std::size_t>(pitch) * format.Rows(desc.Height));
}

HRESULT MemoryImage::Lock(D3DLOCKED_RECT* result, const RECT* rect, DWORD flags) {
    if (locked || !lockable) return D3DERR_INVALIDCALL;
    if (const HRESULT refused = CheckLock(desc, rect, flags); FAILED(refused)) return refused;
    RECT area;
    TakeRect(desc, rect, area);
    locked = true;
    result->Pitch = pitch;
    result->pBits = bytes.data() + static_cast<std::size_t>(pitch) * (static_cast<UINT>(area.top) / format.Step()) +
                    format.RowBytes(static_cast<UINT>(area.left));
    return D3D_OK;
}

HRESULT MemoryImage::Unlock() {
    if (!locked) return D3DERR_INVALIDCALL;
    locked = false;
    return D3D_OK;
}

MemoryTexture::MemoryTexture(MemoryAdapter& adapter, const D3DSURFACE_DESC& top, UINT levels)
    : MemoryObject(adapter, top.Pool), number_(++adapter.textures_made) {
    D3DSURFACE_DESC desc = top;
    for (UINT level = 0; level < levels; ++level) {
        levels_.push_back(std::make_shared<MemoryImage>(desc, LevelsLockable(desc.Usage, desc.Pool)));
        desc.Width = std::max(desc.Width / 2, 1u);
        desc.Height = std::max(desc.Height / 2, 1u);
    }
}

}   // namespace sparkrig
