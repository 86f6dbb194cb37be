// The nodes of text scenes, but for the geometry of meshes.
#pragma once
#include <string_view>

#include "scene/kva_text.h"
#include "scene/scene.h"

namespace sparkrig {

/// NODE_TM and its kin: a rest pose, its axis signs derived from what the matrix mirrors.
bool ReadTransform(KvaText& text, NodeTransform& transform);

// What every node block may hold.
void ReadPivot(KvaText& text, KRN_3dObject& node);
void ReadRestPose(KvaText& text, KRN_3dObject& node);
void ReadNodeName(KvaText& text, KRN_3dObject& node);
void ReadParentName(KvaText& text, KRN_3dObject& node);
/// TM_ANIMATION, keys in ticks. `file_name` is for messages.
void ReadTracks(KvaText& text, KRN_3dObject& node, const char* file_name);

// Whole blocks. False when the file ends first.
bool ReadHelper(KvaText& text, KRN_3dObject& helper, const char* file_name);
bool ReadCamera(KvaText& text, KRN_Camera& camera, const char* file_name);
bool ReadLight(KvaText& text, KRN_Light& light, const char* file_name);

}   // namespace sparkrig
