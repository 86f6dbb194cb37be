// A vertex buffer of one vertex type together with how to draw it.
#pragma once
#include <cstdint>

#include "gfx/states/point_sprite_settings.h"
#include "platform/d3d9/d3d9.h"
#include "scene/vertex_layout.h"
#include "scene/vertex_list_base.h"

namespace sparkrig {

class KRN_ShaderEffect;

struct KRN_TLVertex {
    static constexpr DWORD kFormat = 0x1C4;
    float x, y, z, rhw;
    D3DCOLOR diffuse, specular;
    float u, v;
};

struct KRN_LVertex {
    static constexpr DWORD kFormat = 0x1C2;
    float x, y, z;
    D3DCOLOR diffuse, specular;
    float u, v;
};

struct KRN_VertexPosTex {
    static constexpr DWORD kFormat = 0x102;
    float x, y, z, u, v;
};

struct KRN_PointVertex {
    static constexpr DWORD kFormat = 0x42;
    float x, y, z;
    D3DCOLOR diffuse;
};

/// A rectangle of the target, or of a picture, in its pixels.
struct Quad2D {
    float left, top, right, bottom;
};

enum class PrimitiveMode : std::int32_t {
    PointList = 1,
    LineList = 2,
    LineStrip = 3,
    TriangleList = 4,
    TriangleStrip = 5,
    TriangleFan = 6,
};

/// The number of primitives that `elements` vertices make; an unknown mode is an error of `reporter`.
UINT PrimitiveCount(const KRN_Base& reporter, int mode, UINT elements);

/// Empty until KRN_Gfx::CreateVertexList. A list in the default pool must let go of its buffer before a device reset
/// and be created again afterwards, by its owner.
class KRN_VertexList : public KRN_VertexListBase {
  public:
    KRN_VertexList(PrimitiveMode mode, DWORD format) : mode_(mode), layout_(ComputeVertexLayout(format)) {
        point_sprites_.size = 4.0f;
    }
    KRN_VertexList(const KRN_VertexList&) = delete;
    KRN_VertexList& operator=(const KRN_VertexList&) = delete;
    ~KRN_VertexList() override = default;

    /// First element, element count; 0, 0 locks all. Null never comes back: a failing lock is an error.
    void* LockElements(UINT first, UINT count, DWORD flags);
    bool Unlock();

    PrimitiveMode Mode() const { return mode_; }
    void SetMode(PrimitiveMode mode);
    const VertexLayout& Layout() const { return layout_; }
    UINT ElementCount() const { return elements_; }
    UINT PrimitiveCount() const { return primitives_; }
    bool IsLocked() const { return locked_; }
    /// Drawn with this effect where no other is set; borrowed, null for none.
    void SetEffect(KRN_ShaderEffect* effect) { effect_ = effect; }
    KRN_ShaderEffect* Effect() const { return effect_; }
    PointSpriteSettings& PointSprites() { return point_sprites_; }
    /// Its vertices are processed in software although the device has mixed processing.
    bool SoftwareProcessing() const { return (usage_ & D3DUSAGE_SOFTWAREPROCESSING) != 0; }
    D3DPOOL Pool() const { return pool_; }
    IDirect3DVertexBuffer9* Buffer() const { return buffer_.Get(); }
    /// Lets go of the device buffer.
    void ReleaseBuffer();

  private:
    friend class VertexListDrawer;
    PrimitiveMode mode_;
    VertexLayout layout_;
    DevicePtr<IDirect3DVertexBuffer9> buffer_;
    DWORD usage_ = 0;
    D3DPOOL pool_ = D3DPOOL_MANAGED;
    UINT elements_ = 0, primitives_ = 0;
    bool locked_ = false;
    PointSpriteSettings point_sprites_;
    KRN_ShaderEffect* effect_ = nullptr;
};

/// A list of one vertex type. Its format is the type's kFormat.
template <class Vertex>
class KRN_VertexListTemp : public KRN_VertexList {
  public:
    explicit KRN_VertexListTemp(PrimitiveMode mode = PrimitiveMode::TriangleList)
        : KRN_VertexList(mode, Vertex::kFormat) {}
    Vertex* Lock(UINT first, UINT count, DWORD flags) {
        return static_cast<Vertex*>(LockElements(first, count, flags));
    }
};

}   // namespace sparkrig
