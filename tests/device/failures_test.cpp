// Every call that the program makes is refused with each code that it may answer, on both back ends: it is reported,
// nothing is leaked, and after a reset the picture is the one of before.

#include <algorithm>
#include <cstdio>
#include <map>
#include <set>

#include "gfx/gfx.h"
#include "gfx/shaders/shader_effect.h"
#include "gfx/textures/texture.h"
#include "gfx/textures/texture_loader.h"
#include "gfx/textures/video_sources.h"
#include "scene/light.h"
#include "scene/scene.h"
#include "tests/device/whole_program.h"
#include "tests/support/held_states.h"
#include "tests/support/test.h"

namespace sparkrig {

namespace {

/// The codes that a call of the contract may answer: those of the first row that its name begins with.
std::vector<HRESULT> CodesOf(const std::string& method) {
    static const std::pair<const char*, std::vector<HRESULT>> kRows[] = {
        {"CreateDevice", {D3DERR_INVALIDCALL, D3DERR_NOTAVAILABLE, D3DERR_DEVICELOST, D3DERR_OUTOFVIDEOMEMORY}},
        {"Create", {D3DERR_INVALIDCALL, D3DERR_NOTAVAILABLE, D3DERR_OUTOFVIDEOMEMORY, E_OUTOFMEMORY}},
        {"Lock", {D3DERR_INVALIDCALL, D3DERR_WASSTILLDRAWING, E_OUTOFMEMORY}},
        {"TestCooperativeLevel", {D3DERR_DEVICELOST, D3DERR_DEVICENOTRESET, D3DERR_DRIVERINTERNALERROR}},
        {"Reset",
         {D3DERR_INVALIDCALL, D3DERR_DEVICELOST, D3DERR_NOTAVAILABLE, D3DERR_OUTOFVIDEOMEMORY, E_OUTOFMEMORY,
          D3DERR_DRIVERINTERNALERROR}},
        {"Present", {D3DERR_INVALIDCALL, D3DERR_DEVICELOST, D3DERR_DRIVERINTERNALERROR}},
        {"GetRenderTargetData", {D3DERR_INVALIDCALL, D3DERR_DEVICELOST, D3DERR_DRIVERINTERNALERROR}},
        {"", {D3DERR_INVALIDCALL, D3DERR_NOTFOUND, D3DERR_DRIVERINTERNALERROR}}};
    return std::ranges::find_if(kRows, [&](const auto& row) { return method.starts_with(row.first); })->second;
}

/// Calls whose refusal is not reported by the code's name, by design.
struct QuietCall {
    const char* method;
    bool reported;   // in other words
    const char* reason;
};
constexpr QuietCall kQuietCalls[] = {
    {"GetDeviceCaps", false, "the adapter's stand for it; without those, vertices are processed in software"},
    {"GetAdapterIdentifier", false, "such an adapter is not the one that is looked for"},
    {"SetGammaRamp", false, "it answers nothing"},
    {"GetLight", false, "a light that was never set is not put back"},
    {"GetLightEnable", false, "a light that was never set is off"},
    {"TestCooperativeLevel", false, "a lost device is waited for"},
    {"CheckDeviceFormat", true, "the format is named"},
    {"Clear", true, "the given text names no code"},
    {"SetSamplerState", true, "the address mode is named"},
    {"CreateVertexShader", true, "the effect's file is named"},
    {"CreatePixelShader", true, "the effect's file is named"},
};

// ---- What a program that plays can be asked to do; together, with SetEveryState, these acts make every call

constexpr char kEveryState[] = "tests\\device\\every_state.fx";

void Load(KRN_Gfx& gfx, const char* name, int parameter) {
    KRN_Texture texture;
    gfx.LoadTexture(&texture, name, 0, parameter);
}
/// 16 x 8, made and filled.
struct Made {
    Made(KRN_Gfx& gfx, int kind) {
        gfx.CreateTexture(&texture, 16, 8, kind, -1, 1);
        texture.Clear(0xFF102030, nullptr);
    }
    KRN_Texture texture;
};
/// A video source while it is shown.
struct Video {
    explicit Video(KRN_Gfx& gfx) : source(gfx.Video(2)) {
        source.format = D3DFMT_X8R8G8B8;
        source.width = 8;
        source.height = 4;
        source.update = [](D3DLOCKED_RECT*) {};
    }
    ~Video() { source.texture.Reset(); }
    VideoSource& source;
};
/// Off again whatever happens.
struct PostRenderEffects {
    explicit PostRenderEffects(KRN_Gfx& facade) : gfx(facade) { gfx.InitPostRenderEffects(); }
    ~PostRenderEffects() {
        if (ErrorOf([this] { gfx.ReleasePostRenderEffects(); }) != "no error") gfx.ReleasePostRenderEffects();
    }
    KRN_Gfx& gfx;
};
void DrawTriangles(KRN_Gfx& gfx, KRN_ShaderEffect* effect) {
    KRN_VertexListTemp<KRN_LVertex> list;
    list.SetMode(PrimitiveMode::TriangleList);
    if (effect) list.SetEffect(effect);
    gfx.CreateVertexList(&list, 30, -1, false);
    gfx.BeginScene();
    gfx.DrawTriangleList(list, 0, effect ? 1 : -1);
}

struct Act {
    const char* name;
    void (*run)(KRN_Gfx& gfx);
};
constexpr Act kActs[] = {
    {"reset", [](KRN_Gfx& gfx) { gfx.ResetDevice(nullptr, -1); }},
    {"present", [](KRN_Gfx& gfx) { gfx.PresentFrame(); }},
    {"adapter",
     [](KRN_Gfx& gfx) {
         D3DDISPLAYMODE mode = {800, 600, 0, D3DFMT_A8R8G8B8};
         gfx.FindDisplayMode(mode);
         gfx.GetAdapterDisplayMode(mode);
         gfx.CheckTextureFormat(D3DFMT_A4R4G4B4, 3);
     }},
    {"scene",
     [](KRN_Gfx& gfx) {
         gfx.BeginScene();
         gfx.Clear(0xFF102030, 1, nullptr);
         gfx.ClearZBuffer(1, nullptr);
         gfx.EndScene();
     }},
    {"target", [](KRN_Gfx& gfx) { gfx.SetRenderTarget(Made(gfx, 3).texture.GetSurfaceLevel(0).Get(), 0); }},
    {"read back",
     [](KRN_Gfx& gfx) {
         std::vector<D3DCOLOR> pixels;
         UINT width, height;
         gfx.ReadBackBuffer(pixels, width, height);
     }},
    {"scene in a texture", [](KRN_Gfx& gfx) { PostRenderEffects(gfx).gfx.BeginScene(); }},
    {"multisampled",
     [](KRN_Gfx& gfx) {
         gfx.SetMultisampleTarget(true);
         const PostRenderEffects on(gfx);
         gfx.SetMultisampleTarget(false);
     }},
    {"screen copy", [](KRN_Gfx& gfx) { gfx.GetScreenCopy(true); }},
    {"screen buffer", [](KRN_Gfx& gfx) { gfx.GetScreenBufferTexture(1, 2); }},
    {"into a screen buffer",
     [](KRN_Gfx& gfx) {
         KRN_ShaderEffect effect;
         gfx.LoadShaderEffect(effect, "tests\\device\\screen_buffer.fx", true, 0, true);
         DrawTriangles(gfx, &effect);
     }},
    {"texture", [](KRN_Gfx& gfx) { Made(gfx, 4); }},
    {"picture", [](KRN_Gfx& gfx) { Load(gfx, "textures\\glow.png", 0); }},
    {"picture in the default pool", [](KRN_Gfx& gfx) { Load(gfx, "textures\\glow.png", 1); }},
    {"frames", [](KRN_Gfx& gfx) { Load(gfx, "tests\\device\\flames.ifl", 0); }},
    {"video",
     [](KRN_Gfx& gfx) {
         const Video video(gfx);
         Load(gfx, ">>Video3", 0);
         gfx.UpdateVideoSource(2);
     }},
    {"triangles", [](KRN_Gfx& gfx) { DrawTriangles(gfx, nullptr); }},
    {"quad",
     [](KRN_Gfx& gfx) {
         Made made(gfx, 4);
         gfx.SetTexture2D(&made.texture);
         gfx.BeginScene();
         gfx.DrawTexture2D({3, 5, 40, 30}, 0xFFFFFFFF, {0.5f, 0.5f, 0.5f, 0.5f});
     }},
    {"text",
     [](KRN_Gfx& gfx) {
         gfx.BeginScene();
         gfx.Printf(3, 5, "Sparks");
         gfx.DrawText();
     }},
    {"meshes",
     [](KRN_Gfx& gfx) {
         KRN_3dScene scene;
         gfx.LoadScene(scene, "models\\flag.kva");
         gfx.BeginScene();
         gfx.DrawScene(&scene);
         gfx.DrawMeshRange(scene.meshes[0], 0, 2);
     }},
    {"a mesh by hand",
     [](KRN_Gfx& gfx) {
         KRN_Mesh mesh;
         mesh.CreateGeometry({.faces = 4, .vertices = 6, .format = 0x112});
         mesh.SortByGroup();
         gfx.CreateMesh(mesh);
     }},
    {"effect",
     [](KRN_Gfx& gfx) {
         const Made picture(gfx, 4);
         KRN_ShaderEffect effect;
         gfx.LoadShaderEffect(effect, kEveryState, true, 0, true);
         effect.SetParameter(effect.Effect()->GetParameterByName(nullptr, "Picture"), picture.texture.DeviceTexture());
         effect.Begin();
         effect.BeginPass(0);
         effect.EndPass();
         effect.End();
     }},
};

/// Sets what stays set: an act for a program that ends behind it.
void SetEveryState(WholeProgram& program) {
    KRN_Gfx& gfx = program.Gfx();
    gfx.SetViewPort(1, 2, 30, 40, 0, 1);
    gfx.SetMirroredProjection();
    gfx.SetAmbient(9);
    gfx.SetRenderSource(1, 3, 0);
    gfx.SetTextureFilter(3, 3);
    gfx.SetAddressModeU(D3DTADDRESS_CLAMP, 0);
    gfx.SetAddressModeV(D3DTADDRESS_MIRROR, 0);
    gfx.SetStreamSource(nullptr, 16);
    gfx.SetIndices(nullptr);
    gfx.SetSoftwareVertexProcessing(true);
    D3DMATERIAL9 material = {};
    material.Power = 7;
    gfx.SetMaterial(material);
    KRN_Light light;
    light.off = false;
    light.record.Type = D3DLIGHT_POINT;
    gfx.SetLight(3, light, 0, false);
    gfx.SetLightEnable(3, true);
}

// ---- Refusals

/// What a refused call has to lead to: a report with the code's name. A lost device alone is waited for, by design.
void ExpectReport(const std::string& report, const std::string& method, HRESULT code) {
    const bool waits = (method == "Reset" || method == "Present") && code == D3DERR_DEVICELOST;
    const auto* quiet = std::ranges::find(kQuietCalls, method, &QuietCall::method);
    if (quiet != std::end(kQuietCalls)) {
        EXPECT_TRUE(report != "" || !quiet->reported);
    } else if (!waits) {
        EXPECT_THAT(report, HasSubstr(DXGetErrorString9(code)));
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
    for (const Act& act : kActs) {
        program.recording.ForgetCalls();
        ErrorOf([&] { act.run(program.Gfx()); });
        const auto calls = FirstCalls(program.recording);
        program.Gfx().ResetDevice(nullptr, -1);
        for (const auto& [method, nth] : calls) {
            std::vector<HRESULT> codes = CodesOf(method);
            if (!seen.insert(method).second) codes.resize(std::min<std::size_t>(codes.size(), 1));
            for (const HRESULT code : codes) {
                SCOPED_TRACE(std::string(act.name) + ": " + method + " " + std::to_string(nth) + " " +
                             DXGetErrorString9(code));
                const auto run = [&](WholeProgram& playing) { act.run(playing.Gfx()); };
                ExpectReport(ReportOfFailure(program, method, nth, code, run), method, code);
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
