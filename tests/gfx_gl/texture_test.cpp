// Textures from files on the real device: what is drawn against what stands in the file.
#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "gfx/geometry/vertex_list.h"
#include "gfx/gfx.h"
#include "gfx/textures/texture_catalogue.h"
#include "gfx/textures/texture_loader.h"
#include "platform/d3dx/dxt_blocks.h"
#include "platform/window/window.h"
#include "tests/support/canvas.h"
#include "tests/support/picture_files.h"
#include "tests/support/temporary_folder.h"

namespace sparkrig {
namespace {

LRESULT Ignore(HWND window, UINT message, WPARAM wide, LPARAM lng) {
    return DefWindowProcA(window, message, wide, lng);
}

class TexturePicture : public TemporaryFolder {
  protected:
    static void SetUpTestSuite() {
        KeepDriverLoaded();
        RegisterClassExA({Ignore, "TEXTURE"});
        gfx_ = std::make_unique<KRN_Gfx>();
        gfx_->InitDevice(CreateWindowExA("TEXTURE", "", 0, 0, 120, 120), 1, nullptr, 16, 0, 1, 0, 0);
        gfx_->SetCullingMode(0);
        gfx_->SetZBufferMode(0);
        gfx_->SetTextureFilter(2, 0);
        gfx_->SetTextureFilter(4, 0);
        gfx_->SetLighting(false, nullptr);
    }
    static void TearDownTestSuite() { gfx_.reset(); }

    void Load(const std::string& content, int parameter = 0, int format = -1, int levels = 1) {
        // A name of its own: files of one name written within a second are one file to the registry.
        const std::string name = "picture" + std::to_string(++pictures_);
        WriteFile(name, content);
        gfx_->LoadTexture(&texture_, name.c_str(), 0, parameter, format, levels);
    }
    /// Draws the texture over the upper left side x side pixels, coordinates from 0 to 1, over black.
    void Draw(int side, D3DCOLOR diffuse = 0xFFFFFFFF) {
        const float end = static_cast<float>(side) - 0.25f;
        DrawStrip<KRN_TLVertex>({{-0.25f, end, 0.5f, 1, diffuse, 0xFF000000, 0, 1},
                                 {-0.25f, -0.25f, 0.5f, 1, diffuse, 0xFF000000, 0, 0},
                                 {end, end, 0.5f, 1, diffuse, 0xFF000000, 1, 1},
                                 {end, -0.25f, 0.5f, 1, diffuse, 0xFF000000, 1, 0}});
    }
    /// Draws it over the whole view, through the vertex pipeline.
    void DrawInView() {
        const float y = 100 * std::tan(0.7854f / 2);
        const D3DVIEWPORT9& view = gfx_->Viewport();
        const float x = y * static_cast<float>(view.Width) / static_cast<float>(view.Height);
        DrawStrip<KRN_LVertex>({{-x, -y, 100, 0xFFFFFFFF, 0xFF000000, 0, 1},
                                {-x, y, 100, 0xFFFFFFFF, 0xFF000000, 0, 0},
                                {x, -y, 100, 0xFFFFFFFF, 0xFF000000, 1, 1},
                                {x, y, 100, 0xFFFFFFFF, 0xFF000000, 1, 0}});
    }
    template <class Vertex>
    void DrawStrip(const std::vector<Vertex>& corners) {
        KRN_VertexListTemp<Vertex> list(PrimitiveMode::TriangleStrip);
        gfx_->CreateVertexList(&list, 4, 0, true);
        std::ranges::copy(corners, list.Lock(0, 4, 0));
        list.Unlock();
        gfx_->BeginScene();
        gfx_->Clear(0xFF000000, 1, nullptr);
        gfx_->DrawTriangleList(list, 0, 2);
        gfx_->EndScene();
        gfx_->ReadBackBuffer(pixels_, width_, height_);
    }
    Rgb At(UINT x, UINT y) const { return ToRgb(pixels_.at(std::size_t{y} * width_ + x)); }
    void ExpectPixel(UINT x, UINT y, D3DCOLOR expected, int tolerance = 1) const {
        EXPECT_TRUE(Near(At(x, y), ToRgb(expected), tolerance))
            << "(" << x << ", " << y << ") is " << At(x, y) << ", not " << ToRgb(expected);
    }

