// A file with any bytes, mostly behind the header of a packed one: it is read, changed, written back, and read again.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "base/file.h"
#include "base/log.h"

using namespace sparkrig;

namespace {

std::string file_name;

void Put(const std::string& bytes) { std::ofstream(file_name, std::ios::binary) << bytes; }

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

void OpenChangeAndReopen(FuzzedDataProvider& input) {
    const bool in_memory = input.ConsumeBool();
    File file;
    if (!file.Open(file_name.c_str(), false, in_memory, true)) std::abort();
    for (int i = input.ConsumeIntegralInRange(0, 12); i > 0; --i) Operate(file, input);
    const std::vector<char> before = Content(file);
    const bool packed = file.PackMode() != 0;
    file.Close();
    if (!packed) return;   // plain bytes may happen to begin as a packed file does
    file.Open(file_name.c_str(), true, !in_memory, true);
    if (Content(file) != before) std::abort();
}

}   // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    SilenceLog();
    const std::filesystem::path memory = "/dev/shm";   // a disk would be a hundred times slower
    const bool usable = std::filesystem::is_directory(memory);
    std::string folder = ((usable ? memory : std::filesystem::temp_directory_path()) / "fuzz_file.XXXXXX").string();
    if (!mkdtemp(folder.data())) std::abort();
    file_name = folder + "/input";
    std::atexit([] { std::filesystem::remove_all(std::filesystem::path(file_name).parent_path()); });
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    std::string bytes = input.ConsumeRandomLengthString(4096);
    if (input.ConsumeBool()) bytes = std::string("\xA7VT\xA7\1") + bytes;
    Put(bytes);
    try {
        OpenChangeAndReopen(input);
    } catch (const ErrorMsg&) {
    }
    return 0;
}
