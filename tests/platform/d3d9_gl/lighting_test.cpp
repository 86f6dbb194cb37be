// Lights, materials and colour sources against the reference on the processor. A vertex is drawn as a point that covers
// the whole canvas, so that its colour can be read anywhere.
#include <gtest/gtest.h>

#include <bit>
#include <random>

#include "tests/platform/d3d9_gl/matrices.h"
#include "tests/platform/d3d9_gl/reference.h"
#include "tests/support/canvas.h"

namespace sparkrig {
namespace {

struct LitVertex {
    static constexpr DWORD kFvf = D3DFVF_XYZ | D3DFVF_NORMAL;
    D3DVECTOR position, normal;
};
struct BareVertex {
    static constexpr DWORD kFvf = D3DFVF_XYZ;
    D3DVECTOR position;
};
struct ColouredLitVertex {
    static constexpr DWORD kFvf = D3DFVF_XYZ | D3DFVF_NORMAL | D3DFVF_DIFFUSE | D3DFVF_SPECULAR;
    D3DVECTOR position, normal;
    D3DCOLOR diffuse, specular;
};

constexpr D3DMATERIAL9 kMaterial = {
    {0.9f, 0.6f, 0.3f, 0.7f}, {0.2f, 0.5f, 0.4f, 1}, {0.8f, 0.7f, 0.5f, 1}, {0.05f, 0.1f, 0.02f, 1}, 6.5f};
constexpr D3DVECTOR kPosition = {0.4f, -0.3f, 0.6f};
constexpr D3DVECTOR kNormal = {0.48f, 0.36f, -0.8f};

class Lighting : public testing::Test {
  protected:
    Lighting() : canvas_(4, 4) {
        const float size = 256.0f;
        canvas_->SetRenderState(D3DRS_LIGHTING, TRUE);
        canvas_->SetRenderState(D3DRS_POINTSIZE, std::bit_cast<DWORD>(size));
        canvas_->SetRenderState(D3DRS_POINTSIZE_MAX, std::bit_cast<DWORD>(size));
        canvas_->SetRenderState(D3DRS_AMBIENT, Argb(255, 30, 60, 90));
        const D3DMATRIX projection = Perspective(0.5f, 20);
        canvas_->SetTransform(D3DTS_VIEW, &view_);
        canvas_->SetTransform(D3DTS_PROJECTION, &projection);
        canvas_->SetTransform(D3DTS_WORLD, &world_);
        canvas_->SetMaterial(&kMaterial);
        reference_.material = kMaterial;
        reference_.ambient = {30 / 255.0f, 60 / 255.0f, 90 / 255.0f, 1};
        reference_.view = view_;
    }

    void SetLights(const std::vector<D3DLIGHT9>& lights) {
        for (DWORD i = 0; i < 8; ++i) canvas_->LightEnable(i, FALSE);
        for (DWORD i = 0; i < lights.size(); ++i) {
            canvas_->SetLight(i, &lights[i]);
            canvas_->LightEnable(i, TRUE);
        }
        reference_.lights = lights;
    }
    template <class Vertex>
    Rgb Draw(const Vertex& vertex) {
        canvas_.Clear(0);
        canvas_.Draw<Vertex>(Vertex::kFvf, D3DPT_POINTLIST, 1, {vertex});
        return canvas_.Pixel(2, 1);
    }
    // Diffuse plus specular colour, as they reach the screen.
    Rgb Wanted(bool normalized) {
        const reference::Vec v = reference::Times(reference::From(kPosition), 1, world_ * view_);
        reference::Vec n = reference::TurnNormal(reference::From(kNormal), world_ * view_);
        if (normalized) n = reference::Normalize(n);
        const reference::LitColours lit = reference::Light(reference_, v, n);
        const auto byte = [&](std::size_t i) {
            return static_cast<int>(std::lround(std::min(lit.diffuse[i] + lit.specular[i], 1.0) * 255));
        };
        return {byte(0), byte(1), byte(2)};
    }
    void ExpectReference(const std::string& what, bool normalized = false) {
        const Rgb wanted = Wanted(normalized), found = Draw(LitVertex{kPosition, kNormal});
        EXPECT_TRUE(Near(found, wanted, 2)) << what << ": " << found << ", wanted " << wanted;
    }

