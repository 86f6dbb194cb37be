// Draws the gathered text as textured quads, clipped to a rectangle by the viewport.
#pragma once
#include <optional>

#include "gfx/geometry/vertex_list_drawer.h"
#include "gfx/states/gfx_states.h"
#include "gfx/text/printf_container.h"
#include "gfx/textures/texture_stages.h"

namespace sparkrig {

class TextDrawer {
  public:
    static constexpr UINT kGlyphsPerBatch = 256, kVerticesPerGlyph = 6;

    TextDrawer(GfxStates& states, TextureStages& textures, VertexListDrawer& lists)
        : states_(states), textures_(textures), lists_(lists) {}

    /// With the device.
    void CreateVertexList();
    /// No text is drawn outside the limits, nor outside its own extent; null for no limits.
    void SetLimits(const RECT* limits);
    /// rectangle: where text may appear, in pixels of the target; scroll: taken off every position, in pixels.
    void Draw(KRN_PrintfContainer& text, const RECT& rectangle, float scroll_x, float scroll_y);

  private:
    struct Placement;   // where one run goes
    RECT VisibleRectangle(const KRN_PrintfContainer& text, const RECT& rectangle, float scroll_x, float scroll_y) const;
    void DrawVisible(KRN_PrintfContainer& text, const RECT& rectangle, float scroll_x, float scroll_y);
    void DrawLines(const KRN_PrintfContainer& text, const RECT& visible, float scroll_x, float scroll_y);
    void AddRun(const KRN_PrintfContainer& text, const PrintfEntity& run, float x, float y);
    void UseFont(KRN_Font* font);
    void Flush();
    /// No font, and nothing waits.
    void Abandon();

    GfxStates& states_;
    TextureStages& textures_;
    VertexListDrawer& lists_;
    KRN_VertexListTemp<KRN_TLVertex> vertices_{PrimitiveMode::TriangleList};
    std::optional<RECT> limits_;
    KRN_Font* font_ = nullptr;         // of the batch being filled; borrowed
    KRN_TLVertex* locked_ = nullptr;   // the batch's next vertex; null while nothing waits
    UINT glyphs_ = 0;                  // in the batch
};

}   // namespace sparkrig
