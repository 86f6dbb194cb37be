// The shapes of special effects: the points of each as a pure function of its age, its axes and a table of random
// numbers. Nothing is kept from one frame to the next.
#pragma once
#include <cstdint>

#include "effects/effect_definition.h"
#include "effects/random_table.h"
#include "gfx/geometry/vertex_list.h"

namespace sparkrig {

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
