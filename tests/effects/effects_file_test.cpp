#include <sstream>
#include <string>

#include "effects/effects_file.h"
#include "scene/object_3d.h"
#include "tests/effects/definitions_builder.h"
#include "tests/support/cases.h"
#include "tests/support/temporary_folder.h"

namespace sparkrig {
namespace {

class EffectsFile : public testing::Test {
  protected:
    /// Reads the text as an effects file; false when an error ended it.
    bool Load(const std::string& text) {
        reports.Clear();
        definitions.Clear();
        const ScratchFolder folder;
        const std::string file = folder.Write("effects.cfg", text);
        return ErrorOf([&] { LoadEffectsFile(file.c_str(), reporter, definitions); }) == "no error";
    }
    /// Of the one effect that the lines define.
    VisualEffect& LoadEffect(const std::string& lines) {
        EXPECT_TRUE(Load("#one\n desc = \"one\"\n" + lines)) << reports.Last();
        return *definitions.effects.Find("one");
    }
    ParticleEffect& LoadParticle(const std::string& lines) {
        return *LoadEffect(" PARTICLE {\n" + lines + "\n }\n").particles.Get(0);
    }
    VisualEffectMotion& LoadStage(const char* block, const std::string& lines) {
        const ParticleEffect& particle =
            LoadParticle(std::string("  ") + block + " {\n type = \"linear\"\n" + lines + "\n }");
        for (const MotionChannel* channel : {&particle.position_stages, &particle.rotation_stages,
                                             &particle.scale_stages, &particle.colour_stages, &particle.alpha_stages})
            if (channel->GetCount() > 0) return *channel->Get(0);
        throw std::logic_error("no stage");
    }

