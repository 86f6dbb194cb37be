#include "platform/d3d9/device_state.h"

namespace sparkrig {

namespace {

constexpr DWORD F(float value) { return std::bit_cast<DWORD>(value); }

struct RenderStateRow {
    D3DRENDERSTATETYPE state;
    DWORD value;
};
// clang-format off
constexpr RenderStateRow kRenderStates[] = {   // what is not here is 0
    {D3DRS_ZENABLE,           1},   // 0 without an automatic depth buffer
    {D3DRS_FILLMODE,          D3DFILL_SOLID},
    {D3DRS_SHADEMODE,         D3DSHADE_GOURAUD},
    {D3DRS_ZWRITEENABLE,      1},
    {D3DRS_LASTPIXEL,         1},
    {D3DRS_SRCBLEND,          D3DBLEND_ONE},
    {D3DRS_DESTBLEND,         D3DBLEND_ZERO},
    {D3DRS_CULLMODE,          D3DCULL_CCW},
    {D3DRS_ZFUNC,             D3DCMP_LESSEQUAL},
    {D3DRS_ALPHAFUNC,         D3DCMP_ALWAYS},
    {D3DRS_FOGEND,            F(1.0f)},
    {D3DRS_FOGDENSITY,        F(1.0f)},
    {D3DRS_TEXTUREFACTOR,     0xFFFFFFFF},
    {D3DRS_CLIPPING,          1},
    {D3DRS_LIGHTING,          1},
    {D3DRS_COLORVERTEX,       1},
    {D3DRS_LOCALVIEWER,       1},
    {D3DRS_DIFFUSEMATERIALSOURCE, D3DMCS_COLOR1},
    {D3DRS_SPECULARMATERIALSOURCE, D3DMCS_COLOR2},
    {D3DRS_POINTSIZE,         F(1.0f)},
    {D3DRS_POINTSIZE_MIN,     F(1.0f)},
    {D3DRS_POINTSCALE_A,      F(1.0f)},
    {D3DRS_MULTISAMPLEANTIALIAS, 1},
    {D3DRS_MULTISAMPLEMASK,   0xFFFFFFFF},
    {D3DRS_POINTSIZE_MAX,     F(64.0f)},
    {D3DRS_COLORWRITEENABLE,  0xF},
    {D3DRS_BLENDOP,           D3DBLENDOP_ADD},
    {D3DRS_BLENDFACTOR,       0xFFFFFFFF},
    {D3DRS_SRCBLENDALPHA,     D3DBLEND_ONE},
    {D3DRS_DESTBLENDALPHA,    D3DBLEND_ZERO},
    {D3DRS_BLENDOPALPHA,      D3DBLENDOP_ADD},
};

struct StageStateRow {
    D3DTEXTURESTAGESTATETYPE state;
    DWORD first, others;   // values of stage 0 and of the stages after it
};
constexpr StageStateRow kStageStates[] = {
    {D3DTSS_COLOROP,                D3DTOP_MODULATE,   D3DTOP_DISABLE},
    {D3DTSS_COLORARG1,              D3DTA_TEXTURE,     D3DTA_TEXTURE},
    {D3DTSS_COLORARG2,              D3DTA_CURRENT,     D3DTA_CURRENT},
    {D3DTSS_ALPHAOP,                D3DTOP_SELECTARG1, D3DTOP_DISABLE},
    {D3DTSS_ALPHAARG1,              D3DTA_TEXTURE,     D3DTA_TEXTURE},
    {D3DTSS_ALPHAARG2,              D3DTA_CURRENT,     D3DTA_CURRENT},
    {D3DTSS_BUMPENVMAT00,           F(0.0f),           F(0.0f)},
    {D3DTSS_BUMPENVMAT01,           F(0.0f),           F(0.0f)},
    {D3DTSS_BUMPENVMAT10,           F(0.0f),           F(0.0f)},
    {D3DTSS_BUMPENVMAT11,           F(0.0f),           F(0.0f)},
    {D3DTSS_TEXCOORDINDEX,          0,                 0},   // the stage's own number
    {D3DTSS_BUMPENVLSCALE,          F(0.0f),           F(0.0f)},
    {D3DTSS_BUMPENVLOFFSET,         F(0.0f),           F(0.0f)},
    {D3DTSS_TEXTURETRANSFORMFLAGS,  D3DTTFF_DISABLE,   D3DTTFF_DISABLE},
    {D3DTSS_COLORARG0,              D3DTA_CURRENT,     D3DTA_CURRENT},
    {D3DTSS_ALPHAARG0,              D3DTA_CURRENT,     D3DTA_CURRENT},
    {D3DTSS_RESULTARG,              D3DTA_CURRENT,     D3DTA_CURRENT},
    {D3DTSS_CONSTANT,               0xFFFFFFFF,        0xFFFFFFFF},
};

struct SamplerStateRow {
    DWORD value = 0, smallest = 1, largest = 0;   // of a state that does not exist: no value is allowed
};
struct NamedSamplerRow {
    D3DSAMPLERSTATETYPE state;
    SamplerStateRow row;
};
constexpr NamedSamplerRow kSamplerStates[] = {
    {D3DSAMP_ADDRESSU,       {D3DTADDRESS_WRAP, D3DTADDRESS_WRAP, D3DTADDRESS_MIRRORONCE}},
    {D3DSAMP_ADDRESSV,       {D3DTADDRESS_WRAP, D3DTADDRESS_WRAP, D3DTADDRESS_MIRRORONCE}},
    {D3DSAMP_ADDRESSW,       {D3DTADDRESS_WRAP, D3DTADDRESS_WRAP, D3DTADDRESS_MIRRORONCE}},
    {D3DSAMP_BORDERCOLOR,    {0,                0,                0xFFFFFFFF}},
    {D3DSAMP_MAGFILTER,      {D3DTEXF_POINT,    D3DTEXF_NONE,     D3DTEXF_ANISOTROPIC}},
    {D3DSAMP_MINFILTER,      {D3DTEXF_POINT,    D3DTEXF_NONE,     D3DTEXF_ANISOTROPIC}},
    {D3DSAMP_MIPFILTER,      {D3DTEXF_NONE,     D3DTEXF_NONE,     D3DTEXF_LINEAR}},
    {D3DSAMP_MIPMAPLODBIAS,  {F(0.0f),          0,                0xFFFFFFFF}},
    {D3DSAMP_MAXMIPLEVEL,    {0,                0,                0xFFFFFFFF}},
    {D3DSAMP_MAXANISOTROPY,  {1,                1,                0xFFFFFFFF}},
    {D3DSAMP_SRGBTEXTURE,    {0,                0,                1}},
};
// clang-format on

constexpr D3DMATRIX kIdentity = {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}};

constexpr D3DLIGHT9 kDefaultLight = {D3DLIGHT_DIRECTIONAL, {1, 1, 1, 0}, {}, {}, {}, {0, 0, 1}, 0, 0, 0, 0, 0, 0, 0};

// By number, so that each call looks at one row.
constexpr auto kStageStateExists = [] {
    std::array<bool, kStageStateCount> exists = {};
    for (const StageStateRow& row : kStageStates) exists[row.state] = true;
    return exists;
}();
constexpr auto kSamplerRows = [] {
    std::array<SamplerStateRow, kSamplerStateCount> rows = {};
    for (const NamedSamplerRow& named : kSamplerStates) rows[named.state] = named.row;
    return rows;
}();

bool IsStageState(DWORD stage, D3DTEXTURESTAGESTATETYPE state) {
    return stage < kTextureStages && state < kStageStateCount && kStageStateExists[state];
}

// The matrix of a transform state, null for one that does not exist.
template <class State>
auto FindTransform(State& state, D3DTRANSFORMSTATETYPE type) -> decltype(&state.view) {
    if (type == D3DTS_VIEW) return &state.view;
    if (type == D3DTS_PROJECTION) return &state.projection;
    if (type >= D3DTS_TEXTURE0 && type < D3DTS_TEXTURE0 + kTextureStages) {
        return &state.texture_matrices[type - D3DTS_TEXTURE0];
    }
    if (type >= D3DTS_WORLD && type < D3DTS_WORLD + kWorldMatrices) return &state.world[type - D3DTS_WORLD];
    return nullptr;
}

template <class Value>
HRESULT Give(const Value* held, Value* out) {
    if (held == nullptr || out == nullptr) return D3DERR_INVALIDCALL;
    *out = *held;
    return D3D_OK;
}

}   // namespace

