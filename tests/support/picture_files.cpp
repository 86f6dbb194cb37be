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

void Append(std::string& out, UINT value, int bytes) { out += Little(value, bytes); }

void Big(std::string& out, UINT value) {
    for (int shift = 24; shift >= 0; shift -= 8) out += static_cast<char>(value >> shift & 0xFF);
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

void PngChunk(std::string& out, const std::string& type, const std::string& data) {
    Big(out, static_cast<UINT>(data.size()));
    std::string body = type + data;
    out += body;
    Big(out, stbiw__crc32(reinterpret_cast<unsigned char*>(body.data()), static_cast<int>(body.size())));
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
    std::string file = "\x89PNG\r\n\x1a\n", head, palette, rows;
    Big(head, picture.width);
    Big(head, picture.height);
    head += std::string("\x08\x03\x00\x00\x00", 5);
    for (const D3DCOLOR c : {first, second})
        for (int shift = 16; shift >= 0; shift -= 8) palette += static_cast<char>(c >> shift & 0xFF);
    for (UINT y = 0; y < picture.height; ++y) {
        rows += '\0';
        for (UINT x = 0; x < picture.width; ++x) rows += static_cast<char>(picture.At(x, y) & 1);
    }
    int length = 0;
    unsigned char* packed =
        stbi_zlib_compress(reinterpret_cast<unsigned char*>(rows.data()), static_cast<int>(rows.size()), &length, 8);
    PngChunk(file, "IHDR", head);
    PngChunk(file, "PLTE", palette);
    if (first >> 24 != 255) PngChunk(file, "tRNS", std::string(1, static_cast<char>(first >> 24)));
    PngChunk(file, "IDAT", std::string(reinterpret_cast<char*>(packed), static_cast<std::size_t>(length)));
    PngChunk(file, "IEND", "");
    std::free(packed);
    return file;
}

std::string JpgFile(const TestPicture& picture, int channels) {
    std::string file;
    stbi_write_jpg_to_func(AppendData, &file, static_cast<int>(picture.width), static_cast<int>(picture.height),
                           channels, Channels(picture, channels).data(), 95);
    return file;
}

std::string BmpFile(const TestPicture& picture, D3DFORMAT format) {
    const bool masks = format == D3DFMT_R5G6B5 || format == D3DFMT_A8R8G8B8;
    const UINT header = format == D3DFMT_A8R8G8B8 ? 108 : 40, bytes = PixelBytes(format);
    std::string info;
    Append(info, header, 4);
    Append(info, picture.width, 4);
    Append(info, picture.height, 4);
    Append(info, 1, 2);
    Append(info, bytes * 8, 2);
    Append(info, masks ? 3 : 0, 4);
    info.append(20, '\0');
    if (format == D3DFMT_R5G6B5)
        for (const UINT mask : {0xF800u, 0x7E0u, 0x1Fu}) Append(info, mask, 4);
    if (format == D3DFMT_A8R8G8B8) {
        for (const UINT mask : {0xFF0000u, 0xFF00u, 0xFFu, 0xFF000000u}) Append(info, mask, 4);
        info.append(52, '\0');
    }
    std::string file = "BM";
    Append(file, 0, 4);
    Append(file, 0, 4);
    Append(file, static_cast<UINT>(14 + info.size()), 4);
    file += info;
    for (UINT y = picture.height; y-- > 0;) {
        std::string row = Stored(format, &picture.pixels[y * picture.width], picture.width);
        row.resize((row.size() + 3) / 4 * 4);
        file += row;
    }
    return file;
}

std::string TgaFile(const TestPicture& picture, D3DFORMAT format, bool packed) {
    const UINT bytes = PixelBytes(format);
    const UINT alpha_bits = format == D3DFMT_A8R8G8B8 ? 8 : format == D3DFMT_A1R5G5B5 ? 1 : 0;
    std::string file(2, '\0');
    file += static_cast<char>((format == D3DFMT_L8 ? 3 : 2) + (packed ? 8 : 0));
    file.append(9, '\0');
    Append(file, picture.width, 2);
    Append(file, picture.height, 2);
    file += static_cast<char>(bytes * 8);
    file += static_cast<char>(0x20 | alpha_bits);   // rows from the top
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
        Append(file, value, 4);
    file.append(44, '\0');
    for (const UINT value : {32u, fields.flags, fields.four_cc, fields.bits, fields.r, fields.g, fields.b, fields.a,
                             0x1000u, fields.caps2, 0u, 0u, 0u})
        Append(file, value, 4);
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
