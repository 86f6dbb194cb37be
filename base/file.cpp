#include "base/file.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <utility>

#include "platform/system/system.h"

namespace sparkrig {
namespace {

constexpr int kHeadroom = 32768;   // spare bytes of a writable buffer, so that appending rarely reallocates

}   // namespace

int File::m_OpenHandlesCount = 0;

File::File() { SetName("File"); }

File::~File() {
    try {
        Close(false);
    } catch (const ErrorMsg&) {   // it is in the log, and a destructor cannot pass it on
    }
}

void File::Error(const char* format, ...) const {
    std::va_list arguments;
    va_start(arguments, format);
    ReportError(name_.GetLength() > 0 ? name_.c_str() : nullptr, format, arguments);
}

// ---- Opening and closing

bool File::Open(const String& name, bool read_only, bool in_memory, bool report_errors) {
    Close(false);
    name_ = name;
    handle_ = OpenFileStream(name_.c_str(), read_only ? "rb" : "r+b");
    if (!handle_) {
        const int reason = errno;
        if (report_errors) Warning("Open() failed: %s, file:'%s'", std::strerror(reason), name_.c_str());
        errno = reason;   // callers print it
        return false;
    }
    ++m_OpenHandlesCount;
    readable_ = true;
    writable_ = !read_only;
    DetermineSize();
    if (in_memory) LoadIntoMemory();
    Seek(0);
    return true;
}

void File::DetermineSize() {
    const int result = std::fseek(handle_, 0, SEEK_END);
    if (result != 0) Error("fseek failed: %i", result);
    const long size = std::ftell(handle_);
    if (size < 0 || size > INT_MAX) Error("Error reading from file (%s)", std::strerror(EFBIG));
    size_ = static_cast<std::int32_t>(size);
    Seek(0);
}

void File::LoadIntoMemory() {
    Seek(0);
    std::vector<std::uint8_t> content(static_cast<std::size_t>(size_) + (writable_ ? kHeadroom : 0));
    Read(content.data(), size_);
    buffer_.swap(content);
    in_memory_ = true;
}

void File::Close(bool keep_buffer) {
    struct Reset {   // also when writing back reports an error
        File& file;
        bool keep_buffer;
        ~Reset() {
            if (!keep_buffer) std::vector<std::uint8_t>().swap(file.buffer_);
            file.readable_ = file.writable_ = file.in_memory_ = file.modified_ = false;
            file.pack_mode_ = 0;
            file.direction_ = Direction::None;
        }
    } reset{*this, keep_buffer};
    if (!handle_) return;
    try {
        if (modified_ && size_ > 0) WriteBack();
    } catch (const ErrorMsg&) {
        CloseStream();
        throw;
    }
    CloseStream();
}

void File::CloseStream() {
    if (std::fclose(std::exchange(handle_, nullptr)) != 0) {
        Warning("Could not close file: '%s' - %s", name_.c_str(), std::strerror(errno));
    } else if (m_OpenHandlesCount > 0) {
        --m_OpenHandlesCount;
    } else {
        Warning("Invalid m_OpenHandlesCount !");
    }
}

void File::WriteBack() {
    if (!in_memory_) return;
    // A stream that has become unusable tells that the file is no longer ours to replace.
    const int result = std::fseek(handle_, 0, SEEK_SET);
    if (result != 0) Error("fseek failed (WriteVirtualFile): %i", result);
    if (!ReplaceFileContent(name_.c_str(), buffer_.data(), static_cast<std::size_t>(size_)))
        Error("Error writing to file (%s)", std::strerror(errno));
}

std::vector<std::uint8_t> File::TakeBuffer() {
    buffer_.resize(std::min(buffer_.size(), static_cast<std::size_t>(size_)));
    return std::exchange(buffer_, {});
}

std::int32_t File::GetFileTime() const { return handle_ ? FileModificationTime(handle_) : -1; }

// ---- Bytes

bool File::Read(void* data, int n) {
    if (!readable_) Error("File is not readable");
    if (n == 0) return true;
    if (!in_memory_) {
        ReadStream(data, n);
    } else {
        if (position_ < 0 || n < 0 || n > size_ - position_) Error("Error reading from file (%s)", std::strerror(0));
        std::memcpy(data, buffer_.data() + position_, static_cast<std::size_t>(n));
    }
    position_ += n;
    return true;
}

void File::ReadStream(void* data, int n) {
    Turn(Direction::Reading);
    errno = n < 0 ? EINVAL : 0;   // at the end of the file the library sets none
    if (n > 0 && std::fread(data, 1, static_cast<std::size_t>(n), handle_) == static_cast<std::size_t>(n)) return;
    const int reason = errno;
    position_ = static_cast<std::int32_t>(std::ftell(handle_));
    Error("Error reading from file (%s)", std::strerror(reason));
}

bool File::Write(const void* data, int n) {
    if (!writable_) Error("File is not writeable");
    if (n == 0) return true;
    if (n < 0 || position_ < 0 || n > INT_MAX - kHeadroom - position_)
        Error("Error writing to file (%s)", std::strerror(EFBIG));
    modified_ = true;
    if (in_memory_)
        WriteMemory(data, n);
    else
        WriteStream(data, n);
    position_ += n;
    size_ = std::max(size_, position_);
    return true;
}

void File::WriteMemory(const void* data, int n) {
    const std::size_t begin = static_cast<std::size_t>(position_), end = begin + static_cast<std::size_t>(n);
    if (end > buffer_.size()) buffer_.resize(end + kHeadroom);
    if (position_ > size_) std::memset(buffer_.data() + size_, 0, static_cast<std::size_t>(position_ - size_));
    std::memcpy(buffer_.data() + begin, data, static_cast<std::size_t>(n));
}

void File::WriteStream(const void* data, int n) {
    Turn(Direction::Writing);
    if (std::fwrite(data, 1, static_cast<std::size_t>(n), handle_) == static_cast<std::size_t>(n)) return;
    const int reason = errno;
    position_ = static_cast<std::int32_t>(std::ftell(handle_));
    size_ = std::max(size_, position_);
    Error("Error writing to file (%s)", std::strerror(reason));
}

/// The C library wants a stream positioned anew between reading and writing.
void File::Turn(Direction direction) {
    if (direction_ != direction && direction_ != Direction::None) Seek(position_);
    direction_ = direction;
}

void File::Seek(int position) {
    if (!in_memory_) {
        const int result = handle_ ? std::fseek(handle_, position, SEEK_SET) : -1;
        if (result != 0) Error("fseek failed: %i", result);
        direction_ = Direction::None;
    }
    position_ = position;
}

void File::SetSize(int new_size) {
    if (new_size >= size_) return;
    if (!writable_) Error("Can not delete data without write permission");
    if (!TruncateStream(handle_, new_size))
        Error("DeleteData() failed: %s, file:'%s'", std::strerror(errno), name_.c_str());
    modified_ = true;
    size_ = new_size;
    if (in_memory_) buffer_.resize(static_cast<std::size_t>(new_size) + kHeadroom);
    Seek(new_size);
}

// ---- Numbers and strings, little-endian

namespace {

template <class Integer>
Integer FromLittleEndian(const std::uint8_t* bytes) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < sizeof(Integer); ++i) value |= static_cast<std::uint32_t>(bytes[i]) << (8 * i);
    return static_cast<Integer>(value);
}

}   // namespace

