// Programs as a user runs them.
#pragma once
#include <sys/wait.h>

#include <cstdio>
#include <string>

namespace sparkrig {

struct ProgramRun {
    int exit_code = -1;
    std::string text;   // what it printed, on either stream
};

inline ProgramRun RunProgram(const std::string& program, const std::string& arguments) {
    std::FILE* pipe = popen((program + " " + arguments + " 2>&1").c_str(), "r");
    ProgramRun run;
    for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) run.text += static_cast<char>(c);
    run.exit_code = WEXITSTATUS(pclose(pipe));
    return run;
}

}   // namespace sparkrig
