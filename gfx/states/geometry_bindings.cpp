#include "gfx/states/geometry_bindings.h"

namespace sparkrig {

void GeometryBindings::SetVertexFormat(DWORD fvf) {
    graphics_.Require(graphics_.Device()->SetFVF(fvf), "Failed to set flexible vertex format: ");
    fvf_ = fvf;
}

void GeometryBindings::SetStreamSource(IDirect3DVertexBuffer9* buffer, UINT stride, const char* failure) {
    graphics_.Require(graphics_.Device()->SetStreamSource(0, buffer, 0, stride), failure);
    stride_ = stride;
}

void GeometryBindings::SetIndices(IDirect3DIndexBuffer9* buffer) {
    graphics_.Require(graphics_.Device()->SetIndices(buffer), "SetIndices failed: ");
}

void GeometryBindings::SetSoftwareProcessing(bool on) {
    if (!(graphics_.Behaviour() & D3DCREATE_MIXED_VERTEXPROCESSING) || software_ == static_cast<int>(on)) return;
    graphics_.Require(graphics_.Device()->SetSoftwareVertexProcessing(on), "SetSoftwareVertexProcessing failed: ");
    software_ = on;
}

void GeometryBindings::Forget() {
    fvf_ = 0;
    stride_ = 0;
    software_ = -1;
}

}   // namespace sparkrig
