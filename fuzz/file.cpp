// A file with any bytes, mostly behind the header of a packed one: it is read, changed, written back, and read again.
#include <fuzzer/FuzzedDataProvider.h>

#include "base/file.h"
#include "fuzz/target.h"

namespace sparkrig {
namespace {

std::vector<char> Content(File& file) {
    std::vector<char> content(static_cast<std::size_t>(file.GetSize()));
    file.Seek(0);
    file.Read(content.data(), file.GetSize());
    return content;
}

/// Any operation at any place; what is refused changes nothing.
void Operate(File& file, FuzzedDataProvider& input) try {
    const int number = input.ConsumeIntegralInRange(-2, 100);
    String text;
    switch (input.ConsumeIntegralInRange(0, 9)) {
        case 0: file.ReadInt32(); break;
        case 1: file.ReadInt16(); break;
        case 2: file.ReadByte(); break;
        case 3: file.ReadString(text); break;
        case 4: file.WriteInt32(number); break;
        case 5: file.WriteString(input.ConsumeRandomLengthString(20).c_str()); break;
        case 6: file.Seek(number); break;
        case 7: file.SetSize(number); break;
        case 8: file.SetPackMode(input.ConsumeIntegralInRange(0, 8)); break;
        default: file.WriteInt16(static_cast<std::int16_t>(number)); break;
    }
} catch (const ErrorMsg&) {
}

void OpenChangeAndReopen(const char* name, FuzzedDataProvider& input) {
    const bool in_memory = input.ConsumeBool();
    File file;
    Require(file.Open(name, false, in_memory, true));
    for (int i = input.ConsumeIntegralInRange(0, 12); i > 0; --i) Operate(file, input);
    const std::vector<char> before = Content(file);
    const bool packed = file.PackMode() != 0;
    file.Close();
    if (!packed) return;   // plain bytes may happen to begin as a packed file does
    file.Open(name, true, !in_memory, true);
    Require(Content(file) == before);
}

}   // namespace

void Try(Input data) {
    FuzzedDataProvider input(data.data(), data.size());
    std::string bytes = input.ConsumeRandomLengthString(4096);
    if (input.ConsumeBool()) bytes = std::string("\xA7VT\xA7\1") + bytes;
    OpenChangeAndReopen(Put(bytes).c_str(), input);
}

}   // namespace sparkrig
