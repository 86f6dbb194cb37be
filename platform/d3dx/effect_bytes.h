// The bytes of an effect file and how many there can be.
#pragma once
#include <cstddef>
#include <string>
#include <vector>

#include "platform/system/win_types.h"

namespace sparkrig {

/// No effect is larger, compiled or not.
inline constexpr std::size_t kMostEffectBytes = 64 * 1024 * 1024;

/// The content of a file; false when it can not be read or is larger than any effect.
bool ReadEffectBytes(const std::string& path, std::vector<BYTE>& bytes);

}   // namespace sparkrig
