// Pixels of OpenGL beside the fixed function on the processor: random states by a seed, and the corners that were
// found.
//     FIXED_FUNCTION_CASES=2500 build/release/tests/test_platform_d3d9_gl --gtest_filter='FixedFunction.Random*'
#include "tests/platform/d3d9_gl/fixed_function.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <random>
#include <sstream>

#include "tests/platform/d3d9_gl/matrices.h"
#include "tests/support/canvas.h"

namespace sparkrig {
namespace {

using fixed::Scene;

constexpr int kTolerance = 2;   // of 255

void SetFloat(DeviceState& state, D3DRENDERSTATETYPE which, double value) {
    state.SetRenderState(which, std::bit_cast<DWORD>(static_cast<float>(value)));
}

/// Everything that a scene holds, on a device. The textures are the caller's to keep.
std::vector<DevicePtr<IDirect3DTexture9>> Apply(const Scene& scene, Canvas& canvas) {
    const DeviceState& state = scene.state;
    for (DWORD i = 0; i < kRenderStateCount; ++i)
        canvas->SetRenderState(static_cast<D3DRENDERSTATETYPE>(i), state.render[i]);
    std::vector<DevicePtr<IDirect3DTexture9>> textures;
    for (DWORD stage = 0; stage < kTextureStages; ++stage) {
        for (DWORD i = 1; i < kStageStateCount; ++i)
            canvas->SetTextureStageState(stage, static_cast<D3DTEXTURESTAGESTATETYPE>(i), state.stages[stage][i]);
        canvas->SetTransform(D3DTS_TEXTUREn(stage), &state.texture_matrices[stage]);
        const fixed::Texture* texture = scene.textures[stage];
        canvas->SetTexture(stage, nullptr);
        if (texture == nullptr) continue;
        DevicePtr<IDirect3DTexture9> made;
        const D3DFORMAT format = texture->is_signed ? D3DFMT_V8U8 : D3DFMT_A8R8G8B8;
        canvas->CreateTexture(texture->kSize, texture->kSize, 1, 0, format, D3DPOOL_MANAGED, made.Receive());
        D3DLOCKED_RECT locked;
        made->LockRect(0, &locked, nullptr, 0);
        const std::size_t bytes = texture->is_signed ? 2 : 4;
        for (std::size_t i = 0; i < texture->texels.size(); ++i) {
            BYTE* row = static_cast<BYTE*>(locked.pBits) + i / texture->kSize * static_cast<std::size_t>(locked.Pitch);
            std::copy_n(reinterpret_cast<const BYTE*>(&texture->texels[i]), bytes, row + i % texture->kSize * bytes);
        }
        made->UnlockRect(0);
        canvas->SetTexture(stage, made.Get());
        textures.push_back(made);
    }
    for (DWORD i = 0; i < kWorldMatrices; ++i) canvas->SetTransform(D3DTS_WORLDMATRIX(i), &state.world[i]);
    canvas->SetTransform(D3DTS_VIEW, &state.view);
    canvas->SetTransform(D3DTS_PROJECTION, &state.projection);
    canvas->SetMaterial(&state.material);
    for (DWORD i = 0; i < kMaxActiveLights; ++i) canvas->LightEnable(i, FALSE);
    for (const auto& [index, slot] : state.lights) {
        canvas->SetLight(index, &slot.light);
        canvas->LightEnable(index, slot.enabled);
    }
    return textures;
}

void DrawPoint(const Scene& scene, Canvas& canvas) {
    const std::vector<BYTE> bytes = scene.vertex.Bytes();
    canvas.Clear(scene.back);
    EXPECT_EQ(canvas.DrawBytes(scene.vertex.Fvf(), D3DPT_POINTLIST, 1, bytes.data(), bytes.size(),
                               static_cast<UINT>(bytes.size())),
              D3D_OK);
}

/// What a failure has to say.
std::string Story(const Scene& scene) {
    const DeviceState& state = scene.state;
    std::ostringstream text;
    text << std::hex << "format " << scene.vertex.Fvf() << ", back " << scene.back << ", not as at the start:";
    const DeviceState start(false);
    for (DWORD i = 0; i < kRenderStateCount; ++i)
        if (state.render[i] != start.render[i]) text << std::dec << " " << i << std::hex << "=" << state.render[i];
    for (DWORD stage = 0; stage < kTextureStages; ++stage) {
        if (state.stages[stage] != start.stages[stage])
            text << "\nstage " << stage << (scene.textures[stage] ? " textured" : "");
        for (DWORD i = 0; i < kStageStateCount; ++i)
            if (state.stages[stage][i] != start.stages[stage][i])
                text << std::dec << " " << i << std::hex << "=" << state.stages[stage][i];
    }
    return text.str();
}

/// Whether the reference was sure enough to say anything.
bool ExpectReference(const Scene& scene, Canvas& canvas, const std::string& what) {
    const fixed::Seen wanted = fixed::PixelOf(scene);
    if (!wanted.sure) return false;
    const auto textures = Apply(scene, canvas);
    DrawPoint(scene, canvas);
    const D3DCOLOR found = canvas.PixelArgb(2, 1);
    for (std::size_t c = 0; c < (scene.alpha_in_target ? 4u : 3u); ++c) {
        EXPECT_NEAR(fixed::From(found)[c] * 255, wanted.colour[c] * 255, kTolerance)
            << what << ", channel " << c << "\n"
            << Story(scene);
    }
    return true;
}

/// Draws scenes at random. The same seed gives the same ones.
class Dice {
  public:
    explicit Dice(unsigned seed) : random_(seed) {
        for (fixed::Texture& texture : textures_) {
            for (D3DCOLOR& texel : texture.texels) texel = Colour();
        }
        textures_.back().is_signed = true;
    }

