// What the programs of a draw are generated from: compact keys, one byte a decision, without anything that is only a
// value (those are uniforms). Equal keys, equal programs.
#pragma once
#include <array>
#include <cstddef>

#include "platform/d3d9/device_state.h"

namespace sparkrig {

enum class FogSource : BYTE {
    None,
    Specular,   // vertex: the alpha of the vertex's specular colour
    Exp,        // vertex: by distance; pixel: by w
    Exp2,
    Linear,
    Varying,   // pixel: what the vertex stage gives
};

/// Where a stage's coordinates come from, before its texture matrix.
enum CoordinateSource : BYTE {
    kCoordinateSet = 0,   // .. 7
    kCoordinateNormal = 8,
    kCoordinatePosition = 9,
    kCoordinateReflection = 10,
    kCoordinateSphere = 11,
};

struct StageCoordinate {
    BYTE source;         // CoordinateSource
    BYTE set_size;       // floats in the set, 0 when the vertex lacks it
    BYTE matrix_count;   // components that come out of the texture matrix, 0: no matrix
    bool operator==(const StageCoordinate&) const = default;
};

struct VertexKey {
    DWORD shader;    // number of the vertex function, 0: the fixed pipeline. The rows after it are then 0,
    DWORD outputs;   // except outputs (varyings that the pixel stage reads) and the point ones.
    BYTE point, point_sprite, point_scale, point_size;   // point_size: the vertex has its own
    BYTE transformed, normal, diffuse, specular;         // what the vertex has
    BYTE lighting, specular_light, local_viewer, normalize;
    std::array<BYTE, 4> sources;   // D3DMCS of diffuse, specular, ambient, emissive
    BYTE matrices, indexed;        // blended world matrices, 0: no blending
    FogSource fog;
    BYTE range_fog;
    std::array<StageCoordinate, kTextureStages> coordinates;
    bool operator==(const VertexKey&) const = default;
};

struct StageKey {
    BYTE colour_op, alpha_op;
    std::array<BYTE, 3> colour_args, alpha_args;   // arguments 0, 1, 2
    BYTE to_temp;                                  // the result goes to TEMP
    BYTE texture;                                  // one is bound
    BYTE signed_texture;
    BYTE divisor;   // component that divides the coordinates: 0 none, 1..3
    bool operator==(const StageKey&) const = default;
};

struct PixelKey {
    DWORD shader;   // number of the pixel function, 0: the texture stages. The stages are then empty.
    BYTE stage_count;
    BYTE specular_add;
    BYTE alpha_func;   // D3DCMP, ALWAYS without the test
    FogSource fog;
    BYTE flat;   // colours of the first vertex
    std::array<StageKey, kTextureStages> stages;
    std::array<BYTE, 3> unused;
    bool operator==(const PixelKey&) const = default;
};

struct ProgramKey {
    VertexKey vertex;
    PixelKey pixel;
    bool operator==(const ProgramKey&) const = default;
};
// Keys are hashed by their bytes.
static_assert(std::has_unique_object_representations_v<ProgramKey>);

struct KeyHash {
    template <class Key>
    std::size_t operator()(const Key& key) const {
        return HashBytes(&key, sizeof key);
    }
    static std::size_t HashBytes(const void* bytes, std::size_t count);
};

/// A bound vertex or pixel function as the keys see it.
struct BoundShader {
    DWORD number = 0;   // 0: none
    DWORD varyings = 0;
    bool writes_point_size = false;
};

struct KeyInputs {
    const DeviceState& state;
    DWORD textures;          // bit n: a texture is bound to sampler n
    DWORD signed_textures;   // bit n: its format is a signed one
    BoundShader vertex_shader, pixel_shader;
    bool points;   // the primitives are drawn as points
};
ProgramKey CollectKey(const KeyInputs& inputs);

/// Bit n: the pixel stage reads varying n.
DWORD VaryingsRead(const PixelKey& key, DWORD shader_varyings);
/// Bit n: the texture stages sample from sampler n.
DWORD SamplersRead(const PixelKey& key);

}   // namespace sparkrig
