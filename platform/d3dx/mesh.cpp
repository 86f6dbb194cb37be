#include <algorithm>
#include <cstring>
#include <limits>
#include <numeric>
#include <vector>

#include "platform/com/ref_counted.h"
#include "platform/d3dx/d3dx_mesh.h"

namespace sparkrig {

namespace {

// The halves of D3DXMESH_ options: the vertex buffer's bits; the index buffer's stand four places higher.
constexpr DWORD kSystemMemory = 0x10, kManaged = 0x20, kWriteOnly = 0x40, kDynamic = 0x80;
constexpr DWORD kVertexSoftware = 0x8000, kIndexSoftware = 0x10000;

struct BufferKind {
    D3DPOOL pool;
    DWORD usage;
};

BufferKind KindOf(DWORD memory_bits, bool software) {
    BufferKind kind = {D3DPOOL_DEFAULT, 0};
    if (memory_bits & kSystemMemory) kind.pool = D3DPOOL_SYSTEMMEM;
    if (memory_bits & kManaged) kind.pool = D3DPOOL_MANAGED;
    if (memory_bits & kWriteOnly) kind.usage |= D3DUSAGE_WRITEONLY;
    if (memory_bits & kDynamic) kind.usage |= D3DUSAGE_DYNAMIC;
    if (software) kind.usage |= D3DUSAGE_SOFTWAREPROCESSING;
    return kind;
}

/// Positions in the order of their keys, equal keys in the order they have.
std::vector<DWORD> StableOrder(const std::vector<DWORD>& keys) {
    std::vector<DWORD> order(keys.size());
    std::iota(order.begin(), order.end(), 0u);
    std::ranges::stable_sort(order, {}, [&keys](DWORD i) { return keys[i]; });
    return order;
}

class Mesh : public RefCounted<ID3DXMesh> {
  public:
    Mesh(IDirect3DDevice9& device, DWORD faces, DWORD vertices, DWORD options, DWORD fvf)
        : device_(DevicePtr<IDirect3DDevice9>::Share(&device)),
          faces_(faces),
          vertices_(vertices),
          options_(options),
          fvf_(fvf),
          stride_(VertexFormatStride(fvf)),
          attributes_(faces) {}

    HRESULT CreateBuffers();

    DWORD GetNumFaces() override { return faces_; }
    DWORD GetNumVertices() override { return vertices_; }
    DWORD GetFVF() override { return fvf_; }
    DWORD GetNumBytesPerVertex() override { return stride_; }
    DWORD GetOptions() override { return options_; }

    HRESULT LockVertexBuffer(DWORD flags, void** data) override {
        return Locked(vertex_buffer_->Lock(0, 0, data, flags));
    }
    HRESULT UnlockVertexBuffer() override { return Unlocked(vertex_buffer_->Unlock()); }
    HRESULT LockIndexBuffer(DWORD flags, void** data) override {
        return Locked(index_buffer_->Lock(0, 0, data, flags));
    }
    HRESULT UnlockIndexBuffer() override { return Unlocked(index_buffer_->Unlock()); }
    HRESULT LockAttributeBuffer(DWORD, DWORD** data) override {
        *data = attributes_.data();
        return Locked(D3D_OK);
    }
    HRESULT UnlockAttributeBuffer() override { return Unlocked(locks_ > 0 ? D3D_OK : D3DERR_INVALIDCALL); }

    HRESULT GetVertexBuffer(IDirect3DVertexBuffer9** buffer) override {
        vertex_buffer_->AddRef();
        *buffer = vertex_buffer_.Get();
        return D3D_OK;
    }
    HRESULT GetIndexBuffer(IDirect3DIndexBuffer9** buffer) override {
        index_buffer_->AddRef();
        *buffer = index_buffer_.Get();
        return D3D_OK;
    }
    HRESULT GetAttributeTable(D3DXATTRIBUTERANGE* table, DWORD* size) override;
    HRESULT OptimizeInplace(DWORD flags) override;
    HRESULT DrawSubset(DWORD attribute) override;

  private:
    ~Mesh() override = default;
    bool WideIndices() const { return (options_ & D3DXMESH_32BIT) != 0; }
    HRESULT Locked(HRESULT result) {
        if (SUCCEEDED(result)) ++locks_;
        return result;
    }
    HRESULT Unlocked(HRESULT result) {
        if (SUCCEEDED(result)) --locks_;
        return result;
    }

