// A small device off screen that draws a few vertices and reads pixels. Needs OpenGL, and nothing else does.
#pragma once
#include <cstring>
#include <ostream>
#include <vector>

#include "platform/d3d9/d3d9.h"

struct SDL_Window;

namespace sparkrig {

/// Colours in tests, 0..255.
struct Rgb {
    int r = 0, g = 0, b = 0;
};
std::ostream& operator<<(std::ostream& out, const Rgb& colour);
/// Whether no channel differs by more than this.
bool Near(const Rgb& a, const Rgb& b, int tolerance);

constexpr Rgb ToRgb(D3DCOLOR colour) {
    return {static_cast<int>(colour >> 16 & 255), static_cast<int>(colour >> 8 & 255), static_cast<int>(colour & 255)};
}
constexpr D3DCOLOR Argb(DWORD a, DWORD r, DWORD g, DWORD b) { return a << 24 | r << 16 | g << 8 | b; }

/// The pixels of a render target of a 32-bit format, row by row from the top. Empty when they cannot be read.
std::vector<D3DCOLOR> ReadTarget(IDirect3DDevice9& device, IDirect3DSurface9& target);
/// The same of the back buffer.
std::vector<D3DCOLOR> ReadBackBuffer(IDirect3DDevice9& device);

/// What a window shows, row by row from the top, read from the buffer that was drawn last. The window's device must be
/// the current one.
std::vector<D3DCOLOR> ReadWindow(SDL_Window* window);

/// Under the address sanitizer, loads the OpenGL driver and keeps it until the process ends: once it is unloaded, its
/// small leaks cannot be told from ours. To be called before a device is made; a Canvas does it by itself.
void KeepDriverLoaded();

/// Writes a level: its rows of pixels or blocks, one right behind the other.
void FillLevel(IDirect3DTexture9& texture, UINT level, const void* rows);
/// A texture of one level in the managed pool, filled in that way; or with A8R8G8B8 texels.
DevicePtr<IDirect3DTexture9> MakeTexture(IDirect3DDevice9& device, UINT width, UINT height, const void* rows,
                                         D3DFORMAT format);
DevicePtr<IDirect3DTexture9> MakeTexture(IDirect3DDevice9& device, UINT width, UINT height,
                                         const std::vector<D3DCOLOR>& texels);

/// Writes a part of a buffer.
template <class Buffer>
void FillBuffer(Buffer& buffer, UINT offset, const void* content, std::size_t bytes) {
    void* data = nullptr;
    if (FAILED(buffer.Lock(offset, static_cast<UINT>(bytes), &data, 0))) return;
    std::memcpy(data, content, bytes);
    buffer.Unlock();
}
/// In the managed pool.
DevicePtr<IDirect3DIndexBuffer9> MakeIndices(IDirect3DDevice9& device, const std::vector<WORD>& indices);

/// The pixels of a picture, row by row from the top, of one colour in a rectangle and of another around it.
std::vector<D3DCOLOR> Box(UINT width, UINT height, const RECT& box, D3DCOLOR inside, D3DCOLOR outside);

/// A vertex of final position.
struct ScreenVertex {
    static constexpr DWORD kFvf = D3DFVF_XYZRHW | D3DFVF_DIFFUSE | D3DFVF_SPECULAR | D3DFVF_TEX1;
    float x, y, z, rhw;
    D3DCOLOR diffuse, specular;
    float u, v;
};

/// Corners for a strip of two triangles between these places; texture coordinates run from 0.
inline std::vector<ScreenVertex> Corners(float left, float top, float right, float bottom, D3DCOLOR diffuse,
                                         D3DCOLOR specular = 0xFF000000, float z = 0.5f, float u = 1, float v = 1) {
    return {{left, top, z, 1, diffuse, specular, 0, 0},
            {right, top, z, 1, diffuse, specular, u, 0},
            {left, bottom, z, 1, diffuse, specular, 0, v},
            {right, bottom, z, 1, diffuse, specular, u, v}};
}

class Canvas {
  public:
    /// A back buffer of this size with a depth buffer. Lighting and culling are off, all is cleared, the
    /// scene has begun.
    Canvas(UINT width, UINT height, D3DFORMAT format = D3DFMT_X8R8G8B8);
    ~Canvas();
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    IDirect3DDevice9& Device() { return *device_; }
    IDirect3DDevice9* operator->() { return device_.Get(); }
    SDL_Window* Window() { return window_; }

    void Clear(D3DCOLOR colour, float z = 1.0f);
    /// Draws vertices of a format from a fresh system-memory buffer.
    template <class Vertex>
    HRESULT Draw(DWORD fvf, D3DPRIMITIVETYPE type, UINT primitives, const std::vector<Vertex>& vertices) {
        return DrawBytes(fvf, type, primitives, vertices.data(), vertices.size() * sizeof(Vertex), sizeof(Vertex));
    }
    HRESULT DrawBytes(DWORD fvf, D3DPRIMITIVETYPE type, UINT primitives, const void* vertices, std::size_t bytes,
                      UINT stride);
    /// Fills the rectangle of whole pixels with one colour; texture coordinates run from 0 to 1.
    void Fill(const RECT& pixels, D3DCOLOR diffuse, D3DCOLOR specular = 0xFF000000, float z = 0.5f);
    void FillAll(D3DCOLOR diffuse, D3DCOLOR specular = 0xFF000000, float z = 0.5f);

    D3DCOLOR PixelArgb(UINT x, UINT y);
    Rgb Pixel(UINT x, UINT y) { return ToRgb(PixelArgb(x, y)); }
    std::vector<D3DCOLOR> Pixels() { return ReadBackBuffer(*device_); }

  private:
    UINT width_, height_;
    SDL_Window* window_;
    DevicePtr<IDirect3DDevice9> device_;
};

/// Parameters of a window device with this back buffer and a 24-bit depth buffer.
D3DPRESENT_PARAMETERS CanvasParameters(UINT width, UINT height, D3DFORMAT format = D3DFMT_X8R8G8B8);

}   // namespace sparkrig
