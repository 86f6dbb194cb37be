#include "gfx/state_sender.h"

#include <algorithm>
#include <cstring>

namespace sparkrig {

void StateCache::Forget() {
    std::fill_n(render_, kRenderStateCount, kUnknown);
    std::fill_n(&stages_[0][0], kTextureStages * kStageStateCount, kUnknown);
    std::fill_n(&samplers_[0][0], kTextureStages * kSamplerStateCount, kUnknown);
    transforms.fill(std::nullopt);
    material.reset();
    viewport.reset();
}

void StateSender::SendRenderState(D3DRENDERSTATETYPE state, DWORD value) {
    const HRESULT result = Device().SetRenderState(state, value);
    if (FAILED(result)) {
        Reporter().Error(" SetRenderState (state %i, value: %i failed: %s", static_cast<int>(state),
                         static_cast<int>(value), DXGetErrorString9(result));
    }
    cache_.Remember(state, value);
}

void StateSender::SendStageState(DWORD stage, D3DTEXTURESTAGESTATETYPE type, DWORD value) {
    const HRESULT result = Device().SetTextureStageState(stage, type, value);
    if (FAILED(result)) {
        Reporter().Error(" SetTextureStageState failed: %s (stage %i, type %i, value %i)", DXGetErrorString9(result),
                         static_cast<int>(stage), static_cast<int>(type), static_cast<int>(value));
    }
    cache_.Remember(stage, type, value);
}

void StateSender::SetSamplerState(DWORD sampler, D3DSAMPLERSTATETYPE type, DWORD value) {
    const HRESULT result = TrySamplerState(sampler, type, value);
    if (FAILED(result)) {
        Reporter().Error(" SetSamplerState failed: %s (stage %i, type %i, value %i)", DXGetErrorString9(result),
                         static_cast<int>(sampler), static_cast<int>(type), static_cast<int>(value));
    }
}

HRESULT StateSender::TrySamplerState(DWORD sampler, D3DSAMPLERSTATETYPE type, DWORD value) {
    if (cache_.Holds(sampler, type, value)) return D3D_OK;
    const HRESULT result = Device().SetSamplerState(sampler, type, value);
    if (SUCCEEDED(result)) cache_.Remember(sampler, type, value);
    return result;
}

namespace {

/// Without a branch for each element; not-a-number equals itself, and 0 not -0.
bool SameBits(const D3DMATRIX& a, const D3DMATRIX& b) {
    return std::memcmp(&a.m[0][0], &b.m[0][0], sizeof a.m) == 0;   // NOLINT(bugprone-suspicious-memory-comparison)
}

}   // namespace

void StateSender::SetTransform(D3DTRANSFORMSTATETYPE kind, const D3DMATRIX& matrix) {
    const bool known = kind < cache_.transforms.size();
    if (known && cache_.transforms[kind] && SameBits(*cache_.transforms[kind], matrix)) return;
    graphics_.Require(Device().SetTransform(kind, &matrix), "SetTransform failed: ");
    if (known) cache_.transforms[kind] = matrix;
}

void StateSender::SetMaterial(const D3DMATERIAL9& material) {
    if (cache_.material == material) return;
    graphics_.Require(Device().SetMaterial(&material), "SetMaterial failed: ");
    cache_.material = material;
}

HRESULT StateSender::TryViewport(const D3DVIEWPORT9& viewport) {
    if (cache_.viewport == viewport) return D3D_OK;
    const HRESULT result = Device().SetViewport(&viewport);
    if (SUCCEEDED(result)) cache_.viewport = viewport;
    return result;
}

}   // namespace sparkrig
