#pragma once
#include "base/log.h"
#include "input/input_device.h"
#include "platform/window/window.h"

namespace sparkrig {

/// Key codes are DirectInput's, 0 to 255 (KeyCode).
class KRN_InputKeyboard final : public KRN_InputDevice {
  public:
    static constexpr int kKeys = 256;
    using Clock = double (*)();

    explicit KRN_InputKeyboard(Clock clock = GetSeconds);

    /// Reads the keyboard and looks at the window's first message. 0 without a device, 2 when it waited for the quit
    /// flag, otherwise 1. A state that cannot be read counts as all keys up, with a warning.
    int UpdateKeyboard();

    bool IsKeyDown(int key) const { return (current_[key] & 0x80) != 0; }
    /// 1 in the frame in which the key went down, 255 in the one in which it went up, otherwise 0.
    BYTE KeyEdge(int key) const { return edge_[key]; }
    /// Presses to act on in this frame, repeats included. Counts each repeat once: ask once per frame.
    int KeyPressCount(int key);

    /// Seconds until a held key repeats; repeats per second, 0 for none.
    void SetRepeat(float delay, float rate) { repeat_delay_ = delay, repeat_rate_ = rate; }
    /// Whether the update takes the message that it looks at off the queue and dispatches it.
    void SetPumpMessages(bool pump) { pump_messages_ = pump; }
    /// With a flag, the update handles messages until the flag is set. Borrowed; null: no waiting.
    void SetWaitForQuit(const int* quit_requested) { wait_for_quit_ = quit_requested; }
    /// Called when the update sees that another application has become the active one.
    void SetDeactivationCallback(void (*callback)()) { deactivated_ = callback; }

  private:
    void ReadState();
    void FindEdges();
    int LookAtMessages();

    Clock clock_;
    double now_ = 0;   // the clock at the last update
    BYTE current_[kKeys] = {};
    BYTE previous_[kKeys] = {};
    BYTE edge_[kKeys] = {};
    double change_time_[kKeys] = {};
    float repeat_delay_ = 0.2f;
    float repeat_rate_ = 0.0f;
    bool pump_messages_ = false;
    const int* wait_for_quit_ = nullptr;
    void (*deactivated_)() = nullptr;
};

}   // namespace sparkrig
