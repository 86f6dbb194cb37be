// Loops run over eight points at once, so that none is left over. They are built as motion_lanes.cpp is, but
// multiplications and additions are fused where the processor can: points may differ in their last bits from one
// processor to the next.
#include "effects/special_shapes.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <iterator>

#include "base/numeric.h"
#include "effects/eight.h"
#include "effects/vector_code.h"

namespace sparkrig {
namespace {

/// The axes of a shape, as long as the shape is large along them.
struct Frame {
    D3DXVECTOR3 origin, forward, up, side;

    Frame Stretched(float along, float rise, float aside) const {
        return {origin, forward * along, up * rise, side * aside};
    }
};

/// Places along the axes of a frame.
struct EightPoints {
    Eight forward, up, side;
    EightWords colour;
};

/// Points `first` to `first` + 7, as far as there is room; `first` is below kSpecialPoints. What is written behind the
/// last one of a shape means nothing.
inline void Write(const EightPoints& eight, const Frame& frame, int first, KRN_PointVertex* points) {
    static_assert(sizeof(KRN_PointVertex) == sizeof(Four));
    const auto along = [&](float D3DXVECTOR3::*axis) {
        return frame.origin.*axis + eight.up * frame.up.*axis + eight.forward * frame.forward.*axis +
               eight.side * frame.side.*axis;
    };
    const FourEights pairs =
        Transposed(along(&D3DXVECTOR3::x), along(&D3DXVECTOR3::y), along(&D3DXVECTOR3::z), FromBits(eight.colour));
    const auto store = [&](KRN_PointVertex* to) {
        Store(pairs.a, to);
        Store(pairs.b, to + 2);
        Store(pairs.c, to + 4);
        Store(pairs.d, to + 6);
    };
    if (first <= kSpecialPoints - kTogether) return store(points + first);
    KRN_PointVertex last[kTogether];
    store(last);
    std::copy_n(last, kSpecialPoints - first, points + first);
}

// ---- Numbers of eight points

constexpr EightWords kPoints = {PointOfLane(0), PointOfLane(1), PointOfLane(2), PointOfLane(3),
                                PointOfLane(4), PointOfLane(5), PointOfLane(6), PointOfLane(7)};

/// That lie point by point.
inline Eight OfPoints(const float* numbers) {
    const Eight eight = EightAt(numbers);
    return __builtin_shufflevector(eight, eight, PointOfLane(0), PointOfLane(1), PointOfLane(2), PointOfLane(3),
                                   PointOfLane(4), PointOfLane(5), PointOfLane(6), PointOfLane(7));
}

/// For each lane how far its point has come in its cycle, in [0, 1), and where its random numbers begin.
struct Progress {
    alignas(64) float f[kSpecialPoints];
    alignas(64) std::uint32_t place[kSpecialPoints];
};

/// Each point's numbers begin as many places behind its own as the cycles that have gone, and `offset` behind that.
inline void FindProgress(const Cycles& cycles, int count, double age, int offset, Progress& progress) {
    for (int i = 0; i < count; i += kTogether) {
        const EightWords fixed =
            LowWords(FourDoublesAt(cycles.start + i) + age * FourDoublesAt(cycles.per_second + i),
                     FourDoublesAt(cycles.start + i + 4) + age * FourDoublesAt(cycles.per_second + i + 4));
        const EightWords place = (fixed >> 24) + kPoints + static_cast<std::uint32_t>(i + offset);
        Store(Converted(fixed & 0xFFFFFFu) * 0x1p-24f, progress.f + i);
        Store(FromBits(place & (kSpecialPoints - 1u)), progress.place + i);
    }
}

/// The half turns that a turn a second has come to, within (-2, 2).
float Phase(double age) {
    constexpr double kSlowest = 1e15;   // of what has a phase
    const double turns = age * (0.5 * kTurn / std::numbers::pi);
    return std::abs(turns) < kSlowest ? static_cast<float>(2 * (turns - std::trunc(turns))) : 0;
}

/// Once a second.
float Burst(double age) {
    const double f = age - std::trunc(age);
    return static_cast<float>(f >= 0 ? f : 0);
}

// ---- Colours

constexpr int kRed = 16, kGreen = 8, kBlue = 0, kAlpha = 24;
std::uint32_t Channel(std::uint32_t colour, int shift) { return colour >> shift & 255u; }

/// From the second colour towards the first, and to black. The alpha is that of the first.
class ColourRamp {
  public:
    explicit ColourRamp(const SpecialShape& shape) : alpha_(shape.first & 0xFF000000u) {
        for (int i = 0; i < 3; ++i) {
            first_[i] = static_cast<float>(Channel(shape.first, kShifts[i]));
            change_[i] = static_cast<float>(Channel(shape.second, kShifts[i])) - first_[i];
        }
    }

