// Writes vertex shaders. The texts follow the pipeline: position, normal, lights, coordinates, fog, point corner.
#include <fmt/format.h>

#include "platform/d3d9_gl/shader_glsl.h"
#include "platform/d3d9_gl/uniform_blocks.h"

namespace sparkrig {

namespace {

bool Writes(const VertexKey& key, int varying) { return (key.outputs >> varying & 1) != 0; }

// Pixel centres are whole numbers here, halves in OpenGL, which leaves open who gets a pixel whose centre lies on an
// edge. A shift that falls short by the 1/256 of a pixel that rasterisers resolve gives it to the left and the top
// edge.
constexpr const char* kShiftGlsl = "const float kShift = 1.0 - 2.0 / 256.0;   // in halves of a pixel\n";

constexpr const char* kInputsGlsl = R"(
layout(location = 0) in vec4 position;
layout(location = 1) in vec4 blend_weight;
layout(location = 2) in vec4 blend_indices;
layout(location = 3) in vec4 normal;
layout(location = 4) in vec4 point_size;
layout(location = 5) in vec4 color0;
layout(location = 6) in vec4 color1;
)";

constexpr const char* kCornerGlsl = R"(
vec2 PointCorner() { return vec2(gl_VertexID & 1, gl_VertexID >> 1 & 1); }   // (0, 0) upper left
float ClampPointSize(float size) { return max(min(size, d3d_states.point.z), d3d_states.point.y); }
vec4 MovedToCorner(vec4 position, float size, vec2 pixel) {
    vec2 offset = (PointCorner() - 0.5) * size * pixel * position.w;
    return position + vec4(offset.x, -offset.y, 0.0, 0.0);
}
)";

constexpr const char* kLightsGlsl = R"(
float SpotFactor(LightRow light, vec3 to_light) {
    float rho = dot(light.direction.xyz, to_light);
    if (rho > light.cone.x) return 1.0;
    if (rho <= light.cone.y) return 0.0;
    return pow((rho - light.cone.y) / (light.cone.x - light.cone.y), light.attenuation.w);
}
// Adds one light's share to the sums.
void AddLight(LightRow light, vec3 eye, vec3 n, vec4 diffuse, vec4 specular,
              inout vec3 ambient, inout vec3 lit, inout vec3 shine) {
    vec3 to_light = light.direction.xyz;
    float strength = 1.0;
    if (light.direction.w != 3.0) {
        vec3 way = light.position.xyz - eye;
        float d = length(way);
        if (d > light.position.w) return;
        to_light = d > 0.0 ? way / d : vec3(0.0);
        float divisor = light.attenuation.x + d * (light.attenuation.y + d * light.attenuation.z);
        if (divisor > 0.0) strength = 1.0 / divisor;
        if (light.direction.w == 2.0) strength *= SpotFactor(light, to_light);
    }
    ambient += strength * light.ambient.rgb;
    float facing = dot(n, to_light);
    if (facing <= 0.0) return;
    lit += diffuse.rgb * light.diffuse.rgb * facing * strength;
    #if SPECULAR_LIGHT
    vec3 half_way = normalize(TO_VIEWER + to_light);
    float shining = dot(n, half_way);
    if (shining > 0.0) shine += specular.rgb * light.specular.rgb * pow(shining, d3d_lighting.counts.y) * strength;
    #endif
}
)";

std::string OutputDeclarations(const VertexKey& key) {
    std::string text;
    for (int varying = 0; varying < kVaryings; ++varying) {
        if (Writes(key, varying)) text += fmt::format("layout(location = {0}) out vec4 varying_{0};\n", varying);
    }
    return text;
}

// ---- The fixed pipeline

