// While it lives no file can grow beyond 4096 bytes: a disk that is full, for this process alone.
#pragma once
#include <sys/resource.h>

#include <csignal>

namespace sparkrig {

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
