// An effects file: checked, loaded, its effects started and simulated for ten seconds, loaded again under running
// instances.
#include "effects/effects_file.h"
#include "base/random.h"
#include "effects/effect_simulation.h"
#include "effects/special_effect_renderer.h"
#include "effects/trace_ribbon.h"
#include "fuzz/target.h"

namespace sparkrig {
namespace {

constexpr int kEffects = 6;   // of those in the file
constexpr int kSteps = 40;
constexpr float kStepSeconds = 0.25f;
constexpr EffectLimits kLimits = {.live_instances = 600, .starts = 600, .nesting = 8};

struct FuzzReporter : ErrorClass {};

/// Reports and throws nothing, whatever is wrong.
void Check(const char* file) {
    EffectDefinitions definitions;
    CheckEffectsFile(file, FuzzReporter(), definitions);
}

/// What drawing would write: the points of specials, the ribbons of trails.
void Shape(EffectSimulation& simulation) {
    static RandomTable table = [] {
        RandomTable drawn;
        drawn.Draw();
        return drawn;
    }();
    KRN_PointVertex points[kSpecialPoints];
    const InstanceStore& instances = simulation.Instances();
    for (int id = 0; id < instances.IdEnd(); ++id) {
        if (!instances.IsLive(id)) continue;
        const VisualEffectObject object = GetInstance(instances, id);
        if (object.kind == SubEffectKind::Special) WriteShape(ShapeOf(object, object.Age()), table, points);
    }
    static std::vector<KRN_LVertex> vertices(kTraceVertices);
    simulation.Traces().ForEach([](TraceEffectData& trail) {
        ShortenToFit(trail);
        if (RibbonTriangles(trail) > 0) WriteRibbon(trail, vertices.data());
    });
}

void Play(const char* file) {
    FuzzReporter reporter;
    EffectDefinitions definitions;
    LoadEffectsFile(file, reporter, definitions);
    EffectSimulation simulation(reporter);
    simulation.SetLimits(kLimits);
    for (int i = 0; i < definitions.names.GetCount() && i < kEffects; ++i)
        simulation.StartEffect(*definitions.effects.Find(*definitions.names.GetAt(i)), {1, 2, 3});
    for (int step = 0; step < kSteps; ++step) simulation.Update(kStepSeconds);
    Shape(simulation);
    const auto bindings = simulation.Unbind();
    EffectDefinitions again;
    LoadEffectsFile(file, reporter, again);
    simulation.Rebind(bindings, again);
    simulation.Update(kStepSeconds);
    const InstanceStore& instances = simulation.Instances();
    for (int id = 0; id < instances.IdEnd(); ++id)
        if (instances.IsLive(id)) (void)GetInstance(instances, id);
}

}   // namespace

void Try(Input input) {
    SeedRandom(7);
    const std::string file = Put(input);
    Check(file.c_str());
    Play(file.c_str());
}

}   // namespace sparkrig
