#include <stb_image.h>

#include <cstdio>

#include "platform/d3dx/dds_file.h"
#include "platform/d3dx/image_file.h"
#include "platform/d3dx/pixel_formats.h"
#include "platform/d3dx/tga_alpha.h"
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

HRESULT DecodeImage(FileBytes file, const D3DXIMAGE_INFO& info, Image& image) {
    if (info.ImageFileFormat == D3DXIFF_DDS) return DecodeDds(file, info, 0, image);
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
    if (info.ImageFileFormat == D3DXIFF_TGA && info.Format == D3DFMT_A1R5G5B5) ReadTgaAlphaBits(file, image);
    return D3D_OK;
}

}   // namespace sparkrig
