#include "app/output_file.h"

#include <stb_image_write.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

#include "platform/system/system.h"

namespace sparkrig {

namespace {

bool Complain(const std::string& name, int error) {
    std::fprintf(stderr, "sparkrig: %s cannot be written: %s\n", name.c_str(), std::strerror(error));
    return false;
}

std::string OpaqueRgb(const Picture& picture) {
    std::string bytes;
    bytes.reserve(picture.pixels.size() * 3);
    for (const D3DCOLOR pixel : picture.pixels) {
        for (const int shift : {16, 8, 0}) bytes += static_cast<char>(pixel >> shift & 0xFF);
    }
    return bytes;
}

void AppendTo(void* content, void* data, int size) {
    static_cast<std::string*>(content)->append(static_cast<const char*>(data), static_cast<std::size_t>(size));
}

}   // namespace

OutputFile::OutputFile(const std::string& name)
    : name_(name), part_(IsSpecialFile(name.c_str()) ? name : name + ".part"), file_(std::fopen(part_.c_str(), "wb")) {
    if (!file_) error_ = errno;
}

OutputFile::~OutputFile() {
    if (!file_) return;
    std::fclose(file_);
    if (part_ != name_) std::remove(part_.c_str());
}

bool OutputFile::Write(const std::string& text) {
    if (error_ == 0 && std::fwrite(text.data(), 1, text.size(), file_) != text.size()) error_ = errno;
    return error_ == 0;
}

bool OutputFile::Finish() {
    const bool closed = file_ && std::fclose(std::exchange(file_, nullptr)) == 0;
    if (!closed && error_ == 0) error_ = errno;
    if (error_ == 0 && part_ != name_ && std::rename(part_.c_str(), name_.c_str()) != 0) error_ = errno;
    if (error_ != 0) {
        if (part_ != name_) std::remove(part_.c_str());
        return Complain(name_, error_);
    }
    if (IsTerminal(stdout)) std::fputs("\r\033[K", stdout);   // over a line of Progress
    std::printf("%s\n", name_.c_str());
    std::fflush(stdout);
    return true;
}

bool WritePng(const std::string& name, const Picture& picture) {
    const std::string rgb = OpaqueRgb(picture);
    const int width = static_cast<int>(picture.width), height = static_cast<int>(picture.height);
    std::string png;
    stbi_write_png_to_func(AppendTo, &png, width, height, 3, rgb.data(), width * 3);
    OutputFile file(name);
    file.Write(png);
    return file.Finish();
}

bool MakeOutputFolder(const std::string& name) { return MakeFolder(name.c_str()) || Complain(name, errno); }

}   // namespace sparkrig
