#include "app/shader_files.h"

#include "base/error.h"

namespace sparkrig {

namespace {

void Load(KRN_Gfx& gfx, const std::string& path, KRN_ShaderEffect& effect) {
    if (path.empty()) return;
    const char* const file = path.c_str();
    KRN_ShaderEffect trial;   // shared by the second load
    gfx.LoadShaderEffect(trial, file, true, 0, false);
    if (!trial.IsValid()) gfx.Error("No technique of '%s' can be drawn; the log file tells why", file);
    gfx.LoadShaderEffect(effect, file, true, 0, false);
}

}   // namespace

void LoadShaderFiles(Engine& engine, const TesterState& state) {
    Load(*engine.gfx, state.screen_effect_path, engine.screen_effect);
    Load(*engine.gfx, state.mesh_effect_path, engine.mesh_effect);
    engine.gfx->SetMeshEffect(&engine.mesh_effect);
}

void ReloadShaders(Engine& engine, TesterState& state) try {
    engine.effects.ReloadShader();
    LoadShaderFiles(engine, state);
} catch (const ErrorRecord& error) {
    state.Note(error.message);
}

}   // namespace sparkrig
