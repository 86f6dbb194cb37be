// A file in memory that holds the input of a fuzz target under a name that can be opened.
#pragma once
#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <string>

namespace sparkrig {

class InputFile {
  public:
    InputFile() : descriptor_(memfd_create("input", 0)), name_("/proc/self/fd/" + std::to_string(descriptor_)) {}
    ~InputFile() { close(descriptor_); }
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    const char* Name() const { return name_.c_str(); }
    void Put(const void* data, std::size_t size) const {
        const bool put =
            ftruncate(descriptor_, 0) == 0 && pwrite(descriptor_, data, size, 0) == static_cast<ssize_t>(size);
        if (!put) std::abort();
    }

  private:
    int descriptor_;
    std::string name_;
};

}   // namespace sparkrig
