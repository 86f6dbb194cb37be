// Any bytes as a command line: words are read, options found or refused, numbers taken within their ranges.
#include <cstdlib>
#include <string>

#include "app/options.h"
#include "base/string.h"

using namespace sparkrig;

namespace {

void Require(bool holds) {
    if (!holds) std::abort();
}

std::vector<std::string> SplitAtZeros(const std::uint8_t* data, std::size_t size) {
    std::vector<std::string> words(1);
    for (std::size_t i = 0; i < size; ++i) {
        if (data[i] == 0) {
            words.emplace_back();
        } else {
            words.back() += static_cast<char>(data[i]);
        }
    }
    return words;
}

void CheckWords(const std::string& line) {
    const char* text = line.c_str();
    const int count = CountWords(text);
    for (int i = 0; i < count; ++i) {
        const char* word = GetWord(text, i);
        Require(word && WordLength(word) > 0);
    }
    Require(GetWord(text, count) == nullptr);
    HasOption(text, "/full");
    int value = 0;
    GetOptionValue(text, "/resx", &value);
}

}   // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const ParsedCommandLine parsed = ParseCommandLine(SplitAtZeros(data, size));
    if (parsed.exit_code) {
        Require(!parsed.text.empty());
    } else {
        Require(parsed.options.frames >= 1 && parsed.options.frames <= 1'000'000);
        Require(parsed.options.at_seconds >= 0 && parsed.options.at_seconds <= 3600);
        CheckWords(parsed.options.command_line);
    }
    return 0;
}
