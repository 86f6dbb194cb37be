#pragma once
#include <cstdio>
#include <memory>
#include <string>

#include "app/engine.h"

namespace sparkrig {

/// Tells scripts what an interactive run does: one JSON object a line whenever something changes, written at once.
class Journal {
  public:
    explicit Journal(const std::string& file);
    bool IsOpen() const { return file_ != nullptr; }
    void Write(const Engine& engine, const TesterState& state, const LoopState& loop);

  private:
    struct Close {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    std::unique_ptr<std::FILE, Close> file_;
    std::string last_;
    bool failed_ = false;
};

}   // namespace sparkrig
