// Rotations by a vector along their axis.
#pragma once
#include <cmath>

#include "effects/sine.h"

namespace sparkrig {

/// A unit quaternion.
struct Turn {
    float x = 0, y = 0, z = 0, w = 1;
};

/// The rotation about (x, y, z) by its length times `unit` radians. Nothing is turned by a vector of length 0.
inline Turn TurnAbout(float x, float y, float z, float unit) {
    const float length = std::sqrt(x * x + y * y + z * z);
    const double half = 0.5 * (length * unit);
    const float axis = length > 0 ? static_cast<float>(Sine(half)) / length : 0;
    return {x * axis, y * axis, z * axis, static_cast<float>(Cosine(half))};
}

}   // namespace sparkrig
