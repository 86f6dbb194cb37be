#include "platform/window/dialog.h"

#include <gtest/gtest.h>
#include <imgui.h>

#include "platform/window/display_text.h"
#include "platform/window/gui_fonts.h"
#include "platform/window/menu.h"
#include "platform/window/virtual_keys.h"
#include "tests/support/canvas.h"

namespace sparkrig {
namespace {

constexpr UINT kList = 5, kEdit = 6;
constexpr DialogControl kControls[] = {
    {ControlKind::Button, IDOK, 5, 60, 40, 14, BS_DEFPUSHBUTTON, "OK"},
    {ControlKind::Button, IDCANCEL, 50, 60, 40, 14, 0, "Cancel"},
    {ControlKind::ListBox, kList, 5, 5, 90, 50, LBS_SORT, ""},
    {ControlKind::Edit, kEdit, 100, 5, 40, 14, ES_NUMBER, "7"},
};
constexpr DialogTemplate kForm = {"A form", 150, 80, kControls};
constexpr MenuItem kFileItems[] = {{"&Open", 11}, {"Save", 12}, {"Scan", 13}};
constexpr MenuItem kHelpItems[] = {{"&About", 21}};
constexpr MenuPopup kMenu[] = {{"&File", kFileItems}, {"&Help", kHelpItems}};

std::vector<UINT> received;
std::vector<std::string> entries;
std::string edited, chosen;

bool FormProcedure(HDLG dialog, UINT message, WPARAM wParam, LPARAM) {
    if (message == WM_INITDIALOG) {
        for (const std::string& entry : entries)
            SendDlgItemMessageA(dialog, kList, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(entry.c_str()));
    } else if (wParam == IDOK || wParam == IDCANCEL) {
        char text[100];
        GetDlgItemTextA(dialog, kEdit, text, sizeof(text));
        edited = text;
        const LRESULT selected = SendDlgItemMessageA(dialog, kList, LB_GETCURSEL, 0, 0);
        const WPARAM index = static_cast<WPARAM>(selected);
        chosen.clear();
        if (selected >= 0) {
            chosen.resize(static_cast<std::size_t>(SendDlgItemMessageA(dialog, kList, LB_GETTEXTLEN, index, 0)) + 1);
            SendDlgItemMessageA(dialog, kList, LB_GETTEXT, index, reinterpret_cast<LPARAM>(chosen.data()));
            chosen.pop_back();
        }
        EndDialog(dialog, static_cast<std::intptr_t>(wParam));
    }
    return true;
}

LRESULT OwnerProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_COMMAND) received.push_back(static_cast<UINT>(wParam));
    if (message == WM_ENTERMENULOOP || message == WM_EXITMENULOOP) received.push_back(message);
    return DefWindowProcA(window, message, wParam, lParam);
}

class DialogTest : public ::testing::Test {
  protected:
    void SetUp() override {
        KeepDriverLoaded();
        received.clear();
        entries = {"delta", "Alpha", "charlie", "bravo", "Bravissimo"};
        RegisterClassExA({OwnerProcedure, "OWNER", kMenu, {}});
        window_ = CreateWindowExA("OWNER", "An owner", CW_USEDEFAULT, 0, 640, 480);
        ASSERT_NE(window_, nullptr);
    }
    void TearDown() override { DestroyWindow(window_); }
    void Post(UINT message, WPARAM wParam, LPARAM lParam = 0) { PostMessageA(window_, message, wParam, lParam); }
    /// Virtual keys in capitals and by number, text in small letters.
    void Type(const std::vector<WPARAM>& keys) {
        for (const WPARAM key : keys) Post(key >= 'a' && key <= 'z' ? WM_CHAR : WM_KEYDOWN, key);
    }
    std::intptr_t Run() { return DialogBoxParamA(kForm, window_, FormProcedure, 0); }
    std::vector<UINT> Handle() {
        MSG message;
        while (PeekMessageA(message, PM_REMOVE)) DispatchMessageA(message);
        return received;
    }
    HWND window_ = nullptr;
};

TEST_F(DialogTest, KeysChooseInTheSortedList) {
    const std::tuple<std::vector<WPARAM>, std::intptr_t, const char*> kRows[] = {
        {{VK_DOWN, VK_RETURN}, IDOK, "Alpha"},
        {{VK_DOWN, VK_DOWN, VK_RETURN}, IDOK, "Bravissimo"},
        {{VK_END, VK_UP, VK_RETURN}, IDOK, "charlie"},
        {{'b', 'b', VK_RETURN}, IDOK, "bravo"},
        {{'b', 'r', 'a', 'v', 'o', VK_RETURN}, IDOK, "bravo"},
        {{'c', VK_NEXT, VK_RETURN}, IDOK, "delta"},
        {{VK_HOME, VK_ESCAPE}, IDCANCEL, "Alpha"},
        {{VK_TAB, VK_TAB, VK_TAB, VK_SPACE}, IDCANCEL, ""},
        {{VK_RETURN}, IDOK, ""}};
    for (const auto& [keys, result, name] : kRows) {
        Type(keys);
        EXPECT_EQ(Run(), result) << name;
        EXPECT_EQ(chosen, name);
    }
}

