// Textures from files on the real device: what is drawn against what stands in the file.

#include "gfx/textures/texture.h"
#include "gfx/geometry/vertex_list.h"
#include "gfx/gfx.h"
#include "platform/window/window.h"
#include "tests/support/canvas.h"
#include "tests/support/picture_files.h"
#include "tests/support/temporary_folder.h"

namespace sparkrig {
namespace {

LRESULT Ignore(HWND window, UINT message, WPARAM wide, LPARAM lng) {
    return DefWindowProcA(window, message, wide, lng);
}

class TexturePicture : public TemporaryFolder {
  protected:
    static void SetUpTestSuite() {
        KeepDriverLoaded();
        RegisterClassExA({Ignore, "TEXTURE"});
    }
    TexturePicture() {
        gfx_.InitDevice(CreateWindowExA("TEXTURE", "", 0, 0, 8, 8), 1, nullptr, 0, 0, 1, 0, 0);
        gfx_.SetCullingMode(0);
        gfx_.SetTextureFilter(2, 0);
        gfx_.SetTextureFilter(4, 0);
        gfx_.SetLighting(false, nullptr);
        gfx_.SetProjection(1, 200, 1.5707963f, 1);
    }
    void Load(const std::string& content, int parameter = 0) {
        // A name of its own: files of one name written within a second are one file to the registry.
        const std::string name = "picture" + std::to_string(++pictures_);
        WriteFile(name, content);
        gfx_.LoadTexture(&texture_, name.c_str(), 0, parameter);
    }
    /// Draws it over the whole view, and reads the pixel in this column of the middle row.
    std::vector<D3DCOLOR> DrawnRow() {
        constexpr KRN_LVertex kCorners[] = {{-100, -100, 100, 0xFFFFFFFF, 0xFF000000, 0, 1},
                                            {-100, 100, 100, 0xFFFFFFFF, 0xFF000000, 0, 0},
                                            {100, -100, 100, 0xFFFFFFFF, 0xFF000000, 1, 1},
                                            {100, 100, 100, 0xFFFFFFFF, 0xFF000000, 1, 0}};
        KRN_VertexListTemp<KRN_LVertex> list(PrimitiveMode::TriangleStrip);
        gfx_.CreateVertexList(&list, 4, 0, true);
        std::ranges::copy(kCorners, list.Lock(0, 4, 0));
        list.Unlock();
        gfx_.SetTexture(&texture_, -1);
        gfx_.BeginScene();
        gfx_.Clear(0xFF000000, 1, nullptr);
        gfx_.DrawTriangleList(list, 0, 2);
        gfx_.EndScene();
        gfx_.SetTexture(nullptr, -1);
        std::vector<D3DCOLOR> pixels;
        UINT width, height;
        gfx_.ReadBackBuffer(pixels, width, height);
        return {pixels.begin() + 4 * width, pixels.begin() + 5 * width};
    }

    KRN_Gfx gfx_;
    KRN_Texture texture_;
    int pictures_ = 0;
};

TEST_F(TexturePicture, FormatsThatTheDeviceLacksBecomeTheNearest) {
    const TestPicture grey = {2, 1, {0xFF404040, 0xFF909090}};
    const std::string swapped =
        DdsHead({1, 1, 1, 0x41, 0, 32, 0xFF, 0xFF00, 0xFF0000, 0xFF000000}) + "\x30\x20\x10\xFF";
    const std::tuple<std::string, int, D3DFORMAT, D3DCOLOR> rows[] = {
        // 3 is a render target
        {swapped, 0, D3DFMT_A8R8G8B8, 0xFF302010},
        {swapped, 3, D3DFMT_A8R8G8B8, 0xFF302010},
        {PngFile(grey, 1), 3, D3DFMT_X8R8G8B8, 0xFF404040},
        {PngFile(grey, 2), 3, D3DFMT_A8R8G8B8, 0xFF404040},
        {TgaFile(grey, D3DFMT_L8), 3, D3DFMT_X8R8G8B8, 0xFF404040}};
    for (const auto& [file, parameter, format, pixel] : rows) {
        Load(file, parameter);
        EXPECT_EQ(texture_.Format(), format);
        EXPECT_TRUE(Near(ToRgb(DrawnRow()[1]), ToRgb(pixel), 1));
    }
}

TEST_F(TexturePicture, ALayersMatrixMovesTheCoordinates) {
    Load(PngFile({4, 1, {0xFF100000, 0xFF200000, 0xFF300000, 0xFF400000}}, 4));
    const std::tuple<TextureMatrixValues, std::vector<int>> rows[] = {
        {{}, {16, 16, 32, 32, 48, 48, 64, 64}},
        {{-0.25f, 0, 1, 1, 0}, {32, 32, 48, 48, 64, 64, 16, 16}},
        {{}, {16, 16, 32, 32, 48, 48, 64, 64}}};
    for (const auto& [values, expected] : rows) {
        texture_.SetLayerMatrix(0, values);
        std::vector<int> reds;
        for (const D3DCOLOR pixel : DrawnRow()) reds.push_back(ToRgb(pixel).r);
        EXPECT_EQ(reds, expected);
    }
}

}   // namespace
}   // namespace sparkrig
