#include "gfx/shaders/pass_target.h"

#include <cstdlib>
#include <string_view>

#include "base/numeric.h"

namespace sparkrig {

namespace {

constexpr struct {
    std::string_view prefix;
    TargetKind kind;
} kBuffers[] = {
    {"ScreenBuffer", TargetKind::FullBuffer},
    {"ScreenQuarterBuffer", TargetKind::QuarterBuffer},
};

void ReadRenderTarget(const KRN_Base& reporter, const char* text, PassTarget& target) {
    const std::string_view value = text;
    if (value == "Initial") target.kind = TargetKind::Initial;
    for (const auto& row : kBuffers) {
        if (!value.starts_with(row.prefix)) continue;
        const int number = Round(std::strtof(text + row.prefix.size(), nullptr));
        const int count = BufferCount(row.kind);
        if (number > count) reporter.Error("Not more than %i ScreenBuffer supported", count);
        if (number < 1) return;   // names no buffer
        target.kind = row.kind;
        target.index = number - 1;
    }
}

PassTarget ReadPass(const KRN_Base& reporter, ID3DXEffect& effect, D3DXHANDLE pass) {
    PassTarget target;
    const char* text = nullptr;
    if (SUCCEEDED(effect.GetString(effect.GetAnnotationByName(pass, "RenderTarget"), &text)))
        ReadRenderTarget(reporter, text, target);
    INT number = 0;
    target.init_pass = SUCCEEDED(effect.GetInt(effect.GetAnnotationByName(pass, "InitPass"), &number)) && number != 0;
    return target;
}

}   // namespace

std::vector<TechniqueTargets> ReadPassTargets(const KRN_Base& reporter, ID3DXEffect& effect) {
    D3DXEFFECT_DESC desc = {};
    effect.GetDesc(&desc);
    std::vector<TechniqueTargets> techniques(desc.Techniques);
    for (UINT i = 0; i < desc.Techniques; ++i) {
        const D3DXHANDLE technique = effect.GetTechnique(i);
        D3DXTECHNIQUE_DESC passes = {};
        effect.GetTechniqueDesc(technique, &passes);
        for (UINT pass = 0; pass < passes.Passes; ++pass) {
            const D3DXHANDLE handle = effect.GetPass(technique, pass);
            D3DXPASS_DESC shaders = {};
            effect.GetPassDesc(handle, &shaders);
            PassTarget& target = techniques[i].passes.emplace_back(ReadPass(reporter, effect, handle));
            target.no_pixel_shader = !shaders.pPixelShaderFunction;
            techniques[i].has_pixel_shader |= !target.no_pixel_shader;
            const DWORD inputs = shaders.pVertexShaderFunction ? *shaders.pVertexShaderFunction : 0;
            techniques[i].reads_tangents |= (inputs >> kInputTangent & 1) != 0;
        }
    }
    return techniques;
}

}   // namespace sparkrig
