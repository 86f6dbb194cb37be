// The values of an effect's parameters, alone or shared in a pool.
#pragma once
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/com/ref_counted.h"
#include "platform/d3d9/d3d9.h"
#include "platform/d3dx/d3dx_effect.h"
#include "platform/d3dx/effect_file.h"

namespace sparkrig {

/// What a parameter holds now: numbers as the variable says, or a texture.
struct ParameterValue {
    std::vector<DWORD> words;
    DevicePtr<IDirect3DTexture9> texture;
};

/// A number in the form that a variable keeps it in, and back. To an integer it is rounded.
DWORD WordOf(NumberType number, float value);
DWORD WordOf(NumberType number, INT value);
float FloatOf(NumberType number, DWORD word);
INT IntOf(NumberType number, DWORD word);

/// Element `element` of a matrix variable; missing rows and columns are those of the identity.
D3DXMATRIX MatrixOf(const EffectVariable& variable, const std::vector<DWORD>& words, UINT element);
/// Stores as many rows and columns as the variable has.
void StoreMatrix(const EffectVariable& variable, std::vector<DWORD>& words, UINT element, const D3DXMATRIX& matrix);
/// Stores as many components as the variable has.
void StoreVector(const EffectVariable& variable, std::vector<DWORD>& words, UINT element, const D3DXVECTOR4& vector);

/// Copies a value to its place in a function's block of globals, which has room for it.
void CopyToGlobals(const EffectVariable& variable, const std::vector<DWORD>& words, BYTE* place);

/// Parameters of the same name and type have one value in all effects of the pool; the first effect's initial value
/// counts, and it goes with its last user.
class EffectPool : public RefCounted<ID3DXEffectPool> {
  public:
    std::shared_ptr<ParameterValue> Share(const EffectVariable& variable, std::shared_ptr<ParameterValue> initial);

  private:
    std::map<std::string, std::weak_ptr<ParameterValue>> values_;   // by type and name
};

}   // namespace sparkrig
