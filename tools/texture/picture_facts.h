// What can be said of an image file or an image-file list.
#pragma once
#include <string>

namespace sparkrig {

/// One line: size, kind, format, levels, alpha, and frames of a list. False, with the reason in place of the line, for
/// a file that cannot be loaded as a texture.
bool DescribePicture(const std::string& file, std::string& line);

}   // namespace sparkrig
