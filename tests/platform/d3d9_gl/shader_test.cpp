// The program's own vertex and pixel functions, and what the device puts around them.
#include <gtest/gtest.h>

#include "platform/d3d9_gl/device_hooks.h"
#include "tests/support/canvas.h"

namespace sparkrig {
namespace {

struct Vertex {
    static constexpr DWORD kFvf = D3DFVF_XYZ | D3DFVF_DIFFUSE | D3DFVF_TEX1;
    float x, y, z;
    D3DCOLOR diffuse;
    float u, v;
};

constexpr D3DCOLOR kDiffuse = Argb(128, 200, 100, 50);

std::string Varyings(DWORD varyings, const char* direction) {
    std::string text;
    for (int i = 0; i < kVaryings; ++i) {
        if ((varyings >> i & 1) == 0) continue;
        text.append("layout(location = ").append(std::to_string(i)).append(") ").append(direction);
        text.append(" vec4 ").append(direction).append("_").append(std::to_string(i)).append(";\n");
    }
    return text;
}

// Passes on the position; the body may move it, and writes the varyings out_N.
ShaderCode VertexCode(DWORD varyings, const std::string& body, const std::string& declarations = "") {
    ShaderCode code;
    code.glsl = R"(#version 450
layout(location = 0) in vec4 in_position;
layout(location = 4) in vec4 in_size;
layout(location = 5) in vec4 in_color;
layout(location = 6) in vec4 in_color1;
layout(location = 7) in vec4 in_uv;
layout(location = 8) in vec4 in_uv1;
)" + Varyings(varyings, "out") +
                declarations + "void main() { gl_Position = vec4(in_position.xyz, 1.0);\n" + body + "}\n";
    code.varyings = varyings;
    return code;
}

ShaderCode PixelCode(DWORD varyings, const std::string& body, const std::string& declarations = "") {
    ShaderCode code;
    code.glsl = "#version 450\n" + declarations + Varyings(varyings, "in") +
                "layout(location = 0) out vec4 pixel_color;\nvoid main() { " + body + " }\n";
    code.varyings = varyings;
    return code;
}

constexpr DWORD kColour = 1u << kVaryingColor0, kColour1 = 1u << kVaryingColor1, kCoordinate = 1u << kVaryingTexCoord0,
                kCoordinate1 = kCoordinate << 1, kFogFactor = 1u << kVaryingFog;

class Shaders : public testing::Test {
  protected:
    Shaders() : canvas_(8, 8) {}

    // Empty code: that of the device.
    void Use(const ShaderCode& vertex, const ShaderCode& pixel) {
        vertex_.Reset(), pixel_.Reset();
        EXPECT_EQ(vertex.glsl.empty() ? D3D_OK : canvas_->CreateVertexShader(vertex, vertex_.Receive()), D3D_OK);
        EXPECT_EQ(pixel.glsl.empty() ? D3D_OK : canvas_->CreatePixelShader(pixel, pixel_.Receive()), D3D_OK);
        canvas_->SetVertexShader(vertex_.Get());
        canvas_->SetPixelShader(pixel_.Get());
    }
    // A quad over the canvas.
    Rgb Draw() {
        canvas_.Clear(0);
        const auto corner = [](float x, float y) { return Vertex{x, y, 0.5f, kDiffuse, 0.25f, 0.75f}; };
        const std::vector<Vertex> quad = {corner(-1.1f, -1.1f), corner(-1.1f, 1.1f), corner(1.1f, -1.1f),
                                          corner(1.1f, 1.1f)};
        EXPECT_EQ(canvas_.Draw(Vertex::kFvf, D3DPT_TRIANGLESTRIP, 2, quad), D3D_OK);
        return canvas_.Pixel(3, 4);
    }

