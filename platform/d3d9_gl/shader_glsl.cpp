#include "platform/d3d9_gl/shader_glsl.h"

#include <fmt/format.h>

namespace sparkrig {

namespace {

std::string WithoutVersion(const std::string& glsl) {
    std::string body = glsl;
    if (const std::size_t version = body.find("#version"); version != std::string::npos) {
        body.erase(version, body.find('\n', version) - version);
    }
    return body;
}

}   // namespace

std::string WithVersion(const std::string& glsl) { return "#version 450\n" + WithoutVersion(glsl); }

std::string WithRenamedMain(const std::string& glsl) {
    return "#version 450\n#define main ShaderMain\n" + WithoutVersion(glsl) + "\n#undef main\n";
}

std::string DeclaredVarying(const std::string& glsl, const char* direction, int location) {
    const std::string place = fmt::format("layout(location = {}) ", location),
                      kind = fmt::format("{} vec4 ", direction);
    for (std::size_t start = glsl.find(place); start != std::string::npos; start = glsl.find(place, start + 1)) {
        const std::size_t end = glsl.find(';', start), name = glsl.find(kind, start + place.size());
        if (end == std::string::npos || name > end) continue;   // a declaration of the other direction
        return glsl.substr(name + kind.size(), end - name - kind.size());
    }
    return {};
}

std::string FogFormula(FogSource fog, const char* distance) {
    switch (fog) {
        case FogSource::Exp: return fmt::format("exp(-d3d_states.fog.z * {})", distance);
        case FogSource::Exp2: return fmt::format("exp(-pow(d3d_states.fog.z * {}, 2.0))", distance);
        case FogSource::Linear: return fmt::format("(d3d_states.fog.y - {}) * d3d_states.fog.w", distance);
        default: return "1.0";
    }
}

}   // namespace sparkrig
