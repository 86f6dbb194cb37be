#include "platform/d3d9/device_state.h"

#include "platform/d3d9_gl/dirty.h"

namespace sparkrig {

namespace {

constexpr DWORD F(float value) { return std::bit_cast<DWORD>(value); }

constexpr unsigned kNone = 0, kProg = kDirtyProgram, kUni = kDirtyStates, kLight = kDirtyLighting, kOut = kDirtyOutput,
                   kDep = kDirtyDepth, kRas = kDirtyRaster;

struct RenderStateRow {
    D3DRENDERSTATETYPE state;
    DWORD value;       // after creation and reset
    unsigned groups;   // 0: has no effect here
};
// clang-format off
constexpr RenderStateRow kRenderStates[] = {
    {D3DRS_ZENABLE,                  1,                  kDep},          // 0 without an automatic depth buffer
    {D3DRS_FILLMODE,                 D3DFILL_SOLID,      kRas},
    {D3DRS_SHADEMODE,                D3DSHADE_GOURAUD,   kProg},
    {D3DRS_ZWRITEENABLE,             1,                  kDep},
    {D3DRS_ALPHATESTENABLE,          0,                  kProg},
    {D3DRS_LASTPIXEL,                1,                  kNone},
    {D3DRS_SRCBLEND,                 D3DBLEND_ONE,       kOut},
    {D3DRS_DESTBLEND,                D3DBLEND_ZERO,      kOut},
    {D3DRS_CULLMODE,                 D3DCULL_CCW,        kRas},
    {D3DRS_ZFUNC,                    D3DCMP_LESSEQUAL,   kDep},
    {D3DRS_ALPHAREF,                 0,                  kUni},
    {D3DRS_ALPHAFUNC,                D3DCMP_ALWAYS,      kProg},
    {D3DRS_DITHERENABLE,             0,                  kNone},
    {D3DRS_ALPHABLENDENABLE,         0,                  kOut},
    {D3DRS_FOGENABLE,                0,                  kProg},
    {D3DRS_SPECULARENABLE,           0,                  kProg},
    {D3DRS_FOGCOLOR,                 0,                  kUni},
    {D3DRS_FOGTABLEMODE,             D3DFOG_NONE,        kProg},
    {D3DRS_FOGSTART,                 F(0.0f),            kUni},
    {D3DRS_FOGEND,                   F(1.0f),            kUni},
    {D3DRS_FOGDENSITY,               F(1.0f),            kUni},
    {D3DRS_RANGEFOGENABLE,           0,                  kProg},
    {D3DRS_STENCILENABLE,            0,                  kNone},
    {D3DRS_TEXTUREFACTOR,            0xFFFFFFFF,         kUni},
    {D3DRS_CLIPPING,                 1,                  kNone},
    {D3DRS_LIGHTING,                 1,                  kProg},
    {D3DRS_AMBIENT,                  0,                  kLight},
    {D3DRS_FOGVERTEXMODE,            D3DFOG_NONE,        kProg},
    {D3DRS_COLORVERTEX,              1,                  kProg},
    {D3DRS_LOCALVIEWER,              1,                  kProg},
    {D3DRS_NORMALIZENORMALS,         0,                  kProg},
    {D3DRS_DIFFUSEMATERIALSOURCE,    D3DMCS_COLOR1,      kProg},
    {D3DRS_SPECULARMATERIALSOURCE,   D3DMCS_COLOR2,      kProg},
    {D3DRS_AMBIENTMATERIALSOURCE,    D3DMCS_MATERIAL,    kProg},
    {D3DRS_EMISSIVEMATERIALSOURCE,   D3DMCS_MATERIAL,    kProg},
    {D3DRS_VERTEXBLEND,              D3DVBF_DISABLE,     kProg},
    {D3DRS_CLIPPLANEENABLE,          0,                  kNone},
    {D3DRS_POINTSIZE,                F(1.0f),            kUni},
    {D3DRS_POINTSIZE_MIN,            F(1.0f),            kUni},
    {D3DRS_POINTSPRITEENABLE,        0,                  kProg},
    {D3DRS_POINTSCALEENABLE,         0,                  kProg},
    {D3DRS_POINTSCALE_A,             F(1.0f),            kUni},
    {D3DRS_POINTSCALE_B,             F(0.0f),            kUni},
    {D3DRS_POINTSCALE_C,             F(0.0f),            kUni},
    {D3DRS_MULTISAMPLEANTIALIAS,     1,                  kNone},
    {D3DRS_MULTISAMPLEMASK,          0xFFFFFFFF,         kNone},
    {D3DRS_PATCHEDGESTYLE,           0,                  kNone},
    {D3DRS_POINTSIZE_MAX,            F(64.0f),           kUni},
    {D3DRS_INDEXEDVERTEXBLENDENABLE, 0,                  kProg},
    {D3DRS_COLORWRITEENABLE,         0xF,                kOut},
    {D3DRS_BLENDOP,                  D3DBLENDOP_ADD,     kOut},
    {D3DRS_SCISSORTESTENABLE,        0,                  kNone},
    {D3DRS_SLOPESCALEDEPTHBIAS,      F(0.0f),            kRas},
    {D3DRS_BLENDFACTOR,              0xFFFFFFFF,         kOut},
    {D3DRS_DEPTHBIAS,                F(0.0f),            kRas},
    {D3DRS_SEPARATEALPHABLENDENABLE, 0,                  kOut},
    {D3DRS_SRCBLENDALPHA,            D3DBLEND_ONE,       kOut},
    {D3DRS_DESTBLENDALPHA,           D3DBLEND_ZERO,      kOut},
    {D3DRS_BLENDOPALPHA,             D3DBLENDOP_ADD,     kOut},
};

struct StageStateRow {
    D3DTEXTURESTAGESTATETYPE state;
    DWORD first, others;   // values of stage 0 and of the stages after it
    unsigned groups;
};
constexpr StageStateRow kStageStates[] = {
    {D3DTSS_COLOROP,               D3DTOP_MODULATE,   D3DTOP_DISABLE, kProg},
    {D3DTSS_COLORARG1,             D3DTA_TEXTURE,     D3DTA_TEXTURE,  kProg},
    {D3DTSS_COLORARG2,             D3DTA_CURRENT,     D3DTA_CURRENT,  kProg},
    {D3DTSS_ALPHAOP,               D3DTOP_SELECTARG1, D3DTOP_DISABLE, kProg},
    {D3DTSS_ALPHAARG1,             D3DTA_TEXTURE,     D3DTA_TEXTURE,  kProg},
    {D3DTSS_ALPHAARG2,             D3DTA_CURRENT,     D3DTA_CURRENT,  kProg},
    {D3DTSS_BUMPENVMAT00,          F(0.0f),           F(0.0f),        kUni},
    {D3DTSS_BUMPENVMAT01,          F(0.0f),           F(0.0f),        kUni},
    {D3DTSS_BUMPENVMAT10,          F(0.0f),           F(0.0f),        kUni},
    {D3DTSS_BUMPENVMAT11,          F(0.0f),           F(0.0f),        kUni},
    {D3DTSS_TEXCOORDINDEX,         0,                 0,              kProg},   // the stage's own number
    {D3DTSS_BUMPENVLSCALE,         F(0.0f),           F(0.0f),        kNone},
    {D3DTSS_BUMPENVLOFFSET,        F(0.0f),           F(0.0f),        kNone},
    {D3DTSS_TEXTURETRANSFORMFLAGS, D3DTTFF_DISABLE,   D3DTTFF_DISABLE, kProg},
    {D3DTSS_COLORARG0,             D3DTA_CURRENT,     D3DTA_CURRENT,  kProg},
    {D3DTSS_ALPHAARG0,             D3DTA_CURRENT,     D3DTA_CURRENT,  kProg},
    {D3DTSS_RESULTARG,             D3DTA_CURRENT,     D3DTA_CURRENT,  kProg},
    {D3DTSS_CONSTANT,              0xFFFFFFFF,        0xFFFFFFFF,     kUni},
};

struct SamplerStateRow {
    D3DSAMPLERSTATETYPE state;
    DWORD value, smallest, largest;
};
constexpr SamplerStateRow kSamplerStates[] = {
    {D3DSAMP_ADDRESSU,      D3DTADDRESS_WRAP, D3DTADDRESS_WRAP, D3DTADDRESS_MIRRORONCE},
    {D3DSAMP_ADDRESSV,      D3DTADDRESS_WRAP, D3DTADDRESS_WRAP, D3DTADDRESS_MIRRORONCE},
    {D3DSAMP_ADDRESSW,      D3DTADDRESS_WRAP, D3DTADDRESS_WRAP, D3DTADDRESS_MIRRORONCE},
    {D3DSAMP_BORDERCOLOR,   0,                0,                0xFFFFFFFF},
    {D3DSAMP_MAGFILTER,     D3DTEXF_POINT,    D3DTEXF_NONE,     D3DTEXF_ANISOTROPIC},
    {D3DSAMP_MINFILTER,     D3DTEXF_POINT,    D3DTEXF_NONE,     D3DTEXF_ANISOTROPIC},
    {D3DSAMP_MIPFILTER,     D3DTEXF_NONE,     D3DTEXF_NONE,     D3DTEXF_LINEAR},
    {D3DSAMP_MIPMAPLODBIAS, F(0.0f),          0,                0xFFFFFFFF},
    {D3DSAMP_MAXMIPLEVEL,   0,                0,                0xFFFFFFFF},
    {D3DSAMP_MAXANISOTROPY, 1,                1,                0xFFFFFFFF},
    {D3DSAMP_SRGBTEXTURE,   0,                0,                1},
};
// clang-format on

constexpr D3DMATRIX kIdentity = {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}};

template <class Row, std::size_t N>
constexpr std::array<unsigned, N> GroupsByState(const Row& rows) {
    std::array<unsigned, N> groups = {};
    for (const auto& row : rows) groups[row.state] = row.groups;
    return groups;
}
constexpr auto kRenderGroups = GroupsByState<decltype(kRenderStates), kRenderStateCount>(kRenderStates);
constexpr auto kStageGroups = GroupsByState<decltype(kStageStates), kStageStateCount>(kStageStates);

}   // namespace

