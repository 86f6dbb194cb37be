// What lies over the scene: the gathered lines and what is drawn of them, and pictures. How text looks stands in a
// picture: tests/app/pictures/overlay.png.
#include <cstring>

#include "gfx/geometry/vertex_list.h"
#include "gfx/gfx.h"
#include "gfx/text/font.h"
#include "gfx/text/printf_container.h"
#include "gfx/textures/texture.h"
#include "tests/support/recorded_gfx.h"

namespace sparkrig {
namespace {

using ::testing::_;

constexpr D3DCOLOR kA = 0xFF96DCFF, kB = 0xFF006473;

std::vector<KRN_TLVertex> VerticesOf(const RecordedDraw& draw) {
    std::vector<KRN_TLVertex> vertices(draw.vertices.size() / sizeof(KRN_TLVertex));
    std::memcpy(vertices.data(), draw.vertices.data(), draw.vertices.size());
    return vertices;
}

/// A device with the built-in font in use, one sheet pixel four screen pixels large.
struct Overlay {
    explicit Overlay(float size = 4.0f) {
        font.CreateBuiltInFont(*gfx, kA, kB);
        font.SetTextStyle(size, 0xFFFFFFFF, kKeepSpacing, kKeepSpacing, 0.75f);
        gfx->SetFont(&font, 0, 0);
        gfx->BeginScene();
        gfx.recording.ForgetCalls();
    }
    ~Overlay() { font.Release(); }
    KRN_PrintfContainer& Text() { return gfx->Text(); }
    std::string Characters(int entity) {
        const PrintfEntity& run = Text().Entity(entity);
        return std::string(Text().Characters(run), static_cast<std::size_t>(run.length));
    }
    RecordedGfx gfx;
    KRN_Font font;
};

TEST(Font, FallsBackToFourBits) {
    RecordedGfx gfx;
    gfx.recording.refused_texture_formats.insert(D3DFMT_A8R8G8B8);
    KRN_Font font;
    EXPECT_TRUE(font.CreateBuiltInFont(*gfx, kA, kB));
    EXPECT_EQ(font.Sheet().Format(), D3DFMT_A4R4G4B4);
    font.Release();
    EXPECT_FALSE(font.IsValid());
}

TEST(Font, MetricsFollowTheStyle) {
    Overlay overlay;
    KRN_Font& font = overlay.font;
    EXPECT_EQ(font.Advance('W') * font.Size(), 24);
    EXPECT_EQ(font.LineHeight() * font.Size(), 24);
    font.SetTextStyle(2, 0xFF123456, 3, 7, 0.5f);
    EXPECT_EQ(font.LineHeight(), 12);
    font.SetTextStyle(2, 0xFF123456, kKeepSpacing, 1, 0.5f);
    EXPECT_EQ(font.Advance('W'), 8);
    EXPECT_EQ(font.LineHeight(), 6);
}

TEST(Printf, BreaksTextIntoLinesAndKnownCharacters) {
    Overlay overlay;
    overlay.gfx->Printf(10, 20, "ab%c\tC~\x7F%d\n%s", 7, 42, "]^z");
    ASSERT_EQ(overlay.Text().Lines().size(), 2u);
    EXPECT_EQ(overlay.Characters(0), "AB C42");
    EXPECT_EQ(overlay.Characters(1), "]Z");
    EXPECT_EQ(overlay.Text().Lines()[1].y, 44);
    EXPECT_EQ(overlay.Text().Entity(1).x, 10);
    EXPECT_EQ(overlay.Text().Entity(0).width, 6 * 24);
}

TEST(Printf, GoesOnBehindTheTextBeforeAsItsOptionsSay) {
    Overlay overlay;
    overlay.gfx->Printf(10, 20, "AB");
    overlay.gfx->SetFont(&overlay.font, 2, 0xFF112233);
    overlay.gfx->Printf("C");
    overlay.gfx->PrintfCentred(100, 60, "ABC");
    overlay.gfx->Printf(100, 90, "ABC");
    ASSERT_EQ(overlay.Text().Lines().size(), 3u);
    EXPECT_EQ(overlay.Text().Entity(2).x, 100 - 3 * 12 / 2) << "centred: around its x, half as large";
    EXPECT_EQ(overlay.Text().Entity(3).x, 100) << "the options came back";
    EXPECT_EQ(overlay.Text().Entity(1).x, 10 + 48);
    EXPECT_EQ(overlay.Text().Entity(1).colour, 0xFF112233);
    EXPECT_EQ(overlay.Text().Entity(1).size_x, 2);
    EXPECT_EQ(overlay.Text().Lines()[0].height, 24);
    overlay.gfx->SetFont(&overlay.font, 0, 0x00FFFFFF);   // both are the font's own
    overlay.font.SetTextStyle(3, 0xFF778899, kKeepSpacing, kKeepSpacing, 0.75f);
    overlay.gfx->Printf(0, 0, "A");
    overlay.font.SetTextStyle(1, 0xFFFFFFFF, kKeepSpacing, kKeepSpacing, 0.75f);
    EXPECT_EQ(overlay.Text().Entity(4).colour, 0xFF778899) << "as it was printed";
    EXPECT_EQ(overlay.Text().Entity(4).size_y, 3);
}

TEST(Printf, NeedsAFontAndDropsTextThatIsTooLong) {
    RecordedGfx without;
    without->Printf(0, 0, "text");
    EXPECT_TRUE(without->Text().Lines().empty());
    KRN_Font without_sheet;
    for (KRN_Font* font : {&without_sheet, static_cast<KRN_Font*>(nullptr)})
        EXPECT_EQ(ErrorOf([&] { without->SetFont(font, 1, 0); }), "KRN_PrintfContainer: Tried to set invalid font");
    Overlay overlay;
    const Reports reports;
    overlay.gfx->Printf(0, 0, "%s", std::string(65536, 'A').c_str());
    EXPECT_EQ(reports.Last(), "warning KRN_Gfx: String too long for Printf()");
    EXPECT_TRUE(overlay.Text().Lines().empty());
    overlay.gfx->Printf(0, 0, "%s", std::string(65535, 'A').c_str());
    EXPECT_EQ(overlay.Characters(0).size(), 65535u);
}

TEST(PrintfOptions, AreAStackOfEight) {
    Overlay overlay;
    KRN_PrintfContainer& text = overlay.Text();
    for (int i = 0; i < 8; ++i) {
        text.Options().x = static_cast<float>(i + 10);
        text.SaveOptions();
    }
    EXPECT_EQ(ErrorOf([&] { text.SaveOptions(); }), "KRN_PrintfContainer: SaveOptions() stack overflow");
    for (int i = 0; i < 2; ++i) text.RestoreOptions();
    EXPECT_EQ(text.Options().x, 16);
    for (int i = 0; i < 9; ++i) text.RestoreOptions();
    EXPECT_EQ(text.Options().x, 10) << "an empty stack gives nothing back";
}

TEST(DrawText, SharesABaseAndLeavesTheStatesAsTheyWere) {
    Overlay overlay;
    overlay.gfx->SetCullingMode(1);
    overlay.gfx->Printf(10, 20, "A");
    overlay.gfx->SetFont(&overlay.font, 2, 0);
    overlay.gfx->Printf("A");
    overlay.gfx->DrawText();
    ASSERT_EQ(overlay.gfx.recording.Draws().size(), 1u);
    const RecordedDraw& draw = overlay.gfx.recording.Draws()[0];
    EXPECT_EQ(draw.render_states.at(D3DRS_ZENABLE), 0u);
    EXPECT_EQ(draw.render_states.at(D3DRS_CULLMODE), D3DCULL_NONE);
    const std::vector<KRN_TLVertex> v = VerticesOf(draw);
    ASSERT_EQ(v.size(), 12u);
    EXPECT_EQ(v[1].y, 20 + 24 - 18 - 0.5f);   // the base lies at three quarters of the line's 24 and of the run's 12
    EXPECT_EQ(v[7].y, 20 + 24 - 9 - 0.5f);
    EXPECT_EQ(v[7].x, 33.5f) << "24 further";
    for (const KRN_TLVertex& vertex : v) EXPECT_EQ(vertex.specular, 0xFF000000);
    EXPECT_EQ(overlay.gfx->CullingMode(), 1);
    for (const D3DSAMPLERSTATETYPE filter : {D3DSAMP_MINFILTER, D3DSAMP_MAGFILTER})
        EXPECT_THAT(overlay.gfx.recording.Sent(0, filter), ElementsAre(D3DTEXF_POINT, D3DTEXF_LINEAR));
    overlay.gfx->DrawText();
    EXPECT_EQ(overlay.gfx.recording.Draws().size(), 1u) << "the text is gone";
}

TEST(DrawText, BatchesHold256Glyphs) {
    Overlay overlay(1);
    overlay.gfx->Printf(0, 0, "%s", std::string(600, 'A').c_str());
    overlay.gfx->DrawText();
    std::vector<UINT> triangles;
    for (const RecordedDraw& draw : overlay.gfx.recording.Draws()) triangles.push_back(draw.count);
    EXPECT_THAT(triangles, ElementsAre(512, 512, 176));
}

TEST(DrawText, RectangleAndLimitsLeaveOutLines) {
    Overlay overlay, limited;
    for (const float y : {300.0f, 5.0f, 100.0f, 200.0f}) overlay.gfx->Printf(7, y, "A");
    overlay.gfx->DrawText({0, 110, 640, 210}, 3, 0);
    const std::vector<KRN_TLVertex> v = VerticesOf(overlay.gfx.recording.Draws().at(0));
    ASSERT_EQ(v.size(), 12u) << "the line at 100 reaches in, the one at 200 begins inside";
    EXPECT_EQ(v[1].x, 3.5f) << "scrolled by 3";
    EXPECT_EQ(v[1].y, 105.5f);
    EXPECT_EQ(v[7].y, 205.5f);
    EXPECT_THAT(overlay.gfx.recording.ArgumentsOf("SetViewport")[0], ElementsAre(0, 110, 640, 100, _, _));
    EXPECT_EQ(overlay.gfx->Viewport().Height, 480u);

    limited.gfx->Printf(10, 20, "AB");
    const RECT limits = {0, 0, 40, 400}, elsewhere = {300, 0, 400, 400}, whole = {0, 0, 640, 480};
    for (const RECT& empty : {RECT{10, 10, 10, 400}, RECT{10, 400, 300, 10}}) limited.gfx->DrawText(empty, 0, 0);
    limited.gfx->SetTextLimits(&elsewhere);
    limited.gfx->DrawText(whole, 0, 0);
    EXPECT_EQ(limited.gfx.recording.Draws().size(), 0u) << "no text lies there";
    limited.gfx->SetTextLimits(&limits);
    limited.gfx->DrawText(whole, 0, 0);
    EXPECT_EQ(limited.gfx.recording.Draws().size(), 1u);
    EXPECT_THAT(limited.gfx.recording.ArgumentsOf("SetViewport")[0], ElementsAre(10, 20, 30, 24, _, _))
        << "the limits and the text's own extent";
}

// ---- Pictures

/// A picture of 16 x 8 to be drawn.
struct ScreenTexture : testing::Test {
    ScreenTexture() {
        gfx->CreateTexture(&texture, 16, 8, 4, -1, 1);
        gfx->BeginScene();
    }
    const RecordedDraw& Drawn(std::size_t i) const { return gfx.recording.Draws().at(i); }
    /// x, y, z, u and v of each corner.
    std::vector<std::vector<float>> Corners(std::size_t draw) const {
        std::vector<std::vector<float>> corners;
        for (const KRN_TLVertex& v : VerticesOf(Drawn(draw))) {
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
