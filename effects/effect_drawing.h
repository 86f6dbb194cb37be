// One frame of the live instances: the visible ones collected, put into order, drawn.
#pragma once
#include <optional>
#include <vector>

#include "effects/draw_list.h"
#include "effects/effect_particle_system.h"
#include "effects/effect_simulation.h"
#include "effects/sub_effect_groups.h"
#include "effects/view_volume.h"

namespace sparkrig {

class EffectDrawing {
  public:
    static constexpr int kParticlesPerBatch = 1024;

    void Init(KRN_Gfx& gfx, int buffer_mode);
    void Release();
    /// Draws into the scene that has begun, and leaves the device's states as they were.
    void Draw(const EffectSimulation& simulation);
    /// The part of Draw before anything is drawn: what is visible, and in which order.
    void BuildOrder(const EffectSimulation& simulation);
    // Of the last Draw.
    int DrawnParticles() const { return drawn_particles_; }
    int DrawCalls() const { return particles_.DrawCalls(); }
    void ResetCounters();

    KRN_Gfx& Gfx() { return *gfx_; }

  private:
    /// A sub-effect with visible instances.
    struct Group {
        SubEffect* sub = nullptr;
    };
    /// Born instances, in ascending order of ids, whose bounds are tested together.
    struct Candidates {
        int count = 0;
        int ids[kLanes];
    };
    /// The device's states before the effects.
    struct States {
        bool fog, z_write, lighting;
        int z_buffer_mode, blending_mode, blending_alpha;
    };

    void Collect(const EffectSimulation& simulation);
    void AddVisible(const Candidates& candidates, const std::vector<DrawRecord>& records);
    RegroupTraits TraitsOf(const SubEffect& sub) const;

    void DrawInOrder(const std::vector<DrawRecord>& records, int detail_level);
    void BeginParticles(ParticleEffect& sub);
    States RememberStates() const;
    void RestoreStates();

    KRN_Gfx* gfx_ = nullptr;   // borrowed
    EffectParticleSystem particles_;
    DrawList list_;
    SubEffectGroups<Group> groups_;
    std::vector<RegroupTraits> traits_;   // of each group
    std::optional<ViewVolume> view_;      // of the frame
    States before_ = {};
    int drawn_particles_ = 0;
};

/// Loads the picture of a particle sub-effect at its first use: of the texture catalogue, or else of a file.
void LoadParticleTexture(KRN_Gfx& gfx, ParticleEffect& sub);

}   // namespace sparkrig
