// Draws special effects: each is one list of point sprites, computed afresh in every frame.
#pragma once
#include "effects/effect_instance.h"
#include "effects/special_shapes.h"
#include "gfx/textures/texture.h"

namespace sparkrig {

class KRN_Gfx;

/// The shape of a special instance at an age.
SpecialShape ShapeOf(const VisualEffectObject& object, double age);

class SpecialEffectRenderer {
  public:
    SpecialEffectRenderer();

    /// Borrows the device. Draws the numbers of the random table.
    void Init(KRN_Gfx& gfx);
    void Release();
    /// Draws the shape of a special instance at `age` seconds; nothing for one of type "none". States are as after
    /// drawing: depth is written again.
    void DrawSpecialEffect(const VisualEffectObject& object, double age);

  private:
    void FillDefaultTexture();
    void DrawPoints(KRN_Texture* texture, int count);

    RandomTable table_;
    KRN_Gfx* gfx_ = nullptr;   // borrowed
    KRN_VertexListTemp<KRN_PointVertex> points_{PrimitiveMode::PointList};
    KRN_Texture spot_;   // where an effect names no texture
};

}   // namespace sparkrig
