// What the effects file defines: effects, their sub-effects, and the animation stages of these.
#pragma once
#include <cstdint>
#include <memory>

#include "base/dyna_mem.h"
#include "base/report_listener.h"
#include "base/string.h"
#include "platform/d3dx/d3dx_math.h"
#include "scene/key_curve.h"

namespace sparkrig {

class KRN_Texture;
struct VisualEffect;

enum class SubEffectKind : std::int32_t { Mesh = 1, Particle = 2, Special = 3 };

enum class AnimationType : std::int32_t {
    None = 0,
    Linear = 1,
    Swing = 2,
    Sin = 3,
    Cos = 4,
    Circle = 5,
    Quadratic = 6,
    Bezier = 7,
    Rand1 = 8,
    Rand2 = 9,
    Rand3 = 10,
    Rand4 = 11,
    RandSphere = 12,
};

enum class ConcatType : std::int32_t { Add = 0, Multiply = 1, Rotate = 2 };

enum class SpecialType : std::int32_t {
    None = 0,
    Flame = 1,
    Helix = 2,
    Snake = 3,
    Wave = 4,
    Jelly = 5,
    Firework = 6,
    Splash = 7,
    Smoke = 8,
};

enum class CountType : std::int32_t { Uniform = 0, Random = 1 };

/// Angles of the effects file, in degrees, times this are radians.
inline constexpr float kRadiansPerDegree = 0.01745329238474369f;

/// Factors of a stage's value over time w: cubed / w + constant + linear * w.
struct TimeScale {
    float inverse = 0, constant = 1, linear = 0;
};

/// One animation stage of one channel.
struct VisualEffectMotion {
    AnimationType type = AnimationType::None;
    ConcatType concat = ConcatType::Multiply;
    VectorCurve curve;
    float time_offset = 0;
    TimeScale time_scale;
    bool time_scale_uses_stage_time = true;
    float time_minimum = -9e10f, time_maximum = 9e10f;
    float speed = 1, local_speed = 1;
    D3DXVECTOR3 scale = {1, 1, 1};
    D3DXVECTOR3 rotation_axis;
    float rotation_angle = 0;   // radians
    D3DXVECTOR3 offset;
    D3DXMATRIX transform = kIdentityMatrix;   // made by PrepareStage
    float time_count_offset = 0, speed_count_offset = 0, local_speed_count_offset = 0;
    bool uses_transform = false;   // made by PrepareStage
};

/// Makes the stage transform, once the stage is read.
void PrepareStage(VisualEffectMotion& stage);

/// The stages of one channel, in the order of the file.
using MotionChannel = DynaMem<VisualEffectMotion, 4, 1>;

/// An emit name that begins so lays the points of a trace, whose texture is named by the rest.
inline constexpr char kTracePrefix[] = "trace:";

/// What a sub-effect releases while it lives: another effect, or the points of a trace.
struct EmitSettings {
    String name;                            // empty: nothing
    const VisualEffect* effect = nullptr;   // borrowed; none for a trace
    std::int32_t trace_number = 0;          // 1 to 4, the edge of the ribbon; 0 when the name is not a trace
    float per_time = 0;                     // emissions per second
    bool random = true, local = false;
    D3DXVECTOR3 volume;   // of the box around the emitter in which children start
    TextPlace place;      // of the name in the effects file
};

struct TraceSettings {
    std::int32_t id = 0;
    float life_time = 1;   // seconds
    bool flag = false;
    float texture_scale = 1;
};

/// What particle, mesh and special sub-effects have in common. Times are seconds.
struct SubEffect {
    explicit SubEffect(SubEffectKind kind_of_sub) : kind(kind_of_sub) {}

    SubEffectKind kind;
    const VisualEffect* owner = nullptr;   // borrowed
    std::int32_t index = 0;                // in the owner's list of its kind
    double birth_time = 0, life = 0, fade_in = 0, fade_out = 0, start_time = 0;
    MotionChannel position_stages, rotation_stages, scale_stages, colour_stages, alpha_stages;
    ScalarCurve life_count;
    D3DXVECTOR3 scale = {1, 1, 1};   // times the entry's scale
    D3DXVECTOR3 position_offset;
    D3DXVECTOR3 colour = {1, 1, 1};
    D3DXQUATERNION start_rotation;
    std::int32_t blend_mode = 9;   // a blending mode of KRN_Gfx
    bool use_z_buffer = true, write_z_buffer = true;
    float sort_distance_offset = 0;
    std::uint16_t sort_class = 0;
    bool z_sort = true;
    bool rotate_with_parent = true, rotate_with_view = false;
    std::uint16_t billboard = 0;
    bool random_mirror[3] = {};   // x, y, z
    bool random_reverse_rotation = false;
    std::int32_t detail_level = 0;
    std::int32_t count = 1;
    double speed = 1;
    float vertical_size = 32;
    float birth_count_offset = 0;
    CountType count_type = CountType::Uniform;
    EmitSettings emit;
    TraceSettings trace;
};

struct ParticleEffect : SubEffect {
    ParticleEffect() : SubEffect(SubEffectKind::Particle) { billboard = 2; }

    std::shared_ptr<KRN_Texture> texture;   // none before the first use; of the catalogue or its own
    String texture_name;
};

struct MeshEffect : SubEffect {
    MeshEffect() : SubEffect(SubEffectKind::Mesh) {}

    String scene_file;
    bool loop = false;
};

struct SpecialEffect : SubEffect {
    SpecialEffect() : SubEffect(SubEffectKind::Special) {}

    std::uint32_t second_colour = 0xFF000000;   // packed ARGB
    std::shared_ptr<KRN_Texture> texture;       // as a particle's; none where no name is given
    std::int32_t point_count = 32;
    float point_size = 1;
    String texture_name;
    SpecialType type = SpecialType::None;
};

/// One entry of the effects file.
struct VisualEffect {
    String name;
    std::int32_t file_entry = 0;
    DynaMem<String, 8, 1> children;
    DynaMem<ParticleEffect, 4, 1> particles;
    DynaMem<MeshEffect, 4, 1> meshes;
    DynaMem<SpecialEffect, 4, 1> specials;
    String ambient_sound, sound;
    D3DXVECTOR3 scale = {1, 1, 1};
};

}   // namespace sparkrig
