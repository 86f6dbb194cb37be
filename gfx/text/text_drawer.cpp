#include "gfx/text/text_drawer.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "gfx/device/with_restore.h"
#include "gfx/textures/texture.h"

namespace sparkrig {

namespace {

constexpr float kPixelShift = 0.5f;   // texels and pixels meet centre on centre
constexpr KRN_TLVertex kBlankVertex = {0, 0, 1.0f, 1.0f, 0xFFFFFFFF, 0xFF000000, 0, 0};

bool Empty(const RECT& rectangle) { return rectangle.left >= rectangle.right || rectangle.top >= rectangle.bottom; }

RECT Intersection(const RECT& a, const RECT& b) {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right), std::min(a.bottom, b.bottom)};
}

/// The whole pixels that the lines of all runs touch.
RECT Extent(const KRN_PrintfContainer& text, float scroll_x, float scroll_y) {
    bool first = true;
    float left = 0, top = 0, right = 0, bottom = 0;
    for (const PrintfLine& line : text.Lines()) {
        for (int i = 0; i < line.entities; ++i) {
            const PrintfEntity& run = text.Entity(line.first_entity + i);
            left = first ? run.x : std::min(left, run.x);
            right = first ? run.x + run.width : std::max(right, run.x + run.width);
            top = first ? line.y : std::min(top, line.y);
            bottom = first ? line.y + line.height : std::max(bottom, line.y + line.height);
            first = false;
        }
    }
    return {static_cast<LONG>(std::floor(left - scroll_x)), static_cast<LONG>(std::floor(top - scroll_y)),
            static_cast<LONG>(std::ceil(right - scroll_x)), static_cast<LONG>(std::ceil(bottom - scroll_y))};
}

}   // namespace

void TextDrawer::CreateVertexList() {
    constexpr UINT kVertices = kGlyphsPerBatch * kVerticesPerGlyph;
    lists_.Create(&vertices_, kVertices, D3DUSAGE_WRITEONLY, true);
    std::fill_n(vertices_.Lock(0, kVertices, 0), kVertices, kBlankVertex);
    vertices_.Unlock();
}

void TextDrawer::SetLimits(const RECT* limits) {
    limits_.reset();
    if (limits) limits_ = *limits;
}

RECT TextDrawer::VisibleRectangle(const KRN_PrintfContainer& text, const RECT& rectangle, float scroll_x,
                                  float scroll_y) const {
    if (!limits_) return rectangle;
    return Intersection(Intersection(rectangle, *limits_), Extent(text, scroll_x, scroll_y));
}

void TextDrawer::Draw(KRN_PrintfContainer& text, const RECT& rectangle, float scroll_x, float scroll_y) {
    const int culling = states_.culling.Mode();
    const DWORD mag_filter = states_.samplers.MagFilter(0), min_filter = states_.samplers.MinFilter(0);
    const D3DVIEWPORT9 viewport = states_.transforms.Viewport();
    const auto draw = [&] {
        states_.culling.Set(0);
        states_.depth.PushOff();
        states_.samplers.SetMinFilter(D3DTEXF_POINT, 0);
        states_.samplers.SetMagFilter(D3DTEXF_POINT, 0);
        DrawVisible(text, rectangle, scroll_x, scroll_y);
    };
    WithRestore(draw, [&] {
        Abandon();
        states_.transforms.SetViewport(viewport);
        states_.samplers.SetMinFilter(min_filter, 0);
        states_.samplers.SetMagFilter(mag_filter, 0);
        states_.depth.PopOff();
        states_.culling.Set(culling);
    });
}

