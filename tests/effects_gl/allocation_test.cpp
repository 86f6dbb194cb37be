// A running effect takes no memory: counted over the sample effects, as the tester plays them.

#include <cstdlib>
#include <new>

#include "base/random.h"
#include "effects/visual_effect_system.h"
#include "platform/d3d9_gl/device_hooks.h"
#include "scene/camera.h"
#include "tests/support/drawn_gfx.h"

#ifndef __SANITIZE_ADDRESS__   // which has an operator of its own

namespace {

thread_local int allocations = 0;

}   // namespace

[[gnu::noinline]] void* operator new(std::size_t bytes) {
    ++allocations;
    void* memory = std::malloc(bytes > 0 ? bytes : 1);
    if (!memory) throw std::bad_alloc();
    return memory;
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace sparkrig {
namespace {

TEST(SampleEffects, TakeNoMemoryOnceTheyHaveRun) {
    DrawnGfx gfx(64, 64);
    KRN_Camera camera;
    camera.SetEye(0, 200, 100, true);
    camera.SetViewDirection(0, -2, -1, true);
    gfx->SetView(camera);
    gfx->SetProjection(1, 2000, 0.7854f, -1);
    VisualEffectSystem system;
    system.Init(*gfx, 0);
    system.LoadEffects("cfg/effects.cfg", false);
    gfx->BeginScene();
    SetBlind(*gfx->Device(), true);             // what the driver takes is its own
    const auto play = [&](const char* name) {   // from the same numbers: the same instances at the same time
        SeedRandom(7);
        system.StartEffect(name, {});
        int taken = 0;
        for (int frame = 0; frame < 300; ++frame) {
            const int before = allocations;
            system.Update(1 / 60.0f);
            system.Draw();
            taken += allocations - before;
        }
        return taken;
    };
    for (int i = 0; i < system.GetEffectCount(); ++i) {
        const String name = system.GetEffectName(i);
        if (name == "scrying mirror") continue;   // it shows a picture that the tester computes
        system.LoadEffects("cfg/effects.cfg", false);
        play(name.c_str());
        while (system.LiveInstanceCount() > 0 && system.SystemTime() < 120) system.Update(0.1f);
        for (int rest = 0; rest < 50; ++rest) system.Update(0.1f);   // what trails are left end
        EXPECT_EQ(play(name.c_str()), 0) << name.c_str();
    }
}

}   // namespace
}   // namespace sparkrig

#endif
