// How textures are read: filters, address modes and mip maps.
#pragma once
#include <optional>

#include "gfx/states/state_sender.h"

namespace sparkrig {

class SamplerSettings {
  public:
    explicit SamplerSettings(StateSender& sender);

    /// 1 to 9: one filter or both address modes (see the table in the source); -1 nothing. 0 for another preset.
    int SetPreset(int preset, int stage);
    /// D3DTADDRESS_ values. 0, after a warning, when the device refuses.
    int SetAddressU(DWORD mode, int stage);
    int SetAddressV(DWORD mode, int stage);
    DWORD AddressU(int stage) const { return address_u_[stage]; }
    DWORD AddressV(int stage) const { return address_v_[stage]; }

    /// mode 0 none, 1 nearest level, 2 between levels; bias in levels. 0 when the device has no mip maps.
    int SetMipmaps(int mode, float bias, int stage);
    /// As last set, whatever the stage.
    int MipmapMode() const { return last_mipmaps_.mode; }
    float MipmapBias() const { return last_mipmaps_.bias; }

    /// D3DTEXF_ values.
    void SetMagFilter(DWORD filter, int stage);
    void SetMinFilter(DWORD filter, int stage);
    DWORD MagFilter(int stage) const { return mag_filter_[stage]; }
    DWORD MinFilter(int stage) const { return min_filter_[stage]; }

    /// Linear filters, textures that repeat, and mip maps between levels, for the first stages.
    void SetDefaults();
    /// After a reset: every stage that was ever set, as it was.
    void Reapply();

  private:
    /// The stage as an index; an error outside 0 to 7.
    DWORD Stage(int stage) const;
    int SetAddress(D3DSAMPLERSTATETYPE axis, DWORD (&kept)[kTextureStages], const char* warning, DWORD mode, int stage);

    StateSender& sender_;
    DWORD mag_filter_[kTextureStages] = {}, min_filter_[kTextureStages] = {};   // 0: never set
    DWORD address_u_[kTextureStages], address_v_[kTextureStages];
    struct Mipmaps {
        int mode = 2;
        float bias = 0;
    };
    std::optional<Mipmaps> mipmaps_[kTextureStages];   // nothing: never set
    Mipmaps last_mipmaps_;
};

}   // namespace sparkrig
