#include "gfx/textures/stage_recipes.h"

#include "gfx/states/render_sources.h"

namespace sparkrig {
namespace {

struct KindRow {
    MapKind kind;
    bool stage_zero_only, carries_diffuse;   // a diffuse layer may stand behind it
    StageRecipe first, later;                // at stage 0, and at the others
};
// clang-format off
constexpr KindRow kKinds[] = {
    {MapKind::None,             false, false, {D3DTOP_DISABLE,           D3DTA_TEXTURE, D3DTA_CURRENT}, {D3DTOP_DISABLE,           D3DTA_TEXTURE, D3DTA_CURRENT}},
    {MapKind::Diffuse,          false, true,  {D3DTOP_MODULATE,          D3DTA_TEXTURE, D3DTA_DIFFUSE}, {D3DTOP_ADD,               D3DTA_CURRENT, D3DTA_TEXTURE}},
    {MapKind::Bump,             false, false, {D3DTOP_BUMPENVMAP,        D3DTA_TEXTURE, D3DTA_CURRENT}, {D3DTOP_BUMPENVMAP,        D3DTA_TEXTURE, D3DTA_CURRENT}},
    {MapKind::Reflection,       true,  true,  {D3DTOP_MODULATE,          D3DTA_TEXTURE, D3DTA_DIFFUSE}, {}},
    {MapKind::Light,            false, false, {D3DTOP_MODULATE,          D3DTA_TEXTURE, D3DTA_DIFFUSE}, {D3DTOP_MODULATE,          D3DTA_TEXTURE, D3DTA_CURRENT}},
    {MapKind::Detail,           false, false, {D3DTOP_MODULATE2X,        D3DTA_TEXTURE, D3DTA_DIFFUSE}, {D3DTOP_MODULATE2X,        D3DTA_TEXTURE, D3DTA_CURRENT}},
    {MapKind::SphereReflection, true,  true,  {D3DTOP_MODULATE,          D3DTA_TEXTURE, D3DTA_DIFFUSE}, {}},
    {MapKind::Decal,            false, false, {D3DTOP_BLENDTEXTUREALPHA, D3DTA_TEXTURE, D3DTA_DIFFUSE}, {D3DTOP_BLENDTEXTUREALPHA, D3DTA_TEXTURE, D3DTA_CURRENT}},
};
// clang-format on

/// A kind from a file that has no row does nothing.
const KindRow& RowOf(MapKind kind) {
    for (const KindRow& row : kKinds)
        if (row.kind == kind) return row;
    return kKinds[0];
}

}   // namespace

const char* WhyNotAtStage(MapKind kind, int stage, MapKind first) {
    if (stage == 0) return nullptr;
    if (RowOf(kind).stage_zero_only) return "Reflection map in stage other than zero!";
    if (kind == MapKind::Diffuse && !RowOf(first).carries_diffuse)
        return "More than one diffuse map requires a diffuse map at stage 0";
    return nullptr;
}

StageRecipe RecipeOf(MapKind kind, int stage, int render_source) {
    const KindRow& row = RowOf(kind);
    if (stage > 0) return row.later;
    if (kind != MapKind::Diffuse || render_source == kSourceTextureDiffuse) return row.first;
    return {D3DTOP_SELECTARG2, D3DTA_TEXTURE, render_source == kSourceFactor ? D3DTA_TFACTOR : D3DTA_DIFFUSE};
}

}   // namespace sparkrig
