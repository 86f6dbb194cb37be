#include "gfx/geometry/immediate_lists.h"

#include <algorithm>

namespace sparkrig {

namespace {

constexpr D3DCOLOR kWhite = 0xFFFFFFFF, kBlack = 0xFF000000;

template <class Vertex>
void Fill(KRN_VertexListTemp<Vertex>& list, const Vertex& vertex) {
    std::fill_n(list.Lock(0, list.ElementCount(), 0), list.ElementCount(), vertex);
    list.Unlock();
}

}   // namespace

void ImmediateLists::Create(VertexListDrawer& drawer) {
    drawer.Create(&screen, kElements, -1, false);
    drawer.Create(&triangles, kElements, -1, false);
    drawer.Create(&lines, kElements, -1, false);
    drawer.Create(&quad, 4, -1, false);
    drawer.Create(&point, 1, -1, false);

    Fill(screen, KRN_TLVertex{0, 0, 1, 1, kWhite, kBlack, 0, 0});
    Fill(triangles, KRN_LVertex{0, 0, 0, kWhite, kBlack, 0, 0});
    Fill(lines, KRN_LVertex{0, 0, 0, kWhite, kBlack, 0, 0});
    Fill(point, KRN_PointVertex{0, 0, 0, kWhite});
    // Twice the screen, texture coordinates likewise: no edge lies on pixel centres, whatever the target's size.
    constexpr KRN_VertexPosTex kCorners[] = {
        {-2, -2, 0, -0.5f, 1.5f}, {-2, 2, 0, -0.5f, -0.5f}, {2, -2, 0, 1.5f, 1.5f}, {2, 2, 0, 1.5f, -0.5f}};
    std::ranges::copy(kCorners, quad.Lock(0, 4, 0));
    quad.Unlock();
}

}   // namespace sparkrig
