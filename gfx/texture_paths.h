// Where texture files are looked for.
#pragma once
#include <string>

namespace sparkrig {

/// directory + "\" + name; no separator is added behind one.
std::string JoinPath(const std::string& directory, const char* name);

class TexturePaths {
  public:
    void SetBasePath(const char* path) { base_ = path ? path : ""; }
    void SetDefaultTexturePath(const char* path) { textures_ = path ? path : ""; }

    /// Looks for the file as written, then below the default texture path, then below the base path. `found` receives
    /// the name under which it can be opened.
    bool Find(const char* name, std::string& found) const;

  private:
    std::string base_, textures_;
};

}   // namespace sparkrig
