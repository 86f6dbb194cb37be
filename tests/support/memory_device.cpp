#include "tests/support/memory_device.h"

#include <algorithm>
#include <cstring>

#include "platform/d3d9/capabilities.h"
#include "platform/d3d9/present_parameters.h"
#include "platform/d3d9/state_device.h"

namespace sparkrig {

namespace {

HRESULT Complete(const MemoryAdapter& adapter, D3DPRESENT_PARAMETERS& parameters) {
    const RECT client = {0, 0, static_cast<LONG>(adapter.client_width), static_cast<LONG>(adapter.client_height)};
    return CompleteParameters(client, adapter.modes, parameters);
}

MemoryImage& ImageOf(IDirect3DSurface9* surface) { return static_cast<MemorySurface*>(surface)->Image(); }
template <class Interface>
MemoryBuffer<Interface>& BufferOf(const DevicePtr<Interface>& bound) {
    return static_cast<MemoryBuffer<Interface>&>(*bound);
}

/// The contract's Get functions: a further reference to what is held; null stays null.
template <class Interface>
HRESULT Give(const DevicePtr<Interface>& object, Interface** out) {
    if (object) object->AddRef();
    *out = object.Get();
    return D3D_OK;
}

/// The same of the contract's Create functions, for something that is made when the rules do not refuse it.
template <class Make, class Interface>
HRESULT GiveNew(HRESULT refused, Interface** out, Make make) {
    if (SUCCEEDED(refused)) *out = make();
    return refused;
}

/// What is bound. A reset puts it back, as it does the states.
struct Bindings {
    UINT stream_offset = 0, stride = 0;
    DevicePtr<IDirect3DVertexBuffer9> stream;
    DevicePtr<IDirect3DIndexBuffer9> indices;
    std::array<DevicePtr<IDirect3DTexture9>, kSamplers> textures;
    DevicePtr<IDirect3DVertexShader9> vertex_shader;
    DevicePtr<IDirect3DPixelShader9> pixel_shader;
    DevicePtr<IDirect3DSurface9> target;
};

class MemoryDevice : public StateDevice {
  public:
    /// The parameters are complete.
    MemoryDevice(MemoryAdapter& adapter, DWORD behaviour, const D3DPRESENT_PARAMETERS& parameters)
        : StateDevice(behaviour), adapter_(adapter) {
        MakeSwapChain(parameters);
    }

    HRESULT TestCooperativeLevel() override {
        DeviceLife& life = adapter_.life;
        if (life == DeviceLife::Lost && adapter_.lost_polls-- <= 0) life = DeviceLife::NotReset;
        return CooperativeLevel(life);
    }
    HRESULT Reset(D3DPRESENT_PARAMETERS* parameters) override {
        if (adapter_.life == DeviceLife::Lost) return D3DERR_DEVICELOST;
        adapter_.life = DeviceLife::NotReset;   // until all has gone well
        state_ = DeviceState(false);            // what only the device holds goes first
        bound_ = {};
        if (ForeignDefaultPoolObjects() > 0) return D3DERR_INVALIDCALL;
        D3DPRESENT_PARAMETERS complete = *parameters;
        if (const HRESULT refused = Complete(adapter_, complete); FAILED(refused)) return refused;
        MakeSwapChain(complete);
        adapter_.life = DeviceLife::Operational;
        return D3D_OK;
    }
    HRESULT Present(const RECT* source, const RECT* destination, HWND window, const void* region) override {
        return CheckPresent(adapter_.life, state_.in_scene, !source && !destination && !window && !region);
    }
    HRESULT GetDeviceCaps(D3DCAPS9* caps) override { return *caps = adapter_.caps, D3D_OK; }
    void SetGammaRamp(UINT, DWORD, const D3DGAMMARAMP*) override {}

    // ---- Resources

