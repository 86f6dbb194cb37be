// A window that is dragged through many sizes, or has none.
#include <epoxy/gl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <iostream>

#include "tests/base/reports.h"
#include "tests/device/whole_program.h"

namespace sparkrig {
namespace {

/// What OpenGL holds for the program.
struct GlObjects {
    int textures = 0, framebuffers = 0, renderbuffers = 0, buffers = 0, vertex_arrays = 0, programs = 0, samplers = 0;
    bool operator==(const GlObjects&) const = default;

    static GlObjects Count() {
        constexpr GLuint kMostNames = 5000;   // names are given out from 1 on
        GlObjects count;
        for (GLuint name = 1; name < kMostNames; ++name) {
            count.textures += glIsTexture(name);
            count.framebuffers += glIsFramebuffer(name);
            count.renderbuffers += glIsRenderbuffer(name);
            count.buffers += glIsBuffer(name);
            count.vertex_arrays += glIsVertexArray(name);
            count.programs += glIsProgram(name);
            count.samplers += glIsSampler(name);
        }
        return count;
    }
};
std::ostream& operator<<(std::ostream& out, const GlObjects& count) {
    return out << count.textures << " textures, " << count.framebuffers << " framebuffers, " << count.renderbuffers
               << " renderbuffers, " << count.buffers << " buffers, " << count.vertex_arrays << " vertex arrays, "
               << count.programs << " programs, " << count.samplers << " samplers";
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
    [[maybe_unused]] constexpr long kAllowance =
        4 << 20;   // bytes: what the software driver's and the system's pools move by
    WholeProgram program(BackEnd::OpenGl);
    program.Play(0, 30);
    DragThroughSizes(program);
    const GlObjects objects = GlObjects::Count();
    const int held = program.recording.LiveObjects();
    const long bytes = ResidentBytes();
    DragThroughSizes(program);
    const long more = ResidentBytes() - bytes;
    std::cout << GlObjects::Count() << ", as after the first round; resident set: " << more << " bytes more\n";
    EXPECT_EQ(GlObjects::Count(), objects);
    EXPECT_EQ(program.recording.LiveObjects(), held);
#ifndef __SANITIZE_ADDRESS__   // which keeps for a while what is freed
    EXPECT_LE(more, kAllowance);
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
