// The image library, for jpg and png files.
#pragma once
#include <stb_image.h>

#include <cstddef>

namespace sparkrig {

/// The most bytes that the library gets in one piece from now on: a few bytes of a file can unpack to gigabytes that no
/// picture of its size needs. What it does not get ends its reading as memory that is short.
void LimitImageMemory(std::size_t bytes);

}   // namespace sparkrig
