#include "effects/draw_list.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <random>

namespace sparkrig {
namespace {

std::vector<std::uint32_t> Iota(std::size_t count) {
    std::vector<std::uint32_t> numbers(count);
    std::iota(numbers.begin(), numbers.end(), 0u);
    return numbers;
}

TEST(DrawList, SortsClassesUpAndDistancesDown) {
    DrawList list;
    const std::tuple<std::uint16_t, float> kRows[] = {{2, 5},  {1, 3},    {1, -1000}, {2, 70},
                                                      {1, 40}, {0, 0.5f}, {65535, 9}, {1, 3}};
    std::uint32_t instance = 10;
    for (const auto& [sort_class, distance] : kRows) list.Add({instance++, distance, sort_class}, 0);
    list.Sort();
    EXPECT_EQ(list.Order(), (std::vector<std::uint32_t>{15, 14, 11, 17, 12, 13, 10, 16}));
    list.Clear();
    list.Sort();
    EXPECT_TRUE(list.Order().empty());
}

TEST(DrawList, SortsAsAStableComparisonSortDoes) {
    std::mt19937 generator(7);
    for (const int count : {2, 100, 255, 256, 5000}) {
        for (const int classes : {1, 3, 40000}) {
            DrawList list;
            std::vector<VisualEffectDrawElement> elements;
            for (int i = 0; i < count; ++i) {
                const auto distance = static_cast<float>(static_cast<int>(generator() % 2000) - 1000) / 8;
                const auto sort_class = static_cast<std::uint16_t>(generator() % static_cast<unsigned>(classes));
                elements.push_back({static_cast<std::uint32_t>(i), distance, sort_class});
                list.Add(elements.back(), 0);
            }
            std::vector<std::uint32_t> expected = Iota(elements.size());
            std::stable_sort(expected.begin(), expected.end(), [&](std::uint32_t a, std::uint32_t b) {
                const auto &x = elements[a], &y = elements[b];
                return x.sort_class != y.sort_class ? x.sort_class < y.sort_class : x.sort_distance > y.sort_distance;
            });
            list.Sort();
            EXPECT_EQ(list.Order(), expected) << count << " " << classes;
        }
    }
}

TEST(DrawList, SortsDistancesThatAreNoNumbers) {
    DrawList list;
    const float infinity = std::numeric_limits<float>::infinity();
    for (std::uint32_t i = 0; i < 300; ++i)
        list.Add({i, i % 3 == 0 ? std::nanf("") : i % 3 == 1 ? -infinity : infinity, 4}, 0);
    list.Sort();
    std::vector<std::uint32_t> order = list.Order();
    std::sort(order.begin(), order.end());
    EXPECT_EQ(order, Iota(300));
}

/// The slow, obvious way: the walk over the order, each run sorted by comparison.
std::vector<std::uint32_t> RegroupSlowly(std::vector<std::uint32_t> order, const std::vector<RegroupTraits>& of) {
    for (std::size_t i = 0; i < order.size(); ++i) {
        if (!of[order[i]].starts_run) continue;
        std::size_t end = i;
        while (end < order.size() && of[order[end]].particle && of[order[end]].states == of[order[i]].states) ++end;
        std::stable_sort(order.begin() + static_cast<std::ptrdiff_t>(i),
                         order.begin() + static_cast<std::ptrdiff_t>(end),
                         [&](std::uint32_t a, std::uint32_t b) { return of[a].texture < of[b].texture; });
        i = end - 1;
    }
    return order;
}

TEST(DrawList, RegroupsAsTheSlowWayDoes) {
    std::mt19937 generator(11);
    for (const unsigned count : {1u, 7u, 60u, 3000u}) {
        for (const unsigned states : {1u, 2u, 5u}) {
            DrawList list;
            std::vector<RegroupTraits> traits;
            for (unsigned i = 0; i < count; ++i) {
                RegroupTraits one;
                one.particle = generator() % 6 != 0;
                one.starts_run = one.particle && generator() % 2 == 0;
                one.states = generator() % states;
                one.texture = generator() % 9;
                traits.push_back(one);
                list.Add({i, static_cast<float>(generator() % 1000), 0}, static_cast<int>(i));
            }
            list.Sort();
            const std::vector<std::uint32_t> expected = RegroupSlowly(list.Order(), traits);
            list.Regroup(traits);
            EXPECT_EQ(list.Order(), expected) << count << " " << states;
        }
    }
}

TEST(DrawList, ARunTakesInThoseThatMayNotStartOne) {
    const RegroupTraits free_b{true, true, 3, 20}, bound_a{true, false, 3, 10}, other{false, false, 3, 1};
    DrawList list;
    const int traits[] = {1, 1, 0, 1, 2, 1};
    for (std::uint32_t i = 0; i < 6; ++i) list.Add({i, -static_cast<float>(i), 0}, traits[i]);
    list.Sort();
    list.Regroup({free_b, bound_a, other});
    EXPECT_EQ(list.Order(), (std::vector<std::uint32_t>{0, 1, 3, 2, 4, 5}));   // the first two stand before the run
}

}   // namespace
}   // namespace sparkrig
