#include "tools/fxc/glsl_translator.h"

#include <algorithm>
#include <set>

#include <fmt/format.h>
#include <spirv_cross/spirv_glsl.hpp>

#include "tools/fxc/block_layout.h"
#include "tools/fxc/stage_interface.h"

namespace sparkrig::fxc {

namespace {

constexpr DWORD kSamplerCount = 16;

class Translator {
  public:
    Translator(const std::vector<std::uint32_t>& spirv, const TranslationRequest& request, ExtraVaryings& extra,
               Translation& out)
        : compiler_(spirv), request_(request), out_(out), interface_(request.stage, request.version, extra) {}

    bool Run(std::string& error) {
        const auto active = compiler_.get_active_interface_variables();
        const spirv_cross::ShaderResources resources = compiler_.get_shader_resources(active);
        compiler_.set_enabled_interface_variables(active);
        for (const auto& block : resources.uniform_buffers) AddGlobals(block);
        AddSamplers(resources);
        for (const auto& input : resources.stage_inputs)
            if (!AddVariable(input, true, error)) return false;
        for (const auto& output : resources.stage_outputs)
            if (!AddVariable(output, false, error)) return false;
        if (out_.code.globals_bytes > kMaxGlobalsBytes) {
            error =
                fmt::format("the parameters take {} bytes; {} are possible", out_.code.globals_bytes, kMaxGlobalsBytes);
            return false;
        }
        out_.missing_inputs = interface_.MissingInputs();
        if (out_.unsupported.empty()) WriteCode();
        return true;
    }

  private:
    bool Vertex() const { return request_.stage == FunctionStage::Vertex; }

    // ---- Globals

    void AddGlobals(const spirv_cross::Resource& block) {
        LayOutBlock(compiler_, block.base_type_id);
        const spirv_cross::SPIRType& type = compiler_.get_type(block.base_type_id);
        out_.code.globals_bytes = static_cast<DWORD>((compiler_.get_declared_struct_size(type) + 15) / 16 * 16);
        AddMembers(block.base_type_id, "", 0);
        compiler_.set_name(block.base_type_id, Vertex() ? "VertexGlobals" : "PixelGlobals");
        compiler_.set_name(block.id, "globals");
        compiler_.set_decoration(block.id, spv::DecorationBinding,
                                 Vertex() ? kVertexGlobalsBinding : kPixelGlobalsBinding);
        compiler_.unset_decoration(block.id, spv::DecorationDescriptorSet);
    }

    void AddMembers(spirv_cross::TypeID id, const std::string& prefix, DWORD base) {
        const spirv_cross::SPIRType& type = compiler_.get_type(id);
        for (std::uint32_t i = 0; i < type.member_types.size(); ++i) {
            const std::string path = prefix + compiler_.get_member_name(id, i);
            const DWORD offset = base + compiler_.type_struct_member_offset(type, i);
            const spirv_cross::SPIRType& member = compiler_.get_type(type.member_types[i]);
            if (member.basetype != spirv_cross::SPIRType::Struct) {
                out_.globals.push_back(
                    {path, offset, static_cast<DWORD>(compiler_.get_declared_struct_member_size(type, i))});
            } else if (member.array.empty()) {
                AddMembers(member.self, path + ".", offset);
            } else {
                const DWORD stride = compiler_.type_struct_member_array_stride(type, i);
                for (DWORD element = 0; element < member.array[0]; ++element)
                    AddMembers(member.self, fmt::format("{}[{}].", path, element), offset + element * stride);
            }
        }
    }

    // ---- Samplers

    void AddSamplers(const spirv_cross::ShaderResources& resources) {
        if (!resources.separate_images.empty() || !resources.separate_samplers.empty() ||
            !resources.storage_images.empty() || !resources.storage_buffers.empty())
            out_.unsupported = "it uses resources of later shader models";
        if (resources.sampled_images.empty()) return;
        if (Vertex()) out_.unsupported = "it samples a texture in the vertex stage";
        for (const std::string& name : request_.samplers) {
            const auto image = std::ranges::find(resources.sampled_images, name, &spirv_cross::Resource::name);
            if (image != resources.sampled_images.end()) AddSampler(*image, FreeSampler(name, resources));
        }
    }

    /// The register that the effect gives the sampler, or the first that no sampler of the function has.
    DWORD FreeSampler(const std::string& name, const spirv_cross::ShaderResources& resources) const {
        const auto given = request_.sampler_registers.find(name);
        if (given != request_.sampler_registers.end()) return given->second;
        std::set<DWORD> taken;
        for (const SamplerPlace& place : out_.samplers) taken.insert(place.sampler);
        for (const auto& image : resources.sampled_images)
            if (const auto other = request_.sampler_registers.find(image.name);
                other != request_.sampler_registers.end())
                taken.insert(other->second);
        DWORD free = 0;
        while (taken.contains(free)) ++free;
        return free;
    }