std::string PositionCode(const VertexKey& key) {
    if (key.transformed != 0) {
        return R"(    float w = position.w != 0.0 ? 1.0 / position.w : 1.0;
    vec2 place = (position.xy + 0.5 * kShift) * d3d_states.half_pixel.zw - 1.0;
    gl_Position = vec4(place.x * w, -place.y * w, position.z * w, w);
    vec3 eye = vec3(0.0);
)";
    }
    std::string text;
    if (key.matrices == 0) {
        text = "    vec4 eye4 = d3d_transforms.world_view * vec4(position.xyz, 1.0);\n";
    } else {
        text = "    vec4 in_world = vec4(0.0);\n";
        for (int i = 0; i < key.matrices; ++i) {
            text += fmt::format(
                "    in_world += BlendWeight({0}) * (d3d_palette.world[BlendMatrix({0})] * vec4(position.xyz, 1.0));\n",
                i);
        }
        text += "    vec4 eye4 = d3d_transforms.view * in_world;\n";
    }
    return text + R"(    vec3 eye = eye4.xyz;
    gl_Position = d3d_transforms.projection * eye4;
    gl_Position.xy += kShift * d3d_states.half_pixel.xy * gl_Position.w;
)";
}

std::string BlendFunctions(const VertexKey& key) {
    if (key.matrices == 0) return {};
    std::string last = "1.0";   // the last weight is what is missing to one
    for (int i = 0; i + 1 < key.matrices; ++i) last += fmt::format(" - blend_weight[{}]", i);
    return fmt::format(R"(
float BlendWeight(int i) {{ return i < {} ? blend_weight[i] : {}; }}
int BlendMatrix(int i) {{ return {}; }}
vec3 TurnedNormal(mat4 to_camera) {{
    vec3 x = to_camera[0].xyz, y = to_camera[1].xyz, z = to_camera[2].xyz;
    float determinant = dot(x, cross(y, z));
    if (determinant == 0.0) return vec3(0.0);
    return (cross(y, z) * normal.x + cross(z, x) * normal.y + cross(x, y) * normal.z) / determinant;
}}
)",
                       key.matrices - 1, last, key.indexed != 0 ? "int(blend_indices[i])" : "i");
}

std::string NormalCode(const VertexKey& key) {
    if (key.normal == 0) return "    vec3 n = vec3(0.0);\n";
    std::string text;
    if (key.matrices == 0) {
        text =
            "    vec3 n = d3d_transforms.normal[0].xyz * normal.x + d3d_transforms.normal[1].xyz * normal.y +\n"
            "             d3d_transforms.normal[2].xyz * normal.z;\n";
    } else {
        text = "    vec3 n = vec3(0.0);\n";
        for (int i = 0; i < key.matrices; ++i) {
            text += fmt::format(
                "    n += BlendWeight({0}) * TurnedNormal(d3d_transforms.view * "
                "d3d_palette.world[BlendMatrix({0})]);\n",
                i);
        }
    }
    if (key.normalize != 0) text += "    if (dot(n, n) > 0.0) n = normalize(n);\n";
    return text;
}

std::string MaterialColour(BYTE source, const char* material) {
    if (source == D3DMCS_COLOR1) return "color0";
    if (source == D3DMCS_COLOR2) return "color1";
    return std::string("d3d_lighting.") + material;
}

std::string ColourCode(const VertexKey& key) {
    if (key.lighting == 0) {
        return fmt::format("    vec4 diffuse = {};\n    vec3 specular = {};\n",
                           key.diffuse != 0 ? "color0" : "vec4(1.0)", key.specular != 0 ? "color1.rgb" : "vec3(0.0)");
    }
    return fmt::format(
        R"(    vec4 diffuse_material = {};
    vec4 specular_material = {};
    vec3 ambient = d3d_lighting.ambient.rgb, lit = vec3(0.0), shine = vec3(0.0);
    for (int i = 0; i < int(d3d_lighting.counts.x); ++i) {{
        AddLight(d3d_lighting.lights[i], eye, n, diffuse_material, specular_material, ambient, lit, shine);
    }}
    vec3 sum = {}.rgb + {}.rgb * ambient + lit;
    vec4 diffuse = vec4(clamp(sum, 0.0, 1.0), clamp(diffuse_material.a, 0.0, 1.0));
    vec3 specular = clamp(shine, 0.0, 1.0);
)",
        MaterialColour(key.sources[0], "diffuse_material"), MaterialColour(key.sources[1], "specular_material"),
        MaterialColour(key.sources[3], "emissive_material"), MaterialColour(key.sources[2], "ambient_material"));
}

