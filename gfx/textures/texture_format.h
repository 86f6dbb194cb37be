// The format that an image file's texture gets when none was asked for.
#pragma once
#include "platform/d3d9/d3d9_constants.h"

namespace sparkrig {

constexpr bool IsPowerOfTwo(UINT v) { return ((v - 1) & v) == 0; }   // 0 counts as one
/// 0 for 0, else the smallest power of two not below v; 0 when 32 bits cannot hold it.
constexpr UINT RoundUpToPowerOfTwo(UINT v) {
    UINT power = v == 0 ? 0 : 1;
    while (power != 0 && power < v) power <<= 1;
    return power;
}

struct FormatQuestion {
    D3DFORMAT image_format;
    UINT width, height;
    D3DFORMAT display_format;
    bool compression;
    UINT compression_threshold;   // pixels, sizes rounded up to powers of two
};

/// D3DFMT_UNKNOWN keeps the file's format.
D3DFORMAT ChooseTextureFormat(const FormatQuestion& question);

}   // namespace sparkrig
