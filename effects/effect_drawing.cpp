#include "effects/effect_drawing.h"

#include "gfx/device/with_restore.h"
#include "gfx/gfx.h"
#include "gfx/textures/texture.h"
#include "gfx/textures/texture_catalogue.h"

namespace sparkrig {
namespace {

constexpr int kDepthOrderedBlendMode = 9;    // blends over what lies behind, so that the order shows
constexpr float kBeforeEverything = -1000;   // distance of what is held before the camera
constexpr std::uint32_t kBillboardModes = 256;
constexpr std::size_t kPrefetch =
    12;   // places ahead: depth order jumps through the records, which no processor foresees

}   // namespace

void LoadParticleTexture(KRN_Gfx& gfx, ParticleEffect& sub) {
    const char* name = sub.texture_name.c_str();
    if (!sub.texture && *name) {
        KRN_Texture* shared = gfx.Catalogue().GetTexture(name);
        if (shared) sub.texture = std::shared_ptr<KRN_Texture>(shared, [](KRN_Texture*) {});   // the catalogue's own
    }
    if (!sub.texture) sub.texture = std::make_shared<KRN_Texture>();
    if (!sub.texture->HasSurface()) gfx.LoadTexture(sub.texture.get(), name, 0, 0);
}

void EffectDrawing::Init(KRN_Gfx& gfx, int buffer_mode) {
    gfx_ = &gfx;
    particles_.Init(gfx, kParticlesPerBatch, false, buffer_mode);
}

void EffectDrawing::Release() {
    particles_.Release();
    list_ = {};
}

void EffectDrawing::ResetCounters() {
    drawn_particles_ = 0;
    particles_.StartFrame();
}

void EffectDrawing::Draw(const EffectSimulation& simulation) {
    ResetCounters();
    before_ = RememberStates();
    const auto draw = [&] {
        gfx_->SetFogEnable(false);
        gfx_->SetLighting(false, nullptr);
        BuildOrder(simulation);
        DrawInOrder(simulation.Records(), simulation.DetailLevel());
    };
    WithRestore(draw, [this] { RestoreStates(); });
}

void EffectDrawing::BuildOrder(const EffectSimulation& simulation) {
    groups_.Begin();
    Collect(simulation);
    groups_.End();
    traits_.clear();
    for (int i = 0; i < groups_.Count(); ++i) traits_.push_back(TraitsOf(*groups_[i].sub));
    list_.Sort();
    list_.Regroup(traits_);
}

void EffectDrawing::Collect(const EffectSimulation& simulation) {
    const std::vector<DrawRecord>& records = simulation.Records();
    const int count = simulation.Live().GetCount();
    list_.Clear();
    view_.emplace(*gfx_);
    Candidates candidates;
    for (int position = 0; position < count; ++position) {
        const int id = simulation.Live().GetIdAt(position);
        if (!records[static_cast<std::size_t>(id)].born) continue;
        candidates.ids[candidates.count++] = id;
        if (candidates.count < kLanes) continue;
        AddVisible(candidates, records);
        candidates.count = 0;
    }
    AddVisible(candidates, records);
}

void EffectDrawing::AddVisible(const Candidates& candidates, const std::vector<DrawRecord>& records) {
    SphereLanes spheres;
    for (int i = 0; i < candidates.count; ++i) {
        const DrawRecord& record = records[static_cast<std::size_t>(candidates.ids[i])];
        spheres.centre.x[i] = record.particle.position.x;
        spheres.centre.y[i] = record.particle.position.y;
        spheres.centre.z[i] = record.particle.position.z;
        spheres.radius[i] = record.radius;
    }
    TestSpheres(*view_, candidates.count, spheres);
    for (int i = 0; i < candidates.count; ++i) {
        if (!spheres.visible[i]) continue;
        SubEffect& sub = *records[static_cast<std::size_t>(candidates.ids[i])].sub;
        const bool before_camera = sub.billboard == static_cast<int>(BillboardMode::BeforeCamera);
        const float distance = before_camera ? kBeforeEverything : spheres.distance[i];
        list_.Add({static_cast<std::uint32_t>(candidates.ids[i]), distance + sub.sort_distance_offset, sub.sort_class},
                  groups_.NumberOf(sub));
    }
}

RegroupTraits EffectDrawing::TraitsOf(const SubEffect& sub) const {
    RegroupTraits traits;
    traits.particle = sub.kind == SubEffectKind::Particle;
    if (!traits.particle) return traits;
    const auto& texture = static_cast<const ParticleEffect&>(sub).texture;
    traits.starts_run = sub.blend_mode != kDepthOrderedBlendMode || !sub.z_sort;
    traits.states = static_cast<std::uint32_t>(sub.blend_mode) << 2 |
                    static_cast<std::uint32_t>(sub.use_z_buffer) << 1 | static_cast<std::uint32_t>(sub.write_z_buffer);
    traits.texture =
        (texture ? static_cast<std::uint32_t>(texture->Identifier()) : 0) * kBillboardModes + sub.billboard;
    return traits;
}

// ---- Drawing

void EffectDrawing::DrawInOrder(const std::vector<DrawRecord>& records, int detail_level) {
    const SubEffect* last = nullptr;   // whose batch is being gathered
    KRN_Texture* texture = nullptr;    // its texture, and whether each particle may show another frame of it
    bool animated = false;
    const std::vector<std::uint32_t>& order = list_.Order();
    for (std::size_t place = 0; place < order.size(); ++place) {
        if (place + kPrefetch < order.size()) {
            const DrawRecord& ahead = records[order[place + kPrefetch]];
            __builtin_prefetch(&ahead.particle);
            __builtin_prefetch(&ahead.sub);   // a third of the records lie across two lines
        }
        const DrawRecord& record = records[order[place]];
        SubEffect& sub = *record.sub;
        if (!record.opaque || sub.detail_level > detail_level) continue;
        if (sub.kind != SubEffectKind::Particle) {
            particles_.Flush();
            last = nullptr;
            continue;
        }
        const bool begins = &sub != last;
        if (begins) {
            auto& particle_effect = static_cast<ParticleEffect&>(sub);
            BeginParticles(particle_effect);
            texture = particle_effect.texture.get();
            animated = texture->SequenceFrames() > 0;
            last = &sub;
        }
        if (begins || animated) texture->Update(record.age);
        if (particles_.IsFull()) particles_.Flush();
        if (begins || animated || particles_.IsEmpty()) particles_.SetBatchTexture(texture);
        particles_.AddParticle(record.particle);
        ++drawn_particles_;
    }
    particles_.Flush();
}

/// Ends the batch that waits unless the sub-effect's particles may join it, and makes the states theirs.
void EffectDrawing::BeginParticles(ParticleEffect& sub) {
    const int z_buffer_mode = sub.use_z_buffer ? before_.z_buffer_mode : 0;
    const bool z_write = sub.write_z_buffer && before_.z_write;
    const bool same = particles_.BatchBillboardMode() == sub.billboard &&
                      particles_.BatchBlendMode() == sub.blend_mode && gfx_->ZBufferMode() == z_buffer_mode &&
                      gfx_->ZWrite() == z_write;
    if (!same) {
        particles_.Flush();
        particles_.SetBlendMode(sub.blend_mode);
        particles_.SetBillboardMode(sub.billboard);
        gfx_->SetZBufferMode(z_buffer_mode);
        gfx_->SetZWrite(z_write);
    }
    LoadParticleTexture(*gfx_, sub);
}

// ---- States

EffectDrawing::States EffectDrawing::RememberStates() const {
    States states;
    states.fog = gfx_->FogEnable();
    states.z_buffer_mode = gfx_->ZBufferMode();
    states.z_write = gfx_->ZWrite();
    states.blending_mode = gfx_->BlendingMode();
    states.blending_alpha = gfx_->BlendingAlpha();
    states.lighting = gfx_->Lighting();
    return states;
}

void EffectDrawing::RestoreStates() {
    gfx_->SetBlendingMode(before_.blending_mode, before_.blending_alpha, 0);
    gfx_->SetZBufferMode(before_.z_buffer_mode);
    gfx_->SetZWrite(before_.z_write);
    gfx_->SetFogEnable(before_.fog);
    gfx_->SetLighting(before_.lighting, nullptr);
}

}   // namespace sparkrig
