#include "base/compress.h"

#include <lzma.h>

#include "base/little_endian.h"
#include "base/random.h"
#include "base/scramble.h"
#include "tests/support/test.h"

namespace sparkrig {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes Packed(int algorithm, const Bytes& data, int record_size = 4) {
    CCompress compress;
    compress.SetMode(algorithm, record_size);
    ByteBuffer out;
    const int length = compress.Compress(data.data(), static_cast<int>(data.size()), out);
    EXPECT_EQ(length, static_cast<int>(out.size()));
    return {out.begin(), out.end()};
}

Bytes Unpacked(const Bytes& stream) {
    ByteBuffer out;
    const int length = CCompress().Decompress(stream.data(), static_cast<int>(stream.size()), out);
    EXPECT_EQ(length, static_cast<int>(out.size()));
    return {out.begin(), out.end()};
}

std::string UnpackError(const Bytes& stream) {
    return ErrorOf([&] { Unpacked(stream); });
}

Bytes Join(const std::vector<Bytes>& parts) {
    Bytes all;
    for (const Bytes& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}
Bytes Repeated(const Bytes& piece, std::size_t times) { return Join(std::vector<Bytes>(times, piece)); }
Bytes Int32(std::uint32_t value) {
    Bytes bytes(4);
    StoreLittleEndian(value, bytes.data());
    return bytes;
}

/// Long runs, short runs, noise and markers in turn.
Bytes Mixed(std::size_t size, std::uint32_t seed) {
    SeedRandom(seed);
    Bytes data;
    while (data.size() < size) {
        const std::uint32_t draw = RandomUInt32();
        const Bytes record = draw % 5 == 0 ? Bytes{10, 11, 12, 13} : Int32(draw % 7 == 0 ? draw : draw & 0x01010101);
        const Bytes run = Repeated(record, draw % 16 == 0 ? (draw >> 8) % 700 : 1);
        data.insert(data.end(), run.begin(), run.end());
    }
    data.resize(size);
    return data;
}

const Bytes kA = {1, 2, 3, 4}, kB = {5, 6, 7, 8}, kMarker = {10, 11, 12, 13};

TEST(Compress, EveryAlgorithmGivesItsDataBackAndReportsWhatIsCut) {
    for (int algorithm = 0; algorithm <= 8; ++algorithm) {
        for (const std::size_t size : {0u, 1u, 3u, 4u, 5u, 127u, 4096u, 70001u}) {
            const Bytes data = Mixed(size, 17), stream = Packed(algorithm, data);
            ASSERT_EQ(Unpacked(stream), data) << algorithm << " " << size;
            const int first = algorithm < 2 ? algorithm : algorithm < 5 ? 2 : algorithm < 8 ? 66 : 8;
            EXPECT_EQ(stream[0], first);
            EXPECT_EQ(LoadLittleEndian<std::uint32_t>(&stream[1]), size);
        }
        const Bytes data = Mixed(3000, 29), stream = Packed(algorithm, data);
        const bool lzma = algorithm >= 2 && algorithm <= 7;
        const bool tells_its_end = algorithm != 1 && (algorithm < 5 || algorithm == 8);
        EXPECT_TRUE(!tells_its_end || Unpacked(Join({stream, kMarker, kA})) == data) << algorithm;
        // An LZMA stream holds all its data some bytes before its end marker ends.
        for (std::size_t length = 0; length < stream.size() - (lzma ? 12 : 0); ++length)
            ASSERT_NE(UnpackError(Bytes(stream.begin(), stream.begin() + static_cast<std::ptrdiff_t>(length))),
                      "no error")
                << algorithm << " " << length;
    }
    const Bytes data = Mixed(3001, 23);
    for (int record_size = 1; record_size <= 255; ++record_size)
        ASSERT_EQ(Unpacked(Packed(1, data, record_size)), data) << record_size;
}

TEST(Compress, CodesRunsAsDescribed) {
    const std::pair<Bytes, Bytes> kRows[] = {
        {Join({kA, kA, kB}), Join({kA, kA, kB})},   // two are no run
        {Repeated(kA, 3), Join({kMarker, {3}, kA})},
        {kMarker, Join({kMarker, {1}, kMarker})},
        {Repeated(kA, 1000), Join({Repeated(Join({kMarker, {255}, kA}), 3), kMarker, {235}, kA})},
        {Repeated(kA, 255), Join({kMarker, {255}, kA})},
        {Join({kB, {9, 9}}), Join({kB, {9, 9}})}};
    for (const auto& [data, coded] : kRows)
        EXPECT_EQ(Packed(1, data), Join({{1}, Int32(static_cast<std::uint32_t>(data.size())), {4}, coded}));
}

TEST(Compress, ReportsStreamsItCannotRead) {
    const std::pair<Bytes, std::string> kRows[] = {
        {{}, "Invalid input buffer"},
        {{0}, "Invalid input buffer"},
        {{9, 0}, "Unknown compression algorithm: 9"},
        {{69, 0, 0, 0, 0, 0}, "Unknown compression algorithm: 69"},
        {{0xFF, 0}, "Unknown compression algorithm: -1"},
        {{0, 4, 0}, "End of read buffer"},
        {{0, 4, 0, 0, 0, 7}, "Buffer end validation failed"},
        {{1, 4, 0, 0, 0}, "End of read buffer"},
        {{1, 4, 0, 0, 0, 0, 1, 2, 3, 4}, "Invalid record size: 0"},
        {{1, 0xFE, 0xFF, 0xFF, 0xFF, 4, 1, 2, 3, 4}, "Invalid data length: -2"},
        {{1, 255, 255, 255, 127, 4, 1, 2, 3, 4}, "Buffer end validation failed"},
        {{1, 4, 0, 0, 0, 4, 1, 2, 3, 4, 9}, "Buffer end validation failed"},
        {{1, 4, 0, 0, 0, 4, 1, 2, 3, 4, 10, 11, 12, 13, 3, 1, 2, 3, 4}, "Write buffer full"},
        {{1, 8, 0, 0, 0, 4, 10, 11, 12, 13, 3, 1, 2, 3, 4}, "Write buffer full"},
        {{1, 12, 0, 0, 0, 4, 10, 11, 12, 13, 3, 1, 2, 3}, "End of read buffer"},
        {{8, 0, 0, 0, 0, 2}, "Unknown encryption version: 2"},
        {{8, 0}, "Unknown encryption version: 0"},
        {{8, 1, 0, 0, 0, 3, 0, 0, 0, 0, 7}, "Unknown encryption version: 3"},
        {{8, 2, 0, 0, 0, 2, 0, 0, 0, 0, 7}, "End of read buffer"},
        {{8, 1, 0, 0, 0, 1, 0, 0, 0, 0, 7}, "Checksum error"},
        {{66, 1, 0, 0, 0, 7, 7, 7, 7, 1, 2, 3, 4, 0, 0, 0, 0}, "Checksum error!"},
        {{66, 1, 0, 0, 0, 7, 7, 7}, "End of read buffer"},
        {{2, 1, 0, 0, 0, 93, 0, 0, 1}, "End of read buffer"},
        {{2, 1, 0, 0, 0, 93, 0, 0, 1, 0, 2, 0, 0, 0}, "Invalid length in LZMA data: 2"},
        {{2, 1, 0, 0, 0, 255, 0, 0, 1, 0, 1, 0, 0, 0}, "Invalid LZMA data: its properties are not supported"},
        {{2, 1, 0, 0, 0, 93, 0, 0, 1, 0, 1, 0, 0, 0}, "Invalid LZMA data: it is cut short"}};
    for (const auto& [stream, error] : kRows) EXPECT_EQ(UnpackError(stream), "CCompress: " + error);
    // a run of none gives nothing
    EXPECT_EQ(Unpacked(Join({{1}, Int32(4), {4}, kMarker, {0}, kB, kA})), kA);
}

TEST(Compress, ReportsWhatItCannotPack) {
    CCompress compress;
    ByteBuffer out;
    for (const int algorithm : {-1, 9}) {
        compress.SetMode(algorithm, 4);
        EXPECT_EQ(compress.Compress(kA.data(), 4, out), -1);
    }
    compress.SetMode(2, 4);
    EXPECT_EQ(ErrorOf([&] { compress.Compress(kA.data(), -3, out); }), "CCompress: Invalid data length: -3");
    for (const int record_size : {0, 256}) {
        compress.SetMode(1, record_size);
        EXPECT_EQ(ErrorOf([&] { compress.Compress(kA.data(), 4, out); }),
                  "CCompress: Invalid record size: " + std::to_string(record_size));
    }
    struct Checked : CCompress {
        using CCompress::CheckCodedBytes;
    };
    EXPECT_EQ(ErrorOf([] { Checked().CheckCodedBytes(7, 8); }), "CCompress: Invalid number of bytes written");
}

TEST(Scrambling, FollowsTheGenerator) {
    const Bytes plain = Mixed(4 * 40 + 3, 37);
    Bytes data = plain;
    const std::uint32_t check = ScrambleWithGenerator(data.data(), data.size(), 99);
    SeedRandom(99);
    const std::uint32_t first = RandomUInt32(), second = RandomUInt32(), tail = RandomUInt32();
    std::uint32_t sum = 0;
    for (int i = 0; i < 40; ++i) {
        const std::uint32_t draw = i < 32 ? first : second;
        const int turn = i % 32;
        const std::uint32_t key = (turn ? draw << turn | draw >> (32 - turn) : draw) ^ 0x5E17C3A9u;
        ASSERT_EQ(LoadLittleEndian<std::uint32_t>(&data[4u * i]),
                  LoadLittleEndian<std::uint32_t>(&plain[4u * i]) ^ key);
        sum ^= key;
    }
    for (int i = 0; i < 3; ++i) EXPECT_EQ(data[160u + i], plain[160u + i] ^ ((tail >> (8 * i)) & 255));
    EXPECT_EQ(check, sum);
    EXPECT_EQ(ScrambleWithGenerator(data.data(), data.size(), 99), check);
    EXPECT_EQ(data, plain);
}

TEST(Scrambling, SeedsTheProcessGenerator) {
    SeedRandom(5);
    const std::uint32_t seed = RandomUInt32();
    SeedRandom(5);
    const Bytes stream = Packed(6, kA);
    EXPECT_EQ(LoadLittleEndian<std::uint32_t>(&stream[5]), seed);
    const std::uint32_t after_packing = RandomUInt32();
    Unpacked(stream);
    EXPECT_EQ(RandomUInt32(), after_packing);
}

TEST(Scrambling, ReadsBothVersionsOfTheKey) {
    const Bytes plain = Mixed(103, 41);
    EXPECT_NE(MakeScrambleKey(2, 103).words[3], MakeScrambleKey(2, 104).words[3]);
    for (const int version : {1, 2}) {
        Bytes data = plain;
        const ScrambleKey key = MakeScrambleKey(version, 103);
        ScrambleWithKey(data.data(), data.size(), key);
        const std::uint32_t word = LoadLittleEndian<std::uint32_t>(&plain[4 * 9]) ^ (key.words[1] + 81);
        EXPECT_EQ(LoadLittleEndian<std::uint32_t>(&data[4 * 9]), word);
        EXPECT_EQ(data[102], plain[102] ^ ((key.words[4] >> 16) & 255));   // 4 times 25 words, modulo 8
        const Bytes head = Join({{8}, Int32(103), {static_cast<std::uint8_t>(version)}});
        const Bytes stream = Join({head, Int32(ScrambleCheck(plain.data(), plain.size())), data});
        EXPECT_EQ(Unpacked(stream), plain);
        EXPECT_TRUE(version == 1 || Packed(8, plain) == stream);
    }
    EXPECT_EQ(ScrambleCheck(Join({kA, kB, {0x55, 0x0F}}).data(), 10), 0x04030201u ^ 0x08070605u ^ 0x5Au);
}

// ---- The LZMA streams beside the library that makes them, called directly

/// The properties, and the data coded with them, as another coder would write them; with or without an end marker.
Bytes EncodeElsewhere(const Bytes& data, lzma_options_lzma options, bool end_marker) {
    const lzma_filter raw[] = {{LZMA_FILTER_LZMA1, &options}, {LZMA_VLI_UNKNOWN, nullptr}};
    options.ext_flags = 0;
    options.ext_size_low = static_cast<std::uint32_t>(data.size());
    options.ext_size_high = 0;
    const lzma_filter known_size[] = {{LZMA_FILTER_LZMA1EXT, &options}, {LZMA_VLI_UNKNOWN, nullptr}};
    Bytes coded(data.size() * 2 + 1000);
    std::size_t used = 9;
    EXPECT_EQ(lzma_properties_encode(raw, coded.data()), LZMA_OK);
    StoreLittleEndian(static_cast<std::uint32_t>(data.size()), coded.data() + 5);
    EXPECT_EQ(lzma_raw_buffer_encode(end_marker ? raw : known_size, nullptr, data.data(), data.size(), coded.data(),
                                     &used, coded.size()),
              LZMA_OK);
    coded.resize(used);
    return coded;
}

lzma_options_lzma Preset(std::uint32_t preset, std::uint32_t dictionary) {
    lzma_options_lzma options{};
    lzma_lzma_preset(&options, preset);
    options.dict_size = dictionary;
    return options;
}

TEST(LzmaStream, IsThatOfTheLibraryWithItsOptionsAndOfAnotherCoderIsRead) {
    const Bytes data = Mixed(70001, 47);
    for (const int algorithm : {2, 3, 4}) {
        lzma_options_lzma options = Preset(0, algorithm == 3 ? 1u << 16 : 1u << 23);
        options.mode = algorithm == 4 ? LZMA_MODE_NORMAL : LZMA_MODE_FAST;
        options.nice_len = algorithm == 2 ? 32 : algorithm == 3 ? 5 : 128;
        options.mf = algorithm == 4 ? LZMA_MF_BT4 : LZMA_MF_HC4;
        options.depth = algorithm == 2 ? 32 : algorithm == 3 ? 18 : 80;
        EXPECT_EQ(Packed(algorithm, data), Join({{2}, Int32(70001), EncodeElsewhere(data, options, true)}))
            << algorithm;
    }
    lzma_options_lzma unusual = Preset(9, 1u << 20);
    unusual.lc = 1;
    unusual.lp = 2;
    unusual.pb = 3;
    for (const lzma_options_lzma& options : {Preset(0, 1u << 18), Preset(6, 1u << 26), unusual})
        for (const bool end_marker : {true, false})
            EXPECT_EQ(Unpacked(Join({{2}, Int32(70001), EncodeElsewhere(data, options, end_marker)})), data);
}

TEST(LzmaStream, OfMoreThanTheFirstDictionaryIsRead) {
    Bytes data = Mixed(1 << 18, 53);   // comes again after 17 MiB, out of reach of 16 MiB
    const Bytes again = data;
    data.resize(17 << 20);
    data.insert(data.end(), again.begin(), again.end());
    const Bytes stream =
        Join({{2}, Int32(static_cast<std::uint32_t>(data.size())), EncodeElsewhere(data, Preset(1, 1u << 25), true)});
    EXPECT_TRUE(Unpacked(stream) == data);
}

TEST(LzmaStream, ThatDoesNotHoldWhatItClaimsIsReported) {
    const Bytes data = Mixed(5000, 59);
    Bytes coded = EncodeElsewhere(data, Preset(6, 1u << 16), true);
    StoreLittleEndian(0xFFFFFFFFu, coded.data() + 1);   // the largest dictionary there is
    StoreLittleEndian(0x7FFFFFFF, coded.data() + 5);
    EXPECT_EQ(UnpackError(Join({{2}, Int32(0x7FFFFFFF), coded})), "CCompress: Invalid LZMA data: it is corrupt");
    Bytes corrupt = Packed(2, data);
    corrupt[14] = 0xFF;   // the first coded byte is always 0
    EXPECT_EQ(UnpackError(corrupt), "CCompress: Invalid LZMA data: it is corrupt");
}

}   // namespace
}   // namespace sparkrig
