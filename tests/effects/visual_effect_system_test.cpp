// The system as its users see it; then limits and the keys of traces. How instances live: store_test.cpp.

#include "effects/visual_effect_system.h"
#include "base/random.h"
#include "effects/effect_simulation.h"
#include "effects/visual_effect_system_parts.h"
#include "tests/effects/definitions_builder.h"
#include "tests/support/temporary_folder.h"

namespace sparkrig {
namespace {

class System : public testing::Test {
  protected:
    void Load(const std::string& text, bool keep) {
        system.LoadEffects(ScratchFolder().Write("effects.cfg", text).c_str(), keep);
    }
    std::vector<std::string> Playing() const {
        std::vector<std::string> playing;
        for (const EffectInstanceState& state : system.GetInstanceStates())
            playing.push_back(std::to_string(state.id) + " " + state.effect.c_str() + " " + std::to_string(state.kind) +
                              "." + std::to_string(state.sub_index));
        return playing;
    }

    VisualEffectSystem system;
};

constexpr char kThree[] = "#a\ndesc=\"a\"\nPARTICLE {\n}\nPARTICLE {\n}\nMESH {\n}\n#b\ndesc=\"b\"\nPARTICLE {\n}\n";

TEST_F(System, NamesEffectsInTheOrderOfTheFile) {
    Load(kThree, false);
    EXPECT_EQ(system.GetEffectCount(), 2);
    EXPECT_STREQ(system.GetEffectName(1).c_str(), "b");
    EXPECT_STREQ(system.GetEffectName(2).c_str(), "");
    EXPECT_STREQ(system.GetEffectName(-1).c_str(), "");
    EXPECT_EQ(ErrorOf([&] { system.StartEffect("c", {}); }), "VisualEffectSystem: Effect 'c' not found");
}

TEST_F(System, AReloadThatKeepsInstancesBindsThemByNameKindAndPlace) {
    Load(kThree, false);
    system.StartEffect("a", {});
    system.StartEffect("b", {});
    EXPECT_THAT(Playing(), ElementsAre("0 a 2.0", "1 a 2.1", "2 a 1.0", "3 b 2.0"));
    system.Update(0.5f);
    // b is gone, a has lost its second particle, its first one has a position
    Load("#c\ndesc=\"c\"\n#a\ndesc=\"A\"\nMESH {\nLife = 0.25\n}\nPARTICLE {\npos = 3, 4, 5\n}\n", true);
    EXPECT_THAT(Playing(), ElementsAre("0 A 2.0", "2 A 1.0"));
    EXPECT_EQ(system.SystemTime(), 0.5);
    system.Update(0.25f);
    EXPECT_THAT(Playing(), ElementsAre("0 A 2.0"));   // the mesh has outlived its new life
    const EffectInstanceState state = system.GetInstanceStates().front();
    EXPECT_EQ(state.time, 0.75);
    EXPECT_EQ(state.position, D3DXVECTOR3(3, 4, 5));
    EXPECT_THROW(Load("#a\n", true), ErrorMsg);
    system.Update(0.25f);
    EXPECT_THAT(Playing(), ElementsAre("0 A 2.0")) << "a reload that fails leaves it as it is";
    Load(kThree, false);
    EXPECT_THAT(Playing(), IsEmpty());
    EXPECT_EQ(system.SystemTime(), 0);
    Reports reports;
    for (int i = 0; i < 2; ++i) {
        Load("#a\ndesc=\"a\"\nPARTICLE {\nCount = 1000000000\n}\n", false);
        for (int start = 0; start < 2; ++start) system.StartEffect("a", {});
    }
    EXPECT_EQ(reports.All().size(), 2u) << "too many instances: said once after each load";
}

TEST_F(System, StatesShowWhatAnInstanceStoresAndItsColourAndAngle) {
    Load(
        "#a\ndesc = \"a\"\nPARTICLE {\ncol = 0.25, 0.5, 2\nBirthTime = 0.5\nROTATION {\ntype = \"linear\"\n"
        "scale = 2, 0, 0\n}\nCOLOR {\ntype = \"linear\"\nConcatType = \"add\"\n}\n}\n",
        false);
    SeedRandom(3);
    system.StartEffect("a", {7, 8, 9});
    system.Update(0.25f);
    EffectInstanceState state = system.GetInstanceStates().front();
    EXPECT_EQ(state.angle, 0);
    EXPECT_EQ(state.colour, D3DXVECTOR3(0.25f, 0.5f, 2));
    EXPECT_EQ(state.scale, D3DXVECTOR3());
    system.Update(0.75f);
    state = system.GetInstanceStates().front();
    EXPECT_EQ(state.birth_delay, 0.5);
    EXPECT_EQ(state.angle, 1);
    EXPECT_EQ(state.colour, D3DXVECTOR3(0.375f, 0.75f, 3));
    EXPECT_EQ(state.base, D3DXVECTOR3(7, 8, 9));
    EXPECT_NEAR(state.rotation.x, 0.47942554, 1e-6);
    SeedRandom(3);
    for (const float random : state.random) EXPECT_EQ(random, static_cast<float>(Random01()));
}

// ---- The simulation

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
