// Loading textures from files, beside the image library and the upload alone; compressing, beside the encoder alone.
#include <SDL.h>
#include <benchmark/benchmark.h>
#include <stb_image.h>
#define STB_DXT_STATIC
#define STB_DXT_IMPLEMENTATION
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#include <stb_dxt.h>
#pragma GCC diagnostic pop
#define STB_IMAGE_WRITE_STATIC
#define STB_IMAGE_WRITE_IMPLEMENTATION
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#include <stb_image_write.h>
#pragma GCC diagnostic pop

#include <cmath>
#include <cstring>
#include <filesystem>
#include <random>
#include <vector>

#include "platform/d3d9_gl/device_hooks.h"
#include "platform/d3dx/d3dx_texture.h"
#include "platform/d3dx/dxt_blocks.h"
#include "platform/d3dx/image_file.h"

using namespace sparkrig;

namespace {

constexpr UINT kSide = 2048;
constexpr UINT kLevels = 12;

/// Clouds with a little noise, so that the files are about as large as those of photographs.
std::vector<BYTE> MakePixels() {
    std::vector<BYTE> rgba(std::size_t{4} * kSide * kSide);
    std::mt19937 random(7);
    for (std::size_t i = 0; i < rgba.size(); i += 4) {
        const float x = static_cast<float>(i / 4 % kSide) / kSide, y = static_cast<float>(i / 4 / kSide) / kSide;
        const float cloud = std::sin(21 * x + 5 * std::sin(9 * y)) * std::cos(17 * y + 4 * std::sin(13 * x));
        for (std::size_t c = 0; c < 4; ++c)
            rgba[i + c] =
                static_cast<BYTE>(120 + (60 + 15 * static_cast<float>(c)) * cloud + static_cast<float>(random() % 8));
    }
    return rgba;
}

/// Both files, in a folder that goes with the program.
struct Files {
    Files() {
        std::filesystem::create_directories(folder);
        const std::vector<BYTE> rgba = MakePixels();
        stbi_write_png(Path("png").c_str(), kSide, kSide, 4, rgba.data(), 0);
        stbi_write_jpg(Path("jpg").c_str(), kSide, kSide, 4, rgba.data(), 90);
    }
    ~Files() { std::filesystem::remove_all(folder); }
    std::string Path(const char* kind) const { return (folder / "picture.").string() + kind; }
    std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("sparkrig-bench-" + std::to_string(getpid()));
};

const Files& TheFiles() {
    static const Files files;
    return files;
}

struct Window {
    Window() {
        SDL_InitSubSystem(SDL_INIT_VIDEO);
        window = SDL_CreateWindow("", 0, 0, 64, 64, SDL_WINDOW_OPENGL | SDL_WINDOW_HIDDEN);
        D3DPRESENT_PARAMETERS parameters = {};
        parameters.BackBufferWidth = parameters.BackBufferHeight = 64;
        parameters.BackBufferFormat = D3DFMT_X8R8G8B8;
        parameters.SwapEffect = D3DSWAPEFFECT_FLIP;
        parameters.Windowed = TRUE;
        CreateDeviceOnWindow(window, parameters, device.Receive());
    }
    ~Window() {
        device.Reset();
        SDL_DestroyWindow(window);
    }
    SDL_Window* window;
    DevicePtr<IDirect3DDevice9> device;
};

IDirect3DDevice9* TheDevice() {
    static const Window window;
    return window.device.Get();
}

void SetPixels(benchmark::State& state) { state.SetItemsProcessed(state.iterations() * kSide * kSide); }

void Load(benchmark::State& state, const char* kind, D3DFORMAT format) {
    const std::string path = TheFiles().Path(kind);
    for (auto _ : state) {
        DevicePtr<IDirect3DTexture9> texture;
        const HRESULT result = D3DXCreateTextureFromFileExA(
            TheDevice(), path.c_str(), D3DX_DEFAULT_NONPOW2, D3DX_DEFAULT_NONPOW2, 0, 0, format, D3DPOOL_MANAGED,
            D3DX_FILTER_LINEAR, D3DX_FILTER_BOX, 0, nullptr, texture.Receive());
        if (FAILED(result)) state.SkipWithError("not loaded");
    }
    SetPixels(state);
}

/// The limit: the library decodes, and as many bytes go into a texture of as many levels.
void DecodeAndUpload(benchmark::State& state, const char* kind) {
    const std::string path = TheFiles().Path(kind);
    for (auto _ : state) {
        std::vector<BYTE> bytes;
        ReadWholeFile(path.c_str(), bytes);
        int width = 0, height = 0, channels = 0;
        stbi_uc* pixels =
            stbi_load_from_memory(bytes.data(), static_cast<int>(bytes.size()), &width, &height, &channels, 4);
        DevicePtr<IDirect3DTexture9> texture;
        TheDevice()->CreateTexture(kSide, kSide, kLevels, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, texture.Receive());
        for (UINT level = 0; level < kLevels; ++level) {
            D3DLOCKED_RECT locked;
            texture->LockRect(level, &locked, nullptr, 0);
            std::memcpy(locked.pBits, pixels, std::size_t{4} * (kSide >> level) * (kSide >> level));
            texture->UnlockRect(level);
        }
        stbi_image_free(pixels);
    }
    SetPixels(state);
}

void LoadPng(benchmark::State& state) { Load(state, "png", D3DFMT_UNKNOWN); }
void DecodeAndUploadPng(benchmark::State& state) { DecodeAndUpload(state, "png"); }
void LoadJpg(benchmark::State& state) { Load(state, "jpg", D3DFMT_UNKNOWN); }
void DecodeAndUploadJpg(benchmark::State& state) { DecodeAndUpload(state, "jpg"); }

Image MakeImage() {
    const std::vector<BYTE> rgba = MakePixels();
    Image image(kSide, kSide);
    std::memcpy(image.pixels.get(), rgba.data(), rgba.size());
    return image;
}

void CompressDxt5(benchmark::State& state) {
    const Image image = MakeImage();
    std::vector<BYTE> blocks(image.Count());
    for (auto _ : state) {
        EncodeDxt(D3DFMT_DXT5, image, blocks.data(), std::size_t{4} * kSide);
        benchmark::ClobberMemory();
    }
    SetPixels(state);
}

/// The limit: the encoder, its blocks lying ready in a row.
void EncodeBlocksAlone(benchmark::State& state) {
    const std::vector<BYTE> rgba = MakePixels();
    std::vector<BYTE> ready(rgba.size()), blocks(rgba.size() / 4);
    for (std::size_t i = 0, x = 0, y = 0; i < ready.size(); i += 16) {
        // Rows of four pixels, block by block.
        const std::size_t row = y * 4 + i / 16 % 4;
        std::memcpy(&ready[i], &rgba[4 * (row * kSide + x * 4)], 16);
        if (i / 16 % 4 == 3 && ++x == kSide / 4) x = 0, ++y;
    }
    for (auto _ : state) {
        for (std::size_t i = 0; i < blocks.size(); i += 16)
            stb_compress_dxt_block(&blocks[i], &ready[4 * i], 1, STB_DXT_NORMAL);
        benchmark::ClobberMemory();
    }
    SetPixels(state);
}

BENCHMARK(LoadPng)->Unit(benchmark::kMillisecond);
BENCHMARK(DecodeAndUploadPng)->Unit(benchmark::kMillisecond);
BENCHMARK(LoadJpg)->Unit(benchmark::kMillisecond);
BENCHMARK(DecodeAndUploadJpg)->Unit(benchmark::kMillisecond);
BENCHMARK(CompressDxt5)->Unit(benchmark::kMillisecond);
BENCHMARK(EncodeBlocksAlone)->Unit(benchmark::kMillisecond);

}   // namespace
