#include "tests/support/recording.h"

#include "tests/support/recording_device.h"

namespace sparkrig {

namespace {

Recording* current = nullptr;

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

Recording::Recording() : previous_(current) { current = this; }
Recording::~Recording() { current = previous_; }

IDirect3D9* Recording::Create(UINT sdk_version) {
    if (!current || !current->offers_direct3d || sdk_version != D3D_SDK_VERSION) return nullptr;
    return RecordCalls(*current, current->behind ? current->behind(sdk_version) : MakeMemoryDirect3D(*current));
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
    draws.clear();
}

void Recording::Fail(const std::string& method, HRESULT code, int nth) { failures_[method].push_back({nth, code}); }

void Recording::LoseDevice(int polls) {
    life = DeviceLife::Lost;
    lost_polls = polls;
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

UINT Recording::ObjectMade(void* object, void* recorded) {
    live_objects_[object] = recorded;
    return ++serial_;
}

void* Recording::ObjectAround(void* object) const {
    const auto found = live_objects_.find(object);
    return found == live_objects_.end() ? nullptr : found->second;
}

}   // namespace sparkrig
