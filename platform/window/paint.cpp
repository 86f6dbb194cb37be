// What a window shows: the device's picture, or what its procedure paints, and widgets above it.
#include <SDL2/SDL.h>
#include <imgui.h>

#include "platform/window/window_object.h"

namespace sparkrig {

namespace {

constexpr float kBackground = 1;   // COLOR_WINDOW

void DrawPainted(const Window& window, Gui& gui) {
    ImDrawList& list = *ImGui::GetBackgroundDrawList();
    for (const PaintedText& line : window.painted) {
        const std::string text = gui.Show(line.text);
        const float middle = static_cast<float>(line.area.left + line.area.right) / 2;
        list.AddText({middle - gui.TextWidth(text) / 2, static_cast<float>(line.area.top + StripHeight(window))},
                     ImGui::GetColorU32(ImGuiCol_Text), text.c_str());
    }
}

}   // namespace

void ShowContents(HWND window, const std::function<void(Gui&)>& widgets) {
    if ((SDL_GetWindowFlags(window->native) & SDL_WINDOW_MINIMIZED) != 0) return;
    if (!window->gui) window->gui = Gui::Create(window->native, window->device_context, window->scale);
    if (!window->gui) return;   // no OpenGL: nothing can be shown
    Gui& gui = *window->gui;
    gui.Clear(kBackground, kBackground, kBackground);
    const bool has_picture = window->draw_picture && window->draw_picture();
    gui.Run([&] {
        if (!has_picture) DrawPainted(*window, gui);
        if (StripHeight(*window) > 0 && !window->menu_state.in_use) DrawMenu(gui, window->menu, window->menu_state);
        if (widgets) widgets(gui);
    });
    gui.Draw();
    gui.Present();
}

bool DrawMenuBar(HWND window) {
    if (StripHeight(*window) == 0) return false;
    if (!window->gui) window->gui = Gui::Create(window->native, window->device_context, window->scale);
    if (!window->gui) return false;
    window->gui->Run([&] { DrawMenu(*window->gui, window->menu, window->menu_state); });
    window->gui->Draw();
    return true;
}

HDC BeginPaint(HWND window) {
    window->painted.clear();
    return window;
}

void DrawTextA(HDC context, const char* text, const RECT& area, UINT) { context->painted.push_back({text, area}); }

void EndPaint(HWND window) { ShowContents(window, nullptr); }

void RedrawWindow(HWND window) { window->procedure(window, WM_PAINT, 0, 0); }

void SetWindowPicture(HWND window, std::function<bool()> draw_picture) {
    if (!IsWindow(window)) return;
    window->gui.reset();   // it drew with the context in use until now
    window->device_context = draw_picture ? SDL_GL_GetCurrentContext() : nullptr;
    window->draw_picture = std::move(draw_picture);
}

}   // namespace sparkrig
