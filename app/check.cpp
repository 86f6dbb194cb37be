#include "app/check.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "app/name_lines.h"
#include "app/problem_printer.h"
#include "app/progress.h"
#include "app/tester_commands.h"
#include "effects/effect_drawing.h"
#include "effects/visual_effect_system_parts.h"
#include "gfx/textures/texture_catalogue.h"

namespace sparkrig {

namespace {

constexpr char kCatalogueFile[] = "cfg/texCatalogue.cfg";

/// What was reported already has been printed; the check goes on with the next thing.
template <class Work>
bool Succeeds(const Work& work) try {
    work();
    return true;
} catch (const ErrorRecord&) {
    return false;
}

/// Each texture of the catalogue; the catalogue itself has reported the missing ones.
void CheckCatalogue(KRN_Gfx& gfx, ProblemPrinter& problems) {
    const NameLines lines(kCatalogueFile);
    for (int line = 1; line <= lines.LineCount(); ++line) {
        const std::string name = lines.FirstQuoted(line);
        problems.SetPlace(kCatalogueFile, line);
        if (!name.empty()) Succeeds([&] { gfx.Catalogue().GetTexture(name.c_str()); });
    }
}

/// The textures of one effect, each on its own: loading the effect would end at the first that is missing.
class EffectTextures {
  public:
    EffectTextures(Engine& engine, ProblemPrinter& problems)
        : gfx_(*engine.gfx), effects_(engine.effects), problems_(problems), lines_(kEffectsFile) {}

    void Check(const char* name) {
        const VisualEffect* effect = effects_.Parts().definitions->effects.Find(name);
        if (!effect) return;
        effect_line_ = std::max(lines_.Find(name), 1);
        for (int i = 0; i < effect->particles.GetCount(); ++i) {
            ParticleEffect& particle = *effect->particles.GetAt(i);
            PlaceAt(particle.texture_name.c_str());
            Succeeds([&] { LoadParticleTexture(gfx_, particle); });
        }
        for (int i = 0; i < effect->specials.GetCount(); ++i)
            CheckNamed(effect->specials.GetAt(i)->texture_name.c_str());
        ForEachSubEffect(*effect, [&](const SubEffect& sub) { CheckTrace(sub.emit.name); });
    }

  private:
    void PlaceAt(const char* text) {
        const int line = *text ? lines_.Find(text, effect_line_) : effect_line_;
        problems_.SetPlace(WithSlashes(kEffectsFile), line > 0 ? line : effect_line_);
    }
    void CheckNamed(const char* texture) {
        if (!*texture) return;
        PlaceAt(texture);
        KRN_Texture loaded;
        Succeeds([&] {
            if (!gfx_.Catalogue().GetTexture(texture)) gfx_.LoadTexture(&loaded, texture, 0, 0);
        });
    }
    void CheckTrace(const String& emitted) {
        if (!emitted.StartsWith(kTracePrefix)) return;
        const char* texture = emitted.c_str() + std::strlen(kTracePrefix);
        PlaceAt(emitted.c_str());
        Succeeds([&] {
            if (!gfx_.Catalogue().GetTexture(texture)) effects_.Warning("No texture '%s' in the catalogue", texture);
        });
    }

    KRN_Gfx& gfx_;
    VisualEffectSystem& effects_;
    ProblemPrinter& problems_;
    const NameLines lines_;
    int effect_line_ = 1;
};

void CheckEffects(Engine& engine, ProblemPrinter& problems) {
    problems.SetPlace(WithSlashes(kEffectsFile), 0);
    LoopState loop;
    if (!Succeeds([&] { ReloadEffects(engine.effects, Tester(), loop, false); })) return;
    EffectTextures textures(engine, problems);
    Progress progress("Checking", loop.effect_count);
    for (int i = 0; i < loop.effect_count; ++i) {
        const String name = engine.effects.GetEffectName(i);
        progress.Next(name.c_str());
        textures.Check(name.c_str());
    }
}

}   // namespace

bool CheckEverything(Engine& engine) {
    ProblemPrinter problems;
    problems.SetPlace(kCatalogueFile, 0);
    if (Succeeds([&] { engine.effects.Init(*engine.gfx, 0); })) {
        CheckCatalogue(*engine.gfx, problems);
        CheckEffects(engine, problems);
    }
    if (problems.Count() == 0) {
        std::fputs("No problems found.\n", stderr);
    } else {
        std::fprintf(stderr, "%i problems found.\n", problems.Count());
    }
    return problems.Count() == 0;
}

}   // namespace sparkrig
