#include "gfx/text/printf_container.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace sparkrig {

void KRN_PrintfContainer::SetFont(KRN_Font* font, float size, D3DCOLOR colour) {
    if (!font || !font->IsValid()) Error("Tried to set invalid font");
    options_.font = font;
    options_.size = size;
    options_.colour = colour >> 24 ? colour : 0;
}

void KRN_PrintfContainer::SaveOptions() {
    if (saved_.size() >= kSavedOptions) Error("SaveOptions() stack overflow");
    saved_.push_back(options_);
}

void KRN_PrintfContainer::RestoreOptions() {
    if (saved_.empty()) return;
    options_ = saved_.back();
    saved_.pop_back();
}

void KRN_PrintfContainer::StartLine(float y) {
    lines_.push_back({y, 0, static_cast<int>(entities_.size()), 0});
    cursor_x_ = options_.x;
    line_open_ = true;
}

void KRN_PrintfContainer::Add(const char* text) {
    if (!options_.font || !options_.font->IsValid()) return;
    if (!line_open_) StartLine(options_.y);
    for (;;) {
        const std::size_t length = std::strcspn(text, "\n");
        AddRun(text, length);
        if (text[length] == '\0') return;
        text += length + 1;
        const PrintfLine& ended = lines_.back();
        StartLine(ended.y + ended.height);
    }
}

void KRN_PrintfContainer::AddAt(float x, float y, const char* text) {
    options_.x = x;
    options_.y = y;
    line_open_ = false;
    Add(text);
}

std::size_t KRN_PrintfContainer::TakeCharacters(const char* text, std::size_t length) {
    const KRN_Font& font = *options_.font;
    const std::size_t before = characters_.size();
    for (std::size_t i = 0; i < length; ++i) {
        char c = text[i] == '\t' ? ' ' : text[i];
        if (font.UppercaseOnly() && c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
        if (font.HasGlyph(static_cast<unsigned char>(c))) characters_.push_back(c);
    }
    return characters_.size() - before;
}

void KRN_PrintfContainer::AddRun(const char* text, std::size_t length) {
    KRN_Font& font = *options_.font;
    const float size = options_.size != 0 ? options_.size : font.Size();
    PrintfEntity run = {};
    run.font = &font;
    run.colour = options_.colour ? options_.colour : font.Colour();
    run.size_x = size * options_.scale_x;
    run.size_y = size * options_.scale_y;
    run.first_char = static_cast<int>(characters_.size());
    run.length = static_cast<int>(TakeCharacters(text, length));
    for (int i = 0; i < run.length; ++i) {
        run.width += font.Advance(static_cast<unsigned char>(Characters(run)[i])) * run.size_x;
    }
    run.x = options_.alignment == TextAlignment::Centre ? std::floor(cursor_x_ - run.width / 2) : cursor_x_;

    PrintfLine& line = lines_.back();
    line.height = std::max(line.height, font.LineHeight() * run.size_y);   // an empty line has its font's height
    if (run.length == 0) return;
    cursor_x_ = run.x + run.width;
    entities_.push_back(run);
    ++line.entities;
}

void KRN_PrintfContainer::Clear() {
    lines_.clear();
    entities_.clear();
    characters_.clear();
    line_open_ = false;
}

void KRN_PrintfContainer::SortLines() {
    // Insertion keeps the order of equal lines and, unlike a library's stable sort, takes no memory in each frame.
    for (auto line = lines_.begin(); line != lines_.end(); ++line)
        std::rotate(std::ranges::upper_bound(lines_.begin(), line, line->y, {}, &PrintfLine::y), line, line + 1);
    line_open_ = false;   // the last line may be another one now
}

}   // namespace sparkrig
