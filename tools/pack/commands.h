// What pack does to one file. Each prints one line and answers whether all is well.
#pragma once
#include <string>

namespace sparkrig {

inline constexpr int kFirstPackMode = 1, kLastPackMode = 8;

/// Packs in place, a packed file anew; what is empty becomes an empty plain file.
bool PackFile(const std::string& name, int mode);
/// Not well for a file that is plain already.
bool UnpackFile(const std::string& name);
/// Mode, packed and plain size.
bool ListFile(const std::string& name);
/// A line a mode: number and meaning.
std::string PackModesText();

}   // namespace sparkrig
