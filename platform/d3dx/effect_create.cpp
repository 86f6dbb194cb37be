#include <cstring>

#include "platform/d3dx/d3dx_effect.h"
#include "platform/d3dx/effect_bytes.h"
#include "platform/d3dx/effect_compiler.h"
#include "platform/d3dx/effect_object.h"
#include "platform/system/system.h"

namespace sparkrig {

namespace {

class TextBuffer final : public RefCounted<ID3DXBuffer> {
  public:
    explicit TextBuffer(std::string text) : text_(std::move(text)) {}
    void* GetBufferPointer() override { return text_.data(); }
    DWORD GetBufferSize() override { return static_cast<DWORD>(text_.size()) + 1; }

  private:
    std::string text_;
};

bool LoadEffectFile(const std::string& path, EffectFile& effect, std::string& errors) {
    std::vector<BYTE> bytes;
    if (!ReadEffectBytes(path, bytes)) {
        errors = path + "(1): error X1000: can not open the file\n";
        return false;
    }
    if (!IsCompiledEffect(bytes) && !CompileEffect(path, bytes, errors)) return false;
    std::string fault;
    if (ReadEffectFile(bytes, effect, fault)) return true;
    errors = path + "(1): error X1000: " + fault + "\n";
    return false;
}

bool HasValidTechnique(ID3DXEffect& effect) {
    for (UINT i = 0; const D3DXHANDLE technique = effect.GetTechnique(i); ++i)
        if (SUCCEEDED(effect.ValidateTechnique(technique))) return true;
    return false;
}

/// What the compiler said, now or long ago. Functions that the layer can not run matter where nothing stands in for
/// them.
std::string Warnings(const EffectFile& file, bool valid) {
    std::string text = file.warnings;
    for (const EffectFunction& function : file.functions)
        if (!valid && !function.unsupported.empty()) text += function.unsupported + "\n";
    return text;
}

}   // namespace

HRESULT D3DXCreateEffectFromFileA(IDirect3DDevice9* device, const char* file, DWORD, ID3DXEffectPool* pool,
                                  ID3DXEffect** effect, ID3DXBuffer** errors) {
    if (errors) *errors = nullptr;
    if (effect) *effect = nullptr;
    if (!device || !file || !effect) return D3DERR_INVALIDCALL;
    EffectFile loaded;
    std::string text;
    const bool good = LoadEffectFile(ResolvePath(file), loaded, text);
    if (good) {
        auto* created = new Effect(device, std::move(loaded), static_cast<EffectPool*>(pool));
        text = Warnings(created->File(), HasValidTechnique(*created));
        *effect = created;
    }
    if (errors && !text.empty()) *errors = new TextBuffer(std::move(text));
    return good ? D3D_OK : D3DXERR_INVALIDDATA;
}

HRESULT D3DXCreateEffectPool(ID3DXEffectPool** pool) {
    if (!pool) return D3DERR_INVALIDCALL;
    *pool = new EffectPool;
    return D3D_OK;
}

}   // namespace sparkrig