    HRESULT ReadIndices(std::vector<DWORD>& indices);
    HRESULT WriteIndices(const std::vector<DWORD>& indices);
    HRESULT MoveVertices(const std::vector<DWORD>& order);
    void SortFaces(std::vector<DWORD>& indices);
    std::vector<DWORD> VertexOrder(const std::vector<DWORD>& indices) const;
    void MakeTable(const std::vector<DWORD>& indices);
    HRESULT DrawFaces(const D3DXATTRIBUTERANGE& range);

    DevicePtr<IDirect3DDevice9> device_;
    DevicePtr<IDirect3DVertexBuffer9> vertex_buffer_;
    DevicePtr<IDirect3DIndexBuffer9> index_buffer_;
    DWORD faces_, vertices_, options_, fvf_, stride_;
    std::vector<DWORD> attributes_;           // of each face
    std::vector<D3DXATTRIBUTERANGE> table_;   // after an attribute sort
    int locks_ = 0;
};

HRESULT Mesh::CreateBuffers() {
    const BufferKind vertex = KindOf(options_, (options_ & kVertexSoftware) != 0);
    HRESULT result =
        device_->CreateVertexBuffer(vertices_ * stride_, vertex.usage, fvf_, vertex.pool, vertex_buffer_.Receive());
    if (FAILED(result)) return result;
    const BufferKind index = KindOf(options_ >> 4, (options_ & kIndexSoftware) != 0);
    const DWORD index_bytes = WideIndices() ? 4 : 2;
    return device_->CreateIndexBuffer(faces_ * 3 * index_bytes, index.usage,
                                      WideIndices() ? D3DFMT_INDEX32 : D3DFMT_INDEX16, index.pool,
                                      index_buffer_.Receive());
}

HRESULT Mesh::GetAttributeTable(D3DXATTRIBUTERANGE* table, DWORD* size) {
    const DWORD entries = static_cast<DWORD>(table_.size());
    if (table) std::copy_n(table_.begin(), std::min(entries, *size), table);
    *size = entries;
    return D3D_OK;
}

HRESULT Mesh::ReadIndices(std::vector<DWORD>& indices) {
    void* data = nullptr;
    if (const HRESULT result = LockIndexBuffer(D3DLOCK_READONLY, &data); FAILED(result)) return result;
    indices.resize(static_cast<std::size_t>(faces_) * 3);
    for (std::size_t i = 0; i < indices.size(); ++i) {
        indices[i] = WideIndices() ? static_cast<const DWORD*>(data)[i] : static_cast<const WORD*>(data)[i];
    }
    if (const HRESULT result = UnlockIndexBuffer(); FAILED(result)) return result;
    const bool valid = std::ranges::all_of(indices, [this](DWORD index) { return index < vertices_; });
    return valid ? D3D_OK : D3DXERR_INVALIDMESH;
}

HRESULT Mesh::WriteIndices(const std::vector<DWORD>& indices) {
    void* data = nullptr;
    const HRESULT result = LockIndexBuffer(0, &data);
    if (FAILED(result)) return result;
    for (std::size_t i = 0; i < indices.size(); ++i) {
        if (WideIndices()) {
            static_cast<DWORD*>(data)[i] = indices[i];
        } else {
            static_cast<WORD*>(data)[i] = static_cast<WORD>(indices[i]);
        }
    }
    return UnlockIndexBuffer();
}

HRESULT Mesh::MoveVertices(const std::vector<DWORD>& order) {
    void* data = nullptr;
    const HRESULT result = LockVertexBuffer(0, &data);
    if (FAILED(result)) return result;
    auto* bytes = static_cast<BYTE*>(data);
    const std::vector<BYTE> old(bytes, bytes + static_cast<std::size_t>(vertices_) * stride_);
    for (DWORD i = 0; i < vertices_; ++i) {
        std::memcpy(bytes + static_cast<std::size_t>(i) * stride_,
                    old.data() + static_cast<std::size_t>(order[i]) * stride_, stride_);
    }
    return UnlockVertexBuffer();
}

void Mesh::SortFaces(std::vector<DWORD>& indices) {
    const std::vector<DWORD> order = StableOrder(attributes_);
    const std::vector<DWORD> old_attributes = attributes_, old_indices = indices;
    for (DWORD face = 0; face < faces_; ++face) {
        attributes_[face] = old_attributes[order[face]];
        std::copy_n(&old_indices[static_cast<std::size_t>(order[face]) * 3], 3,
                    &indices[static_cast<std::size_t>(face) * 3]);
    }
}

std::vector<DWORD> Mesh::VertexOrder(const std::vector<DWORD>& indices) const {
    std::vector<DWORD> lowest(vertices_, std::numeric_limits<DWORD>::max());   // unused ones stay last
    for (std::size_t i = 0; i < indices.size(); ++i) {
        lowest[indices[i]] = std::min(lowest[indices[i]], attributes_[i / 3]);
    }
    return StableOrder(lowest);
}

void Mesh::MakeTable(const std::vector<DWORD>& indices) {
    table_.clear();
    for (DWORD first = 0, end = 0; first < faces_; first = end) {
        while (end < faces_ && attributes_[end] == attributes_[first]) ++end;
        const auto [low, high] = std::minmax_element(indices.begin() + 3 * static_cast<std::ptrdiff_t>(first),
                                                     indices.begin() + 3 * static_cast<std::ptrdiff_t>(end));
        table_.push_back({attributes_[first], first, end - first, *low, *high - *low + 1});
    }
}

HRESULT Mesh::OptimizeInplace(DWORD flags) {
    if (locks_ > 0) return D3DERR_INVALIDCALL;
    if (!(flags & D3DXMESHOPT_ATTRSORT)) return D3D_OK;
    std::vector<DWORD> indices;
    if (const HRESULT result = ReadIndices(indices); FAILED(result)) return result;
    SortFaces(indices);
    const std::vector<DWORD> order = VertexOrder(indices);
    std::vector<DWORD> new_place(vertices_);
    for (DWORD i = 0; i < vertices_; ++i) new_place[order[i]] = i;
    for (DWORD& index : indices) index = new_place[index];
    if (const HRESULT result = MoveVertices(order); FAILED(result)) return result;
    if (const HRESULT result = WriteIndices(indices); FAILED(result)) return result;
    MakeTable(indices);
    return D3D_OK;
}

HRESULT Mesh::DrawFaces(const D3DXATTRIBUTERANGE& range) {
    HRESULT result = device_->SetStreamSource(0, vertex_buffer_.Get(), 0, stride_);
    if (SUCCEEDED(result)) result = device_->SetFVF(fvf_);
    if (SUCCEEDED(result)) result = device_->SetIndices(index_buffer_.Get());
    if (FAILED(result)) return result;
    return device_->DrawIndexedPrimitive(D3DPT_TRIANGLELIST, 0, range.VertexStart, range.VertexCount,
                                         3 * range.FaceStart, range.FaceCount);
}

HRESULT Mesh::DrawSubset(DWORD attribute) {
    if (!table_.empty()) {
        const auto row = std::ranges::find(table_, attribute, &D3DXATTRIBUTERANGE::AttribId);
        return row == table_.end() ? D3D_OK : DrawFaces(*row);
    }
    for (DWORD first = 0, end = 0; first < faces_; first = end) {   // unsorted: run by run
        while (end < faces_ && attributes_[end] == attributes_[first]) ++end;
        if (attributes_[first] != attribute) continue;
        const HRESULT result = DrawFaces({attribute, first, end - first, 0, vertices_});
        if (FAILED(result)) return result;
    }
    return D3D_OK;
}

}   // namespace

HRESULT D3DXCreateMeshFVF(DWORD faces, DWORD vertices, DWORD options, DWORD fvf, IDirect3DDevice9* device,
                          ID3DXMesh** mesh) {
    const DWORD stride = VertexFormatStride(fvf);
    const bool transformed = (fvf & D3DFVF_POSITION_MASK) == D3DFVF_XYZRHW;
    constexpr DWORD kMost = std::numeric_limits<DWORD>::max();
    if (!device || !mesh || faces == 0 || vertices == 0 || stride == 0 || transformed) return D3DERR_INVALIDCALL;
    if (faces > kMost / 12 || vertices > kMost / stride) return E_OUTOFMEMORY;
    if (!(options & D3DXMESH_32BIT) && vertices > 0x10000) return D3DERR_INVALIDCALL;
    auto* created = new Mesh(*device, faces, vertices, options, fvf);
    DevicePtr<ID3DXMesh> holder(created);
    const HRESULT result = created->CreateBuffers();
    if (FAILED(result)) return result;
    *mesh = holder.Get();
    (*mesh)->AddRef();
    return D3D_OK;
}

}   // namespace sparkrig
