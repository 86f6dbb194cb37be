#include <gtest/gtest.h>

#include "tests/support/picture_files.h"

namespace sparkrig {
namespace {

using namespace std::string_literals;

std::string Put32(std::string file, std::size_t at, UINT value) { return With(std::move(file), at, Little(value, 4)); }

TEST(ImageInfo, NamesTheFormatThatTheFileHolds) {
    const TestPicture picture = TestPicture::Pattern(7, 5);
    const std::tuple<D3DXIMAGE_FILEFORMAT, D3DFORMAT, std::string> kRows[] = {
        {D3DXIFF_BMP, D3DFMT_R8G8B8, BmpFile(picture, D3DFMT_R8G8B8)},
        {D3DXIFF_BMP, D3DFMT_X8R8G8B8, BmpFile(picture, D3DFMT_X8R8G8B8)},
        {D3DXIFF_BMP, D3DFMT_A8R8G8B8, BmpFile(picture, D3DFMT_A8R8G8B8)},
        {D3DXIFF_BMP, D3DFMT_R5G6B5, BmpFile(picture, D3DFMT_R5G6B5)},
        {D3DXIFF_BMP, D3DFMT_X1R5G5B5, BmpFile(picture, D3DFMT_X1R5G5B5)},
        {D3DXIFF_JPG, D3DFMT_X8R8G8B8, JpgFile(picture, 3)},
        {D3DXIFF_TGA, D3DFMT_R8G8B8, TgaFile(picture, D3DFMT_R8G8B8)},
        {D3DXIFF_TGA, D3DFMT_A8R8G8B8, TgaFile(picture, D3DFMT_A8R8G8B8, true)},
        {D3DXIFF_TGA, D3DFMT_A1R5G5B5, TgaFile(picture, D3DFMT_A1R5G5B5)},
        {D3DXIFF_TGA, D3DFMT_X1R5G5B5, TgaFile(picture, D3DFMT_X1R5G5B5)},
        {D3DXIFF_TGA, D3DFMT_L8, TgaFile(picture, D3DFMT_L8)},
        {D3DXIFF_PNG, D3DFMT_L8, PngFile(picture, 1)},
        {D3DXIFF_PNG, D3DFMT_A8L8, PngFile(picture, 2)},
        {D3DXIFF_PNG, D3DFMT_X8R8G8B8, PngFile(picture, 3)},
        {D3DXIFF_PNG, D3DFMT_A8R8G8B8, PngFile(picture, 4)},
        {D3DXIFF_PNG, D3DFMT_P8, PalettePngFile(picture, 0xFF102030, 0xFF405060)},
        {D3DXIFF_DDS, D3DFMT_A8R8G8B8, DdsFile(picture)}};
    for (const auto& [kind, format, file] : kRows) {
        SCOPED_TRACE(kind * 1000 + static_cast<int>(format));
        D3DXIMAGE_INFO info = {};
        ASSERT_EQ(ReadImageInfo(BytesOf(file), info), D3D_OK);
        EXPECT_EQ(info.Width, 7u);
        EXPECT_EQ(info.Height, 5u);
        EXPECT_EQ(info.MipLevels, 1u);
        EXPECT_EQ(info.Format, format);
        EXPECT_EQ(info.ImageFileFormat, kind);
    }
}

TEST(ImageInfo, RefusesWhatCannotBeAPicture) {
    const std::string bmp = BmpFile(TestPicture::Pattern(6, 5), D3DFMT_R8G8B8);
    const std::string tga = TgaFile(TestPicture::Pattern(6, 5), D3DFMT_R8G8B8);
    const std::string png = PngFile(TestPicture::Pattern(6, 5), 4);
    const std::pair<const char*, std::string> kRows[] = {
        {"empty", ""},
        {"text", "no picture at all, only some lines of text that go on for a while"},
        {"bmp 0 x 5", Put32(bmp, 18, 0)},
        {"bmp 6 x 0", Put32(bmp, 22, 0)},
        {"bmp product wraps", Put32(Put32(bmp, 18, 65536), 22, 65536)},
        {"bmp run-length coded", Put32(bmp, 30, 1)},
        {"tga 0 x 5", With(tga, 12, Little(0, 2))},
        {"tga larger than its data", With(tga, 14, Little(6, 2))},
        {"png too large for its bytes", Put32(Put32(png, 16, 0x00400000), 20, 0x00400000)},
        {"png without head", Put32(png, 12, 0)}};
    D3DXIMAGE_INFO info = {};
    for (const auto& [name, file] : kRows) EXPECT_EQ(ReadImageInfo(BytesOf(file), info), D3DXERR_INVALIDDATA) << name;
}

TEST(ImageInfo, RefusesAJpgWhoseTablesTheDecoderCouldNotUse) {
    const std::string whole = JpgFile(TestPicture::Pattern(6, 5), 3);
    const auto behind = [&whole](const char* marker) { return whole.find(marker) + 4; };
    const std::size_t frame = behind("\xFF\xC0"), codes = behind("\xFF\xC4"), quantisation = behind("\xFF\xDB"),
                      scan = behind("\xFF\xDA");
    const struct {
        const char* name;
        std::size_t place;
        const char* bytes;
    } kRows[] = {{"more codes than bytes", codes + 1, "\xFF\xFF"},
                 {"a table of a third coder", codes, "\x20"},
                 {"a table beyond the fourth", codes, "\x04"},
                 {"the first table under another number", codes, "\x03"},
                 {"a scan with a table never given", scan + 2, "\x13"},
                 {"a scan of a component that is not there", scan + 1, "\x09"},
                 {"a quantisation table beyond the fourth", quantisation, "\x04"},
                 {"a component whose quantisation was never given", frame + 8, "\x03"}};
    D3DXIMAGE_INFO info = {};
    ASSERT_EQ(ReadImageInfo(BytesOf(whole), info), D3D_OK);
    for (const auto& row : kRows)
        EXPECT_EQ(ReadImageInfo(BytesOf(With(whole, row.place, row.bytes)), info), D3DXERR_INVALIDDATA) << row.name;
}

TEST(ImageInfo, TakesTheLongestSideThatIsAllowed) {
    const std::string file = TgaFile(TestPicture::Pattern(kMaxImageSide, 1), D3DFMT_L8);
    D3DXIMAGE_INFO info = {};
    ASSERT_EQ(ReadImageInfo(BytesOf(file), info), D3D_OK);
    EXPECT_EQ(info.Width, 16384u);
    EXPECT_EQ(ReadImageInfo(BytesOf(TgaFile(TestPicture::Pattern(kMaxImageSide + 1, 1), D3DFMT_L8)), info),
              D3DXERR_INVALIDDATA);
}

TEST(ImageFile, GivesThePixelsThatWereWritten) {
    const TestPicture picture = TestPicture::Pattern(9, 6), opaque = TestPicture::Pattern(9, 6, false);
    // Alpha does not change the other channels of the pattern, so both pictures have the same colours.
    EXPECT_EQ(Decoded(BmpFile(picture, D3DFMT_X8R8G8B8)), opaque.pixels);
    EXPECT_EQ(Decoded(BmpFile(picture, D3DFMT_A8R8G8B8)), picture.pixels);
    EXPECT_EQ(Decoded(TgaFile(picture, D3DFMT_A8R8G8B8)), picture.pixels);
    EXPECT_EQ(Decoded(PngFile(picture, 3)), opaque.pixels);
    EXPECT_EQ(Decoded(PngFile(picture, 4)), picture.pixels);
}

TEST(ImageFile, SmallFilesTakeNeitherTimeNorMemory) {
    const std::string jpg = JpgFile(TestPicture::Pattern(6, 5), 3);
    const std::size_t scan = jpg.find("\xFF\xDA"), end = jpg.size() - 2;
    std::string scans;   // each goes over the whole picture
    for (int i = 0; i < 64; ++i) scans += jpg.substr(scan, 14);
    D3DXIMAGE_INFO info = {};
    EXPECT_EQ(ReadImageInfo(BytesOf(jpg.substr(0, end) + scans.substr(14) + jpg.substr(end)), info), D3D_OK);
    EXPECT_EQ(ReadImageInfo(BytesOf(jpg.substr(0, end) + scans + jpg.substr(end)), info), D3DXERR_INVALIDDATA);

    // Four megabytes of pixels in a picture of one.
    const std::string png = PngFile({2048, 2048, std::vector<D3DCOLOR>(2048 * 2048)}, 1);
    const std::string small = Put32(Put32(png, 16, 1 << 24), 20, 1 << 24);
    ASSERT_EQ(ReadImageInfo(BytesOf(small), info), D3D_OK);
    EXPECT_EQ(info.Width, 1u);
    EXPECT_TRUE(Decoded(small).empty());
}

TEST(ImageFile, ColoursThatAPngsPaletteLacksAreBlack) {
    std::string file = PalettePngFile(TestPicture::Pattern(9, 6), 0xFF102030, 0xFF405060);
    const std::size_t palette = file.find("PLTE");
    file.replace(palette - 4, 4, "\0\0\0\3"s);   // the second colour and the check are cut out
    file.erase(palette + 7, 3);
    const std::vector<D3DCOLOR> pixels = Decoded(file);
    ASSERT_EQ(pixels.size(), 54u);
    for (const D3DCOLOR p : pixels) EXPECT_TRUE(p == 0xFF102030 || (p & 0xFFFFFF) == 0) << std::hex << p;
}

TEST(ImageFile, CutShortAtEveryLengthItLoadsOrIsRefused) {
    const TestPicture picture = TestPicture::Pattern(5, 3);
    for (const std::string& file :
         {BmpFile(picture, D3DFMT_A8R8G8B8), TgaFile(picture, D3DFMT_A8R8G8B8, true), PngFile(picture, 4),
          PalettePngFile(picture, 0x40102030, 0xFF405060), JpgFile(picture, 3)}) {
        for (std::size_t length = 0; length < file.size(); ++length) {
            const std::size_t count = Decoded(file.substr(0, length)).size();
            EXPECT_TRUE(count == 0 || count == 15) << length;
        }
    }
}

}   // namespace
}   // namespace sparkrig
