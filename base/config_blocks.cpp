// ConfigFileReader: which lines are blocks, how deep each line lies, and the cursor that walks through them.
#include <algorithm>
#include <cstring>

#include "base/config_file_reader.h"
#include "base/config_values.h"

namespace sparkrig {
namespace {

bool IsVisible(char c) { return static_cast<unsigned char>(c) > 32; }

/// The first character that is no blank or tab; the size when there is none.
std::size_t FirstCharacter(std::string_view line) { return line.size() - SkipBlanks(line).size(); }

}   // namespace

ConfigFileReader::ConfigFileReader() { SetName("ConfigFileReader"); }

int ConfigFileReader::Load(const char* name, bool parse_blocks) {
    Reset();
    const int load_code = TextFileReader::Load(name);
    if (load_code != 0 || !parse_blocks) return load_code;
    const int index_code = BuildLineIndex();
    if (index_code != 0) return index_code;
    FindBlocks();
    MeasureDepths();
    FindScopeEnds();
    if (index_key_.GetLength() > 0) BuildIndex();
    return 0;
}

void ConfigFileReader::Reset() {
    blocks_.clear();
    depths_.clear();
    scope_ends_.clear();
    index_.Clear();
    cursor_line_ = 0;
    cursor_block_ = cursor_level_ = -1;
}

// ---- Parsing

void ConfigFileReader::FindBlocks() {
    int last_parentless = -1;
    for (int line = 0; line < GetLineCount(); ++line) {
        const std::string_view text = Line(line);
        const std::size_t first = FirstCharacter(text);
        if (first == text.size() || text[first] != '#') continue;
        const bool child = first + 1 < text.size() && text[first + 1] == '#';
        if (!blocks_.empty()) blocks_.back().line_count = line - blocks_.back().first_line;
        blocks_.push_back({line, 0, child ? last_parentless : -1});
        if (blocks_.back().parent == -1) last_parentless = GetBlockCount() - 1;
    }
    if (!blocks_.empty()) blocks_.back().line_count = GetLineCount() - blocks_.back().first_line;
}

void ConfigFileReader::MeasureDepths() {
    depths_.assign(static_cast<std::size_t>(GetLineCount()), 0);
    for (Block& block : blocks_) {
        try {
            MeasureDepths(block);
        } catch (const ErrorMsg&) {
            if (!goes_on_) throw;
            block.broken = true;
        }
    }
}

/// Braces that are not closed at the end are an error in the last block only.
void ConfigFileReader::MeasureDepths(const Block& block) {
    int depth = 0;
    for (int line = block.first_line; line < block.End(); ++line) {
        depths_[static_cast<std::size_t>(line)] = depth;
        depth = ScanBraces(line, depth);
    }
    if (depth == 0) return;
    PlaceReports({block.first_line + 1, 1});
    if (&block == &blocks_.back()) Error("Unfinished block in file '%s'", GetFileName());
    if (goes_on_) Warning("Unfinished block in file '%s'", GetFileName());
}

/// Backwards, each line leaps over the scopes behind it: linear, however deep they are.
void ConfigFileReader::FindScopeEnds() {
    scope_ends_.resize(depths_.size());
    for (std::size_t line = depths_.size(); line-- > 0;) {
        std::size_t end = line + 1;
        while (end < depths_.size() && depths_[end] >= depths_[line]) end = static_cast<std::size_t>(scope_ends_[end]);
        scope_ends_[line] = static_cast<std::int32_t>(end);
    }
}

/// The depth behind the line. A brace is the last visible character of its line.
int ConfigFileReader::ScanBraces(int line, int depth) {
    const std::string_view text = Line(line);
    const auto brace = std::find_if(text.begin(), text.end(), [](char c) { return c == '{' || c == '}'; });
    if (brace == text.end()) return depth;
    const auto column = [&](auto character) { return static_cast<std::size_t>(character - text.begin()); };
    if (*brace == '}' && depth == 0) ErrorAt("Invalid '}' in file '%s' at line %i", line, column(brace));
    const auto behind = std::find_if(brace + 1, text.end(), IsVisible);
    if (behind != text.end()) ErrorAt("Invalid block start/end in file '%s' at line %i", line, column(behind));
    return *brace == '{' ? depth + 1 : depth - 1;
}

void ConfigFileReader::BuildIndex() {
    const Key key(index_key_.c_str());
    char value[1024];
    std::optional<std::string_view> parents;   // of the last block without parent, which is that of all that follow
    for (int b = 0; b < GetBlockCount(); ++b) {
        const Block& block = blocks_[static_cast<std::size_t>(b)];
        PlaceReports({block.first_line + 1});
        std::optional<std::string_view> rest = MatchFirst(key, {block.first_line, block.End()});
        if (block.parent < 0)
            parents = rest;
        else if (!rest)
            rest = parents;
        if (!rest || ReadQuotedValue(*rest, value, sizeof value) != 0) {
            Warning("No 'desc' entry in entry %i in file '%s'", b, GetFileName());
        } else if (int* indexed = index_.Insert(value)) {
            *indexed = b;
        } else {
            Warning("'desc' entry in '%s' (%i) not unique: '%s'", GetFileName(), b, value);
        }
    }
}

int ConfigFileReader::GetBlockLineCount(int b) const {
    if (b == -1) return GetLineCount();
    return IsBlock(b) ? blocks_[static_cast<std::size_t>(b)].line_count : -1;
}

int ConfigFileReader::FindBlock(const char* index_value) {
    const int* block = index_.Find(index_value);
    return block ? *block : -1;
}

// ---- The cursor

int ConfigFileReader::DepthOf(int line) const {
    return static_cast<std::size_t>(line) < depths_.size() ? depths_[static_cast<std::size_t>(line)] : 0;
}

bool ConfigFileReader::Opens(int line, int level) const {
    return line + 1 < GetLineCount() && DepthOf(line) == level - 1 && DepthOf(line + 1) == level;
}

bool ConfigFileReader::Closes(int line, int level) const {
    return DepthOf(line) == level && (line + 1 >= GetLineCount() || DepthOf(line + 1) == level - 1);
}

int ConfigFileReader::SelectedEnd() const {
    return IsBlock(cursor_block_) ? blocks_[static_cast<std::size_t>(cursor_block_)].End() : GetLineCount();
}

/// Behind the last line of the sub-block that the cursor is in.
int ConfigFileReader::ScopeEnd() const {
    const auto line = static_cast<std::size_t>(cursor_line_);
    return line < scope_ends_.size() ? std::min(SelectedEnd(), scope_ends_[line]) : SelectedEnd();
}

TextPlace ConfigFileReader::CursorPlace() const {
    const bool exists = cursor_line_ < GetLineCount();
    return {cursor_line_ + 1, exists ? static_cast<int>(FirstCharacter(Line(cursor_line_))) + 1 : 0};
}

/// The column counts from 0.
void ConfigFileReader::ErrorAt(const char* format, int line, std::size_t column) {
    PlaceReports({line + 1, static_cast<int>(column) + 1});
    ErrorClass::Error(format, GetFileName(), line + 1);
}

void ConfigFileReader::SelectBlock(int b) {
    cursor_block_ = b;
    cursor_line_ = IsBlock(b) ? blocks_[static_cast<std::size_t>(b)].first_line : 0;
    cursor_level_ = 0;
    PlaceReports({CursorLineNumber()});
}

int ConfigFileReader::NextBlock(char* name, int size) {
    if (size > 0) *name = '\0';
    if (cursor_level_ < 0) Error("NextBlock() before block read start in file '%s'", GetFileName());
    const int end = SelectedEnd();
    for (int line = cursor_line_; line < end; ++line) {
        const bool opens = Opens(line, cursor_level_ + 1);
        if (!opens && !Closes(line, cursor_level_)) continue;
        if (opens) CopyBlockName(line, name, size);
        cursor_line_ = line;
        PlaceReports({CursorLineNumber()});
        return opens;
    }
    return 0;
}

void ConfigFileReader::CopyBlockName(int line, char* name, int size) {
    const std::string_view text = Line(line);
    const auto begin = std::find_if(text.begin(), text.end(), IsVisible);
    const auto column = static_cast<std::size_t>(begin - text.begin());
    if (begin == text.end() || *begin == '{') ErrorAt("Invalid block start in file '%s' at line %i", line, column);
    const auto end = std::find_if_not(begin, text.end(), IsVisible);
    if (end == text.end()) ErrorAt("Unreachable code in file '%s' at line %i", line, column);
    if (size < 1) return;
    const auto length =
        std::min<std::size_t>(static_cast<std::size_t>(end - begin), static_cast<std::size_t>(size) - 1);
    std::memcpy(name, &*begin, length);
    name[length] = '\0';
}

void ConfigFileReader::EnterBlock() {
    if (!Opens(cursor_line_, cursor_level_ + 1))
        Error("Invalid EnterBlock() at line %i in file '%s'", CursorLineNumber(), GetFileName());
    ++cursor_line_;
    ++cursor_level_;
}

void ConfigFileReader::ExitBlock() {
    const int end = SelectedEnd();
    int line = cursor_line_;
    while (line < end && !Closes(line, cursor_level_)) ++line;
    if (line >= end || cursor_level_ < 1)
        Error("Invalid ExitBlock() at line: %i in file '%s'", CursorLineNumber(), GetFileName());
    cursor_line_ = line + 1;
    --cursor_level_;
}

void ConfigFileReader::SkipBlock() {
    EnterBlock();
    ExitBlock();
}

}   // namespace sparkrig
