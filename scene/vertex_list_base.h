#pragma once
#include "scene/object_3d.h"

namespace sparkrig {

/// What has vertices and a place: a mesh, or a list of `gfx/`. A mesh has one node all the same: hence the virtual
/// base.
class KRN_VertexListBase : public virtual KRN_3dObject {
  public:
    KRN_VertexListBase() { SetName("KRN_ListBase"); }

  protected:
    ~KRN_VertexListBase() override = default;
};

}   // namespace sparkrig
