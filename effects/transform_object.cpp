#include "effects/transform_object.h"

#include "scene/object_3d.h"

namespace sparkrig {

std::shared_ptr<const KRN_3dObject> CopyTransformObject(const KRN_3dObject& node) {
    if (node.Tracks().AreEmpty()) return nullptr;
    auto copy = std::make_shared<KRN_3dObject>();
    KRN_3dObject::CopyNode(node, *copy, true);
    copy->HangOn(nullptr);   // the parent goes with its scene
    return copy;
}

void AddPositions(const KRN_3dObject& object, const MotionLanes& in, VectorLanes& positions) {
    for (int i = 0; i < in.count; ++i) {
        const D3DXVECTOR3 position = object.PositionAt(in.t[i]);
        positions.x[i] += position.x;
        positions.y[i] += position.y;
        positions.z[i] += position.z;
    }
}

void MultiplyByScales(const KRN_3dObject& object, const MotionLanes& in, Components components, VectorLanes& scales) {
    for (int i = 0; i < in.count; ++i) {
        const D3DXVECTOR3 scale = object.ScaleAt(in.t[i]);
        scales.x[i] *= scale.x;
        if (components == Components::X) continue;
        scales.y[i] *= scale.y;
        scales.z[i] *= scale.z;
    }
}

}   // namespace sparkrig
