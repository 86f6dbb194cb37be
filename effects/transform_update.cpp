#include "effects/transform_update.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "effects/motion.h"
#include "effects/packed_colour.h"
#include "effects/particle_appearance.h"

namespace sparkrig {
namespace {

constexpr std::uint32_t kFullAlpha = 255;
constexpr float kSpecialRadius = 1.5f;   // of the length of the scale

/// v turned by the base orientation, the identity for everything that the system starts itself.
D3DXVECTOR3 Oriented(const D3DXQUATERNION& orientation, const D3DXVECTOR3& v) {
    if (orientation == D3DXQUATERNION()) return v;
    D3DXMATRIX matrix;
    D3DXVECTOR3 turned;
    D3DXMatrixRotationQuaternion(&matrix, &orientation);
    return *D3DXVec3TransformNormal(&turned, &v, &matrix);
}

float OwnAlpha(const VisualEffectObject& object) {
    const std::uint32_t alpha = object.colour >> 24;
    return alpha == kFullAlpha ? 1.0f : static_cast<float>(alpha) / kFullAlpha;
}

/// A mesh has no bounds yet and counts as visible.
float BoundingRadius(const VisualEffectObject& object) {
    switch (object.kind) {
        case SubEffectKind::Particle: return std::abs(object.scale.x);
        case SubEffectKind::Special: return kSpecialRadius * D3DXVec3Length(object.scale);
        case SubEffectKind::Mesh: break;
    }
    return std::numeric_limits<float>::infinity();
}

void GatherLanes(const VisualEffectObject* const* objects, int count, MotionLanes& in) {
    in.count = count;
    for (int i = 0; i < count; ++i) {
        const VisualEffectObject& object = *objects[i];
        in.t[i] = object.Age();
        in.c[i] = object.count_value;
        in.r[0][i] = object.random[0];
        in.r[1][i] = object.random[1];
        in.r[2][i] = object.random[2];
        in.r[3][i] = object.random[3];
        in.life[i] = object.life;
    }
}

/// Field by field in its place: a record that is made elsewhere and copied stalls on its own bytes.
void FillRecord(DrawRecord& record, const VisualEffectObject& object, double age, std::uint32_t colour, float angle) {
    record.particle.position = object.position;
    record.particle.colour = colour;
    record.particle.angle = angle;
    record.particle.size = object.scale.x;
    record.radius = BoundingRadius(object);
    record.age = static_cast<float>(age);
    record.born = age >= 0;
    record.opaque = ColourByte(object.alpha) != 0;
    record.sub = object.sub_effect;
}

}   // namespace

DrawRecord& TransformUpdate::RecordOf(int id) {
    const auto place = static_cast<std::size_t>(id);
    if (place >= records_.size()) records_.resize(std::max(place + 1, records_.size() * 2));
    return records_[place];
}

void TransformUpdate::Add(VisualEffectObject& object, int id) {
    const double age = object.Age();
    if (age < 0) {
        object.position = object.base_position;
        FillRecord(RecordOf(id), object, age, 0, 0);
        return;
    }
    RecordOf(id);   // so that it is there when the group is evaluated
    Group& group = groups_[groups_.NumberOf(*object.sub_effect)];
    group.objects[group.count] = &object;
    group.ids[group.count++] = id;
    if (group.count == kLanes) Evaluate(group);
}

void TransformUpdate::Flush() {
    for (int i = 0; i < groups_.Count(); ++i) Evaluate(groups_[i]);
    groups_.End();
    groups_.Begin();
}

void TransformUpdate::Evaluate(Group& group) {
    const int count = std::exchange(group.count, 0);
    if (count == 0) return;
    const SubEffect& sub = *group.sub;
    MotionLanes in;
    GatherLanes(group.objects, count, in);

    VectorLanes position, scale, rgb;
    QuaternionLanes rotation;
    alignas(64) float angle[kLanes], alpha[kLanes], fade[kLanes];
    alignas(64) std::uint32_t colour[kLanes];
    EvalPosition(sub, in, position);
    EvalScale(sub, in, scale);
    EvalRotations(sub, in, rotation, angle);
    EvalAlpha(sub, in, alpha);
    FadeFactor(sub, in, fade);
    EvalColor(sub, in, rgb);

    for (int i = 0; i < count; ++i) {
        VisualEffectObject& object = *group.objects[i];
        object.local_offset = {position.x[i], position.y[i], position.z[i]};
        object.position = object.base_position + Oriented(object.base_orientation, object.local_offset);
        object.scale = {scale.x[i], scale.y[i], scale.z[i]};
        object.rotation = {rotation.x[i], rotation.y[i], rotation.z[i], rotation.w[i]};
        object.alpha = alpha[i] = alpha[i] * fade[i] * OwnAlpha(object);
    }
    PackParticleColours(rgb, alpha, count, sub.blend_mode, colour);
    for (int i = 0; i < count; ++i) FillRecord(RecordOf(group.ids[i]), *group.objects[i], in.t[i], colour[i], angle[i]);
}

void TransformUpdate::RefreshRecord(const VisualEffectObject& object, int id) {
    const SubEffect& sub = *object.sub_effect;
    const double age = object.Age();
    VectorLanes rgb;
    float alpha[kLanes] = {object.alpha};
    std::uint32_t colour[kLanes];
    const D3DXVECTOR3 first = EvalColor(sub, age, object.count_value, object.random);
    rgb.x[0] = first.x;
    rgb.y[0] = first.y;
    rgb.z[0] = first.z;
    PackParticleColours(rgb, alpha, 1, sub.blend_mode, colour);
    FillRecord(RecordOf(id), object, age, colour[0], EvalRotationAngle(sub, age, object.count_value, object.random));
}

}   // namespace sparkrig
