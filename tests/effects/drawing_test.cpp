#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <numeric>
#include <random>

#include "effects/draw_order.h"
#include "effects/particle_vertices.h"
#include "effects/visual_effect_system.h"
#include "scene/camera.h"
#include "tests/effects/reference.h"
#include "tests/support/picture_files.h"
#include "tests/support/recorded_gfx.h"
#include "tests/support/temporary_folder.h"

namespace sparkrig {
namespace {

/// The system on the recording device; the camera stands 100 before the origin and looks along -y.
class Drawing : public testing::Test {
  protected:
    Drawing() {
        KRN_Camera camera;
        camera.SetEye(0, 100, 0, true);
        camera.SetViewDirection(0, -1, 0, true);
        gfx->SetView(camera);
        gfx->SetProjection(1, 2000, 0.7854f, -1);
        system.Init(*gfx, 0);
        gfx->BeginScene();
        for (const char* name : {"a", "b"}) folder.Write(name, PngFile(TestPicture::Pattern(4, 4), 4));
    }
    ~Drawing() override { system.Release(); }

    /// A block of one particle at y (the distance is 100 - y) with more lines.
    std::string Particle(const char* texture, float y, const std::string& lines = "") const {
        return "PARTICLE {\ntexture = \"" + folder.Path(texture) + "\"\npos = 0, " + std::to_string(y) + ", 0\n" +
               lines + "\n}\n";
    }
    void Load(const std::string& entries) { system.LoadEffects(folder.Write("effects.cfg", entries).c_str(), false); }
    /// Loads and starts one effect of these blocks, and draws it.
    int DrawEffect(const std::string& blocks) {
        Load("#e\ndesc = \"e\"\n" + blocks);
        system.StartEffect("e", {});
        return Redraw();
    }
    int Redraw() {
        gfx.recording.ForgetCalls();
        return system.Draw();
    }
    const RecordedDraw& DrawAt(std::size_t i) const { return gfx.recording.Draws().at(i); }
    std::vector<UINT> TriangleCounts() const {
        std::vector<UINT> counts;
        for (const RecordedDraw& draw : gfx.recording.Draws()) counts.push_back(draw.count);
        return counts;
    }
    /// Each state in each of the draws.
    void ExpectStates(const std::vector<std::pair<D3DRENDERSTATETYPE, std::vector<DWORD>>>& states) const {
        for (const auto& [state, expected] : states) {
            std::vector<DWORD> found;
            for (const RecordedDraw& draw : gfx.recording.Draws()) found.push_back(draw.render_states.at(state));
            EXPECT_EQ(found, expected) << state;
        }
    }
    EffectParticleVertex Vertex(std::size_t draw, std::size_t vertex) const {
        EffectParticleVertex out;
        std::memcpy(&out, DrawAt(draw).vertices.data() + vertex * sizeof out, sizeof out);
        return out;
    }