    TestReporter reporter;
    EffectDefinitions definitions;
    Reports reports{[](const Report& report) { return std::to_string(report.place.line) + ": " + report.message; }};
};

/// A vector as one number that no two vectors of small numbers share.
double Digits(const D3DXVECTOR3& v) { return v.x + 10 * v.y + 100 * v.z; }

template <class... Values>
std::string Joined(const Values&... values) {
    std::ostringstream text;
    ((text << values << ' '), ...);
    return text.str();
}

TEST_F(EffectsFile, EntriesStandInTheOrderOfTheFile) {
    ASSERT_TRUE(Load("; a comment\n#b\ndesc = \"Second\"\n#a\ndesc=\"first\"\n#c\ndesc = \"Third\"\n"));
    ASSERT_EQ(definitions.names.GetCount(), 3);
    EXPECT_STREQ(definitions.names.GetAt(0)->c_str(), "Second");
    EXPECT_STREQ(definitions.names.GetAt(1)->c_str(), "first");
    EXPECT_EQ(definitions.effects.Find("THIRD")->file_entry, 2);
    EXPECT_EQ(definitions.effects.Find("Thir"), nullptr);
}

TEST_F(EffectsFile, AnEntryHasItsOwnKeysAndManyChildrenInAnyOrder) {
    std::string lines = " sound = \"boom\"\n AmbiSound = \"wind\"\n scale = 2, 3, 4\n child5 = \"the first counts\"\n";
    for (int i = 20000; i > 0; --i) lines += " child" + std::to_string(i) + " = \"c" + std::to_string(i) + "\"\n";
    const VisualEffect& effect = LoadEffect(lines + " child20002 = \"a gap\"\n child05 = \"no number\"\n");
    EXPECT_STREQ(effect.sound.c_str(), "boom");
    EXPECT_STREQ(effect.ambient_sound.c_str(), "wind");
    EXPECT_EQ(effect.scale, D3DXVECTOR3(2, 3, 4));
    ASSERT_EQ(effect.children.GetCount(), 20000);
    EXPECT_STREQ(effect.children.GetAt(19998)->c_str(), "c19999");
    EXPECT_STREQ(effect.children.GetAt(4)->c_str(), "the first counts");
}

TEST_F(EffectsFile, KeysFillTheFieldsOfASubEffectOrLeaveTheirDefaults) {
    const auto fields = [](const ParticleEffect& s) {
        return Joined(Digits(s.colour), Digits(s.scale), Digits(s.position_offset), s.birth_time, s.birth_count_offset,
                      s.start_time, s.sort_distance_offset, s.sort_class, s.z_sort, s.life, s.life_count.KeyCount(),
                      s.fade_in, s.fade_out, s.billboard, s.rotate_with_view, s.rotate_with_parent, s.use_z_buffer,
                      s.write_z_buffer, s.detail_level, s.random_mirror[0], s.random_mirror[2],
                      s.random_reverse_rotation, s.count, s.count_type == CountType::Random, s.speed);
    };
    const ParticleEffect& without = LoadParticle("");
    EXPECT_EQ(fields(without), "111 111 0 0 0 0 0 0 1 0 0 0 0 2 0 1 1 1 0 0 0 0 1 0 1 ");
    EXPECT_EQ(without.owner, definitions.effects.Find("one"));
    EXPECT_EQ(without.start_rotation, D3DXQUATERNION());
    EXPECT_FLOAT_EQ(without.vertical_size, 32 * 1.41421356f / 1.4142f);
    const ParticleEffect& with = LoadParticle(
        "col = 0.5, 0.25, 2\n scale = 2, 3, 4\n pos = 5, 6, 7\n BirthTime = 0.25\n BirthCountOff = 2.5\n"
        "StartTime = 1.5\n SortDistOff = -7.5\n SortClass = 40000\n zsort = 0\n Life = 3.5\n"
        "LifeCountBez = 0, 0.5, 1, 1.5\n FadeIn = 0.125\n FadeOut = 0.75\n BillBoard = 3\n RotateWithView = 1\n"
        "RotateWithParent = 0\n UseZBuf = 0\n WriteZBuf = 0\n DetailLevel = 60\n RandomMirrorX = 1\n"
        "RandomMirrorZ = 1\n RandomReverseRot = 1\n Count = 12\n CountType = \"random\"\n Speed = 0.5\n"
        "texture = \"spark\"\n RotAxis = 0, 2, 0\n RotAngle = 90\n");
    EXPECT_EQ(fields(with), "203 432 765 0.25 2.5 1.5 -7.5 40000 0 3.5 2 0.125 0.75 3 1 0 0 0 60 1 1 1 12 1 0.5 ");
    EXPECT_STREQ(with.texture_name.c_str(), "spark");
    EXPECT_NEAR(with.start_rotation.y, 0.70710678, 1e-6);
    const ParticleEffect& bad = LoadParticle("scale = 2, 3\n pos = 4\nBillBoard = 65537\nSortClass = -1");
    EXPECT_EQ(bad.scale, D3DXVECTOR3(1, 1, 1)) << "two components are not three";
    EXPECT_EQ(bad.position_offset, D3DXVECTOR3());
    EXPECT_EQ(bad.billboard, 65535);
    EXPECT_EQ(bad.sort_class, 0);
    EXPECT_THAT(reports.All(),
                ElementsAre("7: SortClass at line 7 is -1, which does not fit into 16 bits: 0 is taken",
                            "6: BillBoard at line 6 is 65537, which does not fit into 16 bits: 65535 is taken"));
}

TEST_F(EffectsFile, ReadsTheKeysOfMeshesAndSpecials) {
    const VisualEffect& effect = LoadEffect(
        "SPARKS {\ntype = 3\nDEEPER {\n}\n}\n;MESH {\n}\nMESH {\n sFile = \"models\\\\rock.3sc\"\n loop = 1\n}\n"
        "SPECIAL {\n texture = \"drop\"\n col = 1, 0.5, 0\n col2 = 0, 0.25, 2\n numPart = 77\n PartSize = 2.5\n"
        "type = \"splash\"\n}\nspecial {\n col = 1, 0.5, 0\n type = \"none\"\n}\n");
    EXPECT_TRUE(effect.meshes.Get(0)->loop);
    EXPECT_EQ(effect.meshes.Get(0)->billboard, 0);
    EXPECT_STREQ(effect.meshes.Get(0)->scene_file.c_str(), "models\\\\rock.3sc");
    const SpecialEffect &special = *effect.specials.Get(0), &plain = *effect.specials.Get(1);
    EXPECT_STREQ(special.texture_name.c_str(), "drop");
    EXPECT_EQ(special.second_colour, 0xFF003FFEu);
    EXPECT_EQ(special.point_count, 77);
    EXPECT_EQ(special.point_size, 2.5f);
    EXPECT_EQ(special.type, SpecialType::Splash);
    EXPECT_EQ(plain.second_colour, 0xFFFF7F00u) << "a copy of the first";
    EXPECT_EQ(plain.index, 1);
    EXPECT_EQ(plain.point_count, 32);
    EXPECT_EQ(plain.point_size, 1);
    EXPECT_EQ(plain.billboard, 0);
    EXPECT_EQ(LoadEffect("SPECIAL {\n type = \"wave\"\n }").specials.Get(0)->second_colour, 0xFFFFFFFFu);
}

TEST_F(EffectsFile, EntryScaleMultipliesScaleAndVerticalSize) {
    const VisualEffect& effect = LoadEffect(
        " scale = 3, 4, 5\nPARTICLE {\nscale = 2, 3, 4\nvsize = 10\nPOSITION {\ntype = \"linear\"\nscale = 1, 10, "
        "100\n}\n"
        "SCALE {\ntype = \"linear\"\nscale = 1, 10, 100\n}\n}\n");
    const ParticleEffect& sub = *effect.particles.Get(0);
    EXPECT_EQ(sub.scale, D3DXVECTOR3(6, 12, 20));
    EXPECT_FLOAT_EQ(sub.vertical_size, 10 * 5 / 1.4142f);
    EXPECT_EQ(sub.position_stages.Get(0)->scale, D3DXVECTOR3(6, 120, 2000));
    EXPECT_EQ(sub.scale_stages.Get(0)->scale, D3DXVECTOR3(1, 10, 100));
}

TEST_F(EffectsFile, ATransformObjectIsANodeWithKeys) {
    const auto load = [&](const char* name) {
        return LoadParticle(std::string("TransformObjectFile = \"models\\rock.kva\"\nTransformObjectName = \"") + name +
                            "\"")
            .transform_object;
    };
    EXPECT_EQ(load("Pebble"), nullptr);
    const auto rock = load("Rock");
    ASSERT_TRUE(rock);
    EXPECT_EQ(rock->Parent(), nullptr);
    EXPECT_EQ(rock->PositionAt(1), D3DXVECTOR3(30, 5, 40));
    EXPECT_NEAR(rock->ScaleAt(1).y, 0.8, 1e-5);
}

TEST_F(EffectsFile, ReadsTheKeysOfAStage) {
    const VisualEffectMotion s = LoadStage(
        "rotation",
        "TimeOff = 0.25\n TimeCountOff = 0.5\n SpeedCountOff = 0.75\n SpeedLocalCountOff = 1.25\n Speed = 1.5\n"
        "SpeedLocal = 1.75\n TimeScale = 2, 3, 4\n TransformTimeScale = 0\n scale = 5, 6, 7\n TimeMinMax = -1, 2\n"
        "RotAxis = 0, 0, 2\n RotAngle = 90\n Offset = 8, 9, 10\n ConcatType = \"multiply\"");
    EXPECT_EQ(
        Joined(s.time_offset, s.time_count_offset, s.speed_count_offset, s.local_speed_count_offset, s.speed,
               s.local_speed, s.time_scale.inverse, s.time_scale.constant, s.time_scale.linear,
               s.time_scale_uses_stage_time, Digits(s.scale), s.time_minimum, s.time_maximum, s.transform.m[3][2]),
        "0.25 0.5 0.75 1.25 1.5 1.75 2 3 4 0 765 -1 2 10 ");
    EXPECT_FLOAT_EQ(s.rotation_angle, 1.5707963f);
    EXPECT_FLOAT_EQ(s.transform.m[0][1], 1);
    EXPECT_TRUE(s.uses_transform);
    EXPECT_EQ(s.concat, ConcatType::Multiply);
    const std::pair<const char*, ConcatType> kChannels[] = {{"POSITION", ConcatType::Add},
                                                            {"Rotation", ConcatType::Rotate},
                                                            {"SCALE", ConcatType::Multiply},
                                                            {"COLOR", ConcatType::Multiply},
                                                            {"alpha", ConcatType::Multiply}};
    for (const auto& [block, concat] : kChannels) {
        const VisualEffectMotion stage = LoadStage(block, "");
        EXPECT_EQ(stage.concat, concat) << block;
        EXPECT_FALSE(stage.uses_transform);
        EXPECT_EQ(stage.time_minimum, -89999998976.0f);
    }
}

TEST_F(EffectsFile, CurveTangentsKnowTheLoop) {
    const char curve_keys[] = "type = \"bezier\"\ncurve = 0,1,2,3, 1,5,6,7\ncurveLoopTime = 3";
    EXPECT_EQ(LoadStage("POSITION", curve_keys).type, AnimationType::Linear) << "the first key of a name counts";
    const ParticleEffect& sub = LoadParticle(std::string("POSITION {\n") + curve_keys + "\n}");
    const VectorCurve& curve = sub.position_stages.Get(0)->curve;
    ASSERT_EQ(curve.KeyCount(), 2);
    EXPECT_EQ(curve.GetKey(0).in[0], -2);
    float value[3];
    curve.EvaluateCurve(3, value);
    EXPECT_EQ(value[2], 3);
    std::string list = "0, 0.5";
    for (int i = 1; i < 500; ++i) list += ", " + std::to_string(i) + ", 1.5";
    EXPECT_EQ(LoadParticle("LifeCountBez = " + list).life_count.KeyCount(), 500);
}

TEST_F(EffectsFile, BlendTypeDependsOnWordKindAndTrace) {
    // clang-format off
    const std::tuple<const char*, const char*, int> kRows[] = {
        {"PARTICLE", "", 9},
        {"PARTICLE", "BlendType = \"ADDITIVE\"", 3},
        {"PARTICLE", "BlendType = \"subtractive\"", 5},
        {"PARTICLE", "BlendType = \"strange\"", 9},
        {"PARTICLE", "EmitEffect = \"trace:glow\"", 3},
        {"PARTICLE", "EmitEffect = \"trace:glow\"\nBlendType = \"default\"", 9},
        {"MESH", "", 7},
        {"MESH", "BlendType = \"additive\"", 12},
        {"MESH", "BlendType = \"subtractive\"", 17},
        {"MESH", "EmitEffect = \"trace:glow\"", 3},
        {"SPECIAL", "type = \"none\"\nBlendType = \"additive\"", 3},
    };
    // clang-format on
    for (const auto& [block, lines, mode] : kRows) {
        const std::string text = std::string(block) + " {\n" + lines + "\n}\n";
        ForEachSubEffect(LoadEffect(text),
                         [&text, mode = mode](const SubEffect& sub) { EXPECT_EQ(sub.blend_mode, mode) << text; });
    }
}

TEST_F(EffectsFile, EmissionKeysNeedAnEmitEffect) {
    const std::string keys =
        "EmitEffectPerTime = 8\nEmitEffectRand = 0\nEmitEffectLocal = 1\nEmitEffectVolume = 2, 3, 4\n"
        "TraceEffectLifeTime = 0.5\nTraceEffectFlag = 1\nTraceEffectId = 2\nTraceEffectTexScale = 3\n";
    const auto fields = [](const ParticleEffect& s) {
        return Joined(s.emit.per_time, s.emit.random, s.emit.local, Digits(s.emit.volume), s.trace.life_time,
                      s.trace.flag, s.trace.id, s.trace.texture_scale);
    };
    EXPECT_EQ(fields(LoadParticle(keys)), fields(LoadParticle("")));
    // The effect that is named may stand later in the file.
    ASSERT_TRUE(Load("#a\ndesc=\"a\"\nPARTICLE {\nEmitEffect = \"B\"\n" + keys + "}\n#b\ndesc=\"b\"\n"));
    const ParticleEffect& with = *definitions.effects.Find("a")->particles.Get(0);
    EXPECT_EQ(with.emit.effect, definitions.effects.Find("b"));
    EXPECT_EQ(fields(with), "8 0 1 432 0.5 1 2 3 ");
    EXPECT_EQ(fields(LoadParticle("")), "0 1 0 0 1 0 0 1 ");
}

TEST_F(EffectsFile, TracesAreNumberedThroughTheFileByTheirId) {
    const auto trace = [](const char* block, int id) {
        return std::string(block) +
               " {\ntype = \"none\"\nEmitEffect = \"trace:t\"\nTraceEffectId = " + std::to_string(id) + "\n}\n";
    };
    ASSERT_TRUE(Load("#b\ndesc=\"b\"\n" + trace("MESH", 0) + trace("SPECIAL", 3) + trace("PARTICLE", 0) +
                     trace("PARTICLE", -1) + "#a\ndesc=\"a\"\n" + trace("SPECIAL", 0) + trace("SPECIAL", 2)));
    const VisualEffect &a = *definitions.effects.Find("a"), &b = *definitions.effects.Find("b");
    const auto number = [](const SubEffect* sub) { return sub->emit.trace_number; };
    EXPECT_EQ(Joined(number(a.specials.Get(0)), number(b.particles.Get(0)), number(b.specials.Get(0)),
                     number(b.meshes.Get(0)), number(a.specials.Get(1)), number(b.particles.Get(1))),
              "1 2 3 4 1 2 ")
        << "by name, not by place in the file; -1 counts as 2";
    EXPECT_EQ(b.particles.Get(0)->emit.effect, nullptr);
}

TEST_F(EffectsFile, EachErrorHasItsTextAndLine) {
    const std::vector<Case> cases = ReadCases("tests/effects/errors.txt");
    ASSERT_GT(cases.size(), 10u);
    for (const auto& [report, text] : cases) {
        EXPECT_FALSE(Load(text)) << text;
        EXPECT_EQ(reports.Last(), report);
    }
    EXPECT_THROW(LoadEffectsFile("no/such/effects.cfg", reporter, definitions), ErrorMsg);
    EXPECT_EQ(reports.Last(), "0: Can not open file 'no/such/effects.cfg': ");
}

TEST_F(EffectsFile, ACheckFindsEveryMistakeAtItsPlace) {
    Reports places([](const Report& report) {
        return std::to_string(report.place.line) + ":" + std::to_string(report.place.column) + " " + report.message;
    });
    std::string things;
    for (const NamedThing& thing : CheckEffectsFile("tests/effects/mistakes.cfg", reporter, definitions))
        things += thing.name + "@" + std::to_string(thing.place.line) + ":" + std::to_string(thing.place.column) + " ";
    EXPECT_EQ(things, "none.png@6:16 none.png@24:16 t@25:19 rock.3sc@40:14 t@44:19 ");
    std::vector<std::string> expected;
    std::ifstream file("tests/effects/mistakes.txt");
    for (std::string line; std::getline(file, line);) expected.push_back(line);
    EXPECT_THAT(places.All(), testing::UnorderedElementsAreArray(expected));
}

TEST_F(EffectsFile, CutShortAtEveryLengthItLoadsOrReports) {
    const std::string text =
        "#a\ndesc = \"x\"\nPARTICLE {\nLife = 2\nALPHA {\ntype = \"bezier\"\n"
        "curve = 0,1,1,1, 1,0,0,0\n}\n}\n##b\ndesc = \"y\"\nSPECIAL {\ntype = \"wave\"\n}\n";
    for (std::size_t length = 0; length <= text.size(); ++length) {
        const bool loaded = Load(text.substr(0, length));
        EXPECT_TRUE(loaded || !reports.All().empty()) << length;
    }
    EXPECT_THAT(reports.All(), IsEmpty());
}

}   // namespace
}   // namespace sparkrig
