// The compiled effects of KRN_Gfx, by key, each with the number of the objects that share it.
#pragma once
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "gfx/shaders/pass_target.h"
#include "gfx/shaders/shader_effect_semantics.h"
#include "platform/com/device_ptr.h"

namespace sparkrig {

class KRN_ShaderEffect;

/// What is known of one compiled effect. Handles are looked up once, when it is loaded.
struct ShaderEffectData {
    static constexpr std::size_t kMostResourceTextures = 16;

    struct ResourceTexture {
        D3DXHANDLE parameter = nullptr;
        D3DXHANDLE resource_name = nullptr;   // its annotation
    };

    DevicePtr<ID3DXEffect> effect;
    SemanticHandles handles = {};
    std::vector<ResourceTexture> resource_textures;       // at most kMostResourceTextures
    float float_parameters[kNumberedParameters] = {};     // of fParam1 to fParam8: the effect's own, or overrides
    D3DXVECTOR4 vector_parameters[kNumberedParameters];   // of vParam1 to vParam8
    UINT parameters = 0, techniques = 0;
    bool light_semantics = false;            // one of the handles is of lights or of ambient light
    std::vector<TechniqueTargets> targets;   // one entry a technique
    int technique = -1;                      // that the first object chose
    bool not_valid = false;                  // no technique validated on this device
    std::int64_t filled_in = -1;             // the frame in which the frame semantics were filled last
    std::int64_t object_filled_in = -1;      // the same of the object semantics

    // What is being drawn
    KRN_ShaderEffect* begun_by = nullptr;   // the object between Begin and End
    int open_pass = -1;                     // between BeginPass and EndPass
    std::size_t passes_around = 0;          // how many passes, of all effects, the open one is inside of
    bool initialised = false;               // the init passes were drawn since the screen buffers are new
    void EndDrawing() {
        begun_by = nullptr;
        open_pass = -1;
    }

    D3DXHANDLE Handle(Semantic semantic) const { return handles[static_cast<std::size_t>(semantic)]; }
};

/// What all effects share besides.
struct ShaderEffectSettings {
    bool sharing = true;
    float (*game_time)() = nullptr;
    // RANDOM has a generator of its own: what effects draw must not change what the simulation draws.
    std::minstd_rand random;
};

class ShaderEffectRegistry {
  public:
    /// A new entry with one user.
    int Add(std::unique_ptr<ShaderEffectData> data, const std::string& key);
    /// The entry under the key with one user more; -1 when there is none.
    int Share(const std::string& key);
    /// One user less. The effect goes with the last one.
    void Release(int index);
    ShaderEffectData& Get(int index) { return *entries_[static_cast<std::size_t>(index)].data; }

    void OnLostDevice();
    void OnResetDevice();

    ShaderEffectSettings settings;

  private:
    struct Entry {
        std::unique_ptr<ShaderEffectData> data;   // null: the slot is free
        std::string key;
        int users = 0;
    };
    std::vector<Entry> entries_;
};

}   // namespace sparkrig
