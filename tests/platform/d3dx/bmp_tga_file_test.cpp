// BMP and TGA files in their many shapes, written byte by byte, beside their pixels.
#include <gtest/gtest.h>

#include "tests/support/picture_files.h"

namespace sparkrig {
namespace {

using namespace std::string_literals;

struct FileRow {
    const char* name;
    std::string file;
    std::vector<D3DCOLOR> pixels;   // of two rows
};

void ExpectPixels(const FileRow& row) { EXPECT_EQ(Decoded(row.file), row.pixels) << row.name; }

/// Whatever is missing at the end, but for the padding of the last row, makes the file a broken one.
void ExpectRefusedWhenCut(const FileRow& row, std::size_t padding) {
    for (std::size_t length = 0; length + padding < row.file.size(); ++length)
        EXPECT_TRUE(Decoded(row.file.substr(0, length)).empty()) << row.name << " cut to " << length;
}

// ---- BMP

/// Pictures of 3 x 2, a head of that size, what follows it, and the pixels.
std::string Bmp(UINT header, UINT bits, UINT compression, const std::string& between, const std::string& data,
                int height = 2) {
    std::string head = Little(header, 4);
    if (header == 12)
        head += Little(3, 2) + Little(2, 2) + Little(1, 2) + Little(bits, 2);
    else
        head += Little(3, 4) + Little(static_cast<UINT>(height), 4) + Little(1, 2) + Little(bits, 2) +
                Little(compression, 4);
    head.resize(header, '\0');
    if (header > 40) head.replace(40, std::min<std::size_t>(between.size(), 16), between, 0, 16);
    const std::string behind = header > 40 ? "" : between;
    return "BM" + Little(0, 8) + Little(static_cast<UINT>(14 + head.size() + behind.size()), 4) + head + behind + data;
}

constexpr D3DCOLOR kRed = 0xFFFF0000, kGreen = 0xFF00FF00, kBlue = 0xFF0000FF, kBlack = 0xFF000000;
const std::string kThree = "\0\0\xFF\0\xFF\0\xFF\0\0"s;        // red, green, blue
const std::string kFour = "\0\0\xFF\0\0\xFF\0\0\xFF\0\0\0"s;   // the same with a fourth byte each
const std::vector<D3DCOLOR> kPicture = {kRed, kGreen, kBlue, kBlue, kRed, kGreen};

TEST(BmpFile, IsReadInEveryShape) {
    const std::string k10Bits = Little(0x3FF00000, 4) + Little(0xFFC00, 4) + Little(0x3FF, 4) + Little(0xC0000000, 4);
    const std::string k4Bits = Little(0xF00, 4) + Little(0xF0, 4) + Little(0xF, 4) + Little(0xF000, 4);
    const FileRow kRows[] = {
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
    for (const FileRow& row : kRows) ExpectPixels(row);
    for (const std::size_t plain : {0, 1, 3, 8}) ExpectRefusedWhenCut(kRows[plain], 3);
    for (const std::size_t in_runs : {10, 11, 12}) ExpectRefusedWhenCut(kRows[in_runs], 0);
}

TEST(BmpFile, RefusesWhatDoesNotFitTogether) {
    const std::string whole = Bmp(40, 8, 0, kFour, "\2\0\1\0\0\1\2\0"s);
    ASSERT_FALSE(Decoded(whole).empty());
    const std::tuple<const char*, std::size_t, std::string> kRows[] = {
        {"a head of another size", 14, Little(44, 4)},      {"data inside the head", 10, Little(50, 4)},
        {"data beyond the end", 10, Little(0xFFFFFFF0, 4)}, {"2 bits", 28, Little(2, 2)},
        {"runs of 4 bits in 8", 30, Little(2, 4)},          {"masks in 8 bits", 30, Little(3, 4)},
        {"the lowest height", 22, Little(0x80000000, 4)}};
    for (const auto& [name, place, bytes] : kRows) EXPECT_TRUE(Decoded(With(whole, place, bytes)).empty()) << name;
}

// ---- TGA

/// Pictures of 3 x 2 with a colour map: `map` holds the three numbers of the head, then the entries.
std::string Tga(UINT type, UINT bits, UINT descriptor, const std::string& map, const std::string& data) {
    const std::string numbers = map.empty() ? std::string(5, '\0') : map.substr(0, 5);
    return "\2"s + (map.empty() ? "\0"s : "\1"s) + static_cast<char>(type) + numbers + Little(0, 4) + Little(3, 2) +
           Little(2, 2) + static_cast<char>(bits) + static_cast<char>(descriptor) + "id" +
           (map.empty() ? "" : map.substr(5)) + data;
}

TEST(TgaFile, IsReadInEveryShape) {
    const std::string kMap = Little(3, 2) + Little(3, 2) + "\x18" + kThree;   // three of 24 bits, from index 3 on
    const std::string kColours = "\0\0\xFF\0\xFF\0\xFF\0\0\xFF\0\0\0\0\xFF\0\xFF\0"s;
    const std::string kBackwards = "\xFF\0\0\0\xFF\0\0\0\xFF\0\xFF\0\0\0\xFF\xFF\0\0"s;   // each row from its end
    const FileRow kRows[] = {
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
    for (const FileRow& row : kRows) {
        ExpectPixels(row);
        ExpectRefusedWhenCut(row, 0);
    }
}

}   // namespace
}   // namespace sparkrig
