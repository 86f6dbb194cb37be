#include "app/options.h"

#include <algorithm>
#include <limits>

#include "app/resources.h"
#include "base/usage.h"

namespace sparkrig {

namespace {

constexpr int kMostFrames = 1'000'000;
constexpr double kLongestPlay = 3600;   // seconds

constexpr char kAbout[] =
    "Sparkrig plays the effects of cfg/effects.cfg in a window, or draws them without one.\n"
    "Without options: the first effect, once Return is pressed; Space lists them all.";
constexpr char kFooter[] =
    "  /full                       full screen\n"
    "  /resx:N /resy:N             size of the window, or of a picture\n"
    "\n"
    "Keys: Space list of effects, Tab next effect, Return or a click start, R and F5 reload, D detail level, Pause,\n"
    "L preload, B backdrop, F8 overlay, keypad * and / speed, arrows and Page Up/Down camera (also with Shift or "
    "Ctrl),\n"
    "C camera home, Alt or F10 menu, Escape end.\n"
    "Automation ends with 0 done, 1 findings, 2 wrong usage, 3 when the environment cannot do it.";

struct ModeRow {
    RunMode mode;
    const char* option;
    const char* value;   // null: none
    const char* help;
};

constexpr ModeRow kModes[] = {
    {RunMode::Capture, "--capture", "FILE.png", "play the effect without a window and save one frame"},
    {RunMode::Sequence, "--sequence", "DIR", "the same, every frame as a numbered PNG"},
    {RunMode::Sheet, "--sheet", "FILE.png", "every effect at its liveliest moment on one contact sheet"},
    {RunMode::Record, "--record", "FILE.jsonl", "play without a window and write one JSON object per frame"},
    {RunMode::Check, "--check", nullptr, "load every configuration file and all that it names, print each problem"},
};

constexpr char kUnseen[] = "Without a window";

void AddModes(CLI::App& app, Options& options) {
    for (const ModeRow& row : kModes) {
        const auto choose = [&options, &row](const std::string& value) {
            options.mode = row.mode;
            options.output = value;
        };
        if (row.value) {
            app.add_option_function<std::string>(row.option, choose, row.help)->type_name(row.value)->group(kUnseen);
        } else {
            app.add_flag_callback(
                   row.option, [choose] { choose({}); }, row.help)
                ->group(kUnseen);
        }
    }
}

void AddOptions(CLI::App& app, Options& options) {
    app.add_option("--effect", options.effect, "the current effect, started at once (default: the first)")
        ->type_name("NAME");
    app.add_flag("--repeat", options.repeat, "start it again whenever the last of its instances has ended");
    app.add_option_function<std::uint32_t>(
           "--seed", [&options](const std::uint32_t& seed) { options.seed = seed; },
           "the random generator starts from N instead of the counter (automation: instead of 1)")
        ->type_name("N")
        ->check(WholeNumberBetween(0, std::numeric_limits<std::uint32_t>::max()));
    app.add_option("--data", options.data, "work in DIR instead of the current directory")->type_name("DIR");
    app.add_option("--at", options.at_seconds, "seconds to play before --capture saves its frame (default: 1)")
        ->type_name("SECONDS")
        ->check(NumberBetween(0, kLongestPlay))
        ->group(kUnseen);
    app.add_option("--frames", options.frames, "frames of --sequence or --record (default: 60)")
        ->type_name("N")
        ->check(WholeNumberBetween(1, kMostFrames))
        ->group(kUnseen);
    app.add_option("--screen-effect", options.screen_effect,
                   "take the picture through a shader effect, as shader/Glow.fx; R and F5 read it again")
        ->type_name("FILE.fx");
    app.add_option("--mesh-effect", options.mesh_effect, "draw the meshes of effects through one, as shader/Toon.fx")
        ->type_name("FILE.fx");
    app.add_flag_callback(
        "--no-overlay", [&options] { options.overlay = false; }, "leave the text out");
    app.add_flag_callback(
        "--no-backdrop", [&options] { options.backdrop = false; }, "leave the floor and the wall out");
    app.add_option("--journal", options.journal,
                   "an aid for scripts: write a JSON object whenever what the window shows changes")
        ->type_name("FILE.jsonl");
}

std::string Conflict(const CLI::App& app, const Options& options) {
    std::string first;
    for (const ModeRow& row : kModes) {
        if (app.count(row.option) == 0) continue;
        if (!first.empty()) return first + " and " + row.option + " cannot be given together";
        first = row.option;
    }
    if (options.mode == RunMode::Sheet || options.mode == RunMode::Check)
        for (const char* option : {"--effect", "--repeat"})
            if (app.count(option) != 0) return first + " and " + option + " cannot be given together";
    const bool plays_frames = options.mode == RunMode::Sequence || options.mode == RunMode::Record;
    if (app.count("--at") != 0 && options.mode != RunMode::Capture) return "--at needs --capture";
    if (app.count("--frames") != 0 && !plays_frames) return "--frames needs --sequence or --record";
    if (!options.journal.empty() && options.mode != RunMode::Interactive) return "--journal needs a window";
    return {};
}

std::string Join(const std::vector<std::string>& words) {
    std::string line;
    for (const std::string& word : words) line += (line.empty() ? "" : " ") + word;
    return line;
}

}   // namespace

ParsedCommandLine ParseCommandLine(const std::vector<std::string>& words) {
    ParsedCommandLine parsed;
    CLI::App app(kAbout, "sparkrig");
    BeginUsage(app);
    app.footer(kFooter);
    app.set_version_flag("--version", std::string(kProgramName) + " " + kProgramVersion, "show name and version");
    AddModes(app, parsed.options);
    AddOptions(app, parsed.options);
    std::optional<EarlyEnd> end = ParseWords(app, words, OtherWords::Ignored);
    if (!end)
        if (const std::string conflict = Conflict(app, parsed.options); !conflict.empty())
            end = WrongUsage(app, conflict);
    if (end) return {{}, end->code, end->text};
    parsed.options.command_line = Join(words);
    return parsed;
}

}   // namespace sparkrig
