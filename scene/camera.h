// Nodes that look somewhere.
#pragma once
#include "scene/object_3d.h"

namespace sparkrig {

/// A node with an eye, a view direction and an up vector, which may look at another node.
class KRN_Target3dObject : public KRN_3dObject {
  public:
    KRN_Target3dObject();

    void SetEye(float x, float y, float z, bool apply);
    /// The direction is stored normalised.
    void SetViewDirection(float x, float y, float z, bool apply);
    void SetUp(float x, float y, float z) { up_ = {x, y, z}; }
    /// Turns view direction and up vector about an axis (radians).
    void RotateView(const D3DXVECTOR3& axis, float angle);
    void TurnAroundUp(float angle);
    void Write(File& file) const override;
    void Read(File& file) override;
    /// Places the node and its target, and takes the eye from where it stands. It looks at its target; without one down
    /// its own z axis, whose y axis is then the up vector.
    int Animate(double time, bool force, bool update_parent) override;
    /// The same for a node and a target that stand in their places already.
    void TurnToTarget();
    /// Called whenever the orientation changed.
    virtual void ApplyOrientation(const D3DXMATRIX*) {}

    /// The node that it looks at, borrowed; null for none.
    KRN_3dObject* Target() const { return target_; }
    void SetTarget(KRN_3dObject* target) { target_ = target; }
    const String& TargetName() const { return target_name_; }
    void SetTargetName(const String& name) { target_name_ = name; }

    const D3DXVECTOR3& Eye() const { return eye_; }
    const D3DXVECTOR3& ViewDirection() const { return direction_; }
    const D3DXVECTOR3& Up() const { return up_; }

  protected:
    ~KRN_Target3dObject() override = default;

    friend struct SceneRecords;
    String target_name_;
    KRN_3dObject* target_ = nullptr;
    D3DXVECTOR3 eye_;
    D3DXVECTOR3 direction_ = {0, 1, 0};
    D3DXVECTOR3 up_ = {0, 0, 1};
};

class KRN_Camera : public KRN_Target3dObject {
  public:
    KRN_Camera();
    ~KRN_Camera() override = default;
    void Write(File& file) const override;
    void Read(File& file) override;

    float fov = 0.7854f;   // radians
};

}   // namespace sparkrig
