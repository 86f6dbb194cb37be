// Position, scale, rotation, alpha and appearance of live instances at their present age. Instances wait in groups, one
// for each sub-effect, so that a group can be evaluated stage after stage.
#pragma once
#include <vector>

#include "effects/draw_record.h"
#include "effects/effect_instance.h"
#include "effects/motion_lanes.h"
#include "effects/sub_effect_groups.h"

namespace sparkrig {

class TransformUpdate {
  public:
    /// Before its birth an instance only takes its place. One that is born waits until its group is full or for Flush:
    /// it must not be moved or deleted meanwhile.
    void Add(VisualEffectObject& object, int id);
    /// Evaluates all that wait.
    void Flush();

    /// Makes the record of an instance whose sub-effect or age has changed without an update: its colour and angle are
    /// those of its present age, the rest is what it stores.
    void RefreshRecord(const VisualEffectObject& object, int id);
    /// By id. The record of an id without an instance means nothing.
    const std::vector<DrawRecord>& Records() const { return records_; }

  private:
    struct Group {
        SubEffect* sub = nullptr;   // borrowed
        int count = 0;
        VisualEffectObject* objects[kLanes];
        int ids[kLanes];
    };

    void Evaluate(Group& group);
    DrawRecord& RecordOf(int id);

    SubEffectGroups<Group> groups_;
    std::vector<DrawRecord> records_;
};

}   // namespace sparkrig
