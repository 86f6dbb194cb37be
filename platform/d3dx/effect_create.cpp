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

/// The functions that the layer can not run, whether the effect was compiled now or long ago.
std::string Warnings(const EffectFile& effect) {
    std::string text;
    for (const EffectFunction& function : effect.functions)
        if (!function.unsupported.empty()) text += function.unsupported + "\n";
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
    if (good) text = Warnings(loaded);
    if (errors && !text.empty()) *errors = new TextBuffer(std::move(text));
    if (!good) return D3DXERR_INVALIDDATA;
    *effect = new Effect(device, std::move(loaded), static_cast<EffectPool*>(pool));
    return D3D_OK;
}

HRESULT D3DXCreateEffectPool(ID3DXEffectPool** pool) {
    if (!pool) return D3DERR_INVALIDCALL;
    *pool = new EffectPool;
    return D3D_OK;
}

}   // namespace sparkrig
