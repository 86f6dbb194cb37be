#include "base/file.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <utility>

#include "base/compress.h"
#include "base/little_endian.h"
#include "base/report_listener.h"
#include "platform/system/system.h"

namespace sparkrig {
namespace {

constexpr std::uint8_t kMagic[4] = {0xA7, 'V', 'T', 0xA7};
constexpr std::uint8_t kHeaderVersion = 1;
constexpr int kHeaderBytes = 6;    // magic, version, mode
constexpr int kRecordSize = 4;     // of run-length coded files
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
    try {
        if (writable_) path_ = RealPath(name_.c_str());
        DetermineSize();
        if (in_memory) LoadIntoMemory();
        pack_mode_ = ReadPackMode(report_errors);
        if (pack_mode_ != 0) Unpack();
    } catch (const ErrorMsg&) {   // what is too large or cannot be unpacked is not open
        Close(false);
        throw;
    }
    Seek(0);
    return true;
}

/// 0 for a plain file; the position is behind the mode otherwise.
int File::ReadPackMode(bool report_errors) {
    if (size_ < kHeaderBytes - 1) return 0;
    std::uint8_t header[kHeaderBytes] = {};
    Read(header, std::min(size_, kHeaderBytes));
    if (std::memcmp(header, kMagic, sizeof kMagic) != 0) return 0;
    if (header[4] != kHeaderVersion) {
        if (report_errors) Warning("Unknown header version of file:'%s'", name_.c_str());
        return 0;
    }
    return static_cast<std::int8_t>(header[5]);   // 0 as well where the file ends right here
}

void File::Unpack() {
    const SourceFileScope place(name_.c_str());   // CCompress does not know the file
    if (!in_memory_) LoadIntoMemory();
    ByteBuffer content;
    CCompress compress;
    compress.SetMode(pack_mode_, kRecordSize);
    size_ = compress.Decompress(buffer_.data() + kHeaderBytes, size_ - kHeaderBytes, content);
    buffer_.swap(content);
}

void File::SetPackMode(int mode) {
    if (!writable_) Error("File is not writeable");
    if (!in_memory_) LoadIntoMemory();
    modified_ = true;
    pack_mode_ = mode;
    if (size_ == 0) CutOnDisk(0);
}

void File::CutOnDisk(int new_size) {
    if (!TruncateStream(handle_, new_size))
        Error("DeleteData() failed: %s, file:'%s'", std::strerror(errno), name_.c_str());
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
    const std::int32_t position = position_;
    Seek(0);
    ByteBuffer content(static_cast<std::size_t>(size_) + (writable_ ? kHeadroom : 0));
    Read(content.data(), size_);
    buffer_.swap(content);
    in_memory_ = true;
    position_ = position;
}

void File::Close(bool keep_buffer) {
    struct Reset {   // also when writing back reports an error
        File& file;
        bool keep_buffer;
        ~Reset() {
            if (!keep_buffer) ByteBuffer().swap(file.buffer_);
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
    ByteBuffer packed;
    if (pack_mode_ != 0) Pack(packed);
    const ByteBuffer& content = pack_mode_ != 0 ? packed : buffer_;
    const std::size_t size = pack_mode_ != 0 ? packed.size() : static_cast<std::size_t>(size_);
    if (!ReplaceFileContent(path_.c_str(), content.data(), size))
        Error("Error writing to file (%s)", std::strerror(errno));
}

/// Header and stream of the content.
void File::Pack(ByteBuffer& packed) {
    CCompress compress;
    compress.SetMode(pack_mode_, kRecordSize);
    if (compress.Compress(buffer_.data(), size_, packed) < 0) Error("Can not pack with mode: %i", pack_mode_);
    std::uint8_t header[kHeaderBytes];
    std::memcpy(header, kMagic, sizeof kMagic);
    header[4] = kHeaderVersion;
    header[5] = static_cast<std::uint8_t>(pack_mode_);
    packed.insert(packed.begin(), header, header + kHeaderBytes);
}

ByteBuffer File::TakeBuffer() {
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
    // The disk holds the packed form of a packed file, which stays until Close; only what is empty is empty at once.
    if (pack_mode_ == 0 || new_size <= 0) CutOnDisk(new_size);
    modified_ = true;
    size_ = new_size;
    if (in_memory_) buffer_.resize(static_cast<std::size_t>(new_size) + kHeadroom);
    Seek(new_size);
}

// ---- Numbers and strings, little-endian

std::int32_t File::ReadInt32() {
    std::uint8_t bytes[4];
    Read(bytes, sizeof bytes);
    return LoadLittleEndian<std::int32_t>(bytes);
}

std::int16_t File::ReadInt16() {
    std::uint8_t bytes[2];
    Read(bytes, sizeof bytes);
    return LoadLittleEndian<std::int16_t>(bytes);
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
    const auto length = LoadLittleEndian<std::int32_t>(bytes);
    if (length < 1) return true;
    if (length > size_ - position_) Error("Error reading from file (%s)", std::strerror(0));   // before it is allocated
    text.SetLength(length);
    return Read(text.GetBuffer(length), length);
}

void File::WriteInt32(std::int32_t value) {
    std::uint8_t bytes[4];
    StoreLittleEndian(value, bytes);
    Write(bytes, sizeof bytes);
}

void File::WriteInt16(std::int16_t value) {
    std::uint8_t bytes[2];
    StoreLittleEndian(value, bytes);
    Write(bytes, sizeof bytes);
}

void File::WriteByte(std::int8_t value) { Write(&value, sizeof value); }

void File::WriteString(const String& text) {
    WriteInt32(text.GetLength());
    if (text.GetLength() > 0) Write(text.c_str(), text.GetLength());
}

}   // namespace sparkrig
