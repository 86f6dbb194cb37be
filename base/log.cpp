#include "base/log.h"

#include <cstdio>
#include <cstring>
#include <string>

#include "base/log_file.h"
#include "platform/system/system.h"

namespace sparkrig {
namespace {

constexpr char kLimitLine[] = "Maximum number of log entries reached!\n";
constexpr std::uint64_t kMebibyte = 1048576;

int FreeMebibytes() { return static_cast<int>((AvailablePhysicalMemory() + kMebibyte / 2) / kMebibyte); }

bool silent = false;

}   // namespace

/// False where the current directory has no name (it was deleted) or none that fits.
bool LogFile::RememberDirectory() {
    const std::string current = GetCurrentDirectoryA();
    if (current.size() < sizeof directory_) std::memcpy(directory_, current.c_str(), current.size() + 1);
    return *directory_ != '\0';
}

void LogFile::Write(const char* format, std::va_list arguments) {
    if (!*directory_ && !RememberDirectory()) return;
    if (entry_count_ >= max_entries_) return;
    if (entry_count_ == 0) start_seconds_ = GetSeconds();

    const std::string name = std::string(directory_) + "/logfile.txt";
    std::FILE* file = std::fopen(name.c_str(), entry_count_ == 0 ? "w" : "a");
    if (!file) return;
    char suffix[96];
    std::snprintf(suffix, sizeof suffix, "(Time:%.2f, free sysmem:%i)\n", GetSeconds() - start_seconds_,
                  FreeMebibytes());
    char line[kLineBytes];
    std::vsnprintf(line, sizeof line - std::strlen(suffix), format, arguments);
    std::memcpy(line + std::strlen(line), suffix, std::strlen(suffix) + 1);

    ++entry_count_;
    std::fputs(line, file);
    if (entry_count_ == max_entries_) std::fputs(kLimitLine, file);
    std::fclose(file);
}

void WriteLog(const char* format, ...) {
    if (silent) return;
    static constinit LogFile log;   // needs no destructor: reporters may log until the very end
    std::va_list arguments;
    va_start(arguments, format);
    log.Write(format, arguments);
    va_end(arguments);
}

void SilenceLog() { silent = true; }

double GetSeconds() {
    static const double seconds_per_count = 1.0 / static_cast<double>(QueryPerformanceFrequency());
    return static_cast<double>(QueryPerformanceCounter()) * seconds_per_count;
}

}   // namespace sparkrig
