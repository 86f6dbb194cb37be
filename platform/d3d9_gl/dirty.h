// The groups in which device state is sent to OpenGL. A state call marks its group; the next draw sends what is marked.
#pragma once
#include "platform/d3d9/d3d9_constants.h"

namespace sparkrig {

enum DirtyGroup : unsigned {
    kDirtyProgram = 1 << 0,      // what the programs are generated from
    kDirtyStates = 1 << 1,       // uniforms of the render and stage states
    kDirtyTransforms = 1 << 2,   // world, view, projection
    kDirtyLighting = 1 << 3,     // material, lights, texture matrices
    kDirtyPalette = 1 << 4,      // world matrices of blended vertices
    kDirtyOutput = 1 << 5,       // blending, write mask
    kDirtyDepth = 1 << 6,
    kDirtyRaster = 1 << 7,   // culling, fill mode, depth bias
    kDirtyTarget = 1 << 8,   // framebuffer, viewport
    kDirtyTextures = 1 << 9,
    kDirtyVertexGlobals = 1 << 10,
    kDirtyPixelGlobals = 1 << 11,
    kDirtyAll = (1 << 12) - 1,
};

/// The groups of a state that exists.
unsigned RenderStateGroups(D3DRENDERSTATETYPE state);
unsigned StageStateGroups(D3DTEXTURESTAGESTATETYPE state);
unsigned TransformGroups(D3DTRANSFORMSTATETYPE type);

}   // namespace sparkrig
