#include "gfx/states/lighting.h"

namespace sparkrig {

void LightingState::Set(bool on, const D3DCOLOR* colour) {
    sender_.SetRenderState(D3DRS_LIGHTING, DWORD{on});
    on_ = on;
    colour_.reset();
    if (!colour) return;
    if (on)
        SetAmbient(*colour);
    else
        colour_ = *colour;
}

void LightingState::PushOff() {
    if (pushes_++ == 0) sender_.SetRenderState(D3DRS_LIGHTING, DWORD{FALSE});
}

void LightingState::PopOff() {
    if (pushes_ == 0) return;   // a pop without its push
    if (--pushes_ == 0 && on_) Set(true, nullptr);
}

void LightingState::SetAmbient(D3DCOLOR colour) {
    ambient_ = colour;
    sender_.SetRenderState(D3DRS_AMBIENT, colour);
}

void LightingState::SetSpecular(bool on) {
    sender_.SetRenderState(D3DRS_SPECULARENABLE, DWORD{on});
    specular_ = on;
}

void LightingState::SetNormalizeNormals(bool on) {
    sender_.SetRenderState(D3DRS_NORMALIZENORMALS, DWORD{on});
    normalize_normals_ = on;
}

void LightingState::SetMaterial(const D3DMATERIAL9& material) {
    material_ = material;
    material_given_ = true;
    if (!MaterialLocked()) sender_.SetMaterial(material_);
}

void LightingState::EndOverride() {
    colour_.reset();
    const bool held_back = MaterialLocked() && material_given_;
    material_locks_[0] = material_locks_[1] = false;
    if (held_back) sender_.SetMaterial(material_);
}

void LightingState::Reapply() {
    sender_.SetRenderState(D3DRS_LIGHTING, DWORD{on_ && pushes_ == 0});
    SetSpecular(specular_);
}

void LightingState::ReapplyMaterial() {
    SetAmbient(ambient_);
    SetNormalizeNormals(normalize_normals_);
    if (material_given_ && !MaterialLocked()) sender_.SetMaterial(material_);
}

}   // namespace sparkrig