std::int32_t File::ReadInt32() {
    std::uint8_t bytes[4];
    Read(bytes, sizeof bytes);
    return FromLittleEndian<std::int32_t>(bytes);
}

std::int16_t File::ReadInt16() {
    std::uint8_t bytes[2];
    Read(bytes, sizeof bytes);
    return FromLittleEndian<std::int16_t>(bytes);
}

std::int8_t File::ReadByte() {
    std::uint8_t byte;
    Read(&byte, sizeof byte);
    return static_cast<std::int8_t>(byte);
}

bool File::ReadString(String& text) {
    text = "";
    std::uint8_t bytes[4];
    if (!Read(bytes, sizeof bytes)) return false;
    const auto length = FromLittleEndian<std::int32_t>(bytes);
    if (length < 1) return true;
    if (length > size_ - position_) Error("Error reading from file (%s)", std::strerror(0));   // before it is allocated
    text.SetLength(length);
    return Read(text.GetBuffer(length), length);
}

void File::WriteInt32(std::int32_t value) {
    const auto bits = static_cast<std::uint32_t>(value);
    const std::uint8_t bytes[4] = {static_cast<std::uint8_t>(bits), static_cast<std::uint8_t>(bits >> 8),
                                   static_cast<std::uint8_t>(bits >> 16), static_cast<std::uint8_t>(bits >> 24)};
    Write(bytes, sizeof bytes);
}

void File::WriteInt16(std::int16_t value) {
    const auto bits = static_cast<std::uint16_t>(value);
    const std::uint8_t bytes[2] = {static_cast<std::uint8_t>(bits), static_cast<std::uint8_t>(bits >> 8)};
    Write(bytes, sizeof bytes);
}

void File::WriteByte(std::int8_t value) { Write(&value, sizeof value); }

void File::WriteString(const String& text) {
    WriteInt32(text.GetLength());
    if (text.GetLength() > 0) Write(text.c_str(), text.GetLength());
}

}   // namespace sparkrig