// A coordinate set filled up to four components: with a 1 after its last one where a matrix follows.
std::string SetCoordinate(int set, int size, bool matrix_follows) {
    constexpr const char* kForMatrix[] = {"vec4(0.0, 0.0, 1.0, 0.0)", "vec4({}.x, 1.0, 0.0, 0.0)",
                                          "vec4({}.xy, 1.0, 0.0)", "vec4({}.xyz, 1.0)", "{}"};
    constexpr const char* kPlain[] = {"vec4(0.0, 0.0, 0.0, 1.0)", "vec4({}.x, 0.0, 0.0, 1.0)", "vec4({}.xy, 0.0, 1.0)",
                                      "vec4({}.xyz, 1.0)", "{}"};
    const char* pattern = (matrix_follows ? kForMatrix : kPlain)[size];
    return fmt::format(fmt::runtime(pattern), fmt::format("texcoord_{}", set));
}

std::string CoordinateInput(const StageCoordinate& coordinate) {
    switch (coordinate.source) {
        case kCoordinateNormal: return "vec4(n, 1.0)";
        case kCoordinatePosition: return "vec4(eye, 1.0)";
        case kCoordinateReflection: return "vec4(Reflection(eye, n), 1.0)";
        case kCoordinateSphere:
            return fmt::format("vec4(SphereCoordinate(eye, n), {})",
                               coordinate.matrix_count > 0 ? "1.0, 0.0" : "0.0, 1.0");
        default: return SetCoordinate(coordinate.source, coordinate.set_size, coordinate.matrix_count > 0);
    }
}

constexpr const char* kReflectionGlsl = R"(
vec3 Reflection(vec3 eye, vec3 n) {
    vec3 to_viewer = -normalize(eye);
    return 2.0 * dot(n, to_viewer) * n - to_viewer;
}
vec2 SphereCoordinate(vec3 eye, vec3 n) {
    vec3 r = Reflection(eye, n);
    float m = 2.0 * sqrt(r.x * r.x + r.y * r.y + (r.z + 1.0) * (r.z + 1.0));
    return m > 0.0 ? r.xy / m + 0.5 : vec2(0.5);
}
)";

std::string CoordinateCode(const VertexKey& key) {
    std::string text;
    for (int stage = 0; stage < static_cast<int>(kTextureStages); ++stage) {
        const int varying = kVaryingTexCoord0 + stage;
        if (!Writes(key, varying)) continue;
        const StageCoordinate& coordinate = key.coordinates[static_cast<std::size_t>(stage)];
        if (key.point != 0 && key.point_sprite != 0) {
            text += fmt::format("    varying_{} = vec4(PointCorner(), 0.0, 1.0);\n", varying);
        } else if (coordinate.matrix_count > 0) {
            constexpr const char* kPassedOn[] = {"", "vec4(t.x, 0.0, 0.0, 1.0)", "vec4(t.xy, 0.0, 1.0)",
                                                 "vec4(t.xyz, 1.0)", "t"};
            text += fmt::format("    {{ vec4 t = d3d_lighting.texture_matrix[{}] * {}; varying_{} = {}; }}\n", stage,
                                CoordinateInput(coordinate), varying, kPassedOn[coordinate.matrix_count]);
        } else {
            text += fmt::format("    varying_{} = {};\n", varying, CoordinateInput(coordinate));
        }
    }
    return text;
}

std::string FogCode(const VertexKey& key) {
    if (!Writes(key, kVaryingFog)) return {};
    const std::string factor = key.fog == FogSource::Specular
                                   ? "color1.a"
                                   : FogFormula(key.fog, key.range_fog != 0 ? "length(eye)" : "abs(eye.z)");
    return fmt::format("    varying_{} = vec4(clamp({}, 0.0, 1.0));\n", static_cast<int>(kVaryingFog), factor);
}

std::string PointCode(const VertexKey& key) {
    if (key.point == 0) return {};
    std::string size = key.point_size != 0 ? "point_size.x" : "d3d_states.point.x";
    if (key.point_scale != 0) {
        size +=
            " * d3d_states.point.w * inversesqrt(d3d_states.point_scale.x + length(eye) * "
            "(d3d_states.point_scale.y + length(eye) * d3d_states.point_scale.z))";
    }
    const char* pixel = key.transformed != 0 ? "d3d_states.half_pixel.zw" : "abs(d3d_states.half_pixel.xy) * 2.0";
    return fmt::format("    gl_Position = MovedToCorner(gl_Position, ClampPointSize({}), {});\n", size, pixel);
}