    HRESULT CreateTexture(UINT width, UINT height, UINT levels, DWORD usage, D3DFORMAT format, D3DPOOL pool,
                          IDirect3DTexture9** texture) override {
        TextureRequest r = {width, height, levels, usage, format, pool};
        if (const HRESULT refused = CheckTexture(Limits(), r); FAILED(refused)) return refused;
        if (adapter_.refused_texture_formats.contains(format)) return D3DERR_INVALIDCALL;
        const D3DSURFACE_DESC top = {format, D3DRTYPE_SURFACE, r.usage, pool, D3DMULTISAMPLE_NONE, 0, width, height};
        return *texture = new MemoryTexture(adapter_, top, r.levels), D3D_OK;
    }
    HRESULT CreateVertexBuffer(UINT bytes, DWORD usage, DWORD fvf, D3DPOOL pool,
                               IDirect3DVertexBuffer9** buffer) override {
        return GiveNew(CheckVertexBuffer(behaviour_, bytes, usage, fvf, pool), buffer,
                       [&] { return new MemoryBuffer<IDirect3DVertexBuffer9>(adapter_, bytes, pool, 0); });
    }
    HRESULT CreateIndexBuffer(UINT bytes, DWORD usage, D3DFORMAT format, D3DPOOL pool,
                              IDirect3DIndexBuffer9** buffer) override {
        return GiveNew(CheckIndexBuffer(bytes, usage, format, pool), buffer, [&] {
            return new MemoryBuffer<IDirect3DIndexBuffer9>(adapter_, bytes, pool, IndexBytes(format));
        });
    }
    HRESULT CreateRenderTarget(UINT width, UINT height, D3DFORMAT format, DWORD samples, DWORD quality, BOOL lockable,
                               IDirect3DSurface9** surface) override {
        const D3DSURFACE_DESC desc = {
            format, D3DRTYPE_SURFACE, D3DUSAGE_RENDERTARGET, D3DPOOL_DEFAULT, samples, quality, width, height};
        return GiveNew(CheckRenderTarget(Limits(), width, height, format, samples, lockable), surface,
                       [&] { return new MemorySurface(adapter_, desc, lockable != 0); });
    }
    HRESULT CreateOffscreenPlainSurface(UINT width, UINT height, D3DFORMAT format, D3DPOOL pool,
                                        IDirect3DSurface9** surface) override {
        const D3DSURFACE_DESC desc = {format, D3DRTYPE_SURFACE, 0, pool, D3DMULTISAMPLE_NONE, 0, width, height};
        return GiveNew(CheckPlainSurface(Limits(), width, height, format, pool), surface,
                       [&] { return new MemorySurface(adapter_, desc, true, true); });
    }
    HRESULT CreateVertexShader(const ShaderCode&, IDirect3DVertexShader9** shader) override {
        return *shader = new MemoryShader<IDirect3DVertexShader9>, D3D_OK;
    }
    HRESULT CreatePixelShader(const ShaderCode&, IDirect3DPixelShader9** shader) override {
        return *shader = new MemoryShader<IDirect3DPixelShader9>, D3D_OK;
    }

    // ---- Targets and copies

