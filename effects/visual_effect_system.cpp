#include "effects/visual_effect_system.h"

#include <algorithm>
#include <cstring>
#include <set>

#include "effects/effect_textures.h"
#include "effects/effects_file.h"
#include "effects/motion.h"
#include "effects/visual_effect_system_parts.h"
#include "gfx/gfx.h"
#include "gfx/textures/texture_catalogue.h"

namespace sparkrig {
namespace {

VisualEffectSystem* current = nullptr;   // borrowed

VisualEffect& FindEffect(const ErrorClass& reporter, const EffectDefinitions& definitions, const char* name) {
    VisualEffect* effect = definitions.effects.Find(name);
    if (!effect) reporter.Error("Effect '%s' not found", name);
    return *effect;
}

/// Loads what an effect shows and, before its next sub-effect, what this one emits. Each effect once: effects may emit
/// each other in a ring. The sub-effects that wait stand in a list of their own: chains may be long.
class Preloading {
  public:
    Preloading(const ErrorClass& reporter, VisualEffectSystemParts& parts) : reporter_(reporter), parts_(parts) {}

    void Preload(const char* name) {
        Enter(name);
        while (!waiting_.empty()) {
            SubEffect& sub = *waiting_.back();
            waiting_.pop_back();
            if (sub.kind == SubEffectKind::Particle) {
                auto& particle = static_cast<ParticleEffect&>(sub);
                LoadEffectTexture(Gfx(), particle.texture_name.c_str(), particle.texture);
            }
            if (sub.kind == SubEffectKind::Mesh) parts_.drawing.PreloadMesh(static_cast<MeshEffect&>(sub));
            if (sub.emit.name.GetLength() > 0) Enter(sub.emit.name.c_str());
        }
    }

  private:
    KRN_Gfx& Gfx() { return parts_.drawing.Gfx(); }

    void Enter(const char* name) {
        if (String(name).StartsWith(kTracePrefix)) {
            const char* texture = name + std::strlen(kTracePrefix);
            if (*texture) Gfx().Catalogue().GetTexture(texture);
            return;
        }
        const VisualEffect& effect = FindEffect(reporter_, *parts_.definitions, name);
        if (!visited_.insert(&effect).second) return;
        const std::size_t first = waiting_.size();
        Append(effect.particles);
        Append(effect.meshes);
        Append(effect.specials);
        std::reverse(waiting_.begin() + static_cast<std::ptrdiff_t>(first), waiting_.end());   // taken from the end
    }

    template <class List>
    void Append(const List& subs) {
        for (int i = 0; i < subs.GetCount(); ++i) waiting_.push_back(subs.GetAt(i));
    }

    const ErrorClass& reporter_;
    VisualEffectSystemParts& parts_;
    std::vector<SubEffect*> waiting_;
    std::set<const VisualEffect*> visited_;
};

EffectInstanceState StateOf(const VisualEffectObject& object) {
    const SubEffect& sub = *object.sub_effect;
    const double age = std::max(object.Age(), 0.0);
    EffectInstanceState state;
    state.id = object.id;
    state.effect = sub.owner->name;
    state.kind = static_cast<int>(object.kind);
    state.sub_index = sub.index;
    state.time = object.time;
    state.birth_delay = object.birth_delay;
    state.count = object.count_value;
    std::copy_n(object.random, 4, state.random);
    state.base = object.base_position;
    state.position = object.position;
    state.scale = object.scale;
    state.rotation = object.rotation;
    state.angle = EvalRotationAngle(sub, age, object.count_value, object.random);
    state.colour = EvalColor(sub, age, object.count_value, object.random);
    state.alpha = object.alpha;
    return state;
}

}   // namespace

VisualEffectSystem::VisualEffectSystem() : parts_(std::make_unique<VisualEffectSystemParts>(*this)) {
    SetName("VisualEffectSystem");
}

VisualEffectSystem::~VisualEffectSystem() {
    if (current == this) current = nullptr;
}

VisualEffectSystem* VisualEffectSystem::Current() { return current; }

void VisualEffectSystem::LoadEffects(const char* file, bool keep_instances) {
    if (!keep_instances) Clear();
    auto definitions = std::make_unique<EffectDefinitions>();
    LoadEffectsFile(file, *this, *definitions);
    const auto bindings = parts_->simulation.Unbind();
    parts_->definitions = std::move(definitions);
    parts_->simulation.Rebind(bindings, *parts_->definitions);
}

int VisualEffectSystem::GetEffectCount() const { return parts_->definitions->names.GetCount(); }

const String& VisualEffectSystem::GetEffectName(int index) const {
    static const String none;
    const String* name = parts_->definitions->names.GetAt(index);
    return name ? *name : none;
}

void VisualEffectSystem::StartEffect(const char* name, const D3DXVECTOR3& position) {
    parts_->simulation.StartEffect(FindEffect(*this, *parts_->definitions, name), position);
}

double VisualEffectSystem::RibbonStrength() const { return parts_->simulation.Traces().Strength(); }

void VisualEffectSystem::Update(float elapsed_seconds) { parts_->simulation.Update(elapsed_seconds); }

void VisualEffectSystem::Init(KRN_Gfx& gfx, int mode) {
    current = this;
    parts_->drawing.Init(gfx, mode);
    gfx.Catalogue().Load("cfg/texCatalogue.cfg", "", false);
}

void VisualEffectSystem::ReloadShader() { parts_->drawing.ReloadShader(); }

void VisualEffectSystem::PreloadEffect(const char* name) { Preloading(*this, *parts_).Preload(name); }

int VisualEffectSystem::Draw() {
    parts_->drawing.Draw(parts_->simulation);
    return DrawCallCount();
}

int VisualEffectSystem::DrawnParticleCount() const { return parts_->drawing.DrawnParticles(); }
int VisualEffectSystem::DrawCallCount() const { return parts_->drawing.DrawCalls(); }

void VisualEffectSystem::SetDetailLevel(int level) { parts_->simulation.SetDetailLevel(level); }
int VisualEffectSystem::DetailLevel() const { return parts_->simulation.DetailLevel(); }
int VisualEffectSystem::LiveInstanceCount() const { return parts_->simulation.Instances().Count(); }
double VisualEffectSystem::SystemTime() const { return parts_->simulation.SystemTime(); }

std::vector<EffectInstanceState> VisualEffectSystem::GetInstanceStates() const {
    const InstanceStore& instances = parts_->simulation.Instances();
    std::vector<EffectInstanceState> states;
    states.reserve(static_cast<std::size_t>(instances.Count()));
    for (int id = 0; id < instances.IdEnd(); ++id)
        if (instances.IsLive(id)) states.push_back(StateOf(GetInstance(instances, id)));
    return states;
}

void VisualEffectSystem::Clear() {
    parts_->simulation.Clear();
    parts_->drawing.ResetCounters();
    parts_->definitions->Clear();
}

void VisualEffectSystem::Release() {
    Clear();
    parts_->drawing.Release();
}

}   // namespace sparkrig
