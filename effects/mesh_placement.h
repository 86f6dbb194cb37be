// Where a mesh effect's scene stands for one instance. Pure.
#pragma once
#include <optional>

#include "platform/d3dx/d3dx_math.h"
#include "scene/object_3d.h"

namespace sparkrig {

/// What of an instance places its scene.
struct MeshPlace {
    D3DXVECTOR3 position;   // in the world
    D3DXVECTOR3 scale;
    D3DXQUATERNION rotation;
};

/// The world matrix of the scene's node. None for a billboard number that is no BillboardMode, and where a mode needs
/// the view and its matrix has no inverse.
///   Flat          as SetPosition, SetScale and SetRotation would place the node, whose rest pose others share
///   Upright       x to the right of the picture, z up; of the scaled and turned axes only the lengths count
///   FacingCamera  in the axes of the camera: it keeps its own rotation relative to it
///   BeforeCamera  the same, held 100 units before the camera wherever the instance is
/// The view mirrors, since it looks at right-handed coordinates along its third axis. So the last three mirror the
/// scene.
std::optional<D3DXMATRIX> PlaceScene(int billboard, const KRN_3dObject& node, const MeshPlace& place,
                                     const D3DXMATRIX& view);

}   // namespace sparkrig
