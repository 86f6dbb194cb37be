// The life of the device: creation, loss, reset, presenting.
#include "platform/d3d9_gl/device.h"

#include <algorithm>
#include <utility>

#include "platform/d3d9/capabilities.h"
#include "platform/d3d9/present_parameters.h"
#include "platform/d3d9_gl/display_modes.h"

namespace sparkrig {

namespace {

HRESULT Complete(const RECT& client_area, D3DPRESENT_PARAMETERS& parameters) {
    return CompleteParameters(client_area, DisplayModes(parameters.BackBufferFormat), parameters);
}

}   // namespace

HRESULT Device::Create(const PresentWindow& window, DWORD behaviour, const D3DPRESENT_PARAMETERS& parameters,
                       Device** device) {
    *device = nullptr;
    if (!ValidBehaviour(behaviour)) return D3DERR_INVALIDCALL;
    D3DPRESENT_PARAMETERS complete = parameters;
    if (const HRESULT result = Complete(window.client_area(), complete); FAILED(result)) return result;
    if (complete.BackBufferWidth == 0 || complete.BackBufferHeight == 0) return D3DERR_INVALIDCALL;

    std::shared_ptr<GlContext> context = GlContext::Create(window.native);
    if (context == nullptr) return D3DERR_NOTAVAILABLE;
    *device = new Device(std::move(context), window, behaviour);
    const HRESULT result = (*device)->ApplyParameters(complete);
    if (FAILED(result)) std::exchange(*device, nullptr)->Release();
    return result;
}

Device::Device(std::shared_ptr<GlContext> context, const PresentWindow& window, DWORD behaviour)
    : StateDevice(behaviour), context_(std::move(context)), presenter_(context_, window), pipeline_(context_) {
    presenter_.OfferPicture([this] { return DrawPresented(); });
}

Device::~Device() {
    const bool active = context_->Activate();
    presenter_.OfferPicture(nullptr);
    presenter_.LeaveFullScreen();   // what follows, a message box maybe, could not be seen behind it
    if (quad_indices_ != 0 && active) glDeleteBuffers(1, &quad_indices_);
}

// Everything for complete parameters: screen, swap chain, states.
HRESULT Device::ApplyParameters(D3DPRESENT_PARAMETERS parameters) {
    if (!context_->Activate()) return D3DERR_DEVICELOST;
    const UINT largest = static_cast<UINT>(context_->Limits().max_texture_size);
    if (parameters.BackBufferWidth > largest || parameters.BackBufferHeight > largest) return D3DERR_INVALIDCALL;
    parameters_ = parameters;
    presenter_.SetScreen(parameters);
    presenter_.SetInterval(parameters.PresentationInterval);
    if (!CreateSwapChain()) return D3DERR_OUTOFVIDEOMEMORY;
    StartAnew();
    life_ = DeviceLife::Operational;
    lost_by_minimising_ = false;
    return D3D_OK;
}

bool Device::CreateSwapChain() {
    D3DSURFACE_DESC desc = {};
    desc.Type = D3DRTYPE_SURFACE;
    desc.Pool = D3DPOOL_DEFAULT;
    desc.Width = parameters_.BackBufferWidth;
    desc.Height = parameters_.BackBufferHeight;
    desc.Format = parameters_.BackBufferFormat;
    desc.Usage = D3DUSAGE_RENDERTARGET;
    const auto shown = std::exchange(
        back_buffer_, DevicePtr(OwnSurface::Create(context_, SurfaceKind::SwapChain, desc, /*lockable=*/false)));
    // A window that is uncovered before the next frame still has its picture.
    if (presented_ && shown && back_buffer_) presenter_.Copy(*shown, *back_buffer_);
    depth_.Reset();
    if (parameters_.EnableAutoDepthStencil) {
        desc.Format = parameters_.AutoDepthStencilFormat;
        desc.Usage = D3DUSAGE_DEPTHSTENCIL;
        depth_ = DevicePtr(OwnSurface::Create(context_, SurfaceKind::Depth, desc, /*lockable=*/false));
        if (!depth_) return false;
    }
    return static_cast<bool>(back_buffer_);
}

// All states as after creation, nothing bound, drawing into the back buffer.
void Device::StartAnew() {
    state_ = DeviceState(parameters_.EnableAutoDepthStencil != FALSE);
    bound_ = {};
    bindings_ = {};
    pipeline_.MarkAll();
    UseTarget(back_buffer_.Get());
}

bool Device::DefaultPoolHeld() const {
    const bool back_buffer_held = back_buffer_ && back_buffer_->References() > 1;
    const bool depth_held = depth_ && depth_->References() > 1;
    return context_->default_pool_objects > 0 || back_buffer_held || depth_held;
}

void Device::NoticeMinimised() {
    if (parameters_.Windowed) return;
    if (life_ == DeviceLife::Operational && presenter_.Minimised()) {
        life_ = DeviceLife::Lost;
        lost_by_minimising_ = true;
    } else if (lost_by_minimising_ && !presenter_.Minimised()) {
        Restore();
        lost_by_minimising_ = false;
    }
}

HRESULT Device::TestCooperativeLevel() {
    NoticeMinimised();
    return CooperativeLevel(life_);
}

HRESULT Device::Reset(D3DPRESENT_PARAMETERS* parameters) {
    NoticeMinimised();
    if (life_ == DeviceLife::Lost) return D3DERR_DEVICELOST;
    if (parameters == nullptr) return D3DERR_INVALIDCALL;
    life_ = DeviceLife::NotReset;   // until all has gone well
    bound_ = {};
    bindings_ = {};
    state_.in_scene = false;
    if (DefaultPoolHeld()) return D3DERR_INVALIDCALL;

    D3DPRESENT_PARAMETERS complete = *parameters;
    if (const HRESULT result = Complete(presenter_.ClientArea(), complete); FAILED(result)) return result;
    complete.BackBufferWidth = std::max(complete.BackBufferWidth, 1u);   // of a window that is minimised
    complete.BackBufferHeight = std::max(complete.BackBufferHeight, 1u);
    fitting_depths_.clear();
    return ApplyParameters(complete);
}

HRESULT Device::Present(const RECT* source, const RECT* destination, HWND window, const void* region) {
    NoticeMinimised();
    if (!context_->Activate()) return D3DERR_DEVICELOST;
    const bool whole = source == nullptr && destination == nullptr && window == nullptr && region == nullptr;
    if (const HRESULT result = CheckPresent(life_, state_.in_scene, whole); FAILED(result)) return result;
    if (!blind_ && presenter_.Present(*back_buffer_, !parameters_.Windowed)) pipeline_.ForgetGl();
    ++context_->frame;
    presented_ = true;
    return D3D_OK;
}

// The back buffer keeps what it showed until the next frame is drawn. The window draws its own things over it.
bool Device::DrawPresented() {
    pipeline_.ForgetGl();
    if (!presented_ || state_.in_scene || !context_->Activate()) return false;
    presenter_.DrawPicture(*back_buffer_, !parameters_.Windowed);
    return true;
}

HRESULT Device::GetDeviceCaps(D3DCAPS9* caps) {
    if (caps == nullptr) return D3DERR_INVALIDCALL;
    *caps = DeviceCaps(context_->Limits());
    return D3D_OK;
}

void Device::SetGammaRamp(UINT swap_chain, DWORD /*flags*/, const D3DGAMMARAMP* ramp) {
    if (swap_chain == 0 && ramp != nullptr && context_->Activate()) presenter_.SetGammaRamp(*ramp);
}

}   // namespace sparkrig
