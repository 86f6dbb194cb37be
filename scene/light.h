#pragma once
#include "platform/d3d9/d3d9_types.h"
#include "scene/camera.h"

namespace sparkrig {

/// A light of a scene. Its eye is where it shines from, its view direction where to.
class KRN_Light : public KRN_Target3dObject {
  public:
    KRN_Light();
    ~KRN_Light() override = default;

    void Write(File& file) const override;
    void Read(File& file) override;
    /// Puts eye and direction into the record; `extra`, if given, moves them.
    void ApplyOrientation(const D3DXMATRIX* extra) override;

    bool off = true;       // not handed to the device
    bool enabled = true;   // lit when it is
    D3DLIGHT9 record = {};
};

}   // namespace sparkrig
