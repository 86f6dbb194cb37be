#pragma once
#include <string>

namespace sparkrig {

/// Makes the folder with the program's data the current directory: `data` where it is given, else the present one where
/// it holds "cfg", else the folder that the data was built in. False when `data` is no folder.
bool EnterProgramFolder(const std::string& data);

/// The folder that the program's own data was built in.
const char* BuiltInFolder();

/// The name as an absolute one, seen from the present current directory.
std::string AbsolutePath(const std::string& name);

}   // namespace sparkrig
