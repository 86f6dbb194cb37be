// The shapes of special effects: the points of each as a pure function of its age, its axes and a table of random
// numbers. Nothing is kept from one frame to the next.
#pragma once
#include <cstdint>

#include "effects/effect_definition.h"
#include "gfx/geometry/vertex_list.h"

namespace sparkrig {

inline constexpr int kSpecialPoints = 256;   // of one shape at most

/// Random numbers in [0, 1], drawn once. An index counts modulo kSpecialPoints.
struct RandomTable {
    static constexpr int kMost = 16;            // numbers of one point
    float values[2 * kSpecialPoints + kMost];   // over and over, so that At(k) + i for each point needs no modulus

    /// `count` draws of Random01.
    void Draw();
    const float* At(std::int64_t index) const { return values + (index & (kSpecialPoints - 1)); }
};

struct SpecialShape {
    SpecialType type = SpecialType::None;
    D3DXVECTOR3 position;
    D3DXVECTOR3 forward = {1, 0, 0}, up = {0, 0, 1};   // rotated x and z axis
    double age = 0;                                    // seconds
    D3DXVECTOR3 scale = {1, 1, 1};
    int count = 0;                         // what goes beyond kSpecialPoints is left out
    std::uint32_t first = 0, second = 0;   // packed ARGB; the alpha is that of the first
    int seed = 0;                          // 0 to 100
};

/// Writes the points of a shape, and their number: of a wave or a splash it may be less than asked for, and of a shape
/// that cannot be drawn it is 0. There is room for kSpecialPoints.
int WriteShape(const SpecialShape& shape, const RandomTable& table, KRN_PointVertex* points);

/// The size of the points of a shape in units of the world: whole, as the scale and the definition's size give it.
float ShapePointSize(SpecialType type, const D3DXVECTOR3& scale, float point_size);

}   // namespace sparkrig
