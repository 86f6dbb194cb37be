#include "tests/support/recording.h"

#include "tests/support/forwarding_device.h"
#include "tests/support/recording_device.h"

namespace sparkrig {

namespace {

Recording* current = nullptr;

D3DCAPS9 DefaultCaps() {
    D3DCAPS9 caps = {};
    caps.DeviceType = D3DDEVTYPE_HAL;
    caps.Caps2 = D3DCAPS2_FULLSCREENGAMMA | D3DCAPS2_DYNAMICTEXTURES;
    caps.DevCaps = D3DDEVCAPS_HWTRANSFORMANDLIGHT;
    caps.DevCaps2 = D3DDEVCAPS2_CAN_STRETCHRECT_FROM_TEXTURES;
    caps.RasterCaps = D3DPRASTERCAPS_FOGVERTEX | D3DPRASTERCAPS_FOGTABLE | D3DPRASTERCAPS_MIPMAPLODBIAS |
                      D3DPRASTERCAPS_FOGRANGE | D3DPRASTERCAPS_WFOG | D3DPRASTERCAPS_ZFOG;
    caps.TextureCaps = D3DPTEXTURECAPS_MIPMAP;
    caps.PresentationIntervals = 0x8000000F;
    caps.MaxTextureWidth = caps.MaxTextureHeight = 4096;
    caps.MaxTextureBlendStages = caps.MaxSimultaneousTextures = caps.MaxActiveLights = 8;
    caps.MaxVertexBlendMatrices = 4;
    caps.MaxVertexBlendMatrixIndex = 255;
    caps.VertexShaderVersion = 0xFFFE0300;
    caps.PixelShaderVersion = 0xFFFF0300;
    caps.NumSimultaneousRTs = 1;
    caps.MaxPointSize = 256.0f;
    return caps;
}

std::vector<DWORD> SentValues(const std::vector<RecordedCall>& calls, const char* method,
                              const std::vector<DWORD>& address) {
    std::vector<DWORD> values;
    for (const RecordedCall& call : calls) {
        if (call.method != method) continue;
        if (std::equal(address.begin(), address.end(), call.arguments.begin())) values.push_back(call.arguments.back());
    }
    return values;
}

}   // namespace

Recording::Recording() : caps(DefaultCaps()), previous_(current) {
    for (const D3DFORMAT format : {D3DFMT_X8R8G8B8, D3DFMT_R5G6B5}) {
        for (const UINT rate : {60u, 75u, 72u}) modes.push_back({1024, 768, rate, format});
        modes.push_back({800, 600, 85, format});
    }
    current = this;
}

Recording::~Recording() { current = previous_; }

IDirect3D9* Recording::Create(UINT sdk_version) {
    if (!current || !current->offers_direct3d || sdk_version != D3D_SDK_VERSION) return nullptr;
    if (current->behind) return Forward(*current, current->behind(sdk_version));
    return MakeRecordingDirect3D(*current);
}

DevicePtr<IDirect3DDevice9> Recording::MakeDevice(DWORD behaviour) {
    const DevicePtr<IDirect3D9> direct3d(Create(D3D_SDK_VERSION));
    D3DPRESENT_PARAMETERS parameters = {};
    parameters.Windowed = TRUE;
    parameters.SwapEffect = D3DSWAPEFFECT_FLIP;
    DevicePtr<IDirect3DDevice9> device;
    direct3d->CreateDevice(D3DADAPTER_DEFAULT, D3DDEVTYPE_HAL, nullptr, behaviour, &parameters, device.Receive());
    ForgetCalls();
    return device;
}

int Recording::Count(const std::string& method) const { return static_cast<int>(ArgumentsOf(method).size()); }

std::vector<std::vector<DWORD>> Recording::ArgumentsOf(const std::string& method) const {
    std::vector<std::vector<DWORD>> all;
    for (const RecordedCall& call : calls_)
        if (call.method == method) all.push_back(call.arguments);
    return all;
}

std::vector<std::string> Recording::Methods(const std::set<std::string>& of) const {
    std::vector<std::string> methods;
    for (const RecordedCall& call : calls_)
        if (of.empty() || of.count(call.method) > 0) methods.push_back(call.method);
    return methods;
}

std::vector<DWORD> Recording::Sent(D3DRENDERSTATETYPE state) const {
    return SentValues(calls_, "SetRenderState", {state});
}

std::vector<DWORD> Recording::Sent(DWORD stage, D3DTEXTURESTAGESTATETYPE type) const {
    return SentValues(calls_, "SetTextureStageState", {stage, type});
}

std::vector<DWORD> Recording::Sent(DWORD sampler, D3DSAMPLERSTATETYPE type) const {
    return SentValues(calls_, "SetSamplerState", {sampler, type});
}

void Recording::ForgetCalls() {
    calls_.clear();
    redundant_.clear();
    draws_.clear();
}

void Recording::Fail(const std::string& method, HRESULT code, int nth) { failures_[method].push_back({nth, code}); }

void Recording::LoseDevice(int polls) {
    life_ = DeviceLife::Lost;
    lost_polls_ = polls;
}

void Recording::Interrupt(int nth, std::function<void()> action) {
    until_interrupt_ = nth;
    interrupt_ = std::move(action);
}

HRESULT Recording::Record(const char* method, std::vector<DWORD> arguments) {
    if (until_interrupt_ > 0 && --until_interrupt_ == 0) interrupt_();
    calls_.push_back({method, std::move(arguments)});
    const auto found = failures_.find(method);
    if (found == failures_.end()) return D3D_OK;
    HRESULT result = D3D_OK;
    std::vector<Failure>& waiting = found->second;
    for (Failure& failure : waiting)
        if (--failure.left == 0) result = failure.code;
    std::erase_if(waiting, [](const Failure& failure) { return failure.left <= 0; });
    return result;
}

UINT Recording::ObjectMade(bool default_pool) {
    ++live_objects_;
    default_pool_objects_ += default_pool;
    return ++serial_;
}

void Recording::ObjectGone(bool default_pool) {
    --live_objects_;
    default_pool_objects_ -= default_pool;
}

DeviceLife Recording::Poll() {
    if (life_ == DeviceLife::Lost && lost_polls_-- <= 0) life_ = DeviceLife::NotReset;
    return life_;
}

}   // namespace sparkrig
