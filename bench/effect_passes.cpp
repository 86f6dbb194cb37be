// What a shader effect costs beside the bare OpenGL calls: all parameters of shader/Toon.fx set, its two passes begun,
// a small list drawn in each, and ended. Run it from the root of the tree, with SDL_VIDEODRIVER=offscreen; compare
// processor times. The counter tells how often memory was asked for in one such drawing.
#include <SDL.h>
#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>

#include "bench/bare_sets.h"
#include "platform/d3d9_gl/device_hooks.h"
#include "platform/d3dx/d3dx_effect.h"

namespace {

std::atomic<std::int64_t> allocations;

void* Counted(std::size_t size) {
    ++allocations;
    if (void* const memory = std::malloc(size)) return memory;
    throw std::bad_alloc();
}

}   // namespace

void* operator new(std::size_t size) { return Counted(size); }
void* operator new[](std::size_t size) { return Counted(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

namespace sparkrig {
namespace {

constexpr int kDrawings = 500, kPasses = 2;
constexpr UINT kVertices = 12;
constexpr GLuint kFunctionBlocks = 2;   // uniform bindings of the vertex and the pixel function

struct MeshVertex {
    static constexpr DWORD kFvf = D3DFVF_XYZ | D3DFVF_NORMAL | D3DFVF_TEX1;
    float x, y, z, nx, ny, nz, u, v;
};

class Scene {
  public:
    Scene() {
        SDL_InitSubSystem(SDL_INIT_VIDEO);
        SDL_Window* const window = SDL_CreateWindow("", 0, 0, 64, 64, SDL_WINDOW_OPENGL | SDL_WINDOW_HIDDEN);
        D3DPRESENT_PARAMETERS parameters = {};
        parameters.SwapEffect = D3DSWAPEFFECT_FLIP;
        parameters.Windowed = TRUE;
        if (!window || FAILED(CreateDeviceOnWindow(window, parameters, device_.Receive()))) std::abort();
        device_->CreateTexture(4, 4, 1, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, texture_.Receive());
        MakeList();
        DevicePtr<ID3DXBuffer> errors;
        if (FAILED(D3DXCreateEffectFromFileA(device_.Get(), "shader/Toon.fx", 0, nullptr, effect_.Receive(),
                                             errors.Receive())))
            std::abort();
        FindParameters();
        device_->BeginScene();
        for (int i = 0; i < 3; ++i) Draw(static_cast<float>(i), [](int) {});   // makes the programs
    }

    /// Sets every parameter, and draws each pass. `after` follows the draw of each pass.
    template <class After>
    void Draw(float value, After after) {
        const D3DXMATRIX matrix = {{{value, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}};
        const D3DXVECTOR4 vectors[2] = {{value, 1, 1, 1}, {1, value, 1, 1}};
        for (const D3DXHANDLE handle : matrices_) effect_->SetMatrix(handle, &matrix);
        for (const D3DXHANDLE handle : vectors_) effect_->SetVector(handle, vectors);
        for (const D3DXHANDLE handle : floats_) effect_->SetFloat(handle, value);
        effect_->SetVectorArray(lights_, vectors, 2);
        effect_->SetTexture(picture_, texture_.Get());
        UINT passes = 0;
        effect_->Begin(&passes, 0);
        for (UINT pass = 0; pass < passes; ++pass) {
            effect_->BeginPass(pass);
            device_->DrawPrimitive(D3DPT_TRIANGLELIST, 0, kVertices / 3);
            effect_->EndPass();
            after(static_cast<int>(pass));
        }
        effect_->End();
    }

  private:
    void MakeList() {
        device_->CreateVertexBuffer(kVertices * sizeof(MeshVertex), 0, MeshVertex::kFvf, D3DPOOL_MANAGED,
                                    list_.Receive());
        void* data = nullptr;
        list_->Lock(0, 0, &data, 0);
        std::memset(data, 0, kVertices * sizeof(MeshVertex));
        list_->Unlock();
        device_->SetStreamSource(0, list_.Get(), 0, sizeof(MeshVertex));
        device_->SetFVF(MeshVertex::kFvf);
    }
    void FindParameters() {
        const auto find = [this](const char* name) { return effect_->GetParameterByName(nullptr, name); };
        for (const char* name : {"World", "WorldInverseTranspose", "ViewProjection", "TextureMatrix"})
            matrices_.push_back(find(name));
        for (const char* name : {"ViewPosition", "Diffuse", "LineColour"}) vectors_.push_back(find(name));
        for (const char* name : {"Opacity", "Lights", "LineWidth", "Steps"}) floats_.push_back(find(name));
        lights_ = find("Light");
        picture_ = find("DiffusePicture");
    }

    DevicePtr<IDirect3DDevice9> device_;
    DevicePtr<IDirect3DVertexBuffer9> list_;
    DevicePtr<IDirect3DTexture9> texture_;
    DevicePtr<ID3DXEffect> effect_;
    std::vector<D3DXHANDLE> matrices_, vectors_, floats_;
    D3DXHANDLE lights_ = nullptr, picture_ = nullptr;
};

Scene& TheScene() {
    static Scene scene;
    return scene;
}

void EffectPasses(benchmark::State& state) {
    Scene& scene = TheScene();
    const std::int64_t before = allocations;
    TimeDraws(state, kDrawings, [&](int i) { scene.Draw(static_cast<float>(i % 7), [](int) {}); });
    state.counters["allocations"] =
        static_cast<double>(allocations - before) / (static_cast<double>(state.iterations()) * kDrawings);
}

/// What a pass leaves in OpenGL, as far as the passes differ.
struct BarePass {
    GLint program, texture, cull_face;
    struct Block {
        GLint buffer;
        GLint64 offset, size;
    } blocks[kFunctionBlocks];

    static BarePass Observe() {
        BarePass pass = {};
        glGetIntegerv(GL_CURRENT_PROGRAM, &pass.program);
        glActiveTexture(GL_TEXTURE0);
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &pass.texture);
        glGetIntegerv(GL_CULL_FACE_MODE, &pass.cull_face);
        for (GLuint i = 0; i < kFunctionBlocks; ++i) {
            glGetIntegeri_v(GL_UNIFORM_BUFFER_BINDING, i, &pass.blocks[i].buffer);
            glGetInteger64i_v(GL_UNIFORM_BUFFER_START, i, &pass.blocks[i].offset);
            glGetInteger64i_v(GL_UNIFORM_BUFFER_SIZE, i, &pass.blocks[i].size);
        }
        return pass;
    }
    void Draw() const {
        glUseProgram(static_cast<GLuint>(program));
        glBindTextureUnit(0, static_cast<GLuint>(texture));
        glCullFace(static_cast<GLenum>(cull_face));
        for (GLuint i = 0; i < kFunctionBlocks; ++i)
            if (blocks[i].size > 0)
                glBindBufferRange(GL_UNIFORM_BUFFER, i, static_cast<GLuint>(blocks[i].buffer), blocks[i].offset,
                                  blocks[i].size);
        glDrawArrays(GL_TRIANGLES, 0, kVertices);
    }
};

void BarePasses(benchmark::State& state) {   // the limit: the calls that the two passes need at least, values in place
    BarePass passes[kPasses];
    TheScene().Draw(1, [&](int pass) { passes[pass] = BarePass::Observe(); });
    TimeDraws(state, kDrawings, [&](int) {
        for (const BarePass& pass : passes) pass.Draw();
    });
}

BENCHMARK(EffectPasses)->MeasureProcessCPUTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(BarePasses)->MeasureProcessCPUTime()->Unit(benchmark::kMicrosecond);

}   // namespace
}   // namespace sparkrig
