#include "tests/support/recording_device.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace sparkrig {

namespace {

DWORD Bits(float value) { return std::bit_cast<DWORD>(value); }

std::map<DWORD, DWORD> DefaultRenderStates() {
    return {
        {D3DRS_ZENABLE, 1},
        {D3DRS_FILLMODE, D3DFILL_SOLID},
        {D3DRS_SHADEMODE, D3DSHADE_GOURAUD},
        {D3DRS_ZWRITEENABLE, 1},
        {D3DRS_LASTPIXEL, 1},
        {D3DRS_SRCBLEND, D3DBLEND_ONE},
        {D3DRS_DESTBLEND, D3DBLEND_ZERO},
        {D3DRS_CULLMODE, D3DCULL_CCW},
        {D3DRS_ZFUNC, D3DCMP_LESSEQUAL},
        {D3DRS_ALPHAFUNC, D3DCMP_ALWAYS},
        {D3DRS_FOGEND, Bits(1.0f)},
        {D3DRS_FOGDENSITY, Bits(1.0f)},
        {D3DRS_TEXTUREFACTOR, 0xFFFFFFFF},
        {D3DRS_CLIPPING, 1},
        {D3DRS_LIGHTING, 1},
        {D3DRS_COLORVERTEX, 1},
        {D3DRS_LOCALVIEWER, 1},
        {D3DRS_DIFFUSEMATERIALSOURCE, D3DMCS_COLOR1},
        {D3DRS_SPECULARMATERIALSOURCE, D3DMCS_COLOR2},
        {D3DRS_POINTSIZE, Bits(1.0f)},
        {D3DRS_POINTSIZE_MIN, Bits(1.0f)},
        {D3DRS_POINTSIZE_MAX, Bits(64.0f)},
        {D3DRS_POINTSCALE_A, Bits(1.0f)},
        {D3DRS_MULTISAMPLEANTIALIAS, 1},
        {D3DRS_MULTISAMPLEMASK, 0xFFFFFFFF},
        {D3DRS_COLORWRITEENABLE, 0xF},
        {D3DRS_BLENDOP, D3DBLENDOP_ADD},
        {D3DRS_BLENDFACTOR, 0xFFFFFFFF},
        {D3DRS_SRCBLENDALPHA, D3DBLEND_ONE},
        {D3DRS_DESTBLENDALPHA, D3DBLEND_ZERO},
        {D3DRS_BLENDOPALPHA, D3DBLENDOP_ADD},
    };
}

std::map<DWORD, DWORD> DefaultStageStates(DWORD stage) {
    return {
        {D3DTSS_COLOROP, stage == 0 ? D3DTOP_MODULATE : D3DTOP_DISABLE},
        {D3DTSS_COLORARG1, D3DTA_TEXTURE},
        {D3DTSS_COLORARG2, D3DTA_CURRENT},
        {D3DTSS_ALPHAOP, stage == 0 ? D3DTOP_SELECTARG1 : D3DTOP_DISABLE},
        {D3DTSS_ALPHAARG1, D3DTA_TEXTURE},
        {D3DTSS_ALPHAARG2, D3DTA_CURRENT},
        {D3DTSS_TEXCOORDINDEX, stage},
        {D3DTSS_COLORARG0, D3DTA_CURRENT},
        {D3DTSS_ALPHAARG0, D3DTA_CURRENT},
        {D3DTSS_RESULTARG, D3DTA_CURRENT},
    };
}

std::map<DWORD, DWORD> DefaultSamplerStates() {
    return {
        {D3DSAMP_ADDRESSU, D3DTADDRESS_WRAP}, {D3DSAMP_ADDRESSV, D3DTADDRESS_WRAP},
        {D3DSAMP_ADDRESSW, D3DTADDRESS_WRAP}, {D3DSAMP_MAGFILTER, D3DTEXF_POINT},
        {D3DSAMP_MINFILTER, D3DTEXF_POINT},   {D3DSAMP_MAXANISOTROPY, 1},
    };
}

UINT FullChain(UINT width, UINT height) {
    UINT levels = 1;
    for (UINT size = std::max(width, height); size > 1; size /= 2) ++levels;
    return levels;
}

}   // namespace

HRESULT RecordingDirect3D::GetAdapterIdentifier(UINT adapter, DWORD flags, D3DADAPTER_IDENTIFIER9* identifier) {
    const HRESULT result = recording_.Record("GetAdapterIdentifier", {adapter, flags});
    if (FAILED(result)) return result;
    if (adapter >= recording_.adapters.size()) return D3DERR_INVALIDCALL;
    *identifier = {};
    recording_.adapters[adapter].copy(identifier->Description, sizeof(identifier->Description) - 1);
    return D3D_OK;
}

