// A file of bytes: little-endian numbers, length-prefixed strings, packed files, in-memory mode.
#pragma once
#include <cstdint>
#include <cstdio>
#include <string>

#include "base/byte_buffer.h"
#include "base/error.h"
#include "base/string.h"

namespace sparkrig {

/// In in-memory mode the file on disk is written at Close, beside the old one and then renamed over it: a failure
/// leaves what was there. Otherwise every write goes to the disk at once.
class File final : public ErrorClass {
  public:
    File();
    /// Closes; what Close reports stays in the log.
    ~File();
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    /// Opens an existing file; a packed one is unpacked into memory. False, with a warning if asked for, when the
    /// system cannot open it.
    bool Open(const String& name, bool read_only, bool in_memory, bool report_errors);
    /// Writes back what was changed. With keep_buffer the memory buffer stays for TakeBuffer.
    void Close(bool keep_buffer = false);

    bool Read(void* data, int n);
    std::int32_t ReadInt32();
    std::int16_t ReadInt16();
    std::int8_t ReadByte();
    bool ReadString(String& text);

    bool Write(const void* data, int n);
    void WriteInt32(std::int32_t value);
    void WriteInt16(std::int16_t value);
    void WriteByte(std::int8_t value);
    void WriteString(const String& text);

    void Seek(int position);
    int Tell() const { return position_; }
    int GetSize() const { return size_; }
    /// Cuts the content; a size that is not below the present one does nothing.
    void SetSize(int new_size);
    bool IsModified() const { return modified_; }
    bool IsOpen() const { return handle_ != nullptr; }
    /// 0 for a plain file, else the algorithm that it is packed with.
    int PackMode() const { return pack_mode_; }
    /// Close will pack the file with this algorithm, or write it plain for 0. The content is held in memory from now
    /// on; while it is empty the file is too, since Close writes no empty content.
    void SetPackMode(int mode);
    /// The content in in-memory mode; null otherwise.
    const std::uint8_t* GetBuffer() const { return buffer_.data(); }
    /// GetSize() bytes, given away: of a file that is in memory, or was closed with keep_buffer.
    ByteBuffer TakeBuffer();
    /// Seconds since 1970, or -1 when no file is open.
    std::int32_t GetFileTime() const;

    [[noreturn]] void Error(const char* format, ...) const override __attribute__((format(printf, 2, 3)));

    static int m_OpenHandlesCount;

  private:
    enum class Direction { None, Reading, Writing };

    void DetermineSize();
    void CutOnDisk(int new_size);
    void LoadIntoMemory();
    int ReadPackMode(bool report_errors);
    void Unpack();
    void Pack(ByteBuffer& packed);
    void ReadStream(void* data, int n);
    void WriteStream(const void* data, int n);
    void WriteMemory(const void* data, int n);
    void Turn(Direction direction);
    void WriteBack();
    void CloseStream();

    std::FILE* handle_ = nullptr;
    bool readable_ = false;
    bool writable_ = false;
    bool modified_ = false;
    String name_;
    std::string path_;   // of a writable file: where it was when it was opened, whatever directory is current later
    std::int32_t size_ = 0;
    std::int32_t position_ = 0;
    bool in_memory_ = false;
    ByteBuffer buffer_;   // its size is the capacity
    std::int32_t pack_mode_ = 0;
    Direction direction_ = Direction::None;   // of the last transfer on the stream
};

}   // namespace sparkrig
