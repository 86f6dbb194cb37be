// One frame of the live instances: the visible ones collected, put into order, drawn.
#pragma once
#include <vector>

#include "effects/draw_list.h"
#include "effects/effect_particle_system.h"
#include "effects/effect_simulation.h"
#include "effects/sub_effect_groups.h"

namespace sparkrig {

class EffectDrawing {
  public:
    static constexpr int kParticlesPerBatch = 1024;

    void Init(KRN_Gfx& gfx, int buffer_mode);
    void Release();
    /// Draws into the scene that has begun, and leaves the device's states as they were.
    void Draw(const EffectSimulation::Instances& instances, int detail_level);
    // Of the last Draw.
    int DrawnParticles() const { return drawn_particles_; }
    int DrawCalls() const { return particles_.DrawCalls(); }
    void ResetCounters();

    KRN_Gfx& Gfx() { return *gfx_; }

  private:
    /// A visible instance.
    struct Item {
        Particle particle;   // of a particle sub-effect
        float age;           // seconds
        std::uint32_t group;
        bool shown;   // else only part of the order
    };
    /// A sub-effect with visible instances.
    struct Group {
        SubEffect* sub = nullptr;
        int count = 0;   // of those whose particles wait to be evaluated
        VisualEffectObject* objects[kLanes];
        std::uint32_t items[kLanes];
    };
    /// The device's states before the effects.
    struct States {
        bool fog, z_write, lighting;
        int z_buffer_mode, blending_mode, blending_alpha;
    };

    void Collect(const EffectSimulation::Instances& instances, int detail_level);
    void AddVisible(int id, VisualEffectObject& object, int detail_level);
    float SortDistance(const VisualEffectObject& object) const;
    bool IsVisible(const VisualEffectObject& object) const;
    void MakeParticles(Group& group);
    void BringIntoOrder();
    RegroupTraits TraitsOf(const SubEffect& sub) const;

    void DrawInOrder();
    void BeginParticles(ParticleEffect& sub);
    void DrawParticle(const ParticleEffect& sub, const Item& item);
    States RememberStates() const;
    void RestoreStates();

    KRN_Gfx* gfx_ = nullptr;   // borrowed
    EffectParticleSystem particles_;
    DrawList list_;
    std::vector<Item> items_;
    SubEffectGroups<Group> groups_;
    std::vector<std::uint32_t> group_of_;   // of each item
    std::vector<RegroupTraits> traits_;     // of each group
    States before_ = {};
    int drawn_particles_ = 0;
};

/// Loads the picture of a particle sub-effect at its first use: of the texture catalogue, or else of a file.
void LoadParticleTexture(KRN_Gfx& gfx, ParticleEffect& sub);

}   // namespace sparkrig
