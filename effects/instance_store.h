// Where the live instances are kept: not one after the other, but in blocks of lanes.
//
//   id       what an instance is known by; the lowest free one is given first
//   group    the instances of one live sub-effect
//   block    up to kLanes of a group side by side, one array for each number; all blocks of a group but the last are
//   full lane     the place of an instance: block number x kLanes + its place in the arrays of the block record   what
//   drawing needs of a lane, in one array for all blocks
//
// A lane changes whenever an instance of its group ends: the last one of the group takes the free place. Ids stay.
#pragma once
#include <memory>
#include <unordered_map>
#include <vector>

#include "base/large_pages.h"
#include "effects/effect_definition.h"
#include "effects/motion_lanes.h"

namespace sparkrig {

/// Written by the update, read by drawing, which touches nothing else of an instance.
struct alignas(32) DrawRecord {
    D3DXVECTOR3 position;       // in the world
    std::uint32_t colour = 0;   // packed ARGB of a particle. For every kind an alpha byte of 0 means invisible
    float angle = 0;            // of a particle, radians
    float size = 0;   // the size of a particle, below 0 where it is mirrored; else the radius of the bounding sphere
    float age = -1;   // seconds since birth, below 0 before it
    std::int32_t id = 0;
};
static_assert(sizeof(DrawRecord) == 32);

struct InstanceBlock {
    alignas(64) double time[kLanes];   // of the instance's own clock, seconds
    alignas(64) float count_value[kLanes];
    VectorLanes base;   // where it was started
    alignas(64) std::int32_t id[kLanes];
    // Read only where the definition asks for them.
    alignas(64) float random[4][kLanes];
    alignas(64) float life[kLanes];   // LifeForCount
};

using Lane = std::uint32_t;

/// What the update gives an instance, where it cannot be computed again from its age.
struct InstanceTransforms {
    D3DXVECTOR3 local_offset, position, scale;   // the position is in the world
    D3DXQUATERNION rotation;
    float alpha = 1;
};

struct InstanceGroup {
    SubEffect* sub = nullptr;            // borrowed from the definitions
    std::vector<std::uint32_t> blocks;   // their numbers
    int count = 0;                       // instances
    int evaluated = 0;                   // those before this one have records; the rest has been started since
    bool keeps = false;                  // its transforms are those of InstanceStore::Kept

    int LanesIn(std::size_t block) const {
        const int left = count - static_cast<int>(block) * kLanes;
        return left < kLanes ? left : kLanes;
    }
};

/// One value an id, for the few instances that have one; the others have the default.
template <class Value>
class Aside {
  public:
    explicit Aside(Value none) : none_(none) {}
    const Value& Get(int id) const {
        const auto place = static_cast<std::size_t>(id);
        return place < values_.size() ? values_[place] : none_;
    }
    void Set(int id, const Value& value) {
        const auto place = static_cast<std::size_t>(id);
        if (place >= values_.size()) values_.resize(place + place / 2 + 1, none_);
        values_[place] = value;
    }
    /// Where nothing was set above, this costs nothing.
    void Forget(int id) {
        const auto place = static_cast<std::size_t>(id);
        if (place < values_.size()) values_[place] = none_;
    }
    void Clear() { values_.clear(); }

  private:
    Value none_;
    std::vector<Value> values_;
};

class InstanceStore {
  public:
    /// The group of the sub-effect, made at its first use.
    int GroupOf(SubEffect& sub);
    /// Adds an instance to a group, its time and numbers still to be set: Block() and Place().
    int Add(int group);
    void Remove(int id);
    void Clear();
    /// Lets a group play another sub-effect. Its instances' lives follow.
    void Rebind(int group, SubEffect& sub);
    /// Removes a group with its instances.
    void RemoveAll(int group);

    int Count() const { return count_; }
    /// No id lies here or above.
    int IdEnd() const { return static_cast<int>(lanes_.size()); }
    bool IsLive(int id) const { return static_cast<std::size_t>(id) < lanes_.size() && lanes_[Index(id)] != kNoLane; }
    Lane LaneOf(int id) const { return lanes_[Index(id)]; }

    int GroupCount() const { return static_cast<int>(groups_.size()); }
    InstanceGroup& Group(int number) { return *groups_[Index(number)]; }
    const InstanceGroup& Group(int number) const { return *groups_[Index(number)]; }
    int GroupOfLane(Lane lane) const { return group_of_block_[lane / kLanes]; }
    /// The lane of the nth instance of a group.
    static Lane LaneAt(const InstanceGroup& group, int n) {
        return group.blocks[Index(n) / kLanes] * kLanes + static_cast<Lane>(n) % kLanes;
    }

    InstanceBlock& Block(std::uint32_t number) { return blocks_[number]; }
    const InstanceBlock& Block(std::uint32_t number) const { return blocks_[number]; }
    InstanceBlock& BlockOfLane(Lane lane) { return blocks_[lane / kLanes]; }
    const InstanceBlock& BlockOfLane(Lane lane) const { return blocks_[lane / kLanes]; }
    DrawRecord* Records(std::uint32_t block) { return &records_[std::size_t{block} * kLanes]; }
    const DrawRecord* Records(std::uint32_t block) const { return &records_[std::size_t{block} * kLanes]; }
    DrawRecord& Record(Lane lane) { return records_[lane]; }
    const DrawRecord& Record(Lane lane) const { return records_[lane]; }

    Aside<std::int32_t> trace_keys{-1};   // by id: the trail block that an instance feeds, or -1
    Aside<InstanceTransforms> kept{InstanceTransforms()};

  private:
    static constexpr Lane kNoLane = ~Lane{0};
    static std::size_t Index(int number) { return static_cast<std::size_t>(number); }

    void Bind(int group, SubEffect& sub);
    int TakeLowestId();
    std::uint32_t TakeBlock(int group);
    void MoveLane(Lane from, Lane to);

    std::vector<Lane> lanes_;   // by id; kNoLane where an id is free
    int lowest_free_ = 0;       // no free id lies below
    int count_ = 0;
    std::vector<std::unique_ptr<InstanceGroup>> groups_;
    std::vector<int> free_groups_;   // without instances and sub-effect
    std::unordered_map<const SubEffect*, int> group_of_;
    LargeVector<InstanceBlock> blocks_;
    LargeVector<DrawRecord> records_;
    std::vector<std::int32_t> group_of_block_;
    std::vector<std::uint32_t> free_blocks_;
};

}   // namespace sparkrig
