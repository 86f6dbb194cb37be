// What a transform object, a node with keys, adds to the motion of instances that are as old as the times say.
#pragma once
#include "effects/motion_lanes.h"

namespace sparkrig {

/// A copy of the node with its keys; null where it has none.
std::shared_ptr<const KRN_3dObject> CopyTransformObject(const KRN_3dObject& node);

void AddPositions(const KRN_3dObject& object, const MotionLanes& in, VectorLanes& positions);
void MultiplyByScales(const KRN_3dObject& object, const MotionLanes& in, Components components, VectorLanes& scales);

}   // namespace sparkrig
