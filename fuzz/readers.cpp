// The three text readers on any bytes, their operations called in any order.
#include <fuzzer/FuzzedDataProvider.h>

#include "base/config_file_reader.h"
#include "fuzz/target.h"

namespace sparkrig {
namespace {

constexpr int kMostCalls = 200;

void CallLineReader(const char* file, FuzzedDataProvider& input) {
    TextFileReader reader;
    if (reader.Load(file) != 0 || reader.BuildLineIndex() != 0) return;
    for (int line = -1; line <= reader.GetLineCount() && line < kMostCalls; ++line) reader.GetLine(line);
    reader.GetLine(input.ConsumeIntegral<int>());
}

void CallTokenizer(const char* file, FuzzedDataProvider& input) {
    TextDataFileReader reader;
    reader.Open(file, input.ConsumeBool());
    char token[TextDataFileReader::kTokenSize];
    String text;
    float f, vector[3];
    int i;
    for (int calls = 0; calls < kMostCalls && input.remaining_bytes() > 0; ++calls) {
        switch (input.ConsumeIntegralInRange(0, 15)) {
            case 0: reader.ReadChar(); break;
            case 1: reader.PeekChar(); break;
            case 2: reader.SkipSpace(); break;
            case 3: reader.ExpectChar(input.ConsumeIntegral<char>()); break;
            case 4: reader.ReadNumberToken(token); break;
            case 5: reader.ReadWord(token); break;
            case 6: reader.ReadQuotedString(token); break;
            case 7: reader.ReadQuotedString(text); break;
            case 8: reader.ReadInt(i); break;
            case 9: reader.ReadFloat(f); break;
            case 10: reader.ReadVector3(vector); break;
            case 11: reader.ReadToken(token); break;
            case 12: reader.Seek(input.ConsumeIntegral<std::int16_t>()); break;
            case 13: reader.Skip(input.ConsumeIntegral<int>()); break;
            case 14: reader.SeekLine(input.ConsumeIntegral<std::int8_t>()); break;
            default: reader.NextLine(); break;
        }
    }
}

void ReadKey(ConfigFileReader& reader, FuzzedDataProvider& input) {
    const std::string key = input.ConsumeBool() ? "desc" : input.ConsumeRandomLengthString(8);
    const int b = input.ConsumeIntegralInRange(-2, 5), i = input.ConsumeIntegralInRange(-1, 3);
    char buffer[16];
    String text;
    double number;
    int integer, total;
    std::int16_t small;
    bool flag;
    float vector[3], pair[2], list[4];
    switch (input.ConsumeIntegralInRange(0, 8)) {
        case 0: reader.ReadString(key.c_str(), buffer, sizeof buffer, b, i, i); break;
        case 1: reader.ReadString(key.c_str(), text, b, i); break;
        case 2: reader.ReadNumber(key.c_str(), number, b, i); break;
        case 3: reader.ReadInt(key.c_str(), integer, b, i); break;
        case 4: reader.ReadShort(key.c_str(), small, b, i); break;
        case 5: reader.ReadBool(key.c_str(), flag, b, i); break;
        case 6: reader.ReadVector3(key.c_str(), vector, b, i); break;
        case 7: reader.ReadVector2(key.c_str(), pair, b, i); break;
        default: reader.ReadFloatList(key.c_str(), list, 4, &total, b, i); break;
    }
}

void Walk(ConfigFileReader& reader, FuzzedDataProvider& input) {
    char name[8];
    for (int calls = 0; calls < kMostCalls && input.remaining_bytes() > 0; ++calls) {
        switch (input.ConsumeIntegralInRange(0, 6)) {
            case 0: reader.SelectBlock(input.ConsumeIntegralInRange(-2, 5)); break;
            case 1: reader.NextBlock(name, sizeof name); break;
            case 2: reader.EnterBlock(); break;
            case 3: reader.ExitBlock(); break;
            case 4: reader.SkipBlock(); break;
            default: ReadKey(reader, input); break;
        }
    }
}

void CallBlockReader(const char* file, FuzzedDataProvider& input) {
    ConfigFileReader reader;
    reader.SetIndexKey(input.ConsumeBool() ? "desc" : "");
    if (reader.Load(file, input.ConsumeIntegralInRange(0, 7) > 0) != 0) return;
    for (int b = -1; b <= reader.GetBlockCount() && b < kMostCalls; ++b) reader.GetBlockLineCount(b);
    while (input.remaining_bytes() > 0) {
        try {
            Walk(reader, input);
        } catch (const ErrorMsg&) {   // a reader that reported goes on working
        }
    }
}

}   // namespace

void Try(Input data) {
    FuzzedDataProvider input(data.data(), data.size());
    const std::string file = Put(input.ConsumeRandomLengthString(8192));
    switch (input.ConsumeIntegralInRange(0, 3)) {
        case 0: return CallLineReader(file.c_str(), input);
        case 1: return CallTokenizer(file.c_str(), input);
        default: return CallBlockReader(file.c_str(), input);
    }
}

}   // namespace sparkrig
