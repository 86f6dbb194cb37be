// Plays visual effects: loads the definitions, starts, moves and draws their live instances.
#pragma once
#include <memory>
#include <vector>

#include "base/error.h"
#include "base/string.h"
#include "platform/d3dx/d3dx_math.h"

namespace sparkrig {

class KRN_Gfx;
struct VisualEffectSystemParts;

/// One live instance, as it stands between two updates.
struct EffectInstanceState {
    int id;
    String effect;
    int kind;                   // 1 mesh, 2 particle, 3 special
    int sub_index;              // in the effect's list of that kind
    double time, birth_delay;   // of its own clock, seconds
    float count;
    float random[4];
    D3DXVECTOR3 base, position, scale;
    D3DXQUATERNION rotation;
    float angle;   // radians; this and the colour at its age, or at 0 before its birth
    D3DXVECTOR3 colour;
    float alpha;
};

class VisualEffectSystem : public ErrorClass {
  public:
    VisualEffectSystem();
    ~VisualEffectSystem();
    VisualEffectSystem(const VisualEffectSystem&) = delete;
    VisualEffectSystem& operator=(const VisualEffectSystem&) = delete;

    /// Borrows the device, which has been made. Loads "cfg/texCatalogue.cfg" and the particle shader effect. Everything
    /// but preloading and drawing works without it. Mode: the buffer mode of EffectParticleSystem::Init.
    void Init(KRN_Gfx& gfx, int mode);
    /// Loads the particle shader effect again when its file has changed. What fails is an error and leaves the one that
    /// there is.
    void ReloadShader();
    /// With keep_instances running instances go on with the new definitions.
    void LoadEffects(const char* file, bool keep_instances);
    /// The one that was set up last, for the whole program; null before.
    static VisualEffectSystem* Current();
    int GetEffectCount() const;
    /// In file order; empty for a wrong index. Good until the next load.
    const String& GetEffectName(int index) const;

    void StartEffect(const char* name, const D3DXVECTOR3& position);
    /// Loads the textures and scenes of the effect and of what it emits. A name that begins with "trace:" names a
    /// texture.
    void PreloadEffect(const char* name);
    void Update(float elapsed_seconds);
    /// Draws into the scene that has begun. The number of draw calls.
    int Draw();
    int DrawnParticleCount() const;
    int DrawCallCount() const;
    void SetDetailLevel(int level);
    int DetailLevel() const;
    int LiveInstanceCount() const;
    double SystemTime() const;
    /// Every live instance, in ascending order of ids.
    std::vector<EffectInstanceState> GetInstanceStates() const;
    /// How much there is to see of trails: the alphas of the lines that their ribbons have now.
    double RibbonStrength() const;

    /// Ends every instance and forgets the definitions.
    void Clear();
    /// Lets go of everything that needs the device, which is not used any more.
    void Release();

  private:
    std::unique_ptr<VisualEffectSystemParts> parts_;
};

}   // namespace sparkrig
