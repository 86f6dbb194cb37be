#include "gfx/geometry/vertex_list_drawer.h"

#include <limits>

#include "gfx/shaders/shader_effect_passes.h"

namespace sparkrig {

bool VertexListDrawer::HardwareCanProcess(const VertexLayout& layout) const {
    return states_.Graphics().HardwareProcessing() &&
           layout.weights <= static_cast<int>(states_.Graphics().Caps().MaxVertexBlendMatrices);
}

bool VertexListDrawer::Create(KRN_VertexList* list, UINT elements, int usage, bool system_memory) {
    const KRN_Base& reporter = states_.Graphics().Reporter();
    if (!list) reporter.Error("VertexList is NULL pointer");
    list->ReleaseBuffer();
    list->usage_ = static_cast<DWORD>(usage);
    if (usage == -1) list->usage_ = list->point_sprites_.sprites ? D3DUSAGE_POINTS : 0;
    const D3DPOOL device_pool = (list->usage_ & D3DUSAGE_DYNAMIC) ? D3DPOOL_DEFAULT : D3DPOOL_MANAGED;
    list->pool_ = system_memory ? D3DPOOL_SYSTEMMEM : device_pool;
    if (!HardwareCanProcess(list->layout_)) list->usage_ |= D3DUSAGE_SOFTWAREPROCESSING;

    const UINT stride = static_cast<UINT>(list->layout_.stride);
    HRESULT result = D3DERR_INVALIDCALL;   // for what a buffer cannot hold
    if (stride > 0 && elements <= std::numeric_limits<UINT>::max() / stride) {
        result = states_.Graphics().Device()->CreateVertexBuffer(stride * elements, list->usage_, list->layout_.format,
                                                                 list->pool_, list->buffer_.Receive());
    }
    states_.Graphics().Require(result, "CreateVertexBuffer in CreateVertexList failed: ");
    list->elements_ = elements;
    list->primitives_ = PrimitiveCount(reporter, static_cast<int>(list->mode_), elements);
    return true;
}

void VertexListDrawer::Draw(KRN_VertexList& list, UINT first, int count) {
    if (count == 0) return;
    const UINT primitives = count == -1 ? list.PrimitiveCount() : static_cast<UINT>(count);
    if (primitives > list.PrimitiveCount()) {
        states_.Graphics().Reporter().Error("Number of elements in DrawTriangleList too high! (%i)", count);
    }
    if (primitives == 0) return;
    states_.bindings.SetSoftwareProcessing(list.SoftwareProcessing());
    states_.transforms.Set(D3DTS_WORLD, list.WorldMatrix());
    if (list.PointSprites().sprites) states_.points.Apply(list.PointSprites(), false);
    states_.bindings.SetStreamSource(list.Buffer(), static_cast<UINT>(list.Layout().stride),
                                     "SetStreamSource in DrawVertexList failed: ");
    states_.bindings.SetVertexFormat(list.Layout().format);
    DrawWithEffect(effects_.ForDraw(list.Effect()), {.blend_weights = list.Layout().weights}, [&] {
        statistics_.Count(primitives);
        if (statistics_.suppress_draws) return;
        const HRESULT result =
            states_.Graphics().Device()->DrawPrimitive(static_cast<D3DPRIMITIVETYPE>(list.Mode()), first, primitives);
        states_.Graphics().Require(result, "DrawPrimitive in DrawTriangleList failed: ");
    });
}

}   // namespace sparkrig
