#include "app/automation.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <optional>

#include "app/check.h"
#include "app/contact_sheet.h"
#include "app/effect_choice.h"
#include "app/output_file.h"
#include "app/player.h"
#include "app/problem_printer.h"
#include "app/progress.h"
#include "app/recorder.h"
#include "app/registry_settings.h"

namespace sparkrig {

namespace {

constexpr int kPictureWidth = 1280, kPictureHeight = 720;

int FramesUntil(double seconds) { return std::max(1, static_cast<int>(std::lround(seconds / kAutomationStep))); }

int Capture(Player& player, const Options& options) {
    // The frames before count too: the overlay's rate and largest count speak of them.
    for (int frame = FramesUntil(options.at_seconds); frame > 1; --frame) {
        player.Advance();
        player.Pass();
    }
    player.Advance();
    player.Draw();
    return WritePng(options.output, player.TakePicture()) ? kDone : kCannot;
}

int CaptureSequence(Player& player, const Options& options) {
    if (!MakeOutputFolder(options.output)) return kCannot;
    Progress progress("Rendering frame", options.frames);
    PictureWriter writer;
    for (int frame = 0; frame < options.frames; ++frame) {
        char name[32];
        std::snprintf(name, sizeof(name), "/%06d.png", frame);
        progress.Next(name + 1);
        player.Advance();
        player.Draw();
        if (!writer.Write(options.output + name, player.TakePicture())) break;
        player.Present();
    }
    return writer.Finish() ? kDone : kCannot;
}

int Record(Player& player, const Options& options) {
    OutputFile file(options.output);
    for (int frame = 0; frame < options.frames; ++frame) {
        player.Advance();
        player.Pass();
        if (!RecordFrame(player.Effects(), frame, file)) break;
    }
    return file.Finish() ? kDone : kCannot;
}

int MakeSheet(Player& player, const Options& options) {
    if (player.EffectCount() > kMostSheetEffects) {
        std::fprintf(stderr, "sparkrig: a contact sheet of %i effects is too large; %i fit\n", player.EffectCount(),
                     kMostSheetEffects);
        return kCannot;
    }
    return WritePng(options.output, MakeContactSheet(player)) ? kDone : kCannot;
}

int Play(Player& player, const Options& options) {
    player.Load();
    player.Loop().show_overlay = options.overlay && options.mode != RunMode::Sheet;
    if (!options.backdrop) player.Loop().show_backdrop = false;
    if (options.mode == RunMode::Sheet) return MakeSheet(player, options);
    const std::optional<int> effect = ChooseEffect(player.Effects(), options.effect);
    if (!effect) return kWrongUsage;
    player.StartEffect(*effect);
    switch (options.mode) {
        case RunMode::Capture: return Capture(player, options);
        case RunMode::Sequence: return CaptureSequence(player, options);
        default: return Record(player, options);
    }
}

/// The size of the pictures. False with a sentence on the error stream when it cannot be drawn.
bool ChooseSize(TesterState& state, const Options& options) {
    constexpr int kLargest = 8192;
    state.resolution_x = kPictureWidth;
    state.resolution_y = kPictureHeight;
    ReadWindowOptions(state, options.command_line);
    state.windowed = 1;
    if (options.mode == RunMode::Sheet) {
        state.resolution_x = kSheetFrameWidth;
        state.resolution_y = kSheetFrameHeight;
    }
    const auto possible = [](int size) { return size >= 1 && size <= kLargest; };
    if (possible(state.resolution_x) && possible(state.resolution_y)) return true;
    std::fprintf(stderr, "sparkrig: a picture of %i x %i cannot be drawn; both sizes lie in 1 to %i\n",
                 state.resolution_x, state.resolution_y, kLargest);
    return false;
}

std::string Describe(const ErrorRecord& error) {
    std::string text = std::string(error.class_name) + ": " + error.message;
    while (!text.empty() && text.back() == '\n') text.pop_back();
    return text;
}

/// A device in a window that nobody sees. False with a sentence on the error stream.
bool StartUnseen(Engine& engine, TesterState& state, const Options& options) try {
    HideFromDisplay();
    if (!MakeTesterWindow(state, WindowSize::Picture)) {
        std::fprintf(stderr, "sparkrig: OpenGL 4.5 is needed, and no surface for it can be made here\n");
        return false;
    }
    engine.Start(state, options.seed.value_or(kAutomationSeed));
    return true;
} catch (const ErrorRecord& error) {
    std::fprintf(stderr, "sparkrig: OpenGL 4.5 is needed, and the graphics did not start: %s\n",
                 Describe(error).c_str());
    return false;
}

/// Where the last error happened in a file, as PlaceText says it. Listens while it lives.
class LastErrorPlace {
  public:
    LastErrorPlace() { SetReportListener(Listen, this); }
    ~LastErrorPlace() { SetReportListener(nullptr, nullptr); }
    LastErrorPlace(const LastErrorPlace&) = delete;
    LastErrorPlace& operator=(const LastErrorPlace&) = delete;
    const std::string& Text() const { return text_; }

  private:
    static void Listen(const Report& report, void* context) {
        if (report.kind == ReportKind::Error)
            static_cast<LastErrorPlace*>(context)->text_ = PlaceText(report.file, report.place);
    }
    std::string text_;
};

int Perform(Engine& engine, TesterState& state, const Options& options) {
    ReadRegistrySettings(state, *engine.gfx, options.data.empty() ? BasePathUse::Enter : BasePathUse::Ignore);
    if (options.mode == RunMode::Check) return CheckEverything(engine, state) ? kDone : kFindings;
    Player player(engine, state, options);
    return Play(player, options);
}

int RunStarted(Engine& engine, TesterState& state, const Options& options) {
    const LastErrorPlace place;
    try {
        return Perform(engine, state, options);
    } catch (const ErrorRecord& error) {
        std::fprintf(stderr, "sparkrig: %s%s\n", place.Text().c_str(), Describe(error).c_str());
        return kFindings;
    }
}

}   // namespace

int RunAutomation(const Options& options) {
    TesterState& state = Tester();
    state.screen_effect_path = options.screen_effect;
    state.mesh_effect_path = options.mesh_effect;
    if (!ChooseSize(state, options)) return kWrongUsage;
    Engine engine;
    const int end = StartUnseen(engine, state, options) ? RunStarted(engine, state, options) : kCannot;
    engine.ShutDown();
    return end;
}

}   // namespace sparkrig