HRESULT RecordingDirect3D::GetAdapterDisplayMode(UINT adapter, D3DDISPLAYMODE* mode) {
    const HRESULT result = recording_.Record("GetAdapterDisplayMode", {adapter});
    if (SUCCEEDED(result)) *mode = recording_.desktop;
    return result;
}

UINT RecordingDirect3D::GetAdapterModeCount(UINT, D3DFORMAT format) {
    return static_cast<UINT>(std::ranges::count(recording_.modes, format, &D3DDISPLAYMODE::Format));
}

HRESULT RecordingDirect3D::EnumAdapterModes(UINT adapter, D3DFORMAT format, UINT index, D3DDISPLAYMODE* mode) {
    const HRESULT result = recording_.Record("EnumAdapterModes", {adapter, format, index});
    if (FAILED(result)) return result;
    for (const D3DDISPLAYMODE& offered : recording_.modes) {
        if (offered.Format != format || index-- != 0) continue;
        *mode = offered;
        return D3D_OK;
    }
    return D3DERR_INVALIDCALL;
}

HRESULT RecordingDirect3D::CheckDeviceFormat(UINT adapter, D3DDEVTYPE type, D3DFORMAT adapter_format, DWORD usage,
                                             D3DRESOURCETYPE resource, D3DFORMAT format) {
    const HRESULT result =
        recording_.Record("CheckDeviceFormat", {adapter, type, adapter_format, usage, resource, format});
    if (FAILED(result)) return result;
    return recording_.refused_texture_formats.count(format) > 0 ? D3DERR_NOTAVAILABLE : D3D_OK;
}

HRESULT RecordingDirect3D::GetDeviceCaps(UINT adapter, D3DDEVTYPE type, D3DCAPS9* caps) {
    const HRESULT result = recording_.Record("GetDeviceCaps", {adapter, type});
    if (SUCCEEDED(result)) *caps = recording_.caps;
    return result;
}

HRESULT RecordingDirect3D::CreateDevice(UINT adapter, D3DDEVTYPE type, HWND, DWORD behaviour,
                                        D3DPRESENT_PARAMETERS* parameters, IDirect3DDevice9** device) {
    const HRESULT result = recording_.Record("CreateDevice", {adapter, type, behaviour});
    if (SUCCEEDED(result)) *device = new RecordingDevice(recording_, behaviour, *parameters);
    return result;
}

RecordedStates::RecordedStates(bool depth_buffer, UINT width, UINT height)
    : render(DefaultRenderStates()), viewport{0, 0, width, height, 0.0f, 1.0f} {
    render[D3DRS_ZENABLE] = depth_buffer;
    for (DWORD stage = 0; stage < kTextureStages; ++stage) stages[stage] = DefaultStageStates(stage);
    for (std::map<DWORD, DWORD>& sampler : samplers) sampler = DefaultSamplerStates();
}

RecordingDevice::RecordingDevice(Recording& recording, DWORD behaviour, const D3DPRESENT_PARAMETERS& parameters)
    : RecordedObject(recording, false), behaviour_(behaviour), states_(false, 0, 0) {
    MakeSwapChain(parameters);
}

void RecordingDevice::MakeSwapChain(const D3DPRESENT_PARAMETERS& parameters) {
    const bool depth = parameters.EnableAutoDepthStencil != 0;
    D3DSURFACE_DESC desc = {};
    desc.Format = parameters.BackBufferFormat;
    desc.Type = D3DRTYPE_SURFACE;
    desc.Usage = D3DUSAGE_RENDERTARGET;
    desc.Pool = D3DPOOL_DEFAULT;
    desc.Width = parameters.BackBufferWidth ? parameters.BackBufferWidth : recording_.client_width;
    desc.Height = parameters.BackBufferHeight ? parameters.BackBufferHeight : recording_.client_height;
    back_buffer_ = DevicePtr<RecordedSurface>(new RecordedSurface(recording_, desc));
    depth_.Reset();
    states_ = RecordedStates(depth, desc.Width, desc.Height);
    states_.target = DevicePtr<IDirect3DSurface9>::Share(back_buffer_.Get());
    if (depth) {
        desc.Format = parameters.AutoDepthStencilFormat;
        desc.Usage = D3DUSAGE_DEPTHSTENCIL;
        depth_ = DevicePtr<RecordedSurface>(new RecordedSurface(recording_, desc));
    }
}

