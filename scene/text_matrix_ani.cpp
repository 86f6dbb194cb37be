#include "scene/text_matrix_ani.h"

#include <algorithm>
#include <iterator>

namespace sparkrig {
namespace {

struct AnimatedValue {
    ScalarCurve KRN_TextMatrixAni::*track;
    float TextureMatrixValues::*value;
};

// clang-format off
constexpr AnimatedValue kValues[] = {
    {&KRN_TextMatrixAni::offset_u, &TextureMatrixValues::offset_u},
    {&KRN_TextMatrixAni::offset_v, &TextureMatrixValues::offset_v},
    {&KRN_TextMatrixAni::tiling_u, &TextureMatrixValues::tiling_u},
    {&KRN_TextMatrixAni::tiling_v, &TextureMatrixValues::tiling_v},
    {&KRN_TextMatrixAni::angle_w,  &TextureMatrixValues::angle_w},
};
// clang-format on

}   // namespace

bool KRN_TextMatrixAni::IsAnimated() const {
    return std::any_of(std::begin(kValues), std::end(kValues),
                       [&](const AnimatedValue& row) { return !(this->*row.track).IsEmpty(); });
}

TextureMatrixValues KRN_TextMatrixAni::ValuesAt(double t) const {
    TextureMatrixValues values = constants;
    for (const auto& [track, value] : kValues) {
        if ((this->*track).IsEmpty()) continue;
        float at_t[1];
        (this->*track).EvaluateCurve(t, at_t);
        values.*value = at_t[0];
    }
    return values;
}

}   // namespace sparkrig
