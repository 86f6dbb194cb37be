// The device is lost between any two calls, the window dragged through many sizes or minimised: the program goes on,
// and the picture is the one without.
#include <epoxy/gl.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>

#include "app/effect_choice.h"
#include "app/shader_files.h"
#include "tests/device/whole_program.h"
#include "tests/support/test.h"

namespace sparkrig {
namespace {

class Loss : public testing::TestWithParam<BackEnd> {};
INSTANTIATE_TEST_SUITE_P(BackEnds, Loss, testing::Values(BackEnd::Recording, BackEnd::OpenGl),
                         testing::PrintToStringParamName());

void ExpectThatItGoesOn(WholeProgram& program, const std::vector<D3DCOLOR>& picture) {
    const Reports reports;
    EXPECT_EQ(ErrorOf([&] { program.Frame(); }), "no error");
    EXPECT_EQ(program.Gfx().Device()->TestCooperativeLevel(), D3D_OK);
    EXPECT_TRUE(program.Picture() == picture);
    EXPECT_EQ(reports.Last(), "");
}

/// How many calls of the device it takes.
template <class Action>
int CallsOf(WholeProgram& program, Action action) {
    program.recording.ForgetCalls();
    action();
    return static_cast<int>(program.recording.Calls().size());
}

TEST_P(Loss, BetweenAnyTwoCallsOfAFrame) {
    WholeProgram program(GetParam());
    for (const auto& [effect, screen_effect] :
         std::initializer_list<std::pair<const char*, const char*>>{{"campfire", ""},
                                                                    {"scrying mirror", "shader/HeatHaze.fxo"},
                                                                    {"portal", "shader/Glow.fxo"},
                                                                    {"deep tentacle", ""}}) {
        Tester().screen_effect_path = screen_effect;
        LoadShaderFiles(program.engine, Tester());
        program.player->StartEffect(ChooseEffect(program.engine.effects, effect).value());
        for (int frame = 0; frame < 40; ++frame) program.player->Advance();
        program.Frame();   // loads what is shown first
        const std::vector<D3DCOLOR> picture = program.Picture();
        const int calls = CallsOf(program, [&] { program.Frame(); });
        for (int call = 1; call <= calls; ++call) {
            SCOPED_TRACE(std::string(effect) + ", call " + std::to_string(call));
            program.recording.ForgetCalls();
            program.recording.Interrupt(call, [&] { program.LoseDevice(); });
            ExpectThatItGoesOn(program, picture);
            EXPECT_EQ(program.recording.Count("Reset"), 1);
        }
    }
}

TEST_P(Loss, AgainBetweenAnyTwoCallsOfAReset) {
    WholeProgram program(GetParam());
    program.Play(0, 30);
    const std::vector<D3DCOLOR> picture = program.Picture();
    program.LoseDevice();
    const int calls = CallsOf(program, [&] { program.Gfx().ResetDevice(nullptr, -1); });
    for (int call = 1; call <= calls; ++call) {
        SCOPED_TRACE(call);
        program.LoseDevice();
        program.recording.Interrupt(call, [&] { program.LoseDevice(); });
        EXPECT_EQ(ErrorOf([&] { program.Gfx().ResetDevice(nullptr, -1); }), "no error");
        ExpectThatItGoesOn(program, picture);
    }
}

TEST_P(Loss, WhileTheProgramStarts) {
    std::vector<D3DCOLOR> picture;
    int calls = 0;
    {
        WholeProgram program(GetParam(), WholeProgram::State::Window);
        calls = CallsOf(program, [&] { program.Start(); });
        program.Play(0, 30);
        picture = program.Picture();
    }
    int losses = 0;
    for (int call = 1; call <= calls; call += 3) {
        SCOPED_TRACE(call);
        WholeProgram program(GetParam(), WholeProgram::State::Window);
        program.recording.Interrupt(call, [&] {
            if (!program.Gfx().Device()) return;
            program.LoseDevice();
            ++losses;
        });
        ASSERT_EQ(ErrorOf([&] { program.Start(); }), "no error");
        program.Play(0, 30);
        ExpectThatItGoesOn(program, picture);
    }
    EXPECT_GT(losses, 0);
}

// ---- Windows of another size

/// How many textures, framebuffers, renderbuffers, buffers, vertex arrays, programs and samplers there are.
std::vector<int> GlObjects() {
    std::vector<int> counts;
    for (const auto& is :
         {glIsTexture, glIsFramebuffer, glIsRenderbuffer, glIsBuffer, glIsVertexArray, glIsProgram, glIsSampler}) {
        counts.push_back(0);
        for (GLuint name = 1; name < 5000; ++name) counts.back() += is(name);   // names are given out from 1 on
    }
    return counts;
}

/// Of the process, in bytes.
long ResidentBytes() {
    long whole = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> whole >> resident;
    return resident * sysconf(_SC_PAGESIZE);
}

/// Draws a frame at each of 120 different sizes, as the window is dragged.
void DragThroughSizes(WholeProgram& program) {
    constexpr int kSizes = 120;
    for (int i = 0; i < kSizes; ++i) {
        const int width = 64 + 5 * i, height = 300 - 2 * i;
        program.recording.ForgetCalls();
        program.ResizeWindow(width, height);
        program.player->Draw();
        ASSERT_EQ(program.Gfx().PresentFrame(), 0) << "the size is new";
        program.player->Draw();
        const Picture picture = program.player->TakePicture();
        ASSERT_EQ(picture.width, static_cast<UINT>(width));
        ASSERT_EQ(picture.height, static_cast<UINT>(height));
        ASSERT_EQ(program.Gfx().PresentFrame(), 1);
    }
}

TEST(Resizing, ThroughAHundredSizesHoldsItsMemory) {
    WholeProgram program(BackEnd::OpenGl);
    program.Play(0, 30);
    DragThroughSizes(program);
    const std::vector<int> objects = GlObjects();
    const int held = program.recording.LiveObjects();
    const long bytes = ResidentBytes();
    DragThroughSizes(program);
    const long more = ResidentBytes() - bytes;
    std::printf("resident set: %li bytes more\n", more);
    EXPECT_EQ(GlObjects(), objects);
    EXPECT_EQ(program.recording.LiveObjects(), held);
#ifndef __SANITIZE_ADDRESS__   // which keeps for a while what is freed
    EXPECT_LE(more, 4 << 20) << "more than the pools of driver and system move by";
#endif
}

TEST(Resizing, AMinimisedWindowIsDrawnToAndComesBack) {
    WholeProgram program(BackEnd::OpenGl);
    program.Play(0, 30);
    const std::vector<D3DCOLOR> picture = program.Picture();
    const Reports reports;
    for (const bool minimised : {true, false}) {
        program.MinimiseWindow(minimised);
        for (int frame = 0; frame < 3; ++frame) EXPECT_EQ(ErrorOf([&] { program.Frame(); }), "no error");
    }
    EXPECT_TRUE(program.Picture() == picture);
    EXPECT_EQ(reports.Last(), "");
}

}   // namespace
}   // namespace sparkrig