int RecordingDevice::ForeignDefaultPoolObjects() const {
    int own = 0;
    if (back_buffer_ && back_buffer_->References() == 1) ++own;
    if (depth_ && depth_->References() == 1) ++own;
    return recording_.LiveDefaultPoolObjects() - own;
}

HRESULT RecordingDevice::TestCooperativeLevel() {
    const HRESULT result = recording_.Record("TestCooperativeLevel", {});
    return FAILED(result) ? result : recording_.CooperativeLevel();
}

HRESULT RecordingDevice::Reset(D3DPRESENT_PARAMETERS* parameters) {
    const HRESULT result = recording_.Record(
        "Reset", {parameters->BackBufferWidth, parameters->BackBufferHeight, parameters->PresentationInterval});
    if (FAILED(result)) return result;
    states_ = RecordedStates(false, 0, 0);   // what only the device holds goes first
    if (ForeignDefaultPoolObjects() > 0) return D3DERR_INVALIDCALL;
    MakeSwapChain(*parameters);
    recording_.ResetDone();
    return D3D_OK;
}

HRESULT RecordingDevice::Present(const RECT*, const RECT*, HWND, const void*) {
    const HRESULT result = recording_.Record("Present", {});
    if (FAILED(result)) return result;
    if (recording_.Lost()) return D3DERR_DEVICELOST;
    return states_.in_scene ? D3DERR_INVALIDCALL : D3D_OK;
}

HRESULT RecordingDevice::GetDeviceCaps(D3DCAPS9* caps) {
    const HRESULT result = recording_.Record("GetDeviceCaps", {});
    if (SUCCEEDED(result)) *caps = recording_.caps;
    return result;
}

void RecordingDevice::SetGammaRamp(UINT swap_chain, DWORD flags, const D3DGAMMARAMP* ramp) {
    recording_.Record("SetGammaRamp", {swap_chain, flags, ramp->red[1], ramp->green[1], ramp->blue[255]});
}

HRESULT RecordingDevice::SetSoftwareVertexProcessing(BOOL software) {
    const HRESULT result = recording_.Record("SetSoftwareVertexProcessing", {static_cast<DWORD>(software)});
    if (FAILED(result) || (behaviour_ & D3DCREATE_MIXED_VERTEXPROCESSING)) return result;
    const bool is_software = (behaviour_ & D3DCREATE_SOFTWARE_VERTEXPROCESSING) != 0;
    return is_software == (software != 0) ? D3D_OK : D3DERR_INVALIDCALL;
}

HRESULT RecordingDevice::CreateTexture(UINT width, UINT height, UINT levels, DWORD usage, D3DFORMAT format,
                                       D3DPOOL pool, IDirect3DTexture9** texture) {
    const HRESULT result = recording_.Record("CreateTexture", {width, height, levels, usage, format, pool});
    if (FAILED(result)) return result;
    if (width == 0 || height == 0 || width > recording_.caps.MaxTextureWidth ||
        height > recording_.caps.MaxTextureHeight || levels > FullChain(width, height)) {
        return D3DERR_INVALIDCALL;
    }
    const bool target = (usage & (D3DUSAGE_RENDERTARGET | D3DUSAGE_DEPTHSTENCIL)) != 0;
    if (target && pool != D3DPOOL_DEFAULT) return D3DERR_INVALIDCALL;
    if ((usage & D3DUSAGE_DYNAMIC) && pool == D3DPOOL_MANAGED) return D3DERR_INVALIDCALL;
    if (recording_.refused_texture_formats.count(format) > 0) return D3DERR_NOTAVAILABLE;
    D3DSURFACE_DESC desc = {};
    desc.Format = format;
    desc.Type = D3DRTYPE_SURFACE;
    desc.Usage = usage;
    desc.Pool = pool;
    desc.Width = width;
    desc.Height = height;
    *texture = new RecordedTexture(recording_, desc, levels ? levels : FullChain(width, height));
    return D3D_OK;
}

HRESULT RecordingDevice::CreateVertexBuffer(UINT bytes, DWORD usage, DWORD fvf, D3DPOOL pool,
                                            IDirect3DVertexBuffer9** buffer) {
    const HRESULT result = recording_.Record("CreateVertexBuffer", {bytes, usage, fvf, pool});
    if (FAILED(result)) return result;
    if (bytes == 0 || pool == D3DPOOL_SCRATCH) return D3DERR_INVALIDCALL;
    const bool hardware_only = (behaviour_ & D3DCREATE_HARDWARE_VERTEXPROCESSING) != 0;
    if (hardware_only && (usage & D3DUSAGE_SOFTWAREPROCESSING)) return D3DERR_INVALIDCALL;
    *buffer = new RecordedVertexBuffer(recording_, bytes, usage, pool);
    return D3D_OK;
}

