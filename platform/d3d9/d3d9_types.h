// Records of the device contract.
#pragma once
#include "platform/d3d9/d3d9_constants.h"

namespace sparkrig {

/// Four by four floats, row by row; a point is a row vector multiplied from the left. Row 3 is the translation.
struct D3DMATRIX {
    float m[4][4];
    bool operator==(const D3DMATRIX&) const = default;
};

struct D3DVECTOR {
    float x, y, z;
    bool operator==(const D3DVECTOR&) const = default;
};

struct D3DCOLORVALUE {
    float r, g, b, a;
    bool operator==(const D3DCOLORVALUE&) const = default;
};

struct D3DMATERIAL9 {
    D3DCOLORVALUE Diffuse, Ambient, Specular, Emissive;
    float Power;
    bool operator==(const D3DMATERIAL9&) const = default;
};

struct D3DLIGHT9 {
    D3DLIGHTTYPE Type;
    D3DCOLORVALUE Diffuse, Specular, Ambient;
    D3DVECTOR Position, Direction;
    float Range, Falloff, Attenuation0, Attenuation1, Attenuation2;
    float Theta, Phi;   // whole cone angles, radians
    bool operator==(const D3DLIGHT9&) const = default;
};
static_assert(sizeof(D3DLIGHT9) == 104 && sizeof(D3DMATERIAL9) == 68);

struct D3DVIEWPORT9 {
    DWORD X, Y, Width, Height;
    float MinZ, MaxZ;
    bool operator==(const D3DVIEWPORT9&) const = default;
};

struct D3DRECT {
    LONG x1, y1, x2, y2;
};

struct D3DLOCKED_RECT {
    INT Pitch;
    void* pBits;
};

struct D3DDISPLAYMODE {
    UINT Width, Height, RefreshRate;
    D3DFORMAT Format;
};

struct D3DPRESENT_PARAMETERS {
    UINT BackBufferWidth, BackBufferHeight;
    D3DFORMAT BackBufferFormat;
    UINT BackBufferCount;
    DWORD MultiSampleType, MultiSampleQuality;
    DWORD SwapEffect;
    HWND hDeviceWindow;
    BOOL Windowed;
    BOOL EnableAutoDepthStencil;
    D3DFORMAT AutoDepthStencilFormat;
    DWORD Flags;
    UINT FullScreen_RefreshRateInHz;
    UINT PresentationInterval;
};

struct D3DSURFACE_DESC {
    D3DFORMAT Format;
    D3DRESOURCETYPE Type;
    DWORD Usage;
    D3DPOOL Pool;
    DWORD MultiSampleType, MultiSampleQuality;
    UINT Width, Height;
};

struct D3DGAMMARAMP {
    WORD red[256], green[256], blue[256];
};

struct D3DADAPTER_IDENTIFIER9 {
    char Description[512];
};

/// The capabilities that the program reads.
struct D3DCAPS9 {
    D3DDEVTYPE DeviceType;
    UINT AdapterOrdinal;
    DWORD Caps2, DevCaps, DevCaps2, RasterCaps, TextureCaps;
    DWORD PresentationIntervals;
    DWORD MaxTextureWidth, MaxTextureHeight;
    DWORD MaxTextureBlendStages, MaxSimultaneousTextures, MaxActiveLights;
    DWORD MaxVertexBlendMatrices, MaxVertexBlendMatrixIndex;
    DWORD VertexShaderVersion, PixelShaderVersion;
    DWORD NumSimultaneousRTs;
    float MaxPointSize;
};

}   // namespace sparkrig
