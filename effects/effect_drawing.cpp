#include "effects/effect_drawing.h"

#include <cmath>

#include "effects/motion_lanes.h"
#include "effects/packed_colour.h"
#include "effects/particle_appearance.h"
#include "effects/transform_update.h"
#include "gfx/gfx.h"
#include "gfx/texture.h"
#include "gfx/texture_catalogue.h"

namespace sparkrig {
namespace {

constexpr int kDepthOrderedBlendMode = 9;   // blends over what lies behind, so that the order shows
constexpr int kSubtractiveBlendMode = 5;
constexpr float kBeforeEverything = -1000;   // distance of what is held before the camera
constexpr float kSpecialRadius = 1.5f;       // of the length of the scale
constexpr std::uint32_t kBillboardModes = 256;

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
    items_ = {};
}

void EffectDrawing::ResetCounters() {
    drawn_particles_ = 0;
    particles_.StartFrame();
}

void EffectDrawing::Draw(const EffectSimulation::Instances& instances, int detail_level) {
    ResetCounters();
    before_ = RememberStates();
    gfx_->SetFogEnable(false);
    gfx_->SetLighting(false, nullptr);
    Collect(instances, detail_level);
    BringIntoOrder();
    DrawInOrder();
    groups_.Release();
    RestoreStates();
}

// ---- Collecting

void EffectDrawing::Collect(const EffectSimulation::Instances& instances, int detail_level) {
    list_.Clear();
    items_.clear();
    group_of_.clear();
    for (int position = 0; position < instances.GetCount(); ++position) {
        VisualEffectObject& object = *instances.GetAt(position);
        if (object.time >= object.birth_delay && IsVisible(object))
            AddVisible(instances.GetIdAt(position), object, detail_level);
    }
    for (int i = 0; i < groups_.Count(); ++i) MakeParticles(groups_[i]);
}

void EffectDrawing::AddVisible(int id, VisualEffectObject& object, int detail_level) {
    SubEffect& sub = *object.sub_effect;
    const int number = groups_.NumberOf(sub);
    const auto item = static_cast<std::uint32_t>(items_.size());
    const bool shown = sub.detail_level <= detail_level && ColourByte(object.alpha) != 0;
    items_.push_back({{}, static_cast<float>(object.Age()), static_cast<std::uint32_t>(number), shown});
    group_of_.push_back(static_cast<std::uint32_t>(number));
    list_.Add({static_cast<std::uint32_t>(id), SortDistance(object), sub.sort_class});
    if (object.kind != SubEffectKind::Particle || !shown) return;
    Group& group = groups_[number];
    group.objects[group.count] = &object;
    group.items[group.count++] = item;
    if (group.count == kLanes) MakeParticles(group);
}

float EffectDrawing::SortDistance(const VisualEffectObject& object) const {
    const SubEffect& sub = *object.sub_effect;
    if (sub.billboard == static_cast<int>(BillboardMode::BeforeCamera))
        return sub.sort_distance_offset + kBeforeEverything;
    return gfx_->DistanceToCamera(object.position) + sub.sort_distance_offset;
}

bool EffectDrawing::IsVisible(const VisualEffectObject& object) const {
    switch (object.kind) {
        case SubEffectKind::Particle: return gfx_->SphereInView(object.position, std::abs(object.scale.x));
        case SubEffectKind::Special:
            return gfx_->SphereInView(object.position, kSpecialRadius * D3DXVec3Length(object.scale));
        case SubEffectKind::Mesh: return true;
    }
    return true;
}

void EffectDrawing::MakeParticles(Group& group) {
    if (group.count == 0) return;
    const SubEffect& sub = *group.sub;
    MotionLanes in;
    GatherLanes(group.objects, group.count, in);
    VectorLanes rgb;
    alignas(64) float angle[kLanes];
    alignas(64) float alpha[kLanes];
    alignas(64) std::uint32_t colour[kLanes];
    EvalColor(sub, in, rgb);
    EvalRotationAngle(sub, in, angle);
    for (int i = 0; i < group.count; ++i) alpha[i] = group.objects[i]->alpha;
    PackParticleColours(rgb, alpha, group.count, sub.blend_mode == kSubtractiveBlendMode, colour);
    for (int i = 0; i < group.count; ++i) {
        const VisualEffectObject& object = *group.objects[i];
        items_[group.items[i]].particle = {object.position, colour[i], angle[i], object.scale.x};
    }
    group.count = 0;
}

// ---- Ordering

void EffectDrawing::BringIntoOrder() {
    traits_.clear();
    for (int i = 0; i < groups_.Count(); ++i) traits_.push_back(TraitsOf(*groups_[i].sub));
    list_.Sort();
    list_.Regroup(group_of_, traits_);
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

void EffectDrawing::DrawInOrder() {
    const SubEffect* last = nullptr;   // whose batch is being gathered
    for (const std::uint32_t number : list_.Order()) {
        const Item& item = items_[number];
        if (!item.shown) continue;
        SubEffect& sub = *groups_[static_cast<int>(item.group)].sub;
        if (sub.kind != SubEffectKind::Particle) {
            particles_.Flush();
            last = nullptr;
            continue;
        }
        auto& particle_effect = static_cast<ParticleEffect&>(sub);
        if (&sub != last) BeginParticles(particle_effect);
        last = &sub;
        DrawParticle(particle_effect, item);
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
    if (!same) particles_.Flush();
    particles_.SetBlendMode(sub.blend_mode);
    particles_.SetBillboardMode(sub.billboard);
    gfx_->SetZBufferMode(z_buffer_mode);
    gfx_->SetZWrite(z_write);
    LoadParticleTexture(*gfx_, sub);
}

void EffectDrawing::DrawParticle(const ParticleEffect& sub, const Item& item) {
    sub.texture->Update(item.age);
    if (particles_.IsFull()) particles_.Flush();
    particles_.SetBatchTexture(sub.texture.get());
    particles_.AddParticle(item.particle);
    ++drawn_particles_;
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
