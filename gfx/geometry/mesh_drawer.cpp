#include "gfx/geometry/mesh_drawer.h"

#include "gfx/device/with_restore.h"
#include "gfx/geometry/device_mesh.h"
#include "gfx/shaders/shader_effect_passes.h"
#include "scene/mesh.h"

namespace sparkrig {

namespace {

D3DCOLORVALUE ToColourValue(D3DCOLOR colour) {
    const auto part = [colour](int shift) { return static_cast<float>(colour >> shift & 0xFF) / 255; };
    return {part(16), part(8), part(0), part(24)};
}

}   // namespace

void MeshDrawer::SetColourOverride(const D3DCOLOR* colour) {
    colour_override_.reset();
    if (colour) colour_override_ = *colour;
}

bool MeshDrawer::Draw(KRN_MeshBase* mesh, const D3DXMATRIX* world, const MeshDrawing&) {
    if (!mesh) {
        states_.sender.Reporter().Warning("Pointer to mesh is zero");
        return false;
    }
    if (!mesh->Geometry() || mesh->MaterialCount() == 0) return false;
    D3DXMATRIX placed;
    D3DXMatrixMultiply(&placed, &mesh->PivotMatrix(), &mesh->WorldMatrix());
    if (world) D3DXMatrixMultiply(&placed, &placed, world);
    if (!BoundsVisible(states_.transforms.Planes(), *mesh, placed)) return false;

    const DeviceMesh& buffers = MakeDeviceMesh(states_.sender.Graphics(), *mesh);
    ++statistics_.meshes;
    PrepareStates(buffers, world != nullptr);
    states_.transforms.Set(D3DTS_WORLD, placed);
    const int culling = states_.culling.Mode();
    const auto draw = [&] {
        if (D3DXMatrixDeterminant(&placed) < 0) states_.culling.Set(-culling);   // a mirrored mesh shows its backs
        DrawGroupsInColour(*mesh, *buffers.buffers);
    };
    WithRestore(draw, [&] { states_.culling.Set(culling); });
    return true;
}

void MeshDrawer::PrepareStates(const DeviceMesh& buffers, bool world_given) {
    states_.points.SwitchOff();
    states_.sender.SetStageState(0, D3DTSS_TEXTURETRANSFORMFLAGS, D3DTTFF_DISABLE);
    states_.bindings.SetSoftwareProcessing(buffers.software_processing);
    if (!world_given && states_.points.FillMode() == static_cast<int>(D3DFILL_POINT))
        states_.points.Apply(states_.points.Settings(), false);
    states_.lighting.SetNormalizeNormals(true);
}

void MeshDrawer::DrawGroupsInColour(const KRN_MeshBase& mesh, ID3DXMesh& buffers) {
    if (!colour_override_ || states_.lighting.On()) return DrawGroups(mesh, buffers);
    std::optional<D3DCOLOR> before;   // what stood in for the unlit vertices' colour until now
    if (states_.lighting.Colour()) before = *states_.lighting.Colour();
    states_.lighting.Set(false, &*colour_override_);
    WithRestore([&] { DrawGroups(mesh, buffers); }, [&] { states_.lighting.Set(false, before ? &*before : nullptr); });
}

void MeshDrawer::DrawGroups(const KRN_MeshBase& mesh, ID3DXMesh& buffers) {
    DWORD entries = 0;
    states_.sender.Graphics().Require(buffers.GetAttributeTable(nullptr, &entries), "GetAttributeTable failed: ");
    if (entries == 0) {   // not sorted by group: drawn as one
        SetMaterial(mesh.Material(0));
        DrawSubset(buffers, 0);
        return;
    }
    for (const bool blending : {false, true}) {
        for (int group = 0; group < mesh.MaterialCount(); ++group) {
            const MeshMaterial& material = mesh.Material(group);
            const bool drawn = !material.hidden && material.transparency != 1.0f;
            if (drawn && material.blending == blending) {
                DrawMaterial(material, buffers, static_cast<DWORD>(group));
            }
        }
    }
}

void MeshDrawer::DrawMaterial(const MeshMaterial& material, ID3DXMesh& buffers, DWORD group) {
    const int culling = states_.culling.Mode();
    if (material.two_sided) states_.culling.Set(0);
    SetMaterial(material);
    DrawSubset(buffers, group);
    states_.culling.Set(culling);
}

void MeshDrawer::SetMaterial(const MeshMaterial& material) {
    D3DMATERIAL9 colours = material.colours;
    if (colour_override_) {
        colours.Diffuse = colours.Ambient = ToColourValue(*colour_override_);
    }
    states_.lighting.SetMaterial(colours);
    textures_.SetTexture(nullptr, -1);
}

void MeshDrawer::DrawSubset(ID3DXMesh& buffers, DWORD subset) {
    const DrawnObject object = {.blend_weights = ComputeVertexLayout(buffers.GetFVF()).weights};
    DrawWithEffect(effects_.ForDraw(), object, [&] {
        ++statistics_.draw_calls;
        if (statistics_.suppress_draws) return;
        states_.sender.Graphics().Require(buffers.DrawSubset(subset), " DrawSubset failed: ");
    });
}

void MeshDrawer::DrawSubset(KRN_MeshBase& mesh, int subset) {
    DrawSubset(*MakeDeviceMesh(states_.sender.Graphics(), mesh).buffers, static_cast<DWORD>(subset));
}

void MeshDrawer::DrawRange(KRN_MeshBase& mesh, UINT first_face, UINT faces) {
    if (faces == 0) return;
    const GraphicsDevice& graphics = states_.sender.Graphics();
    const DeviceMesh& device_mesh = MakeDeviceMesh(graphics, mesh);
    states_.bindings.SetSoftwareProcessing(device_mesh.software_processing);
    DevicePtr<IDirect3DVertexBuffer9> vertices;
    DevicePtr<IDirect3DIndexBuffer9> indices;
    graphics.Require(device_mesh.buffers->GetVertexBuffer(vertices.Receive()), "GetVertexBuffer failed: ");
    graphics.Require(device_mesh.buffers->GetIndexBuffer(indices.Receive()), "GetIndexBuffer failed: ");
    const MeshGeometry& geometry = *mesh.Geometry();
    states_.bindings.SetIndices(indices.Get());
    states_.bindings.SetVertexFormat(geometry.layout.format);
    states_.bindings.SetStreamSource(vertices.Get(), geometry.Stride());
    DrawWithEffect(effects_.ForDraw(), {.blend_weights = geometry.layout.weights}, [&] {
        statistics_.Count(faces);
        if (statistics_.suppress_draws) return;
        const HRESULT result = graphics.Device()->DrawIndexedPrimitive(D3DPT_TRIANGLELIST, 0, 0, geometry.VertexCount(),
                                                                       3 * first_face, faces);
        graphics.Require(result, "DrawIndexedPrimitive failed: ");
    });
}

}   // namespace sparkrig
