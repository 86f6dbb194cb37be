#include "effects/effect_simulation.h"

#include <cmath>
#include <limits>
#include <string>

#include "base/random.h"
#include "tests/effects/definitions_builder.h"
#include "tests/support/test.h"

namespace sparkrig {
namespace {

struct TestReporter : ErrorClass {
    TestReporter() { SetName("TestReporter"); }
};

class Simulation : public testing::Test {
  protected:
    Simulation() { SeedRandom(77); }

    void Start(const char* name, const D3DXVECTOR3& position = {}) {
        simulation.StartEffect(*definitions.effects.Find(name), position);
    }
    void Step(int frames, float seconds) {
        for (int i = 0; i < frames; ++i) simulation.Update(seconds);
    }
    VisualEffectObject At(int id) const { return GetInstance(simulation.Instances(), id); }
    int Count() const { return simulation.Instances().Count(); }
    /// field(object) of every live instance of a sub-effect, in ascending order of ids.
    template <class FieldOf>
    std::vector<float> Of(const SubEffect& sub, FieldOf field) const {
        std::vector<float> values;
        for (int id = 0; id < simulation.Instances().IdEnd(); ++id) {
            if (!simulation.Instances().IsLive(id)) continue;
            const VisualEffectObject object = At(id);
            if (object.sub_effect == &sub) values.push_back(static_cast<float>(field(object)));
        }
        return values;
    }
    std::vector<float> Times(const SubEffect& sub) const {
        return Of(sub, [](const VisualEffectObject& object) { return object.time; });
    }

    /// An effect "parent" of one particle, the emitter, which emits an effect "child" of one particle, the spark.
    struct Emission {
        ParticleEffect &spark, &emitter;
    };
    Emission MakeEmission(float per_time, bool random) {
        VisualEffect& child = AddEffect(definitions, "child");
        ParticleEffect& spark = AddParticle(child);
        ParticleEffect& emitter = AddParticle(AddEffect(definitions, "parent"));
        EmitInto(emitter, child, per_time, random);
        return {spark, emitter};
    }
    /// Whether the generator, seeded with this, gives the next number after so many draws.
    static bool HasDrawn(int draws, int seed) {
        const std::uint32_t next = RandomUInt32();
        SeedRandom(seed);
        for (int i = 0; i < draws; ++i) Random01();
        return RandomUInt32() == next;
    }

