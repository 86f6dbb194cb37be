// One live instance of a sub-effect.
#pragma once
#include "effects/effect_definition.h"

namespace sparkrig {

struct VisualEffectObject {
    double time = 0;   // its own clock, seconds
    D3DXVECTOR3 base_position;
    D3DXVECTOR3 local_offset;
    D3DXVECTOR3 position;   // in the world
    D3DXVECTOR3 scale;
    D3DXQUATERNION base_orientation;
    D3DXQUATERNION rotation;
    std::uint32_t colour = 0xFF000000;   // packed ARGB; its alpha scales the alpha
    float alpha = 1;
    float count_value = 0;
    float random[4] = {};
    std::int32_t trace_key = -1;   // the trail block that it feeds, or -1
    SubEffectKind kind = SubEffectKind::Particle;
    SubEffect* sub_effect = nullptr;   // borrowed from the definitions

    // What the sub-effect makes of the count value; see Bind.
    float life = 0;           // seconds from birth, 0 for ever
    double birth_delay = 0;   // seconds

    /// Lets the instance play `sub`.
    void Bind(SubEffect& sub);
    /// Seconds since birth; negative before.
    double Age() const { return time - birth_delay; }
    bool IsDead() const { return life != 0 && life + birth_delay < time; }
};

}   // namespace sparkrig
