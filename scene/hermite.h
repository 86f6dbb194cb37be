// The cubic Hermite basis: how much two values and their tangents count at s, 0 to 1, between them. Tangents are times
// the interval; the second one, `in`, is stored negated, so its part is subtracted.
#pragma once

namespace sparkrig {

struct HermiteWeights {
    explicit HermiteWeights(float s) {
        const float s2 = s * s;
        const float s3 = s2 * s;
        from = 2 * s3 - 3 * s2 + 1;
        to = 3 * s2 - 2 * s3;
        out = s3 - 2 * s2 + s;
        in = s3 - s2;
    }
    float from, to, out, in;
};

/// The derivatives of the weights by s.
struct HermiteSlopes {
    explicit HermiteSlopes(float s) {
        const float s2 = s * s;
        from = 6 * s2 - 6 * s;
        to = 6 * s - 6 * s2;
        out = 3 * s2 - 4 * s + 1;
        in = 3 * s2 - 2 * s;
    }
    float from, to, out, in;
};

}   // namespace sparkrig
