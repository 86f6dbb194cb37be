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
    D3DXPASS_DESC desc = {};
    target.no_pixel_shader = FAILED(effect.GetPassDesc(pass, &desc)) || !desc.pPixelShaderFunction;
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
            techniques[i].passes.push_back(ReadPass(reporter, effect, effect.GetPass(technique, pass)));
            techniques[i].has_pixel_shader |= !techniques[i].passes.back().no_pixel_shader;
        }
    }
    return techniques;
}

}   // namespace sparkrig
