// The writer behind WriteLog: one line an entry, the file closed in between so that it is complete at any moment.
#pragma once
#include <cstdarg>
#include <cstdint>

namespace sparkrig {

class LogFile {
  public:
    static constexpr int kLineBytes = 1024;   // with suffix and terminator; a longer message is cut before the suffix
    static constexpr int kMaxEntries = 500000;

    constexpr explicit LogFile(int max_entries = kMaxEntries) : max_entries_(max_entries) {}

    void Write(const char* format, std::va_list arguments);

  private:
    static constexpr int kDirectoryBytes = 4096;

    bool RememberDirectory();

    char directory_[kDirectoryBytes] = "";   // the one that was current at the first call
    std::int32_t entry_count_ = 0;
    const std::int32_t max_entries_;
    double start_seconds_ = 0;
};

}   // namespace sparkrig