DeviceState::DeviceState(bool auto_depth) : view(kIdentity), projection(kIdentity) {
    for (const RenderStateRow& row : kRenderStates) render[row.state] = row.value;
    if (!auto_depth) render[D3DRS_ZENABLE] = D3DZB_FALSE;
    for (DWORD stage = 0; stage < kTextureStages; ++stage) {
        for (const StageStateRow& row : kStageStates) stages[stage][row.state] = stage == 0 ? row.first : row.others;
        stages[stage][D3DTSS_TEXCOORDINDEX] = stage;
    }
    for (auto& sampler : samplers) {
        for (const SamplerStateRow& row : kSamplerStates) sampler[row.state] = row.value;
    }
    texture_matrices.fill(kIdentity);
    world.fill(kIdentity);
}

unsigned RenderStateGroups(D3DRENDERSTATETYPE state) { return kRenderGroups[state]; }
unsigned StageStateGroups(D3DTEXTURESTAGESTATETYPE state) { return kStageGroups[state]; }

bool ValidSamplerState(D3DSAMPLERSTATETYPE state, DWORD value) {
    for (const SamplerStateRow& row : kSamplerStates) {
        if (row.state == state) return value >= row.smallest && value <= row.largest;
    }
    return false;
}

bool ValidStageState(D3DTEXTURESTAGESTATETYPE state) {
    for (const StageStateRow& row : kStageStates) {
        if (row.state == state) return true;
    }
    return false;
}

D3DMATRIX* FindTransform(DeviceState& state, D3DTRANSFORMSTATETYPE type) {
    if (type == D3DTS_VIEW) return &state.view;
    if (type == D3DTS_PROJECTION) return &state.projection;
    if (type >= D3DTS_TEXTURE0 && type < D3DTS_TEXTURE0 + kTextureStages) {
        return &state.texture_matrices[type - D3DTS_TEXTURE0];
    }
    if (type >= D3DTS_WORLD && type < D3DTS_WORLD + kWorldMatrices) return &state.world[type - D3DTS_WORLD];
    return nullptr;
}

unsigned TransformGroups(D3DTRANSFORMSTATETYPE type) {
    if (type == D3DTS_VIEW) return kDirtyTransforms | kDirtyLighting;       // lights are kept in camera space
    if (type == D3DTS_PROJECTION) return kDirtyTransforms | kDirtyStates;   // it decides what fog goes by
    if (type == D3DTS_WORLD) return kDirtyTransforms | kDirtyPalette;
    return type > D3DTS_WORLD ? kDirtyPalette : kDirtyLighting;
}

}   // namespace sparkrig
