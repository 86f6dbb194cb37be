// One vertex drawn as a point that covers a whole small canvas, so that what was computed for it can be read anywhere.
#pragma once
#include <algorithm>
#include <bit>
#include <cmath>
#include <string>

#include "tests/platform/d3d9_gl/matrices.h"
#include "tests/support/canvas.h"

namespace sparkrig {

class PointCanvas : public Canvas {
  public:
    PointCanvas() : Canvas(4, 4) {
        Set(D3DRS_POINTSIZE, 256.0f);
        Set(D3DRS_POINTSIZE_MAX, 256.0f);
    }
    void Set(D3DRENDERSTATETYPE state, float value) { Device().SetRenderState(state, std::bit_cast<DWORD>(value)); }
    void Set(D3DTRANSFORMSTATETYPE type, const D3DMATRIX& matrix) { Device().SetTransform(type, &matrix); }

    template <class Vertex>
    Rgb DrawPoint(const Vertex& vertex, DWORD fvf = Vertex::kFvf) {
        Clear(0);
        Draw<Vertex>(fvf, D3DPT_POINTLIST, 1, {vertex});
        return Pixel(2, 1);
    }
};

/// A pixel function that shows the first three components of an interpolant: 0.5 + x / 8.
inline ShaderCode ShowVarying(int varying) {
    ShaderCode code;
    code.glsl = "#version 450\nlayout(location = " + std::to_string(varying) +
                ") in vec4 shown;\nlayout(location = 0) out vec4 pixel_color;\n"
                "void main() { pixel_color = vec4(shown.xyz / 8.0 + 0.5, 1.0); }\n";
    code.varyings = 1u << varying;
    return code;
}
/// What ShowVarying makes of three numbers.
inline Rgb Shown(double x, double y, double z) {
    const auto byte = [](double v) { return static_cast<int>(std::lround(std::clamp(v / 8 + 0.5, 0.0, 1.0) * 255)); };
    return {byte(x), byte(y), byte(z)};
}

}   // namespace sparkrig
