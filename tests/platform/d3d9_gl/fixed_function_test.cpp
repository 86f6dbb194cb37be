// Pixels of OpenGL beside the fixed function on the processor: random states by a seed.
//     FIXED_FUNCTION_CASES=2500 build/release/tests/test_platform_d3d9_gl --gtest_filter='FixedFunction.Random*'
#include "tests/platform/d3d9_gl/fixed_function.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>

#include "tests/support/canvas.h"
#include "tests/support/matrices.h"

namespace sparkrig {
namespace {

using fixed::Scene;

constexpr int kTolerance = 2;   // of 255
constexpr UINT kSize = 24;      // of the canvas

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
        for (const auto type : {D3DSAMP_ADDRESSU, D3DSAMP_ADDRESSV, D3DSAMP_BORDERCOLOR})
            canvas->SetSamplerState(stage, type, state.samplers[stage][type]);
        canvas->SetTransform(D3DTS_TEXTUREn(stage), &state.texture_matrices[stage]);
        const fixed::Texture* texture = scene.textures[stage];
        canvas->SetTexture(stage, nullptr);
        if (texture == nullptr) continue;
        const D3DFORMAT format = texture->is_signed ? D3DFMT_V8U8 : D3DFMT_A8R8G8B8;
        textures.push_back(
            MakeTexture(canvas.Device(), texture->kSize, texture->kSize, texture->Rows().data(), format));
        canvas->SetTexture(stage, textures.back().Get());
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

/// Whether the reference was sure enough to say anything.
bool ExpectReference(const Scene& scene, Canvas& canvas) {
    const fixed::Seen wanted = fixed::PointOf(scene);
    if (!wanted.sure) return false;
    const auto textures = Apply(scene, canvas);
    const std::vector<BYTE> bytes = scene.vertex.Bytes();
    EXPECT_EQ(VertexFormatStride(scene.vertex.Fvf()), bytes.size());
    canvas.Clear(scene.back);
    EXPECT_EQ(canvas.DrawBytes(scene.vertex.Fvf(), D3DPT_POINTLIST, 1, bytes.data(), bytes.size(),
                               static_cast<UINT>(bytes.size())),
              D3D_OK);
    const std::vector<D3DCOLOR> pixels = canvas.Pixels();
    const double reach = wanted.size / 2;
    const fixed::Colour back = fixed::From(scene.back);
    for (UINT i = 0; i < pixels.size() && !testing::Test::HasFailure(); ++i) {
        const bool inside = std::abs(i % kSize - wanted.x) < reach && std::abs(i / kSize - wanted.y) < reach;
        const fixed::Colour found = fixed::From(pixels[i]);
        for (int c = 0; c < (scene.alpha_in_target ? 4 : 3); ++c)
            EXPECT_NEAR(found[c] * 255, (inside ? wanted.colour : back)[c] * 255, inside ? kTolerance : 0)
                << "channel " << c << " of " << i % kSize << ", " << i / kSize;
    }
    return true;
}

/// Draws scenes at random. The same seed gives the same ones.
class Dice {
  public:
    explicit Dice(unsigned seed) : random_(seed) {
        for (fixed::Texture& texture : textures_)
            for (D3DCOLOR& texel : texture.texels) texel = Colour();
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
        RollSize(scene);
        return scene;
    }

