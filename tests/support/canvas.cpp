#include "tests/support/canvas.h"

#include <SDL.h>
#include <dlfcn.h>
#include <epoxy/gl.h>
#include <link.h>

#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>
#include <utility>

#include "platform/d3d9/pixel_format.h"
#include "platform/d3d9_gl/device_hooks.h"
#include "platform/d3d9_gl/gl_context.h"

namespace sparkrig {

std::ostream& operator<<(std::ostream& out, const Rgb& colour) {
    return out << "(" << colour.r << ", " << colour.g << ", " << colour.b << ")";
}

bool Near(const Rgb& a, const Rgb& b, int tolerance) {
    return std::abs(a.r - b.r) <= tolerance && std::abs(a.g - b.g) <= tolerance && std::abs(a.b - b.b) <= tolerance;
}

std::vector<D3DCOLOR> ReadTarget(IDirect3DDevice9& device, IDirect3DSurface9& target) {
    D3DSURFACE_DESC desc;
    DevicePtr<IDirect3DSurface9> copy;
    D3DLOCKED_RECT locked;
    target.GetDesc(&desc);
    if (FAILED(device.CreateOffscreenPlainSurface(desc.Width, desc.Height, desc.Format, D3DPOOL_SYSTEMMEM,
                                                  copy.Receive())) ||
        FAILED(device.GetRenderTargetData(&target, copy.Get())) ||
        FAILED(copy->LockRect(&locked, nullptr, D3DLOCK_READONLY))) {
        return {};
    }
    std::vector<D3DCOLOR> pixels(std::size_t{desc.Width} * desc.Height);
    for (UINT y = 0; y < desc.Height; ++y) {
        std::memcpy(&pixels[std::size_t{y} * desc.Width],
                    static_cast<const std::byte*>(locked.pBits) + std::ptrdiff_t{locked.Pitch} * y, desc.Width * 4);
    }
    copy->UnlockRect();
    return pixels;
}

std::vector<D3DCOLOR> ReadBackBuffer(IDirect3DDevice9& device) {
    DevicePtr<IDirect3DSurface9> target;
    if (FAILED(device.GetBackBuffer(0, 0, 0, target.Receive()))) return {};
    return ReadTarget(device, *target);
}

std::vector<D3DCOLOR> ReadWindow(SDL_Window* window) {
    int width = 0, height = 0;
    SDL_GL_GetDrawableSize(window, &width, &height);
    std::vector<D3DCOLOR> rows(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)), pixels;
    glBindFramebuffer(GL_READ_FRAMEBUFFER, 0);
    glReadPixels(0, 0, width, height, GL_BGRA, GL_UNSIGNED_INT_8_8_8_8_REV, rows.data());
    for (std::ptrdiff_t y = height - 1; y >= 0; --y) {   // OpenGL's rows run from the bottom up
        pixels.insert(pixels.end(), rows.begin() + y * width, rows.begin() + (y + 1) * width);
    }
    return pixels;
}

void KeepDriverLoaded() {
#ifdef __SANITIZE_ADDRESS__
    static bool kept = false;
    if (std::exchange(kept, true)) return;
    SDL_InitSubSystem(SDL_INIT_VIDEO);
    SDL_Window* window = SDL_CreateWindow("", 0, 0, 8, 8, SDL_WINDOW_OPENGL | SDL_WINDOW_HIDDEN);
    std::shared_ptr<GlContext> context = GlContext::Create(window);   // loads it
    std::vector<std::string> libraries;
    const auto collect = [](dl_phdr_info* library, std::size_t, void* names) {
        static_cast<std::vector<std::string>*>(names)->emplace_back(library->dlpi_name);
        return 0;
    };
    dl_iterate_phdr(collect, &libraries);
    for (const std::string& library : libraries)
        if (!library.empty()) dlopen(library.c_str(), RTLD_LAZY | RTLD_NODELETE);
    context.reset();
    SDL_DestroyWindow(window);
#endif
}

void FillLevel(IDirect3DTexture9& texture, UINT level, const void* rows) {
    D3DSURFACE_DESC desc;
    D3DLOCKED_RECT locked = {};
    texture.GetLevelDesc(level, &desc);
    texture.LockRect(level, &locked, nullptr, 0);
    const PixelFormat& format = *FindPixelFormat(desc.Format);
    const std::size_t row_bytes = format.RowBytes(desc.Width);
    for (UINT y = 0; y < format.Rows(desc.Height); ++y) {
        std::memcpy(static_cast<std::byte*>(locked.pBits) + std::ptrdiff_t{locked.Pitch} * y,
                    static_cast<const std::byte*>(rows) + row_bytes * y, row_bytes);
    }
    texture.UnlockRect(level);
}

DevicePtr<IDirect3DTexture9> MakeTexture(IDirect3DDevice9& device, UINT width, UINT height, const void* rows,
                                         D3DFORMAT format) {
    DevicePtr<IDirect3DTexture9> texture;
    if (SUCCEEDED(device.CreateTexture(width, height, 1, 0, format, D3DPOOL_MANAGED, texture.Receive())))
        FillLevel(*texture, 0, rows);
    return texture;
}

