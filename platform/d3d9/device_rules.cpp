#include "platform/d3d9/device_rules.h"

#include <algorithm>
#include <bit>

namespace sparkrig {

namespace {

HRESULT Allowed(bool condition) { return condition ? D3D_OK : D3DERR_INVALIDCALL; }

bool UsageFitsPool(DWORD usage, D3DPOOL pool) {
    if (pool > D3DPOOL_SCRATCH) return false;
    constexpr DWORD kDrawnInto = D3DUSAGE_RENDERTARGET | D3DUSAGE_DEPTHSTENCIL;
    if ((usage & kDrawnInto) != 0 && pool != D3DPOOL_DEFAULT) return false;
    return (usage & D3DUSAGE_DYNAMIC) == 0 || pool == D3DPOOL_DEFAULT || pool == D3DPOOL_SYSTEMMEM;
}

// A size that the device takes; the product of such sizes and a pixel's bytes cannot wrap.
bool FitsDevice(const DeviceLimits& limits, UINT width, UINT height) {
    const UINT largest = static_cast<UINT>(limits.max_texture_size);
    return width > 0 && height > 0 && width <= largest && height <= largest;
}

bool SameShape(const D3DSURFACE_DESC& a, const D3DSURFACE_DESC& b) {
    return a.Width == b.Width && a.Height == b.Height && a.Format == b.Format;
}

// Rectangles of blocks begin and end with one, or with the surface.
bool OnBlocks(const D3DSURFACE_DESC& desc, const RECT& rect) {
    const PixelFormat* format = FindPixelFormat(desc.Format);
    const LONG step = format != nullptr ? static_cast<LONG>(format->Step()) : 1;
    const auto ends = [step](LONG place, UINT edge) { return place % step == 0 || place == static_cast<LONG>(edge); };
    return rect.left % step == 0 && rect.top % step == 0 && ends(rect.right, desc.Width) &&
           ends(rect.bottom, desc.Height);
}

bool CanDraw(const DeviceState& state, const StreamView& stream, D3DPRIMITIVETYPE type, UINT count) {
    if (type < D3DPT_POINTLIST || type > D3DPT_TRIANGLEFAN || count == 0) return false;
    if (!state.in_scene || !stream.bound || stream.locked || state.format.fvf == 0) return false;
    return stream.stride >= state.format.stride;
}

bool InStream(const DeviceState& state, const StreamView& stream, std::int64_t first, std::size_t count) {
    if (first < 0 || count == 0 || stream.offset > stream.bytes) return false;
    const std::uint64_t last = static_cast<std::uint64_t>(first) + count - 1;
    const std::uint64_t room = stream.bytes - stream.offset;
    return room >= state.format.stride && last <= (room - state.format.stride) / stream.stride;
}

}   // namespace

// ---- The life of a device

bool ValidBehaviour(DWORD behaviour) {
    constexpr DWORD kProcessing =
        D3DCREATE_SOFTWARE_VERTEXPROCESSING | D3DCREATE_HARDWARE_VERTEXPROCESSING | D3DCREATE_MIXED_VERTEXPROCESSING;
    return std::has_single_bit(behaviour & kProcessing);
}

HRESULT CheckSoftwareProcessing(DWORD behaviour, BOOL software) {
    const bool mixed = (behaviour & D3DCREATE_MIXED_VERTEXPROCESSING) != 0;
    const bool is_software = (behaviour & D3DCREATE_SOFTWARE_VERTEXPROCESSING) != 0;
    return Allowed(mixed || is_software == (software != FALSE));
}

HRESULT CooperativeLevel(DeviceLife life) {
    if (life == DeviceLife::Lost) return D3DERR_DEVICELOST;
    return life == DeviceLife::NotReset ? D3DERR_DEVICENOTRESET : D3D_OK;
}

HRESULT CheckPresent(DeviceLife life, bool in_scene, bool whole) {
    return life == DeviceLife::Operational ? Allowed(whole && !in_scene) : D3DERR_DEVICELOST;
}

HRESULT CheckBackBuffer(UINT swap_chain, UINT index, UINT count) { return Allowed(swap_chain == 0 && index < count); }

// ---- Resources

bool SupportsFormat(const DeviceLimits& limits, DWORD usage, D3DFORMAT format) {
    const PixelFormat* info = FindPixelFormat(format);
    if (info == nullptr || (info->blocks && !limits.compressed_textures)) return false;
    if ((usage & D3DUSAGE_DEPTHSTENCIL) != 0) return (info->roles & kRoleDepth) != 0;
    if ((usage & D3DUSAGE_RENDERTARGET) != 0) return (info->roles & kRoleTarget) != 0;
    return (info->roles & kRoleTexture) != 0;
}

UINT FullLevelCount(UINT width, UINT height) { return static_cast<UINT>(std::bit_width(std::max(width, height))); }

HRESULT CheckTexture(const DeviceLimits& limits, TextureRequest& request) {
    if (!FitsDevice(limits, request.width, request.height)) return D3DERR_INVALIDCALL;
    if (!UsageFitsPool(request.usage, request.pool)) return D3DERR_INVALIDCALL;
    const UINT full = FullLevelCount(request.width, request.height);
    if (request.levels > full || (request.usage & D3DUSAGE_DEPTHSTENCIL) != 0) return D3DERR_INVALIDCALL;
    if (!SupportsFormat(limits, request.usage, request.format)) return D3DERR_INVALIDCALL;
    if (FindPixelFormat(request.format)->blocks) request.usage &= ~D3DUSAGE_AUTOGENMIPMAP;
    const bool generated = (request.usage & D3DUSAGE_AUTOGENMIPMAP) != 0;
    const bool in_system = request.pool == D3DPOOL_SYSTEMMEM || request.pool == D3DPOOL_SCRATCH;
    if (generated && (request.levels > 1 || in_system)) return D3DERR_INVALIDCALL;
    if (request.levels == 0 || generated) request.levels = full;
    return D3D_OK;
}

HRESULT CheckVertexBuffer(DWORD behaviour, UINT bytes, DWORD usage, DWORD fvf, D3DPOOL pool) {
    if (bytes == 0 || pool == D3DPOOL_SCRATCH || !UsageFitsPool(usage, pool)) return D3DERR_INVALIDCALL;
    VertexFormat format;
    if (fvf != 0 && (!ParseVertexFormat(fvf, format) || bytes < format.stride)) return D3DERR_INVALIDCALL;
    const bool software = (usage & D3DUSAGE_SOFTWAREPROCESSING) != 0;
    return Allowed(!software || (behaviour & D3DCREATE_HARDWARE_VERTEXPROCESSING) == 0);
}

DWORD IndexBytes(D3DFORMAT format) { return format == D3DFMT_INDEX16 ? 2 : format == D3DFMT_INDEX32 ? 4 : 0; }

HRESULT CheckIndexBuffer(UINT bytes, DWORD usage, D3DFORMAT format, D3DPOOL pool) {
    const DWORD element = IndexBytes(format);
    return Allowed(element != 0 && bytes >= element && pool != D3DPOOL_SCRATCH && UsageFitsPool(usage, pool));
}

HRESULT CheckRenderTarget(const DeviceLimits& limits, UINT width, UINT height, D3DFORMAT format, DWORD samples,
                          BOOL lockable) {
    if (!FitsDevice(limits, width, height) || (lockable && samples > 1)) return D3DERR_INVALIDCALL;
    if (!SupportsFormat(limits, D3DUSAGE_RENDERTARGET, format)) return D3DERR_INVALIDCALL;
    return samples > static_cast<DWORD>(limits.max_samples) ? D3DERR_NOTAVAILABLE : D3D_OK;
}

HRESULT CheckPlainSurface(const DeviceLimits& limits, UINT width, UINT height, D3DFORMAT format, D3DPOOL pool) {
    const PixelFormat* info = FindPixelFormat(format);
    if (info == nullptr || !FitsDevice(limits, width, height)) return D3DERR_INVALIDCALL;
    if (pool == D3DPOOL_MANAGED || pool > D3DPOOL_SCRATCH || (info->roles & kRoleDepth) != 0) return D3DERR_INVALIDCALL;
    return Allowed(pool != D3DPOOL_DEFAULT || SupportsFormat(limits, D3DUSAGE_RENDERTARGET, format));
}

// ---- Locks

bool LevelsLockable(DWORD usage, D3DPOOL pool) { return pool != D3DPOOL_DEFAULT || (usage & D3DUSAGE_DYNAMIC) != 0; }

HRESULT CheckLock(const D3DSURFACE_DESC& desc, const RECT* rect, DWORD flags) {
    RECT area;
    if (!TakeRect(desc, rect, area) || !OnBlocks(desc, area)) return D3DERR_INVALIDCALL;
    const bool discards = (flags & D3DLOCK_DISCARD) != 0;
    return Allowed(!discards || (rect == nullptr && (desc.Usage & D3DUSAGE_DYNAMIC) != 0));
}

HRESULT CheckBufferLock(std::size_t bytes, UINT offset, UINT size) {
    return Allowed(offset <= bytes && size <= bytes - offset);
}

// ---- Targets and copies

bool Drawable(const D3DSURFACE_DESC& desc) {
    return (desc.Usage & D3DUSAGE_RENDERTARGET) != 0 && desc.Pool == D3DPOOL_DEFAULT;
}

HRESULT CheckTarget(DWORD index, const D3DSURFACE_DESC& target) { return Allowed(index == 0 && Drawable(target)); }

HRESULT CheckClear(DWORD count, const D3DRECT* rects, DWORD flags, float z, const D3DSURFACE_DESC* depth) {
    constexpr DWORD kKnown = D3DCLEAR_TARGET | D3DCLEAR_ZBUFFER | D3DCLEAR_STENCIL;
    if ((count == 0) != (rects == nullptr) || flags == 0 || (flags & ~kKnown) != 0) return D3DERR_INVALIDCALL;
    if ((flags & (D3DCLEAR_ZBUFFER | D3DCLEAR_STENCIL)) != 0 && depth == nullptr) return D3DERR_INVALIDCALL;
    if ((flags & D3DCLEAR_STENCIL) != 0 && depth->Format != D3DFMT_D24S8) return D3DERR_INVALIDCALL;
    return Allowed((flags & D3DCLEAR_ZBUFFER) == 0 || (z >= 0.0f && z <= 1.0f));
}

bool TakeRect(const D3DSURFACE_DESC& desc, const RECT* rect, RECT& taken) {
    const RECT whole = {0, 0, static_cast<LONG>(desc.Width), static_cast<LONG>(desc.Height)};
    taken = rect != nullptr ? *rect : whole;
    return taken.left >= 0 && taken.top >= 0 && taken.left < taken.right && taken.top < taken.bottom &&
           taken.right <= whole.right && taken.bottom <= whole.bottom;
}

HRESULT CheckStretch(const StretchSide& from, const StretchSide& to, bool same_surface, DWORD filter) {
    const auto copyable = [](const D3DSURFACE_DESC& desc) {
        return desc.Pool == D3DPOOL_DEFAULT && (FindPixelFormat(desc.Format)->roles & kRoleTarget) != 0;
    };
    if (filter > D3DTEXF_LINEAR) return D3DERR_INVALIDCALL;
    if (!copyable(from.desc) || !copyable(to.desc) || !Drawable(to.desc)) return D3DERR_INVALIDCALL;
    const RECT &a = from.area, &b = to.area;
    const bool stretches = a.right - a.left != b.right - b.left || a.bottom - a.top != b.bottom - b.top;
    const bool overlap = a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
    if (same_surface && (stretches || overlap)) return D3DERR_INVALIDCALL;
    return Allowed(to.desc.MultiSampleType <= 1 && (!stretches || from.desc.MultiSampleType <= 1));
}

HRESULT CheckFill(const D3DSURFACE_DESC& desc, bool plain) {
    return Allowed(Drawable(desc) || (plain && desc.Pool == D3DPOOL_DEFAULT));
}

HRESULT CheckUpdate(const D3DSURFACE_DESC& from, DWORD from_levels, const D3DSURFACE_DESC& to, DWORD to_levels) {
    if (from.Pool != D3DPOOL_SYSTEMMEM || to.Pool != D3DPOOL_DEFAULT) return D3DERR_INVALIDCALL;
    return Allowed(SameShape(from, to) && from_levels >= to_levels);
}

HRESULT CheckReadBack(const D3DSURFACE_DESC& target, const D3DSURFACE_DESC& system_surface) {
    if (!Drawable(target) || target.MultiSampleType > 1) return D3DERR_INVALIDCALL;
    return Allowed(system_surface.Pool == D3DPOOL_SYSTEMMEM && SameShape(target, system_surface));
}

// ---- Drawing

std::size_t VertexCount(D3DPRIMITIVETYPE type, UINT primitives) {
    constexpr struct {
        std::size_t factor, more;
    } kVertices[] = {{0, 0}, {1, 0}, {2, 0}, {1, 1}, {3, 0}, {1, 2}, {1, 2}};
    return primitives * kVertices[type].factor + kVertices[type].more;
}

HRESULT CheckDraw(const DeviceState& state, const StreamView& stream, D3DPRIMITIVETYPE type, UINT first, UINT count) {
    return Allowed(CanDraw(state, stream, type, count) && InStream(state, stream, first, VertexCount(type, count)));
}

HRESULT CheckIndexedDraw(const DeviceState& state, const StreamView& stream, const IndexView& indices,
                         D3DPRIMITIVETYPE type, std::int64_t first_vertex, UINT vertices, UINT first_index,
                         UINT count) {
    if (!CanDraw(state, stream, type, count) || type == D3DPT_POINTLIST) return D3DERR_INVALIDCALL;
    if (!indices.bound || indices.locked) return D3DERR_INVALIDCALL;
    const std::size_t wanted = VertexCount(type, count), there = indices.bytes / indices.element_bytes;
    if (first_index > there || wanted > there - first_index) return D3DERR_INVALIDCALL;
    return Allowed(InStream(state, stream, first_vertex, vertices));
}

}   // namespace sparkrig
