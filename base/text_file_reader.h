// A whole text file, indexed by lines.
#pragma once
#include <cstdint>
#include <vector>

#include "base/text_data_file_reader.h"

namespace sparkrig {

class TextFileReader : public TextFileReaderBase {
  public:
    static constexpr int kMaxLines = 8388480;
    static constexpr int kMaxLineLength = 65535;

    /// 0, or 1 with an error text.
    int Load(const char* name);
    /// 0, or 3 (too many lines) or 4 (a line too long) with an error text.
    int BuildLineIndex();
    /// The text of line i (from 0) in a buffer that the next call overwrites, or null with an error text.
    const char* GetLine(int i);
    int GetLineCount() const;
    const char* GetErrorText() const { return error_text_; }
    const char* GetFileName() const { return file_name_; }

  protected:
    bool loaded_ = false;
    std::vector<char> content_;
    std::vector<std::int32_t> line_starts_;
    std::vector<std::int32_t> line_lengths_;
    char file_name_[256] = "";
    char error_text_[256] = "No error";

  private:
    std::vector<char> line_buffer_;
};

}   // namespace sparkrig
