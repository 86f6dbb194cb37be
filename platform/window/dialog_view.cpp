// A dialog as widgets, and what keys do in it.
#include <SDL2/SDL_timer.h>
#include <imgui.h>

#include <algorithm>
#include <cstdio>

#include "platform/system/ascii.h"
#include "platform/window/dialog_object.h"
#include "platform/window/icon_drawing.h"
#include "platform/window/modal.h"
#include "platform/window/virtual_keys.h"
#include "platform/window/window_object.h"

namespace sparkrig {

namespace {

constexpr std::size_t kLongestShown = 400;   // bytes of a list entry
constexpr unsigned kShade = 0x50000000;      // over the picture behind

/// Where the controls are, in pixels. In a window that is too small for the dialog its list gives up rows and its
/// columns draw together; what is still too high scrolls.
class DialogLayout {
  public:
    struct Box {
        ImVec2 corner, size;
    };

    ImVec2 size;   // below the title

    DialogLayout(const Dialog& dialog, const Gui& gui, ImVec2 room) {
        for (const DialogItem& item : dialog.items) {
            if (item.control->kind == ControlKind::ListBox) list_ = item.control;
        }
        constexpr float kFewestUnits = 30;
        const float letter = gui.TextWidth("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ") / 52;
        const float width = static_cast<float>(dialog.form.width);
        unit_.y = gui.LineHeight() / 8;
        const float height = static_cast<float>(dialog.form.height) * unit_.y;
        const float most = list_ ? std::max(static_cast<float>(list_->height) - kFewestUnits, 0.0f) * unit_.y : 0;
        given_up_ = std::clamp(height - room.y, 0.0f, most);
        const float bar = height - given_up_ > room.y ? ImGui::GetStyle().ScrollbarSize : 0;
        unit_.x = std::min(letter / 4, (room.x - bar) / width);
        size = {width * unit_.x + bar, std::min(height - given_up_, room.y)};
    }

    Box Place(const DialogControl& control) const {
        Box box = {{static_cast<float>(control.x) * unit_.x, static_cast<float>(control.y) * unit_.y},
                   {static_cast<float>(control.width) * unit_.x, static_cast<float>(control.height) * unit_.y}};
        if (&control == list_) box.size.y -= given_up_;
        if (list_ && control.y >= list_->y + list_->height) box.corner.y -= given_up_;
        return box;
    }

  private:
    ImVec2 unit_;   // of the dialog
    const DialogControl* list_ = nullptr;
    float given_up_ = 0;   // by the list
};

class DialogView : public ModalView {
  public:
    explicit DialogView(Dialog& dialog) : dialog_(dialog) {
        // A list or a field is what the user came for; without one the first button has the focus.
        for (std::size_t i = 0; i < dialog_.items.size(); ++i) {
            const ControlKind kind = dialog_.items[i].control->kind;
            if (kind == ControlKind::ListBox || kind == ControlKind::Edit) {
                focus_ = i;
                return;
            }
        }
        MoveFocus(1);
    }

    void Widgets(Gui& gui) override;
    void Key(WPARAM key) override;
    void Character(char character) override;
    void Close() override {
        closing_ = true;
        Cancel();
    }
    bool Done() const override { return dialog_.done; }
    bool WindowCloses() const { return closing_; }

  private:
    void Cancel() {
        PressButton(&dialog_, IDCANCEL);
        if (closing_ && !dialog_.done) EndDialog(&dialog_, IDCANCEL);
    }
    bool Focused(const DialogItem& item) const { return &item == &dialog_.items[focus_]; }
    DialogItem& FocusedItem() { return dialog_.items[focus_]; }
    bool FocusIsOn(ControlKind kind) { return FocusedItem().control->kind == kind; }
    void MoveFocus(int step);
    void PressDefault();
    void Select(DialogItem& list, int entry);
    void MoveInList(WPARAM key);

    void ItemWidgets(Gui& gui, DialogItem& item, ImVec2 size);
    void ButtonWidget(Gui& gui, DialogItem& item, ImVec2 size);
    void EditWidget(DialogItem& item, ImVec2 size);
    void ListWidget(Gui& gui, DialogItem& item, ImVec2 size);

