// The foundation's hot paths, each beside the limit that it is compared with.
#include <benchmark/benchmark.h>
#include <lzma.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <numeric>
#include <string>
#include <unordered_map>
#include <vector>

#include "base/compress.h"
#include "base/compress_buffers.h"
#include "base/config_file_reader.h"
#include "base/dyna_mem.h"
#include "base/lzma_coder.h"
#include "base/random.h"
#include "base/scramble.h"
#include "base/search_tree.h"
#include "platform/system/ascii.h"

using namespace sparkrig;

namespace {

constexpr std::size_t kBytes = 16 << 20;

void SetBytes(benchmark::State& state, std::size_t bytes) {
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(bytes));
}

// ---- Run-length coding of 16 MB of 4-byte records

enum Kind { kNoise, kLongRuns };

ByteBuffer Records(Kind kind) {
    ByteBuffer data(kBytes);
    SeedRandom(7);
    std::uint32_t record = 0;
    for (std::size_t i = 0; i < kBytes; i += 4) {
        if (kind == kNoise || i % 4000 == 0) record = RandomUInt32();
        StoreLittleEndian(record, data.data() + i);
    }
    return data;
}

void CopyRecords(benchmark::State& state) {   // the limit
    const ByteBuffer data = Records(static_cast<Kind>(state.range(0)));
    ByteBuffer copy(kBytes);
    for (auto _ : state) {
        std::memcpy(copy.data(), data.data(), kBytes);
        benchmark::ClobberMemory();
    }
    SetBytes(state, kBytes);
}

void EncodeRecords(benchmark::State& state) {
    const ByteBuffer data = Records(static_cast<Kind>(state.range(0)));
    ByteBuffer stream;
    CCompress compress;
    compress.SetMode(1, 4);
    for (auto _ : state) compress.Compress(data.data(), kBytes, stream);
    SetBytes(state, kBytes);
}

void DecodeRecords(benchmark::State& state) {
    const ByteBuffer data = Records(static_cast<Kind>(state.range(0)));
    ByteBuffer stream, back;
    CCompress compress;
    compress.SetMode(1, 4);
    const int length = compress.Compress(data.data(), kBytes, stream);
    for (auto _ : state) compress.Decompress(stream.data(), length, back);
    SetBytes(state, kBytes);
}

BENCHMARK(CopyRecords)->ArgName("runs")->Arg(kNoise);
BENCHMARK(EncodeRecords)->ArgName("runs")->Arg(kNoise)->Arg(kLongRuns);
BENCHMARK(DecodeRecords)->ArgName("runs")->Arg(kNoise)->Arg(kLongRuns);

// ---- Scrambling, in place

void ScrambleAsAlgorithms5To7(benchmark::State& state) {
    ByteBuffer data = Records(kNoise);
    for (auto _ : state) benchmark::DoNotOptimize(ScrambleWithGenerator(data.data(), kBytes, 99));
    SetBytes(state, kBytes);
}

void ScrambleAsAlgorithm8(benchmark::State& state) {
    ByteBuffer data = Records(kNoise);
    const ScrambleKey key = MakeScrambleKey(2, kBytes);
    for (auto _ : state) {
        benchmark::DoNotOptimize(ScrambleCheck(data.data(), kBytes));
        ScrambleWithKey(data.data(), kBytes, key);
    }
    SetBytes(state, kBytes);
}

BENCHMARK(ScrambleAsAlgorithms5To7);
BENCHMARK(ScrambleAsAlgorithm8);

// ---- LZMA beside the library called bare

/// Text-like data: words of a small vocabulary.
ByteBuffer Text() {
    ByteBuffer text;
    SeedRandom(11);
    while (text.size() < 2u << 20) {
        const std::uint32_t word = RandomUInt32() % 4000;
        for (std::uint32_t i = 0, x = word * 2654435761u; i < 2 + word % 9; ++i, x = x * 69069 + 1)
            text.push_back(static_cast<std::uint8_t>('a' + (x >> 28)));
        text.push_back(' ');
    }
    return text;
}

