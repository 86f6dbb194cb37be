#include "effects/draw_list.h"

#include <algorithm>

#include "effects/radix_sort.h"

namespace sparkrig {
namespace {

std::uint64_t KeyOf(std::uint32_t key, std::size_t place) { return std::uint64_t{key} << 32 | place; }
std::uint32_t PlaceOf(std::uint64_t key) { return static_cast<std::uint32_t>(key); }

}   // namespace

void DrawList::Clear() {
    keys_.clear();
    order_.clear();
    one_class_ = true;
}

void DrawList::Add(const VisualEffectDrawElement& element, int traits) {
    if (element.instance >= known_.size()) known_.resize(std::size_t{element.instance} * 2 + 1024);
    known_[element.instance] = {static_cast<std::uint32_t>(traits), element.sort_class};
    if (keys_.empty()) first_class_ = element.sort_class;
    one_class_ &= element.sort_class == first_class_;
    keys_.push_back(KeyOf(~OrderedBits(element.sort_distance), element.instance));
}

void DrawList::Sort() {
    SortByKey(keys_, scratch_);
    order_.resize(keys_.size());
    std::transform(keys_.begin(), keys_.end(), order_.begin(), PlaceOf);
    if (!one_class_) SortByClass();
}

/// Keeps the order inside a class.
void DrawList::SortByClass() {
    for (std::size_t i = 0; i < order_.size(); ++i) keys_[i] = KeyOf(known_[order_[i]].sort_class, i);
    SortByKey(keys_, scratch_);
    run_ = order_;
    for (std::size_t i = 0; i < order_.size(); ++i) order_[i] = run_[PlaceOf(keys_[i])];
}

void DrawList::Regroup(const std::vector<RegroupTraits>& traits) {
    const auto at = [&](std::size_t place) -> const RegroupTraits& { return traits[known_[order_[place]].traits]; };
    for (std::size_t begin = 0; begin < order_.size();) {
        const RegroupTraits& first = at(begin);
        std::size_t end = begin + 1;
        if (first.starts_run) {
            while (end < order_.size() && at(end).particle && at(end).states == first.states) ++end;
            SortRun(begin, end, traits);
        }
        begin = end;
    }
}

/// Keeps the depth order among equal textures.
void DrawList::SortRun(std::size_t begin, std::size_t end, const std::vector<RegroupTraits>& traits) {
    if (end - begin < 2) return;
    run_.assign(order_.begin() + static_cast<std::ptrdiff_t>(begin), order_.begin() + static_cast<std::ptrdiff_t>(end));
    keys_.resize(run_.size());
    for (std::size_t i = 0; i < run_.size(); ++i) keys_[i] = KeyOf(traits[known_[run_[i]].traits].texture, i);
    SortByKey(keys_, scratch_);
    for (std::size_t i = 0; i < run_.size(); ++i) order_[begin + i] = run_[PlaceOf(keys_[i])];
}

}   // namespace sparkrig
