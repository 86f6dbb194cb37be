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

bool MeshDrawer::Draw(KRN_MeshBase* mesh, const D3DXMATRIX* world) {
    if (!mesh) {
        sender_.Reporter().Warning("Pointer to mesh is zero");
        return false;
    }
    if (!mesh->Geometry() || mesh->MaterialCount() == 0) return false;
    D3DXMATRIX placed;
    D3DXMatrixMultiply(&placed, &mesh->PivotMatrix(), &mesh->WorldMatrix());
    if (world) D3DXMatrixMultiply(&placed, &placed, world);
    if (!BoundsVisible(transforms_.Planes(), *mesh, placed)) return false;

    const DeviceMesh& buffers = MakeDeviceMesh(sender_.Graphics(), *mesh);
    ++statistics_.meshes;
    PrepareStates(buffers, world != nullptr);
    transforms_.Set(D3DTS_WORLD, placed);
    const int culling = culling_.Mode();
    const auto draw = [&] {
        if (D3DXMatrixDeterminant(&placed) < 0) culling_.Set(-culling);   // a mirrored mesh shows its backs
        DrawGroupsInColour(*mesh, *buffers.buffers);
    };
    WithRestore(draw, [&] { culling_.Set(culling); });
    return true;
}

void MeshDrawer::PrepareStates(const DeviceMesh& buffers, bool world_given) {
    points_.SwitchOff();
    sender_.SetStageState(0, D3DTSS_TEXTURETRANSFORMFLAGS, D3DTTFF_DISABLE);
    bindings_.SetSoftwareProcessing(buffers.software_processing);
    if (!world_given && points_.FillMode() == static_cast<int>(D3DFILL_POINT)) points_.Apply(points_.Settings(), false);
    lighting_.SetNormalizeNormals(true);
}

void MeshDrawer::DrawGroupsInColour(const KRN_MeshBase& mesh, ID3DXMesh& buffers) {
    if (!colour_override_ || lighting_.On()) return DrawGroups(mesh, buffers);
    std::optional<D3DCOLOR> before;   // what stood in for the unlit vertices' colour until now
    if (lighting_.Colour()) before = *lighting_.Colour();
    lighting_.Set(false, &*colour_override_);
    WithRestore([&] { DrawGroups(mesh, buffers); }, [&] { lighting_.Set(false, before ? &*before : nullptr); });
}

void MeshDrawer::DrawGroups(const KRN_MeshBase& mesh, ID3DXMesh& buffers) {
    DWORD entries = 0;
    sender_.Graphics().Require(buffers.GetAttributeTable(nullptr, &entries), "GetAttributeTable failed: ");
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
    const int culling = culling_.Mode();
    if (material.two_sided) culling_.Set(0);
    SetMaterial(material);
    DrawSubset(buffers, group);
    culling_.Set(culling);
}

void MeshDrawer::SetMaterial(const MeshMaterial& material) {
    D3DMATERIAL9 colours = material.colours;
    if (colour_override_) {
        colours.Diffuse = colours.Ambient = ToColourValue(*colour_override_);
    }
    lighting_.SetMaterial(colours);
    textures_.SetTexture(nullptr, -1);
}

void MeshDrawer::DrawSubset(ID3DXMesh& buffers, DWORD subset) {
    const DrawnObject object = {.blend_weights = ComputeVertexLayout(buffers.GetFVF()).weights};
    DrawWithEffect(effects_.ForDraw(), object, [&] {
        ++statistics_.draw_calls;
        if (statistics_.suppress_draws) return;
        sender_.Graphics().Require(buffers.DrawSubset(subset), " DrawSubset failed: ");
    });
}

}   // namespace sparkrig
