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
    void Clear() { elements_.clear(); }
    void Add(const VisualEffectDrawElement& element) { elements_.push_back(element); }
    const std::vector<VisualEffectDrawElement>& Elements() const { return elements_; }

    /// The lower sort class first, in a class the farther first, in one distance in the order of adding.
    void Sort();
    /// Sorts each run of particles by texture. A run starts at an element that may start one and goes on while the
    /// following ones are particles of equal states, wherever they may start one. `traits_of[i]` is the position in
    /// `traits` of element i's.
    void Regroup(const std::vector<std::uint32_t>& traits_of, const std::vector<RegroupTraits>& traits);
    /// Positions in Elements(), in the order of drawing.
    const std::vector<std::uint32_t>& Order() const { return order_; }

  private:
    void SortByClass();
    void SortRun(std::size_t begin, std::size_t end, const std::vector<std::uint32_t>& traits_of,
                 const std::vector<RegroupTraits>& traits);

    std::vector<VisualEffectDrawElement> elements_;
    std::vector<std::uint32_t> order_;
    std::vector<std::uint64_t> keys_, scratch_;   // memory of the sorts
    std::vector<std::uint32_t> run_;
};

}   // namespace sparkrig
