#include "tests/support/recorded_gfx.h"

namespace sparkrig {

const GfxEnvironment FakeEnvironment::kTable = {
    [](const char* name) { return !missing || std::string(missing) != name; },
    [](const char*) {},
    [](HWND, RECT& rectangle) { rectangle = client; },
    [] {},
    [] { return now; },
    [](ID3DXEffectPool** pool) { return FAILED(pool_result) ? pool_result : D3DXCreateEffectPool(pool); },
};

void FakeEnvironment::Reset() {
    client = {20, 30, 660, 510};
    now = 100;
    missing = nullptr;
    pool_result = D3D_OK;
}

HWND FakeWindow() {
    static char window;
    return reinterpret_cast<HWND>(&window);
}

RecordedGfx::RecordedGfx(State state) {
    FakeEnvironment::Reset();
    gfx_ = std::make_unique<KRN_Gfx>(Recording::Create, FakeEnvironment::kTable);
    if (state == State::Ready) Init();
}

RecordedGfx::RecordedGfx(const std::function<void(Recording&)>& change) : RecordedGfx(State::Constructed) {
    change(recording);
    Init();
}

void RecordedGfx::Init() {
    gfx_->InitDevice(FakeWindow(), 1, nullptr, 16, 0, 1, 0, 0);
    recording.ForgetCalls();
}

void RecordedGfx::ResizeWindow(int width, int height) {
    RECT& client = FakeEnvironment::client;
    client.right = client.left + width;
    client.bottom = client.top + height;
    recording.client_width = static_cast<UINT>(width);
    recording.client_height = static_cast<UINT>(height);
}

}   // namespace sparkrig
