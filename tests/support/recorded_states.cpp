#include "tests/support/recorded_states.h"

namespace sparkrig {

namespace {

// clang-format off
const StateMap kRenderStates = {
    {D3DRS_ZENABLE, 1}, {D3DRS_FILLMODE, D3DFILL_SOLID}, {D3DRS_SHADEMODE, D3DSHADE_GOURAUD}, {D3DRS_ZWRITEENABLE, 1},
    {D3DRS_LASTPIXEL, 1}, {D3DRS_SRCBLEND, D3DBLEND_ONE}, {D3DRS_DESTBLEND, D3DBLEND_ZERO},
    {D3DRS_CULLMODE, D3DCULL_CCW}, {D3DRS_ZFUNC, D3DCMP_LESSEQUAL}, {D3DRS_ALPHAFUNC, D3DCMP_ALWAYS},
    {D3DRS_FOGEND, Bits(1.0f)}, {D3DRS_FOGDENSITY, Bits(1.0f)}, {D3DRS_TEXTUREFACTOR, 0xFFFFFFFF},
    {D3DRS_CLIPPING, 1}, {D3DRS_LIGHTING, 1}, {D3DRS_COLORVERTEX, 1}, {D3DRS_LOCALVIEWER, 1},
    {D3DRS_DIFFUSEMATERIALSOURCE, D3DMCS_COLOR1}, {D3DRS_SPECULARMATERIALSOURCE, D3DMCS_COLOR2},
    {D3DRS_POINTSIZE, Bits(1.0f)}, {D3DRS_POINTSIZE_MIN, Bits(1.0f)}, {D3DRS_POINTSIZE_MAX, Bits(64.0f)},
    {D3DRS_POINTSCALE_A, Bits(1.0f)}, {D3DRS_MULTISAMPLEANTIALIAS, 1}, {D3DRS_MULTISAMPLEMASK, 0xFFFFFFFF},
    {D3DRS_COLORWRITEENABLE, 0xF}, {D3DRS_BLENDOP, D3DBLENDOP_ADD}, {D3DRS_BLENDFACTOR, 0xFFFFFFFF},
    {D3DRS_SRCBLENDALPHA, D3DBLEND_ONE}, {D3DRS_DESTBLENDALPHA, D3DBLEND_ZERO}, {D3DRS_BLENDOPALPHA, D3DBLENDOP_ADD}};
const StateMap kStageStates = {
    {D3DTSS_COLOROP, D3DTOP_DISABLE}, {D3DTSS_COLORARG1, D3DTA_TEXTURE}, {D3DTSS_COLORARG2, D3DTA_CURRENT},
    {D3DTSS_ALPHAOP, D3DTOP_DISABLE}, {D3DTSS_ALPHAARG1, D3DTA_TEXTURE}, {D3DTSS_ALPHAARG2, D3DTA_CURRENT},
    {D3DTSS_COLORARG0, D3DTA_CURRENT}, {D3DTSS_ALPHAARG0, D3DTA_CURRENT}, {D3DTSS_RESULTARG, D3DTA_CURRENT}};
const StateMap kSamplerStates = {
    {D3DSAMP_ADDRESSU, D3DTADDRESS_WRAP}, {D3DSAMP_ADDRESSV, D3DTADDRESS_WRAP}, {D3DSAMP_ADDRESSW, D3DTADDRESS_WRAP},
    {D3DSAMP_MAGFILTER, D3DTEXF_POINT}, {D3DSAMP_MINFILTER, D3DTEXF_POINT}, {D3DSAMP_MAXANISOTROPY, 1}};
// clang-format on

RecordedBuffer<IDirect3DVertexBuffer9>& StreamOf(const RecordedStates& states) {
    return static_cast<RecordedBuffer<IDirect3DVertexBuffer9>&>(*states.stream);
}

UINT VerticesFor(D3DPRIMITIVETYPE type, UINT count) {
    switch (type) {
        case D3DPT_POINTLIST: return count;
        case D3DPT_LINELIST: return 2 * count;
        case D3DPT_LINESTRIP: return count + 1;
        case D3DPT_TRIANGLELIST: return 3 * count;
        default: return count + 2;
    }
}

}   // namespace

RecordedStates::RecordedStates(bool depth_buffer, UINT width, UINT height)
    : render(kRenderStates), viewport{0, 0, width, height, 0.0f, 1.0f} {
    render[D3DRS_ZENABLE] = depth_buffer;
    stages.fill(kStageStates);
    for (DWORD stage = 0; stage < kTextureStages; ++stage) stages[stage][D3DTSS_TEXCOORDINDEX] = stage;
    stages[0][D3DTSS_COLOROP] = D3DTOP_MODULATE;
    stages[0][D3DTSS_ALPHAOP] = D3DTOP_SELECTARG1;
    samplers.fill(kSamplerStates);
}

HRESULT RecordedStateCalls::SetViewport(const D3DVIEWPORT9* viewport) {
    const D3DVIEWPORT9& v = *viewport;
    return Do("SetViewport", {v.X, v.Y, v.Width, v.Height, Bits(v.MinZ), Bits(v.MaxZ)}, [&] {
        const D3DSURFACE_DESC& target = static_cast<RecordedSurface*>(states_.target.Get())->Image().desc;
        const bool inside = v.X <= target.Width && v.Y <= target.Height && v.Width <= target.Width - v.X &&
                            v.Height <= target.Height - v.Y;
        return inside && v.Width > 0 && v.Height > 0 ? Keep(states_.viewport, v) : D3DERR_INVALIDCALL;
    });
}

HRESULT RecordedStateCalls::SetStreamSource(UINT stream, IDirect3DVertexBuffer9* buffer, UINT offset, UINT stride) {
    return Do("SetStreamSource", {stream, SerialOf(buffer), offset, stride}, [&] {
        if (stream != 0) return D3DERR_INVALIDCALL;
        states_.stream = DevicePtr<IDirect3DVertexBuffer9>::Share(buffer);
        states_.stride = stride;
        return D3D_OK;
    });
}

HRESULT RecordedStateCalls::SetIndices(IDirect3DIndexBuffer9* buffer) {
    return Do("SetIndices", {SerialOf(buffer)},
              [&] { return states_.indices = DevicePtr<IDirect3DIndexBuffer9>::Share(buffer), D3D_OK; });
}

/// Whole words only: a block of globals is made of them.
std::vector<DWORD> RecordedStateCalls::WordsOf(const void* data, UINT bytes) {
    std::vector<DWORD> words(bytes / sizeof(DWORD));
    if (!words.empty()) std::memcpy(words.data(), data, words.size() * sizeof(DWORD));
    return words;
}

HRESULT RecordedStateCalls::ReadyToDraw(UINT count) const {
    if (!states_.in_scene || count == 0 || !states_.stream || states_.fvf == 0) return D3DERR_INVALIDCALL;
    return StreamOf(states_).locks > 0 ? D3DERR_INVALIDCALL : D3D_OK;
}

RecordedDraw RecordedStateCalls::DescribeDraw(D3DPRIMITIVETYPE type, UINT first, UINT count) const {
    return {type,
            first,
            count,
            states_.fvf,
            states_.stride,
            {},
            SerialOf(states_.textures[0].Get()),
            states_.render,
            ValueOf(states_.transforms, D3DTS_WORLD, kIdentityMatrix)};
}

HRESULT RecordedStateCalls::DrawPrimitive(D3DPRIMITIVETYPE type, UINT first_vertex, UINT count) {
    return Do("DrawPrimitive", {type, first_vertex, count}, [&] {
        if (const HRESULT refused = ReadyToDraw(count); FAILED(refused)) return refused;
        RecordedDraw draw = DescribeDraw(type, first_vertex, count);
        const std::vector<BYTE>& bytes = StreamOf(states_).bytes;
        const std::size_t begin = std::size_t{first_vertex} * states_.stride;
        const std::size_t size = std::size_t{VerticesFor(type, count)} * states_.stride;
        if (begin > bytes.size() || size > bytes.size() - begin) return D3DERR_INVALIDCALL;
        draw.vertices.assign(bytes.data() + begin, bytes.data() + begin + size);
        recording_.RecordDraw(std::move(draw));
        return D3D_OK;
    });
}

HRESULT RecordedStateCalls::DrawIndexedPrimitive(D3DPRIMITIVETYPE type, INT base_vertex, UINT min_index, UINT vertices,
                                                 UINT first_index, UINT count) {
    return Do("DrawIndexedPrimitive", {type, static_cast<DWORD>(base_vertex), min_index, vertices, first_index, count},
              [&] {
                  if (const HRESULT refused = ReadyToDraw(count); FAILED(refused)) return refused;
                  if (!states_.indices) return D3DERR_INVALIDCALL;
                  recording_.RecordDraw(DescribeDraw(type, first_index, count));
                  return D3D_OK;
              });
}

}   // namespace sparkrig
