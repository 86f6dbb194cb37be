// Post-render effects, the copy of the screen, screen buffers, and the passes that draw into them.
#include "gfx/shaders/screen_buffers.h"

#include "gfx/device/surface_registry.h"
#include "gfx/gfx.h"
#include "gfx/shaders/shader_effect_passes.h"
#include "tests/support/recorded_gfx.h"
#include "tests/support/temporary_folder.h"

namespace sparkrig {
namespace {

using ::testing::_;

constexpr const char* kReadsCopy = "texture t : SCREENCOPY; technique { pass { Texture[3] = <t>; } }";

class ScreenBufferTest : public TemporaryFolder {
  protected:
    ScreenBufferTest() {
        gfx_->CreateVertexList(&square_, 4, 0, false);
        gfx_.recording.ForgetCalls();
    }
    void Load(KRN_ShaderEffect& effect, const std::string& text) {
        const std::string name = "t" + std::to_string(++files_) + ".fx";
        WriteFile(name, text);
        gfx_->LoadShaderEffect(effect, name.c_str(), true, 0, true);
    }
    /// An effect with a pass for each annotation list.
    void LoadPasses(KRN_ShaderEffect& effect, const std::vector<std::string>& annotations) {
        std::string text = "technique {";
        for (const std::string& list : annotations) text += " pass < " + list + " > { }";
        Load(effect, text + " }");
    }
    /// A scene that ends whatever happens in it.
    struct Scene {
        explicit Scene(RecordedGfx& gfx) : device(*gfx->Device()) { device.BeginScene(); }
        ~Scene() { device.EndScene(); }
        IDirect3DDevice9& device;
    };
    void DrawWith(KRN_ShaderEffect& effect) {
        const Scene scene(gfx_);
        gfx_->SetShaderEffect(&effect);
        gfx_->DrawTriangleList(square_, 0, -1);
        gfx_->SetShaderEffect(nullptr);
    }
    /// The size of the render target, which tells the back buffer, full and quarter buffers apart.
    UINT TargetWidth() {
        DevicePtr<IDirect3DSurface9> target;
        D3DSURFACE_DESC desc = {};
        gfx_->Device()->GetRenderTarget(0, target.Receive());
        target->GetDesc(&desc);
        return desc.Width;
    }
    D3DVIEWPORT9 DeviceView() {
        D3DVIEWPORT9 view = {};
        gfx_->Device()->GetViewport(&view);
        return view;
    }
    bool TargetIs(IDirect3DSurface9* surface) {
        DevicePtr<IDirect3DSurface9> target;
        gfx_->Device()->GetRenderTarget(0, target.Receive());
        return target.Get() == surface;
    }
    bool TargetIsBackBuffer() {
        DevicePtr<IDirect3DSurface9> back_buffer;
        gfx_->Device()->GetBackBuffer(0, 0, 0, back_buffer.Receive());
        return TargetIs(back_buffer.Get());
    }
    bool TargetIsScene() {
        DevicePtr<IDirect3DSurface9> scene;
        gfx_->SceneTexture()->GetSurfaceLevel(0, scene.Receive());
        D3DSURFACE_DESC desc = {};
        scene->GetDesc(&desc);
        return !TargetIsBackBuffer() && TargetWidth() == desc.Width;
    }
    std::vector<std::vector<DWORD>> ArgumentsOf(const char* method) const { return gfx_.recording.ArgumentsOf(method); }

    RecordedGfx gfx_;
    KRN_VertexListTemp<KRN_VertexPosTex> square_{PrimitiveMode::TriangleStrip};

