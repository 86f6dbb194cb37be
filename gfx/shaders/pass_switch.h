// Switches the render target around the passes of effects.
#pragma once
#include <vector>

#include "gfx/shaders/screen_buffers.h"
#include "gfx/shaders/shader_effect_choice.h"

namespace sparkrig {

/// A pass into a screen buffer has it as the render target, whole, from Begin to End, and its effect is forced on all
/// that is drawn meanwhile. Passes of different effects nest: each End puts back what its Begin found.
class PassSwitch {
  public:
    PassSwitch(const GraphicsDevice& graphics, RenderTargets& targets, Transforms& transforms, ScreenBuffers& buffers,
               ShaderEffectChoice& effects)
        : graphics_(graphics), targets_(targets), transforms_(transforms), buffers_(buffers), effects_(effects) {}

    void Begin(const PassTarget& pass, KRN_ShaderEffect& effect);
    void End();

    /// How many passes are begun, and their end, without reports, down to such a number: an error was reported already.
    std::size_t Depth() const { return open_.size(); }
    void UnwindTo(std::size_t depth);
    /// Before a reset: nothing is held, and nothing is put back.
    void Forget();

    /// The screen buffer that is drawn into; null for none. Borrowed.
    IDirect3DSurface9* Buffer() const;

  private:
    struct OpenPass {
        // What Begin found; without `target` when the pass draws where the one around it does.
        DevicePtr<IDirect3DSurface9> target;
        bool has_depth = false;
        D3DVIEWPORT9 viewport = {};
        KRN_ShaderEffect* forced = nullptr;
        DevicePtr<IDirect3DSurface9> buffer;   // that is drawn into
    };

    OpenPass Remember() const;
    void Open(OpenPass pass, KRN_ShaderEffect* forced, IDirect3DSurface9& target);
    HRESULT PutBack(const OpenPass& pass);
    DevicePtr<IDirect3DSurface9> SurfaceOf(const PassTarget& pass) const;

    const GraphicsDevice& graphics_;
    RenderTargets& targets_;
    Transforms& transforms_;
    ScreenBuffers& buffers_;
    ShaderEffectChoice& effects_;
    std::vector<OpenPass> open_;   // the innermost last
};

}   // namespace sparkrig
