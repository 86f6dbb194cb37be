// The trails that moving effects leave behind: lines of up to four points each, laid, aged and forgotten.
#pragma once
#include <memory>
#include <string>
#include <vector>

#include "base/error.h"
#include "platform/d3dx/d3dx_math.h"

namespace sparkrig {

class KRN_Texture;

inline constexpr int kTraceBlocks = 2048;
inline constexpr int kTraceChannels = 4;

/// One cross-section of a ribbon.
struct TraceEffectLineData {
    std::int32_t channels = 0;   // the highest channel written, + 1
    float life = 0;              // seconds that are left
    float reference_life = 0;    // seconds, what `life` is divided by for the fade
    bool written[kTraceChannels] = {};
    D3DXVECTOR3 points[kTraceChannels];
};
static_assert(sizeof(TraceEffectLineData) == 64);

struct RibbonSettings {
    bool stretched = false;   // the texture lies once over the whole trail; else it repeats
    std::int32_t blend_mode = 9;
    bool use_z_buffer = true;
    float texture_scale = 1;
};

/// One trail. Lines are numbered from the first that it ever had; those before `dropped` are no longer there.
struct TraceEffectData {
    std::vector<TraceEffectLineData> lines;
    std::int64_t dropped = 0;
    std::int64_t first_live = 0;              // no line before it is drawn
    std::int64_t next[kTraceChannels] = {};   // the line that each channel writes next
    std::string texture_name;                 // of the catalogue
    KRN_Texture* texture = nullptr;           // borrowed from the catalogue; fetched when the trail is first drawn
    RibbonSettings settings;
    int block = -1;   // of the table of blocks; -1 while it waits to be used again

    std::int64_t LineEnd() const { return dropped + static_cast<std::int64_t>(lines.size()); }
    const TraceEffectLineData& Line(std::int64_t number) const {
        return lines[static_cast<std::size_t>(number - dropped)];
    }
    /// Channels of the first live line, and lines from there on that all of them have written.
    int Channels() const { return first_live < LineEnd() ? Line(first_live).channels : 0; }
    int CompleteLines() const;
};

class TraceEffectSet : public ErrorClass {
  public:
    explicit TraceEffectSet(int blocks);

    /// Adds a point to the trail of a block, which the first point makes. The channels of its line; 0 when the point is
    /// refused with a warning, since there is no such block or channel.
    int AddTracePoint(const char* texture, int block, int channel, const D3DXVECTOR3& position, float life,
                      float reference_life, const RibbonSettings& settings);
    void UpdateTraces(float elapsed_seconds);
    void ClearTraces();

    int Count() const { return count_; }
    /// The alphas of the complete lines of all trails, without the fade of their beginnings.
    double Strength() const;

    /// In the order of drawing: a new trail takes the lowest place that is free, the others stay in theirs.
    template <class Use>
    void ForEach(Use use) const {
        for (const auto& trail : trails_)
            if (trail->block >= 0) use(*trail);
    }

  private:
    TraceEffectData& TrailOf(int block, const char* texture, const RibbonSettings& settings);
    void Remove(TraceEffectData& trail);

    std::vector<std::unique_ptr<TraceEffectData>> trails_;   // and those that ended, whose memory others take
    int count_ = 0;
    std::vector<std::int32_t> trail_of_block_;   // -1 for none
};

}   // namespace sparkrig
