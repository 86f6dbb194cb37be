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
    {"DOTPRODUCT3", D3DTOP_DOTPRODUCT3}, {"MULTIPLYADD", D3DTOP_MULTIPLYADD}, {"LERP", D3DTOP_LERP},
    {"PREMODULATE", D3DTOP_SELECTARG1}, {"BUMPENVMAPLUMINANCE", D3DTOP_BUMPENVMAP}};   // the next best
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
    {"NONE", D3DTEXF_NONE}, {"POINT", D3DTEXF_POINT}, {"LINEAR", D3DTEXF_LINEAR}, {"ANISOTROPIC", D3DTEXF_ANISOTROPIC},
    {"PYRAMIDALQUAD", D3DTEXF_LINEAR}, {"GAUSSIANQUAD", D3DTEXF_LINEAR}};   // of four texels: the next best
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

constexpr StateRow Unused(const char* name, StateGroup group = kRender) {
    return {name, group, StateType::Int, 0, {}, true};
}

constexpr StateRow kRows[] = {
    {"ZEnable",                  kRender, StateType::Int,    D3DRS_ZENABLE,                  kDepth},
    {"FillMode",                 kRender, StateType::Int,    D3DRS_FILLMODE,                 kFill},
    {"ShadeMode",                kRender, StateType::Int,    D3DRS_SHADEMODE,                kShade},
    {"ZWriteEnable",             kRender, StateType::Bool,   D3DRS_ZWRITEENABLE},
    {"AlphaTestEnable",          kRender, StateType::Bool,   D3DRS_ALPHATESTENABLE},
    {"LastPixel",                kRender, StateType::Bool,   D3DRS_LASTPIXEL},
    {"SrcBlend",                 kRender, StateType::Int,    D3DRS_SRCBLEND,                 kBlend},
    {"DestBlend",                kRender, StateType::Int,    D3DRS_DESTBLEND,                kBlend},
    {"CullMode",                 kRender, StateType::Int,    D3DRS_CULLMODE,                 kCull},
    {"ZFunc",                    kRender, StateType::Int,    D3DRS_ZFUNC,                    kCompare},
    {"AlphaRef",                 kRender, StateType::Int,    D3DRS_ALPHAREF},
    {"AlphaFunc",                kRender, StateType::Int,    D3DRS_ALPHAFUNC,                kCompare},
    {"DitherEnable",             kRender, StateType::Bool,   D3DRS_DITHERENABLE},
    {"AlphaBlendEnable",         kRender, StateType::Bool,   D3DRS_ALPHABLENDENABLE},
    {"FogEnable",                kRender, StateType::Bool,   D3DRS_FOGENABLE},
    {"SpecularEnable",           kRender, StateType::Bool,   D3DRS_SPECULARENABLE},
    {"FogColor",                 kRender, StateType::Colour, D3DRS_FOGCOLOR},
    {"FogTableMode",             kRender, StateType::Int,    D3DRS_FOGTABLEMODE,             kFog},
    {"FogStart",                 kRender, StateType::Float,  D3DRS_FOGSTART},
    {"FogEnd",                   kRender, StateType::Float,  D3DRS_FOGEND},
    {"FogDensity",               kRender, StateType::Float,  D3DRS_FOGDENSITY},
    {"RangeFogEnable",           kRender, StateType::Bool,   D3DRS_RANGEFOGENABLE},
    {"StencilEnable",            kRender, StateType::Bool,   D3DRS_STENCILENABLE},
    {"StencilFail",              kRender, StateType::Int,    kStencilFail,                   kStencilOp},
    {"StencilZFail",             kRender, StateType::Int,    kStencilFail + 1,               kStencilOp},
    {"StencilPass",              kRender, StateType::Int,    kStencilFail + 2,               kStencilOp},
    {"StencilFunc",              kRender, StateType::Int,    kStencilFail + 3,               kCompare},
    {"StencilRef",               kRender, StateType::Int,    kStencilFail + 4},
    {"StencilMask",              kRender, StateType::Int,    kStencilFail + 5},
    {"StencilWriteMask",         kRender, StateType::Int,    kStencilFail + 6},
    {"TextureFactor",            kRender, StateType::Colour, D3DRS_TEXTUREFACTOR},
    {"Wrap0",                    kRender, StateType::Int,    D3DRS_WRAP0,                    kWrap},
    {"Wrap1",                    kRender, StateType::Int,    D3DRS_WRAP0 + 1,                kWrap},
    {"Wrap2",                    kRender, StateType::Int,    D3DRS_WRAP0 + 2,                kWrap},
    {"Wrap3",                    kRender, StateType::Int,    D3DRS_WRAP0 + 3,                kWrap},
    {"Wrap4",                    kRender, StateType::Int,    D3DRS_WRAP0 + 4,                kWrap},
    {"Wrap5",                    kRender, StateType::Int,    D3DRS_WRAP0 + 5,                kWrap},
    {"Wrap6",                    kRender, StateType::Int,    D3DRS_WRAP0 + 6,                kWrap},
    {"Wrap7",                    kRender, StateType::Int,    D3DRS_WRAP0 + 7,                kWrap},
    {"Clipping",                 kRender, StateType::Bool,   D3DRS_CLIPPING},
    {"Lighting",                 kRender, StateType::Bool,   D3DRS_LIGHTING},
    {"Ambient",                  kRender, StateType::Colour, D3DRS_AMBIENT},
    {"FogVertexMode",            kRender, StateType::Int,    D3DRS_FOGVERTEXMODE,            kFog},
    {"ColorVertex",              kRender, StateType::Bool,   D3DRS_COLORVERTEX},
    {"LocalViewer",              kRender, StateType::Bool,   D3DRS_LOCALVIEWER},
    {"NormalizeNormals",         kRender, StateType::Bool,   D3DRS_NORMALIZENORMALS},
    {"DiffuseMaterialSource",    kRender, StateType::Int,    D3DRS_DIFFUSEMATERIALSOURCE,    kSource},
    {"SpecularMaterialSource",   kRender, StateType::Int,    D3DRS_SPECULARMATERIALSOURCE,   kSource},
    {"AmbientMaterialSource",    kRender, StateType::Int,    D3DRS_AMBIENTMATERIALSOURCE,    kSource},
    {"EmissiveMaterialSource",   kRender, StateType::Int,    D3DRS_EMISSIVEMATERIALSOURCE,   kSource},
    {"VertexBlend",              kRender, StateType::Int,    D3DRS_VERTEXBLEND,              kVertexBlend},
    {"ClipPlaneEnable",          kRender, StateType::Int,    D3DRS_CLIPPLANEENABLE},
    {"PointSize",                kRender, StateType::Float,  D3DRS_POINTSIZE},
    {"PointSize_Min",            kRender, StateType::Float,  D3DRS_POINTSIZE_MIN},
    {"PointSize_Max",            kRender, StateType::Float,  D3DRS_POINTSIZE_MAX},
    {"PointSpriteEnable",        kRender, StateType::Bool,   D3DRS_POINTSPRITEENABLE},
    {"PointScaleEnable",         kRender, StateType::Bool,   D3DRS_POINTSCALEENABLE},
    {"PointScale_A",             kRender, StateType::Float,  D3DRS_POINTSCALE_A},
    {"PointScale_B",             kRender, StateType::Float,  D3DRS_POINTSCALE_B},
    {"PointScale_C",             kRender, StateType::Float,  D3DRS_POINTSCALE_C},
    {"MultiSampleAntialias",     kRender, StateType::Bool,   D3DRS_MULTISAMPLEANTIALIAS},
    {"MultiSampleMask",          kRender, StateType::Int,    D3DRS_MULTISAMPLEMASK},
    {"IndexedVertexBlendEnable", kRender, StateType::Bool,   D3DRS_INDEXEDVERTEXBLENDENABLE},
    {"ColorWriteEnable",         kRender, StateType::Int,    D3DRS_COLORWRITEENABLE,         kChannels},
    {"BlendOp",                  kRender, StateType::Int,    D3DRS_BLENDOP,                  kBlendOp},
    {"ScissorTestEnable",        kRender, StateType::Bool,   D3DRS_SCISSORTESTENABLE},
    {"SlopeScaleDepthBias",      kRender, StateType::Float,  D3DRS_SLOPESCALEDEPTHBIAS},
    {"TwoSidedStencilMode",      kRender, StateType::Bool,   kTwoSidedStencil},
    {"CCW_StencilFail",          kRender, StateType::Int,    kCcwStencilFail,                kStencilOp},
    {"CCW_StencilZFail",         kRender, StateType::Int,    kCcwStencilFail + 1,            kStencilOp},
    {"CCW_StencilPass",          kRender, StateType::Int,    kCcwStencilFail + 2,            kStencilOp},
    {"CCW_StencilFunc",          kRender, StateType::Int,    kCcwStencilFail + 3,            kCompare},
    {"BlendFactor",              kRender, StateType::Colour, D3DRS_BLENDFACTOR},
    {"DepthBias",                kRender, StateType::Float,  D3DRS_DEPTHBIAS},
    {"SeparateAlphaBlendEnable", kRender, StateType::Bool,   D3DRS_SEPARATEALPHABLENDENABLE},
    {"SrcBlendAlpha",            kRender, StateType::Int,    D3DRS_SRCBLENDALPHA,            kBlend},
    {"DestBlendAlpha",           kRender, StateType::Int,    D3DRS_DESTBLENDALPHA,           kBlend},
    {"BlendOpAlpha",             kRender, StateType::Int,    D3DRS_BLENDOPALPHA,             kBlendOp},

    Unused("Wrap8"), Unused("Wrap9"), Unused("Wrap10"), Unused("Wrap11"), Unused("Wrap12"), Unused("Wrap13"),
    Unused("Wrap14"), Unused("Wrap15"), Unused("ColorWriteEnable1"), Unused("ColorWriteEnable2"),
    Unused("ColorWriteEnable3"), Unused("SRGBWriteEnable"), Unused("AntialiasedLineEnable"),
    Unused("PatchEdgeStyle"), Unused("PatchSegments"), Unused("DebugMonitorToken"), Unused("TweenFactor"),
    Unused("PositionDegree"), Unused("PositionOrder"), Unused("NormalDegree"), Unused("NormalOrder"),
    Unused("AdaptiveTess_X"), Unused("AdaptiveTess_Y"), Unused("AdaptiveTess_Z"), Unused("AdaptiveTess_W"),
    Unused("EnableAdaptiveTessellation"), Unused("MinTessellationLevel"), Unused("MaxTessellationLevel"),
    Unused("NPatchMode"), Unused("ClipPlane"), Unused("ZBias"), Unused("ZVisible"), Unused("EdgeAntialias"),
    Unused("LinePattern"), Unused("SoftwareVertexProcessing"), Unused("VertexShaderConstant"),
    Unused("VertexShaderConstantF"), Unused("VertexShaderConstantB"), Unused("VertexShaderConstantI"),
    Unused("VertexShaderConstant1"), Unused("VertexShaderConstant2"), Unused("VertexShaderConstant3"),
    Unused("VertexShaderConstant4"), Unused("PixelShaderConstant"), Unused("PixelShaderConstantF"),
    Unused("PixelShaderConstantB"), Unused("PixelShaderConstantI"), Unused("PixelShaderConstant1"),
    Unused("PixelShaderConstant2"), Unused("PixelShaderConstant3"), Unused("PixelShaderConstant4"),

    {"ColorOp",               kStage, StateType::Int,    D3DTSS_COLOROP,               kOperation},
    {"ColorArg0",             kStage, StateType::Int,    D3DTSS_COLORARG0,             kArgument},
    {"ColorArg1",             kStage, StateType::Int,    D3DTSS_COLORARG1,             kArgument},
    {"ColorArg2",             kStage, StateType::Int,    D3DTSS_COLORARG2,             kArgument},
    {"AlphaOp",               kStage, StateType::Int,    D3DTSS_ALPHAOP,               kOperation},
    {"AlphaArg0",             kStage, StateType::Int,    D3DTSS_ALPHAARG0,             kArgument},
    {"AlphaArg1",             kStage, StateType::Int,    D3DTSS_ALPHAARG1,             kArgument},
    {"AlphaArg2",             kStage, StateType::Int,    D3DTSS_ALPHAARG2,             kArgument},
    {"ResultArg",             kStage, StateType::Int,    D3DTSS_RESULTARG,             kArgument},
    {"TexCoordIndex",         kStage, StateType::Int,    D3DTSS_TEXCOORDINDEX,         kCoordinates},
    {"TextureTransformFlags", kStage, StateType::Int,    D3DTSS_TEXTURETRANSFORMFLAGS, kTransform},
    {"BumpEnvMat00",          kStage, StateType::Float,  D3DTSS_BUMPENVMAT00},
    {"BumpEnvMat01",          kStage, StateType::Float,  D3DTSS_BUMPENVMAT01},
    {"BumpEnvMat10",          kStage, StateType::Float,  D3DTSS_BUMPENVMAT10},
    {"BumpEnvMat11",          kStage, StateType::Float,  D3DTSS_BUMPENVMAT11},
    {"BumpEnvLScale",         kStage, StateType::Float,  D3DTSS_BUMPENVLSCALE},
    {"BumpEnvLOffset",        kStage, StateType::Float,  D3DTSS_BUMPENVLOFFSET},
    {"Constant",              kStage, StateType::Colour, D3DTSS_CONSTANT},

    {"AddressU",      kSampler, StateType::Int,    D3DSAMP_ADDRESSU,      kAddress},
    {"AddressV",      kSampler, StateType::Int,    D3DSAMP_ADDRESSV,      kAddress},
    {"AddressW",      kSampler, StateType::Int,    D3DSAMP_ADDRESSW,      kAddress},
    {"BorderColor",   kSampler, StateType::Colour, D3DSAMP_BORDERCOLOR},
    {"MagFilter",     kSampler, StateType::Int,    D3DSAMP_MAGFILTER,     kFilter},
    {"MinFilter",     kSampler, StateType::Int,    D3DSAMP_MINFILTER,     kFilter},
    {"MipFilter",     kSampler, StateType::Int,    D3DSAMP_MIPFILTER,     kFilter},
    {"MipMapLodBias", kSampler, StateType::Float,  D3DSAMP_MIPMAPLODBIAS},
    {"MaxMipLevel",   kSampler, StateType::Int,    D3DSAMP_MAXMIPLEVEL},
    {"MaxAnisotropy", kSampler, StateType::Int,    D3DSAMP_MAXANISOTROPY},
    {"SRGBTexture",   kSampler, StateType::Bool,   D3DSAMP_SRGBTEXTURE},
    Unused("Filter", kSampler), Unused("ComparisonFunc", kSampler), Unused("MinLOD", kSampler),
    Unused("MaxLOD", kSampler),
    Unused("FVF"), Unused("ElementIndex", kSampler), Unused("DMapOffset", kSampler),

    {"Texture",             StateGroup::Texture,   StateType::Texture, 0},
    {"Sampler",             StateGroup::Sampler,   StateType::Sampler, 0},
    {"WorldTransform",      StateGroup::Transform, StateType::Matrix,  D3DTS_WORLD},
    {"ViewTransform",       StateGroup::Transform, StateType::Matrix,  D3DTS_VIEW},
    {"ProjectionTransform", StateGroup::Transform, StateType::Matrix,  D3DTS_PROJECTION},
    {"TextureTransform",    StateGroup::Transform, StateType::Matrix,  D3DTS_TEXTURE0},

    {"LightEnable",       StateGroup::LightEnable, StateType::Bool,   0},
    {"LightType",         kLights,                 StateType::Int,    Member(LightMember::Type),         kLight},
    {"LightDiffuse",      kLights,                 StateType::Vector, Member(LightMember::Diffuse)},
    {"LightSpecular",     kLights,                 StateType::Vector, Member(LightMember::Specular)},
    {"LightAmbient",      kLights,                 StateType::Vector, Member(LightMember::Ambient)},
    {"LightPosition",     kLights,                 StateType::Vector, Member(LightMember::Position)},
    {"LightDirection",    kLights,                 StateType::Vector, Member(LightMember::Direction)},
    {"LightRange",        kLights,                 StateType::Float,  Member(LightMember::Range)},
    {"LightFalloff",      kLights,                 StateType::Float,  Member(LightMember::Falloff)},
    {"LightAttenuation0", kLights,                 StateType::Float,  Member(LightMember::Attenuation0)},
    {"LightAttenuation1", kLights,                 StateType::Float,  Member(LightMember::Attenuation1)},
    {"LightAttenuation2", kLights,                 StateType::Float,  Member(LightMember::Attenuation2)},
    {"LightTheta",        kLights,                 StateType::Float,  Member(LightMember::Theta)},
    {"LightPhi",          kLights,                 StateType::Float,  Member(LightMember::Phi)},

    {"MaterialDiffuse",  kMaterial, StateType::Vector, Member(MaterialMember::Diffuse)},
    {"MaterialAmbient",  kMaterial, StateType::Vector, Member(MaterialMember::Ambient)},
    {"MaterialSpecular", kMaterial, StateType::Vector, Member(MaterialMember::Specular)},
    {"MaterialEmissive", kMaterial, StateType::Vector, Member(MaterialMember::Emissive)},
    {"MaterialPower",    kMaterial, StateType::Float,  Member(MaterialMember::Power)},

    {"VertexShader", StateGroup::VertexShader, StateType::Shader, 0},
    {"PixelShader",  StateGroup::PixelShader,  StateType::Shader, 0},
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

const StateRow* FindState(StateGroup group, DWORD state) {
    const StateRow* found = nullptr;
    for (const StateRow& row : kRows) {
        const bool here = group == StateGroup::Transform ? row.state <= state : row.state == state;
        if (row.group == group && here && !row.unused && (!found || row.state > found->state)) found = &row;
    }
    return found;
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
