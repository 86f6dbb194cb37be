// Draws a mesh group by group: opaque groups first, then blended ones.
#pragma once
#include <optional>

#include "gfx/device/draw_statistics.h"
#include "gfx/shaders/shader_effect_choice.h"
#include "gfx/states/gfx_states.h"
#include "gfx/textures/texture_stages.h"

namespace sparkrig {

class ID3DXMesh;
class KRN_MeshBase;
struct DeviceMesh;
struct MeshMaterial;

/// How DrawMesh departs from what the mesh says.
struct MeshDrawing {
    const D3DMATERIAL9* material = nullptr;   // in place of the materials' colours; null for none
    bool reflection_pass = false;             // every map goes to its stage, however many are in use
    bool no_material = false;                 // neither colours nor maps are set
};

class MeshDrawer {
  public:
    MeshDrawer(GfxStates& states, TextureStages& textures, const ShaderEffectChoice& effects,
               DrawStatistics& statistics)
        : states_(states), textures_(textures), effects_(effects), statistics_(statistics) {}

    /// Makes its buffers first if there are none. False for a mesh that is null (a warning), without geometry, or out
    /// of view. A null world is the identity.
    bool Draw(KRN_MeshBase* mesh, const D3DXMATRIX* world, const MeshDrawing& drawing);
    /// One group, or a run of faces, with the states and the material of the moment.
    void DrawSubset(KRN_MeshBase& mesh, int subset);
    void DrawRange(KRN_MeshBase& mesh, UINT first_face, UINT faces);
    /// Takes the place of the materials' diffuse and ambient colours, and with lighting off of the vertices' colour.
    void SetColourOverride(const D3DCOLOR* colour);

  private:
    void PrepareStates(const DeviceMesh& buffers, bool world_given);
    void DrawGroupsInColour(const KRN_MeshBase& mesh, ID3DXMesh& buffers);
    void DrawGroups(const KRN_MeshBase& mesh, ID3DXMesh& buffers);
    void DrawMaterial(const MeshMaterial& material, ID3DXMesh& buffers, DWORD group);
    void SetMaterial(const MeshMaterial& material);
    void DrawSubset(ID3DXMesh& buffers, DWORD subset);

    GfxStates& states_;
    TextureStages& textures_;
    const ShaderEffectChoice& effects_;
    DrawStatistics& statistics_;
    std::optional<D3DCOLOR> colour_override_;
};

}   // namespace sparkrig
