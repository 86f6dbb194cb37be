// A named node of a scene: rest pose, current transform, world matrix.
#pragma once
#include <cstdint>

#include "base/resource_manager.h"
#include "base/string.h"
#include "platform/d3dx/d3dx_math.h"

namespace sparkrig {

/// The rest pose.
struct NodeTransform {
    D3DXMATRIX matrix = kIdentityMatrix;
    D3DXVECTOR3 axis_signs = {1, 1, 1};   // -1 marks an axis that the matrix mirrors
    D3DXVECTOR3 position;
    D3DXVECTOR3 scale = {1, 1, 1};
    D3DXVECTOR3 rotation_axis;
    float rotation_angle = 0;   // radians
};

class KRN_3dObject : public KRN_ResourceBase {
  public:
    KRN_3dObject();

    /// Reports carry the node's name in front.
    [[noreturn]] void Error(const char* format, ...) const override __attribute__((format(printf, 2, 3)));
    void Warning(const char* format, ...) const override __attribute__((format(printf, 2, 3)));

    // Direct placement. With rebuild_now the local matrix is made at once and becomes the world matrix.
    void SetPosition(float x, float y, float z, bool rebuild_now);
    void SetScale(float x, float y, float z, bool rebuild_now);
    void SetRotation(const D3DXQUATERNION& rotation, bool rebuild_now);

    /// Places the node for a time (seconds): at its rest pose, since it has no tracks. With `force` also when nothing
    /// changed since the last call.
    virtual void Animate(double time, bool force);

    const D3DXMATRIX& WorldMatrix() const { return world_; }
    void SetWorldMatrix(const D3DXMATRIX& world) { world_ = world; }
    /// Where the node's own coordinates lie relative to its geometry.
    const D3DXMATRIX& PivotMatrix() const { return pivot_; }
    void SetPivotMatrix(const D3DXMATRIX& pivot) { pivot_ = pivot; }
    const String& Name() const { return node_name_; }
    void SetNodeName(const char* name) { node_name_ = name; }

  protected:
    ~KRN_3dObject() = default;
    void RebuildFromNodeTransform();

    D3DXMATRIX world_ = kIdentityMatrix;
    D3DXMATRIX pivot_ = kIdentityMatrix;
    NodeTransform transform_;
    bool dirty_ = true;      // must be placed again even at an unchanged time
    double last_time_ = 0;   // of the last placing, seconds
    D3DXVECTOR3 position_;
    String node_name_ = "*undefined*";

  private:
    void Placed(bool rebuild_now);
};

}   // namespace sparkrig
