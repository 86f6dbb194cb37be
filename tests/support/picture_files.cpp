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

std::string BmpFile(const TestPicture& picture, D3DFORMAT format) {
    std::string masks;
    if (format == D3DFMT_R5G6B5) masks = Little(0xF800, 4) + Little(0x7E0, 4) + Little(0x1F, 4);
    if (format == D3DFMT_A8R8G8B8)
        masks =
            Little(0xFF0000, 4) + Little(0xFF00, 4) + Little(0xFF, 4) + Little(0xFF000000, 4) + std::string(52, '\0');
    const UINT header = format == D3DFMT_A8R8G8B8 ? 108 : 40;
    const std::string info = Little(header, 4) + Little(picture.width, 4) + Little(picture.height, 4) + Little(1, 2) +
                             Little(PixelBytes(format) * 8, 2) + Little(masks.empty() ? 0 : 3, 4) +
                             std::string(20, '\0') + masks;
    std::string file = "BM" + Little(0, 8) + Little(static_cast<UINT>(14 + info.size()), 4) + info;
    for (UINT y = picture.height; y-- > 0;) {
        file += Stored(format, &picture.pixels[y * picture.width], picture.width);
        while ((file.size() - 14 - info.size()) % 4 != 0) file += '\0';
    }
    return file;
}

std::string TgaFile(const TestPicture& picture, D3DFORMAT format, bool packed) {
    const UINT bytes = PixelBytes(format);
    const UINT alpha_bits = format == D3DFMT_A8R8G8B8 ? 8 : format == D3DFMT_A1R5G5B5 ? 1 : 0;
    const UINT type = (format == D3DFMT_L8 ? 3 : 2) + (packed ? 8 : 0);
    std::string file = Little(type << 16, 4) + Little(0, 8) + Little(picture.width, 2) + Little(picture.height, 2) +
                       Little(bytes * 8, 1) + Little(0x20 | alpha_bits, 1);   // rows from the top
    const std::string data = Stored(format, picture.pixels.data(), picture.pixels.size());
    if (!packed) return file + data;
    for (std::size_t i = 0; i < picture.pixels.size(); ++i) {
        // Single pixels by turns as a run of one and as a raw packet of one.
        file += static_cast<char>(i % 2 ? 0x80 : 0x00);
        file += data.substr(i * bytes, bytes);
    }
    return file;
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
