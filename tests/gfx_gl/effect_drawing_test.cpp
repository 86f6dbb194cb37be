// Effects on the real device: where the vertex stage puts pixels, and what the pixel stage puts there.
#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>
#include <utility>

#include "platform/d3dx/d3dx_effect.h"
#include "tests/support/canvas.h"
#include "tests/support/temporary_folder.h"

namespace sparkrig {
namespace {

constexpr D3DCOLOR kBack = Argb(255, 10, 20, 30);
constexpr UINT kSize = 64;

DevicePtr<ID3DXEffect> LoadEffect(Canvas& canvas, const std::string& path) {
    DevicePtr<ID3DXEffect> effect;
    DevicePtr<ID3DXBuffer> errors;
    if (FAILED(
            D3DXCreateEffectFromFileA(&canvas.Device(), path.c_str(), 0, nullptr, effect.Receive(), errors.Receive())))
        throw std::runtime_error(errors ? static_cast<const char*>(errors->GetBufferPointer()) : "no effect");
    EXPECT_EQ(effect->ValidateTechnique(effect->GetTechnique(0)), D3D_OK);
    return effect;
}

DevicePtr<ID3DXEffect> LoadText(Canvas& canvas, const std::string& text) {
    const ScratchFolder folder;
    return LoadEffect(canvas, folder.Write("t.fx", text));
}

template <class Vertex>
void DrawWith(Canvas& canvas, ID3DXEffect& effect, DWORD fvf, D3DPRIMITIVETYPE type, UINT count,
              const std::vector<Vertex>& vertices) {
    UINT passes = 0;
    ASSERT_EQ(effect.Begin(&passes, 0), D3D_OK);
    for (UINT pass = 0; pass < passes; ++pass) {
        ASSERT_EQ(effect.BeginPass(pass), D3D_OK);
        ASSERT_EQ(canvas.Draw(fvf, type, count, vertices), D3D_OK);
        effect.EndPass();
    }
    ASSERT_EQ(effect.End(), D3D_OK);
}

/// The place of a pixel's centre in the square from -1 to 1 that `matrix` takes to clip coordinates.
D3DXVECTOR3 PlaceInSquare(const D3DXMATRIX& matrix, UINT x, UINT y) {
    D3DXMATRIX inverse;
    D3DXMatrixInverse(&inverse, nullptr, &matrix);
    constexpr float kHalf = kSize / 2.0f;
    const D3DXVECTOR3 clip(static_cast<float>(x) / kHalf - 1, 1 - static_cast<float>(y) / kHalf, 0.5f);
    D3DXVECTOR3 place;
    return *D3DXVec3TransformCoord(&place, &clip, &inverse);
}

/// Calls check(x, y, place, pixel) for every pixel that is clearly inside or outside of the square.
template <class Check>
void ForEveryPixel(Canvas& canvas, const D3DXMATRIX& matrix, const Check& check) {
    constexpr float kMargin = 0.02f;
    const std::vector<D3DCOLOR> pixels = canvas.Pixels();
    for (UINT y = 0; y < kSize; ++y) {
        for (UINT x = 0; x < kSize; ++x) {
            const D3DXVECTOR3 place = PlaceInSquare(matrix, x, y);
            const float edge = std::max(std::abs(place.x), std::abs(place.y));
            if (std::abs(edge - 1) > kMargin) check(x, y, place, pixels[y * kSize + x]);
        }
    }
}

struct PlainVertex {
    static constexpr DWORD kFvf = D3DFVF_XYZ | D3DFVF_DIFFUSE | D3DFVF_TEX1;
    float x, y, z;
    D3DCOLOR diffuse;
    float u, v;
};

std::vector<PlainVertex> Square(D3DCOLOR diffuse) {
    return {{-1, -1, 0, diffuse, 0, 1}, {-1, 1, 0, diffuse, 0, 0}, {1, -1, 0, diffuse, 1, 1}, {1, 1, 0, diffuse, 1, 0}};
}

// Turned, scaled and sheared differently in x and y, moved, and at depth 0.5.
constexpr D3DXMATRIX kSkewed = {
    {{0.5f, 0.25f, 0, 0}, {-0.125f, 0.375f, 0, 0}, {0.75f, 0.5f, 1, 0}, {0.1875f, -0.25f, 0.5f, 1}}};

TEST(EffectDrawing, AVectorTimesAMatrixIsTheRowVectorProduct) {
    Canvas canvas(kSize, kSize);
    const auto effect = LoadText(canvas, R"(
float4x4 M;
struct Out { float4 p : POSITION; float4 c : COLOR0; };
Out V(float4 p : POSITION, float4 c : COLOR0) { Out o; o.p = mul(p, M); o.c = c; return o; }
technique { pass { VertexShader = compile vs_1_1 V(); } })");
    effect->SetMatrix(effect->GetParameter(nullptr, 0), &kSkewed);
    canvas.Clear(kBack);
    constexpr D3DCOLOR kFront = Argb(255, 200, 100, 50);
    DrawWith(canvas, *effect, PlainVertex::kFvf, D3DPT_TRIANGLESTRIP, 2, Square(kFront));
    int inside = 0;
    ForEveryPixel(canvas, kSkewed, [&](UINT x, UINT y, const D3DXVECTOR3& place, D3DCOLOR pixel) {
        const bool in = std::abs(place.x) < 1 && std::abs(place.y) < 1;
        inside += in ? 1 : 0;
        EXPECT_EQ(pixel, in ? kFront : kBack) << x << ", " << y;
    });
    EXPECT_GT(inside, 200);
}

TEST(EffectDrawing, StagesOfDifferentWidthMeet) {
    Canvas canvas(kSize, kSize);
    const auto effect = LoadText(canvas, R"(
float3x2 Shift; bool Swap; float4 Tint[2]; texture Picture;
sampler2D Reader : register(s3) = sampler_state { Texture = <Picture>; MinFilter = POINT; MagFilter = POINT; };
struct Out { float4 p : POSITION; float2 uv : TEXCOORD0; float k : TEXCOORD5; };
Out V(float3 p : POSITION, float2 uv : TEXCOORD0) {
    Out o; o.p = float4(p, 1); o.uv = mul(float3(uv, 1), Shift); o.k = 0.5; return o;
}
float4 P(float4 uv : TEXCOORD0, float4 k : TEXCOORD5) : COLOR {
    float4 texel = tex2D(Reader, Swap ? uv.yx : uv.xy);
    return texel * Tint[0] + Tint[1] * k.x * uv.w;
}
technique { pass { VertexShader = compile vs_2_0 V(); PixelShader = compile ps_2_0 P(); } })");
    // (u, v) becomes (v, u): the swap undoes it.
    const D3DXMATRIX exchange = {{{0, 1, 9, 9}, {1, 0, 9, 9}, {0, 0, 9, 9}, {9, 9, 9, 9}}};
    const D3DXVECTOR4 tint[2] = {{1, 0.5f, 0, 1}, {0, 0, 0.5f, 0}};
    const std::vector<D3DCOLOR> texels = {Argb(255, 40, 80, 0), Argb(255, 80, 160, 0), Argb(255, 120, 40, 0),
                                          Argb(255, 200, 20, 0)};
    const auto picture = MakeTexture(canvas.Device(), 2, 2, texels);
    effect->SetMatrix(effect->GetParameterByName(nullptr, "Shift"), &exchange);
    effect->SetBool(effect->GetParameterByName(nullptr, "Swap"), TRUE);
    effect->SetVectorArray(effect->GetParameterByName(nullptr, "Tint"), tint, 2);
    effect->SetTexture(effect->GetParameterByName(nullptr, "Picture"), picture.Get());
    canvas.Clear(kBack);
    DrawWith(canvas, *effect, PlainVertex::kFvf, D3DPT_TRIANGLESTRIP, 2, Square(0xFFFFFFFF));
    for (const UINT y : {10u, 50u}) {
        for (const UINT x : {10u, 50u}) {
            const Rgb texel = ToRgb(texels[(y > 32 ? 2 : 0) + (x > 32 ? 1 : 0)]);
            const Rgb expected{texel.r, texel.g / 2, 64};
            EXPECT_TRUE(Near(canvas.Pixel(x, y), expected, 1)) << x << ", " << y << ": " << canvas.Pixel(x, y);
        }
    }
}

TEST(EffectDrawing, APixelFunctionFollowsTheFixedVertexPipeline) {
    Canvas canvas(kSize, kSize);
    const auto effect = LoadText(canvas, R"(
float4 P(float4 c : COLOR0, float2 uv : TEXCOORD0) : COLOR { return float4(uv.x > 0.5 ? c.r : c.g, c.b, 0, 1); }
technique { pass { PixelShader = compile ps_2_0 P(); } })");
    canvas.Clear(kBack);
    DrawWith(canvas, *effect, PlainVertex::kFvf, D3DPT_TRIANGLESTRIP, 2, Square(Argb(255, 200, 100, 50)));
    EXPECT_TRUE(Near(canvas.Pixel(10, 30), {100, 50, 0}, 1)) << canvas.Pixel(10, 30);
    EXPECT_TRUE(Near(canvas.Pixel(50, 30), {200, 50, 0}, 1)) << canvas.Pixel(50, 30);
}

TEST(EffectDrawing, PixelsKnowTheirPlaceAndFace) {
    Canvas canvas(kSize, kSize);
    const auto effect = LoadText(canvas, R"(
float4 V(float4 p : POSITION) : POSITION { return p; }
float4 P(float2 at : VPOS, float face : VFACE) : COLOR { return float4(at / 255, face > 0 ? 1 : 0, 1); }
technique { pass { VertexShader = compile vs_3_0 V(); PixelShader = compile ps_3_0 P(); } })");
    for (const bool front : {true, false}) {
        std::vector<PlainVertex> vertices = Square(0xFFFFFFFF);   // clockwise on the screen: the front
        if (!front) std::swap(vertices[1], vertices[2]);
        canvas.Clear(kBack);
        DrawWith(canvas, *effect, PlainVertex::kFvf, D3DPT_TRIANGLESTRIP, 2, vertices);
        for (const auto& [x, y] : {std::pair{5u, 9u}, std::pair{60u, 20u}, std::pair{33u, 62u}}) {
            const Rgb expected{static_cast<int>(x), static_cast<int>(y), front ? 255 : 0};
            EXPECT_TRUE(Near(canvas.Pixel(x, y), expected, 0)) << canvas.Pixel(x, y) << " at " << x << ", " << y;
        }
    }
}

// ---- The particle shader

struct ParticleVertex {
    static constexpr DWORD kFvf = 0x272;
    D3DXVECTOR3 position, corner;
    float size;
    D3DCOLOR colour;
    D3DXVECTOR2 uv, rotation;
};

constexpr D3DXVECTOR3 kCentre(-7.75f, 4.25f, 12);
constexpr float kEdge = 22.5f, kAngle = 0.4f;

std::vector<ParticleVertex> Particle(D3DCOLOR colour) {
    const std::tuple<D3DXVECTOR3, D3DXVECTOR2> corners[] = {{{-1, -1, 0}, {0, 0}}, {{1, 1, 0}, {1, 1}},
                                                            {{1, -1, 0}, {1, 0}},  {{-1, -1, 0}, {0, 0}},
                                                            {{-1, 1, 0}, {0, 1}},  {{1, 1, 0}, {1, 1}}};
    std::vector<ParticleVertex> vertices;
    for (const auto& [corner, uv] : corners)
        vertices.push_back({kCentre, corner, kEdge, colour, uv, {std::cos(kAngle), std::sin(kAngle)}});
    return vertices;
}

/// One unit of the world is one pixel; the middle of the picture is the origin, y up, z goes to depth.
constexpr D3DXMATRIX kPixels = {{{1 / 32.0f, 0, 0, 0}, {0, 1 / 32.0f, 0, 0}, {0, 0, 1 / 64.0f, 0}, {0, 0, 0.25f, 1}}};

TEST(ParticleShader, PutsTheTurnedQuadWhereTheParticleIs) {
    Canvas canvas(kSize, kSize);
    const auto effect = LoadEffect(canvas, "shader/EffectParticle.fx");
    // The billboard turns x to y and y to -x; what it would move does not count.
    constexpr D3DXMATRIX kBillboard = {{{0, 1, 0, 0}, {-1, 0, 0, 0}, {0, 0, 1, 0}, {500, 600, 700, 1}}};
    const std::vector<D3DCOLOR> texels = {0xFFFFFFFF, 0xFF80FF00, 0xFF0080FF, 0xFFFF8080};
    const auto picture = MakeTexture(canvas.Device(), 2, 2, texels);
    canvas->SetTexture(0, picture.Get());
    effect->SetMatrix(effect->GetParameterBySemantic(nullptr, "BillboardMatrix"), &kBillboard);
    effect->SetMatrix(effect->GetParameterBySemantic(nullptr, "VIEWPROJECTION"), &kPixels);
    for (const bool at_particle : {true, false}) {
        effect->SetBool(effect->GetParameterBySemantic(nullptr, "UseParticlePos"), at_particle);
        canvas.Clear(kBack);
        DrawWith(canvas, *effect, ParticleVertex::kFvf, D3DPT_TRIANGLELIST, 2, Particle(Argb(255, 100, 200, 50)));
        // From the square of the corners to the picture: turned by the angle, by the billboard, scaled and moved.
        const float c = std::cos(kAngle), s = std::sin(kAngle), half = kEdge / 2;
        const D3DXVECTOR3 centre = at_particle ? kCentre : D3DXVECTOR3();
        const D3DXMATRIX placed = {{{-s * half, c * half, 0, 0},
                                    {-c * half, -s * half, 0, 0},
                                    {0, 0, 1, 0},
                                    {centre.x, centre.y, centre.z, 1}}};
        D3DXMATRIX square;
        D3DXMatrixMultiply(&square, &placed, &kPixels);
        ForEveryPixel(canvas, square, [&](UINT x, UINT y, const D3DXVECTOR3& place, D3DCOLOR pixel) {
            if (std::abs(place.x) > 1 || std::abs(place.y) > 1) {
                EXPECT_EQ(pixel, kBack) << x << ", " << y;
            } else if (std::abs(place.x) > 0.1f && std::abs(place.y) > 0.1f) {   // not between two texels
                const Rgb texel = ToRgb(texels[(place.y > 0 ? 2 : 0) + (place.x > 0 ? 1 : 0)]);
                const Rgb expected{texel.r * 100 / 255, texel.g * 200 / 255, texel.b * 50 / 255};
                EXPECT_TRUE(Near(ToRgb(pixel), expected, 1)) << x << ", " << y << ": " << ToRgb(pixel);
            }
        });
    }
}

}   // namespace
}   // namespace sparkrig
