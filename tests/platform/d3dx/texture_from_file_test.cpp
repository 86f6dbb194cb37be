#include "platform/d3dx/d3dx_texture.h"
#include "tests/support/picture_files.h"
#include "tests/support/recording.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/test.h"

namespace sparkrig {
namespace {

struct Options {
    UINT width = D3DX_DEFAULT_NONPOW2, height = D3DX_DEFAULT_NONPOW2, levels = 1;
    DWORD usage = 0;
    D3DFORMAT format = D3DFMT_UNKNOWN;
    D3DPOOL pool = D3DPOOL_MANAGED;
    DWORD filter = D3DX_FILTER_LINEAR, mip_filter = D3DX_FILTER_BOX;
    D3DCOLOR colour_key = 0;
};

class TextureFromFile : public TemporaryFolder {
  protected:
    HRESULT Load(const std::string& content, const Options& o = {}) {
        WriteFile("picture", content);
        return D3DXCreateTextureFromFileExA(device_.Get(), "picture", o.width, o.height, o.levels, o.usage, o.format,
                                            o.pool, o.filter, o.mip_filter, o.colour_key, &info_, texture_.Receive());
    }

    MemoryImage& Level(UINT level) { return static_cast<MemoryTexture&>(Behind(*texture_)).Level(level); }
    std::vector<D3DCOLOR> Pixels(UINT level = 0) {
        const MemoryImage& image = Level(level);
        std::vector<D3DCOLOR> pixels;
        for (UINT y = 0; y < image.desc.Height; ++y) {
            const auto* row = reinterpret_cast<const D3DCOLOR*>(image.bytes.data() + y * image.pitch);
            pixels.insert(pixels.end(), row, row + image.desc.Width);
        }
        return pixels;
    }

