// A named node of a scene: rest pose and tracks -> Animate(time) -> world matrix.
//
// Life: made -> read or placed -> linked to its parent -> animated as often as wanted. Parents are borrowed: they live
// as long as the scene does.
#pragma once
#include <cstdint>

#include "base/resource_manager.h"
#include "base/string.h"
#include "platform/d3dx/d3dx_math.h"
#include "scene/node_tracks.h"

namespace sparkrig {

class File;

enum class ObjectKind : std::uint32_t { None = 0, Mesh = 1, Bone = 2, Helper = 4, Camera = 8, Light = 32 };

/// The rest pose.
struct NodeTransform {
    D3DXMATRIX matrix = kIdentityMatrix;
    D3DXVECTOR3 axis_signs = {1, 1, 1};   // -1 marks an axis that the matrix mirrors
    D3DXVECTOR3 position;
    D3DXVECTOR3 scale = {1, 1, 1};
    D3DXVECTOR3 rotation_axis;
    float rotation_angle = 0;   // radians
};

/// What a node takes over from its parent.
struct InheritFlags {
    bool position = true, scale = true, rotation = true, axis_signs = true;
};

class KRN_3dObject : public KRN_ResourceBase {
  public:
    KRN_3dObject();
    virtual ~KRN_3dObject() = default;

    /// Reports carry the node's name in front.
    [[noreturn]] void Error(const char* format, ...) const override __attribute__((format(printf, 2, 3)));
    void Warning(const char* format, ...) const override __attribute__((format(printf, 2, 3)));

    // ---- Files: its record of a binary scene, in the newest version.
    virtual void Write(File& file) const;
    /// Drops what the node was. Its own errors are those of a record that is none.
    virtual void Read(File& file);
    /// Reserved; a mesh answers 1.
    virtual int Reserved(std::uint32_t) { return 0; }

    // ---- Animation
    /// Places the node as its tracks, or else its rest pose, have it at a time (seconds), relative to its parent. An
    /// unchanged time does nothing without `force`. With `update_parent` the parent is placed first. Always 1.
    virtual int Animate(double time, bool force, bool update_parent);
    /// Keys may be added; RebuildLookupTables makes them count.
    NodeTracks& Tracks() { return tracks_; }
    const NodeTracks& Tracks() const { return tracks_; }
    /// To be called when keys or their times have changed. Tracks that do not hold as many keys as they were said to
    /// are an error.
    void RebuildLookupTables();
    // What Animate would make current at a time. They change nothing: threads may ask at once.
    D3DXVECTOR3 PositionAt(double time) const { return Position(AnimationTime(time)); }
    D3DXVECTOR3 ScaleAt(double time) const { return Scale(AnimationTime(time)); }
    D3DXQUATERNION RotationAt(double time) const { return Rotation(AnimationTime(time)); }
    /// The animation repeats after its length.
    void SetLooping(bool loops);
    bool Loops() const { return node_.loops; }
    void SetAnimationLength(float seconds);
    float AnimationLength() const { return node_.length; }
    /// A frozen node stays where it is.
    void SetFrozen(bool frozen) { node_.frozen = frozen; }

    // ---- Direct placement. With rebuild_now the local matrix is made at once and becomes the world matrix.
    void SetPosition(float x, float y, float z, bool rebuild_now);
    void SetScale(float x, float y, float z, bool rebuild_now);
    void SetRotation(const D3DXQUATERNION& rotation, bool rebuild_now);
    /// Makes the world matrix of the current position, scale and rotation, those of the ancestors first; every node
    /// follows its parent fully. Without `force` a node that this has been done for stays.
    void RebuildFromCurrent(bool force);

    // ---- Hierarchy
    KRN_3dObject* Parent() const { return node_.parent; }
    /// Null for none. A parent that descends from this node is refused with a warning: the node has none then.
    void SetParent(KRN_3dObject* parent);
    /// The same without looking for a ring: the caller knows that there is none.
    void HangOn(KRN_3dObject* parent);
    const String& ParentName() const { return node_.parent_name; }
    void SetParentName(const String& name) { node_.parent_name = name; }
    void SetInheritance(const InheritFlags& inherits);
    const InheritFlags& Inheritance() const { return node_.inherits; }
    /// Makes the node part of `target` a copy of the source's, its keys included or without any.
    static void CopyNode(const KRN_3dObject& source, KRN_3dObject& target, bool with_keys);

    // ---- What it is and where it stands
    ObjectKind Kind() const { return node_.kind; }
    void SetKind(ObjectKind kind) { node_.kind = kind; }
    const String& Name() const { return node_.name; }
    void SetNodeName(const String& name) { node_.name = name; }
    const NodeTransform& RestPose() const { return node_.transform; }
    void SetRestPose(const NodeTransform& transform);
    const D3DXMATRIX& WorldMatrix() const { return node_.world; }
    void SetWorldMatrix(const D3DXMATRIX& world) { node_.world = world; }
    /// Where the node's own coordinates lie relative to its geometry.
    const D3DXMATRIX& PivotMatrix() const { return node_.pivot; }
    void SetPivotMatrix(const D3DXMATRIX& pivot) { node_.pivot = pivot; }
    // As last animated, relative to the parent.
    const D3DXVECTOR3& CurrentPosition() const { return node_.position; }
    const D3DXVECTOR3& CurrentScale() const { return node_.scale; }
    const D3DXQUATERNION& CurrentRotation() const { return node_.rotation; }

  protected:
    /// The time of the node's own animation: in a loop below its length, never negative otherwise.
    double AnimationTime(double time) const;

  private:
    friend struct SceneRecords;   // the tables of a binary scene's fields
    /// All of a node but its tracks: what CopyNode copies as it is.
    struct Fields {
        ObjectKind kind = ObjectKind::None;
        D3DXMATRIX world = kIdentityMatrix, pivot = kIdentityMatrix;
        NodeTransform transform;
        bool frozen = false;
        bool dirty = true;            // must be placed again even at an unchanged time
        bool manual_matrix = false;   // the world matrix is RebuildFromCurrent's
        double last_time = 0;         // of the last placing, seconds of the node's own animation
        D3DXVECTOR3 position;
        D3DXVECTOR3 scale = {1, 1, 1};
        D3DXQUATERNION rotation;
        String name = "*undefined*", parent_name;
        KRN_3dObject* parent = nullptr;
        InheritFlags inherits;
        bool loops = false;
        float length = 100;   // seconds
    };

    /// Where the tracks were found last.
    struct TrackHints {
        std::size_t position = 0, scale = 0, rotation = 0;
    };

    void Placed(bool rebuild_now);
    void RebuildFromNodeTransform();
    TrackEnd End() const { return {node_.loops, node_.length}; }
    // At a time of the node's own animation.
    D3DXVECTOR3 Position(double t, std::size_t* hint = nullptr) const;
    D3DXVECTOR3 Scale(double t, std::size_t* hint = nullptr) const;
    D3DXQUATERNION Rotation(double t, std::size_t* hint = nullptr) const;
    D3DXMATRIX LocalMatrixAt(double t);
    void MultiplyByParent();

    Fields node_;
    NodeTracks tracks_;
    TrackHints hints_;
};

}   // namespace sparkrig
