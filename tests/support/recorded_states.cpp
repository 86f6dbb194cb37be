#include "tests/support/recorded_states.h"

namespace sparkrig {

namespace {

template <class Interface>
RecordedBuffer<Interface>& BufferOf(const DevicePtr<Interface>& bound) {
    return static_cast<RecordedBuffer<Interface>&>(*bound);
}

}   // namespace

HRESULT RecordedStateCalls::SetViewport(const D3DVIEWPORT9* viewport) {
    const D3DVIEWPORT9& v = *viewport;
    const D3DSURFACE_DESC& target = static_cast<RecordedSurface*>(bound_.target.Get())->Image().desc;
    return Do("SetViewport", {v.X, v.Y, v.Width, v.Height, Bits(v.MinZ), Bits(v.MaxZ)},
              [&] { return Note(state_.SetViewport(viewport, target)); });
}

HRESULT RecordedStateCalls::SetStreamSource(UINT stream, IDirect3DVertexBuffer9* buffer, UINT offset, UINT stride) {
    return Do("SetStreamSource", {stream, SerialOf(buffer), offset, stride}, [&] {
        if (stream != 0) return D3DERR_INVALIDCALL;
        bound_.stream = DevicePtr<IDirect3DVertexBuffer9>::Share(buffer);
        bound_.stream_offset = offset;
        bound_.stride = stride;
        return D3D_OK;
    });
}

HRESULT RecordedStateCalls::SetIndices(IDirect3DIndexBuffer9* buffer) {
    return Do("SetIndices", {SerialOf(buffer)},
              [&] { return bound_.indices = DevicePtr<IDirect3DIndexBuffer9>::Share(buffer), D3D_OK; });
}

/// Whole words only: a block of globals is made of them.
std::vector<DWORD> RecordedStateCalls::WordsOf(const void* data, UINT bytes) {
    std::vector<DWORD> words(bytes / sizeof(DWORD));
    if (!words.empty()) std::memcpy(words.data(), data, words.size() * sizeof(DWORD));
    return words;
}

StreamView RecordedStateCalls::Stream() const {
    if (!bound_.stream) return {};
    const auto& buffer = BufferOf(bound_.stream);
    return {true, buffer.locks > 0, buffer.bytes.size(), bound_.stream_offset, bound_.stride};
}

IndexView RecordedStateCalls::Indices() const {
    if (!bound_.indices) return {};
    const auto& buffer = BufferOf(bound_.indices);
    return {true, buffer.locks > 0, buffer.bytes.size(), buffer.element_bytes};
}

RecordedDraw RecordedStateCalls::DescribeDraw(D3DPRIMITIVETYPE type, UINT first, UINT count) const {
    return {
        type,          first,          count, state_.format.fvf, bound_.stride, {}, SerialOf(bound_.textures[0].Get()),
        state_.render, state_.world[0]};
}

HRESULT RecordedStateCalls::DrawPrimitive(D3DPRIMITIVETYPE type, UINT first_vertex, UINT count) {
    return Do("DrawPrimitive", {type, first_vertex, count}, [&] {
        const HRESULT refused = CheckDraw(state_, Stream(), type, first_vertex, count);
        if (FAILED(refused)) return refused;
        RecordedDraw draw = DescribeDraw(type, first_vertex, count);
        const BYTE* begin =
            BufferOf(bound_.stream).bytes.data() + bound_.stream_offset + std::size_t{first_vertex} * bound_.stride;
        draw.vertices.assign(begin, begin + VertexCount(type, count) * bound_.stride);
        recording_.RecordDraw(std::move(draw));
        return D3D_OK;
    });
}

HRESULT RecordedStateCalls::DrawIndexedPrimitive(D3DPRIMITIVETYPE type, INT base_vertex, UINT min_index, UINT vertices,
                                                 UINT first_index, UINT count) {
    return Do(
        "DrawIndexedPrimitive", {type, static_cast<DWORD>(base_vertex), min_index, vertices, first_index, count}, [&] {
            const HRESULT refused = CheckIndexedDraw(
                state_, Stream(), Indices(), type, std::int64_t{base_vertex} + min_index, vertices, first_index, count);
            if (FAILED(refused)) return refused;
            recording_.RecordDraw(DescribeDraw(type, first_index, count));
            return D3D_OK;
        });
}

}   // namespace sparkrig
