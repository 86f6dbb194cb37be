#include "platform/window/message_queue.h"

#include <algorithm>

namespace sparkrig {

namespace {

bool Replaces(const MSG& message, const MSG& last) {
    if (message.message != last.message || message.hwnd != last.hwnd || message.wParam != last.wParam) return false;
    return message.message == WM_MOUSEMOVE || message.message == WM_SIZE;
}

}   // namespace

void MessageQueue::Post(const MSG& message) {
    if (message.message == WM_PAINT) {
        std::erase_if(waiting_,
                      [&](const MSG& waiting) { return waiting.message == WM_PAINT && waiting.hwnd == message.hwnd; });
    }
    MSG* last = Last();
    if (last && Replaces(message, *last)) {
        *last = message;
    } else {
        waiting_.push_back(message);
    }
}

std::optional<MSG> MessageQueue::First() const {
    if (!waiting_.empty()) return waiting_.front();
    if (quit_code_) return MSG{nullptr, WM_QUIT, static_cast<WPARAM>(*quit_code_), 0};
    return std::nullopt;
}

std::optional<MSG> MessageQueue::Take() {
    const std::optional<MSG> first = First();
    if (!waiting_.empty()) {
        waiting_.pop_front();
    } else {
        quit_code_.reset();
    }
    return first;
}

bool MessageQueue::Holds(UINT message, WPARAM wParam) const {
    return std::any_of(waiting_.begin(), waiting_.end(),
                       [&](const MSG& waiting) { return waiting.message == message && waiting.wParam == wParam; });
}

void MessageQueue::Forget(HWND window) {
    std::erase_if(waiting_, [&](const MSG& waiting) { return waiting.hwnd == window; });
}

}   // namespace sparkrig
