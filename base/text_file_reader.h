// A whole text file, indexed by lines.
#pragma once
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "base/byte_buffer.h"
#include "base/line_index.h"
#include "base/report_listener.h"
#include "base/text_data_file_reader.h"

namespace sparkrig {

/// Reports nothing itself. Reports of others are attributed to the file and the line read last, from Load to the next
/// Load or the end.
class TextFileReader : public TextFileReaderBase {
  public:
    TextFileReader() = default;
    TextFileReader(const TextFileReader&) = delete;
    TextFileReader& operator=(const TextFileReader&) = delete;

    /// 0, or 1 with an error text.
    int Load(const char* name);
    /// 0, or 3 (too many lines) or 4 (a line too long) with an error text.
    int BuildLineIndex();
    /// The text of line i (from 0) in a buffer that the next call overwrites, or null with an error text.
    const char* GetLine(int i);
    int GetLineCount() const { return lines_.Count(); }
    const char* GetErrorText() const { return error_text_; }
    const char* GetFileName() const { return file_name_; }
    /// The place that reports are about from now on.
    void PlaceReports(TextPlace place) {
        if (source_) source_->SetPlace(place);
    }

  protected:
    std::string_view Line(int i) const {   // of a line that exists
        const auto line = static_cast<std::size_t>(i);
        return {reinterpret_cast<const char*>(content_.data()) + lines_.starts[line],
                static_cast<std::size_t>(lines_.lengths[line])};
    }

  private:
    void SetErrorText(const char* format, ...) __attribute__((format(printf, 2, 3)));

    ByteBuffer content_;
    LineIndex lines_;
    std::optional<SourceFileScope> source_;   // while a file is loaded
    char file_name_[256] = "";
    char error_text_[256] = "No error";
    std::vector<char> line_buffer_;
};

}   // namespace sparkrig
