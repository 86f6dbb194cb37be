// What a frame needs of a live instance, side by side for all of them: drawing never touches the instances.
#pragma once
#include "effects/effect_definition.h"
#include "effects/particle_vertices.h"

namespace sparkrig {

struct DrawRecord {
    Particle particle;   // of a particle sub-effect; the position is that of every kind
    float radius = 0;    // of the sphere that is tested against the view
    float age = 0;       // seconds
    bool born = false;
    bool opaque = false;        // the alpha byte is not 0
    SubEffect* sub = nullptr;   // borrowed from the definitions
};

}   // namespace sparkrig
