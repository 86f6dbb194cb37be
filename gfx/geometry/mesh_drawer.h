// Draws a mesh group by group: opaque groups first, then blended ones.
#pragma once
#include <optional>
#include <vector>

#include "gfx/device/draw_statistics.h"
#include "gfx/geometry/device_mesh.h"
#include "gfx/geometry/material_states.h"
#include "gfx/geometry/skinning.h"
#include "gfx/shaders/shader_effect_choice.h"
#include "gfx/shaders/shader_effect_passes.h"

namespace sparkrig {

/// How DrawMesh departs from what the mesh says.
struct MeshDrawing {
    const D3DMATERIAL9* material = nullptr;   // in place of the materials' colours; null for none
    bool reflection_pass = false;             // every map goes to its stage, however many are in use
    bool no_material = false;                 // neither colours nor maps are set
};

class MeshDrawer {
  public:
    MeshDrawer(GfxStates& states, TextureStages& textures, TextureLoader& loader, const ShaderEffectChoice& effects,
               DrawStatistics& statistics)
        : states_(states), materials_(states, textures, loader), effects_(effects), statistics_(statistics) {}

    /// Makes what the device needs of the mesh first. False for a mesh that is null (a warning), without faces, or out
    /// of view. A null world is the identity.
    bool Draw(KRN_MeshBase* mesh, const D3DXMATRIX* world, const MeshDrawing& drawing);
    /// One group, or a run of faces, with the states and the material of the moment.
    void DrawSubset(KRN_MeshBase& mesh, int subset);
    void DrawRange(KRN_MeshBase& mesh, UINT first_face, UINT faces);
    /// Takes the place of the materials' diffuse and ambient colours; with lighting off, of all colours.
    void SetColourOverride(const D3DCOLOR* colour);

  private:
    void PrepareStates(const DeviceMesh& buffers, bool world_given);
    void Place(const KRN_MeshBase& mesh, const D3DXMATRIX& placed, const D3DXMATRIX& world);
    void PlaceAlone(const KRN_MeshBase& mesh);
    void BlendVertices(const KRN_MeshBase& mesh);

    void DrawGroupsInColour(KRN_MeshBase& mesh, DeviceMesh& buffers, const MeshDrawing& drawing);
    void DrawGroups(KRN_MeshBase& mesh, DeviceMesh& buffers, const MeshDrawing& drawing,
                    MaterialStates::Colours colours);
    void DrawGroup(KRN_MeshBase& mesh, DeviceMesh& buffers, int group);
    /// material: the group's; null for none.
    void DrawBuffers(const KRN_MeshBase& mesh, DeviceMesh& buffers, int group, const MeshMaterial* material);
    void ComputeReflection(const KRN_MeshBase& mesh, DeviceMesh& buffers, int group);
    D3DXATTRIBUTERANGE AttributeOf(const KRN_MeshBase& mesh, DeviceMesh& buffers, int group) const;
    KRN_ShaderEffect* EffectFor(const KRN_MeshBase& mesh, const MeshMaterial* material) const;
    DrawnObject ObjectOf(const KRN_MeshBase& mesh) const;

    GfxStates& states_;
    MaterialStates materials_;
    const ShaderEffectChoice& effects_;
    DrawStatistics& statistics_;
    std::optional<D3DCOLOR> colour_override_;
    std::vector<D3DXMATRIX> palette_;    // of the mesh that is drawn: its bones in the world, or the mesh alone
    std::vector<PlacedVertex> placed_;   // of the group that is drawn, where it reflects
};

}   // namespace sparkrig