  private:
    int files_ = 0;
};

// ---- Post-render effects

TEST_F(ScreenBufferTest, TheSceneHasATargetOfItsOwn) {
    const D3DVIEWPORT9 view = {10, 20, 300, 200, 0, 1};
    gfx_->SetViewPort(10, 20, 310, 220, 0, 1);
    EXPECT_EQ(gfx_->SceneTexture(), nullptr);
    gfx_->InitPostRenderEffects();
    gfx_->InitPostRenderEffects();   // on already
    EXPECT_THAT(ArgumentsOf("CreateTexture"),
                ElementsAre(ElementsAre(640, 480, 1, D3DUSAGE_RENDERTARGET, D3DFMT_A8R8G8B8, D3DPOOL_DEFAULT)));
    EXPECT_TRUE(TargetIsBackBuffer());
    gfx_->BeginScene();
    EXPECT_TRUE(TargetIsScene());
    EXPECT_EQ(DeviceView(), view);
    gfx_->EndScene();
    EXPECT_TRUE(TargetIsBackBuffer());
    EXPECT_EQ(DeviceView(), view);

    gfx_->BeginScene();
    gfx_->ReleasePostRenderEffects();   // in the middle: the rest goes to the screen
    EXPECT_TRUE(TargetIsBackBuffer());
    gfx_->EndScene();
    EXPECT_EQ(gfx_->SceneTexture(), nullptr);
}

TEST_F(ScreenBufferTest, AMultisampleTargetIsResolvedOnDemandWhereThereIsOne) {
    const Reports reports;
    gfx_->SetMultisampleTarget(true);
    gfx_->InitPostRenderEffects();
    EXPECT_THAT(ArgumentsOf("CreateRenderTarget"),
                ElementsAre(ElementsAre(640, 480, D3DFMT_A8R8G8B8, D3DMULTISAMPLE_4_SAMPLES, 0, FALSE)));
    EXPECT_NE(gfx_->SceneTexture(), nullptr);
    EXPECT_EQ(gfx_.recording.Count("StretchRect"), 1);
    gfx_.recording.Fail("CreateRenderTarget", D3DERR_NOTAVAILABLE);
    gfx_->ResetDevice(nullptr, -1);
    EXPECT_EQ(reports.Last(),
              "warning KRN_Gfx: InitPostRenderEffects failed - can not create multisample render target: "
              "D3DERR_NOTAVAILABLE");
    EXPECT_FALSE(gfx_->MultisampleTarget());
    EXPECT_NE(gfx_->SceneTexture(), nullptr);
    EXPECT_EQ(gfx_.recording.Count("StretchRect"), 1);
}

TEST_F(ScreenBufferTest, TheSceneStandsForTheScreenCopyOnItsWayToTheScreen) {
    KRN_ShaderEffect effect, other, none;
    Load(effect, kReadsCopy);
    Load(other, kReadsCopy);
    EXPECT_FALSE(gfx_->DrawScene(effect));
    gfx_->InitPostRenderEffects();
    EXPECT_FALSE(gfx_->DrawScene(none));
    gfx_->SetShaderEffect(&other);
    gfx_->SetCullingMode(1);
    gfx_->SetBlendingMode(3, 255, 0);
    gfx_->SetAlphaTest(7, 99);
    for (const bool fails : {false, true}) {
        gfx_.recording.ForgetCalls();
        if (fails) gfx_.recording.Fail("DrawPrimitive", E_FAIL);
        EXPECT_EQ(ErrorOf([&] { EXPECT_TRUE(gfx_->DrawScene(effect)); }),
                  fails ? "KRN_Gfx: DrawPrimitive in DrawTriangleList failed: E_FAIL" : "no error");
        EXPECT_EQ(gfx_.recording.Count("StretchRect"), 0);
        EXPECT_THAT(gfx_.recording.Methods({"BeginScene", "EndScene"}), ElementsAre("BeginScene", "EndScene"));
        EXPECT_THAT(gfx_.recording.Sent(D3DRS_ALPHABLENDENABLE), ElementsAre(0u, 1u));
        EXPECT_THAT(gfx_.recording.Sent(D3DRS_ALPHATESTENABLE), ElementsAre(0u, 7u));
        EXPECT_THAT(gfx_.recording.Sent(D3DRS_CULLMODE), ElementsAre(D3DCULL_NONE, D3DCULL_CW));
        EXPECT_THAT(gfx_.recording.Sent(D3DRS_ZENABLE), ElementsAre(0u, 1u));
        EXPECT_EQ(gfx_->EffectForDraw(), &other);
    }
}

// ---- The copy of the screen, and buffers

TEST_F(ScreenBufferTest, TheCopyIsMadeAgainOnlyForAnotherSize) {
    const UINT before = gfx_->CreatedTextures();
    IDirect3DTexture9* whole = gfx_->GetScreenCopy(false);
    EXPECT_EQ(gfx_->GetScreenCopy(true), whole);   // the viewport is the whole target
    gfx_->SetViewPort(40, 30, 140, 80, 0, 1);
    gfx_->GetScreenCopy(true);
    gfx_->SetViewPort(0, 0, 100, 50, 0, 1);
    gfx_->GetScreenCopy(true);
    EXPECT_THAT(ArgumentsOf("CreateTexture"),
                ElementsAre(ElementsAre(640, 480, 1, D3DUSAGE_RENDERTARGET, D3DFMT_X8R8G8B8, D3DPOOL_DEFAULT),
                            ElementsAre(100, 50, 1, D3DUSAGE_RENDERTARGET, D3DFMT_X8R8G8B8, D3DPOOL_DEFAULT)));
    EXPECT_EQ(gfx_.recording.Count("StretchRect"), 4);
    EXPECT_EQ(gfx_->CreatedTextures() - before, 2u);
}

TEST_F(ScreenBufferTest, OneCopyServesAFrameWithTheFrameCache) {
    KRN_ShaderEffect first, second;
    Load(first, kReadsCopy);
    Load(second, kReadsCopy);
    const auto copies = [&] {
        gfx_.recording.ForgetCalls();
        DrawWith(first);
        DrawWith(second);
        return gfx_.recording.Count("StretchRect");
    };
    EXPECT_EQ(copies(), 2);
    gfx_->PresentFrame();
    gfx_->SetFrameCache(true);
    EXPECT_EQ(copies(), 1);
    EXPECT_EQ(copies(), 0);
    gfx_->PresentFrame();
    EXPECT_EQ(copies(), 1);
    gfx_.ResizeWindow(300, 200);
    gfx_->PresentFrame();   // resets instead: the copy of this frame is gone
    EXPECT_EQ(copies(), 1);
}

TEST_F(ScreenBufferTest, BuffersAreMadeOnFirstUse) {
    gfx_.ResizeWindow(300, 202);
    gfx_->PresentFrame();
    gfx_.recording.ForgetCalls();
    constexpr std::tuple<int, int, UINT, UINT> kRows[] = {
        {1, 0, 75, 50}, {1, 2, 75, 50}, {2, 0, 300, 202}, {2, 1, 300, 202}};
    std::set<IDirect3DTexture9*> textures;
    for (const auto& [kind, index, width, height] : kRows) {
        gfx_.recording.ForgetCalls();
        IDirect3DTexture9* texture = gfx_->GetScreenBufferTexture(kind, index);
        EXPECT_TRUE(textures.insert(texture).second);
        EXPECT_EQ(gfx_->GetScreenBufferTexture(kind, index), texture);
        EXPECT_THAT(ArgumentsOf("CreateTexture"), ElementsAre(ElementsAre(width, height, 1, D3DUSAGE_RENDERTARGET,
                                                                          D3DFMT_A8R8G8B8, D3DPOOL_DEFAULT)));
    }
    constexpr int kNone[][2] = {{0, 0}, {1, 3}, {2, 2}, {3, 0}, {2, -1}};
    for (const auto& [kind, index] : kNone) {
        EXPECT_EQ(ErrorOf([&, k = kind, i = index] { gfx_->GetScreenBufferTexture(k, i); }),
                  "KRN_Gfx: GetScreenBufferTexture failed - can not create texture buffer: D3DERR_INVALIDCALL");
    }
}

// ---- Passes

TEST_F(ScreenBufferTest, AnnotationsNameThePassesTargets) {
    const std::tuple<const char*, TargetKind, int, bool> rows[] = {
        {"string RenderTarget = \"ScreenBuffer1\";", TargetKind::FullBuffer, 0, false},
        {"string RenderTarget = \"ScreenBuffer2\"; int InitPass = 1;", TargetKind::FullBuffer, 1, true},
        {"string RenderTarget = \"ScreenBuffer1.6\"; int InitPass = 0;", TargetKind::FullBuffer, 1, false},
        {"string RenderTarget = \"ScreenBuffer0\";", TargetKind::None, 0, false},
        {"string RenderTarget = \"ScreenBuffer\";", TargetKind::None, 0, false},
        {"string RenderTarget = \"ScreenQuarterBuffer3\";", TargetKind::QuarterBuffer, 2, false},
        {"string RenderTarget = \"Initial\";", TargetKind::Initial, 0, false},
        {"string RenderTarget = \"Initially\";", TargetKind::None, 0, false},
        {"int RenderTarget = 1; int InitPass = -3;", TargetKind::None, 0, true},
        {"", TargetKind::None, 0, false},
    };
    KRN_ShaderEffect effect;
    for (const auto& [annotations, kind, index, init] : rows) {
        LoadPasses(effect, {"", annotations});
        const auto techniques = ReadPassTargets(*gfx_, *effect.Effect());
        ASSERT_EQ(techniques.size(), 1u);
        const PassTarget& pass = techniques[0].passes.at(1);
        EXPECT_EQ(pass.kind, kind) << annotations;
        EXPECT_EQ(pass.index, index) << annotations;
        EXPECT_EQ(pass.init_pass, init) << annotations;
    }
    const std::tuple<const char*, int> too_many[] = {
        {"ScreenBuffer3", 2}, {"ScreenBuffer9e9", 2}, {"ScreenQuarterBuffer4", 3}};
    for (const auto& [name, limit] : too_many) {
        const std::string target = std::string("string RenderTarget = \"") + name + "\";";
        EXPECT_EQ(ErrorOf([&] { LoadPasses(effect, {target}); }),
                  "KRN_Gfx: Not more than " + std::to_string(limit) + " ScreenBuffer supported");
        EXPECT_FALSE(effect.IsValid());
    }
}

TEST_F(ScreenBufferTest, EffectsTellWherePixelShadersAre) {
    KRN_ShaderEffect effect, fixed;
    Load(effect,
         "float4 V(float4 p : POSITION) : POSITION { return p; } float4 P() : COLOR { return 1; }"
         "technique { pass { VertexShader = compile vs_2_0 V(); PixelShader = NULL; }"
         "pass { VertexShader = compile vs_2_0 V(); PixelShader = compile ps_2_0 P(); } }");
    EXPECT_FALSE(fixed.TechniqueHasPixelShader());
    LoadPasses(fixed, {""});
    EXPECT_TRUE(effect.TechniqueHasPixelShader());
    EXPECT_FALSE(effect.PassHasPixelShader(0));
    EXPECT_TRUE(effect.PassHasPixelShader(1));
    EXPECT_FALSE(fixed.TechniqueHasPixelShader());
    EXPECT_FALSE(fixed.PassHasPixelShader(0));
}

TEST_F(ScreenBufferTest, InitPassesAreDrawnWhileTheBuffersAreNew) {
    KRN_ShaderEffect effect;
    LoadPasses(effect, {"int InitPass = 1; string RenderTarget = \"ScreenBuffer1\";", ""});
    const auto draws = [&] {
        gfx_.recording.ForgetCalls();
        DrawWith(effect);
        return gfx_.recording.Draws().size();
    };
    gfx_.recording.Fail("DrawPrimitive", E_FAIL, 2);
    EXPECT_NE(ErrorOf(draws), "no error");
    EXPECT_EQ(draws(), 2u) << "the first drawing did not end";
    EXPECT_EQ(draws(), 1u);
    gfx_->ResetDevice(nullptr, -1);
    EXPECT_EQ(draws(), 2u);
    EXPECT_EQ(draws(), 1u);
}

TEST_F(ScreenBufferTest, NestedPassesPutBackWhatTheyFound) {
    KRN_ShaderEffect outer, first, inner;
    LoadPasses(outer, {"string RenderTarget = \"ScreenBuffer1\";"});
    LoadPasses(first, {"string RenderTarget = \"ScreenQuarterBuffer1\";", "string RenderTarget = \"Initial\";", ""});
    gfx_->LoadShaderEffect(inner, "t2.fx", true, 0, true);   // shared
    const D3DVIEWPORT9 view = {10, 20, 300, 200, 0, 1};
    gfx_->SetViewPort(10, 20, 310, 220, 0, 1);
    const BegunEffect around(outer);
    outer.BeginPass(0);
    EXPECT_EQ(DeviceView().Width, 640u);
    DevicePtr<IDirect3DSurface9> buffer;
    gfx_->Device()->GetRenderTarget(0, buffer.Receive());
    EXPECT_EQ(gfx_->EffectForDraw(), &outer);
    const BegunEffect begun(inner);
    inner.BeginPass(0);
    EXPECT_EQ(TargetWidth(), 160u);
    EXPECT_EQ(DeviceView().Width, 160u);
    gfx_->SetViewPort(10, 20, 110, 120, 0, 1);
    gfx_->SetViewPort(10, 20, 310, 220, 0, 1);   // fits into no quarter buffer: a warning
    EXPECT_EQ(gfx_->EffectForDraw(), &inner);
    inner.EndPass();
    EXPECT_TRUE(TargetIs(buffer.Get()));
    inner.BeginPass(1);
    EXPECT_TRUE(TargetIsBackBuffer());
    EXPECT_EQ(gfx_->EffectForDraw(), nullptr);
    EXPECT_EQ(DeviceView(), view);
    inner.EndPass();
    inner.BeginPass(2);
    EXPECT_TRUE(TargetIs(buffer.Get()));
    EXPECT_EQ(gfx_->EffectForDraw(), &outer);
    inner.EndPass();
    inner.End();

    gfx_->InitPostRenderEffects();
    gfx_->BeginScene();
    EXPECT_TRUE(TargetIsScene());
    gfx_->EndScene();
    EXPECT_TRUE(TargetIs(buffer.Get())) << "a scene inside a pass ends in the pass's buffer";
    outer.EndPass();
    outer.End();
    EXPECT_TRUE(TargetIsBackBuffer());
    EXPECT_EQ(gfx_->EffectForDraw(), nullptr);
    EXPECT_EQ(DeviceView(), view);
    EXPECT_EQ(gfx_->Viewport(), view);
}

TEST_F(ScreenBufferTest, AResetInsideAPassForgetsThePass) {
    KRN_ShaderEffect effect;
    LoadPasses(effect, {"string RenderTarget = \"ScreenBuffer1\";"});
    {
        const BegunEffect begun(effect);
        effect.BeginPass(0);
        EXPECT_EQ(gfx_->ResetDevice(nullptr, -1), 1);
        EXPECT_FALSE(effect.InPass());
    }
    EXPECT_TRUE(TargetIsBackBuffer());
    EXPECT_EQ(gfx_->EffectForDraw(), nullptr);
    effect.Begin();
    effect.BeginPass(0);
    effect.Release();   // what is begun ends with the effect
    EXPECT_TRUE(TargetIsBackBuffer());
}

// ---- The registry of surfaces

TEST_F(ScreenBufferTest, RegisteredSurfacesOfTheDefaultPoolGoBeforeAReset) {
    SurfaceRegistry surfaces(*gfx_);
    DevicePtr<IDirect3DSurface9> target, plain;
    gfx_->Device()->CreateRenderTarget(8, 4, D3DFMT_A8R8G8B8, 0, 0, FALSE, target.Receive());
    gfx_->Device()->CreateOffscreenPlainSurface(8, 4, D3DFMT_A8R8G8B8, D3DPOOL_SYSTEMMEM, plain.Receive());
    const int first = surfaces.Add(std::move(target)), second = surfaces.Add(plain);
    surfaces.ReleaseDefaultPool();
    EXPECT_EQ(surfaces.Get(first), nullptr);
    EXPECT_EQ(surfaces.Get(second), plain.Get());
    EXPECT_NE(surfaces.Add(plain), first) << "a cleared slot is its owner's still";
    surfaces.Remove(first);
    EXPECT_EQ(surfaces.Add(plain), first);
    surfaces.Remove(-1);
    EXPECT_EQ(surfaces.Get(-1), nullptr);
}

}   // namespace
}   // namespace sparkrig