    bool Chance(double share) { return In(0, 1) < share; }
    float In(double from, double to) {
        return static_cast<float>(std::uniform_real_distribution<double>(from, to)(random_));
    }
    DWORD Of(DWORD from, DWORD to) { return std::uniform_int_distribution<DWORD>(from, to)(random_); }
    D3DCOLOR Colour() { return static_cast<D3DCOLOR>(random_()); }
    D3DCOLORVALUE Channels(double most) { return {In(0, most), In(0, most), In(0, most), In(0, 1)}; }
    D3DMATRIX Matrix() {
        return Scaling(In(0.6, 1.4), In(0.6, 1.4), In(0.6, 1.4)) * Rotation({In(-1, 1), In(-1, 1), 1}, In(-0.6, 0.6)) *
               Translation(In(-0.3, 0.3), In(-0.3, 0.3), In(-0.3, 0.3));
    }

    Scene Roll() {
        Scene scene;
        scene.back = Colour();
        scene.alpha_in_target = Chance(0.5);
        RollVertex(scene.vertex);
        RollTransforms(scene);
        RollLights(scene.state);
        for (DWORD stage = 0, stages = Of(0, 4); stage < stages; ++stage) RollStage(scene, stage);
        RollOutput(scene.state);
        SetFloat(scene.state, D3DRS_POINTSIZE, 256);
        SetFloat(scene.state, D3DRS_POINTSIZE_MAX, 256);
        return scene;
    }

  private:
    void RollVertex(fixed::Vertex& vertex) {
        vertex.final_position = Chance(0.2);
        vertex.position = {In(-0.6, 0.6), In(-0.6, 0.6), In(-0.4, 0.8), 1};
        if (vertex.final_position) vertex.position = {1.3f, 1.2f, In(0.1, 0.9), In(0.3, 1.5)};
        if (!vertex.final_position && Chance(0.3)) {
            vertex.weights = {In(0.1, 0.4), In(0.1, 0.3), In(0.1, 0.3)};
            for (BYTE& index : vertex.indices) index = static_cast<BYTE>(Of(0, 255));
        }
        if (!vertex.final_position && Chance(0.8)) vertex.normal = {In(-0.5, 0.5), In(-0.5, 0.5), -0.8f};
        if (Chance(0.6)) vertex.diffuse = Colour();
        if (Chance(0.6)) vertex.specular = Colour();
        for (DWORD set = 0, sets = Of(0, 3); set < sets; ++set) {
            vertex.sets.emplace_back();
            for (DWORD i = 0, floats = Of(1, 4); i < floats; ++i) vertex.sets.back().push_back(In(-1.5, 1.5));
        }
    }

