#include "gfx/device/graphics_device.h"

#include <cstring>

namespace sparkrig {

namespace {

constexpr char kAnalysisAdapter[] = "NVIDIA NVPerfHUD";

void ProbeLibrary(const KRN_Base& reporter, const GfxEnvironment& environment, const char* name, const char* message) {
    if (!environment.load_library(name)) reporter.Error("%s", message);
    environment.free_library(name);
}

}   // namespace

GraphicsDevice::GraphicsDevice(const KRN_Base& reporter, CreateDirect3D create, const GfxEnvironment& environment)
    : reporter_(reporter), environment_(environment) {
    ProbeLibrary(reporter, environment, "d3d9.dll", "At least DirectX 9.0 required!");
    ProbeLibrary(reporter, environment, "d3dx9_30.dll",
                 "Your DirectX 9.0 runtime is too old (d3dx9_30.dll not found).\n"
                 "Please download and install latest DirectX");
    direct3d_ = DevicePtr<IDirect3D9>(create(D3D_SDK_VERSION));
    if (!direct3d_) reporter.Error("Direct3DCreate9 failed!");
}

void GraphicsDevice::ChooseAdapter(int device_select) {
    adapter_ = D3DADAPTER_DEFAULT;
    device_type_ = device_select == 1 ? D3DDEVTYPE_REF : D3DDEVTYPE_HAL;
    if (device_select != 2) return;
    for (UINT adapter = 0; adapter < direct3d_->GetAdapterCount(); ++adapter) {
        D3DADAPTER_IDENTIFIER9 identifier = {};
        if (FAILED(direct3d_->GetAdapterIdentifier(adapter, 0, &identifier))) continue;
        if (std::memcmp(identifier.Description, kAnalysisAdapter, sizeof(kAnalysisAdapter)) != 0) continue;
        adapter_ = adapter;
        device_type_ = D3DDEVTYPE_REF;
        return;
    }
}

void GraphicsDevice::ChooseBehaviour(const Choice& choice) {
    // Capabilities that cannot be read count as none: software processing always works.
    if (FAILED(direct3d_->GetDeviceCaps(adapter_, device_type_, &caps_))) caps_ = {};
    hardware_processing_ = (caps_.DevCaps & D3DDEVCAPS_HWTRANSFORMANDLIGHT) != 0 && choice.vertex_processing >= 1;
    if (!hardware_processing_) {
        behaviour_ = D3DCREATE_SOFTWARE_VERTEXPROCESSING;
    } else if (choice.vertex_processing == 1) {
        behaviour_ = D3DCREATE_MIXED_VERTEXPROCESSING;
    } else {
        behaviour_ = D3DCREATE_HARDWARE_VERTEXPROCESSING;
    }
    if (choice.multithreaded != 0) behaviour_ |= D3DCREATE_MULTITHREADED;
}

void GraphicsDevice::Create(HWND window, const Choice& choice, D3DPRESENT_PARAMETERS parameters) {
    ChooseAdapter(choice.device_select);
    ChooseBehaviour(choice);
    const HRESULT result =
        direct3d_->CreateDevice(adapter_, device_type_, window, behaviour_, &parameters, device_.Receive());
    if (FAILED(result)) reporter_.Error("CreateDevice failed: %s\n", DXGetErrorString9(result));
    D3DCAPS9 own = {};
    if (SUCCEEDED(device_->GetDeviceCaps(&own))) caps_ = own;
}

void GraphicsDevice::CreateEffectPool() {
    Require(environment_.create_effect_pool(effect_pool_.Receive()), "Can not create default effect pool: ");
}

void GraphicsDevice::Require(HRESULT result, const char* text) const {
    if (FAILED(result)) reporter_.Error("%s%s", text, DXGetErrorString9(result));
}

}   // namespace sparkrig
