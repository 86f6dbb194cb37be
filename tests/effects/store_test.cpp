// The store of live instances beside a slow, obvious one: a map from id to instance, walked one after the other.
#include <tbb/global_control.h>

#include <cstring>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "base/numeric.h"
#include "base/random.h"
#include "effects/block_update.h"
#include "effects/effect_simulation.h"
#include "effects/motion.h"
#include "effects/packed_colour.h"
#include "scene/object_3d.h"
#include "tests/effects/definitions_builder.h"
#include "tests/effects/reference.h"
#include "tests/support/test.h"

namespace sparkrig {
namespace {

constexpr int kEffects = 6;
std::string EffectName(int number) { return "e" + std::to_string(number); }

VisualEffectMotion RandomStage(Dice& dice) {
    VisualEffectMotion stage;
    stage.type = static_cast<AnimationType>(1 + dice.Below(12));
    stage.concat = static_cast<ConcatType>(dice.Below(3));
    stage.scale = dice.Vector(2);
    stage.time_count_offset = dice.OneIn(2) ? dice.Between(0, 1) : 0;
    for (float time = 0; time < 2; time += 0.7f) stage.curve.AddKey(time, {dice.Between(0, 1), 0.5f, time});
    stage.curve.ComputeTangents(1);
    return stage;
}

/// A node with some tracks, once or in a loop.
std::shared_ptr<const KRN_3dObject> RandomNode(Dice& dice) {
    auto node = std::make_shared<KRN_3dObject>();
    node->SetPosition(1, -2, 3, false);
    for (float time = 0.2f; time < 1; time += 0.3f) {
        const auto kind = static_cast<KeyInterpolation>(dice.Below(2));
        KRN_RotKeyData turn;
        turn.rotation = {dice.Between(-1, 1), 0.5f, dice.Between(-1, 1), 0.25f};
        node->Tracks().rotation.Add(time, KeyInterpolation::Linear, turn);
        if (dice.OneIn(3)) node->Tracks().position.Add(time, kind, {dice.Vector(3), dice.Vector(3), dice.Vector(3)});
        if (dice.OneIn(2)) node->Tracks().scale.Add(time, kind, {{dice.Vector(3), dice.Vector(3), dice.Vector(3)}});
    }
    node->RebuildLookupTables();
    node->SetLooping(dice.OneIn(2));
    node->SetAnimationLength(1.25f);
    return node;
}

void FillSubEffect(Dice& dice, EffectDefinitions& definitions, SubEffect& sub) {
    for (MotionChannel* channel :
         {&sub.position_stages, &sub.rotation_stages, &sub.scale_stages, &sub.colour_stages, &sub.alpha_stages})
        for (int i = dice.Below(3); i > 0; --i) channel->Add(RandomStage(dice));
    sub.count = dice.Below(dice.OneIn(4) ? 200 : 4);
    sub.count_type = static_cast<CountType>(dice.Below(2));
    sub.life = dice.OneIn(12) ? 0 : dice.Between(0.1f, 1.5f);
    if (dice.OneIn(3)) {
        sub.life_count.AddKey(0, {0.5f});
        sub.life_count.AddKey(1, {1.2f});
        sub.life_count.ComputeTangents(1);
    }
    sub.birth_time = dice.OneIn(3) ? dice.Between(0, 0.5f) : 0;
    sub.birth_count_offset = dice.OneIn(3) ? dice.Between(0, 0.5f) : 0;
    sub.start_time = dice.OneIn(4) ? dice.Between(0, 0.6f) : 0;
    sub.speed = dice.OneIn(10) ? -0.5 : dice.Between(0.5f, 2);
    sub.fade_in = dice.OneIn(2) ? dice.Between(0, 0.4f) : 0;
    sub.fade_out = dice.OneIn(2) ? dice.Between(0, 0.4f) : 0;
    sub.blend_mode = dice.OneIn(3) ? 5 : 9;
    sub.detail_level = dice.OneIn(3) ? 60 : 0;
    for (bool& mirror : sub.random_mirror) mirror = dice.OneIn(2);
    sub.random_reverse_rotation = dice.OneIn(2);
    if (dice.OneIn(3)) sub.transform_object = RandomNode(dice);
    if (dice.OneIn(2)) return;
    EmitInto(sub, *definitions.effects.Find(EffectName(dice.Below(kEffects)).c_str()),
             dice.OneIn(8) ? 0 : dice.Between(0, 4), dice.OneIn(2));
    sub.emit.volume = {dice.Between(0, 2), dice.Between(0, 2), 0};
}

/// Effects that emit one another; how many sub-effects each has depends on the seed.
void Define(EffectDefinitions& definitions, unsigned seed) {
    Dice dice(seed);
    for (int i = 0; i < kEffects; ++i) AddEffect(definitions, EffectName(i).c_str());
    for (int i = 0; i < kEffects; ++i) {
        VisualEffect& effect = *definitions.effects.Find(EffectName(i).c_str());
        for (int n = 1 + dice.Below(2); n > 0; --n) FillSubEffect(dice, definitions, AddParticle(effect));
        if (dice.OneIn(2)) FillSubEffect(dice, definitions, AddSpecial(effect));
        if (dice.OneIn(3)) FillSubEffect(dice, definitions, AddMesh(effect));
    }
}

constexpr EffectLimits kLimits = {.live_instances = 700, .starts = 300, .nesting = 3};

class SlowSimulation {
  public:
    void StartEffect(const VisualEffect& effect, const D3DXVECTOR3& position) {
        starts_left_ = kLimits.starts;
        Start(effect, position, 0);
    }

