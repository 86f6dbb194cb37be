#pragma once
#include <string>
#include <vector>

namespace sparkrig {

/// Where the quoted texts of a text file stand.
class NameLines {
  public:
    explicit NameLines(const char* file);
    /// The first line, from 1, that holds the text in quotes, ignoring letter case; 0 when none does.
    int Find(const std::string& text) const;

  private:
    std::vector<std::string> lines_;
};

}   // namespace sparkrig
