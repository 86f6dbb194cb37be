#include "gfx/text/font.h"

#include "gfx/textures/texture.h"

namespace sparkrig {

KRN_Font::KRN_Font() { SetName("KRN_Font"); }
KRN_Font::~KRN_Font() = default;

void KRN_Font::Release() { sheet_.reset(); }

bool KRN_Font::IsValid() const { return sheet_ && sheet_->HasSurface(); }

void KRN_Font::SetTextStyle(float size, D3DCOLOR colour, float letter_spacing, float line_spacing,
                            float base_fraction) {
    size_ = size;
    colour_ = colour;
    if (letter_spacing != kKeepSpacing) letter_spacing_ = letter_spacing;
    if (line_spacing != kKeepSpacing) line_spacing_ = line_spacing;
    base_fraction_ = base_fraction;
}

float KRN_Font::Advance(int code) const {
    const Glyph& glyph = GlyphOf(code);
    return static_cast<float>(glyph.rect.right - glyph.rect.left) + letter_spacing_ - glyph.before - glyph.after;
}

float KRN_Font::LineHeight() const {
    return static_cast<float>(glyphs_[0].rect.bottom - glyphs_[0].rect.top) + line_spacing_;
}

}   // namespace sparkrig
