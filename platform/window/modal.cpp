#include "platform/window/modal.h"

#include <utility>

#include "platform/window/window_object.h"

namespace sparkrig {

bool IsInput(UINT message) {
    return message == WM_SYSCOMMAND || (message >= WM_KEYDOWN && message <= WM_CHAR) ||
           (message >= WM_MOUSEMOVE && message <= WM_MOUSEWHEEL);
}

namespace {

/// Hands a message of the view's own window to the view. False for those that are the window procedure's.
bool HandToView(HWND window, ModalView& view, const MSG& message) {
    if (message.message == WM_PAINT) return true;   // it is shown after the messages anyway
    if (message.message == WM_CLOSE) {
        view.Close();
        return true;
    }
    if (!IsInput(message.message)) return false;
    TranslateMessage(message);
    const bool is_mouse = message.message >= WM_MOUSEMOVE && message.message <= WM_LBUTTONUP;
    const POINT place = ToWindow(*window, {LowWord(message.lParam), HighWord(message.lParam)});
    if (window->gui) window->gui->Feed(message, place);
    if (is_mouse) view.Mouse(message.message, place);
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

namespace {

/// Puts a view in front of a window's input. Keys that were pressed for it are not the program's.
class InFront {
  public:
    InFront(HWND window, ModalView& view) : window_(window), before_(std::exchange(window->modal, &view)) {}
    ~InFront() {
        if (IsWindow(window_)) window_->modal = before_;
        HideHeldKeys();
    }
    InFront(const InFront&) = delete;
    InFront& operator=(const InFront&) = delete;

  private:
    HWND window_;
    ModalView* before_;
};

}   // namespace

void RunModal(HWND window, ModalView& view) {
    const InFront in_front(window, view);
    if (window->gui) window->gui->Run([&] { view.Widgets(*window->gui); });   // the focus comes with the second frame
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
