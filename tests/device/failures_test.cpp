// Every call that the program makes is refused with each code that it may answer, on both back ends: it is reported,
// nothing is leaked, and after a reset the picture is the one of before.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <set>

#include "gfx/gfx.h"
#include "gfx/textures/texture.h"
#include "gfx/textures/texture_loader.h"
#include "tests/device/failing_calls.h"
#include "tests/support/held_states.h"
#include "tests/support/test.h"

namespace sparkrig {

namespace {

const QuietCall* FindQuiet(const std::string& method) {
    const auto& rows = QuietCalls();
    const auto found = std::ranges::find_if(rows, [&](const QuietCall& row) { return method == row.method; });
    return found == rows.end() ? nullptr : &*found;
}

/// What a refused call has to lead to: a report with the code's name. A lost device alone is waited for, by design.
void ExpectReport(const std::string& report, const std::string& method, HRESULT code) {
    const bool waits = (method == "Reset" || method == "Present") && code == D3DERR_DEVICELOST;
    const QuietCall* quiet = FindQuiet(method);
    if (!waits && !quiet) {
        EXPECT_THAT(report, testing::HasSubstr(DXGetErrorString9(code)));
    } else if (quiet && quiet->reported) {
        EXPECT_NE(report, "");
    }
}

/// The calls of an act or a start, each with its place among those of its method: the first of those that ask, and the
/// first two of those that do, for an effect sets its states and puts them back.
std::vector<std::pair<std::string, int>> FirstCalls(const Recording& recording) {
    std::map<std::string, int> seen;
    std::vector<std::pair<std::string, int>> calls;
    for (const std::string& method : recording.Methods())
        if (++seen[method] <= (method.starts_with("Get") ? 1 : 2)) calls.emplace_back(method, seen[method]);
    return calls;
}

/// Acts while one call of the device is refused. What is reported last, "" for nothing.
template <class Action>
std::string ReportOfFailure(WholeProgram& program, const std::string& method, int nth, HRESULT code, Action act) {
    const Reports reports;
    program.recording.ForgetCalls();
    program.recording.Fail(method, code, nth);
    ErrorOf([&] { act(program); });
    return reports.Last();
}

class Failures : public testing::TestWithParam<BackEnd> {};
INSTANTIATE_TEST_SUITE_P(BackEnds, Failures, testing::Values(BackEnd::Recording, BackEnd::OpenGl),
                         testing::PrintToStringParamName());

/// Each call that the act makes of a program is refused to one that ends behind it.
void RefuseOneByOne(BackEnd back_end, WholeProgram::State state, void (*act)(WholeProgram&)) {
    const auto calls = [&] {
        WholeProgram whole(back_end, state);
        whole.recording.ForgetCalls();
        act(whole);
        return FirstCalls(whole.recording);
    }();
    for (const auto& [method, nth] : calls) {
        if (nth > 1) continue;
        SCOPED_TRACE(method);
        WholeProgram program(back_end, state);
        const HRESULT code = CodesOf(method).back();
        ExpectReport(ReportOfFailure(program, method, nth, code, act), method, code);
        program.End();
        EXPECT_EQ(program.recording.LiveObjects(), 0);
    }
}

TEST_P(Failures, WhileTheProgramStarts) {
    RefuseOneByOne(GetParam(), WholeProgram::State::Window, [](WholeProgram& program) { program.Start(); });
}
TEST_P(Failures, WhileStatesAreSet) { RefuseOneByOne(GetParam(), WholeProgram::State::Started, SetEveryState); }

TEST_P(Failures, WhileTheProgramPlays) {
    WholeProgram program(GetParam());
    program.Play(0, 30);
    program.Gfx().TextureOptions().sharing = false;
    program.Gfx().SetShaderSharing(false);
    const std::vector<D3DCOLOR> before = program.Picture();
    const std::vector<DWORD> states = HeldStates(*program.Gfx().Device());   // the next frame begins with them
    const int objects = program.recording.LiveObjects();
    std::set<std::string> seen;   // with every code it may answer; called again, one is enough
    int cases = 0;
    for (const Act& act : Acts()) {
        program.recording.ForgetCalls();
        ErrorOf([&] { act.run(program); });
        const auto calls = FirstCalls(program.recording);
        program.Gfx().ResetDevice(nullptr, -1);
        for (const auto& [method, nth] : calls) {
            std::vector<HRESULT> codes = CodesOf(method);
            if (!seen.insert(method).second) codes.resize(std::min<std::size_t>(codes.size(), 1));
            for (const HRESULT code : codes) {
                SCOPED_TRACE(std::string(act.name) + ": " + method + " " + std::to_string(nth) + " " +
                             DXGetErrorString9(code));
                ExpectReport(ReportOfFailure(program, method, nth, code, act.run), method, code);
                EXPECT_GE(program.recording.Count(method), nth) << "was not called";
                EXPECT_EQ(ErrorOf([&] { program.Gfx().ResetDevice(nullptr, -1); }), "no error");
                EXPECT_TRUE(program.Picture() == before);
                EXPECT_EQ(HeldStates(*program.Gfx().Device()), states);
                EXPECT_EQ(program.recording.LiveObjects(), objects);
                ++cases;
            }
        }
    }
    std::printf("%zu calls of the contract, %d cases\n", seen.size(), cases);
    program.End();
    EXPECT_EQ(program.recording.LiveObjects(), 0);
}

TEST_P(Failures, OfEveryCallOfAFrameLeaveTheNextFramesAsTheyWere) {
    WholeProgram program(GetParam());
    program.Play(0, 30);
    const std::vector<D3DCOLOR> before = program.Picture();
    program.recording.ForgetCalls();
    program.Frame();
    std::map<std::string, int> seen;
    for (const std::string& method : program.recording.Methods()) {
        const int nth = ++seen[method];
        SCOPED_TRACE(method + " " + std::to_string(nth));
        program.recording.ForgetCalls();
        program.recording.Fail(method, D3DERR_INVALIDCALL, nth);
        ErrorOf([&] { program.Frame(); });
        EXPECT_GE(program.recording.Count(method), nth) << "was not called";
        EXPECT_EQ(ErrorOf([&] { program.Gfx().ResetDevice(nullptr, -1); }), "no error");
        EXPECT_TRUE(program.Picture() == before);
    }
    program.End();
    EXPECT_EQ(program.recording.LiveObjects(), 0);
}

}   // namespace
}   // namespace sparkrig
