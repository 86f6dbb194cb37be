// Draws the sheet of the built-in font, whose place among the textures the facade knows.
#include <cmath>

#include "gfx/gfx.h"
#include "gfx/text/font.h"
#include "gfx/text/font_glyphs.h"
#include "gfx/textures/texture.h"

namespace sparkrig {

namespace {

constexpr int kGlyphPixels = 5, kCellPixels = 6, kCellsPerRow = 21;
constexpr UINT kSheetWidth = 128, kSheetHeight = 32;
constexpr int kManagedTexture = 4;   // CreateTexture's mode
constexpr int kPlainUsage = 0;       // CheckTextureFormat's mode

/// The opaque colour at part d of the way from a to b.
D3DCOLOR Blend(D3DCOLOR a, D3DCOLOR b, double d) {
    D3DCOLOR colour = 0xFF000000;
    for (const int shift : {16, 8, 0}) {
        const int from = static_cast<int>(a >> shift & 0xFF), to = static_cast<int>(b >> shift & 0xFF);
        colour |= static_cast<D3DCOLOR>(from + (to - from) * d) << shift;
    }
    return colour;
}

void DrawGlyph(KRN_Texture& sheet, int glyph, const RECT& rect, D3DCOLOR a, D3DCOLOR b) {
    for (int row = 0; row < kGlyphPixels; ++row) {
        for (int column = 0; column < kGlyphPixels; ++column) {
            const bool set = (kBuiltInFontGlyphs[glyph][row] & 0x10 >> column) != 0;
            const double d = std::sqrt((row * row + column * column) * 0.03125);
            sheet.SetPixel(rect.left + column, rect.top + row, set ? Blend(a, b, d) : 0);
        }
    }
}

}   // namespace

void KRN_Font::PlaceGlyphs() {
    for (int g = 0; g < kGlyphs; ++g) {
        const LONG left = kCellPixels * (g % kCellsPerRow), top = kCellPixels * (g / kCellsPerRow);
        glyphs_[g] = {{left, top, left + kGlyphPixels, top + kGlyphPixels}};
    }
}

bool KRN_Font::CreateBuiltInFont(KRN_Gfx& gfx, D3DCOLOR a, D3DCOLOR b) {
    const bool has_8_bits = gfx.CheckTextureFormat(D3DFMT_A8R8G8B8, kPlainUsage);
    sheet_ = std::make_unique<KRN_Texture>();
    gfx.CreateTexture(sheet_.get(), kSheetWidth, kSheetHeight, kManagedTexture,
                      static_cast<int>(has_8_bits ? D3DFMT_A8R8G8B8 : D3DFMT_A4R4G4B4), 1);
    PlaceGlyphs();
    sheet_->Lock(nullptr, 0);
    for (int g = 0; g < kGlyphs; ++g) DrawGlyph(*sheet_, g, glyphs_[g].rect, a, b);
    sheet_->Unlock();
    uppercase_only_ = true;
    SetTextStyle(1.0f, 0xFFFFFFFF, 1.0f, 1.0f, 0.75f);
    return true;
}

}   // namespace sparkrig
