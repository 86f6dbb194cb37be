#pragma once
#include <string>
#include <string_view>
#include <vector>

#include "tools/fxc/token.h"

namespace sparkrig::fxc {

enum class ErrorCode {
    Source = 1000,        // reading files, preprocessing
    Syntax = 2000,        // parameters, techniques, passes, states
    Code = 3000,          // the functions
    Unsupported = 4000,   // what the layer leaves out
};

/// Collects the errors of a run, and knows the sources by number.
class Diagnostics {
  public:
    int AddFile(std::string name);
    const std::string& FileName(int file) const { return files_[static_cast<std::size_t>(file)]; }

    void Error(const Place& place, ErrorCode code, std::string_view message);
    /// The same for a place whose column is not known.
    void ErrorInLine(int file, int line, ErrorCode code, std::string_view message);
    /// The same, for what does not keep the effect from being made.
    void Warning(const Place& place, ErrorCode code, std::string_view message);
    bool Failed() const { return errors_ > 0; }
    /// What an attempt reports can be taken back.
    struct Mark {
        std::size_t text = 0;
        int count = 0, errors = 0;
    };
    Mark Here() const { return {text_.size(), count_, errors_}; }
    void Return(const Mark& mark);
    /// A line "file(line): error X0000: message" for each error, or with "warning", in the order of their finding.
    const std::string& Text() const { return text_; }

  private:
    void Add(int file, int line, const char* kind, ErrorCode code, std::string_view message);

    std::vector<std::string> files_;
    std::string text_;
    int count_ = 0, errors_ = 0;
};

}   // namespace sparkrig::fxc
