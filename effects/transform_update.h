// Position, scale, rotation and alpha of live instances at their present age. Instances wait in groups, one for each
// sub-effect, so that a group can be evaluated stage after stage.
#pragma once
#include "effects/effect_instance.h"
#include "effects/motion_lanes.h"
#include "effects/sub_effect_groups.h"

namespace sparkrig {

class TransformUpdate {
  public:
    /// Before its birth an instance only takes its place. One that is born waits until its group is full or for Flush:
    /// it must not be moved or deleted meanwhile.
    void Add(VisualEffectObject& object);
    /// Evaluates all that wait.
    void Flush();

  private:
    struct Group {
        SubEffect* sub = nullptr;   // borrowed
        int count = 0;
        VisualEffectObject* objects[kLanes];

        void Evaluate();
    };

    SubEffectGroups<Group> groups_;
};

/// The motion inputs of instances of one sub-effect, at their present age; at 0 before their birth.
void GatherLanes(VisualEffectObject* const* objects, int count, MotionLanes& in);

}   // namespace sparkrig
