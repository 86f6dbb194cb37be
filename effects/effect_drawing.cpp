#include "effects/effect_drawing.h"

#include <algorithm>
#include <limits>

#include "effects/effect_textures.h"
#include "effects/packed_colour.h"
#include "gfx/device/with_restore.h"
#include "gfx/gfx.h"
#include "gfx/textures/texture.h"

namespace sparkrig {
namespace {

constexpr int kDepthOrderedBlendMode = 9;    // blends over what lies behind, so that the order shows
constexpr float kBeforeEverything = -1000;   // distance of what is held before the camera
constexpr std::uint32_t kBillboardModes = 256;
constexpr int kAlphaShift = 24;

}   // namespace

void EffectDrawing::Init(KRN_Gfx& gfx, int buffer_mode) {
    gfx_ = &gfx;
    particles_.Init(gfx, kParticlesPerBatch, false, buffer_mode);
    meshes_.Init(gfx);
    specials_.Init(gfx);
    traces_.Init(gfx, buffer_mode);
}

void EffectDrawing::Release() {
    particles_.Release();
    specials_.Release();
    traces_.Release();
    order_ = {};
}

void EffectDrawing::ResetCounters() {
    drawn_particles_ = other_draws_ = 0;
    particles_.StartFrame();
}

void EffectDrawing::Draw(EffectSimulation& simulation) {
    ResetCounters();
    before_ = RememberStates();
    const auto draw = [&] {
        gfx_->SetFogEnable(false);
        gfx_->SetLighting(false, nullptr);
        BuildOrder(simulation);
        DrawInOrder(simulation);
        DrawTraces(simulation.Traces());
    };
    WithRestore(draw, [this] { RestoreStates(); });
}

// ---- Order

void EffectDrawing::BuildOrder(const EffectSimulation& simulation) {
    const InstanceStore& instances = simulation.Instances();
    const auto class_of = [&](int group) { return instances.Group(group).sub->sort_class; };
    view_.emplace(*gfx_);
    order_.Clear();
    groups_.clear();
    traits_.clear();
    for (int number = 0; number < instances.GroupCount(); ++number) {
        traits_.push_back(TraitsOf(instances.Group(number)));
        if (instances.Group(number).count > 0) groups_.push_back(number);
    }
    std::sort(groups_.begin(), groups_.end(), [&](int a, int b) { return class_of(a) < class_of(b); });
    for (std::size_t begin = 0, end = 0; begin < groups_.size(); begin = end) {
        while (end < groups_.size() && class_of(groups_[end]) == class_of(groups_[begin])) ++end;
        CollectClass(instances, std::span(groups_).subspan(begin, end - begin), simulation.DetailLevel());
    }
    order_.Regroup(traits_, [&](Lane lane) { return static_cast<std::size_t>(instances.GroupOfLane(lane)); });
}

void EffectDrawing::CollectClass(const InstanceStore& instances, std::span<const int> groups, int detail_level) {
    elements_.clear();
    for (const int number : groups) {
        const InstanceGroup& group = instances.Group(number);
        CollectGroup(instances, group, group.sub->detail_level <= detail_level);
    }
    order_.AddClass(elements_, [&](Lane lane) { return static_cast<std::uint32_t>(instances.Record(lane).id); });
}

/// What is visible joins the order also where it is not drawn: it may stand between particles that would be regrouped.
void EffectDrawing::CollectGroup(const InstanceStore& instances, const InstanceGroup& group, bool shown) {
    const SubEffect& sub = *group.sub;
    const bool before_camera = sub.billboard == static_cast<int>(BillboardMode::BeforeCamera);
    std::size_t end = elements_.size();
    elements_.resize(end + static_cast<std::size_t>(group.count));
    for (std::size_t b = 0; b < group.blocks.size(); ++b) {
        const DrawRecord* records = instances.Records(group.blocks[b]);
        const Lane first_lane = group.blocks[b] * kLanes;
        const int count = group.LanesIn(b);
        SphereTest test;
        TestSpheres(*view_, records, count, test);
        if (sub.kind == SubEffectKind::Mesh) TestMeshes(instances, records, count, test);
        for (int i = 0; i < count; ++i) {
            const float distance = before_camera ? kBeforeEverything : test.distance[i];
            const bool drawn = shown && records[i].colour >> kAlphaShift != 0;
            const std::uint32_t flag = drawn ? 0 : DrawOrder::kInvisible;
            elements_[end] = MakeKeyed(DrawOrder::DepthKey(distance + sub.sort_distance_offset),
                                       (first_lane + static_cast<Lane>(i)) | flag);
            end += static_cast<std::size_t>(test.visible[i]);
        }
    }
    elements_.resize(end);
}

/// The sphere of a mesh instance is everywhere: its scene knows its bounds.
void EffectDrawing::TestMeshes(const InstanceStore& instances, const DrawRecord* records, int count, SphereTest& test) {
    for (int i = 0; i < count; ++i)
        if (test.visible[i] != 0) test.visible[i] = meshes_.IsVisible(GetInstance(instances, records[i].id)) ? 1 : 0;
}

RegroupTraits EffectDrawing::TraitsOf(const InstanceGroup& group) const {
    RegroupTraits traits;
    if (group.count == 0 || group.sub->kind != SubEffectKind::Particle) return traits;
    const auto& sub = static_cast<const ParticleEffect&>(*group.sub);
    traits.particle = true;
    traits.starts_run = sub.blend_mode != kDepthOrderedBlendMode || !sub.z_sort;
    traits.states = static_cast<std::uint32_t>(sub.blend_mode) << 2 |
                    static_cast<std::uint32_t>(sub.use_z_buffer) << 1 | static_cast<std::uint32_t>(sub.write_z_buffer);
    const std::uint32_t texture = sub.texture ? static_cast<std::uint32_t>(sub.texture->Identifier()) : 0;
    traits.texture = texture * kBillboardModes + sub.billboard;
    return traits;
}

// ---- Drawing

void EffectDrawing::DrawInOrder(const EffectSimulation& simulation) {
    const InstanceStore& instances = simulation.Instances();
    looks_.assign(static_cast<std::size_t>(instances.GroupCount()), {});
    batches_.clear();
    int batch = kNoBatch;   // that is being gathered
    for (const std::uint32_t element : order_.Order()) {
        if ((element & DrawOrder::kInvisible) != 0) continue;
        const int group = instances.GroupOfLane(element);
        const DrawRecord& record = instances.Record(element);
        Look& look = looks_[static_cast<std::size_t>(group)];
        if (look.batch != batch || look.animated || particles_.IsFull()) {
            SubEffect& sub = *instances.Group(group).sub;
            if (sub.kind != SubEffectKind::Particle) {
                DrawOther(GetInstance(instances, record.id));
                batch = kNoBatch;
                continue;
            }
            BeginParticle(static_cast<ParticleEffect&>(sub), look, record.age);
            batch = look.batch;
        }
        particles_.AddParticle(record);
        ++drawn_particles_;
    }
    particles_.Flush();
}

/// What is no particle ends the batch.
void EffectDrawing::DrawOther(const VisualEffectObject& object) {
    const SubEffect& sub = *object.sub_effect;
    particles_.Flush();
    if (sub.kind == SubEffectKind::Special && static_cast<const SpecialEffect&>(sub).type == SpecialType::None) return;
    gfx_->SetBlendingMode(sub.blend_mode, static_cast<int>(ColourByte(object.alpha)), 0);
    gfx_->SetZBufferMode(sub.use_z_buffer ? before_.z_buffer_mode : 0);
    gfx_->SetZWrite(sub.write_z_buffer && before_.z_write);
    if (sub.kind == SubEffectKind::Mesh) {
        Count(1, 1);
        meshes_.DrawMeshInstance(object, object.Age());
    } else {
        Count(static_cast<const SpecialEffect&>(sub).point_count, 1);
        specials_.DrawSpecialEffect(object, object.Age());
    }
}

void EffectDrawing::DrawTraces(TraceEffectSet& traces) {
    gfx_->SetZBufferMode(before_.z_buffer_mode);   // a trail says itself when it goes without
    traces_.DrawTraces(traces);
    Count(traces.Count(), traces.Count());
}

/// A definition may ask for more points than an int holds.
void EffectDrawing::Count(int drawn, int draws) {
    constexpr std::int64_t kMost = std::numeric_limits<int>::max();
    drawn_particles_ = static_cast<int>(std::min(kMost, std::int64_t{drawn_particles_} + std::max(drawn, 0)));
    other_draws_ += draws;
}

/// Ends the batch that waits unless the particle may join it, and makes states and texture the particle's.
void EffectDrawing::BeginParticle(ParticleEffect& sub, Look& look, float age) {
    if (particles_.IsFull()) particles_.Flush();
    ChooseStates(sub);
    if (look.batch == kUnknown) PrepareLook(sub, look, age);
    if (look.animated) look.texture->Update(age);
    particles_.SetBatchTexture(look.texture);
}

void EffectDrawing::PrepareLook(ParticleEffect& sub, Look& look, float age) {
    LoadEffectTexture(*gfx_, sub.texture_name.c_str(), sub.texture);
    look.texture = sub.texture.get();
    look.texture->Update(age);
    look.animated = look.texture->SequenceFrames() > 0;
    const auto same = [&](const auto& other) {
        const auto& [particle, texture] = other;
        return particle->blend_mode == sub.blend_mode && particle->billboard == sub.billboard &&
               particle->use_z_buffer == sub.use_z_buffer && particle->write_z_buffer == sub.write_z_buffer &&
               (texture == look.texture || texture->Name() == look.texture->Name());
    };
    const auto known = std::find_if(batches_.begin(), batches_.end(), same);
    look.batch = static_cast<int>(known - batches_.begin());
    if (known == batches_.end()) batches_.emplace_back(&sub, look.texture);
}

void EffectDrawing::ChooseStates(const ParticleEffect& sub) {
    const int z_buffer_mode = sub.use_z_buffer ? before_.z_buffer_mode : 0;
    const bool z_write = sub.write_z_buffer && before_.z_write;
    const bool same = particles_.BatchBillboardMode() == sub.billboard &&
                      particles_.BatchBlendMode() == sub.blend_mode && gfx_->ZBufferMode() == z_buffer_mode &&
                      gfx_->ZWrite() == z_write;
    if (same) return;
    particles_.Flush();
    particles_.SetBlendMode(sub.blend_mode);
    particles_.SetBillboardMode(sub.billboard);
    gfx_->SetZBufferMode(z_buffer_mode);
    gfx_->SetZWrite(z_write);
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
