#include "gfx/textures/texture_format.h"

#include <cstdint>

#include "platform/d3dx/pixel_formats.h"

namespace sparkrig {
namespace {

D3DFORMAT CompressedFormat(D3DFORMAT image_format) {
    if (IsDxt(image_format)) return image_format;
    switch (image_format) {
        case D3DFMT_A8R8G8B8:
        case D3DFMT_A1R5G5B5:
        case D3DFMT_A4R4G4B4: return D3DFMT_DXT5;
        default: return D3DFMT_DXT1;
    }
}

}   // namespace

D3DFORMAT ChooseTextureFormat(const FormatQuestion& question) {
    const std::uint64_t pixels =
        std::uint64_t{RoundUpToPowerOfTwo(question.width)} * RoundUpToPowerOfTwo(question.height);
    if (question.compression && pixels >= question.compression_threshold)
        return CompressedFormat(question.image_format);
    if (question.image_format == D3DFMT_X1R5G5B5) return D3DFMT_R5G6B5;
    if (question.image_format == D3DFMT_X8R8G8B8 && question.display_format == D3DFMT_R5G6B5) return D3DFMT_R5G6B5;
    return D3DFMT_UNKNOWN;
}

}   // namespace sparkrig
