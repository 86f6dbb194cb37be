// The device on OpenGL: checks each call by the rules of the contract, keeps the state, and leaves drawing to the
// pipeline, showing to the presenter.
#pragma once
#include "platform/d3d9/state_device.h"
#include "platform/d3d9_gl/buffers.h"
#include "platform/d3d9_gl/draw_pipeline.h"
#include "platform/d3d9_gl/presenter.h"

namespace sparkrig {

struct PointVertices;
template <class Interface>
class ShaderObject;
using VertexShaderObject = ShaderObject<IDirect3DVertexShader9>;
using PixelShaderObject = ShaderObject<IDirect3DPixelShader9>;

class Device final : public StateDevice {
  public:
    /// Makes a device that shows its pictures in a window. On failure the device is null.
    static HRESULT Create(const PresentWindow& window, DWORD behaviour, const D3DPRESENT_PARAMETERS& parameters,
                          Device** device);

    // For tests: takes the device away and gives it back.
    void Lose() { life_ = DeviceLife::Lost; }
    void SetBlind(bool blind) { blind_ = blind; }
    void Restore() {
        if (life_ == DeviceLife::Lost) life_ = DeviceLife::NotReset;
    }
    /// Programs made so far: one for each combination of states that generates different ones.
    std::size_t ProgramCount() const { return pipeline_.ProgramCount(); }

    HRESULT TestCooperativeLevel() override;
    HRESULT Reset(D3DPRESENT_PARAMETERS* parameters) override;
    HRESULT Present(const RECT* source, const RECT* destination, HWND window, const void* region) override;
    HRESULT GetDeviceCaps(D3DCAPS9* caps) override;
    void SetGammaRamp(UINT swap_chain, DWORD flags, const D3DGAMMARAMP* ramp) override;

    HRESULT CreateTexture(UINT width, UINT height, UINT levels, DWORD usage, D3DFORMAT format, D3DPOOL pool,
                          IDirect3DTexture9** texture) override;
    HRESULT CreateVertexBuffer(UINT bytes, DWORD usage, DWORD fvf, D3DPOOL pool,
                               IDirect3DVertexBuffer9** buffer) override;
    HRESULT CreateIndexBuffer(UINT bytes, DWORD usage, D3DFORMAT format, D3DPOOL pool,
                              IDirect3DIndexBuffer9** buffer) override;
    HRESULT CreateRenderTarget(UINT width, UINT height, D3DFORMAT format, DWORD multisample, DWORD quality,
                               BOOL lockable, IDirect3DSurface9** surface) override;
    HRESULT CreateOffscreenPlainSurface(UINT width, UINT height, D3DFORMAT format, D3DPOOL pool,
                                        IDirect3DSurface9** surface) override;
    HRESULT CreateVertexShader(const ShaderCode& code, IDirect3DVertexShader9** shader) override;
    HRESULT CreatePixelShader(const ShaderCode& code, IDirect3DPixelShader9** shader) override;

    HRESULT GetBackBuffer(UINT swap_chain, UINT index, DWORD type, IDirect3DSurface9** surface) override;
    HRESULT SetRenderTarget(DWORD index, IDirect3DSurface9* surface) override;
    HRESULT GetRenderTarget(DWORD index, IDirect3DSurface9** surface) override;
    HRESULT GetDepthStencilSurface(IDirect3DSurface9** surface) override;
    HRESULT StretchRect(IDirect3DSurface9* source, const RECT* from, IDirect3DSurface9* destination, const RECT* to,
                        DWORD filter) override;
    HRESULT ColorFill(IDirect3DSurface9* surface, const RECT* rect, D3DCOLOR colour) override;
    HRESULT UpdateTexture(IDirect3DTexture9* source, IDirect3DTexture9* destination) override;
    HRESULT GetRenderTargetData(IDirect3DSurface9* target, IDirect3DSurface9* system_surface) override;

    HRESULT Clear(DWORD count, const D3DRECT* rects, DWORD flags, D3DCOLOR colour, float z, DWORD stencil) override;

