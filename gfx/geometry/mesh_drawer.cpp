#include "gfx/geometry/mesh_drawer.h"

#include <algorithm>
#include <cstring>

#include "gfx/device/with_restore.h"
#include "gfx/geometry/sphere_reflection.h"
#include "gfx/states/modes.h"
#include "scene/vertex_codec.h"

namespace sparkrig {

namespace {

/// The faces of a group; null for a group that no face is in.
const GroupRange* RangeOf(const KRN_MeshBase& mesh, int group) {
    for (const GroupRange& range : mesh.Geometry()->ranges)
        if (range.group == static_cast<std::uint32_t>(group)) return &range;
    return nullptr;
}

bool HasFaces(const KRN_MeshBase& mesh) {
    return mesh.Geometry() && mesh.Geometry()->FaceCount() > 0 && mesh.MaterialCount() > 0;
}

/// How many matrices the device's vertex blending takes for a vertex with so many bones.
DWORD VertexBlend(int influences) {
    constexpr DWORD kSettings[] = {D3DVBF_DISABLE, D3DVBF_0WEIGHTS, D3DVBF_1WEIGHTS, D3DVBF_2WEIGHTS, D3DVBF_3WEIGHTS};
    return kSettings[std::clamp(influences, 0, 4)];
}

bool Reflects(const TextureRecord& maps) {
    const auto reflects = [](const MapSlot& slot) { return slot.path.GetLength() > 0 && slot.IsReflection(); };
    return std::ranges::any_of(maps.slots, reflects);
}

}   // namespace

void MeshDrawer::SetColourOverride(const D3DCOLOR* colour) {
    colour_override_.reset();
    if (colour) colour_override_ = *colour;
}

bool MeshDrawer::Draw(KRN_MeshBase* mesh, const D3DXMATRIX* world, const MeshDrawing& drawing) {
    if (!mesh) {
        states_.Reporter().Warning("Pointer to mesh is zero");
        return false;
    }
    if (!HasFaces(*mesh)) return false;
    const D3DXMATRIX local = LocalMatrix(*mesh), given = world ? *world : kIdentityMatrix;
    D3DXMATRIX placed;
    D3DXMatrixMultiply(&placed, &local, &given);
    if (!BoundsVisible(states_.transforms.Planes(), *mesh, placed)) return false;

    DeviceMesh& buffers = MakeDeviceMesh(states_.Graphics(), *mesh);
    ++statistics_.meshes;
    PrepareStates(buffers, world != nullptr);
    const int culling = states_.culling.Mode();
    materials_.Begin();
    const auto draw = [&] {
        Place(*mesh, placed, given);
        if (D3DXMatrixDeterminant(palette_.data()) < 0) states_.culling.Set(-culling);   // mirrored: shows its backs
        DrawGroupsInColour(*mesh, buffers, drawing);
    };
    WithRestore(draw, [&] {
        states_.sender.SetRenderState(D3DRS_VERTEXBLEND, D3DVBF_DISABLE);
        states_.culling.Set(culling);
        materials_.End();
    });
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

// ---- Place

/// `placed`: where the mesh stands in the world; `world`: what takes its scene there.
void MeshDrawer::Place(const KRN_MeshBase& mesh, const D3DXMATRIX& placed, const D3DXMATRIX& world) {
    palette_.assign(1, placed);
    if (IsSkinned(mesh)) {
        MakePalette(mesh, world, palette_);
        BlendVertices(mesh);
    }
    for (std::size_t i = 0; i < std::min(palette_.size(), std::size_t{kWorldMatrices}); ++i)
        states_.transforms.Set(D3DTS_WORLDMATRIX(static_cast<DWORD>(i)), palette_[i]);
}

void MeshDrawer::BlendVertices(const KRN_MeshBase& mesh) {
    const VertexLayout& layout = mesh.Geometry()->layout;
    const bool indexed = (layout.format & D3DFVF_LASTBETA_UBYTE4) != 0;
    states_.sender.SetRenderState(D3DRS_VERTEXBLEND, VertexBlend(InfluencesOf(layout)));
    states_.sender.SetRenderState(D3DRS_INDEXEDVERTEXBLENDENABLE, DWORD{indexed});
    const std::size_t bones = std::max(mesh.bones.size(), static_cast<std::size_t>(mesh.influences));
    if (bones > states_.Graphics().Caps().MaxVertexBlendMatrixIndex && !EffectFor(mesh, nullptr))
        states_.Reporter().Warning("Number of bones too high for hardware vertex blending: %i",
                                   static_cast<int>(bones));
}

// ---- Groups

void MeshDrawer::DrawGroupsInColour(KRN_MeshBase& mesh, DeviceMesh& buffers, const MeshDrawing& drawing) {
    const bool emitted = colour_override_ && !states_.lighting.On() && !drawing.no_material;
    const MaterialStates::Colours colours = {drawing.material, colour_override_ ? &*colour_override_ : nullptr,
                                             emitted};
    if (!emitted) return DrawGroups(mesh, buffers, drawing, colours);
    // Only a lit vertex takes a colour that every blending mode reads.
    std::optional<D3DCOLOR> before;   // what stood in for the unlit vertices' colour until now
    if (states_.lighting.Colour()) before = *states_.lighting.Colour();
    states_.lighting.Set(true, nullptr);
    WithRestore([&] { DrawGroups(mesh, buffers, drawing, colours); },
                [&] { states_.lighting.Set(false, before ? &*before : nullptr); });
}

void MeshDrawer::DrawGroups(KRN_MeshBase& mesh, DeviceMesh& buffers, const MeshDrawing& drawing,
                            MaterialStates::Colours colours) {
    DWORD entries = 0;
    states_.Graphics().Require(buffers.buffers->GetAttributeTable(nullptr, &entries), "GetAttributeTable failed: ");
    if (entries == 0) {   // not sorted by group: drawn as one
        colours.shaded = EffectFor(mesh, nullptr) != nullptr;
        if (!drawing.no_material) materials_.SetPlain(kDefaultColours, colours);
        return DrawBuffers(mesh, buffers, 0, nullptr);
    }
    const int culling = states_.culling.Mode();
    for (const bool blending : {false, true}) {
        for (int group = 0; group < mesh.MaterialCount(); ++group) {
            const MeshMaterial& material = mesh.Material(group);
            const bool drawn = !material.hidden && material.transparency != 1.0f && RangeOf(mesh, group);
            if (!drawn || material.blending != blending) continue;
            states_.culling.Set(material.two_sided ? int{kCullNone} : culling);
            colours.shaded = EffectFor(mesh, &material) != nullptr;
            if (!drawing.no_material) materials_.Set(mesh, group, colours, drawing.reflection_pass);
            DrawGroup(mesh, buffers, group);
        }
    }
}

void MeshDrawer::DrawGroup(KRN_MeshBase& mesh, DeviceMesh& buffers, int group) {
    if (group < 0 || group >= mesh.MaterialCount()) return DrawBuffers(mesh, buffers, group, nullptr);
    if (Reflects(mesh.Textures(group)) && !statistics_.suppress_draws) ComputeReflection(mesh, buffers, group);
    DrawBuffers(mesh, buffers, group, &mesh.Material(group));
}

void MeshDrawer::DrawBuffers(const KRN_MeshBase& mesh, DeviceMesh& buffers, int group, const MeshMaterial* material) {
    const GroupRange* range = RangeOf(mesh, group);
    const std::uint32_t faces = range ? range->faces : mesh.Geometry()->FaceCount();
    KRN_ShaderEffect* const effect = EffectFor(mesh, material);
    if (effect && material && effect == EffectOf(*material)) SetParameters(material->shader, *effect);
    if (effect && effect->ReadsTangents()) AddTangents(states_.Graphics(), mesh, buffers);
    DrawWithEffect(effect, ObjectOf(mesh), [&] {
        statistics_.Count(faces);
        if (statistics_.suppress_draws) return;
        states_.Graphics().Require(buffers.buffers->DrawSubset(static_cast<DWORD>(group)), " DrawSubset failed: ");
    });
}

/// What the group's map shows of its surroundings, as texture coordinates of its vertices.
void MeshDrawer::ComputeReflection(const KRN_MeshBase& mesh, DeviceMesh& buffers, int group) {
    const MeshGeometry& geometry = *mesh.Geometry();
    if (mesh.reflection_stage < 0 || mesh.reflection_stage >= geometry.layout.texture_sets) return;
    const D3DXATTRIBUTERANGE range = AttributeOf(mesh, buffers, group);
    placed_.resize(range.VertexCount);
    PlaceVertices(geometry, range.VertexStart, palette_, placed_);
    const D3DXVECTOR3 camera = states_.transforms.CameraPosition();
    DevicePtr<IDirect3DVertexBuffer9> vertices;
    states_.Graphics().Require(buffers.buffers->GetVertexBuffer(vertices.Receive()), "GetVertexBuffer failed: ");
    const UINT stride = static_cast<UINT>(buffers.layout.stride);
    void* data = nullptr;
    states_.Graphics().Require(vertices->Lock(range.VertexStart * stride, range.VertexCount * stride, &data, 0),
                               "LockVertexBuffer failed: ");
    auto* place = static_cast<std::uint8_t*>(data) + geometry.layout.texture_offset[mesh.reflection_stage];
    for (const PlacedVertex& vertex : placed_) {
        const SphereCoordinates coordinates = ReflectedCoordinates(vertex, camera);
        std::memcpy(place, &coordinates, sizeof coordinates);
        place += stride;
    }
    states_.Graphics().Require(vertices->Unlock(), "UnlockVertexBuffer failed: ");
}

D3DXATTRIBUTERANGE MeshDrawer::AttributeOf(const KRN_MeshBase& mesh, DeviceMesh& buffers, int group) const {
    std::vector<D3DXATTRIBUTERANGE> table(static_cast<std::size_t>(mesh.MaterialCount()));
    DWORD entries = static_cast<DWORD>(table.size());
    states_.Graphics().Require(buffers.buffers->GetAttributeTable(table.data(), &entries),
                               "GetAttributeTable failed: ");
    const DWORD id = static_cast<DWORD>(group);
    if (id >= entries || table[id].AttribId != id)
        states_.Reporter().Error("Attribute set for material %i in mesh '%s' with wrong ID", group,
                                 mesh.Name().c_str());
    return table[id];
}

KRN_ShaderEffect* MeshDrawer::EffectFor(const KRN_MeshBase& mesh, const MeshMaterial* material) const {
    using Processing = ShaderEffectChoice::Processing;
    return effects_.ForDraw(material ? EffectOf(*material) : nullptr,
                            IsSkinned(mesh) ? Processing::ShaderSkinning : Processing::Fixed);
}

DrawnObject MeshDrawer::ObjectOf(const KRN_MeshBase& mesh) const {
    DrawnObject object = {.blend_weights = mesh.Geometry()->layout.weights};
    if (IsSkinned(mesh)) object.palette = palette_;
    return object;
}

// ---- Parts of a mesh as it stands on the device

/// Where the device's world matrix has a mesh without bones; a skinned one where its bones stand.
void MeshDrawer::PlaceAlone(const KRN_MeshBase& mesh) {
    palette_.assign(1, states_.transforms.World());
    if (IsSkinned(mesh)) MakePalette(mesh, kIdentityMatrix, palette_);
}

void MeshDrawer::DrawSubset(KRN_MeshBase& mesh, int subset) {
    if (!HasFaces(mesh)) return;
    PlaceAlone(mesh);
    DrawGroup(mesh, MakeDeviceMesh(states_.Graphics(), mesh), subset);
}

void MeshDrawer::DrawRange(KRN_MeshBase& mesh, UINT first_face, UINT faces) {
    if (faces == 0 || !HasFaces(mesh)) return;
    PlaceAlone(mesh);
    const GraphicsDevice& graphics = states_.Graphics();
    DeviceMesh& device_mesh = MakeDeviceMesh(graphics, mesh);
    KRN_ShaderEffect* const effect = EffectFor(mesh, nullptr);
    if (effect && effect->ReadsTangents()) AddTangents(graphics, mesh, device_mesh);
    states_.bindings.SetSoftwareProcessing(device_mesh.software_processing);
    DevicePtr<IDirect3DVertexBuffer9> vertices;
    DevicePtr<IDirect3DIndexBuffer9> indices;
    graphics.Require(device_mesh.buffers->GetVertexBuffer(vertices.Receive()), "GetVertexBuffer failed: ");
    graphics.Require(device_mesh.buffers->GetIndexBuffer(indices.Receive()), "GetIndexBuffer failed: ");
    states_.bindings.SetIndices(indices.Get());
    states_.bindings.SetVertexFormat(device_mesh.layout.format);
    states_.bindings.SetStreamSource(vertices.Get(), static_cast<UINT>(device_mesh.layout.stride));
    DrawWithEffect(effect, ObjectOf(mesh), [&] {
        statistics_.Count(faces);
        if (statistics_.suppress_draws) return;
        const HRESULT result = graphics.Device()->DrawIndexedPrimitive(
            D3DPT_TRIANGLELIST, 0, 0, mesh.Geometry()->VertexCount(), 3 * first_face, faces);
        graphics.Require(result, "DrawIndexedPrimitive failed: ");
    });
}

}   // namespace sparkrig
