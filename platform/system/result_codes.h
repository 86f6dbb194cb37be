// Result codes of the device interfaces and the symbolic names that messages print for them.
#pragma once
#include "platform/system/win_types.h"

namespace sparkrig {

constexpr HRESULT MakeResult(DWORD code) { return static_cast<HRESULT>(code); }
constexpr bool SUCCEEDED(HRESULT result) { return result >= 0; }
constexpr bool FAILED(HRESULT result) { return result < 0; }

inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT S_FALSE = 1;
inline constexpr HRESULT E_NOTIMPL = MakeResult(0x80004001);
inline constexpr HRESULT E_NOINTERFACE = MakeResult(0x80004002);
inline constexpr HRESULT E_FAIL = MakeResult(0x80004005);
inline constexpr HRESULT E_OUTOFMEMORY = MakeResult(0x8007000E);
inline constexpr HRESULT E_INVALIDARG = MakeResult(0x80070057);

inline constexpr HRESULT D3D_OK = 0;
inline constexpr HRESULT D3DERR_OUTOFVIDEOMEMORY = MakeResult(0x8876017C);
inline constexpr HRESULT D3DERR_WASSTILLDRAWING = MakeResult(0x8876021C);
inline constexpr HRESULT D3DERR_WRONGTEXTUREFORMAT = MakeResult(0x88760818);
inline constexpr HRESULT D3DERR_UNSUPPORTEDCOLOROPERATION = MakeResult(0x88760819);
inline constexpr HRESULT D3DERR_UNSUPPORTEDCOLORARG = MakeResult(0x8876081A);
inline constexpr HRESULT D3DERR_UNSUPPORTEDALPHAOPERATION = MakeResult(0x8876081B);
inline constexpr HRESULT D3DERR_UNSUPPORTEDALPHAARG = MakeResult(0x8876081C);
inline constexpr HRESULT D3DERR_TOOMANYOPERATIONS = MakeResult(0x8876081D);
inline constexpr HRESULT D3DERR_CONFLICTINGTEXTUREFILTER = MakeResult(0x8876081E);
inline constexpr HRESULT D3DERR_UNSUPPORTEDFACTORVALUE = MakeResult(0x8876081F);
inline constexpr HRESULT D3DERR_CONFLICTINGRENDERSTATE = MakeResult(0x88760821);
inline constexpr HRESULT D3DERR_UNSUPPORTEDTEXTUREFILTER = MakeResult(0x88760822);
inline constexpr HRESULT D3DERR_CONFLICTINGTEXTUREPALETTE = MakeResult(0x88760826);
inline constexpr HRESULT D3DERR_DRIVERINTERNALERROR = MakeResult(0x88760827);
inline constexpr HRESULT D3DERR_NOTFOUND = MakeResult(0x88760866);
inline constexpr HRESULT D3DERR_MOREDATA = MakeResult(0x88760867);
inline constexpr HRESULT D3DERR_DEVICELOST = MakeResult(0x88760868);
inline constexpr HRESULT D3DERR_DEVICENOTRESET = MakeResult(0x88760869);
inline constexpr HRESULT D3DERR_NOTAVAILABLE = MakeResult(0x8876086A);
inline constexpr HRESULT D3DERR_INVALIDDEVICE = MakeResult(0x8876086B);
inline constexpr HRESULT D3DERR_INVALIDCALL = MakeResult(0x8876086C);
inline constexpr HRESULT D3DERR_DRIVERINVALIDCALL = MakeResult(0x8876086D);
inline constexpr HRESULT D3DXERR_CANNOTMODIFYINDEXBUFFER = MakeResult(0x88760B54);
inline constexpr HRESULT D3DXERR_INVALIDMESH = MakeResult(0x88760B55);
inline constexpr HRESULT D3DXERR_CANNOTATTRSORT = MakeResult(0x88760B56);
inline constexpr HRESULT D3DXERR_SKINNINGNOTSUPPORTED = MakeResult(0x88760B57);
inline constexpr HRESULT D3DXERR_TOOMANYINFLUENCES = MakeResult(0x88760B58);
inline constexpr HRESULT D3DXERR_INVALIDDATA = MakeResult(0x88760B59);
inline constexpr HRESULT D3DXERR_LOADEDMESHASNODATA = MakeResult(0x88760B5A);

/// The symbol of a result code, such as "D3DERR_DEVICELOST"; "S_OK" for 0, "Unknown" for a code without a name.
const char* DXGetErrorString9(HRESULT result);

}   // namespace sparkrig
