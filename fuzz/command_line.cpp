// Any bytes as a command line: words are read, options found or refused, numbers taken within their ranges.
#include "app/options.h"
#include "base/string.h"
#include "fuzz/target.h"

namespace sparkrig {
namespace {

std::vector<std::string> SplitAtZeros(Input input) {
    std::vector<std::string> words(1);
    for (const std::uint8_t byte : input) {
        if (byte == 0)
            words.emplace_back();
        else
            words.back() += static_cast<char>(byte);
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

void Try(Input input) {
    const ParsedCommandLine parsed = ParseCommandLine(SplitAtZeros(input));
    if (parsed.exit_code) {
        Require(!parsed.text.empty());
    } else {
        Require(parsed.options.frames >= 1 && parsed.options.frames <= 1'000'000);
        Require(parsed.options.at_seconds >= 0 && parsed.options.at_seconds <= 3600);
        CheckWords(parsed.options.command_line);
    }
}

}   // namespace sparkrig