    void AddSampler(const spirv_cross::Resource& image, DWORD place) {
        const spirv_cross::SPIRType& type = compiler_.get_type(image.type_id);
        if (type.image.dim != spv::Dim2D) out_.unsupported = "it samples a cube or volume texture";
        if (!type.array.empty()) out_.unsupported = "it samples an array of textures";
        if (place >= kSamplerCount) out_.unsupported = "it uses more than 16 samplers";
        out_.samplers.push_back({image.name, place});
        // Its own name could be one that the text around the function uses.
        compiler_.set_name(image.id, fmt::format("sampler_{}", place));
        compiler_.set_decoration(image.id, spv::DecorationBinding, place);
        compiler_.unset_decoration(image.id, spv::DecorationLocation);
        compiler_.unset_decoration(image.id, spv::DecorationDescriptorSet);
    }

    // ---- Inputs and outputs

    /// As StageVariable has it; empty for what cannot go between stages.
    static std::string NumberOf(const spirv_cross::SPIRType& type) {
        switch (type.basetype) {
            case spirv_cross::SPIRType::Float: return "float";
            case spirv_cross::SPIRType::Int:
            case spirv_cross::SPIRType::UInt: return "int";
            case spirv_cross::SPIRType::Boolean: return "bool";
            default: return {};
        }
    }

    bool AddVariable(const spirv_cross::Resource& resource, bool input, std::string& error) {
        const spirv_cross::SPIRType& type = compiler_.get_type(resource.type_id);
        StageVariable variable;
        variable.name = fmt::format("{}{}", input ? "from_" : "to_", variables_.size());
        variable.semantic = SemanticOf(resource);
        variable.components = static_cast<int>(type.vecsize);
        variable.indexed = type.columns > 1 || !type.array.empty();
        variable.rows = static_cast<int>(type.array.empty() ? type.columns : type.array[0]);
        variable.number = NumberOf(type);
        const bool simple =
            !variable.number.empty() && type.array.size() <= 1 && (type.array.empty() || type.columns == 1);
        const bool known = simple && (input ? interface_.AddInput(variable, out_.unsupported)
                                            : interface_.AddOutput(variable, out_.unsupported));
        if (!known) {
            const std::string what = input ? "input" : "output";
            error = variable.semantic.empty() ? fmt::format("the {} '{}' has no semantic", what, resource.name)
                                              : fmt::format("the {} '{}' can not have the semantic {}", what,
                                                            resource.name, variable.semantic);
            return false;
        }
        compiler_.set_name(resource.id, variable.name);
        variables_.push_back(variable.name);
        return true;
    }

    /// Elements of an array share the semantic of the array; "[i]" in the name tells them apart.
    std::string SemanticOf(const spirv_cross::Resource& resource) {
        std::string semantic = compiler_.get_decoration_string(resource.id, spv::DecorationHlslSemanticGOOGLE);
        const std::size_t open = resource.name.rfind('[');
        if (semantic.empty() || open == std::string::npos) return semantic;
        std::size_t digits = semantic.size();
        while (digits > 0 && std::isdigit(static_cast<unsigned char>(semantic[digits - 1]))) --digits;
        const int base = digits < semantic.size() ? std::atoi(semantic.c_str() + digits) : 0;
        return semantic.substr(0, digits) + std::to_string(base + std::atoi(resource.name.c_str() + open + 1));
    }

    // ---- Text

    void WriteCode() {
        spirv_cross::CompilerGLSL::Options options = compiler_.get_common_options();
        options.version = 450;
        options.es = false;
        options.emit_push_constant_as_uniform_buffer = true;
        options.enable_row_major_load_workaround = false;
        compiler_.set_common_options(options);
        std::string glsl = compiler_.compile();
        for (const std::string& name : variables_) MakeGlobal(glsl, name);

        constexpr std::string_view kMain = "void main()";
        glsl.replace(glsl.find(kMain), kMain.size(), "void effect_function()");
        const std::size_t version_end = glsl.find('\n') + 1;
        glsl.insert(version_end, interface_.Declarations());
        glsl +=
            fmt::format("\nvoid main()\n{{\n{}    effect_function();\n{}}}\n", interface_.Before(), interface_.After());
        out_.code.glsl = std::move(glsl);
        out_.code.inputs = interface_.Inputs();
        out_.code.varyings = interface_.Varyings();
        out_.code.writes_point_size = interface_.WritesPointSize();
    }

    /// "layout(location = 3) in vec2 name;" becomes "vec2 name;".
    static void MakeGlobal(std::string& glsl, const std::string& name) {
        for (const char* end : {";", "["}) {
            const std::size_t found = glsl.find(" " + name + end);
            if (found == std::string::npos) continue;
            const std::size_t line = glsl.rfind('\n', found) + 1;
            const std::size_t type = glsl.rfind(' ', found - 1) + 1;
            if (type > line) glsl.erase(line, type - line);
            return;
        }
    }

    spirv_cross::CompilerGLSL compiler_;
    const TranslationRequest& request_;
    Translation& out_;
    StageInterface interface_;
    std::vector<std::string> variables_;
};

}   // namespace

bool TranslateFunction(const std::vector<std::uint32_t>& spirv, const TranslationRequest& request, ExtraVaryings& extra,
                       Translation& out, std::string& error) try {
    return Translator(spirv, request, extra, out).Run(error);
} catch (const spirv_cross::CompilerError&) {
    error = kNotTranslatable;
    return false;
}

}   // namespace sparkrig::fxc
