// Reads the effects file: entries, sub-effect blocks in them, stage blocks in these. The keys stand in tables; what a
// key that is missing leaves is the initial value of its field.
#include <algorithm>
#include <cmath>
#include <variant>
#include <vector>

#include "base/config_file_reader.h"
#include "effects/effect_definitions.h"
#include "effects/packed_colour.h"

namespace sparkrig {
namespace {

constexpr int kNameSize = 1024;        // bytes of a name, with its end
constexpr float kDiagonal = 1.4142f;   // of a unit square: an entry scale of (1, 1) leaves the vertical size
constexpr float kCurveTension = 1.0f;

template <class Owner>
using Field = std::variant<bool Owner::*, double Owner::*, float Owner::*, std::int32_t Owner::*,
                           std::uint16_t Owner::*, D3DXVECTOR3 Owner::*, String Owner::*>;

template <class Owner>
struct KeyRow {
    const char* key;
    Field<Owner> field;
};

// clang-format off
constexpr KeyRow<VisualEffect> kEntryKeys[] = {
    {"sound",                &VisualEffect::sound},
    {"AmbiSound",            &VisualEffect::ambient_sound},
    {"scale",                &VisualEffect::scale},
};

constexpr KeyRow<ParticleEffect> kParticleKeys[] = {
    {"texture",              &ParticleEffect::texture_name},
};

constexpr KeyRow<MeshEffect> kMeshKeys[] = {
    {"sFile",                &MeshEffect::scene_file},
    {"loop",                 &MeshEffect::loop},
};

constexpr KeyRow<SpecialEffect> kSpecialKeys[] = {
    {"texture",              &SpecialEffect::texture_name},
    {"numPart",              &SpecialEffect::point_count},
    {"PartSize",             &SpecialEffect::point_size},
};

constexpr KeyRow<SubEffect> kSubEffectKeys[] = {
    {"col",                  &SubEffect::colour},
    {"RotateWithParent",     &SubEffect::rotate_with_parent},
    {"BirthTime",            &SubEffect::birth_time},
    {"StartTime",            &SubEffect::start_time},
    {"SortDistOff",          &SubEffect::sort_distance_offset},
    {"SortClass",            &SubEffect::sort_class},
    {"zsort",                &SubEffect::z_sort},
    {"Life",                 &SubEffect::life},
    {"FadeIn",               &SubEffect::fade_in},
    {"FadeOut",              &SubEffect::fade_out},
    {"BillBoard",            &SubEffect::billboard},
    {"RotateWithView",       &SubEffect::rotate_with_view},
    {"scale",                &SubEffect::scale},
    {"pos",                  &SubEffect::position_offset},
    {"UseZBuf",              &SubEffect::use_z_buffer},
    {"DetailLevel",          &SubEffect::detail_level},
    {"RandomReverseRot",     &SubEffect::random_reverse_rotation},
    {"WriteZBuf",            &SubEffect::write_z_buffer},
    {"Count",                &SubEffect::count},
    {"Speed",                &SubEffect::speed},
    {"vsize",                &SubEffect::vertical_size},
    {"BirthCountOff",        &SubEffect::birth_count_offset},
};

constexpr const char* kMirrorKeys[] = {"RandomMirrorX", "RandomMirrorY", "RandomMirrorZ"};

// These two are read only where there is an emit effect.
constexpr KeyRow<EmitSettings> kEmitKeys[] = {
    {"EmitEffectPerTime",    &EmitSettings::per_time},
    {"EmitEffectRand",       &EmitSettings::random},
    {"EmitEffectLocal",      &EmitSettings::local},
    {"EmitEffectVolume",     &EmitSettings::volume},
};
constexpr KeyRow<TraceSettings> kTraceKeys[] = {
    {"TraceEffectLifeTime",  &TraceSettings::life_time},
    {"TraceEffectFlag",      &TraceSettings::flag},
    {"TraceEffectId",        &TraceSettings::id},
    {"TraceEffectTexScale",  &TraceSettings::texture_scale},
};

constexpr KeyRow<VisualEffectMotion> kMotionKeys[] = {
    {"TimeOff",              &VisualEffectMotion::time_offset},
    {"TimeCountOff",         &VisualEffectMotion::time_count_offset},
    {"SpeedCountOff",        &VisualEffectMotion::speed_count_offset},
    {"SpeedLocalCountOff",   &VisualEffectMotion::local_speed_count_offset},
    {"Speed",                &VisualEffectMotion::speed},
    {"SpeedLocal",           &VisualEffectMotion::local_speed},
    {"TransformTimeScale",   &VisualEffectMotion::time_scale_uses_stage_time},
    {"scale",                &VisualEffectMotion::scale},
    {"RotAxis",              &VisualEffectMotion::rotation_axis},
    {"RotAngle",             &VisualEffectMotion::rotation_angle},   // degrees until the stage is read
    {"Offset",               &VisualEffectMotion::offset},
};

template <class Value>
struct WordRow {
    const char* word;
    Value value;
};

constexpr WordRow<SpecialType> kSpecialTypes[] = {
    {"none",  SpecialType::None},  {"flame", SpecialType::Flame}, {"helix",    SpecialType::Helix},
    {"snake", SpecialType::Snake}, {"wave",  SpecialType::Wave},  {"jelly",    SpecialType::Jelly},
    {"smoke", SpecialType::Smoke}, {"splash", SpecialType::Splash}, {"firework", SpecialType::Firework},
};

constexpr WordRow<AnimationType> kAnimationTypes[] = {
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

constexpr WordRow<ConcatType> kConcatTypes[] = {
    {"add",      ConcatType::Add},
    {"multiply", ConcatType::Multiply},
    {"rotate",   ConcatType::Rotate},
};

constexpr WordRow<CountType> kCountTypes[] = {
    {"uniform", CountType::Uniform},
    {"random",  CountType::Random},
};

struct BlendModes {
    int mesh, other;   // blending modes of KRN_Gfx
};
constexpr WordRow<BlendModes> kBlendModes[] = {
    {"default",     { 7, 9}},
    {"additive",    {12, 3}},
    {"subtractive", {17, 5}},
};
constexpr BlendModes kTraceBlendModes   = { 3, 3};   // without the key, where a trace is emitted
constexpr BlendModes kDefaultBlendModes = { 7, 9};   // without the key

struct ChannelRow {
    const char* block;
    MotionChannel SubEffect::*channel;
    ConcatType concat;   // without the key
};
constexpr ChannelRow kChannels[] = {
    {"POSITION", &SubEffect::position_stages, ConcatType::Add},
    {"ROTATION", &SubEffect::rotation_stages, ConcatType::Rotate},
    {"SCALE",    &SubEffect::scale_stages,    ConcatType::Multiply},
    {"COLOR",    &SubEffect::colour_stages,   ConcatType::Multiply},
    {"ALPHA",    &SubEffect::alpha_stages,    ConcatType::Multiply},
};
// clang-format on

template <class Row, std::size_t N>
const Row* FindWord(const Row (&rows)[N], const char* word) {
    for (const Row& row : rows)
        if (EqualNoCase(row.word, word)) return &row;
    return nullptr;
}

D3DXVECTOR3 Product(const D3DXVECTOR3& a, const D3DXVECTOR3& b) { return {a.x * b.x, a.y * b.y, a.z * b.z}; }

class EffectsFileLoader {
  public:
    EffectsFileLoader(const ErrorClass& reporter, EffectDefinitions& definitions)
        : reporter_(reporter), definitions_(definitions) {}

    void Load(const char* file) {
        reader_.SetIndexKey("desc");
        if (reader_.Load(file, true) != 0) reporter_.Error("Can not open file '%s': ", file);
        for (entry_ = 0; entry_ < reader_.GetBlockCount(); ++entry_) ReadEntry();
        ResolveEmitEffects(reporter_, definitions_);
    }

  private:
    // ---- Entries

    void ReadEntry() {
        reader_.SelectBlock(entry_);
        char name[kNameSize];
        if (reader_.ReadString("desc", name, sizeof name, entry_) != 0)
            reporter_.Error("Effect entry %i without 'desc' entry", entry_);
        effect_ = definitions_.effects.Insert(name);
        if (!effect_) reporter_.Error("Multiple effect entry '%s' in effects.cfg", name);
        effect_->name = name;
        effect_->file_entry = entry_;
        definitions_.names.Add(effect_->name);
        ReadKeys(kEntryKeys, *effect_);
        String child;
        for (int i = 1; reader_.ReadString("child", child, entry_, i) == 0; ++i) effect_->children.Add(child);
        ForEachBlock([this](const char* block) { return ReadSubEffect(block); });
    }

    /// Calls read(name), the cursor before the block, for each block of the cursor's level. False means that the name
    /// is unknown; read has left the cursor behind the block otherwise.
    template <class Read>
    void ForEachBlock(Read read) {
        char name[kNameSize];
        while (reader_.NextBlock(name, sizeof name)) {
            if (name[0] != ';') {
                if (read(name)) continue;
                reporter_.Warning("Unknown block name '%s' in effects.cfg", name);
            }
            reader_.SkipBlock();
        }
    }

    // ---- Sub-effects

    bool ReadSubEffect(const char* block) {
        if (EqualNoCase(block, "PARTICLE")) {
            ReadBlock(effect_->particles, [this](ParticleEffect& particle) { ReadKeys(kParticleKeys, particle); });
        } else if (EqualNoCase(block, "MESH")) {
            ReadBlock(effect_->meshes, [this](MeshEffect& mesh) { ReadKeys(kMeshKeys, mesh); });
        } else if (EqualNoCase(block, "SPECIAL")) {
            ReadBlock(effect_->specials, [this](SpecialEffect& special) { ReadSpecialKeys(special); });
        } else {
            return false;
        }
        return true;
    }

    template <class List, class ReadKindKeys>
    void ReadBlock(List& list, ReadKindKeys read_kind_keys) {
        const int id = list.AddNew();
        auto& sub = *list.Get(id);
        sub.owner = effect_;
        sub.index = id;
        reader_.EnterBlock();
        read_kind_keys(sub);
        ReadCommonKeys(sub);
        ForEachBlock([this, &sub](const char* block) { return ReadStage(block, sub); });
        reader_.ExitBlock();
    }

    void ReadSpecialKeys(SpecialEffect& special) {
        ReadKeys(kSpecialKeys, special);
        D3DXVECTOR3 second(1, 1, 1);
        ReadVector("col", second);
        ReadVector("col2", second);
        special.second_colour = PackColour(second, kOpaque);
        char word[kNameSize];
        if (!ReadWord("type", word)) reporter_.Error("No type in special effect '%s'", effect_->name.c_str());
        const auto* row = FindWord(kSpecialTypes, word);
        if (!row) reporter_.Error("Unknown special effect type in effect '%s'", effect_->name.c_str());
        special.type = row->value;
    }

    void ReadCommonKeys(SubEffect& sub) {
        ReadKeys(kSubEffectKeys, sub);
        for (int axis = 0; axis < 3; ++axis) reader_.ReadBool(kMirrorKeys[axis], sub.random_mirror[axis], entry_);
        sub.scale = Product(sub.scale, effect_->scale);
        const D3DXVECTOR3& entry = effect_->scale;
        sub.vertical_size *= std::sqrt(entry.x * entry.x + entry.y * entry.y) / kDiagonal;
        ReadCurve("LifeCountBez", sub.life_count);
        sub.life_count.ComputeTangents(kCurveTension);
        ReadStartRotation(sub);
        ReadCountType(sub);
        ReadEmission(sub);
        sub.blend_mode = ReadBlendMode(sub);
        ReadTransformObject();
    }

    void ReadStartRotation(SubEffect& sub) {
        D3DXVECTOR3 axis(0, 0, 1);
        float degrees = 0;
        ReadVector("RotAxis", axis);
        if (reader_.ReadFloat("RotAngle", degrees, entry_) != 0) return;
        D3DXQuaternionRotationAxis(&sub.start_rotation, &axis, degrees * kRadiansPerDegree);
    }

    void ReadCountType(SubEffect& sub) {
        char word[kNameSize];
        if (!ReadWord("CountType", word)) return;
        const auto* row = FindWord(kCountTypes, word);
        if (!row) reporter_.Error("Unknown CountType '%s' in effect '%s'", word, effect_->name.c_str());
        sub.count_type = row->value;
    }

    void ReadEmission(SubEffect& sub) {
        if (reader_.ReadString("EmitEffect", sub.emit.name, entry_) != 0) return;
        sub.emit.line = reader_.ReportLine();
        ReadKeys(kEmitKeys, sub.emit);
        ReadKeys(kTraceKeys, sub.trace);
    }

    int ReadBlendMode(const SubEffect& sub) {
        const auto for_kind = [&](const BlendModes& modes) {
            return sub.kind == SubEffectKind::Mesh ? modes.mesh : modes.other;
        };
        char word[kNameSize];
        if (!ReadWord("BlendType", word))
            return for_kind(sub.emit.name.StartsWith(kTracePrefix) ? kTraceBlendModes : kDefaultBlendModes);
        if (const auto* row = FindWord(kBlendModes, word)) return for_kind(row->value);
        if (sub.kind == SubEffectKind::Mesh) reporter_.Error("Invalid blend mode '%s' in effects.cfg", word);
        return sub.blend_mode;
    }

    /// A transform object drives a sub-effect by the keys of a scene's node. There is no scene reader that could give
    /// them, and a sub-effect that stays where it should fly would hide that.
    void ReadTransformObject() {
        char file[kNameSize], object[kNameSize];
        if (!ReadWord("TransformObjectFile", file)) return;
        if (!ReadWord("TransformObjectName", object))
            reporter_.Error("'TransformObjectName' missing in effect: '%s'", effect_->name.c_str());
        reporter_.Error(
            "Can not load scene '%s' for the transform object '%s' of effect '%s': scenes are not supported", file,
            object, effect_->name.c_str());
    }

    // ---- Stages

    bool ReadStage(const char* block, SubEffect& sub) {
        for (const ChannelRow& row : kChannels) {
            if (!EqualNoCase(row.block, block)) continue;
            MotionChannel& channel = sub.*row.channel;
            VisualEffectMotion& stage = *channel.Get(channel.AddNew());
            stage.concat = row.concat;
            reader_.EnterBlock();
            ReadStageKeys(stage);
            reader_.ExitBlock();
            if (row.channel == &SubEffect::position_stages) stage.scale = Product(stage.scale, sub.scale);
            PrepareStage(stage);
            return true;
        }
        return false;
    }

    void ReadStageKeys(VisualEffectMotion& stage) {
        const char* effect = effect_->name.c_str();
        char word[kNameSize];
        if (!ReadWord("type", word)) reporter_.Error("No 'type' specified for effect '%s'", effect);
        const auto* type = FindWord(kAnimationTypes, word);
        if (!type) reporter_.Error("Unknown animation type '%s' in effect '%s'", word, effect);
        stage.type = type->value;
        if (stage.type == AnimationType::Bezier) ReadStageCurve(stage.curve);
        ReadKeys(kMotionKeys, stage);
        stage.rotation_angle *= kRadiansPerDegree;
        D3DXVECTOR3 scale(stage.time_scale.inverse, stage.time_scale.constant, stage.time_scale.linear);
        ReadVector("TimeScale", scale);
        stage.time_scale = {scale.x, scale.y, scale.z};
        float range[2] = {};
        if (reader_.ReadVector2("TimeMinMax", range, entry_) == 0) {
            stage.time_minimum = range[0];
            stage.time_maximum = range[1];
        }
        if (!ReadWord("ConcatType", word)) return;
        const auto* concat = FindWord(kConcatTypes, word);
        if (!concat) reporter_.Error("Unknown concatenation type '%s' in effect '%s'", word, effect);
        stage.concat = concat->value;
    }

    void ReadStageCurve(VectorCurve& curve) {
        ReadCurve("curve", curve);
        if (curve.IsEmpty()) reporter_.Error("No bezier curve defined in effect '%s'", effect_->name.c_str());
        float loop_end = 0;
        reader_.ReadFloat("curveLoopTime", loop_end, entry_);
        curve.SetLoop(loop_end > 0, loop_end);
        curve.ComputeTangents(kCurveTension);   // last: in a loop the tangents reach across the seam
    }

    // ---- Values

    template <class Owner, std::size_t N>
    void ReadKeys(const KeyRow<Owner> (&rows)[N], Owner& owner) {
        for (const KeyRow<Owner>& row : rows)
            std::visit([&](auto field) { ReadValue(row.key, owner.*field); }, row.field);
    }

    void ReadValue(const char* key, bool& value) { reader_.ReadBool(key, value, entry_); }
    void ReadValue(const char* key, double& value) { reader_.ReadNumber(key, value, entry_); }
    void ReadValue(const char* key, float& value) { reader_.ReadFloat(key, value, entry_); }
    void ReadValue(const char* key, std::int32_t& value) { reader_.ReadInt(key, value, entry_); }
    void ReadValue(const char* key, D3DXVECTOR3& value) { ReadVector(key, value); }
    void ReadValue(const char* key, String& value) { reader_.ReadString(key, value, entry_); }
    void ReadValue(const char* key, std::uint16_t& value) {
        int number = 0;
        if (reader_.ReadInt(key, number, entry_) == 0) value = static_cast<std::uint16_t>(number);
    }

    /// A vector with too few components leaves the value as it was.
    void ReadVector(const char* key, D3DXVECTOR3& value) {
        float numbers[3] = {};
        if (reader_.ReadVector3(key, numbers, entry_) == 0) value = {numbers[0], numbers[1], numbers[2]};
    }

    bool ReadWord(const char* key, char (&word)[kNameSize]) {
        return reader_.ReadString(key, word, sizeof word, entry_) == 0;
    }

    /// The numbers of a list, until the next call.
    const std::vector<float>& ReadList(const char* key) {
        int total = 0;
        numbers_.resize(std::max<std::size_t>(numbers_.capacity(), 64));
        int count = reader_.ReadFloatList(key, numbers_.data(), static_cast<int>(numbers_.size()), &total, entry_);
        if (total > count) {
            numbers_.resize(static_cast<std::size_t>(total));
            count = reader_.ReadFloatList(key, numbers_.data(), total, &total, entry_);
        }
        numbers_.resize(static_cast<std::size_t>(count));
        return numbers_;
    }

    template <int Components>
    void ReadCurve(const char* key, KeyCurve<Components>& curve) {
        const std::vector<float>& numbers = ReadList(key);
        constexpr std::size_t kGroup = 1 + Components;
        if (numbers.size() % kGroup != 0) reporter_.Error("Invalid %s entry", key);
        for (std::size_t i = 0; i < numbers.size(); i += kGroup) {
            if (i > 0 && numbers[i] < numbers[i - kGroup])
                reporter_.Error("Invalid order in bezier curve of entry '%s'", effect_->name.c_str());
            float value[Components];
            std::copy_n(&numbers[i + 1], Components, value);
            curve.AddKey(numbers[i], value);
        }
    }

    const ErrorClass& reporter_;
    EffectDefinitions& definitions_;
    ConfigFileReader reader_;
    int entry_ = 0;
    VisualEffect* effect_ = nullptr;   // of the entry that is read
    std::vector<float> numbers_;       // memory of ReadList
};

}   // namespace

void LoadEffectsFile(const char* file, const ErrorClass& reporter, EffectDefinitions& definitions) {
    EffectsFileLoader(reporter, definitions).Load(file);
}

}   // namespace sparkrig
