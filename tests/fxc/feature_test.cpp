// One small effect a feature of the language, compiled and drawn with OpenGL, with the pixel that it must give.
#include <gtest/gtest.h>

#include <sstream>

#include "platform/d3dx/d3dx_effect.h"
#include "tests/fxc/fxc_run.h"
#include "tests/support/canvas.h"
#include "tests/support/cases.h"

namespace sparkrig {
namespace {

struct FeatureVertex {
    static constexpr DWORD kFvf = D3DFVF_XYZB4 | D3DFVF_LASTBETA_UBYTE4 | D3DFVF_NORMAL | D3DFVF_PSIZE |
                                  D3DFVF_DIFFUSE | D3DFVF_SPECULAR | 8u << D3DFVF_TEXCOUNT_SHIFT;
    float x, y, z;
    float weights[3] = {0.1f, 0.3f, 0.2f};
    BYTE indices[4] = {0, 5, 0, 0};
    float normal[3] = {0.2f, 0.4f, 0.6f};
    float size = 1;
    D3DCOLOR diffuse = Argb(153, 255, 102, 51), specular = Argb(255, 51, 102, 153);
    float coordinates[8][2] = {{0.25f, 0.75f}, {0.4f, 0.6f}, {}, {}, {}, {}, {0.2f, 0}, {0.6f, 0}};
};

/// Draws every pass of an effect's first valid technique over a canvas, each texture with (0.2, 0.4, 0.8, 0.6) at the
/// first coordinate.
class FeatureCanvas : public Canvas {
  public:
    FeatureCanvas() : Canvas(8, 8) {
        constexpr D3DCOLOR kOther = Argb(255, 255, 0, 255);
        texture_ = MakeTexture(Device(), 2, 2, {kOther, kOther, Argb(153, 51, 102, 204), kOther});
    }

    std::string Draw(const std::string& file, Rgb& pixel) {
        DevicePtr<ID3DXEffect> effect;
        DevicePtr<ID3DXBuffer> errors;
        if (FAILED(D3DXCreateEffectFromFileA(&Device(), file.c_str(), 0, nullptr, effect.Receive(), errors.Receive())))
            return errors ? static_cast<const char*>(errors->GetBufferPointer()) : "no effect";
        SetTextures(*effect, nullptr);
        UINT technique = 0, passes = 0;
        while (FAILED(effect->ValidateTechnique(effect->GetTechnique(technique))))
            if (!effect->GetTechnique(++technique)) return "no valid technique";
        effect->SetTechnique(effect->GetTechnique(technique));
        Clear(0);
        effect->Begin(&passes, 0);
        for (UINT pass = 0; pass < passes; ++pass) {
            if (FAILED(effect->BeginPass(pass))) return "a pass does not begin";
            if (FAILED(DrawQuad())) return "a pass does not draw";
            effect->EndPass();
        }
        effect->End();
        pixel = Pixel(3, 4);
        return {};
    }

  private:
    void SetTextures(ID3DXEffect& effect, D3DXHANDLE parent) {
        for (UINT i = 0; const D3DXHANDLE parameter = effect.GetParameter(parent, i); ++i) {
            effect.SetTexture(parameter, texture_.Get());
            SetTextures(effect, parameter);
        }
    }

    HRESULT DrawQuad() {
        return Canvas::Draw<FeatureVertex>(
            FeatureVertex::kFvf, D3DPT_TRIANGLESTRIP, 2,
            {{-1.1f, -1.1f, 0.5f}, {-1.1f, 1.1f, 0.5f}, {1.1f, -1.1f, 0.5f}, {1.1f, 1.1f, 0.5f}});
    }

    DevicePtr<IDirect3DTexture9> texture_;
};

/// What stands behind "=> " is the body of a pixel function.
std::string SourceOf(const std::string& text) {
    const std::size_t body = text.find("=> ");
    if (body == std::string::npos) return text;
    return text.substr(0, body) + "float4 P(float2 uv : TEXCOORD0) : COLOR {" + text.substr(body + 3) +
           "\n}\ntechnique { pass { PixelShader = compile ps_3_0 P(); } }\n";
}

TEST(FxcFeatures, GiveTheirPixel) {
    const FxcFolder folder;
    FeatureCanvas canvas;
    const std::vector<Case> features = ReadCases("tests/fxc/features.fx", "//// ");
    ASSERT_FALSE(features.empty());
    for (const auto& [title, text] : features) {
        folder.Write("t.fx", SourceOf(text));
        Rgb pixel, wanted;
        std::istringstream(title.substr(title.rfind(':') + 1)) >> wanted.r >> wanted.g >> wanted.b;
        EXPECT_EQ(canvas.Draw(folder.Path() + "t.fx", pixel), "") << title;
        EXPECT_TRUE(Near(pixel, wanted, 1)) << title << ", not " << pixel;
    }
}

}   // namespace
}   // namespace sparkrig
