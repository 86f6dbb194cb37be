#include "platform/d3d9_gl/stream_ring.h"

namespace sparkrig {

StreamRing::StreamRing() {
    constexpr GLbitfield kAccess = GL_MAP_WRITE_BIT | GL_MAP_PERSISTENT_BIT | GL_MAP_COHERENT_BIT;
    glCreateBuffers(1, &buffer_);
    glNamedBufferStorage(buffer_, kBytes, nullptr, kAccess);
    memory_ = static_cast<std::byte*>(glMapNamedBufferRange(buffer_, 0, kBytes, kAccess));
}

StreamRing::Place StreamRing::Allocate(std::size_t bytes, std::size_t alignment) {
    std::size_t start = (head_ + alignment - 1) / alignment * alignment;
    if (start + bytes > kBytes) start = 0;
    const std::size_t end = start + bytes;
    const std::size_t first_segment = start / kSegmentBytes;
    const std::size_t last_segment = bytes > 0 ? (end - 1) / kSegmentBytes : first_segment;
    if (last_segment != last_open_ || start < head_) Enter(first_segment, last_segment);
    head_ = end;
    return {memory_ + start, start};
}

// Leaves the segments being filled and waits until the entered ones are free.
void StreamRing::Enter(std::size_t first_segment, std::size_t last_segment) {
    for (std::size_t segment = first_open_; segment <= last_open_; ++segment) {
        if (segment != first_segment) left_segments_ |= 1u << segment;   // else it goes on being filled
    }
    for (std::size_t segment = first_segment; segment <= last_segment; ++segment) {
        GLsync& fence = fences_[segment];
        if (fence == nullptr) continue;
        constexpr GLuint64 kOneSecond = 1'000'000'000;
        while (glClientWaitSync(fence, GL_SYNC_FLUSH_COMMANDS_BIT, kOneSecond) == GL_TIMEOUT_EXPIRED) {
        }
        glDeleteSync(fence);
        fence = nullptr;
    }
    first_open_ = first_segment;
    last_open_ = last_segment;
    ++serial_;
}

void StreamRing::FenceLeftSegments() {
    for (std::size_t segment = 0; segment < kSegments; ++segment) {
        if ((left_segments_ & 1u << segment) == 0) continue;
        if (fences_[segment] != nullptr) glDeleteSync(fences_[segment]);
        fences_[segment] = glFenceSync(GL_SYNC_GPU_COMMANDS_COMPLETE, 0);
    }
    left_segments_ = 0;
}

}   // namespace sparkrig
