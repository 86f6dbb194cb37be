#include "gfx/geometry/scene_drawer.h"

#include <bit>

#include "gfx/device/with_restore.h"

namespace sparkrig {

namespace {

/// Whether the device takes the light: a record that was never filled, or a file's, may be of no type.
bool HasType(const D3DLIGHT9& light) { return light.Type >= D3DLIGHT_POINT && light.Type <= D3DLIGHT_DIRECTIONAL; }

}   // namespace

bool SceneDrawer::Draw(KRN_3dScene* scene) {
    if (!scene) {
        states_.Reporter().Warning("Pointer to 3dScene is zero");
        return false;
    }
    const Remembered before = Remember();
    bool drawn = false;
    const auto draw = [&] {
        if (scene->active_camera >= 0 && scene->active_camera < scene->cameras.Count())
            LookThrough(scene->cameras[scene->active_camera], scene->WorldMatrix());
        drawn = BoundsVisible(states_.transforms.Planes(), *scene, scene->WorldMatrix());
        if (!drawn) return;
        SetFog(scene->render_settings);
        if (states_.lighting.On()) SetLights(*scene);
        DrawMeshes(*scene);
    };
    WithRestore(draw, [&] { Restore(before, *scene); });
    return drawn;
}

SceneDrawer::Remembered SceneDrawer::Remember() const {
    Remembered now = {states_.transforms.View(),
                      states_.transforms.Projection(),
                      states_.fog.Settings(),
                      states_.fog.Enabled(),
                      states_.lighting.Ambient(),
                      {},
                      {}};
    for (int i = 0; i < LightSlots::kCount; ++i) {
        now.lights_on[i] = states_.lights.Enabled(i);
        now.lights[i] = states_.lights.Light(i);
    }
    return now;
}

void SceneDrawer::Restore(const Remembered& before, const KRN_3dScene& scene) {
    if (scene.active_camera >= 0) {
        states_.transforms.Set(D3DTS_VIEW, before.view);
        states_.transforms.Set(D3DTS_PROJECTION, before.projection);
    }
    if (scene.render_settings.FogOn()) {
        states_.fog.Set(before.fog);
        states_.fog.Enable(before.fog_on);
    }
    if (!states_.lighting.On()) return;
    states_.lighting.SetAmbient(before.ambient);
    for (int i = 0; i < LightSlots::kCount; ++i) {
        if (before.lights_on[i] && HasType(before.lights[i])) states_.lights.Set(i, before.lights[i]);
        if (states_.lights.Enabled(i) != before.lights_on[i]) states_.lights.SetEnable(i, before.lights_on[i]);
    }
}

void SceneDrawer::LookThrough(const KRN_Camera& camera, const D3DXMATRIX& world) {
    D3DXVECTOR3 eye, direction, up;
    D3DXVec3TransformCoord(&eye, &camera.Eye(), &world);
    D3DXVec3TransformNormal(&direction, &camera.ViewDirection(), &world);
    D3DXVec3TransformNormal(&up, &camera.Up(), &world);
    states_.transforms.SetView(eye, direction, up);
    states_.transforms.SetProjection(states_.transforms.Near(), states_.transforms.Far(), camera.fov,
                                     Transforms::kDerivedAspect);
}

void SceneDrawer::SetFog(const RenderSettings& settings) {
    if (!settings.FogOn()) return;
    const auto word = [&settings](std::size_t i) { return settings.words[RenderSettings::kFogColour + i]; };
    const auto number = [&word](std::size_t i) { return std::bit_cast<float>(word(i)); };
    states_.fog.Set({.colour = word(0),
                     .mode = word(1),
                     .vertex_fog = word(2) != 0,
                     .start = number(3),
                     .end = number(4),
                     .density = number(5)});
    states_.fog.Enable(true);
}

/// The scene's lights take the place of those that the program has set.
void SceneDrawer::SetLights(const KRN_3dScene& scene) {
    states_.lighting.SetAmbient(scene.ambient);
    int used = 0;
    for (KRN_Light& light : scene.lights) {
        if (light.off || !HasType(light.record) || used == LightSlots::kCount) continue;
        light.ApplyOrientation(&scene.WorldMatrix());
        states_.lights.Set(used, light.record);
        states_.lights.SetEnable(used++, light.enabled);
    }
    for (; used < LightSlots::kCount; ++used)
        if (states_.lights.Enabled(used)) states_.lights.SetEnable(used, false);
}

void SceneDrawer::DrawMeshes(const KRN_3dScene& scene) {
    for (KRN_Mesh& mesh : scene.meshes)
        if (mesh.visible) meshes_.Draw(&mesh, &scene.WorldMatrix(), {});
}

}   // namespace sparkrig
