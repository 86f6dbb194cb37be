#include "tests/fxc/fxc_run.h"

#include <sys/wait.h>

#include <cstdlib>

namespace sparkrig {

namespace {

void RemoveAll(std::string& text, const std::string& part) {
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part)) text.erase(at, part.size());
}

}   // namespace

FxcResult FxcFolder::Run(const std::string& arguments) const {
    const std::string command = "'" SPARKRIG_FXC "' " + arguments + " >'" + Path() + "output' 2>'" + Path() + "errors'";
    const int state = std::system(command.c_str());
    FxcResult result;
    result.code = WIFEXITED(state) ? WEXITSTATUS(state) : 128;
    result.errors = ReadFile(Path() + "errors");
    RemoveAll(result.errors, Path());
    result.output = ReadFile(Path() + "output");
    return result;
}

FxcResult FxcFolder::Compile(const std::string& name) const {
    const std::string output = Path() + "out.fxo";
    FxcResult result = Run("'" + Path() + name + "' -o '" + output + "'");
    if (result.code != 0) return result;
    const std::string bytes = ReadFile(output);
    std::string fault;
    if (!ReadEffectFile({reinterpret_cast<const BYTE*>(bytes.data()), bytes.size()}, result.effect, fault))
        result.errors = "the output can not be read: " + fault;
    return result;
}

FxcResult CompileText(const std::string& text) {
    const FxcFolder folder;
    folder.Write("t.fx", text);
    return folder.Compile("t.fx");
}

}   // namespace sparkrig
