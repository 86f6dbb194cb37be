// The program's own vertex and pixel functions: what compiled effects (tests/fxc) do not show.
#include <gtest/gtest.h>

#include <algorithm>

#include "platform/d3d9_gl/device_hooks.h"
#include "tests/support/canvas.h"

namespace sparkrig {
namespace {

constexpr D3DCOLOR kDiffuse = Argb(128, 200, 100, 50);

/// Declarations stand before a body, whose vertex stage has the position.
ShaderCode Code(DWORD varyings, const std::string& declarations, const std::string& body) {
    ShaderCode code;
    code.glsl = "#version 450\n" + declarations + "void main() {" + body + "}\n";
    code.varyings = varyings;
    return code;
}
ShaderCode VertexCode(DWORD varyings, const std::string& declarations, const std::string& body) {
    return Code(varyings, "layout(location = 0) in vec4 place;\n" + declarations,
                "gl_Position = vec4(place.xyz, 1.0);" + body);
}
ShaderCode PixelCode(DWORD varyings, const std::string& declarations, const std::string& body) {
    return Code(varyings, "layout(location = 0) out vec4 pixel;\n" + declarations, body);
}
constexpr DWORD kColour = 1u << kVaryingColor0, kCoordinate = 1u << kVaryingTexCoord0;

class Shaders : public testing::Test {
  protected:
    Shaders() : canvas_(8, 8) {}

    /// Empty code: that of the device.
    void Use(const ShaderCode& vertex, const ShaderCode& pixel) {
        vertex_.Reset(), pixel_.Reset();
        EXPECT_EQ(vertex.glsl.empty() ? D3D_OK : canvas_->CreateVertexShader(vertex, vertex_.Receive()), D3D_OK);
        EXPECT_EQ(pixel.glsl.empty() ? D3D_OK : canvas_->CreatePixelShader(pixel, pixel_.Receive()), D3D_OK);
        canvas_->SetVertexShader(vertex_.Get());
        canvas_->SetPixelShader(pixel_.Get());
    }
    Canvas canvas_;
    DevicePtr<IDirect3DVertexShader9> vertex_;
    DevicePtr<IDirect3DPixelShader9> pixel_;
};

TEST_F(Shaders, MissingVertexElementsHaveDefaults) {
    constexpr char kAll[] =
        "layout(location = 4) in vec4 size;\nlayout(location = 5) in vec4 colour;\n"
        "layout(location = 6) in vec4 colour1;\nlayout(location = 8) in vec4 uv1;\nlayout(location = 0) out vec4 "
        "all;\n";
    Use(VertexCode(kColour, kAll, "all = vec4(colour1.a, uv1.a, size.r, 1.0) * 0.5 * colour;"), {});   // which is white
    canvas_.Draw<D3DVECTOR>(D3DFVF_XYZ, D3DPT_TRIANGLELIST, 1, {{-3, -3, 0.5f}, {-3, 9, 0.5f}, {9, -3, 0.5f}});
    EXPECT_TRUE(Near(canvas_.Pixel(3, 4), Rgb{128, 128, 0}, 1)) << canvas_.Pixel(3, 4);
    EXPECT_EQ(canvas_->SetVertexShaderGlobals(nullptr, 16), D3DERR_INVALIDCALL);
}

TEST_F(Shaders, DrawPointsOfTheirOwnSizeAndAsSprites) {
    ShaderCode vertex =
        VertexCode(kCoordinate, "layout(location = 2) out vec4 uv;\n", "uv = vec4(0.3); gl_PointSize = 4.0;");
    vertex.writes_point_size = true;
    Use(vertex, PixelCode(kCoordinate, "layout(location = 2) in vec4 uv;\n", "pixel = vec4(uv.xy, 1.0, 1.0);"));
    canvas_->SetRenderState(D3DRS_POINTSPRITEENABLE, TRUE);
    canvas_.Draw<D3DVECTOR>(D3DFVF_XYZ, D3DPT_POINTLIST, 1, {{-0.19f, 0.06f, 0.5f}});   // at 3.24, 3.76
    EXPECT_EQ(std::ranges::count_if(canvas_.Pixels(), [](D3DCOLOR seen) { return ToRgb(seen).b == 255; }), 16);
    EXPECT_TRUE(Near(canvas_.Pixel(2, 2), Rgb{48, 15, 255}, 2)) << canvas_.Pixel(2, 2);   // 0.19, 0.06
    EXPECT_TRUE(Near(canvas_.Pixel(5, 5), Rgb{239, 206, 255}, 2)) << canvas_.Pixel(5, 5);
}

TEST_F(Shaders, AreRefusedWhenTheyDoNotCompile) {
    const ShaderCode broken = PixelCode(0, "", "pixel = vec4(unknown);");
    EXPECT_EQ(canvas_->CreatePixelShader(broken, pixel_.Receive()), D3DERR_INVALIDCALL);
    EXPECT_EQ(canvas_->CreateVertexShader(broken, vertex_.Receive()), D3DERR_INVALIDCALL);
}

TEST_F(Shaders, TakeTheirProgramsAlongWhenTheyGo) {
    canvas_.FillAll(kDiffuse);
    const std::size_t before = ProgramCount(canvas_.Device());
    for (int i = 0; i < 3; ++i) {
        Use({}, PixelCode(kColour, "layout(location = 0) in vec4 in_0;\n",
                          "pixel = in_0 * 0." + std::to_string(i + 3) + ";"));
        canvas_.FillAll(kDiffuse);
        EXPECT_NEAR(canvas_.Pixel(3, 4).r, 20 * (i + 3), 1);
        EXPECT_EQ(ProgramCount(canvas_.Device()), before + 1);
    }
    Use({}, {});
    canvas_.FillAll(kDiffuse);
    EXPECT_EQ(ProgramCount(canvas_.Device()), before);
}

}   // namespace
}   // namespace sparkrig
