// Effects files from text.
#pragma once
#include "tests/support/temporary_folder.h"

namespace sparkrig {

/// A file with this text, gone with the object.
class EffectsFileOf {
  public:
    explicit EffectsFileOf(const std::string& text) : name_(folder_.Write("effects.cfg", text)) {}
    const char* Name() const { return name_.c_str(); }

  private:
    ScratchFolder folder_;
    std::string name_;
};

}   // namespace sparkrig
