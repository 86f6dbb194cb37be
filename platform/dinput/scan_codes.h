// From SDL's keys by place to the key codes of the keyboard device.
#pragma once
#include <cstdint>
#include <span>

#include "platform/system/win_types.h"

namespace sparkrig {

inline constexpr int kKeyCodes = 256;

/// Fills the state of the 256 key codes (0x80 down, 0 up) from SDL's state, which is indexed by scan code and holds
/// 1 for a key that is down.
void TranslateKeys(std::span<const std::uint8_t> by_scan_code, BYTE (&state)[kKeyCodes]);

}   // namespace sparkrig
