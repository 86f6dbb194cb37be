#include "tools/textures/picture.h"

#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STB_IMAGE_WRITE_STATIC
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"
#include <stb_image_write.h>
#pragma GCC diagnostic pop

#include <algorithm>
#include <cmath>
#include <fstream>

namespace sparkrig {

namespace {

constexpr int kSamplesPerAxis = 4;
constexpr int kBledPixels = 6;            // how far colour reaches under the transparent edge
constexpr int kCompressionEffort = 256;   // matches tried for each position; small files, the time does not matter

std::uint8_t ToByte(float value) {
    return static_cast<std::uint8_t>(std::lround(std::clamp(value, 0.0f, 1.0f) * 255.0f));
}

/// The mean of a pixel's samples, the colours weighted by their alpha, or plainly where all are transparent.
Pixel SamplePixel(const Sprite& sprite, int column, int row) {
    Pixel weighted{0, 0, 0, 0}, plain{0, 0, 0, 0};
    for (int i = 0; i < kSamplesPerAxis * kSamplesPerAxis; ++i) {
        const int sample_column = i % kSamplesPerAxis, sample_row = i / kSamplesPerAxis;
        const float x = static_cast<float>(column) + (static_cast<float>(sample_column) + 0.5f) / kSamplesPerAxis;
        const float y = static_cast<float>(row) + (static_cast<float>(sample_row) + 0.5f) / kSamplesPerAxis;
        const float scale = 2.0f / static_cast<float>(sprite.size);
        const Pixel sample = sprite.paint({x * scale - 1.0f, 1.0f - y * scale});
        const float alpha = std::clamp(sample.a, 0.0f, 1.0f);
        weighted = {weighted.r + sample.r * alpha, weighted.g + sample.g * alpha, weighted.b + sample.b * alpha,
                    weighted.a + alpha};
        plain = {plain.r + sample.r, plain.g + sample.g, plain.b + sample.b, 0};
    }
    constexpr float kSamples = kSamplesPerAxis * kSamplesPerAxis;
    if (weighted.a <= 0) return {plain.r / kSamples, plain.g / kSamples, plain.b / kSamples, 0};
    return {weighted.r / weighted.a, weighted.g / weighted.a, weighted.b / weighted.a, weighted.a / kSamples};
}

bool IsInBorder(const Sprite& sprite, int column, int row) {
    const auto at_edge = [&](int i) { return i < kClearBorder || i >= sprite.size - kClearBorder; };
    return at_edge(row) || (at_edge(column) && !sprite.repeats_along);
}

/// One pixel further: every pixel without colour takes the mean colour of its coloured neighbours.
void GrowColour(Picture& picture, std::vector<bool>& coloured) {
    const std::vector<bool> before = coloured;
    for (int row = 0; row < picture.size; ++row) {
        for (int column = 0; column < picture.size; ++column) {
            if (before[row * picture.size + column]) continue;
            int sum[3] = {}, count = 0;
            for (int y = std::max(row - 1, 0); y <= std::min(row + 1, picture.size - 1); ++y) {
                for (int x = std::max(column - 1, 0); x <= std::min(column + 1, picture.size - 1); ++x) {
                    if (!before[y * picture.size + x]) continue;
                    for (int c = 0; c < 3; ++c) sum[c] += picture.At(x, y)[c];
                    ++count;
                }
            }
            if (count == 0) continue;
            for (int c = 0; c < 3; ++c) picture.At(column, row)[c] = static_cast<std::uint8_t>(sum[c] / count);
            coloured[row * picture.size + column] = true;
        }
    }
}

/// Continues the colour under the transparent edge; farther out one mean colour stands, which packs to nothing.
void BleedColour(Picture& picture) {
    const int pixels = picture.size * picture.size;
    std::vector<bool> coloured(pixels);
    int sum[3] = {}, count = 0;
    for (int i = 0; i < pixels; ++i) {
        coloured[i] = picture.rgba[4 * i + 3] > 0;
        if (!coloured[i]) continue;
        for (int c = 0; c < 3; ++c) sum[c] += picture.rgba[4 * i + c];
        ++count;
    }
    if (count == 0) return;
    for (int step = 0; step < kBledPixels; ++step) GrowColour(picture, coloured);
    for (int i = 0; i < pixels; ++i) {
        if (coloured[i]) continue;
        for (int c = 0; c < 3; ++c) picture.rgba[4 * i + c] = static_cast<std::uint8_t>(sum[c] / count);
    }
}

void AppendBytes(void* context, void* data, int size) {
    auto& bytes = *static_cast<std::vector<std::uint8_t>*>(context);
    const auto* first = static_cast<const std::uint8_t*>(data);
    bytes.insert(bytes.end(), first, first + size);
}

}   // namespace

Picture Render(const Sprite& sprite) {
    Picture picture{sprite.size, std::vector<std::uint8_t>(4u * sprite.size * sprite.size)};
    for (int row = 0; row < sprite.size; ++row) {
        for (int column = 0; column < sprite.size; ++column) {
            const Pixel pixel = SamplePixel(sprite, column, row);
            std::uint8_t* out = picture.At(column, row);
            out[0] = ToByte(pixel.r);
            out[1] = ToByte(pixel.g);
            out[2] = ToByte(pixel.b);
            out[3] = IsInBorder(sprite, column, row) ? 0 : ToByte(pixel.a);
        }
    }
    BleedColour(picture);
    return picture;
}

std::vector<std::uint8_t> EncodePng(const Picture& picture) {
    stbi_write_png_compression_level = kCompressionEffort;
    std::vector<std::uint8_t> bytes;
    stbi_write_png_to_func(AppendBytes, &bytes, picture.size, picture.size, 4, picture.rgba.data(), 4 * picture.size);
    return bytes;
}

bool WriteFile(const std::string& path, const std::vector<std::uint8_t>& bytes) {
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return file.good();
}

}   // namespace sparkrig
