// The recording device's objects. Memory stands behind every one, so that locks work.
#pragma once
#include <memory>
#include <vector>

#include "platform/d3d9/ref_counted.h"
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

    Recording& recording_;

  private:
    bool default_pool_;
    UINT serial_;
};

/// The pixels of one surface or texture level.
struct RecordedImage {
    D3DSURFACE_DESC desc;
    INT pitch = 0;
    std::vector<BYTE> bytes;
    bool locked = false;

    explicit RecordedImage(const D3DSURFACE_DESC& description);
    HRESULT Lock(D3DLOCKED_RECT* result, const RECT* rect, DWORD flags);
    HRESULT Unlock();
    bool Lockable() const;
};

class RecordedTexture;

class RecordedSurface : public RecordedObject<IDirect3DSurface9> {
  public:
    /// A surface of its own.
    RecordedSurface(Recording& recording, const D3DSURFACE_DESC& desc);
    /// A level of a texture, which it keeps alive.
    RecordedSurface(Recording& recording, RecordedTexture& owner, std::shared_ptr<RecordedImage> image);
    ~RecordedSurface() override;

    HRESULT GetDesc(D3DSURFACE_DESC* desc) override;
    HRESULT LockRect(D3DLOCKED_RECT* locked, const RECT* rect, DWORD flags) override;
    HRESULT UnlockRect() override;
    RecordedImage& Image() { return *image_; }

  private:
    DevicePtr<IDirect3DTexture9> owner_;
    std::shared_ptr<RecordedImage> image_;
};

class RecordedTexture : public RecordedObject<IDirect3DTexture9> {
  public:
    RecordedTexture(Recording& recording, const D3DSURFACE_DESC& top, UINT levels);

    DWORD GetLevelCount() override { return static_cast<DWORD>(levels_.size()); }
    HRESULT GetLevelDesc(UINT level, D3DSURFACE_DESC* desc) override;
    HRESULT GetSurfaceLevel(UINT level, IDirect3DSurface9** surface) override;
    HRESULT LockRect(UINT level, D3DLOCKED_RECT* locked, const RECT* rect, DWORD flags) override;
    HRESULT UnlockRect(UINT level) override;
    RecordedImage& Level(UINT level) { return *levels_[level]; }

  private:
    std::vector<std::shared_ptr<RecordedImage>> levels_;
};

/// What vertex and index buffers have in common: bytes and a count of locks.
template <class Interface>
class RecordedBuffer : public RecordedObject<Interface> {
  public:
    RecordedBuffer(Recording& recording, UINT size, DWORD use, D3DPOOL where)
        : RecordedObject<Interface>(recording, where == D3DPOOL_DEFAULT), bytes(size), usage(use), pool(where) {}

    HRESULT Lock(UINT offset, UINT size, void** data, DWORD flags) override {
        const HRESULT result = this->recording_.Record("Lock", {this->Serial(), offset, size, flags});
        if (FAILED(result)) return result;
        if (offset > bytes.size() || size > bytes.size() - offset) return D3DERR_INVALIDCALL;
        ++locks;
        *data = bytes.data() + offset;
        return D3D_OK;
    }
    HRESULT Unlock() override {
        const HRESULT result = this->recording_.Record("Unlock", {this->Serial()});
        if (FAILED(result)) return result;
        if (locks == 0) return D3DERR_INVALIDCALL;
        --locks;
        return D3D_OK;
    }

    std::vector<BYTE> bytes;
    DWORD usage;
    D3DPOOL pool;
    int locks = 0;
};
using RecordedVertexBuffer = RecordedBuffer<IDirect3DVertexBuffer9>;
using RecordedIndexBuffer = RecordedBuffer<IDirect3DIndexBuffer9>;

template <class Interface>
class RecordedShader : public RecordedObject<Interface> {
  public:
    RecordedShader(Recording& recording, const ShaderCode& source)
        : RecordedObject<Interface>(recording, false), code(source) {}
    ShaderCode code;
};

inline UINT SerialOf(IDirect3DTexture9* texture) {
    return texture ? static_cast<RecordedTexture*>(texture)->Serial() : 0;
}
inline UINT SerialOf(IDirect3DSurface9* surface) {
    return surface ? static_cast<RecordedSurface*>(surface)->Serial() : 0;
}
inline UINT SerialOf(IDirect3DVertexBuffer9* buffer) {
    return buffer ? static_cast<RecordedVertexBuffer*>(buffer)->Serial() : 0;
}
inline UINT SerialOf(IDirect3DIndexBuffer9* buffer) {
    return buffer ? static_cast<RecordedIndexBuffer*>(buffer)->Serial() : 0;
}
template <class Interface>
UINT SerialOfShader(Interface* shader) {
    return shader ? static_cast<RecordedShader<Interface>*>(shader)->Serial() : 0;
}

/// The contract's Get functions: a further reference to what is held; null stays null.
template <class Interface>
HRESULT Give(const DevicePtr<Interface>& object, Interface** out) {
    if (object) object->AddRef();
    *out = object.Get();
    return D3D_OK;
}

/// Bytes of a row of `width` pixels (of a row of 4 x 4 blocks for compressed formats), and how many such rows.
UINT RowBytes(D3DFORMAT format, UINT width);
UINT RowCount(D3DFORMAT format, UINT height);

}   // namespace sparkrig