lzma_options_lzma BareOptions(std::int64_t setting) {
    lzma_options_lzma options{};
    lzma_lzma_preset(&options, 6);
    options.dict_size = setting == 1 ? 1u << 16 : 1u << 23;
    options.mode = setting == 2 ? LZMA_MODE_NORMAL : LZMA_MODE_FAST;
    options.nice_len = setting == 0 ? 32 : setting == 1 ? 5 : 128;
    options.mf = setting == 2 ? LZMA_MF_BT4 : LZMA_MF_HC4;
    options.depth = setting == 0 ? 32 : setting == 1 ? 18 : 80;
    return options;
}

void EncodeBareLzma(benchmark::State& state) {   // the limit
    const ByteBuffer text = Text();
    lzma_options_lzma options = BareOptions(state.range(0));
    const lzma_filter filters[] = {{LZMA_FILTER_LZMA1, &options}, {LZMA_VLI_UNKNOWN, nullptr}};
    ByteBuffer coded(text.size());
    for (auto _ : state) {
        std::size_t used = 0;
        lzma_raw_buffer_encode(filters, nullptr, text.data(), text.size(), coded.data(), &used, coded.size());
    }
    SetBytes(state, text.size());
}

void EncodeLzma(benchmark::State& state) {
    const ByteBuffer text = Text();
    CCompress compress;
    compress.SetMode(static_cast<int>(state.range(0)) + 2, 4);
    ByteBuffer stream;
    for (auto _ : state) compress.Compress(text.data(), static_cast<int>(text.size()), stream);
    SetBytes(state, text.size());
}

void DecodeBareLzma(benchmark::State& state) {   // the limit
    ByteBuffer text = Text();
    lzma_options_lzma options = BareOptions(state.range(0));
    const lzma_filter filters[] = {{LZMA_FILTER_LZMA1, &options}, {LZMA_VLI_UNKNOWN, nullptr}};
    ByteBuffer coded(text.size());
    std::size_t size = 0;
    lzma_raw_buffer_encode(filters, nullptr, text.data(), text.size(), coded.data(), &size, coded.size());
    for (auto _ : state) {
        std::size_t in = 0, out = 0;
        lzma_raw_buffer_decode(filters, nullptr, coded.data(), &in, size, text.data(), &out, text.size());
    }
    SetBytes(state, text.size());
}

void DecodeLzma(benchmark::State& state) {
    const ByteBuffer text = Text();
    CCompress compress;
    compress.SetMode(static_cast<int>(state.range(0)) + 2, 4);
    ByteBuffer stream, back;
    const int length = compress.Compress(text.data(), static_cast<int>(text.size()), stream);
    for (auto _ : state) compress.Decompress(stream.data(), length, back);
    SetBytes(state, text.size());
}

BENCHMARK(EncodeBareLzma)->ArgName("setting")->DenseRange(0, 2)->Unit(benchmark::kMillisecond);
BENCHMARK(EncodeLzma)->ArgName("setting")->DenseRange(0, 2)->Unit(benchmark::kMillisecond);
BENCHMARK(DecodeBareLzma)->ArgName("setting")->DenseRange(0, 2)->Unit(benchmark::kMillisecond);
BENCHMARK(DecodeLzma)->ArgName("setting")->DenseRange(0, 2)->Unit(benchmark::kMillisecond);

// ---- Lookup by name, all names with the same first letter

std::vector<std::string> Names(std::int64_t count) {
    std::vector<std::string> names;
    for (std::int64_t i = 0; i < count; ++i) names.push_back("spark_Effect_" + std::to_string(i * 7919));
    return names;
}

/// The same names in another order and letter case, so that a lookup neither follows memory nor finds equal bytes.
std::vector<std::string> Questions(std::vector<std::string> names) {
    SeedRandom(13);
    for (std::size_t i = names.size(); i > 1; --i) std::swap(names[i - 1], names[RandomUInt32() % i]);
    for (std::string& name : names) std::transform(name.begin(), name.end(), name.begin(), AsciiUpper);
    return names;
}

