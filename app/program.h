#pragma once
#include <string>
#include <vector>

namespace sparkrig {

/// The whole program; the words behind its name give what it does. An interactive run ends with 1, and with 0 after an
/// error; automation as AutomationEnd says.
int RunProgram(const std::vector<std::string>& words);

}   // namespace sparkrig
