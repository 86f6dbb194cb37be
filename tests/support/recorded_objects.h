// The recording device's objects. Memory stands behind every one, so that locks work.
#pragma once
#include <memory>
#include <vector>

#include "platform/com/ref_counted.h"
#include "platform/d3d9/device_rules.h"
#include "tests/support/recording.h"

namespace sparkrig {

/// Counts itself in its recording and carries a serial number.
template <class Interface>
class RecordedObject : public RefCounted<Interface> {
  public:
    UINT Serial() const { return serial_; }

  protected:
    RecordedObject(Recording& recording, bool default_pool)
        : recording_(recording), default_pool_(default_pool), serial_(recording.ObjectMade(default_pool)) {}
    ~RecordedObject() override { recording_.ObjectGone(default_pool_); }
    /// Records a call; `action` is what it does when it is not to fail.
    template <class Action>
    HRESULT Do(const char* method, const std::vector<DWORD>& arguments, Action action) {
        const HRESULT refusal = recording_.Record(method, arguments);
        return FAILED(refusal) ? refusal : action();
    }

    Recording& recording_;

  private:
    bool default_pool_;
    UINT serial_;
};

/// The pixels of one surface or texture level.
struct RecordedImage {
    D3DSURFACE_DESC desc;
    const PixelFormat& format;
    bool lockable, plain;   // plain: off screen, no level of a texture
    INT pitch = 0;
    std::vector<BYTE> bytes;
    bool locked = false;

    RecordedImage(const D3DSURFACE_DESC& description, bool is_lockable, bool is_plain = false);
    HRESULT Lock(D3DLOCKED_RECT* result, const RECT* rect, DWORD flags);
    HRESULT Unlock();
};

class RecordedSurface : public RecordedObject<IDirect3DSurface9> {
  public:
    /// A surface of its own.
    RecordedSurface(Recording& recording, const D3DSURFACE_DESC& desc, bool lockable, bool plain = false)
        : RecordedSurface(recording, nullptr, std::make_shared<RecordedImage>(desc, lockable, plain)) {}
    /// A level of a texture, which it keeps alive.
    RecordedSurface(Recording& recording, IDirect3DTexture9* owner, std::shared_ptr<RecordedImage> image)
        : RecordedObject(recording, image->desc.Pool == D3DPOOL_DEFAULT),
          owner_(DevicePtr<IDirect3DTexture9>::Share(owner)),
          image_(std::move(image)) {}

    HRESULT GetDesc(D3DSURFACE_DESC* desc) override {
        return Do("GetDesc", {Serial()}, [&] { return *desc = image_->desc, D3D_OK; });
    }
    HRESULT LockRect(D3DLOCKED_RECT* locked, const RECT* rect, DWORD flags) override {
        return Do("LockRect", {Serial(), flags}, [&] { return image_->Lock(locked, rect, flags); });
    }
    HRESULT UnlockRect() override {
        return Do("UnlockRect", {Serial()}, [&] { return image_->Unlock(); });
    }
    RecordedImage& Image() { return *image_; }

  private:
    DevicePtr<IDirect3DTexture9> owner_;
    std::shared_ptr<RecordedImage> image_;
};

class RecordedTexture : public RecordedObject<IDirect3DTexture9> {
  public:
    RecordedTexture(Recording& recording, const D3DSURFACE_DESC& top, UINT levels);

    DWORD GetLevelCount() override { return static_cast<DWORD>(levels_.size()); }
    HRESULT GetLevelDesc(UINT level, D3DSURFACE_DESC* desc) override {
        return DoAt(level, "GetLevelDesc", level, [&](const auto& image) { return *desc = image->desc, D3D_OK; });
    }
    HRESULT GetSurfaceLevel(UINT level, IDirect3DSurface9** surface) override {
        return DoAt(level, "GetSurfaceLevel", level,
                    [&](const auto& image) { return *surface = new RecordedSurface(recording_, this, image), D3D_OK; });
    }
    HRESULT LockRect(UINT level, D3DLOCKED_RECT* locked, const RECT* rect, DWORD flags) override {
        return DoAt(level, "LockRect", flags, [&](const auto& image) { return image->Lock(locked, rect, flags); });
    }
    HRESULT UnlockRect(UINT level) override {
        return DoAt(level, "UnlockRect", level, [&](const auto& image) { return image->Unlock(); });
    }
    RecordedImage& Level(UINT level) { return *levels_[level]; }

  private:
    template <class Action>
    HRESULT DoAt(UINT level, const char* method, DWORD argument, Action action) {
        return Do(method, {Serial(), argument},
                  [&] { return level < levels_.size() ? action(levels_[level]) : D3DERR_INVALIDCALL; });
    }

    std::vector<std::shared_ptr<RecordedImage>> levels_;
};

/// What vertex and index buffers have in common: bytes and a count of locks.
template <class Interface>
class RecordedBuffer : public RecordedObject<Interface> {
  public:
    RecordedBuffer(Recording& recording, UINT size, D3DPOOL pool, DWORD element)
        : RecordedObject<Interface>(recording, pool == D3DPOOL_DEFAULT), bytes(size), element_bytes(element) {}

    HRESULT Lock(UINT offset, UINT size, void** data, DWORD flags) override {
        return this->Do("Lock", {this->Serial(), offset, size, flags}, [&] {
            if (const HRESULT refused = CheckBufferLock(bytes.size(), offset, size); FAILED(refused)) return refused;
            ++locks;
            return *data = bytes.data() + offset, D3D_OK;
        });
    }
    HRESULT Unlock() override {
        return this->Do("Unlock", {this->Serial()}, [&] { return locks > 0 ? --locks, D3D_OK : D3DERR_INVALIDCALL; });
    }

    std::vector<BYTE> bytes;
    DWORD element_bytes;   // of an index
    int locks = 0;
};

template <class Interface>
struct RecordedShader : RecordedObject<Interface> {
    explicit RecordedShader(Recording& recording) : RecordedObject<Interface>(recording, false) {}
};

template <class Interface>
UINT SerialOf(Interface* object) {
    return object ? static_cast<RecordedObject<Interface>*>(object)->Serial() : 0;
}

/// The contract's Get functions: a further reference to what is held; null stays null.
template <class Interface>
HRESULT Give(const DevicePtr<Interface>& object, Interface** out) {
    if (object) object->AddRef();
    *out = object.Get();
    return D3D_OK;
}

}   // namespace sparkrig
