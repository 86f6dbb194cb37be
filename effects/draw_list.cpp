#include "effects/draw_list.h"

#include <algorithm>

#include "effects/radix_sort.h"

namespace sparkrig {
namespace {

std::uint64_t KeyAt(std::uint32_t key, std::size_t place) { return std::uint64_t{key} << 32 | place; }
std::uint32_t PlaceOf(std::uint64_t key) { return static_cast<std::uint32_t>(key); }

}   // namespace

void DrawList::Sort() {
    keys_.resize(elements_.size());
    bool one_class = true;
    for (std::size_t i = 0; i < elements_.size(); ++i) {
        keys_[i] = KeyAt(~OrderedBits(elements_[i].sort_distance), i);
        one_class &= elements_[i].sort_class == elements_[0].sort_class;
    }
    SortByKey(keys_, scratch_);
    order_.resize(elements_.size());
    std::transform(keys_.begin(), keys_.end(), order_.begin(), PlaceOf);
    if (!one_class) SortByClass();
}

/// Keeps the order inside a class.
void DrawList::SortByClass() {
    for (std::size_t i = 0; i < order_.size(); ++i) keys_[i] = KeyAt(elements_[order_[i]].sort_class, i);
    SortByKey(keys_, scratch_);
    run_ = order_;
    for (std::size_t i = 0; i < order_.size(); ++i) order_[i] = run_[PlaceOf(keys_[i])];
}

void DrawList::Regroup(const std::vector<std::uint32_t>& traits_of, const std::vector<RegroupTraits>& traits) {
    const auto at = [&](std::size_t place) -> const RegroupTraits& { return traits[traits_of[order_[place]]]; };
    for (std::size_t begin = 0; begin < order_.size();) {
        const RegroupTraits& first = at(begin);
        std::size_t end = begin + 1;
        if (first.starts_run) {
            while (end < order_.size() && at(end).particle && at(end).states == first.states) ++end;
            SortRun(begin, end, traits_of, traits);
        }
        begin = end;
    }
}

/// Keeps the depth order among equal textures.
void DrawList::SortRun(std::size_t begin, std::size_t end, const std::vector<std::uint32_t>& traits_of,
                       const std::vector<RegroupTraits>& traits) {
    run_.assign(order_.begin() + static_cast<std::ptrdiff_t>(begin), order_.begin() + static_cast<std::ptrdiff_t>(end));
    keys_.resize(run_.size());
    for (std::size_t i = 0; i < run_.size(); ++i) keys_[i] = KeyAt(traits[traits_of[run_[i]]].texture, i);
    SortByKey(keys_, scratch_);
    for (std::size_t i = 0; i < run_.size(); ++i) order_[begin + i] = run_[PlaceOf(keys_[i])];
}

}   // namespace sparkrig
