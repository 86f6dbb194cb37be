// Trails beside a slow, literal one that keeps every line that there ever was.

#include <cmath>
#include <map>

#include "effects/trace_ribbon.h"
#include "tests/effects/reference.h"
#include "tests/support/test.h"

namespace sparkrig {
namespace {

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
                if (is_new) trail.settings = settings;
                trail.Add(channel, point, life, life);
                set.AddTracePoint("t", block, channel, point, life, life, settings);
            }
        }
        const float dt = dice.OneIn(10) ? 0.1f : 1 / 60.0f;
        set.UpdateTraces(dt);
        for (auto next = slow.begin(); next != slow.end();) {
            const auto here = next++;
            if (here->second.Update(dt)) slow.erase(here);
        }
        ASSERT_EQ(static_cast<std::size_t>(set.Count()), slow.size()) << step;
        for (int i = 0; i < set.Count() && step % 3 == 0; ++i) {
            const auto vertices = RibbonOf(set.At(i));
            ExpectEqual(vertices, slow.at(set.At(i).block).Vertices(), step);
            longest = std::max(longest, vertices.size());
            if (HasFatalFailure()) return;
        }
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
        EXPECT_EQ(RibbonOf(set.At(0)).size(), vertices);
        set.UpdateTraces(1);   // as long as their life
        EXPECT_EQ(set.Count(), 0);
    }
}

}   // namespace
}   // namespace sparkrig
