// What a test sees of the recording device: the calls that were made, what fails next, what the adapter offers. It
// stands by itself, or before a real device, which then does what does not fail.
//
//     Recording recording;                                  // from now on it serves Recording::Create
//     recording.Fail("CreateTexture", E_OUTOFMEMORY, 2);    // the second call from now
//     ... code under test, given Recording::Create ...
//     EXPECT_THAT(recording.Sent(D3DRS_CULLMODE), ElementsAre(D3DCULL_CW));
//     EXPECT_EQ(recording.LiveObjects(), 0);
#pragma once
#include <array>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/d3d9/d3d9.h"
#include "platform/d3d9/device_rules.h"

namespace sparkrig {

/// One call of the contract. Floats stand as their bits, objects as their serial numbers (0 for null).
struct RecordedCall {
    std::string method;
    std::vector<DWORD> arguments;
    bool operator==(const RecordedCall&) const = default;
};

/// One draw call, with a copy of the vertices that it reads and what was bound to stage 0.
struct RecordedDraw {
    D3DPRIMITIVETYPE type;
    UINT first, count;
    DWORD fvf;
    UINT stride;
    std::vector<BYTE> vertices;   // of a draw without indices: the count that it needs, from `first` on
    UINT texture;                 // serial number, 0 for none
    std::array<DWORD, kRenderStateCount> render_states;
    D3DMATRIX world;
};

class Recording {
  public:
    Recording();
    ~Recording();
    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;

    /// In place of Direct3DCreate9: a Direct3D object of the newest recording. Null when `offers_direct3d` is off.
    static IDirect3D9* Create(UINT sdk_version);

    /// A windowed device of the newest recording, its calls forgotten.
    DevicePtr<IDirect3DDevice9> MakeDevice(DWORD behaviour = D3DCREATE_MIXED_VERTEXPROCESSING);

    /// What makes the Direct3D object that calls go on to. None: calls are only recorded, and the adapter is as below.
    IDirect3D9* (*behind)(UINT sdk_version) = nullptr;

    // ---- What the adapter offers; set before the device is made.
    bool offers_direct3d = true;
    D3DCAPS9 caps;
    D3DDISPLAYMODE desktop = {1920, 1080, 60, D3DFMT_X8R8G8B8};
    std::vector<D3DDISPLAYMODE> modes;
    std::vector<std::string> adapters = {"Recording adapter"};
    std::set<D3DFORMAT> refused_texture_formats = {D3DFMT_R8G8B8};
    UINT client_width = 640, client_height = 480;   // the back buffer of a window

    // ---- Calls
    const std::vector<RecordedCall>& Calls() const { return calls_; }
    const std::vector<RecordedDraw>& Draws() const { return draws_; }
    int Count(const std::string& method) const;
    /// The methods in order; an empty list means every method.
    std::vector<std::string> Methods(const std::set<std::string>& of = {}) const;
    /// The arguments of every call of a method.
    std::vector<std::vector<DWORD>> ArgumentsOf(const std::string& method) const;
    /// The values sent, in order.
    std::vector<DWORD> Sent(D3DRENDERSTATETYPE state) const;
    std::vector<DWORD> Sent(DWORD stage, D3DTEXTURESTAGESTATETYPE type) const;
    std::vector<DWORD> Sent(DWORD sampler, D3DSAMPLERSTATETYPE type) const;
    /// The state changes among them that gave the device what it held already. Only without a device behind.
    const std::vector<RecordedCall>& Redundant() const { return redundant_; }
    void ForgetCalls();

    // ---- Failing. A failing call has no effect but its record.
    /// The n-th call of `method` from now on gives `code`.
    void Fail(const std::string& method, HRESULT code, int nth = 1);
    /// From now on TestCooperativeLevel says lost for `polls` calls, then not-reset until Reset.
    void LoseDevice(int polls);
    /// Does something right before the n-th call from now on, whatever its method.
    void Interrupt(int nth, std::function<void()> action);

    // ---- Objects
    /// Device objects that somebody still holds, the Direct3D object and the device included.
    int LiveObjects() const { return live_objects_; }
    int LiveDefaultPoolObjects() const { return default_pool_objects_; }

    // ---- For the recording device alone
    HRESULT Record(const char* method, std::vector<DWORD> arguments);
    void LastWasRedundant() { redundant_.push_back(calls_.back()); }
    void RecordDraw(RecordedDraw draw) { draws_.push_back(std::move(draw)); }
    UINT ObjectMade(bool default_pool);
    void ObjectGone(bool default_pool);
    DeviceLife Life() const { return life_; }
    void SetLife(DeviceLife life) { life_ = life; }
    /// Asked by TestCooperativeLevel.
    DeviceLife Poll();

  private:
    Recording* previous_;
    std::vector<RecordedCall> calls_, redundant_;
    std::vector<RecordedDraw> draws_;
    struct Failure {
        int left;
        HRESULT code;
    };
    std::map<std::string, std::vector<Failure>> failures_;
    int until_interrupt_ = 0;
    std::function<void()> interrupt_;
    UINT serial_ = 0;
    int live_objects_ = 0, default_pool_objects_ = 0;
    DeviceLife life_ = DeviceLife::Operational;
    int lost_polls_ = 0;
};

}   // namespace sparkrig
