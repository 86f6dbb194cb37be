// The shapes of specials beside a slow reference of their formulas, point by point, in double; then trails beside a
// slow, literal one that keeps every line that there ever was.
#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <numbers>

#include "base/random.h"
#include "effects/eight.h"
#include "effects/special_effect_renderer.h"
#include "effects/special_shapes.h"
#include "effects/trace_ribbon.h"
#include "tests/effects/reference.h"
#include "tests/support/test.h"

namespace sparkrig {
namespace {

constexpr double kTurn = 6.2832;

struct Colour {
    double a, r, g, b;
};
Colour Unpacked(std::uint32_t c) {
    return {static_cast<double>(c >> 24), static_cast<double>(c >> 16 & 255), static_cast<double>(c >> 8 & 255),
            static_cast<double>(c & 255)};
}
struct Point {
    Vec place;
    Colour colour;
};

class Reference {
  public:
    Reference(const SpecialShape& shape, const RandomTable& table) : s_(shape), table_(table) {
        D_ = ToVec(s_.forward), U_ = ToVec(s_.up), P_ = ToVec(s_.position);
        c1_ = Unpacked(s_.first), c2_ = Unpacked(s_.second);
        n_ = std::min(s_.count, 256);
        Sx_ = s_.scale.x, Sy_ = s_.scale.y, Sz_ = s_.scale.z, t_ = s_.age;
    }
    std::vector<Point> Points() {
        switch (s_.type) {
            case SpecialType::Flame:
            case SpecialType::Smoke: Rising(); break;
            case SpecialType::Helix: Helix(); break;
            case SpecialType::Snake:
                for (int i = 0; i < n_; ++i) Swing(Sz_, Sx_, Cross(U_, Unit(D_)), {}, n_ > 1 ? i / (n_ - 1.0) : 0);
                break;
            case SpecialType::Wave: Wave(); break;
            case SpecialType::Jelly: Jelly(); break;
            case SpecialType::Firework: Firework(); break;
            case SpecialType::Splash: Splash(); break;
            case SpecialType::None: break;
        }
        return points_;
    }

  private:
    double T(int k) const { return table_.values[k % 256]; }
    static double Wrap(double a, double p) { return a - std::trunc(a / p) * p; }
    Colour Ramp(double f, double fade) const {
        const double w = std::pow(1 - f, 8);
        return {c1_.a, (c1_.r * (1 - w) + c2_.r * w) * fade, (c1_.g * (1 - w) + c2_.g * w) * fade,
                (c1_.b * (1 - w) + c2_.b * w) * fade};
    }

    void Rising() {
        const bool flame = s_.type == SpecialType::Flame;
        const Vec N = Cross(D_, U_);
        for (int i = 0; i < n_; ++i) {
            const double p = 0.2 * T(i) + 0.5, q = p * T(i + 1) + 0.6 * t_, f = Wrap(q, p) / p;
            const int k = static_cast<int>(q / p) + i + s_.seed;
            const double m1 = 1.5 * (2 * T(k + 8) - 1) +
                              0.3 * T(k + 12) * std::sin(kTurn * f * (3 * T(k + 2) + 1) + kTurn * T(k + 4));
            const double m2 = 1.5 * (2 * T(k + 9) - 1) +
                              0.3 * T(k + 13) * std::sin(kTurn * f * (3 * T(k + 3) + 1) + kTurn * T(k + 5));
            const double rho = (flame ? std::sqrt(f) : 0.2) * (0.2 * T(k + 7) + 0.4) * Sx_;
            const double s1 = rho * m1 * (flame ? std::exp(-(2 + 2.5 * T(k + 10)) * f) : 1);
            const double s2 = rho * m2 * (flame ? std::exp(-(2 + 2.5 * T(k + 11)) * f) : 1);
            const double h = (0.4 * T(k + 6) + 0.5) * Sz_ * f;
            const auto mix = [&](double a, double b) { return std::min(255.0, a * (1 - f) + b * f); };
            const double alpha =
                flame ? c1_.a * (1 - std::exp(-20 * f)) * (1 - f) : c1_.a * (1 - std::exp(-5 * f)) * (1 - f) / 0.6;
            points_.push_back(
                {P_ + s1 * D_ + s2 * N + h * U_, {alpha, mix(c1_.r, c2_.r), mix(c1_.g, c2_.g), mix(c1_.b, c2_.b)}});
        }
    }

