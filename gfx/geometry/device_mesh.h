// The buffers that a device has of a mesh's geometry. They hang on the geometry, so that meshes sharing it share them.
#pragma once
#include "gfx/device/graphics_device.h"
#include "platform/d3dx/d3dx_mesh.h"
#include "scene/mesh.h"

namespace sparkrig {

struct DeviceMesh : DeviceResource {
    DevicePtr<ID3DXMesh> buffers;
    bool software_processing = false;   // the hardware cannot blend its bones
};

/// Of a mesh with geometry; made if there are none yet. `extra_options`: D3DXMESH_ flags; 0 or -1 for none. What fails
/// is an error of the mesh.
DeviceMesh& MakeDeviceMesh(const GraphicsDevice& graphics, KRN_MeshBase& mesh, DWORD extra_options = 0);

}   // namespace sparkrig
