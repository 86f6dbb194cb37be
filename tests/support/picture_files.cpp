#include "tests/support/picture_files.h"

#include "platform/d3dx/pixel_formats.h"

#define STBI_WRITE_NO_STDIO
#define STB_IMAGE_WRITE_STATIC
#define STB_IMAGE_WRITE_IMPLEMENTATION
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#include <stb_image_write.h>
#pragma GCC diagnostic pop

namespace sparkrig {
namespace {

std::string Big(UINT value) {
    std::string bytes = Little(value, 4);
    return {bytes.rbegin(), bytes.rend()};
}

void AppendData(void* context, void* data, int size) {
    static_cast<std::string*>(context)->append(static_cast<const char*>(data), static_cast<std::size_t>(size));
}

/// R, G, B, A bytes, or grey (red), alpha.
std::vector<BYTE> Channels(const TestPicture& picture, int channels) {
    std::vector<BYTE> bytes;
    for (const D3DCOLOR p : picture.pixels) {
        const BYTE all[] = {static_cast<BYTE>(p >> 16), static_cast<BYTE>(p >> 8), static_cast<BYTE>(p),
                            static_cast<BYTE>(p >> 24)};
        if (channels >= 3) bytes.insert(bytes.end(), all, all + channels);
        if (channels <= 2) bytes.push_back(all[0]);
        if (channels == 2) bytes.push_back(all[3]);
    }
    return bytes;
}

std::string Stored(D3DFORMAT format, const D3DCOLOR* pixels, std::size_t count) {
    std::string bytes(PixelBytes(format) * count, '\0');
    PackPixels(format, pixels, count, reinterpret_cast<BYTE*>(bytes.data()));
    return bytes;
}

/// Without its check, which nobody asks for.
std::string PngChunk(const std::string& type, const std::string& data) {
    return Big(static_cast<UINT>(data.size())) + type + data + Big(0);
}

}   // namespace

TestPicture TestPicture::Pattern(UINT width, UINT height, bool alpha) {
    TestPicture picture = {width, height, {}};
    for (UINT i = 0; i < width * height; ++i) {
        const UINT a = alpha ? 60 + i * 29 % 190 : 255;
        picture.pixels.push_back(a << 24 | (i * 37 + 11) % 256 << 16 | (i * 53 + 90) % 256 << 8 | (i * 71 + 200) % 256);
    }
    return picture;
}

std::string PngFile(const TestPicture& picture, int channels) {
    std::string file;
    stbi_write_png_to_func(AppendData, &file, static_cast<int>(picture.width), static_cast<int>(picture.height),
                           channels, Channels(picture, channels).data(), 0);
    return file;
}

std::string PalettePngFile(const TestPicture& picture, D3DCOLOR first, D3DCOLOR second) {
    TestPicture indices = picture;
    for (D3DCOLOR& pixel : indices.pixels) pixel = (pixel & 1) << 16;
    std::string file = PngFile(indices, 1), between;
    constexpr std::size_t kColourType = 25, kBehindHead = 33;
    file[kColourType] = 3;
    between = PngChunk("PLTE", Big(first).substr(1) + Big(second).substr(1));
    if (first >> 24 != 255) between += PngChunk("tRNS", std::string(1, static_cast<char>(first >> 24)));
    return file.insert(kBehindHead, between);
}

std::string JpgFile(const TestPicture& picture, int channels) {
    std::string file;
    stbi_write_jpg_to_func(AppendData, &file, static_cast<int>(picture.width), static_cast<int>(picture.height),
                           channels, Channels(picture, channels).data(), 95);
    return file;
}

std::string BmpBytes(UINT width, int height, UINT header, UINT bits, UINT compression, const std::string& between,
                     const std::string& data) {
    const int side = header == 12 ? 2 : 4;
    std::string head = Little(header, 4) + Little(width, side) + Little(static_cast<UINT>(height), side) +
                       Little(1, 2) + Little(bits, 2);
    if (header > 12) head += Little(compression, 4);
    head.resize(header, '\0');
    if (header > 40) head.replace(40, std::min<std::size_t>(between.size(), 16), between, 0, 16);
    const std::string behind = header > 40 ? "" : between;
    return "BM" + Little(0, 8) + Little(static_cast<UINT>(14 + head.size() + behind.size()), 4) + head + behind + data;
}

std::string BmpFile(const TestPicture& picture, D3DFORMAT format) {
    std::string masks, rows;
    if (format == D3DFMT_R5G6B5) masks = Little(0xF800, 4) + Little(0x7E0, 4) + Little(0x1F, 4);
    if (format == D3DFMT_A8R8G8B8)
        masks = Little(0xFF0000, 4) + Little(0xFF00, 4) + Little(0xFF, 4) + Little(0xFF000000, 4);
    for (UINT y = picture.height; y-- > 0;) {
        rows += Stored(format, &picture.pixels[y * picture.width], picture.width);
        while (rows.size() % 4 != 0) rows += '\0';
    }
    return BmpBytes(picture.width, static_cast<int>(picture.height), format == D3DFMT_A8R8G8B8 ? 108 : 40,
                    PixelBytes(format) * 8, masks.empty() ? 0 : 3, masks, rows);
}

std::string TgaBytes(UINT width, UINT height, UINT type, UINT bits, UINT descriptor, const std::string& map,
                     const std::string& data) {
    const bool mapped = !map.empty();
    return Little(2, 1) + Little(mapped, 1) + Little(type, 1) + (mapped ? map.substr(0, 5) : Little(0, 5)) +
           Little(0, 4) + Little(width, 2) + Little(height, 2) + Little(bits, 1) + Little(descriptor, 1) + "id" +
           (mapped ? map.substr(5) : "") + data;
}

std::string TgaFile(const TestPicture& picture, D3DFORMAT format, bool packed) {
    const UINT bytes = PixelBytes(format);
    const UINT alpha_bits = format == D3DFMT_A8R8G8B8 ? 8 : format == D3DFMT_A1R5G5B5 ? 1 : 0;
    const std::string plain = Stored(format, picture.pixels.data(), picture.pixels.size());
    std::string data = packed ? "" : plain;
    for (std::size_t i = 0; packed && i < picture.pixels.size(); ++i)   // a run of one, a raw packet of one
        data += (i % 2 ? '\x80' : '\0') + plain.substr(i * bytes, bytes);
    const UINT type = (format == D3DFMT_L8 ? 3 : 2) + (packed ? 8 : 0);
    return TgaBytes(picture.width, picture.height, type, bytes * 8, 0x20 | alpha_bits, "", data);   // from the top
}

std::string DdsHead(const DdsFields& fields) {
    std::string file = "DDS ";
    for (const UINT value : {124u, 0x1007u, fields.height, fields.width, 0u, 0u, fields.mip_count})
        file += Little(value, 4);
    file.append(44, '\0');
    for (const UINT value : {32u, fields.flags, fields.four_cc, fields.bits, fields.r, fields.g, fields.b, fields.a,
                             0x1000u, fields.caps2, 0u, 0u, 0u})
        file += Little(value, 4);
    return file;
}

std::string DdsFile(const TestPicture& picture) {
    return DdsHead({picture.width, picture.height, 1, 0x41, 0, 32, 0xFF0000, 0xFF00, 0xFF, 0xFF000000}) +
           Stored(D3DFMT_A8R8G8B8, picture.pixels.data(), picture.pixels.size());
}

FileBytes BytesOf(const std::string& file) { return {reinterpret_cast<const BYTE*>(file.data()), file.size()}; }

std::vector<D3DCOLOR> Decoded(const std::string& file) {
    D3DXIMAGE_INFO info = {};
    Image image;
    if (FAILED(ReadImageInfo(BytesOf(file), info)) || FAILED(DecodeImage(BytesOf(file), info, image))) return {};
    return {image.Pixels().begin(), image.Pixels().end()};
}

std::string Little(UINT value, int bytes) {
    std::string text;
    for (int i = 0; i < bytes; ++i) text += static_cast<char>(i < 4 ? value >> 8 * i & 0xFF : 0);
    return text;
}

std::string With(std::string file, std::size_t place, const std::string& bytes) {
    return file.replace(place, bytes.size(), bytes);
}

}   // namespace sparkrig