    Dialog& dialog_;
    std::size_t focus_ = 0;
    bool closing_ = false;
    bool focus_moved_ = false, scroll_to_selected_ = true;
    int rows_shown_ = 1;
    std::string typed_;   // ahead, in the list
    Uint32 typed_at_ = 0;
};

// ---- Keys

void DialogView::MoveFocus(int step) {
    const std::size_t count = dialog_.items.size();
    for (std::size_t tries = 0; tries < count; ++tries) {
        focus_ = (focus_ + count + static_cast<std::size_t>(step)) % count;
        if (FocusedItem().TakesFocus()) break;
    }
    focus_moved_ = true;
}

void DialogView::PressDefault() {
    if (FocusIsOn(ControlKind::Button)) return PressButton(&dialog_, FocusedItem().control->id);
    for (const DialogItem& item : dialog_.items) {
        const bool is_default = (item.control->style & BS_DEFPUSHBUTTON) != 0;
        if (item.control->kind == ControlKind::Button && is_default) return PressButton(&dialog_, item.control->id);
    }
}

void DialogView::Select(DialogItem& list, int entry) {
    if (list.entries.empty()) return;
    list.selected = std::clamp(entry, 0, static_cast<int>(list.entries.size()) - 1);
    scroll_to_selected_ = true;
    dialog_.Notify(list.control->id, LBN_SELCHANGE);
}

void DialogView::MoveInList(WPARAM key) {
    DialogItem& list = FocusedItem();
    const int page = std::max(rows_shown_ - 1, 1), last = static_cast<int>(list.entries.size()) - 1;
    switch (key) {
        case VK_UP: Select(list, list.selected - 1); break;
        case VK_DOWN: Select(list, list.selected + 1); break;
        case VK_PRIOR: Select(list, list.selected - page); break;
        case VK_NEXT: Select(list, list.selected + page); break;
        case VK_HOME: Select(list, 0); break;
        case VK_END: Select(list, last); break;
        default: break;
    }
}

void DialogView::Key(WPARAM key) {
    switch (key) {
        case VK_TAB: MoveFocus(ImGui::GetIO().KeyShift ? -1 : 1); break;
        case VK_RETURN: PressDefault(); break;
        case VK_ESCAPE: Cancel(); break;
        case VK_SPACE:
            if (FocusIsOn(ControlKind::Button)) PressDefault();
            break;
        default:
            if (FocusIsOn(ControlKind::ListBox)) MoveInList(key);
            if (FocusIsOn(ControlKind::Button) && (key == VK_LEFT || key == VK_UP)) MoveFocus(-1);
            if (FocusIsOn(ControlKind::Button) && (key == VK_RIGHT || key == VK_DOWN)) MoveFocus(1);
    }
}

// Typing ahead: the next entry that begins with what was typed within a second.
void DialogView::Character(char character) {
    constexpr Uint32 kMilliseconds = 1000;
    const bool is_control = static_cast<unsigned char>(character) < ' ';
    if (is_control || dialog_.done || !FocusIsOn(ControlKind::ListBox)) return;
    if (SDL_GetTicks() - typed_at_ > kMilliseconds) typed_.clear();
    if (typed_.empty() && character == ' ') return;   // the key that opened the dialog is still down
    typed_at_ = SDL_GetTicks();
    typed_ += AsciiLower(character);
    DialogItem& list = FocusedItem();
    list.Sort();
    const std::size_t count = list.entries.size();
    const bool first = typed_.size() == 1;   // one letter again and again walks through its entries
    const std::size_t start = static_cast<std::size_t>(std::max(list.selected, first ? -1 : 0) + (first ? 1 : 0));
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t entry = (start + i) % count;
        if (!list.entries[entry].key.starts_with(typed_)) continue;
        Select(list, static_cast<int>(entry));
        return;
    }
    if (!first && typed_.find_first_not_of(typed_[0]) == std::string::npos) {
        typed_.clear();
        Character(character);
    }
}

// ---- Widgets

void DialogView::Widgets(Gui& gui) {
    const ImVec2 screen = ImGui::GetIO().DisplaySize;
    const float title = ImGui::GetFrameHeight(), strip = static_cast<float>(StripHeight(*dialog_.owner));
    const DialogLayout layout(dialog_, gui, {screen.x, screen.y - strip - title});
    const ImVec2 size(layout.size.x, layout.size.y + title);
    ImGui::GetBackgroundDrawList()->AddRectFilled({0, strip}, screen, kShade);
    ImGui::SetNextWindowPos({(screen.x - size.x) / 2, std::max((screen.y - size.y) / 2, strip)}, ImGuiCond_Appearing);
    ImGui::SetNextWindowSize(size);
    const std::string name = gui.Show(dialog_.form.title) + "###dialog";
    ImGui::Begin(name.c_str(), nullptr, ImGuiWindowFlags_NoResize | ImGuiWindowFlags_NoCollapse);
    for (DialogItem& item : dialog_.items) {
        const DialogLayout::Box box = layout.Place(*item.control);
        ImGui::SetCursorPos({box.corner.x, box.corner.y + title});
        ImGui::PushID(&item);
        ItemWidgets(gui, item, box.size);
        ImGui::PopID();
        if (dialog_.done) break;
    }
    focus_moved_ = false;
    ImGui::End();
}

void DialogView::ItemWidgets(Gui& gui, DialogItem& item, ImVec2 size) {
    switch (item.control->kind) {
        case ControlKind::Button: ButtonWidget(gui, item, size); break;
        case ControlKind::Edit: EditWidget(item, size); break;
        case ControlKind::ListBox: ListWidget(gui, item, size); break;
        case ControlKind::Text: ImGui::TextUnformatted(gui.Show(item.text).c_str()); break;
        case ControlKind::Icon: DrawIcon(dialog_.form.icon, gui.Scale()); break;
    }
}

void DialogView::ButtonWidget(Gui& gui, DialogItem& item, ImVec2 size) {
    const bool focused = Focused(item);
    const bool marked = focused || (!FocusIsOn(ControlKind::Button) && (item.control->style & BS_DEFPUSHBUTTON) != 0);
    if (marked) ImGui::PushStyleColor(ImGuiCol_Border, ImGui::GetStyleColorVec4(ImGuiCol_ScrollbarGrabActive));
    const bool pressed = ImGui::Button(gui.Show(item.text).c_str(), size);
    if (marked) ImGui::PopStyleColor();
    if (focused && focus_moved_) ImGui::SetScrollHereY();
    if (!pressed) return;
    focus_ = static_cast<std::size_t>(&item - dialog_.items.data());
    PressButton(&dialog_, item.control->id);
}

void DialogView::EditWidget(DialogItem& item, ImVec2 size) {
    constexpr std::size_t kMostBytes = 1024;
    char buffer[kMostBytes];
    std::snprintf(buffer, sizeof(buffer), "%s", item.text.c_str());
    const auto digits_only = [](ImGuiInputTextCallbackData* data) {
        return data->EventChar >= '0' && data->EventChar <= '9' ? 0 : 1;
    };
    const bool number = (item.control->style & ES_NUMBER) != 0;
    const float padding = std::max((size.y - ImGui::GetFontSize()) / 2, 0.0f);
    ImGui::PushStyleVar(ImGuiStyleVar_FramePadding, {ImGui::GetStyle().FramePadding.x / 2, padding});
    ImGui::SetNextItemWidth(size.x);
    if (Focused(item) && (focus_moved_ || ImGui::IsWindowAppearing())) ImGui::SetKeyboardFocusHere();
    ImGui::InputText("", buffer, sizeof(buffer),
                     ImGuiInputTextFlags_AutoSelectAll | (number ? ImGuiInputTextFlags_CallbackCharFilter : 0),
                     digits_only);
    ImGui::PopStyleVar();
    if (ImGui::IsItemClicked()) focus_ = static_cast<std::size_t>(&item - dialog_.items.data());
    item.text = buffer;
}

void DialogView::ListWidget(Gui& gui, DialogItem& item, ImVec2 size) {
    item.Sort();
    const std::size_t place = static_cast<std::size_t>(&item - dialog_.items.data());
    const float row = ImGui::GetTextLineHeightWithSpacing();
    rows_shown_ = static_cast<int>(size.y / row);
    if (Focused(item)) ImGui::PushStyleColor(ImGuiCol_Border, ImGui::GetStyleColorVec4(ImGuiCol_ScrollbarGrabActive));
    ImGui::BeginChild("list", size, true);
    if (scroll_to_selected_ && item.selected >= 0) {
        const float top = static_cast<float>(item.selected) * row,
                    bottom = top + 2 * row - size.y + ImGui::GetStyle().WindowPadding.y * 2;
        ImGui::SetScrollY(std::clamp(ImGui::GetScrollY(), std::max(bottom, 0.0f), std::max(top, bottom)));
    }
    scroll_to_selected_ = false;
    ImGuiListClipper clipper;
    clipper.Begin(static_cast<int>(item.entries.size()), row);
    int clicked = -1;
    while (clipper.Step()) {
        for (int i = clipper.DisplayStart; i < clipper.DisplayEnd; ++i) {
            const std::string text = gui.Show(item.entries[static_cast<std::size_t>(i)].text.substr(0, kLongestShown));
            ImGui::PushID(i);
            if (ImGui::Selectable("", i == item.selected, ImGuiSelectableFlags_AllowDoubleClick)) clicked = i;
            ImGui::SameLine(ImGui::GetStyle().FramePadding.x);
            ImGui::TextUnformatted(text.c_str());
            ImGui::PopID();
        }
    }
    const bool twice = clicked >= 0 && ImGui::IsMouseDoubleClicked(0);
    ImGui::EndChild();
    if (Focused(item)) ImGui::PopStyleColor();
    if (clicked < 0) return;
    focus_ = place;
    Select(item, clicked);
    if (twice) dialog_.Notify(item.control->id, LBN_DBLCLK);
}

}   // namespace

void RunDialog(Dialog& dialog) {
    DialogView view(dialog);
    RunModal(dialog.owner, view);
    if (view.WindowCloses()) PostMessageA(dialog.owner, WM_CLOSE, 0, 0);
}

}   // namespace sparkrig
