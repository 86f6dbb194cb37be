#include "scene/kva_nodes.h"

#include <bit>
#include <cmath>

#include "scene/exported_keys.h"

namespace sparkrig {

namespace {

constexpr float kRadiansPerDegree = 0.01745329238474369f;
constexpr float kEndlessRange = std::bit_cast<float>(0x5F7FFF7Du);

/// -1 for each axis whose largest component has another sign in the matrix than the pose's parts make it.
void DeriveAxisSigns(const KvaText& text, NodeTransform& pose) {
    D3DXMATRIX rotation;
    D3DXMatrixRotationAxis(&rotation, &pose.rotation_axis, pose.rotation_angle);
    const float scale[3] = {pose.scale.x, pose.scale.y, pose.scale.z};
    float* const signs[3] = {&pose.axis_signs.x, &pose.axis_signs.y, &pose.axis_signs.z};
    for (int row = 0; row < 3; ++row) {
        int largest = 0;
        float rebuilt[3];
        for (int k = 0; k < 3; ++k) {
            rebuilt[k] = scale[row] * rotation.m[row][k];
            if (std::abs(rebuilt[k]) >= std::abs(rebuilt[largest])) largest = k;
        }
        if (pose.matrix.m[row][largest] == 0) return text.Warning("Determinant in TM is zero.");
        *signs[row] = rebuilt[largest] / pose.matrix.m[row][largest] < 0 ? -1.0f : 1.0f;
    }
}

void ReadRow(KvaText& text, float (&row)[4], float last) {
    float three[3];
    if (!text.Triple(three)) return;
    std::copy_n(three, 3, row);
    row[3] = last;
}

bool ReadTime(KvaText& text, float& time) {
    if (!text.Number(time)) return false;
    if (std::isfinite(time)) return true;
    text.Warning("Skipped a key without a time");
    return false;
}

void ReadPositions(KvaText& text, KeyTrack<KRN_PosKeyData>& track) {
    float time = 0;
    const auto bezier = [&] {
        KRN_PosKeyData key;
        if (ReadTime(text, time) && text.Triple(key.value) && text.Triple(key.in_tangent) &&
            text.Triple(key.out_tangent))
            track.Add(time, KeyInterpolation::Bezier, key);
    };
    const auto sample = [&] {
        KRN_PosKeyData key;
        if (ReadTime(text, time) && text.Triple(key.value)) track.Add(time, KeyInterpolation::Linear, key);
    };
    text.Block({{"CONTROL_BEZIER_POS_KEY", bezier}, {"CONTROL_POS_SAMPLE", sample}});
}

void ReadScales(KvaText& text, KeyTrack<KRN_ScaleKeyData>& track) {
    const auto read_key = [&](KeyInterpolation interpolation) {
        float time = 0;
        KRN_ScaleKeyData key;
        if (ReadTime(text, time) && text.Triple(key.value)) AddExportedScale(track, time, interpolation, key);
    };
    text.Block({{"CONTROL_BEZIER_SCALE_KEY", [&] { read_key(KeyInterpolation::Bezier); }},
                {"CONTROL_SCALE_SAMPLE", [&] { read_key(KeyInterpolation::Linear); }}});
}

void ReadRotations(KvaText& text, KeyTrack<KRN_RotKeyData>& track, const char* file_name) {
    ExportedRotations rotations(track);
    const auto add = [&](float time, KeyInterpolation interpolation, const KRN_RotKeyData& key) {
        if (!rotations.Add(time, interpolation, key)) {
            text.Warning("Skipped wrong order rotation key in file: %s", file_name);
        }
    };
    const auto tcb = [&] {
        float time = 0;
        KRN_RotKeyData k;
        if (ReadTime(text, time) && text.Triple(k.axis) && text.Number(k.angle) && text.Number(k.tension) &&
            text.Number(k.continuity) && text.Number(k.bias) && text.Number(k.ease_in) && text.Number(k.ease_out))
            add(time, KeyInterpolation::Tcb, k);
    };
    const auto sample = [&] {
        float time = 0;
        KRN_RotKeyData k;
        if (ReadTime(text, time) && text.Triple(k.axis) && text.Number(k.angle)) add(time, KeyInterpolation::Linear, k);
    };
    text.Block({{"CONTROL_TCB_ROT_KEY", tcb}, {"CONTROL_ROT_SAMPLE", sample}, {"CONTROL_ROT_KEY", sample}});
}

void ReadLightSettings(KvaText& text, D3DLIGHT9& light) {
    float colour[3] = {};
    const auto intensity = [&] {
        float value = 0;
        if (!text.Number(value)) return;
        for (float& component : colour) component *= value;
        light.Diffuse = light.Specular = {colour[0], colour[1], colour[2], 1};
        light.Ambient = {0, 0, 0, 0};
    };
    const auto aspect = [&] {
        float value = 0;
        if (text.Number(value) && std::abs(value) != 1.0f) text.Warning("Light aspect other than 1");
    };
    const auto cone = [&](float& angle) {
        float degrees = 0;
        if (text.Number(degrees)) angle = degrees * kRadiansPerDegree;
    };
    text.Block({{"LIGHT_COLOR", [&] { text.Triple(colour); }},
                {"LIGHT_INTENS", intensity},
                {"LIGHT_ASPECT", aspect},
                {"LIGHT_HOTSPOT", [&] { cone(light.Theta); }},
                {"LIGHT_FALLOFF", [&] { cone(light.Phi); }},
                {"LIGHT_TDIST", [&] { light.Range = kEndlessRange; }}});
}

void SetType(KvaText& text, const String& word, D3DLIGHT9& light) {
    constexpr struct {
        const char* word;
        D3DLIGHTTYPE type;
    } kTypes[] = {{"Omni", D3DLIGHT_POINT},
                  {"Directional", D3DLIGHT_DIRECTIONAL},
                  {"Target", D3DLIGHT_SPOT},
                  {"TargetSpot", D3DLIGHT_SPOT}};
    light.Type = D3DLIGHT_POINT;
    if (word.GetLength() == 0) return;
    for (const auto& row : kTypes)
        if (EqualNoCase(word.c_str(), row.word)) return void(light.Type = row.type);
    text.Warning("Unknown light type changed to omni");
}

}   // namespace

bool ReadTransform(KvaText& text, NodeTransform& transform) {
    auto& rows = transform.matrix.m;
    const auto axis = [&] {
        if (text.Triple(transform.rotation_axis)) transform.rotation_axis *= -1;
    };
    const bool whole = text.Block({{"TM_ROW0", [&] { ReadRow(text, rows[0], 0); }},
                                   {"TM_ROW1", [&] { ReadRow(text, rows[1], 0); }},
                                   {"TM_ROW2", [&] { ReadRow(text, rows[2], 0); }},
                                   {"TM_ROW3", [&] { ReadRow(text, rows[3], 1); }},
                                   {"TM_POS", [&] { text.Triple(transform.position); }},
                                   {"TM_ROTAXIS", axis},
                                   {"TM_ROTANGLE", [&] { text.Number(transform.rotation_angle); }},
                                   {"TM_SCALE", [&] { text.Triple(transform.scale); }}});
    if (whole) DeriveAxisSigns(text, transform);
    return whole;
}

void ReadPivot(KvaText& text, KRN_3dObject& node) {
    NodeTransform pivot;
    ReadTransform(text, pivot);
    node.SetPivotMatrix(pivot.matrix);
}

void ReadRestPose(KvaText& text, KRN_3dObject& node) {
    NodeTransform pose;
    ReadTransform(text, pose);
    node.SetRestPose(pose);
}

void ReadNodeName(KvaText& text, KRN_3dObject& node) {
    String name;
    if (text.Text(name)) node.SetNodeName(name);
}

void ReadParentName(KvaText& text, KRN_3dObject& node) {
    String name;
    if (text.Text(name)) node.SetParentName(name);
}

void ReadTracks(KvaText& text, KRN_3dObject& node, const char* file_name) {
    NodeTracks& tracks = node.Tracks();
    const auto positions = [&] { ReadPositions(text, tracks.position); };
    const auto rotations = [&] { ReadRotations(text, tracks.rotation, file_name); };
    const auto scales = [&] { ReadScales(text, tracks.scale); };
    text.Block({{"CONTROL_POS_BEZIER", positions},
                {"CONTROL_POS_TRACK", positions},
                {"CONTROL_ROT_TCB", rotations},
                {"CONTROL_ROT_TRACK", rotations},
                {"CONTROL_ROT_LINEAR", rotations},
                {"CONTROL_SCALE_BEZIER", scales},
                {"CONTROL_SCALE_TRACK", scales}});
}

bool ReadHelper(KvaText& text, KRN_3dObject& helper, const char* file_name) {
    return text.Block({{"NODE_NAME", [&] { ReadNodeName(text, helper); }},
                       {"NODE_PARENT", [&] { ReadParentName(text, helper); }},
                       {"NODE_TM", [&] { ReadRestPose(text, helper); }},
                       {"PIVOT_TM", [&] { ReadPivot(text, helper); }},
                       {"TM_ANIMATION", [&] { ReadTracks(text, helper, file_name); }}});
}

bool ReadCamera(KvaText& text, KRN_Camera& camera, const char* file_name) {
    String target;
    const auto read_target = [&] {
        if (text.Text(target)) camera.SetTargetName(target);
    };
    const auto settings = [&] { text.Block({{"CAMERA_FOV", [&] { text.Number(camera.fov); }}}); };
    return text.Block({{"NODE_NAME", [&] { ReadNodeName(text, camera); }},
                       {"NODE_PARENT", [&] { ReadParentName(text, camera); }},
                       {"NODE_TM", [&] { ReadRestPose(text, camera); }},
                       {"PIVOT_TM", [&] { ReadPivot(text, camera); }},
                       {"TM_ANIMATION", [&] { ReadTracks(text, camera, file_name); }},
                       {"TARGET_NODE", read_target},
                       {"CAMERA_SETTINGS", settings}});
}

bool ReadLight(KvaText& text, KRN_Light& light, const char* file_name) {
    String target, type;
    const auto read_target = [&] {
        if (text.Text(target)) light.SetTargetName(target);
    };
    const auto read_enabled = [&] {
        int enabled = 0;
        if (text.Integer(enabled)) light.enabled = enabled != 0;
    };
    const bool whole = text.Block({{"NODE_NAME", [&] { ReadNodeName(text, light); }},
                                   {"NODE_PARENT", [&] { ReadParentName(text, light); }},
                                   {"NODE_TM", [&] { ReadRestPose(text, light); }},
                                   {"PIVOT_TM", [&] { ReadPivot(text, light); }},
                                   {"TM_ANIMATION", [&] { ReadTracks(text, light, file_name); }},
                                   {"TARGET_NODE", read_target},
                                   {"LIGHT_TYPE", [&] { text.SetWord(type); }},
                                   {"LIGHT_USELIGHT", read_enabled},
                                   {"LIGHT_SETTINGS", [&] { ReadLightSettings(text, light.record); }}});
    if (!whole) return false;
    light.record.Falloff = light.record.Attenuation0 = 1;
    light.record.Attenuation1 = light.record.Attenuation2 = 0;
    light.off = false;
    SetType(text, type, light.record);
    return true;
}

}   // namespace sparkrig
