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
    spare_.reserve(kFirstTrails);
}

TraceEffectData& TraceEffectSet::TrailOf(int block, const char* texture, const RibbonSettings& settings) {
    std::int32_t& index = trail_of_block_[static_cast<std::size_t>(block)];
    if (index >= 0) return At(index);
    std::unique_ptr<TraceEffectData> trail;
    if (spare_.empty()) {
        trail = std::make_unique<TraceEffectData>();
        trail->lines.reserve(kFirstLines);
    } else {
        trail = std::move(spare_.back());
        spare_.pop_back();
    }
    trail->texture_name = texture;
    trail->settings = settings;
    trail->block = block;
    index = Count();
    trails_.push_back(std::move(trail));
    return *trails_.back();
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
    for (std::size_t i = 0; i < trails_.size();) {
        std::unique_ptr<TraceEffectData>& trail = trails_[i];
        const bool over = Age(*trail, elapsed_seconds);
        ForgetDeadLines(*trail);
        if (!over) {
            ++i;
            continue;
        }
        trail_of_block_[static_cast<std::size_t>(trail->block)] = -1;
        trail->lines.clear();
        trail->dropped = trail->first_live = 0;
        std::fill_n(trail->next, kTraceChannels, 0);
        trail->texture = nullptr;
        spare_.push_back(std::move(trail));
        trail = std::move(trails_.back());
        trails_.pop_back();
        if (i < trails_.size()) trail_of_block_[static_cast<std::size_t>(trails_[i]->block)] = static_cast<int>(i);
    }
}

double TraceEffectSet::Strength() const {
    double sum = 0;
    for (const auto& trail : trails_) {
        const int lines = trail->Channels() > 1 ? trail->CompleteLines() : 0;
        for (std::int64_t number = trail->first_live; number < trail->first_live + lines; ++number) {
            const TraceEffectLineData& line = trail->Line(number);
            if (line.reference_life > 0) sum += std::clamp(double{line.life} / line.reference_life, 0.0, 1.0);
        }
    }
    return sum;
}

void TraceEffectSet::ClearTraces() {
    trails_.clear();
    std::fill(trail_of_block_.begin(), trail_of_block_.end(), -1);
}

}   // namespace sparkrig