    static std::unique_ptr<KRN_Gfx> gfx_;
    KRN_Texture texture_;
    int pictures_ = 0;
    std::vector<D3DCOLOR> pixels_;
    UINT width_ = 0, height_ = 0;
};
std::unique_ptr<KRN_Gfx> TexturePicture::gfx_;

TEST_F(TexturePicture, EveryKindOfFileIsDrawnAsItIs) {
    const TestPicture picture = TestPicture::Pattern(8, 8, false);
    const std::tuple<const char*, std::string, int> rows[] = {{"png", PngFile(picture, 4), 0},
                                                              {"png 3", PngFile(picture, 3), 0},
                                                              {"bmp", BmpFile(picture, D3DFMT_R8G8B8), 0},
                                                              {"bmp 565", BmpFile(picture, D3DFMT_R5G6B5), 5},
                                                              {"tga", TgaFile(picture, D3DFMT_A8R8G8B8, true), 0},
                                                              {"tga 16", TgaFile(picture, D3DFMT_A1R5G5B5), 5},
                                                              {"dds", DdsFile(picture), 0}};
    for (const auto& [name, file, tolerance] : rows) {
        for (const int parameter : {0, 1}) {   // managed, and the default pool
            SCOPED_TRACE(std::string(name) + std::to_string(parameter));
            gfx_->TextureOptions().sharing = false;
            Load(file, parameter);
            gfx_->SetTexture(&texture_, -1);
            Draw(8);
            for (UINT i = 0; i < 64; ++i) ExpectPixel(i % 8, i / 8, picture.pixels[i], tolerance);
            gfx_->SetTexture(nullptr, -1);
        }
    }
}

TEST_F(TexturePicture, FormatsThatTheDeviceLacksBecomeTheNearest) {
    const TestPicture grey = {2, 1, {0xFF404040, 0xFF909090}};
    const std::string swapped =
        DdsHead({1, 1, 1, 0x41, 0, 32, 0xFF, 0xFF00, 0xFF0000, 0xFF000000}) + "\x30\x20\x10\xFF";
    const std::tuple<std::string, int, D3DFORMAT, D3DCOLOR> rows[] = {
        // 3 is a render target
        {swapped, 0, D3DFMT_A8R8G8B8, 0xFF302010},
        {swapped, 3, D3DFMT_A8R8G8B8, 0xFF302010},
        {PngFile(grey, 1), 3, D3DFMT_X8R8G8B8, 0xFF404040},
        {PngFile(grey, 2), 3, D3DFMT_A8R8G8B8, 0xFF404040},
        {TgaFile(grey, D3DFMT_L8), 3, D3DFMT_X8R8G8B8, 0xFF404040}};
    for (const auto& [file, parameter, format, pixel] : rows) {
        Load(file, parameter);
        EXPECT_EQ(texture_.Format(), format);
        gfx_->SetTexture(&texture_, -1);
        Draw(8);
        ExpectPixel(1, 4, pixel, 1);
        gfx_->SetTexture(nullptr, -1);
    }
}

TEST_F(TexturePicture, CompressedBlocksAreDrawnAsTheyDecode) {
    const BYTE block[16] = {0xC8, 0x30, 0x88, 0xC6, 0xFA, 0x11, 0x52, 0x93,
                            0x1F, 0x84, 0x10, 0xF8, 0xE4, 0x1B, 0xB1, 0x4E};
    for (const D3DFORMAT format : {D3DFMT_DXT1, D3DFMT_DXT2, D3DFMT_DXT3, D3DFMT_DXT4, D3DFMT_DXT5}) {
        SCOPED_TRACE(format);
        const UINT bytes = DxtBlockBytes(format);
        const BYTE* start = block + 16 - bytes;
        Load(DdsHead({4, 4, 1, 4, format, 0, 0, 0, 0, 0}) + std::string(start, start + bytes));
        gfx_->SetTexture(&texture_, -1);
        Draw(4);
        D3DCOLOR expected[16];
        DecodeDxtBlock(format, start, expected);
        for (UINT i = 0; i < 16; ++i) ExpectPixel(i % 4, i / 4, expected[i], 4);
    }
}

TEST_F(TexturePicture, CompressingKeepsThePicture) {
    TestPicture picture = {256, 256, {}};
    for (UINT i = 0; i < 256 * 256; ++i) picture.pixels.push_back(0xFF000000 | (i % 256) << 16 | (i / 256) << 8 | 90);
    gfx_->TextureOptions().compression = true;
    Load(PngFile(picture, 4));
    gfx_->TextureOptions().compression = false;
    EXPECT_EQ(texture_.Format(), D3DFMT_DXT5);
    gfx_->SetTexture(&texture_, -1);
    Draw(64);
    for (UINT i = 3; i < 64; i += 7) ExpectPixel(i, 63 - i, picture.At(4 * i + 2, 4 * (63 - i) + 2), 8);
}

TEST_F(TexturePicture, SmallDrawingUsesTheAveragedLevels) {
    TestPicture board = {16, 16, {}};
    for (UINT i = 0; i < 256; ++i) board.pixels.push_back((i + i / 16) % 2 ? 0xFFC80028 : 0xFF00643C);
    Load(PngFile(board, 4), 0, -1, 0);
    gfx_->SetTexture(&texture_, -1);
    Draw(4);
    for (UINT i = 0; i < 16; ++i) ExpectPixel(i % 4, i / 4, 0xFF643232, 2);
}

TEST_F(TexturePicture, TheTextureIsMultipliedByTheDiffuseColourOrItsStandIn) {
    Load(PngFile({2, 1, {0xFFFF8040, 0xFF40C0FF}}, 4));
    gfx_->SetTexture(&texture_, -1);
    Draw(8, 0xFF804020);
    ExpectPixel(1, 4, 0xFF802008, 2);
    ExpectPixel(6, 4, 0xFF203020, 2);
    const D3DCOLOR colour = 0xFF2080FF;
    gfx_->SetLighting(false, &colour);
    gfx_->SetTexture(&texture_, -1);
    Draw(8, 0xFF804020);
    ExpectPixel(1, 4, 0xFF204040, 2);
    gfx_->SetTexture(nullptr, -1);
    Draw(8, 0xFF804020);
    ExpectPixel(1, 4, 0xFF2080FF, 1);
    gfx_->SetLighting(false, nullptr);
    gfx_->SetTexture(nullptr, -1);
    Draw(8, 0xFF804020);
    ExpectPixel(1, 4, 0xFF804020, 1);
}

TEST_F(TexturePicture, ASecondDiffuseLayerIsAdded) {
    Load(PngFile({1, 1, {0xFF602010}}, 4));
    texture_.SelectLayer(1, false);
    Load(PngFile({1, 1, {0xFF1040F8}}, 4));
    texture_.SetStageMap(1, MapKind::Diffuse, 1);
    texture_.SelectLayer(0, false);
    gfx_->SetTexture(&texture_, -1);
    Draw(8);
    ExpectPixel(3, 3, 0xFF7060FF, 1);
    KRN_Texture single;
    WriteFile("single", PngFile({1, 1, {0xFF203040}}, 4));
    gfx_->LoadTexture(&single, "single", 0, 0);
    gfx_->SetTexture(&single, -1);
    Draw(8);
    ExpectPixel(3, 3, 0xFF203040, 1);
    gfx_->SetTexture(nullptr, -1);
}

TEST_F(TexturePicture, TheAlphaTestLeavesOutPixelsOfTheTexture) {
    Load(PngFile({2, 1, {0x40FFFFFF, 0xC0FFFFFF}}, 4));
    texture_.SetAlphaTest(true);
    gfx_->SetAlphaTest(0, 128);
    gfx_->SetTexture(&texture_, -1);
    Draw(8);
    ExpectPixel(1, 1, 0xFF000000, 0);
    ExpectPixel(6, 1, 0xFFFFFFFF, 0);
    texture_.SetAlphaTest(false);
    gfx_->SetTexture(&texture_, -1);
    Draw(8);
    ExpectPixel(1, 1, 0xFFFFFFFF, 0);
}

TEST_F(TexturePicture, ALayersMatrixMovesTheCoordinates) {
    Load(PngFile({4, 1, {0xFF100000, 0xFF200000, 0xFF300000, 0xFF400000}}, 4));
    const auto expect_columns = [this](const std::array<D3DCOLOR, 4>& colours) {
        for (UINT i = 0; i < 4; ++i) ExpectPixel((2 * i + 1) * width_ / 8, height_ / 2, colours[i], 0);
    };
    gfx_->SetTexture(&texture_, -1);
    DrawInView();
    expect_columns({0xFF100000, 0xFF200000, 0xFF300000, 0xFF400000});
    texture_.SetLayerMatrix(0, {-0.25f, 0, 1, 1, 0});
    gfx_->SetTexture(&texture_, -1);
    DrawInView();
    expect_columns({0xFF200000, 0xFF300000, 0xFF400000, 0xFF100000});
    texture_.SetLayerMatrix(0, {});
    gfx_->SetTexture(&texture_, -1);
    DrawInView();
    expect_columns({0xFF100000, 0xFF200000, 0xFF300000, 0xFF400000});
}

TEST_F(TexturePicture, CatalogueTexturesAreDrawnAfterAReset) {
    KRN_TextureCatalogue& catalogue = gfx_->Catalogue();
    WriteFile("a.png", PngFile({1, 1, {0xFF336699}}, 4));
    WriteFile("catalogue.cfg", "\"a\" = \"a.png\"\n\"gone\" = \"gone.png\"\n");
    catalogue.Load("catalogue.cfg", nullptr, false);
    KRN_Texture* const texture = catalogue.GetTexture("a");
    gfx_->SetTexture(texture, -1);
    Draw(8);
    ExpectPixel(3, 3, 0xFF336699, 0);
    gfx_->ResetDevice(nullptr, -1);
    gfx_->SetZBufferMode(0);
    gfx_->SetTexture(texture, -1);
    Draw(8);
    ExpectPixel(3, 3, 0xFF336699, 0);
    gfx_->SetTexture(catalogue.GetTexture("gone"), -1);
    Draw(8);
    ExpectPixel(3, 3, 0xFF969696, 0);
    gfx_->SetTexture(nullptr, -1);
    catalogue.Clear();
}

}   // namespace
}   // namespace sparkrig
