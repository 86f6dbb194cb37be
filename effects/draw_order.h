// The order in which a frame's instances are drawn: by sort class and distance, then regrouped by texture.
#pragma once
#include <cstdint>
#include <span>
#include <vector>

#include "effects/radix_sort.h"

namespace sparkrig {

/// What regrouping asks of the group of an element.
struct RegroupTraits {
    bool particle = false;
    bool starts_run = false;     // its place in the depth order is free
    std::uint32_t states = 0;    // equal where blend mode and depth states are
    std::uint32_t texture = 0;   // equal where texture and billboard mode are; runs are sorted by it
};

/// An element is a number that its owner knows it by: its lane, and kInvisible where it takes part but is not drawn.
class DrawOrder {
  public:
    static constexpr std::uint32_t kInvisible = 1u << 31;

    void Clear();
    /// Appends one sort class; classes come in ascending order. Each element has its depth key: the farther, the lower.
    /// The farther first, in one depth the lower id_of(lane) first.
    template <class IdOf>
    void AddClass(std::span<KeyedPlace> elements, IdOf id_of);
    /// Sorts each run of particles by texture. A run starts at an element that may start one and goes on while the
    /// following ones are particles of equal states, wherever they may start one. group_of(lane) is its place in
    /// `traits`.
    template <class GroupOf>
    void Regroup(std::span<const RegroupTraits> traits, GroupOf group_of);

    const std::vector<std::uint32_t>& Order() const { return order_; }

    static std::uint32_t DepthKey(float distance) { return ~OrderedBits(distance); }
    static std::uint32_t LaneOf(std::uint32_t element) { return element & ~kInvisible; }

  private:
    template <class IdOf>
    void SortTies(std::span<KeyedPlace> elements, IdOf id_of);
    void RankTextures(std::span<const RegroupTraits> traits);
    template <class GroupOf>
    void SortRun(std::span<std::uint32_t> run, GroupOf group_of);

    std::vector<std::uint32_t> order_;
    // Memory of the sorts.
    std::vector<KeyedPlace> scratch_, ties_;
    std::vector<std::uint32_t> run_;
    std::vector<std::uint32_t> textures_;   // those of the frame, ascending
    std::vector<std::uint32_t> ranks_;      // of each group, among them
    std::vector<std::uint32_t> next_;       // of each rank, the place of its next element
};

// ---- Order of one class

template <class IdOf>
void DrawOrder::AddClass(std::span<KeyedPlace> elements, IdOf id_of) {
    SortByKey(elements, scratch_);
    SortTies(elements, id_of);
    for (const KeyedPlace element : elements) order_.push_back(PlaceOf(element));
}

/// Sorts each run of equal keys by id.
template <class IdOf>
void DrawOrder::SortTies(std::span<KeyedPlace> elements, IdOf id_of) {
    for (std::size_t begin = 0; begin + 1 < elements.size(); ++begin) {
        if (KeyOf(elements[begin]) != KeyOf(elements[begin + 1])) continue;
        std::size_t end = begin + 2;
        while (end < elements.size() && KeyOf(elements[end]) == KeyOf(elements[begin])) ++end;
        ties_.clear();
        for (std::size_t i = begin; i < end; ++i)
            ties_.push_back(MakeKeyed(id_of(LaneOf(PlaceOf(elements[i]))), PlaceOf(elements[i])));
        SortByKey(ties_, scratch_);
        for (std::size_t i = begin; i < end; ++i)
            elements[i] = MakeKeyed(KeyOf(elements[i]), PlaceOf(ties_[i - begin]));
        begin = end - 1;
    }
}

// ---- Runs

template <class GroupOf>
void DrawOrder::Regroup(std::span<const RegroupTraits> traits, GroupOf group_of) {
    RankTextures(traits);
    const auto at = [&](std::size_t place) -> const RegroupTraits& { return traits[group_of(LaneOf(order_[place]))]; };
    for (std::size_t begin = 0; begin < order_.size();) {
        const RegroupTraits& first = at(begin);
        std::size_t end = begin + 1;
        if (first.starts_run) {
            while (end < order_.size() && at(end).particle && at(end).states == first.states) ++end;
            SortRun(std::span(order_).subspan(begin, end - begin), group_of);
        }
        begin = end;
    }
}

/// By counting, where that is quicker than comparing. Keeps the depth order among equal textures.
template <class GroupOf>
void DrawOrder::SortRun(std::span<std::uint32_t> run, GroupOf group_of) {
    if (run.size() < 2 || textures_.size() < 2) return;
    const auto rank_of = [&](std::uint32_t element) { return ranks_[group_of(LaneOf(element))]; };
    run_.assign(run.begin(), run.end());
    if (run.size() < textures_.size()) {
        ties_.clear();
        for (std::uint32_t i = 0; i < run.size(); ++i) ties_.push_back(MakeKeyed(rank_of(run[i]), i));
        SortByKey(ties_, scratch_);
        for (std::size_t i = 0; i < run.size(); ++i) run[i] = run_[PlaceOf(ties_[i])];
        return;
    }
    next_.assign(textures_.size() + 1, 0);
    for (const std::uint32_t element : run_) ++next_[rank_of(element) + 1];
    for (std::size_t rank = 1; rank < next_.size(); ++rank) next_[rank] += next_[rank - 1];
    for (const std::uint32_t element : run_) run[next_[rank_of(element)]++] = element;
}

}   // namespace sparkrig
