// All effects of the effects file, by name and in its order.
#pragma once
#include <cstdint>
#include <vector>

#include "base/search_tree.h"
#include "effects/effect_definition.h"

namespace sparkrig {

struct EffectDefinitions {
    SearchTree<VisualEffect> effects;   // names ignore letter case
    DynaMem<String, 4096, 1> names;     // in the order of the file

    void Clear();
};

/// Calls visit(sub) for the particle, special and mesh sub-effects, in this order.
template <class Visit>
void ForEachSubEffect(const VisualEffect& effect, Visit visit) {
    for (int i = 0; i < effect.particles.GetCount(); ++i) visit(*effect.particles.GetAt(i));
    for (int i = 0; i < effect.specials.GetCount(); ++i) visit(*effect.specials.GetAt(i));
    for (int i = 0; i < effect.meshes.GetCount(); ++i) visit(*effect.meshes.GetAt(i));
}

/// The sub-effect at a position of the list of its kind, or null.
SubEffect* FindSubEffect(const VisualEffect& effect, SubEffectKind kind, int index);

/// Binds the emit names to the effects, and numbers the traces: three counters, chosen by the trace's id, count up
/// through all effects in name order, from 1 to 4 and again. Returns those whose effect there is none of.
std::vector<const SubEffect*> ResolveEmitEffects(EffectDefinitions& definitions);

}   // namespace sparkrig
