#include "base/text_data_file_reader.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "base/file.h"
#include "base/numeric.h"
#include "platform/system/system.h"

namespace sparkrig {
namespace {

bool IsSpace(char c) { return static_cast<unsigned char>(c) <= 32; }
bool EndsWord(char c) { return IsSpace(c) || c == '{' || c == '}' || c == '"' || c == ','; }
bool IsNumeric(char c) { return (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.'; }

}   // namespace

/// Collects the characters of one token in the caller's buffer, which is terminated at any moment.
class TextDataFileReader::Token {
  public:
    Token(const TextDataFileReader& reader, char (&buffer)[kTokenSize]) : reader_(reader), buffer_(buffer) {
        buffer_[0] = '\0';
    }
    void Add(char c) {
        if (length_ == kTokenSize - 1) reader_.Error("String too long (>127)");
        buffer_[length_++] = c;
        buffer_[length_] = '\0';
    }
    bool IsEmpty() const { return length_ == 0; }

  private:
    const TextDataFileReader& reader_;
    char (&buffer_)[kTokenSize];
    int length_ = 0;
};

TextDataFileReader::TextDataFileReader() { SetName("TextDataFileReader"); }

void TextDataFileReader::Error(const char* format, ...) const {
    std::va_list arguments;
    va_start(arguments, format);
    ReportError(file_name_, format, arguments);
}

void TextDataFileReader::Warning(const char* format, ...) const {
    std::va_list arguments;
    va_start(arguments, format);
    ReportWarning(file_name_, format, arguments);
    va_end(arguments);
}

// ---- Opening

void TextDataFileReader::Open(const char* name, bool in_memory) {
    content_.clear();
    lines_.Clear();
    position_ = token_start_ = 0;
    end_reached_ = false;
    std::snprintf(file_name_, sizeof file_name_, "%s", name);
    source_.reset();
    if (in_memory)
        LoadFile(name);
    else
        LoadStream(name);
    source_.emplace(
        file_name_, [](const void* reader) { return static_cast<const TextDataFileReader*>(reader)->TokenPlace(); },
        this);
    const LineIndex::Fault fault = lines_.Build({reinterpret_cast<const char*>(content_.data()), content_.size()});
    if (fault == LineIndex::Fault::TooManyLines) Error("File too big");
    if (fault == LineIndex::Fault::LineTooLong) Error("Line too long");
}

void TextDataFileReader::LoadFile(const char* name) {
    File file;
    if (!file.Open(name, true, true, true)) Error("Can not open file %s, Code:%i", name, errno);
    file.Close(true);
    content_ = file.TakeBuffer();
}

void TextDataFileReader::LoadStream(const char* name) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(OpenFileStream(name, "rb"), std::fclose);
    if (!stream) Error("Can not open file %s", name);
    std::fseek(stream.get(), 0, SEEK_END);
    const long size = std::ftell(stream.get());
    std::rewind(stream.get());
    if (size > INT_MAX) Error("File too big");
    content_.resize(static_cast<std::size_t>(std::max(size, 0L)));
    content_.resize(std::fread(content_.data(), 1, content_.size(), stream.get()));
}

// ---- The position

int TextDataFileReader::Read(void* buffer, int n) {
    const int count = std::clamp(n, 0, Size() - position_);
    end_reached_ = position_ >= Size();
    if (count > 0) std::memcpy(buffer, content_.data() + position_, static_cast<std::size_t>(count));
    position_ += count;
    token_start_ = position_;
    return count;
}

TextPlace TextDataFileReader::TokenPlace() const {
    const int line = lines_.LineOfOffset(token_start_);
    const int start = lines_.Count() > 0 ? lines_.starts[static_cast<std::size_t>(line)] : 0;
    return {line + 1, token_start_ - start + 1};
}

int TextDataFileReader::Seek(int position) {
    if (position < 0 || position > Size()) {
        Warning("Invalid file position:%i", position);
        return 1;
    }
    position_ = token_start_ = position;
    return 0;
}

bool TextDataFileReader::Skip(int n) {
    const std::int64_t wanted = std::int64_t{position_} + n;
    position_ = token_start_ = static_cast<std::int32_t>(std::clamp<std::int64_t>(wanted, 0, Size()));
    return position_ == wanted;
}

int TextDataFileReader::SeekLine(int line) {
    if (line < 0 || line >= LineCount()) {
        Warning("Invalid line in file:%i", line);
        return 1;
    }
    position_ = token_start_ = lines_.starts[static_cast<std::size_t>(line)];
    return 0;
}

// ---- Characters and tokens

char TextDataFileReader::PeekChar() {
    end_reached_ = position_ >= Size();
    return end_reached_ ? '\0' : static_cast<char>(content_[static_cast<std::size_t>(position_)]);
}

char TextDataFileReader::ReadChar() {
    const char c = PeekChar();
    if (!end_reached_) ++position_;
    return c;
}

int TextDataFileReader::SkipSpace() {
    while (IsSpace(PeekChar()) && !end_reached_) ++position_;
    token_start_ = position_;
    return end_reached_;
}

int TextDataFileReader::ExpectChar(char c) {
    while (ReadChar() != c || end_reached_)
        if (end_reached_) Error("'%c' not found", c);
    return 0;
}

int TextDataFileReader::ReadNumberToken(char (&buffer)[kTokenSize]) {
    Token token(*this, buffer);
    token_start_ = position_;
    for (char c = PeekChar(); IsNumeric(c); c = PeekChar()) token.Add(ReadChar());
    return end_reached_ || token.IsEmpty();
}

int TextDataFileReader::ReadWord(char (&buffer)[kTokenSize]) {
    Token token(*this, buffer);
    token_start_ = position_;
    const char first = ReadChar();
    if (end_reached_) return 1;
    token.Add(first);
    if (EndsWord(first)) return 0;
    for (char c = PeekChar(); !EndsWord(c); c = PeekChar()) token.Add(ReadChar());   // the end reads as 0
    return 0;
}

bool TextDataFileReader::ReadQuoted(std::string_view& text) {
    const std::uint8_t* begin = content_.data() + position_;
    const std::uint8_t* end = content_.data() + content_.size();
    const std::uint8_t* quote = std::find(begin, end, '"');
    text = {reinterpret_cast<const char*>(begin), static_cast<std::size_t>(quote - begin)};
    end_reached_ = quote == end;
    position_ += static_cast<std::int32_t>(quote - begin) + (quote == end ? 0 : 1);
    return quote != end;
}

int TextDataFileReader::ReadQuotedString(char (&buffer)[kTokenSize]) {
    Token token(*this, buffer);
    if (SkipSpace()) return 1;
    if (ReadChar() != '"') {
        Warning("No text string found");
        return 1;
    }
    std::string_view text;
    const bool closed = ReadQuoted(text);
    for (const char c : text) token.Add(c);
    return !closed;
}

int TextDataFileReader::ReadQuotedString(String& text) {
    text = "";
    if (SkipSpace()) return 1;
    if (ReadChar() != '"') {
        Warning("No text string found");
        return 1;
    }
    std::string_view quoted;
    const bool closed = ReadQuoted(quoted);
    if (!quoted.empty()) std::memcpy(text.GetBuffer(static_cast<int>(quoted.size())), quoted.data(), quoted.size());
    return !closed;
}

int TextDataFileReader::ReadInt(int& value) {
    char token[kTokenSize] = "";
    SkipSpace();
    const int result = ReadNumberToken(token);
    if (*token) value = TruncateToInt(std::strtod(token, nullptr));   // also of a number at the very end of the file
    return result;
}

int TextDataFileReader::ReadFloat(float& value) {
    char token[kTokenSize];
    const int result = ReadToken(token);
    if (result == 0) value = static_cast<float>(std::strtod(token, nullptr));
    return result;
}

int TextDataFileReader::ReadVector3(float (&vector)[3]) {
    for (int i = 0; i < 3; ++i) {
        if (ReadFloat(vector[i]) != 0) return 1;
        if (i < 2 && SkipSpace() == 0 && PeekChar() == ',') ReadChar();
    }
    return 0;
}

int TextDataFileReader::ReadToken(char (&buffer)[kTokenSize]) {
    SkipSpace();
    return ReadWord(buffer);
}

}   // namespace sparkrig
