#include "platform/d3dx/effect_compiler.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "platform/d3dx/effect_bytes.h"

namespace sparkrig {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kTimeLimit(10);
constexpr std::size_t kMostErrorText = 64 * 1024;

std::string FindCompiler() {
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    const std::filesystem::path beside = program.parent_path() / "fxc";
    for (const std::filesystem::path& candidate : {beside, std::filesystem::path(SPARKRIG_FXC)})
        if (std::filesystem::is_regular_file(candidate, error) && access(candidate.c_str(), X_OK) == 0)
            return candidate.string();
    return "fxc";
}

/// One run's output: a file in memory, which is gone with the last process that has it open, however that one ends.
class OutputFile {
  public:
    OutputFile() : descriptor_(memfd_create("effect.fxo", MFD_CLOEXEC)) {}
    ~OutputFile() {
        if (descriptor_ >= 0) close(descriptor_);
    }
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    int Descriptor() const { return descriptor_; }
    bool Read(std::vector<BYTE>& bytes) const {
        return ReadEffectBytes("/proc/self/fd/" + std::to_string(descriptor_), bytes);
    }

  private:
    int descriptor_;
};

struct Child {
    pid_t process = -1;
    int errors = -1;   // where its error stream can be read
};

bool Start(const std::string& program, const std::string& input, const OutputFile& output, Child& child) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return false;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, output.Descriptor(), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDERR_FILENO);
    // "--" ends the options: a file may be called --help.
    const char* const arguments[] = {program.c_str(), "-o", "-", "--", input.c_str(), nullptr};
    const int failed =
        posix_spawnp(&child.process, program.c_str(), &actions, nullptr, const_cast<char* const*>(arguments), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    if (failed == 0) {
        child.errors = ends[0];
        return true;
    }
    close(ends[0]);
    return false;
}

int MillisecondsUntil(Clock::time_point deadline) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
    return left > 0 ? static_cast<int>(left) : 0;
}

/// Reads the error stream until the compiler closes it or the time is over.
void ReadErrors(int stream, Clock::time_point deadline, std::string& text) {
    char buffer[4096];
    while (true) {
        pollfd waiting = {stream, POLLIN, 0};
        const int ready = poll(&waiting, 1, MillisecondsUntil(deadline));
        if (ready < 0 && errno == EINTR) continue;
        if (ready <= 0) return;
        const ssize_t count = read(stream, buffer, sizeof buffer);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return;
        const std::size_t room = kMostErrorText - text.size();
        text.append(buffer, std::min(room, static_cast<std::size_t>(count)));
    }
}

/// The exit state of the compiler; it is ended when the time is over.
int WaitForEnd(pid_t process, Clock::time_point deadline, bool& timed_out) {
    int state = 0;
    while (true) {
        const pid_t ended = waitpid(process, &state, WNOHANG);
        if (ended == process || (ended < 0 && errno != EINTR)) return state;
        if (Clock::now() >= deadline) break;
        poll(nullptr, 0, 1);
    }
    timed_out = true;
    kill(process, SIGKILL);
    while (waitpid(process, &state, 0) < 0 && errno == EINTR) continue;
    return state;
}

std::string FaultLine(const std::string& path, const std::string& message) {
    return path + "(1): error X1000: " + message + "\n";
}

}   // namespace

bool CompileEffect(const std::string& path, std::vector<BYTE>& compiled, std::string& errors) {
    const OutputFile output;
    Child child;
    if (output.Descriptor() < 0 || !Start(FindCompiler(), path, output, child)) {
        errors = FaultLine(path, "the effect compiler can not be started");
        return false;
    }
    const Clock::time_point deadline = Clock::now() + kTimeLimit;
    ReadErrors(child.errors, deadline, errors);
    close(child.errors);
    bool timed_out = false;
    const int state = WaitForEnd(child.process, deadline, timed_out);
    if (timed_out) {
        errors += FaultLine(path, "the effect compiler did not end in time");
    } else if (!WIFEXITED(state)) {
        errors += FaultLine(path, "the effect compiler crashed on this file");
    } else if (WEXITSTATUS(state) == 0 && output.Read(compiled)) {
        return true;   // with warnings, if it gave some
    } else if (errors.empty()) {
        errors = FaultLine(path, "the effect compiler gave no reason");
    }
    return false;
}

}   // namespace sparkrig