    /// w of the second colour, all times `fade`.
    EightWords Mixed(Eight w, Eight fade) const {
        const auto channel = [&](int i) { return Truncated((first_[i] + change_[i] * w) * fade) << kShifts[i]; };
        return channel(0) | channel(1) | channel(2) | alpha_;
    }

    EightWords At(Eight f, Eight fade) const {
        const Eight a = 1.0f - f, b = a * a, c = b * b;
        return Mixed(c * c, fade);
    }

  private:
    static constexpr int kShifts[] = {kRed, kGreen, kBlue};
    float first_[3], change_[3];
    std::uint32_t alpha_;
};

// ---- Flame and smoke

/// From the first colour to the second. The alpha comes at a rate of e to the power `rise`, and goes.
class RisingColour {
  public:
    RisingColour(const SpecialShape& shape, float rise, float most)
        : first_(EightWords{} + shape.first),
          second_(EightWords{} + shape.second),
          rise_(rise * std::numbers::log2e_v<float>),
          alpha_(most * static_cast<float>(Channel(shape.first, kAlpha))) {}

    EightWords At(Eight f) const {
        constexpr float kOne = 65536;   // of the shares, in fixed point
        const EightWords share = Truncated(kOne * f), rest = Truncated(kOne - kOne * f);
        const auto channel = [&](int shift) {   // in the upper half of the word
            return ((first_ >> shift & 255u) * rest & 0xFFFF0000u) + ((second_ >> shift & 255u) * share & 0xFFFF0000u);
        };
        const Eight gone = alpha_ - alpha_ * f, alpha = gone - gone * RoughPowerOfTwo(-rise_ * f);
        return Truncated(alpha) << kAlpha | channel(kRed) | channel(kGreen) >> 8 | channel(kBlue) >> 16;
    }