    void RollTransforms(Scene& scene) {
        DeviceState& state = scene.state;
        for (D3DMATRIX& world : state.world) world = Matrix();
        state.view = Matrix() * Translation(0, 0, 2.5f);
        state.projection = Chance(0.15) ? Scaling(0.5f, 0.5f, 0.1f) : Perspective(0.3f, 20);
        for (D3DMATRIX& matrix : state.texture_matrices) matrix = Matrix();
        constexpr DWORD kBlends[] = {D3DVBF_DISABLE, D3DVBF_1WEIGHTS, D3DVBF_2WEIGHTS, D3DVBF_3WEIGHTS,
                                     D3DVBF_0WEIGHTS};
        if (!scene.vertex.weights.empty()) state.SetRenderState(D3DRS_VERTEXBLEND, kBlends[Of(0, 4)]);
        state.SetRenderState(D3DRS_INDEXEDVERTEXBLENDENABLE, Of(0, 1));
        state.SetRenderState(D3DRS_NORMALIZENORMALS, Of(0, 1));
    }

    void RollLights(DeviceState& state) {
        state.SetRenderState(D3DRS_LIGHTING, Chance(0.6));
        state.SetRenderState(D3DRS_AMBIENT, Colour() & 0x3F3F3F);
        state.SetRenderState(D3DRS_SPECULARENABLE, Of(0, 1));
        state.SetRenderState(D3DRS_LOCALVIEWER, Chance(0.7));
        state.SetRenderState(D3DRS_COLORVERTEX, Chance(0.7));
        for (DWORD source = D3DRS_DIFFUSEMATERIALSOURCE; source <= D3DRS_EMISSIVEMATERIALSOURCE; ++source)
            state.SetRenderState(static_cast<D3DRENDERSTATETYPE>(source), Of(0, 2));
        state.material = {Channels(1), Channels(0.6), Channels(1), Channels(0.2), In(0, 12)};
        for (DWORD i = 0, lights = Of(0, 3); i < lights; ++i) {
            D3DLIGHT9 light = {};
            light.Type = static_cast<D3DLIGHTTYPE>(Of(D3DLIGHT_POINT, D3DLIGHT_DIRECTIONAL));
            light.Diffuse = Channels(1), light.Specular = Channels(1), light.Ambient = Channels(0.3);
            light.Position = {In(-1, 1), In(-1, 1), In(-2, -1)};
            light.Direction = {In(-0.4, 0.4), In(-0.4, 0.4), In(0.6, 2) * (Chance(0.9) ? 1.0f : -1.0f)};
            light.Range = Chance(0.9) ? In(4, 9) : In(0.1, 1);
            if (Chance(0.9)) light.Attenuation0 = In(0.1, 0.6), light.Attenuation1 = In(0, 0.6);
            light.Attenuation2 = light.Attenuation0 > 0 ? In(0, 0.3) : 0;
            light.Theta = In(0, 0.6), light.Phi = In(1, 2.4), light.Falloff = In(0.5, 2);
            state.SetLight(i * 2, &light);
            state.LightEnable(i * 2, Chance(0.9));
        }
    }

    DWORD Argument() {
        constexpr DWORD kModifiers[] = {
            0, 0, 0, D3DTA_COMPLEMENT, D3DTA_ALPHAREPLICATE, D3DTA_COMPLEMENT | D3DTA_ALPHAREPLICATE};
        return Of(D3DTA_DIFFUSE, D3DTA_CONSTANT) | kModifiers[Of(0, 5)];
    }

