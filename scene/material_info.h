// A material of a text scene as it is read, and what becomes of it: the records that groups of faces are drawn with.
#pragma once
#include <memory>
#include <string>
#include <vector>

#include "scene/exported_keys.h"
#include "scene/map_files.h"
#include "scene/mesh_material.h"
#include "scene/scene_load_flags.h"

namespace sparkrig {

/// One map of a material. Its tracks are in ticks, their tangents in changes a tick.
struct MapInfo {
    String file;   // empty for none
    float amount = 1;
    KRN_TextMatrixAni animation;
    float start_frame = 0, playback_rate = 1;
    std::uint32_t end_condition = 0;   // 0 loop, 1 pingpong, 2 hold
};

struct KRN_MaterialInfo {
    String name;
    D3DCOLORVALUE diffuse = {0, 0, 0, 1}, ambient = {0, 0, 0, 1}, specular = {0, 0, 0, 1}, emissive = {0, 0, 0, 1};
    float shine = 0, shine_strength = 0;
    MapInfo diffuse_map, reflection_map, bump_map;
    bool has_diffuse_map = false, has_reflection_map = false, has_bump_map = false;   // it or one of its submaterials
    bool finalised = false, maps_loaded = false;
    std::vector<std::unique_ptr<KRN_MaterialInfo>> submaterials;
    // What its faces are drawn with. Transparency, blend mode, addressing and the rest are read right into it.
    MeshMaterial drawn;
    TextureRecord textures;

    /// The one that faces of an id have; itself without submaterials.
    KRN_MaterialInfo& Submaterial(std::size_t index) { return submaterials.empty() ? *this : *submaterials[index]; }
};

/// Once, when all is read: the drawn colours, tracks in seconds, which maps there are. With its submaterials.
void FinaliseMaterial(KRN_MaterialInfo& material, const TickTimes& times, const SceneLoadFlags& flags);

/// Once, when the first mesh uses the material: finds its maps and gives those that are there a slot. With its
/// submaterials. What is missing is a warning of `reporter`.
void LoadMaps(KRN_MaterialInfo& material, const TickTimes& times, const SceneLoadFlags& flags, const MapFiles& files,
              const ErrorClass& reporter);

}   // namespace sparkrig
