#include "tools/fxc/diagnostics.h"

#include <fmt/format.h>

namespace sparkrig::fxc {

namespace {
constexpr int kMostMessages = 50;   // further ones are consequences
}

int Diagnostics::AddFile(std::string name) {
    files_.push_back(std::move(name));
    return static_cast<int>(files_.size()) - 1;
}

void Diagnostics::Error(const Place& place, ErrorCode code, std::string_view message) {
    ErrorInLine(place.file, place.line, code, fmt::format("{} (column {})", message, place.column));
}

void Diagnostics::ErrorInLine(int file, int line, ErrorCode code, std::string_view message) {
    ++errors_;
    Add(file, line, "error", code, message);
}

void Diagnostics::Warning(const Place& place, ErrorCode code, std::string_view message) {
    Add(place.file, place.line, "warning", code, fmt::format("{} (column {})", message, place.column));
}

void Diagnostics::Return(const Mark& mark) {
    text_.resize(mark.text);
    count_ = mark.count;
    errors_ = mark.errors;
}

void Diagnostics::Add(int file, int line, const char* kind, ErrorCode code, std::string_view message) {
    if (count_++ >= kMostMessages) return;
    std::string printable(message);
    for (char& c : printable)
        if (static_cast<unsigned char>(c) < ' ') c = '?';   // bytes of a source that is no text
    text_ += fmt::format("{}({}): {} X{}: {}\n", FileName(file), line, kind, static_cast<int>(code), printable);
}

}   // namespace sparkrig::fxc
