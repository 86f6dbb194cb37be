#pragma once

namespace sparkrig {

/// What a device made of scene data: buffers, a texture. The data owns it and does not look inside; `gfx/` makes it
/// when it is first needed.
class DeviceResource {
  public:
    DeviceResource() = default;
    DeviceResource(const DeviceResource&) = delete;
    DeviceResource& operator=(const DeviceResource&) = delete;
    virtual ~DeviceResource() = default;
};

}   // namespace sparkrig
