// A text file as a stream of characters, with a tokenizer and a table of line starts.
#pragma once
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "base/byte_buffer.h"
#include "base/error.h"
#include "base/line_index.h"
#include "base/report_listener.h"
#include "base/string.h"

namespace sparkrig {

class TextFileReaderBase : public ErrorClass {
  protected:
    TextFileReaderBase() = default;
    ~TextFileReaderBase() = default;
};

/// Reports are attributed to the file and the token read last, from Open to the next Open or the end.
class TextDataFileReader : public TextFileReaderBase {
  public:
    static constexpr int kTokenSize = 128;   // bytes of a token buffer; longer tokens are an error

    TextDataFileReader();
    TextDataFileReader(const TextDataFileReader&) = delete;
    TextDataFileReader& operator=(const TextDataFileReader&) = delete;

    /// In memory the file is read through File, so that a packed one is unpacked; else its bytes are read as they are.
    void Open(const char* name, bool in_memory);

    /// The number of bytes read; 0 at the end, which IsEnd then remembers until the next Read that finds something.
    int Read(void* buffer, int n);
    bool IsEnd() const { return position_ >= Size() || end_reached_; }
    int Tell() const { return position_; }
    /// 0; 1 with a warning outside 0 to the size.
    int Seek(int position);
    /// False when it stopped at an end of the file.
    bool Skip(int n);
    /// 0; 1 with a warning for a line that does not exist. Lines count from 0.
    int SeekLine(int line);
    int CurrentLine() const { return lines_.LineOfOffset(position_); }
    int NextLine() { return SeekLine(CurrentLine() + 1); }
    int LineCount() const { return lines_.Count(); }
    /// Where the token read last begins.
    TextPlace TokenPlace() const;

    // Tokens. Where a result is given, 0 means that it was read.
    char ReadChar();   // 0 at the end
    char PeekChar();
    int SkipSpace();
    int ExpectChar(char c);
    int ReadNumberToken(char (&buffer)[kTokenSize]);
    int ReadWord(char (&buffer)[kTokenSize]);
    int ReadQuotedString(char (&buffer)[kTokenSize]);
    int ReadQuotedString(String& text);
    int ReadInt(int& value);
    int ReadFloat(float& value);
    int ReadVector3(float (&vector)[3]);
    int ReadToken(char (&buffer)[kTokenSize]);

    [[noreturn]] void Error(const char* format, ...) const override __attribute__((format(printf, 2, 3)));
    void Warning(const char* format, ...) const override __attribute__((format(printf, 2, 3)));

  protected:
    /// For readers with rules of their own: the whole file. Seek moves on behind what they took.
    std::string_view Content() const { return {reinterpret_cast<const char*>(content_.data()), content_.size()}; }

  private:
    class Token;

    int Size() const { return static_cast<int>(content_.size()); }
    void LoadStream(const char* name);
    void LoadFile(const char* name);
    /// The text up to the closing quote, which is consumed too; false when there is none.
    bool ReadQuoted(std::string_view& text);

    ByteBuffer content_;
    LineIndex lines_;
    std::int32_t position_ = 0;
    std::int32_t token_start_ = 0;
    bool end_reached_ = false;
    char file_name_[256] = "";
    std::optional<SourceFileScope> source_;
};

}   // namespace sparkrig
