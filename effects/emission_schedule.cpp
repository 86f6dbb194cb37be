#include "effects/emission_schedule.h"

#include <algorithm>
#include <bit>

#include "base/numeric.h"
#include "base/random.h"
#include "effects/motion.h"

namespace sparkrig {
namespace {

constexpr double kJitter = 0.25;
constexpr int kBits = 64;   // of a word

}   // namespace

double EmissionJitter() { return RandomRange(-kJitter, kJitter); }

void EmissionSchedule::Clear() { count_ = 0; }

void EmissionSchedule::Mark(const InstanceStore& store, const InstanceGroup& group) {
    const auto words = static_cast<std::size_t>(store.IdEnd() / kBits + 1);
    if (marked_.size() < words) marked_.resize(words);
    for (int n = 0; n < group.count; ++n) {
        const DrawRecord& record = store.Record(InstanceStore::LaneAt(group, n));
        if (!(record.age >= 0)) continue;
        marked_[static_cast<std::size_t>(record.id / kBits)] |= std::uint64_t{1} << record.id % kBits;
    }
}

void EmissionSchedule::Ask(const InstanceStore& store, float elapsed_seconds) {
    for (std::size_t word = 0; word < marked_.size(); ++word) {
        for (std::uint64_t left = std::exchange(marked_[word], 0); left != 0; left &= left - 1)
            AskOne(store, static_cast<int>(word) * kBits + std::countr_zero(left), elapsed_seconds);
    }
}

void EmissionSchedule::AskOne(const InstanceStore& store, int id, float elapsed_seconds) {
    const Lane lane = store.LaneOf(id);
    const SubEffect& sub = *store.Group(store.GroupOfLane(lane)).sub;
    const auto step = static_cast<float>(sub.speed * elapsed_seconds);
    if (sub.emit.random) return AddRandom(id, sub.emit.per_time, step);
    const InstanceBlock& block = store.BlockOfLane(lane);
    const double age = block.time[lane % kLanes] - BirthDelay(sub, block.count_value[lane % kLanes]);
    AddEven(id, age, sub.emit.per_time, step);
}

/// One emission at each multiple of the period that the step has passed.
void EmissionSchedule::AddEven(int id, double age, double per_time, float step) {
    const double period = 1.0 / per_time;
    const double rest = period - WrapFloat(age - step, period);
    if (!(rest <= step)) return;
    const double since_first = step - rest;
    const int count = TruncateToInt(since_first / period);
    for (int k = 0; k <= count && Add(id, since_first - k * period); ++k) {
    }
}

/// As many emissions as fall into the step on the average, each near the middle of its share of the step.
void EmissionSchedule::AddRandom(int id, float per_time, float step) {
    std::int64_t count = TruncateToInt(step * per_time);
    const float fraction = WrapFloat(step, 1 / per_time) * per_time;
    if (Random01() < fraction) ++count;
    for (int k = 0; k < count && count_ < kMaxEmissions; ++k)
        Add(id, (k + 0.5 + EmissionJitter()) * step / static_cast<double>(count));
}

bool EmissionSchedule::Add(int id, double offset) {
    if (count_ == kMaxEmissions) return false;
    emissions_[count_++] = {id, offset};
    return true;
}

}   // namespace sparkrig
