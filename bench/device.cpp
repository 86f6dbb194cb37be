// What the device costs beside the bare OpenGL calls: draws with equal and with changing states, and vertices on their
// way from a lock to the GPU. Run it with SDL_VIDEODRIVER=offscreen on an idle machine; compare processor times.
#include <SDL.h>
#include <benchmark/benchmark.h>
#include <epoxy/gl.h>

#include <cstdlib>
#include <cstring>
#include <vector>

#include "bench/bare_sets.h"
#include "platform/d3d9_gl/buffers.h"
#include "platform/d3d9_gl/device_hooks.h"

namespace sparkrig {
namespace {

constexpr int kDraws = 1000;
constexpr DWORD kSets = 16;
constexpr UINT kVertices = 12;   // of the small list

struct ListVertex {
    static constexpr DWORD kFvf = D3DFVF_XYZ | D3DFVF_DIFFUSE | D3DFVF_TEX1;
    float x, y, z;
    D3DCOLOR diffuse;
    float u, v;
};

// A device off screen with a list of small triangles and four textures.
class Scene {
  public:
    Scene() {
        SDL_InitSubSystem(SDL_INIT_VIDEO);
        window_ = SDL_CreateWindow("", 0, 0, 64, 64, SDL_WINDOW_OPENGL | SDL_WINDOW_HIDDEN);
        D3DPRESENT_PARAMETERS parameters = {};
        parameters.SwapEffect = D3DSWAPEFFECT_FLIP;
        parameters.Windowed = TRUE;
        parameters.EnableAutoDepthStencil = TRUE;
        parameters.AutoDepthStencilFormat = D3DFMT_D24X8;
        if (window_ == nullptr || FAILED(CreateDeviceOnWindow(window_, parameters, device_.Receive()))) std::abort();
        device_->SetRenderState(D3DRS_LIGHTING, FALSE);
        MakeList();
        for (DWORD i = 0; i < 4; ++i) MakeTexture(i);
        device_->SetTexture(0, textures_[0].Get());
        // Drawn in two frames, the list gets a buffer of its own.
        for (int frame = 0; frame < 2; ++frame) {
            device_->BeginScene();
            DrawList();
            device_->EndScene();
            device_->Present(nullptr, nullptr, nullptr, nullptr);
        }
        device_->BeginScene();
        for (DWORD set = 0; set < kSets; ++set) {   // makes the programs
            UseSet(set);
            DrawList();
        }
    }

    IDirect3DDevice9* operator->() { return device_.Get(); }
    IDirect3DTexture9* Texture(DWORD i) { return textures_[i % 4].Get(); }

    // As a vertex list is drawn: world, stream and format are always set.
    void DrawList() {
        constexpr D3DMATRIX kWorld = {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}};
        device_->SetTransform(D3DTS_WORLD, &kWorld);
        device_->SetStreamSource(0, list_.Get(), 0, sizeof(ListVertex));
        device_->SetFVF(ListVertex::kFvf);
        device_->DrawPrimitive(D3DPT_TRIANGLELIST, 0, kVertices / 3);
    }

    void UseSet(DWORD set) {
        constexpr DWORD kFactors[] = {D3DBLEND_ONE, D3DBLEND_SRCALPHA, D3DBLEND_INVDESTCOLOR, D3DBLEND_ZERO};
        constexpr DWORD kOperations[] = {D3DTOP_MODULATE, D3DTOP_ADD, D3DTOP_SELECTARG1, D3DTOP_MODULATE2X};
        device_->SetRenderState(D3DRS_ALPHABLENDENABLE, TRUE);
        device_->SetRenderState(D3DRS_SRCBLEND, kFactors[set % 4]);
        device_->SetRenderState(D3DRS_DESTBLEND, D3DBLEND_INVSRCALPHA);
        device_->SetRenderState(D3DRS_TEXTUREFACTOR, set << 24);
        device_->SetTextureStageState(0, D3DTSS_COLOROP, kOperations[set / 4]);
        device_->SetTextureStageState(0, D3DTSS_ALPHAOP, kOperations[set % 4]);
        device_->SetTexture(0, Texture(set));
    }

  private:
    void MakeList() {
        void* data = nullptr;
        device_->CreateVertexBuffer(kVertices * sizeof(ListVertex), 0, ListVertex::kFvf, D3DPOOL_MANAGED,
                                    list_.Receive());
        list_->Lock(0, 0, &data, 0);
        auto* vertex = static_cast<ListVertex*>(data);
        for (UINT i = 0; i < kVertices; ++i) {
            const float x = static_cast<float>(i) * 0.05f;
            *vertex++ = {x, i % 3 == 1 ? 0.1f : 0.0f, 0.5f, 0x80FFFFFF, x, 0.5f};
        }
        list_->Unlock();
    }
    void MakeTexture(DWORD i) {
        D3DLOCKED_RECT locked;
        device_->CreateTexture(4, 4, 1, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, textures_[i].Receive());
        textures_[i]->LockRect(0, &locked, nullptr, 0);
        std::memset(locked.pBits, static_cast<int>(40 * i + 60), static_cast<std::size_t>(locked.Pitch) * 4);
        textures_[i]->UnlockRect(0);
    }

