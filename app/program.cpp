#include "app/program.h"

#include <cstdio>
#include <cstdlib>

#include "app/automation.h"
#include "app/effect_choice.h"
#include "app/frame_drawing.h"
#include "app/frame_loop.h"
#include "app/program_folder.h"
#include "app/registry_settings.h"
#include "app/tester_commands.h"

namespace sparkrig {

namespace {

constexpr int kNormalEnd = 1, kErrorEnd = 0;

/// Opens the journal; false with a sentence on the error stream.
bool OpenJournal(const std::string& file, std::optional<Journal>& journal) {
    if (file.empty() || journal.emplace(file).IsOpen()) return true;
    std::fprintf(stderr, "sparkrig: %s cannot be written\n", file.c_str());
    return false;
}

int PlayInWindow(Engine& engine, TesterState& state, const Options& options, Journal* journal) {
    engine.Start(state, options.seed);
    ReadRegistrySettings(state, *engine.gfx, options.data.empty() ? BasePathUse::Enter : BasePathUse::Ignore);
    LoopState loop;
    BeginPlaying(engine, state, loop);
    loop.show_overlay = options.overlay;
    if (!options.backdrop) loop.show_backdrop = false;
    const std::optional<int> effect = ChooseEffect(engine.effects, options.effect);
    if (!effect) return kWrongUsage;
    state.current_effect = *effect;
    if (!options.effect.empty()) StartCurrentEffect(engine.effects, state, {0, 0, 0});
    state.engine = &engine;
    RunFrameLoop(engine, state, loop, options.repeat, journal);
    return kNormalEnd;
}

int ShowError(Engine& engine, TesterState& state, const ErrorRecord& error) {
    const std::string text = std::string(error.class_name) + ": " + error.message;
    state.engine = nullptr;
    engine.ShutDown();
    ShowCursor(true);
    RedrawWindow(state.window);
    MessageBoxA(state.window, text.c_str(), "KRN Error (DirectX8)");
    return kErrorEnd;
}

int RunTester(const Options& options) {
    if (!CanMakeWindows() || (!HasDisplay() && !std::getenv("SDL_VIDEODRIVER"))) {
        std::fprintf(stderr, "sparkrig: there is no display for the window; --help shows what works without one.\n");
        return kCannot;
    }
    std::optional<Journal> journal;
    if (!OpenJournal(options.journal, journal)) return kCannot;
    TesterState& state = Tester();
    state.screen_effect_path = options.screen_effect;
    state.mesh_effect_path = options.mesh_effect;
    const bool size_given = ReadWindowOptions(state, options.command_line);
    const bool sized = state.windowed && size_given;
    if (!MakeTesterWindow(state, sized ? WindowSize::Whole : WindowSize::ChosenBySystem)) return kErrorEnd;
    Engine engine;
    try {
        const int end = PlayInWindow(engine, state, options, journal ? &*journal : nullptr);
        state.engine = nullptr;
        engine.ShutDown();
        return end;
    } catch (const ErrorRecord& error) {
        return ShowError(engine, state, error);
    }
}

void MakeAbsolute(std::string& name) {
    if (!name.empty()) name = AbsolutePath(name);
}

}   // namespace

int RunProgram(const std::vector<std::string>& words) {
    ParsedCommandLine parsed = ParseCommandLine(words);
    if (parsed.exit_code) {
        std::fputs(parsed.text.c_str(), *parsed.exit_code == 0 ? stdout : stderr);
        return *parsed.exit_code;
    }
    Options& options = parsed.options;
    MakeAbsolute(options.output);
    MakeAbsolute(options.journal);
    if (!EnterProgramFolder(options.data)) {
        std::fprintf(stderr, "sparkrig: --data %s is no folder\n", options.data.c_str());
        return kWrongUsage;
    }
    return options.mode == RunMode::Interactive ? RunTester(options) : RunAutomation(options);
}

}   // namespace sparkrig
