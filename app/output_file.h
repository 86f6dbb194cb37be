// Files that the user asked for by name. Names are taken as they stand: these are no data files.
#pragma once
#include <string>
#include <vector>

#include "platform/d3d9/d3d9_types.h"

namespace sparkrig {

/// A picture, row by row from the top, A8R8G8B8.
struct Picture {
    UINT width = 0, height = 0;
    std::vector<D3DCOLOR> pixels;
};

/// Writes the file whole or not at all and names it on the standard output. False with a sentence on the error stream.
bool WriteOutputFile(const std::string& name, const std::string& content);

/// The picture as an opaque PNG, written the same way.
bool WritePng(const std::string& name, const Picture& picture);

/// Makes a folder unless it is there. False with a sentence on the error stream.
bool MakeOutputFolder(const std::string& name);

}   // namespace sparkrig