    SDL_Window* window_ = nullptr;
    DevicePtr<IDirect3DDevice9> device_;
    DevicePtr<IDirect3DVertexBuffer9> list_;
    DevicePtr<IDirect3DTexture9> textures_[4];
};

Scene& TheScene() {
    static Scene scene;
    return scene;
}

// ---- Equal states

void DeviceDrawsEqual(benchmark::State& state) {
    TimeDraws(state, kDraws, [&scene = TheScene()](int) {
        scene.UseSet(0);
        scene.DrawList();
    });
}

void BareDrawsEqual(benchmark::State& state) {   // the limit: the draws alone, in the states that the device left
    TheScene().UseSet(0);
    TheScene().DrawList();
    TimeDraws(state, kDraws, [](int) { glDrawArrays(GL_TRIANGLES, 0, kVertices); });
}

// ---- Sixteen sets of states in turn

void DeviceDrawsChanging(benchmark::State& state) {
    TimeDraws(state, kDraws, [&scene = TheScene()](int i) {
        scene.UseSet(static_cast<DWORD>(i) % kSets);
        scene.DrawList();
    });
}

void BareDrawsChanging(benchmark::State& state) {   // the limit: the calls that such changes need at least
    std::vector<BareSet> sets;
    for (DWORD set = 0; set < kSets; ++set) {
        TheScene().UseSet(set);
        TheScene().DrawList();
        sets.push_back(ObserveSet());
    }
    TimeBareSets(state, sets, kDraws, kVertices);
}

// ---- Streaming: 100,000 particles of six vertices in batches of 1024

constexpr std::size_t kParticles = 100000, kBatch = 1024, kParticleBytes = 6 * 48;

// Calls `send` with the number of bytes of each batch.
template <class Send>
void ForEachBatch(const Send& send) {
    for (std::size_t done = 0; done < kParticles; done += kBatch) {
        send(std::min(kBatch, kParticles - done) * kParticleBytes);
    }
}

const std::vector<std::byte>& Particles() {
    static const std::vector<std::byte> particles(kBatch * kParticleBytes, std::byte{0x3A});
    return particles;
}

std::shared_ptr<GlContext> StreamContext() {
    static const std::shared_ptr<GlContext> context = [] {
        TheScene();
        SDL_Window* window = SDL_CreateWindow("", 0, 0, 16, 16, SDL_WINDOW_OPENGL | SDL_WINDOW_HIDDEN);
        return GlContext::Create(window);
    }();
    return context;
}

void StreamThroughBuffer(benchmark::State& state) {   // lock, write, unlock, and what a draw does to place the bytes
    const auto context = StreamContext();
    context->Activate();
    BufferMemory buffer(context, kBatch * kParticleBytes, D3DPOOL_SYSTEMMEM);
    for (auto _ : state) {
        ForEachBatch([&](std::size_t bytes) {
            void* data = nullptr;
            buffer.Lock(0, 0, &data, 0);
            std::memcpy(data, Particles().data(), bytes);
            buffer.Unlock();
            benchmark::DoNotOptimize(buffer.Place(0, bytes, 48));
            context->Ring().Sent();
        });
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(kParticles * kParticleBytes));
}

void CopyToRing(benchmark::State& state) {   // the limit, first part: the same bytes straight into the mapped ring
    const auto context = StreamContext();
    context->Activate();
    StreamRing& ring = context->Ring();
    for (auto _ : state) {
        ForEachBatch([&](std::size_t bytes) {
            std::memcpy(ring.Allocate(bytes, 48).memory, Particles().data(), bytes);
            ring.Sent();
        });
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(kParticles * kParticleBytes));
}

void CopyCached(benchmark::State& state) {   // the limit, second part: one copy that stays in the cache
    std::vector<std::byte> batch(kBatch * kParticleBytes);
    for (auto _ : state) {
        ForEachBatch([&](std::size_t bytes) {
            std::memcpy(batch.data(), Particles().data(), bytes);
            benchmark::ClobberMemory();
        });
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(kParticles * kParticleBytes));
}

BENCHMARK(DeviceDrawsEqual)->MeasureProcessCPUTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(BareDrawsEqual)->MeasureProcessCPUTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(DeviceDrawsChanging)->MeasureProcessCPUTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(BareDrawsChanging)->MeasureProcessCPUTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(StreamThroughBuffer)->Unit(benchmark::kMicrosecond);
BENCHMARK(CopyToRing)->Unit(benchmark::kMicrosecond);
BENCHMARK(CopyCached)->Unit(benchmark::kMicrosecond);

}   // namespace
}   // namespace sparkrig
