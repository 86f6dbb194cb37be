#include "effects/trace_drawing.h"

#include "effects/trace_ribbon.h"
#include "gfx/device/with_restore.h"
#include "gfx/gfx.h"
#include "gfx/textures/texture_catalogue.h"

namespace sparkrig {
namespace {

constexpr int kBlendModeAfterwards = 9, kFullAlpha = 255;
constexpr int kNoCulling = 0;

}   // namespace

void TraceDrawing::Init(KRN_Gfx& gfx, int buffer_mode) {
    gfx_ = &gfx;
    const bool dynamic = buffer_mode == 2;
    gfx.CreateVertexList(&vertices_, kTraceVertices, dynamic ? D3DUSAGE_DYNAMIC : -1, !dynamic && buffer_mode != 1);
}

void TraceDrawing::DrawTraces(TraceEffectSet& traces) {
    if (traces.Count() == 0) return;
    const int culling = gfx_->CullingMode();
    const bool z_write = gfx_->ZWrite();
    gfx_->SetCullingMode(kNoCulling);
    gfx_->PushLightingOff();
    gfx_->SetZWrite(false);
    const auto draw = [&] { traces.ForEach([&](TraceEffectData& trail) { DrawTrail(trail); }); };
    WithRestore(draw, [&] {
        gfx_->SetZWrite(z_write);
        gfx_->SetCullingMode(culling);
    });
    gfx_->PopLightingOff();
    gfx_->SetBlendingMode(kBlendModeAfterwards, kFullAlpha, 0);
}

void TraceDrawing::DrawTrail(TraceEffectData& trail) {
    ShortenToFit(trail);
    const int triangles = RibbonTriangles(trail);
    if (triangles == 0) return;
    if (!trail.texture) trail.texture = gfx_->Catalogue().GetTexture(trail.texture_name.c_str());
    gfx_->SetBlendingMode(trail.settings.blend_mode, 0, 0);
    WriteRibbon(trail, vertices_.Lock(0, static_cast<UINT>(3 * triangles), 0));
    vertices_.Unlock();
    gfx_->SetTexture(trail.texture, -1);
    gfx_->SetAddressModeU(D3DTADDRESS_WRAP, 0);
    gfx_->SetAddressModeV(D3DTADDRESS_WRAP, 0);
    if (!trail.settings.use_z_buffer) gfx_->PushZBufferOff();
    gfx_->DrawTriangleList(vertices_, 0, triangles);
    if (!trail.settings.use_z_buffer) gfx_->PopZBufferOff();
}

}   // namespace sparkrig
