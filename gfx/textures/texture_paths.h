// Where texture files are looked for.
#pragma once
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace sparkrig {

/// directory + "\" + name; no separator is added behind one.
std::string JoinPath(const std::string& directory, const char* name);

/// Under which a loaded file is shared: one key for every spelling, and another one when the file changes on disk.
std::string FileKey(const char* file);

class TexturePaths {
  public:
    void SetBasePath(const char* path) { base_ = path ? path : ""; }
    void SetDefaultTexturePath(const char* path) { textures_ = path ? path : ""; }

    /// Looks for the file as written, then below the default texture path, then below the base path. `found` receives
    /// the name under which it can be opened.
    bool Find(const char* name, std::string& found) const;

  private:
    friend class TextureLookup;
    /// The names to try, in order.
    std::vector<std::string> Candidates(const char* name) const;

    std::string base_, textures_;
};

/// Many look-ups in a row: lists each folder once, and so sees no file that comes or goes meanwhile.
class TextureLookup {
  public:
    explicit TextureLookup(const TexturePaths& paths) : paths_(paths) {}
    /// Whether TexturePaths::Find would find the file.
    bool Contains(const char* name);

  private:
    using Names = std::unordered_set<std::string>;   // in lower case
    const Names& NamesIn(const std::string& folder);

    const TexturePaths& paths_;
    std::unordered_map<std::string, Names> folders_;
};

}   // namespace sparkrig
