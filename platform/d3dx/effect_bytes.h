#pragma once
#include <string>
#include <vector>

#include "platform/system/win_types.h"

namespace sparkrig {

/// The content of a file; false when it can not be read or is larger than any effect.
bool ReadEffectBytes(const std::string& path, std::vector<BYTE>& bytes);

}   // namespace sparkrig
