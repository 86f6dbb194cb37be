// Definitions made in code, for tests of what happens after loading.
#pragma once
#include "effects/effect_definitions.h"

namespace sparkrig {

struct TestReporter : ErrorClass {
    TestReporter() { SetName("TestReporter"); }
};

inline VisualEffect& AddEffect(EffectDefinitions& definitions, const char* name) {
    VisualEffect& effect = *definitions.effects.Insert(name);
    effect.name = name;
    definitions.names.Add(effect.name);
    return effect;
}

template <class List>
auto& AddTo(VisualEffect& effect, List& list) {
    const int id = list.AddNew();
    auto& sub = *list.Get(id);
    sub.owner = &effect;
    sub.index = id;
    return sub;
}

inline ParticleEffect& AddParticle(VisualEffect& effect) { return AddTo(effect, effect.particles); }
inline MeshEffect& AddMesh(VisualEffect& effect) { return AddTo(effect, effect.meshes); }
inline SpecialEffect& AddSpecial(VisualEffect& effect) { return AddTo(effect, effect.specials); }

/// Moves with `velocity` units a second.
inline void MoveLinearly(SubEffect& sub, const D3DXVECTOR3& velocity) {
    VisualEffectMotion stage;
    stage.type = AnimationType::Linear;
    stage.concat = ConcatType::Add;
    stage.scale = velocity;
    sub.position_stages.Add(stage);
}

inline void EmitInto(SubEffect& sub, const VisualEffect& child, float per_time, bool random) {
    sub.emit.name = child.name;
    sub.emit.effect = &child;
    sub.emit.per_time = per_time;
    sub.emit.random = random;
}

}   // namespace sparkrig
