#include "platform/d3d9_gl/buffers.h"

#include <cstring>
#include <utility>

namespace sparkrig {

BufferMemory::BufferMemory(std::shared_ptr<GlContext> context, UINT bytes, D3DPOOL pool)
    : context_(std::move(context)), pool_(pool), bytes_(bytes) {
    if (pool_ == D3DPOOL_DEFAULT) ++context_->default_pool_objects;
}

BufferMemory::~BufferMemory() {
    if (pool_ == D3DPOOL_DEFAULT) --context_->default_pool_objects;
    if (own_ == 0 || !context_->Activate()) return;
    glDeleteBuffers(1, &own_);
    ++context_->deletions;
}

HRESULT BufferMemory::Lock(UINT offset, UINT size, void** data, DWORD flags) {
    if (data == nullptr) return D3DERR_INVALIDCALL;
    if (const HRESULT result = CheckBufferLock(bytes_.size(), offset, size); FAILED(result)) return result;
    *data = bytes_.data() + offset;
    ++locks_;
    if ((flags & D3DLOCK_READONLY) == 0) {
        own_current_ = false;
        streamed_.serial = 0;
    }
    return D3D_OK;
}

HRESULT BufferMemory::Unlock() {
    if (locks_ == 0) return D3DERR_INVALIDCALL;
    --locks_;
    return D3D_OK;
}

GlBytes BufferMemory::Place(std::size_t first, std::size_t size, std::size_t alignment) {
    const bool drawn_before = streamed_.serial != 0 && streamed_frame_ != context_->frame;
    if (!own_current_ && (drawn_before || size > StreamRing::kLargestAllocation)) MoveIntoOwnBuffer();
    if (own_current_) return {own_, first};
    return PlaceStreamed(first, size, alignment);
}

GlBytes BufferMemory::PlaceStreamed(std::size_t first, std::size_t size, std::size_t alignment) {
    StreamRing& ring = context_->Ring();
    const bool there = streamed_.serial == ring.Serial() && streamed_.alignment == alignment &&
                       first >= streamed_.first && first + size <= streamed_.first + streamed_.size &&
                       (first - streamed_.first) % alignment == 0;
    if (!there) {
        const StreamRing::Place place = ring.Allocate(size, alignment);
        std::memcpy(place.memory, bytes_.data() + first, size);
        streamed_ = {ring.Serial(), first, size, alignment, place.offset};
        streamed_frame_ = context_->frame;
    }
    return {ring.Buffer(), streamed_.offset + (first - streamed_.first)};
}

void BufferMemory::MoveIntoOwnBuffer() {
    const auto size = static_cast<GLsizeiptr>(bytes_.size());
    if (own_ == 0) {
        glCreateBuffers(1, &own_);
        glNamedBufferStorage(own_, size, bytes_.data(), GL_DYNAMIC_STORAGE_BIT);
    } else {
        glInvalidateBufferData(own_);   // draws that still read the old bytes keep them
        glNamedBufferSubData(own_, 0, size, bytes_.data());
    }
    own_current_ = true;
}

}   // namespace sparkrig