    HRESULT SetViewport(const D3DVIEWPORT9* viewport) override;
    HRESULT SetTransform(D3DTRANSFORMSTATETYPE type, const D3DMATRIX* matrix) override;
    HRESULT SetMaterial(const D3DMATERIAL9* material) override;
    HRESULT SetLight(DWORD index, const D3DLIGHT9* light) override;
    HRESULT LightEnable(DWORD index, BOOL enable) override;
    HRESULT SetRenderState(D3DRENDERSTATETYPE state, DWORD value) override;
    HRESULT SetTextureStageState(DWORD stage, D3DTEXTURESTAGESTATETYPE state, DWORD value) override;
    HRESULT SetSamplerState(DWORD sampler, D3DSAMPLERSTATETYPE state, DWORD value) override;
    HRESULT SetTexture(DWORD sampler, IDirect3DTexture9* texture) override;
    HRESULT GetTexture(DWORD sampler, IDirect3DTexture9** texture) override;
    HRESULT SetVertexShader(IDirect3DVertexShader9* shader) override;
    HRESULT GetVertexShader(IDirect3DVertexShader9** shader) override;
    HRESULT SetPixelShader(IDirect3DPixelShader9* shader) override;
    HRESULT GetPixelShader(IDirect3DPixelShader9** shader) override;
    HRESULT SetVertexShaderGlobals(const void* data, UINT bytes) override;
    HRESULT SetPixelShaderGlobals(const void* data, UINT bytes) override;

    HRESULT SetFVF(DWORD fvf) override;
    HRESULT SetStreamSource(UINT stream, IDirect3DVertexBuffer9* buffer, UINT offset, UINT stride) override;
    HRESULT SetIndices(IDirect3DIndexBuffer9* buffer) override;
    HRESULT DrawPrimitive(D3DPRIMITIVETYPE type, UINT first_vertex, UINT count) override;
    HRESULT DrawIndexedPrimitive(D3DPRIMITIVETYPE type, INT base_vertex, UINT min_index, UINT vertices,
                                 UINT first_index, UINT count) override;

  private:
    // Everything bound, with the references that the device holds.
    struct Bound {
        std::array<DevicePtr<Texture>, kSamplers> textures;
        DevicePtr<VertexShaderObject> vertex_shader;
        DevicePtr<PixelShaderObject> pixel_shader;
        DevicePtr<VertexBuffer> vertices;
        DevicePtr<IndexBuffer> indices;
        DevicePtr<Surface> target;
        UINT stream_offset = 0, stream_stride = 0;
    };

    Device(std::shared_ptr<GlContext> context, const PresentWindow& window, DWORD behaviour);
    ~Device() override;

    /// Marks what a change of a state has to send.
    HRESULT Mark(Kept kept, unsigned groups) {
        if (kept == Kept::Changed) pipeline_.Mark(groups);
        return ResultOf(kept);
    }

    // Life (device.cpp)
    HRESULT ApplyParameters(D3DPRESENT_PARAMETERS parameters);
    bool DrawPresented();
    bool CreateSwapChain();
    bool DefaultPoolHeld() const;
    void StartAnew();
    /// The context is current and the device operational: what draws may go on.
    bool Alive() { return life_ == DeviceLife::Operational && context_->Activate(); }
    /// A full-screen device is lost while its window is minimised.
    void NoticeMinimised();

    // Targets (device_targets.cpp)
    void UseTarget(Surface* target);
    GLuint DepthFor(Surface& target);
    void FillAlpha(Surface& surface, const RECT& area);
    void ClearArea(const GlRect& area, DWORD flags, D3DCOLOR colour, float z, DWORD stencil);

    // Drawing (device_draw.cpp)
    StreamView Stream() const;
    IndexView Indices() const;
    bool DrawnAsPoints(D3DPRIMITIVETYPE type) const;
    const std::byte* VertexBytes(std::size_t vertex) const;
    /// Binds the stream so that vertex `first` has the returned number; the format's array is bound.
    GLint PlaceVertices(std::size_t first, std::size_t count);
    HRESULT DrawPoints(const PointVertices& points, std::size_t count);
    GLuint QuadIndices();

    std::shared_ptr<GlContext> context_;
    Presenter presenter_;
    DrawPipeline pipeline_;
    D3DPRESENT_PARAMETERS parameters_ = {};
    DeviceLife life_ = DeviceLife::Operational;
    bool blind_ = false;   // draws, clears and presents nothing
    bool lost_by_minimising_ = false;
    bool presented_ = false;   // the back buffer holds a frame that was shown

    Bound bound_;
    Bindings bindings_;   // the same as the pipeline sees it
    DevicePtr<OwnSurface> back_buffer_, depth_;
    std::vector<DevicePtr<OwnSurface>> fitting_depths_;   // of targets that the automatic one does not fit
    GLuint quad_indices_ = 0;
};

/// A vertex or pixel function made by CreateVertexShader or CreatePixelShader.
template <class Interface>
class ShaderObject final : public RefCounted<Interface> {
  public:
    ShaderObject(std::shared_ptr<GlContext> context, ShaderFunction function)
        : context_(std::move(context)), function_(std::move(function)) {}
    const ShaderFunction& Function() const { return function_; }

  private:
    ~ShaderObject() override {
        context_->retired_shaders.push_back(function_.number);
        ++context_->deletions;
    }

    std::shared_ptr<GlContext> context_;
    ShaderFunction function_;
};

}   // namespace sparkrig
