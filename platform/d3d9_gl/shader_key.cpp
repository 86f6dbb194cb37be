#include "platform/d3d9_gl/shader_key.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "platform/d3d9/shader_code.h"
#include "platform/d3d9_gl/stage_ops.h"

namespace sparkrig {

namespace {

constexpr DWORD Bit(int varying) { return 1u << varying; }

DWORD Source(DWORD argument) { return argument & D3DTA_SELECTMASK; }

// ---- Pixel part

// A stage without a texture whose operation reads it as the first colour argument ends the cascade, as a disabled one
// does.
bool EndsCascade(const std::array<DWORD, kStageStateCount>& stage, bool textured) {
    const StageOp* op = FindStageOp(stage[D3DTSS_COLOROP]);
    if (op == nullptr) return true;
    return !textured && op->reads_1 && Source(stage[D3DTSS_COLORARG1]) == D3DTA_TEXTURE;
}

std::array<BYTE, 3> UsedArguments(const StageOp* op, DWORD a0, DWORD a1, DWORD a2) {
    if (op == nullptr) return {};
    return {static_cast<BYTE>(op->reads_0 ? a0 : 0), static_cast<BYTE>(op->reads_1 ? a1 : 0),
            static_cast<BYTE>(op->reads_2 ? a2 : 0)};
}

StageKey CollectStage(const KeyInputs& inputs, DWORD number) {
    const auto& stage = inputs.state.stages[number];
    StageKey key = {};
    key.colour_op = static_cast<BYTE>(stage[D3DTSS_COLOROP]);
    key.colour_args = UsedArguments(FindStageOp(key.colour_op), stage[D3DTSS_COLORARG0], stage[D3DTSS_COLORARG1],
                                    stage[D3DTSS_COLORARG2]);
    const StageOp* alpha = FindStageOp(stage[D3DTSS_ALPHAOP]);
    key.alpha_op = static_cast<BYTE>(alpha != nullptr ? alpha->op : DWORD{D3DTOP_DISABLE});
    key.alpha_args = UsedArguments(alpha, stage[D3DTSS_ALPHAARG0], stage[D3DTSS_ALPHAARG1], stage[D3DTSS_ALPHAARG2]);
    key.to_temp = Source(stage[D3DTSS_RESULTARG]) == D3DTA_TEMP;
    key.texture = (inputs.textures >> number & 1) != 0;
    key.signed_texture = (inputs.signed_textures >> number & 1) != 0;
    return key;
}

// The component of a stage's coordinates that divides the others, 0: none. Only the fixed vertex pipeline projects,
// and not the corners of sprites.
BYTE Divisor(const KeyInputs& inputs, DWORD stage) {
    const DWORD flags = inputs.state.stages[stage][D3DTSS_TEXTURETRANSFORMFLAGS];
    const DWORD count = flags & ~D3DTTFF_PROJECTED;
    const bool sprite = inputs.points && inputs.state.On(D3DRS_POINTSPRITEENABLE);
    const bool fixed = inputs.vertex_shader.number == 0 && !inputs.state.format.Transformed() && !sprite;
    if (!fixed || (flags & D3DTTFF_PROJECTED) == 0 || count < 2 || count > 4) return 0;
    return static_cast<BYTE>(count - 1);
}

BYTE AlphaFunction(const DeviceState& state) {
    const DWORD function = state.render[D3DRS_ALPHAFUNC];
    const bool tests = state.On(D3DRS_ALPHATESTENABLE) && function >= D3DCMP_NEVER && function < D3DCMP_ALWAYS;
    return static_cast<BYTE>(tests ? function : D3DCMP_ALWAYS);
}

FogSource FogOfMode(DWORD mode) {
    constexpr FogSource kByMode[] = {FogSource::None, FogSource::Exp, FogSource::Exp2, FogSource::Linear};
    return mode < std::size(kByMode) ? kByMode[mode] : FogSource::None;
}

// What gives a vertex its fog factor; None leaves the factor at 1.
FogSource VertexFog(const KeyInputs& inputs) {
    const DeviceState& state = inputs.state;
    const FogSource by_distance = FogOfMode(state.render[D3DRS_FOGVERTEXMODE]);
    if (by_distance != FogSource::None && !state.format.Transformed()) return by_distance;
    return state.format.Has(D3DFVF_SPECULAR) ? FogSource::Specular : FogSource::None;
}

FogSource PixelFog(const KeyInputs& inputs) {
    const DeviceState& state = inputs.state;
    if (!state.On(D3DRS_FOGENABLE)) return FogSource::None;
    const FogSource table = FogOfMode(state.render[D3DRS_FOGTABLEMODE]);
    if (table != FogSource::None) return table;
    const bool given = inputs.vertex_shader.number != 0 ? (inputs.vertex_shader.varyings & Bit(kVaryingFog)) != 0
                                                        : VertexFog(inputs) != FogSource::None;
    return given ? FogSource::Varying : FogSource::None;
}

PixelKey CollectPixel(const KeyInputs& inputs) {
    PixelKey key = {};
    key.shader = inputs.pixel_shader.number;
    key.alpha_func = AlphaFunction(inputs.state);
    key.fog = PixelFog(inputs);
    if (key.shader != 0) return key;
    key.specular_add = inputs.state.On(D3DRS_SPECULARENABLE);
    key.flat = inputs.state.render[D3DRS_SHADEMODE] == D3DSHADE_FLAT;
    while (key.stage_count < kTextureStages) {
        const DWORD stage = key.stage_count;
        if (EndsCascade(inputs.state.stages[stage], (inputs.textures >> stage & 1) != 0)) break;
        key.stages[stage] = CollectStage(inputs, stage);
        key.stages[stage].divisor = Divisor(inputs, stage);
        ++key.stage_count;
    }
    return key;
}

bool ReadsSource(const StageKey& stage, DWORD source) {
    const auto is_source = [source](BYTE argument) { return Source(argument) == source; };
    const StageOp* colour = FindStageOp(stage.colour_op);
    const StageOp* alpha = FindStageOp(stage.alpha_op);
    const auto reads = [&](const StageOp* op, const std::array<BYTE, 3>& args) {
        return op != nullptr && ((op->reads_0 && is_source(args[0])) || (op->reads_1 && is_source(args[1])) ||
                                 (op->reads_2 && is_source(args[2])));
    };
    return reads(colour, stage.colour_args) || reads(alpha, stage.alpha_args);
}

bool UsesTexelAlpha(BYTE op) { return op == D3DTOP_BLENDTEXTUREALPHA || op == D3DTOP_BLENDTEXTUREALPHAPM; }

bool ReadsTexture(const StageKey& stage) {
    return stage.texture != 0 && (ReadsSource(stage, D3DTA_TEXTURE) || stage.colour_op == D3DTOP_BUMPENVMAP ||
                                  UsesTexelAlpha(stage.colour_op) || UsesTexelAlpha(stage.alpha_op));
}

// ---- Vertex part

BYTE MaterialSource(const DeviceState& state, D3DRENDERSTATETYPE source) {
    const DWORD value = state.render[source];
    const bool vertex_colours = state.On(D3DRS_COLORVERTEX);
    if (vertex_colours && value == D3DMCS_COLOR1 && state.format.Has(D3DFVF_DIFFUSE)) return D3DMCS_COLOR1;
    if (vertex_colours && value == D3DMCS_COLOR2 && state.format.Has(D3DFVF_SPECULAR)) return D3DMCS_COLOR2;
    return D3DMCS_MATERIAL;
}

BYTE BlendedMatrices(const DeviceState& state) {
    const DWORD blend = state.render[D3DRS_VERTEXBLEND];
    if (blend == D3DVBF_0WEIGHTS) return 1;
    return static_cast<BYTE>(blend >= D3DVBF_1WEIGHTS && blend <= D3DVBF_3WEIGHTS ? blend + 1 : 0);
}

void CollectLighting(const DeviceState& state, VertexKey& key) {
    key.lighting = 1;
    key.specular_light = state.On(D3DRS_SPECULARENABLE);
    key.local_viewer = key.specular_light && state.On(D3DRS_LOCALVIEWER);
    key.sources = {
        MaterialSource(state, D3DRS_DIFFUSEMATERIALSOURCE), MaterialSource(state, D3DRS_SPECULARMATERIALSOURCE),
        MaterialSource(state, D3DRS_AMBIENTMATERIALSOURCE), MaterialSource(state, D3DRS_EMISSIVEMATERIALSOURCE)};
}

StageCoordinate CollectCoordinate(const DeviceState& state, DWORD stage) {
    const DWORD index = state.stages[stage][D3DTSS_TEXCOORDINDEX];
    const DWORD generation = index >> 16, set = index & 0xFFFF;
    const DWORD flags = state.stages[stage][D3DTSS_TEXTURETRANSFORMFLAGS];
    const DWORD count = flags & ~D3DTTFF_PROJECTED;
    StageCoordinate coordinate = {};
    const bool generated = generation >= 1 && generation <= 4;
    if (generated && !state.format.Transformed()) {
        coordinate.source = static_cast<BYTE>(kCoordinateNormal + generation - 1);
    } else if (set < state.format.set_sizes.size()) {
        coordinate.source = static_cast<BYTE>(kCoordinateSet + set);
        coordinate.set_size = state.format.set_sizes[set];
    }
    if (!state.format.Transformed() && count <= 4) coordinate.matrix_count = static_cast<BYTE>(count);
    return coordinate;
}

void CollectPoints(const KeyInputs& inputs, VertexKey& key) {
    if (!inputs.points) return;
    const bool fixed = inputs.vertex_shader.number == 0;
    key.point = 1;
    key.point_sprite = inputs.state.On(D3DRS_POINTSPRITEENABLE);
    key.point_size = fixed ? inputs.state.format.Has(D3DFVF_PSIZE) : inputs.vertex_shader.writes_point_size;
    key.point_scale = fixed && inputs.state.On(D3DRS_POINTSCALEENABLE) && !inputs.state.format.Transformed();
}

VertexKey CollectVertex(const KeyInputs& inputs, DWORD outputs, FogSource pixel_fog) {
    const DeviceState& state = inputs.state;
    VertexKey key = {};
    key.shader = inputs.vertex_shader.number;
    key.outputs = outputs;
    CollectPoints(inputs, key);
    if (key.shader != 0) return key;
    key.transformed = state.format.Transformed();
    key.normal = state.format.Has(D3DFVF_NORMAL);
    key.diffuse = state.format.Has(D3DFVF_DIFFUSE);
    key.specular = state.format.Has(D3DFVF_SPECULAR);
    if (pixel_fog == FogSource::Varying) {
        key.fog = VertexFog(inputs);
        key.range_fog = key.fog != FogSource::Specular && state.On(D3DRS_RANGEFOGENABLE);
    }
    for (DWORD stage = 0; stage < kTextureStages; ++stage) {
        const bool read = (outputs & Bit(kVaryingTexCoord0 + static_cast<int>(stage))) != 0;
        if (read) key.coordinates[stage] = CollectCoordinate(state, stage);
    }
    if (key.transformed) return key;
    key.normalize = state.On(D3DRS_NORMALIZENORMALS);
    key.matrices = BlendedMatrices(state);
    key.indexed = key.matrices > 0 && state.On(D3DRS_INDEXEDVERTEXBLENDENABLE);
    if (state.On(D3DRS_LIGHTING)) CollectLighting(state, key);
    return key;
}

}   // namespace

DWORD VaryingsRead(const PixelKey& key, DWORD shader_varyings) {
    DWORD read = key.fog == FogSource::Varying ? Bit(kVaryingFog) : 0;
    if (key.shader != 0) return read | shader_varyings;
    read |= Bit(kVaryingColor0);
    if (key.specular_add != 0) read |= Bit(kVaryingColor1);
    for (int stage = 0; stage < key.stage_count; ++stage) {
        const StageKey& row = key.stages[static_cast<std::size_t>(stage)];
        if (ReadsSource(row, D3DTA_SPECULAR)) read |= Bit(kVaryingColor1);
        if (ReadsTexture(row)) read |= Bit(kVaryingTexCoord0 + stage);
    }
    return read;
}

DWORD SamplersRead(const PixelKey& key) {
    DWORD read = 0;
    for (DWORD stage = 0; stage < key.stage_count; ++stage) {
        if (ReadsTexture(key.stages[stage])) read |= 1u << stage;
    }
    return read;
}

ProgramKey CollectKey(const KeyInputs& inputs) {
    ProgramKey key = {};
    key.pixel = CollectPixel(inputs);
    key.vertex = CollectVertex(inputs, VaryingsRead(key.pixel, inputs.pixel_shader.varyings), key.pixel.fog);
    return key;
}

std::size_t KeyHash::HashBytes(const void* bytes, std::size_t count) {
    const auto* byte = static_cast<const unsigned char*>(bytes);
    std::uint64_t hash = 0x9E3779B97F4A7C15u;
    for (; count >= 8; count -= 8, byte += 8) {
        std::uint64_t word;
        std::memcpy(&word, byte, 8);
        hash = (hash ^ word) * 0x9FB21C651E98DF25u;
        hash ^= hash >> 32;
    }
    for (; count > 0; --count, ++byte) hash = (hash ^ *byte) * 0x100000001B3u;
    return static_cast<std::size_t>(hash ^ hash >> 29);
}

}   // namespace sparkrig