    void RollStage(Scene& scene, DWORD stage) {
        constexpr DWORD kNotMade[] = {17, 23};   // of the numbers of operations
        const auto set = [&](D3DTEXTURESTAGESTATETYPE type, DWORD value) {
            scene.state.SetTextureStageState(stage, type, value);
        };
        DWORD op = Of(D3DTOP_SELECTARG1, D3DTOP_LERP), alpha = Of(D3DTOP_DISABLE, D3DTOP_BLENDCURRENTALPHA);
        while (std::ranges::count(kNotMade, op) > 0) op = Of(D3DTOP_SELECTARG1, D3DTOP_LERP);
        const bool bumps = op == D3DTOP_BUMPENVMAP;
        if (bumps) alpha = D3DTOP_DISABLE;
        const DWORD first = Argument(), second = Argument(), third = Argument();
        set(D3DTSS_COLOROP, op), set(D3DTSS_COLORARG1, first), set(D3DTSS_COLORARG2, second),
            set(D3DTSS_COLORARG0, third);
        if (op == D3DTOP_DOTPRODUCT3) alpha = op;   // it gives all channels
        const bool same = alpha == D3DTOP_DOTPRODUCT3;
        set(D3DTSS_ALPHAOP, alpha), set(D3DTSS_ALPHAARG1, same ? first : Argument());
        set(D3DTSS_ALPHAARG2, same ? second : Argument());
        set(D3DTSS_CONSTANT, Colour());
        set(D3DTSS_RESULTARG, !bumps && Chance(0.2) ? D3DTA_TEMP : D3DTA_CURRENT);
        if (bumps || Chance(0.85)) scene.textures[stage] = &textures_[bumps ? Of(1, 2) : Of(0, 1)];
        constexpr DWORD kIndices[] = {0,
                                      1,
                                      2,
                                      5,
                                      D3DTSS_TCI_CAMERASPACENORMAL,
                                      D3DTSS_TCI_CAMERASPACEPOSITION,
                                      D3DTSS_TCI_CAMERASPACEREFLECTIONVECTOR,
                                      D3DTSS_TCI_SPHEREMAP};
        set(D3DTSS_TEXCOORDINDEX, kIndices[scene.vertex.final_position ? Of(0, 3) : Of(0, 7)]);
        const DWORD count = Chance(0.5) ? 0 : Of(1, 4);
        set(D3DTSS_TEXTURETRANSFORMFLAGS, count | (count > 2 && Chance(0.4) ? D3DTTFF_PROJECTED : 0));
        for (int i = 0; i < 4; ++i)
            set(static_cast<D3DTEXTURESTAGESTATETYPE>(D3DTSS_BUMPENVMAT00 + i), std::bit_cast<DWORD>(In(-0.6, 0.6)));
    }

    void RollOutput(DeviceState& state) {
        const auto set = [&](D3DRENDERSTATETYPE type, DWORD value) { state.SetRenderState(type, value); };
        set(D3DRS_TEXTUREFACTOR, Colour()), set(D3DRS_BLENDFACTOR, Colour()), set(D3DRS_FOGCOLOR, Colour());
        set(D3DRS_FOGENABLE, Of(0, 1)), set(D3DRS_FOGVERTEXMODE, Of(0, 3));
        set(D3DRS_FOGTABLEMODE, Chance(0.4) ? Of(1, 3) : D3DFOG_NONE), set(D3DRS_RANGEFOGENABLE, Of(0, 1));
        SetFloat(state, D3DRS_FOGSTART, In(0.2, 2)), SetFloat(state, D3DRS_FOGEND, In(2.5, 6));
        SetFloat(state, D3DRS_FOGDENSITY, In(0.05, 0.5));
        set(D3DRS_ALPHATESTENABLE, Chance(0.3)), set(D3DRS_ALPHAFUNC, Of(D3DCMP_NEVER, D3DCMP_ALWAYS));
        set(D3DRS_ALPHAREF, Of(0, 255));
        DWORD source = Of(D3DBLEND_ZERO, 13), destination = Of(D3DBLEND_ZERO, 12);   // 12 and 13 stand for the last two
        source += source > D3DBLEND_SRCALPHASAT ? 2 : 0, destination += destination > D3DBLEND_INVDESTCOLOR ? 3 : 0;
        set(D3DRS_ALPHABLENDENABLE, Chance(0.5)), set(D3DRS_SRCBLEND, source);
        set(D3DRS_DESTBLEND, std::min(destination, D3DBLEND_INVBLENDFACTOR));
        set(D3DRS_BLENDOP, Of(D3DBLENDOP_ADD, D3DBLENDOP_MAX));
        set(D3DRS_SEPARATEALPHABLENDENABLE, Chance(0.3)), set(D3DRS_BLENDOPALPHA, Of(D3DBLENDOP_ADD, D3DBLENDOP_MAX));
        set(D3DRS_SRCBLENDALPHA, Of(D3DBLEND_ZERO, D3DBLEND_INVDESTALPHA));
        set(D3DRS_DESTBLENDALPHA, Of(D3DBLEND_ZERO, D3DBLEND_INVDESTALPHA));
        set(D3DRS_COLORWRITEENABLE, Chance(0.8) ? 0xF : Of(0, 15));
        set(D3DRS_CULLMODE, D3DCULL_NONE), set(D3DRS_ZENABLE, D3DZB_FALSE);
    }

