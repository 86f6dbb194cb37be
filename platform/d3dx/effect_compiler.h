// Compiling effect text by a process of its own.
#pragma once
#include <string>
#include <vector>

#include "platform/system/win_types.h"

namespace sparkrig {

/// Compiles an effect by starting the program fxc: the one beside the running program, else the one of the build,
/// else the one in PATH. It may run for ten seconds; whatever becomes of it, this process goes on.
/// False with the reasons in `errors`, a line "file(line): error X0000: message" each.
bool CompileEffect(const std::string& path, std::vector<BYTE>& compiled, std::string& errors);

}   // namespace sparkrig
