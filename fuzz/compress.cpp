// The first byte chooses: every algorithm gives back what it was given, and any bytes decode or are reported.
#include "base/compress.h"
#include "fuzz/target.h"

namespace sparkrig {

ByteBuffer Decoded(Input stream) {
    ByteBuffer data;
    const int length = CCompress().Decompress(stream.data(), static_cast<int>(stream.size()), data);
    Require(static_cast<std::size_t>(length) == data.size());
    return data;
}

/// What was packed a moment ago must unpack.
void CheckRoundTrip(int algorithm, int record_size, Input data) noexcept {
    CCompress compress;
    compress.SetMode(algorithm, record_size);
    ByteBuffer stream;
    compress.Compress(data.data(), static_cast<int>(data.size()), stream);
    Require(std::ranges::equal(Decoded(stream), data));
}

void Try(Input input) {
    if (input.empty()) return;
    const int choice = input[0] % 16, record_size = input[0] / 16 + 1;
    if (choice <= 8)
        CheckRoundTrip(choice, record_size, input.subspan(1));
    else
        Decoded(input.subspan(1));
}

}   // namespace sparkrig
