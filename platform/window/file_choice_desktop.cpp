#include <SDL2/SDL_timer.h>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include "platform/system/system.h"
#include "platform/window/file_choice_object.h"
#include "platform/window/modal.h"

namespace sparkrig {

namespace {

constexpr int kPollMilliseconds = 50;

std::string FindProgram(const std::string& name) {
    const char* path = std::getenv("PATH");
    std::string folders = path ? path : "";
    for (std::size_t from = 0; from < folders.size();) {
        const std::size_t end = std::min(folders.find(':', from), folders.size());
        const std::string program = folders.substr(from, end - from) + "/" + name;
        if (access(program.c_str(), X_OK) == 0) return program;
        from = end + 1;
    }
    return {};
}

std::string Joined(const std::vector<std::string>& patterns) {
    std::string joined;
    for (const std::string& pattern : patterns)
        joined += (joined.empty() ? "" : " ") + (pattern == "*.*" ? "*" : pattern);
    return joined;
}

std::vector<std::string> ZenityWords(const char* title, const std::vector<FileFilter>& filters) {
    std::vector<std::string> words = {"zenity", "--file-selection", "--filename=" + GetCurrentDirectoryA() + "/",
                                      std::string("--title=") + title};
    for (const FileFilter& filter : filters) {
        words.push_back("--file-filter=" + filter.name + " | " + Joined(filter.patterns));
    }
    return words;
}

std::vector<std::string> KdialogWords(const char* title, const std::vector<FileFilter>& filters) {
    std::string lines;
    for (const FileFilter& filter : filters) {
        lines += (lines.empty() ? "" : "\n") + Joined(filter.patterns) + "|" + filter.name;
    }
    return {"kdialog", "--title", title, "--getopenfilename", GetCurrentDirectoryA(), lines};
}

/// Starts a program whose output comes through `output`. 0 when it cannot be started.
pid_t Start(const std::string& program, const std::vector<std::string>& words, int& output) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return 0;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    std::vector<char*> arguments;
    for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    pid_t child = 0;
    if (posix_spawn(&child, program.c_str(), &actions, nullptr, arguments.data(), environ) != 0) child = 0;
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    output = ends[0];
    if (child == 0) close(output);
    return child;
}

/// What the program writes until it closes its output; the window is kept fresh meanwhile. False when the window
/// closes.
bool ReadAnswer(int output, std::string& answer) {
    while (true) {
        pollfd wait = {output, POLLIN, 0};
        char bytes[512];
        if (poll(&wait, 1, kPollMilliseconds) > 0) {
            const ssize_t count = read(output, bytes, sizeof(bytes));
            if (count <= 0) return true;
            answer.append(bytes, static_cast<std::size_t>(count));
        }
        MSG message;
        while (PeekMessageA(message, PM_REMOVE)) {
            if (message.message == WM_CLOSE || message.message == WM_QUIT) {
                PostMessageA(message.hwnd, WM_CLOSE, 0, 0);
                return false;
            }
            if (!IsInput(message.message)) DispatchMessageA(message);
        }
    }
}

}   // namespace

std::optional<std::string> AskDesktop(const char* title, const std::vector<FileFilter>& filters) {
    const char* desktop = std::getenv("XDG_CURRENT_DESKTOP");
    const std::string kdialog = FindProgram("kdialog"), zenity = FindProgram("zenity");
    const bool prefers_kdialog = zenity.empty() || (desktop && std::strstr(desktop, "KDE"));
    const bool with_kdialog = prefers_kdialog && !kdialog.empty();
    if (!with_kdialog && zenity.empty()) return std::nullopt;
    int output = -1;
    const pid_t child = with_kdialog ? Start(kdialog, KdialogWords(title, filters), output)
                                     : Start(zenity, ZenityWords(title, filters), output);
    if (child == 0) return std::nullopt;
    std::string answer;
    if (!ReadAnswer(output, answer)) kill(child, SIGTERM);
    close(output);
    int status = 0;
    waitpid(child, &status, 0);
    constexpr int kChosen = 0, kCancelled = 1;   // anything else: it could not do its work
    if (!WIFEXITED(status) || WEXITSTATUS(status) > kCancelled) return std::nullopt;
    if (WEXITSTATUS(status) != kChosen) return std::string();
    while (!answer.empty() && answer.back() == '\n') answer.pop_back();
    return answer;
}

}   // namespace sparkrig
