// Runs the effect compiler on sources in a folder of the test's own.
#pragma once
#include <sys/wait.h>

#include <cstdlib>
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
    std::string Path() const { return folder_.Path(""); }

    /// Any command line.
    FxcResult Run(const std::string& arguments) const {
        const std::string program = "'" SPARKRIG_FXC "' ", errors = Path() + "errors", output = Path() + "output";
        const int state = std::system((program + arguments + " >'" + output + "' 2>'" + errors + "'").c_str());
        FxcResult result;
        result.code = WIFEXITED(state) ? WEXITSTATUS(state) : 128;
        result.errors = ReadFile(errors);
        for (std::size_t at = 0; (at = result.errors.find(Path())) != std::string::npos;)
            result.errors.erase(at, Path().size());
        result.output = ReadFile(output);
        return result;
    }
    FxcResult Compile(const std::string& name) const {
        const std::string output = Path() + "out.fxo";
        FxcResult result = Run("'" + Path() + name + "' -o '" + output + "'");
        if (result.code != 0) return result;
        const std::string bytes = ReadFile(output);
        std::string fault;
        if (!ReadEffectFile({reinterpret_cast<const BYTE*>(bytes.data()), bytes.size()}, result.effect, fault))
            result.errors = "the output can not be read: " + fault;
        return result;
    }

  private:
    ScratchFolder folder_;
};

/// Compiles one source, called t.fx.
inline FxcResult CompileText(const std::string& text) {
    const FxcFolder folder;
    folder.Write("t.fx", text);
    return folder.Compile("t.fx");
}

}   // namespace sparkrig
