// The built-in bitmap font: 62 glyphs of 5 x 5 pixels on one sheet, and how text is set in it.
#pragma once
#include <memory>

#include "base/error.h"
#include "platform/d3d9/d3d9.h"

namespace sparkrig {

class KRN_Gfx;
class KRN_Texture;

/// As a letter or line spacing of SetTextStyle: leaves it as it is.
inline constexpr float kKeepSpacing = -999.0f;

class KRN_Font final : public KRN_Base {
  public:
    static constexpr int kFirstChar = 32, kLastChar = 93, kGlyphs = kLastChar - kFirstChar + 1;
    struct Glyph {
        RECT rect;                     // sheet pixels
        float before = 0, after = 0;   // sheet pixels taken off the advance
    };

    KRN_Font();
    ~KRN_Font();
    KRN_Font(const KRN_Font&) = delete;
    KRN_Font& operator=(const KRN_Font&) = delete;

    /// Draws the glyph sheet; set pixels run from colour a at a glyph's top left to colour b at its bottom right.
    bool CreateBuiltInFont(KRN_Gfx& gfx, D3DCOLOR a, D3DCOLOR b);
    /// Lets go of the sheet.
    void Release();
    /// The sheet is there.
    bool IsValid() const;
    /// size: screen pixels for a sheet pixel; spacings in sheet pixels; base_fraction: how far down its line height
    /// the base line of a run lies.
    void SetTextStyle(float size, D3DCOLOR colour, float letter_spacing, float line_spacing, float base_fraction);

    bool UppercaseOnly() const { return uppercase_only_; }
    bool HasGlyph(int code) const { return code >= kFirstChar && code <= kLastChar; }
    const Glyph& GlyphOf(int code) const { return glyphs_[code - kFirstChar]; }
    /// From one character to the next, in sheet pixels.
    float Advance(int code) const;
    /// From one line to the next, in sheet pixels.
    float LineHeight() const;
    float Size() const { return size_; }
    D3DCOLOR Colour() const { return colour_; }
    float BaseFraction() const { return base_fraction_; }
    KRN_Texture& Sheet() const { return *sheet_; }

  private:
    void PlaceGlyphs();

    std::unique_ptr<KRN_Texture> sheet_;
    Glyph glyphs_[kGlyphs] = {};
    bool uppercase_only_ = false;
    D3DCOLOR colour_ = 0xFF000000;
    float size_ = 1, letter_spacing_ = 1, line_spacing_ = 1, base_fraction_ = 0.75f;
};

}   // namespace sparkrig