TEST_F(DialogTest, ANumberFieldTakesDigitsInThePlaceOfWhatIsThere) {
    Type({VK_TAB, 'x'});
    for (const char character : {'4', '-', '2'}) Post(WM_CHAR, static_cast<WPARAM>(character));
    Type({VK_RETURN});
    EXPECT_EQ(Run(), IDOK);
    EXPECT_EQ(edited, "42");
}

TEST_F(DialogTest, TenThousandNamesOfAnyBytesAreListedSortedAndFound) {
    entries.clear();
    for (int i = 0; i < 10000; ++i) {
        std::string name = std::to_string(i * 7919 % 10000) + std::string(1000, static_cast<char>(128 + i % 128));
        entries.push_back(name + (i % 3 == 0 ? "\n\xFF%s" : "日本"));
    }
    for (int i = 0; i < 4; ++i) Post(WM_CHAR, '9');
    Type({VK_RETURN});
    EXPECT_EQ(Run(), IDOK);
    EXPECT_TRUE(chosen.starts_with("9999"));
    EXPECT_GT(chosen.size(), 1000u);
}

TEST_F(DialogTest, ADriverAnswersInThePlaceOfTheUser) {
    SetDialogDriver([](HDLG dialog) {
        SendDlgItemMessageA(dialog, kEdit, WM_SETTEXT, 0, reinterpret_cast<LPARAM>("81"));
        SendDlgItemMessageA(dialog, kList, LB_SETCURSEL, 2, 0);
        PressButton(dialog, IDOK);
    });
    EXPECT_EQ(Run(), IDOK);
    SetDialogDriver(nullptr);
    EXPECT_EQ(edited + chosen, "81bravo");
}

TEST_F(DialogTest, ClosingTheOwnerCancelsFirst) {
    Post(WM_CLOSE, 0);
    Post(WM_CHAR, 'd');
    EXPECT_EQ(Run(), IDCANCEL);
    EXPECT_EQ(received, std::vector<UINT>());
}

TEST_F(DialogTest, TheMenuAboveTheClientAreaIsUsedByKeysAndMouse) {
    RECT client;
    GetClientRect(window_, client);
    EXPECT_EQ(client, (RECT{0, 0, 640, 454}));
    constexpr UINT kIn = WM_ENTERMENULOOP, kOut = WM_EXITMENULOOP;
    const std::tuple<LPARAM, std::vector<WPARAM>, std::vector<UINT>> kRows[] = {
        {'F', {'O'}, {kIn, kOut, 11}},
        {'F', {'S', 'S', VK_RETURN}, {kIn, kOut, 13}},   // two begin so: it walks
        {0, {VK_DOWN, VK_DOWN, VK_RETURN}, {kIn, kOut, 12}},
        {0, {VK_RIGHT, VK_RETURN, VK_RETURN}, {kIn, kOut, 21}},
        {'F', {VK_UP, VK_LEFT, 'A'}, {kIn, kOut, 21}},
        {'F', {VK_ESCAPE, VK_ESCAPE}, {kIn, kOut}},
        {'H', {VK_MENU}, {kIn, kOut}},
        {'Q', {VK_MENU}, {kIn, kOut}}};
    for (const auto& [letter, keys, expected] : kRows) {
        received.clear();
        Post(WM_SYSCOMMAND, SC_KEYMENU, letter);
        Type(keys);
        EXPECT_EQ(Handle(), expected) << letter;
    }
    received.clear();
    const auto at = [](int x, int y) { return static_cast<LPARAM>((y & 0xFFFF) << 16 | x); };
    Post(WM_SYSCOMMAND, SC_MOUSEMENU, at(20, -10));
    Post(WM_MOUSEMOVE, 0, at(60, 43));
    Post(WM_LBUTTONUP, 0, at(60, 43));
    EXPECT_EQ(Handle(), (std::vector<UINT>{kIn, kOut, 12}));
    received.clear();
    Post(WM_SYSCOMMAND, SC_MOUSEMENU, at(20, -10));
    Post(WM_LBUTTONDOWN, 0, at(400, 300));
    EXPECT_EQ(Handle(), (std::vector<UINT>{kIn, kOut}));
}

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
