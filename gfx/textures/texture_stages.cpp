#include "gfx/textures/texture_stages.h"

#include <algorithm>
#include <bit>

namespace sparkrig {

void TextureStages::SetStagesInUse(int count) { stages_in_use_ = std::clamp(count, 1, int{kTextureStages}); }

void TextureStages::Forget() { std::ranges::fill(bound_, Map()); }

// ---- States of a stage, inline for SetTexture, which is called before every draw

inline DWORD TextureStages::DiffuseArgument() {
    const D3DCOLOR* colour = states_.lighting.On() ? nullptr : states_.lighting.Colour();
    if (!colour) return D3DTA_DIFFUSE;
    const D3DCOLOR with_alpha = (*colour & 0x00FFFFFF) | static_cast<D3DCOLOR>(states_.blending.Alpha() & 0xFF) << 24;
    if (states_.texture_factor.Colour() != with_alpha) states_.texture_factor.Set(with_alpha);
    return D3DTA_TFACTOR;
}

inline void TextureStages::SendRecipe(int stage, const StageRecipe& recipe) {
    StateSender& sender = states_.sender;
    const DWORD number = static_cast<DWORD>(stage);
    sender.SetStageState(number, D3DTSS_COLOROP, recipe.operation);
    if (recipe.operation == D3DTOP_DISABLE) return;
    sender.SetStageState(number, D3DTSS_COLORARG1, recipe.argument1);
    sender.SetStageState(number, D3DTSS_COLORARG2, recipe.argument2);
}

void TextureStages::SendColour(int stage, StageRecipe recipe) {
    if (recipe.argument1 == D3DTA_DIFFUSE) recipe.argument1 = DiffuseArgument();
    if (recipe.argument2 == D3DTA_DIFFUSE) recipe.argument2 = DiffuseArgument();
    SendRecipe(stage, recipe);
}

inline void TextureStages::SendAlpha(int stage, DWORD operation, DWORD argument) {
    StateSender& sender = states_.sender;
    sender.SetStageState(static_cast<DWORD>(stage), D3DTSS_ALPHAOP, operation);
    if (operation != D3DTOP_DISABLE) sender.SetStageState(static_cast<DWORD>(stage), D3DTSS_ALPHAARG1, argument);
}

/// The matrix stays: without a texture it means nothing.
inline void TextureStages::BindNothing(int stage) {
    states_.sender.SetTexture(static_cast<DWORD>(stage), nullptr);
    bound_[stage].texture = nullptr;
    bound_[stage].kind = MapKind::None;
}

// ---- Binding

void TextureStages::Unbind(int stage) {
    if (stage >= 0) return BindNothing(stage);
    for (int i = 0; i < stages_in_use_; ++i) BindNothing(i);
    const DWORD diffuse = DiffuseArgument();   // alone
    states_.sender.SetStageStates(0, D3DTSS_COLOROP, DWORD{D3DTOP_SELECTARG2}, DWORD{D3DTA_TEXTURE}, diffuse,
                                  DWORD{D3DTOP_SELECTARG1}, diffuse);
    for (int i = 1; i < std::max(2, stages_in_use_); ++i) SendRecipe(i, kNoLayerRecipe);
}

void TextureStages::SetTexture(KRN_Texture* texture, int stage) {
    if (stage < -1 || stage >= int{kTextureStages}) states_.Reporter().Error("Invalid stage: %i", stage);
    if (!texture || !texture->HasSurface()) return Unbind(stage);
    for (int layer = 0; layer < KRN_Texture::kLayers; ++layer)
        if (const int video = texture->VideoSourceOf(layer); video >= 0) videos_.Update(states_.Reporter(), video);
    states_.alpha_cutoff.Switch(texture->AlphaTest());
    if (stage <= 0) return SetLayers(*texture);
    const bool has_layer = stage < KRN_Texture::kLayers && texture->LayerTexture(stage);
    SetLayer(*texture, has_layer ? stage : texture->CurrentLayer(), stage);
}

namespace {

/// The stage of the first diffuse layer carries the alpha; without one, stage 0 does.
int AlphaStage(const KRN_Texture& texture, int stages) {
    for (int i = 0; i < stages; ++i)
        if (texture.LayerTexture(i) && texture.KindOf(i) == MapKind::Diffuse) return i;
    return 0;
}

}   // namespace

void TextureStages::SetLayers(const KRN_Texture& texture) {
    const int layers = std::min(stages_in_use_, KRN_Texture::kLayers);
    const int alpha_stage = AlphaStage(texture, layers);
    for (int i = 0; i < layers; ++i) {
        SetLayer(texture, i, i);
        if (i < alpha_stage) SendAlpha(i, D3DTOP_SELECTARG1, DiffuseArgument());
        if (i > alpha_stage) SendAlpha(i, D3DTOP_DISABLE, D3DTA_TEXTURE);
    }
    for (int i = layers; i < std::max(2, stages_in_use_); ++i) {
        BindNothing(i);
        SendRecipe(i, kNoLayerRecipe);
    }
    BlendingState& blending = states_.blending;
    if (blending.Mode() == 1) SendAlpha(alpha_stage, D3DTOP_SELECTARG1, D3DTA_TEXTURE);
    blending.Reapply(alpha_stage);
}

void TextureStages::SetLayer(const KRN_Texture& texture, int layer, int stage) {
    IDirect3DTexture9* const device_texture = texture.LayerTexture(layer);
    const MapKind kind = device_texture ? texture.KindOf(layer) : MapKind::None;
    if (const char* why_not = WhyNotAtStage(kind, stage, bound_[0].kind)) states_.Reporter().Error("%s", why_not);
    Bind(stage, {device_texture, kind, device_texture ? texture.LayerMatrix(layer) : kIdentityMatrix});
    SendColour(stage, RecipeOf(kind, stage, states_.render_sources.Source(stage)));
    if (kind == MapKind::Bump) SendBumpMatrix(stage, texture.AmountOf(layer));
    if (device_texture) SendMatrix(stage, texture.LayerMatrix(layer));
}

void TextureStages::Bind(int stage, const Map& map) {
    states_.sender.SetTexture(static_cast<DWORD>(stage), map.texture);
    bound_[stage] = map;
}

TextureStages::Map TextureStages::MapOf(MapKind kind) const {
    const Map* found = std::ranges::find_if(bound_, [kind](const Map& map) { return map.texture && map.kind == kind; });
    return found == std::end(bound_) ? Map() : *found;
}

TextureStages::Map TextureStages::DiffuseMap() const {
    const Map diffuse = MapOf(MapKind::Diffuse);
    return diffuse.texture ? diffuse : MapOf(MapKind::None);
}

TextureStages::Map TextureStages::ReflectionMap() const {
    const Map reflection = MapOf(MapKind::Reflection);
    return reflection.texture ? reflection : MapOf(MapKind::SphereReflection);
}

void TextureStages::SendMatrix(int stage, const D3DXMATRIX& matrix) {
    const bool moves = matrix != kIdentityMatrix;
    if (moves) states_.transforms.Set(D3DTS_TEXTUREn(static_cast<DWORD>(stage)), matrix);
    states_.sender.SetStageState(static_cast<DWORD>(stage), D3DTSS_TEXTURETRANSFORMFLAGS,
                                 moves ? D3DTTFF_COUNT2 : D3DTTFF_DISABLE);
}

void TextureStages::SendBumpMatrix(int stage, float amount) {
    constexpr D3DTEXTURESTAGESTATETYPE kElements[] = {D3DTSS_BUMPENVMAT00, D3DTSS_BUMPENVMAT01, D3DTSS_BUMPENVMAT10,
                                                      D3DTSS_BUMPENVMAT11};
    const float values[] = {amount, 0.0f, 0.0f, amount};
    for (int i = 0; i < 4; ++i)
        states_.sender.SetStageState(static_cast<DWORD>(stage), kElements[i], std::bit_cast<DWORD>(values[i]));
}

}   // namespace sparkrig
