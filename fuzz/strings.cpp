// String's operations in any order, beside the text that they should give; and the functions on plain arrays.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>

#include "base/log.h"
#include "base/search_tree.h"
#include "base/string.h"

using namespace sparkrig;

namespace {

void Check(const String& text, const std::string& expected) {
    if (text.GetLength() != static_cast<int>(expected.size()) || expected != text.c_str()) std::abort();
}

/// Texts without zeros, as String's are.
std::string Text(FuzzedDataProvider& input) { return input.ConsumeRandomLengthString(40).c_str(); }

void CallString(FuzzedDataProvider& input) {
    String text;
    std::string expected;
    while (input.remaining_bytes() > 0) {
        const std::string other = Text(input);
        switch (input.ConsumeIntegralInRange(0, 7)) {
            case 0: text.Assign(other.c_str()), expected = other; break;
            case 1: text.Append(other.c_str()), expected += other; break;
            case 2: text.Append(String(text)), expected += expected; break;
            case 3: text.Format("%s", other.c_str()), expected = other; break;
            case 4:
                text.SetLength(static_cast<int>(std::min(other.size(), expected.size())));
                expected.resize(std::min(other.size(), expected.size()));
                break;
            case 5: {
                const std::size_t at = expected.find(other);
                const std::string replacement = Text(input);
                if (text.Replace(other.c_str(), replacement.c_str(), true) !=
                    (text.HasBuffer() && at != std::string::npos))
                    std::abort();
                if (text.HasBuffer() && at != std::string::npos) expected.replace(at, other.size(), replacement);
                break;
            }
            case 6: {
                const String copy = text;
                if (text.StartsWith(other.c_str()) && other.size() > expected.size()) std::abort();
                if (text.IndexOf(other.c_str()) < 0 && text.HasBuffer() && expected.find(other) != std::string::npos)
                    std::abort();
                text = copy;
                break;
            }
            default: text.Assign(text.c_str()); break;
        }
        if (expected.size() > 4000) return;
        Check(text, expected);
    }
}

void CallArrayFunctions(FuzzedDataProvider& input) {
    const std::string line = Text(input), name = Text(input);
    int value = 0;
    GetOptionValue(line.c_str(), name.c_str(), &value);
    HasOption(line.c_str(), name.c_str());
    for (int i = 0; i <= CountWords(line.c_str()); ++i)
        if (const char* word = GetWord(line.c_str(), i)) WordLength(word);
    char out[8], path[256] = "";
    GetDirectory(line.c_str(), out, sizeof out);
    GetFileName(line.c_str(), out, sizeof out);
    std::strncpy(path, line.c_str(), sizeof path - 1);
    ReplaceDirectory(path, name.c_str());
    float values[3];
    ToFloats(String(line.c_str()), values, 3);
}

void CallTree(FuzzedDataProvider& input) {
    SearchTree<int> tree;
    int count = 0;
    while (input.remaining_bytes() > 0) {
        const std::string name = Text(input);
        try {
            const bool known = tree.Find(name.c_str()) != nullptr;
            if ((tree.Insert(name.c_str()) == nullptr) != known) std::abort();
            if (!known) *tree.Find(name.c_str()) = ++count;
        } catch (const ErrorMsg&) {
        }
    }
    tree.ResetIteration();
    while (tree.GetNext()) --count;
    if (count != 0) std::abort();
}

}   // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    SilenceLog();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    switch (input.ConsumeIntegralInRange(0, 2)) {
        case 0: CallString(input); break;
        case 1: CallArrayFunctions(input); break;
        default: CallTree(input); break;
    }
    return 0;
}
