// Runs the effect compiler on sources in a folder of the test's own.
#pragma once
#include <string>

#include "platform/d3dx/effect_file.h"
#include "tests/support/temporary_folder.h"

namespace sparkrig {

struct FxcResult {
    int code = -1;        // exit code; 128 and more for a signal
    std::string errors;   // with the folder taken away, so that a file is its name
    std::string output;
    EffectFile effect;   // of a successful run
};

/// A folder for sources, gone at the end.
class FxcFolder {
  public:
    void Write(const std::string& name, const std::string& text) const { folder_.Write(name, text); }
    FxcResult Compile(const std::string& name) const;
    /// Any command line.
    FxcResult Run(const std::string& arguments) const;
    std::string Path() const { return folder_.Path(""); }

  private:
    ScratchFolder folder_;
};

/// Compiles one source, called t.fx.
FxcResult CompileText(const std::string& text);

}   // namespace sparkrig