    ScratchFolder folder;
    RecordedGfx gfx;
    VisualEffectSystem system;
};

constexpr char kAdditive[] = "BlendType = \"additive\"";

TEST_F(Drawing, AdditiveParticlesAreRegroupedByTextureAndOthersKeepTheirOrder) {
    const std::string mixed = Particle("a", 1, kAdditive) + Particle("b", 2, kAdditive) + Particle("a", 3, kAdditive) +
                              Particle("b", 4, kAdditive);
    DrawEffect(mixed);
    EXPECT_EQ(Redraw(), 2);   // once the textures are loaded
    EXPECT_THAT(TriangleCounts(), ElementsAre(4, 4));
    EXPECT_EQ(system.DrawnParticleCount(), 4);
    EXPECT_EQ(Vertex(0, 0).position.y, 1);   // in a texture, the farther first
    EXPECT_EQ(Vertex(0, 6).position.y, 3);
    EXPECT_NE(DrawAt(0).texture, DrawAt(1).texture);
    DrawEffect(Particle("a", 1) + Particle("b", 2) + Particle("a", 3) + Particle("b", 4));
    for (std::size_t i = 0; i < 4; ++i) EXPECT_EQ(Vertex(i, 0).position.y, static_cast<float>(i + 1));
    DrawEffect(Particle("a", 5) + Particle("a", 1, "SortClass = 2") + Particle("a", 3, "SortDistOff = -50"));
    for (const std::size_t i : {0, 1, 2}) EXPECT_EQ(Vertex(0, 6 * i).position.y, static_cast<float>(5 - 2 * i));
}

TEST_F(Drawing, AFullBatchIsDrawnAndAnotherBegins) {
    const std::tuple<int, int> kRows[] = {{1024, 1}, {1025, 2}, {2500, 3}};
    for (const auto& [count, draws] : kRows) {
        EXPECT_EQ(DrawEffect(Particle("a", 1, "Count = " + std::to_string(count))), draws);
        EXPECT_EQ(system.DrawnParticleCount(), count);
        EXPECT_EQ(DrawAt(0).count, 2048u);
        for (const RecordedDraw& draw : gfx.recording.Draws()) EXPECT_NE(draw.texture, 0u);
    }
}

TEST_F(Drawing, WhatIsNotSeenIsNotCounted) {
    const std::tuple<const char*, std::string> kRows[] = {
        {"transparent", Particle("a", 1, "ALPHA {\ntype = \"cos\"\nTimeScale = 0, 0.003, 0\n}")},
        {"not born", Particle("a", 1, "BirthTime = 1")},
        {"too detailed", Particle("a", 1, "DetailLevel = 101")},
        {"behind the camera", Particle("a", 400)},
        {"too small at the edge", "PARTICLE {\ntexture = \"none\"\npos = 70, 0, 0\nscale = 2, 900, 900\n}\n"},
    };
    for (const auto& [what, block] : kRows) {
        EXPECT_EQ(DrawEffect(block), 0) << what;
        EXPECT_EQ(system.DrawnParticleCount(), 0) << what;
    }
    EXPECT_EQ(DrawEffect(Particle("a", 0, "DetailLevel = 100")), 1);
}

TEST_F(Drawing, BatchesEndWhereStatesChange) {
    const std::tuple<const char*, std::string, int> kRows[] = {
        {"nothing", "", 1},
        {"blend mode", kAdditive, 2},
        {"billboard mode", "BillBoard = 1", 2},
        {"depth test", "UseZBuf = 0", 2},
        {"depth write", "WriteZBuf = 0", 2},
        {"sort class", "SortClass = 3", 1},
    };
    for (const auto& [what, lines, draws] : kRows)
        EXPECT_EQ(DrawEffect(Particle("a", 1) + Particle("a", 2, lines)), draws) << what;
    const std::string special = "SPECIAL {\ntype = \"none\"\npos = 0, 2, 0\n}\n";
    EXPECT_EQ(DrawEffect(Particle("a", 1) + special + Particle("a", 3)), 2);
}

TEST_F(Drawing, StatesAreThoseThatTheEffectAsksForAndThenAsTheyWere) {
    gfx->SetBlendingMode(7, 77, 0);
    gfx->SetZBufferMode(1);
    gfx->SetZWrite(true);
    gfx->SetFogEnable(true);
    gfx->SetLighting(true, nullptr);
    gfx->SetCullingMode(1);
    DrawEffect("SPECIAL {\ntype = \"flame\"\n}\n" + Particle("a", -1, "WriteZBuf = 0") +
               Particle("a", 5, "UseZBuf = 0"));
    system.StartEffect("e", {0, 2, 0});
    Redraw();
    // of the first particle, the special, both again, and the other particles
    ExpectStates({{D3DRS_ZENABLE, {1, 1, 1, 1, 0}},
                  {D3DRS_ZWRITEENABLE, {0, 0, 0, 0, 1}},
                  {D3DRS_CULLMODE, {D3DCULL_NONE, D3DCULL_CW, D3DCULL_NONE, D3DCULL_CW, D3DCULL_NONE}},
                  {D3DRS_LIGHTING, {0, 0, 0, 0, 0}},
                  {D3DRS_FOGENABLE, {0, 0, 0, 0, 0}}});
    EXPECT_NE(DrawAt(1).texture, 0u) << "the spot";
    EXPECT_EQ(gfx->BlendingMode(), 7);
    EXPECT_EQ(gfx->BlendingAlpha(), 77);
    EXPECT_EQ(gfx->ZBufferMode(), 1);
    EXPECT_TRUE(gfx->ZWrite() && gfx->FogEnable() && gfx->Lighting());
    EXPECT_EQ(gfx->CullingMode(), 1);
    EXPECT_EQ(gfx->EffectForDraw(), nullptr);
}

TEST_F(Drawing, TrailsAreDrawnOneByOneAsTheirEffectsAskAndThenAsItWas) {
    gfx->SetZBufferMode(1);
    gfx->SetCullingMode(1);
    const auto edges = [](int id, const std::string& lines) {
        const std::string edge = "SPECIAL {\ntype = \"none\"\nEmitEffect = \"trace:none\"\nEmitEffectPerTime = 60\n" +
                                 lines + "TraceEffectLifeTime = 9\nTraceEffectId = " + std::to_string(id) + "\n}\n";
        return edge + edge;
    };
    Load("#e\ndesc = \"e\"\n" + edges(0, "UseZBuf = 0\n") + edges(1, ""));
    system.StartEffect("e", {});
    for (int i = 0; i < 6; ++i) system.Update(1 / 59.0f);
    EXPECT_EQ(Redraw(), 2);
    EXPECT_THAT(TriangleCounts(), ElementsAre(10, 10));
    ExpectStates({{D3DRS_ZENABLE, {0, 1}},
                  {D3DRS_ZWRITEENABLE, {0, 0}},
                  {D3DRS_LIGHTING, {0, 0}},
                  {D3DRS_CULLMODE, {D3DCULL_NONE, D3DCULL_NONE}}});
    EXPECT_EQ(gfx->ZBufferMode(), 1);
    EXPECT_EQ(gfx->CullingMode(), 1);
    EXPECT_TRUE(gfx->ZWrite());
    Redraw();
    EXPECT_EQ(DrawAt(1).render_states.at(D3DRS_ZENABLE), 1u);
}

TEST_F(Drawing, WhatHangsBeforeTheCameraIsSortedLastAndDrawnInCameraSpace) {
    const D3DXMATRIX view = gfx->ViewMatrix();
    DrawEffect(Particle("a", 1, "BillBoard = 3") + Particle("a", 90));
    ASSERT_EQ(gfx.recording.Draws().size(), 2u);
    EXPECT_EQ(Vertex(1, 0).position.y, 1);
    int views_sent = 0;
    for (const RecordedCall& call : gfx.recording.Calls())
        views_sent += call.method == "SetTransform" && call.arguments[0] == D3DTS_VIEW;
    EXPECT_EQ(views_sent, 2);
    const auto globals = gfx.recording.ArgumentsOf("SetVertexShaderGlobals");
    EXPECT_EQ(std::ranges::count(globals.at(0), 1u), std::ranges::count(globals.at(1), 1u) + 1)
        << "its place is unused";
    EXPECT_EQ(gfx->ViewMatrix(), view);
}

TEST_F(Drawing, AnAnimatedTextureEndsTheBatchWhereItsFrameChanges) {
    folder.Write("list.ifl", folder.Path("a") + "\n" + folder.Path("b") + "\n");
    const auto block = [this](float y, const char* lines) { return Particle("list.ifl", y, lines); };
    // Two instances share a texture; the second is a frame of 1/30 s younger.
    EXPECT_EQ(DrawEffect(block(1, "Count = 2\nBirthCountOff = 0.03\nStartTime = 0.05")), 2);
    const UINT second_frame = DrawAt(0).texture, first_frame = DrawAt(1).texture;
    EXPECT_NE(first_frame, second_frame);
    EXPECT_EQ(DrawEffect(block(1, "") + block(2, "StartTime = 0.01") + block(3, "StartTime = 0.05")), 2);
    EXPECT_THAT(TriangleCounts(), ElementsAre(4, 2));
    EXPECT_NE(DrawAt(0).texture, DrawAt(1).texture);
}

std::string Mesh(const std::string& lines) { return "MESH {\nsFile = \"models\\bounded.kva\"\n" + lines + "\n}\n"; }

/// The camera's right is -x, its up z, its forward -y. Scaled and turned, the axes are (0, 2, 0), (-3, 0, 0), (0, 0,
/// 5).
TEST_F(Drawing, AMeshStandsAsItsBillboardModeSays) {
    constexpr D3DXVECTOR3 kPlace(7, -8, 9), kHeld(0, 0, 0), kNone(0, 0, 0);
    const std::tuple<int, D3DXVECTOR3, D3DXVECTOR3, D3DXVECTOR3, D3DXVECTOR3> kRows[] = {
        {0, {0, 2, 0}, {-3, 0, 0}, {0, 0, 5}, kPlace}, {1, {-3, 0, 0}, {0, 2, 0}, {0, 0, 5}, kPlace},
        {2, {0, 0, 2}, {3, 0, 0}, {0, -5, 0}, kPlace}, {3, {0, 0, 2}, {3, 0, 0}, {0, -5, 0}, kHeld},
        {4, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, kNone},
    };
    for (const auto& [mode, x, y, z, position] : kRows) {
        EXPECT_EQ(
            DrawEffect(Mesh("scale = 2, 3, 5\npos = 7, -8, 9\nRotAngle = 90\nBillBoard = " + std::to_string(mode))), 1);
        EXPECT_EQ(system.DrawnParticleCount(), 1);
        const auto& m = DrawAt(0).world.m;
        const D3DXVECTOR3 crate = z * 5 + position;   // its node stands 5 above the scene's
        const D3DXVECTOR3 expected[] = {x, y, z, crate};
        for (int row = 0; row < 4; ++row)
            EXPECT_NEAR(D3DXVec3Length(D3DXVECTOR3(m[row][0], m[row][1], m[row][2]) - expected[row]), 0, 1e-5)
                << mode << " row " << row;
    }
}

TEST_F(Drawing, MeshInstancesShareTheirSceneAndAreCountedOneByOne) {
    const std::string hidden = Mesh("Count = 9\npos = 0, 400, 0") + Mesh("ALPHA {\ntype = \"sin\"\n}");
    EXPECT_EQ(DrawEffect(Mesh("Count = 3") + Mesh("BillBoard = 2\nBlendType = \"additive\"\nWriteZBuf = 0") + hidden),
              4);
    EXPECT_EQ(system.DrawnParticleCount(), 4);
    EXPECT_EQ(gfx.recording.Count("CreateVertexBuffer"), 1);
    EXPECT_EQ(DrawAt(3).render_states[D3DRS_DESTBLEND], DWORD{D3DBLEND_ONE});
    EXPECT_EQ(DrawAt(3).render_states[D3DRS_ZWRITEENABLE], 0u);
    EXPECT_EQ(DrawAt(0).render_states[D3DRS_ZWRITEENABLE], 1u);
    EXPECT_EQ(DrawEffect(Mesh("") + Mesh("loop = 1")), 2);
    EXPECT_EQ(gfx.recording.Count("CreateVertexBuffer"), 2) << "one of them repeats";
    EXPECT_EQ(DrawEffect(Mesh("scale = 0, 0, 0")), 1);
    EXPECT_THROW(DrawEffect("MESH {\n}\n"), ErrorRecord);
}

TEST_F(Drawing, PreloadingGoesDepthFirstThroughWhatIsEmitted) {
    const auto effect = [](const std::string& name, const std::string& blocks) {
        return "#\ndesc = \"" + name + "\"\n" + blocks;
    };
    const auto missing = [&](const std::string& name) {
        return effect(name, "PARTICLE {\ntexture = \"" + name + "\"\n}\n");
    };
    const auto emits = [](const char* kind, const std::string& name) {
        return std::string(kind) + " {\ntype = \"none\"\nsFile = \"models\\rock.kva\"\nEmitEffect = \"" + name +
               "\"\n}\n";
    };
    const std::string others = missing("p") + missing("q") + missing("m") + missing("s");
    const std::string special_and_mesh = emits("SPECIAL", "s") + emits("MESH", "m");
    Load(effect("e", Particle("a", 1, "EmitEffect = \"f\"")) +
         effect("f", Particle("b", 1, "EmitEffect = \"e\"") + Particle("b", 1, "EmitEffect = \"trace:none\"")));
    gfx.recording.ForgetCalls();
    for (int i = 0; i < 2; ++i) {
        system.PreloadEffect("e");
        EXPECT_EQ(gfx.recording.Count("CreateTexture"), 2) << "once";
    }
    system.PreloadEffect("trace:none");
    EXPECT_THROW(system.PreloadEffect("g"), ErrorMsg);
    const std::pair<std::string, const char*> kRows[] = {
        {Particle("a", 1, "EmitEffect = \"p\"") + Particle("gone", 1, ""), "file p"},
        {special_and_mesh + Particle("a", 1, "EmitEffect = \"q\""), "file q"},
        {special_and_mesh, "file m"},
        {emits("SPECIAL", "s"), "file s"}};
    for (const auto& [blocks, first] : kRows) {
        Load(effect("e", blocks) + others);
        EXPECT_THAT(ErrorOf([&] { system.PreloadEffect("e"); }), EndsWith(first));
    }
}

// ---- The order, beside slow ways to find it

/// An element is its place in the list: lane and id in one.
std::vector<std::uint32_t> OrderOf(const std::vector<float>& distances, const std::vector<std::uint32_t>& ids) {
    DrawOrder order;
    std::vector<KeyedPlace> elements;
    for (std::uint32_t lane = 0; lane < distances.size(); ++lane)
        elements.push_back(MakeKeyed(DrawOrder::DepthKey(distances[lane]), lane));
    order.AddClass(elements, [&](std::uint32_t lane) { return ids[lane]; });
    return order.Order();
}

TEST(DrawOrder, IsThatOfAStableComparison) {
    std::mt19937 generator(7);
    const float infinity = std::numeric_limits<float>::infinity();
    const std::pair<float, int> kRanges[] = {{1, 1}, {0.5f, 3}, {0.125f, 2000}, {1e-6f, 1 << 20}, {1e30f, 1 << 30}};
    for (const std::size_t count : {0u, 1u, 2u, 100u, 255u, 256u, 5000u}) {
        for (const auto& [unit, range] : kRanges) {   // some of few distances, some of more than two digits of keys
            std::vector<float> distances(count);
            std::vector<std::uint32_t> ids(count), expected(count);
            std::uniform_int_distribution<int> number(-range / 3, range - 1 - range / 3);
            for (float& distance : distances) distance = unit * static_cast<float>(number(generator));
            if (count > 3 && range > 3) distances[1] = -infinity, distances[2] = infinity;
            std::iota(ids.begin(), ids.end(), 0u);
            std::shuffle(ids.begin(), ids.end(), generator);
            std::iota(expected.begin(), expected.end(), 0u);
            std::sort(expected.begin(), expected.end(), [&](auto a, auto b) { return ids[a] < ids[b]; });
            std::stable_sort(expected.begin(), expected.end(),
                             [&](auto a, auto b) { return distances[a] > distances[b]; });
            EXPECT_EQ(OrderOf(distances, ids), expected) << count << " " << unit;
        }
    }
}

TEST(DrawOrder, KeepsWhatHasNoDistance) {
    std::vector<float> distances(300, std::nanf(""));
    for (std::size_t i = 0; i < distances.size(); i += 2) distances[i] = static_cast<float>(i);
    std::vector<std::uint32_t> ids(distances.size()), all = ids;
    std::iota(all.begin(), all.end(), 0u);
    std::vector<std::uint32_t> order = OrderOf(distances, all);
    std::sort(order.begin(), order.end());
    EXPECT_EQ(order, all);
}

/// The slow, obvious way: the walk over the order, each run sorted by comparison.
std::vector<std::uint32_t> RegroupSlowly(std::vector<std::uint32_t> order, const std::vector<RegroupTraits>& of) {
    const auto at = [&](std::uint32_t lane) -> const RegroupTraits& { return of[lane % of.size()]; };
    for (std::size_t i = 0; i < order.size(); ++i) {
        if (!at(order[i]).starts_run) continue;
        std::size_t end = i;
        while (end < order.size() && at(order[end]).particle && at(order[end]).states == at(order[i]).states) ++end;
        std::stable_sort(order.begin() + static_cast<std::ptrdiff_t>(i),
                         order.begin() + static_cast<std::ptrdiff_t>(end),
                         [&](std::uint32_t a, std::uint32_t b) { return at(a).texture < at(b).texture; });
        i = end - 1;
    }
    return order;
}

TEST(DrawOrder, RegroupsAsTheSlowWayDoes) {
    Dice dice(11);
    for (const std::uint32_t count : {1u, 7u, 60u, 3000u}) {
        for (const std::uint32_t groups : {1u, 3u, 40u}) {
            std::vector<RegroupTraits> traits;
            for (std::uint32_t i = 0; i < groups; ++i) {
                RegroupTraits one;
                one.particle = !dice.OneIn(6);
                one.starts_run = one.particle && dice.OneIn(2);
                one.states = dice.Word() % 2;
                one.texture = dice.Word() % 9;
                traits.push_back(one);
            }
            DrawOrder order;
            for (std::uint32_t first : {0u, count}) {   // two classes: runs go on from one to the other
                std::vector<KeyedPlace> elements;
                for (std::uint32_t i = 0; i < count; ++i) elements.push_back(MakeKeyed(dice.Word(), first + i));
                order.AddClass(elements, [](std::uint32_t lane) { return lane; });
            }
            const std::vector<std::uint32_t> expected = RegroupSlowly(order.Order(), traits);
            order.Regroup(traits, [&](std::uint32_t lane) { return static_cast<std::uint32_t>(lane % traits.size()); });
            EXPECT_EQ(order.Order(), expected) << count << " " << groups;
        }
    }
}

}   // namespace
}   // namespace sparkrig
