#include "gfx/screen_drawer.h"

#include <algorithm>

#include "gfx/effect_passes.h"
#include "gfx/texture.h"
#include "gfx/vertex_list.h"

namespace sparkrig {

namespace {

constexpr UINT kCorners = 4;
constexpr D3DCOLOR kNoFog = 0xFF000000;   // the alpha of the specular colour is the fog factor
constexpr float kPixelShift = 0.25f;      // keeps edges off the pixel centres

}   // namespace

KRN_Texture& ScreenDrawer::Texture() const {
    if (!texture_) sender_.Reporter().Error("No texture set");
    return *texture_;
}

void ScreenDrawer::Draw(const KRN_Gfx::Quad2D& rectangle, D3DCOLOR colour, const float (&z)[4]) {
    KRN_Texture& texture = Texture();
    DevicePtr<IDirect3DVertexBuffer9>& quad = texture.ScreenQuad();
    if (!quad) {
        const HRESULT result =
            sender_.Device().CreateVertexBuffer(kCorners * sizeof(KRN_TLVertex), D3DUSAGE_WRITEONLY,
                                                KRN_TLVertex::kFormat, D3DPOOL_MANAGED, quad.Receive());
        sender_.Graphics().Require(result, "CreateVertexBuffer in CreateVertexList failed: ");
    }
    const KRN_Texture::Rectangle& part = texture.TextureRectangle();
    const float right = part.u + part.size_u, bottom = part.v + part.size_v;
    const auto corner = [&](float x, float y, float depth, float u, float v) {
        return KRN_TLVertex{x - kPixelShift, y - kPixelShift, depth, 1.0f, colour, kNoFog, u, v};
    };
    const KRN_TLVertex corners[kCorners] = {
        corner(rectangle.left, rectangle.bottom, z[0], part.u, bottom),
        corner(rectangle.left, rectangle.top, z[1], part.u, part.v),
        corner(rectangle.right, rectangle.bottom, z[2], right, bottom),
        corner(rectangle.right, rectangle.top, z[3], right, part.v),
    };
    void* data = nullptr;
    sender_.Graphics().Require(quad->Lock(0, 0, &data, 0), " VB Lock failed: ");
    std::ranges::copy(corners, static_cast<KRN_TLVertex*>(data));
    sender_.Graphics().Require(quad->Unlock(), " VB Unlock failed: ");
    DrawLast();
}

void ScreenDrawer::DrawLast() {
    KRN_Texture& texture = Texture();
    const int culling = culling_.Mode();
    const DWORD address_u = samplers_.AddressU(0), address_v = samplers_.AddressV(0);
    const DWORD address = texture.Repeats() ? D3DTADDRESS_WRAP : D3DTADDRESS_CLAMP;

    bindings_.SetSoftwareProcessing(false);
    bindings_.SetStreamSource(texture.ScreenQuad().Get(), sizeof(KRN_TLVertex),
                              " SetStreamSource in DrawLastTexture failed: ");
    culling_.Set(0);
    if (!depth_test_) depth_.PushOff();
    samplers_.SetAddressU(address, 0);
    samplers_.SetAddressV(address, 0);
    bindings_.SetVertexFormat(KRN_TLVertex::kFormat);
    DrawWithEffect(effects_.For2D(), [this] { DrawStrip(); });

    samplers_.SetAddressU(address_u, 0);
    samplers_.SetAddressV(address_v, 0);
    if (!depth_test_) depth_.PopOff();
    culling_.Set(culling);
}

void ScreenDrawer::DrawStrip() {
    statistics_.Count(2);
    if (statistics_.suppress_draws) return;
    sender_.Graphics().Require(sender_.Device().DrawPrimitive(D3DPT_TRIANGLESTRIP, 0, 2),
                               " DrawPrimitive in DrawLastTexture failed: ");
}

}   // namespace sparkrig
