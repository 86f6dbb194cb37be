// Textures with their samplers, buffers and draws: pools, locks, formats, filters, and the calls that are refused.
#include <gtest/gtest.h>

#include <bit>
#include <cstring>
#include <random>

#include "platform/d3d9/pixel_format.h"
#include "tests/support/canvas.h"

namespace sparkrig {
namespace {

std::vector<BYTE> RandomBytes(std::size_t count) {
    std::mt19937 generator(7);
    std::vector<BYTE> bytes(count);
    for (BYTE& byte : bytes) byte = static_cast<BYTE>(generator());
    return bytes;
}

constexpr D3DFORMAT kTextureFormats[] = {D3DFMT_A8R8G8B8, D3DFMT_X8R8G8B8, D3DFMT_R5G6B5, D3DFMT_X1R5G5B5,
                                         D3DFMT_A1R5G5B5, D3DFMT_A4R4G4B4, D3DFMT_A8,     D3DFMT_L8,
                                         D3DFMT_A8L8,     D3DFMT_V8U8,     D3DFMT_DXT1,   D3DFMT_DXT2,
                                         D3DFMT_DXT3,     D3DFMT_DXT4,     D3DFMT_DXT5};

TEST(Textures, GiveBackExactlyTheBytesThatWereWritten) {
    Canvas canvas(4, 4);
    DevicePtr<IDirect3DTexture9> texture;
    D3DLOCKED_RECT locked;
    for (const D3DPOOL pool : {D3DPOOL_MANAGED, D3DPOOL_SYSTEMMEM, D3DPOOL_SCRATCH, D3DPOOL_DEFAULT}) {
        for (const D3DFORMAT format : kTextureFormats) {
            const DWORD usage = pool == D3DPOOL_DEFAULT ? D3DUSAGE_DYNAMIC : 0;
            ASSERT_EQ(canvas->CreateTexture(8, 12, 0, usage, format, pool, texture.Receive()), D3D_OK) << format;
            EXPECT_EQ(texture->GetLevelCount(), 4u);
            const PixelFormat& layout = *FindPixelFormat(format);
            const UINT row_bytes = layout.RowBytes(8), rows = layout.Rows(12), half = layout.RowBytes(4);
            const std::vector<BYTE> bytes = RandomBytes(std::size_t{row_bytes} * rows);
            FillLevel(*texture, 0, bytes.data());
            if (pool == D3DPOOL_MANAGED || pool == D3DPOOL_DEFAULT) {   // a draw in between changes nothing
                canvas->SetTexture(0, texture.Get());
                canvas.FillAll(0xFFFFFFFF);
                canvas->SetTexture(0, nullptr);
            }
            const RECT right = {4, 4, 8, 12};   // its rows, from the fourth on
            ASSERT_EQ(texture->LockRect(0, &locked, &right, D3DLOCK_READONLY), D3D_OK);
            for (UINT y = 0; y < layout.Rows(8); ++y) {
                const BYTE* row = static_cast<BYTE*>(locked.pBits) + y * static_cast<UINT>(locked.Pitch);
                const BYTE* wanted = &bytes[(layout.Rows(4) + y) * row_bytes + half];
                EXPECT_EQ(std::memcmp(row, wanted, half), 0) << format << " " << y;
            }
            texture->UnlockRect(0);
        }
    }
    for (const RECT bad : {RECT{1, 0, 8, 8}, RECT{0, 0, 6, 8}, RECT{0, 2, 8, 8}})
        EXPECT_EQ(texture->LockRect(0, &locked, &bad, 0), D3DERR_INVALIDCALL);   // blocks are locked whole
}

TEST(Textures, RefuseWhatTheRulesForbid) {
    Canvas canvas(4, 4);
    DevicePtr<IDirect3DTexture9> made;
    const auto create = [&](UINT width, UINT height, UINT levels, DWORD usage, D3DFORMAT format, D3DPOOL pool) {
        return canvas->CreateTexture(width, height, levels, usage, format, pool, made.Receive());
    };
    constexpr D3DFORMAT kFormat = D3DFMT_A8R8G8B8;
    EXPECT_EQ(create(0, 4, 1, 0, kFormat, D3DPOOL_MANAGED), D3DERR_INVALIDCALL);
    EXPECT_EQ(create(4, 1u << 20, 1, 0, kFormat, D3DPOOL_MANAGED), D3DERR_INVALIDCALL);
    EXPECT_EQ(create(8, 4, 5, 0, kFormat, D3DPOOL_MANAGED), D3DERR_INVALIDCALL);
    EXPECT_EQ(create(8, 4, 4, 0, kFormat, D3DPOOL_MANAGED), D3D_OK);
    EXPECT_EQ(create(8, 4, 1, 0, D3DFMT_R8G8B8, D3DPOOL_MANAGED), D3DERR_INVALIDCALL);
    EXPECT_EQ(create(8, 4, 1, D3DUSAGE_RENDERTARGET, kFormat, D3DPOOL_MANAGED), D3DERR_INVALIDCALL);
    EXPECT_EQ(create(8, 4, 1, D3DUSAGE_RENDERTARGET, D3DFMT_L8, D3DPOOL_DEFAULT), D3DERR_INVALIDCALL);
    EXPECT_EQ(create(8, 4, 1, D3DUSAGE_DYNAMIC, kFormat, D3DPOOL_MANAGED), D3DERR_INVALIDCALL);
    EXPECT_EQ(create(8, 4, 1, D3DUSAGE_DYNAMIC, kFormat, D3DPOOL_SYSTEMMEM), D3D_OK);
    EXPECT_EQ(create(8, 4, 1, 0, kFormat, static_cast<D3DPOOL>(4)), D3DERR_INVALIDCALL);

    ASSERT_EQ(create(8, 4, 1, 0, kFormat, D3DPOOL_DEFAULT), D3D_OK);
    D3DLOCKED_RECT locked;
    EXPECT_EQ(made->LockRect(0, &locked, nullptr, 0), D3DERR_INVALIDCALL);
    ASSERT_EQ(create(8, 4, 1, 0, kFormat, D3DPOOL_MANAGED), D3D_OK);
    const RECT outside = {0, 0, 9, 4}, empty = {3, 1, 3, 2};
    D3DSURFACE_DESC desc;
    EXPECT_EQ(made->GetLevelDesc(1, &desc), D3DERR_INVALIDCALL);
    EXPECT_EQ(made->LockRect(1, &locked, nullptr, 0), D3DERR_INVALIDCALL);
    EXPECT_EQ(made->LockRect(0, &locked, &outside, 0), D3DERR_INVALIDCALL);
    EXPECT_EQ(made->LockRect(0, &locked, &empty, 0), D3DERR_INVALIDCALL);
    EXPECT_EQ(made->LockRect(0, &locked, nullptr, D3DLOCK_DISCARD), D3DERR_INVALIDCALL);
    EXPECT_EQ(made->UnlockRect(0), D3DERR_INVALIDCALL);
    ASSERT_EQ(made->LockRect(0, &locked, nullptr, 0), D3D_OK);
    EXPECT_EQ(made->LockRect(0, &locked, nullptr, 0), D3DERR_INVALIDCALL);
    EXPECT_EQ(made->UnlockRect(0), D3D_OK);

    ASSERT_EQ(create(8, 4, 1, 0, kFormat, D3DPOOL_SYSTEMMEM), D3D_OK);
    EXPECT_EQ(canvas->SetTexture(0, made.Get()), D3DERR_INVALIDCALL);
    EXPECT_EQ(canvas->SetTexture(kSamplers, nullptr), D3DERR_INVALIDCALL);
}

TEST(Textures, DecodeEveryFormat) {
    // The blocks run from (248, 0, 0) to (0, 0, 248); each pixel lies a third of the way.
    constexpr struct {
        D3DFORMAT format;
        BYTE bytes[16];
        Rgb colour;
        int alpha;
    } kRows[] = {{D3DFMT_A8R8G8B8, {30, 90, 200, 140}, {200, 90, 30}, 140},
                 {D3DFMT_X8R8G8B8, {30, 90, 200, 140}, {200, 90, 30}, 255},
                 {D3DFMT_R5G6B5, {0x43, 0xA2}, {165, 73, 25}, 255},     // 20, 18, 3
                 {D3DFMT_X1R5G5B5, {0x23, 0x51}, {165, 74, 25}, 255},   // 0, 20, 9, 3
                 {D3DFMT_A1R5G5B5, {0x23, 0x51}, {165, 74, 25}, 0},
                 {D3DFMT_A4R4G4B4, {0x93, 0x6C}, {204, 153, 51}, 102},
                 {D3DFMT_A8, {77}, {0, 0, 0}, 77},
                 {D3DFMT_L8, {77}, {77, 77, 77}, 255},
                 {D3DFMT_A8L8, {77, 33}, {77, 77, 77}, 33},
                 {D3DFMT_DXT1, {0, 0xF8, 0x1F, 0, 0xAA}, {170, 0, 85}, 255},
                 {D3DFMT_DXT3, {0x66, 0, 0, 0, 0, 0, 0, 0, 0, 0xF8, 0x1F, 0, 0xAA}, {170, 0, 85}, 102},
                 {D3DFMT_DXT5, {200, 60, 0x02, 0, 0, 0, 0, 0, 0, 0xF8, 0x1F, 0, 0xAA}, {170, 0, 85}, 180}};
    Canvas canvas(4, 4, D3DFMT_A8R8G8B8);
    for (const auto& row : kRows) {
        const UINT size = FindPixelFormat(row.format)->Step();
        const auto texture = MakeTexture(canvas.Device(), size, size, row.bytes, row.format);
        canvas->SetTexture(0, texture.Get());
        canvas.Clear(0);
        canvas.FillAll(0xFFFFFFFF);
        EXPECT_TRUE(Near(canvas.Pixel(0, 0), row.colour, 2)) << row.format << canvas.Pixel(0, 0);
        EXPECT_NEAR(static_cast<int>(canvas.PixelArgb(0, 0) >> 24), row.alpha, 1) << row.format;
    }
}

class Samplers : public testing::Test {
  protected:
    Samplers() : canvas_(8, 8) { canvas_->SetTextureStageState(0, D3DTSS_COLOROP, D3DTOP_SELECTARG1); }
    // The red of a pixel when the same coordinates lie over the whole canvas.
    int At(float u, float v) {
        canvas_.Clear(0);
        canvas_.Draw<ScreenVertex>(
            ScreenVertex::kFvf, D3DPT_TRIANGLELIST, 1,
            {{-9, -9, 0.5f, 1, 0, 0, u, v}, {30, -9, 0.5f, 1, 0, 0, u, v}, {-9, 30, 0.5f, 1, 0, 0, u, v}});
        return canvas_.Pixel(3, 3).r;
    }
    Canvas canvas_;
};

TEST_F(Samplers, TakeTheNearestTexelOrMixFour) {
    const auto texture = MakeTexture(canvas_.Device(), 2, 2, {0xFF280000, 0xFF500000, 0xFF780000, 0xFFF00000});
    canvas_->SetTexture(0, texture.Get());
    EXPECT_EQ(At(0.51f, 0.49f), 80);
    canvas_->SetSamplerState(0, D3DSAMP_MAGFILTER, D3DTEXF_LINEAR);
    EXPECT_NEAR(At(0.5f, 0.5f), 120, 1);
    EXPECT_NEAR(At(0.375f, 0.25f), 50, 1);   // a quarter of the way from 40 to 80
    EXPECT_EQ(At(0.25f, 0.75f), 120);
}

TEST_F(Samplers, ChooseLevelsByFilterBiasAndLimit) {
    DevicePtr<IDirect3DTexture9> texture;
    canvas_->CreateTexture(8, 8, 0, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, texture.Receive());
    for (UINT level = 0; level < 4; ++level)
        FillLevel(*texture, level, std::vector<D3DCOLOR>(64, Argb(255, 50 * (level + 1), 0, 0)).data());
    canvas_->SetTexture(0, texture.Get());
    canvas_->SetTextureStageState(0, D3DTSS_ALPHAOP, D3DTOP_SELECTARG2);
    constexpr std::tuple<DWORD, float, DWORD, int, int, int> kRows[] = {
        {D3DTEXF_NONE, 0, 0, 4, 50, 0},    {D3DTEXF_NONE, 0, 2, 1, 150, 0},  {D3DTEXF_POINT, 0, 0, 1, 50, 0},
        {D3DTEXF_POINT, 0, 0, 2, 100, 0},  {D3DTEXF_POINT, 0, 0, 4, 150, 0}, {D3DTEXF_POINT, 1, 0, 2, 150, 0},
        {D3DTEXF_POINT, -1, 0, 4, 100, 0}, {D3DTEXF_POINT, 0, 3, 1, 200, 0}, {D3DTEXF_LINEAR, 0.5f, 0, 2, 125, 3}};
    for (const auto& [filter, bias, largest, repeats, wanted, tolerance] : kRows) {
        canvas_->SetSamplerState(0, D3DSAMP_MIPFILTER, filter);
        canvas_->SetSamplerState(0, D3DSAMP_MIPMAPLODBIAS, std::bit_cast<DWORD>(bias));
        canvas_->SetSamplerState(0, D3DSAMP_MAXMIPLEVEL, largest);
        canvas_.Clear(0);
        const float end = static_cast<float>(repeats);   // how often the texture lies over the canvas
        canvas_.Draw(ScreenVertex::kFvf, D3DPT_TRIANGLESTRIP, 2,
                     Corners(-0.5f, -0.5f, 7.5f, 7.5f, 0, 0xFF000000, 0.5f, end, end));
        EXPECT_NEAR(canvas_.Pixel(3, 4).r, wanted, tolerance)
            << "filter " << filter << " bias " << bias << " from " << largest << " x " << repeats;
    }
}

TEST_F(Samplers, EnlargeTheLargestLevelThatTheyReadByTheirOwnFilter) {
    DevicePtr<IDirect3DTexture9> texture;
    canvas_->CreateTexture(4, 4, 2, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, texture.Receive());
    constexpr D3DCOLOR kTexels[] = {0xFF000000, 0xFFC80000, 0xFF000000, 0xFFC80000};
    FillLevel(*texture, 1, kTexels);
    canvas_->SetTexture(0, texture.Get());
    canvas_->SetSamplerState(0, D3DSAMP_MAXMIPLEVEL, 1);
    constexpr std::tuple<DWORD, DWORD, int> kRows[] = {{D3DTEXF_LINEAR, D3DTEXF_POINT, 50},
                                                       {D3DTEXF_POINT, D3DTEXF_LINEAR, 0}};
    for (const auto& [enlarging, reducing, wanted] : kRows) {
        canvas_->SetSamplerState(0, D3DSAMP_MAGFILTER, enlarging);
        canvas_->SetSamplerState(0, D3DSAMP_MINFILTER, reducing);
        EXPECT_NEAR(At(0.375f, 0.5f), wanted, 1);
    }
}

TEST(Buffers, KeepTheirBytesAndCountLocks) {
    Canvas canvas(4, 4);
    DevicePtr<IDirect3DVertexBuffer9> buffer;
    ASSERT_EQ(canvas->CreateVertexBuffer(64, 0, ScreenVertex::kFvf, D3DPOOL_MANAGED, buffer.Receive()), D3D_OK);
    void *all = nullptr, *part = nullptr;
    ASSERT_EQ(buffer->Lock(0, 0, &all, 0), D3D_OK);
    const std::vector<BYTE> bytes = RandomBytes(64);
    std::memcpy(all, bytes.data(), bytes.size());
    ASSERT_EQ(buffer->Lock(24, 8, &part, 0), D3D_OK);
    EXPECT_EQ(static_cast<BYTE*>(part) - static_cast<BYTE*>(all), 24);
    canvas->SetFVF(ScreenVertex::kFvf);
    canvas->SetStreamSource(0, buffer.Get(), 0, 32);
    EXPECT_EQ(canvas->DrawPrimitive(D3DPT_LINELIST, 0, 1), D3DERR_INVALIDCALL);   // locked
    EXPECT_EQ(buffer->Unlock(), D3D_OK);
    EXPECT_EQ(canvas->DrawPrimitive(D3DPT_LINELIST, 0, 1), D3DERR_INVALIDCALL);   // still locked once
    EXPECT_EQ(buffer->Unlock(), D3D_OK);
    EXPECT_EQ(canvas->DrawPrimitive(D3DPT_LINELIST, 0, 1), D3D_OK);
    EXPECT_EQ(buffer->Unlock(), D3DERR_INVALIDCALL);
    buffer->Lock(0, 0, &all, D3DLOCK_READONLY);
    EXPECT_EQ(std::memcmp(all, bytes.data(), bytes.size()), 0);
    buffer->Unlock();
}

TEST(Buffers, RefuseWhatTheRulesForbid) {
    Canvas canvas(4, 4);
    DevicePtr<IDirect3DVertexBuffer9> vertices;
    DevicePtr<IDirect3DIndexBuffer9> indices;
    void* data = nullptr;
    const auto create = [&](UINT bytes, DWORD usage, DWORD fvf, D3DPOOL pool) {
        return canvas->CreateVertexBuffer(bytes, usage, fvf, pool, vertices.Receive());
    };
    EXPECT_EQ(create(0, 0, 0, D3DPOOL_MANAGED), D3DERR_INVALIDCALL);
    EXPECT_EQ(create(31, 0, ScreenVertex::kFvf, D3DPOOL_MANAGED), D3DERR_INVALIDCALL);
    EXPECT_EQ(create(64, 0, 0x1D4, D3DPOOL_MANAGED), D3DERR_INVALIDCALL);
    EXPECT_EQ(create(64, 0, 0, D3DPOOL_SCRATCH), D3DERR_INVALIDCALL);
    EXPECT_EQ(create(64, D3DUSAGE_DYNAMIC, 0, D3DPOOL_MANAGED), D3DERR_INVALIDCALL);
    EXPECT_EQ(canvas->CreateIndexBuffer(64, 0, D3DFMT_A8, D3DPOOL_MANAGED, indices.Receive()), D3DERR_INVALIDCALL);
    ASSERT_EQ(create(64, D3DUSAGE_SOFTWAREPROCESSING, 0, D3DPOOL_SYSTEMMEM), D3D_OK);
    EXPECT_EQ(vertices->Lock(60, 8, &data, 0), D3DERR_INVALIDCALL);
    EXPECT_EQ(vertices->Lock(65, 0, &data, 0), D3DERR_INVALIDCALL);
    EXPECT_EQ(vertices->Lock(0xFFFFFFF0u, 32, &data, 0), D3DERR_INVALIDCALL);
    EXPECT_EQ(vertices->Lock(0, 0, nullptr, 0), D3DERR_INVALIDCALL);
}

TEST(Draws, RefuseWhatTheRulesForbid) {
    Canvas canvas(4, 4);
    DevicePtr<IDirect3DVertexBuffer9> vertices;
    DevicePtr<IDirect3DIndexBuffer9> indices;
    canvas->CreateVertexBuffer(6 * 32, 0, ScreenVertex::kFvf, D3DPOOL_MANAGED, vertices.Receive());
    canvas->CreateIndexBuffer(9 * 2, 0, D3DFMT_INDEX16, D3DPOOL_MANAGED, indices.Receive());
    const auto draw = [&](D3DPRIMITIVETYPE type, UINT first, UINT count) {
        return canvas->DrawPrimitive(type, first, count);
    };
    EXPECT_EQ(draw(D3DPT_TRIANGLELIST, 0, 2), D3DERR_INVALIDCALL);   // no format, no buffer
    canvas->SetFVF(ScreenVertex::kFvf);
    EXPECT_EQ(draw(D3DPT_TRIANGLELIST, 0, 2), D3DERR_INVALIDCALL);
    canvas->SetStreamSource(0, vertices.Get(), 0, 32);
    EXPECT_EQ(draw(D3DPT_TRIANGLELIST, 0, 2), D3D_OK);
    EXPECT_EQ(draw(D3DPT_TRIANGLELIST, 0, 0), D3DERR_INVALIDCALL);
    EXPECT_EQ(draw(D3DPT_TRIANGLELIST, 1, 2), D3DERR_INVALIDCALL);
    EXPECT_EQ(draw(D3DPT_TRIANGLELIST, 0, 0x80000000u), D3DERR_INVALIDCALL);
    EXPECT_EQ(draw(static_cast<D3DPRIMITIVETYPE>(7), 0, 1), D3DERR_INVALIDCALL);
    EXPECT_EQ(draw(D3DPT_TRIANGLESTRIP, 1, 3), D3D_OK);
    EXPECT_EQ(draw(D3DPT_TRIANGLESTRIP, 1, 4), D3DERR_INVALIDCALL);
    const auto indexed = [&](INT base, UINT low, UINT count, UINT first, UINT primitives) {
        return canvas->DrawIndexedPrimitive(D3DPT_TRIANGLELIST, base, low, count, first, primitives);
    };
    EXPECT_EQ(indexed(0, 0, 6, 0, 2), D3DERR_INVALIDCALL);   // no indices
    canvas->SetIndices(indices.Get());
    EXPECT_EQ(indexed(0, 0, 6, 0, 3), D3D_OK);
    EXPECT_EQ(indexed(0, 0, 6, 1, 3), D3DERR_INVALIDCALL);
    EXPECT_EQ(indexed(1, 0, 6, 0, 3), D3DERR_INVALIDCALL);
    EXPECT_EQ(indexed(-1, 0, 6, 0, 3), D3DERR_INVALIDCALL);
    EXPECT_EQ(indexed(-1, 1, 5, 0, 3), D3D_OK);
    EXPECT_EQ(canvas->DrawIndexedPrimitive(D3DPT_POINTLIST, 0, 0, 6, 0, 2), D3DERR_INVALIDCALL);
    canvas->SetStreamSource(0, vertices.Get(), 0, 28);   // shorter than the format
    EXPECT_EQ(draw(D3DPT_TRIANGLELIST, 0, 1), D3DERR_INVALIDCALL);
    canvas->SetStreamSource(0, vertices.Get(), 33, 32);
    EXPECT_EQ(draw(D3DPT_TRIANGLELIST, 0, 2), D3DERR_INVALIDCALL);
    canvas->EndScene();
    canvas->SetStreamSource(0, vertices.Get(), 0, 32);
    EXPECT_EQ(draw(D3DPT_TRIANGLELIST, 0, 2), D3DERR_INVALIDCALL);
    EXPECT_EQ(canvas->SetFVF(0x1D4), D3DERR_INVALIDCALL);   // a normal of a transformed vertex
    EXPECT_EQ(canvas->SetFVF(0), D3DERR_INVALIDCALL);
    EXPECT_EQ(canvas->SetStreamSource(1, vertices.Get(), 0, 32), D3DERR_INVALIDCALL);
}

}   // namespace
}   // namespace sparkrig
