#include "platform/window/menu.h"

#include <imgui.h>

#include <algorithm>
#include <cmath>
#include <optional>

#include "platform/system/ascii.h"
#include "platform/window/modal.h"
#include "platform/window/virtual_keys.h"
#include "platform/window/window_object.h"

namespace sparkrig {

namespace {

int Wrapped(int value, std::size_t count) {
    const int n = static_cast<int>(count);
    return (value + n) % n;
}

std::span<const MenuItem> ItemsOf(MenuTemplate menu, int title) { return menu[static_cast<std::size_t>(title)].items; }

void Open(MenuState& state, int title, int item) { state = {true, true, title, item}; }

/// The text whose letter it is, looked for behind `from`; -1 for none. `only` tells whether it is the only one.
template <class Row>
int FindLetter(std::span<const Row> rows, char letter, int from, bool& only) {
    int found = -1, count = 0;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const int row = Wrapped(from + 1 + static_cast<int>(i), rows.size());
        if (MenuText(rows[static_cast<std::size_t>(row)].text).Letter() != letter) continue;
        if (count++ == 0) found = row;
    }
    only = count == 1;
    return found;
}

UINT LetterKey(MenuTemplate menu, MenuState& state, char letter) {
    bool only = false;
    if (!state.open) {
        const int title = FindLetter(menu, letter, -1, only);
        if (title >= 0) Open(state, title, 0);
        return 0;
    }
    const std::span<const MenuItem> items = ItemsOf(menu, state.title);
    const int item = FindLetter(items, letter, state.item, only);
    if (item >= 0) state.item = item;
    return item >= 0 && only ? items[static_cast<std::size_t>(item)].id : 0;
}

UINT ReturnKey(MenuTemplate menu, MenuState& state) {
    if (!state.open) Open(state, state.title, -1);
    if (state.item >= 0) return ItemsOf(menu, state.title)[static_cast<std::size_t>(state.item)].id;
    state.item = 0;
    return 0;
}

}   // namespace

MenuText::MenuText(std::string_view text) : shown(text), marked(shown.find('&')) {
    if (marked != std::string::npos) shown.erase(marked, 1);
}

char MenuText::Letter() const { return AsciiLower(shown[marked == std::string::npos ? 0 : marked]); }

UINT MenuKey(MenuTemplate menu, MenuState& state, WPARAM key) {
    const auto to_title = [&](int step) {
        state.title = Wrapped(state.title + step, menu.size());
        state.item = state.open ? 0 : -1;
    };
    const auto to_item = [&](int step) {
        if (state.open) {
            const int from = state.item < 0 && step < 0 ? 0 : state.item;
            state.item = Wrapped(from + step, ItemsOf(menu, state.title).size());
        } else {
            Open(state, state.title, step > 0 ? 0 : static_cast<int>(ItemsOf(menu, state.title).size()) - 1);
        }
    };
    switch (key) {
        case VK_LEFT: to_title(-1); return 0;
        case VK_RIGHT: to_title(1); return 0;
        case VK_UP: to_item(-1); return 0;
        case VK_DOWN: to_item(1); return 0;
        case VK_RETURN: return ReturnKey(menu, state);
        case VK_ESCAPE:
            state.in_use = state.open;   // the popup first, then the bar
            state.open = false;
            state.item = -1;
            return 0;
        case VK_MENU:
        case VK_F10: state = {}; return 0;
        default: return key >= 'A' && key <= 'Z' ? LetterKey(menu, state, AsciiLower(static_cast<char>(key))) : 0;
    }
}

// ---- Drawing

namespace {

// In pixels of a screen of 96 dots per inch.
constexpr float kTitleMargin = 10, kItemMargin = 24, kItemHeight = 26, kPopupMargin = 4;

ImU32 ColourOf(ImGuiCol place) { return ImGui::GetColorU32(place); }

void DrawLabel(Gui& gui, ImDrawList& list, ImVec2 place, const char* text) {
    const MenuText label(text);
    const std::string shown = gui.Show(label.shown);
    list.AddText(place, ColourOf(ImGuiCol_Text), shown.c_str());
    if (label.marked == std::string::npos) return;
    const float left = place.x + gui.TextWidth(shown.substr(0, label.marked));
    const float right = place.x + gui.TextWidth(shown.substr(0, label.marked + 1));
    const float below = std::floor(place.y + gui.LineHeight() * 0.92f);
    list.AddLine({left, below}, {right, below}, ColourOf(ImGuiCol_Text));
}

MenuArea Area(ImVec2 from, ImVec2 to, int title, int item) {
    return {{static_cast<LONG>(from.x), static_cast<LONG>(from.y), static_cast<LONG>(to.x), static_cast<LONG>(to.y)},
            title,
            item};
}

void DrawPopup(Gui& gui, std::span<const MenuItem> items, const MenuState& state, ImVec2 corner,
               std::vector<MenuArea>& areas) {
    ImDrawList& list = *ImGui::GetForegroundDrawList();
    const float scale = gui.Scale(), height = kItemHeight * scale, margin = kPopupMargin * scale;
    float width = 0;
    for (const MenuItem& item : items) width = std::max(width, gui.TextWidth(gui.Show(MenuText(item.text).shown)));
    width += 2 * kItemMargin * scale;
    const ImVec2 end(corner.x + width, corner.y + height * static_cast<float>(items.size()) + 2 * margin);
    list.AddRectFilled({corner.x + 3 * scale, corner.y + 3 * scale}, {end.x + 3 * scale, end.y + 3 * scale},
                       IM_COL32(0, 0, 0, 60), margin);
    list.AddRectFilled(corner, end, ColourOf(ImGuiCol_PopupBg), margin);
    list.AddRect(corner, end, ColourOf(ImGuiCol_Border), margin);
    for (std::size_t i = 0; i < items.size(); ++i) {
        const float top = corner.y + margin + height * static_cast<float>(i);
        const ImVec2 from(corner.x + margin, top), to(end.x - margin, top + height);
        const int item = static_cast<int>(i);
        if (item == state.item) list.AddRectFilled(from, to, ColourOf(ImGuiCol_Header), margin);
        DrawLabel(gui, list, {corner.x + kItemMargin * scale, top + (height - gui.LineHeight()) / 2}, items[i].text);
        areas.push_back(Area(from, to, state.title, item));
    }
}

}   // namespace

