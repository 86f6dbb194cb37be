#include <cstdio>

#include "platform/d3dx/bmp_file.h"
#include "platform/d3dx/dds_file.h"
#include "platform/d3dx/image_file.h"
#include "platform/d3dx/pixel_formats.h"
#include "platform/d3dx/stb_image_library.h"
#include "platform/d3dx/tga_file.h"
#include "platform/system/system.h"

namespace sparkrig {
namespace {

constexpr long kMaxFileBytes = 1L << 30;

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

/// The library gives bytes R, G, B, A; a D3DCOLOR is B, G, R, A. A channel that the file lacks becomes 1.
void ToArgb(std::span<D3DCOLOR> pixels, D3DCOLOR always_set) {
    for (D3DCOLOR& p : pixels) p = (p & 0xFF00FF00) | (p >> 16 & 0xFF) | (p & 0xFF) << 16 | always_set;
}

}   // namespace

bool ReadWholeFile(const char* name, std::vector<BYTE>& bytes) {
    const std::unique_ptr<std::FILE, CloseFile> file(OpenFileStream(name, "rb"));
    if (!file || std::fseek(file.get(), 0, SEEK_END) != 0) return false;
    const long size = std::ftell(file.get());
    if (size < 0 || size > kMaxFileBytes || std::fseek(file.get(), 0, SEEK_SET) != 0) return false;
    bytes.resize(static_cast<std::size_t>(size));
    return std::fread(bytes.data(), 1, bytes.size(), file.get()) == bytes.size();
}

namespace {

/// More than a picture of that size ever needs in one piece: its own bytes, those that the file packs, and the reader's
/// tables.
std::size_t MemoryFor(FileBytes file, const D3DXIMAGE_INFO& info) {
    constexpr std::size_t kTables = 65536, kBytesPerPixel = 32, kEdge = 16;
    return kTables + 2 * file.size() + kBytesPerPixel * (info.Width + kEdge) * (info.Height + kEdge);
}

/// jpg and png, by the image library.
HRESULT DecodeByLibrary(FileBytes file, const D3DXIMAGE_INFO& info, Image& image) {
    LimitImageMemory(MemoryFor(file, info));
    int width = 0, height = 0, channels = 0;
    stbi_uc* const pixels =
        stbi_load_from_memory(file.data(), static_cast<int>(file.size()), &width, &height, &channels, STBI_rgb_alpha);
    if (!pixels) return D3DXERR_INVALIDDATA;
    image.pixels.reset(reinterpret_cast<D3DCOLOR*>(pixels));
    image.width = static_cast<UINT>(width);
    image.height = static_cast<UINT>(height);
    if (image.width != info.Width || image.height != info.Height) return D3DXERR_INVALIDDATA;
    const bool opaque = !HasAlpha(info.Format) && info.Format != D3DFMT_P8;
    ToArgb(image.Pixels(), opaque ? 0xFF000000 : 0);
    return D3D_OK;
}

}   // namespace

HRESULT DecodeImage(FileBytes file, const D3DXIMAGE_INFO& info, Image& image) {
    switch (info.ImageFileFormat) {
        case D3DXIFF_DDS: return DecodeDds(file, info, 0, image);
        case D3DXIFF_BMP: return DecodeBmp(file, image);
        case D3DXIFF_TGA: return DecodeTga(file, image);
        default: return DecodeByLibrary(file, info, image);
    }
}

}   // namespace sparkrig