HRESULT RecordingDevice::CreateIndexBuffer(UINT bytes, DWORD usage, D3DFORMAT format, D3DPOOL pool,
                                           IDirect3DIndexBuffer9** buffer) {
    const HRESULT result = recording_.Record("CreateIndexBuffer", {bytes, usage, format, pool});
    if (FAILED(result)) return result;
    if (bytes == 0 || pool == D3DPOOL_SCRATCH) return D3DERR_INVALIDCALL;
    *buffer = new RecordedIndexBuffer(recording_, bytes, usage, pool);
    return D3D_OK;
}

HRESULT RecordingDevice::CreateRenderTarget(UINT width, UINT height, D3DFORMAT format, DWORD multisample, DWORD quality,
                                            BOOL lockable, IDirect3DSurface9** surface) {
    const HRESULT result = recording_.Record(
        "CreateRenderTarget", {width, height, format, multisample, quality, static_cast<DWORD>(lockable)});
    if (FAILED(result)) return result;
    if (width == 0 || height == 0 || (lockable && multisample)) return D3DERR_INVALIDCALL;
    const D3DSURFACE_DESC desc = {
        format, D3DRTYPE_SURFACE, D3DUSAGE_RENDERTARGET, D3DPOOL_DEFAULT, multisample, quality, width, height};
    *surface = new RecordedSurface(recording_, desc);
    return D3D_OK;
}

HRESULT RecordingDevice::CreateOffscreenPlainSurface(UINT width, UINT height, D3DFORMAT format, D3DPOOL pool,
                                                     IDirect3DSurface9** surface) {
    const HRESULT result = recording_.Record("CreateOffscreenPlainSurface", {width, height, format, pool});
    if (FAILED(result)) return result;
    if (width == 0 || height == 0 || pool == D3DPOOL_MANAGED) return D3DERR_INVALIDCALL;
    *surface = new RecordedSurface(recording_, {format, D3DRTYPE_SURFACE, 0, pool, 0, 0, width, height});
    return D3D_OK;
}

HRESULT RecordingDevice::CreateVertexShader(const ShaderCode& code, IDirect3DVertexShader9** shader) {
    const HRESULT result = recording_.Record("CreateVertexShader", {});
    if (SUCCEEDED(result)) *shader = new RecordedShader<IDirect3DVertexShader9>(recording_, code);
    return result;
}

HRESULT RecordingDevice::CreatePixelShader(const ShaderCode& code, IDirect3DPixelShader9** shader) {
    const HRESULT result = recording_.Record("CreatePixelShader", {});
    if (SUCCEEDED(result)) *shader = new RecordedShader<IDirect3DPixelShader9>(recording_, code);
    return result;
}

HRESULT RecordingDevice::GetBackBuffer(UINT swap_chain, UINT index, DWORD type, IDirect3DSurface9** surface) {
    const HRESULT result = recording_.Record("GetBackBuffer", {swap_chain, index, type});
    if (FAILED(result)) return result;
    if (swap_chain != 0 || index != 0 || type != 0) return D3DERR_INVALIDCALL;
    return Give(DevicePtr<IDirect3DSurface9>::Share(back_buffer_.Get()), surface);
}

HRESULT RecordingDevice::SetRenderTarget(DWORD index, IDirect3DSurface9* surface) {
    const HRESULT result = recording_.Record("SetRenderTarget", {index, SerialOf(surface)});
    if (FAILED(result)) return result;
    if (index != 0 || !surface) return D3DERR_INVALIDCALL;
    const D3DSURFACE_DESC& desc = static_cast<RecordedSurface*>(surface)->Image().desc;
    if (!(desc.Usage & D3DUSAGE_RENDERTARGET)) return D3DERR_INVALIDCALL;
    Keep(states_.target, DevicePtr<IDirect3DSurface9>::Share(surface));
    states_.viewport = {0, 0, desc.Width, desc.Height, 0.0f, 1.0f};
    return D3D_OK;
}

HRESULT RecordingDevice::GetRenderTarget(DWORD index, IDirect3DSurface9** surface) {
    const HRESULT result = recording_.Record("GetRenderTarget", {index});
    if (FAILED(result)) return result;
    return index == 0 ? Give(states_.target, surface) : D3DERR_NOTFOUND;
}

