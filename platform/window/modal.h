// What holds a window's input until it is done: message boxes, menus, dialogs.
#pragma once
#include "platform/window/gui.h"

namespace sparkrig {

class ModalView {
  public:
    virtual ~ModalView() = default;
    /// The widgets of one frame.
    virtual void Widgets(Gui& gui) = 0;
    /// A key goes down, or is repeated. Widgets get it as well.
    virtual void Key(WPARAM /*key*/) {}
    /// A byte of text.
    virtual void Character(char /*character*/) {}
    /// The mouse moves or its left button changes; window coordinates. Widgets get it as well.
    virtual void Mouse(UINT /*message*/, POINT /*place*/) {}
    /// The window is being closed.
    virtual void Close() = 0;
    virtual bool Done() const = 0;
};

/// Keyboard, mouse, and the commands of the system's menu.
bool IsInput(UINT message);

/// Runs a message loop until the view is done or the window is destroyed. Input to other windows is dropped, all other
/// messages are dispatched. The view stands above the window's picture; nothing else is drawn.
void RunModal(HWND window, ModalView& view);

}   // namespace sparkrig
