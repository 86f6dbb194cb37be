#include "app/check.h"

#include <cstdio>
#include <map>
#include <utility>

#include "app/problem_printer.h"
#include "app/progress.h"
#include "app/shader_files.h"
#include "app/tester_commands.h"
#include "effects/effects_file.h"
#include "gfx/textures/catalogue_file.h"
#include "gfx/textures/texture_catalogue.h"
#include "scene/scene.h"

namespace sparkrig {

namespace {

constexpr char kCatalogueFile[] = "cfg/texCatalogue.cfg";
constexpr char kShaderFolder[] = "shader";

/// What was reported already has been printed; the check goes on with the next thing.
template <class Work>
bool Succeeds(const Work& work) try {
    work();
    return true;
} catch (const ErrorRecord&) {
    return false;
}

/// Shader and catalogue; the one is no reason not to read the other.
void CheckStart(Engine& engine, ProblemPrinter& problems) {
    problems.SetPlace(kShaderFolder, {});
    if (Succeeds([&] { engine.effects.Init(*engine.gfx, 0); })) return;
    KRN_TextureCatalogue& catalogue = engine.gfx->Catalogue();
    problems.SetPlace(kCatalogueFile, {});
    catalogue.Clear();
    Succeeds([&] { catalogue.Load(kCatalogueFile, "", false); });
}

/// Each texture of the catalogue; the catalogue itself has reported the missing ones.
void CheckCatalogue(KRN_Gfx& gfx, ProblemPrinter& problems) {
    problems.SetPlace(kCatalogueFile, {});
    Succeeds([&] {
        CatalogueFile file(kCatalogueFile);
        for (String name, texture; file.Next(name, texture);)
            Succeeds([&] { gfx.Catalogue().GetTexture(name.c_str()); });
    });
}

/// Whether what the effects file names is there and can be loaded: each thing once, its problems at every place that
/// names it.
class NamedThingsCheck {
  public:
    NamedThingsCheck(Engine& engine, ProblemPrinter& problems)
        : gfx_(*engine.gfx), reporter_(engine.effects), problems_(problems) {}

    void Check(const NamedThing& thing) {
        problems_.SetPlace(kEffectsFile, thing.place);
        const auto [known, is_new] = known_.try_emplace({thing.kind, thing.name});
        if (is_new)
            known->second = problems_.PrintAndKeep([&] { Succeeds([&] { Load(thing.kind, thing.name.c_str()); }); });
        else
            for (const ProblemPrinter::Problem& problem : known->second) problems_.Print(problem);
    }

  private:
    void Load(NamedThing::Kind kind, const char* name) {
        KRN_Texture texture;
        switch (kind) {
            case NamedThing::Kind::Texture:
                if (!gfx_.Catalogue().GetTexture(name)) gfx_.LoadTexture(&texture, name, 0, 0);
                return;
            case NamedThing::Kind::TraceTexture:
                if (!gfx_.Catalogue().GetTexture(name)) reporter_.Warning("No texture '%s' in the catalogue", name);
                return;
            case NamedThing::Kind::Scene: {
                KRN_3dScene scene;
                gfx_.LoadScene(scene, name);
            }
        }
    }

    KRN_Gfx& gfx_;
    const ErrorClass& reporter_;
    ProblemPrinter& problems_;
    std::map<std::pair<NamedThing::Kind, std::string>, std::vector<ProblemPrinter::Problem>> known_;
};

void CheckEffects(Engine& engine, ProblemPrinter& problems) {
    problems.SetPlace(kEffectsFile, {});
    const int before = problems.Count();
    EffectDefinitions definitions;
    const std::vector<NamedThing> named = CheckEffectsFile(kEffectsFile, engine.effects, definitions);
    if (definitions.names.GetCount() == 0 && problems.Count() == before)
        Succeeds([&] { engine.effects.Error("No effects in effect file"); });
    NamedThingsCheck things(engine, problems);
    Progress progress("Checking", static_cast<int>(named.size()));
    for (const NamedThing& thing : named) {
        progress.Next(thing.name.c_str());
        things.Check(thing);
    }
}

}   // namespace

bool CheckEverything(Engine& engine, const TesterState& state) {
    ProblemPrinter problems;
    CheckStart(engine, problems);
    problems.SetPlace(kShaderFolder, {});
    Succeeds([&] { LoadShaderFiles(engine, state); });
    CheckCatalogue(*engine.gfx, problems);
    CheckEffects(engine, problems);
    if (problems.Count() == 0) {
        std::fputs("No problems found.\n", stderr);
    } else {
        std::fprintf(stderr, "%i problems found.\n", problems.Count());
    }
    return problems.Count() == 0;
}

}   // namespace sparkrig