DevicePtr<IDirect3DTexture9> MakeTexture(IDirect3DDevice9& device, UINT width, UINT height,
                                         const std::vector<D3DCOLOR>& texels) {
    return MakeTexture(device, width, height, texels.data(), D3DFMT_A8R8G8B8);
}

DevicePtr<IDirect3DIndexBuffer9> MakeIndices(IDirect3DDevice9& device, const std::vector<WORD>& indices) {
    DevicePtr<IDirect3DIndexBuffer9> buffer;
    const UINT bytes = static_cast<UINT>(indices.size() * sizeof(WORD));
    device.CreateIndexBuffer(bytes, 0, D3DFMT_INDEX16, D3DPOOL_MANAGED, buffer.Receive());
    FillBuffer(*buffer, 0, indices.data(), bytes);
    return buffer;
}

std::vector<D3DCOLOR> Box(UINT width, UINT height, const RECT& box, D3DCOLOR inside, D3DCOLOR outside) {
    std::vector<D3DCOLOR> pixels;
    for (LONG y = 0; y < static_cast<LONG>(height); ++y) {
        for (LONG x = 0; x < static_cast<LONG>(width); ++x) {
            const bool in = x >= box.left && x < box.right && y >= box.top && y < box.bottom;
            pixels.push_back(in ? inside : outside);
        }
    }
    return pixels;
}

D3DPRESENT_PARAMETERS CanvasParameters(UINT width, UINT height, D3DFORMAT format) {
    D3DPRESENT_PARAMETERS parameters = {};
    parameters.BackBufferWidth = width;
    parameters.BackBufferHeight = height;
    parameters.BackBufferFormat = format;
    parameters.SwapEffect = D3DSWAPEFFECT_FLIP;
    parameters.Windowed = TRUE;
    parameters.EnableAutoDepthStencil = TRUE;
    parameters.AutoDepthStencilFormat = D3DFMT_D24X8;
    return parameters;
}

Canvas::Canvas(UINT width, UINT height, D3DFORMAT format) : width_(width), height_(height) {
    KeepDriverLoaded();
    SDL_InitSubSystem(SDL_INIT_VIDEO);
    window_ = SDL_CreateWindow("", 0, 0, static_cast<int>(width), static_cast<int>(height),
                               SDL_WINDOW_OPENGL | SDL_WINDOW_HIDDEN);
    if (window_ == nullptr ||
        FAILED(CreateDeviceOnWindow(window_, CanvasParameters(width, height, format), device_.Receive()))) {
        throw std::runtime_error(std::string("No device: ") + Direct3DUnavailableReason());
    }
    device_->SetRenderState(D3DRS_LIGHTING, FALSE);
    device_->SetRenderState(D3DRS_CULLMODE, D3DCULL_NONE);
    device_->BeginScene();
    Clear(0);
}

Canvas::~Canvas() {
    device_.Reset();
    SDL_DestroyWindow(window_);
    SDL_QuitSubSystem(SDL_INIT_VIDEO);
}

void Canvas::Clear(D3DCOLOR colour, float z) {
    device_->Clear(0, nullptr, D3DCLEAR_TARGET | D3DCLEAR_ZBUFFER, colour, z, 0);
}

HRESULT Canvas::DrawBytes(DWORD fvf, D3DPRIMITIVETYPE type, UINT primitives, const void* vertices, std::size_t bytes,
                          UINT stride) {
    DevicePtr<IDirect3DVertexBuffer9> buffer;
    HRESULT result = device_->CreateVertexBuffer(static_cast<UINT>(bytes), 0, fvf, D3DPOOL_SYSTEMMEM, buffer.Receive());
    if (FAILED(result)) return result;
    FillBuffer(*buffer, 0, vertices, bytes);
    device_->SetFVF(fvf);
    device_->SetStreamSource(0, buffer.Get(), 0, stride);
    result = device_->DrawPrimitive(type, 0, primitives);
    device_->SetStreamSource(0, nullptr, 0, 0);
    return result;
}

void Canvas::Fill(const RECT& pixels, D3DCOLOR diffuse, D3DCOLOR specular, float z) {
    const auto place = [](LONG edge) { return static_cast<float>(edge) - 0.25f; };
    Draw(ScreenVertex::kFvf, D3DPT_TRIANGLESTRIP, 2,
         Corners(place(pixels.left), place(pixels.top), place(pixels.right), place(pixels.bottom), diffuse, specular,
                 z));
}

void Canvas::FillAll(D3DCOLOR diffuse, D3DCOLOR specular, float z) {
    Fill({0, 0, static_cast<LONG>(width_), static_cast<LONG>(height_)}, diffuse, specular, z);
}

D3DCOLOR Canvas::PixelArgb(UINT x, UINT y) { return Pixels().at(std::size_t{y} * width_ + x); }

}   // namespace sparkrig