void TextDrawer::DrawVisible(KRN_PrintfContainer& text, const RECT& rectangle, float scroll_x, float scroll_y) {
    text.SortLines();
    const RECT visible = VisibleRectangle(text, rectangle, scroll_x, scroll_y);
    if (Empty(visible)) return;
    const D3DVIEWPORT9 clip = {static_cast<DWORD>(visible.left),
                               static_cast<DWORD>(visible.top),
                               static_cast<DWORD>(visible.right - visible.left),
                               static_cast<DWORD>(visible.bottom - visible.top),
                               0.0f,
                               1.0f};
    if (SUCCEEDED(states_.transforms.SetViewport(clip))) DrawLines(text, visible, scroll_x, scroll_y);
}

void TextDrawer::DrawLines(const KRN_PrintfContainer& text, const RECT& visible, float scroll_x, float scroll_y) {
    const std::vector<PrintfLine>& lines = text.Lines();
    float tallest = 0;   // a line may begin above the rectangle and reach into it
    for (const PrintfLine& line : lines) tallest = std::max(tallest, line.height);
    const float top = static_cast<float>(visible.top) + scroll_y - tallest;
    auto line = std::ranges::lower_bound(lines, top, {}, &PrintfLine::y);
    for (; line != lines.end() && line->y - scroll_y < static_cast<float>(visible.bottom); ++line) {
        for (int i = 0; i < line->entities; ++i) {
            const PrintfEntity& run = text.Entity(line->first_entity + i);
            UseFont(run.font);
            const float base = run.font->BaseFraction() * run.font->LineHeight() * run.size_y;
            AddRun(text, run, run.x - scroll_x, std::floor(line->y + line->height - base - scroll_y));
        }
    }
    Flush();
}

void TextDrawer::Abandon() {
    font_ = nullptr;
    locked_ = nullptr;
    glyphs_ = 0;
}

void TextDrawer::UseFont(KRN_Font* font) {
    if (font == font_) return;
    Flush();
    font_ = font;
    textures_.SetTexture(&font->Sheet(), -1);
}

void TextDrawer::AddRun(const KRN_PrintfContainer& text, const PrintfEntity& run, float x, float y) {
    const POINT sheet = run.font->Sheet().GetSize();
    const float per_u = 1.0f / static_cast<float>(sheet.x), per_v = 1.0f / static_cast<float>(sheet.y);
    for (int i = 0; i < run.length; ++i) {
        const int code = static_cast<unsigned char>(text.Characters(run)[i]);
        const RECT& rect = run.font->GlyphOf(code).rect;
        const float left = x - kPixelShift, right = left + static_cast<float>(rect.right - rect.left) * run.size_x;
        const float top = y - kPixelShift, bottom = top + static_cast<float>(rect.bottom - rect.top) * run.size_y;
        const float u0 = static_cast<float>(rect.left) * per_u, u1 = static_cast<float>(rect.right) * per_u;
        const float v0 = static_cast<float>(rect.top) * per_v, v1 = static_cast<float>(rect.bottom) * per_v;
        x += run.font->Advance(code) * run.size_x;
        if (glyphs_ == kGlyphsPerBatch) Flush();
        if (!locked_) locked_ = vertices_.Lock(0, kGlyphsPerBatch * kVerticesPerGlyph, 0);
        const auto corner = [&](float px, float py, float u, float v) {
            KRN_TLVertex vertex = kBlankVertex;
            vertex.x = px;
            vertex.y = py;
            vertex.diffuse = run.colour;
            vertex.u = u;
            vertex.v = v;
            *locked_++ = vertex;
        };
        corner(left, bottom, u0, v1);
        corner(left, top, u0, v0);
        corner(right, bottom, u1, v1);
        corner(right, bottom, u1, v1);
        corner(left, top, u0, v0);
        corner(right, top, u1, v0);
        ++glyphs_;
    }
}

void TextDrawer::Flush() {
    if (!locked_) return;
    vertices_.Unlock();
    locked_ = nullptr;
    const UINT triangles = 2 * std::exchange(glyphs_, 0u);
    lists_.Draw(vertices_, 0, static_cast<int>(triangles));
}

}   // namespace sparkrig
