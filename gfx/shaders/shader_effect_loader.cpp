#include "gfx/shaders/shader_effect_loader.h"

#include <sstream>

#include "base/file_validator.h"
#include "gfx/shaders/shader_effect_context.h"
#include "gfx/shaders/shader_effect_registry.h"
#include "gfx/shaders/shader_source.h"
#include "gfx/textures/texture_paths.h"
#include "platform/system/system.h"

namespace sparkrig {

namespace {

void ReportFailure(const KRN_Base& reporter, const char* file, HRESULT result, ID3DXBuffer* errors) {
    const char* const name = DXGetErrorString9(result);
    if (!errors || errors->GetBufferSize() <= 1)
        reporter.Error("Could not compile effect from file '%s': '%s'", file, name);
    reporter.Error("Could not compile effect from file '%s': '%s'\n\n%s", file, name,
                   static_cast<const char*>(errors->GetBufferPointer()));
}

/// The source in place of a compiled effect that is missing or older; else the file itself.
std::string Newest(const std::string& file) {
    if (!file.ends_with(".fxo")) return file;
    const std::string source = file.substr(0, file.size() - 1);
    // In seconds, as far as copies of both go.
    constexpr std::int64_t kSecond = 1'000'000'000;
    const std::int64_t time = ShaderSourceTime(source);
    return time >= 0 && time / kSecond > FileModificationTime(file.c_str()) ? source : file;
}

/// Of a source it changes with the files that it includes.
std::string ShaderKey(const std::string& file) {
    const std::string key = FileKey(file.c_str());
    return file.ends_with(".fxo") ? key : key + "_" + std::to_string(ShaderSourceTime(file));
}

/// `remarks` gets what the compiler says about an effect that it made, a line each.
DevicePtr<ID3DXEffect> Compile(const GraphicsDevice& graphics, const char* file, DWORD flags, bool use_pool,
                               std::string& remarks) {
    DevicePtr<ID3DXEffect> effect;
    DevicePtr<ID3DXBuffer> errors;
    const HRESULT result = D3DXCreateEffectFromFileA(
        graphics.Device(), file, flags, use_pool ? graphics.EffectPool() : nullptr, effect.Receive(), errors.Receive());
    if (FAILED(result)) ReportFailure(graphics.Reporter(), file, result, errors.Get());
    if (errors) remarks = static_cast<const char*>(errors->GetBufferPointer());
    return effect;
}

void FindResourceTextures(ShaderEffectData& data) {
    for (UINT i = 0; i < data.parameters; ++i) {
        const D3DXHANDLE parameter = data.effect->GetParameter(nullptr, i);
        const D3DXHANDLE name = data.effect->GetAnnotationByName(parameter, "ResourceName");
        if (name && data.resource_textures.size() < ShaderEffectData::kMostResourceTextures)
            data.resource_textures.push_back({parameter, name});
    }
}

void ReadNumberedParameters(ShaderEffectData& data) {
    constexpr auto kFirstFloat = static_cast<std::size_t>(Semantic::FloatParameter1);
    constexpr auto kFirstVector = static_cast<std::size_t>(Semantic::VectorParameter1);
    for (std::size_t i = 0; i < kNumberedParameters; ++i) {
        if (const D3DXHANDLE handle = data.handles[kFirstFloat + i])
            data.effect->GetFloat(handle, &data.float_parameters[i]);
        if (const D3DXHANDLE handle = data.handles[kFirstVector + i])
            data.effect->GetVector(handle, &data.vector_parameters[i]);
    }
}

std::unique_ptr<ShaderEffectData> Describe(const KRN_Base& reporter, DevicePtr<ID3DXEffect> effect) {
    auto data = std::make_unique<ShaderEffectData>();
    data->effect = std::move(effect);
    D3DXEFFECT_DESC desc = {};
    data->effect->GetDesc(&desc);
    data->parameters = desc.Parameters;
    data->techniques = desc.Techniques;
    data->handles = FindSemantics(*data->effect);
    for (std::size_t i = 0; i < kSemantics; ++i) data->light_semantics |= data->handles[i] && IsLightSemantic(i);
    FindResourceTextures(*data);
    ReadNumberedParameters(*data);
    data->targets = ReadPassTargets(reporter, *data->effect);
    return data;
}

}   // namespace

ShaderEffectLoader::ShaderEffectLoader(const ShaderEffectContext& context)
    : context_(context), registry_(std::make_shared<ShaderEffectRegistry>()) {}
ShaderEffectLoader::~ShaderEffectLoader() = default;

std::string ShaderEffectLoader::Find(const char* file) const {
    std::string here = Newest(file);
    if (program_folder_.empty() || FileExists(here.c_str())) return here;
    std::string own = Newest(JoinPath(program_folder_, file));
    return FileExists(own.c_str()) ? own : file;
}

bool ShaderEffectLoader::CanLoad(const char* file) const { return FileExists(Find(file).c_str()); }

bool ShaderEffectLoader::Load(KRN_ShaderEffect& effect, const char* name, bool required, DWORD flags, bool use_pool) {
    effect.Release();
    effect.context_ = &context_;
    CFileValidator().CheckPath(name);   // such a file is loaded nevertheless
    const std::string found = Find(name);
    const char* const file = found.c_str();
    const std::string key = ShaderKey(found);
    const int shared = registry_->settings.sharing ? registry_->Share(key) : -1;
    if (shared >= 0) {
        effect.registry_ = registry_;
        effect.registry_index_ = shared;
        effect.technique_ = effect.Data()->technique;
        return true;
    }
    if (!FileExists(file)) {
        if (required) context_.Reporter().Error("Shader effect file '%s' not found", file);
        context_.Reporter().Warning("Shader effect file '%s' not found", file);
        return false;
    }
    std::string remarks;
    DevicePtr<ID3DXEffect> compiled = Compile(context_.Graphics(), file, flags, use_pool, remarks);
    effect.registry_index_ = registry_->Add(Describe(context_.Reporter(), std::move(compiled)), key);
    effect.registry_ = registry_;
    effect.Data()->not_valid = !effect.SelectTechnique();
    effect.Data()->technique = effect.Technique();
    std::istringstream lines(remarks);
    for (std::string line; std::getline(lines, line);) context_.Reporter().Warning("%s", line.c_str());
    if (!effect.IsValid()) context_.Reporter().Warning("Shader could not be validated for this GPU: '%s'", file);
    return true;
}

bool ShaderEffectLoader::Load(KRN_ShaderEffect& effect, const ShaderSearchList& candidates, bool required, DWORD flags,
                              bool use_pool) {
    if (candidates.Files().empty()) return false;
    for (const std::string& file : candidates.Files())
        if (FileExists(file.c_str())) return Load(effect, file.c_str(), required, flags, use_pool);
    return Load(effect, candidates.Files().front().c_str(), required, flags, use_pool);
}

void ShaderEffectLoader::OnLostDevice() { registry_->OnLostDevice(); }
void ShaderEffectLoader::OnResetDevice() { registry_->OnResetDevice(); }
void ShaderEffectLoader::SetSharing(bool on) { registry_->settings.sharing = on; }
void ShaderEffectLoader::SetGameTimeSource(GameTimeSource source) { registry_->settings.game_time = source; }

}   // namespace sparkrig
