// The libraries below do not survive every function. What was compiled when the process died is told by another one.
#pragma once
#include <functional>
#include <string>

#include "tools/fxc/diagnostics.h"

namespace sparkrig::fxc {

/// From now on, a crash is an error of this function.
void NameCrash(const Diagnostics& diagnostics, const Place& place, const std::string& function);

/// Runs `work` in a process of its own and gives its exit code; when it dies, the error that NameCrash named goes to
/// the error stream and `crashed` is the code.
int RunGuarded(const std::function<int()>& work, int crashed);

}   // namespace sparkrig::fxc