    void Helix() {
        const Vec A = U_;
        const double s = A.x * A.x + A.y * A.y;
        const Vec V1 = s > 0 ? 1 / std::sqrt(s) * Vec{A.y, -A.x, 0} : Vec{1, 0, 0}, V2 = Cross(V1, A);
        for (int i = 0; i < n_; ++i) {
            const double p = 0.2 * T(i) + 0.5, f = Wrap(p * T(i + 1) + t_, p) / p;
            const double r = (1 - std::exp(-f)) * Sx_, a = f * kTurn + t_ * kTurn;
            points_.push_back({P_ + std::sin(a) * r * V1 + std::cos(a) * r * V2 + f * Sz_ * A, Ramp(f, 1 - f)});
        }
    }

    void Swing(double length, double amplitude, const Vec& across, const Vec& offset, double f) {
        points_.push_back({P_ + offset + -f * length * Unit(D_) + amplitude * std::sin(kTurn * (f + t_)) * across,
                           Ramp(f, 1 - f * f)});
    }

    void Wave() {
        if (Sx_ <= 0 || Sz_ <= 0) return;
        const int rows = static_cast<int>(std::sqrt(n_ * Sz_ / Sx_));
        if (rows == 0) return;
        const Vec N = Cross(U_, Unit(D_));
        const int m = n_ / rows, middle = rows / 2;
        for (int j = 0; j < rows; ++j)
            for (int k = 0; k < m; ++k)
                Swing(Sx_, Sy_, U_, (static_cast<double>(j - middle) / rows * Sz_) * N, m > 1 ? k / (m - 1.0) : 0);
    }

    void Jelly() {
        const int m = n_ / 5;
        const Vec N = Cross(U_, Unit(D_));
        for (int k = 0; k < m; ++k) Swing(Sx_, Sy_, U_, {}, m > 1 ? k / (m - 1.0) : 0);
        for (int d = 0; d < n_ - m; ++d) {
            const double p = 0.1 * T(d) + 0.3, q = t_ + p * T(d + 1), f = Wrap(q, p) / p;
            const int c = static_cast<int>(q / p);
            const double a = kTurn * T(c + d + 2), g = 1 - std::pow(1 - T(c + d + 3), 2), r = Sz_ * f * g;
            points_.push_back(
                {P_ + r * std::sin(a) * U_ + r * std::cos(a) * N + -(Sx_ * f * f / 3) * Unit(D_), Ramp(f, 1 - f * f)});
        }
    }

    void Firework() {
        const double f = Wrap(t_, 1), e = 1 - std::exp(-f), w = std::pow(1 - f, 4), fade = 1 - f * f;
        const Colour colour = {c1_.a, (c2_.r * (1 - w) + c1_.r * w) * fade, (c2_.g * (1 - w) + c1_.g * w) * fade,
                               (c2_.b * (1 - w) + c1_.b * w) * fade};
        const Vec N = Cross(U_, Unit(D_));
        const int b = static_cast<int>(T(s_.seed) * 256);
        for (int i = 0; i < n_; ++i) {
            const int k = b + i;
            const double a = kTurn * T(k + 1), r = T(k + 2), beta = kTurn * 0.5 * T(k + 3);
            points_.push_back(
                {P_ + Sx_ * r * e * (std::cos(a) * N + std::sin(a) * U_) + Sz_ * r * e * std::cos(beta) * Unit(D_),
                 colour});
        }
    }

    void Splash() {
        const int m = n_ / 4;
        const double f = Wrap(t_, 1), drop = 0.25 * f * f;
        const Vec N = Cross(D_, U_);
        for (int w = 0; w < 4; ++w) {
            const int c = 4 * s_.seed + 2 + w;
            const double A = kTurn * T(c - 1), B = 2.0944 * T(c), G = T(c + 1);
            for (int j = 0; j < m; ++j) {
                const int k = 4 * m * s_.seed + 5 + w * m + j;
                const double a = A + 0.5 * (2 * T(k - 1) - 1), beta = B + 0.5 * (2 * T(k) - 1);
                const double rho = (0.5 * T(k + 1) + 0.75) * G;
                points_.push_back({P_ + Sx_ * f * rho * std::cos(a) * D_ + Sx_ * f * rho * std::sin(a) * N +
                                       Sx_ * (f * rho * std::cos(beta) - drop) * U_,
                                   {c1_.a * (1 - f * f), c1_.r, c1_.g, c1_.b}});
            }
        }
    }

