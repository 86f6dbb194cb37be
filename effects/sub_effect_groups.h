// Instances of one walk, gathered by sub-effect: what the walk keeps for each sub-effect that it meets.
#pragma once
#include <memory>
#include <vector>

#include "effects/effect_definition.h"

namespace sparkrig {

/// Group: default-constructible, with a member `SubEffect* sub`. A group keeps its address and, from walk to walk, its
/// memory. Only one walk at a time has groups.
template <class Group>
class SubEffectGroups {
  public:
    /// The number of the sub-effect's group, made when the walk meets it first.
    int NumberOf(SubEffect& sub) {
        if (sub.group < 0) {
            if (used_ == groups_.size()) groups_.push_back(std::make_unique<Group>());
            groups_[used_]->sub = &sub;
            sub.group = static_cast<std::int32_t>(used_++);
        }
        return sub.group;
    }
    Group& operator[](int number) { return *groups_[static_cast<std::size_t>(number)]; }
    const Group& operator[](int number) const { return *groups_[static_cast<std::size_t>(number)]; }
    int Count() const { return static_cast<int>(used_); }
    /// A walk begins, without groups.
    void Begin() { used_ = 0; }
    /// The walk is over: another may begin elsewhere. The groups stay until this one begins its next.
    void End() {
        for (std::size_t i = 0; i < used_; ++i) groups_[i]->sub->group = -1;
    }

  private:
    std::vector<std::unique_ptr<Group>> groups_;
    std::size_t used_ = 0;
};

}   // namespace sparkrig