struct FoldedHash {
    std::size_t operator()(const std::string& name) const {
        std::string folded = name;
        std::transform(folded.begin(), folded.end(), folded.begin(), AsciiLower);
        return std::hash<std::string>()(folded);
    }
};
struct FoldedEqual {
    bool operator()(const std::string& a, const std::string& b) const {
        return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                          [](char x, char y) { return AsciiLower(x) == AsciiLower(y); });
    }
};

void FindInUnorderedMap(benchmark::State& state) {   // the limit
    std::unordered_map<std::string, int, FoldedHash, FoldedEqual> map;
    for (const std::string& name : Names(state.range(0))) map[name] = 1;
    const std::vector<std::string> questions = Questions(Names(state.range(0)));
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(map.find(questions[i])->second);
        i = i + 1 == questions.size() ? 0 : i + 1;
    }
}

void FindInSearchTree(benchmark::State& state) {
    SearchTree<int> tree;
    for (const std::string& name : Names(state.range(0))) *tree.Insert(name.c_str()) = 1;
    const std::vector<std::string> questions = Questions(Names(state.range(0)));
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(*tree.Find(questions[i].c_str()));
        i = i + 1 == questions.size() ? 0 : i + 1;
    }
}

void FillUnorderedMap(benchmark::State& state) {   // the limit
    const std::vector<std::string> names = Names(state.range(0));
    for (auto _ : state) {
        std::unordered_map<std::string, int, FoldedHash, FoldedEqual> map;
        for (const std::string& name : names) map[name] = 1;
    }
}

void FillSearchTree(benchmark::State& state) {
    const std::vector<std::string> names = Names(state.range(0));
    for (auto _ : state) {
        SearchTree<int> tree;
        for (const std::string& name : names) *tree.Insert(name.c_str()) = 1;
    }
}

