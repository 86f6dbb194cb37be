#include "platform/d3d9_gl/dirty.h"

#include <array>
#include <initializer_list>

namespace sparkrig {

namespace {

// The states of each group; what is in none has no effect here.
template <class State>
struct GroupRow {
    DirtyGroup group;
    std::initializer_list<State> states;
};

template <DWORD count, class State>
constexpr std::array<unsigned, count> ByState(std::initializer_list<GroupRow<State>> rows) {
    std::array<unsigned, count> groups = {};
    for (const auto& row : rows) {
        for (const State state : row.states) groups[state] = row.group;
    }
    return groups;
}

// clang-format off
constexpr auto kRenderGroups = ByState<kRenderStateCount, D3DRENDERSTATETYPE>({
    {kDirtyProgram,
     {D3DRS_SHADEMODE, D3DRS_ALPHATESTENABLE, D3DRS_ALPHAFUNC, D3DRS_FOGENABLE, D3DRS_SPECULARENABLE,
      D3DRS_FOGTABLEMODE, D3DRS_RANGEFOGENABLE, D3DRS_LIGHTING, D3DRS_FOGVERTEXMODE, D3DRS_COLORVERTEX,
      D3DRS_LOCALVIEWER, D3DRS_NORMALIZENORMALS, D3DRS_DIFFUSEMATERIALSOURCE, D3DRS_SPECULARMATERIALSOURCE,
      D3DRS_AMBIENTMATERIALSOURCE, D3DRS_EMISSIVEMATERIALSOURCE, D3DRS_VERTEXBLEND, D3DRS_POINTSPRITEENABLE,
      D3DRS_POINTSCALEENABLE, D3DRS_INDEXEDVERTEXBLENDENABLE}},
    {kDirtyStates,
     {D3DRS_ALPHAREF, D3DRS_FOGCOLOR, D3DRS_FOGSTART, D3DRS_FOGEND, D3DRS_FOGDENSITY, D3DRS_TEXTUREFACTOR,
      D3DRS_POINTSIZE, D3DRS_POINTSIZE_MIN, D3DRS_POINTSCALE_A, D3DRS_POINTSCALE_B, D3DRS_POINTSCALE_C,
      D3DRS_POINTSIZE_MAX}},
    {kDirtyLighting, {D3DRS_AMBIENT}},
    {kDirtyOutput,
     {D3DRS_SRCBLEND, D3DRS_DESTBLEND, D3DRS_ALPHABLENDENABLE, D3DRS_COLORWRITEENABLE, D3DRS_BLENDOP,
      D3DRS_BLENDFACTOR, D3DRS_SEPARATEALPHABLENDENABLE, D3DRS_SRCBLENDALPHA, D3DRS_DESTBLENDALPHA,
      D3DRS_BLENDOPALPHA}},
    {kDirtyDepth, {D3DRS_ZENABLE, D3DRS_ZWRITEENABLE, D3DRS_ZFUNC}},
    {kDirtyRaster, {D3DRS_FILLMODE, D3DRS_CULLMODE, D3DRS_SLOPESCALEDEPTHBIAS, D3DRS_DEPTHBIAS}},
});

constexpr auto kStageGroups = ByState<kStageStateCount, D3DTEXTURESTAGESTATETYPE>({
    {kDirtyProgram,
     {D3DTSS_COLOROP, D3DTSS_COLORARG1, D3DTSS_COLORARG2, D3DTSS_ALPHAOP, D3DTSS_ALPHAARG1, D3DTSS_ALPHAARG2,
      D3DTSS_TEXCOORDINDEX, D3DTSS_TEXTURETRANSFORMFLAGS, D3DTSS_COLORARG0, D3DTSS_ALPHAARG0, D3DTSS_RESULTARG}},
    {kDirtyStates,
     {D3DTSS_BUMPENVMAT00, D3DTSS_BUMPENVMAT01, D3DTSS_BUMPENVMAT10, D3DTSS_BUMPENVMAT11, D3DTSS_CONSTANT}},
});
// clang-format on

}   // namespace

unsigned RenderStateGroups(D3DRENDERSTATETYPE state) { return kRenderGroups[state]; }
unsigned StageStateGroups(D3DTEXTURESTAGESTATETYPE state) { return kStageGroups[state]; }

unsigned TransformGroups(D3DTRANSFORMSTATETYPE type) {
    if (type == D3DTS_VIEW) return kDirtyTransforms | kDirtyLighting;       // lights are kept in camera space
    if (type == D3DTS_PROJECTION) return kDirtyTransforms | kDirtyStates;   // it decides what fog goes by
    if (type == D3DTS_WORLD) return kDirtyTransforms | kDirtyPalette;
    return type > D3DTS_WORLD ? kDirtyPalette : kDirtyLighting;
}

}   // namespace sparkrig
