// The messages that wait, in the order of their coming.
#pragma once
#include <deque>
#include <optional>

#include "platform/window/window.h"

namespace sparkrig {

class MessageQueue {
  public:
    /// A mouse move replaces the one that waits at the end, a new size the one of the same type: only the newest is of
    /// interest. Of the WM_PAINT of a window one waits.
    void Post(const MSG& message);
    /// In front of everything that waits.
    void PostFirst(const MSG& message) { waiting_.push_front(message); }
    /// WM_QUIT comes when nothing else waits.
    void PostQuit(int exit_code) { quit_code_ = exit_code; }

    /// The next message, without taking it. Empty when nothing waits.
    std::optional<MSG> First() const;
    /// The next message, taken off the queue.
    std::optional<MSG> Take();

    bool Holds(UINT message, WPARAM wParam) const;
    /// The message that came last, null when nothing waits. Valid until the queue changes.
    MSG* Last() { return waiting_.empty() ? nullptr : &waiting_.back(); }
    /// Drops everything that waits for a window.
    void Forget(HWND window);

  private:
    std::deque<MSG> waiting_;
    std::optional<int> quit_code_;
};

}   // namespace sparkrig
