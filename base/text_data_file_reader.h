// A text file as a stream of characters, with a tokenizer and a table of line starts.
#pragma once
#include <cstdint>
#include <cstdio>
#include <vector>

#include "base/error.h"
#include "base/string.h"

namespace sparkrig {

class TextFileReaderBase : public ErrorClass {
  protected:
    TextFileReaderBase() = default;
    ~TextFileReaderBase() = default;
};

class TextDataFileReader : public TextFileReaderBase {
  public:
    static constexpr int kTokenSize = 128;   // bytes of a token buffer; longer tokens are an error

    TextDataFileReader();
    ~TextDataFileReader();
    TextDataFileReader(const TextDataFileReader&) = delete;
    TextDataFileReader& operator=(const TextDataFileReader&) = delete;

    void Open(const char* name, bool in_memory);

    int Read(void* buffer, int n);
    bool IsEnd() const;
    int Tell() const;
    int Seek(int position);
    bool Skip(int n);
    int SeekLine(int line);
    int CurrentLine() const;
    int NextLine() { return SeekLine(CurrentLine() + 1); }
    int LineCount() const;

    char ReadChar();
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

  private:
    struct State;
    State* state_;
};

}   // namespace sparkrig
