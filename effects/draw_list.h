// The order in which a frame's instances are drawn: by sort class and distance, then regrouped by texture.
#pragma once
#include <cstdint>
#include <vector>

namespace sparkrig {

/// One instance to be drawn in this frame.
struct VisualEffectDrawElement {
    std::uint32_t instance = 0;   // its id
    float sort_distance = 0;
    std::uint16_t sort_class = 0;
};

/// What regrouping asks of the sub-effect of an element.
struct RegroupTraits {
    bool particle = false;
    bool starts_run = false;     // its place in the depth order is free
    std::uint32_t states = 0;    // equal where blend mode and depth states are
    std::uint32_t texture = 0;   // equal where texture and billboard mode are; runs are sorted by it
};

class DrawList {
  public:
    void Clear();
    /// Instances come in ascending order. `traits` is the place of the element's in the table that Regroup gets.
    void Add(const VisualEffectDrawElement& element, int traits);

    /// The lower sort class first, in a class the farther first, in one distance the lower instance first.
    void Sort();
    /// Sorts each run of particles by texture. A run starts at an element that may start one and goes on while the
    /// following ones are particles of equal states, wherever they may start one.
    void Regroup(const std::vector<RegroupTraits>& traits);
    /// The instances in the order of drawing.
    const std::vector<std::uint32_t>& Order() const { return order_; }

  private:
    /// Of an instance in the list, by id.
    struct Known {
        std::uint32_t traits;
        std::uint16_t sort_class;
    };

    void SortByClass();
    void SortRun(std::size_t begin, std::size_t end, const std::vector<RegroupTraits>& traits);

    std::vector<Known> known_;
    std::vector<std::uint64_t> keys_;   // before the sort: distance and instance
    std::vector<std::uint32_t> order_;
    std::vector<std::uint64_t> scratch_;   // memory of the sorts, like the next
    std::vector<std::uint32_t> run_;
    bool one_class_ = true;
    std::uint16_t first_class_ = 0;
};

}   // namespace sparkrig