BENCHMARK(FindInUnorderedMap)->ArgName("names")->Arg(100)->Arg(10'000)->Arg(100'000);
BENCHMARK(FindInSearchTree)->ArgName("names")->Arg(100)->Arg(10'000)->Arg(100'000);
BENCHMARK(FillUnorderedMap)->ArgName("names")->Arg(10'000);
BENCHMARK(FillSearchTree)->ArgName("names")->Arg(10'000);

// ---- 100 000 records that come, are walked, and go

constexpr int kRecords = 100'000;

struct Record {
    double values[8] = {};
};

void AddToVector(benchmark::State& state) {   // the limit
    for (auto _ : state) {
        std::vector<std::unique_ptr<Record>> list;
        for (int i = 0; i < kRecords; ++i) list.push_back(std::make_unique<Record>());
        benchmark::ClobberMemory();
    }
}

void AddToDynaMem(benchmark::State& state) {
    for (auto _ : state) {
        DynaMem<Record, 1024> list;
        for (int i = 0; i < kRecords; ++i) list.AddNew();
        benchmark::ClobberMemory();
    }
}

void IterateVector(benchmark::State& state) {   // the limit
    std::vector<std::unique_ptr<Record>> list;
    for (int i = 0; i < kRecords; ++i) list.push_back(std::make_unique<Record>());
    for (auto _ : state) {
        double sum = 0;
        for (const auto& record : list) sum += record->values[3];
        benchmark::DoNotOptimize(sum);
    }
}

void IterateDynaMem(benchmark::State& state) {
    DynaMem<Record, 1024> list;
    for (int i = 0; i < kRecords; ++i) list.AddNew();
    for (auto _ : state) {
        double sum = 0;
        list.ResetIteration();
        while (const Record* record = list.GetNext()) sum += record->values[3];
        benchmark::DoNotOptimize(sum);
    }
}

/// Half of the records, every second one, is deleted and added again.
void ReplaceInVector(benchmark::State& state) {   // the limit
    std::vector<std::unique_ptr<Record>> list;
    for (int i = 0; i < kRecords; ++i) list.push_back(std::make_unique<Record>());
    for (auto _ : state) {
        for (std::size_t i = 0; i < kRecords; i += 2) list[i].reset();
        for (std::size_t i = 0; i < kRecords; i += 2) list[i] = std::make_unique<Record>();
        benchmark::ClobberMemory();
    }
}

void ReplaceInDynaMem(benchmark::State& state) {
    DynaMem<Record, 1024> list;
    for (int i = 0; i < kRecords; ++i) list.AddNew();
    for (auto _ : state) {
        for (int i = 0; i < kRecords; i += 2) list.Delete(i);
        for (int i = 0; i < kRecords; i += 2) list.AddNew();
        benchmark::ClobberMemory();
    }
}

BENCHMARK(AddToVector)->Unit(benchmark::kMicrosecond);
BENCHMARK(AddToDynaMem)->Unit(benchmark::kMicrosecond);
BENCHMARK(IterateVector)->Unit(benchmark::kMicrosecond);
BENCHMARK(IterateDynaMem)->Unit(benchmark::kMicrosecond);
BENCHMARK(ReplaceInVector)->Unit(benchmark::kMicrosecond);
BENCHMARK(ReplaceInDynaMem)->Unit(benchmark::kMicrosecond);

// ---- A 10 MB effects file

/// Written once; removed at the end of the process.
const char* EffectsFile() {
    struct TemporaryFile {
        std::string name = (std::filesystem::temp_directory_path() / "bench_base.cfg").string();
        TemporaryFile() {
            std::FILE* file = std::fopen(name.c_str(), "wb");
            for (int i = 0; std::ftell(file) < 10'000'000; ++i)
                std::fprintf(file,
                             "#Effect%i\r\ndesc = \"effect%i\"\r\nscale = 1,1,1\r\n\r\nPARTICLE {\r\n"
                             "\ttexture = \"spark%i\"\r\n\tLife = 2.5\r\n\tCount = 20\r\n\tBlendType = \"additive\"\r\n"
                             "\tPOSITION {\r\n\t\ttype = \"linear\"\r\n\t\tscale = 0,0,%i\r\n\t}\r\n"
                             "\tALPHA {\r\n\t\ttype = \"sin\"\r\n\t\tspeed = 0.5\r\n\t}\r\n}\r\n\r\n",
                             i, i, i % 20, i % 300);
            std::fclose(file);
        }
        ~TemporaryFile() { std::filesystem::remove(name); }
    };
    static const TemporaryFile file;
    return file.name.c_str();
}

void ReadAndCountLines(benchmark::State& state) {   // the limit
    for (auto _ : state) {
        std::FILE* file = std::fopen(EffectsFile(), "rb");
        std::fseek(file, 0, SEEK_END);
        ByteBuffer content(static_cast<std::size_t>(std::ftell(file)));
        std::rewind(file);
        if (std::fread(content.data(), 1, content.size(), file) != content.size()) state.SkipWithError("cut short");
        std::fclose(file);
        benchmark::DoNotOptimize(std::count(content.begin(), content.end(), '\n'));
    }
}

void LoadBlocks(benchmark::State& state) {
    ConfigFileReader reader;
    reader.SetIndexKey("desc");
    for (auto _ : state)
        if (reader.Load(EffectsFile(), true) != 0) state.SkipWithError("not loaded");
}

/// What a loader does with it: every block and sub-block, forty keys in each, most of them not there.
void LoadAndReadBlocks(benchmark::State& state) {
    ConfigFileReader reader;
    reader.SetIndexKey("desc");
    for (auto _ : state) {
        reader.Load(EffectsFile(), true);
        double value = 0;
        char name[32];
        for (int b = 0; b < reader.GetBlockCount(); ++b) {
            reader.SelectBlock(b);
            while (reader.NextBlock(name, sizeof name)) {
                reader.EnterBlock();
                for (int key = 0; key < 38; ++key) reader.ReadNumber("missing", value, -1, key);
                reader.ReadNumber("Life", value);
                reader.ReadNumber("Count", value);
                reader.ExitBlock();
            }
        }
        benchmark::DoNotOptimize(value);
    }
}

BENCHMARK(ReadAndCountLines)->Unit(benchmark::kMillisecond);
BENCHMARK(LoadBlocks)->Unit(benchmark::kMillisecond);
BENCHMARK(LoadAndReadBlocks)->Unit(benchmark::kMillisecond);

}   // namespace
