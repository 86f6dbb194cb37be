#include "gfx/states/state_sender.h"

#include <algorithm>
#include <cstring>

namespace sparkrig {

void StateCache::Forget() {
    std::fill_n(render_, kRenderStateCount, kUnknown);
    std::fill_n(&stages_[0][0], kTextureStages * kStageStateCount, kUnknown);
    std::fill_n(&samplers_[0][0], kTextureStages * kSamplerStateCount, kUnknown);
    transforms.fill(std::nullopt);
    material.reset();
    textures.fill(std::nullopt);
    lights.fill(std::nullopt);
    lights_on.fill(std::nullopt);
}

void StateSender::SendRenderState(D3DRENDERSTATETYPE state, DWORD value) {
    const HRESULT result = Device().SetRenderState(state, value);
    if (FAILED(result)) {
        Reporter().Error(" SetRenderState (state %i, value: %i failed: %s", static_cast<int>(state),
                         static_cast<int>(value), DXGetErrorString9(result));
    }
    cache_.Remember(state, value);
    Note({Sent::Kind::Render, 0, state});
}

void StateSender::SendStageState(DWORD stage, D3DTEXTURESTAGESTATETYPE type, DWORD value) {
    const HRESULT result = Device().SetTextureStageState(stage, type, value);
    if (FAILED(result)) {
        Reporter().Error(" SetTextureStageState failed: %s (stage %i, type %i, value %i)", DXGetErrorString9(result),
                         static_cast<int>(stage), static_cast<int>(type), static_cast<int>(value));
    }
    cache_.Remember(stage, type, value);
    Note({Sent::Kind::Stage, stage, type});
}

void StateSender::SetOtherSamplerState(DWORD sampler, D3DSAMPLERSTATETYPE type, DWORD value) {
    const HRESULT result = TrySamplerState(sampler, type, value);
    if (FAILED(result)) {
        Reporter().Error(" SetSamplerState failed: %s (stage %i, type %i, value %i)", DXGetErrorString9(result),
                         static_cast<int>(sampler), static_cast<int>(type), static_cast<int>(value));
    }
}

HRESULT StateSender::TrySamplerState(DWORD sampler, D3DSAMPLERSTATETYPE type, DWORD value) {
    if (Knows() && cache_.Holds(sampler, type, value)) return D3D_OK;
    const HRESULT result = Device().SetSamplerState(sampler, type, value);
    if (FAILED(result)) return result;
    cache_.Remember(sampler, type, value);
    Note({Sent::Kind::Sampler, sampler, type});
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
    if (Knows() && known && cache_.transforms[kind] && SameBits(*cache_.transforms[kind], matrix)) return;
    graphics_.Require(Device().SetTransform(kind, &matrix), "SetTransform failed: ");
    if (!known) return;
    cache_.transforms[kind] = matrix;
    Note({Sent::Kind::Transform, 0, kind});
}

void StateSender::SetMaterial(const D3DMATERIAL9& material) {
    if (Knows() && cache_.material == material) return;
    graphics_.Require(Device().SetMaterial(&material), "SetMaterial failed: ");
    cache_.material = material;
    Note({Sent::Kind::Material});
}

void StateSender::SendTexture(DWORD stage, IDirect3DTexture9* texture) {
    graphics_.Require(Device().SetTexture(stage, texture), "SetTexture failed: ");
    cache_.textures[stage] = DevicePtr<IDirect3DTexture9>::Share(texture);
    Note({Sent::Kind::Texture, stage});
}

void StateSender::SendLight(DWORD index, const D3DLIGHT9& light) {
    graphics_.Require(Device().SetLight(index, &light), "SetLight failed: ");
    cache_.lights[index] = light;
    Note({Sent::Kind::Light, index});
}

void StateSender::SetLightEnable(DWORD index, bool on) {
    if (Knows() && cache_.lights_on[index] == on) return;
    graphics_.Require(Device().LightEnable(index, on), " LightEnable failed: ");
    cache_.lights_on[index] = on;
    Note({Sent::Kind::LightEnable, index});
}

// ---- Around effects

void StateSender::Forget() {
    cache_.Forget();
    sent_.clear();
    marks_.clear();
}

void StateSender::Note(const Sent& sent) {
    if (Knows()) return;
    const auto since = sent_.begin() + static_cast<std::ptrdiff_t>(marks_.back());
    if (std::find(since, sent_.end(), sent) == sent_.end()) sent_.push_back(sent);
}

HRESULT StateSender::SendAgain(const Sent& sent) {
    IDirect3DDevice9& device = Device();
    const auto render = static_cast<D3DRENDERSTATETYPE>(sent.state);
    const auto stage = static_cast<D3DTEXTURESTAGESTATETYPE>(sent.state);
    const auto sampler = static_cast<D3DSAMPLERSTATETYPE>(sent.state);
    const auto kind = static_cast<D3DTRANSFORMSTATETYPE>(sent.state);
    switch (sent.kind) {
        case Sent::Kind::Render: return device.SetRenderState(render, cache_.ValueOf(render));
        case Sent::Kind::Stage:
            return device.SetTextureStageState(sent.index, stage, cache_.ValueOf(sent.index, stage));
        case Sent::Kind::Sampler:
            return device.SetSamplerState(sent.index, sampler, cache_.ValueOf(sent.index, sampler));
        case Sent::Kind::Transform: return device.SetTransform(kind, &*cache_.transforms[sent.state]);
        case Sent::Kind::Material: return device.SetMaterial(&*cache_.material);
        case Sent::Kind::Texture: return device.SetTexture(sent.index, cache_.textures[sent.index]->Get());
        case Sent::Kind::Light: return device.SetLight(sent.index, &*cache_.lights[sent.index]);
        case Sent::Kind::LightEnable: return device.LightEnable(sent.index, *cache_.lights_on[sent.index]);
    }
    return D3DERR_INVALIDCALL;
}

HRESULT StateSender::EffectEnded(HRESULT ended) {
    if (marks_.empty()) return ended;
    const auto since = static_cast<std::ptrdiff_t>(marks_.back());
    marks_.pop_back();
    HRESULT result = ended;
    for (auto sent = sent_.begin() + since; SUCCEEDED(result) && sent != sent_.end(); ++sent) result = SendAgain(*sent);
    if (FAILED(result)) {
        cache_.Forget();
        sent_.clear();
        std::ranges::fill(marks_, std::size_t{0});
    } else if (Knows()) {
        sent_.clear();
    } else {   // what the effect around this one has noted already stands once
        const auto around = sent_.begin() + static_cast<std::ptrdiff_t>(marks_.back()), own = sent_.begin() + since;
        const auto noted = [&](const Sent& sent) { return std::find(around, own, sent) != own; };
        sent_.erase(std::remove_if(own, sent_.end(), noted), sent_.end());
    }
    return result;
}

}   // namespace sparkrig
