#include "gfx/shaders/shader_effect.h"

#include <bit>
#include <cmath>
#include <filesystem>

#include "gfx/gfx.h"
#include "gfx/shaders/shader_effect_choice.h"
#include "gfx/shaders/shader_effect_search_list.h"
#include "gfx/textures/texture.h"
#include "gfx/textures/texture_catalogue.h"
#include "scene/light.h"
#include "tests/support/matrices.h"
#include "tests/support/recorded_gfx.h"
#include "tests/support/temporary_folder.h"

namespace sparkrig {
namespace {

constexpr const char* kVertexFunction = "float4 V(float4 p : POSITION) : POSITION { return USE; }\n";
constexpr const char* kOneTechnique = "technique { pass { VertexShader = compile vs_1_1 V(); } }\n";

class ShaderEffectTest : public TemporaryFolder {
  protected:
    bool Load(KRN_ShaderEffect& effect, const std::string& text) {
        WriteFile("t.fx", text);
        return gfx_->LoadShaderEffect(effect, "t.fx", true, 0, true);
    }
    void LoadText(const std::string& text) { ASSERT_TRUE(Load(effect_, text)); }

    float FloatOf(const char* semantic) {
        float value = -1;
        effect_.Effect()->GetFloat(effect_.ParameterBySemantic(semantic), &value);
        return value;
    }
    D3DXVECTOR4 VectorOf(const char* semantic) {
        D3DXVECTOR4 value;
        effect_.Effect()->GetVector(effect_.ParameterBySemantic(semantic), &value);
        return value;
    }
    /// Does it in the first pass.
    template <class Action>
    void InPass(Action action) {
        effect_.Begin();
        effect_.BeginPass(0);
        action();
        effect_.EndPass();
        effect_.End();
    }
    /// The block of globals that the first pass sends, as floats.
    std::vector<float> SentGlobals() {
        InPass([] {});
        std::vector<float> values;
        const auto blocks = gfx_.recording.ArgumentsOf("SetVertexShaderGlobals");
        for (const DWORD word : blocks.back()) values.push_back(std::bit_cast<float>(word));
        return values;
    }

    /// Directional ones in slots 1, 4 and 6; all eight are on but slot 2.
    void SetLights() {
        for (int i = 0; i < 8; ++i) {
            const float number = static_cast<float>(i);
            KRN_Light node;
            node.off = false;
            D3DLIGHT9& light = node.record;
            light.Type = i == 1 || i == 4 || i == 6 ? D3DLIGHT_DIRECTIONAL : i == 3 ? D3DLIGHT_SPOT : D3DLIGHT_POINT;
            node.SetEye(number, 20, 30, false);
            node.SetViewDirection(number, -2, -3, false);
            light.Diffuse = {number, 0.5f, 0.25f, 1};
            light.Ambient = {0.125f, 0, 0.25f, 1};
            light.Specular = {0.75f, number, 0, 1};
            light.Attenuation0 = number;
            light.Attenuation2 = 9;
            gfx_->SetLight(i, node, 0, false);
            gfx_->SetLightEnable(i, i != 2);
        }
    }