    Canvas canvas_;
    DevicePtr<IDirect3DVertexShader9> vertex_;
    DevicePtr<IDirect3DPixelShader9> pixel_;
};

TEST_F(Shaders, VertexFunctionsFeedTheTextureStages) {
    const auto texture = MakeTexture(
        canvas_.Device(), 2, 2, {Argb(255, 1, 1, 1), Argb(255, 2, 2, 2), Argb(255, 51, 102, 204), Argb(255, 4, 4, 4)});
    canvas_->SetTexture(0, texture.Get());
    Use(VertexCode(kColour | kCoordinate, "out_0 = in_color; out_2 = in_uv;"), {});
    EXPECT_TRUE(Near(Draw(), Rgb{40, 40, 40}, 1)) << Draw();   // texture times diffuse
}

TEST_F(Shaders, UnwrittenInterpolantsHaveDefaults) {
    const ShaderCode vertex = VertexCode(0, "");
    Use(vertex, PixelCode(kColour | kColour1 | kCoordinate,
                          "pixel_color = vec4(in_0.r * 0.25, in_1.a * 0.5 + 0.25, in_2.a * 0.75, 1.0);"));
    EXPECT_TRUE(Near(Draw(), Rgb{64, 64, 191}, 1)) << Draw();   // white, (0, 0, 0, 0), (0, 0, 0, 1)
    Use(vertex, {});
    EXPECT_TRUE(Near(Draw(), Rgb{255, 255, 255}, 0)) << Draw();
}

TEST_F(Shaders, MissingVertexElementsHaveDefaults) {
    // No size, second colour or second set in the format; a missing first colour is white.
    Use(VertexCode(kColour, "out_0 = vec4(in_color1.a, in_uv1.a, in_size.r, 1.0) * 0.5;"), {});
    EXPECT_TRUE(Near(Draw(), Rgb{128, 128, 0}, 1)) << Draw();
    Use(VertexCode(kColour, "out_0 = in_color;"), {});
    canvas_.Draw<D3DVECTOR>(D3DFVF_XYZ, D3DPT_TRIANGLELIST, 1, {{-3, -3, 0.5f}, {-3, 9, 0.5f}, {9, -3, 0.5f}});
    EXPECT_TRUE(Near(canvas_.Pixel(3, 4), Rgb{255, 255, 255}, 0));
}

TEST_F(Shaders, ReadTheirGlobals) {
    ShaderCode vertex = VertexCode(kColour, "gl_Position += offset; out_0 = tint;",
                                   "layout(std140, binding = 0) uniform VertexGlobals { vec4 offset, tint; };\n");
    vertex.globals_bytes = 32;
    ShaderCode pixel = PixelCode(kColour, "pixel_color = in_0 * scale;",
                                 "layout(std140, binding = 1) uniform PixelGlobals { vec4 scale; };\n");
    pixel.globals_bytes = 16;
    Use(vertex, pixel);
    const float for_vertex[] = {1.0f, 0, 0, 0, 0.8f, 0.6f, 0.4f, 1}, for_pixel[] = {0.5f, 1, 0.25f, 1};
    EXPECT_EQ(canvas_->SetVertexShaderGlobals(for_vertex, sizeof for_vertex), D3D_OK);
    EXPECT_EQ(canvas_->SetPixelShaderGlobals(for_pixel, sizeof for_pixel), D3D_OK);
    Draw();
    EXPECT_TRUE(Near(canvas_.Pixel(6, 4), Rgb{102, 153, 26}, 1)) << canvas_.Pixel(6, 4);
    EXPECT_TRUE(Near(canvas_.Pixel(1, 4), Rgb{0, 0, 0}, 0));   // moved half a canvas to the right
    const float changed[] = {0.25f, 0.5f, 1, 1};
    canvas_->SetPixelShaderGlobals(changed, sizeof changed);
    Draw();
    EXPECT_TRUE(Near(canvas_.Pixel(6, 4), Rgb{51, 77, 102}, 1)) << canvas_.Pixel(6, 4);
    EXPECT_EQ(canvas_->SetVertexShaderGlobals(nullptr, 16), D3DERR_INVALIDCALL);
}

TEST_F(Shaders, AreFoggedAndAlphaTested) {
    canvas_->SetRenderState(D3DRS_FOGENABLE, TRUE);
    canvas_->SetRenderState(D3DRS_FOGCOLOR, Argb(0, 40, 80, 120));
    const ShaderCode fogged = VertexCode(kColour | kFogFactor, "out_0 = in_color; out_10 = vec4(0.25);");
    const ShaderCode plain = VertexCode(kColour, "out_0 = in_color;");
    const ShaderCode pixel = PixelCode(kColour, "pixel_color = in_0;");
    for (const ShaderCode& code : {ShaderCode(), pixel}) {
        Use(fogged, code);
        EXPECT_TRUE(Near(Draw(), Rgb{80, 85, 103}, 1)) << Draw();
        Use(plain, code);
        EXPECT_TRUE(Near(Draw(), ToRgb(kDiffuse), 0)) << Draw();
    }
    canvas_->SetRenderState(D3DRS_FOGENABLE, FALSE);
    canvas_->SetRenderState(D3DRS_ALPHATESTENABLE, TRUE);
    canvas_->SetRenderState(D3DRS_ALPHAFUNC, D3DCMP_GREATER);
    canvas_->SetRenderState(D3DRS_ALPHAREF, 127);
    Use(plain, pixel);
    EXPECT_TRUE(Near(Draw(), ToRgb(kDiffuse), 0));
    canvas_->SetRenderState(D3DRS_ALPHAREF, 128);
    EXPECT_TRUE(Near(Draw(), Rgb{0, 0, 0}, 0));
}

TEST_F(Shaders, PixelFunctionsReadTheFixedPipeline) {
    Use({}, PixelCode(kColour | kCoordinate | kCoordinate1,
                      "pixel_color = vec4(in_0.r, in_2.y, texture(picture, in_3.xy).b, 1.0);",
                      "layout(binding = 3) uniform sampler2D picture;\n"));
    const auto texture = MakeTexture(canvas_.Device(), 1, 1, {Argb(255, 10, 20, 77)});
    canvas_->SetTexture(3, texture.Get());
    EXPECT_TRUE(Near(Draw(), Rgb{200, 191, 77}, 1)) << Draw();
    canvas_->SetTexture(3, nullptr);
    EXPECT_TRUE(Near(Draw(), Rgb{200, 191, 0}, 1)) << Draw();   // a sampler without a texture is black
}

TEST_F(Shaders, DrawPointsOfTheirOwnSizeAndAsSprites) {
    ShaderCode vertex = VertexCode(kCoordinate | kColour, "out_2 = vec4(0.3); out_0 = vec4(1.0); gl_PointSize = 4.0;");
    vertex.writes_point_size = true;
    Use(vertex, PixelCode(kCoordinate, "pixel_color = vec4(in_2.xy, 1.0, 1.0);"));
    canvas_->SetRenderState(D3DRS_POINTSPRITEENABLE, TRUE);
    canvas_.Draw<Vertex>(Vertex::kFvf, D3DPT_POINTLIST, 1, {{-0.19f, 0.06f, 0.5f, kDiffuse, 0, 0}});   // at 3.24, 3.76
    int drawn = 0;
    for (const D3DCOLOR pixel_colour : canvas_.Pixels()) drawn += ToRgb(pixel_colour).b == 255;
    EXPECT_EQ(drawn, 16);
    EXPECT_TRUE(Near(canvas_.Pixel(2, 2), Rgb{48, 15, 255}, 2)) << canvas_.Pixel(2, 2);   // 0.19, 0.06
    EXPECT_TRUE(Near(canvas_.Pixel(5, 5), Rgb{239, 206, 255}, 2)) << canvas_.Pixel(5, 5);
}

TEST_F(Shaders, AreRefusedWhenTheyDoNotCompile) {
    ShaderCode broken = PixelCode(0, "pixel_color = vec4(unknown);");
    EXPECT_EQ(canvas_->CreatePixelShader(broken, pixel_.Receive()), D3DERR_INVALIDCALL);
    EXPECT_EQ(canvas_->CreateVertexShader(broken, vertex_.Receive()), D3DERR_INVALIDCALL);
}

TEST_F(Shaders, TakeTheirProgramsAlongWhenTheyGo) {
    Draw();
    const std::size_t before = ProgramCount(canvas_.Device());
    for (int i = 0; i < 3; ++i) {
        Use({}, PixelCode(kColour, "pixel_color = in_0 * 0." + std::to_string(i + 3) + ";"));
        EXPECT_NEAR(Draw().r, 20 * (i + 3), 1);
        EXPECT_EQ(ProgramCount(canvas_.Device()), before + 1);
    }
    Use({}, {});
    Draw();
    EXPECT_EQ(ProgramCount(canvas_.Device()), before);
}

}   // namespace
}   // namespace sparkrig
