// Draws the ribbons of trails, one draw call each.
#pragma once
#include "effects/trace_effect_set.h"
#include "gfx/geometry/vertex_list.h"

namespace sparkrig {

class KRN_Gfx;

class TraceDrawing {
  public:
    /// Borrows the device. Buffer mode 1 takes a managed, 2 a dynamic vertex buffer, every other mode one in system
    /// memory.
    void Init(KRN_Gfx& gfx, int buffer_mode);
    void Release() { vertices_.ReleaseBuffer(); }
    /// Draws all trails, unlit and without writing depth. Blending mode 9 is set afterwards.
    void DrawTraces(TraceEffectSet& traces);

  private:
    void DrawTrail(TraceEffectData& trail);

    KRN_Gfx* gfx_ = nullptr;   // borrowed
    KRN_VertexListTemp<KRN_LVertex> vertices_{PrimitiveMode::TriangleList};
};

}   // namespace sparkrig