    RecordedGfx gfx_;
    KRN_ShaderEffect effect_;
};

TEST_F(ShaderEffectTest, ASecondLoadSharesWithoutCompiling) {
    WriteFile("a.fx", std::string("#define USE p\n") + kVertexFunction + kOneTechnique);
    KRN_ShaderEffect first, second, third;
    ASSERT_TRUE(gfx_->LoadShaderEffect(first, "a.fx", true, 0, true));
    ASSERT_TRUE(gfx_->LoadShaderEffect(second, ".\\A.FX", true, 0, true));   // the same file
    EXPECT_EQ(gfx_.recording.Count("CreateVertexShader"), 1);
    EXPECT_EQ(first.Effect(), second.Effect());
    EXPECT_TRUE(second.IsValid());

    first.Release();
    EXPECT_FALSE(first.IsValid());
    EXPECT_EQ(first.Effect(), nullptr);
    EXPECT_TRUE(second.IsValid());
    std::filesystem::last_write_time("a.fx", std::filesystem::last_write_time("a.fx") + std::chrono::milliseconds(3));
    ASSERT_TRUE(gfx_->LoadShaderEffect(third, "a.fx", true, 0, true));   // changed on disk: another one
    EXPECT_NE(third.Effect(), second.Effect());
    gfx_->SetShaderSharing(false);
    ASSERT_TRUE(gfx_->LoadShaderEffect(second, "a.fx", true, 0, true));
    EXPECT_NE(third.Effect(), second.Effect());
}

TEST_F(ShaderEffectTest, MissingFilesAreReportedAsAsked) {
    const Reports reports;
    EXPECT_FALSE(gfx_->LoadShaderEffect(effect_, "none.fx", false, 0, true));
    EXPECT_EQ(reports.Last(), "warning KRN_Gfx: Shader effect file 'none.fx' not found");
    EXPECT_EQ(ErrorOf([&] { gfx_->LoadShaderEffect(effect_, "none.fx", true, 0, true); }),
              "KRN_Gfx: Shader effect file 'none.fx' not found");
    gfx_->LoadShaderEffect(effect_, "/none.fx", false, 0, true);
    EXPECT_THAT(reports.All(), testing::Contains("warning ErrorClassSimple: Absolute file path: '/none.fx'"));
    EXPECT_FALSE(effect_.IsValid());
}

TEST_F(ShaderEffectTest, WithoutAFileNothingIsFilledOrDrawn) {
    gfx_->LoadShaderEffect(effect_, "none.fx", false, 0, true);
    gfx_.recording.ForgetCalls();
    effect_.ApplyFrameSemantics();
    effect_.ApplyObjectSemantics(1, {});
    effect_.ApplyLightSemantics();
    effect_.ApplyMaterialSemantics();
    EXPECT_EQ(effect_.Begin(), 0);
    EXPECT_FALSE(effect_.BeginPass(0));
    EXPECT_FALSE(effect_.InPass());
    effect_.RepeatPass();
    effect_.EndPass();
    effect_.End();
    effect_.Abandon();
    EXPECT_THAT(gfx_.recording.Calls(), IsEmpty());
}

TEST_F(ShaderEffectTest, CompileFailuresCarryTheCompilersText) {
    WriteFile("bad.fx", "\nfloat4 a = ;");
    EXPECT_THAT(
        ErrorOf([&] { gfx_->LoadShaderEffect(effect_, "bad.fx", true, 0, true); }),
        StartsWith(
            "KRN_Gfx: Could not compile effect from file 'bad.fx': 'D3DXERR_INVALIDDATA'\n\nbad.fx(2): error X"));
    RecordedGfx without_device(RecordedGfx::State::Constructed);
    EXPECT_EQ(ErrorOf([&] { without_device->LoadShaderEffect(effect_, "bad.fx", true, 0, true); }),
              "KRN_Gfx: Could not compile effect from file 'bad.fx': 'D3DERR_INVALIDCALL'");
}

TEST_F(ShaderEffectTest, TheFirstTechniqueThatValidatesIsChosen) {
    const std::string bad = "technique { pass { VertexShader = compile vs_4_0 V(); } }\n";
    const std::string start = std::string("#define USE p\n") + kVertexFunction;
    const std::tuple<std::string, int, bool> rows[] = {
        {bad + kOneTechnique + kOneTechnique, 1, true}, {bad + bad + bad, 2, false}, {"", -1, false}};
    for (const auto& [techniques, chosen, valid] : rows) {
        const Reports reports;
        KRN_ShaderEffect effect;
        EXPECT_TRUE(Load(effect, start + techniques));
        EXPECT_EQ(effect.Technique(), chosen);
        EXPECT_EQ(effect.IsValid(), valid);
        EXPECT_EQ(effect.SelectTechnique(), valid);   // the chosen one, checked again
        EXPECT_EQ(reports.Last(), valid ? "" : "warning KRN_Gfx: Shader could not be validated for this GPU: 't.fx'");
        std::filesystem::remove("t.fx");
        gfx_->SetShaderEffect(&effect);
        EXPECT_EQ(gfx_->EffectForDraw(), valid ? &effect : nullptr);
        gfx_->SetShaderEffect(nullptr);
    }
}

TEST_F(ShaderEffectTest, OwnTextureCoordinatesAreSetForSixStages) {
    LoadText("technique { pass { } }");
    effect_.SetOwnTextureCoordinates(true);
    gfx_.recording.ForgetCalls();
    EXPECT_TRUE(effect_.SelectTechnique());
    for (DWORD stage = 0; stage < 8; ++stage)
        EXPECT_EQ(gfx_.recording.Sent(stage, D3DTSS_TEXCOORDINDEX),
                  stage < 6 ? std::vector<DWORD>{stage} : std::vector<DWORD>());
}

constexpr D3DXMATRIX kWorld = {{{2, 0, 0, 0}, {0, 0, 4, 0}, {0, -1, 0, 0}, {5, 6, 7, 1}}};
constexpr D3DXMATRIX kView = {{{0, 1, 0, 0}, {-1, 0, 0, 0}, {0, 0, 1, 0}, {3, -2, 8, 1}}};
constexpr D3DXMATRIX kProjection = {{{1.5f, 0, 0, 0}, {0, 2, 0, 0}, {0, 0, 1.25f, 1}, {0, 0, -3, 0}}};

TEST_F(ShaderEffectTest, MatricesAreFilledBySemantic) {
    // Rows 0 to 2 inverted and transposed by hand: scale 2, and the axes y and z exchanged by 4 and -1.
    constexpr D3DXMATRIX kInverseTranspose = {{{0.5f, 0, 0, 0}, {0, 0, 0.25f, 0}, {0, -1, 0, 0}, {0, 0, 0, 1}}};
    constexpr D3DXMATRIX kViewInverse = {{{0, -1, 0, 0}, {1, 0, 0, 0}, {0, 0, 1, 0}, {2, 3, -8, 1}}};
    const std::tuple<const char*, D3DMATRIX> rows[] = {{"WorldViewProjection", kWorld * kView * kProjection},
                                                       {"WORLDVIEW", kWorld * kView},
                                                       {"world", kWorld},
                                                       {"WorldInverseTranspose", kInverseTranspose},
                                                       {"View", kView},
                                                       {"ViewInverse", kViewInverse},
                                                       {"Projection", kProjection},
                                                       {"ViewProjection", kView * kProjection}};
    gfx_->SetTransform(D3DTS_WORLD, kWorld);
    gfx_->SetTransform(D3DTS_VIEW, kView);
    gfx_->SetTransform(D3DTS_PROJECTION, kProjection);
    std::string text, sum = "0";
    for (const auto& [semantic, value] : rows) {
        text += std::string("float4x4 M") + semantic + " : " + semantic + ";\n";
        sum += std::string(" + mul(p, M") + semantic + ")";
    }
    LoadText("#define USE " + sum + "\n" + text + kVertexFunction + kOneTechnique);
    effect_.ApplyFrameSemantics();
    const std::vector<float> sent = SentGlobals();
    ASSERT_EQ(sent.size(), 16 * std::size(rows));
    for (std::size_t i = 0; i < sent.size(); ++i) {
        const auto& [semantic, value] = rows[i / 16];
        EXPECT_NEAR(sent[i], value.m[i % 16 / 4][i % 4], 1e-5f) << semantic << " element " << i % 16;
    }
}

TEST_F(ShaderEffectTest, TimesFogAndViewportAreFilled) {
    LoadText(
        "float a : TIME; float b : GAMETIME; float c : ELAPSEDTIME; float d : RANDOM;"
        "float4 e : FOGSTARTEND; float4 f : InvViewPortDim; float4 g : VIEWPOSITION;"
        "technique { pass { } }");
    FogSettings fog;
    fog.start = 2.5f;
    fog.end = 30;
    gfx_->SetFog(fog);
    gfx_->SetViewPort(0, 0, 200, 50, 0, 1);
    gfx_->SetTransform(D3DTS_VIEW, kView);
    FakeEnvironment::now += 12.5;
    effect_.ApplyFrameSemantics();
    EXPECT_EQ(FloatOf("time"), 12.5f);
    EXPECT_EQ(FloatOf("gametime"), 12.5f);
    EXPECT_EQ(FloatOf("elapsedtime"), 0.0f);   // no frame was presented yet
    EXPECT_EQ(VectorOf("fogstartend"), (D3DXVECTOR4{2.5f, 30, 0, 0}));
    EXPECT_EQ(VectorOf("invviewportdim"), (D3DXVECTOR4{1 / 200.0f, 1 / 50.0f, 0, 0}));
    EXPECT_EQ(VectorOf("viewposition"), (D3DXVECTOR4{2, 3, -8, 1}));
    const float random = FloatOf("random");
    EXPECT_TRUE(random >= 0 && random <= 1);

    gfx_->SetGameTimeSource([] { return 77.5f; });
    gfx_->SetFrameCache(true);
    effect_.ApplyFrameSemantics();
    EXPECT_EQ(FloatOf("gametime"), 12.5f);   // filled in this frame already
    gfx_->PresentFrame();
    effect_.ApplyFrameSemantics();
    EXPECT_EQ(FloatOf("gametime"), 77.5f);
    EXPECT_NE(FloatOf("random"), random);
}

TEST_F(ShaderEffectTest, LightsAreScannedInSlotOrder) {
    LoadText(
        "int a : NumDirectionalLights; int b : NumOmniLights; float4 c : AmbientColor;"
        "float4 d[6] : OmniLightPosition; float4 e[2] : DirectionalLightDirection;"
        "float4 f[6] : OmniLightAttenuation; float4 g[2] : DirectionalLightDiffCol;"
        "float4 h[2] : DirectionalLightSpecCol; float4 k[6] : OmniLightDiffCol;"
        "float4 l[6] : OmniLightSpecCol; float4 m[6] : OmniLightAmbiCol;\n"
        "#define USE d[0] + e[0] + f[0] + g[0] + h[0] + k[0] + l[0] + m[0]\n" +
        std::string(kVertexFunction) + kOneTechnique);
    SetLights();
    gfx_->SetAmbient(0x00330066);
    effect_.ApplyLightSemantics();
    EXPECT_EQ(FloatOf("NumDirectionalLights"), 2.0f);
    EXPECT_EQ(FloatOf("NumOmniLights"), 4.0f);
    const D3DXVECTOR4 ambient = VectorOf("AmbientColor");   // the third directional light adds nothing
    EXPECT_NEAR(ambient.x, 0.2f + 0.25f, 1e-6f);
    EXPECT_EQ(ambient.y, 0.0f);
    EXPECT_NEAR(ambient.z, 0.4f + 0.5f, 1e-6f);
    EXPECT_EQ(ambient.w, 1.0f);
    const std::vector<float> sent = SentGlobals();   // a, b, padding, c, then the arrays
    const auto vector = [&](std::size_t index) {
        const float* v = &sent.at(index * 4);
        return D3DXVECTOR4{v[0], v[1], v[2], v[3]};
    };
    constexpr std::size_t kPositions = 2, kDirections = 8, kAttenuations = 10, kColours = 16, kOmniColours = 20;
    const float omni[] = {0, 3, 5, 7}, directional[] = {1, 4};
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(vector(kPositions + i), (D3DXVECTOR4{omni[i], 20, 30, 1}));
        EXPECT_EQ(vector(kAttenuations + i), (D3DXVECTOR4{omni[i], 0, 9, 0}));
        EXPECT_EQ(vector(kOmniColours + i), (D3DXVECTOR4{omni[i], 0.5f, 0.25f, 1})) << "diffuse";
        EXPECT_EQ(vector(kOmniColours + 6 + i), (D3DXVECTOR4{0.75f, omni[i], 0, 1})) << "specular";
        EXPECT_EQ(vector(kOmniColours + 12 + i), (D3DXVECTOR4{0.125f, 0, 0.25f, 1})) << "ambient";
    }
    EXPECT_EQ(vector(kPositions + 4), D3DXVECTOR4());
    for (std::size_t i = 0; i < 2; ++i) {
        const D3DXVECTOR4 direction = vector(kDirections + i);   // made as long as 1 by the node
        EXPECT_NEAR(direction.x / direction.z, directional[i] / -3, 1e-5f);
        EXPECT_NEAR(direction.y / direction.z, -2 / -3.0f, 1e-5f);
        EXPECT_EQ(direction.w, 1.0f);
        EXPECT_EQ(vector(kColours + i), (D3DXVECTOR4{directional[i], 0.5f, 0.25f, 1})) << "diffuse";
        EXPECT_EQ(vector(kColours + 2 + i), (D3DXVECTOR4{0.75f, directional[i], 0, 1})) << "specular";
    }
}

TEST_F(ShaderEffectTest, WithoutLightingTheColourThatStandsInIsTheAmbientOne) {
    LoadText("int a : NumOmniLights; float4 b : AmbientColor; technique { pass { } }");
    SetLights();
    const D3DCOLOR unlit = 0x00FF8040;
    gfx_->SetLighting(false, &unlit);
    for (int i = 0; i < 8; ++i) gfx_->SetLightEnable(i, i != 1 && i != 4 && i != 6);
    effect_.ApplyLightSemantics();
    EXPECT_EQ(FloatOf("NumOmniLights"), 5.0f);
    EXPECT_NEAR(VectorOf("AmbientColor").y, 128 / 255.0f, 1e-6f);
}

TEST_F(ShaderEffectTest, MapsAreThoseBoundToTheStages) {
    LoadText(
        "texture a : DIFFUSEMAP; texture b : NORMALMAP; texture c : REFLECTIONMAP;"
        "int d : REFLECTIONMAPTYPE; float e : Opacity; float4x4 f : TextureMatrix;"
        "float4x4 g : TransformReflectionMap;"
        "technique { pass { Texture[4] = <a>; Texture[5] = <b>; Texture[6] = <c>;"
        "TextureTransform[4] = <f>; TextureTransform[6] = <g>; } }");
    KRN_Texture plain, layered;
    gfx_->CreateTexture(&plain, 4, 4, 4, -1, 1);
    constexpr MapKind kKinds[] = {MapKind::Reflection, MapKind::Diffuse};
    for (int layer = 0; layer < 2; ++layer) {
        layered.SelectLayer(layer, false);
        gfx_->CreateTexture(&layered, 8, 8, 4, -1, 1);
        layered.SetStageMap(layer, kKinds[layer], 1);
        TextureMatrixValues values;
        values.offset_u = 0.25f * static_cast<float>(layer + 1);
        layered.SetLayerMatrix(layer, values);
    }
    gfx_->SetBlendingMode(7, 51, 0);
    const std::tuple<KRN_Texture*, IDirect3DTexture9*, IDirect3DTexture9*, float, D3DXMATRIX, D3DXMATRIX> rows[] = {
        {&plain, plain.DeviceTexture(), nullptr, 0, kIdentityMatrix, kIdentityMatrix},
        {&layered, layered.LayerTexture(1), layered.LayerTexture(0), 3, layered.LayerMatrix(1), layered.LayerMatrix(0)},
        {nullptr, nullptr, nullptr, 0, kIdentityMatrix, kIdentityMatrix},
    };
    for (const auto& [texture, diffuse, reflection, kind, texture_matrix, reflection_matrix] : rows) {
        gfx_->SetTexture(texture, -1);
        effect_.ApplyMaterialSemantics();
        EXPECT_EQ(FloatOf("Opacity"), 0.2f);
        EXPECT_EQ(FloatOf("REFLECTIONMAPTYPE"), kind);
        IDirect3DTexture9* const bound[] = {diffuse, nullptr, reflection};
        const D3DXMATRIX matrices[] = {texture_matrix, kIdentityMatrix, reflection_matrix};
        InPass([&] {
            for (DWORD i = 0; i < 3; ++i) {
                EXPECT_EQ(gfx_.Bound(4 + i), bound[i]) << i;
                EXPECT_EQ(gfx_.Matrix(D3DTS_TEXTUREn(4 + i)), matrices[i]) << i;
            }
        });
    }
}

TEST_F(ShaderEffectTest, BonesAreCutToTheRoomOfTheDevice) {
    gfx_.recording.caps.MaxVertexBlendMatrixIndex = 1;
    gfx_.Init();
    LoadText(
        "float4x4 m[3] : WORLDMATRIXARRAY; float n : NUMBLENDWEIGHTS;\n"
        "#define USE mul(p, m[0]) + mul(p, m[1]) + mul(p, m[2]) * n\n" +
        std::string(kVertexFunction) + kOneTechnique);
    const D3DXMATRIX bones[] = {kWorld, kView, kProjection};
    gfx_->SetFrameCache(true);
    effect_.ApplyObjectSemantics(3, bones);
    effect_.ApplyObjectSemantics(2, {});   // filled in this frame already
    const std::vector<float> sent = SentGlobals();
    ASSERT_GE(sent.size(), 49u);
    EXPECT_EQ(sent[3 * 4], kWorld.m[3][0]);
    EXPECT_EQ(sent[16 + 3 * 4], kView.m[3][0]);
    EXPECT_EQ(sent[32 + 3 * 4 + 2], 0.0f) << "no room for a third";
    EXPECT_EQ(FloatOf("NUMBLENDWEIGHTS"), 3.0f);
}

TEST_F(ShaderEffectTest, DrawersFillLightsObjectAndMaterial) {
    LoadText(
        "float4 a : AmbientColor; float4 b : DiffuseMaterial; float4 c : EmissiveMaterial;"
        "float d : SpecularPower; float e : NUMBLENDWEIGHTS; technique { pass { } }");
    D3DMATERIAL9 material = {};
    material.Diffuse = {0.1f, 0.2f, 0.3f, 0.4f};
    material.Emissive = {0.5f, 0.6f, 0.7f, 0.8f};
    material.Power = 3;
    gfx_->SetAmbient(0x00FF0000);
    gfx_->SetMaterial(material);
    KRN_VertexList list(PrimitiveMode::PointList, D3DFVF_XYZB2 | D3DFVF_LASTBETA_UBYTE4);
    gfx_->CreateVertexList(&list, 1, 0, false);
    list.SetEffect(&effect_);
    gfx_->BeginScene();
    gfx_->DrawTriangleList(list, 0, -1);
    EXPECT_EQ(VectorOf("AmbientColor").x, 1.0f);
    EXPECT_EQ(VectorOf("DiffuseMaterial"), (D3DXVECTOR4{0.1f, 0.2f, 0.3f, 0.4f}));
    EXPECT_EQ(VectorOf("EmissiveMaterial"), (D3DXVECTOR4{0.5f, 0.6f, 0.7f, 0.8f}));
    EXPECT_EQ(FloatOf("SpecularPower"), 3.0f);
    EXPECT_EQ(FloatOf("NUMBLENDWEIGHTS"), 2.0f);
}

TEST_F(ShaderEffectTest, ScreenDrawingHasAnEffectOfItsOwn) {
    KRN_Texture texture;
    LoadText("technique { pass { } pass { } }");
    gfx_->CreateTexture(&texture, 4, 4, 4, -1, 1);
    gfx_->SetTexture2D(&texture);
    gfx_->BeginScene();
    for (KRN_ShaderEffect* chosen : {&effect_, static_cast<KRN_ShaderEffect*>(nullptr)}) {
        gfx_.recording.ForgetCalls();
        gfx_->SetShaderEffect2D(chosen);
        gfx_->DrawTexture2D({0, 0, 2, 2}, 0xFFFFFFFF, {0, 0, 0, 0});
        EXPECT_EQ(gfx_.recording.Draws().size(), chosen ? 2u : 1u);
    }
}

TEST_F(ShaderEffectTest, TheFirstOfManyEffectsIsChosen) {
    KRN_ShaderEffect forced, override, current, own, skinning, invalid;
    for (KRN_ShaderEffect* effect : {&forced, &override, &current, &own, &skinning})
        ASSERT_TRUE(Load(*effect, "technique { pass { } }"));
    constexpr auto kSkinned = ShaderEffectChoice::Processing::ShaderSkinning;
    ShaderEffectChoice choice;
    choice.Force(&forced);
    choice.SetOverride(&override);
    choice.SetCurrent(&current);
    choice.SetSkinning(&skinning);
    EXPECT_EQ(choice.ForDraw(&own, kSkinned), &forced);
    EXPECT_EQ(choice.Force(nullptr), &forced);
    EXPECT_EQ(choice.ForDraw(&own, kSkinned), &override);
    choice.SetOverride(&invalid);
    EXPECT_EQ(choice.ForDraw(&own, kSkinned), &current);
    choice.SetCurrent(&invalid);
    EXPECT_EQ(choice.ForDraw(&own, kSkinned), &own);
    EXPECT_EQ(choice.ForDraw(&invalid, kSkinned), &skinning) << "nothing is loaded";
    WriteFile("invalid.fx", "technique { pass { PixelShader = asm { ps.1.1 }; } }");
    ASSERT_TRUE(gfx_->LoadShaderEffect(invalid, "invalid.fx", true, 0, false));
    EXPECT_EQ(choice.ForDraw(&invalid, kSkinned), &invalid) << "its last technique";
    EXPECT_EQ(choice.ForDraw(nullptr, kSkinned), &skinning);
    EXPECT_EQ(choice.ForDraw(), nullptr);
}

TEST_F(ShaderEffectTest, NumberedParametersComeBackAfterDrawing) {
    LoadText("float a : fParam3 = 1.5; float4 b : vParam8 = {2, 3, 4, 5}; technique { pass { } }");
    KRN_ShaderEffect shared;
    ASSERT_TRUE(gfx_->LoadShaderEffect(shared, "t.fx", true, 0, true));
    EXPECT_FALSE(shared.SetNumberedParameter(2, 0.5f)) << "it has no fParam2";
    for (const int number : {0, 9})
        EXPECT_EQ(ErrorOf([&] { shared.SetNumberedParameter(number, D3DXVECTOR4()); }),
                  "KRN_ShaderEffect: Invalid parameter number: " + std::to_string(number));
    for (const bool reapply : {false, true}) {
        effect_.SetReapplyDefaults(reapply);
        effect_.SetParameter(effect_.ParameterBySemantic("fParam3"), 9.0f);
        effect_.SetParameter(effect_.ParameterBySemantic("vParam8"), {6, 7, 8, 9});
        effect_.Begin();
        effect_.End();
        EXPECT_EQ(FloatOf("fParam3"), reapply ? 1.5f : 9.0f);
        EXPECT_EQ(VectorOf("vParam8"), reapply ? (D3DXVECTOR4{2, 3, 4, 5}) : (D3DXVECTOR4{6, 7, 8, 9}));
    }
    EXPECT_TRUE(shared.SetNumberedParameter(3, 0.25f));
    EXPECT_TRUE(shared.SetNumberedParameter(8, D3DXVECTOR4{5, 4, 3, 2}));
    EXPECT_EQ(FloatOf("fParam3"), 0.25f);
    effect_.SetParameter(effect_.ParameterBySemantic("fParam3"), 9.0f);
    effect_.Begin();
    effect_.End();
    EXPECT_EQ(FloatOf("fParam3"), 0.25f) << "the override, not the effect's own";
    EXPECT_EQ(VectorOf("vParam8"), (D3DXVECTOR4{5, 4, 3, 2}));
}

TEST_F(ShaderEffectTest, ResourceTexturesComeFromTheCatalogue) {
    LoadText(
        "texture a < string ResourceName = \"some\\pic~.tga\"; >; texture b < float ResourceName = 1; >;"
        "technique { pass { Texture[3] = <a>; } }");
    effect_.ApplyFrameSemantics();
    KRN_Texture* texture = gfx_->Catalogue().GetTexture("SOME\\PIC_.TGA_FX_");
    ASSERT_NE(texture, nullptr);   // a grey picture: there is no such file
    InPass([&] { EXPECT_EQ(gfx_.Bound(3), texture->DeviceTexture()); });
}

TEST_F(ShaderEffectTest, WhatTheEffectDoesNotTakeIsAnError) {
    KRN_ShaderEffect without_file;
    LoadText("texture t : T; int4 v : V; technique { pass { } }");
    const D3DXVECTOR4 vector;
    for (KRN_ShaderEffect* each : {&effect_, &without_file}) {
        const D3DXHANDLE texture = each->ParameterBySemantic("T"), none = each->ParameterBySemantic("N");
        const std::function<void()> setters[] = {
            [&] { each->SetParameter(texture, 1.0f); },
            [&] { each->SetParameter(texture, true); },
            [&] { each->SetParameter(none, vector); },
            [&] { each->SetParameter(none, &vector, 1); },
            [&] { each->SetParameter(texture, kWorld); },
            [&] { each->SetParameter(none, std::span(&kWorld, 1)); },
            [&] { each->SetParameter(none, static_cast<IDirect3DTexture9*>(nullptr)); }};
        for (const auto& set : setters)
            EXPECT_EQ(ErrorOf(set), "KRN_ShaderEffect: Can not SetParameter :D3DERR_INVALIDCALL");
    }
    effect_.SetParameter(effect_.ParameterBySemantic("V"), {4, -5, 6, 7});
    EXPECT_EQ(VectorOf("V"), (D3DXVECTOR4{4, -5, 6, 7}));
    effect_.Begin();
    EXPECT_EQ(ErrorOf([&] { effect_.BeginPass(1); }), "KRN_ShaderEffect: BeginPass failed: D3DERR_INVALIDCALL");
    effect_.End();
}

TEST(ShaderSearchList, TriesTheCompiledEffectFirst) {
    ShaderSearchList list;
    EXPECT_THAT(list.Files(), IsEmpty());
    list.SetBaseName("Glow");
    EXPECT_THAT(list.Files(), IsEmpty());
    list.SetAlternativeDirectory("other/");
    EXPECT_THAT(list.Files(), ElementsAre("other/Glow.fxo", "other/Glow.fx"));
    list.SetShaderDirectory("shader");
    EXPECT_THAT(list.Files(), ElementsAre("shader\\Glow.fxo", "shader\\Glow.fx", "other/Glow.fxo", "other/Glow.fx"));
}

TEST_F(ShaderEffectTest, ASearchListLoadsTheFirstThatExists) {
    std::filesystem::create_directory("shader");
    WriteFile("shader/glow.fx", "technique { pass { } }");
    ShaderSearchList list;
    list.SetBaseName("Glow");
    list.SetShaderDirectory("SHADER");
    KRN_ShaderEffect effect;
    EXPECT_TRUE(gfx_->LoadShaderEffect(effect, list, true, 0, false));
    EXPECT_TRUE(effect.IsValid());
    EXPECT_TRUE(gfx_->LoadShaderEffect(effect, "shader/glow.fxo", true, 0, false)) << "there is only the source";
    WriteFile("shader/glow.fxo", "not compiled");
    EXPECT_NE(ErrorOf([&] { gfx_->LoadShaderEffect(effect, "shader/glow.fxo", true, 0, false); }), "no error");
    WriteFile("shader/glow.fx", "  # include \"Part.fxh\"\ntechnique { pass { } }");
    WriteFile("shader/part.fxh", "float a : V = 1;");
    const auto later = [](const char* file, int hours) {
        const auto now = std::filesystem::file_time_type::clock::now();
        std::filesystem::last_write_time(file, now + std::chrono::hours(hours));
    };
    later("shader/part.fxh", 1);
    EXPECT_TRUE(gfx_->LoadShaderEffect(effect, "shader/glow.fxo", true, 0, false)) << "what it includes is newer";
    KRN_ShaderEffect again;
    WriteFile("shader/part.fxh", "float a : V = 1; float b : W = 2;");
    later("shader/part.fxh", 2);
    EXPECT_TRUE(gfx_->LoadShaderEffect(again, "shader/glow.fxo", true, 0, false));
    EXPECT_TRUE(again.ParameterBySemantic("W")) << "changed while the former is still in use";
    list.SetBaseName("Gone");
    EXPECT_EQ(ErrorOf([&] { gfx_->LoadShaderEffect(effect, list, true, 0, false); }),
              "KRN_Gfx: Shader effect file 'SHADER\\Gone.fxo' not found");
}

}   // namespace
}   // namespace sparkrig
