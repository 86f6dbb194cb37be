// Limits and the keys of traces; all else: store_test.cpp.
#include "effects/effect_simulation.h"

#include "base/random.h"
#include "tests/effects/definitions_builder.h"
#include "tests/support/test.h"

namespace sparkrig {
namespace {

struct TestReporter : ErrorClass {
    TestReporter() { SetName("TestReporter"); }
};

struct Simulation : testing::Test {
    int Count() const { return simulation.Instances().Count(); }
    int TraceKey(int id) const { return GetInstance(simulation.Instances(), id).trace_key; }
    /// Whether the generator, seeded with 3, gives the next number after so many draws.
    static bool HasDrawn(int draws) {
        const std::uint32_t next = RandomUInt32();
        SeedRandom(3);
        for (int i = 0; i < draws; ++i) Random01();
        return RandomUInt32() == next;
    }

    Reports reports;
    TestReporter reporter;
    EffectDefinitions definitions;
    EffectSimulation simulation{reporter};
    VisualEffect &child = AddEffect(definitions, "child"), &parent = AddEffect(definitions, "parent");
};

TEST_F(Simulation, DropsWhatGoesBeyondTheEmissionBuffer) {
    AddParticle(child);
    for (const bool random : {true, false}) EmitInto(AddParticle(parent), child, 1e9f, random);
    simulation.StartEffect(parent, {});
    SeedRandom(3);
    simulation.Update(0.25f);
    EXPECT_EQ(Count(), 2 + 256);
    EXPECT_TRUE(HasDrawn(1 + 256 + 256 * (3 + 4))) << "nothing for the dropped ones";
}

TEST_F(Simulation, SpecialsThatFeedTracesShareOneKeyBaseAStart) {
    AddParticle(parent).emit.trace_number = 1;
    AddSpecial(parent);
    for (const int id : {0, 2}) {
        SpecialEffect& special = AddSpecial(parent);
        special.trace.id = id;
        special.emit.trace_number = 1;
    }
    for (const int times : {0, 1}) {
        for (const auto& [start, key] : {std::pair(0, 3), {1, 6}, {2, 9}}) {
            simulation.StartEffect(parent, {});
            EXPECT_EQ(TraceKey(4 * start), -1);
            EXPECT_EQ(TraceKey(4 * start + 1), -1);
            EXPECT_EQ(TraceKey(4 * start + 2), key);
            EXPECT_EQ(TraceKey(4 * start + 3), key + 2);
        }
        simulation.Update(0.5f);
        for (int i = 3; i < 683; ++i) simulation.StartEffect(parent, {});
        EXPECT_EQ(TraceKey(Count() - 2), 1) << times;   // 3 * 683 = 2049 of 2048
        simulation.Clear();                             // and all begins again
        EXPECT_EQ(Count(), 0);
        EXPECT_EQ(simulation.SystemTime(), 0);
    }
}

TEST_F(Simulation, TraceEmissionsTakeTheirDraws) {
    ParticleEffect& emitter = AddParticle(parent);
    emitter.emit.trace_number = 1;
    emitter.emit.per_time = 8;
    simulation.StartEffect(parent, {});
    SeedRandom(3);
    simulation.Update(0.25f);
    EXPECT_TRUE(HasDrawn(3)) << "the chance, two jitters";
}

/// Instances of an effect that starts itself with its children of the last `age` seconds, `levels` deep.
int CountSelfEmitted(double age, int levels, double per_time, double start_time) {
    int count = 1;
    const int children = static_cast<int>(age * per_time);
    for (int k = 0; k < children && levels > 0; ++k)
        count += CountSelfEmitted((k + 0.5) * age / children + start_time, levels - 1, per_time, start_time);
    return count;
}

TEST_F(Simulation, EveryLimitEndsItWithOneWarning) {
    const std::tuple<const char*, EffectLimits, int, float, bool, int> kRows[] = {
        {"3 effects that start in one another", {90000, 90000, 3}, 1, 2, true, CountSelfEmitted(1, 3, 2, 1)},
        {"3000 live instances", {3000, 9000, 9000}, 1, 50, true, 3000},
        {"700 starts at once", {9000, 700, 9000}, 1, 50, true, 700},
        {"1500 live instances", {.live_instances = 1500}, 1000000000, 0, true, 1500},
        {"2000 starts at once", {.starts = 2000}, 1, 1e9f, false, 1}};   // of an effect that has nothing
    for (const auto& [what, limits, count, per_time, itself, instances] : kRows) {
        EffectDefinitions own;
        EffectSimulation own_simulation(reporter);
        own_simulation.SetLimits(limits);
        ParticleEffect& sub = AddParticle(AddEffect(own, "e"));
        sub.start_time = 1;
        sub.count = count;
        EmitInto(sub, itself ? *sub.owner : AddEffect(own, "nothing"), per_time, false);
        reports.Clear();
        own_simulation.StartEffect(*sub.owner, {});
        EXPECT_EQ(own_simulation.Instances().Count(), instances) << what;
        own_simulation.StartEffect(*sub.owner, {});
        EXPECT_THAT(reports.All(), ElementsAre(StartsWith("warning TestReporter: Too many instances: effect '")));
        EXPECT_THAT(reports.Last(), EndsWith(std::string("the limit is ") + what));
    }
}

}   // namespace
}   // namespace sparkrig
