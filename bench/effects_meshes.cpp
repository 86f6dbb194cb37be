// A thousand instances of one mesh effect, moved and drawn, beside the OpenGL calls that draw as many. Run it with
// SDL_VIDEODRIVER=offscreen from the root of the tree; compare processor times. Items are instances.
#include <benchmark/benchmark.h>
#include <epoxy/gl.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "effects/effect_drawing.h"
#include "effects/effect_simulation.h"
#include "gfx/gfx.h"
#include "platform/window/window.h"
#include "scene/camera.h"

namespace sparkrig {
namespace {

constexpr int kInstances = 1000, kColumns = 10, kRows = 5, kFaces = 2 * kColumns * kRows;

struct BenchReporter : ErrorClass {};

LRESULT Ignore(HWND window, UINT message, WPARAM wide, LPARAM lng) {
    return DefWindowProcA(window, message, wide, lng);
}

/// A sheet of kFaces faces, gone with the object.
struct SheetFile {
    SheetFile() {
        std::FILE* file = std::fopen(name.c_str(), "w");
        std::fprintf(file, "*3DSMAX_KVAEXPORT 211\n*GEOMOBJECT {\n*NODE_NAME \"Sheet\"\n*MESH {\n");
        std::fprintf(file, "*MESH_NUMVERTEX %i\n*MESH_NUMFACES %i\n*MESH_VERTEX_LIST {\n", (kColumns + 1) * (kRows + 1),
                     kFaces);
        for (int i = 0; i < (kColumns + 1) * (kRows + 1); ++i)
            std::fprintf(file, "*MESH_VERTEX %i %i 0 %i\n", i, i % (kColumns + 1), i / (kColumns + 1));
        std::fprintf(file, "}\n*MESH_FACE_LIST {\n");
        for (int i = 0; i < kFaces; ++i) {
            const int a = i / 2 % kColumns + i / 2 / kColumns * (kColumns + 1), b = a + kColumns + 1;
            std::fprintf(file, "*MESH_FACE %i: A: %i B: %i C: %i *MESH_SMOOTHING 1\n", i, i % 2 ? a + 1 : a,
                         i % 2 ? b + 1 : a + 1, b);
        }
        std::fprintf(file, "}\n}\n}\n");
        std::fclose(file);
    }
    ~SheetFile() { std::remove(name.c_str()); }
    const std::string name = "/tmp/bench_sheet_" + std::to_string(getpid()) + ".kva";
};

struct Scene {
    Scene() {
        RegisterClassExA({Ignore, "BENCH"});
        gfx.InitDevice(CreateWindowExA("BENCH", "bench", 0, 0, 64, 64), 1, nullptr, 24, 0, 1, 0, 0);
        KRN_Camera camera;
        camera.SetEye(0, 300, 0, true);
        camera.SetViewDirection(0, -1, 0, true);
        gfx.SetView(camera);
        gfx.SetProjection(1, 2000, 0.7854f, -1);
        drawing.Init(gfx, 0);
        VisualEffect& effect = *definitions.effects.Insert("sheets");
        MeshEffect& sub = *effect.meshes.Get(effect.meshes.AddNew());
        sub.owner = &effect;
        sub.scene_file = file.name.c_str();
        sub.count = kInstances;
        sub.blend_mode = 12;
        sub.scale = {0.5f, 0.5f, 0.5f};
        for (const AnimationType type : {AnimationType::RandSphere, AnimationType::Sin}) {
            VisualEffectMotion stage;
            stage.type = type;
            stage.concat = ConcatType::Add;
            stage.scale = {40, 30, 40};
            sub.position_stages.Add(stage);
        }
        VisualEffectMotion turn;
        turn.type = AnimationType::Linear;
        turn.concat = ConcatType::Rotate;
        turn.scale = {0.5f, 0.3f, 0.2f};
        sub.rotation_stages.Add(turn);
        simulation.StartEffect(effect, {});
        gfx.BeginScene();
    }

    void Frame() {
        simulation.Update(1 / 60.0f);
        drawing.Draw(simulation);
    }

    SheetFile file;
    KRN_Gfx gfx;
    BenchReporter reporter;
    EffectDefinitions definitions;
    EffectSimulation simulation{reporter};
    EffectDrawing drawing;
};

Scene& TheScene() {
    static Scene& scene = *new Scene;   // the driver goes with the process
    return scene;
}

void CountInstances(benchmark::State& state) { state.SetItemsProcessed(state.iterations() * kInstances); }

void MeshInstances(benchmark::State& state) {
    Scene& scene = TheScene();
    for (auto _ : state) {
        scene.Frame();
        glFinish();
    }
    state.counters["drawn"] = scene.drawing.DrawnParticles();
    CountInstances(state);
}

/// The same with the calls that draw left out.
void MeshInstancesWithoutDraws(benchmark::State& state) {
    Scene& scene = TheScene();
    scene.gfx.SuppressDraws(true);
    for (auto _ : state) scene.Frame();
    scene.gfx.SuppressDraws(false);
    CountInstances(state);
}

/// The limit: for each instance a matrix into mapped memory, its range bound, the faces drawn; in the states that the
/// facade has left.
void BareDraws(benchmark::State& state) {
    constexpr GLuint kBinding = 7;   // that no program reads
    constexpr GLsizeiptr kRange = 256, kSize = kRange * kInstances;
    constexpr GLbitfield kMapped = GL_MAP_WRITE_BIT | GL_MAP_PERSISTENT_BIT | GL_MAP_COHERENT_BIT;
    TheScene().Frame();
    GLuint buffer = 0;
    glCreateBuffers(1, &buffer);
    glNamedBufferStorage(buffer, kSize, nullptr, kMapped);
    auto* const memory = static_cast<char*>(glMapNamedBufferRange(buffer, 0, kSize, kMapped));
    D3DXMATRIX world = kIdentityMatrix;
    for (auto _ : state) {
        for (int i = 0; i < kInstances; ++i) {
            world.m[3][0] = static_cast<float>(i);
            std::memcpy(memory + i * kRange, &world, sizeof world);
            glBindBufferRange(GL_UNIFORM_BUFFER, kBinding, buffer, i * kRange, sizeof world);
            glDrawElements(GL_TRIANGLES, 3 * kFaces, GL_UNSIGNED_SHORT, nullptr);
        }
        glFinish();
    }
    glDeleteBuffers(1, &buffer);
    CountInstances(state);
}

BENCHMARK(MeshInstances)->Unit(benchmark::kMillisecond);
BENCHMARK(MeshInstancesWithoutDraws)->Unit(benchmark::kMillisecond);
BENCHMARK(BareDraws)->Unit(benchmark::kMillisecond);

}   // namespace
}   // namespace sparkrig
