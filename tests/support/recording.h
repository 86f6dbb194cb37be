// What a test sees of the recording device: the calls that were made, what fails next, what the adapter offers. It
// stands by itself, or before a real device, which then does what does not fail. So any device can be made to fail, and
// the objects that are held can be counted.
//
//     Recording recording;                                  // from now on it serves Recording::Create
//     recording.Fail("CreateTexture", E_OUTOFMEMORY, 2);    // the second call from now
//     ... code under test, given Recording::Create ...
//     EXPECT_THAT(recording.Sent(D3DRS_CULLMODE), ElementsAre(D3DCULL_CW));
//     EXPECT_EQ(recording.LiveObjects(), 0);
#pragma once
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/support/memory_device.h"

namespace sparkrig {

/// One call of the contract. Floats stand as their bits, objects as their serial numbers (0 for null).
struct RecordedCall {
    std::string method;
    std::vector<DWORD> arguments;
    bool operator==(const RecordedCall&) const = default;
};

class Recording : public MemoryAdapter {
  public:
    Recording();
    ~Recording();
    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;

    /// In place of Direct3DCreate9: a Direct3D object of the newest recording. Null when `offers_direct3d` is off.
    static IDirect3D9* Create(UINT sdk_version);

    /// A windowed device of the newest recording, its calls forgotten.
    DevicePtr<IDirect3DDevice9> MakeDevice(DWORD behaviour = D3DCREATE_MIXED_VERTEXPROCESSING);

    /// What makes the Direct3D object that calls go on to. None: the adapter is the one in memory that this is.
    IDirect3D9* (*behind)(UINT sdk_version) = nullptr;
    bool offers_direct3d = true;

    // ---- Calls
    const std::vector<RecordedCall>& Calls() const { return calls_; }
    const std::vector<RecordedDraw>& Draws() const { return draws; }
    int Count(const std::string& method) const { return static_cast<int>(ArgumentsOf(method).size()); }
    /// The methods in order; an empty list means every method.
    std::vector<std::string> Methods(const std::set<std::string>& of = {}) const;
    /// The arguments of every call of a method.
    std::vector<std::vector<DWORD>> ArgumentsOf(const std::string& method) const;
    /// The values sent, in order.
    std::vector<DWORD> Sent(D3DRENDERSTATETYPE state) const { return LastArguments("SetRenderState", {state}); }
    std::vector<DWORD> Sent(DWORD stage, D3DTEXTURESTAGESTATETYPE type) const {
        return LastArguments("SetTextureStageState", {stage, type});
    }
    std::vector<DWORD> Sent(DWORD sampler, D3DSAMPLERSTATETYPE type) const {
        return LastArguments("SetSamplerState", {sampler, type});
    }
    /// The state changes among them that gave the device what it held already. Only without a device behind.
    const std::vector<RecordedCall>& Redundant() const { return redundant_; }
    void ForgetCalls() { calls_.clear(), redundant_.clear(), draws.clear(); }

    // ---- Failing. A failing call has no effect but its record.
    /// The n-th call of `method` from now on gives `code`.
    void Fail(const std::string& method, HRESULT code, int nth = 1) { failures_[method].push_back({nth, code}); }
    /// From now on TestCooperativeLevel says lost for `polls` calls, then not-reset until Reset.
    void LoseDevice(int polls) { life = DeviceLife::Lost, lost_polls = polls; }
    /// Does something right before the n-th call from now on, whatever its method.
    void Interrupt(int nth, std::function<void()> action) { until_interrupt_ = nth, interrupt_ = std::move(action); }

    // ---- Objects
    /// Objects that the program still holds, the Direct3D object and the device included.
    int LiveObjects() const { return static_cast<int>(live_objects_.size()); }
    int LiveDefaultPoolObjects() const { return default_pool_objects; }

    // ---- For the recording device alone
    HRESULT Record(const char* method, std::vector<DWORD> arguments);
    void LastWasRedundant() { redundant_.push_back(calls_.back()); }
    /// An object and the recorded one that stands before it; the serial number.
    UINT ObjectMade(void* object, void* recorded) { return live_objects_[object] = recorded, ++serial_; }
    void ObjectGone(void* object) { live_objects_.erase(object); }
    /// Null when nobody holds it.
    void* ObjectAround(void* object) const;

  private:
    /// Of the calls of a method whose first arguments are these.
    std::vector<DWORD> LastArguments(const char* method, const std::vector<DWORD>& first) const;

    Recording* previous_;
    std::vector<RecordedCall> calls_, redundant_;
    struct Failure {
        int left;
        HRESULT code;
    };
    std::map<std::string, std::vector<Failure>> failures_;
    int until_interrupt_ = 0;
    std::function<void()> interrupt_;
    UINT serial_ = 0;
    std::map<void*, void*> live_objects_;   // the recorded one of each that it stands before
};

/// Takes over the reference to the Direct3D object behind; null stays null. The recording outlives what is returned.
IDirect3D9* RecordCalls(Recording& recording, IDirect3D9* behind);

/// The object behind one that came from it.
IDirect3DDevice9& Behind(IDirect3DDevice9& recorded);
IDirect3DTexture9& Behind(IDirect3DTexture9& recorded);

}   // namespace sparkrig
