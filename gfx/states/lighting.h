// Lighting as a whole: on or off, what stands in for it, ambient light, highlights, normals and the material.
#pragma once
#include <optional>

#include "gfx/states/state_sender.h"

namespace sparkrig {

class LightingState {
  public:
    explicit LightingState(StateSender& sender) : sender_(sender) {}

    /// `colour`, if given, is the ambient light; with lighting off it stands in for the vertices' diffuse colour.
    void Set(bool on, const D3DCOLOR* colour);
    bool On() const { return on_; }
    /// The colour that stands in for the diffuse one, with lighting off; null for none.
    const D3DCOLOR* Colour() const { return colour_ ? &*colour_ : nullptr; }
    /// Nested: the first push switches lighting off, the last pop switches it on again if it was asked for.
    void PushOff();
    void PopOff();

    void SetAmbient(D3DCOLOR colour);
    D3DCOLOR Ambient() const { return ambient_; }
    void SetSpecular(bool on);
    void SetNormalizeNormals(bool on);

    void SetMaterial(const D3DMATERIAL9& material);
    const D3DMATERIAL9& Material() const { return material_; }
    /// While a lock is set a material is only kept. Locks are 0 and 1.
    void LockMaterial(int lock, bool on) { material_locks_[lock] = on; }

    /// Ends what stood in for the normal lighting: the colour of Set and the material locks. The kept material is sent
    /// when a lock had held it back.
    void EndOverride();

    // After a reset.
    void Reapply();           // lighting, then specular
    void ReapplyMaterial();   // ambient light, normals, material

  private:
    bool MaterialLocked() const { return material_locks_[0] || material_locks_[1]; }

    StateSender& sender_;
    bool on_ = true;
    std::optional<D3DCOLOR> colour_;
    int pushes_ = 0;
    D3DCOLOR ambient_ = 0;
    bool specular_ = false;
    bool normalize_normals_ = false;
    D3DMATERIAL9 material_ = {};
    bool material_given_ = false;
    bool material_locks_[2] = {};
};

}   // namespace sparkrig
