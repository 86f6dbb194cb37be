#include "effects/trace_effect_set.h"

#include <algorithm>
#include <limits>

namespace sparkrig {
namespace {

constexpr std::size_t kFirstTrails = 16, kFirstLines = 64;

/// The line that the channel writes next, made where there is none. Null for one that is no longer there: a channel
/// that begins long after the others writes what nobody sees.
TraceEffectLineData* TakeLine(TraceEffectData& trail, int channel) {
    const std::int64_t number = trail.next[channel]++;
    if (number < trail.dropped) return nullptr;
    if (number >= trail.LineEnd()) trail.lines.emplace_back();
    return &trail.lines[static_cast<std::size_t>(number - trail.dropped)];
}

/// True when the trail has come to its end.
bool Age(TraceEffectData& trail, float elapsed_seconds) {
    bool lost = false;
    for (std::int64_t number = trail.first_live; number < trail.LineEnd(); ++number) {
        float& life = trail.lines[static_cast<std::size_t>(number - trail.dropped)].life;
        if (life <= elapsed_seconds) {
            life = 0;
            trail.first_live = std::max(trail.first_live, number);
            lost = true;
        } else {
            life -= elapsed_seconds;
        }
    }
    return lost && trail.first_live == trail.LineEnd() - 1;
}

/// Forgets dead lines when they are more than the others, so that a trail that is fed for ever stays as long as what is
/// seen of it. Kept are the last before the live ones and before those that a lagging channel writes, since the life
/// of a line depends on the one before it.
void ForgetDeadLines(TraceEffectData& trail) {
    std::int64_t needed = trail.first_live;
    for (const std::int64_t next : trail.next)
        if (next > 0) needed = std::min(needed, next);
    const std::int64_t dead = needed - trail.dropped - 1;
    if (dead <= static_cast<std::int64_t>(trail.lines.size()) / 2) return;
    trail.lines.erase(trail.lines.begin(), trail.lines.begin() + dead);
    trail.dropped += dead;
}

}   // namespace

int TraceEffectData::CompleteLines() const {
    const int channels = Channels();
    if (channels == 0) return 0;
    const std::int64_t complete = *std::min_element(next, next + channels) - first_live;
    return static_cast<int>(std::clamp<std::int64_t>(complete, 0, std::numeric_limits<int>::max()));
}

TraceEffectSet::TraceEffectSet(int blocks) : trail_of_block_(static_cast<std::size_t>(blocks), -1) {
    SetName("TraceEffectSet");
    trails_.reserve(kFirstTrails);
}

TraceEffectData& TraceEffectSet::TrailOf(int block, const char* texture, const RibbonSettings& settings) {
    std::int32_t& index = trail_of_block_[static_cast<std::size_t>(block)];
    if (index >= 0) return *trails_[static_cast<std::size_t>(index)];
    const auto free = std::ranges::find_if(trails_, [](const auto& trail) { return trail->block < 0; });
    index = static_cast<std::int32_t>(free - trails_.begin());
    if (free == trails_.end()) {
        trails_.push_back(std::make_unique<TraceEffectData>());
        trails_.back()->lines.reserve(kFirstLines);
    }
    TraceEffectData& trail = *trails_[static_cast<std::size_t>(index)];
    trail.texture_name = texture;
    trail.settings = settings;
    trail.block = block;
    ++count_;
    return trail;
}

void TraceEffectSet::Remove(TraceEffectData& trail) {
    trail_of_block_[static_cast<std::size_t>(trail.block)] = -1;
    trail.lines.clear();
    trail.dropped = trail.first_live = 0;
    std::fill_n(trail.next, kTraceChannels, 0);
    trail.texture = nullptr;
    trail.block = -1;
    --count_;
}

int TraceEffectSet::AddTracePoint(const char* texture, int block, int channel, const D3DXVECTOR3& position, float life,
                                  float reference_life, const RibbonSettings& settings) {
    if (block < 0 || static_cast<std::size_t>(block) >= trail_of_block_.size()) {
        Warning("Too many Trace Effect blocks: %i", block);
        return 0;
    }
    if (channel < 0 || channel >= kTraceChannels) {
        Warning("Too many Trace Effect channels: %i", channel);
        return 0;
    }
    TraceEffectData& trail = TrailOf(block, texture, settings);
    TraceEffectLineData* line = TakeLine(trail, channel);
    if (!line) return channel + 1;
    const bool first = line == trail.lines.data();
    line->life = first ? life : std::max(life, line[-1].life);
    line->written[channel] = true;
    line->points[channel] = position;
    line->reference_life = reference_life;
    line->channels = std::max(line->channels, channel + 1);
    return line->channels;
}

void TraceEffectSet::UpdateTraces(float elapsed_seconds) {
    ForEach([&](TraceEffectData& trail) {
        const bool over = Age(trail, elapsed_seconds);
        ForgetDeadLines(trail);
        if (over) Remove(trail);
    });
}

double TraceEffectSet::Strength() const {
    double sum = 0;
    ForEach([&](const TraceEffectData& trail) {
        const int lines = trail.Channels() > 1 ? trail.CompleteLines() : 0;
        for (std::int64_t number = trail.first_live; number < trail.first_live + lines; ++number) {
            const TraceEffectLineData& line = trail.Line(number);
            if (line.reference_life > 0) sum += std::clamp(double{line.life} / line.reference_life, 0.0, 1.0);
        }
    });
    return sum;
}

void TraceEffectSet::ClearTraces() {
    ForEach([&](TraceEffectData& trail) { Remove(trail); });
}

}   // namespace sparkrig
