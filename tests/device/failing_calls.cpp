#include "tests/device/failing_calls.h"

#include "gfx/gfx_parts.h"
#include "scene/light.h"
#include "scene/mesh.h"

namespace sparkrig {

// ---- Codes

// clang-format off
const std::vector<CallCodes>& CodesOfCalls() {
    static const std::vector<HRESULT>
        kSet =    {D3DERR_INVALIDCALL, D3DERR_DRIVERINTERNALERROR},
        kAdapter = {D3DERR_INVALIDCALL, D3DERR_NOTAVAILABLE},
        kLock =   {D3DERR_INVALIDCALL, D3DERR_WASSTILLDRAWING, E_OUTOFMEMORY},
        kCreate = {D3DERR_INVALIDCALL, D3DERR_OUTOFVIDEOMEMORY, E_OUTOFMEMORY},
        kFetch =  {D3DERR_INVALIDCALL, D3DERR_DEVICELOST, D3DERR_NOTFOUND};
    static const std::vector<CallCodes> rows = {
        {"GetAdapterIdentifier", kAdapter}, {"GetAdapterDisplayMode", kAdapter}, {"EnumAdapterModes", kAdapter},
        {"CheckDeviceFormat", kAdapter}, {"GetDeviceCaps", kAdapter},
        {"CreateDevice", {D3DERR_INVALIDCALL, D3DERR_NOTAVAILABLE, D3DERR_DEVICELOST, D3DERR_OUTOFVIDEOMEMORY}},

        {"TestCooperativeLevel", {D3DERR_DEVICELOST, D3DERR_DEVICENOTRESET, D3DERR_DRIVERINTERNALERROR}},
        {"Reset", {D3DERR_INVALIDCALL, D3DERR_DEVICELOST, D3DERR_NOTAVAILABLE, D3DERR_OUTOFVIDEOMEMORY, E_OUTOFMEMORY,
                   D3DERR_DRIVERINTERNALERROR}},
        {"Present", {D3DERR_INVALIDCALL, D3DERR_DEVICELOST, D3DERR_DRIVERINTERNALERROR}},
        {"SetSoftwareVertexProcessing", kSet},

        {"CreateTexture", {D3DERR_INVALIDCALL, D3DERR_NOTAVAILABLE, D3DERR_OUTOFVIDEOMEMORY, E_OUTOFMEMORY}},
        {"CreateVertexBuffer", kCreate}, {"CreateIndexBuffer", kCreate}, {"CreateOffscreenPlainSurface", kCreate},
        {"CreateRenderTarget", {D3DERR_INVALIDCALL, D3DERR_NOTAVAILABLE, D3DERR_OUTOFVIDEOMEMORY, E_OUTOFMEMORY}},
        {"CreateVertexShader", kCreate}, {"CreatePixelShader", kCreate},
        {"Lock", kLock}, {"Unlock", kSet}, {"LockRect", kLock}, {"UnlockRect", kSet},
        {"GetDesc", kSet}, {"GetLevelDesc", kSet}, {"GetSurfaceLevel", kSet},

        {"GetBackBuffer", kFetch}, {"GetRenderTarget", kFetch}, {"GetDepthStencilSurface", kFetch},
        {"SetRenderTarget", kSet}, {"StretchRect", kSet}, {"ColorFill", kSet}, {"UpdateTexture", kSet},
        {"GetRenderTargetData", {D3DERR_INVALIDCALL, D3DERR_DEVICELOST, D3DERR_DRIVERINTERNALERROR}},
        {"BeginScene", kSet}, {"EndScene", kSet}, {"Clear", kSet},

        {"SetViewport", kSet}, {"SetTransform", kSet}, {"SetMaterial", kSet}, {"SetLight", kSet}, {"LightEnable", kSet},
        {"SetRenderState", kSet}, {"SetTextureStageState", kSet}, {"SetSamplerState", kSet}, {"SetTexture", kSet},
        {"SetVertexShader", kSet}, {"SetPixelShader", kSet}, {"SetVertexShaderGlobals", kSet},
        {"SetPixelShaderGlobals", kSet}, {"SetFVF", kSet}, {"SetStreamSource", kSet}, {"SetIndices", kSet},
        {"DrawPrimitive", kSet}, {"DrawIndexedPrimitive", kSet},

        {"GetViewport", kSet}, {"GetTransform", kSet}, {"GetMaterial", kSet}, {"GetLight", kSet}, {"GetLightEnable", kSet},
        {"GetRenderState", kSet}, {"GetTextureStageState", kSet}, {"GetSamplerState", kSet}, {"GetTexture", kSet},
        {"GetVertexShader", kSet}, {"GetPixelShader", kSet},
    };
    return rows;
}
// clang-format on

std::vector<HRESULT> CodesOf(const std::string& method) {
    for (const CallCodes& row : CodesOfCalls())
        if (row.method == method) return row.codes;
    return {};
}

const std::vector<SilentCall>& SilentCalls() {
    static const std::vector<SilentCall> rows = {
        {"GetDeviceCaps",
         "without the adapter's, vertices are processed in software; the adapter's stand for the device's"},
        {"GetAdapterIdentifier", "such an adapter is not the one that is looked for"},
        {"SetGammaRamp", "it answers nothing"},
        {"GetLight", "a light that was never set is not put back"},
        {"GetLightEnable", "a light that was never set is off"},
    };
    return rows;
}

// ---- While the program is made

namespace {

void Start(WholeProgram& program) { program.Start(); }

}   // namespace

const std::vector<FailingCall>& FailingStart() {
    static const std::vector<FailingCall> rows = {
        {"GetAdapterDisplayMode", "error KRN_Gfx: GetAdapterDisplayMode failed: %s", Start},
        {"CreateDevice", "error KRN_Gfx: CreateDevice failed: %s\n", Start},
        {"GetRenderTarget", "error KRN_Gfx: Can not retrieve render target: %s", Start},
        {"GetDepthStencilSurface", "error KRN_Gfx: Can not retrieve zbuffer: %s", Start},
        {"GetBackBuffer", "error KRN_Gfx: GetBackBuffer failed: %s", Start},
        {"GetDesc", "error KRN_Gfx: GetDesc failed: %s", Start},
        {"SetViewport", "warning KRN_Gfx: SetViewPort failed: %s", Start},
        {"CreateVertexBuffer", "error KRN_Gfx: CreateVertexBuffer in CreateVertexList failed: %s", Start},
        {"Lock", "error KRN_ListBase: *undefined*: Lock failed: %s", Start},
        {"Unlock", "error KRN_ListBase: *undefined*: Unlock failed: %s", Start},
        {"CheckDeviceFormat", "warning KRN_Gfx: Texture format 21 mode 0 not supported by device", Start},
        {"CreateTexture", "error KRN_Gfx: CreateTexture failed: %s", Start},
        {"LockRect", "error KRN_Texture: LockRect failed: %s", Start},
        {"UnlockRect", "error KRN_Texture: UnlockRect failed: %s", Start},
        {"CreateVertexShader",
         "warning KRN_Gfx: Shader could not be validated for this GPU: 'shader\\EffectParticle.fxo'", Start},
        {"CreateIndexBuffer", "error KRN_Mesh: StageMesh:  D3DXCreateMeshFVF failed: %s ", Start},
    };
    return rows;
}

// ---- While it plays

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
    explicit Video(KRN_Gfx& gfx) : source(gfx.Parts().videos[2]) {
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

void SetMaterial(WholeProgram& program) {
    D3DMATERIAL9 material = {};
    material.Power = 7;
    program.Gfx().SetMaterial(material);
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
    ~PostRenderEffects() { gfx.ReleasePostRenderEffects(); }
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

}   // namespace

const std::vector<FailingCall>& FailingCalls() {
    using P = WholeProgram;
    static const std::vector<FailingCall> rows = {
        // Life
        {"TestCooperativeLevel", "", [](P& p) { p.Gfx().ResetDevice(nullptr, -1); }},
        {"Reset",
         "error KRN_Gfx: Device Reset failed: %s",
         [](P& p) { p.Gfx().ResetDevice(nullptr, -1); },
         {D3DERR_INVALIDCALL, D3DERR_NOTAVAILABLE, D3DERR_OUTOFVIDEOMEMORY, E_OUTOFMEMORY, D3DERR_DRIVERINTERNALERROR}},
        {"Reset",
         "",
         [](P& p) {
             p.recording.Fail("TestCooperativeLevel", D3DERR_DEVICELOST, 2);   // lost again after the first look
             p.Gfx().ResetDevice(nullptr, -1);
         },
         {D3DERR_DEVICELOST}},
        {"GetRenderTarget", "error KRN_Gfx: Can not retrieve render target: %s",
         [](P& p) { p.Gfx().ResetDevice(nullptr, -1); }},
        {"GetDepthStencilSurface", "error KRN_Gfx: Can not retrieve zbuffer: %s",
         [](P& p) { p.Gfx().ResetDevice(nullptr, -1); }},
        {"GetBackBuffer", "error KRN_Gfx: GetBackBuffer failed: %s", [](P& p) { p.Gfx().ResetDevice(nullptr, -1); }},
        {"Present", "error KRN_Gfx: Present failed! %s", [](P& p) { p.Gfx().PresentFrame(); }, {D3DERR_INVALIDCALL}},
        {"Present",
         "warning KRN_Gfx: Present failed! %s",
         [](P& p) { p.Gfx().PresentFrame(); },
         {D3DERR_DRIVERINTERNALERROR}},
        {"Present", "", [](P& p) { p.Gfx().PresentFrame(); }, {D3DERR_DEVICELOST}},
        {"SetSoftwareVertexProcessing", "error KRN_Gfx: SetSoftwareVertexProcessing failed: %s",
         [](P& p) { p.Gfx().SetSoftwareVertexProcessing(true); }},
        {"GetAdapterDisplayMode", "error KRN_Gfx: GetAdapterDisplayMode() failed: %s",
         [](P& p) {
             D3DDISPLAYMODE mode;
             p.Gfx().GetAdapterDisplayMode(mode);
         }},
        {"EnumAdapterModes", "error KRN_Gfx:  GetAdapterDisplayMode failed: %s",
         [](P& p) {
             D3DDISPLAYMODE mode = {800, 600, 0, D3DFMT_A8R8G8B8};
             p.Gfx().FindDisplayMode(mode);
         }},
        {"CheckDeviceFormat", "warning KRN_Gfx: Texture format 26 mode 1 not supported by device",
         [](P& p) { p.Gfx().CheckTextureFormat(D3DFMT_A4R4G4B4, 3); }},

        // Scene, targets, copies
        {"BeginScene", "error KRN_Gfx: BeginScene failed: %s", [](P& p) { p.Gfx().BeginScene(); }},
        {"EndScene", "error KRN_Gfx: EndScene failed: %s",
         [](P& p) {
             p.Gfx().BeginScene();
             p.Gfx().EndScene();
         }},
        {"Clear", "error KRN_Gfx: Clear failed!", [](P& p) { p.Gfx().Clear(0xFF102030, 1, nullptr); }},
        {"Clear", "error KRN_Gfx: Clear failed!", [](P& p) { p.Gfx().ClearZBuffer(1, nullptr); }},
        {"SetRenderTarget", "error KRN_Gfx: Can not set render target: %s", DrawIntoTarget},
        {"CreateOffscreenPlainSurface", "error KRN_Gfx: CreateOffscreenPlainSurface failed: %s", ReadPixels},
        {"GetRenderTargetData", "error KRN_Gfx: GetRenderTargetData failed: %s", ReadPixels},
        {"GetDesc", "error KRN_Gfx: GetDesc failed: %s", ReadPixels},
        {"GetDesc", "error KRN_Surface: GetDesc failed: %s", ReadPixels, {}, 2},
        {"LockRect", "error KRN_Surface: LockRect failed: %s", ReadPixels},
        {"UnlockRect", "error KRN_Surface: UnlockRect failed: %s", ReadPixels},

        // Post-render effects and screen buffers
        {"CreateTexture", "error KRN_Gfx: InitPostRenderEffects failed - can not create render texture: %s",
         BeginSceneInTexture},
        {"GetSurfaceLevel", "error KRN_Gfx: InitPostRenderEffects failed - can not retrieve target surface: %s",
         BeginSceneInTexture},
        {"CreateRenderTarget",
         "warning KRN_Gfx: InitPostRenderEffects failed - can not create multisample render target: %s",
         InitMultisampled},
        {"SetRenderTarget", "error KRN_Gfx: BeginScene (post effect SetRenderTarget) failed: %s", BeginSceneInTexture},
        {"CreateTexture", "error KRN_Gfx: Could not create screen copy texture: %s", CopyScreen},
        {"GetSurfaceLevel", "error KRN_Gfx: GetSurfaceLevel failed: %s", CopyScreen},
        {"StretchRect", "error KRN_Gfx: StretchRect failed: %s", CopyScreen},
        {"CreateTexture", "error KRN_Gfx: GetScreenBufferTexture failed - can not create texture buffer: %s",
         MakeScreenBuffer},
        {"GetRenderTarget", "error KRN_Gfx: Can not retrieve render target: %s", DrawIntoScreenBuffer},
        {"GetViewport", "error KRN_Gfx: GetViewport failed: %s", DrawIntoScreenBuffer},
        {"SetRenderTarget", "error KRN_Gfx: Can not set render target: %s", DrawIntoScreenBuffer},
        {"SetRenderTarget", "error KRN_Gfx: Can not set render target: %s", DrawIntoScreenBuffer, {}, 2},
        {"DrawPrimitive", "error KRN_Gfx: DrawPrimitive in DrawTriangleList failed: %s", DrawIntoScreenBuffer},

        // States
        {"SetViewport", "warning KRN_Gfx: SetViewPort failed: %s",
         [](P& p) { p.Gfx().SetViewPort(1, 2, 30, 40, 0, 1); }},
        {"SetTransform", "error KRN_Gfx: SetTransform failed: %s", [](P& p) { p.Gfx().SetMirroredProjection(); }},
        {"SetMaterial", "error KRN_Gfx: SetMaterial failed: %s", SetMaterial},
        {"SetLight", "error KRN_Gfx: SetLight failed: %s",
         [](P& p) {
             KRN_Light light;
             light.off = false;
             light.record.Type = D3DLIGHT_POINT;
             p.Gfx().SetLight(3, light, 0, false);
         }},
        {"LightEnable", "error KRN_Gfx:  LightEnable failed: %s", [](P& p) { p.Gfx().SetLightEnable(3, true); }},
        {"SetRenderState", "error KRN_Gfx:  SetRenderState (state 139, value: 9 failed: %s",
         [](P& p) { p.Gfx().SetAmbient(9); }},
        {"SetTextureStageState", "error KRN_Gfx:  SetTextureStageState failed: %s (stage 3, type 1, value 4)",
         [](P& p) { p.Gfx().SetRenderSource(1, 3, 0); }},
        {"SetSamplerState", "error KRN_Gfx:  SetSamplerState failed: %s (stage 3, type 6, value 2)",
         [](P& p) { p.Gfx().SetTextureFilter(3, 3); }},
        {"SetSamplerState", "warning KRN_Gfx: Failed to set texture U-adress mode 3",
         [](P& p) { p.Gfx().SetAddressModeU(D3DTADDRESS_CLAMP, 0); }},
        {"SetSamplerState", "warning KRN_Gfx: Failed to set texture V-adress mode 2",
         [](P& p) { p.Gfx().SetAddressModeV(D3DTADDRESS_MIRROR, 0); }},

        // Textures
        {"CreateTexture", "error KRN_Gfx: CreateTexture failed: %s", FillTexture},
        {"CreateTexture",
         "error KRN_Gfx:  D3DXCreateTextureFromFileA failed: %s (file:textures\\glow.png)",
         LoadManaged,
         {D3DERR_INVALIDCALL, D3DERR_OUTOFVIDEOMEMORY, E_OUTOFMEMORY}},
        {"CreateTexture",
         "error KRN_Gfx:  D3DXCreateTextureFromFileA failed: %s (file:textures\\glow.png)",
         LoadIntoDefaultPool,
         {},
         2},
        {"CreateTexture",
         "error KRN_Gfx:  D3DXCreateTextureFromFileA failed: %s (file:textures\\flame2.png)",
         LoadFrames,
         {D3DERR_INVALIDCALL, D3DERR_OUTOFVIDEOMEMORY, E_OUTOFMEMORY},
         2},
        {"CreateTexture", "error KRN_Gfx: CreateTexture for video source failed: %s ", ShowVideo},
        {"LockRect", "error KRN_Gfx:  D3DXCreateTextureFromFileA failed: %s (file:textures\\glow.png)", LoadManaged},
        {"UnlockRect", "error KRN_Gfx:  D3DXCreateTextureFromFileA failed: %s (file:textures\\glow.png)", LoadManaged},
        {"UpdateTexture", "error KRN_Gfx:  D3DXCreateTextureFromFileA failed: %s (file:textures\\glow.png)",
         LoadIntoDefaultPool},
        {"GetLevelDesc", "error KRN_Gfx:  D3DXCreateTextureFromFileA failed: %s (file:textures\\glow.png)",
         LoadManaged},
        {"GetLevelDesc", "error KRN_Gfx: GetDesc failed: %s", FillTexture},
        {"GetLevelDesc", "error KRN_Texture: GetDesc failed: %s", FillTexture, {}, 2},
        {"GetLevelDesc", "error KRN_Texture: LockRect failed: %s", FillTexture, {}, 3},
        {"GetSurfaceLevel", "error KRN_Texture: GetSurfaceLevel failed: %s", FillTexture},
        {"GetSurfaceLevel", "error KRN_Gfx: GetSurfaceLevel failed: %s", ShowVideo},
        {"GetDesc", "error KRN_Texture: GetDesc failed: %s", FillTexture},
        {"LockRect", "error KRN_Texture: LockRect failed: %s", FillTexture},
        {"UnlockRect", "error KRN_Texture: UnlockRect failed: %s", FillTexture},
        {"ColorFill", "error KRN_Texture: ColorFill failed: %s", CreateTarget},
        {"SetTexture", "error KRN_Gfx: SetTexture failed: %s", DrawQuad},

        // Geometry
        {"CreateVertexBuffer", "error KRN_Gfx: CreateVertexBuffer in CreateVertexList failed: %s", DrawTriangles},
        {"SetStreamSource", "error KRN_Gfx: SetStreamSource in DrawVertexList failed: %s", DrawTriangles},
        {"SetStreamSource", "error KRN_Gfx:  SetStreamSource in DrawLastTexture failed: %s", DrawQuad},
        {"SetStreamSource", "error KRN_Gfx: SetStreamSource failed: %s",
         [](P& p) { p.Gfx().SetStreamSource(p.Gfx().Parts().immediate.point.Buffer(), 16); }},
        {"SetFVF", "error KRN_Gfx: Failed to set flexible vertex format: %s", DrawTriangles},
        {"SetIndices", "error KRN_Gfx: SetIndices failed: %s", [](P& p) { p.Gfx().SetIndices(nullptr); }},
        {"DrawPrimitive", "error KRN_Gfx: DrawPrimitive in DrawTriangleList failed: %s", DrawTriangles},
        {"DrawPrimitive", "error KRN_Gfx:  DrawPrimitive in DrawLastTexture failed: %s", DrawQuad},
        {"Lock", "error KRN_Gfx:  VB Lock failed: %s", DrawQuad},
        {"Unlock", "error KRN_Gfx:  VB Unlock failed: %s", DrawQuad},
        {"Lock", "error KRN_ListBase: *undefined*: Lock failed: %s", DrawText},
        {"Unlock", "error KRN_ListBase: *undefined*: Unlock failed: %s", DrawText},
        {"SetStreamSource", "error KRN_Gfx: SetStreamSource in DrawVertexList failed: %s", DrawText},
        {"DrawPrimitive", "error KRN_Gfx: DrawPrimitive in DrawTriangleList failed: %s", DrawText},

        // Meshes
        {"CreateVertexBuffer", "error KRN_Mesh: *undefined*:  D3DXCreateMeshFVF failed: %s ", MakeMesh},
        {"CreateIndexBuffer", "error KRN_Mesh: *undefined*:  D3DXCreateMeshFVF failed: %s ", MakeMesh},
        {"Lock", "error KRN_Mesh: *undefined*: LockVertexBuffer failed: %s", MakeMesh},
        {"Unlock", "error KRN_Mesh: *undefined*: UnlockVertexBuffer failed: %s", MakeMesh},
        {"Lock", "error KRN_Mesh: *undefined*: LockIndexBuffer failed: %s", MakeMesh, {}, 2},
        {"Unlock", "error KRN_Mesh: *undefined*: UnlockIndexBuffer failed: %s", MakeMesh, {}, 2},
        {"Lock", "error KRN_Mesh: *undefined*: OptimizeInplace failed: %s", MakeMesh, {}, 3},
        {"Unlock", "error KRN_Mesh: *undefined*: OptimizeInplace failed: %s", MakeMesh, {}, 3},
        {"SetFVF", "error KRN_Gfx:  DrawSubset failed: %s", DrawMesh},
        {"SetStreamSource", "error KRN_Gfx:  DrawSubset failed: %s", DrawMesh},
        {"SetIndices", "error KRN_Gfx:  DrawSubset failed: %s", DrawMesh},
        {"DrawIndexedPrimitive", "error KRN_Gfx:  DrawSubset failed: %s", DrawMesh},

        // Shader effects
        {"GetDeviceCaps",
         "warning KRN_Gfx: Shader could not be validated for this GPU: 'tests\\device\\every_state.fx'", LoadEffect},
        {"CreateVertexShader",
         "warning KRN_Gfx: Shader could not be validated for this GPU: 'tests\\device\\every_state.fx'", LoadEffect},
        {"CreatePixelShader",
         "warning KRN_Gfx: Shader could not be validated for this GPU: 'tests\\device\\every_state.fx'", LoadEffect},
        {"GetRenderState", "error KRN_ShaderEffect: Begin failed: %s", RunEffect},
        {"GetTextureStageState", "error KRN_ShaderEffect: Begin failed: %s", RunEffect},
        {"GetSamplerState", "error KRN_ShaderEffect: Begin failed: %s", RunEffect},
        {"GetTexture", "error KRN_ShaderEffect: Begin failed: %s", RunEffect},
        {"GetTransform", "error KRN_ShaderEffect: Begin failed: %s", RunEffect},
        {"GetMaterial", "error KRN_ShaderEffect: Begin failed: %s", RunEffect},
        {"GetVertexShader", "error KRN_ShaderEffect: Begin failed: %s", RunEffect},
        {"GetPixelShader", "error KRN_ShaderEffect: Begin failed: %s", RunEffect},
        {"SetRenderState", "error KRN_ShaderEffect: BeginPass failed: %s", RunEffect},
        {"SetTextureStageState", "error KRN_ShaderEffect: BeginPass failed: %s", RunEffect},
        {"SetSamplerState", "error KRN_ShaderEffect: BeginPass failed: %s", RunEffect},
        {"SetTexture", "error KRN_ShaderEffect: BeginPass failed: %s", RunEffect},
        {"SetTransform", "error KRN_ShaderEffect: BeginPass failed: %s", RunEffect},
        {"SetLight", "error KRN_ShaderEffect: BeginPass failed: %s", RunEffect},
        {"LightEnable", "error KRN_ShaderEffect: BeginPass failed: %s", RunEffect},
        {"SetMaterial", "error KRN_ShaderEffect: BeginPass failed: %s", RunEffect},
        {"SetVertexShader", "error KRN_ShaderEffect: BeginPass failed: %s", RunEffect},
        {"SetVertexShaderGlobals", "error KRN_ShaderEffect: BeginPass failed: %s", RunEffect},
        {"SetPixelShader", "error KRN_ShaderEffect: BeginPass failed: %s", RunEffect},
        {"SetPixelShaderGlobals", "error KRN_ShaderEffect: BeginPass failed: %s", RunEffect},
        {"SetRenderState", "error KRN_ShaderEffect: End failed: %s", RunEffect, {}, 2},
        {"SetTextureStageState", "error KRN_ShaderEffect: End failed: %s", RunEffect, {}, 2},
        {"SetSamplerState", "error KRN_ShaderEffect: End failed: %s", RunEffect, {}, 2},
        {"SetTexture", "error KRN_ShaderEffect: End failed: %s", RunEffect, {}, 2},
        {"SetTransform", "error KRN_ShaderEffect: End failed: %s", RunEffect, {}, 2},
        {"LightEnable", "error KRN_ShaderEffect: End failed: %s", RunEffect, {}, 2},
        {"SetMaterial", "error KRN_ShaderEffect: End failed: %s", RunEffect, {}, 2},
        {"SetVertexShader", "error KRN_ShaderEffect: End failed: %s", RunEffect, {}, 2},
        {"SetPixelShader", "error KRN_ShaderEffect: End failed: %s", RunEffect, {}, 2},
    };
    return rows;
}

}   // namespace sparkrig
