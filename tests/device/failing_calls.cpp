#include "tests/device/failing_calls.h"

#include <map>

#include "gfx/gfx.h"
#include "gfx/shaders/shader_effect.h"
#include "gfx/textures/texture.h"
#include "gfx/textures/video_sources.h"
#include "scene/light.h"
#include "scene/scene.h"
#include "tests/support/test.h"

namespace sparkrig {

std::vector<HRESULT> CodesOf(const std::string& method) {
    static const std::map<std::string, std::vector<HRESULT>> kOfTheirOwn = {
        {"CreateDevice", {D3DERR_INVALIDCALL, D3DERR_NOTAVAILABLE, D3DERR_DEVICELOST, D3DERR_OUTOFVIDEOMEMORY}},
        {"TestCooperativeLevel", {D3DERR_DEVICELOST, D3DERR_DEVICENOTRESET, D3DERR_DRIVERINTERNALERROR}},
        {"Reset",
         {D3DERR_INVALIDCALL, D3DERR_DEVICELOST, D3DERR_NOTAVAILABLE, D3DERR_OUTOFVIDEOMEMORY, E_OUTOFMEMORY,
          D3DERR_DRIVERINTERNALERROR}},
        {"Present", {D3DERR_INVALIDCALL, D3DERR_DEVICELOST, D3DERR_DRIVERINTERNALERROR}},
        {"GetRenderTargetData", {D3DERR_INVALIDCALL, D3DERR_DEVICELOST, D3DERR_DRIVERINTERNALERROR}}};
    if (const auto found = kOfTheirOwn.find(method); found != kOfTheirOwn.end()) return found->second;
    if (method.starts_with("Create"))
        return {D3DERR_INVALIDCALL, D3DERR_NOTAVAILABLE, D3DERR_OUTOFVIDEOMEMORY, E_OUTOFMEMORY};
    if (method.starts_with("Lock")) return {D3DERR_INVALIDCALL, D3DERR_WASSTILLDRAWING, E_OUTOFMEMORY};
    return {D3DERR_INVALIDCALL, D3DERR_NOTFOUND, D3DERR_DRIVERINTERNALERROR};
}

const std::vector<QuietCall>& QuietCalls() {
    static const std::vector<QuietCall> rows = {
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
    return rows;
}

// ---- Acts

namespace {

constexpr char kPicture[] = "textures\\glow.png", kFrameList[] = "tests\\device\\flames.ifl";
constexpr char kEveryState[] = "tests\\device\\every_state.fx";

void LoadFresh(WholeProgram& program, const char* name, int parameter) {
    KRN_Texture texture;
    program.Gfx().LoadTexture(&texture, name, 0, parameter);
}
void LoadManaged(WholeProgram& program) { LoadFresh(program, kPicture, 0); }
void LoadIntoDefaultPool(WholeProgram& program) { LoadFresh(program, kPicture, 1); }
void LoadFrames(WholeProgram& program) { LoadFresh(program, kFrameList, 0); }

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
void ShowVideo(WholeProgram& program) {
    const Video video(program.Gfx());
    KRN_Texture texture;
    program.Gfx().LoadTexture(&texture, ">>Video3", 0, 0);
    program.Gfx().UpdateVideoSource(2);
}

void CreateTarget(WholeProgram& program) {
    KRN_Texture texture;
    program.Gfx().CreateTexture(&texture, 16, 8, 3, -1, 1);
    texture.Clear(0xFF102030, nullptr);
}
void DrawIntoTarget(WholeProgram& program) {
    KRN_Texture target;
    program.Gfx().CreateTexture(&target, 16, 8, 3, -1, 1);
    program.Gfx().SetRenderTarget(target.GetSurfaceLevel(0).Get(), 0);
}
void FillTexture(WholeProgram& program) {
    KRN_Texture texture;
    program.Gfx().CreateTexture(&texture, 16, 8, 4, -1, 1);
    texture.Clear(0xFF102030, nullptr);
}

void ReadPixels(WholeProgram& program) {
    std::vector<D3DCOLOR> pixels;
    UINT width, height;
    program.Gfx().ReadBackBuffer(pixels, width, height);
}

void DrawTriangles(WholeProgram& program) {
    KRN_VertexListTemp<KRN_LVertex> list;
    list.SetMode(PrimitiveMode::TriangleList);
    program.Gfx().CreateVertexList(&list, 30, -1, false);
    program.Gfx().BeginScene();
    program.Gfx().DrawTriangleList(list, 0, -1);
}
void DrawQuad(WholeProgram& program) {
    KRN_Texture texture;
    program.Gfx().CreateTexture(&texture, 16, 8, 4, -1, 1);
    program.Gfx().SetTexture2D(&texture);
    program.Gfx().BeginScene();
    program.Gfx().DrawTexture2D({3, 5, 40, 30}, 0xFFFFFFFF, {0.5f, 0.5f, 0.5f, 0.5f});
}
void DrawText(WholeProgram& program) {
    program.Gfx().BeginScene();
    program.Gfx().Printf(3, 5, "Sparks");
    program.Gfx().DrawText();
}
void DrawMesh(WholeProgram& program) {
    program.Gfx().BeginScene();
    program.Gfx().DrawMesh(&program.player->Loop().stage_mesh, nullptr);
}
void DrawBones(WholeProgram& program) {
    KRN_3dScene scene;
    program.Gfx().LoadScene(scene, "models\\flag.kva");
    program.Gfx().BeginScene();
    program.Gfx().DrawScene(&scene);
    program.Gfx().DrawMeshRange(scene.meshes[0], 0, 2);
}
void MakeMesh(WholeProgram& program) {
    KRN_Mesh mesh;
    mesh.CreateGeometry({.faces = 4, .vertices = 6, .format = 0x112});
    mesh.SortByGroup();
    program.Gfx().CreateMesh(mesh);
}

void LoadEffect(WholeProgram& program) {
    KRN_ShaderEffect effect;
    program.Gfx().LoadShaderEffect(effect, kEveryState, true, 0, true);
}
void RunEffect(WholeProgram& program) {
    KRN_Texture picture;
    program.Gfx().CreateTexture(&picture, 16, 8, 4, -1, 1);
    KRN_ShaderEffect effect;
    program.Gfx().LoadShaderEffect(effect, kEveryState, true, 0, true);
    effect.SetParameter(effect.Effect()->GetParameterByName(nullptr, "Picture"), picture.DeviceTexture());
    effect.Begin();
    effect.BeginPass(0);
    effect.EndPass();
    effect.End();
}

/// Off again whatever happens.
struct PostRenderEffects {
    explicit PostRenderEffects(WholeProgram& program) : gfx(program.Gfx()) { gfx.InitPostRenderEffects(); }
    ~PostRenderEffects() {
        if (ErrorOf([this] { gfx.ReleasePostRenderEffects(); }) != "no error") gfx.ReleasePostRenderEffects();
    }
    KRN_Gfx& gfx;
};
void BeginSceneInTexture(WholeProgram& program) { PostRenderEffects(program).gfx.BeginScene(); }
void InitMultisampled(WholeProgram& program) {
    program.Gfx().SetMultisampleTarget(true);
    const PostRenderEffects on(program);
    program.Gfx().SetMultisampleTarget(false);
}
void CopyScreen(WholeProgram& program) { program.Gfx().GetScreenCopy(true); }
void MakeScreenBuffer(WholeProgram& program) { program.Gfx().GetScreenBufferTexture(1, 2); }
void DrawIntoScreenBuffer(WholeProgram& program) {
    KRN_ShaderEffect effect;
    program.Gfx().LoadShaderEffect(effect, "tests\\device\\screen_buffer.fx", true, 0, true);
    KRN_VertexListTemp<KRN_LVertex> list;
    list.SetEffect(&effect);
    program.Gfx().CreateVertexList(&list, 3, -1, false);
    program.Gfx().BeginScene();
    program.Gfx().DrawTriangleList(list, 0, 1);
}

void AskTheAdapter(WholeProgram& program) {
    D3DDISPLAYMODE mode = {800, 600, 0, D3DFMT_A8R8G8B8};
    program.Gfx().FindDisplayMode(mode);
    program.Gfx().GetAdapterDisplayMode(mode);
    program.Gfx().CheckTextureFormat(D3DFMT_A4R4G4B4, 3);
}
void DrawEmptyScene(WholeProgram& program) {
    program.Gfx().BeginScene();
    program.Gfx().Clear(0xFF102030, 1, nullptr);
    program.Gfx().ClearZBuffer(1, nullptr);
    program.Gfx().EndScene();
}
void Reset(WholeProgram& program) { program.Gfx().ResetDevice(nullptr, -1); }
void Present(WholeProgram& program) { program.Gfx().PresentFrame(); }

}   // namespace

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

const std::vector<Act>& Acts() {
    // clang-format off
    static const std::vector<Act> acts = {
        {"reset", Reset}, {"present", Present}, {"adapter", AskTheAdapter}, {"scene", DrawEmptyScene},
        {"target", DrawIntoTarget}, {"read back", ReadPixels},
        {"scene in a texture", BeginSceneInTexture}, {"multisampled", InitMultisampled}, {"screen copy", CopyScreen},
        {"screen buffer", MakeScreenBuffer}, {"into a screen buffer", DrawIntoScreenBuffer}, {"texture", FillTexture},
        {"picture", LoadManaged}, {"picture in the default pool", LoadIntoDefaultPool}, {"frames", LoadFrames},
        {"video", ShowVideo}, {"colour fill", CreateTarget}, {"triangles", DrawTriangles}, {"quad", DrawQuad},
        {"text", DrawText}, {"mesh", DrawMesh}, {"bones", DrawBones}, {"making a mesh", MakeMesh}, {"loading an effect", LoadEffect},
        {"effect", RunEffect},
    };
    // clang-format on
    return acts;
}

}   // namespace sparkrig
