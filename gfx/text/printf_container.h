// The text of a frame, as lines of runs: what Printf gathers until it is drawn.
#pragma once
#include <string>
#include <vector>

#include "base/error.h"
#include "gfx/text/font.h"

namespace sparkrig {

enum class TextAlignment : int { Left = 0, Centre = 1 };   // what x means: the text's left end, or its middle

/// How the text that follows is set. The first field is the one that Printf's second form sets to 1.
struct KRN_PrintfOptions {
    TextAlignment alignment = TextAlignment::Left;
    KRN_Font* font = nullptr;         // borrowed
    float size = 0;                   // 0: the font's own
    D3DCOLOR colour = 0;              // alpha 0: the font's own
    float scale_x = 1, scale_y = 1;   // of every metric
    float x = 0, y = 0;               // pixels: where the next line starts
};

/// One run of text in one font and one size.
struct PrintfEntity {
    KRN_Font* font;   // borrowed
    float x, width;   // pixels
    D3DCOLOR colour;
    float size_x, size_y;     // pixels for a sheet pixel
    int first_char, length;   // in the container's characters
};

struct PrintfLine {
    float y, height;   // pixels
    int first_entity, entities;
};

class KRN_PrintfContainer : public KRN_Base {
  public:
    static constexpr int kSavedOptions = 8;

    KRN_PrintfContainer() { SetName("KRN_PrintfContainer"); }

    /// size 0 and a colour with alpha 0 leave the font's own.
    void SetFont(KRN_Font* font, float size, D3DCOLOR colour);
    KRN_PrintfOptions& Options() { return options_; }
    /// A stack of eight; one more is an error.
    void SaveOptions();
    /// Nothing happens when nothing is saved.
    void RestoreOptions();

    /// Adds text at the end of the current line. A line feed starts the next line below, at the options' x. Without a
    /// font nothing is added.
    void Add(const char* text);
    /// Starts a line at the position and adds text there.
    void AddAt(float x, float y, const char* text);
    /// Lets go of all text; options stay.
    void Clear();

    /// Puts the lines into the order of their y, as DrawText needs them.
    void SortLines();
    const std::vector<PrintfLine>& Lines() const { return lines_; }
    const PrintfEntity& Entity(int index) const { return entities_[static_cast<std::size_t>(index)]; }
    const char* Characters(const PrintfEntity& entity) const { return characters_.data() + entity.first_char; }

  private:
    void StartLine(float y);
    /// Adds one run without line feeds.
    void AddRun(const char* text, std::size_t length);
    std::size_t TakeCharacters(const char* text, std::size_t length);

    KRN_PrintfOptions options_;
    std::vector<KRN_PrintfOptions> saved_;
    std::vector<PrintfLine> lines_;
    std::vector<PrintfEntity> entities_;   // those of a line stand together
    std::string characters_;
    float cursor_x_ = 0;       // where the next run of the current line starts
    bool line_open_ = false;   // the last line takes further runs
};

}   // namespace sparkrig
