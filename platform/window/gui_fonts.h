// The letters of menus and dialogs: the desktop's own sans-serif font, and for what it lacks the fonts that have it.
#pragma once
#include <string_view>

#include <set>

struct ImFont;
struct ImFontAtlas;

namespace sparkrig {

class GuiFonts {
  public:
    /// pixels: the height of a line. The atlas must outlive this.
    GuiFonts(ImFontAtlas& atlas, float pixels);

    /// Asks for the characters of a text (UTF-8), which can be shown after the next Build.
    void Ask(std::string_view text);
    /// Draws the characters that have been asked for since the last Build into the atlas. False when there are none.
    bool Build();
    const ImFont& Font() const;

  private:
    ImFontAtlas& atlas_;
    float pixels_;
    std::set<char32_t> asked_;   // all of them: an atlas is built whole
    bool complete_ = false;
};

}   // namespace sparkrig