    std::mt19937 random_;
    std::array<fixed::Texture, 3> textures_ = {};
};

/// A canvas with alpha and one without.
struct Canvases {
    Canvas opaque{4, 4}, with_alpha{4, 4, D3DFMT_A8R8G8B8};
    Canvas& For(const Scene& scene) { return scene.alpha_in_target ? with_alpha : opaque; }
};

TEST(FixedFunction, RandomStatesGiveThePixelsOfTheReference) {
    const char* asked = std::getenv("FIXED_FUNCTION_CASES");
    const int cases = asked ? std::atoi(asked) : 150;
    Canvases canvases;
    Dice dice(5);
    int sure = 0;
    for (int i = 0; i < cases && !testing::Test::HasFailure(); ++i) {
        const Scene scene = dice.Roll();
        sure += ExpectReference(scene, canvases.For(scene), "case " + std::to_string(i));
    }
    EXPECT_GT(sure, cases / 2);
    std::printf("%d cases, of which %d are far from every step\n", cases, sure);
}

// A lit, textured, fogged vertex; each row turns one thing.
Scene Plain(Dice& dice) {
    Scene scene = dice.Roll();
    while (scene.vertex.final_position || !scene.vertex.weights.empty()) scene = dice.Roll();
    DeviceState start(false);
    start.world = scene.state.world, start.view = scene.state.view, start.projection = Perspective(0.3f, 20);
    start.material = scene.state.material, start.texture_matrices = scene.state.texture_matrices;
    D3DLIGHT9 light = {D3DLIGHT_POINT,
                       {1, 0.8f, 0.6f, 1},
                       {0.5f, 1, 0.7f, 1},
                       {0.1f, 0.2f, 0, 1},
                       {0.3f, 0.2f, -2},
                       {0, 0, 1},
                       9,
                       1,
                       0.9f,
                       0.1f,
                       0,
                       0.5f,
                       2};
    start.SetLight(0, &light), start.LightEnable(0, TRUE);
    for (const auto& [state, value] : {std::pair{D3DRS_SPECULARENABLE, 1u},
                                       {D3DRS_CULLMODE, D3DCULL_NONE},
                                       {D3DRS_FOGCOLOR, 0x2040A0u},
                                       {D3DRS_AMBIENT, 0x203010u}})
        start.SetRenderState(state, value);
    for (const auto& [state, value] :
         {std::pair{D3DRS_POINTSIZE, 256.0}, {D3DRS_POINTSIZE_MAX, 256.0}, {D3DRS_FOGEND, 6.0}})
        SetFloat(start, state, value);
    scene.state = start;
    scene.vertex.normal = {0.48f, 0.36f, -0.8f};
    scene.vertex.diffuse = 0x7F64DC3C, scene.vertex.specular = 0x992850A0;
    scene.vertex.sets = {{0.7f, -1.2f}, {2.1f, 0.4f}};
    scene.textures = {};
    return scene;
}

TEST(FixedFunction, CornersGiveThePixelsOfTheReference) {
    const auto light = [](Scene& s, auto change) { change(s.state.lights[0].light); };
    const auto render = [](Scene& s, D3DRENDERSTATETYPE state, DWORD value) { s.state.SetRenderState(state, value); };
    const auto stage = [](Scene& s, D3DTEXTURESTAGESTATETYPE state, DWORD value) {
        s.state.SetTextureStageState(0, state, value);
    };
    const auto fog = [&](Scene& s, D3DRENDERSTATETYPE kind) {
        render(s, D3DRS_FOGENABLE, 1), render(s, kind, D3DFOG_LINEAR);
    };
    const std::pair<const char*, std::function<void(Scene&)>> kRows[] = {
        {"plain", [](Scene&) {}},
        {"no normal", [](Scene& s) { s.vertex.normal.reset(); }},
        {"material where the vertex has no colour",
         [](Scene& s) { s.vertex.diffuse.reset(), s.vertex.specular.reset(); }},
        {"no attenuation at all is none",
         [&](Scene& s) { light(s, [](D3DLIGHT9& l) { l.Attenuation0 = 0, l.Attenuation1 = 0; }); }},
        {"out of range", [&](Scene& s) { light(s, [](D3DLIGHT9& l) { l.Range = 0.5f; }); }},
        {"outside of the cone",
         [&](Scene& s) { light(s, [](D3DLIGHT9& l) {
                             l.Type = D3DLIGHT_SPOT, l.Direction = {0, 1, -0.2f};
                         }); }},
        {"a light that was never set", [](Scene& s) { s.state.lights.clear(), s.state.LightEnable(3, TRUE); }},
        {"a viewer at infinity", [&](Scene& s) { render(s, D3DRS_LOCALVIEWER, 0); }},
        {"unit normals", [&](Scene& s) { render(s, D3DRS_NORMALIZENORMALS, 1); }},
        {"alpha of the specular colour",
         [&](Scene& s) {
             render(s, D3DRS_LIGHTING, 0), stage(s, D3DTSS_COLORARG1, D3DTA_SPECULAR | D3DTA_ALPHAREPLICATE),
                 stage(s, D3DTSS_COLOROP, D3DTOP_SELECTARG1);
         }},
        {"white where no texture is a second argument",
         [&](Scene& s) { stage(s, D3DTSS_COLORARG1, D3DTA_DIFFUSE), stage(s, D3DTSS_COLORARG2, D3DTA_TEXTURE); }},
        {"table fog", [&](Scene& s) { fog(s, D3DRS_FOGTABLEMODE); }},
        {"table fog by depth",
         [&](Scene& s) {
             fog(s, D3DRS_FOGTABLEMODE), s.state.projection = Scaling(0.5f, 0.5f, 0.1f),
                                         SetFloat(s.state, D3DRS_FOGEND, 0.9);
         }},
        {"behind fog that ends where it starts",
         [&](Scene& s) { fog(s, D3DRS_FOGVERTEXMODE), SetFloat(s.state, D3DRS_FOGEND, 0); }},
        {"before fog that ends where it starts",
         [&](Scene& s) {
             fog(s, D3DRS_FOGVERTEXMODE), SetFloat(s.state, D3DRS_FOGEND, 9), SetFloat(s.state, D3DRS_FOGSTART, 9);
         }},
        {"fog of the specular alpha", [&](Scene& s) { render(s, D3DRS_FOGENABLE, 1); }},
        {"no fog without it", [&](Scene& s) { render(s, D3DRS_FOGENABLE, 1), s.vertex.specular.reset(); }},
    };
    Canvases canvases;
    Dice dice(8);
    const Scene plain = Plain(dice);
    for (const auto& [name, change] : kRows) {
        Scene scene = plain;
        change(scene);
        EXPECT_TRUE(ExpectReference(scene, canvases.For(scene), name)) << name << " is on a step";
    }
}

}   // namespace
}   // namespace sparkrig