    Reports reports;
    TestReporter reporter;
    EffectDefinitions definitions;
    EffectSimulation simulation{reporter};
};

TEST_F(Simulation, SpreadsUniformCountValuesOverTheirInstances) {
    VisualEffect& effect = AddEffect(definitions, "spread");
    ParticleEffect& sub = AddParticle(effect);
    const std::pair<int, std::vector<float>> kRows[] = {
        {3, {0, 0.5f, 1}}, {1, {0}}, {0, {}}, {-4, {}}, {5, {0, 0.25f, 0.5f, 0.75f, 1}}};
    for (const auto& [count, values] : kRows) {
        sub.count = count;
        simulation.Clear();
        Start("spread");
        EXPECT_EQ(Of(sub, [](const VisualEffectObject& object) { return object.count_value; }), values);
    }
}

TEST_F(Simulation, DrawsTheCountValueThenFourRandomNumbers) {
    VisualEffect& effect = AddEffect(definitions, "chance");
    ParticleEffect& drawn = AddParticle(effect);
    drawn.count_type = CountType::Random;
    AddParticle(effect);
    SeedRandom(123);
    Start("chance");
    SeedRandom(123);
    EXPECT_EQ(At(0).count_value, static_cast<float>(Random01()));
    for (const float random : At(0).random) EXPECT_EQ(random, static_cast<float>(Random01()));
    EXPECT_EQ(At(1).count_value, 0);
    for (const float random : At(1).random) EXPECT_EQ(random, static_cast<float>(Random01()));
}

TEST_F(Simulation, StartsParticlesThenMeshesThenSpecials) {
    VisualEffect& effect = AddEffect(definitions, "three");
    AddSpecial(effect);
    AddMesh(effect);
    AddParticle(effect);
    Start("three", {3, 4, 5});
    EXPECT_EQ(At(0).kind, SubEffectKind::Particle);
    EXPECT_EQ(At(1).kind, SubEffectKind::Mesh);
    EXPECT_EQ(At(2).kind, SubEffectKind::Special);
    EXPECT_EQ(At(1).base_position, D3DXVECTOR3(3, 4, 5));
}

TEST_F(Simulation, TransformsAreThereFromTheStart) {
    ParticleEffect& sub = AddParticle(AddEffect(definitions, "moving"));
    MoveLinearly(sub, {2, 4, -6});
    sub.position_offset = {0.5f, 0.25f, 1};
    sub.scale = {3, 4, 5};
    sub.start_time = 1.5;
    sub.fade_in = 3;
    Start("moving", {10, 20, 30});
    EXPECT_EQ(At(0).local_offset, D3DXVECTOR3(3.5f, 6.25f, -8));
    EXPECT_EQ(At(0).position, D3DXVECTOR3(13.5f, 26.25f, 22));
    EXPECT_EQ(At(0).scale, D3DXVECTOR3(3, 4, 5));
    EXPECT_FLOAT_EQ(At(0).alpha, 0.5f);
}

TEST_F(Simulation, OnlyTakesItsPlaceBeforeItsBirth) {
    ParticleEffect& sub = AddParticle(AddEffect(definitions, "late"));
    MoveLinearly(sub, {2, 4, -6});
    sub.birth_time = 0.5;
    sub.fade_in = 1;
    Start("late", {10, 20, 30});
    Step(1, 0.25f);
    EXPECT_EQ(At(0).position, D3DXVECTOR3(10, 20, 30));
    EXPECT_EQ(At(0).scale, D3DXVECTOR3());
    EXPECT_EQ(At(0).alpha, 1);
    Step(1, 0.5f);
    EXPECT_EQ(At(0).position, D3DXVECTOR3(10.5f, 21, 28.5f));
    EXPECT_FLOAT_EQ(At(0).alpha, 0.25f);
}

TEST_F(Simulation, DiesWhenItsLifeIsOverOnItsOwnClock) {
    VisualEffect& effect = AddEffect(definitions, "lives");
    ParticleEffect& slow = AddParticle(effect);
    ParticleEffect& fast = AddParticle(effect);
    ParticleEffect& immortal = AddParticle(effect);
    ParticleEffect& late = AddParticle(effect);
    slow.life = fast.life = late.life = 1;
    fast.speed = 2;
    late.birth_time = 0.5;
    Start("lives");
    const auto living = [&] {
        return std::vector<std::size_t>{Times(slow).size(), Times(fast).size(), Times(late).size(),
                                        Times(immortal).size()};
    };
    Step(1, 0.5f);
    EXPECT_THAT(living(), ElementsAre(1, 1, 1, 1));   // at its life an instance still lives
    Step(1, 0.125f);
    EXPECT_THAT(living(), ElementsAre(1, 0, 1, 1));
    Step(1, 0.5f);
    EXPECT_THAT(living(), ElementsAre(0, 0, 1, 1));
    Step(1, 0.5f);
    EXPECT_THAT(living(), ElementsAre(0, 0, 0, 1));
    EXPECT_DOUBLE_EQ(simulation.SystemTime(), 1.625);
}

TEST_F(Simulation, LowestFreeIdsAreTakenAgain) {
    ParticleEffect& brief = AddParticle(AddEffect(definitions, "brief"));
    ParticleEffect& lasting = AddParticle(AddEffect(definitions, "lasting"));
    brief.life = 0.5;
    lasting.count = 2;
    Start("brief");
    Start("lasting");
    Step(1, 0.75f);
    Start("lasting");
    EXPECT_EQ(At(0).sub_effect, &lasting);
    EXPECT_EQ(At(0).time, 0);
    EXPECT_EQ(At(3).time, 0);
    EXPECT_EQ(At(1).time, 0.75);
}

TEST_F(Simulation, EmitsEvenlyWithTheTimeAlreadyLived) {
    const auto [spark, emitter] = MakeEmission(10, false);
    Start("parent");
    Step(1, 0.25f);   // at 0.1 and 0.2
    EXPECT_THAT(Times(spark), testing::Pointwise(testing::FloatNear(1e-6f), std::vector<float>{0.15f, 0.05f}));
    Step(1, 0.28125f);   // at 0.3, 0.4 and 0.5
    EXPECT_THAT(Times(spark), testing::Pointwise(testing::FloatNear(1e-6f),
                                                 std::vector<float>{0.43125f, 0.33125f, 0.23125f, 0.13125f, 0.03125f}));
    Step(55, 1 / 60.0f);
    EXPECT_EQ(Times(spark).size(), 14u);   // 1.448 s
}

TEST_F(Simulation, EmitsAtRandomWithJitterAroundEvenShares) {
    const auto [spark, emitter] = MakeEmission(9, true);
    Start("parent");
    SeedRandom(5);
    Step(1, 0.25f);   // 2.25 on the average
    SeedRandom(5);
    const int count = Random01() < 0.25 ? 3 : 2;
    std::vector<float> times;
    for (int k = 0; k < count; ++k)
        times.push_back(static_cast<float>((k + 0.5 + RandomRange(-0.25, 0.25)) * 0.25 / count));
    EXPECT_THAT(Times(spark), testing::Pointwise(FloatEq(), times));
}

TEST_F(Simulation, ARateOfNothingStillDrawsItsChance) {
    MakeEmission(0, true);
    Start("parent");
    SeedRandom(5);
    Step(2, 0.25f);
    EXPECT_TRUE(HasDrawn(2, 5));
    EXPECT_EQ(Count(), 1);
}

TEST_F(Simulation, ChildrenStartInTheTurnedAndScaledVolume) {
    const auto [spark, emitter] = MakeEmission(4, false);
    emitter.emit.volume = {8, 4, 2};
    emitter.scale = {2, 3, 5};
    const D3DXVECTOR3 axis(0, 0, 1);
    D3DXQuaternionRotationAxis(&emitter.start_rotation, &axis, 1.5707963f);   // x to y, y to -x
    Start("parent", {100, 200, 300});
    SeedRandom(9);
    Step(1, 0.25f);
    SeedRandom(9);
    ASSERT_EQ(At(1).sub_effect, &spark);
    EXPECT_NEAR(At(1).base_position.y, 200 + RandomRange(-0.5, 0.5) * 16, 1e-4);
    EXPECT_NEAR(At(1).base_position.x, 100 - RandomRange(-0.5, 0.5) * 12, 1e-4);
    EXPECT_NEAR(At(1).base_position.z, 300 + RandomRange(-0.5, 0.5) * 10, 1e-4);
}

TEST_F(Simulation, EmittedInstancesAgeFromTheNextUpdateOn) {
    const auto [spark, emitter] = MakeEmission(2, false);
    spark.start_time = 0.5;
    Start("parent");
    Step(1, 0.75f);
    EXPECT_THAT(Times(spark), ElementsAre(0.75f));
    Step(1, 0.125f);
    EXPECT_THAT(Times(spark), ElementsAre(0.875f));
}

TEST_F(Simulation, StartsWithTheChildrenOfItsPast) {
    const auto [spark, emitter] = MakeEmission(4, false);
    emitter.start_time = 1;
    MoveLinearly(emitter, {8, 0, 0});
    Start("parent");
    EXPECT_THAT(Times(spark), ElementsAre(0.125f, 0.375f, 0.625f, 0.875f));
    EXPECT_EQ(At(4).base_position, D3DXVECTOR3(8, 0, 0));
    emitter.birth_time = 2;
    Start("parent");
    EXPECT_EQ(Times(spark).size(), 4u);   // not yet born: nothing yet
}

TEST_F(Simulation, DropsWhatGoesBeyondTheEmissionBuffer) {
    VisualEffect& child = AddEffect(definitions, "child");
    ParticleEffect& spark = AddParticle(child);
    VisualEffect& parent = AddEffect(definitions, "parent");
    EmitInto(AddParticle(parent), child, 1e9f, true);
    EmitInto(AddParticle(parent), child, 1e9f, false);
    Start("parent");
    SeedRandom(3);
    Step(1, 0.25f);
    EXPECT_EQ(Times(spark).size(), 256u);
    EXPECT_TRUE(HasDrawn(1 + 256 + 256 * (3 + 4), 3)) << "nothing for the dropped ones";
}

TEST_F(Simulation, DetailFilterStopsMotionAndEmissionButNotAgeing) {
    const auto [spark, emitter] = MakeEmission(8, false);
    MoveLinearly(emitter, {8, 0, 0});
    emitter.detail_level = 60;
    emitter.life = 1;
    simulation.SetDetailLevel(50);
    Start("parent");
    Step(1, 0.5f);
    EXPECT_EQ(At(0).position, D3DXVECTOR3());
    EXPECT_EQ(At(0).time, 0.5);
    EXPECT_TRUE(Times(spark).empty());
    simulation.SetDetailLevel(60);
    Step(1, 0.25f);
    EXPECT_EQ(At(0).position, D3DXVECTOR3(6, 0, 0));
    EXPECT_EQ(Times(spark).size(), 2u);
    simulation.SetDetailLevel(59);
    Step(1, 0.5f);
    EXPECT_TRUE(Times(emitter).empty());
}

TEST_F(Simulation, SpecialsThatFeedTracesShareOneKeyBaseAStart) {
    VisualEffect& effect = AddEffect(definitions, "trail");
    AddParticle(effect).emit.trace_number = 1;
    AddSpecial(effect);
    for (const int id : {0, 2}) {
        SpecialEffect& special = AddSpecial(effect);
        special.trace.id = id;
        special.emit.trace_number = 1;
    }
    Start("trail");
    Start("trail");
    const auto keys = [&](int index) {
        return Of(*effect.specials.GetAt(index), [](const VisualEffectObject& object) { return object.trace_key; });
    };
    EXPECT_EQ(At(0).trace_key, -1);
    EXPECT_THAT(keys(0), ElementsAre(-1, -1));
    EXPECT_THAT(keys(1), ElementsAre(3, 6));
    EXPECT_THAT(keys(2), ElementsAre(5, 8));
    for (int i = 2; i < 683; ++i) Start("trail");
    EXPECT_EQ(keys(1).back(), 1);   // 3 * 683 = 2049 of 2048
}

TEST_F(Simulation, TraceEmissionsTakeTheirDrawsAndRecords) {
    ParticleEffect& emitter = AddParticle(AddEffect(definitions, "trail"));
    emitter.emit.trace_number = 1;
    emitter.emit.per_time = 8;
    Start("trail");
    SeedRandom(4);
    Step(1, 0.25f);
    EXPECT_TRUE(HasDrawn(3, 4)) << "the chance, two jitters";
}

TEST_F(Simulation, StopsAtTheInstanceLimitWithOneWarning) {
    ParticleEffect& sub = AddParticle(AddEffect(definitions, "billion"));
    sub.count = 1000000000;
    simulation.SetLimits({.live_instances = 1500});
    Start("billion");
    Start("billion");
    Step(3, 0.1f);
    EXPECT_EQ(Count(), 1500);
    EXPECT_THAT(reports.All(),
                ElementsAre("warning TestReporter: Too many instances: effect 'billion' is not started any more, the "
                            "limit is 1500 live instances"));
}

/// Instances of an effect that starts itself with its children of the last `age` seconds, `levels` deep.
int CountSelfEmitted(double age, int levels, double per_time, double start_time) {
    int count = 1;
    const int children = static_cast<int>(age * per_time);
    for (int k = 0; k < children && levels > 0; ++k)
        count += CountSelfEmitted((k + 0.5) * age / children + start_time, levels - 1, per_time, start_time);
    return count;
}

TEST_F(Simulation, AnEffectThatEmitsItselfEnds) {
    const std::tuple<const char*, EffectLimits, float, int> kRows[] = {
        {"3 effects that start in one another", {90000, 90000, 3}, 2, CountSelfEmitted(1, 3, 2, 1)},
        {"3000 live instances", {3000, 9000, 9000}, 50, 3000},
        {"700 starts at once", {9000, 700, 9000}, 50, 700}};
    for (const auto& [what, limits, per_time, instances] : kRows) {
        EffectDefinitions own;
        EffectSimulation own_simulation(reporter);
        own_simulation.SetLimits(limits);
        ParticleEffect& sub = AddParticle(AddEffect(own, what));
        sub.start_time = 1;
        EmitInto(sub, *sub.owner, per_time, false);
        reports.Clear();
        own_simulation.StartEffect(*sub.owner, {});
        EXPECT_EQ(own_simulation.Instances().Count(), instances) << what;
        EXPECT_THAT(reports.All(), ElementsAre(EndsWith(what)));
    }
}

TEST_F(Simulation, EndlessStartsOfNothingEnd) {
    VisualEffect& nothing = AddEffect(definitions, "nothing");
    ParticleEffect& emitter = AddParticle(AddEffect(definitions, "emitter"));
    EmitInto(emitter, nothing, 1e9f, false);
    emitter.start_time = 1;
    simulation.SetLimits({.starts = 2000});
    Start("emitter");
    EXPECT_EQ(Count(), 1);
    EXPECT_EQ(reports.All().size(), 1u);
}

TEST_F(Simulation, ClearStartsTheClockAndTheKeysAgain) {
    VisualEffect& effect = AddEffect(definitions, "trail");
    SpecialEffect& special = AddSpecial(effect);
    special.emit.trace_number = 1;
    Start("trail");
    Step(1, 0.5f);
    simulation.Clear();
    EXPECT_EQ(Count(), 0);
    EXPECT_EQ(simulation.SystemTime(), 0);
    Start("trail");
    EXPECT_EQ(At(0).trace_key, 3);
}

TEST_F(Simulation, OddTimesAndRatesAreSurvived) {
    VisualEffect& child = AddEffect(definitions, "child");
    AddParticle(child).life = 0.1;
    VisualEffect& parent = AddEffect(definitions, "parent");
    for (const float rate : {-10.0f, std::nanf(""), std::numeric_limits<float>::infinity(), 1e-40f, 3.0f}) {
        for (const bool random : {false, true}) {
            ParticleEffect& sub = AddParticle(parent);
            EmitInto(sub, child, rate, random);
            sub.start_time = 1e30;
        }
    }
    simulation.SetLimits({.live_instances = 5000});
    Start("parent");
    for (const float step : {0.0f, -1.0f, 1e30f, std::nanf(""), std::numeric_limits<float>::infinity()})
        simulation.Update(step);
    EXPECT_LE(Count(), 5000);
}

}   // namespace
}   // namespace sparkrig
