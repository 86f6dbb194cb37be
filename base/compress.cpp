#include "base/compress.h"

#include <climits>

#include "base/compress_buffers.h"
#include "base/lzma_coder.h"
#include "base/random.h"
#include "base/run_length.h"
#include "base/scramble.h"

namespace sparkrig {
namespace {

constexpr std::uint8_t kStored = 0, kRunLength = 1, kLzma = 2, kScrambledOnly = 8;   // first bytes of a stream
constexpr std::uint8_t kScrambledFlag = 64, kAlgorithmMask = 63;
constexpr int kStrongestAlgorithm = 4, kLastLzmaAlgorithm = 7;
constexpr std::size_t kLengthHeader = 5;     // first byte and length
constexpr std::size_t kScrambleHeader = 8;   // seed and check word of scrambled LZMA data
constexpr std::size_t kScrambledOnlyHeader = 10;
constexpr int kWrittenVersion = 2;

void WriteHeader(OutputBytes& out, std::uint8_t first, std::size_t n) {
    out.WriteByte(first);
    out.WriteInt32(static_cast<std::int32_t>(n));
}

void AppendInt32(ByteBuffer& out, std::uint32_t value) {
    out.resize(out.size() + 4);
    StoreLittleEndian(value, out.data() + out.size() - 4);
}

}   // namespace

CCompress::CCompress() { SetName("CCompress"); }

void CCompress::SetMode(int algorithm, int record_size) {
    algorithm_ = algorithm;
    record_size_ = record_size;
}

// ---- Packing

int CCompress::Compress(const std::uint8_t* data, int n, ByteBuffer& out) {
    if (algorithm_ < 0 || algorithm_ > kScrambledOnly) return -1;
    if (n < 0) Error("Invalid data length: %i", n);
    const auto size = static_cast<std::size_t>(n);
    out.clear();
    if (algorithm_ == kRunLength) {
        CompressRuns(data, size, out);
    } else if (algorithm_ >= kLzma && algorithm_ <= kLastLzmaAlgorithm) {
        CompressLzma(data, size, out);
    } else {
        const bool scrambled = algorithm_ == kScrambledOnly;
        const std::size_t header = scrambled ? kScrambledOnlyHeader : kLengthHeader;
        OutputBytes bytes(*this, out, header + size, header + size);
        WriteHeader(bytes, static_cast<std::uint8_t>(algorithm_), size);
        if (scrambled) {
            bytes.WriteByte(kWrittenVersion);
            bytes.WriteInt32(static_cast<std::int32_t>(ScrambleCheck(data, size)));
        }
        bytes.Write(data, size);
        if (scrambled)
            ScrambleWithKey(out.data() + header, size, MakeScrambleKey(kWrittenVersion, static_cast<std::uint32_t>(n)));
    }
    if (out.size() > INT_MAX) Error("Write buffer full");
    return static_cast<int>(out.size());
}

void CCompress::CheckRecordSize(int record_size) const {
    if (record_size < 1 || record_size > kMaxRecordSize) Error("Invalid record size: %i", record_size);
}

void CCompress::CheckCodedBytes(std::size_t coded, std::size_t n) const {
    if (coded != n) Error("Invalid number of bytes written");
}

void CCompress::CompressRuns(const std::uint8_t* data, std::size_t n, ByteBuffer& out) const {
    CheckRecordSize(record_size_);
    const auto record_size = static_cast<std::size_t>(record_size_);
    OutputBytes bytes(*this, out, RunLengthCapacity(n, record_size), n + n / 16 + 64);
    WriteHeader(bytes, kRunLength, n);
    bytes.WriteByte(static_cast<std::uint8_t>(record_size_));
    CheckCodedBytes(EncodeRuns(data, n, record_size, bytes), n);
    bytes.Finish();
}

void CCompress::CompressLzma(const std::uint8_t* data, std::size_t n, ByteBuffer& out) const {
    const bool scrambled = algorithm_ > kStrongestAlgorithm;
    const auto setting = static_cast<LzmaSetting>((algorithm_ - kLzma) % 3);
    out.push_back(scrambled ? kLzma | kScrambledFlag : kLzma);
    AppendInt32(out, static_cast<std::uint32_t>(n));
    const std::size_t header = out.size() + (scrambled ? kScrambleHeader : 0);
    out.resize(header);
    AppendLzmaProperties(setting, out);
    AppendInt32(out, static_cast<std::uint32_t>(n));
    if (const char* fault = EncodeLzma(setting, data, n, out)) Error("LZMA data can not be made: %s", fault);
    if (!scrambled) return;
    const std::uint32_t seed = RandomUInt32();
    const std::uint32_t check = ScrambleWithGenerator(out.data() + header, out.size() - header, seed);
    StoreLittleEndian(seed, out.data() + kLengthHeader);
    StoreLittleEndian(check, out.data() + kLengthHeader + 4);
}

// ---- Unpacking

int CCompress::Decompress(const std::uint8_t* stream, int length, ByteBuffer& out) {
    if (length < 2) Error("Invalid input buffer");
    InputBytes in(*this, stream, static_cast<std::size_t>(length));
    const std::uint8_t first = in.TakeByte(), algorithm = first & kAlgorithmMask;
    if (algorithm > kStrongestAlgorithm && algorithm != kScrambledOnly)
        Error("Unknown compression algorithm: %i", static_cast<std::int8_t>(first));
    if (algorithm == kScrambledOnly && static_cast<std::size_t>(length) < kScrambledOnlyHeader)
        Error("Unknown encryption version: %i",
              static_cast<std::size_t>(length) > kLengthHeader ? stream[kLengthHeader] : 0);
    const std::int32_t n = in.TakeInt32();
    if (n < 0) Error("Invalid data length: %i", n);
    const auto size = static_cast<std::size_t>(n);
    switch (algorithm) {
        case kStored: DecodeStored(in, size, out); break;
        case kRunLength: DecodeRecords(in, size, out); break;
        case kScrambledOnly: DecodeScrambled(in, size, out); break;
        default: DecodeLzmaStream(in, (first & kScrambledFlag) != 0, size, out);
    }
    return n;
}

void CCompress::DecodeStored(InputBytes& in, std::size_t n, ByteBuffer& out) const {
    if (n > in.Left()) Error("Buffer end validation failed");
    const std::uint8_t* data = in.Take(n);
    out.assign(data, data + n);
}

void CCompress::DecodeRecords(InputBytes& in, std::size_t n, ByteBuffer& out) const {
    const int record_size = in.TakeByte();
    CheckRecordSize(record_size);
    OutputBytes bytes(*this, out, n, 2 * in.Left());
    DecodeRuns(in, static_cast<std::size_t>(record_size), bytes);
    if (in.Left() > 0 || bytes.Size() != n) Error("Buffer end validation failed");
    bytes.Finish();
}

void CCompress::DecodeLzmaStream(InputBytes& in, bool scrambled, std::size_t n, ByteBuffer& out) const {
    std::uint32_t seed = 0, check = 0;
    if (scrambled) {
        seed = static_cast<std::uint32_t>(in.TakeInt32());
        check = static_cast<std::uint32_t>(in.TakeInt32());
    }
    const std::size_t size = in.Left();
    const std::uint8_t* stream = in.Take(size);
    ByteBuffer plain;
    if (scrambled) {
        plain.assign(stream, stream + size);
        if (ScrambleWithGenerator(plain.data(), size, seed) != check) Error("Checksum error!");
        stream = plain.data();
    }
    InputBytes lzma(*this, stream, size);
    const std::uint8_t* properties = lzma.Take(kLzmaPropertyBytes);
    const std::int32_t second = lzma.TakeInt32();
    if (second != static_cast<std::int32_t>(n)) Error("Invalid length in LZMA data: %i", second);
    const std::size_t coded = lzma.Left();
    if (const char* fault = DecodeLzma(properties, lzma.Take(coded), coded, n, out))
        Error("Invalid LZMA data: %s", fault);
}

void CCompress::DecodeScrambled(InputBytes& in, std::size_t n, ByteBuffer& out) const {
    const int version = in.TakeByte();
    if (version != 1 && version != 2) Error("Unknown encryption version: %i", version);
    const auto check = static_cast<std::uint32_t>(in.TakeInt32());
    const std::uint8_t* data = in.Take(n);
    out.assign(data, data + n);
    ScrambleWithKey(out.data(), n, MakeScrambleKey(version, static_cast<std::uint32_t>(n)));
    if (ScrambleCheck(out.data(), n) != check) Error("Checksum error");
}

}   // namespace sparkrig