    void Update(float dt) {
        std::vector<std::pair<int, double>> emissions;
        for (auto next = live_.begin(); next != live_.end();) {
            const auto here = next++;
            VisualEffectObject& object = here->second;
            const SubEffect& sub = *object.sub_effect;
            const auto step = static_cast<float>(sub.speed * dt);
            object.time += step;
            const double life = LifeForCount(sub, object.count_value);
            if (life != 0 && life + object.birth_delay < object.time) {
                live_.erase(here);
                continue;
            }
            if (sub.detail_level > detail_level_) continue;
            Transform(object);
            if (sub.emit.effect && object.Age() >= 0) AddEmissions(here->first, object, step, emissions);
        }
        starts_left_ = kLimits.starts;
        for (const auto& [id, offset] : emissions) Emit(VisualEffectObject(live_.at(id)), offset);
    }

    using Bindings = std::map<const SubEffect*, std::tuple<std::string, SubEffectKind, int>>;
    void Rebind(Bindings& bindings, EffectDefinitions& definitions) {
        for (auto next = live_.begin(); next != live_.end();) {
            const auto here = next++;
            VisualEffectObject& object = here->second;
            const auto& [name, kind, index] = bindings[object.sub_effect];
            SubEffect* sub = FindSubEffect(*definitions.effects.Find(name.c_str()), kind, index);
            if (sub) {
                object.sub_effect = sub;
                object.birth_delay = BirthDelay(*sub, object.count_value);
            } else {
                live_.erase(here);
            }
        }
    }
    /// To be called while the definitions are there.
    Bindings Unbind() const {
        Bindings bindings;
        for (const auto& [id, object] : live_) {
            const SubEffect& sub = *object.sub_effect;
            bindings[&sub] = {sub.owner->name.c_str(), sub.kind, sub.index};
        }
        return bindings;
    }
    void SetDetailLevel(int level) { detail_level_ = level; }
    int DetailLevel() const { return detail_level_; }
    void SetLimits(const EffectLimits&) {}   // they are kLimits
    const std::map<int, VisualEffectObject>& Live() const { return live_; }

  private:
    bool HasRoom() const { return live_.size() < static_cast<std::size_t>(kLimits.live_instances); }
    bool MayStart() const { return starts_left_ > 0 && depth_ <= kLimits.nesting && HasRoom(); }

