#pragma once
#include <string>
#include <vector>

namespace sparkrig {

/// Where the quoted texts of a text file stand. Lines count from 1.
class NameLines {
  public:
    explicit NameLines(const char* file);
    int LineCount() const { return static_cast<int>(lines_.size()); }
    /// The first line, from `from` on, that holds the text in quotes, ignoring letter case; 0 when none does.
    int Find(const std::string& text, int from = 1) const;
    /// The first quoted text of a line; empty when there is none or the line is a comment.
    std::string FirstQuoted(int line) const;

  private:
    std::vector<std::string> lines_;
};

}   // namespace sparkrig
