// Built as motion_lanes.cpp is.
#include "effects/special_shapes.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <iterator>
#include <numbers>

#include "base/numeric.h"
#include "base/random.h"
#include "effects/exponential.h"
#include "effects/four.h"
#include "effects/sine.h"
#include "effects/vector_code.h"

namespace sparkrig {
namespace {

constexpr double kTurn = 6.2832;   // not the exact value, like the next: authored shapes are tuned to these
constexpr float kTurnF = 6.2832f, kThirdTurn = 2.0944f;

/// Loops run over eight points at once, so that none is left over: behind the last there is room.
constexpr int kTogether = 8, kRoom = kSpecialPoints + kTogether;
constexpr int Whole(int count) { return (count + kTogether - 1) & -kTogether; }

/// The points, one array for each number. Positions are along the shape's axes, from its own position.
struct Points {
    alignas(64) float forward[kRoom], up[kRoom], side[kRoom];
    alignas(64) std::uint32_t colour[kRoom];
};

/// For each point how far it has come, 0 to 1, and where its random numbers begin.
struct Progress {
    alignas(64) float f[kRoom];
    alignas(64) std::uint32_t k[kRoom];
};

struct Axes {
    D3DXVECTOR3 forward, up, side;
};

// ---- Progress

/// Points that start afresh again and again: period = spread x T[i] + least, and T[i + 1] periods have gone at age 0.
/// k counts modulo kSpecialPoints.
void FindCycles(const RandomTable& table, int first, int whole, double spread, double least, double age,
                Progress& progress) {
    constexpr double kLowBits = 0x1.8p+52;   // the low bits of a whole number plus this are the number's
    for (int i = 0; i < whole; ++i) {
        const double periods = table.values[i + 1] + age / (spread * table.values[i] + least);
        const double cycle = std::trunc(periods);
        const auto f = static_cast<float>(periods - cycle);
        progress.f[first + i] = f > 0 ? f : 0;
        progress.k[first + i] = static_cast<std::uint32_t>(std::bit_cast<std::uint64_t>(cycle + kLowBits));
    }
}

/// From 0 to 1 along each of some lines of points; a single one is at 0.
void FindLines(int lines, int each, Progress& progress) {
    const float step = each > 1 ? 1 / static_cast<float>(each - 1) : 0.0f;
    for (float* f = progress.f; lines > 0; --lines, f += each)
        for (int i = 0; i < Whole(each); ++i) f[i] = static_cast<float>(i) * step;
}

/// The angle that a turn a second has come to, within (-2 pi, 2 pi).
float Phase(double age) {
    constexpr double kCircle = 2 * std::numbers::pi, kLargest = 1e15;   // of an angle that has a phase
    const double angle = kTurn * age;
    return std::abs(angle) < kLargest ? static_cast<float>(angle - kCircle * std::trunc(angle * (1 / kCircle))) : 0;
}

/// Once a second.
float Burst(double age) {
    const double f = age - std::trunc(age);
    return static_cast<float>(f >= 0 ? f : 0);
}

// ---- Random numbers

/// Of each point the numbers from kFirst on behind its own place in the table: a row for each number, so that the loops
/// over points read what lies side by side.
template <int kFirst, int kNumbers>
struct RandomRows {
    static_assert(kNumbers % 4 == 0 && kFirst + kNumbers <= RandomTable::kMost);
    alignas(64) float rows[kNumbers][kRoom];

    const float* operator[](int number) const { return rows[number - kFirst]; }

