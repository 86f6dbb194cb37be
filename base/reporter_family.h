// What the reporters of one family share: how many live, which warnings were logged, which are being repeated.
#pragma once
#include <cstdint>

#include "base/error.h"

namespace sparkrig {

class ReporterFamily {
  public:
    static constexpr std::int32_t kMaxWarnings = 65536;
    static constexpr std::uint32_t kMaxRepeats = 268435455;

    constexpr explicit ReporterFamily(const char* limit_message, std::int32_t max_warnings = kMaxWarnings,
                                      std::uint32_t max_repeats = kMaxRepeats)
        : limit_message_(limit_message), max_warnings_(max_warnings), max_repeats_(max_repeats) {}

    void Enter() { ++live_reporters_; }
    /// The last reporter to leave writes the repeats that are pending.
    void Leave();

    /// Logs the warning, or counts it when it repeats the last one.
    void Warn(const char* class_name, const char* message);
    void LogError(const char* class_name, const char* message) const;

  private:
    // "Warning:" + 31 characters + ": " + 1023 fit: lines are compared whole.
    static constexpr int kLineBytes = 2048;

    const char* limit_message_;
    std::int32_t max_warnings_;
    std::uint32_t max_repeats_;
    std::int32_t live_reporters_ = 0;
    std::int32_t logged_warnings_ = 0;
    std::uint32_t pending_repeats_ = 0;
    char last_line_[kLineBytes] = {};
};

}   // namespace sparkrig
