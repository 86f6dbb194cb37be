#include "tools/fxc/crash_report.h"

#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fmt/format.h>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>

namespace sparkrig::fxc {

namespace {

constexpr std::size_t kMostText = 4096;
char* shared_text = nullptr;   // of both processes

}   // namespace

void NameCrash(const Diagnostics& diagnostics, const Place& place, const std::string& function) {
    if (!shared_text) return;
    const std::string text = fmt::format(
        "{}({}): error X{}: {}: the function can not be compiled: something in it is not complete (column {})\n",
        diagnostics.FileName(place.file), place.line, static_cast<int>(ErrorCode::Code), function, place.column);
    std::strncpy(shared_text, text.c_str(), kMostText - 1);
}

int RunGuarded(const std::function<int()>& work, int crashed) {
    void* const memory = mmap(nullptr, kMostText, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    const pid_t child = memory == MAP_FAILED ? -1 : fork();
    if (child < 0) return work();   // without the guard
    shared_text = static_cast<char*>(memory);
    if (child == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);   // whoever ends the compiler ends this process
        const int code = work();
        std::fflush(nullptr);
        _exit(code);
    }
    int state = 0;
    while (waitpid(child, &state, 0) < 0 && errno == EINTR) continue;
    if (WIFEXITED(state)) return WEXITSTATUS(state);
    std::fputs(*shared_text ? shared_text : "fxc: the compiler ended before its time\n", stderr);
    return crashed;
}

}   // namespace sparkrig::fxc
