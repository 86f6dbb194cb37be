// Draws a texture as a rectangle of the screen.
#pragma once
#include "gfx/device/draw_statistics.h"
#include "gfx/geometry/vertex_list.h"
#include "gfx/shaders/shader_effect_choice.h"
#include "gfx/states/gfx_states.h"
#include "gfx/textures/texture.h"

namespace sparkrig {

class ScreenDrawer {
  public:
    ScreenDrawer(GfxStates& states, const ShaderEffectChoice& effects, DrawStatistics& statistics)
        : states_(states), effects_(effects), statistics_(statistics) {}

    /// The texture that is drawn. Borrowed.
    void SetTexture(KRN_Texture* texture) { texture_ = texture; }
    /// Whether screen rectangles are tested against the depth buffer. Initially off.
    void SetDepthTest(bool on) { depth_test_ = on; }

    /// Writes the texture's four vertices and draws them. source: the part of the picture, in its pixels; null for the
    /// whole. z: for the corners left bottom, left top, right bottom,
    /// right top.
    void Draw(const Quad2D& rectangle, const Quad2D* source, D3DCOLOR colour, const float (&z)[4]);
    /// Draws the texture's four vertices as they are.
    void DrawLast();

  private:
    KRN_Texture& Texture() const;
    void DrawStrip();

    GfxStates& states_;
    const ShaderEffectChoice& effects_;
    DrawStatistics& statistics_;
    KRN_Texture* texture_ = nullptr;
    bool depth_test_ = false;
};

}   // namespace sparkrig
