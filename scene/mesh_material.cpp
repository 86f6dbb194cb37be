#include "scene/mesh_material.h"

namespace sparkrig {

namespace {

void Animate(const ColourCurve& track, double t, D3DCOLORVALUE& colour) {
    if (track.IsEmpty()) return;
    float rgba[4];
    track.EvaluateCurve(t, rgba);
    colour = {rgba[0], rgba[1], rgba[2], rgba[3]};
}

}   // namespace

void MeshMaterial::Animate(double t) {
    sparkrig::Animate(diffuse_track, t, colours.Diffuse);
    sparkrig::Animate(ambient_track, t, colours.Ambient);
    sparkrig::Animate(specular_track, t, colours.Specular);
    sparkrig::Animate(emissive_track, t, colours.Emissive);
    if (transparency_track.IsEmpty()) return;
    float value[1];
    transparency_track.EvaluateCurve(t, value);
    transparency = value[0];
}

void TextureRecord::Animate(double t) {
    time = t;
    for (MapSlot& slot : slots) slot.values = slot.animation.ValuesAt(t);
}

}   // namespace sparkrig
