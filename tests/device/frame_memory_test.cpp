// Frames take no memory: counted at the operator that everything of ours allocates with.
#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#include "app/effect_choice.h"
#include "tests/device/whole_program.h"

#ifndef __SANITIZE_ADDRESS__   // which has an operator of its own

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

namespace sparkrig {
namespace {

TEST(SteadyFrames, TakeNoMemory) {
    constexpr int kWarmUp = 90, kFrames = 30;
    constexpr int kFramesThatGrow = 6;   // more instances than ever need a longer table now and then
    WholeProgram program(BackEnd::OpenGlAlone);
    for (const char* name : {"campfire", "snow", "fireworks", "signal smoke", "scrying mirror"}) {
        const int effect = ChooseEffect(program.engine.effects, name).value();
        program.player->StartEffect(effect);
        program.Play(effect, kWarmUp);
        int growing = 0;
        for (int frame = 0; frame < kFrames; ++frame) {
            const long before = allocations;
            program.player->Advance();
            program.Frame();
            growing += allocations != before;
        }
        EXPECT_LE(growing, kFramesThatGrow) << name;
    }
}

}   // namespace
}   // namespace sparkrig

#endif
