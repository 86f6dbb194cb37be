// Effects from source on the recording device.
#pragma once
#include <bit>
#include <stdexcept>
#include <string>

#include "platform/d3dx/d3dx_effect.h"
#include "tests/support/recording.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/test.h"

namespace sparkrig {

class EffectTest : public ::testing::Test {
  protected:
    std::string Write(const std::string& name, const std::string& text) const { return folder_.Write(name, text); }

    DevicePtr<ID3DXEffect> Load(const std::string& source, ID3DXEffectPool* pool = nullptr) {
        DevicePtr<ID3DXEffect> effect;
        DevicePtr<ID3DXBuffer> errors;
        const std::string path = Write("t.fx", source);
        const HRESULT result =
            D3DXCreateEffectFromFileA(device_.Get(), path.c_str(), 0, pool, effect.Receive(), errors.Receive());
        // Nothing can be asked of an effect that is not there.
        if (FAILED(result))
            throw std::runtime_error(errors ? static_cast<const char*>(errors->GetBufferPointer()) : "no effect");
        return effect;
    }

    /// What the vertex function was given last.
    std::vector<float> Globals() const {
        std::vector<float> values;
        const std::vector<DWORD> words = recording_.ArgumentsOf("SetVertexShaderGlobals").back();
        for (const DWORD word : words) values.push_back(std::bit_cast<float>(word));
        return values;
    }

    Recording recording_;   // before the device, which records to it
    DevicePtr<IDirect3DDevice9> device_ = recording_.MakeDevice();
    ScratchFolder folder_;
};

inline DWORD Bits(float value) { return std::bit_cast<DWORD>(value); }

}   // namespace sparkrig
