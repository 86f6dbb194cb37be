#include <cstring>

#include "gfx/geometry/vertex_list.h"
#include "gfx/gfx.h"
#include "gfx/textures/texture.h"
#include "tests/support/recorded_gfx.h"

namespace sparkrig {
namespace {

/// A picture of 16 x 8 to be drawn.
struct ScreenTexture : testing::Test {
    ScreenTexture() {
        gfx->CreateTexture(&texture, 16, 8, 4, -1, 1);
        gfx->BeginScene();
    }
    const RecordedDraw& Drawn(std::size_t i) const { return gfx.recording.Draws().at(i); }
    /// x, y, z, u and v of each corner.
    std::vector<std::vector<float>> Corners(std::size_t draw) const {
        KRN_TLVertex vertices[4];
        std::memcpy(vertices, Drawn(draw).vertices.data(), sizeof vertices);
        std::vector<std::vector<float>> corners;
        for (const KRN_TLVertex& v : vertices) {
            EXPECT_EQ(v.rhw, 1.0f);
            EXPECT_EQ(v.diffuse, 0x80AABBCC);
            EXPECT_EQ(v.specular, 0xFF000000);
            corners.push_back({v.x, v.y, v.z, v.u, v.v});
        }
        return corners;
    }

    RecordedGfx gfx;
    KRN_Texture texture;
};

TEST_F(ScreenTexture, IsAStripOfItsCorners) {
    texture.SetTextureRectangle({0.125f, 0.25f, 0.5f, 0.625f, 0, 0});
    gfx->SetTexture2D(&texture);
    gfx->SetCullingMode(1);
    gfx->SetAddressModeU(D3DTADDRESS_MIRROR, 0);
    gfx->DrawTexture2D({10, 20, 30, 50}, 0x80AABBCC, {0.1f, 0.2f, 0.3f, 0.4f});
    EXPECT_EQ(Drawn(0).type, D3DPT_TRIANGLESTRIP);
    EXPECT_EQ(Drawn(0).count, 2u);
    EXPECT_EQ(Drawn(0).fvf, 0x1C4u);
    EXPECT_NE(Drawn(0).texture, 0u);
    EXPECT_EQ(Drawn(0).render_states.at(D3DRS_CULLMODE), D3DCULL_NONE);
    EXPECT_EQ(Drawn(0).render_states.at(D3DRS_ZENABLE), 0u);
    EXPECT_THAT(Corners(0), ElementsAre(ElementsAre(9.75f, 49.75f, 0.1f, 0.125f, 0.875f),
                                        ElementsAre(9.75f, 19.75f, 0.2f, 0.125f, 0.25f),
                                        ElementsAre(29.75f, 49.75f, 0.3f, 0.625f, 0.875f),
                                        ElementsAre(29.75f, 19.75f, 0.4f, 0.625f, 0.25f)));
    EXPECT_EQ(gfx->CullingMode(), 1);
    EXPECT_THAT(gfx.recording.Sent(0, D3DSAMP_ADDRESSU),
                ElementsAre(D3DTADDRESS_MIRROR, D3DTADDRESS_CLAMP, D3DTADDRESS_MIRROR));
    EXPECT_THAT(gfx.recording.Sent(D3DRS_ZENABLE), ElementsAre(0, 1));
    texture.SetTextureRectangle({0, 0, 1, 1, 0, 0});
    gfx->SetDepthTest2D(true);
    gfx->DrawTexture2D({10, 20, 30, 50}, {4, 1, 12, 7}, 0x80AABBCC, {0, 0, 0, 0});   // a part in pixels
    EXPECT_THAT(Corners(1)[1], ElementsAre(9.75f, 19.75f, 0, 0.25f, 0.125f));
    EXPECT_THAT(Corners(1)[2], ElementsAre(29.75f, 49.75f, 0, 0.75f, 0.875f));
    EXPECT_EQ(Drawn(1).render_states.at(D3DRS_ZENABLE), 1u);
}

TEST_F(ScreenTexture, IsDrawnAgainWhereItWas) {
    EXPECT_EQ(ErrorOf([&] { gfx->DrawLastTexture(); }), "KRN_Gfx: No texture set");
    EXPECT_EQ(ErrorOf([&] { gfx->DrawFullScreenTexture(0, 0); }), "KRN_Gfx: No texture set");
    KRN_Texture second;
    gfx->CreateTexture(&second, 16, 8, 4, -1, 1);
    texture.SetRepeats(true);
    gfx->SetTexture2D(&texture);
    gfx->DrawTexture2D({10, 20, 30, 50}, 0x80AABBCC, {0, 0, 0, 0});
    gfx->SetTexture2D(&second);
    gfx->SetViewPort(40, 60, 140, 260, 0, 1);
    gfx->DrawFullScreenTexture(0x80AABBCC, 0.75f);
    gfx->SetTexture2D(&texture);
    gfx->DrawLastTexture();
    EXPECT_EQ(Corners(2), Corners(0));
    EXPECT_THAT(Corners(1)[0], ElementsAre(39.75f, 259.75f, 0.75f, 0, 1));
    EXPECT_THAT(Corners(1)[3], ElementsAre(139.75f, 59.75f, 0.75f, 1, 0));
}

}   // namespace
}   // namespace sparkrig
