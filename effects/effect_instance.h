// One live instance of a sub-effect with all that it has, put together for those who ask for one. The instances
// themselves are kept in instance_store.h.
#pragma once
#include "effects/instance_store.h"

namespace sparkrig {

struct VisualEffectObject {
    int id = 0;
    double time = 0;          // its own clock, seconds
    double birth_delay = 0;   // seconds
    D3DXVECTOR3 base_position;
    D3DXVECTOR3 local_offset;
    D3DXVECTOR3 position;   // in the world
    D3DXVECTOR3 scale;
    D3DXQUATERNION base_orientation;   // that of every start is the identity
    D3DXQUATERNION rotation;
    float alpha = 1;
    float count_value = 0;
    float random[4] = {};
    std::int32_t trace_key = -1;   // the trail block that it feeds, or -1
    SubEffectKind kind = SubEffectKind::Particle;
    SubEffect* sub_effect = nullptr;   // borrowed from the definitions

    /// Seconds since birth; negative before.
    double Age() const { return time - birth_delay; }
};

/// The instance of a live id.
VisualEffectObject GetInstance(const InstanceStore& store, int id);

// The transforms of an instance are functions of its age, and are computed again when somebody asks. Where its present
// age is not that of its last update, they are kept instead: under a detail level that passes over it, after a reload
// until the next update, and when its clock runs backwards.

/// From now on the group keeps the transforms that its instances have.
void KeepTransforms(InstanceStore& store, InstanceGroup& group);
/// The same for an instance that joins such a group.
void KeepTransforms(InstanceStore& store, int id);
/// After an update of a group that keeps its transforms: only those that are not born go on keeping them.
void UpdateKept(InstanceStore& store, InstanceGroup& group);
/// The records of a group that keeps its transforms: colour and angle are those of the present age.
void RefreshRecords(InstanceStore& store, InstanceGroup& group);

}   // namespace sparkrig
