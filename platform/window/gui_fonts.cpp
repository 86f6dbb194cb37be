#include "platform/window/gui_fonts.h"

#include <fontconfig/fontconfig.h>
#include <imgui.h>
#include <imgui_freetype.h>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "platform/system/system.h"
#include "platform/window/display_text.h"

namespace sparkrig {

namespace {

// Printable ASCII and Latin-1 are always there. ImGui knows the first plane of Unicode only.
constexpr char32_t kFirst = 0x20, kLastLatin1 = 0xFF, kReplacement = 0xFFFD, kEllipsis = 0x2026, kLastOfPlane = 0xFFFF;
// Beyond this many the letters of what was shown long ago are given up.
constexpr std::size_t kMostCharacters = 8192;

using Ranges = std::vector<ImWchar>;   // pairs of first and last, ended by 0

template <auto Function>
struct Call {
    template <class Object>
    void operator()(Object* object) const {
        Function(object);
    }
};
using FontSet = std::unique_ptr<FcFontSet, Call<FcFontSetDestroy>>;
using Pattern = std::unique_ptr<FcPattern, Call<FcPatternDestroy>>;

/// fontconfig with what it has read, let go of after the fonts that it gave.
struct FontLibrary {
    const bool works = FcInit() == FcTrue;
    FontLibrary() = default;
    FontLibrary(const FontLibrary&) = delete;
    FontLibrary& operator=(const FontLibrary&) = delete;
    ~FontLibrary() { FcFini(); }
};

/// The desktop's fonts, the preferred one first, without those that add no character.
const FcFontSet* SystemFonts() {
    static const FontLibrary library;
    static const FontSet fonts = [] {
        if (!library.works) return FontSet();
        const Pattern pattern(FcNameParse(reinterpret_cast<const FcChar8*>("sans-serif:scalable=true:outline=true")));
        FcConfigSubstitute(nullptr, pattern.get(), FcMatchPattern);
        FcDefaultSubstitute(pattern.get());
        FcResult result = FcResultMatch;
        return FontSet(FcFontSort(nullptr, pattern.get(), FcTrue, nullptr, &result));
    }();
    return fonts.get();
}

/// Takes those characters out of the set that the font has.
Ranges TakeCovered(std::set<char32_t>& characters, FcPattern* font) {
    Ranges ranges;
    FcCharSet* covered = nullptr;
    if (FcPatternGetCharSet(font, FC_CHARSET, 0, &covered) != FcResultMatch) return ranges;
    std::erase_if(characters, [&](char32_t character) {
        if (!FcCharSetHasChar(covered, character)) return false;
        const ImWchar small = static_cast<ImWchar>(character);
        if (!ranges.empty() && ranges.back() + 1 == small) {
            ranges.back() = small;
        } else {
            ranges.insert(ranges.end(), {small, small});
        }
        return true;
    });
    if (!ranges.empty()) ranges.push_back(0);
    return ranges;
}

/// A block that ImGui frees; null when the file cannot be read.
void* ReadWhole(const char* name, int& size) {
    const std::unique_ptr<std::FILE, Call<std::fclose>> file(OpenFileStream(name, "rb"));
    if (!file || std::fseek(file.get(), 0, SEEK_END) != 0) return nullptr;
    size = static_cast<int>(std::ftell(file.get()));
    std::rewind(file.get());
    void* bytes = size > 0 ? ImGui::MemAlloc(static_cast<std::size_t>(size)) : nullptr;
    if (!bytes || std::fread(bytes, 1, static_cast<std::size_t>(size), file.get()) == static_cast<std::size_t>(size)) {
        return bytes;
    }
    ImGui::MemFree(bytes);
    return nullptr;
}

void AddFont(ImFontAtlas& atlas, FcPattern* font, const Ranges& ranges, float pixels) {
    FcChar8* file = nullptr;
    int index = 0, size = 0;
    FcPatternGetInteger(font, FC_INDEX, 0, &index);
    if (FcPatternGetString(font, FC_FILE, 0, &file) != FcResultMatch) return;
    void* bytes = ReadWhole(reinterpret_cast<const char*>(file), size);
    if (!bytes) return;
    ImFontConfig config;
    config.FontNo = index;
    config.MergeMode = !atlas.Fonts.empty();
    atlas.AddFontFromMemoryTTF(bytes, size, pixels, &config, ranges.data());
}

}   // namespace

GuiFonts::GuiFonts(ImFontAtlas& atlas, float pixels) : atlas_(atlas), pixels_(pixels) {
    atlas_.FontBuilderIO = ImGuiFreeType::GetBuilderForFreeType();
    atlas_.Flags |= ImFontAtlasFlags_NoMouseCursors;
}

void GuiFonts::Ask(std::string_view text) {
    while (!text.empty()) {
        const char32_t character = TakeCharacter(text);
        const bool is_new = character > kLastLatin1 && character <= kLastOfPlane && asked_.insert(character).second;
        if (is_new) complete_ = false;
    }
}

bool GuiFonts::Build() {
    if (complete_) return false;
    complete_ = true;
    if (asked_.size() > kMostCharacters) asked_.clear();   // what is shown is asked for again
    std::set<char32_t> missing = asked_;
    for (char32_t character = kFirst; character <= kLastLatin1; ++character) missing.insert(character);
    missing.insert({kEllipsis, kReplacement});

    atlas_.Clear();
    std::vector<Ranges> ranges;   // the atlas reads them while it is built
    const FcFontSet* fonts = SystemFonts();
    for (int i = 0; fonts && i < fonts->nfont && !missing.empty(); ++i) {
        ranges.push_back(TakeCovered(missing, fonts->fonts[i]));
        if (!ranges.back().empty()) AddFont(atlas_, fonts->fonts[i], ranges.back(), pixels_);
    }
    if (!atlas_.Fonts.empty() && atlas_.Build()) return true;
    atlas_.Clear();
    atlas_.AddFontDefault();   // the one inside ImGui
    return atlas_.Build();
}

const ImFont& GuiFonts::Font() const { return *atlas_.Fonts[0]; }

}   // namespace sparkrig
