// The command line: "/" words of the tester, "--" words of its automation, everything that is no option is ignored.
#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace sparkrig {

enum class RunMode { Interactive, Capture, Sequence, Sheet, Record, Check };

/// The seed of automation where none is given.
inline constexpr std::uint32_t kAutomationSeed = 1;

struct Options {
    RunMode mode = RunMode::Interactive;
    std::string command_line;   // all words, for the "/" options
    std::string effect;         // empty: the first one
    bool repeat = false;
    std::optional<std::uint32_t> seed;
    std::string screen_effect, mesh_effect;   // files of shader effects, for the picture and for meshes; empty for none
    std::string data;                         // folder to work in; empty: not given
    std::string output;                       // the file or folder that the mode writes
    std::string journal;                      // file for the journal of an interactive run; empty for none
    double at_seconds = 1;
    int frames = 60;
    bool overlay = true, backdrop = true;
};

struct ParsedCommandLine {
    Options options;
    std::optional<int> exit_code;   // set when the program ends at once: 0 after help or version, 2 for wrong usage
    std::string text;               // what it says then
};

/// The words behind the program's name.
ParsedCommandLine ParseCommandLine(const std::vector<std::string>& words);

}   // namespace sparkrig
