// A KRN_Gfx on the recording device, in a window that tests resize at will.
//
//     RecordedGfx gfx;                       // initialised: windowed, 640 x 480, 16 bits of depth
//     gfx->SetCullingMode(1);
//     EXPECT_THAT(gfx.recording.Sent(D3DRS_CULLMODE), ElementsAre(D3DCULL_CW));
#pragma once
#include <functional>
#include <memory>

#include "gfx/gfx.h"
#include "tests/support/recording.h"
#include "tests/support/test.h"

namespace sparkrig {

/// The system around a KRN_Gfx under test. The members are the process's: one test uses them at a time.
struct FakeEnvironment {
    static inline RECT client = {};
    static inline double now = 0;                  // seconds
    static inline const char* missing = nullptr;   // the library that cannot be loaded, or null
    static inline HRESULT pool_result = D3D_OK;    // of making the effect pool
    static inline const GfxEnvironment kTable = {
        [](const char* name) { return !missing || std::string(missing) != name; },
        [](const char*) {},
        [](HWND, RECT& rectangle) { rectangle = client; },
        [] {},
        [] { return now; },
        [](ID3DXEffectPool** pool) { return FAILED(pool_result) ? pool_result : D3DXCreateEffectPool(pool); },
    };

    /// As at the start of a test.
    static void Reset() {
        client = {20, 30, 660, 510};
        now = 100;
        missing = nullptr;
        pool_result = D3D_OK;
    }
};

/// Any non-null handle: no window stands behind it.
inline HWND FakeWindow() {
    static char window;
    return reinterpret_cast<HWND>(&window);
}

class RecordedGfx {
  public:
    enum class State { Constructed, Ready };
    explicit RecordedGfx(State state = State::Ready) {
        FakeEnvironment::Reset();
        gfx_ = std::make_unique<KRN_Gfx>(Recording::Create, FakeEnvironment::kTable);
        if (state == State::Ready) Init();
    }
    /// Initialised on an adapter that `change` has changed.
    explicit RecordedGfx(const std::function<void(Recording&)>& change) : RecordedGfx(State::Constructed) {
        change(recording);
        Init();
    }

    /// Windowed, 16 bits of depth, mixed vertex processing. What was recorded before is forgotten afterwards.
    void Init() {
        gfx_->InitDevice(FakeWindow(), 1, nullptr, 16, 0, 1, 0, 0);
        recording.ForgetCalls();
    }

    KRN_Gfx* operator->() { return gfx_.get(); }
    KRN_Gfx& operator*() { return *gfx_; }
    /// The client area's new size; the recording's back buffer follows.
    void ResizeWindow(int width, int height) {
        RECT& client = FakeEnvironment::client;
        client.right = client.left + width;
        client.bottom = client.top + height;
        recording.client_width = static_cast<UINT>(width);
        recording.client_height = static_cast<UINT>(height);
    }
    /// Destroys the KRN_Gfx.
    void Destroy() { gfx_.reset(); }

    /// What the device holds.
    IDirect3DTexture9* Bound(DWORD stage) {
        DevicePtr<IDirect3DTexture9> texture;
        gfx_->Device()->GetTexture(stage, texture.Receive());
        return texture.Get();
    }
    D3DXMATRIX Matrix(D3DTRANSFORMSTATETYPE kind) {
        D3DXMATRIX matrix;
        gfx_->Device()->GetTransform(kind, &matrix);
        return matrix;
    }

    Recording recording;

  private:
    std::unique_ptr<KRN_Gfx> gfx_;
};

}   // namespace sparkrig
