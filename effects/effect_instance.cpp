#include "effects/effect_instance.h"

#include "effects/block_update.h"
#include "effects/motion.h"
#include "effects/particle_appearance.h"

namespace sparkrig {
namespace {

/// All but the transforms.
VisualEffectObject Gather(const InstanceStore& store, int id) {
    const Lane lane = store.LaneOf(id);
    const InstanceBlock& block = store.BlockOfLane(lane);
    const Lane place = lane % kLanes;
    SubEffect& sub = *store.Group(store.GroupOfLane(lane)).sub;
    VisualEffectObject object;
    object.id = id;
    object.time = block.time[place];
    object.count_value = block.count_value[place];
    object.birth_delay = BirthDelay(sub, object.count_value);
    object.base_position = {block.base.x[place], block.base.y[place], block.base.z[place]};
    for (int i = 0; i < 4; ++i) object.random[i] = block.random[i][place];
    object.trace_key = store.trace_keys.Get(id);
    object.kind = sub.kind;
    object.sub_effect = &sub;
    return object;
}

/// Those of the present age. One that is not born has none yet.
InstanceTransforms ComputeTransforms(const VisualEffectObject& object) {
    InstanceTransforms transforms;
    const SubEffect& sub = *object.sub_effect;
    const double age = object.Age();
    const float c = object.count_value;
    transforms.position = object.base_position;
    if (age < 0) return transforms;
    transforms.local_offset = EvalPosition(sub, age, c, object.random);
    transforms.position = object.base_position + transforms.local_offset;
    transforms.scale = EvalScale(sub, age, c, object.random);
    transforms.rotation = EvalRotation(sub, age, c, object.random);
    transforms.alpha = EvalAlpha(sub, age, c, object.random) * FadeFactor(sub, age, c);
    return transforms;
}

int IdOf(const InstanceStore& store, const InstanceGroup& group, int n) {
    return store.Record(InstanceStore::LaneAt(group, n)).id;
}

std::uint32_t PackedColour(const VisualEffectObject& object, float instance_alpha) {
    const SubEffect& sub = *object.sub_effect;
    const D3DXVECTOR3 first = EvalColor(sub, object.Age(), object.count_value, object.random);
    VectorLanes rgb;
    float alpha[kLanes] = {instance_alpha};
    std::uint32_t colour[kLanes];
    rgb.x[0] = first.x;
    rgb.y[0] = first.y;
    rgb.z[0] = first.z;
    PackParticleColours(rgb, alpha, 1, sub.blend_mode, colour);
    return colour[0];
}

}   // namespace

VisualEffectObject GetInstance(const InstanceStore& store, int id) {
    VisualEffectObject object = Gather(store, id);
    const bool keeps = store.Group(store.GroupOfLane(store.LaneOf(id))).keeps;
    const InstanceTransforms transforms = keeps ? store.kept.Get(id) : ComputeTransforms(object);
    object.local_offset = transforms.local_offset;
    object.position = transforms.position;
    object.scale = transforms.scale;
    object.rotation = transforms.rotation;
    object.alpha = transforms.alpha;
    return object;
}

void KeepTransforms(InstanceStore& store, int id) { store.kept.Set(id, ComputeTransforms(Gather(store, id))); }

void KeepTransforms(InstanceStore& store, InstanceGroup& group) {
    if (group.keeps) return;
    for (int n = 0; n < group.count; ++n) KeepTransforms(store, IdOf(store, group, n));
    group.keeps = true;
}

void UpdateKept(InstanceStore& store, InstanceGroup& group) {
    bool all_born = true;
    for (int n = 0; n < group.count; ++n) {
        const VisualEffectObject object = Gather(store, IdOf(store, group, n));
        InstanceTransforms transforms = ComputeTransforms(object);
        if (object.Age() < 0) {   // back to its base, and as it was before
            all_born = false;
            transforms = store.kept.Get(object.id);
            transforms.position = object.base_position;
        }
        store.kept.Set(object.id, transforms);
    }
    group.keeps = !all_born;
}

void RefreshRecords(InstanceStore& store, InstanceGroup& group) {
    for (int n = 0; n < group.count; ++n) {
        DrawRecord& record = store.Record(InstanceStore::LaneAt(group, n));
        const VisualEffectObject object = GetInstance(store, record.id);
        const double age = object.Age();
        record.position = object.position;
        record.colour = PackedColour(object, object.alpha);
        record.angle = EvalRotationAngle(*object.sub_effect, age, object.count_value, object.random);
        record.size = RecordSize(object.kind, object.scale);
        record.age = age >= 0 ? static_cast<float>(age) : -1;
    }
}

}   // namespace sparkrig
