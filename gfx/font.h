// The built-in bitmap font.
#pragma once
#include "base/error.h"
#include "platform/d3d9/d3d9.h"

namespace sparkrig {

class KRN_Gfx;
class KRN_Texture;

inline constexpr float kKeepSpacing = -999.0f;

class KRN_Font : public KRN_Base {
  public:
    static constexpr int kFirstChar = 32, kLastChar = 93, kGlyphs = 62;
    struct Glyph {
        RECT rect;   // sheet pixels
        float before = 0, after = 0;
    };

    KRN_Font();
    ~KRN_Font();
    KRN_Font(const KRN_Font&) = delete;
    KRN_Font& operator=(const KRN_Font&) = delete;

    /// Draws the glyph sheet; set pixels run from colour a at the top left to colour b at the bottom right.
    bool CreateBuiltInFont(KRN_Gfx& gfx, D3DCOLOR a, D3DCOLOR b);
    void Release();
    bool IsValid() const;
    /// kKeepSpacing leaves a spacing as it is.
    void SetTextStyle(float size, D3DCOLOR colour, float letter_spacing, float line_spacing, float base_fraction);

    bool UppercaseOnly() const { return uppercase_only_; }
    bool HasGlyph(int code) const { return code >= kFirstChar && code <= kLastChar; }
    const Glyph& GlyphOf(int code) const { return glyphs_[code - kFirstChar]; }
    float Advance(int code) const;
    float LineHeight() const;
    float Size() const { return size_; }
    D3DCOLOR Colour() const { return colour_; }
    float BaseFraction() const { return base_fraction_; }
    KRN_Texture& Sheet() const { return *sheet_; }

  private:
    KRN_Texture* sheet_ = nullptr;   // owned
    Glyph glyphs_[kGlyphs] = {};
    bool uppercase_only_ = false;
    D3DCOLOR colour_ = 0xFF000000;
    float size_ = 1, letter_spacing_ = 1, line_spacing_ = 1, base_fraction_ = 0.75f;
};

}   // namespace sparkrig
