#include "gfx/shaders/shader_effect_values.h"

#include <algorithm>
#include <string>

#include "gfx/shaders/shader_effect.h"
#include "gfx/shaders/shader_effect_context.h"
#include "gfx/textures/texture.h"

namespace sparkrig {

namespace {

struct Views {
    D3DXMATRIX world, view, projection;
};

D3DXMATRIX Product(const D3DXMATRIX& a, const D3DXMATRIX& b) {
    D3DXMATRIX product;
    D3DXMatrixMultiply(&product, &a, &b);
    return product;
}

/// A singular matrix stays what it is.
D3DXMATRIX Inverse(const D3DXMATRIX& matrix) {
    D3DXMATRIX inverse = matrix;
    D3DXMatrixInverse(&inverse, nullptr, &matrix);
    return inverse;
}

D3DXMATRIX WorldInverseTranspose(D3DXMATRIX world) {
    for (int i = 0; i < 3; ++i) world.m[3][i] = 0;
    D3DXMATRIX transposed;
    const D3DXMATRIX inverse = Inverse(world);
    D3DXMatrixTranspose(&transposed, &inverse);
    return transposed;
}

struct MatrixRow {
    Semantic semantic;
    D3DXMATRIX (*value)(const Views& views);
};

// clang-format off
constexpr MatrixRow kMatrixRows[] = {
    {Semantic::WorldViewProjection,   [](const Views& v) { return Product(Product(v.world, v.view), v.projection); }},
    {Semantic::WorldView,             [](const Views& v) { return Product(v.world, v.view); }},
    {Semantic::World,                 [](const Views& v) { return v.world; }},
    {Semantic::WorldInverseTranspose, [](const Views& v) { return WorldInverseTranspose(v.world); }},
    {Semantic::View,                  [](const Views& v) { return v.view; }},
    {Semantic::ViewInverse,           [](const Views& v) { return Inverse(v.view); }},
    {Semantic::Projection,            [](const Views& v) { return v.projection; }},
    {Semantic::ViewProjection,        [](const Views& v) { return Product(v.view, v.projection); }},
};
// clang-format on

struct FloatRow {
    Semantic semantic;
    float (*value)(const ShaderEffectContext& context, ShaderEffectSettings& settings);
};

float DeviceTime(const ShaderEffectContext& context, ShaderEffectSettings&) {
    return static_cast<float>(context.Graphics().Environment().seconds() - context.frames.Created());
}

float ElapsedTime(const ShaderEffectContext& context, ShaderEffectSettings&) {
    const float rate = context.frames.Rate();
    return rate > 0 ? 1 / rate : 0;
}

float GameTime(const ShaderEffectContext& context, ShaderEffectSettings& settings) {
    return settings.game_time ? settings.game_time() : DeviceTime(context, settings);
}

float RandomNumber(const ShaderEffectContext&, ShaderEffectSettings& settings) {
    return static_cast<float>(std::uniform_real_distribution<double>(0, 1)(settings.random));
}

constexpr FloatRow kFloatRows[] = {
    {Semantic::Time, DeviceTime},
    {Semantic::ElapsedTime, ElapsedTime},
    {Semantic::GameTime, GameTime},
    {Semantic::Random, RandomNumber},
};

struct VectorRow {
    Semantic semantic;
    D3DXVECTOR4 (*value)(const ShaderEffectContext& context, const Views& views);
};

D3DXVECTOR4 ViewPosition(const ShaderEffectContext&, const Views& views) {
    const D3DXMATRIX inverse = Inverse(views.view);
    return {inverse.m[3][0], inverse.m[3][1], inverse.m[3][2], inverse.m[3][3]};
}

D3DXVECTOR4 FogStartEnd(const ShaderEffectContext& context, const Views&) {
    return {context.states.fog.Settings().start, context.states.fog.Settings().end, 0, 0};
}

D3DXVECTOR4 InverseViewport(const ShaderEffectContext& context, const Views&) {
    const D3DVIEWPORT9& viewport = context.states.transforms.Viewport();
    const auto inverse = [](DWORD size) { return size > 0 ? 1 / static_cast<float>(size) : 0; };
    return {inverse(viewport.Width), inverse(viewport.Height), 0, 0};
}

constexpr VectorRow kVectorRows[] = {
    {Semantic::ViewPosition, ViewPosition},
    {Semantic::FogStartEnd, FogStartEnd},
    {Semantic::InvViewPortDim, InverseViewport},
};

struct BufferRow {
    Semantic semantic;
    TargetKind kind;
    int index;
};

constexpr BufferRow kBufferRows[] = {
    {Semantic::ScreenQuarterBuffer1, TargetKind::QuarterBuffer, 0},
    {Semantic::ScreenQuarterBuffer2, TargetKind::QuarterBuffer, 1},
    {Semantic::ScreenQuarterBuffer3, TargetKind::QuarterBuffer, 2},
    {Semantic::ScreenBuffer1, TargetKind::FullBuffer, 0},
    {Semantic::ScreenBuffer2, TargetKind::FullBuffer, 1},
};

/// The name under which the catalogue keeps a resource texture.
std::string CatalogueName(const char* resource) {
    std::string name;
    for (const char* c = resource; *c; ++c) {
        const auto byte = static_cast<unsigned char>(*c);
        const bool small_letter = byte >= 'a' && byte <= 'z';
        name += small_letter ? static_cast<char>(byte - 'a' + 'A') : byte < 32 || byte >= 97 ? '_' : *c;
    }
    return name + "_FX_";
}

D3DXVECTOR4 Vector(const D3DCOLORVALUE& colour) { return {colour.r, colour.g, colour.b, colour.a}; }
D3DXVECTOR4 Vector(const D3DVECTOR& vector) { return {vector.x, vector.y, vector.z, 1}; }

D3DXVECTOR4 ColourVector(D3DCOLOR colour) {
    const auto channel = [&](int shift) { return static_cast<float>(colour >> shift & 0xFF) / 255.0f; };
    return {channel(16), channel(8), channel(0), 1};
}

constexpr int kOmniLights = 6, kDirectionalLights = 2;

struct LightArrays {
    int omni = 0, directional = 0;
    D3DXVECTOR4 ambient;
    D3DXVECTOR4 position[kOmniLights], omni_diffuse[kOmniLights], omni_specular[kOmniLights], omni_ambient[kOmniLights],
        attenuation[kOmniLights];
    D3DXVECTOR4 direction[kDirectionalLights], directional_diffuse[kDirectionalLights],
        directional_specular[kDirectionalLights];
};

void AddDirectional(const D3DLIGHT9& light, LightArrays& arrays) {
    if (arrays.directional == kDirectionalLights) return;
    const int i = arrays.directional++;
    arrays.direction[i] = Vector(light.Direction);
    arrays.directional_diffuse[i] = Vector(light.Diffuse);
    arrays.directional_specular[i] = Vector(light.Specular);
    arrays.ambient.x += light.Ambient.r;
    arrays.ambient.y += light.Ambient.g;
    arrays.ambient.z += light.Ambient.b;
}

void AddOmni(const D3DLIGHT9& light, LightArrays& arrays) {
    if (arrays.omni == kOmniLights) return;
    const int i = arrays.omni++;
    arrays.position[i] = Vector(light.Position);
    arrays.omni_diffuse[i] = Vector(light.Diffuse);
    arrays.omni_specular[i] = Vector(light.Specular);
    arrays.omni_ambient[i] = Vector(light.Ambient);
    arrays.attenuation[i] = {light.Attenuation0, light.Attenuation1, light.Attenuation2, 0};
}

LightArrays ScanLights(const GfxStates& states) {
    LightArrays arrays;
    const LightingState& lighting = states.lighting;
    const D3DCOLOR unlit = lighting.Colour() ? *lighting.Colour() : 0;
    arrays.ambient = ColourVector(lighting.On() ? lighting.Ambient() : unlit);
    for (int i = 0; i < LightSlots::kCount; ++i) {
        if (!states.lights.Enabled(i)) continue;
        const D3DLIGHT9& light = states.lights.Light(i);
        if (light.Type == D3DLIGHT_DIRECTIONAL) AddDirectional(light, arrays);
        if (light.Type == D3DLIGHT_POINT || light.Type == D3DLIGHT_SPOT) AddOmni(light, arrays);
    }
    return arrays;
}

}   // namespace

void FillFrameSemantics(const ShaderEffectContext& context, KRN_ShaderEffect& effect, const ShaderEffectData& data,
                        ShaderEffectSettings& settings) {
    const Transforms& transforms = context.states.transforms;
    const Views views = {transforms.World(), transforms.View(), transforms.Projection()};
    for (const MatrixRow& row : kMatrixRows)
        if (const D3DXHANDLE handle = data.Handle(row.semantic)) effect.SetParameter(handle, row.value(views));
    for (const FloatRow& row : kFloatRows)
        if (const D3DXHANDLE handle = data.Handle(row.semantic))
            effect.SetParameter(handle, row.value(context, settings));
    for (const VectorRow& row : kVectorRows)
        if (const D3DXHANDLE handle = data.Handle(row.semantic)) effect.SetParameter(handle, row.value(context, views));
}

void FillResourceTextures(const ShaderEffectContext& context, KRN_ShaderEffect& effect, const ShaderEffectData& data) {
    for (const ShaderEffectData::ResourceTexture& resource : data.resource_textures) {
        const char* file = nullptr;
        if (FAILED(data.effect->GetString(resource.resource_name, &file))) continue;   // a number: names no file
        const std::string name = CatalogueName(file);
        KRN_Texture* texture = context.catalogue.GetTexture(name.c_str());
        if (!texture && context.catalogue.Add(name.c_str(), file, 0, true))
            texture = context.catalogue.GetTexture(name.c_str());
        effect.SetParameter(resource.parameter, texture ? texture->DeviceTexture() : nullptr);
    }
}

void FillScreenTextures(const ShaderEffectContext& context, KRN_ShaderEffect& effect, const ShaderEffectData& data) {
    const D3DXHANDLE copy = data.Handle(Semantic::ScreenCopy);
    if (copy && !context.post_render.Drawing() && !context.pass_switch.Buffer())
        effect.SetParameter(copy, context.screen_buffers.GetScreenCopy(true));
    for (const BufferRow& row : kBufferRows)
        if (const D3DXHANDLE handle = data.Handle(row.semantic))
            effect.SetParameter(handle, context.screen_buffers.GetScreenBufferTexture(row.kind, row.index));
}

void FillObjectSemantics(const ShaderEffectContext& context, KRN_ShaderEffect& effect, const ShaderEffectData& data,
                         int blend_weights, std::span<const D3DXMATRIX> palette) {
    if (const D3DXHANDLE handle = data.Handle(Semantic::NumBlendWeights))
        effect.SetParameter(handle, static_cast<float>(blend_weights));
    const D3DXHANDLE handle = data.Handle(Semantic::WorldMatrixArray);
    const std::size_t room = std::size_t{context.Graphics().Caps().MaxVertexBlendMatrixIndex} + 1;
    if (handle && !palette.empty()) effect.SetParameter(handle, palette.first(std::min(palette.size(), room)));
}

void FillLightSemantics(const ShaderEffectContext& context, KRN_ShaderEffect& effect, const ShaderEffectData& data) {
    const LightArrays arrays = ScanLights(context.states);
    const auto set_number = [&](Semantic semantic, int value) {
        if (const D3DXHANDLE handle = data.Handle(semantic)) effect.SetParameter(handle, static_cast<float>(value));
    };
    const auto set_array = [&](Semantic semantic, const auto& vectors) {
        if (const D3DXHANDLE handle = data.Handle(semantic)) effect.SetParameter(handle, vectors, std::size(vectors));
    };
    set_number(Semantic::NumDirectionalLights, arrays.directional);
    set_number(Semantic::NumOmniLights, arrays.omni);
    set_array(Semantic::OmniLightPosition, arrays.position);
    set_array(Semantic::OmniLightDiffCol, arrays.omni_diffuse);
    set_array(Semantic::OmniLightSpecCol, arrays.omni_specular);
    set_array(Semantic::OmniLightAmbiCol, arrays.omni_ambient);
    set_array(Semantic::OmniLightAttenuation, arrays.attenuation);
    set_array(Semantic::DirectionalLightDirection, arrays.direction);
    set_array(Semantic::DirectionalLightDiffCol, arrays.directional_diffuse);
    set_array(Semantic::DirectionalLightSpecCol, arrays.directional_specular);
    if (const D3DXHANDLE handle = data.Handle(Semantic::AmbientColor)) effect.SetParameter(handle, arrays.ambient);
}

void FillMaterialSemantics(const ShaderEffectContext& context, KRN_ShaderEffect& effect, const ShaderEffectData& data) {
    const D3DMATERIAL9& material = context.states.lighting.Material();
    const TextureStages::Map diffuse = context.textures.DiffuseMap();
    const TextureStages::Map normal = context.textures.MapOf(MapKind::Bump);
    const TextureStages::Map reflection = context.textures.ReflectionMap();
    const auto set = [&](Semantic semantic, const auto& value) {
        if (const D3DXHANDLE handle = data.Handle(semantic)) effect.SetParameter(handle, value);
    };
    set(Semantic::DiffuseMap, diffuse.texture);
    set(Semantic::NormalMap, normal.texture);
    set(Semantic::TextureMatrix, diffuse.matrix);
    set(Semantic::Opacity, static_cast<float>(context.states.blending.Alpha()) / 255);
    set(Semantic::ReflectionMapType, static_cast<float>(reflection.kind));
    set(Semantic::ReflectionMap, reflection.texture);
    set(Semantic::TransformReflectionMap, reflection.matrix);
    set(Semantic::DiffuseMaterial, Vector(material.Diffuse));
    set(Semantic::AmbientMaterial, Vector(material.Ambient));
    set(Semantic::SpecularMaterial, Vector(material.Specular));
    set(Semantic::EmissiveMaterial, Vector(material.Emissive));
    set(Semantic::SpecularPower, material.Power);
}

}   // namespace sparkrig
