// Picture files made byte by byte for tests: pixels are 0xAARRGGBB, row by row from the top.
#pragma once
#include <string>
#include <vector>

#include "platform/d3dx/image_file.h"

namespace sparkrig {

struct TestPicture {
    UINT width, height;
    std::vector<D3DCOLOR> pixels;

    /// A pattern in which no two neighbours are equal and no channel equals another.
    static TestPicture Pattern(UINT width, UINT height, bool alpha = true);
    D3DCOLOR At(UINT x, UINT y) const { return pixels[y * width + x]; }
};

/// channels: 1 grey (the red channel), 2 grey with alpha, 3, 4.
std::string PngFile(const TestPicture& picture, int channels);
/// Two palette entries: entry 0 with the given alpha, entry 1 opaque; pixels whose blue is odd take entry 1.
std::string PalettePngFile(const TestPicture& picture, D3DCOLOR first, D3DCOLOR second);
std::string JpgFile(const TestPicture& picture, int channels);

/// A head of that size (12: the old one), what follows it (masks, palette), and the rows as they are stored.
std::string BmpBytes(UINT width, int height, UINT header, UINT bits, UINT compression, const std::string& between,
                     const std::string& data);
/// map: the three numbers of the head, then the entries; "" for none.
std::string TgaBytes(UINT width, UINT height, UINT type, UINT bits, UINT descriptor, const std::string& map,
                     const std::string& data);
/// 16 bits with the masks of `format` (R5G6B5 or X1R5G5B5), 24 bits, or 32 bits with (A8R8G8B8) or without alpha mask.
std::string BmpFile(const TestPicture& picture, D3DFORMAT format);
/// 8 bits grey, 16 bits with (A1R5G5B5) or without alpha, 24 or 32 bits; run-length coded if asked for.
std::string TgaFile(const TestPicture& picture, D3DFORMAT format, bool packed = false);

struct DdsFields {
    UINT width, height, mip_count;
    UINT flags;   // of the pixel format
    UINT four_cc, bits, r, g, b, a;
    UINT caps2 = 0;
};
std::string DdsHead(const DdsFields& fields);
/// An uncompressed A8R8G8B8 file with one level.
std::string DdsFile(const TestPicture& picture);

FileBytes BytesOf(const std::string& file);
/// The pixels that the layer's readers find; none when the file is refused.
std::vector<D3DCOLOR> Decoded(const std::string& file);
/// A number as files hold it, and a file with other bytes at a place.
std::string Little(UINT value, int bytes);
std::string With(std::string file, std::size_t place, const std::string& bytes);

}   // namespace sparkrig
