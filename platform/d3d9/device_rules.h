// Which call a device refuses, and when: rules of sizes, pools, usages, locks, copies and draws. They look at what a
// call is given and at what it acts on, never at what stands behind, so that every device follows the same ones. States
// have theirs in device_state.h.
#pragma once
#include <cstdint>

#include "platform/d3d9/device_state.h"
#include "platform/d3d9/pixel_format.h"

namespace sparkrig {

// ---- The life of a device

enum class DeviceLife {
    Operational,
    Lost,       // and the cause is still there
    NotReset,   // can be reset
};

/// Exactly one kind of vertex processing is asked for.
bool ValidBehaviour(DWORD behaviour);
HRESULT CheckSoftwareProcessing(DWORD behaviour, BOOL software);
/// What TestCooperativeLevel says.
HRESULT CooperativeLevel(DeviceLife life);
/// Every argument of Present is null, outside a scene.
HRESULT CheckPresent(DeviceLife life, bool in_scene, bool whole);
HRESULT CheckBackBuffer(UINT swap_chain, UINT index, UINT count);

// ---- Resources

struct DeviceLimits {
    int max_texture_size = 0;
    int max_samples = 0;
    bool compressed_textures = false;
};

/// Whether a texture or surface of this format can be made for a usage (0, RENDERTARGET, DEPTHSTENCIL).
bool SupportsFormat(const DeviceLimits& limits, DWORD usage, D3DFORMAT format);
/// From this size down to 1 x 1.
UINT FullLevelCount(UINT width, UINT height);

/// What a texture is asked to be. Checking it settles the number of levels, and takes AUTOGENMIPMAP from formats whose
/// levels nobody makes.
struct TextureRequest {
    UINT width, height, levels;
    DWORD usage;
    D3DFORMAT format;
    D3DPOOL pool;
};
HRESULT CheckTexture(const DeviceLimits& limits, TextureRequest& request);
HRESULT CheckVertexBuffer(DWORD behaviour, UINT bytes, DWORD usage, DWORD fvf, D3DPOOL pool);
HRESULT CheckIndexBuffer(UINT bytes, DWORD usage, D3DFORMAT format, D3DPOOL pool);
/// Bytes of one index; 0 for a format that is none.
DWORD IndexBytes(D3DFORMAT format);
HRESULT CheckRenderTarget(const DeviceLimits& limits, UINT width, UINT height, D3DFORMAT format, DWORD samples,
                          BOOL lockable);
HRESULT CheckPlainSurface(const DeviceLimits& limits, UINT width, UINT height, D3DFORMAT format, D3DPOOL pool);

// ---- Locks

/// Whether the levels of such a texture can be locked.
bool LevelsLockable(DWORD usage, D3DPOOL pool);
HRESULT CheckLock(const D3DSURFACE_DESC& desc, const RECT* rect, DWORD flags);
HRESULT CheckBufferLock(std::size_t bytes, UINT offset, UINT size);

// ---- Targets and copies

/// Whether a surface can be drawn into.
bool Drawable(const D3DSURFACE_DESC& desc);
/// There is one render target, number 0.
HRESULT CheckTarget(DWORD index, const D3DSURFACE_DESC& target);
/// depth: null without a depth buffer.
HRESULT CheckClear(DWORD count, const D3DRECT* rects, DWORD flags, float z, const D3DSURFACE_DESC* depth);

/// The rectangle, the whole surface for null. False when it is empty or leaves the surface.
bool TakeRect(const D3DSURFACE_DESC& desc, const RECT* rect, RECT& taken);
struct StretchSide {
    const D3DSURFACE_DESC& desc;
    RECT area;   // taken
};
HRESULT CheckStretch(const StretchSide& from, const StretchSide& to, bool same_surface, DWORD filter);
/// plain: made by CreateOffscreenPlainSurface.
HRESULT CheckFill(const D3DSURFACE_DESC& desc, bool plain);
HRESULT CheckUpdate(const D3DSURFACE_DESC& from, DWORD from_levels, const D3DSURFACE_DESC& to, DWORD to_levels);
HRESULT CheckReadBack(const D3DSURFACE_DESC& target, const D3DSURFACE_DESC& system_surface);

// ---- Drawing

struct StreamView {
    bool bound = false, locked = false;
    std::size_t bytes = 0;
    UINT offset = 0, stride = 0;
};
struct IndexView {
    bool bound = false, locked = false;
    std::size_t bytes = 0;
    DWORD element_bytes = 0;
};

/// Vertices of so many primitives of a type that exists.
std::size_t VertexCount(D3DPRIMITIVETYPE type, UINT primitives);
HRESULT CheckDraw(const DeviceState& state, const StreamView& stream, D3DPRIMITIVETYPE type, UINT first, UINT count);
HRESULT CheckIndexedDraw(const DeviceState& state, const StreamView& stream, const IndexView& indices,
                         D3DPRIMITIVETYPE type, std::int64_t first_vertex, UINT vertices, UINT first_index, UINT count);

}   // namespace sparkrig