std::string FixedVertexGlsl(const VertexKey& key) {
    std::string text = std::string("#version 450\n") + kShiftGlsl + kStatesGlsl + kTransformsGlsl + kLightingGlsl;
    if (key.matrices > 0) text += kPaletteGlsl;
    text += kInputsGlsl;
    for (int set = 0; set < 8; ++set) {
        text += fmt::format("layout(location = {}) in vec4 texcoord_{};\n", kInputTexCoord0 + set, set);
    }
    text += OutputDeclarations(key) + BlendFunctions(key) + kReflectionGlsl;
    if (key.point != 0) text += kCornerGlsl;
    if (key.lighting != 0) {
        text += fmt::format("#define SPECULAR_LIGHT {}\n#define TO_VIEWER {}\n", key.specular_light,
                            key.local_viewer != 0 ? "normalize(-eye)" : "vec3(0.0, 0.0, -1.0)");
        text += kLightsGlsl;
    }
    text += "void main() {\n" + PositionCode(key) + NormalCode(key) + ColourCode(key);
    if (Writes(key, kVaryingColor0)) text += "    varying_0 = diffuse;\n";
    if (Writes(key, kVaryingColor1))
        text += fmt::format("    varying_1 = vec4(specular, {});\n", key.specular != 0 ? "color1.a" : "0.0");
    return text + CoordinateCode(key) + FogCode(key) + PointCode(key) + "}\n";
}

// ---- Around a vertex function

// What a pixel stage reads where the function writes nothing.
const char* MissingVarying(int varying) {
    if (varying == kVaryingColor0 || varying == kVaryingFog) return "vec4(1.0)";
    return varying == kVaryingColor1 ? "vec4(0.0)" : "vec4(0.0, 0.0, 0.0, 1.0)";
}

std::string MissingDeclarations(const VertexKey& key, const ShaderCode& code) {
    VertexKey missing = key;
    missing.outputs &= ~code.varyings;
    return OutputDeclarations(missing);
}

std::string FunctionOutputs(const VertexKey& key, const ShaderCode& code) {
    std::string text;
    for (int varying = 0; varying < kVaryings; ++varying) {
        if (!Writes(key, varying)) continue;
        const bool written = (code.varyings >> varying & 1) != 0;
        const bool corner = key.point_sprite != 0 && varying >= kVaryingTexCoord0 && varying < kVaryingFog;
        if (written && !corner) continue;
        const std::string name =
            written ? DeclaredVarying(code.glsl, "out", varying) : fmt::format("varying_{}", varying);
        if (name.empty()) continue;
        text += fmt::format("    {} = {};\n", name, corner ? "vec4(PointCorner(), 0.0, 1.0)" : MissingVarying(varying));
    }
    return text;
}

std::string WrappedVertexGlsl(const VertexKey& key, const ShaderCode& code) {
    std::string text = WithRenamedMain(code.glsl) + kShiftGlsl + kStatesGlsl + MissingDeclarations(key, code);
    if (key.point != 0) text += kCornerGlsl;
    text +=
        "void main() {\n    ShaderMain();\n    gl_Position.xy += kShift * d3d_states.half_pixel.xy * gl_Position.w;\n";
    text += FunctionOutputs(key, code);
    if (key.point != 0) {
        text += fmt::format(
            "    gl_Position = MovedToCorner(gl_Position, ClampPointSize({}), "
            "abs(d3d_states.half_pixel.xy) * 2.0);\n",
            key.point_size != 0 ? "gl_PointSize" : "d3d_states.point.x");
    }
    return text + "}\n";
}

}   // namespace

std::string VertexGlsl(const VertexKey& key, const ShaderCode* code) {
    return code != nullptr ? WrappedVertexGlsl(key, *code) : FixedVertexGlsl(key);
}

}   // namespace sparkrig
