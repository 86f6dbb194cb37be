#include "effects/instance_store.h"

#include <algorithm>

#include "effects/motion.h"

namespace sparkrig {
namespace {

/// Walks through each list once: the position order of a list is made when it is first asked for, and later the lists
/// are read by several threads.
void PrepareLists(const SubEffect& sub) {
    for (const MotionChannel* channel :
         {&sub.position_stages, &sub.rotation_stages, &sub.scale_stages, &sub.colour_stages, &sub.alpha_stages})
        channel->GetAt(0);
}

}   // namespace

int InstanceStore::GroupOf(SubEffect& sub) {
    const auto known = group_of_.find(&sub);
    if (known != group_of_.end()) return known->second;
    if (free_groups_.empty()) {
        free_groups_.push_back(GroupCount());
        groups_.push_back(std::make_unique<InstanceGroup>());
    }
    const int number = free_groups_.back();
    free_groups_.pop_back();
    Bind(number, sub);
    return number;
}

int InstanceStore::TakeLowestId() {
    const auto free = std::find(lanes_.begin() + lowest_free_, lanes_.end(), kNoLane);
    const int id = static_cast<int>(free - lanes_.begin());
    if (free == lanes_.end()) lanes_.push_back(kNoLane);
    lowest_free_ = id + 1;
    return id;
}

std::uint32_t InstanceStore::TakeBlock(int group) {
    if (free_blocks_.empty()) {
        free_blocks_.push_back(static_cast<std::uint32_t>(blocks_.size()));
        blocks_.emplace_back();
        records_.resize(records_.size() + kLanes);
        group_of_block_.push_back(0);
    }
    const std::uint32_t block = free_blocks_.back();
    free_blocks_.pop_back();
    group_of_block_[block] = group;
    return block;
}

int InstanceStore::Add(int number) {
    InstanceGroup& group = Group(number);
    if (group.count == static_cast<int>(group.blocks.size()) * kLanes) group.blocks.push_back(TakeBlock(number));
    const int id = TakeLowestId();
    const Lane lane = LaneAt(group, group.count++);
    lanes_[Index(id)] = lane;
    records_[lane] = {};
    records_[lane].id = BlockOfLane(lane).id[lane % kLanes] = id;
    trace_keys.Forget(id);
    kept.Forget(id);
    ++count_;
    return id;
}

void InstanceStore::MoveLane(Lane from, Lane to) {
    const InstanceBlock& source = BlockOfLane(from);
    InstanceBlock& target = BlockOfLane(to);
    const Lane a = from % kLanes, b = to % kLanes;
    target.time[b] = source.time[a];
    target.count_value[b] = source.count_value[a];
    target.base.x[b] = source.base.x[a];
    target.base.y[b] = source.base.y[a];
    target.base.z[b] = source.base.z[a];
    for (int i = 0; i < 4; ++i) target.random[i][b] = source.random[i][a];
    target.life[b] = source.life[a];
    target.id[b] = source.id[a];
    records_[to] = records_[from];
    lanes_[Index(records_[to].id)] = to;
}

void InstanceStore::Remove(int id) {
    const Lane lane = LaneOf(id);
    InstanceGroup& group = Group(GroupOfLane(lane));
    const Lane last = LaneAt(group, --group.count);
    if (lane != last) MoveLane(last, lane);
    group.evaluated = std::min(group.evaluated, group.count);
    if (group.count % kLanes == 0) {
        free_blocks_.push_back(group.blocks.back());
        group.blocks.pop_back();
    }
    lanes_[Index(id)] = kNoLane;
    lowest_free_ = std::min(lowest_free_, id);
    --count_;
}

void InstanceStore::RemoveAll(int number) {
    InstanceGroup& group = Group(number);
    while (group.count > 0) Remove(Record(LaneAt(group, group.count - 1)).id);
    group_of_.erase(group.sub);
    group = {};
    free_groups_.push_back(number);
}

void InstanceStore::Bind(int number, SubEffect& sub) {
    Group(number).sub = &sub;
    group_of_[&sub] = number;
    PrepareLists(sub);
}

void InstanceStore::Rebind(int number, SubEffect& sub) {
    const InstanceGroup& group = Group(number);
    group_of_.erase(group.sub);
    Bind(number, sub);
    for (std::size_t b = 0; b < group.blocks.size(); ++b) {
        InstanceBlock& block = Block(group.blocks[b]);
        for (int i = 0; i < group.LanesIn(b); ++i) block.life[i] = LifeForCount(sub, block.count_value[i]);
    }
}

void InstanceStore::Clear() {
    lanes_.clear();
    lowest_free_ = count_ = 0;
    groups_.clear();
    free_groups_.clear();
    group_of_.clear();
    free_blocks_.clear();
    for (std::size_t block = blocks_.size(); block > 0; --block)
        free_blocks_.push_back(static_cast<std::uint32_t>(block - 1));
    trace_keys.Clear();
    kept.Clear();
}

}   // namespace sparkrig