    Canvas canvas_;
    D3DMATRIX world_ = Scaling(1.2f, 0.8f, 1.1f) * Rotation({0, 1, 0}, 0.5f) * Translation(0.1f, 0.2f, 0.3f);
    D3DMATRIX view_ = Rotation({1, 0, 0}, -0.3f) * Translation(-0.2f, 0.15f, 2.5f);
    reference::Lighting reference_;
};

D3DLIGHT9 RandomLight(D3DLIGHTTYPE type, std::mt19937& generator) {
    std::uniform_real_distribution<float> unit(0.1f, 1.0f), offset(-0.8f, 0.8f);
    D3DLIGHT9 light = {};
    light.Type = type;
    light.Diffuse = {unit(generator), unit(generator), unit(generator), 1};
    light.Specular = {unit(generator), unit(generator), unit(generator), 1};
    light.Ambient = {unit(generator) * 0.3f, unit(generator) * 0.3f, unit(generator) * 0.3f, 1};
    light.Position = {0.5f + offset(generator), offset(generator), -1.5f + offset(generator)};
    light.Direction = {offset(generator) * 0.5f, offset(generator) * 0.5f, 1.7f};
    light.Range = 3.5f + offset(generator);
    light.Attenuation0 = 0.4f * unit(generator);
    light.Attenuation1 = 0.6f * unit(generator);
    light.Attenuation2 = 0.5f * unit(generator);
    light.Theta = 0.4f * unit(generator);
    light.Phi = 1.5f + 0.5f * unit(generator);
    light.Falloff = 0.6f + unit(generator);
    return light;
}

TEST_F(Lighting, EqualsTheReferenceForEveryKindOfLight) {
    std::mt19937 generator(11);
    for (const bool specular : {false, true}) {
        canvas_->SetRenderState(D3DRS_SPECULARENABLE, specular);
        reference_.specular = specular;
        for (const D3DLIGHTTYPE type : {D3DLIGHT_POINT, D3DLIGHT_SPOT, D3DLIGHT_DIRECTIONAL}) {
            for (int round = 0; round < 12; ++round) {
                SetLights({RandomLight(type, generator)});
                ExpectReference("type " + std::to_string(type) + " round " + std::to_string(round));
            }
        }
        SetLights({RandomLight(D3DLIGHT_SPOT, generator), RandomLight(D3DLIGHT_POINT, generator),
                   RandomLight(D3DLIGHT_DIRECTIONAL, generator)});
        ExpectReference("three lights");
    }
}

TEST_F(Lighting, NormalizesNormalsOnRequestOnly) {
    std::mt19937 generator(12);
    world_ = Scaling(1.6f, 1.6f, 1.6f) * world_;
    canvas_->SetTransform(D3DTS_WORLD, &world_);
    SetLights({RandomLight(D3DLIGHT_DIRECTIONAL, generator)});
    ASSERT_FALSE(Near(Wanted(false), Wanted(true), 6));
    ExpectReference("as it comes");
    canvas_->SetRenderState(D3DRS_NORMALIZENORMALS, TRUE);
    ExpectReference("normalised", true);
}

TEST_F(Lighting, SeesHighlightsFromInfinityWithoutALocalViewer) {
    std::mt19937 generator(13);
    canvas_->SetRenderState(D3DRS_SPECULARENABLE, TRUE);
    canvas_->SetRenderState(D3DRS_LOCALVIEWER, FALSE);
    reference_.specular = true;
    SetLights({RandomLight(D3DLIGHT_POINT, generator)});
    const Rgb local = Wanted(false);
    reference_.local_viewer = false;
    ASSERT_FALSE(Near(local, Wanted(false), 4));
    ExpectReference("viewer at infinity");
}

TEST_F(Lighting, SkipsLightsOutOfRangeOutsideTheConeAndBehind) {
    std::mt19937 generator(14);
    D3DLIGHT9 far = RandomLight(D3DLIGHT_POINT, generator), aside = RandomLight(D3DLIGHT_SPOT, generator);
    D3DLIGHT9 behind = RandomLight(D3DLIGHT_DIRECTIONAL, generator), plain = RandomLight(D3DLIGHT_POINT, generator);
    far.Range = 0.5f;
    aside.Direction = {0, 1, -0.2f};
    behind.Direction = {0.3f, 0.2f, -1};
    plain.Attenuation0 = plain.Attenuation1 = plain.Attenuation2 = 0;   // not weakened at all
    for (const D3DLIGHT9& light : {far, aside, behind, plain}) {
        SetLights({light});
        ExpectReference("light of type " + std::to_string(light.Type));
    }
}

TEST_F(Lighting, TakesColoursFromTheVertexWhereTheStatesSaySo) {
    const ColouredLitVertex vertex = {kPosition, kNormal, Argb(128, 100, 220, 60), Argb(255, 40, 80, 160)};
    const D3DCOLORVALUE diffuse = {100 / 255.0f, 220 / 255.0f, 60 / 255.0f, 1};
    const D3DCOLORVALUE specular = {40 / 255.0f, 80 / 255.0f, 160 / 255.0f, 1};
    std::mt19937 generator(15);
    SetLights({RandomLight(D3DLIGHT_DIRECTIONAL, generator)});
    canvas_->SetRenderState(D3DRS_SPECULARENABLE, TRUE);
    reference_.specular = true;
    const auto expect = [&](const char* what) {
        const Rgb wanted = Wanted(false), found = Draw(vertex);
        EXPECT_TRUE(Near(found, wanted, 2)) << what << ": " << found << ", wanted " << wanted;
    };
    reference_.material.Diffuse = diffuse;   // the defaults: diffuse from colour 1, specular from colour 2
    reference_.material.Specular = specular;
    expect("defaults");
    canvas_->SetRenderState(D3DRS_DIFFUSEMATERIALSOURCE, D3DMCS_COLOR2);
    canvas_->SetRenderState(D3DRS_SPECULARMATERIALSOURCE, D3DMCS_COLOR1);
    canvas_->SetRenderState(D3DRS_AMBIENTMATERIALSOURCE, D3DMCS_COLOR1);
    canvas_->SetRenderState(D3DRS_EMISSIVEMATERIALSOURCE, D3DMCS_COLOR2);
    reference_.material.Diffuse = reference_.material.Emissive = specular;
    reference_.material.Specular = reference_.material.Ambient = diffuse;
    expect("crossed");
    canvas_->SetRenderState(D3DRS_COLORVERTEX, FALSE);
    reference_.material = kMaterial;
    expect("material only");
    canvas_->SetRenderState(D3DRS_COLORVERTEX, TRUE);
    ExpectReference("a vertex without colours");
}

TEST_F(Lighting, GivesTheAlphaOfTheDiffuseColour) {
    canvas_->SetRenderState(D3DRS_ALPHABLENDENABLE, TRUE);
    canvas_->SetRenderState(D3DRS_SRCBLEND, D3DBLEND_SRCALPHA);
    canvas_->SetRenderState(D3DRS_DESTBLEND, D3DBLEND_ZERO);
    canvas_->SetRenderState(D3DRS_DIFFUSEMATERIALSOURCE, D3DMCS_MATERIAL);
    Rgb wanted = Wanted(false);
    wanted = {wanted.r * 7 / 10, wanted.g * 7 / 10, wanted.b * 7 / 10};
    EXPECT_TRUE(Near(Draw(LitVertex{kPosition, kNormal}), wanted, 2)) << Draw(LitVertex{kPosition, kNormal});
}

TEST_F(Lighting, WithoutNormalsLeavesAmbientAndEmissive) {
    std::mt19937 generator(16);
    D3DLIGHT9 light = RandomLight(D3DLIGHT_DIRECTIONAL, generator);
    SetLights({light});
    reference_.lights[0].Diffuse = {};
    EXPECT_TRUE(Near(Draw(BareVertex{kPosition}), Wanted(false), 1)) << Draw(BareVertex{kPosition}) << Wanted(false);
}

}   // namespace
}   // namespace sparkrig
