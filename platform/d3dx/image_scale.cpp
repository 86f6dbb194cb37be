#include "platform/d3dx/image_scale.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace sparkrig {
namespace {

constexpr DWORD kFilterKind = 0xFFFF;

/// What one row or column of the result is made of: weights that add up to 1, of rows or columns of the source.
struct Tap {
    UINT source;
    float weight;
};
using Taps = std::vector<std::vector<Tap>>;

UINT WrapIndex(std::int64_t i, UINT size, bool mirror) {
    const std::int64_t n = size;
    if (!mirror) return static_cast<UINT>(((i % n) + n) % n);
    const std::int64_t m = ((i % (2 * n)) + 2 * n) % (2 * n);
    return static_cast<UINT>(m < n ? m : 2 * n - 1 - m);
}

std::vector<Tap> PointTaps(double at, UINT size) {
    return {{static_cast<UINT>(std::min(std::floor(at + 0.5), size - 1.0)), 1.0f}};
}

std::vector<Tap> LinearTaps(double at, UINT size, bool mirror) {
    const double below = std::floor(at);
    const auto fraction = static_cast<float>(at - below);
    const auto i = static_cast<std::int64_t>(below);
    return {{WrapIndex(i, size, mirror), 1 - fraction}, {WrapIndex(i + 1, size, mirror), fraction}};
}

/// A triangle that reaches as far as the pixels of the result are apart, at least one pixel of the source.
std::vector<Tap> TriangleTaps(double at, double step, UINT size, bool mirror) {
    const double reach = std::max(1.0, step);
    std::vector<Tap> taps;
    float sum = 0;
    for (auto i = static_cast<std::int64_t>(std::ceil(at - reach)); i <= at + reach; ++i) {
        const auto weight = static_cast<float>(1 - std::abs(static_cast<double>(i) - at) / reach);
        taps.push_back({WrapIndex(i, size, mirror), weight});
        sum += weight;
    }
    for (Tap& tap : taps) tap.weight /= sum;
    return taps;
}

Taps AxisTaps(UINT source, UINT size, DWORD kind, bool mirror) {
    Taps taps(size);
    const double step = static_cast<double>(source) / size;
    for (UINT i = 0; i < size; ++i) {
        const double at = (i + 0.5) * step - 0.5;
        taps[i] = kind == D3DX_FILTER_POINT    ? PointTaps(at, source)
                  : kind == D3DX_FILTER_LINEAR ? LinearTaps(at, source, mirror)
                                               : TriangleTaps(at, step, source, mirror);
    }
    return taps;
}

/// One row of the result at the source's width: four floats a pixel, in the order of the bytes.
void BlendRows(const Image& source, const std::vector<Tap>& taps, std::vector<float>& row) {
    std::ranges::fill(row, 0.0f);
    for (const Tap& tap : taps) {
        const BYTE* bytes = reinterpret_cast<const BYTE*>(source.Row(tap.source));
        for (std::size_t i = 0; i < row.size(); ++i) row[i] += tap.weight * static_cast<float>(bytes[i]);
    }
}

D3DCOLOR BlendPixels(const std::vector<float>& row, const std::vector<Tap>& taps) {
    float sums[4] = {0.5f, 0.5f, 0.5f, 0.5f};
    for (const Tap& tap : taps)
        for (std::size_t c = 0; c < 4; ++c) sums[c] += tap.weight * row[4 * std::size_t{tap.source} + c];
    D3DCOLOR colour = 0;
    for (int c = 3; c >= 0; --c) colour = colour << 8 | static_cast<UINT>(std::clamp(sums[c], 0.0f, 255.0f));
    return colour;
}

void Resample(const Image& source, DWORD filter, Image& scaled) {
    const DWORD kind = filter & kFilterKind;
    const Taps columns = AxisTaps(source.width, scaled.width, kind, (filter & D3DX_FILTER_MIRROR_U) != 0);
    const Taps rows = AxisTaps(source.height, scaled.height, kind, (filter & D3DX_FILTER_MIRROR_V) != 0);
    std::vector<float> row(4 * std::size_t{source.width});
    for (UINT y = 0; y < scaled.height; ++y) {
        BlendRows(source, rows[y], row);
        D3DCOLOR* out = scaled.Row(y);
        for (UINT x = 0; x < scaled.width; ++x) out[x] = BlendPixels(row, columns[x]);
    }
}

void CopyCorner(const Image& source, Image& scaled) {
    std::ranges::fill(scaled.Pixels(), 0);
    const UINT columns = std::min(source.width, scaled.width), rows = std::min(source.height, scaled.height);
    for (UINT y = 0; y < rows; ++y) std::copy_n(source.Row(y), columns, scaled.Row(y));
}

/// Two channels of each of four colours are added up in one number: 16 bits are room for them.
constexpr D3DCOLOR Average(D3DCOLOR a, D3DCOLOR b, D3DCOLOR c, D3DCOLOR d) {
    constexpr D3DCOLOR kEven = 0x00FF00FF, kTwo = 0x00020002;
    const D3DCOLOR even = (a & kEven) + (b & kEven) + (c & kEven) + (d & kEven) + kTwo;
    const D3DCOLOR odd = (a >> 8 & kEven) + (b >> 8 & kEven) + (c >> 8 & kEven) + (d >> 8 & kEven) + kTwo;
    return (even >> 2 & kEven) | (odd >> 2 & kEven) << 8;
}

}   // namespace

HRESULT HalveImage(const Image& source, Image& half) {
    half = Image(std::max(1u, source.width / 2), std::max(1u, source.height / 2));
    if (!half.pixels) return E_OUTOFMEMORY;
    const UINT below = source.height > 1 ? 1 : 0;
    for (UINT y = 0; y < half.height; ++y) {
        const D3DCOLOR* upper = source.Row(2 * y);
        const D3DCOLOR* lower = source.Row(2 * y + below);
        D3DCOLOR* out = half.Row(y);
        if (source.width == 1) {
            out[0] = Average(upper[0], upper[0], lower[0], lower[0]);
            continue;
        }
        for (std::size_t x = 0; x < half.width; ++x)
            out[x] = Average(upper[2 * x], upper[2 * x + 1], lower[2 * x], lower[2 * x + 1]);
    }
    return D3D_OK;
}

HRESULT ScaleImage(const Image& source, UINT width, UINT height, DWORD filter, Image& scaled) {
    const DWORD kind = filter & kFilterKind;
    if (kind == D3DX_FILTER_BOX) {
        if (width != std::max(1u, source.width / 2) || height != std::max(1u, source.height / 2))
            return D3DERR_INVALIDCALL;
        return HalveImage(source, scaled);
    }
    if (kind < D3DX_FILTER_NONE || kind > D3DX_FILTER_BOX) return D3DERR_INVALIDCALL;
    scaled = Image(width, height);
    if (!scaled.pixels) return E_OUTOFMEMORY;
    if (kind == D3DX_FILTER_NONE)
        CopyCorner(source, scaled);
    else
        Resample(source, filter, scaled);
    return D3D_OK;
}

}   // namespace sparkrig
