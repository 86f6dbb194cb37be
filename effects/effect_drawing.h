// One frame of the live instances: the visible ones collected, put into order, drawn.
#pragma once
#include <optional>
#include <vector>

#include "effects/draw_order.h"
#include "effects/effect_particle_system.h"
#include "effects/effect_simulation.h"
#include "effects/mesh_effect_renderer.h"
#include "effects/special_effect_renderer.h"
#include "effects/trace_drawing.h"
#include "effects/view_volume.h"

namespace sparkrig {

class EffectDrawing {
  public:
    static constexpr int kParticlesPerBatch = 1024;

    void Init(KRN_Gfx& gfx, int buffer_mode);
    void ReloadShader() { particles_.LoadShader(); }
    void Release();
    /// Draws into the scene that has begun, and leaves the device's states as they were.
    void Draw(EffectSimulation& simulation);
    /// The part of Draw before anything is drawn: what is visible, and in which order.
    void BuildOrder(const EffectSimulation& simulation);
    // Of the last Draw.
    int DrawnParticles() const { return drawn_particles_; }
    int DrawCalls() const { return particles_.DrawCalls() + other_draws_; }
    void ResetCounters();

    KRN_Gfx& Gfx() { return *gfx_; }
    /// Loads the scene of a mesh sub-effect before it is first seen.
    void PreloadMesh(MeshEffect& sub) { meshes_.PreloadMesh(sub); }

  private:
    /// How the particles of a group are drawn; made when the frame meets the first of them.
    struct Look {
        int batch = kUnknown;             // equal where particles may share a batch
        KRN_Texture* texture = nullptr;   // borrowed
        bool animated = false;            // each particle may show another frame of the texture
    };
    static constexpr int kUnknown = -1, kNoBatch = -2;
    /// The device's states before the effects.
    struct States {
        bool fog, z_write, lighting;
        int z_buffer_mode, blending_mode, blending_alpha;
    };

    void CollectClass(const InstanceStore& instances, std::span<const int> groups, int detail_level);
    void CollectGroup(const InstanceStore& instances, const InstanceGroup& group, bool shown);
    void TestMeshes(const InstanceStore& instances, const DrawRecord* records, int count, SphereTest& test);
    RegroupTraits TraitsOf(const InstanceGroup& group) const;

    void DrawInOrder(const EffectSimulation& simulation);
    void DrawOther(const VisualEffectObject& object);
    void DrawTraces(TraceEffectSet& traces);
    void Count(int drawn, int draws);
    void BeginParticle(ParticleEffect& sub, Look& look, float age);
    void PrepareLook(ParticleEffect& sub, Look& look, float age);
    void ChooseStates(const ParticleEffect& sub);
    States RememberStates() const;
    void RestoreStates();

    KRN_Gfx* gfx_ = nullptr;   // borrowed
    EffectParticleSystem particles_;
    MeshEffectRenderer meshes_;
    SpecialEffectRenderer specials_;
    TraceDrawing traces_;
    DrawOrder order_;
    std::vector<int> groups_;             // with instances, by sort class
    std::vector<KeyedPlace> elements_;    // of one class: depth and lane
    std::vector<RegroupTraits> traits_;   // of each group, like the next
    std::vector<Look> looks_;
    std::vector<std::pair<const ParticleEffect*, KRN_Texture*>> batches_;   // one particle of each batch number
    std::optional<ViewVolume> view_;                                        // of the frame
    States before_ = {};
    int drawn_particles_ = 0;
    int other_draws_ = 0;   // of meshes, specials and trails
};

}   // namespace sparkrig
