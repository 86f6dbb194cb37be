// A picture in memory, and the limits that every picture from outside keeps.
#pragma once
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>

#include "platform/d3d9/d3d9.h"

namespace sparkrig {

using FileBytes = std::span<const BYTE>;

/// Limits of a picture file, checked from its head before anything is decoded: a side, and all pixels together
/// (8192 x 8192). Decoding takes at most about 16 bytes a pixel.
inline constexpr UINT kMaxImageSide = 16384;
inline constexpr std::uint64_t kMaxImagePixels = std::uint64_t{1} << 26;

constexpr bool IsAllowedImageSize(std::uint64_t width, std::uint64_t height) {
    return width >= 1 && height >= 1 && width <= kMaxImageSide && height <= kMaxImageSide &&
           width * height <= kMaxImagePixels;
}

struct FreeMemory {
    void operator()(void* memory) const { std::free(memory); }
};
using PixelBuffer = std::unique_ptr<D3DCOLOR[], FreeMemory>;

/// 32-bit ARGB pixels, row by row from the top, no padding. Without pixels when memory was short.
struct Image {
    UINT width = 0, height = 0;
    PixelBuffer pixels;

    Image() = default;
    Image(UINT w, UINT h)
        : width(w), height(h), pixels(static_cast<D3DCOLOR*>(std::malloc(std::size_t{w} * h * sizeof(D3DCOLOR)))) {}

    std::size_t Count() const { return std::size_t{width} * height; }
    std::span<D3DCOLOR> Pixels() const { return {pixels.get(), Count()}; }
    D3DCOLOR* Row(UINT y) { return pixels.get() + std::size_t{y} * width; }
    const D3DCOLOR* Row(UINT y) const { return pixels.get() + std::size_t{y} * width; }
};

}   // namespace sparkrig
