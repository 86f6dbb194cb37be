#include "effects/visual_effect_system.h"

#include "base/random.h"
#include "effects/visual_effect_system_parts.h"
#include "tests/effects/effects_file_text.h"

namespace sparkrig {
namespace {

class System : public testing::Test {
  protected:
    void Load(const std::string& text, bool keep) { system.LoadEffects(EffectsFileOf(text).Name(), keep); }
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
    Load(R"(#a
        desc = "a"
        PARTICLE {
            col = 0.25, 0.5, 2
            BirthTime = 0.5
            ROTATION {
                type = "linear"
                scale = 2, 0, 0
            }
            COLOR {
                type = "linear"
                ConcatType = "add"
            }
        })",
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

}   // namespace
}   // namespace sparkrig
