#include "base/text_file_reader.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>

#include "base/file.h"

namespace sparkrig {

void TextFileReader::SetErrorText(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(error_text_, sizeof error_text_, format, arguments);
    va_end(arguments);
}

int TextFileReader::Load(const char* name) {
    content_.clear();
    lines_.Clear();
    source_.reset();
    std::snprintf(file_name_, sizeof file_name_, "%s", name);
    File file;
    if (!file.Open(name, true, true, true)) {
        const int reason = errno;
        SetErrorText("Can not open file %s, Code:%i", file_name_, reason);
        return 1;
    }
    file.Close(true);
    content_ = file.TakeBuffer();
    source_.emplace(file_name_);
    return 0;
}

int TextFileReader::BuildLineIndex() {
    switch (lines_.Build({reinterpret_cast<const char*>(content_.data()), content_.size()})) {
        case LineIndex::Fault::TooManyLines: SetErrorText("File %s too big", file_name_); return 3;
        case LineIndex::Fault::LineTooLong: SetErrorText("Line too long in file %s", file_name_); return 4;
        case LineIndex::Fault::None: break;
    }
    return 0;
}

const char* TextFileReader::GetLine(int i) {
    if (i < 0 || i >= GetLineCount()) {
        SetErrorText("Line #%i does not exist", i);
        return nullptr;
    }
    const std::string_view line = Line(i);
    if (line.size() >= LineIndex::kMaxLineLength) {
        SetErrorText("Line #%i is too long:%i", i, static_cast<int>(line.size()));
        return nullptr;
    }
    PlaceReports({i + 1});
    line_buffer_.assign(line.begin(), line.end());
    line_buffer_.push_back('\0');
    return line_buffer_.data();
}

}   // namespace sparkrig
