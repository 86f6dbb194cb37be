// Draws a mesh group by group: opaque groups first, then blended ones.
#pragma once
#include <optional>

#include "gfx/device/draw_statistics.h"
#include "gfx/shaders/shader_effect_choice.h"
#include "gfx/states/culling.h"
#include "gfx/states/geometry_bindings.h"
#include "gfx/states/lighting.h"
#include "gfx/states/point_sprites.h"
#include "gfx/states/transforms.h"
#include "gfx/textures/texture_stages.h"

namespace sparkrig {

class ID3DXMesh;
class KRN_MeshBase;
struct DeviceMesh;
struct MeshMaterial;

class MeshDrawer {
  public:
    MeshDrawer(StateSender& sender, GeometryBindings& bindings, CullingState& culling, PointSprites& points,
               LightingState& lighting, Transforms& transforms, TextureStages& textures, const EffectChoice& effects,
               DrawStatistics& statistics)
        : sender_(sender),
          bindings_(bindings),
          culling_(culling),
          points_(points),
          lighting_(lighting),
          transforms_(transforms),
          textures_(textures),
          effects_(effects),
          statistics_(statistics) {}

    /// Makes its buffers first if there are none. False for a mesh that is null (a warning), without geometry, or out
    /// of view. A null world is the identity.
    bool Draw(KRN_MeshBase* mesh, const D3DXMATRIX* world);
    /// Takes the place of the materials' diffuse and ambient colours, and with lighting off of the vertices' colour.
    void SetColourOverride(const D3DCOLOR* colour);

  private:
    void PrepareStates(const DeviceMesh& buffers, bool world_given);
    void DrawGroupsInColour(const KRN_MeshBase& mesh, ID3DXMesh& buffers);
    void DrawGroups(const KRN_MeshBase& mesh, ID3DXMesh& buffers);
    void DrawMaterial(const MeshMaterial& material, ID3DXMesh& buffers, DWORD group);
    void SetMaterial(const MeshMaterial& material);
    void DrawSubset(ID3DXMesh& buffers, DWORD subset);

    StateSender& sender_;
    GeometryBindings& bindings_;
    CullingState& culling_;
    PointSprites& points_;
    LightingState& lighting_;
    Transforms& transforms_;
    TextureStages& textures_;
    const EffectChoice& effects_;
    DrawStatistics& statistics_;
    std::optional<D3DCOLOR> colour_override_;
};

}   // namespace sparkrig
