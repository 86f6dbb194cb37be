#include "effects/effect_definitions.h"

#include "base/numeric.h"
#include "base/report_listener.h"

namespace sparkrig {
namespace {

constexpr int kTraceCounters = 3;

class EmitResolver {
  public:
    EmitResolver(const ErrorClass& reporter, EffectDefinitions& definitions)
        : reporter_(reporter), definitions_(definitions) {}

    void Resolve(const VisualEffect& effect, EmitSettings& emit, int trace_id) {
        if (emit.name.GetLength() == 0) return;
        if (emit.name.StartsWith(kTracePrefix)) {
            emit.trace_number = ++counters_[PositiveMod(trace_id, kTraceCounters)];
            return;
        }
        emit.effect = definitions_.effects.Find(emit.name);
        if (emit.effect) return;
        SetSourceLine(emit.line);
        reporter_.Error("Emit effect '%s' of effect '%s' not found", emit.name.c_str(), effect.name.c_str());
    }

  private:
    const ErrorClass& reporter_;
    EffectDefinitions& definitions_;
    std::int32_t counters_[kTraceCounters] = {};
};

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

void ResolveEmitEffects(const ErrorClass& reporter, EffectDefinitions& definitions) {
    EmitResolver resolver(reporter, definitions);
    definitions.effects.ResetIteration();
    while (const VisualEffect* effect = definitions.effects.GetNext(nullptr))
        ForEachSubEffect(*effect, [&](SubEffect& sub) { resolver.Resolve(*effect, sub.emit, sub.trace.id); });
}

}   // namespace sparkrig