    HRESULT GetBackBuffer(UINT swap_chain, UINT index, DWORD, IDirect3DSurface9** surface) override {
        const HRESULT refused = CheckBackBuffer(swap_chain, index, back_buffers_);
        return FAILED(refused) ? refused : Give(back_buffer_, surface);
    }
    HRESULT SetRenderTarget(DWORD index, IDirect3DSurface9* surface) override {
        if (!surface) return D3DERR_INVALIDCALL;
        const D3DSURFACE_DESC& desc = ImageOf(surface).desc;
        if (const HRESULT refused = CheckTarget(index, desc); FAILED(refused)) return refused;
        state_.viewport = {0, 0, desc.Width, desc.Height, 0.0f, 1.0f};
        return Bind(bound_.target, surface);
    }
    HRESULT GetRenderTarget(DWORD index, IDirect3DSurface9** surface) override {
        return index == 0 ? Give(bound_.target, surface) : D3DERR_INVALIDCALL;
    }
    HRESULT GetDepthStencilSurface(IDirect3DSurface9** surface) override {
        return depth_ ? Give(depth_, surface) : D3DERR_NOTFOUND;
    }
    HRESULT StretchRect(IDirect3DSurface9* source, const RECT* from, IDirect3DSurface9* destination, const RECT* to,
                        DWORD filter) override {
        MemoryImage &read = ImageOf(source), &written = ImageOf(destination);
        RECT area, target;
        if (!TakeRect(read.desc, from, area) || !TakeRect(written.desc, to, target)) return D3DERR_INVALIDCALL;
        return CheckStretch({read.desc, area}, {written.desc, target}, &read == &written, filter);
    }
    HRESULT ColorFill(IDirect3DSurface9* surface, const RECT* rect, D3DCOLOR colour) override {
        MemoryImage& image = ImageOf(surface);
        RECT area;
        if (!TakeRect(image.desc, rect, area)) return D3DERR_INVALIDCALL;
        const HRESULT refused = CheckFill(image.desc, image.plain);
        if (SUCCEEDED(refused)) Fill(image, area, colour);
        return refused;
    }
    HRESULT UpdateTexture(IDirect3DTexture9* source, IDirect3DTexture9* destination) override {
        auto &from = static_cast<MemoryTexture&>(*source), &to = static_cast<MemoryTexture&>(*destination);
        const HRESULT refused =
            CheckUpdate(from.Level(0).desc, from.GetLevelCount(), to.Level(0).desc, to.GetLevelCount());
        if (FAILED(refused)) return refused;
        for (UINT level = 0; level < to.GetLevelCount(); ++level) to.Level(level).bytes = from.Level(level).bytes;
        return D3D_OK;
    }
    HRESULT GetRenderTargetData(IDirect3DSurface9* target, IDirect3DSurface9* system_surface) override {
        const MemoryImage& from = ImageOf(target);
        MemoryImage& to = ImageOf(system_surface);
        if (const HRESULT refused = CheckReadBack(from.desc, to.desc); FAILED(refused)) return refused;
        return to.bytes = from.bytes, D3D_OK;
    }
    HRESULT Clear(DWORD count, const D3DRECT* rects, DWORD flags, D3DCOLOR, float z, DWORD) override {
        return CheckClear(count, rects, flags, z, depth_ ? &ImageOf(depth_.Get()).desc : nullptr);
    }

    // ---- States and bindings

    HRESULT SetViewport(const D3DVIEWPORT9* viewport) override {
        return Note(state_.SetViewport(viewport, ImageOf(bound_.target.Get()).desc));
    }
    HRESULT SetTransform(D3DTRANSFORMSTATETYPE state, const D3DMATRIX* matrix) override {
        return Note(state_.SetTransform(state, matrix));
    }
    HRESULT SetMaterial(const D3DMATERIAL9* material) override { return Note(state_.SetMaterial(material)); }
    HRESULT SetLight(DWORD index, const D3DLIGHT9* light) override { return Note(state_.SetLight(index, light)); }
    HRESULT LightEnable(DWORD index, BOOL enable) override { return Note(state_.LightEnable(index, enable)); }
    HRESULT SetRenderState(D3DRENDERSTATETYPE state, DWORD value) override {
        return Note(state_.SetRenderState(state, value));
    }
    HRESULT SetTextureStageState(DWORD stage, D3DTEXTURESTAGESTATETYPE state, DWORD value) override {
        return Note(state_.SetTextureStageState(stage, state, value));
    }
    HRESULT SetSamplerState(DWORD sampler, D3DSAMPLERSTATETYPE state, DWORD value) override {
        return Note(state_.SetSamplerState(sampler, state, value));
    }
    HRESULT SetTexture(DWORD sampler, IDirect3DTexture9* texture) override {
        return sampler < kSamplers ? Bind(bound_.textures[sampler], texture) : D3DERR_INVALIDCALL;
    }
    HRESULT GetTexture(DWORD sampler, IDirect3DTexture9** texture) override {
        return sampler < kSamplers ? Give(bound_.textures[sampler], texture) : D3DERR_INVALIDCALL;
    }
    HRESULT SetVertexShader(IDirect3DVertexShader9* shader) override { return Bind(bound_.vertex_shader, shader); }
    HRESULT GetVertexShader(IDirect3DVertexShader9** shader) override { return Give(bound_.vertex_shader, shader); }
    HRESULT SetPixelShader(IDirect3DPixelShader9* shader) override { return Bind(bound_.pixel_shader, shader); }
    HRESULT GetPixelShader(IDirect3DPixelShader9** shader) override { return Give(bound_.pixel_shader, shader); }
    HRESULT SetVertexShaderGlobals(const void*, UINT) override { return D3D_OK; }
    HRESULT SetPixelShaderGlobals(const void*, UINT) override { return D3D_OK; }

