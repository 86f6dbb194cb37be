// Loads shader effects and keeps their registry: one compiled effect for a file, however many objects share it.
#pragma once
#include <memory>
#include <string>

#include "gfx/shaders/shader_effect.h"
#include "gfx/shaders/shader_effect_search_list.h"

namespace sparkrig {

class ShaderEffectRegistry;
struct ShaderEffectContext;

class ShaderEffectLoader {
  public:
    using GameTimeSource = float (*)();   // seconds

    /// What the effects use; it outlives the loader.
    explicit ShaderEffectLoader(const ShaderEffectContext& context);
    ~ShaderEffectLoader();
    ShaderEffectLoader(const ShaderEffectLoader&) = delete;
    ShaderEffectLoader& operator=(const ShaderEffectLoader&) = delete;

    /// A compiled effect (.fxo) that is missing or older than its source (.fx), or a file that this includes, gives way
    /// to it. False, after a warning, for a missing file that is not required. A required one and a compile failure are
    /// errors. `flags` are D3DXSHADER_ flags.
    bool Load(KRN_ShaderEffect& effect, const char* file, bool required, DWORD flags, bool use_pool);
    /// The first of the candidates that exists. False for an empty list.
    bool Load(KRN_ShaderEffect& effect, const ShaderSearchList& candidates, bool required, DWORD flags, bool use_pool);

    /// Whether Load would find the file.
    bool CanLoad(const char* file) const;

    /// Where a file that the current directory does not have is looked for: the program's own shaders stand there.
    void SetProgramFolder(const char* folder) { program_folder_ = folder; }

    /// Around a device reset.
    void OnLostDevice();
    void OnResetDevice();

    /// Whether a file that is loaded already is shared. Initially on.
    void SetSharing(bool on);
    /// Gives the parameter GAMETIME its value; null for the seconds since the device was created.
    void SetGameTimeSource(GameTimeSource source);

  private:
    /// The name under which the file can be opened; the name itself when it is nowhere.
    std::string Find(const char* file) const;

    const ShaderEffectContext& context_;
    std::string program_folder_;
    std::shared_ptr<ShaderEffectRegistry> registry_;   // and of every loaded effect
};

}   // namespace sparkrig
