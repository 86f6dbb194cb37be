// Pixels, levels and layers of textures and surfaces.

#include "gfx/device/surface.h"
#include "gfx/gfx.h"
#include "gfx/textures/texture.h"
#include "tests/support/recorded_gfx.h"

namespace sparkrig {
namespace {

class TextureSurface : public testing::Test {
  protected:
    void Create(UINT width, UINT height, D3DFORMAT format, int mode = 4, int levels = 1) {
        gfx_->CreateTexture(&texture_, width, height, mode, static_cast<int>(format), levels);
    }
    /// Does it while the texture is locked.
    template <class Action>
    void Locked(Action action) {
        texture_.Lock(nullptr, 0);
        action();
        texture_.Unlock();
    }

    RecordedGfx gfx_;
    KRN_Texture texture_;
};

TEST_F(TextureSurface, ReadsAndWritesPixelsOfTheLockedRectangle) {
    const std::pair<int, int> inside[] = {{2, 1}, {5, 4}}, outside[] = {{6, 4}, {1, 3}, {3, 5}, {4, 0}};
    for (const auto& [format, read] : {std::pair(D3DFMT_A8R8G8B8, 0xA1B2C3D4), {D3DFMT_A4R4G4B4, 0xA0B0C0D0}}) {
        Create(8, 6, format);
        const RECT rectangle = {2, 1, 6, 5};
        texture_.Lock(&rectangle, 0);
        for (const auto& [x, y] : inside) texture_.SetPixel(x, y, 0xA1B2C3D4);
        for (const auto& [x, y] : outside) texture_.SetPixel(x, y, 0xA1B2C3D4);
        for (const auto& [x, y] : outside) EXPECT_EQ(texture_.GetPixel(x, y), 0u) << format;
        texture_.Unlock();
        EXPECT_EQ(texture_.GetPixel(2, 1), 0u) << "without a lock";
        texture_.Lock(nullptr, 0);
        for (const auto& [x, y] : inside) EXPECT_EQ(texture_.GetPixel(x, y), read) << format;
        for (const auto& [x, y] : outside) EXPECT_NE(texture_.GetPixel(x, y), read) << format;
        texture_.Unlock();
    }
}

TEST_F(TextureSurface, LocksTheChosenLevel) {
    Create(12, 4, D3DFMT_A8R8G8B8, 4, 0);
    texture_.SetMipLevel(2);
    EXPECT_EQ(texture_.GetSize().x, 3);
    EXPECT_EQ(texture_.GetSize().y, 1);
    Locked([&] {
        texture_.SetPixel(2, 0, 0xFF102030);
        EXPECT_EQ(texture_.GetPixel(2, 0), 0xFF102030);
        EXPECT_EQ(texture_.GetPixel(3, 0), 0u);
    });
    texture_.SetMipLevel(3);
    EXPECT_EQ(texture_.GetSize().x, 1);
}

TEST_F(TextureSurface, ReportsWhatIsRefused) {
    EXPECT_EQ(ErrorOf([&] { texture_.Lock(nullptr, 0); }), "KRN_Texture: LockRect failed: D3DERR_INVALIDCALL");
    EXPECT_EQ(ErrorOf([&] { texture_.Unlock(); }), "KRN_Texture: UnlockRect failed: D3DERR_INVALIDCALL");
    Create(4, 4, D3DFMT_X1R5G5B5);
    EXPECT_EQ(ErrorOf([&] { texture_.GetSurfaceLevel(1); }), "KRN_Texture: GetSurfaceLevel failed: D3DERR_INVALIDCALL");
    Locked(
        [&] { EXPECT_EQ(ErrorOf([&] { texture_.GetPixel(1, 1); }), "KRN_Texture: Unsupported pixel format! (24)"); });
}

TEST_F(TextureSurface, Clears) {
    const RECT part = {1, 0, 3, 2};
    Create(4, 4, D3DFMT_A8R8G8B8);
    texture_.Clear(0xFF123456, nullptr);
    Locked([&] { EXPECT_EQ(texture_.GetPixel(3, 3), 0xFF123456); });
    EXPECT_EQ(ErrorOf([&] { texture_.Clear(0, &part); }),
              "KRN_Texture: Clear: rec only valid for D3DPOOL_DEFAULT surfaces");
    Create(4, 4, D3DFMT_A8R8G8B8, 3);
    texture_.Clear(0xFF123456, &part);
    EXPECT_EQ(gfx_.recording.Count("ColorFill"), 1);
    gfx_.recording.Fail("ColorFill", D3DERR_INVALIDCALL);
    EXPECT_EQ(ErrorOf([&] { texture_.Clear(0, nullptr); }), "KRN_Texture: ColorFill failed: D3DERR_INVALIDCALL");
}

TEST_F(TextureSurface, ReadsSinglePixelsOfCompressedBlocks) {
    // The colour half of the second block of the second row of blocks: red and blue, rows of the indices 0, 1, 2, 3.
    // The ends stand in the order of a three-colour block, which is read as four colours all the same.
    const BYTE colours[8] = {0x1F, 0x00, 0x00, 0xF8, 0xE4, 0xE4, 0xE4, 0xE4};
    for (const D3DFORMAT format : {D3DFMT_DXT1, D3DFMT_DXT5}) {
        Create(8, 8, format);
        Locked([&] {
            BYTE* block = static_cast<BYTE*>(texture_.Locked().pBits) + texture_.Locked().Pitch;
            block += format == D3DFMT_DXT1 ? 8 : 16;
            if (format == D3DFMT_DXT5) block[0] = 0x7B;
            std::copy_n(colours, 8, format == D3DFMT_DXT1 ? block : block + 8);
            const D3DCOLOR alpha = format == D3DFMT_DXT5 ? 0x7B000000 : 0xFF000000;
            const D3DCOLOR expected[] = {0x0000F8, 0xF80000, 0x5300A5, 0xA50053};
            D3DCOLOR colour = 0;
            for (int x = 0; x < 4; ++x) {
                EXPECT_TRUE(texture_.GetCompressedPix(4 + x, 6, colour));
                EXPECT_EQ(colour, alpha | expected[x]) << x;
            }
            EXPECT_FALSE(texture_.GetCompressedPix(8, 6, colour));
            EXPECT_EQ(colour, alpha | expected[3]) << "untouched";
        });
    }
    for (const D3DFORMAT format : {D3DFMT_DXT2, D3DFMT_DXT3, D3DFMT_DXT4}) {
        Create(8, 8, format);
        Locked([&] {
            D3DCOLOR colour;
            EXPECT_EQ(ErrorOf([&] { texture_.GetCompressedPix(1, 1, colour); }),
                      "KRN_Texture: Unsupported texture compression format for GetCompressedPix()");
        });
    }
}

TEST_F(TextureSurface, FindsPartialAlphaInItsSamples) {
    const std::tuple<const char*, D3DFORMAT, UINT, UINT, int, int, bool> rows[] = {
        // 4 samples an axis; of 8 pixels every second one from the first on, of 10 from 1 on.
        {"on a sample", D3DFMT_A8R8G8B8, 8, 8, 3, 5, true},  {"beside the samples", D3DFMT_A8R8G8B8, 8, 8, 2, 5, false},
        {"with a rest", D3DFMT_A8R8G8B8, 10, 8, 7, 1, true}, {"4444", D3DFMT_A4R4G4B4, 8, 8, 3, 3, true},
        {"small", D3DFMT_A8R8G8B8, 3, 2, 2, 1, true},        {"without alpha", D3DFMT_X8R8G8B8, 8, 8, 3, 3, false},
        {"another format", D3DFMT_A8L8, 8, 8, 3, 3, false},  {"many samples", D3DFMT_A8R8G8B8, 2048, 4, 16, 0, true},
    };
    for (const auto& [name, format, width, height, x, y, found] : rows) {
        Create(width, height, format);
        // 15 of 15 in four bits reads as 240, which counts as partial.
        texture_.Clear(format == D3DFMT_A4R4G4B4 ? 0 : x % 2 ? 0xFF000000 : 0x00FFFFFF, nullptr);
        texture_.AnalyseAlpha();
        EXPECT_FALSE(texture_.HasPartialAlpha()) << name;
        Locked([&, x = x, y = y] { texture_.SetPixel(x, y, 0x80000000); });
        texture_.AnalyseAlpha();
        EXPECT_EQ(texture_.HasPartialAlpha(), found) << name;
    }
}

TEST_F(TextureSurface, LayersAreChosenWithinBounds) {
    for (const int layer : {4, -1})
        EXPECT_EQ(ErrorOf([&] { texture_.SelectLayer(layer, false); }),
                  "KRN_Texture: Invalid texture stage selected: " + std::to_string(layer));
    EXPECT_EQ(ErrorOf([&] { texture_.SetStageMap(4, MapKind::Bump, 1); }), "KRN_Texture: Invalid texture stage: 4");
    Create(8, 4, D3DFMT_A8R8G8B8);
    texture_.SelectLayer(2, false);
    EXPECT_FALSE(texture_.HasSurface());
    Create(16, 4, D3DFMT_A8R8G8B8);
    EXPECT_EQ(texture_.Width(), 16.0f);
    texture_.SelectLayer(0, false);
    EXPECT_EQ(texture_.Width(), 8.0f);
}

TEST_F(TextureSurface, ASurfaceDoesTheSame) {
    Create(5, 3, D3DFMT_A8R8G8B8);
    KRN_Surface surface;
    EXPECT_FALSE(surface.HasSurface());
    EXPECT_EQ(ErrorOf([&] { surface.Lock(nullptr, 0); }), "KRN_Surface: LockRect failed: D3DERR_INVALIDCALL");
    surface.Wrap(texture_.GetSurfaceLevel(0).Get());
    RECT rectangle;
    surface.GetRect(rectangle);
    EXPECT_EQ(rectangle, (RECT{0, 0, 5, 3}));
    surface.Clear(*gfx_->Device(), 0xFF0A0B0C, nullptr);
    surface.Lock(nullptr, 0);
    EXPECT_EQ(surface.GetPixel(4, 2), 0xFF0A0B0C);
    surface.Unlock();
    EXPECT_EQ(ErrorOf([&] { surface.Clear(*gfx_->Device(), 0, &rectangle); }),
              "KRN_Surface: Clear: rec only valid for D3DPOOL_DEFAULT surfaces");
    surface.Wrap(nullptr);
    EXPECT_FALSE(surface.HasSurface());
}

}   // namespace
}   // namespace sparkrig