DeviceState::DeviceState(bool auto_depth) : view(kIdentity), projection(kIdentity) {
    for (const RenderStateRow& row : kRenderStates) render[row.state] = row.value;
    if (!auto_depth) render[D3DRS_ZENABLE] = D3DZB_FALSE;
    for (DWORD stage = 0; stage < kTextureStages; ++stage) {
        for (const StageStateRow& row : kStageStates) stages[stage][row.state] = stage == 0 ? row.first : row.others;
        stages[stage][D3DTSS_TEXCOORDINDEX] = stage;
    }
    for (auto& sampler : samplers) {
        for (const NamedSamplerRow& named : kSamplerStates) sampler[named.state] = named.row.value;
    }
    texture_matrices.fill(kIdentity);
    world.fill(kIdentity);
}

HRESULT DeviceState::GetRenderState(D3DRENDERSTATETYPE state, DWORD* value) const {
    return Give(state < kRenderStateCount ? &render[state] : nullptr, value);
}

Kept DeviceState::SetTextureStageState(DWORD stage, D3DTEXTURESTAGESTATETYPE state, DWORD value) {
    return IsStageState(stage, state) ? Keep(stages[stage][state], value) : Kept::Refused;
}

HRESULT DeviceState::GetTextureStageState(DWORD stage, D3DTEXTURESTAGESTATETYPE state, DWORD* value) const {
    return Give(IsStageState(stage, state) ? &stages[stage][state] : nullptr, value);
}

