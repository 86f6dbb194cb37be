#include <SDL2/SDL.h>
#include <imgui.h>

#include <algorithm>
#include <cstdio>

#include "platform/window/gui_style.h"
#include "platform/window/modal.h"
#include "platform/window/virtual_keys.h"
#include "platform/window/window_object.h"

namespace sparkrig {

namespace {

// In pixels of a screen of 96 dots per inch.
constexpr float kWidestText = 640, kNarrowestText = 240, kMargin = 16, kButtonWidth = 88;
constexpr float kShareOfScreen = 0.85f;

class MessageBoxView : public ModalView {
  public:
    explicit MessageBoxView(const char* text) : bytes_(text) {}

    /// The size of the box, at most that of the room on the screen.
    ImVec2 Fit(Gui& gui, ImVec2 room) {
        const float scale = gui.Scale(), margins = 2 * kMargin * scale;
        gui.Run([&] { text_ = gui.Show(bytes_); });
        const float bar = ImGui::GetStyle().ScrollbarSize;
        const float widest = std::max(std::min(kWidestText * scale, room.x - margins - bar), 1.0f);
        wrap_width_ = std::clamp(gui.TextWidth(text_) + 1, std::min(kNarrowestText * scale, widest), widest);
        const float below = ButtonHeight(gui) + kMargin * scale;
        const float text_height = std::min(gui.TextHeight(text_, wrap_width_), room.y - margins - below);
        return {wrap_width_ + bar + margins, std::max(text_height, gui.LineHeight()) + below + margins};
    }

    void Widgets(Gui& gui) override {
        const ImVec2 size = ImGui::GetIO().DisplaySize;
        const float margin = kMargin * gui.Scale();
        ImGui::SetNextWindowPos({0, 0});
        ImGui::SetNextWindowSize(size);
        ImGui::PushStyleVar(ImGuiStyleVar_WindowRounding, 0);
        ImGui::PushStyleVar(ImGuiStyleVar_WindowPadding, {margin, margin});
        ImGui::Begin("box", nullptr, ImGuiWindowFlags_NoDecoration | ImGuiWindowFlags_NoMove);
        TextWidgets(gui, size.y - 3 * margin - ButtonHeight(gui));
        const float width = kButtonWidth * gui.Scale();
        ImGui::SetCursorPos({size.x - margin - width, size.y - margin - ButtonHeight(gui)});
        if (ImGui::Button("OK", {width, ButtonHeight(gui)})) done_ = true;
        ImGui::End();
        ImGui::PopStyleVar(2);
    }

    void Key(WPARAM key) override {
        constexpr float kPage = 10, kEnd = 1e6f;
        switch (key) {
            case VK_RETURN:
            case VK_SPACE:
            case VK_ESCAPE: done_ = true; break;
            case VK_UP: lines_to_scroll_ = -1; break;
            case VK_DOWN: lines_to_scroll_ = 1; break;
            case VK_PRIOR: lines_to_scroll_ = -kPage; break;
            case VK_NEXT: lines_to_scroll_ = kPage; break;
            case VK_HOME: lines_to_scroll_ = -kEnd; break;
            case VK_END: lines_to_scroll_ = kEnd; break;
            default: break;
        }
    }

    void Close() override { done_ = true; }
    bool Done() const override { return done_; }

  private:
    static float ButtonHeight(const Gui& gui) { return gui.LineHeight() * 1.75f; }

    void TextWidgets(Gui& gui, float height) {
        ImGui::PushStyleColor(ImGuiCol_ChildBg, 0);
        ImGui::BeginChild("text", {0, height});
        ImGui::PushTextWrapPos(wrap_width_);
        ImGui::TextUnformatted(text_.c_str());
        ImGui::PopTextWrapPos();
        if (lines_to_scroll_ != 0) ImGui::SetScrollY(ImGui::GetScrollY() + lines_to_scroll_ * gui.LineHeight());
        lines_to_scroll_ = 0;
        ImGui::EndChild();
        ImGui::PopStyleColor();
    }

    std::string bytes_, text_;
    float wrap_width_ = 0, lines_to_scroll_ = 0;
    bool done_ = false;
};

int MonitorFor(HWND owner) { return owner ? std::max(SDL_GetWindowDisplayIndex(owner->native), 0) : 0; }

ImVec2 RoomOnScreen(int monitor) {
    SDL_Rect room = {0, 0, 640, 480};
    SDL_GetDisplayUsableBounds(monitor, &room);
    return {static_cast<float>(room.w) * kShareOfScreen, static_cast<float>(room.h) * kShareOfScreen};
}

void ShowBox(HWND owner, MessageBoxView& view, SDL_Window* native) {
    const int monitor = MonitorFor(owner);
    const HWND box = AddWindow(native, DefWindowProcA);
    box->scale = DesktopScale(monitor);
    box->gui = Gui::Create(native, nullptr, box->scale);
    if (box->gui) {
        const ImVec2 size = view.Fit(*box->gui, RoomOnScreen(monitor));
        SDL_SetWindowSize(native, static_cast<int>(size.x), static_cast<int>(size.y));
        const int middle = static_cast<int>(SDL_WINDOWPOS_CENTERED_DISPLAY(static_cast<unsigned>(monitor)));
        SDL_SetWindowPosition(native, middle, middle);
        if (owner) SDL_SetWindowModalFor(native, owner->native);
        ShowWindow(box);
        RunModal(box, view);
    }
    DestroyWindow(box);
}

}   // namespace

void MessageBoxA(HWND window, const char* text, const char* caption) {
    std::fprintf(stderr, "%s: %s\n", caption, text);
    if (!HasDisplay()) return;
    SDL_Window* native = SDL_CreateWindow(caption, 0, 0, 1, 1, SDL_WINDOW_OPENGL | SDL_WINDOW_HIDDEN);
    MessageBoxView view(text);
    if (native) ShowBox(IsWindow(window) ? window : nullptr, view, native);
}

}   // namespace sparkrig
