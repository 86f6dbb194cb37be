// Every call that the program makes is refused once with each code that it may answer, on both back ends: the given
// report, nothing is leaked, and after a reset the picture is the one of before.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <map>
#include <set>

#include "gfx/gfx_parts.h"
#include "gfx/textures/texture.h"
#include "tests/base/reports.h"
#include "tests/device/failing_calls.h"

namespace sparkrig {

void PrintTo(const FailingCall& row, std::ostream* out) { *out << row.method << ": " << row.report; }

namespace {

std::string WithName(const char* report, HRESULT code) {
    std::string text = report;
    const std::size_t place = text.find("%s");
    return place == std::string::npos ? text : text.replace(place, 2, DXGetErrorString9(code));
}

/// Acts while one call of the device is refused. What is reported last, "" for nothing.
std::string ReportOfFailure(WholeProgram& program, const FailingCall& row, HRESULT code) {
    const Reports reports;
    program.recording.ForgetCalls();
    program.recording.Fail(row.method, code, row.nth);
    try {
        row.act(program);
    } catch (const ErrorRecord&) {   // the report has been heard
    }
    EXPECT_GE(program.recording.Count(row.method), row.nth) << "was not called";
    return reports.Last();
}

std::vector<HRESULT> CodesOfRow(const FailingCall& row) { return row.codes.empty() ? CodesOf(row.method) : row.codes; }

std::set<HRESULT> AsSet(const std::vector<HRESULT>& codes) { return {codes.begin(), codes.end()}; }

class Failures : public testing::TestWithParam<BackEnd> {};
INSTANTIATE_TEST_SUITE_P(BackEnds, Failures, testing::Values(BackEnd::Recording, BackEnd::OpenGl),
                         testing::PrintToStringParamName());

TEST_P(Failures, WhileTheProgramStarts) {
    for (const FailingCall& row : FailingStart()) {
        SCOPED_TRACE(testing::PrintToString(row));
        for (const HRESULT code : CodesOfRow(row)) {
            WholeProgram program(GetParam(), WholeProgram::State::Window);
            EXPECT_EQ(ReportOfFailure(program, row, code), WithName(row.report, code));
            program.End();
            EXPECT_EQ(program.recording.LiveObjects(), 0) << DXGetErrorString9(code);
        }
    }
}

/// The states of the device that a frame ends with, so that the next one begins as it did.
std::vector<DWORD> HeldStates(IDirect3DDevice9& device) {
    std::vector<DWORD> states;
    for (DWORD state = 1; state < kRenderStateCount; ++state)
        device.GetRenderState(static_cast<D3DRENDERSTATETYPE>(state), &states.emplace_back());
    for (DWORD stage = 0; stage < kTextureStages; ++stage) {
        for (DWORD state = 1; state < kStageStateCount; ++state)
            device.GetTextureStageState(stage, static_cast<D3DTEXTURESTAGESTATETYPE>(state), &states.emplace_back());
        for (DWORD state = 1; state < kSamplerStateCount; ++state)
            device.GetSamplerState(stage, static_cast<D3DSAMPLERSTATETYPE>(state), &states.emplace_back());
    }
    D3DVIEWPORT9 viewport = {};
    device.GetViewport(&viewport);
    states.insert(states.end(), {viewport.X, viewport.Y, viewport.Width, viewport.Height});
    return states;
}

TEST_P(Failures, WhileTheProgramPlays) {
    WholeProgram program(GetParam());
    program.Play(0, 30);
    program.Gfx().Parts().texture_loader.Settings().sharing = false;
    program.Gfx().Parts().shader_effects.SetSharing(false);
    const std::vector<D3DCOLOR> before = program.Picture();
    const std::vector<DWORD> states = HeldStates(*program.Gfx().Device());
    const int objects = program.recording.LiveObjects();
    for (const FailingCall& row : FailingCalls()) {
        SCOPED_TRACE(testing::PrintToString(row));
        for (const HRESULT code : CodesOfRow(row)) {
            SCOPED_TRACE(DXGetErrorString9(code));
            EXPECT_EQ(ReportOfFailure(program, row, code), WithName(row.report, code));
            EXPECT_EQ(ErrorOf([&] { program.Gfx().ResetDevice(nullptr, -1); }), "no error");
            EXPECT_TRUE(program.Picture() == before);
            EXPECT_EQ(HeldStates(*program.Gfx().Device()), states);
            EXPECT_EQ(program.recording.LiveObjects(), objects);
        }
    }
    program.End();
    EXPECT_EQ(program.recording.LiveObjects(), 0);
}

/// All that the program does of the device, by itself and in the rows.
void DoEverything(WholeProgram& program) {
    KRN_Gfx& gfx = program.Gfx();
    program.Start();
    for (int effect = 0; effect < program.player->EffectCount(); ++effect) program.Play(effect, 6);
    program.LoseDevice();
    program.Frame();
    for (const FailingCall& row : FailingCalls()) {
        row.act(program);
        gfx.ResetDevice(nullptr, -1);
    }
    gfx.Parts().texture_loader.Settings() = {.sharing = false, .compression = true, .compression_threshold = 16};
    KRN_Texture compressed;
    gfx.LoadTexture(&compressed, "textures\\glow.png", 0, 0, -1, 0);
    program.Frame();
    program.player->TakePicture();
}

TEST_P(Failures, OfEveryCallThatIsMadeHaveARow) {
    WholeProgram program(GetParam(), WholeProgram::State::Window);
    DoEverything(program);
    std::map<std::string, std::set<HRESULT>> shown;
    std::size_t row_count = 0, cases = 0;
    for (const std::vector<FailingCall>* rows : {&FailingStart(), &FailingCalls()}) {
        for (const FailingCall& row : *rows) {
            shown[row.method].merge(AsSet(CodesOfRow(row)));
            ++row_count;
            cases += CodesOfRow(row).size();
        }
    }
    std::printf("%zu calls of the contract in %zu rows, %zu cases\n", shown.size(), row_count, cases);
    for (const SilentCall& row : SilentCalls()) shown[row.method] = AsSet(CodesOf(row.method));
    const std::vector<std::string> called = program.recording.Methods();
    for (const std::string& method : std::set<std::string>(called.begin(), called.end())) {
        EXPECT_TRUE(shown.contains(method)) << method << " has no row";
        EXPECT_EQ(shown[method], AsSet(CodesOf(method))) << method;
    }
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
