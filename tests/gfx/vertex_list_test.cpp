#include "gfx/geometry/vertex_list.h"

#include "gfx/gfx.h"
#include "tests/support/recorded_gfx.h"

namespace sparkrig {
namespace {

TEST(VertexLayout, PlacesTheComponents) {
    // clang-format off
    const std::pair<DWORD, std::vector<int>> kRows[] = {
        // format, stride, weights, normal, point size, diffuse, specular, texture sets and the first one's place
        {0x042,   {16, 0, 12, 12, 12, 16, 0, 0 }},
        {0x102,   {20, 0, 12, 12, 12, 12, 1, 12}},
        {0x012,   {24, 0, 12, 24, 24, 24, 0, 0 }},
        {0x1C2,   {28, 0, 12, 12, 12, 16, 1, 20}},
        {0x112,   {32, 0, 12, 24, 24, 24, 1, 24}},
        {0x1C4,   {32, 0, 16, 16, 16, 20, 1, 24}},
        {0x212,   {40, 0, 12, 24, 24, 24, 2, 24}},
        {0x40212, {44, 0, 12, 24, 24, 24, 2, 24}},
        {0x272,   {48, 0, 12, 24, 28, 32, 2, 32}},
        {0x1018,  {32, 2, 20, 32, 32, 32, 0, 0 }},
        {0x101A,  {36, 3, 24, 36, 36, 36, 0, 0 }},
        {0x111C,  {48, 4, 28, 40, 40, 40, 1, 40}},
        {0x006,   {12, 1, 12, 12, 12, 12, 0, 0 }},
        {0x00E,   {0,  0, 0,  0,  0,  0,  0, 0 }},
    };
    // clang-format on
    for (const auto& [format, places] : kRows) {
        const VertexLayout l = ComputeVertexLayout(format);
        EXPECT_EQ((std::vector<int>{l.stride, l.weights, l.normal, l.point_size, l.diffuse, l.specular, l.texture_sets,
                                    l.texture_offset[0]}),
                  places)
            << format;
        EXPECT_EQ(l.format, format);
    }
    EXPECT_EQ(ComputeVertexLayout(0x1018).rhw_or_weights, 12);
}

TEST(VertexLayout, ReadsTheSizeOfEachTextureSet) {
    const VertexLayout layout = ComputeVertexLayout(0x402 | 3u << 16 | 1u << 18 | 2u << 20);
    EXPECT_THAT(std::vector<int>(layout.texture_floats, layout.texture_floats + 4), ElementsAre(1, 3, 4, 2));
    EXPECT_THAT(std::vector<int>(layout.texture_offset, layout.texture_offset + 4), ElementsAre(12, 16, 28, 44));
    EXPECT_EQ(ComputeVertexLayout(0xF02).texture_sets, 8) << "fifteen are asked for, eight exist";
}

TEST(VertexList, DerivesPrimitivesFromElements) {
    constexpr std::tuple<const char*, int, UINT, UINT> kRows[] = {
        {"point list", 1, 5, 5},     {"line list", 2, 5, 2},    {"line strip", 3, 5, 4}, {"triangle list", 4, 30, 10},
        {"triangle strip", 5, 4, 2}, {"triangle fan", 6, 7, 5}, {"no line", 3, 0, 0},    {"no triangle", 5, 1, 0}};
    const RecordedGfx gfx;
    KRN_VertexList reporter(PrimitiveMode::PointList, 0x42);
    for (const auto& [name, mode, elements, primitives] : kRows)
        EXPECT_EQ(PrimitiveCount(reporter, mode, elements), primitives) << name;
    for (const int mode : {0, 7}) {
        EXPECT_EQ(ErrorOf([&] { PrimitiveCount(reporter, mode, 5); }),
                  "KRN_ListBase: *undefined*: Invalid PointList mode selected! (" + std::to_string(mode) + ")");
    }
}

TEST(VertexList, PoolAndUsageFollowTheRequest) {
    constexpr std::tuple<const char*, int, bool, bool, bool, DWORD, DWORD> kRows[] = {
        {"plain", -1, false, false, true, 0, D3DPOOL_MANAGED},
        {"points", -1, false, true, true, D3DUSAGE_POINTS, D3DPOOL_MANAGED},
        {"dynamic", 0x208, false, true, true, 0x208, D3DPOOL_DEFAULT},
        {"system memory", 0x208, true, false, true, 0x208, D3DPOOL_SYSTEMMEM},
        {"without hardware", 8, false, false, false, 0x18, D3DPOOL_MANAGED},
    };
    for (const auto& [name, usage, system_memory, sprites, hardware, sent_usage, pool] : kRows) {
        SCOPED_TRACE(name);
        RecordedGfx gfx(RecordedGfx::State::Constructed);
        if (!hardware) gfx.recording.caps.DevCaps = 0;
        gfx.Init();
        KRN_VertexListTemp<KRN_LVertex> list(PrimitiveMode::TriangleStrip);
        list.PointSprites().sprites = sprites;
        EXPECT_TRUE(gfx->CreateVertexList(&list, 7, usage, system_memory));
        EXPECT_EQ(gfx.recording.Calls().back().arguments, (std::vector<DWORD>{7 * 28, sent_usage, 0x1C2, pool}));
        EXPECT_EQ(list.ElementCount(), 7u);
        EXPECT_EQ(list.PrimitiveCount(), 5u);
        list.SetMode(PrimitiveMode::LineList);
        EXPECT_EQ(list.PrimitiveCount(), 3u);
        EXPECT_EQ(list.SoftwareProcessing(), !hardware);
    }
    RecordedGfx poor([](Recording& recording) { recording.caps.MaxVertexBlendMatrices = 2; });
    KRN_VertexList weighted(PrimitiveMode::PointList, 0x101A);
    poor->CreateVertexList(&weighted, 2, 0, false);
    EXPECT_TRUE(weighted.SoftwareProcessing()) << "more weights than the hardware blends";
}

TEST(VertexList, RefusesWhatNoBufferHolds) {
    RecordedGfx gfx;
    KRN_VertexListTemp<KRN_LVertex> list;
    EXPECT_EQ(ErrorOf([&] { gfx->CreateVertexList(nullptr, 3, -1, false); }), "KRN_Gfx: VertexList is NULL pointer");
    for (const UINT elements : {0u, 0xFFFFFFFFu, 0xFFFFFFFFu / 28 + 1}) {
        EXPECT_EQ(ErrorOf([&] { gfx->CreateVertexList(&list, elements, -1, false); }),
                  "KRN_Gfx: CreateVertexBuffer in CreateVertexList failed: D3DERR_INVALIDCALL");
    }
    KRN_VertexList empty(PrimitiveMode::PointList, 0);
    EXPECT_EQ(ErrorOf([&] { gfx->CreateVertexList(&empty, 3, -1, false); }),
              "KRN_Gfx: CreateVertexBuffer in CreateVertexList failed: D3DERR_INVALIDCALL");
}

TEST(VertexList, LocksAPartInElements) {
    RecordedGfx gfx;
    KRN_VertexListTemp<KRN_LVertex> list;
    const std::string kLockFailed = "KRN_ListBase: *undefined*: Lock failed: D3DERR_INVALIDCALL";
    EXPECT_EQ(ErrorOf([&] { list.Lock(0, 1, 0); }), kLockFailed) << "no buffer yet";
    gfx->CreateVertexList(&list, 10, -1, false);
    ASSERT_NE(list.Lock(3, 2, D3DLOCK_NOSYSLOCK), nullptr);
    const std::vector<DWORD>& lock = gfx.recording.Calls().back().arguments;
    EXPECT_THAT(std::vector<DWORD>(lock.begin() + 1, lock.end()), ElementsAre(3 * 28, 2 * 28, D3DLOCK_NOSYSLOCK));
    EXPECT_TRUE(list.IsLocked());
    EXPECT_TRUE(list.Unlock());
    EXPECT_FALSE(list.IsLocked());
    EXPECT_EQ(ErrorOf([&] { list.Unlock(); }), "KRN_ListBase: *undefined*: Unlock failed: D3DERR_INVALIDCALL");
    EXPECT_EQ(ErrorOf([&] { list.Lock(9, 2, 0); }), kLockFailed);
    EXPECT_EQ(ErrorOf([&] { list.Lock(11, 0, 0); }), kLockFailed);
}

TEST(VertexList, CountsWhatItDraws) {
    RecordedGfx gfx;
    KRN_VertexListTemp<KRN_PointVertex> points(PrimitiveMode::PointList);
    KRN_VertexListTemp<KRN_LVertex> list;
    list.SetPosition(3, 5, 7, true);
    points.PointSprites().sprites = true;
    gfx->CreateVertexList(&points, 4, -1, false);
    gfx->CreateVertexList(&list, 30, -1, false);
    gfx->BeginScene();
    gfx->DrawTriangleList(list, 0, 0);
    EXPECT_EQ(gfx.recording.Draws().size(), 0u);
    gfx->DrawTriangleList(list, 0, -1);
    EXPECT_EQ(gfx.recording.Draws().back().count, 10u);
    for (const int count : {11, -2}) {
        EXPECT_EQ(ErrorOf([&] { gfx->DrawTriangleList(list, 0, count); }),
                  "KRN_Gfx: Number of elements in DrawTriangleList too high! (" + std::to_string(count) + ")");
    }
    EXPECT_EQ(gfx.recording.Draws().back().world.m[3][2], 7);
    EXPECT_EQ(gfx.recording.Draws().back().render_states.at(D3DRS_POINTSPRITEENABLE), 0u);
    const DrawStatistics& statistics = gfx->Statistics();
    gfx->SuppressDraws(true);
    gfx->DrawTriangleList(list, 0, 4);
    EXPECT_EQ(gfx.recording.Draws().size(), 1u) << "counted, not drawn";
    EXPECT_EQ(statistics.draw_calls, 2u);
    EXPECT_EQ(statistics.primitives, 14u);
    gfx->SuppressDraws(false);
    gfx->DrawTriangleList(points, 1, 3);
    const RecordedDraw& draw = gfx.recording.Draws().back();
    EXPECT_THAT((std::vector<DWORD>{draw.type, draw.first, draw.count, draw.fvf, draw.stride}),
                ElementsAre(D3DPT_POINTLIST, 1, 3, 0x42, 16));
    EXPECT_EQ(draw.render_states.at(D3DRS_POINTSPRITEENABLE), 1u);
    gfx->EndScene();
    gfx->PresentFrame();
    EXPECT_EQ(statistics.draw_calls, 0u);
}

}   // namespace
}   // namespace sparkrig
