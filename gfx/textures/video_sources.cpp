#include "gfx/textures/video_sources.h"

#include <cstring>

#include "gfx/device/surface.h"

namespace sparkrig {

bool IsVideoName(const char* name) { return std::strncmp(name, kVideoPrefix, sizeof kVideoPrefix - 1) == 0; }

void VideoSources::Update(const KRN_Base& reporter, int index) {
    if (!IsSlot(index)) reporter.Error("Invalid video source nurber in UpdateVideoSource(): %i", index);
    VideoSource& source = sources_[index];
    if (!source.update) reporter.Error("No video source update function specified for source %i", index);
    if (!source.texture) reporter.Error("No texture was loaded from video source %i", index);

    DevicePtr<IDirect3DSurface9> level;
    const HRESULT result = source.texture->GetSurfaceLevel(0, level.Receive());
    if (FAILED(result)) reporter.Error("GetSurfaceLevel failed: %s", DXGetErrorString9(result));
    KRN_Surface surface;
    surface.Wrap(level.Get());
    surface.Lock(nullptr, 0);
    source.update(&surface.Locked());
    surface.Unlock();
}

}   // namespace sparkrig