std::vector<MenuArea> DrawMenu(Gui& gui, MenuTemplate menu, const MenuState& state) {
    std::vector<MenuArea> areas;
    ImDrawList& list = *ImGui::GetForegroundDrawList();
    const float height = static_cast<float>(StripHeightAt(gui.Scale())), margin = kTitleMargin * gui.Scale();
    list.AddRectFilled({0, 0}, {ImGui::GetIO().DisplaySize.x, height}, ColourOf(ImGuiCol_WindowBg));
    float x = margin / 2;
    for (std::size_t i = 0; i < menu.size(); ++i) {
        const float width = gui.TextWidth(gui.Show(MenuText(menu[i].text).shown)) + 2 * margin;
        const ImVec2 from(x, 0), to(x + width, height);
        if (static_cast<int>(i) == state.title) list.AddRectFilled(from, to, ColourOf(ImGuiCol_Header), margin / 3);
        DrawLabel(gui, list, {x + margin, (height - gui.LineHeight()) / 2}, menu[i].text);
        areas.push_back(Area(from, to, static_cast<int>(i), -1));
        if (state.open && static_cast<int>(i) == state.title) DrawPopup(gui, menu[i].items, state, {x, height}, areas);
        x += width;
    }
    return areas;
}

// ---- The loop

namespace {

class MenuView : public ModalView {
  public:
    MenuView(HWND window, char letter, const POINT* position) : window_(window), state_(window->menu_state) {
        state_ = {true, false, 0, -1};
        if (letter) MenuKey(window_->menu, state_, static_cast<WPARAM>(AsciiUpper(letter)));
        if (position) press_ = *position;
    }
    ~MenuView() override { state_ = {}; }

    // The strip is drawn with every picture of the window.
    void Widgets(Gui& gui) override {
        areas_ = DrawMenu(gui, window_->menu, state_);
        if (!press_) return;
        const POINT press = *press_;   // the one that brought us here, now that the places are known
        press_.reset();
        Press(press);
    }
    void Key(WPARAM key) override { Choose(MenuKey(window_->menu, state_, key)); }
    void Mouse(UINT message, POINT place) override {
        if (message == WM_LBUTTONDOWN) return Press(place);
        const MenuArea* under = Under(place);
        if (!under) {
            if (state_.open) state_.item = -1;
        } else if (under->item >= 0) {
            state_.item = under->item;
            if (message == WM_LBUTTONUP)
                Choose(ItemsOf(window_->menu, under->title)[static_cast<std::size_t>(under->item)].id);
        } else if (state_.open && under->title != state_.title) {
            Open(state_, under->title, -1);
        }
    }
    void Close() override { closing_ = true; }
    bool Done() const override { return closing_ || chosen_ != 0 || !state_.in_use; }

    UINT Chosen() const { return chosen_; }
    bool WindowCloses() const { return closing_; }

  private:
    const MenuArea* Under(POINT place) const {
        const auto found = std::ranges::find_if(areas_, [&](const MenuArea& area) {
            return place.x >= area.area.left && place.x < area.area.right && place.y >= area.area.top &&
                   place.y < area.area.bottom;
        });
        return found == areas_.end() ? nullptr : &*found;
    }
    void Press(POINT place) {
        const MenuArea* under = Under(place);
        if (under && under->item >= 0) return;   // it is chosen when the button comes up
        const bool leaves = !under || (state_.open && under->title == state_.title);
        if (leaves) {
            state_ = {};
        } else {
            Open(state_, under->title, -1);
        }
    }
    void Choose(UINT id) { chosen_ = id; }

    HWND window_;
    MenuState& state_;
    std::vector<MenuArea> areas_;
    std::optional<POINT> press_;
    UINT chosen_ = 0;
    bool closing_ = false;
};

}   // namespace

void TrackMenu(HWND window, char letter, const POINT* position) {
    if (window->menu.empty()) return;
    window->procedure(window, WM_ENTERMENULOOP, 0, 0);
    UINT chosen = 0;
    bool closes = false;
    {
        MenuView view(window, letter, position);
        RunModal(window, view);
        chosen = view.Chosen();
        closes = view.WindowCloses();
    }
    window->procedure(window, WM_EXITMENULOOP, 0, 0);
    if (chosen != 0) PostMessageA(window, WM_COMMAND, chosen, 0);
    if (closes) PostMessageA(window, WM_CLOSE, 0, 0);
}

}   // namespace sparkrig
