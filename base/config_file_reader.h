// Block configuration files: entries that begin with "#", key = value lines, named sub-blocks in braces.
#pragma once
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "base/search_tree.h"
#include "base/string.h"
#include "base/text_file_reader.h"

namespace sparkrig {

/// One line at the cursor's level: the word that it begins with, and what stands behind it.
struct ConfigLine {
    std::string_view word;   // up to a blank or "="
    std::string_view rest;   // from that blank or "=" on; empty when there is none, and the word is no key
    TextPlace place;         // of the word
    bool opens_block;        // which then stands between this line and the next
};

/// A reader selects a block, reads its keys, and walks its sub-blocks with NextBlock, EnterBlock, key readers and
/// ExitBlock until NextBlock answers 0. Keys are looked up from the cursor on, at its level, in the selected block
/// only. Reports are attributed to the line of the key read last, or of the cursor where a key was not found.
///
/// Two ways to the keys: by name, each look-up a walk through the lines (ReadString and so on), or one walk for all
/// of them (ForEachLine), with the functions of config_values.h for what stands behind them.
class ConfigFileReader : public TextFileReader {
  public:
    ConfigFileReader();

    /// The key whose values are indexed by Load; empty for none.
    void SetIndexKey(const char* key) { index_key_ = key; }
    /// 0, or the code of TextFileReader::Load or BuildLineIndex. Syntax errors in the blocks are fatal.
    int Load(const char* name, bool parse_blocks);
    /// From now on Load goes on behind an error in a block, which IsBroken then tells: for finding all of them.
    void GoOnAfterErrors() { goes_on_ = true; }
    bool IsBroken(int b) const { return IsBlock(b) && blocks_[static_cast<std::size_t>(b)].broken; }

    int GetBlockCount() const { return static_cast<int>(blocks_.size()); }
    /// Lines of block b; of the file for -1; -1 for a block that does not exist.
    int GetBlockLineCount(int b) const;
    /// The block whose index key has this value, or -1.
    int FindBlock(const char* index_value);

    void SelectBlock(int b);
    /// 1 with the name of the next sub-block at the cursor's level, else 0. Longer names are cut.
    int NextBlock(char* name, int size);
    void EnterBlock();
    void ExitBlock();
    void SkipBlock();
    /// The cursor's line, counted from 1, for messages.
    int CursorLineNumber() const { return cursor_line_ + 1; }
    /// The place of the first word of the cursor's line: of the block's name, once NextBlock has found one.
    TextPlace CursorPlace() const;

    /// Calls visit(line) for each line at the cursor's level, from the cursor to the end of the sub-block, that is
    /// neither empty nor a comment.
    template <class Visit>
    void ForEachLine(Visit visit) const {
        const int end = ScopeEnd();
        for (int line = SkipDeeper(cursor_line_); line < end; line = SkipDeeper(line + 1)) {
            const ConfigLine split = Split(line);
            if (!split.word.empty() || !split.rest.empty()) visit(split);
        }
    }

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

  private:
    struct Block {
        std::int32_t first_line, line_count;
        std::int32_t parent;   // -1 for none
        bool broken = false;
        int End() const { return first_line + line_count; }
    };
    struct Range {
        int begin, end;   // lines
    };
    /// A key with its numbers appended.
    struct Key {
        explicit Key(const char* key, int i = -1, int j = -1);
        Key(const Key&) = delete;

        char text[288];
        std::string_view name;
        bool needs_separator;   // keys that begin with "#" or a digit may be followed by anything
    };

    // config_blocks.cpp: parsing
    void Reset();
    void FindBlocks();
    void MeasureDepths();
    void MeasureDepths(const Block& block);
    void FindScopeEnds();
    int ScanBraces(int line, int depth);
    void BuildIndex();

    // config_blocks.cpp: the cursor
    int DepthOf(int line) const;
    bool Opens(int line, int level) const;
    bool Closes(int line, int level) const;
    bool IsBlock(int b) const { return b >= 0 && b < GetBlockCount(); }
    /// The line behind the selected block; behind the file when none is.
    int SelectedEnd() const;
    int ScopeEnd() const;
    [[noreturn]] void ErrorAt(const char* format, int line, std::size_t column);
    void CopyBlockName(int line, char* name, int size);

    // config_keys.cpp: finding keys. A line's rest is its text behind the key; nothing: the key is not there.
    ConfigLine Split(int line) const;
    int SkipDeeper(int line) const;
    std::optional<std::string_view> Match(const Key& key, int line) const;
    std::optional<std::string_view> MatchFirst(const Key& key, Range lines);
    std::optional<std::string_view> MatchAtLevel(const Key& key, Range lines);
    /// 0, 1 for a key that is not there, 2 for a block that is not.
    int FindKey(const Key& key, int b, std::string_view& rest);
    int ReadVector(const Key& key, float* vector, int count, int b);

    std::vector<Block> blocks_;
    std::vector<std::int32_t> depths_;       // brace depth at the start of each line
    std::vector<std::int32_t> scope_ends_;   // the first line behind each line that lies less deep
    bool goes_on_ = false;
    std::int32_t cursor_line_ = 0;
    std::int32_t cursor_block_ = -1;
    std::int32_t cursor_level_ = -1;   // -1 while no block is selected
    SearchTree<int> index_;
    String index_key_;
};

}   // namespace sparkrig
