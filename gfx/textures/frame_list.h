// Image-file lists (.ifl): a text file that names a frame on each line.
#pragma once
#include <string>
#include <vector>

#include "base/error.h"

namespace sparkrig {

/// More frames in one list are an error.
inline constexpr int kMaxSequenceFrames = 4096;

/// By the end of the name, ignoring letter case.
bool IsFrameListName(const char* name);

/// The frames' names in order, without the blanks around them; empty lines are left out. A list that cannot be read, is
/// empty, too long or names another list is an error of `reporter`.
std::vector<std::string> ReadFrameList(const KRN_Base& reporter, const char* file);

}   // namespace sparkrig
