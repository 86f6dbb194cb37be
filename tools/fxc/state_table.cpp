#include "tools/fxc/state_table.h"

#include <algorithm>
#include <iterator>

#include "platform/d3d9/d3d9_constants.h"
#include "platform/system/ascii.h"

namespace sparkrig::fxc {

namespace {

// clang-format off
constexpr NamedValue kTruth[]      = {{"FALSE", 0}, {"TRUE", 1}};
constexpr NamedValue kDepth[]      = {{"FALSE", D3DZB_FALSE}, {"TRUE", D3DZB_TRUE}, {"USEW", D3DZB_USEW}};
constexpr NamedValue kFill[]       = {{"POINT", D3DFILL_POINT}, {"WIREFRAME", D3DFILL_WIREFRAME}, {"SOLID", D3DFILL_SOLID}};
constexpr NamedValue kShade[]      = {{"FLAT", D3DSHADE_FLAT}, {"GOURAUD", D3DSHADE_GOURAUD}};
constexpr NamedValue kCull[]       = {{"NONE", D3DCULL_NONE}, {"CW", D3DCULL_CW}, {"CCW", D3DCULL_CCW}};
constexpr NamedValue kFog[]        = {{"NONE", D3DFOG_NONE}, {"EXP", D3DFOG_EXP}, {"EXP2", D3DFOG_EXP2}, {"LINEAR", D3DFOG_LINEAR}};
constexpr NamedValue kSource[]     = {{"MATERIAL", D3DMCS_MATERIAL}, {"COLOR1", D3DMCS_COLOR1}, {"COLOR2", D3DMCS_COLOR2}};
constexpr NamedValue kChannels[]   = {{"RED", 1}, {"GREEN", 2}, {"BLUE", 4}, {"ALPHA", 8}};
constexpr NamedValue kWrap[]       = {{"COORD_0", 1}, {"COORD_1", 2}, {"COORD_2", 4}, {"COORD_3", 8}, {"U", 1}, {"V", 2}, {"W", 4}};
constexpr NamedValue kCompare[]    = {
    {"NEVER", D3DCMP_NEVER}, {"LESS", D3DCMP_LESS}, {"EQUAL", D3DCMP_EQUAL}, {"LESSEQUAL", D3DCMP_LESSEQUAL},
    {"GREATER", D3DCMP_GREATER}, {"NOTEQUAL", D3DCMP_NOTEQUAL}, {"GREATEREQUAL", D3DCMP_GREATEREQUAL},
    {"ALWAYS", D3DCMP_ALWAYS}};
constexpr NamedValue kBlend[]      = {
    {"ZERO", D3DBLEND_ZERO}, {"ONE", D3DBLEND_ONE}, {"SRCCOLOR", D3DBLEND_SRCCOLOR},
    {"INVSRCCOLOR", D3DBLEND_INVSRCCOLOR}, {"SRCALPHA", D3DBLEND_SRCALPHA}, {"INVSRCALPHA", D3DBLEND_INVSRCALPHA},
    {"DESTALPHA", D3DBLEND_DESTALPHA}, {"INVDESTALPHA", D3DBLEND_INVDESTALPHA}, {"DESTCOLOR", D3DBLEND_DESTCOLOR},
    {"INVDESTCOLOR", D3DBLEND_INVDESTCOLOR}, {"SRCALPHASAT", D3DBLEND_SRCALPHASAT},
    {"BLENDFACTOR", D3DBLEND_BLENDFACTOR}, {"INVBLENDFACTOR", D3DBLEND_INVBLENDFACTOR}};
constexpr NamedValue kBlendOp[]    = {
    {"ADD", D3DBLENDOP_ADD}, {"SUBTRACT", D3DBLENDOP_SUBTRACT}, {"REVSUBTRACT", D3DBLENDOP_REVSUBTRACT},
    {"MIN", D3DBLENDOP_MIN}, {"MAX", D3DBLENDOP_MAX}};
constexpr NamedValue kStencilOp[]  = {
    {"KEEP", 1}, {"ZERO", 2}, {"REPLACE", 3}, {"INCRSAT", 4}, {"DECRSAT", 5}, {"INVERT", 6}, {"INCR", 7}, {"DECR", 8}};
constexpr NamedValue kVertexBlend[] = {
    {"DISABLE", D3DVBF_DISABLE}, {"1WEIGHTS", D3DVBF_1WEIGHTS}, {"2WEIGHTS", D3DVBF_2WEIGHTS},
    {"3WEIGHTS", D3DVBF_3WEIGHTS}, {"TWEENING", D3DVBF_TWEENING}, {"0WEIGHTS", D3DVBF_0WEIGHTS}};
constexpr NamedValue kOperation[]  = {
    {"DISABLE", D3DTOP_DISABLE}, {"SELECTARG1", D3DTOP_SELECTARG1}, {"SELECTARG2", D3DTOP_SELECTARG2},
    {"MODULATE", D3DTOP_MODULATE}, {"MODULATE2X", D3DTOP_MODULATE2X}, {"MODULATE4X", D3DTOP_MODULATE4X},
    {"ADD", D3DTOP_ADD}, {"ADDSIGNED", D3DTOP_ADDSIGNED}, {"ADDSIGNED2X", D3DTOP_ADDSIGNED2X},
    {"SUBTRACT", D3DTOP_SUBTRACT}, {"ADDSMOOTH", D3DTOP_ADDSMOOTH}, {"BLENDDIFFUSEALPHA", D3DTOP_BLENDDIFFUSEALPHA},
    {"BLENDTEXTUREALPHA", D3DTOP_BLENDTEXTUREALPHA}, {"BLENDFACTORALPHA", D3DTOP_BLENDFACTORALPHA},
    {"BLENDTEXTUREALPHAPM", D3DTOP_BLENDTEXTUREALPHAPM}, {"BLENDCURRENTALPHA", D3DTOP_BLENDCURRENTALPHA},
    {"MODULATEALPHA_ADDCOLOR", D3DTOP_MODULATEALPHA_ADDCOLOR},
    {"MODULATECOLOR_ADDALPHA", D3DTOP_MODULATECOLOR_ADDALPHA},
    {"MODULATEINVALPHA_ADDCOLOR", D3DTOP_MODULATEINVALPHA_ADDCOLOR},
    {"MODULATEINVCOLOR_ADDALPHA", D3DTOP_MODULATEINVCOLOR_ADDALPHA}, {"BUMPENVMAP", D3DTOP_BUMPENVMAP},
    {"DOTPRODUCT3", D3DTOP_DOTPRODUCT3}, {"MULTIPLYADD", D3DTOP_MULTIPLYADD}, {"LERP", D3DTOP_LERP}};
constexpr NamedValue kArgument[]   = {
    {"DIFFUSE", D3DTA_DIFFUSE}, {"CURRENT", D3DTA_CURRENT}, {"TEXTURE", D3DTA_TEXTURE}, {"TFACTOR", D3DTA_TFACTOR},
    {"SPECULAR", D3DTA_SPECULAR}, {"TEMP", D3DTA_TEMP}, {"CONSTANT", D3DTA_CONSTANT},
    {"COMPLEMENT", D3DTA_COMPLEMENT}, {"ALPHAREPLICATE", D3DTA_ALPHAREPLICATE}};
constexpr NamedValue kCoordinates[] = {
    {"PASSTHRU", D3DTSS_TCI_PASSTHRU}, {"CAMERASPACENORMAL", D3DTSS_TCI_CAMERASPACENORMAL},
    {"CAMERASPACEPOSITION", D3DTSS_TCI_CAMERASPACEPOSITION},
    {"CAMERASPACEREFLECTIONVECTOR", D3DTSS_TCI_CAMERASPACEREFLECTIONVECTOR}, {"SPHEREMAP", D3DTSS_TCI_SPHEREMAP}};
constexpr NamedValue kTransform[]  = {
    {"DISABLE", D3DTTFF_DISABLE}, {"COUNT1", D3DTTFF_COUNT1}, {"COUNT2", D3DTTFF_COUNT2},
    {"COUNT3", D3DTTFF_COUNT3}, {"COUNT4", D3DTTFF_COUNT4}, {"PROJECTED", D3DTTFF_PROJECTED}};
constexpr NamedValue kAddress[]    = {
    {"WRAP", D3DTADDRESS_WRAP}, {"MIRROR", D3DTADDRESS_MIRROR}, {"CLAMP", D3DTADDRESS_CLAMP},
    {"BORDER", D3DTADDRESS_BORDER}, {"MIRRORONCE", D3DTADDRESS_MIRRORONCE}};
constexpr NamedValue kFilter[]     = {
    {"NONE", D3DTEXF_NONE}, {"POINT", D3DTEXF_POINT}, {"LINEAR", D3DTEXF_LINEAR}, {"ANISOTROPIC", D3DTEXF_ANISOTROPIC}};
constexpr NamedValue kLight[]      = {
    {"POINT", D3DLIGHT_POINT}, {"SPOT", D3DLIGHT_SPOT}, {"DIRECTIONAL", D3DLIGHT_DIRECTIONAL}};

constexpr auto kRender = StateGroup::Render;
constexpr auto kStage = StateGroup::TextureStage;
constexpr auto kSampler = StateGroup::SamplerState;
constexpr auto kLights = StateGroup::Light;
constexpr auto kMaterial = StateGroup::Material;
constexpr DWORD Member(LightMember member) { return static_cast<DWORD>(member); }
constexpr DWORD Member(MaterialMember member) { return static_cast<DWORD>(member); }

// The stencil states have no caller that would need a name for their numbers.
constexpr DWORD kStencilFail = 53, kTwoSidedStencil = 185, kCcwStencilFail = 186;

constexpr StateRow kRows[] = {
    {"ZEnable",                  kRender, D3DRS_ZENABLE,                  StateType::Int, kDepth},
    {"FillMode",                 kRender, D3DRS_FILLMODE,                 StateType::Int, kFill},
    {"ShadeMode",                kRender, D3DRS_SHADEMODE,                StateType::Int, kShade},
    {"ZWriteEnable",             kRender, D3DRS_ZWRITEENABLE,             StateType::Bool},
    {"AlphaTestEnable",          kRender, D3DRS_ALPHATESTENABLE,          StateType::Bool},
    {"LastPixel",                kRender, D3DRS_LASTPIXEL,                StateType::Bool},
    {"SrcBlend",                 kRender, D3DRS_SRCBLEND,                 StateType::Int, kBlend},
    {"DestBlend",                kRender, D3DRS_DESTBLEND,                StateType::Int, kBlend},
    {"CullMode",                 kRender, D3DRS_CULLMODE,                 StateType::Int, kCull},
    {"ZFunc",                    kRender, D3DRS_ZFUNC,                    StateType::Int, kCompare},
    {"AlphaRef",                 kRender, D3DRS_ALPHAREF,                 StateType::Int},
    {"AlphaFunc",                kRender, D3DRS_ALPHAFUNC,                StateType::Int, kCompare},
    {"DitherEnable",             kRender, D3DRS_DITHERENABLE,             StateType::Bool},
    {"AlphaBlendEnable",         kRender, D3DRS_ALPHABLENDENABLE,         StateType::Bool},
    {"FogEnable",                kRender, D3DRS_FOGENABLE,                StateType::Bool},
    {"SpecularEnable",           kRender, D3DRS_SPECULARENABLE,           StateType::Bool},
    {"FogColor",                 kRender, D3DRS_FOGCOLOR,                 StateType::Colour},
    {"FogTableMode",             kRender, D3DRS_FOGTABLEMODE,             StateType::Int, kFog},
    {"FogStart",                 kRender, D3DRS_FOGSTART,                 StateType::Float},
    {"FogEnd",                   kRender, D3DRS_FOGEND,                   StateType::Float},
    {"FogDensity",               kRender, D3DRS_FOGDENSITY,               StateType::Float},
    {"RangeFogEnable",           kRender, D3DRS_RANGEFOGENABLE,           StateType::Bool},
    {"StencilEnable",            kRender, D3DRS_STENCILENABLE,            StateType::Bool},
    {"StencilFail",              kRender, kStencilFail,                   StateType::Int, kStencilOp},
    {"StencilZFail",             kRender, kStencilFail + 1,               StateType::Int, kStencilOp},
    {"StencilPass",              kRender, kStencilFail + 2,               StateType::Int, kStencilOp},
    {"StencilFunc",              kRender, kStencilFail + 3,               StateType::Int, kCompare},
    {"StencilRef",               kRender, kStencilFail + 4,               StateType::Int},
    {"StencilMask",              kRender, kStencilFail + 5,               StateType::Int},
    {"StencilWriteMask",         kRender, kStencilFail + 6,               StateType::Int},
    {"TextureFactor",            kRender, D3DRS_TEXTUREFACTOR,            StateType::Colour},
    {"Wrap0",                    kRender, D3DRS_WRAP0,                    StateType::Int, kWrap},
    {"Wrap1",                    kRender, D3DRS_WRAP0 + 1,                StateType::Int, kWrap},
    {"Wrap2",                    kRender, D3DRS_WRAP0 + 2,                StateType::Int, kWrap},
    {"Wrap3",                    kRender, D3DRS_WRAP0 + 3,                StateType::Int, kWrap},
    {"Wrap4",                    kRender, D3DRS_WRAP0 + 4,                StateType::Int, kWrap},
    {"Wrap5",                    kRender, D3DRS_WRAP0 + 5,                StateType::Int, kWrap},
    {"Wrap6",                    kRender, D3DRS_WRAP0 + 6,                StateType::Int, kWrap},
    {"Wrap7",                    kRender, D3DRS_WRAP0 + 7,                StateType::Int, kWrap},
    {"Clipping",                 kRender, D3DRS_CLIPPING,                 StateType::Bool},
    {"Lighting",                 kRender, D3DRS_LIGHTING,                 StateType::Bool},
    {"Ambient",                  kRender, D3DRS_AMBIENT,                  StateType::Colour},
    {"FogVertexMode",            kRender, D3DRS_FOGVERTEXMODE,            StateType::Int, kFog},
    {"ColorVertex",              kRender, D3DRS_COLORVERTEX,              StateType::Bool},
    {"LocalViewer",              kRender, D3DRS_LOCALVIEWER,              StateType::Bool},
    {"NormalizeNormals",         kRender, D3DRS_NORMALIZENORMALS,         StateType::Bool},
    {"DiffuseMaterialSource",    kRender, D3DRS_DIFFUSEMATERIALSOURCE,    StateType::Int, kSource},
    {"SpecularMaterialSource",   kRender, D3DRS_SPECULARMATERIALSOURCE,   StateType::Int, kSource},
    {"AmbientMaterialSource",    kRender, D3DRS_AMBIENTMATERIALSOURCE,    StateType::Int, kSource},
    {"EmissiveMaterialSource",   kRender, D3DRS_EMISSIVEMATERIALSOURCE,   StateType::Int, kSource},
    {"VertexBlend",              kRender, D3DRS_VERTEXBLEND,              StateType::Int, kVertexBlend},
    {"ClipPlaneEnable",          kRender, D3DRS_CLIPPLANEENABLE,          StateType::Int},
    {"PointSize",                kRender, D3DRS_POINTSIZE,                StateType::Float},
    {"PointSize_Min",            kRender, D3DRS_POINTSIZE_MIN,            StateType::Float},
    {"PointSize_Max",            kRender, D3DRS_POINTSIZE_MAX,            StateType::Float},
    {"PointSpriteEnable",        kRender, D3DRS_POINTSPRITEENABLE,        StateType::Bool},
    {"PointScaleEnable",         kRender, D3DRS_POINTSCALEENABLE,         StateType::Bool},
    {"PointScale_A",             kRender, D3DRS_POINTSCALE_A,             StateType::Float},
    {"PointScale_B",             kRender, D3DRS_POINTSCALE_B,             StateType::Float},
    {"PointScale_C",             kRender, D3DRS_POINTSCALE_C,             StateType::Float},
    {"MultiSampleAntialias",     kRender, D3DRS_MULTISAMPLEANTIALIAS,     StateType::Bool},
    {"MultiSampleMask",          kRender, D3DRS_MULTISAMPLEMASK,          StateType::Int},
    {"IndexedVertexBlendEnable", kRender, D3DRS_INDEXEDVERTEXBLENDENABLE, StateType::Bool},
    {"ColorWriteEnable",         kRender, D3DRS_COLORWRITEENABLE,         StateType::Int, kChannels},
    {"BlendOp",                  kRender, D3DRS_BLENDOP,                  StateType::Int, kBlendOp},
    {"ScissorTestEnable",        kRender, D3DRS_SCISSORTESTENABLE,        StateType::Bool},
    {"SlopeScaleDepthBias",      kRender, D3DRS_SLOPESCALEDEPTHBIAS,      StateType::Float},
    {"TwoSidedStencilMode",      kRender, kTwoSidedStencil,               StateType::Bool},
    {"CCW_StencilFail",          kRender, kCcwStencilFail,                StateType::Int, kStencilOp},
    {"CCW_StencilZFail",         kRender, kCcwStencilFail + 1,            StateType::Int, kStencilOp},
    {"CCW_StencilPass",          kRender, kCcwStencilFail + 2,            StateType::Int, kStencilOp},
    {"CCW_StencilFunc",          kRender, kCcwStencilFail + 3,            StateType::Int, kCompare},
    {"BlendFactor",              kRender, D3DRS_BLENDFACTOR,              StateType::Colour},
    {"DepthBias",                kRender, D3DRS_DEPTHBIAS,                StateType::Float},
    {"SeparateAlphaBlendEnable", kRender, D3DRS_SEPARATEALPHABLENDENABLE, StateType::Bool},
    {"SrcBlendAlpha",            kRender, D3DRS_SRCBLENDALPHA,            StateType::Int, kBlend},
    {"DestBlendAlpha",           kRender, D3DRS_DESTBLENDALPHA,           StateType::Int, kBlend},
    {"BlendOpAlpha",             kRender, D3DRS_BLENDOPALPHA,             StateType::Int, kBlendOp},

    {"ColorOp",               kStage, D3DTSS_COLOROP,               StateType::Int, kOperation},
    {"ColorArg0",             kStage, D3DTSS_COLORARG0,             StateType::Int, kArgument},
    {"ColorArg1",             kStage, D3DTSS_COLORARG1,             StateType::Int, kArgument},
    {"ColorArg2",             kStage, D3DTSS_COLORARG2,             StateType::Int, kArgument},
    {"AlphaOp",               kStage, D3DTSS_ALPHAOP,               StateType::Int, kOperation},
    {"AlphaArg0",             kStage, D3DTSS_ALPHAARG0,             StateType::Int, kArgument},
    {"AlphaArg1",             kStage, D3DTSS_ALPHAARG1,             StateType::Int, kArgument},
    {"AlphaArg2",             kStage, D3DTSS_ALPHAARG2,             StateType::Int, kArgument},
    {"ResultArg",             kStage, D3DTSS_RESULTARG,             StateType::Int, kArgument},
    {"TexCoordIndex",         kStage, D3DTSS_TEXCOORDINDEX,         StateType::Int, kCoordinates},
    {"TextureTransformFlags", kStage, D3DTSS_TEXTURETRANSFORMFLAGS, StateType::Int, kTransform},
    {"BumpEnvMat00",          kStage, D3DTSS_BUMPENVMAT00,          StateType::Float},
    {"BumpEnvMat01",          kStage, D3DTSS_BUMPENVMAT01,          StateType::Float},
    {"BumpEnvMat10",          kStage, D3DTSS_BUMPENVMAT10,          StateType::Float},
    {"BumpEnvMat11",          kStage, D3DTSS_BUMPENVMAT11,          StateType::Float},
    {"BumpEnvLScale",         kStage, D3DTSS_BUMPENVLSCALE,         StateType::Float},
    {"BumpEnvLOffset",        kStage, D3DTSS_BUMPENVLOFFSET,        StateType::Float},
    {"Constant",              kStage, D3DTSS_CONSTANT,              StateType::Colour},

    {"AddressU",      kSampler, D3DSAMP_ADDRESSU,      StateType::Int, kAddress},
    {"AddressV",      kSampler, D3DSAMP_ADDRESSV,      StateType::Int, kAddress},
    {"AddressW",      kSampler, D3DSAMP_ADDRESSW,      StateType::Int, kAddress},
    {"BorderColor",   kSampler, D3DSAMP_BORDERCOLOR,   StateType::Colour},
    {"MagFilter",     kSampler, D3DSAMP_MAGFILTER,     StateType::Int, kFilter},
    {"MinFilter",     kSampler, D3DSAMP_MINFILTER,     StateType::Int, kFilter},
    {"MipFilter",     kSampler, D3DSAMP_MIPFILTER,     StateType::Int, kFilter},
    {"MipMapLodBias", kSampler, D3DSAMP_MIPMAPLODBIAS, StateType::Float},
    {"MaxMipLevel",   kSampler, D3DSAMP_MAXMIPLEVEL,   StateType::Int},
    {"MaxAnisotropy", kSampler, D3DSAMP_MAXANISOTROPY, StateType::Int},
    {"SRGBTexture",   kSampler, D3DSAMP_SRGBTEXTURE,   StateType::Bool},

    {"Texture",             StateGroup::Texture,   0,                StateType::Texture},
    {"Sampler",             StateGroup::Sampler,   0,                StateType::Sampler},
    {"WorldTransform",      StateGroup::Transform, D3DTS_WORLD,      StateType::Matrix},
    {"ViewTransform",       StateGroup::Transform, D3DTS_VIEW,       StateType::Matrix},
    {"ProjectionTransform", StateGroup::Transform, D3DTS_PROJECTION, StateType::Matrix},
    {"TextureTransform",    StateGroup::Transform, D3DTS_TEXTURE0,   StateType::Matrix},

    {"LightEnable",       StateGroup::LightEnable, 0,                          StateType::Bool},
    {"LightType",         kLights, Member(LightMember::Type),         StateType::Int, kLight},
    {"LightDiffuse",      kLights, Member(LightMember::Diffuse),      StateType::Vector},
    {"LightSpecular",     kLights, Member(LightMember::Specular),     StateType::Vector},
    {"LightAmbient",      kLights, Member(LightMember::Ambient),      StateType::Vector},
    {"LightPosition",     kLights, Member(LightMember::Position),     StateType::Vector},
    {"LightDirection",    kLights, Member(LightMember::Direction),    StateType::Vector},
    {"LightRange",        kLights, Member(LightMember::Range),        StateType::Float},
    {"LightFalloff",      kLights, Member(LightMember::Falloff),      StateType::Float},
    {"LightAttenuation0", kLights, Member(LightMember::Attenuation0), StateType::Float},
    {"LightAttenuation1", kLights, Member(LightMember::Attenuation1), StateType::Float},
    {"LightAttenuation2", kLights, Member(LightMember::Attenuation2), StateType::Float},
    {"LightTheta",        kLights, Member(LightMember::Theta),        StateType::Float},
    {"LightPhi",          kLights, Member(LightMember::Phi),          StateType::Float},

    {"MaterialDiffuse",  kMaterial, Member(MaterialMember::Diffuse),  StateType::Vector},
    {"MaterialAmbient",  kMaterial, Member(MaterialMember::Ambient),  StateType::Vector},
    {"MaterialSpecular", kMaterial, Member(MaterialMember::Specular), StateType::Vector},
    {"MaterialEmissive", kMaterial, Member(MaterialMember::Emissive), StateType::Vector},
    {"MaterialPower",    kMaterial, Member(MaterialMember::Power),    StateType::Float},

    {"VertexShader", StateGroup::VertexShader, 0, StateType::Shader},
    {"PixelShader",  StateGroup::PixelShader,  0, StateType::Shader},
};
// clang-format on

}   // namespace

bool EqualIgnoringCase(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, {}, AsciiLower, AsciiLower);
}

const StateRow* FindState(std::string_view name) {
    const auto* row = std::ranges::find_if(kRows, [&](const StateRow& r) { return EqualIgnoringCase(r.name, name); });
    return row == std::end(kRows) ? nullptr : row;
}

const NamedValue* FindValue(const StateRow& row, std::string_view name) {
    for (const std::span<const NamedValue> values : {row.values, std::span<const NamedValue>(kTruth)})
        for (const NamedValue& value : values)
            if (EqualIgnoringCase(value.name, name)) return &value;
    return nullptr;
}

DWORD IndexCount(StateGroup group, DWORD state) {
    constexpr DWORD kLightCount = 8;
    switch (group) {
        case StateGroup::TextureStage: return kTextureStages;
        case StateGroup::SamplerState:
        case StateGroup::Texture:
        case StateGroup::Sampler: return kSamplers;
        case StateGroup::Transform:
            return state == D3DTS_WORLD ? kWorldMatrices : state == D3DTS_TEXTURE0 ? kTextureStages : 1;
        case StateGroup::Light:
        case StateGroup::LightEnable: return kLightCount;
        default: return 1;
    }
}

}   // namespace sparkrig::fxc