    /// The numbers of point i begin at index k[i] + i + offset. `whole` is a multiple of kTogether.
    void Fetch(const RandomTable& table, const std::uint32_t* k, int offset, int whole) {
        alignas(64) std::uint32_t place[kRoom];
        for (int i = 0; i < whole; ++i)
            place[i] = (k[i] + static_cast<std::uint32_t>(i + offset)) & (kSpecialPoints - 1);
        for (int i = 0; i < whole; i += kTogether) {
            const float* numbers[kTogether];
            for (int point = 0; point < kTogether; ++point)
                numbers[point] = table.values + place[i + point] + kFirst;   // NOLINT(clang-analyzer-core.*)
            for (int n = 0; n < kNumbers; n += 4) {
                Eight eight[4];
                for (int point = 0; point < 4; ++point) Load(numbers[point] + n, numbers[point + 4] + n, eight[point]);
                Transpose(eight);
                for (int row = 0; row < 4; ++row) Store(eight[row], rows[n + row] + i, rows[n + row] + i + 4);
            }
        }
    }
};

// ---- Colours

std::uint32_t Channel(std::uint32_t colour, int shift) { return colour >> shift & 255u; }
constexpr int kRed = 16, kGreen = 8, kBlue = 0, kAlpha = 24;

/// Of a value in [0, 256).
std::uint32_t Byte(float value) { return static_cast<std::uint32_t>(static_cast<std::int32_t>(value)); }

/// From the second colour towards the first, and to black: w of the second, all times `fade`.
std::uint32_t Mixed(const SpecialShape& shape, float w, float fade) {
    const auto channel = [&](int shift) {
        const auto first = static_cast<float>(Channel(shape.first, shift));
        const auto second = static_cast<float>(Channel(shape.second, shift));
        return Byte((first + (second - first) * w) * fade) << shift;
    };
    return (shape.first & 0xFF000000u) | channel(kRed) | channel(kGreen) | channel(kBlue);
}

float Eighth(float f) {
    const float a = (1 - f) * (1 - f), b = a * a;
    return b * b;
}

/// fade(f) from 1 at the start to 0 at the end.
template <class Fade>
void ColourRamp(const SpecialShape& shape, const Progress& progress, int count, Fade fade, Points& points) {
    for (int i = 0; i < Whole(count); ++i) {
        const float f = progress.f[i];
        points.colour[i] = Mixed(shape, Eighth(f), fade(f));
    }
}
constexpr auto kLinearFade = [](float f) { return 1 - f; };
constexpr auto kSquareFade = [](float f) { return 1 - f * f; };

// ---- Flame and smoke

/// Both rise alike; a flame's points draw together and spread as they rise.
template <bool kFlame>
inline int Rising(const SpecialShape& shape, const RandomTable& table, int count, Points& points) {
    const float height = shape.scale.z, spread = shape.scale.x;
    const int whole = Whole(count);
    Progress progress;
    FindCycles(table, 0, whole, 0.2, 0.5, 0.6 * shape.age, progress);
    RandomRows<2, 12> T;
    T.Fetch(table, progress.k, shape.seed, whole);
    for (int i = 0; i < whole; ++i) {
        const float f = progress.f[i];
        const float sway_1 = ShortSine(kTurnF * f * (3 * T[2][i] + 1) + kTurnF * T[4][i]);
        const float sway_2 = ShortSine(kTurnF * f * (3 * T[3][i] + 1) + kTurnF * T[5][i]);
        const float wobble_1 = 1.5f * (2 * T[8][i] - 1) + 0.3f * T[12][i] * sway_1;
        const float wobble_2 = 1.5f * (2 * T[9][i] - 1) + 0.3f * T[13][i] * sway_2;
        const float radius = (kFlame ? std::sqrt(f) : 0.2f) * (0.2f * T[7][i] + 0.4f) * spread;
        points.forward[i] = radius * wobble_1 * (kFlame ? Exponential(-(2 + 2.5f * T[10][i]) * f) : 1);
        points.side[i] = radius * wobble_2 * (kFlame ? Exponential(-(2 + 2.5f * T[11][i]) * f) : 1);
        points.up[i] = (0.4f * T[6][i] + 0.5f) * height * f;
    }
    const auto alpha = static_cast<float>(Channel(shape.first, kAlpha));
    for (int i = 0; i < whole; ++i) {
        const float f = progress.f[i];
        const auto a = static_cast<std::uint32_t>(static_cast<std::int32_t>(65536 * f));
        const auto b = static_cast<std::uint32_t>(static_cast<std::int32_t>(65536 * (1 - f)));   // a + b <= 65536
        const auto channel = [&](int shift) {
            return ((Channel(shape.first, shift) * b >> 16) + (Channel(shape.second, shift) * a >> 16)) << shift;
        };
        const float shown =
            kFlame ? (1 - Exponential(-20 * f)) * (1 - f) : (1 - Exponential(-5 * f)) * (1 - f) * (1 / 0.6f);
        points.colour[i] = Byte(alpha * shown) << kAlpha | channel(kRed) | channel(kGreen) | channel(kBlue);
    }
    return count;
}

SPARKRIG_VECTOR_CODE int Flame(const SpecialShape& shape, const RandomTable& table, int count, Points& points) {
    return Rising<true>(shape, table, count, points);
}
SPARKRIG_VECTOR_CODE int Smoke(const SpecialShape& shape, const RandomTable& table, int count, Points& points) {
    return Rising<false>(shape, table, count, points);
}

// ---- Helix, snake

SPARKRIG_VECTOR_CODE int Helix(const SpecialShape& shape, const RandomTable& table, int count, Points& points) {
    const float length = shape.scale.z, radius = shape.scale.x;
    Progress progress;
    FindCycles(table, 0, Whole(count), 0.2, 0.5, shape.age, progress);
    const float phase = Phase(shape.age);
    for (int i = 0; i < Whole(count); ++i) {
        const float f = progress.f[i], r = (1 - Exponential(-f)) * radius, angle = f * kTurnF + phase;
        points.forward[i] = ShortSine(angle) * r;
        points.side[i] = ShortCosine(angle) * r;
        points.up[i] = f * length;
    }
    ColourRamp(shape, progress, count, kLinearFade, points);
    return count;
}

/// A line backwards along the forward axis that swings once over its length.
void Swinging(const SpecialShape& shape, const Progress& progress, int first, int count, float length, float amplitude,
              float* swing, Points& points) {
    const float phase = Phase(shape.age);
    for (int i = first; i < first + Whole(count); ++i) {
        swing[i] = amplitude * ShortSine(kTurnF * progress.f[i] + phase);
        points.forward[i] = -progress.f[i] * length;
    }
}

SPARKRIG_VECTOR_CODE int Snake(const SpecialShape& shape, const RandomTable&, int count, Points& points) {
    Progress progress;
    FindLines(1, count, progress);
    Swinging(shape, progress, 0, count, shape.scale.z, shape.scale.x, points.side, points);
    std::fill_n(points.up, Whole(count), 0.0f);
    ColourRamp(shape, progress, count, kSquareFade, points);
    return count;
}

// ---- Wave, jelly

/// `rows` lines of `each` points side by side.
void Sheet(const SpecialShape& shape, int rows, int each, Progress& progress, Points& points) {
    const int middle = rows / 2;
    const float gap = shape.scale.z / static_cast<float>(rows);
    for (int row = 0; row < rows; ++row)
        std::fill_n(points.side + row * each, Whole(each), static_cast<float>(row - middle) * gap);
    FindLines(rows, each, progress);
    Swinging(shape, progress, 0, rows * each, shape.scale.x, shape.scale.y, points.up, points);
}

SPARKRIG_VECTOR_CODE int Wave(const SpecialShape& shape, const RandomTable&, int count, Points& points) {
    const float length = shape.scale.x, width = shape.scale.z;
    if (!(length > 0) || !(width > 0)) return 0;
    const int rows = TruncateToInt(std::sqrt(static_cast<double>(count) * width / length));
    if (rows < 1 || rows > count) return 0;
    const int each = count / rows;
    Progress progress;
    Sheet(shape, rows, each, progress, points);
    ColourRamp(shape, progress, rows * each, kSquareFade, points);
    return rows * each;
}

SPARKRIG_VECTOR_CODE int Jelly(const SpecialShape& shape, const RandomTable& table, int count, Points& points) {
    const float length = shape.scale.x, width = shape.scale.z;
    const int sheet = count / 5, drops = Whole(count - sheet);
    Progress progress;
    Sheet(shape, 1, sheet, progress, points);
    FindCycles(table, sheet, drops, 0.1, 0.3, shape.age, progress);
    RandomRows<2, 4> T;
    T.Fetch(table, progress.k + sheet, 0, drops);
    for (int drop = 0; drop < drops; ++drop) {
        const int i = sheet + drop;
        const float f = progress.f[i], spread = 1 - T[3][drop];
        const float angle = kTurnF * T[2][drop];
        const float radius = width * f * (1 - spread * spread);
        points.up[i] = radius * ShortSine(angle);
        points.side[i] = radius * ShortCosine(angle);
        points.forward[i] = -length / 3.0f * f * f;
    }
    ColourRamp(shape, progress, count, kSquareFade, points);
    return count;
}

// ---- Firework, splash

SPARKRIG_VECTOR_CODE int Firework(const SpecialShape& shape, const RandomTable& table, int count, Points& points) {
    const float radius = shape.scale.x, height = shape.scale.z;
    const float f = Burst(shape.age), expansion = 1 - Exponential(-f), rest = (1 - f) * (1 - f);
    std::fill_n(points.colour, Whole(count), Mixed(shape, 1 - rest * rest, 1 - f * f));
    const float* const first = table.At(static_cast<int>(*table.At(shape.seed) * kSpecialPoints));
    for (int i = 0; i < Whole(count); ++i) {
        const float* T = first + i;
        const float angle = kTurnF * T[1], r = T[2] * expansion;
        points.side[i] = radius * r * ShortCosine(angle);
        points.up[i] = radius * r * ShortSine(angle);
        points.forward[i] = height * r * ShortCosine(kTurnF * 0.5f * T[3]);
    }
    return count;
}

SPARKRIG_VECTOR_CODE int Splash(const SpecialShape& shape, const RandomTable& table, int count, Points& points) {
    constexpr int kSprays = 4;
    const int each = count / kSprays;
    const float size = shape.scale.x, f = Burst(shape.age), fall = 0.25f * f * f;
    const auto alpha = static_cast<float>(Channel(shape.first, kAlpha));
    std::fill_n(points.colour, Whole(kSprays * each), (shape.first & 0xFFFFFFu) | Byte(alpha * (1 - f * f)) << kAlpha);
    for (int spray = 0; spray < kSprays; ++spray) {
        const float* S = table.At(4 * shape.seed + 1 + spray);   // of the whole spray
        const float azimuth = kTurnF * S[0], elevation = kThirdTurn * S[1], scale = S[2];
        const float* const first = table.At(4 * each * shape.seed + 4 + spray * each);
        for (int j = 0; j < Whole(each); ++j) {
            const float* T = first + j;
            const float radius = (0.5f * T[2] + 0.75f) * scale;
            const float across = azimuth + 0.5f * (2 * T[0] - 1), upward = elevation + 0.5f * (2 * T[1] - 1);
            const int i = spray * each + j;
            points.forward[i] = size * f * radius * ShortCosine(across);
            points.side[i] = size * f * radius * ShortSine(across);
            points.up[i] = size * (f * radius * ShortCosine(upward) - fall);
        }
    }
    return kSprays * each;
}

// ---- All shapes

enum class Side { UpTimesForward, ForwardTimesUp, Helix };

struct ShapeRow {
    int (*write)(const SpecialShape&, const RandomTable&, int count, Points&);
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

Axes AxesOf(const SpecialShape& shape, const ShapeRow& row) {
    Axes axes = {shape.forward, shape.up, {}};
    if (row.unit_forward) {
        const auto& [x, y, z] = shape.forward;
        const float length = std::sqrt(x * x + y * y + z * z);
        if (length > 0) axes.forward = axes.forward * (1 / length);
    }
    switch (row.side) {
        case Side::UpTimesForward: axes.side = D3DXVec3Cross(axes.up, axes.forward); break;
        case Side::ForwardTimesUp: axes.side = D3DXVec3Cross(axes.forward, axes.up); break;
        case Side::Helix: {   // two axes across the length, the first of them level
            const float level = axes.up.x * axes.up.x + axes.up.y * axes.up.y, across = std::sqrt(level);
            axes.forward = level > 0 ? D3DXVECTOR3(axes.up.y / across, -axes.up.x / across, 0) : D3DXVECTOR3(1, 0, 0);
            axes.side = D3DXVec3Cross(axes.forward, axes.up);
        }
    }
    return axes;
}

/// Eight by eight: what is written behind the last point means nothing.
void WritePoints(const D3DXVECTOR3& p, const Axes& axes, const Points& points, int count, KRN_PointVertex* out) {
    static_assert(sizeof(KRN_PointVertex) == sizeof(Four) && kSpecialPoints % kTogether == 0);
    const auto& [d, u, n] = axes;
    for (int i = 0; i < count; i += kTogether) {
        Eight along, rise, aside, colour;
        Load(points.forward + i, points.forward + i + 4, along);
        Load(points.up + i, points.up + i + 4, rise);
        Load(points.side + i, points.side + i + 4, aside);
        Load(points.colour + i, points.colour + i + 4, colour);
        Eight eight[4] = {p.x + along * d.x + aside * n.x + rise * u.x, p.y + along * d.y + aside * n.y + rise * u.y,
                          p.z + along * d.z + aside * n.z + rise * u.z, colour};
        Transpose(eight);
        for (int point = 0; point < 4; ++point) Store(eight[point], out + i + point, out + i + point + 4);
    }
}

}   // namespace

void RandomTable::Draw() {
    for (int i = 0; i < kSpecialPoints; ++i) values[i] = static_cast<float>(Random01());
    for (int i = kSpecialPoints; i < std::ssize(values); ++i) values[i] = values[i - kSpecialPoints];
}

SPARKRIG_VECTOR_CODE int WriteShape(const SpecialShape& shape, const RandomTable& table, KRN_PointVertex* out) {
    const ShapeRow* row = RowOf(shape.type);
    const int count = std::min(shape.count, kSpecialPoints);
    if (!row || count <= 0 || !std::isfinite(shape.age)) return 0;
    Points points;
    const int written = row->write(shape, table, count, points);
    WritePoints(shape.position, AxesOf(shape, *row), points, written, out);
    return written;
}

float ShapePointSize(SpecialType type, const D3DXVECTOR3& scale, float point_size) {
    const ShapeRow* row = RowOf(type);
    return row ? static_cast<float>(TruncateToInt(scale.*row->size * row->size_factor * point_size)) : 0;
}

}   // namespace sparkrig
