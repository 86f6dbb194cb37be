#include "app/name_lines.h"

#include "base/string.h"
#include "platform/system/system.h"

namespace sparkrig {

NameLines::NameLines(const char* file) {
    std::FILE* stream = OpenFileStream(file, "rb");
    if (!stream) return;
    lines_.emplace_back();
    for (int character = std::fgetc(stream); character != EOF; character = std::fgetc(stream)) {
        if (character == '\n') {
            lines_.emplace_back();
        } else {
            lines_.back() += static_cast<char>(character);
        }
    }
    std::fclose(stream);
}

int NameLines::Find(const std::string& text) const {
    const std::string quoted = '"' + text + '"';
    for (std::size_t i = 0; i < lines_.size(); ++i) {
        if (String(lines_[i].c_str()).IndexOf(quoted.c_str()) >= 0) return static_cast<int>(i) + 1;
    }
    return 0;
}

}   // namespace sparkrig
