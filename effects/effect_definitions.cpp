#include "effects/effect_definitions.h"

#include "base/numeric.h"
#include "effects/trace_effect_set.h"

namespace sparkrig {
namespace {

constexpr int kTraceCounters = 3;

}   // namespace

void EffectDefinitions::Clear() {
    effects.Clear();
    names.Clear();
}

SubEffect* FindSubEffect(const VisualEffect& effect, SubEffectKind kind, int index) {
    switch (kind) {
        case SubEffectKind::Mesh: return effect.meshes.GetAt(index);
        case SubEffectKind::Particle: return effect.particles.GetAt(index);
        case SubEffectKind::Special: return effect.specials.GetAt(index);
    }
    return nullptr;
}

std::vector<const SubEffect*> ResolveEmitEffects(EffectDefinitions& definitions) {
    std::vector<const SubEffect*> unresolved;
    std::int32_t counters[kTraceCounters] = {};
    const auto resolve = [&](SubEffect& sub) {
        EmitSettings& emit = sub.emit;
        if (emit.name.GetLength() == 0) return;
        if (emit.name.StartsWith(kTracePrefix)) {
            emit.trace_number = counters[PositiveMod(sub.trace.id, kTraceCounters)]++ % kTraceChannels + 1;
            return;
        }
        emit.effect = definitions.effects.Find(emit.name);
        if (!emit.effect) unresolved.push_back(&sub);
    };
    definitions.effects.ResetIteration();
    while (const VisualEffect* effect = definitions.effects.GetNext(nullptr)) ForEachSubEffect(*effect, resolve);
    return unresolved;
}

}   // namespace sparkrig
