#pragma once
#include <cstdint>
#include <string>

namespace sparkrig {

/// When the source of an effect, or a file that it includes, was changed last: nanoseconds, -1 when it does not exist.
/// Includes are counted whether a condition leaves them out or not.
std::int64_t ShaderSourceTime(const std::string& file);

}   // namespace sparkrig