HRESULT RecordingDevice::GetDepthStencilSurface(IDirect3DSurface9** surface) {
    const HRESULT result = recording_.Record("GetDepthStencilSurface", {});
    if (FAILED(result)) return result;
    return depth_ ? Give(DevicePtr<IDirect3DSurface9>::Share(depth_.Get()), surface) : D3DERR_NOTFOUND;
}

HRESULT RecordingDevice::StretchRect(IDirect3DSurface9* source, const RECT*, IDirect3DSurface9* destination,
                                     const RECT*, DWORD filter) {
    return recording_.Record("StretchRect", {SerialOf(source), SerialOf(destination), filter});
}

HRESULT RecordingDevice::ColorFill(IDirect3DSurface9* surface, const RECT* rect, D3DCOLOR colour) {
    const HRESULT result = recording_.Record("ColorFill", {SerialOf(surface), colour});
    if (FAILED(result)) return result;
    RecordedImage& image = static_cast<RecordedSurface*>(surface)->Image();
    if (image.desc.Pool != D3DPOOL_DEFAULT) return D3DERR_INVALIDCALL;
    const LONG width = static_cast<LONG>(image.desc.Width), height = static_cast<LONG>(image.desc.Height);
    const RECT area = rect ? *rect : RECT{0, 0, width, height};
    if (area.left < 0 || area.top < 0 || area.right > width || area.bottom > height) return D3DERR_INVALIDCALL;
    if (RowBytes(image.desc.Format, 1) != sizeof(colour)) return D3D_OK;
    for (LONG y = area.top; y < area.bottom; ++y) {
        BYTE* row = image.bytes.data() + static_cast<std::ptrdiff_t>(y) * image.pitch;
        for (LONG x = area.left; x < area.right; ++x) std::memcpy(row + 4 * x, &colour, sizeof(colour));
    }
    return D3D_OK;
}

HRESULT RecordingDevice::UpdateTexture(IDirect3DTexture9* source, IDirect3DTexture9* destination) {
    const HRESULT result = recording_.Record("UpdateTexture", {SerialOf(source), SerialOf(destination)});
    if (FAILED(result)) return result;
    auto& from = *static_cast<RecordedTexture*>(source);
    auto& to = *static_cast<RecordedTexture*>(destination);
    const D3DSURFACE_DESC &a = from.Level(0).desc, &b = to.Level(0).desc;
    if (a.Pool != D3DPOOL_SYSTEMMEM || b.Pool != D3DPOOL_DEFAULT || a.Width != b.Width || a.Height != b.Height ||
        a.Format != b.Format || from.GetLevelCount() != to.GetLevelCount()) {
        return D3DERR_INVALIDCALL;
    }
    for (UINT level = 0; level < to.GetLevelCount(); ++level) to.Level(level).bytes = from.Level(level).bytes;
    return D3D_OK;
}

HRESULT RecordingDevice::GetRenderTargetData(IDirect3DSurface9* target, IDirect3DSurface9* system_surface) {
    const HRESULT result = recording_.Record("GetRenderTargetData", {SerialOf(target), SerialOf(system_surface)});
    if (FAILED(result)) return result;
    RecordedImage& from = static_cast<RecordedSurface*>(target)->Image();
    RecordedImage& to = static_cast<RecordedSurface*>(system_surface)->Image();
    if (to.desc.Pool != D3DPOOL_SYSTEMMEM || from.bytes.size() != to.bytes.size()) return D3DERR_INVALIDCALL;
    to.bytes = from.bytes;
    return D3D_OK;
}

HRESULT RecordingDevice::BeginScene() {
    const HRESULT result = recording_.Record("BeginScene", {});
    if (FAILED(result)) return result;
    if (states_.in_scene) return D3DERR_INVALIDCALL;
    states_.in_scene = true;
    return D3D_OK;
}

HRESULT RecordingDevice::EndScene() {
    const HRESULT result = recording_.Record("EndScene", {});
    if (FAILED(result)) return result;
    if (!states_.in_scene) return D3DERR_INVALIDCALL;
    states_.in_scene = false;
    return D3D_OK;
}

HRESULT RecordingDevice::Clear(DWORD count, const D3DRECT* rects, DWORD flags, D3DCOLOR colour, float z,
                               DWORD stencil) {
    const HRESULT result = recording_.Record("Clear", {count, flags, colour, Bits(z), stencil});
    if (FAILED(result)) return result;
    if ((count == 0) != (rects == nullptr) || z < 0 || z > 1) return D3DERR_INVALIDCALL;
    if ((flags & (D3DCLEAR_ZBUFFER | D3DCLEAR_STENCIL)) && !depth_) return D3DERR_INVALIDCALL;
    return D3D_OK;
}

}   // namespace sparkrig
