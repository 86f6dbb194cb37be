// How one group of a mesh's faces looks: colours and maps, each with the tracks that move them. Plain data; what
// a device makes of it hangs on it.
#pragma once
#include <array>
#include <cstdint>
#include <memory>
#include <optional>

#include "base/string.h"
#include "platform/d3d9/d3d9_types.h"
#include "scene/device_resource.h"
#include "scene/key_curve.h"
#include "scene/text_matrix_ani.h"

namespace sparkrig {

/// Of materials that say nothing else.
inline constexpr float kDefaultSpecularPower = 16.0f;
inline constexpr D3DMATERIAL9 kDefaultColours = {
    {0.9f, 0.9f, 0.9f, 1}, {0.9f, 0.9f, 0.9f, 1}, {0, 0, 0, 1}, {0, 0, 0, 1}, kDefaultSpecularPower};

enum class MaterialBlend : std::uint32_t { Normal = 0, Additive = 1, Subtractive = 2 };

/// Which way textures go on outside 0 to 1.
struct TextureAddressing {
    bool mirror_u = false, mirror_v = false, tile_u = true, tile_v = true;
};

/// A shader effect by name, and its parameters where they are given.
struct ShaderSettings {
    struct Parameter {
        std::optional<float> number;
        std::optional<std::array<float, 3>> vector;
    };
    String effect;   // empty for none
    Parameter parameters[8];
    std::shared_ptr<DeviceResource> device;   // the effect, once it was found; copies of the settings share it
};

struct MeshMaterial {
    /// Sets the colours and the transparency that have a track to their values at t seconds.
    void Animate(double t);

    D3DMATERIAL9 colours = {};
    float transparency = 0;        // 0 opaque to 1, which is not drawn
    float reflection_amount = 0;   // of its reflection map
    bool hidden = false;           // not drawn
    MaterialBlend blend = MaterialBlend::Normal;
    TextureAddressing addressing;
    bool two_sided = false;                 // drawn without culling
    bool blending = false;                  // drawn after every group without
    bool reflection_with_diffuse = false;   // it has a reflection map and names a diffuse one
    ColourCurve diffuse_track, ambient_track, specular_track, emissive_track;
    ScalarCurve transparency_track;
    ShaderSettings shader;
};

enum class MapRole : std::uint32_t { None = 0, Diffuse = 1, Bump = 2, Reflection = 3, OldReflection = 6 };

/// One map of a material. Without a file the slot is free.
struct MapSlot {
    bool InUse() const { return file.GetLength() > 0; }
    bool IsReflection() const { return role == MapRole::Reflection || role == MapRole::OldReflection; }

    String file;   // as the scene names it
    String path;   // under which it is opened; empty when it was not found
    MapRole role = MapRole::None;
    float factor = 1;
    KRN_TextMatrixAni animation;
    TextureMatrixValues values;   // of the animation at the time that was set last
};

/// The maps of one group. A reflection map stands first.
struct TextureRecord {
    static constexpr int kSlots = 4;

    void Animate(double t);

    double time = 0;   // that was set last; an image sequence shows its frame
    // Of an image sequence
    std::uint32_t playback = 0;   // 0 in a loop, 1 back and forth, 2 once
    float start = 0, frame_seconds = 0;
    std::uint32_t unknown[3] = {};   // kept as read
    MapSlot slots[kSlots];
    std::shared_ptr<DeviceResource> device;   // the texture with the maps as its layers; copies of the record share it
};

}   // namespace sparkrig
