// The effects file in tables: which keys a block has and where their values go, which blocks there are, which words.
//
// A row's target is a field, whose type is the kind of value; a row without one is a step of the loader. What a key
// that is missing leaves is the initial value of its field.
#pragma once
#include <array>
#include <cstdint>
#include <string_view>
#include <type_traits>
#include <variant>

#include "base/string.h"
#include "base/word_index.h"
#include "effects/effect_definition.h"

namespace sparkrig::effects_file {

// ---- Rows

template <class Owner>
using Target =
    std::variant<std::monostate, bool& (*)(Owner&), double& (*)(Owner&), float& (*)(Owner&), std::int32_t& (*)(Owner&),
                 std::uint16_t& (*)(Owner&), D3DXVECTOR3& (*)(Owner&), String& (*)(Owner&)>;

template <class Owner>
struct KeyRow {
    std::string_view key;
    Target<Owner> target = {};
};

template <class Member, class Class>
Class ClassOf(Member Class::*);

/// A field, or a field of that field, or one of an array. The class of the first may be derived from the owner's.
template <class Owner, auto First, auto... Rest>
auto& FieldOf(Owner& owner) {
    using Class = decltype(ClassOf(First));
    auto& field = static_cast<Class&>(owner).*First;
    if constexpr (sizeof...(Rest) == 0)
        return field;
    else if constexpr ((std::is_integral_v<decltype(Rest)> && ...))
        return field[(Rest, ...)];
    else
        return FieldOf<std::remove_reference_t<decltype(field)>, Rest...>(field);
}

template <auto... Path>
constexpr auto kEntry = &FieldOf<VisualEffect, Path...>;
template <auto... Path>
constexpr auto kSub = &FieldOf<SubEffect, Path...>;
template <auto... Path>
constexpr auto kStage = &FieldOf<VisualEffectMotion, Path...>;

/// The rows of one kind of block.
template <class Owner, std::size_t N>
struct KeyTable {
    std::array<KeyRow<Owner>, N> rows;
    WordIndex index;