  private:
    void RollVertex(fixed::Vertex& vertex) {
        vertex.final_position = Chance(0.2);
        vertex.position = {In(-0.6, 0.6), In(-0.6, 0.6), In(-0.4, 0.8), 1};
        if (vertex.final_position) vertex.position = {In(0, 23), In(0, 23), In(0.1, 0.9), In(0.3, 1.5)};
        if (!vertex.final_position && Chance(0.3)) {
            for (DWORD weights = Of(0, 4); weights > 0; --weights) vertex.weights.push_back(In(0.1, 0.3));
            if (Chance(0.7))
                for (BYTE& index : vertex.indices.emplace()) index = static_cast<BYTE>(Of(0, 255));
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
        const DWORD weights = std::min<DWORD>(static_cast<DWORD>(scene.vertex.weights.size()), D3DVBF_3WEIGHTS);
        const DWORD blend = scene.vertex.indices && Chance(0.2) ? D3DVBF_0WEIGHTS : Of(D3DVBF_DISABLE, weights);
        state.SetRenderState(D3DRS_VERTEXBLEND, blend);
        state.SetRenderState(D3DRS_INDEXEDVERTEXBLENDENABLE, scene.vertex.indices && Chance(0.5));
        state.SetRenderState(D3DRS_NORMALIZENORMALS, Of(0, 1));
    }

    void RollLights(DeviceState& state) {
        state.SetRenderState(D3DRS_LIGHTING, Chance(0.6));
        state.SetRenderState(D3DRS_AMBIENT, Colour() & 0x3F3F3F);
        state.SetRenderState(D3DRS_SPECULARENABLE, Chance(0.7));
        state.SetRenderState(D3DRS_LOCALVIEWER, Of(0, 1));
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
        if (Chance(0.2)) state.LightEnable(7, TRUE);   // was never set
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
        for (const auto axis : {D3DSAMP_ADDRESSU, D3DSAMP_ADDRESSV})   // a border has no signed numbers
            scene.state.SetSamplerState(stage, axis, Chance(0.3) ? D3DTADDRESS_WRAP : Of(2, bumps ? 3 : 5));
        scene.state.SetSamplerState(stage, D3DSAMP_BORDERCOLOR, Colour());
        constexpr DWORD kSets[] = {0, 1, 2, 5};   // or 1 to 4 in the upper half: what is generated
        set(D3DTSS_TEXCOORDINDEX, scene.vertex.final_position || Chance(0.5) ? kSets[Of(0, 3)] : Of(1, 4) << 16);
        const DWORD count = Chance(0.5) ? 0 : Of(1, 4);
        set(D3DTSS_TEXTURETRANSFORMFLAGS, count | (count > 2 && Chance(0.4) ? D3DTTFF_PROJECTED : 0));
        for (int i = 0; i < 4; ++i)
            set(static_cast<D3DTEXTURESTAGESTATETYPE>(D3DTSS_BUMPENVMAT00 + i), std::bit_cast<DWORD>(In(-0.6, 0.6)));
    }

    void RollSize(Scene& scene) {
        DeviceState& state = scene.state;
        state.viewport = {0, 0, kSize, kSize, 0, 1};
        const bool scaled = Chance(0.5);
        state.SetRenderState(D3DRS_POINTSCALEENABLE, scaled);
        const auto edge = [&] { return scaled ? In(0.1, 0.6) : In(1, 20); };
        if (Chance(0.5)) scene.vertex.size = edge();
        SetFloat(state, D3DRS_POINTSIZE, edge());
        SetFloat(state, D3DRS_POINTSIZE_MIN, In(1, 5)),
            SetFloat(state, D3DRS_POINTSIZE_MAX, Chance(0.2) ? 1000 : In(6, 20));
        for (const auto factor : {D3DRS_POINTSCALE_A, D3DRS_POINTSCALE_B, D3DRS_POINTSCALE_C})
            SetFloat(state, factor, In(0.1, 1));
    }

    void RollOutput(DeviceState& state) {
        const auto set = [&](D3DRENDERSTATETYPE type, DWORD value) { state.SetRenderState(type, value); };
        set(D3DRS_TEXTUREFACTOR, Colour()), set(D3DRS_BLENDFACTOR, Colour()), set(D3DRS_FOGCOLOR, Colour());
        set(D3DRS_FOGENABLE, Of(0, 1)), set(D3DRS_FOGVERTEXMODE, Of(0, 3));
        set(D3DRS_FOGTABLEMODE, Chance(0.4) ? Of(1, 3) : D3DFOG_NONE), set(D3DRS_RANGEFOGENABLE, Of(0, 1));
        const float end = In(2, 6);
        SetFloat(state, D3DRS_FOGSTART, Chance(0.3) ? end : In(0.2, 1.9)), SetFloat(state, D3DRS_FOGEND, end);
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

TEST(FixedFunction, RandomStatesGiveThePixelsOfTheReference) {
    const char* asked = std::getenv("FIXED_FUNCTION_CASES");
    const int cases = asked ? std::atoi(asked) : 180;
    Canvas opaque(kSize, kSize), with_alpha(kSize, kSize, D3DFMT_A8R8G8B8);
    Dice dice(5);
    int sure = 0;
    for (int i = 0; i < cases && !testing::Test::HasFailure(); ++i) {
        SCOPED_TRACE("case " + std::to_string(i));
        const Scene scene = dice.Roll();
        sure += ExpectReference(scene, scene.alpha_in_target ? with_alpha : opaque);
    }
    EXPECT_GT(sure, cases / 2);
    std::printf("%d cases, of which %d are far from every step\n", cases, sure);
}

}   // namespace
}   // namespace sparkrig