    const SpecialShape& s_;
    const RandomTable& table_;
    Vec P_, D_, U_;
    Colour c1_, c2_;
    int n_;
    double Sx_, Sy_, Sz_, t_;
    std::vector<Point> points_;
};

SpecialShape RandomShape(SpecialType type, Dice& dice) {
    SpecialShape shape;
    shape.type = type;
    shape.position = dice.Vector(50);
    D3DXMATRIX axes;
    const D3DXVECTOR3 axis = dice.Vector(1);
    D3DXMatrixRotationAxis(&axes, &axis, dice.OneIn(4) ? 0 : dice.Between(-3, 3));
    shape.forward = {axes.m[0][0], axes.m[0][1], axes.m[0][2]};
    shape.up = {axes.m[2][0], axes.m[2][1], axes.m[2][2]};
    shape.age = dice.Between(0, dice.OneIn(3) ? 200 : 3);
    shape.scale = {dice.Between(0.5f, 60), dice.Between(0.5f, 60), dice.Between(0.5f, 60)};
    shape.count = dice.Below(dice.OneIn(3) ? 8 : 300);
    shape.first = dice.Word();
    shape.second = dice.Word();
    shape.seed = dice.Below(101);
    return shape;
}

TEST(SpecialShapes, FunctionsOfEightAreAsCloseAsTheySay) {
    for (int i = -4000; i <= 4000; ++i) {
        const float x = static_cast<float>(i) * 0.0131f;
        const Eight eight = Eight{} + x;
        const double sine = std::sin(std::numbers::pi * x), cosine = std::cos(std::numbers::pi * x);
        EXPECT_NEAR(SineOfHalfTurns(eight)[0], sine, 8e-7) << x;
        EXPECT_NEAR(CosineOfHalfTurns(eight)[3], cosine, 8e-7 + 2e-7 * std::abs(x)) << x;
        EXPECT_NEAR(RoughSineOfHalfTurns(eight)[7], sine, 7e-5) << x;
        EXPECT_NEAR(PowerOfTwo(eight)[0] * std::exp2(-x), 1, 3e-6) << x;
        EXPECT_NEAR(RoughPowerOfTwo(eight)[7] * std::exp2(-x), 1, 8e-5) << x;
    }
}

TEST(SpecialShapes, AreThoseOfTheSlowReference) {
    Dice dice(7);
    SeedRandom(3);
    for (int round = 0; round < 900; ++round) {
        RandomTable table;
        table.Draw();
        const SpecialShape shape = RandomShape(static_cast<SpecialType>(round % 9), dice);
        const double bound = 5e-6 * std::max({shape.scale.x, shape.scale.y, shape.scale.z}) + 1e-5;
        KRN_PointVertex found[kSpecialPoints];
        const std::vector<Point> expected = Reference(shape, table).Points();
        ASSERT_EQ(static_cast<std::size_t>(WriteShape(shape, table, found)), expected.size()) << round;
        for (std::size_t i = 0; i < expected.size(); ++i) {
            const auto& [place, colour] = expected[i];
            const Colour c = Unpacked(found[i].diffuse);
            const double off = Length(Vec{found[i].x, found[i].y, found[i].z} + -1 * place);
            ASSERT_LE(off, bound) << "type " << round % 9 << " round " << round << " point " << i;
            for (const auto& [byte, value] :
                 {std::pair(c.a, colour.a), {c.r, colour.r}, {c.g, colour.g}, {c.b, colour.b}})
                ASSERT_NEAR(byte, value - 0.5, 1.6) << round;   // truncated; 65536ths are truncated twice
        }
    }
}

TEST(SpecialShapes, StandAsTheirInstances) {
    SpecialEffect special;
    VisualEffectObject object;
    object.sub_effect = &special;
    object.position = {5, 6, 7};
    object.alpha = 0.5f;
    object.random[0] = 0.579f;
    object.rotation = {0, 0, std::sqrt(0.5f), std::sqrt(0.5f)};   // a quarter turn about z
    object.base_orientation = {3, 0, 0, 3};                       // about x, and not yet of unit length
    const SpecialShape shape = ShapeOf(object, 2);
    EXPECT_LE(Length(ToVec(shape.forward - D3DXVECTOR3(0, 0, 1))), 1e-6);   // x to y, then y to z
    EXPECT_LE(Length(ToVec(shape.up - D3DXVECTOR3(0, -1, 0))), 1e-6);
    EXPECT_EQ(shape.position, object.position);
    EXPECT_EQ(shape.first >> 24, 127u);
    EXPECT_EQ(shape.seed, 57);
    EXPECT_EQ(shape.age, 2);
}

TEST(SpecialShapes, PointsHaveWholeSizes) {
    EXPECT_EQ(ShapePointSize(SpecialType::Snake, {3, 4, 5}, 1.3f), 7);   // 7.8
    EXPECT_EQ(ShapePointSize(SpecialType::Wave, {3, 4, 5}, 1), 10);
    EXPECT_EQ(ShapePointSize(SpecialType::Splash, {30, 4, 5}, 2), 12);
}

// ---- Trails

struct SlowLine {
    int channels = 0;
    float life = 0, reference = 0;
    D3DXVECTOR3 points[4];
};
struct SlowTrail {
    std::vector<SlowLine> lines;
    int next[4] = {};
    int first = 0;
    RibbonSettings settings;

