// The second implementation of the device contract: everything lies in memory. It follows the rules, keeps states,
// locks, copies and fills, and notes each draw, but draws nothing.
#pragma once
#include <algorithm>
#include <array>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/com/ref_counted.h"
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

// ---- The device's objects. Memory stands behind every one, so that locks work.

/// Counts itself where it lies in the default pool.
template <class Interface>
class MemoryObject : public RefCounted<Interface> {
  protected:
    MemoryObject(MemoryAdapter& adapter, D3DPOOL pool) : adapter_(adapter), in_default_pool_(pool == D3DPOOL_DEFAULT) {
        adapter_.default_pool_objects += in_default_pool_;
    }
    ~MemoryObject() override { adapter_.default_pool_objects -= in_default_pool_; }

    MemoryAdapter& adapter_;

  private:
    bool in_default_pool_;
};

/// The pixels of one surface or texture level.
struct MemoryImage {
    D3DSURFACE_DESC desc;
    const PixelFormat& format;
    bool lockable, plain;   // plain: off screen, no level of a texture
    INT pitch = 0;
    std::vector<BYTE> bytes;
    bool locked = false;

    MemoryImage(const D3DSURFACE_DESC& description, bool is_lockable, bool is_plain = false)
        : desc(description), format(*FindPixelFormat(desc.Format)), lockable(is_lockable), plain(is_plain) {
        // Wider than the row, so that code that mistakes the pitch for the width is found out.
        pitch = static_cast<INT>(format.Pitch(desc.Width) + 16);
        bytes.resize(static_cast<std::size_t>(pitch) * format.Rows(desc.Height));
    }
    HRESULT Lock(D3DLOCKED_RECT* result, const RECT* rect, DWORD flags) {
        if (locked || !lockable) return D3DERR_INVALIDCALL;
        if (const HRESULT refused = CheckLock(desc, rect, flags); FAILED(refused)) return refused;
        RECT area;
        TakeRect(desc, rect, area);
        locked = true;
        *result = {pitch, bytes.data() + pitch * (area.top / static_cast<LONG>(format.Step())) +
                              format.RowBytes(static_cast<UINT>(area.left))};
        return D3D_OK;
    }
    HRESULT Unlock() { return std::exchange(locked, false) ? D3D_OK : D3DERR_INVALIDCALL; }
};

class MemorySurface : public MemoryObject<IDirect3DSurface9> {
  public:
    /// A surface of its own.
    MemorySurface(MemoryAdapter& adapter, const D3DSURFACE_DESC& desc, bool lockable, bool plain = false)
        : MemorySurface(adapter, nullptr, std::make_shared<MemoryImage>(desc, lockable, plain)) {}
    /// A level of a texture, which it keeps alive.
    MemorySurface(MemoryAdapter& adapter, IDirect3DTexture9* owner, std::shared_ptr<MemoryImage> image)
        : MemoryObject(adapter, image->desc.Pool),
          owner_(DevicePtr<IDirect3DTexture9>::Share(owner)),
          image_(std::move(image)) {}

    HRESULT GetDesc(D3DSURFACE_DESC* desc) override { return *desc = image_->desc, D3D_OK; }
    HRESULT LockRect(D3DLOCKED_RECT* locked, const RECT* rect, DWORD flags) override {
        return image_->Lock(locked, rect, flags);
    }
    HRESULT UnlockRect() override { return image_->Unlock(); }
    MemoryImage& Image() { return *image_; }

  private:
    DevicePtr<IDirect3DTexture9> owner_;
    std::shared_ptr<MemoryImage> image_;
};

class MemoryTexture : public MemoryObject<IDirect3DTexture9> {
  public:
    MemoryTexture(MemoryAdapter& adapter, D3DSURFACE_DESC desc, UINT levels)
        : MemoryObject(adapter, desc.Pool), number_(++adapter.textures_made) {
        for (; levels_.size() < levels;
             desc.Width = std::max(desc.Width / 2, 1u), desc.Height = std::max(desc.Height / 2, 1u))
            levels_.push_back(std::make_shared<MemoryImage>(desc, LevelsLockable(desc.Usage, desc.Pool)));
    }

    DWORD GetLevelCount() override { return static_cast<DWORD>(levels_.size()); }
    HRESULT GetLevelDesc(UINT level, D3DSURFACE_DESC* desc) override {
        return level < levels_.size() ? (*desc = Level(level).desc, D3D_OK) : D3DERR_INVALIDCALL;
    }
    HRESULT GetSurfaceLevel(UINT level, IDirect3DSurface9** surface) override {
        if (level >= levels_.size()) return D3DERR_INVALIDCALL;
        return *surface = new MemorySurface(adapter_, this, levels_[level]), D3D_OK;
    }
    HRESULT LockRect(UINT level, D3DLOCKED_RECT* locked, const RECT* rect, DWORD flags) override {
        return level < levels_.size() ? Level(level).Lock(locked, rect, flags) : D3DERR_INVALIDCALL;
    }
    HRESULT UnlockRect(UINT level) override {
        return level < levels_.size() ? Level(level).Unlock() : D3DERR_INVALIDCALL;
    }
    MemoryImage& Level(UINT level) { return *levels_[level]; }
    UINT Number() const { return number_; }

  private:
    std::vector<std::shared_ptr<MemoryImage>> levels_;
    UINT number_;
};

/// What vertex and index buffers have in common: bytes and a count of locks.
template <class Interface>
class MemoryBuffer : public MemoryObject<Interface> {
  public:
    MemoryBuffer(MemoryAdapter& adapter, UINT size, D3DPOOL pool, DWORD element)
        : MemoryObject<Interface>(adapter, pool), bytes(size), element_bytes(element) {}

    HRESULT Lock(UINT offset, UINT size, void** data, DWORD) override {
        if (const HRESULT refused = CheckBufferLock(bytes.size(), offset, size); FAILED(refused)) return refused;
        ++locks;
        return *data = bytes.data() + offset, D3D_OK;
    }
    HRESULT Unlock() override { return locks > 0 ? --locks, D3D_OK : D3DERR_INVALIDCALL; }

    std::vector<BYTE> bytes;
    DWORD element_bytes;   // of an index
    int locks = 0;
};

template <class Interface>
struct MemoryShader : RefCounted<Interface> {};

}   // namespace sparkrig
