// One persistently mapped buffer through which everything flows that is rewritten for a draw: vertices, indices and
// uniforms. Fences keep the writer behind the reader; there is neither an allocation nor a copy by the driver.
#pragma once
#include <epoxy/gl.h>

#include <array>
#include <cstddef>
#include <cstdint>

namespace sparkrig {

class StreamRing {
  public:
    static constexpr std::size_t kBytes = 64u << 20;
    static constexpr std::size_t kSegments = 16;
    static constexpr std::size_t kSegmentBytes = kBytes / kSegments;
    static constexpr std::size_t kLargestAllocation = kBytes / 4;

    /// Needs the context to be current. The buffer goes with the context.
    StreamRing();
    StreamRing(const StreamRing&) = delete;
    StreamRing& operator=(const StreamRing&) = delete;

    struct Place {
        std::byte* memory;    // write only
        std::size_t offset;   // in the buffer
    };
    /// Room for `bytes` (at most kLargestAllocation) at a multiple of `alignment`, which need not be a power of two.
    Place Allocate(std::size_t bytes, std::size_t alignment);
    /// To be called after each draw: everything allocated so far has been used by commands that are sent.
    void Sent() {
        if (left_segments_ != 0) FenceLeftSegments();
    }

    /// Grows whenever older places stop being protected. A place may be drawn from while this stays the same.
    std::uint64_t Serial() const { return serial_; }
    GLuint Buffer() const { return buffer_; }
    /// False when the driver could not give the memory.
    bool Valid() const { return memory_ != nullptr; }

  private:
    void Enter(std::size_t first_segment, std::size_t last_segment);
    void FenceLeftSegments();

    GLuint buffer_ = 0;
    std::byte* memory_ = nullptr;
    std::size_t head_ = 0;
    std::size_t first_open_ = 0, last_open_ = 0;   // segments being filled
    std::uint32_t left_segments_ = 0;              // bit n: segment n is filled and has no fence yet
    std::uint64_t serial_ = 1;
    std::array<GLsync, kSegments> fences_ = {};
};

}   // namespace sparkrig