    void Add(int channel, const D3DXVECTOR3& point, float life, float reference) {
        const auto i = static_cast<std::size_t>(next[channel]++);
        if (i >= lines.size()) lines.emplace_back();
        SlowLine& line = lines[i];
        line.life = i > 0 ? std::max(life, lines[i - 1].life) : life;
        line.points[channel] = point;
        line.reference = reference;
        line.channels = std::max(line.channels, channel + 1);
    }
    bool Update(float dt) {
        bool lost = false;
        for (int i = first; i < static_cast<int>(lines.size()); ++i) {
            float& life = lines[static_cast<std::size_t>(i)].life;
            if (life <= dt)
                life = 0, first = std::max(first, i), lost = true;
            else
                life -= dt;
        }
        return lost && first == static_cast<int>(lines.size()) - 1;
    }
    std::vector<KRN_LVertex> Vertices() {
        std::vector<KRN_LVertex> out;
        const auto count = [&] {
            return *std::min_element(next, next + lines[static_cast<std::size_t>(first)].channels) - first;
        };
        int C = lines[static_cast<std::size_t>(first)].channels, n = count();
        if (C < 2 || n < 2) return out;
        const int T = 2 * (n - 1) * (C - 1);
        if (3 * T > 8192) {
            first += static_cast<int>(std::ceil((3 * T - 8192) / (3.0 * C)));
            C = lines[static_cast<std::size_t>(first)].channels, n = count();
        }
        const double f = 1 / (0.3 * 32), g = 1 / (0.3 * 128 * settings.texture_scale);
        const auto vertex = [&](int k, int c) {
            const SlowLine& line = lines[static_cast<std::size_t>(k)];
            const double alpha = line.life / line.reference * std::min(1.0, k * f);
            const double u = settings.stretched ? double(k - first) / (n - 1) : k * g;
            const D3DXVECTOR3& p = line.points[c];
            const auto colour = static_cast<D3DCOLOR>(std::min(alpha, 1.0) * 255) << 24 | 0xFFFFFF;
            return KRN_LVertex{p.x, p.y, p.z, colour, 0, static_cast<float>(u), static_cast<float>(c / (C - 1.0))};
        };
        for (int c = 0; c + 1 < C; ++c)
            for (int k = first; k + 1 < first + n; ++k)
                for (const auto& [line, channel] :
                     {std::pair(k, c), {k, c + 1}, {k + 1, c}, {k + 1, c}, {k, c + 1}, {k + 1, c + 1}})
                    out.push_back(vertex(line, channel));
        return out;
    }
};

std::vector<KRN_LVertex> RibbonOf(TraceEffectData& trail) {
    ShortenToFit(trail);
    std::vector<KRN_LVertex> vertices(static_cast<std::size_t>(3 * RibbonTriangles(trail)));
    if (!vertices.empty()) WriteRibbon(trail, vertices.data());
    return vertices;
}

void ExpectEqual(const std::vector<KRN_LVertex>& found, const std::vector<KRN_LVertex>& expected, int step) {
    ASSERT_EQ(found.size(), expected.size()) << step;
    ASSERT_LE(found.size(), 8192u);
    for (std::size_t i = 0; i < found.size(); ++i) {
        const KRN_LVertex &a = found[i], &b = expected[i];
        ASSERT_EQ(D3DXVECTOR3(a.x, a.y, a.z), D3DXVECTOR3(b.x, b.y, b.z)) << step << " " << i;
        ASSERT_NEAR(double(a.diffuse >> 24), double(b.diffuse >> 24), 1) << step << " " << i;
        ASSERT_EQ((a.diffuse & 0xFFFFFF) | a.specular, 0xFFFFFFu);
        ASSERT_NEAR(a.u, b.u, 1e-4) << step << " " << i;
        ASSERT_NEAR(a.v, b.v, 1e-6) << step << " " << i;
    }
}

/// Channels that lag, pause and start late; trails that end and begin again; some grow too long.
TEST(Traces, AreThoseOfTheSlowOne) {
    Dice dice(7);
    TraceEffectSet set(kTraceBlocks);
    std::map<int, SlowTrail> slow;
    std::vector<int> places(5, -1);   // of the trails' blocks, in the order of drawing
    std::size_t longest = 0;
    for (int step = 0; step < 6000; ++step) {
        for (int block = 0; block < 5; ++block) {
            const int channels = 1 + block % 4;   // a single channel is never drawn
            const bool long_one = block == 3;
            for (int add = dice.Below(long_one ? 30 : 3); add > 0; --add) {
                const int channel = dice.Below(channels);
                if (!long_one && (step / 200 + block) % 3 == 0) continue;   // a pause in which it dies
                const D3DXVECTOR3 point(static_cast<float>(step), static_cast<float>(channel), static_cast<float>(add));
                const float life = long_one ? 6 : 0.2f + 0.1f * static_cast<float>(dice.Below(8));
                const RibbonSettings settings = {block % 2 == 0, 3, true, 1.5f};
                const bool is_new = slow.count(block) == 0;
                SlowTrail& trail = slow[block];
                if (is_new) trail.settings = settings, *std::ranges::find(places, -1) = block;
                trail.Add(channel, point, life, life);
                set.AddTracePoint("t", block, channel, point, life, life, settings);
            }
        }
        const float dt = dice.OneIn(10) ? 0.1f : 1 / 60.0f;
        set.UpdateTraces(dt);
        for (auto next = slow.begin(); next != slow.end();) {
            const auto here = next++;
            if (!here->second.Update(dt)) continue;
            *std::ranges::find(places, here->first) = -1;
            slow.erase(here);
        }
        ASSERT_EQ(static_cast<std::size_t>(set.Count()), slow.size()) << step;
        std::vector<int> blocks;
        set.ForEach([&](TraceEffectData& trail) {
            blocks.push_back(trail.block);
            if (step % 3 != 0 || HasFatalFailure()) return;
            const auto vertices = RibbonOf(trail);
            ExpectEqual(vertices, slow.at(trail.block).Vertices(), step);
            longest = std::max(longest, vertices.size());
        });
        if (HasFatalFailure()) return;
        std::vector<int> expected = places;
        std::erase(expected, -1);
        ASSERT_EQ(blocks, expected) << step;
    }
    EXPECT_GT(longest, 8100u);
}

TEST(Traces, RefuseBlocksAndChannelsThatThereAreNot) {
    Reports reports;
    TraceEffectSet set(kTraceBlocks);
    for (const int block : {-1, 2048}) EXPECT_EQ(set.AddTracePoint("t", block, 0, {}, 1, 1, {}), 0);
    EXPECT_EQ(set.AddTracePoint("t", 2047, 4, {}, 1, 1, {}), 0);
    EXPECT_EQ(set.Count(), 0);
    EXPECT_EQ(set.AddTracePoint("t", 2047, 3, {}, 1, 1, {}), 4);
    EXPECT_THAT(reports.All(), ElementsAre("warning TraceEffectSet: Too many Trace Effect blocks: -1",
                                           "warning TraceEffectSet: Too many Trace Effect blocks: 2048",
                                           "warning TraceEffectSet: Too many Trace Effect channels: 4"));
}

TEST(Traces, EndWithTheirLifeAndShowNothingWhereMoreLinesAreDroppedThanThereAre) {
    TraceEffectSet set(kTraceBlocks);
    for (const auto& [lines, vertices] : {std::pair(3, 36u), {2000, 0u}}) {
        for (int i = 0; i < lines * kTraceChannels; ++i) set.AddTracePoint("t", 7, i % kTraceChannels, {}, 1, 1, {});
        set.ForEach([&, expected = vertices](TraceEffectData& trail) { EXPECT_EQ(RibbonOf(trail).size(), expected); });
        set.UpdateTraces(1);   // as long as their life
        EXPECT_EQ(set.Count(), 0);
    }
}

TEST(Traces, ForgetTheirDeadLines) {
    TraceEffectSet set(kTraceBlocks);
    for (int i = 0; i < 5000; ++i) {
        for (const int channel : {0, 1}) set.AddTracePoint("t", 7, channel, {}, 1, 1, {});
        set.UpdateTraces(0.1f);
    }
    set.ForEach([](const TraceEffectData& trail) { EXPECT_LE(trail.lines.size(), 30u) << "ten are alive"; });
}

}   // namespace
}   // namespace sparkrig
