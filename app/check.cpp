#include "app/check.h"

#include <algorithm>
#include <cstdio>

#include "app/name_lines.h"
#include "app/progress.h"
#include "app/tester_commands.h"

namespace sparkrig {

namespace {

constexpr char kCatalogueFile[] = "cfg/texCatalogue.cfg";

std::string WithSlashes(std::string path) {
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

/// What was reported already has been printed; the check goes on with the next thing.
template <class Work>
bool Succeeds(const Work& work) try {
    work();
    return true;
} catch (const ErrorRecord&) {
    return false;
}

void CheckEffects(VisualEffectSystem& effects, ProblemPrinter& problems) {
    const std::string file = WithSlashes(kEffectsFile);
    problems.SetPlace(file, 0);
    LoopState loop;
    if (!Succeeds([&] { ReloadEffects(effects, Tester(), loop, false); })) return;
    const NameLines lines(kEffectsFile);
    Progress progress("Checking", loop.effect_count);
    for (int i = 0; i < loop.effect_count; ++i) {
        const String name = effects.GetEffectName(i);
        progress.Next(name.c_str());
        problems.SetPlace(file, lines.Find(name.c_str()));
        Succeeds([&] { effects.PreloadEffect(name.c_str()); });
    }
}

}   // namespace

ProblemPrinter::ProblemPrinter() { SetReportListener(Listen, this); }

ProblemPrinter::~ProblemPrinter() { SetReportListener(nullptr, nullptr); }

void ProblemPrinter::Listen(const Report& report, void* printer) {
    static_cast<ProblemPrinter*>(printer)->Print(report);
}

void ProblemPrinter::Print(const Report& report) {
    const bool has_file = report.file[0] != 0;
    std::string place = has_file ? WithSlashes(report.file) : file_;
    const int line = has_file ? report.line : line_;
    if (line > 0) place += ":" + std::to_string(line);
    std::string text = report.message;
    while (!text.empty() && text.back() == '\n') text.pop_back();
    std::replace(text.begin(), text.end(), '\n', ' ');
    const char* kind = report.kind == ReportKind::Error ? "error" : "warning";
    const std::string problem = place + ": " + kind + ": " + text;
    if (!printed_.insert(problem).second) return;
    std::printf("%s\n", problem.c_str());
    std::fflush(stdout);
}

bool CheckEverything(Engine& engine) {
    ProblemPrinter problems;
    problems.SetPlace(kCatalogueFile, 0);
    if (Succeeds([&] { engine.effects.Init(*engine.gfx, 0); })) CheckEffects(engine.effects, problems);
    if (problems.Count() == 0) {
        std::fputs("No problems found.\n", stderr);
    } else {
        std::fprintf(stderr, "%i problems found.\n", problems.Count());
    }
    return problems.Count() == 0;
}

}   // namespace sparkrig
