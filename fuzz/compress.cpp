// The first byte chooses: every algorithm gives back what it was given, and any bytes decode or are reported.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "base/compress.h"
#include "base/log.h"

using namespace sparkrig;

namespace {

void CheckRoundTrip(int algorithm, int record_size, const std::uint8_t* data, int size) {
    CCompress compress;
    compress.SetMode(algorithm, record_size);
    ByteBuffer stream, back;
    const int length = compress.Compress(data, size, stream);
    if (compress.Decompress(stream.data(), length, back) != size) std::abort();
    if (size > 0 && std::memcmp(back.data(), data, static_cast<std::size_t>(size)) != 0) std::abort();
}

void Decode(const std::uint8_t* stream, int size) {
    ByteBuffer data;
    const int length = CCompress().Decompress(stream, size, data);
    if (static_cast<std::size_t>(length) != data.size()) std::abort();
}

}   // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    SilenceLog();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const int choice = data[0] % 16, record_size = data[0] / 16 + 1;
    try {
        if (choice <= 8)
            CheckRoundTrip(choice, record_size, data + 1, static_cast<int>(size) - 1);
        else
            Decode(data + 1, static_cast<int>(size) - 1);
    } catch (const ErrorMsg&) {
        if (choice <= 8) std::abort();   // what was packed a moment ago must unpack
    }
    return 0;
}
