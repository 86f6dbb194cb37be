// Frames in which nothing new is shown: nothing is made, nothing is sent that the device holds, and no memory is taken
// from the operator that everything of ours allocates with.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <new>

#include "app/effect_choice.h"
#include "base/random.h"
#include "platform/d3d9_gl/device_hooks.h"
#include "tests/device/whole_program.h"
#include "tests/support/test.h"

#ifndef __SANITIZE_ADDRESS__   // which has operators of its own

namespace {
long allocations = 0;
}

[[gnu::noinline]] void* operator new(std::size_t bytes) {
    ++allocations;
    if (void* memory = std::malloc(bytes)) return memory;
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
#endif

namespace sparkrig {
namespace {

constexpr int kFrames = 120, kFewFrames = 40;   // of 1/60 s

std::string Describe(const RecordedCall& call) {
    std::string text = call.method;
    for (const DWORD argument : call.arguments) text += " " + std::to_string(argument);
    return text;
}

long CountStarting(const Recording& recording, const char* beginning) {
    return std::ranges::count_if(recording.Calls(),
                                 [&](const RecordedCall& call) { return call.method.starts_with(beginning); });
}

TEST(SteadyFrames, SendNothingThatTheDeviceHolds) {
    WholeProgram program(BackEnd::Recording);
    // The defaults of creation, and of the first points and meshes, are sent to a new device that holds them.
    for (const char* first : {"torch flame", "stone burst"}) {
        const int effect = ChooseEffect(program.engine.effects, first).value();
        program.player->StartEffect(effect);
        program.Play(effect, kFewFrames);
    }
    long sent = 0, draws = 0;
    for (int effect = 0; effect < program.player->EffectCount(); ++effect) {
        program.player->StartEffect(effect);
        program.recording.ForgetCalls();
        program.Play(effect, kFrames);
        std::vector<std::string> redundant;
        for (const RecordedCall& call : program.recording.Redundant()) redundant.push_back(Describe(call));
        EXPECT_THAT(redundant, IsEmpty()) << program.engine.effects.GetEffectName(effect).c_str();
        sent += CountStarting(program.recording, "Set");
        draws += CountStarting(program.recording, "Draw");
    }
    std::printf("%i effects, %i frames each: %li draws, %li states and bindings sent\n", program.player->EffectCount(),
                kFrames, draws, sent);
}

TEST(SteadyFrames, MakeNothing) {
    WholeProgram program(BackEnd::OpenGl);
    for (int effect = 0; effect < program.player->EffectCount(); ++effect) {
        program.player->StartEffect(effect);
        program.engine.effects.PreloadEffect(program.engine.effects.GetEffectName(effect).c_str());
        program.Play(effect, kFewFrames);   // shows every combination of states
        const std::size_t programs = ProgramCount(Behind(*program.Gfx().Device()));
        const int objects = program.recording.LiveObjects();
        program.recording.ForgetCalls();
        program.Play(effect, kFewFrames);
        EXPECT_EQ(ProgramCount(Behind(*program.Gfx().Device())), programs);
        EXPECT_EQ(program.recording.LiveObjects(), objects);
        EXPECT_EQ(CountStarting(program.recording, "Create"), 0);
    }
}

#ifndef __SANITIZE_ADDRESS__
TEST(SteadyFrames, TakeNoMemory) {
    constexpr int kWarmUp = 90, kCounted = 30;
    constexpr int kFramesThatGrow = 6;   // more instances than ever need a longer table now and then
    WholeProgram program(BackEnd::OpenGlAlone);
    for (const char* name : {"campfire", "snow", "fireworks", "signal smoke", "scrying mirror"}) {
        const int effect = ChooseEffect(program.engine.effects, name).value();
        program.player->StartEffect(effect);
        program.Play(effect, kWarmUp);
        int growing = 0;
        for (int frame = 0; frame < kCounted; ++frame) {
            const long before = allocations;
            program.player->Advance();
            program.Frame();
            growing += allocations != before;
        }
        EXPECT_LE(growing, kFramesThatGrow) << name;
    }
}

/// From the same numbers: the same instances at the same time, so that a second run needs nothing more.
TEST(SteadyFrames, OfAnEffectThatHasRunTakeNoMemory) {
    WholeProgram program(BackEnd::OpenGlAlone);
    VisualEffectSystem& system = program.engine.effects;
    program.Gfx().BeginScene();
    SetBlind(*program.Gfx().Device(), true);   // what the driver takes is its own
    const auto play = [&](const char* name) {
        SeedRandom(7);
        system.StartEffect(name, {});
        long taken = 0;
        for (int frame = 0; frame < 300; ++frame) {
            const long before = allocations;
            system.Update(1 / 60.0f);
            system.Draw();
            taken += allocations - before;
        }
        return taken;
    };
    for (int i = 0; i < system.GetEffectCount(); ++i) {
        const String name = system.GetEffectName(i);
        system.LoadEffects("cfg/effects.cfg", false);
        play(name.c_str());
        while (system.LiveInstanceCount() > 0 && system.SystemTime() < 120) system.Update(0.1f);
        for (int rest = 0; rest < 50; ++rest) system.Update(0.1f);   // what trails are left end
        EXPECT_EQ(play(name.c_str()), 0) << name.c_str();
    }
}
#endif

}   // namespace
}   // namespace sparkrig