    // ---- Drawing

    /// Never called repeated: DrawSubset of a mesh sets its format each time.
    HRESULT SetFVF(DWORD fvf) override { return ResultOf(state_.SetFVF(fvf)); }
    HRESULT SetStreamSource(UINT stream, IDirect3DVertexBuffer9* buffer, UINT offset, UINT stride) override {
        if (stream != 0) return D3DERR_INVALIDCALL;
        bound_.stream = DevicePtr<IDirect3DVertexBuffer9>::Share(buffer);
        bound_.stream_offset = offset;
        bound_.stride = stride;
        return D3D_OK;
    }
    HRESULT SetIndices(IDirect3DIndexBuffer9* buffer) override {
        return bound_.indices = DevicePtr<IDirect3DIndexBuffer9>::Share(buffer), D3D_OK;
    }
    HRESULT DrawPrimitive(D3DPRIMITIVETYPE type, UINT first, UINT count) override {
        if (const HRESULT refused = CheckDraw(state_, Stream(), type, first, count); FAILED(refused)) return refused;
        const BYTE* begin =
            BufferOf(bound_.stream).bytes.data() + bound_.stream_offset + std::size_t{first} * bound_.stride;
        NoteDraw(type, first, count).vertices.assign(begin, begin + VertexCount(type, count) * bound_.stride);
        return D3D_OK;
    }
    HRESULT DrawIndexedPrimitive(D3DPRIMITIVETYPE type, INT base, UINT min_index, UINT vertices, UINT first,
                                 UINT count) override {
        const HRESULT refused =
            CheckIndexedDraw(state_, Stream(), Indices(), type, std::int64_t{base} + min_index, vertices, first, count);
        if (SUCCEEDED(refused)) NoteDraw(type, first, count);
        return refused;
    }

  private:
    DeviceLimits Limits() const { return {static_cast<int>(adapter_.caps.MaxTextureWidth), 4, true}; }

    void MakeSwapChain(const D3DPRESENT_PARAMETERS& parameters) {
        const UINT width = parameters.BackBufferWidth, height = parameters.BackBufferHeight;
        const auto make = [&](D3DFORMAT format, DWORD usage) {
            const D3DSURFACE_DESC desc = {format, D3DRTYPE_SURFACE, usage, D3DPOOL_DEFAULT, 0, 0, width, height};
            return DevicePtr<IDirect3DSurface9>(new MemorySurface(adapter_, desc, false));
        };
        back_buffers_ = parameters.BackBufferCount;
        back_buffer_ = make(parameters.BackBufferFormat, D3DUSAGE_RENDERTARGET);
        depth_.Reset();
        if (parameters.EnableAutoDepthStencil) depth_ = make(parameters.AutoDepthStencilFormat, D3DUSAGE_DEPTHSTENCIL);
        state_ = DeviceState(parameters.EnableAutoDepthStencil != 0);
        state_.viewport = {0, 0, width, height, 0.0f, 1.0f};
        bound_.target = back_buffer_;
    }
    /// Resources that the program, not the device, keeps in the default pool.
    int ForeignDefaultPoolObjects() const {
        int own = 0;
        for (const auto* surface : {&back_buffer_, &depth_})
            own += *surface && static_cast<MemorySurface&>(**surface).References() == 1;
        return adapter_.default_pool_objects - own;
    }
    static void Fill(MemoryImage& image, const RECT& area, D3DCOLOR colour) {
        if (image.format.bytes != sizeof(colour)) return;
        for (LONG y = area.top; y < area.bottom; ++y) {
            BYTE* row = image.bytes.data() + static_cast<std::ptrdiff_t>(y) * image.pitch;
            for (LONG x = area.left; x < area.right; ++x) std::memcpy(row + 4 * x, &colour, sizeof(colour));
        }
    }

    HRESULT Note(Kept kept) {
        adapter_.repeated_states += kept == Kept::Same;
        return ResultOf(kept);
    }
    template <class Interface>
    HRESULT Bind(DevicePtr<Interface>& held, Interface* object) {
        return Note(DeviceState::Keep(held, DevicePtr<Interface>::Share(object)));
    }