    Recording recording_;
    DevicePtr<IDirect3DDevice9> device_ = recording_.MakeDevice(D3DCREATE_HARDWARE_VERTEXPROCESSING);
    DevicePtr<IDirect3DTexture9> texture_;
    D3DXIMAGE_INFO info_ = {};
};

TEST_F(TextureFromFile, TakesTheNearestFormatThatTheDeviceHas) {
    recording_.refused_texture_formats.insert(D3DFMT_A8L8);
    const TestPicture picture = TestPicture::Pattern(4, 4);
    const std::tuple<std::string, D3DFORMAT, D3DFORMAT> kRows[] = {
        {BmpFile(picture, D3DFMT_R8G8B8), D3DFMT_UNKNOWN, D3DFMT_X8R8G8B8},
        {PalettePngFile(picture, 0xFF102030, 0xFF405060), D3DFMT_UNKNOWN, D3DFMT_X8R8G8B8},
        {PalettePngFile(picture, 0x80102030, 0xFF405060), D3DFMT_UNKNOWN, D3DFMT_A8R8G8B8},
        {PngFile(picture, 1), D3DFMT_UNKNOWN, D3DFMT_L8},
        {PngFile(picture, 2), D3DFMT_UNKNOWN, D3DFMT_A8R8G8B8},
        {PngFile(picture, 4), D3DFMT_A4R4G4B4, D3DFMT_A4R4G4B4},
        {PngFile(picture, 4), D3DFMT_DXT5, D3DFMT_DXT5},
        {JpgFile(picture, 3), D3DFMT_R5G6B5, D3DFMT_R5G6B5},
    };
    for (const auto& [file, asked, given] : kRows) {
        ASSERT_EQ(Load(file, {.format = asked}), D3D_OK);
        EXPECT_EQ(Level(0).desc.Format, given);
    }
}

TEST_F(TextureFromFile, ChoosesSizeAndLevels) {
    const std::string file = PngFile(TestPicture::Pattern(6, 20), 3);
    constexpr UINT kAsItIs = D3DX_DEFAULT_NONPOW2;
    constexpr std::array<UINT, 6> kRows[] = {// width, height and levels asked for, and given
                                             {D3DX_DEFAULT, D3DX_DEFAULT, 1, 8, 32, 1},
                                             {0, 0, 1, 8, 32, 1},
                                             {kAsItIs, kAsItIs, 1, 6, 20, 1},
                                             {D3DX_FROM_FILE, D3DX_FROM_FILE, 1, 6, 20, 1},
                                             {3, 40, 1, 3, 40, 1},
                                             {kAsItIs, kAsItIs, 0, 6, 20, 5},
                                             {kAsItIs, kAsItIs, D3DX_DEFAULT, 6, 20, 5},
                                             {kAsItIs, kAsItIs, 3, 6, 20, 3},
                                             {kAsItIs, kAsItIs, 99, 6, 20, 5},
                                             {kAsItIs, kAsItIs, D3DX_FROM_FILE, 6, 20, 1}};
    for (const auto& [asked_width, asked_height, asked_levels, width, height, levels] : kRows) {
        ASSERT_EQ(Load(file, {.width = asked_width, .height = asked_height, .levels = asked_levels}), D3D_OK);
        EXPECT_THAT((std::array{Level(0).desc.Width, Level(0).desc.Height, texture_->GetLevelCount()}),
                    ElementsAre(width, height, levels));
    }
}

TEST_F(TextureFromFile, AveragesItsLevelsTakesAColourKeyAndIsSurroundedWithoutAFilter) {
    ASSERT_EQ(Load(PngFile({4, 1, {0xFF000000, 0xFF0A1401, 0x80FF0000, 0x40000080}}, 4), {.levels = 0}), D3D_OK);
    EXPECT_THAT(Pixels(1), ElementsAre(0xFF050A01, 0x60800040));
    EXPECT_THAT(Pixels(2), ElementsAre(0xB0430521));
    ASSERT_EQ(Load(PngFile({3, 1, {0xFFFF00FF, 0x80FF00FF, 0xFF123456}}, 4), {.colour_key = 0xFFFF00FF}), D3D_OK);
    EXPECT_THAT(Pixels(), ElementsAre(0u, 0x80FF00FF, 0xFF123456));
    const TestPicture square = {2, 2, {0xFF112233, 0xFF445566, 0xFF778899, 0xFFAABBCC}};
    ASSERT_EQ(Load(PngFile(square, 4), {.width = 3, .height = 1, .filter = D3DX_FILTER_NONE}), D3D_OK);
    EXPECT_THAT(Pixels(), ElementsAre(0xFF112233, 0xFF445566, 0u)) << "and cut";
}

TEST_F(TextureFromFile, FillsWhatCannotBeLockedThroughSystemMemory) {
    const TestPicture picture = TestPicture::Pattern(4, 2);
    for (const DWORD usage : {0u, D3DUSAGE_RENDERTARGET, D3DUSAGE_DYNAMIC}) {
        recording_.ForgetCalls();
        ASSERT_EQ(Load(PngFile(picture, 4), {.usage = usage, .pool = D3DPOOL_DEFAULT}), D3D_OK);
        EXPECT_EQ(Level(0).desc.Pool, D3DPOOL_DEFAULT);
        EXPECT_EQ(Pixels(), picture.pixels);
        EXPECT_EQ(recording_.Count("UpdateTexture"), usage == D3DUSAGE_DYNAMIC ? 0 : 1);
    }
}

TEST_F(TextureFromFile, PassesOnWhatFails) {
    const int objects_before = recording_.LiveObjects();
    for (const char* method : {"CreateTexture", "LockRect", "UnlockRect"}) {
        recording_.Fail(method, D3DERR_OUTOFVIDEOMEMORY);
        EXPECT_EQ(Load(DdsFile(TestPicture::Pattern(4, 4))), D3DERR_OUTOFVIDEOMEMORY) << method;
    }
    EXPECT_EQ(Load("no picture"), D3DXERR_INVALIDDATA);
    EXPECT_EQ(D3DXGetImageInfoFromFileA("missing", &info_), D3DXERR_INVALIDDATA);
    EXPECT_EQ(D3DXGetImageInfoFromFileA(".", &info_), D3DXERR_INVALIDDATA);
    EXPECT_EQ(D3DXGetImageInfoFromFileA(nullptr, &info_), D3DERR_INVALIDCALL);
    EXPECT_EQ(recording_.LiveObjects(), objects_before);
    EXPECT_FALSE(texture_);
}

TEST_F(TextureFromFile, TakesTheStoredLevelsOfADdsFileAndMakesTheOthers) {
    // 4 x 4 and 2 x 2 in A8R8G8B8; the second level is no average of the first.
    std::string file = DdsHead({4, 4, 2, 0x41, 0, 32, 0xFF0000, 0xFF00, 0xFF, 0xFF000000});
    for (int i = 0; i < 16; ++i) file += "\x10\x20\x30\x40";
    for (int i = 0; i < 4; ++i) file += "\x04\x08\x0C\x14";
    ASSERT_EQ(Load(file, {.levels = 3}), D3D_OK);
    EXPECT_EQ(Pixels(0)[15], 0x40302010u);
    EXPECT_EQ(Pixels(1)[3], 0x140C0804u);
    EXPECT_THAT(Pixels(2), ElementsAre(0x140C0804u));

    const std::string other = DdsHead({2, 1, 2, 0x40, 0, 24, 0xFF0000, 0xFF00, 0xFF, 0});
    ASSERT_EQ(Load(other + "\x10\x20\x30\x40\x50\x60" + "\x70\x80\x90", {.levels = 2}), D3D_OK);
    EXPECT_EQ(Level(0).desc.Format, D3DFMT_X8R8G8B8);
    EXPECT_THAT(Pixels(0), ElementsAre(0xFF302010u, 0xFF605040u));
    EXPECT_THAT(Pixels(1), ElementsAre(0xFF908070u));

    const std::string block = "\x01\x02\x03\x04\x05\x06\x07\x08\x09\x0A\x0B\x0C\x0D\x0E\x0F\x10";
    ASSERT_EQ(Load(DdsHead({4, 4, 1, 4, D3DFMT_DXT5, 0, 0, 0, 0, 0}) + block), D3D_OK);
    EXPECT_EQ(Level(0).desc.Format, D3DFMT_DXT5);
    EXPECT_EQ(std::string(Level(0).bytes.begin(), Level(0).bytes.begin() + 16), block) << "as it is";
}

TEST_F(TextureFromFile, CorrectsTheShapeOfAnEmptyTexture) {
    ASSERT_EQ(D3DXCreateTexture(device_.Get(), 0, 9, 0, 0, D3DFMT_R8G8B8, D3DPOOL_MANAGED, texture_.Receive()), D3D_OK);
    EXPECT_EQ(Level(0).desc.Width, 1u);
    EXPECT_EQ(Level(0).desc.Height, 9u);
    EXPECT_EQ(Level(0).desc.Format, D3DFMT_X8R8G8B8);
    EXPECT_EQ(texture_->GetLevelCount(), 4u);
}

}   // namespace
}   // namespace sparkrig
