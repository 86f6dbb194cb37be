#include "platform/window/modal.h"

#include "platform/window/window_object.h"

namespace sparkrig {

namespace {

bool IsInput(UINT message) {
    return (message >= WM_KEYDOWN && message <= WM_CHAR) || (message >= WM_MOUSEMOVE && message <= WM_MOUSEWHEEL);
}

/// Hands a message of the view's own window to the view. False for those that are the window procedure's.
bool HandToView(HWND window, ModalView& view, const MSG& message) {
    if (message.message == WM_PAINT) return true;   // it is shown after the messages anyway
    if (message.message == WM_CLOSE) {
        view.Close();
        return true;
    }
    if (!IsInput(message.message)) return false;
    TranslateMessage(message);
    if (window->gui) window->gui->Feed(message);
    if (message.message == WM_KEYDOWN) view.Key(message.wParam);
    if (message.message == WM_CHAR) view.Character(static_cast<char>(message.wParam));
    // A frame for each message: a button that goes down and up between two pictures has been pressed.
    if (window->gui) window->gui->Run([&] { view.Widgets(*window->gui); });
    return true;
}

void Handle(HWND window, ModalView& view, const MSG& message) {
    const bool handled = message.hwnd == window ? HandToView(window, view, message) : IsInput(message.message);
    if (!handled) DispatchMessageA(message);
}

}   // namespace

void RunModal(HWND window, ModalView& view) {
    while (!view.Done() && IsWindow(window)) {
        ShowContents(window, [&](Gui& gui) { view.Widgets(gui); });
        if (view.Done()) break;
        MSG message;
        if (!GetMessageA(message)) {   // the program ends
            PostQuitMessage(static_cast<int>(message.wParam));
            view.Close();
            break;
        }
        do {
            Handle(window, view, message);
        } while (!view.Done() && IsWindow(window) && PeekMessageA(message, PM_REMOVE));
    }
}

}   // namespace sparkrig
