// Block configuration files: entries that begin with "#", key = value lines, named sub-blocks in braces.
#pragma once
#include "base/search_tree.h"
#include "base/string.h"
#include "base/text_file_reader.h"

namespace sparkrig {

class ConfigFileReader : public TextFileReader {
  public:
    ConfigFileReader();

    /// The key whose values are indexed by Load; empty for none.
    void SetIndexKey(const char* key);
    /// 0, or the code of TextFileReader::Load or BuildLineIndex. Syntax errors in the blocks are fatal.
    int Load(const char* name, bool parse_blocks);

    int GetBlockCount() const;
    /// Lines of block b; of the file for -1; -1 for a block that does not exist.
    int GetBlockLineCount(int b) const;
    /// The block whose index key has this value, or -1.
    int FindBlock(const char* index_value);

    void SelectBlock(int b);
    /// 1 with the name of the next sub-block at the cursor's level, else 0.
    int NextBlock(char* name, int size);
    void EnterBlock();
    void ExitBlock();
    void SkipBlock();
    /// The cursor's line, counted from 1, for messages.
    int CursorLineNumber() const;

    // Key readers: 0 when the value was read. A number i makes key1, with j key1_2. The output is untouched otherwise.
    int ReadString(const char* key, char* buffer, int size, int b = -1, int i = -1, int j = -1);
    int ReadString(const char* key, String& text, int b = -1, int i = -1, int j = -1);
    int ReadNumber(const char* key, double& value, int b = -1, int i = -1, int j = -1);
    int ReadFloat(const char* key, float& value, int b = -1, int i = -1, int j = -1);
    int ReadInt(const char* key, int& value, int b = -1, int i = -1, int j = -1);
    int ReadShort(const char* key, std::int16_t& value, int b = -1, int i = -1, int j = -1);
    int ReadBool(const char* key, bool& value, int b = -1, int i = -1, int j = -1);
    int ReadVector3(const char* key, float (&vector)[3], int b = -1, int i = -1, int j = -1);
    int ReadVector2(const char* key, float (&vector)[2], int b = -1, int i = -1, int j = -1);
    /// The number of values read, at most `capacity`; `total` receives how many the list holds.
    int ReadFloatList(const char* key, float* values, int capacity, int* total, int b = -1, int i = -1, int j = -1);
};

}   // namespace sparkrig
