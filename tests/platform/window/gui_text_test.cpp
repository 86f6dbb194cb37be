#include <gtest/gtest.h>
#include <imgui.h>

#include "platform/window/display_text.h"
#include "platform/window/gui_fonts.h"

namespace sparkrig {
namespace {

TEST(DisplayText, IsUtf8WhateverTheBytes) {
    constexpr std::tuple<const char*, const char*> kRows[] = {{"Ελλ日🔥", "Ελλ日🔥"},
                                                              {"Gr\xFC\xDF"
                                                               "e",
                                                               "Grüße"},
                                                              {"\xC3", "Ã"},
                                                              {"a\tb\nc", "a b\nc"},
                                                              {"\xC0\xAF", "À¯"},
                                                              {"\xED\xA0\x80", "í\xC2\xA0 "},
                                                              {"x\x9Fy", "x y"},
                                                              {"\xF5\x80\x80\x80", "õ   "},
                                                              {"", ""}};
    for (const auto& [bytes, text] : kRows) EXPECT_EQ(DisplayText(bytes), text);
}

TEST(GuiFonts, HaveALetterForEveryCharacterThatIsAskedFor) {
    const std::string text = "Ελλ русский עברית مرحبا 日本語 한국어 ภาษา …ÿ";
    ImGui::SetAllocatorFunctions([](std::size_t size, void*) { return std::malloc(size); },
                                 [](void* block, void*) { std::free(block); });
    ImFontAtlas atlas;
    GuiFonts fonts(atlas, 16);
    EXPECT_TRUE(fonts.Build());
    EXPECT_EQ(fonts.Font().FindGlyphNoFallback(0x65E5), nullptr);
    fonts.Ask(text);
    EXPECT_TRUE(fonts.Build());
    for (std::string_view rest = text; !rest.empty();) {
        const char32_t character = TakeCharacter(rest);
        EXPECT_NE(fonts.Font().FindGlyphNoFallback(static_cast<ImWchar>(character)), nullptr)
            << static_cast<unsigned>(character);
    }
    fonts.Ask("日 only what is there");
    EXPECT_FALSE(fonts.Build());
}

}   // namespace
}   // namespace sparkrig
