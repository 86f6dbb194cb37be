#include "gfx/states/sampler_settings.h"

#include <algorithm>
#include <iterator>

namespace sparkrig {

namespace {

enum class Target { MagFilter, MinFilter, Address };

// clang-format off
constexpr struct { Target target; DWORD value; } kPresets[] = {   // by preset, from 1
    {Target::MagFilter, D3DTEXF_LINEAR     },
    {Target::MagFilter, D3DTEXF_POINT      },
    {Target::MinFilter, D3DTEXF_LINEAR     },
    {Target::MinFilter, D3DTEXF_POINT      },
    {Target::MinFilter, D3DTEXF_ANISOTROPIC},
    {Target::MagFilter, D3DTEXF_ANISOTROPIC},
    {Target::Address,   D3DTADDRESS_WRAP   },
    {Target::Address,   D3DTADDRESS_CLAMP  },
    {Target::Address,   D3DTADDRESS_MIRROR },
};
// clang-format on

}   // namespace

SamplerSettings::SamplerSettings(StateSender& sender) : sender_(sender) {
    std::fill_n(address_u_, kTextureStages, D3DTADDRESS_WRAP);
    std::fill_n(address_v_, kTextureStages, D3DTADDRESS_WRAP);
}

DWORD SamplerSettings::Stage(int stage) const {
    if (stage < 0 || stage >= static_cast<int>(kTextureStages)) sender_.Reporter().Error("Invalid stage: %i", stage);
    return static_cast<DWORD>(stage);
}

int SamplerSettings::SetPreset(int preset, int stage) {
    if (preset == -1) return 1;
    if (preset < 1 || preset > static_cast<int>(std::size(kPresets))) return 0;
    const auto& row = kPresets[preset - 1];
    switch (row.target) {
        case Target::MagFilter: SetMagFilter(row.value, stage); return 1;
        case Target::MinFilter: SetMinFilter(row.value, stage); return 1;
        case Target::Address: return SetAddressU(row.value, stage) & SetAddressV(row.value, stage);
    }
    return 0;
}

void SamplerSettings::SetMagFilter(DWORD filter, int stage) {
    sender_.SetSamplerState(Stage(stage), D3DSAMP_MAGFILTER, filter);
    mag_filter_[stage] = filter;
}

void SamplerSettings::SetMinFilter(DWORD filter, int stage) {
    sender_.SetSamplerState(Stage(stage), D3DSAMP_MINFILTER, filter);
    min_filter_[stage] = filter;
}

int SamplerSettings::SetAddress(D3DSAMPLERSTATETYPE axis, DWORD (&kept)[kTextureStages], const char* warning,
                                DWORD mode, int stage) {
    const DWORD sampler = Stage(stage);
    if (FAILED(sender_.TrySamplerState(sampler, axis, mode))) {
        sender_.Reporter().Warning("%s %i", warning, static_cast<int>(mode));
        return 0;
    }
    kept[sampler] = mode;
    return 1;
}

int SamplerSettings::SetAddressU(DWORD mode, int stage) {
    return SetAddress(D3DSAMP_ADDRESSU, address_u_, "Failed to set texture U-adress mode", mode, stage);
}

int SamplerSettings::SetAddressV(DWORD mode, int stage) {
    return SetAddress(D3DSAMP_ADDRESSV, address_v_, "Failed to set texture V-adress mode", mode, stage);
}

int SamplerSettings::SetMipmaps(int mode, float bias, int stage) {
    const DWORD sampler = Stage(stage);
    last_mipmaps_ = {mode, bias};
    const D3DCAPS9& caps = sender_.Graphics().Caps();
    if (!(caps.TextureCaps & D3DPTEXTURECAPS_MIPMAP)) return 0;
    if (mode < 0 || mode > 2) sender_.Reporter().Error("Wrong mipmap mode!");
    sender_.SetSamplerState(sampler, D3DSAMP_MIPFILTER, static_cast<DWORD>(mode));
    if (caps.RasterCaps & D3DPRASTERCAPS_MIPMAPLODBIAS) {
        sender_.SetSamplerState(sampler, D3DSAMP_MIPMAPLODBIAS, std::bit_cast<DWORD>(bias));
    }
    mipmaps_[sampler] = last_mipmaps_;
    return 1;
}

void SamplerSettings::SetDefaults() {
    constexpr int kStages = 3, kLinearMipmaps = 2;
    for (int stage = 0; stage < kStages; ++stage) {
        SetMipmaps(kLinearMipmaps, 0.0f, stage);
        SetAddressU(D3DTADDRESS_WRAP, stage);
        SetAddressV(D3DTADDRESS_WRAP, stage);
        SetMagFilter(D3DTEXF_LINEAR, stage);
        SetMinFilter(D3DTEXF_LINEAR, stage);
    }
}

void SamplerSettings::Reapply() {
    const Mipmaps last = last_mipmaps_;
    for (int stage = 0; stage < static_cast<int>(kTextureStages); ++stage) {
        if (const auto mipmaps = mipmaps_[stage]) SetMipmaps(mipmaps->mode, mipmaps->bias, stage);
        SetAddressU(address_u_[stage], stage);
        SetAddressV(address_v_[stage], stage);
        if (mag_filter_[stage] != 0) SetMagFilter(mag_filter_[stage], stage);
        if (min_filter_[stage] != 0) SetMinFilter(min_filter_[stage], stage);
    }
    last_mipmaps_ = last;
}

}   // namespace sparkrig
