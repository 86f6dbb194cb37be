// Makes the buffers of vertex lists and draws them.
#pragma once
#include "gfx/device/draw_statistics.h"
#include "gfx/geometry/vertex_list.h"
#include "gfx/shaders/shader_effect_choice.h"
#include "gfx/states/gfx_states.h"

namespace sparkrig {

class VertexListDrawer {
  public:
    VertexListDrawer(GfxStates& states, const ShaderEffectChoice& effects, DrawStatistics& statistics)
        : states_(states), effects_(effects), statistics_(statistics) {}

    /// Lets go of an old buffer. usage: D3DUSAGE_ flags, or -1 for what the list's point sprites need.
    bool Create(KRN_VertexList* list, UINT elements, int usage, bool system_memory);
    /// first: the vertex to begin with; count: primitives, -1 for all of the list.
    void Draw(KRN_VertexList& list, UINT first, int count);

  private:
    bool HardwareCanProcess(const VertexLayout& layout) const;

    GfxStates& states_;
    const ShaderEffectChoice& effects_;
    DrawStatistics& statistics_;
};

}   // namespace sparkrig
