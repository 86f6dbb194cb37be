// The buffers that a device has of a mesh's geometry. They hang on the geometry, so that meshes sharing it share them.
#pragma once
#include "gfx/device/graphics_device.h"
#include "platform/d3dx/d3dx_mesh.h"
#include "scene/mesh.h"

namespace sparkrig {

struct DeviceMesh : DeviceResource {
    DevicePtr<ID3DXMesh> buffers;
    VertexLayout layout;                // of its vertices: the geometry's, and tangents if an effect reads them
    bool software_processing = false;   // the hardware cannot blend its bones
};

/// Of a mesh with geometry; made if there are none yet. `extra_options`: D3DXMESH_ flags; 0 or -1 for none. What fails
/// is an error of the mesh.
DeviceMesh& MakeDeviceMesh(const GraphicsDevice& graphics, KRN_MeshBase& mesh, DWORD extra_options = 0);

/// Makes the buffers again, with tangents behind what vertices have (kInputTangent), if there are none yet and the
/// geometry can have them.
void AddTangents(const GraphicsDevice& graphics, const KRN_MeshBase& mesh, DeviceMesh& device_mesh);

}   // namespace sparkrig
