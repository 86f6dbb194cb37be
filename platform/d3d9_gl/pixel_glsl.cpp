// Writes pixel shaders: the cascade of texture stages, then specular add, alpha test and fog.
#include <fmt/format.h>

#include "platform/d3d9_gl/shader_glsl.h"
#include "platform/d3d9_gl/stage_ops.h"
#include "platform/d3d9_gl/uniform_blocks.h"

namespace sparkrig {

namespace {

// ---- The texture stages

std::string Argument(BYTE argument, int stage) {
    std::string text;
    switch (argument & D3DTA_SELECTMASK) {
        case D3DTA_DIFFUSE: text = "diffuse"; break;
        case D3DTA_TEXTURE: text = "texel"; break;
        case D3DTA_TFACTOR: text = "d3d_states.texture_factor"; break;
        case D3DTA_SPECULAR: text = "specular"; break;
        case D3DTA_TEMP: text = "temp"; break;
        case D3DTA_CONSTANT: text = fmt::format("d3d_states.constants[{}]", stage); break;
        default: text = "current"; break;
    }
    if (argument & D3DTA_ALPHAREPLICATE) text += ".aaaa";
    return argument & D3DTA_COMPLEMENT ? "(1.0 - " + text + ")" : text;
}

// Statement that puts the result of an operation into the vector `name`.
std::string Operation(const char* name, const StageOp& op, const std::array<BYTE, 3>& args, int stage) {
    std::string text = fmt::format("        vec4 {};\n        {{\n", name);
    const bool reads[] = {op.reads_0, op.reads_1, op.reads_2};
    for (std::size_t i = 0; i < args.size(); ++i) {
        if (reads[i]) text += fmt::format("            vec4 a{} = {};\n", i, Argument(args[i], stage));
    }
    return text + fmt::format("            {} = clamp({}, 0.0, 1.0);\n        }}\n", name, op.formula);
}

std::string TexelCode(const StageKey& key, int stage, bool sampled) {
    if (!sampled) return "        vec4 texel = vec4(1.0, 1.0, 1.0, diffuse.a);\n";
    constexpr const char* kDivisors[] = {"", " / v_{}.y", " / v_{}.z", " / v_{}.w"};
    const int varying = kVaryingTexCoord0 + stage;
    return fmt::format("        vec4 texel = texture(texture_{}, v_{}.xy{} + bump);\n", stage, varying,
                       fmt::format(fmt::runtime(kDivisors[key.divisor]), varying));
}

std::string BumpCode(const StageKey& key, int stage) {
    return fmt::format(R"(        vec2 slope = {};
        bump = d3d_states.bump[{}].xy * slope.x + d3d_states.bump[{}].zw * slope.y;
)",
                       key.signed_texture != 0 ? "texel.rg" : "texel.rg * 2.0 - 1.0", stage, stage);
}

std::string StageCode(const StageKey& key, int stage, bool sampled) {
    std::string text = "    {\n" + TexelCode(key, stage, sampled);
    if (key.colour_op == D3DTOP_BUMPENVMAP) return text + BumpCode(key, stage) + "    }\n";
    const StageOp* colour = FindStageOp(key.colour_op);
    const StageOp* alpha = FindStageOp(key.alpha_op);
    text += Operation("colour", *colour, key.colour_args, stage);
    const bool all_channels = key.colour_op == D3DTOP_DOTPRODUCT3;
    if (alpha != nullptr && !all_channels) text += Operation("alpha", *alpha, key.alpha_args, stage);
    const char* alpha_value = all_channels ? "colour.a" : alpha != nullptr ? "alpha.a" : "current.a";
    text += fmt::format("        {} = vec4(colour.rgb, {});\n", key.to_temp != 0 ? "temp" : "current", alpha_value);
    return text + "        bump = vec2(0.0);\n    }\n";
}

// ---- After the colour is known

const char* Comparison(BYTE function) {
    constexpr const char* kTexts[] = {"", "false", "<", "==", "<=", ">", "!=", ">="};
    return kTexts[function];
}

std::string AlphaTestCode(BYTE function) {
    if (function == D3DCMP_ALWAYS) return {};
    if (function == D3DCMP_NEVER) return "    discard;\n";
    return fmt::format(
        "    if (!(floor(clamp(pixel_color.a, 0.0, 1.0) * 255.0 + 0.5) {} d3d_states.pixel.x)) discard;\n",
        Comparison(function));
}

std::string FogCode(FogSource fog, const std::string& varying) {
    if (fog == FogSource::None) return {};
    const std::string factor =
        fog == FogSource::Varying
            ? varying + ".x"
            : FogFormula(fog, "(d3d_states.pixel.y != 0.0 ? gl_FragCoord.z : 1.0 / gl_FragCoord.w)");
    return fmt::format(
        "    pixel_color.rgb = mix(d3d_states.fog_colour.rgb, clamp(pixel_color.rgb, 0.0, 1.0), clamp({}, 0.0, "
        "1.0));\n",
        factor);
}

std::string InputDeclarations(DWORD varyings, bool flat) {
    std::string text;
    for (int varying = 0; varying < kVaryings; ++varying) {
        if ((varyings >> varying & 1) == 0) continue;
        const bool flat_colour = flat && varying <= kVaryingColor1;
        text += fmt::format("layout(location = {0}) {1}in vec4 v_{0};\n", varying, flat_colour ? "flat " : "");
    }
    return text;
}

std::string StagesGlsl(const PixelKey& key) {
    const DWORD read = VaryingsRead(key, 0), samplers = SamplersRead(key);
    std::string text = std::string("#version 450\n") + kStatesGlsl + InputDeclarations(read, key.flat != 0);
    for (int stage = 0; stage < key.stage_count; ++stage) {
        if ((samplers >> stage & 1) != 0) {
            text += fmt::format("layout(binding = {0}) uniform sampler2D texture_{0};\n", stage);
        }
    }
    text += "layout(location = 0) out vec4 pixel_color;\nvoid main() {\n";
    text += "    vec4 diffuse = clamp(v_0, 0.0, 1.0);\n";
    const bool specular = (read >> kVaryingColor1 & 1) != 0;
    text += fmt::format("    vec4 specular = {};\n", specular ? "clamp(v_1, 0.0, 1.0)" : "vec4(0.0)");
    text += "    vec4 current = diffuse, temp = vec4(0.0);\n    vec2 bump = vec2(0.0);\n";
    for (int stage = 0; stage < key.stage_count; ++stage) {
        text += StageCode(key.stages[static_cast<std::size_t>(stage)], stage, (samplers >> stage & 1) != 0);
    }
    text += "    pixel_color = current;\n";
    if (key.specular_add != 0) text += "    pixel_color.rgb = min(pixel_color.rgb + specular.rgb, 1.0);\n";
    return text + AlphaTestCode(key.alpha_func) + FogCode(key.fog, "v_10") + "}\n";
}

std::string WrappedPixelGlsl(const PixelKey& key, const ShaderCode& code) {
    std::string text = WithRenamedMain(code.glsl) + kStatesGlsl;
    std::string fog_name = DeclaredVarying(code.glsl, "in", kVaryingFog);
    if (key.fog == FogSource::Varying && fog_name.empty()) {
        fog_name = "v_10";
        text += InputDeclarations(1u << kVaryingFog, false);
    }
    return text + "void main() {\n    ShaderMain();\n" + AlphaTestCode(key.alpha_func) + FogCode(key.fog, fog_name) +
           "}\n";
}

}   // namespace

std::string PixelGlsl(const PixelKey& key, const ShaderCode* code) {
    return code != nullptr ? WrappedPixelGlsl(key, *code) : StagesGlsl(key);
}

}   // namespace sparkrig