Kept DeviceState::SetSamplerState(DWORD sampler, D3DSAMPLERSTATETYPE state, DWORD value) {
    if (sampler >= kSamplers || state >= kSamplerStateCount) return Kept::Refused;
    const SamplerStateRow& row = kSamplerRows[state];
    return value >= row.smallest && value <= row.largest ? Keep(samplers[sampler][state], value) : Kept::Refused;
}

HRESULT DeviceState::GetSamplerState(DWORD sampler, D3DSAMPLERSTATETYPE state, DWORD* value) const {
    const bool exists = sampler < kSamplers && state > 0 && state < kSamplerStateCount;
    return Give(exists ? &samplers[sampler][state] : nullptr, value);
}

Kept DeviceState::SetTransform(D3DTRANSFORMSTATETYPE type, const D3DMATRIX* matrix) {
    D3DMATRIX* held = FindTransform(*this, type);
    return held != nullptr && matrix != nullptr ? Keep(*held, *matrix) : Kept::Refused;
}

HRESULT DeviceState::GetTransform(D3DTRANSFORMSTATETYPE type, D3DMATRIX* matrix) const {
    return Give(FindTransform(*this, type), matrix);
}

Kept DeviceState::SetMaterial(const D3DMATERIAL9* value) {
    return value != nullptr ? Keep(material, *value) : Kept::Refused;
}

HRESULT DeviceState::GetMaterial(D3DMATERIAL9* value) const { return Give(&material, value); }

Kept DeviceState::SetLight(DWORD index, const D3DLIGHT9* light) {
    const bool valid = light != nullptr && light->Type >= D3DLIGHT_POINT && light->Type <= D3DLIGHT_DIRECTIONAL;
    return valid ? Keep(lights[index].light, *light) : Kept::Refused;
}

HRESULT DeviceState::GetLight(DWORD index, D3DLIGHT9* light) const {
    const auto found = lights.find(index);
    return Give(found != lights.end() ? &found->second.light : nullptr, light);
}

Kept DeviceState::LightEnable(DWORD index, BOOL enable) {
    const auto [slot, made] = lights.try_emplace(index, LightSlot{kDefaultLight, false});
    const Kept kept = Keep(slot->second.enabled, enable != FALSE);
    return made ? Kept::Changed : kept;
}

HRESULT DeviceState::GetLightEnable(DWORD index, BOOL* enable) const {
    const auto found = lights.find(index);
    if (enable == nullptr || found == lights.end()) return D3DERR_INVALIDCALL;
    *enable = found->second.enabled ? TRUE : FALSE;
    return D3D_OK;
}

Kept DeviceState::SetViewport(const D3DVIEWPORT9* value, const D3DSURFACE_DESC& target) {
    if (value == nullptr || value->Width == 0 || value->Height == 0) return Kept::Refused;
    const bool inside = value->Width <= target.Width && value->Height <= target.Height &&
                        value->X <= target.Width - value->Width && value->Y <= target.Height - value->Height;
    return inside ? Keep(viewport, *value) : Kept::Refused;
}

HRESULT DeviceState::GetViewport(D3DVIEWPORT9* value) const { return Give(&viewport, value); }

Kept DeviceState::SetFVF(DWORD fvf) {
    if (fvf == format.fvf && fvf != 0) return Kept::Same;
    VertexFormat parsed;
    if (!ParseVertexFormat(fvf, parsed)) return Kept::Refused;
    format = parsed;
    return Kept::Changed;
}

HRESULT DeviceState::GetFVF(DWORD* fvf) const { return Give(&format.fvf, fvf); }

Kept DeviceState::SetInScene(bool begins) {
    if (in_scene == begins) return Kept::Refused;
    in_scene = begins;
    return Kept::Changed;
}

}   // namespace sparkrig
