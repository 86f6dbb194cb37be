// Built as motion_lanes.cpp is.
#include "effects/block_update.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "effects/beyond_cache.h"
#include "effects/four.h"
#include "effects/motion.h"
#include "effects/particle_appearance.h"
#include "effects/vector_code.h"

namespace sparkrig {
namespace {

constexpr float kSpecialRadius = 1.5f;                                  // of the length of the scale
constexpr float kEverywhere = std::numeric_limits<float>::infinity();   // a mesh is tested by its scene's bounds
constexpr float kUnborn = -1;

/// The ages of some instances of a block, and what they ask for.
struct Ages {
    alignas(64) double t[kLanes];
    double youngest, oldest;
};

/// Four minima and maxima side by side: one after the other each would wait for the one before, and the registers hold
/// no more.
void FindAgeSpan(int count, Ages& ages) {
    constexpr int kSideBySide = 4;
    constexpr double kNever = std::numeric_limits<double>::infinity();
    double low[kSideBySide] = {kNever, kNever, kNever, kNever},
           high[kSideBySide] = {-kNever, -kNever, -kNever, -kNever};
    std::fill_n(ages.t + count, std::min(kSideBySide, kLanes - count), ages.t[0]);
    for (int i = 0; i < count; i += kSideBySide) {
        for (int k = 0; k < kSideBySide; ++k) {
            low[k] = ages.t[i + k] < low[k] ? ages.t[i + k] : low[k];
            high[k] = ages.t[i + k] > high[k] ? ages.t[i + k] : high[k];
        }
    }
    ages.youngest = *std::min_element(low, low + kSideBySide);
    ages.oldest = *std::max_element(high, high + kSideBySide);
}

/// The clocks' ages, and whether a life, life(i) of each, is over.
template <class Life>
bool Advance(const SubEffect& sub, InstanceBlock& block, int count, float step, Life life, Ages& ages) {
    const double birth = sub.birth_time, birth_per_count = sub.birth_count_offset;
    std::int64_t deaths = 0;
    for (int i = 0; i < count; ++i) {
        const double delay = birth + birth_per_count * block.count_value[i];
        const double time = block.time[i] + step, end = life(i) + delay;
        block.time[i] = time;
        ages.t[i] = time - delay;
        deaths |= ((life(i) != 0) & (end < time)) ? 1 : 0;
    }
    return deaths != 0;
}

bool AdvanceClocks(const SubEffect& sub, InstanceBlock& block, int count, float step, Ages& ages) {
    if (!sub.life_count.IsEmpty())
        return Advance(
            sub, block, count, step, [&](int i) { return static_cast<double>(block.life[i]); }, ages);
    const double life = static_cast<float>(sub.life);
    return Advance(
        sub, block, count, step, [life](int) { return life; }, ages);
}

MotionLanes LanesOf(const InstanceBlock& block, int first, int count, const Ages& ages) {
    MotionLanes in;
    in.count = count;
    in.t = ages.t;
    in.c = block.count_value + first;
    for (int i = 0; i < 4; ++i) in.r[i] = block.random[i] + first;
    return in;
}

/// Whether some instance may be fading in or out.
bool Fades(const SubEffect& sub, const Ages& ages) {
    if (sub.fade_in > 0 && ages.youngest < sub.fade_in) return true;
    if (!(sub.fade_out > 0)) return false;
    const auto life = static_cast<float>(sub.life);
    return !sub.life_count.IsEmpty() || (life > 0 && ages.oldest > life - sub.fade_out);
}

float BoundingRadius(float x, float y, float z) { return kSpecialRadius * std::sqrt(x * x + y * y + z * z); }

void EvaluateSizes(const SubEffect& sub, const MotionLanes& in, float (&sizes)[kLanes]) {
    if (sub.kind == SubEffectKind::Mesh) return void(std::fill_n(sizes, in.count, kEverywhere));
    VectorLanes scale;
    const bool particle = sub.kind == SubEffectKind::Particle;
    EvalScale(sub, in, particle ? Components::X : Components::All, scale);
    if (particle) return void(std::copy_n(scale.x, in.count, sizes));
    for (int i = 0; i < in.count; ++i) sizes[i] = BoundingRadius(scale.x[i], scale.y[i], scale.z[i]);
}

/// Where nothing changes them, all have the colour of the first.
void EvaluateColours(const SubEffect& sub, MotionLanes in, const Ages& ages, const float* lives,
                     std::uint32_t (&colours)[kLanes]) {
    const int count = in.count;
    const bool fades = Fades(sub, ages);
    if (!fades && sub.colour_stages.GetCount() + sub.alpha_stages.GetCount() == 0) in.count = std::min(count, 1);
    alignas(64) float alpha[kLanes];
    VectorLanes rgb;
    EvalAlpha(sub, in, alpha);
    if (fades) ApplyFade(sub, in, lives, alpha);
    EvalColor(sub, in, rgb);
    PackParticleColours(rgb, alpha, in.count, sub.blend_mode, colours);
    if (in.count < count) std::fill_n(colours, count, colours[0]);
}

/// Back to where an instance that is not born was started.
void WriteUnborn(const InstanceBlock& block, int first, int count, const Ages& ages, DrawRecord* records) {
    for (int i = 0; i < count; ++i) {
        if (!(ages.t[i] < 0)) continue;
        DrawRecord& record = records[first + i];
        record.position = {block.base.x[first + i], block.base.y[first + i], block.base.z[first + i]};
        record.colour = 0;
        record.age = kUnborn;
    }
}

/// What records hold, as it has been computed: in columns.
struct Columns {
    const float *base[3], *offset[3];
    const std::uint32_t* colour;
    const float *angle, *size, *age;
    const std::int32_t* id;
};

DrawRecord RecordAt(const Columns& in, int i) {
    const D3DXVECTOR3 position(in.base[0][i] + in.offset[0][i], in.base[1][i] + in.offset[1][i],
                               in.base[2][i] + in.offset[2][i]);
    return {position, in.colour[i], in.angle[i], in.size[i], in.age[i], in.id[i]};
}

template <void (*kStore)(Four, void*)>
void WriteRows(const Columns& in, int count, DrawRecord* records) {
    int i = 0;
    for (; i + 4 <= count; i += 4) {
        const auto place = [&](int axis) { return FourAt(in.base[axis] + i) + FourAt(in.offset[axis] + i); };
        Four front[4] = {place(0), place(1), place(2), FourAt(in.colour + i)};
        Four back[4] = {FourAt(in.angle + i), FourAt(in.size + i), FourAt(in.age + i), FourAt(in.id + i)};
        Transpose(front);
        Transpose(back);
        for (int row = 0; row < 4; ++row) {
            char* const record = reinterpret_cast<char*>(records + i + row);
            kStore(front[row], record);
            kStore(back[row], record + sizeof(Four));
        }
    }
    for (; i < count; ++i) records[i] = RecordAt(in, i);
}

SPARKRIG_VECTOR_CODE void Write(const SubEffect& sub, const InstanceBlock& block, int first, int count,
                                const Ages& ages, Storing storing, DrawRecord* records) {
    const MotionLanes in = LanesOf(block, first, count, ages);
    VectorLanes offset;
    alignas(64) float sizes[kLanes], angles[kLanes], seconds[kLanes];
    alignas(64) std::uint32_t colours[kLanes];
    EvalPosition(sub, in, offset);
    EvaluateSizes(sub, in, sizes);
    EvalRotationAngle(sub, in, angles);
    EvaluateColours(sub, in, ages, block.life + first, colours);
    for (int i = 0; i < count; ++i) seconds[i] = static_cast<float>(ages.t[i]);
    const Columns columns = {{block.base.x + first, block.base.y + first, block.base.z + first},
                             {offset.x, offset.y, offset.z},
                             colours,
                             angles,
                             sizes,
                             seconds,
                             block.id + first};
    if (storing == Storing::BeyondCache)
        WriteRows<StoreBeyondCache>(columns, count, records + first);
    else
        WriteRows<Store>(columns, count, records + first);
    if (ages.youngest < 0) WriteUnborn(block, first, count, ages, records);
}

}   // namespace

SPARKRIG_VECTOR_CODE bool UpdateBlock(const SubEffect& sub, InstanceBlock& block, int count, float step, bool evaluate,
                                      Storing storing, DrawRecord* records) {
    Ages ages;
    const bool deaths = AdvanceClocks(sub, block, count, step, ages);
    if (!evaluate) return deaths;
    FindAgeSpan(count, ages);
    Write(sub, block, 0, count, ages, storing, records);
    return deaths;
}

void WriteRecords(const SubEffect& sub, const InstanceBlock& block, int first, int end, DrawRecord* records) {
    Ages ages;
    const double birth = sub.birth_time, birth_per_count = sub.birth_count_offset;
    for (int i = first; i < end; ++i)
        ages.t[i - first] = block.time[i] - (birth + birth_per_count * block.count_value[i]);
    FindAgeSpan(end - first, ages);
    Write(sub, block, first, end - first, ages, Storing::InCache, records);
}

float RecordSize(SubEffectKind kind, const D3DXVECTOR3& scale) {
    switch (kind) {
        case SubEffectKind::Particle: return scale.x;
        case SubEffectKind::Special: return BoundingRadius(scale.x, scale.y, scale.z);
        case SubEffectKind::Mesh: break;
    }
    return kEverywhere;
}

bool IsDead(const SubEffect& sub, const InstanceBlock& block, int place) {
    const double life = block.life[place];
    return life != 0 && life + BirthDelay(sub, block.count_value[place]) < block.time[place];
}

}   // namespace sparkrig
