#include "effects/mesh_effect_renderer.h"

#include <bit>

#include "effects/mesh_placement.h"
#include "effects/motion.h"
#include "effects/packed_colour.h"
#include "gfx/device/with_restore.h"
#include "gfx/gfx.h"

namespace sparkrig {
namespace {

/// Effects are drawn without fog: a scene brings none.
void ResetFog(RenderSettings& settings) {
    const FogSettings fog;
    std::uint32_t* const word = &settings.words[RenderSettings::kFogColour];
    settings.words[RenderSettings::kFogOn] = 0;
    word[0] = fog.colour;
    word[1] = fog.mode;
    word[2] = fog.vertex_fog;
    word[3] = std::bit_cast<std::uint32_t>(fog.start);
    word[4] = std::bit_cast<std::uint32_t>(fog.end);
    word[5] = std::bit_cast<std::uint32_t>(fog.density);
}

MeshEffect& SubOf(const VisualEffectObject& object) { return static_cast<MeshEffect&>(*object.sub_effect); }

}   // namespace

void MeshEffectRenderer::PreloadMesh(MeshEffect& sub) {
    if (sub.scene) return;
    std::weak_ptr<KRN_3dScene>& shared = scenes_[{sub.scene_file.c_str(), sub.loop}];
    sub.scene = shared.lock();
    if (sub.scene) return;
    auto scene = std::make_shared<KRN_3dScene>();
    gfx_->LoadScene(*scene, sub.scene_file.c_str());
    ResetFog(scene->render_settings);
    scene->SelectCamera(-1);
    if (sub.loop) scene->SetSceneLooping(true);
    shared = sub.scene = scene;
}

KRN_3dScene& MeshEffectRenderer::PlaceMeshInstance(const VisualEffectObject& object) {
    MeshEffect& sub = SubOf(object);
    PreloadMesh(sub);
    KRN_3dScene& scene = *sub.scene;
    MeshPlace place = {object.position, object.scale, {}};
    D3DXQuaternionMultiply(&place.rotation, &object.rotation, &object.base_orientation);
    if (const auto world = PlaceScene(sub.billboard, scene, place, gfx_->ViewMatrix())) scene.SetWorldMatrix(*world);
    return scene;
}

bool MeshEffectRenderer::IsVisible(const VisualEffectObject& object) {
    const KRN_3dScene& scene = PlaceMeshInstance(object);
    return gfx_->BoundsInView(scene, scene.WorldMatrix());
}

void MeshEffectRenderer::DrawMeshInstance(const VisualEffectObject& object, double age) {
    MeshEffect& sub = SubOf(object);
    const D3DCOLOR colour = PackColour(EvalColor(sub, age, object.count_value, object.random), kOpaque);
    PreloadMesh(sub);
    sub.scene->SetSceneTime(age, true);
    KRN_3dScene& scene = PlaceMeshInstance(object);
    gfx_->SetColourOverride(&colour);
    WithRestore([&] { gfx_->DrawScene(&scene); }, [&] { gfx_->SetColourOverride(nullptr); });
}

}   // namespace sparkrig