  private:
    EightWords first_, second_;
    float rise_, alpha_;
};

/// Of half the lanes: how far the points are aside, forward and to the side in turn, and pairs that begin with the
/// height.
template <bool kFlame>
inline TwoEights RisenHalf(const float* const (&rises)[kTogether], int half, Eight f) {
    const auto [speed, start] = PairsOfEach(rises, 0, half);
    const auto [drift, sway] = PairsOfEach(rises, 4, half);
    const auto [damping, height] = PairsOfEach(rises, 8, half);
    const Eight aside = drift + sway * RoughSineOfHalfTurns(speed * f + start);
    return {kFlame ? aside * PowerOfTwo(damping * f) : aside, height};
}

/// Both rise alike; a flame's points draw together and spread as they rise.
template <bool kFlame>
inline int Rising(const SpecialShape& shape, const RandomTable& table, int count, const Frame& axes,
                  KRN_PointVertex* points) {
    const float spread = kFlame ? shape.scale.x : 0.2f * shape.scale.x;
    const Frame frame = axes.Stretched(spread, shape.scale.z, spread);
    const RisingColour colour = kFlame ? RisingColour(shape, 20, 1) : RisingColour(shape, 5, 1 / 0.6f);
    Progress progress;
    FindProgress(table.slow, count, 0.6 * shape.age, shape.seed, progress);
    for (int i = 0; i < count; i += kTogether) {
        const float* rises[kTogether];
        for (int lane = 0; lane < kTogether; ++lane) rises[lane] = table.rises[progress.place[i + lane]].numbers;
        const Eight f = EightAt(progress.f + i);
        const auto [f_0, f_1] = Doubled(f);
        const auto [aside_0, height_0] = RisenHalf<kFlame>(rises, 0, f_0);
        const auto [aside_1, height_1] = RisenHalf<kFlame>(rises, 1, f_1);
        const auto [forward, side] = Parted(aside_0, aside_1);
        const Eight radius = kFlame ? SquareRoot(f) : Eight{} + 1.0f;
        Write({forward * radius, Parted(height_0, height_1).a * f, side * radius, colour.At(f)}, frame, i, points);
    }
    return count;
}

SPARKRIG_VECTOR_CODE int Flame(const SpecialShape& shape, const RandomTable& table, int count, const Frame& axes,
                               KRN_PointVertex* points) {
    return Rising<true>(shape, table, count, axes, points);
}
SPARKRIG_VECTOR_CODE int Smoke(const SpecialShape& shape, const RandomTable& table, int count, const Frame& axes,
                               KRN_PointVertex* points) {
    return Rising<false>(shape, table, count, axes, points);
}

// ---- Helix

SPARKRIG_VECTOR_CODE int Helix(const SpecialShape& shape, const RandomTable& table, int count, const Frame& axes,
                               KRN_PointVertex* points) {
    const float radius = shape.scale.x;
    const Frame frame = axes.Stretched(radius, shape.scale.z, radius);
    const ColourRamp colour(shape);
    const float phase = Phase(shape.age);
    Progress progress;
    FindProgress(table.slow, count, shape.age, 0, progress);
    for (int i = 0; i < count; i += kTogether) {
        const Eight f = EightAt(progress.f + i), angle = f * kHalfTurns + phase;
        const Eight r = 1.0f - PowerOfTwo(-std::numbers::log2e_v<float> * f);
        Write({SineOfHalfTurns(angle) * r, f, CosineOfHalfTurns(angle) * r, colour.At(f, 1.0f - f)}, frame, i, points);
    }
    return count;
}

// ---- Snake, wave, jelly

/// Rows of `each` points, one side axis apart; the middle one begins at the origin. All go along the forward axis and
/// swing once over its length along the up axis. A single point of a row is at its beginning.
inline void WriteRows(const SpecialShape& shape, const Frame& frame, int rows, int each, KRN_PointVertex* points) {
    const ColourRamp colour(shape);
    const float step = each > 1 ? 1 / static_cast<float>(each - 1) : 0.0f, phase = Phase(shape.age);
    const int middle = rows / 2;
    for (int i = (each - 1) & -kTogether; i >= 0; i -= kTogether) {   // backwards: behind a row the next one begins
        const Eight f = Converted(kPoints + static_cast<std::uint32_t>(i)) * step;
        EightPoints swung = {f, SineOfHalfTurns(kHalfTurns * f + phase), {}, colour.At(f, 1.0f - f * f)};
        for (int row = 0; row < rows; ++row) {
            swung.side = Eight{} + static_cast<float>(row - middle);
            Write(swung, frame, row * each + i, points);
        }
    }
}

SPARKRIG_VECTOR_CODE int Snake(const SpecialShape& shape, const RandomTable&, int count, const Frame& axes,
                               KRN_PointVertex* points) {
    const Frame level = {axes.origin, axes.forward, axes.side, axes.up};
    WriteRows(shape, level.Stretched(-shape.scale.z, shape.scale.x, 0), 1, count, points);
    return count;
}

SPARKRIG_VECTOR_CODE int Wave(const SpecialShape& shape, const RandomTable&, int count, const Frame& axes,
                              KRN_PointVertex* points) {
    const float length = shape.scale.x, width = shape.scale.z;
    if (!(length > 0) || !(width > 0)) return 0;
    const int rows = TruncateToInt(std::sqrt(static_cast<double>(count) * width / length));
    if (rows < 1 || rows > count) return 0;
    const Frame frame = axes.Stretched(-length, shape.scale.y, width / static_cast<float>(rows));
    WriteRows(shape, frame, rows, count / rows, points);
    return count / rows * rows;
}

SPARKRIG_VECTOR_CODE int Jelly(const SpecialShape& shape, const RandomTable& table, int count, const Frame& axes,
                               KRN_PointVertex* points) {
    const float length = shape.scale.x, width = shape.scale.z;
    const int sheet = count / 5, drops = count - sheet;
    WriteRows(shape, axes.Stretched(-length, shape.scale.y, 0), 1, sheet, points);
    const Frame frame = axes.Stretched(-length / 3, width, width);
    const ColourRamp colour(shape);
    Progress progress;
    FindProgress(table.fast, drops, shape.age, 0, progress);
    for (int i = 0; i < drops; i += kTogether) {
        const float* places[kTogether];
        for (int lane = 0; lane < kTogether; ++lane)
            places[lane] = table.values + progress.place[i + lane];   // NOLINT(clang-analyzer-core.*)
        const auto [angle, distance, unused_1, unused_2] = FourOfEach(places, 2);
        const Eight f = EightAt(progress.f + i), g = 1.0f - distance, r = f - f * (g * g);
        const Eight turns = kHalfTurns * angle;
        Write({f * f, r * SineOfHalfTurns(turns), r * CosineOfHalfTurns(turns), colour.At(f, 1.0f - f * f)}, frame,
              sheet + i, points);
    }
    return count;
}

// ---- Firework, splash

SPARKRIG_VECTOR_CODE int Firework(const SpecialShape& shape, const RandomTable& table, int count, const Frame& axes,
                                  KRN_PointVertex* points) {
    const float f = Burst(shape.age), expansion = 1 - std::exp(-f), rest = (1 - f) * (1 - f);
    const float radius = shape.scale.x * expansion;
    const Frame frame = axes.Stretched(shape.scale.z * expansion, radius, radius);
    const EightWords colour = ColourRamp(shape).Mixed(Eight{} + (1 - rest * rest), Eight{} + (1 - f * f));
    const float* const T = table.At(static_cast<int>(*table.At(shape.seed) * kSpecialPoints));
    for (int i = 0; i < count; i += kTogether) {
        const Eight angle = kHalfTurns * OfPoints(T + i + 1), r = OfPoints(T + i + 2);
        const Eight along = CosineOfHalfTurns(0.5f * kHalfTurns * OfPoints(T + i + 3));
        Write({r * along, r * SineOfHalfTurns(angle), r * CosineOfHalfTurns(angle), colour}, frame, i, points);
    }
    return count;
}

SPARKRIG_VECTOR_CODE int Splash(const SpecialShape& shape, const RandomTable& table, int count, const Frame& axes,
                                KRN_PointVertex* points) {
    constexpr int kSprays = 4;
    constexpr float kThirdTurn = 2.0944f / std::numbers::pi_v<float>, kAngle = 1 / std::numbers::pi_v<float>;
    const int each = count / kSprays;
    const float size = shape.scale.x, f = Burst(shape.age);
    Frame frame = axes.Stretched(size * f, size * f, size * f);
    frame.origin = frame.origin - axes.up * (size * 0.25f * f * f);
    const auto alpha = static_cast<std::uint32_t>(static_cast<float>(Channel(shape.first, kAlpha)) * (1 - f * f));
    const EightWords colour = EightWords{} + ((shape.first & 0xFFFFFFu) | alpha << kAlpha);
    for (int spray = 0; spray < kSprays; ++spray) {
        const float* S = table.At(4 * shape.seed + 1 + spray);   // of the whole spray
        const float azimuth = kHalfTurns * S[0], elevation = kThirdTurn * S[1], scale = S[2];
        const float* const T = table.At(4 * each * shape.seed + 4 + spray * each);
        for (int i = 0; i < each; i += kTogether) {
            const Eight across = azimuth + kAngle * (OfPoints(T + i) - 0.5f);
            const Eight upward = elevation + kAngle * (OfPoints(T + i + 1) - 0.5f);
            const Eight radius = (0.5f * OfPoints(T + i + 2) + 0.75f) * scale;
            Write({radius * CosineOfHalfTurns(across), radius * CosineOfHalfTurns(upward),
                   radius * SineOfHalfTurns(across), colour},
                  frame, spray * each + i, points);
        }
    }
    return kSprays * each;
}

// ---- All shapes

enum class Side { UpTimesForward, ForwardTimesUp, Helix };

struct ShapeRow {
    int (*write)(const SpecialShape&, const RandomTable&, int count, const Frame&, KRN_PointVertex*);
    SpecialType type;
    Side side;
    float D3DXVECTOR3::*size;   // the scale that the size of a point goes with
    float size_factor;
    bool unit_forward;
};
// clang-format off
constexpr ShapeRow kShapes[] = {
    // points   type                   side axis              size                      unit
    {Flame,    SpecialType::Flame,     Side::ForwardTimesUp,  &D3DXVECTOR3::x, 1,        false},
    {Helix,    SpecialType::Helix,     Side::Helix,           &D3DXVECTOR3::x, 1,        false},
    {Snake,    SpecialType::Snake,     Side::UpTimesForward,  &D3DXVECTOR3::x, 2,        true},
    {Wave,     SpecialType::Wave,      Side::UpTimesForward,  &D3DXVECTOR3::z, 2,        true},
    {Jelly,    SpecialType::Jelly,     Side::UpTimesForward,  &D3DXVECTOR3::z, 2,        true},
    {Firework, SpecialType::Firework,  Side::UpTimesForward,  &D3DXVECTOR3::x, 1 / 5.0f, true},
    {Splash,   SpecialType::Splash,    Side::ForwardTimesUp,  &D3DXVECTOR3::x, 1 / 5.0f, false},
    {Smoke,    SpecialType::Smoke,     Side::ForwardTimesUp,  &D3DXVECTOR3::x, 1,        false},
};
// clang-format on

const ShapeRow* RowOf(SpecialType type) {
    const auto row = std::ranges::find(kShapes, type, &ShapeRow::type);
    return row == std::end(kShapes) ? nullptr : row;
}

D3DXVECTOR3 Unit(const D3DXVECTOR3& v) {
    const float length = std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
    return length > 0 ? v * (1 / length) : v;
}

Frame FrameOf(const SpecialShape& shape, const ShapeRow& row) {
    const D3DXVECTOR3& up = shape.up;
    const D3DXVECTOR3 forward = row.unit_forward ? Unit(shape.forward) : shape.forward;
    switch (row.side) {
        case Side::UpTimesForward: return {shape.position, forward, up, D3DXVec3Cross(up, forward)};
        case Side::ForwardTimesUp: return {shape.position, forward, up, D3DXVec3Cross(forward, up)};
        case Side::Helix: break;   // two axes across the length, the first of them level
    }
    const float across = std::sqrt(up.x * up.x + up.y * up.y);
    const D3DXVECTOR3 level = across > 0 ? D3DXVECTOR3(up.y / across, -up.x / across, 0) : D3DXVECTOR3(1, 0, 0);
    return {shape.position, level, up, D3DXVec3Cross(level, up)};
}

}   // namespace

int WriteShape(const SpecialShape& shape, const RandomTable& table, KRN_PointVertex* points) {
    const ShapeRow* row = RowOf(shape.type);
    const int count = std::min(shape.count, kSpecialPoints);
    if (!row || count <= 0 || !std::isfinite(shape.age)) return 0;
    return row->write(shape, table, count, FrameOf(shape, *row), points);
}

float ShapePointSize(SpecialType type, const D3DXVECTOR3& scale, float point_size) {
    const ShapeRow* row = RowOf(type);
    return row ? static_cast<float>(TruncateToInt(scale.*row->size * row->size_factor * point_size)) : 0;
}

}   // namespace sparkrig
