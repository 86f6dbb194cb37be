#include "effects/draw_order.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <random>
#include "tests/support/test.h"

namespace sparkrig {
namespace {

/// An element is its place in the list: lane and id in one.
std::vector<std::uint32_t> OrderOf(const std::vector<float>& distances, const std::vector<std::uint32_t>& ids) {
    DrawOrder order;
    std::vector<KeyedPlace> elements;
    for (std::uint32_t lane = 0; lane < distances.size(); ++lane)
        elements.push_back(MakeKeyed(DrawOrder::DepthKey(distances[lane]), lane));
    order.AddClass(elements, [&](std::uint32_t lane) { return ids[lane]; });
    return order.Order();
}

TEST(DrawOrder, IsThatOfAStableComparison) {
    std::mt19937 generator(7);
    const float infinity = std::numeric_limits<float>::infinity();
    const std::pair<float, unsigned> kRanges[] = {
        {1, 1}, {0.5f, 3}, {0.125f, 2000}, {1e-6f, 1u << 20}, {1e30f, 1u << 31}};
    for (const std::size_t count : {0u, 1u, 2u, 100u, 255u, 256u, 5000u}) {
        for (const auto& [unit, range] : kRanges) {   // some of few distances, some of more than two digits of keys
            std::vector<float> distances(count);
            std::vector<std::uint32_t> ids(count), expected(count);
            for (float& distance : distances)
                distance = unit * (static_cast<float>(generator() % range) - static_cast<float>(range / 3));
            if (count > 3 && range > 3) distances[1] = -infinity, distances[2] = infinity;
            std::iota(ids.begin(), ids.end(), 0u);
            std::shuffle(ids.begin(), ids.end(), generator);
            std::iota(expected.begin(), expected.end(), 0u);
            std::sort(expected.begin(), expected.end(), [&](auto a, auto b) { return ids[a] < ids[b]; });
            std::stable_sort(expected.begin(), expected.end(),
                             [&](auto a, auto b) { return distances[a] > distances[b]; });
            EXPECT_EQ(OrderOf(distances, ids), expected) << count << " " << unit;
        }
    }
}

TEST(DrawOrder, KeepsWhatHasNoDistance) {
    std::vector<float> distances(300, std::nanf(""));
    for (std::size_t i = 0; i < distances.size(); i += 2) distances[i] = static_cast<float>(i);
    std::vector<std::uint32_t> ids(distances.size()), all = ids;
    std::iota(all.begin(), all.end(), 0u);
    std::vector<std::uint32_t> order = OrderOf(distances, all);
    std::sort(order.begin(), order.end());
    EXPECT_EQ(order, all);
}

/// The slow, obvious way: the walk over the order, each run sorted by comparison.
std::vector<std::uint32_t> RegroupSlowly(std::vector<std::uint32_t> order, const std::vector<RegroupTraits>& of,
                                         std::uint32_t groups) {
    const auto at = [&](std::uint32_t lane) -> const RegroupTraits& { return of[lane % groups]; };
    for (std::size_t i = 0; i < order.size(); ++i) {
        if (!at(order[i]).starts_run) continue;
        std::size_t end = i;
        while (end < order.size() && at(order[end]).particle && at(order[end]).states == at(order[i]).states) ++end;
        std::stable_sort(order.begin() + static_cast<std::ptrdiff_t>(i),
                         order.begin() + static_cast<std::ptrdiff_t>(end),
                         [&](std::uint32_t a, std::uint32_t b) { return at(a).texture < at(b).texture; });
        i = end - 1;
    }
    return order;
}

TEST(DrawOrder, RegroupsAsTheSlowWayDoes) {
    std::mt19937 generator(11);
    for (const std::uint32_t count : {1u, 7u, 60u, 3000u}) {
        for (const std::uint32_t groups : {1u, 3u, 40u}) {
            std::vector<RegroupTraits> traits;
            for (std::uint32_t i = 0; i < groups; ++i) {
                RegroupTraits one;
                one.particle = generator() % 6 != 0;
                one.starts_run = one.particle && generator() % 2 == 0;
                one.states = generator() % 2;
                one.texture = generator() % 9;
                traits.push_back(one);
            }
            DrawOrder order;
            for (std::uint32_t first : {0u, count}) {   // two classes: runs go on from one to the other
                std::vector<KeyedPlace> elements;
                for (std::uint32_t i = 0; i < count; ++i)
                    elements.push_back(MakeKeyed(static_cast<std::uint32_t>(generator()), first + i));
                order.AddClass(elements, [](std::uint32_t lane) { return lane; });
            }
            const std::vector<std::uint32_t> expected = RegroupSlowly(order.Order(), traits, groups);
            order.Regroup(traits, [&](std::uint32_t lane) { return lane % groups; });
            EXPECT_EQ(order.Order(), expected) << count << " " << groups;
        }
    }
}

}   // namespace
}   // namespace sparkrig
