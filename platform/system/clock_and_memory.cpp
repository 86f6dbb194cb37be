#include <ctime>
#include <fstream>
#include <limits>
#include <string>

#include "platform/system/system.h"

namespace sparkrig {
namespace {

constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;

}   // namespace

std::int64_t QueryPerformanceCounter() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * kNanosecondsPerSecond + now.tv_nsec;
}

std::int64_t QueryPerformanceFrequency() { return kNanosecondsPerSecond; }

void Sleep(DWORD milliseconds) {
    timespec left{milliseconds / 1000, milliseconds % 1000 * 1'000'000L};
    while (nanosleep(&left, &left) != 0) {   // a signal came in between: sleep what is left
    }
}

std::uint64_t AvailablePhysicalMemory() {
    std::ifstream file("/proc/meminfo");
    std::string key;
    std::uint64_t kibibytes = 0;
    while (file >> key >> kibibytes) {
        if (key == "MemAvailable:") return kibibytes * 1024;
        file.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
    }
    return 0;
}

// The probes ask for system libraries that the layer stands in for.
bool LoadLibraryA(const char* name) { return name != nullptr; }
void FreeLibrary(const char* /*name*/) {}

}   // namespace sparkrig
