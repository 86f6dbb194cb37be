// Files that the user asked for by name. Names are taken as they stand: these are no data files.
#pragma once
#include <cstdio>
#include <string>
#include <string_view>

namespace sparkrig {

/// A file that becomes whole or not at all: written beside its place, then renamed over it. What is no plain file, such
/// as a pipe, is written directly.
class OutputFile {
  public:
    explicit OutputFile(const std::string& name);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// False after the first failure of any kind.
    bool Write(std::string_view bytes);
    /// The file cannot be made, for a reason of errno.
    void Fail(int error);
    /// Puts the file into its place and names it on the standard output. False, with a sentence on the error stream,
    /// when anything has failed.
    bool Finish();

  private:
    std::string name_, part_;
    std::FILE* file_;
    int error_ = 0;   // of the first failure
};

/// Makes a folder unless it is there. False with a sentence on the error stream.
bool MakeOutputFolder(const std::string& name);

}   // namespace sparkrig
