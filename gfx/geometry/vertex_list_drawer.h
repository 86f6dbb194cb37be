// Makes the buffers of vertex lists and draws them.
#pragma once
#include "gfx/device/draw_statistics.h"
#include "gfx/geometry/vertex_list.h"
#include "gfx/shaders/shader_effect_choice.h"
#include "gfx/states/geometry_bindings.h"
#include "gfx/states/point_sprites.h"
#include "gfx/states/transforms.h"

namespace sparkrig {

class VertexListDrawer {
  public:
    VertexListDrawer(const GraphicsDevice& graphics, GeometryBindings& bindings, PointSprites& points,
                     Transforms& transforms, const EffectChoice& effects, DrawStatistics& statistics)
        : graphics_(graphics),
          bindings_(bindings),
          points_(points),
          transforms_(transforms),
          effects_(effects),
          statistics_(statistics) {}

    /// Lets go of an old buffer. usage: D3DUSAGE_ flags, or -1 for what the list's point sprites need.
    bool Create(KRN_VertexList* list, UINT elements, int usage, bool system_memory);
    /// first: the vertex to begin with; count: primitives, -1 for all of the list.
    void Draw(KRN_VertexList& list, UINT first, int count);

  private:
    bool HardwareCanProcess(const VertexLayout& layout) const;

    const GraphicsDevice& graphics_;
    GeometryBindings& bindings_;
    PointSprites& points_;
    Transforms& transforms_;
    const EffectChoice& effects_;
    DrawStatistics& statistics_;
};

}   // namespace sparkrig