    void Start(const VisualEffect& effect, const D3DXVECTOR3& position, double offset) {
        if (!MayStart()) return;
        --starts_left_;
        ++depth_;
        for (int i = 0; i < effect.particles.GetCount(); ++i) Add(*effect.particles.GetAt(i), position, offset);
        for (int i = 0; i < effect.meshes.GetCount(); ++i) Add(*effect.meshes.GetAt(i), position, offset);
        for (int i = 0; i < effect.specials.GetCount(); ++i) Add(*effect.specials.GetAt(i), position, offset);
        --depth_;
    }

    void Add(SubEffect& sub, const D3DXVECTOR3& position, double offset) {
        for (int i = 0; i < sub.count && HasRoom(); ++i) {
            VisualEffectObject object;
            while (live_.count(object.id) > 0) ++object.id;
            object.base_position = position;
            object.kind = sub.kind;
            object.sub_effect = &sub;
            if (sub.count_type == CountType::Random)
                object.count_value = static_cast<float>(Random01());
            else if (sub.count > 1)
                object.count_value = static_cast<float>(i) / static_cast<float>(sub.count - 1);
            for (float& random : object.random) random = static_cast<float>(Random01());
            object.birth_delay = BirthDelay(sub, object.count_value);
            object.time = offset + sub.start_time;
            Transform(object);
            live_[object.id] = object;
            const double age = object.Age();
            if (!sub.emit.effect || age < 0) continue;
            const int count = TruncateToInt(age * sub.emit.per_time);
            for (int k = 0; k < count && MayStart(); ++k)
                Emit(object, (k + 0.5 + (sub.emit.random ? RandomRange(-0.25, 0.25) : 0)) * age / count);
        }
    }

    static void Transform(VisualEffectObject& object) {
        SubEffect& sub = *object.sub_effect;
        const double t = object.Age();
        object.position = object.base_position;
        if (t < 0) return;
        const auto node = std::exchange(sub.transform_object, nullptr);   // what the channels give alone
        object.local_offset = EvalPosition(sub, t, object.count_value, object.random);
        object.scale = EvalScale(sub, t, object.count_value, object.random);
        object.rotation = EvalRotation(sub, t, object.count_value, object.random);
        sub.transform_object = node;
        if (node) Follow(*node, t, object);
        object.position = object.base_position + object.local_offset;
        object.alpha = EvalAlpha(sub, t, object.count_value, object.random) * FadeFactor(sub, t, object.count_value);
    }

    static void Follow(const KRN_3dObject& node, double t, VisualEffectObject& object) {
        KRN_3dObject moving;
        KRN_3dObject::CopyNode(node, moving, true);
        moving.Animate(t, true, false);
        const D3DXVECTOR3 scale = moving.CurrentScale();
        object.local_offset += moving.CurrentPosition();
        object.scale = {object.scale.x * scale.x, object.scale.y * scale.y, object.scale.z * scale.z};
        D3DXQuaternionMultiply(&object.rotation, &object.rotation, &moving.CurrentRotation());
    }

    static void AddEmissions(int id, const VisualEffectObject& object, float step,
                             std::vector<std::pair<int, double>>& emissions) {
        const EmitSettings& emit = object.sub_effect->emit;
        const auto add = [&](double offset) {
            if (emissions.size() < 256) emissions.emplace_back(id, offset);
        };
        if (emit.random) {
            int count = TruncateToInt(step * emit.per_time);
            if (Random01() < WrapFloat(step, 1 / emit.per_time) * emit.per_time) ++count;
            for (int k = 0; k < count && emissions.size() < 256; ++k)
                add((k + 0.5 + RandomRange(-0.25, 0.25)) * step / count);
            return;
        }
        const double period = 1.0 / emit.per_time, rest = period - WrapFloat(object.Age() - step, period);
        if (!(rest <= step)) return;
        for (int k = 0; k <= TruncateToInt((step - rest) / period); ++k) add(step - rest - k * period);
    }

