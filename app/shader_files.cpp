#include "app/shader_files.h"

#include "base/error.h"

namespace sparkrig {

void LoadScreenEffect(Engine& engine, const TesterState& state) {
    if (state.screen_effect_path.empty()) return;
    const char* const file = state.screen_effect_path.c_str();
    KRN_ShaderEffect trial;   // shared by the second load
    engine.gfx->LoadShaderEffect(trial, file, true, 0, false);
    if (!trial.IsValid()) engine.gfx->Error("No technique of '%s' can be drawn; the log file tells why", file);
    engine.gfx->LoadShaderEffect(engine.screen_effect, file, true, 0, false);
}

void ReloadShaders(Engine& engine, TesterState& state) try {
    engine.effects.ReloadShader();
    LoadScreenEffect(engine, state);
} catch (const ErrorRecord& error) {
    state.Note(error.message);
}

}   // namespace sparkrig
