// Vertex and index buffers. All bytes are always kept in system memory, where locks point. A draw that follows a write
// streams the bytes it needs through the ring; a buffer that is drawn again in a later frame without having been
// written moves into an OpenGL buffer of its own.
#pragma once
#include <epoxy/gl.h>

#include <memory>
#include <vector>

#include "platform/com/ref_counted.h"
#include "platform/d3d9/d3d9.h"
#include "platform/d3d9_gl/gl_context.h"

namespace sparkrig {

/// Where OpenGL finds bytes.
struct GlBytes {
    GLuint buffer = 0;
    std::size_t offset = 0;
};

class BufferMemory {
  public:
    BufferMemory(std::shared_ptr<GlContext> context, UINT bytes, D3DPOOL pool);
    ~BufferMemory();
    BufferMemory(const BufferMemory&) = delete;
    BufferMemory& operator=(const BufferMemory&) = delete;

    HRESULT Lock(UINT offset, UINT size, void** data, DWORD flags);
    HRESULT Unlock();
    bool Locked() const { return locks_ > 0; }

    std::size_t Size() const { return bytes_.size(); }
    const std::byte* Bytes() const { return bytes_.data(); }

    /// The OpenGL place of the bytes [first, first + size), which must lie in the buffer. What is streamed lies at a
    /// multiple of `alignment`. Good for one draw. Needs the context to be current.
    GlBytes Place(std::size_t first, std::size_t size, std::size_t alignment);

  private:
    GlBytes PlaceStreamed(std::size_t first, std::size_t size, std::size_t alignment);
    void MoveIntoOwnBuffer();

    std::shared_ptr<GlContext> context_;
    D3DPOOL pool_;
    std::vector<std::byte> bytes_;
    int locks_ = 0;

    GLuint own_ = 0;
    bool own_current_ = false;           // the OpenGL buffer holds what bytes_ holds
    std::uint32_t streamed_frame_ = 0;   // the frame of the last streaming of the present bytes
    struct {
        std::uint64_t serial = 0;   // 0: none
        std::size_t first = 0, size = 0, alignment = 0, offset = 0;
    } streamed_;   // what the ring holds of the present bytes
};

template <class Interface>
class GlBuffer final : public RefCounted<Interface> {
  public:
    GlBuffer(std::shared_ptr<GlContext> context, UINT bytes, D3DPOOL pool, DWORD element_bytes)
        : memory_(std::move(context), bytes, pool), element_bytes_(element_bytes) {}

    HRESULT Lock(UINT offset, UINT size, void** data, DWORD flags) override {
        return memory_.Lock(offset, size, data, flags);
    }
    HRESULT Unlock() override { return memory_.Unlock(); }

    BufferMemory& Memory() { return memory_; }
    /// Bytes of an index; 0 for vertices.
    DWORD ElementBytes() const { return element_bytes_; }

  private:
    ~GlBuffer() override = default;

    BufferMemory memory_;
    DWORD element_bytes_;
};

using VertexBuffer = GlBuffer<IDirect3DVertexBuffer9>;
using IndexBuffer = GlBuffer<IDirect3DIndexBuffer9>;

}   // namespace sparkrig