    StreamView Stream() const {
        if (!bound_.stream) return {};
        const auto& buffer = BufferOf(bound_.stream);
        return {true, buffer.locks > 0, buffer.bytes.size(), bound_.stream_offset, bound_.stride};
    }
    IndexView Indices() const {
        if (!bound_.indices) return {};
        const auto& buffer = BufferOf(bound_.indices);
        return {true, buffer.locks > 0, buffer.bytes.size(), buffer.element_bytes};
    }
    RecordedDraw& NoteDraw(D3DPRIMITIVETYPE type, UINT first, UINT count) {
        const auto* texture = static_cast<MemoryTexture*>(bound_.textures[0].Get());
        const UINT number = texture ? texture->Number() : 0;
        const DWORD fvf = state_.format.fvf;
        adapter_.draws.push_back({type, first, count, fvf, bound_.stride, {}, number, state_.render, state_.world[0]});
        return adapter_.draws.back();
    }

    MemoryAdapter& adapter_;
    UINT back_buffers_ = 0;
    Bindings bound_;
    DevicePtr<IDirect3DSurface9> back_buffer_, depth_;
};

class MemoryDirect3D : public RefCounted<IDirect3D9> {
  public:
    explicit MemoryDirect3D(MemoryAdapter& adapter) : adapter_(adapter) {}

    UINT GetAdapterCount() override { return static_cast<UINT>(adapter_.adapters.size()); }
    HRESULT GetAdapterIdentifier(UINT adapter, DWORD, D3DADAPTER_IDENTIFIER9* identifier) override {
        if (adapter >= adapter_.adapters.size()) return D3DERR_INVALIDCALL;
        *identifier = {};
        adapter_.adapters[adapter].copy(identifier->Description, sizeof(identifier->Description) - 1);
        return D3D_OK;
    }
    HRESULT GetAdapterDisplayMode(UINT, D3DDISPLAYMODE* mode) override { return *mode = adapter_.desktop, D3D_OK; }
    UINT GetAdapterModeCount(UINT, D3DFORMAT format) override {
        return static_cast<UINT>(std::ranges::count(adapter_.modes, format, &D3DDISPLAYMODE::Format));
    }
    HRESULT EnumAdapterModes(UINT, D3DFORMAT format, UINT index, D3DDISPLAYMODE* mode) override {
        for (const D3DDISPLAYMODE& offered : adapter_.modes)
            if (offered.Format == format && index-- == 0) return *mode = offered, D3D_OK;
        return D3DERR_INVALIDCALL;
    }
    HRESULT CheckDeviceFormat(UINT, D3DDEVTYPE, D3DFORMAT, DWORD, D3DRESOURCETYPE, D3DFORMAT format) override {
        return adapter_.refused_texture_formats.contains(format) ? D3DERR_NOTAVAILABLE : D3D_OK;
    }
    HRESULT GetDeviceCaps(UINT, D3DDEVTYPE, D3DCAPS9* caps) override { return *caps = adapter_.caps, D3D_OK; }
    HRESULT CreateDevice(UINT, D3DDEVTYPE, HWND, DWORD behaviour, D3DPRESENT_PARAMETERS* parameters,
                         IDirect3DDevice9** device) override {
        D3DPRESENT_PARAMETERS complete = *parameters;
        if (!ValidBehaviour(behaviour)) return D3DERR_INVALIDCALL;
        return GiveNew(Complete(adapter_, complete), device,
                       [&] { return new MemoryDevice(adapter_, behaviour, complete); });
    }

  private:
    MemoryAdapter& adapter_;
};

}   // namespace

MemoryAdapter::MemoryAdapter() : caps(DeviceCaps({4096, 4, true})) {
    for (const D3DFORMAT format : {D3DFMT_X8R8G8B8, D3DFMT_R5G6B5}) {
        for (const UINT rate : {60u, 75u, 72u}) modes.push_back({1024, 768, rate, format});
        modes.push_back({800, 600, 85, format});
    }
}

IDirect3D9* MakeMemoryDirect3D(MemoryAdapter& adapter) { return new MemoryDirect3D(adapter); }

}   // namespace sparkrig
