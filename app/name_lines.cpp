#include "app/name_lines.h"

#include <algorithm>

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

int NameLines::Find(const std::string& text, int from) const {
    const std::string quoted = '"' + text + '"';
    for (int line = std::max(from, 1); line <= LineCount(); ++line) {
        if (String(lines_[static_cast<std::size_t>(line) - 1].c_str()).IndexOf(quoted.c_str()) >= 0) return line;
    }
    return 0;
}

std::string NameLines::FirstQuoted(int line) const {
    const std::string& text = lines_[static_cast<std::size_t>(line) - 1];
    const std::size_t visible = text.find_first_not_of(" \t");
    const std::size_t opening = text.find('"');
    if (visible == std::string::npos || text[visible] == ';' || opening == std::string::npos) return {};
    const std::size_t closing = text.find('"', opening + 1);
    return closing == std::string::npos ? std::string() : text.substr(opening + 1, closing - opening - 1);
}

}   // namespace sparkrig
