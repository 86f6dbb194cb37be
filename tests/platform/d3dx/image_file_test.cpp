// Picture files of every kind beside their pixels: generated, and in their many shapes byte by byte.
#include "platform/d3dx/dds_file.h"
#include "tests/support/picture_files.h"
#include "tests/support/test.h"

namespace sparkrig {
namespace {

using namespace std::string_literals;

struct FileRow {
    std::string name, file;
    std::vector<D3DCOLOR> pixels;   // none: only as many as there must be
    D3DFORMAT format = D3DFMT_UNKNOWN;
    D3DXIMAGE_FILEFORMAT kind = D3DXIFF_BMP;   // when the format is given
};

std::string Bmp(UINT header, UINT bits, UINT compression, const std::string& between, const std::string& data,
                int height = 2) {
    return BmpBytes(3, height, header, bits, compression, between, data);
}
std::string Tga(UINT type, UINT bits, UINT descriptor, const std::string& map, const std::string& data) {
    return TgaBytes(3, 2, type, bits, descriptor, map, data);
}

constexpr D3DCOLOR kRed = 0xFFFF0000, kGreen = 0xFF00FF00, kBlue = 0xFF0000FF, kBlack = 0xFF000000;
const std::string kThree = "\0\0\xFF\0\xFF\0\xFF\0\0"s;        // red, green, blue
const std::string kFour = "\0\0\xFF\0\0\xFF\0\0\xFF\0\0\0"s;   // the same with a fourth byte each
const std::vector<D3DCOLOR> kPicture = {kRed, kGreen, kBlue, kBlue, kRed, kGreen};

std::vector<FileRow> GeneratedFiles() {
    const TestPicture picture = TestPicture::Pattern(7, 5), opaque = TestPicture::Pattern(7, 5, false);
    return {{"", BmpFile(picture, D3DFMT_R8G8B8), opaque.pixels, D3DFMT_R8G8B8, D3DXIFF_BMP},
            {"", BmpFile(picture, D3DFMT_X8R8G8B8), opaque.pixels, D3DFMT_X8R8G8B8, D3DXIFF_BMP},
            {"", BmpFile(picture, D3DFMT_A8R8G8B8), picture.pixels, D3DFMT_A8R8G8B8, D3DXIFF_BMP},
            {"", BmpFile(picture, D3DFMT_R5G6B5), {}, D3DFMT_R5G6B5, D3DXIFF_BMP},
            {"", BmpFile(picture, D3DFMT_X1R5G5B5), {}, D3DFMT_X1R5G5B5, D3DXIFF_BMP},
            {"", JpgFile(picture, 3), {}, D3DFMT_X8R8G8B8, D3DXIFF_JPG},
            {"", TgaFile(picture, D3DFMT_R8G8B8), opaque.pixels, D3DFMT_R8G8B8, D3DXIFF_TGA},
            {"", TgaFile(picture, D3DFMT_A8R8G8B8, true), picture.pixels, D3DFMT_A8R8G8B8, D3DXIFF_TGA},
            {"", TgaFile(picture, D3DFMT_A1R5G5B5), {}, D3DFMT_A1R5G5B5, D3DXIFF_TGA},
            {"", TgaFile(picture, D3DFMT_X1R5G5B5), {}, D3DFMT_X1R5G5B5, D3DXIFF_TGA},
            {"", TgaFile(picture, D3DFMT_L8), {}, D3DFMT_L8, D3DXIFF_TGA},
            {"", PngFile(picture, 1), {}, D3DFMT_L8, D3DXIFF_PNG},
            {"", PngFile(picture, 2), {}, D3DFMT_A8L8, D3DXIFF_PNG},
            {"", PngFile(picture, 3), opaque.pixels, D3DFMT_X8R8G8B8, D3DXIFF_PNG},
            {"", PngFile(picture, 4), picture.pixels, D3DFMT_A8R8G8B8, D3DXIFF_PNG},
            {"", PalettePngFile(picture, 0xFF102030, 0xFF405060), {}, D3DFMT_P8, D3DXIFF_PNG},
            {"", DdsFile(picture), picture.pixels, D3DFMT_A8R8G8B8, D3DXIFF_DDS}};
}

/// An 8 x 4 picture in each pixel format.
std::vector<FileRow> DdsFiles() {
    const std::pair<D3DFORMAT, DdsFields> kRows[] = {
        {D3DFMT_A8R8G8B8, {8, 4, 0, 0x41, 0, 32, 0xFF0000, 0xFF00, 0xFF, 0xFF000000}},
        {D3DFMT_X8R8G8B8, {8, 4, 0, 0x40, 0, 32, 0xFF0000, 0xFF00, 0xFF, 0}},
        {D3DFMT_A8B8G8R8, {8, 4, 0, 0x41, 0, 32, 0xFF, 0xFF00, 0xFF0000, 0xFF000000}},
        {D3DFMT_R8G8B8, {8, 4, 0, 0x40, 0, 24, 0xFF0000, 0xFF00, 0xFF, 0}},
        {D3DFMT_R5G6B5, {8, 4, 0, 0x40, 0, 16, 0xF800, 0x7E0, 0x1F, 0}},
        {D3DFMT_X1R5G5B5, {8, 4, 0, 0x40, 0, 16, 0x7C00, 0x3E0, 0x1F, 0}},
        {D3DFMT_A1R5G5B5, {8, 4, 0, 0x41, 0, 16, 0x7C00, 0x3E0, 0x1F, 0x8000}},
        {D3DFMT_A4R4G4B4, {8, 4, 0, 0x41, 0, 16, 0xF00, 0xF0, 0xF, 0xF000}},
        {D3DFMT_A8, {8, 4, 0, 2, 0, 8, 0, 0, 0, 0xFF}},
        {D3DFMT_L8, {8, 4, 0, 0x20000, 0, 8, 0xFF, 0, 0, 0}},
        {D3DFMT_A8L8, {8, 4, 0, 0x20001, 0, 16, 0xFF, 0, 0, 0xFF00}},
        {D3DFMT_DXT1, {8, 4, 0, 4, D3DFMT_DXT1, 0, 0, 0, 0, 0}},
        {D3DFMT_DXT5, {8, 4, 0, 5, D3DFMT_DXT5, 32, 1, 2, 3, 4}},
    };
    std::vector<FileRow> files;
    for (const auto& [format, fields] : kRows)
        files.push_back({"", DdsHead(fields) + std::string(8 * 4 * 4, '\x55'), {}, format, D3DXIFF_DDS});
    return files;
}

std::vector<FileRow> BmpFiles() {
    const std::string k10Bits = Little(0x3FF00000, 4) + Little(0xFFC00, 4) + Little(0x3FF, 4) + Little(0xC0000000, 4);
    const std::string k4Bits = Little(0xF00, 4) + Little(0xF0, 4) + Little(0xF, 4) + Little(0xF000, 4);
    return {
        {"8 bits", Bmp(40, 8, 0, kFour, "\2\0\1\0\0\1\2\0"s), kPicture},
        {"8 bits from the top", Bmp(40, 8, 0, kFour, "\0\1\2\0\2\0\1\0"s, -2), kPicture},
        {"8 bits, old head", Bmp(12, 8, 0, kThree, "\2\0\1\0\0\1\2\0"s), kPicture},
        {"4 bits, old head", Bmp(12, 4, 0, kThree, "\x20\x10\0\0\x01\x20\0\0"s), kPicture},
        {"1 bit",
         Bmp(40, 1, 0, kFour.substr(0, 8), "\x40\0\0\0\xA0\0\0\0"s),
         {kGreen, kRed, kGreen, kRed, kGreen, kRed}},
        {"an index beyond the palette",
         Bmp(40, 8, 0, kFour, "\2\0\1\0\3\xFF\2\0"s),
         {kBlack, kBlack, kBlue, kBlue, kRed, kGreen}},
        {"24 bits behind a gap",
         Bmp(40, 24, 0, "something", "\xFF\0\0\0\0\xFF\0\xFF\0\0\0\0\0\0\xFF\0\xFF\0\xFF\0\0\0\0\0"s), kPicture},
        {"16 bits",
         Bmp(40, 16, 0, "", "\x10\x42\0\0\x01\0\0\0\xFF\x7F\x1F\0\x11\0\0\0"s),
         {0xFFFFFFFF, 0xFF0000FF, 0xFF00008C, 0xFF848484, kBlack, 0xFF000008}},
        {"16 bits with masks",
         Bmp(56, 16, 3, k4Bits, "\x21\x43\0\0\x01\0\0\0\x88\xF8\x80\x10\0\0\0\0"s),
         {0xFF888888, 0x11008800, 0x00000000, 0x44332211, 0x00000000, 0x00000011}},
        {"32 bits with masks of 10",
         Bmp(124, 32, 3, k10Bits, "\0\0\0\0\0\0\0\x40\0\0\xF0\xFF\xFF\x03\0\xC0\0\xFC\x0F\xC0\0\x02\0\x80"s),
         {0xFF0000FF, 0xFF00FF00, 0xAA000080, 0x00000000, 0x55000000, 0xFFFF0000}},
        {"8 bits in runs",   // a run, singles with a filler; then a run beyond the row's end
         Bmp(40, 8, 1, kFour, "\1\2\5\0\0\0\0\3\0\1\2\0\0\1"s),
         {kRed, kGreen, kBlue, kBlue, kRed, kRed}},
        {"8 bits in runs, moved on",
         Bmp(40, 8, 1, kFour, "\1\1\0\2\1\1\5\2\0\1"s),
         {kRed, kRed, kBlue, kGreen, kRed, kRed}},
        {"4 bits in runs",
         Bmp(40, 4, 2, kFour, "\3\x20\0\0\0\3\x01\x20\0\1"s),
         {kRed, kGreen, kBlue, kBlue, kRed, kBlue}},
    };
}

std::vector<FileRow> TgaFiles() {
    const std::string kMap = Little(3, 2) + Little(3, 2) + "\x18" + kThree;   // three of 24 bits, from index 3 on
    const std::string kColours = "\0\0\xFF\0\xFF\0\xFF\0\0\xFF\0\0\0\0\xFF\0\xFF\0"s;
    const std::string kBackwards = "\xFF\0\0\0\xFF\0\0\0\xFF\0\xFF\0\0\0\xFF\xFF\0\0"s;   // each row from its end
    return {
        {"upper left", Tga(2, 24, 0x20, "", kColours), kPicture},
        {"lower left", Tga(2, 24, 0, "", kColours.substr(9) + kColours.substr(0, 9)), kPicture},
        {"upper right", Tga(2, 24, 0x30, "", kBackwards), kPicture},
        {"lower right", Tga(2, 24, 0x10, "", kBackwards.substr(9) + kBackwards.substr(0, 9)), kPicture},
        {"an unused map", Tga(2, 24, 0x20, kMap, kColours), kPicture},
        {"mapped", Tga(1, 8, 0x20, kMap, "\3\4\5\5\3\4"), kPicture},
        {"an index outside the map",
         Tga(1, 8, 0x20, kMap, "\2\4\5\5\3\6"),
         {kBlack, kGreen, kBlue, kBlue, kRed, kBlack}},
        {"mapped, 16 bits",
         Tga(1, 16, 0x20, kMap, "\3\0\4\0\5\0\5\0\3\0\4\1"s),
         {kRed, kGreen, kBlue, kBlue, kRed, kBlack}},
        {"runs across rows",
         Tga(10, 24, 0x20, "", "\x83\0\0\xFF\1\0\xFF\0\xFF\0\0"s),
         {kRed, kRed, kRed, kRed, kGreen, kBlue}},
        {"mapped in runs", Tga(9, 8, 0x20, kMap, "\2\3\4\5\x82\4"), {kRed, kGreen, kBlue, kGreen, kGreen, kGreen}},
        {"15 bits",
         Tga(2, 15, 0x20, "", "\1\x80\x20\0\0\4\x10\x42\xFF\x7F\x11\0"s),
         {0xFF000008, 0xFF000800, 0xFF080000, 0xFF848484, 0xFFFFFFFF, 0xFF00008C}},
        {"16 bits with alpha",
         Tga(2, 16, 0x21, "", "\1\x80\x20\0\0\4\x10\xC2\xFF\x7F\x11\x80"s),
         {0xFF000008, 0x00000800, 0x00080000, 0xFF848484, 0x00FFFFFF, 0xFF00008C}},
        {"grey with alpha",
         Tga(3, 16, 0x28, "", "\x10\1\x20\2\x30\3\x40\4\x50\5\x60\6"),
         {0x01101010, 0x02202020, 0x03303030, 0x04404040, 0x05505050, 0x06606060}},
    };
}

TEST(ImageFile, IsReadInEveryShapeAndRefusedWhenItIsCut) {
    for (const auto& files : {GeneratedFiles(), DdsFiles(), BmpFiles(), TgaFiles()}) {
        for (const auto& [name, file, pixels, format, kind] : files) {
            SCOPED_TRACE(name + " " + std::to_string(kind) + " " + std::to_string(format));
            D3DXIMAGE_INFO info = {};
            ASSERT_EQ(ReadImageInfo(BytesOf(file), info), D3D_OK);
            EXPECT_EQ(info.MipLevels, 1u);
            const bool given = format != D3DFMT_UNKNOWN;
            EXPECT_EQ(given ? info.Format : format, format);
            EXPECT_EQ(given ? info.ImageFileFormat : kind, kind);
            const std::vector<D3DCOLOR> whole = Decoded(file);
            EXPECT_EQ(whole.size(), std::size_t{info.Width} * info.Height);
            EXPECT_EQ(pixels.empty() ? whole : pixels, whole);
            const bool streams = given && (kind == D3DXIFF_PNG || kind == D3DXIFF_JPG);   // their end tells little
            const std::size_t padding = kind == D3DXIFF_DDS ? file.size() : 3;            // behind the last row
            for (std::size_t length = 0; length < file.size(); ++length) {
                const std::vector<D3DCOLOR> cut = Decoded(file.substr(0, length));
                if (cut.empty()) continue;
                EXPECT_EQ(cut.size(), whole.size()) << length;
                EXPECT_TRUE(streams || (cut == whole && length + padding >= file.size())) << length;
            }
        }
    }
}

/// Files whose parts do not fit together, by what is wrong.
using Misfits = std::vector<std::pair<const char*, std::string>>;

std::string Put(std::string file, std::size_t at, UINT value) { return With(std::move(file), at, Little(value, 4)); }

void ExpectTaken(const std::string& file) {
    D3DXIMAGE_INFO info = {};
    EXPECT_EQ(ReadImageInfo(BytesOf(file), info), D3D_OK);
}

void ExpectRefused(const Misfits& rows) {
    D3DXIMAGE_INFO info = {};
    for (const auto& [name, file] : rows) EXPECT_EQ(ReadImageInfo(BytesOf(file), info), D3DXERR_INVALIDDATA) << name;
}

TEST(ImageFile, IsRefusedWhenItsHeadDoesNotFitItsData) {
    const TestPicture picture = TestPicture::Pattern(6, 5);
    const std::string bmp = BmpFile(picture, D3DFMT_R8G8B8), tga = TgaFile(picture, D3DFMT_R8G8B8),
                      png = PngFile(picture, 4), mapped = Bmp(40, 8, 0, kFour, "\2\0\1\0\0\1\2\0"s);
    for (const std::string& file : {bmp, tga, png, mapped, TgaFile(TestPicture::Pattern(kMaxImageSide, 1), D3DFMT_L8)})
        ExpectTaken(file);
    ExpectRefused({
        {"empty", ""},
        {"text", "no picture at all, only some lines of text that go on for a while"},
        {"bmp 0 x 5", Put(bmp, 18, 0)},
        {"bmp 6 x 0", Put(bmp, 22, 0)},
        {"bmp product wraps", Put(Put(bmp, 18, 65536), 22, 65536)},
        {"bmp run-length coded", Put(bmp, 30, 1)},
        {"bmp head of another size", Put(mapped, 14, 44)},
        {"bmp data inside the head", Put(mapped, 10, 50)},
        {"bmp data beyond the end", Put(mapped, 10, 0xFFFFFFF0)},
        {"bmp of 2 bits", With(mapped, 28, Little(2, 2))},
        {"bmp runs of 4 bits in 8", Put(mapped, 30, 2)},
        {"bmp masks in 8 bits", Put(mapped, 30, 3)},
        {"bmp of the lowest height", Put(mapped, 22, 0x80000000)},
        {"tga 0 x 5", With(tga, 12, Little(0, 2))},
        {"tga larger than its data", With(tga, 14, Little(6, 2))},
        {"tga larger than any", TgaFile(TestPicture::Pattern(kMaxImageSide + 1, 1), D3DFMT_L8)},
        {"png too large for its bytes", Put(Put(png, 16, 0x00400000), 20, 0x00400000)},
        {"png without head", Put(png, 12, 0)},
    });
}

/// The decoder behind it would use such tables unasked.
TEST(ImageFile, IsRefusedWhenItsJpgTablesCannotBeUsed) {
    const std::string jpg = JpgFile(TestPicture::Pattern(6, 5), 3);
    const auto behind = [&jpg](const char* marker) { return jpg.find(marker) + 4; };
    const std::size_t frame = behind("\xFF\xC0"), codes = behind("\xFF\xC4"), quantisation = behind("\xFF\xDB"),
                      scan = behind("\xFF\xDA");
    ExpectTaken(jpg);
    ExpectRefused({
        {"more codes than bytes", With(jpg, codes + 1, "\xFF\xFF")},
        {"a table of a third coder", With(jpg, codes, "\x20")},
        {"a table beyond the fourth", With(jpg, codes, "\x04")},
        {"the first table under another number", With(jpg, codes, "\x03")},
        {"a scan with a table never given", With(jpg, scan + 2, "\x13")},
        {"a scan of a component that is not there", With(jpg, scan + 1, "\x09")},
        {"a quantisation table beyond the fourth", With(jpg, quantisation, "\x04")},
        {"a component whose quantisation was never given", With(jpg, frame + 8, "\x03")},
    });
}

TEST(ImageFile, IsRefusedWhenItsDdsHeadIsNotAPictures) {
    constexpr DdsFields kGood = {4, 4, 1, 0x41, 0, 32, 0xFF0000, 0xFF00, 0xFF, 0xFF000000};
    const std::string data(64, '\x11'), good = DdsHead(kGood) + data;
    const auto changed = [&](void (*change)(DdsFields&)) {
        DdsFields fields = kGood;
        change(fields);
        return DdsHead(fields) + data;
    };
    ExpectTaken(good);
    ExpectRefused({
        {"dds 0 x 4", changed([](DdsFields& f) { f.width = 0; })},
        {"dds too high", changed([](DdsFields& f) { f.height = 0xFFFFFFFF; })},
        {"dds too large", changed([](DdsFields& f) { f.width = f.height = 65536; })},
        {"dds of one column too many", changed([](DdsFields& f) { f.width = 5; })},
        {"dds without its second level", changed([](DdsFields& f) { f.mip_count = 2; })},
        {"dds of levels without end", changed([](DdsFields& f) { f.mip_count = 0x80000000; })},
        {"dds of a cube", changed([](DdsFields& f) { f.caps2 = 0x200; })},
        {"dds of a volume", changed([](DdsFields& f) { f.caps2 = 0x200000; })},
        {"dds of later formats",
         changed([](DdsFields& f) { f.flags = 4, f.four_cc = MakeFourCC('D', 'X', '1', '0'); })},
        {"dds of 31 bits", changed([](DdsFields& f) { f.bits = 31; })},
        {"dds of an odd mask", changed([](DdsFields& f) { f.g = 0xFF01; })},
        {"dds with a head of another size", Put(good, 4, 125)},
        {"dds with a format of another size", Put(good, 76, 33)},
    });
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
    const std::string small = With(png, 16, Little(1 << 24, 4) + Little(1 << 24, 4));
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

TEST(DdsFile, FindsLevelsOneAfterTheOther) {
    const D3DXIMAGE_INFO info = {10, 4, 1, 4, D3DFMT_DXT1, D3DRTYPE_TEXTURE, D3DXIFF_DDS};
    constexpr std::size_t kRows[][5] = {{10, 4, 128, 24, 1}, {5, 2, 152, 16, 1}, {2, 1, 168, 8, 1}, {1, 1, 176, 8, 1}};
    for (UINT level = 0; level < 4; ++level) {
        const DdsLevel found = FindDdsLevel(info, level);
        EXPECT_THAT(kRows[level], ElementsAre(found.width, found.height, found.offset, found.row_bytes, found.rows));
    }
}

}   // namespace
}   // namespace sparkrig
