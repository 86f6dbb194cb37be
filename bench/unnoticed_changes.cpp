// Prints which share of the one-byte changes of a packed stream pass unnoticed, kind by kind: every byte of small
// streams, every other value.
#include <cstdio>
#include <string>

#include "base/compress.h"
#include "base/log.h"
#include "base/random.h"

namespace {

using namespace sparkrig;

struct Counts {
    int changes = 0, same = 0, other = 0;   // that decode: to the data, to something else
};

/// Words, runs, a picture's bytes and next to nothing.
std::vector<std::string> SmallContents() {
    std::string runs, picture;
    for (int i = 0; i < 96; ++i) runs += std::string(i % 3 == 0 ? 12 : 1, static_cast<char>(i * 7));
    for (int i = 0; i < 300; ++i) picture += static_cast<char>(i % 4 == 3 ? 255 : i * i % 251);
    return {"Effect\n{\n\tName = \"campfire\"\n\tLife = 0.5\n\tCount = 40\n\tFadeIn = 0.1\n\tFadeOut = 0.25\n}\n", runs,
            picture, "x"};
}

void CountChange(const ByteBuffer& stream, const std::string& content, Counts& counts) {
    ++counts.changes;
    try {
        ByteBuffer out;
        CCompress().Decompress(stream.data(), static_cast<int>(stream.size()), out);
        ++(std::string(out.begin(), out.end()) == content ? counts.same : counts.other);
    } catch (const ErrorMsg&) {   // noticed
    }
}

Counts CountChanges(int algorithm) {
    Counts counts;
    for (const std::string& content : SmallContents()) {
        CCompress compress;
        compress.SetMode(algorithm, 4);
        ByteBuffer stream;
        compress.Compress(reinterpret_cast<const std::uint8_t*>(content.data()), static_cast<int>(content.size()),
                          stream);
        for (std::uint8_t& byte : stream) {
            const std::uint8_t before = byte;
            while (++byte != before) CountChange(stream, content, counts);
        }
    }
    return counts;
}

}   // namespace

int main() {
    SilenceLog();
    SeedRandom(1);
    std::printf("kind  changes  unnoticed: the data  other data\n");
    for (int algorithm = 0; algorithm <= 8; ++algorithm) {
        const Counts counts = CountChanges(algorithm);
        std::printf("%4i  %7i  %18.2f%%  %9.2f%%\n", algorithm, counts.changes, 100.0 * counts.same / counts.changes,
                    100.0 * counts.other / counts.changes);
    }
}
