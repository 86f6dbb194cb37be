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

class KRN_3dObject;
class KRN_3dScene;
class KRN_Texture;
struct VisualEffect;

enum class SubEffectKind : std::int32_t { Mesh = 1, Particle = 2, Special = 3 };

enum class BillboardMode : std::int32_t { Flat = 0, Upright = 1, FacingCamera = 2, BeforeCamera = 3 };

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

/// What a stage's value is multiplied by at a time w in seconds: inverse / w (nothing for w <= 0) + constant + linear *
/// w.
struct TimeScale {
    float inverse = 0, constant = 1, linear = 0;
};

/// One animation stage of one channel: a vector over the stage time, in the unit of its channel. With t the seconds
/// since the birth and c the count value of an instance, the stage time is, in seconds that the bounds clamp,
///   (speed + c * speed_count_offset) * ((local_speed + c * local_speed_count_offset) * t
///                                       + time_offset + c * time_count_offset)
struct VisualEffectMotion {
    AnimationType type = AnimationType::None;
    ConcatType concat = ConcatType::Multiply;   // how the value joins that of the stages before
    VectorCurve curve;                          // of a Bezier stage, over the stage time
    float time_offset = 0;                      // seconds
    TimeScale time_scale;
    bool time_scale_uses_stage_time = true;   // else t
    float time_minimum = -9e10f, time_maximum = 9e10f;
    float speed = 1, local_speed = 1;         // stage seconds per second
    D3DXVECTOR3 scale = {1, 1, 1};            // of the value; in a position stage times the sub-effect's scale
    D3DXVECTOR3 rotation_axis;                // any length
    float rotation_angle = 0;                 // radians
    D3DXVECTOR3 offset;                       // added to the rotated value
    D3DXMATRIX transform = kIdentityMatrix;   // of rotation and offset, made by PrepareStage
    float time_count_offset = 0, speed_count_offset = 0, local_speed_count_offset = 0;   // per unit of count value
    bool uses_transform = false;   // made by PrepareStage: rotation or offset is there
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
    float per_time = 0;                     // emissions per second of the instance's clock
    bool random = true;                     // at jittered times
    bool local = false;                     // read, and of no effect
    D3DXVECTOR3 volume;   // edges of the box around the emitter in which children start, times its scale
    TextPlace place;      // of the name in the effects file
};

/// The trail that a sub-effect lays whose emit name is a trace.
struct TraceSettings {
    std::int32_t id = 0;       // offset of the trail's block, and which counter numbers it
    float life_time = 1;       // of each point, seconds
    bool flag = false;         // goes with each point
    float texture_scale = 1;   // of the ribbon
};

/// What particle, mesh and special sub-effects have in common.
struct SubEffect {
    explicit SubEffect(SubEffectKind kind_of_sub) : kind(kind_of_sub) {}

    SubEffectKind kind;
    const VisualEffect* owner = nullptr;   // borrowed
    std::int32_t index = 0;                // in the owner's list of its kind

    // Seconds of an instance's clock.
    double birth_time = 0;              // from its start to its birth, when it begins to move and to be seen
    double life = 0;                    // from its birth to its end; 0: for ever
    double fade_in = 0, fade_out = 0;   // at the beginning and before the end of its life
    double start_time = 0;              // that its clock shows at its start

    MotionChannel position_stages;   // world units
    MotionChannel rotation_stages;   // radians; a flat particle turns by x
    MotionChannel scale_stages;      // factors of `scale`
    MotionChannel colour_stages;     // factors of `colour`
    MotionChannel alpha_stages;      // x, 0 to 1
    ScalarCurve life_count;          // factor of the life over the count value; none: 1

    D3DXVECTOR3 scale = {1, 1, 1};    // size in world units, the entry's scale included
    D3DXVECTOR3 position_offset;      // added to the position, world units
    D3DXVECTOR3 colour = {1, 1, 1};   // red, green, blue, each 0 to 1
    D3DXQUATERNION start_rotation;    // before the rotation stages

    std::int32_t blend_mode = 9;   // a blending mode of KRN_Gfx
    bool use_z_buffer = true, write_z_buffer = true;
    float sort_distance_offset = 0;                             // added to the distance from the camera, world units
    std::uint16_t sort_class = 0;                               // lower ones are drawn first
    bool z_sort = true;                                         // by depth among its class
    bool rotate_with_parent = true, rotate_with_view = false;   // read, and of no effect
    std::uint16_t billboard = 0;                                // a BillboardMode
    bool random_mirror[3] = {};                                 // x, y, z: half of the instances have that scale turned
    bool random_reverse_rotation = false;                       // half of the instances turn the other way

    std::int32_t detail_level = 0;   // 0 to 100; above the system's, instances neither move nor emit nor are drawn
    std::int32_t count = 1;          // of instances at each start
    double speed = 1;                // seconds of an instance's clock per second
    float vertical_size = 32;        // times the entry's scale; read, and of no effect
    float birth_count_offset = 0;    // seconds added to the birth time per unit of count value
    CountType count_type = CountType::Uniform;   // count values evenly from 0 to 1, or at random
    EmitSettings emit;
    TraceSettings trace;
    /// A node whose keys move each instance on top of the channels, by its age. None without keys.
    std::shared_ptr<const KRN_3dObject> transform_object;
};

struct ParticleEffect : SubEffect {
    ParticleEffect() : SubEffect(SubEffectKind::Particle) { billboard = 2; }

    std::shared_ptr<KRN_Texture> texture;   // none before the first use; of the catalogue or its own
    String texture_name;
};

struct MeshEffect : SubEffect {
    MeshEffect() : SubEffect(SubEffectKind::Mesh) {}

    std::shared_ptr<KRN_3dScene> scene;   // none before the first use; shared with those that show the same
    String scene_file;
    bool loop = false;   // the scene's animation begins again at its end
};

struct SpecialEffect : SubEffect {
    SpecialEffect() : SubEffect(SubEffectKind::Special) {}

    std::uint32_t second_colour = 0xFF000000;   // packed ARGB, opaque
    std::shared_ptr<KRN_Texture> texture;       // as a particle's; none where no name is given
    std::int32_t point_count = 32;
    float point_size = 1;   // world units
    String texture_name;
    SpecialType type = SpecialType::None;
};

/// One entry of the effects file.
struct VisualEffect {
    String name;
    std::int32_t file_entry = 0;      // its number in the file, from 0
    DynaMem<String, 8, 1> children;   // names of other effects, for the engine
    DynaMem<ParticleEffect, 4, 1> particles;
    DynaMem<MeshEffect, 4, 1> meshes;
    DynaMem<SpecialEffect, 4, 1> specials;
    String ambient_sound, sound;     // names of sounds, for the engine; nothing plays them here
    D3DXVECTOR3 scale = {1, 1, 1};   // factor of the scale of every sub-effect
};

}   // namespace sparkrig
