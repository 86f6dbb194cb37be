// What the next draw call reads its vertices from.
#pragma once
#include "gfx/states/state_sender.h"

namespace sparkrig {

/// Vertex format, buffers and the way vertices are processed. The first three are remembered but always sent.
class GeometryBindings {
  public:
    explicit GeometryBindings(const GraphicsDevice& graphics) : graphics_(graphics) {}

    void SetVertexFormat(DWORD fvf);
    /// `failure`: the message but for the code's name.
    void SetStreamSource(IDirect3DVertexBuffer9* buffer, UINT stride, const char* failure = "SetStreamSource failed: ");
    void SetIndices(IDirect3DIndexBuffer9* buffer);
    /// Acts on a device with mixed processing only; on others there is nothing to choose.
    void SetSoftwareProcessing(bool on);

    DWORD VertexFormat() const { return fvf_; }
    UINT Stride() const { return stride_; }
    /// After a reset.
    void Forget();

  private:
    const GraphicsDevice& graphics_;
    DWORD fvf_ = 0;
    UINT stride_ = 0;
    int software_ = -1;   // as the device holds it; -1 unknown
};

}   // namespace sparkrig
