// Loading a large effects file, beside reading it and counting its lines.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "effects/effects_file.h"

namespace sparkrig {
namespace {

constexpr std::size_t kBytes = 10'000'000;

struct BenchReporter : ErrorClass {};

/// Effects of three sub-effects with four stages each, as authors write them.
const std::string& File() {
    static const std::string name = [] {
        const std::string file = "/tmp/bench_effects_load.cfg";
        std::ofstream out(file, std::ios::binary);
        for (int number = 0; static_cast<std::size_t>(out.tellp()) < kBytes; ++number) {
            out << "#effect " << number << "\r\n  desc = \"" << static_cast<char>('a' + number % 26) << number
                << "\"\r\n\r\n  ; three layers\r\n";
            for (const char* texture : {"core", "glow", "smoke"}) {
                out << "  PARTICLE {\r\n    texture = \"" << texture
                    << "\"\r\n    BlendType = \"additive\"\r\n    WriteZBuf = 0\r\n    Count = 12\r\n"
                       "    CountType = \"random\"\r\n    Life = 2.5\r\n    FadeIn = 0.1\r\n    FadeOut = 0.8\r\n"
                       "    col = 1, 0.5, 0.16\r\n    BirthCountOff = 0.4\r\n"
                       "    POSITION {\r\n      type = \"randSphere\"\r\n      scale = 30, 30, 10\r\n    }\r\n"
                       "    POSITION {\r\n      type = \"linear\"\r\n      scale = 0, 0, 20\r\n    }\r\n"
                       "    SCALE {\r\n      type = \"bezier\"\r\n"
                       "      curve = 0, 1, 1, 1,  0.5, 4, 4, 4,  2.5, 9, 9, 9\r\n    }\r\n"
                       "    ROTATION {\r\n      type = \"linear\"\r\n      scale = 1.5, 0, 0\r\n    }\r\n  }\r\n";
            }
        }
        return file;
    }();
    return name;
}

void LoadEffects(benchmark::State& state) {
    BenchReporter reporter;
    int effects = 0;
    for (auto _ : state) {
        auto definitions = std::make_unique<EffectDefinitions>();
        LoadEffectsFile(File().c_str(), reporter, *definitions);
        effects = definitions->names.GetCount();
        state.PauseTiming();
        definitions.reset();
        state.ResumeTiming();
    }
    state.counters["effects"] = effects;
}

/// The limit: the bytes and their lines.
void ReadAndCountLines(benchmark::State& state) {
    for (auto _ : state) {
        std::vector<char> bytes(kBytes + kBytes / 10);
        std::FILE* file = std::fopen(File().c_str(), "rb");
        bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file));
        std::fclose(file);
        benchmark::DoNotOptimize(std::count(bytes.begin(), bytes.end(), '\n'));
    }
}

BENCHMARK(LoadEffects)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadAndCountLines)->Unit(benchmark::kMillisecond);

}   // namespace
}   // namespace sparkrig