    void Emit(const VisualEffectObject& emitter, double offset) {
        const D3DXVECTOR3 volume = emitter.sub_effect->emit.volume, scale = emitter.scale;
        D3DXVECTOR3 place;
        place.x = static_cast<float>(RandomRange(-0.5, 0.5)) * scale.x * volume.x;
        place.y = static_cast<float>(RandomRange(-0.5, 0.5)) * scale.y * volume.y;
        place.z = static_cast<float>(RandomRange(-0.5, 0.5)) * scale.z * volume.z;
        D3DXMATRIX matrix;
        D3DXVec3TransformNormal(&place, &place, D3DXMatrixRotationQuaternion(&matrix, &emitter.rotation));
        Start(*emitter.sub_effect->emit.effect, emitter.position + place, offset);
    }

    std::map<int, VisualEffectObject> live_;
    int detail_level_ = 100, starts_left_ = 0, depth_ = 0;
};

template <class... Values>
void Append(std::string& bytes, const Values&... values) {
    (bytes.append(reinterpret_cast<const char*>(&values), sizeof values), ...);
}

void AppendObject(std::string& bytes, const VisualEffectObject& o) {
    Append(bytes, o.id, o.time, o.random, o.local_offset, o.position, o.scale, o.rotation, o.alpha);
}

/// The record as the definition gives it; the colour of what is not a particle is not drawn.
DrawRecord RecordOf(const VisualEffectObject& object) {
    const SubEffect& sub = *object.sub_effect;
    DrawRecord record;
    record.position = object.position;
    record.id = object.id;
    const double age = object.Age();
    if (age < 0) return record;
    const D3DXVECTOR3 rgb = EvalColor(sub, age, object.count_value, object.random), scale = object.scale;
    const std::uint32_t alpha = ColourByte(object.alpha);
    record.colour = PackColour(rgb, alpha);
    if (sub.blend_mode == 5) {
        const auto k = static_cast<std::uint32_t>(TruncateColour(object.alpha * 65536));
        const auto byte = [k](float component) { return ColourByte(component) * k >> 16 & 255; };
        record.colour = std::min(alpha, 1u) << 24 | byte(rgb.x) << 16 | byte(rgb.y) << 8 | byte(rgb.z);
    }
    record.angle = EvalRotationAngle(sub, age, object.count_value, object.random);
    record.size = object.kind == SubEffectKind::Particle ? scale.x : 1.5f * D3DXVec3Length(scale);
    if (object.kind == SubEffectKind::Mesh) record.size = std::numeric_limits<float>::infinity();
    record.age = static_cast<float>(age);
    return record;
}

void AppendShown(std::string& bytes, DrawRecord record) {
    if (record.age < 0) record.colour = 0, record.angle = record.size = 0;
    Append(bytes, record);
}

std::string Describe(const SlowSimulation& simulation) {
    std::string bytes;
    for (const auto& [id, object] : simulation.Live()) {
        AppendObject(bytes, object);
        if (object.sub_effect->detail_level <= simulation.DetailLevel()) AppendShown(bytes, RecordOf(object));
    }
    return bytes;
}

std::string Describe(const EffectSimulation& simulation) {
    const InstanceStore& instances = simulation.Instances();
    std::string bytes;
    for (int id = 0; id < instances.IdEnd(); ++id) {
        if (!instances.IsLive(id)) continue;
        const VisualEffectObject object = GetInstance(instances, id);
        AppendObject(bytes, object);
        if (object.sub_effect->detail_level <= simulation.DetailLevel())
            AppendShown(bytes, instances.Record(instances.LaneOf(id)));
    }
    return bytes;
}

/// The same random life for either, step by step: what each step leaves behind.
template <class Simulation>
std::vector<std::string> PlayRandomly(unsigned seed, Simulation& simulation) {
    auto definitions = std::make_unique<EffectDefinitions>();
    Define(*definitions, seed);
    simulation.SetLimits(kLimits);
    SeedRandom(static_cast<int>(seed));
    Dice dice(seed);
    std::vector<std::string> steps;
    for (int step = 0; step < 600; ++step) {
        if (dice.OneIn(6)) {
            const VisualEffect& effect = *definitions->effects.Find(EffectName(dice.Below(kEffects)).c_str());
            simulation.StartEffect(effect, {dice.Between(-9, 9), 2, 3});
        }
        if (dice.OneIn(40)) {   // a reload
            auto bindings = simulation.Unbind();
            definitions = std::make_unique<EffectDefinitions>();
            Define(*definitions, static_cast<unsigned>(dice.Below(9)));
            simulation.Rebind(bindings, *definitions);
        }
        if (dice.OneIn(25)) simulation.SetDetailLevel(dice.OneIn(2) ? 50 : 100);
        if (!dice.OneIn(8)) simulation.Update(dice.OneIn(20) ? 0.4f : 1 / 60.0f);
        steps.push_back(Describe(simulation));
        Append(steps.back(), RandomUInt32());
    }
    return steps;
}

TEST(InstanceStore, IsASlowOneToTheBit) {
    std::size_t instances = 0;
    for (const unsigned seed : {1u, 2u, 3u, 4u, 5u, 6u}) {
        TestReporter reporter;
        SlowSimulation slow;
        EffectSimulation fast(reporter);
        const auto expected = PlayRandomly(seed, slow), found = PlayRandomly(seed, fast);
        for (std::size_t step = 0; step < expected.size(); ++step)
            ASSERT_TRUE(found[step] == expected[step]) << "seed " << seed << " step " << step;
        instances = std::max(instances, slow.Live().size());
    }
    EXPECT_GT(instances, 300u);
}

TEST(InstanceStore, AnyNumberOfThreadsGivesTheSameBytes) {
    const auto play = [](std::size_t threads) {
        const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, threads);
        TestReporter reporter;
        EffectDefinitions definitions;
        EffectSimulation simulation(reporter);
        Dice dice(5);
        Define(definitions, 1);   // for emissions, which are taken out again
        VisualEffect& effect = AddEffect(definitions, "many");
        for (int i = 0; i < 3; ++i) {
            ParticleEffect& sub = AddParticle(effect);
            FillSubEffect(dice, definitions, sub);
            sub.emit = {};
            sub.count = 9000;
            sub.life = 0.6;
            sub.birth_count_offset = 0.3f;
        }
        SeedRandom(9);
        simulation.StartEffect(effect, {1, 2, 3});
        std::string bytes;
        for (int step = 0; step < 50; ++step) {
            simulation.Update(1 / 60.0f);
            for (int number = 0; number < simulation.Instances().GroupCount(); ++number) {
                const InstanceGroup& group = simulation.Instances().Group(number);
                for (int n = 0; n < group.count && step % 7 == 0; ++n)
                    Append(bytes, simulation.Instances().Record(InstanceStore::LaneAt(group, n)));
            }
        }
        return bytes;
    };
    const std::string one = play(1);
    EXPECT_GT(one.size(), 1000000u);
    for (const std::size_t threads : {2u, 4u}) EXPECT_TRUE(play(threads) == one) << threads;
}

TEST(InstanceStore, RecordsAreTheSameBeyondTheCache) {
    ParticleEffect sub;
    MoveLinearly(sub, {1, 2, 3});
    for (const int count : {1, 4, 127, kLanes}) {
        InstanceBlock block = {};
        for (int i = 0; i < count; ++i) block.time[i] = i - 3, block.base.x[i] = 0.5f * i, block.id[i] = 7 * i;
        InstanceBlock other = block;
        DrawRecord records[2][kLanes];
        UpdateBlock(sub, block, count, 0.25f, true, Storing::InCache, records[0]);
        UpdateBlock(sub, other, count, 0.25f, true, Storing::BeyondCache, records[1]);
        EXPECT_EQ(std::memcmp(records[0], records[1], sizeof records[0]), 0) << count;
        EXPECT_EQ(records[1][count - 1].id, 7 * (count - 1));
    }
}

}   // namespace
}   // namespace sparkrig
