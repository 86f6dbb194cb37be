// Who emits in an update, and when. Instances are asked in ascending order of ids, so that the random draws do not
// depend on where they are kept.
#pragma once
#include <array>
#include <span>
#include <vector>

#include "effects/instance_store.h"

namespace sparkrig {

struct Emission {
    int emitter;     // its id
    double offset;   // seconds that the child has already lived
};

class EmissionSchedule {
  public:
    static constexpr std::size_t kMaxEmissions = 256;   // of one update; the rest is dropped

    void Clear();
    /// The born instances of a group will be asked.
    void Mark(const InstanceStore& store, const InstanceGroup& group);
    /// Asks those that are marked for the emissions of the last `elapsed_seconds`.
    void Ask(const InstanceStore& store, float elapsed_seconds);

    std::span<const Emission> Emissions() const { return {emissions_.data(), count_}; }

  private:
    void AskOne(const InstanceStore& store, int id, float elapsed_seconds);
    void AddEven(int id, double age, double per_time, float step);
    void AddRandom(int id, float per_time, float step);
    bool Add(int id, double offset);

    std::vector<std::uint64_t> marked_;   // a bit for each id
    std::array<Emission, kMaxEmissions> emissions_;
    std::size_t count_ = 0;
};

/// An emission time's distance from the middle of its share, in shares: uniform in [-1/4, 1/4).
double EmissionJitter();

}   // namespace sparkrig
