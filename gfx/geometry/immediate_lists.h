// The few vertex lists that are there from the start, for drawers that fill one each frame.
#pragma once
#include "gfx/geometry/vertex_list_drawer.h"

namespace sparkrig {

/// The lists that immediate drawers fill, lock and draw. Made once, with the device; their buffers survive a reset.
class ImmediateLists {
  public:
    static constexpr UINT kElements = 32;   // of the screen and line lists

    /// Makes the buffers and writes what does not change: white colours, zero texture coordinates, the screen quad.
    void Create(VertexListDrawer& drawer);

    KRN_VertexListTemp<KRN_TLVertex> screen{PrimitiveMode::TriangleStrip};
    KRN_VertexListTemp<KRN_LVertex> triangles{PrimitiveMode::TriangleList};
    KRN_VertexListTemp<KRN_LVertex> lines{PrimitiveMode::LineList};
    /// Covers the screen in clip coordinates, as a strip; on the screen texture coordinates run from 0 to 1.
    KRN_VertexListTemp<KRN_VertexPosTex> quad{PrimitiveMode::TriangleStrip};
    KRN_VertexListTemp<KRN_PointVertex> point{PrimitiveMode::PointList};
};

}   // namespace sparkrig
