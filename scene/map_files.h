// What loading a scene asks about the pictures that it names. No picture is loaded here.
#pragma once
#include <string>

namespace sparkrig {

class MapFiles {
  public:
    /// A text scene's maps are looked for as written, and then in this folder where one is given.
    explicit MapFiles(std::string folder = "") : folder_(std::move(folder)) {}
    virtual ~MapFiles() = default;

    /// Where the file can be opened; empty when it is not there.
    virtual std::string Find(const char* name) const;
    /// Whether the picture has an alpha channel.
    virtual bool HasAlpha(const std::string& path) const;

  private:
    std::string folder_;
};

/// directory + "\" + name; the name alone without a directory.
std::string PathIn(const std::string& directory, const char* name);

}   // namespace sparkrig
