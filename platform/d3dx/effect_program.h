// What an effect does to a device, pass by pass.
#pragma once
#include <memory>
#include <vector>

#include "platform/d3dx/effect_expression.h"
#include "platform/d3dx/effect_saved_states.h"
#include "platform/d3dx/effect_values.h"

namespace sparkrig {

/// Carries out an effect's passes on a device: states, functions and the values of the parameters.
class EffectProgram {
  public:
    /// `device` is borrowed; `effect` was checked.
    EffectProgram(IDirect3DDevice9& device, EffectFile effect, EffectPool* pool);

    const EffectFile& File() const { return file_; }
    ParameterValue& Value(std::size_t parameter) { return *values_[parameter]; }

    /// What keeps the device from running every pass of a technique; empty when it can.
    std::string WhyNot(std::size_t technique) const;
    /// Everything that the passes of a technique may change, each once.
    const std::vector<StateKey>& ChangedStates(std::size_t technique) const { return changed_[technique]; }
    HRESULT ApplyPass(const EffectPass& pass);
    /// The function that a VertexShader or PixelShader state selects; null for none.
    const EffectFunction* FunctionOf(const StateAssignment& state) const;

    /// Lets go of textures in the default pool.
    void ReleaseDefaultPool();

  private:
    struct Function {
        DevicePtr<IDirect3DVertexShader9> vertex;
        DevicePtr<IDirect3DPixelShader9> pixel;
        std::vector<BYTE> globals;   // as sent last
        bool usable = false;
    };
    struct WholeStates;   // lights and material that a pass puts together from members

    const EffectFunction* FunctionOf(DWORD parameter) const;
    DWORD ChosenElement(const StateAssignment& state) const;
    /// All that FunctionOf may answer, whatever the parameters hold.
    std::vector<const EffectFunction*> PossibleFunctions(const StateAssignment& state) const;

    void CreateFunction(const EffectFunction& source, const D3DCAPS9& caps, Function& function);
    void CollectKeys(const StateAssignment& state, std::vector<StateKey>& keys) const;
    void CollectSamplerKeys(DWORD parameter, DWORD sampler, std::vector<StateKey>& keys) const;

    ExpressionValue ValueOf(const StateAssignment& state) const;
    std::array<DWORD, 4> Evaluate(const StateAssignment& state) const;
    /// `index` stands for the state's own: a sampler's states apply to the sampler that it is used as.
    HRESULT Apply(const StateAssignment& state, DWORD index, WholeStates& whole);
    HRESULT ApplySampler(DWORD parameter, DWORD sampler);
    HRESULT ApplyFunction(const StateAssignment& state);
    void FillGlobals(const EffectFunction& source, std::vector<BYTE>& globals) const;

    IDirect3DDevice9& device_;
    EffectFile file_;
    std::vector<std::shared_ptr<ParameterValue>> values_;   // beside file_.parameters
    std::vector<Function> functions_;                       // beside file_.functions
    std::vector<std::vector<StateKey>> changed_;            // beside file_.techniques
};

}   // namespace sparkrig
