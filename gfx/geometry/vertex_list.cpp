#include "gfx/geometry/vertex_list.h"

namespace sparkrig {

UINT PrimitiveCount(const KRN_Base& reporter, int mode, UINT elements) {
    if (mode < static_cast<int>(PrimitiveMode::PointList) || mode > static_cast<int>(PrimitiveMode::TriangleFan)) {
        reporter.Error("Invalid PointList mode selected! (%i)", mode);
    }
    const auto less = [elements](UINT vertices) { return elements > vertices ? elements - vertices : 0; };
    switch (static_cast<PrimitiveMode>(mode)) {
        case PrimitiveMode::PointList: return elements;
        case PrimitiveMode::LineList: return elements / 2;
        case PrimitiveMode::LineStrip: return less(1);
        case PrimitiveMode::TriangleList: return elements / 3;
        case PrimitiveMode::TriangleStrip:
        case PrimitiveMode::TriangleFan: break;
    }
    return less(2);
}

void KRN_VertexList::SetMode(PrimitiveMode mode) {
    primitives_ = sparkrig::PrimitiveCount(*this, static_cast<int>(mode), elements_);
    mode_ = mode;
}

void* KRN_VertexList::LockElements(UINT first, UINT count, DWORD flags) {
    void* data = nullptr;
    HRESULT result = D3DERR_INVALIDCALL;
    const bool inside = first <= elements_ && count <= elements_ - first;
    const UINT stride = static_cast<UINT>(layout_.stride);
    if (buffer_ && locked_) buffer_->Unlock();   // an error came between, or its Unlock was refused
    if (buffer_ && inside) result = buffer_->Lock(first * stride, count * stride, &data, flags);
    if (FAILED(result)) Error("Lock failed: %s", DXGetErrorString9(result));
    locked_ = true;
    return data;
}

bool KRN_VertexList::Unlock() {
    const HRESULT result = buffer_ ? buffer_->Unlock() : D3DERR_INVALIDCALL;
    if (FAILED(result)) Error("Unlock failed: %s", DXGetErrorString9(result));
    locked_ = false;
    return true;
}

void KRN_VertexList::ReleaseBuffer() {
    buffer_.Reset();
    elements_ = primitives_ = 0;
    locked_ = false;
}

}   // namespace sparkrig
