// A window that is dragged through many sizes, or has none.
#include <epoxy/gl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <vector>

#include "tests/device/whole_program.h"
#include "tests/support/test.h"

namespace sparkrig {
namespace {

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
