#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "gfx/geometry/vertex_list.h"
#include "gfx/gfx.h"
#include "gfx/textures/texture.h"
#include "tests/support/recorded_gfx.h"

namespace sparkrig {
namespace {

using ::testing::ElementsAre;

std::vector<KRN_TLVertex> VerticesOf(const RecordedDraw& draw) {
    std::vector<KRN_TLVertex> vertices(draw.vertices.size() / sizeof(KRN_TLVertex));
    std::memcpy(vertices.data(), draw.vertices.data(), draw.vertices.size());
    return vertices;
}

TEST(ScreenTexture, IsAStripOfItsCorners) {
    RecordedGfx gfx;
    KRN_Texture texture;
    gfx->CreateTexture(&texture, 16, 8, 4, -1, 1);
    texture.SetTextureRectangle({0.125f, 0.25f, 0.5f, 0.625f, 0, 0});
    gfx->SetTexture2D(&texture);
    gfx->SetCullingMode(1);
    gfx->SetAddressModeU(D3DTADDRESS_MIRROR, 0);
    gfx->BeginScene();
    gfx->DrawTexture2D({10, 20, 30, 50}, 0x80AABBCC, {0.1f, 0.2f, 0.3f, 0.4f});
    ASSERT_EQ(gfx.recording.Draws().size(), 1u);
    const RecordedDraw& draw = gfx.recording.Draws()[0];
    EXPECT_EQ(draw.type, D3DPT_TRIANGLESTRIP);
    EXPECT_EQ(draw.count, 2u);
    EXPECT_EQ(draw.fvf, 0x1C4u);
    EXPECT_NE(draw.texture, 0u);
    EXPECT_EQ(draw.render_states.at(D3DRS_CULLMODE), D3DCULL_NONE);
    EXPECT_EQ(draw.render_states.at(D3DRS_ZENABLE), 0u);
    const std::vector<KRN_TLVertex> v = VerticesOf(draw);
    ASSERT_EQ(v.size(), 4u);
    constexpr float kCorners[4][5] = {{9.75f, 49.75f, 0.1f, 0.125f, 0.875f},
                                      {9.75f, 19.75f, 0.2f, 0.125f, 0.25f},
                                      {29.75f, 49.75f, 0.3f, 0.625f, 0.875f},
                                      {29.75f, 19.75f, 0.4f, 0.625f, 0.25f}};
    for (int i = 0; i < 4; ++i) {
        EXPECT_THAT((std::vector<float>{v[i].x, v[i].y, v[i].z, v[i].u, v[i].v}),
                    ElementsAre(kCorners[i][0], kCorners[i][1], kCorners[i][2], kCorners[i][3], kCorners[i][4]));
        EXPECT_EQ(v[i].rhw, 1.0f);
        EXPECT_EQ(v[i].diffuse, 0x80AABBCC);
        EXPECT_EQ(v[i].specular, 0xFF000000);
    }
    EXPECT_EQ(gfx->CullingMode(), 1);
    EXPECT_THAT(gfx.recording.Sent(0, D3DSAMP_ADDRESSU),
                ElementsAre(D3DTADDRESS_MIRROR, D3DTADDRESS_CLAMP, D3DTADDRESS_MIRROR));
    EXPECT_THAT(gfx.recording.Sent(D3DRS_ZENABLE), ElementsAre(0, 1));
}

TEST(ScreenTexture, IsDrawnAgainWhereItWas) {
    RecordedGfx gfx;
    KRN_Texture first, second;
    gfx->CreateTexture(&first, 16, 8, 4, -1, 1);
    gfx->CreateTexture(&second, 16, 8, 4, -1, 1);
    first.SetRepeats(true);
    gfx->BeginScene();
    gfx->SetTexture2D(&first);
    gfx->DrawTexture2D({10, 20, 30, 50}, 0xFFFFFFFF, {0, 0, 0, 0});
    gfx->SetTexture2D(&second);
    gfx->SetViewPort(40, 60, 140, 260, 0, 1);
    gfx->DrawFullScreenTexture(0xFF123456, 0.75f);
    gfx->SetTexture2D(&first);
    gfx->DrawLastTexture();
    ASSERT_EQ(gfx.recording.Draws().size(), 3u);
    EXPECT_EQ(gfx.recording.Draws()[2].vertices, gfx.recording.Draws()[0].vertices);
    const std::vector<KRN_TLVertex> whole = VerticesOf(gfx.recording.Draws()[1]);
    EXPECT_THAT((std::vector<float>{whole[0].x, whole[0].y, whole[3].x, whole[3].y, whole[3].z}),
                ElementsAre(39.75f, 259.75f, 139.75f, 59.75f, 0.75f));
}

TEST(ScreenTexture, APartIsGivenInPixelsAndMayBeTestedAgainstDepth) {
    RecordedGfx gfx;
    KRN_Texture texture;
    gfx->CreateTexture(&texture, 16, 8, 4, -1, 1);
    gfx->SetTexture2D(&texture);
    gfx->SetDepthTest2D(true);
    gfx->BeginScene();
    gfx->DrawTexture2D({10, 20, 30, 50}, {4, 1, 12, 7}, 0xFFFFFFFF, {0, 0, 0, 0});
    const std::vector<KRN_TLVertex> v = VerticesOf(gfx.recording.Draws()[0]);
    EXPECT_THAT((std::vector<float>{v[1].u, v[1].v, v[2].u, v[2].v}), ElementsAre(0.25f, 0.125f, 0.75f, 0.875f));
    EXPECT_EQ(gfx.recording.Draws()[0].render_states.at(D3DRS_ZENABLE), 1u);
}

TEST(ScreenTexture, HasToBeSet) {
    RecordedGfx gfx;
    EXPECT_EQ(ErrorOf([&] { gfx->DrawLastTexture(); }), "KRN_Gfx: No texture set");
    EXPECT_EQ(ErrorOf([&] { gfx->DrawFullScreenTexture(0, 0); }), "KRN_Gfx: No texture set");
}

}   // namespace
}   // namespace sparkrig
