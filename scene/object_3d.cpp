#include "scene/object_3d.h"

#include <algorithm>
#include <vector>

#include "base/numeric.h"
#include "scene/matrix_rows.h"

namespace sparkrig {
namespace {

/// Scaling x rotation x translation, written out: the first stretches the rows of the second.
D3DXMATRIX Compose(const D3DXVECTOR3& scale, const D3DXMATRIX& rotation, const D3DXVECTOR3& translation) {
    D3DXMATRIX matrix = rotation;
    SetRow(matrix, 0, Row(rotation, 0) * scale.x);
    SetRow(matrix, 1, Row(rotation, 1) * scale.y);
    SetRow(matrix, 2, Row(rotation, 2) * scale.z);
    SetRow(matrix, 3, translation);
    return matrix;
}

/// Of a parent's world matrix, what a child takes over. The lengths of the rows count as the scale, so that a mirrored
/// axis is part of the rotation.
D3DXMATRIX Inherited(const D3DXMATRIX& parent, const InheritFlags& inherits) {
    if (inherits.position && inherits.scale && inherits.rotation && inherits.axis_signs) return parent;
    D3DXMATRIX matrix = kIdentityMatrix;
    for (int i = 0; i < 3; ++i) {
        const D3DXVECTOR3 row = Row(parent, i);
        if (inherits.rotation) {
            D3DXVECTOR3 axis;
            SetRow(matrix, i, *D3DXVec3Normalize(&axis, &row));
        }
        if (inherits.scale) SetRow(matrix, i, Row(matrix, i) * D3DXVec3Length(row));
    }
    if (inherits.position) SetRow(matrix, 3, Row(parent, 3));
    return matrix;
}

}   // namespace

KRN_3dObject::KRN_3dObject() { KRN_Base::SetName("KRN_3dObject"); }

void KRN_3dObject::Error(const char* format, ...) const {
    std::va_list arguments;
    va_start(arguments, format);
    ReportError(node_.name.c_str(), format, arguments);
}

void KRN_3dObject::Warning(const char* format, ...) const {
    std::va_list arguments;
    va_start(arguments, format);
    ReportWarning(node_.name.c_str(), format, arguments);
    va_end(arguments);
}

// ---- Animation

double KRN_3dObject::AnimationTime(double time) const {
    return node_.loops ? WrapFloat(time, static_cast<double>(node_.length)) : std::max(time, 0.0);
}

int KRN_3dObject::Animate(double time, bool force, bool update_parent) {
    if (node_.frozen || (time == node_.last_time && !node_.dirty && !force)) return 1;
    const double t = AnimationTime(time);
    node_.world = LocalMatrixAt(t);
    node_.last_time = t;
    if (node_.parent) {
        if (update_parent) node_.parent->Animate(t, true, false);
        MultiplyByParent();
    }
    node_.dirty = false;
    return 1;
}

D3DXVECTOR3 KRN_3dObject::Position(double t, std::size_t* hint) const {
    if (tracks_.position.IsEmpty()) return node_.transform.position;
    return EvaluateTrack(tracks_.position, t, End(), hint);
}

D3DXVECTOR3 KRN_3dObject::Scale(double t, std::size_t* hint) const {
    if (tracks_.scale.IsEmpty()) return node_.transform.scale;
    return EvaluateTrack(tracks_.scale, t, End(), hint);
}

D3DXQUATERNION KRN_3dObject::Rotation(double t, std::size_t* hint) const {
    if (!tracks_.rotation.IsEmpty()) return EvaluateTrack(tracks_.rotation, t, End(), hint);
    const NodeTransform& rest = node_.transform;
    D3DXQUATERNION rotation;
    return *D3DXQuaternionRotationAxis(&rotation, &rest.rotation_axis, rest.rotation_angle);
}

/// Sets what the node currently stands at, too.
D3DXMATRIX KRN_3dObject::LocalMatrixAt(double t) {
    const NodeTransform& rest = node_.transform;
    node_.position = Position(t, &hints_.position);
    node_.scale = Scale(t, &hints_.scale);
    node_.rotation = Rotation(t, &hints_.rotation);
    D3DXMATRIX rotation;
    if (tracks_.rotation.IsEmpty())
        D3DXMatrixRotationAxis(&rotation, &rest.rotation_axis, rest.rotation_angle);
    else
        D3DXMatrixRotationQuaternion(&rotation, &node_.rotation);
    return Compose(Times(node_.scale, rest.axis_signs), rotation, node_.position);
}

void KRN_3dObject::MultiplyByParent() {
    const D3DXMATRIX parent = Inherited(node_.parent->node_.world, node_.inherits);
    D3DXMatrixMultiply(&node_.world, &node_.world, &parent);
}

void KRN_3dObject::RebuildLookupTables() {
    if (!tracks_.scale.RebuildLookup()) Error("Check: Scale key numbers don't match");
    if (!tracks_.rotation.RebuildLookup()) Error("Check: Rot key numbers don't match");
    if (!tracks_.position.RebuildLookup()) Error("Check: Pos key numbers don't match");
    node_.dirty = true;
}

void KRN_3dObject::SetLooping(bool loops) {
    node_.loops = loops;
    node_.dirty = true;
}

void KRN_3dObject::SetAnimationLength(float seconds) {
    node_.length = seconds;
    node_.dirty = true;
}

// ---- Direct placement

void KRN_3dObject::SetPosition(float x, float y, float z, bool rebuild_now) {
    node_.transform.position = {x, y, z};
    Placed(rebuild_now);
}

void KRN_3dObject::SetScale(float x, float y, float z, bool rebuild_now) {
    node_.transform.scale = {x, y, z};
    Placed(rebuild_now);
}

void KRN_3dObject::SetRotation(const D3DXQUATERNION& rotation, bool rebuild_now) {
    D3DXQUATERNION unit;
    D3DXQuaternionNormalize(&unit, &rotation);
    D3DXQuaternionToAxisAngle(&unit, &node_.transform.rotation_axis, &node_.transform.rotation_angle);
    Placed(rebuild_now);
}

void KRN_3dObject::SetRestPose(const NodeTransform& transform) {
    node_.transform = transform;
    node_.dirty = true;
}

void KRN_3dObject::Placed(bool rebuild_now) {
    if (rebuild_now) {
        RebuildFromNodeTransform();
    } else {
        node_.dirty = true;
    }
}

void KRN_3dObject::RebuildFromNodeTransform() {
    NodeTransform& rest = node_.transform;
    D3DXMATRIX rotation;
    D3DXMatrixRotationAxis(&rotation, &rest.rotation_axis, rest.rotation_angle);
    rest.matrix = Compose(Times(rest.scale, rest.axis_signs), rotation, rest.position);
    node_.world = rest.matrix;
    node_.position = rest.position;
}

void KRN_3dObject::RebuildFromCurrent(bool force) {
    std::vector<KRN_3dObject*> line;   // from here up to the first that stays; a file may nest deeply
    for (KRN_3dObject* node = this; node && (force || !node->node_.manual_matrix); node = node->node_.parent) {
        line.push_back(node);
    }
    for (std::size_t i = line.size(); i-- > 0;) {
        Fields& node = line[i]->node_;
        D3DXMATRIX rotation;
        D3DXMatrixRotationQuaternion(&rotation, &node.rotation);
        node.world = Compose(Times(node.scale, node.transform.axis_signs), rotation, node.position);
        if (node.parent) D3DXMatrixMultiply(&node.world, &node.world, &node.parent->node_.world);
        node.manual_matrix = node.dirty = true;
    }
}

// ---- Hierarchy

void KRN_3dObject::HangOn(KRN_3dObject* parent) {
    node_.parent = parent;
    node_.dirty = true;
}

void KRN_3dObject::SetParent(KRN_3dObject* parent) {
    HangOn(parent);
    for (const KRN_3dObject* above = parent; above; above = above->node_.parent) {
        if (above != this) continue;
        node_.parent = nullptr;
        Warning("Parent object '%s' descends from it", parent->Name().c_str());
        return;
    }
}

void KRN_3dObject::SetInheritance(const InheritFlags& inherits) {
    node_.inherits = inherits;
    node_.dirty = true;
}

void KRN_3dObject::CopyNode(const KRN_3dObject& source, KRN_3dObject& target, bool with_keys) {
    if (&source == &target) return;
    NodeTracks& tracks = target.tracks_;
    tracks.position.Clear();
    tracks.rotation.Clear();
    tracks.scale.Clear();
    target.node_ = source.node_;
    target.SetParent(source.node_.parent);
    if (with_keys) {
        tracks.position.CopyFrom(source.tracks_.position);
        tracks.rotation.CopyFrom(source.tracks_.rotation);
        tracks.scale.CopyFrom(source.tracks_.scale);
        target.RebuildLookupTables();
    }
    target.node_.dirty = source.node_.dirty;
}

}   // namespace sparkrig
