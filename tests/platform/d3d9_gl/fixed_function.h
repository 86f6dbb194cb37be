// The fixed function on the processor, in double, for one vertex that is drawn as a point: slow,
// obvious, written from the rules of the interface, and what OpenGL's pixels are compared with.
#pragma once
#include <array>
#include <cmath>
#include <glm/glm.hpp>
#include <optional>
#include <vector>

#include "platform/d3d9/device_state.h"

namespace sparkrig::fixed {

using Colour = glm::dvec4;   // r, g, b, a in 0..1
using Vec = glm::dvec4;
Colour From(D3DCOLOR argb);

/// What the vertex format names is there, and in its order.
struct Vertex {
    bool final_position = false;
    std::array<float, 4> position = {};   // w: rhw of a final one
    std::vector<float> weights;
    std::optional<std::array<BYTE, 4>> indices;
    std::optional<std::array<float, 3>> normal;
    std::optional<float> size;
    std::optional<D3DCOLOR> diffuse, specular;
    std::vector<std::vector<float>> sets;

    DWORD Fvf() const;
    std::vector<BYTE> Bytes() const;
};

/// Sampled at the nearest texel.
struct Texture {
    static constexpr UINT kSize = 4;
    std::array<D3DCOLOR, kSize * kSize> texels;
    bool is_signed = false;   // du and dv in the two low bytes

    /// As they lie in memory.
    std::vector<BYTE> Rows() const;
};

struct Scene {
    DeviceState state{false};
    std::array<const Texture*, kTextureStages> textures = {};
    Vertex vertex;
    D3DCOLOR back = 0;
    bool alpha_in_target = false;   // else it reads as 1
};

/// A square of one colour.
struct Seen {
    Colour colour;
    double x, y, size;   // its middle and its edge in pixels, whose centres are whole numbers
    bool sure = true;    // not within rounding of a step: a texel's edge, a cone, a limit, a pixel's centre
};
Seen PointOf(const Scene& scene);

}   // namespace sparkrig::fixed
