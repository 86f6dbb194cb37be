#include "effects/special_effect_renderer.h"

#include <algorithm>
#include <cmath>

#include "base/numeric.h"
#include "effects/effect_textures.h"
#include "effects/motion.h"
#include "effects/packed_colour.h"
#include "gfx/device/with_restore.h"
#include "gfx/gfx.h"

namespace sparkrig {
namespace {

constexpr int kNoMipmaps = 0;
constexpr int kSpotSize = 32;   // pixels
constexpr PointSpriteSettings kPointSprites = {.scale_a = 0.001f,
                                               .scale_b = 0,
                                               .scale_c = 10,
                                               .max_size = 256,
                                               .min_size = 4,
                                               .size = 32,
                                               .sprites = true,
                                               .scaling = true};
constexpr float kSeeds = 100;   // of the first random number

D3DXVECTOR3 Row(const D3DXMATRIX& matrix, int row) { return {matrix.m[row][0], matrix.m[row][1], matrix.m[row][2]}; }

}   // namespace

SpecialShape ShapeOf(const VisualEffectObject& object, double age) {
    const auto& special = static_cast<const SpecialEffect&>(*object.sub_effect);
    D3DXQUATERNION orientation = object.base_orientation;
    D3DXMATRIX axes;
    D3DXQuaternionNormalize(&orientation, &orientation);
    D3DXQuaternionMultiply(&orientation, &object.rotation, &orientation);
    D3DXMatrixRotationQuaternion(&axes, &orientation);
    SpecialShape shape;
    shape.type = special.type;
    shape.position = object.position;
    shape.forward = Row(axes, 0);
    shape.up = Row(axes, 2);
    shape.age = age;
    shape.scale = object.scale;
    shape.count = special.point_count;
    shape.first = PackColour(EvalColor(special, age, object.count_value, object.random), ColourByte(object.alpha));
    shape.second = special.second_colour;
    shape.seed = TruncateToInt(object.random[0] * kSeeds);
    return shape;
}

SpecialEffectRenderer::SpecialEffectRenderer() { points_.PointSprites() = kPointSprites; }

void SpecialEffectRenderer::Init(KRN_Gfx& gfx) {
    gfx_ = &gfx;
    table_.Draw();
    gfx.CreateVertexList(&points_, kSpecialPoints, -1, true);
    gfx.CreateTexture(&spot_, kSpotSize, kSpotSize, -1, -1, 1);
    FillDefaultTexture();
}

/// A soft round spot.
void SpecialEffectRenderer::FillDefaultTexture() {
    spot_.Lock(nullptr, 0);
    for (int y = 0; y < kSpotSize; ++y) {
        for (int x = 0; x < kSpotSize; ++x) {
            const float half = kSpotSize / 2.0f, dx = (x + 0.5f - half) / (half - 1),
                        dy = (y + 0.5f - half) / (half - 1);
            const float inside = std::max(0.0f, 1 - dx * dx - dy * dy);
            spot_.SetPixel(x, y, PackColour(1, 1, 1, ColourByte(inside * inside)));
        }
    }
    spot_.Unlock();
}

void SpecialEffectRenderer::Release() {
    points_.ReleaseBuffer();
    spot_.Release();
}

void SpecialEffectRenderer::DrawSpecialEffect(const VisualEffectObject& object, double age) {
    auto& special = static_cast<SpecialEffect&>(*object.sub_effect);
    if (special.type == SpecialType::None) return;
    KRN_Gfx& gfx = *gfx_;
    const int mipmap_mode = gfx.MipmapMode();
    const float mipmap_bias = gfx.MipmapBias();
    const auto draw = [&] {
        gfx.SetMipmapMode(kNoMipmaps, mipmap_bias, 0);
        gfx.SetMaterial(D3DMATERIAL9());
        if (special.texture_name.GetLength() > 0) LoadEffectTexture(gfx, special.texture_name.c_str(), special.texture);
        const int count = WriteShape(ShapeOf(object, age), table_, points_.Lock(0, kSpecialPoints, 0));
        points_.Unlock();
        if (count == 0) return;
        points_.PointSprites().size = ShapePointSize(special.type, object.scale, special.point_size);
        DrawPoints(special.texture ? special.texture.get() : &spot_, count);
    };
    WithRestore(draw, [&] { gfx.SetMipmapMode(mipmap_mode, mipmap_bias, 0); });
}

void SpecialEffectRenderer::DrawPoints(KRN_Texture* texture, int count) {
    gfx_->SetTexture(texture, -1);
    gfx_->PushLightingOff();
    gfx_->SetZWrite(false);
    WithRestore([&] { gfx_->DrawTriangleList(points_, 0, count); }, [&] { gfx_->SetZWrite(true); });
    gfx_->PopLightingOff();
}

}   // namespace sparkrig
