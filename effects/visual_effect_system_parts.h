// What VisualEffectSystem is made of; for itself, tests and benchmarks.
#pragma once
#include <memory>

#include "effects/effect_drawing.h"
#include "effects/effect_simulation.h"

namespace sparkrig {

struct VisualEffectSystemParts {
    explicit VisualEffectSystemParts(const ErrorClass& reporter) : simulation(reporter) {}

    std::unique_ptr<EffectDefinitions> definitions = std::make_unique<EffectDefinitions>();
    EffectSimulation simulation;
    EffectDrawing drawing;
};

}   // namespace sparkrig
