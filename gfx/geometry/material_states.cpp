#include "gfx/geometry/material_states.h"

#include <algorithm>
#include <cmath>

#include "gfx/states/modes.h"

namespace sparkrig {

namespace {

constexpr D3DCOLORVALUE kBlack = {0, 0, 0, 1};

D3DCOLORVALUE ToColourValue(D3DCOLOR colour) {
    const auto part = [colour](int shift) { return static_cast<float>(colour >> shift & 0xFF) / 255; };
    return {part(16), part(8), part(0), part(24)};
}

D3DMATERIAL9 Coloured(const D3DMATERIAL9& own, const MaterialStates::Colours& colours) {
    D3DMATERIAL9 coloured = colours.material ? *colours.material : own;
    if (!colours.colour) return coloured;
    const D3DCOLORVALUE colour = ToColourValue(*colours.colour);
    if (!colours.emitted) {
        coloured.Diffuse = coloured.Ambient = colour;
        return coloured;
    }
    const D3DCOLORVALUE unlit = {0, 0, 0, colour.a};
    return {colours.shaded ? colour : unlit, kBlack, kBlack, colour, coloured.Power};
}

DWORD AddressMode(bool mirrored, bool tiled) {
    return mirrored ? D3DTADDRESS_MIRROR : tiled ? D3DTADDRESS_WRAP : D3DTADDRESS_CLAMP;
}

bool IsReflection(MapKind kind) { return kind == MapKind::Reflection || kind == MapKind::SphereReflection; }

}   // namespace

void MaterialStates::Begin() {
    blending_ = states_.blending.Now();
    stages_changed_ = 0;
    for (int stage = 0; stage < KRN_Texture::kLayers; ++stage) {
        address_u_[stage] = states_.samplers.AddressU(stage);
        address_v_[stage] = states_.samplers.AddressV(stage);
    }
}

void MaterialStates::End() {
    for (int stage = 0; stage < stages_changed_; ++stage) {
        const DWORD number = static_cast<DWORD>(stage);
        states_.sender.SetStageState(number, D3DTSS_TEXCOORDINDEX, number);
        states_.samplers.SetAddressU(address_u_[stage], stage);
        states_.samplers.SetAddressV(address_v_[stage], stage);
    }
    states_.blending.GoBackTo(blending_);
}

void MaterialStates::Set(KRN_MeshBase& mesh, int group, const Colours& colours, bool every_stage) {
    const MeshMaterial& material = mesh.Material(group);
    TextureRecord& record = mesh.Textures(group);
    DeviceMaps& maps = MakeDeviceMaps(loader_, record);
    if (material.blending) SetBlending(material);
    if (maps.layers == 0) return SetPlain(material.colours, colours);
    states_.lighting.SetMaterial(Coloured(material.colours, colours));
    maps.texture.Update(static_cast<float>(record.time));
    SetMaps(maps, every_stage);
    SetCoordinates(mesh, maps);
    SetAddressing(material.addressing, maps);
    stages_changed_ = std::max(stages_changed_, maps.layers);
}

void MaterialStates::SetPlain(const D3DMATERIAL9& own, const Colours& colours) {
    D3DMATERIAL9 coloured = Coloured(own, colours);
    if (FadesByFactor(states_.blending.Mode())) {
        const float fading = static_cast<float>(states_.blending.Alpha()) / 255;
        coloured.Diffuse.a = colours.emitted ? fading : coloured.Diffuse.a * fading;
    }
    states_.lighting.SetMaterial(coloured);
    textures_.SetTexture(nullptr, -1);
}

void MaterialStates::SetBlending(const MeshMaterial& material) {
    const bool off = blending_.mode == kBlendOff;
    int mode = off ? int{kBlendFaded} : blending_.mode;
    if (material.blend == MaterialBlend::Additive) mode = kBlendAddFaded;
    if (material.blend == MaterialBlend::Subtractive) mode = kBlendSubtractFaded;
    const float opacity = 1 - std::clamp(material.transparency, 0.0f, 1.0f);
    const int alpha = static_cast<int>(std::lround(opacity * static_cast<float>(off ? 255 : blending_.alpha)));
    if (states_.blending.Mode() != mode || states_.blending.Now().given_alpha != alpha)
        states_.blending.Set(mode, alpha, 0);
}

void MaterialStates::SetMaps(DeviceMaps& maps, bool every_stage) {
    textures_.SetTexture(&maps.texture, 0);
    if (!every_stage) return;
    for (int layer = textures_.StagesInUse(); layer < maps.layers; ++layer) textures_.SetTexture(&maps.texture, layer);
}

void MaterialStates::SetCoordinates(const KRN_MeshBase& mesh, const DeviceMaps& maps) {
    const int sets = mesh.Geometry()->layout.texture_sets;
    for (int layer = 0; layer < maps.layers; ++layer) {
        const bool own_set = IsReflection(maps.texture.KindOf(layer)) && mesh.reflection_stage < sets;
        const int set = own_set ? std::max(mesh.reflection_stage, 0) : 0;
        states_.sender.SetStageState(static_cast<DWORD>(layer), D3DTSS_TEXCOORDINDEX, static_cast<DWORD>(set));
    }
}

void MaterialStates::SetAddressing(const TextureAddressing& addressing, const DeviceMaps& maps) {
    for (int layer = 0; layer < maps.layers; ++layer) {
        if (IsReflection(maps.texture.KindOf(layer))) continue;
        states_.samplers.SetAddressU(AddressMode(addressing.mirror_u, addressing.tile_u), layer);
        states_.samplers.SetAddressV(AddressMode(addressing.mirror_v, addressing.tile_v), layer);
    }
}

}   // namespace sparkrig
