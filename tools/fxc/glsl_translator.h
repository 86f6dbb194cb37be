#pragma once
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "platform/d3dx/effect_file.h"
#include "tools/fxc/stage_interface.h"

namespace sparkrig::fxc {

struct GlobalPlace {
    std::string path;   // name, or structure.member
    DWORD offset = 0;   // bytes in the block of globals
    DWORD bytes = 0;
};

struct SamplerPlace {
    std::string name;
    DWORD sampler = 0;
};

/// A function in the layer's form, and where it takes its parameters.
struct Translation {
    ShaderCode code;
    std::vector<GlobalPlace> globals;
    std::vector<SamplerPlace> samplers;
    std::vector<std::string> missing_inputs;   // that no vertex has
    std::string unsupported;                   // what in it the layer can not run; then without code
};

struct TranslationRequest {
    FunctionStage stage = FunctionStage::Vertex;
    DWORD version = 0;                                     // 0xMMmm
    std::vector<std::string> samplers = {};                // of the effect, in the order of their declaration
    std::map<std::string, DWORD> sampler_registers = {};   // given ones; the others get the first free, in order
};

inline constexpr const char* kNotTranslatable = "it uses the language in a way that can not be translated";

/// `extra` holds the interpolants of all functions of the effect. On failure `error` says what is wrong with the
/// function.
bool TranslateFunction(const std::vector<std::uint32_t>& spirv, const TranslationRequest& request, ExtraVaryings& extra,
                       Translation& out, std::string& error);

}   // namespace sparkrig::fxc
