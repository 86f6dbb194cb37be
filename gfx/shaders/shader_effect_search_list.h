// Where the file of a shader effect is looked for.
#pragma once
#include <string>
#include <vector>

namespace sparkrig {

/// The files that an effect's base name may mean, in the order in which they are tried: in each directory the compiled
/// effect before its source.
class ShaderSearchList {
  public:
    void SetBaseName(const char* name);
    void SetShaderDirectory(const char* directory);
    void SetAlternativeDirectory(const char* directory);
    const std::vector<std::string>& Files() const { return files_; }

  private:
    void Rebuild();

    std::string base_name_, shader_directory_, alternative_directory_;
    std::vector<std::string> files_;
};

}   // namespace sparkrig
