#include "gfx/geometry/screen_drawer.h"

#include <algorithm>

#include "gfx/device/with_restore.h"
#include "gfx/geometry/vertex_list.h"
#include "gfx/shaders/shader_effect_passes.h"
#include "gfx/textures/texture.h"

namespace sparkrig {

namespace {

constexpr UINT kCorners = 4;
constexpr D3DCOLOR kNoFog = 0xFF000000;   // the alpha of the specular colour is the fog factor
constexpr float kPixelShift = 0.25f;      // keeps edges off the pixel centres

/// Of the whole picture, or of a part in its pixels.
Quad2D TextureCoordinates(const KRN_Texture& texture, const Quad2D* source) {
    const KRN_Texture::Rectangle& whole = texture.TextureRectangle();
    if (!source) return {whole.u, whole.v, whole.u + whole.size_u, whole.v + whole.size_v};
    const float per_x = whole.size_u / texture.Width(), per_y = whole.size_v / texture.Height();
    return {whole.u + source->left * per_x, whole.v + source->top * per_y, whole.u + source->right * per_x,
            whole.v + source->bottom * per_y};
}

}   // namespace

KRN_Texture& ScreenDrawer::Texture() const {
    if (!texture_) states_.sender.Reporter().Error("No texture set");
    return *texture_;
}

void ScreenDrawer::Draw(const Quad2D& rectangle, const Quad2D* source, D3DCOLOR colour, const float (&z)[4]) {
    KRN_Texture& texture = Texture();
    DevicePtr<IDirect3DVertexBuffer9>& quad = texture.ScreenQuad();
    if (!quad) {
        const HRESULT result =
            states_.sender.Device().CreateVertexBuffer(kCorners * sizeof(KRN_TLVertex), D3DUSAGE_WRITEONLY,
                                                       KRN_TLVertex::kFormat, D3DPOOL_MANAGED, quad.Receive());
        states_.sender.Graphics().Require(result, "CreateVertexBuffer in CreateVertexList failed: ");
    }
    const Quad2D part = TextureCoordinates(texture, source);
    const auto corner = [&](float x, float y, float depth, float u, float v) {
        return KRN_TLVertex{x - kPixelShift, y - kPixelShift, depth, 1.0f, colour, kNoFog, u, v};
    };
    const KRN_TLVertex corners[kCorners] = {
        corner(rectangle.left, rectangle.bottom, z[0], part.left, part.bottom),
        corner(rectangle.left, rectangle.top, z[1], part.left, part.top),
        corner(rectangle.right, rectangle.bottom, z[2], part.right, part.bottom),
        corner(rectangle.right, rectangle.top, z[3], part.right, part.top),
    };
    void* data = nullptr;
    states_.sender.Graphics().Require(quad->Lock(0, 0, &data, 0), " VB Lock failed: ");
    std::ranges::copy(corners, static_cast<KRN_TLVertex*>(data));
    const HRESULT unlocked = quad->Unlock();
    if (FAILED(unlocked)) quad.Reset();   // it could not be drawn any more
    states_.sender.Graphics().Require(unlocked, " VB Unlock failed: ");
    DrawLast();
}

void ScreenDrawer::DrawLast() {
    KRN_Texture& texture = Texture();
    const int culling = states_.culling.Mode();
    const DWORD address_u = states_.samplers.AddressU(0), address_v = states_.samplers.AddressV(0);
    const DWORD address = texture.Repeats() ? D3DTADDRESS_WRAP : D3DTADDRESS_CLAMP;

    states_.bindings.SetSoftwareProcessing(false);
    states_.bindings.SetStreamSource(texture.ScreenQuad().Get(), sizeof(KRN_TLVertex),
                                     " SetStreamSource in DrawLastTexture failed: ");
    const auto draw = [&] {
        states_.culling.Set(0);
        if (!depth_test_) states_.depth.PushOff();
        states_.samplers.SetAddressU(address, 0);
        states_.samplers.SetAddressV(address, 0);
        states_.bindings.SetVertexFormat(KRN_TLVertex::kFormat);
        DrawWithEffect(effects_.For2D(), {}, [this] { DrawStrip(); });
    };
    WithRestore(draw, [&] {
        states_.samplers.SetAddressU(address_u, 0);
        states_.samplers.SetAddressV(address_v, 0);
        if (!depth_test_) states_.depth.PopOff();
        states_.culling.Set(culling);
    });
}

void ScreenDrawer::DrawStrip() {
    statistics_.Count(2);
    if (statistics_.suppress_draws) return;
    states_.sender.Graphics().Require(states_.sender.Device().DrawPrimitive(D3DPT_TRIANGLESTRIP, 0, 2),
                                      " DrawPrimitive in DrawLastTexture failed: ");
}

}   // namespace sparkrig
