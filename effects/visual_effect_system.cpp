#include "effects/visual_effect_system.h"

#include <algorithm>
#include <cstring>
#include <set>

#include "effects/effects_file.h"
#include "effects/motion.h"
#include "effects/visual_effect_system_parts.h"
#include "gfx/gfx.h"
#include "gfx/textures/texture_catalogue.h"

namespace sparkrig {
namespace {

VisualEffect& FindEffect(const ErrorClass& reporter, const EffectDefinitions& definitions, const char* name) {
    VisualEffect* effect = definitions.effects.Find(name);
    if (!effect) reporter.Error("Effect '%s' not found", name);
    return *effect;
}

/// Each effect once: effects may emit each other in a ring.
void Preload(const ErrorClass& reporter, VisualEffectSystemParts& parts, const char* first) {
    KRN_Gfx& gfx = parts.drawing.Gfx();
    std::vector<const char*> names = {first};
    std::set<const VisualEffect*> visited;
    for (std::size_t next = 0; next < names.size(); ++next) {
        const char* name = names[next];
        if (String(name).StartsWith(kTracePrefix)) {
            const char* texture = name + std::strlen(kTracePrefix);
            if (*texture) gfx.Catalogue().GetTexture(texture);
            continue;
        }
        const VisualEffect& effect = FindEffect(reporter, *parts.definitions, name);
        if (!visited.insert(&effect).second) continue;
        for (int i = 0; i < effect.particles.GetCount(); ++i) LoadParticleTexture(gfx, *effect.particles.GetAt(i));
        ForEachSubEffect(effect, [&](const SubEffect& sub) {
            if (sub.emit.name.GetLength() > 0) names.push_back(sub.emit.name.c_str());
        });
    }
}

EffectInstanceState StateOf(int id, const VisualEffectObject& object) {
    const SubEffect& sub = *object.sub_effect;
    const double age = std::max(object.Age(), 0.0);
    EffectInstanceState state;
    state.id = id;
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

VisualEffectSystem::~VisualEffectSystem() = default;

void VisualEffectSystem::LoadEffects(const char* file, bool keep_instances) {
    if (!keep_instances) Clear();
    auto definitions = std::make_unique<EffectDefinitions>();
    LoadEffectsFile(file, *this, *definitions);
    const auto bindings = parts_->simulation.GetBindings();
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

void VisualEffectSystem::Update(float elapsed_seconds) { parts_->simulation.Update(elapsed_seconds); }

void VisualEffectSystem::Init(KRN_Gfx& gfx, int mode) {
    parts_->drawing.Init(gfx, mode);
    gfx.Catalogue().Load("cfg/texCatalogue.cfg", "", false);
}

void VisualEffectSystem::PreloadEffect(const char* name) { Preload(*this, *parts_, name); }

int VisualEffectSystem::Draw() {
    parts_->drawing.Draw(parts_->simulation);
    return DrawCallCount();
}

int VisualEffectSystem::DrawnParticleCount() const { return parts_->drawing.DrawnParticles(); }
int VisualEffectSystem::DrawCallCount() const { return parts_->drawing.DrawCalls(); }

void VisualEffectSystem::SetDetailLevel(int level) { parts_->simulation.SetDetailLevel(level); }
int VisualEffectSystem::DetailLevel() const { return parts_->simulation.DetailLevel(); }
int VisualEffectSystem::LiveInstanceCount() const { return parts_->simulation.Live().GetCount(); }
double VisualEffectSystem::SystemTime() const { return parts_->simulation.SystemTime(); }

std::vector<EffectInstanceState> VisualEffectSystem::GetInstanceStates() const {
    const auto& live = parts_->simulation.Live();
    std::vector<EffectInstanceState> states;
    states.reserve(static_cast<std::size_t>(live.GetCount()));
    for (int position = 0; position < live.GetCount(); ++position)
        states.push_back(StateOf(live.GetIdAt(position), *live.GetAt(position)));
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