    consteval explicit KeyTable(const std::array<KeyRow<Owner>, N>& table_rows) : rows(table_rows), index(table_rows) {}
    /// The row of a key that is there.
    consteval int Row(std::string_view key) const { return index.Find(key) >= 0 ? index.Find(key) : throw key; }
};

template <class Owner, std::size_t A, std::size_t B>
consteval std::array<KeyRow<Owner>, A + B> Join(const KeyRow<Owner> (&first)[A], const KeyRow<Owner> (&second)[B]) {
    std::array<KeyRow<Owner>, A + B> joined;
    std::copy(second, second + B, std::copy(first, first + A, joined.begin()));
    return joined;
}

// ---- Keys. clang-format would break the columns.
// clang-format off

inline constexpr KeyTable kEntryKeys(std::to_array<KeyRow<VisualEffect>>({
    {"desc"},
    {"sound",                kEntry<&VisualEffect::sound>},
    {"AmbiSound",            kEntry<&VisualEffect::ambient_sound>},
    {"scale",                kEntry<&VisualEffect::scale>},
}));
inline constexpr std::string_view kChildKey = "child";   // with a number from 1 on: the entry's child effects

inline constexpr KeyRow<SubEffect> kSubEffectRows[] = {
    {"col",                  kSub<&SubEffect::colour>},
    {"RotateWithParent",     kSub<&SubEffect::rotate_with_parent>},
    {"BirthTime",            kSub<&SubEffect::birth_time>},
    {"StartTime",            kSub<&SubEffect::start_time>},
    {"SortDistOff",          kSub<&SubEffect::sort_distance_offset>},
    {"SortClass",            kSub<&SubEffect::sort_class>},
    {"zsort",                kSub<&SubEffect::z_sort>},
    {"Life",                 kSub<&SubEffect::life>},
    {"LifeCountBez"},
    {"FadeIn",               kSub<&SubEffect::fade_in>},
    {"FadeOut",              kSub<&SubEffect::fade_out>},
    {"BillBoard",            kSub<&SubEffect::billboard>},
    {"RotateWithView",       kSub<&SubEffect::rotate_with_view>},
    {"scale",                kSub<&SubEffect::scale>},
    {"pos",                  kSub<&SubEffect::position_offset>},
    {"RotAxis"},
    {"RotAngle"},
    {"UseZBuf",              kSub<&SubEffect::use_z_buffer>},
    {"DetailLevel",          kSub<&SubEffect::detail_level>},
    {"RandomMirrorX",        kSub<&SubEffect::random_mirror, 0>},
    {"RandomMirrorY",        kSub<&SubEffect::random_mirror, 1>},
    {"RandomMirrorZ",        kSub<&SubEffect::random_mirror, 2>},
    {"RandomReverseRot",     kSub<&SubEffect::random_reverse_rotation>},
    {"WriteZBuf",            kSub<&SubEffect::write_z_buffer>},
    {"Count",                kSub<&SubEffect::count>},
    {"Speed",                kSub<&SubEffect::speed>},
    {"vsize",                kSub<&SubEffect::vertical_size>},
    {"BirthCountOff",        kSub<&SubEffect::birth_count_offset>},
    {"CountType"},
    {"EmitEffect"},
    {"EmitEffectPerTime",    kSub<&SubEffect::emit, &EmitSettings::per_time>},
    {"EmitEffectRand",       kSub<&SubEffect::emit, &EmitSettings::random>},
    {"EmitEffectLocal",      kSub<&SubEffect::emit, &EmitSettings::local>},
    {"TraceEffectLifeTime",  kSub<&SubEffect::trace, &TraceSettings::life_time>},
    {"TraceEffectFlag",      kSub<&SubEffect::trace, &TraceSettings::flag>},
    {"TraceEffectId",        kSub<&SubEffect::trace, &TraceSettings::id>},
    {"TraceEffectTexScale",  kSub<&SubEffect::trace, &TraceSettings::texture_scale>},
    {"EmitEffectVolume",     kSub<&SubEffect::emit, &EmitSettings::volume>},
    {"BlendType"},
    {"TransformObjectFile"},
    {"TransformObjectName"},
};
inline constexpr KeyRow<SubEffect> kParticleRows[] = {
    {"texture",              kSub<&ParticleEffect::texture_name>},
};
inline constexpr KeyRow<SubEffect> kMeshRows[] = {
    {"sFile",                kSub<&MeshEffect::scene_file>},
    {"loop",                 kSub<&MeshEffect::loop>},
};
inline constexpr KeyRow<SubEffect> kSpecialRows[] = {
    {"texture",              kSub<&SpecialEffect::texture_name>},
    {"col2"},
    {"numPart",              kSub<&SpecialEffect::point_count>},
    {"PartSize",             kSub<&SpecialEffect::point_size>},
    {"type"},
};
inline constexpr KeyTable kParticleKeys(Join(kSubEffectRows, kParticleRows));
inline constexpr KeyTable kMeshKeys(Join(kSubEffectRows, kMeshRows));
inline constexpr KeyTable kSpecialKeys(Join(kSubEffectRows, kSpecialRows));

inline constexpr KeyTable kMotionKeys(std::to_array<KeyRow<VisualEffectMotion>>({
    {"type"},
    {"curve"},
    {"curveLoopTime"},
    {"TimeOff",              kStage<&VisualEffectMotion::time_offset>},
    {"TimeCountOff",         kStage<&VisualEffectMotion::time_count_offset>},
    {"SpeedCountOff",        kStage<&VisualEffectMotion::speed_count_offset>},
    {"SpeedLocalCountOff",   kStage<&VisualEffectMotion::local_speed_count_offset>},
    {"Speed",                kStage<&VisualEffectMotion::speed>},
    {"SpeedLocal",           kStage<&VisualEffectMotion::local_speed>},
    {"TimeScale"},
    {"TransformTimeScale",   kStage<&VisualEffectMotion::time_scale_uses_stage_time>},
    {"scale",                kStage<&VisualEffectMotion::scale>},
    {"RotAxis",              kStage<&VisualEffectMotion::rotation_axis>},
    {"TimeMinMax"},
    {"RotAngle",             kStage<&VisualEffectMotion::rotation_angle>},   // degrees until the stage is read
    {"Offset",               kStage<&VisualEffectMotion::offset>},
    {"ConcatType"},
}));

// ---- Words

template <class Value>
struct WordRow {
    std::string_view key;
    Value value;
};

inline constexpr WordRow<SpecialType> kSpecialTypes[] = {
    {"none",   SpecialType::None},   {"flame", SpecialType::Flame}, {"helix",    SpecialType::Helix},
    {"snake",  SpecialType::Snake},  {"wave",  SpecialType::Wave},  {"jelly",    SpecialType::Jelly},
    {"splash", SpecialType::Splash}, {"smoke", SpecialType::Smoke}, {"firework", SpecialType::Firework},
};

inline constexpr WordRow<AnimationType> kAnimationTypes[] = {
    {"linear",     AnimationType::Linear},
    {"swing",      AnimationType::Swing},
    {"sin",        AnimationType::Sin},
    {"cos",        AnimationType::Cos},
    {"circle",     AnimationType::Circle},
    {"quadratic",  AnimationType::Quadratic},
    {"bezier",     AnimationType::Bezier},
    {"rand1",      AnimationType::Rand1},
    {"rand2",      AnimationType::Rand2},
    {"rand3",      AnimationType::Rand3},
    {"rand4",      AnimationType::Rand4},
    {"randSphere", AnimationType::RandSphere},
};

inline constexpr WordRow<ConcatType> kConcatTypes[] = {
    {"add",      ConcatType::Add},
    {"multiply", ConcatType::Multiply},
    {"rotate",   ConcatType::Rotate},
};

inline constexpr WordRow<CountType> kCountTypes[] = {
    {"uniform", CountType::Uniform},
    {"random",  CountType::Random},
};

struct BlendModes {
    int mesh, other;   // blending modes of KRN_Gfx
};
inline constexpr WordRow<BlendModes> kBlendModes[] = {
    {"default",     { 7, 9}},
    {"additive",    {12, 3}},
    {"subtractive", {17, 5}},
};
inline constexpr BlendModes kTraceBlendModes   = { 3, 3};   // without the key, where a trace is emitted
inline constexpr BlendModes kDefaultBlendModes = { 7, 9};   // without the key

// ---- Blocks

inline constexpr WordRow<SubEffectKind> kSubEffectBlocks[] = {
    {"PARTICLE", SubEffectKind::Particle},
    {"MESH",     SubEffectKind::Mesh},
    {"SPECIAL",  SubEffectKind::Special},
};

struct Channel {
    MotionChannel SubEffect::*stages;
    ConcatType concat;   // without the key
};
inline constexpr WordRow<Channel> kChannelBlocks[] = {
    {"POSITION", {&SubEffect::position_stages, ConcatType::Add}},
    {"ROTATION", {&SubEffect::rotation_stages, ConcatType::Rotate}},
    {"SCALE",    {&SubEffect::scale_stages,    ConcatType::Multiply}},
    {"COLOR",    {&SubEffect::colour_stages,   ConcatType::Multiply}},
    {"ALPHA",    {&SubEffect::alpha_stages,    ConcatType::Multiply}},
};

// clang-format on
}   // namespace sparkrig::effects_file
