// How many frames a second are shown.
#pragma once
#include <cstdint>

namespace sparkrig {

/// Measures the frame rate over at most the last second, from samples at least 1/60 s apart.
class FrameTimeRing {
  public:
    /// A frame was presented at `now` (seconds).
    void Presented(double now);
    /// Frames per second; 0 before there are two samples.
    float Rate() const;

    std::uint32_t TotalFrames() const { return total_frames_; }
    /// The device was made at `now`.
    void Start(double now) { created_ = last_present_ = now; }
    double Created() const { return created_; }
    double LastPresent() const { return last_present_; }

  private:
    static constexpr int kEntries = 60;
    static int Next(int index) { return (index + 1) % kEntries; }
    static int Previous(int index) { return (index + kEntries - 1) % kEntries; }

    struct Entry {
        std::uint32_t frames = 0;
        double time = 0;
    };
    Entry entries_[kEntries];
    int write_ = 0;
    std::uint32_t total_frames_ = 0;
    double created_ = 0, last_present_ = 0;
};

}   // namespace sparkrig
