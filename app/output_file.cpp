#include "app/output_file.h"

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

bool OutputFile::Write(std::string_view bytes) {
    if (error_ == 0 && std::fwrite(bytes.data(), 1, bytes.size(), file_) != bytes.size()) error_ = errno;
    return error_ == 0;
}

void OutputFile::Fail(int error) {
    if (error_ == 0) error_ = error;
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

bool MakeOutputFolder(const std::string& name) { return MakeFolder(name.c_str()) || Complain(name, errno); }

}   // namespace sparkrig
