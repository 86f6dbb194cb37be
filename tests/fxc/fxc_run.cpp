#include "tests/fxc/fxc_run.h"

#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace sparkrig {

namespace {

std::string ReadAll(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void RemoveAll(std::string& text, const std::string& part) {
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part)) text.erase(at, part.size());
}

}   // namespace

FxcFolder::FxcFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "fxc-test-XXXXXX").string();
    if (!mkdtemp(pattern.data())) throw std::runtime_error("no folder for the test");
    path_ = pattern + "/";
}

FxcFolder::~FxcFolder() { std::filesystem::remove_all(path_); }

void FxcFolder::Write(const std::string& name, const std::string& text) const {
    std::ofstream(path_ + name, std::ios::binary) << text;
}

FxcResult FxcFolder::Run(const std::string& arguments) const {
    const std::string command = "'" SPARKRIG_FXC "' " + arguments + " >/dev/null 2>'" + path_ + "errors'";
    const int state = std::system(command.c_str());
    FxcResult result;
    result.code = WIFEXITED(state) ? WEXITSTATUS(state) : 128;
    result.errors = ReadAll(path_ + "errors");
    RemoveAll(result.errors, path_);
    return result;
}

FxcResult FxcFolder::Compile(const std::string& name) const {
    const std::string output = path_ + "out.fxo";
    FxcResult result = Run("'" + path_ + name + "' '" + output + "'");
    if (result.code != 0) return result;
    const std::string bytes = ReadAll(output);
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
