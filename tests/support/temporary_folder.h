// A folder of a test's own, below the system's temporary folder and gone with the test.
#pragma once
#include <sys/resource.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/test.h"

namespace sparkrig {

class ScratchFolder {
  public:
    ScratchFolder() : before_(std::filesystem::current_path()) {
        std::string name = (std::filesystem::temp_directory_path() / "sparkrig.XXXXXX").string();
        if (!mkdtemp(name.data())) throw std::runtime_error("no folder for the test");
        path_ = name;
    }
    ~ScratchFolder() {
        std::error_code error;
        std::filesystem::current_path(before_, error);
        std::filesystem::remove_all(path_, error);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    /// Makes it the current one; at its end the one from before is.
    void Enter() const { std::filesystem::current_path(path_); }
    const std::string& Path() const { return path_; }
    std::string Path(const std::string& name) const { return path_ + "/" + name; }
    /// Writes a file; its absolute name.
    std::string Write(const std::string& name, const std::string& content) const {
        std::ofstream(Path(name), std::ios::binary) << content;
        return Path(name);
    }

  private:
    std::filesystem::path before_;
    std::string path_;
};

inline std::string ReadFile(const std::filesystem::path& name) {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// The folder is current while the test runs.
class TemporaryFolder : public testing::Test {
  protected:
    TemporaryFolder() { folder_.Enter(); }

    std::filesystem::path Folder() const { return folder_.Path(); }
    static void WriteFile(const std::filesystem::path& name, const std::string& content) {
        std::ofstream(name, std::ios::binary) << content;
    }
    static std::vector<std::string> ReadLines(const std::filesystem::path& name) {
        std::ifstream file(name);
        std::vector<std::string> lines;
        for (std::string line; std::getline(file, line);) lines.push_back(line);
        return lines;
    }

  private:
    ScratchFolder folder_;
};

/// While it lives no file can grow beyond 4096 bytes: a disk that is full, for this process alone.
class FileSizeLimit {
  public:
    FileSizeLimit() : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit small{4096, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &small);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

  private:
    rlimit before_{};
    void (*handler_)(int);
};

}   // namespace sparkrig
