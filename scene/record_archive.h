// Reading and writing the fields of a binary scene's records. A table of fields is written once, for an archive that
// either reads or writes:
//
//     template <class Archive> void Fields(Archive& a, Ref<Archive, KRN_Camera> camera) { a.Words(camera.fov); }
#pragma once
#include <algorithm>
#include <bit>
#include <cstring>
#include <type_traits>

#include "base/file.h"
#include "base/little_endian.h"

namespace sparkrig {

inline constexpr int kOldestSceneVersion = 100, kNewestSceneVersion = 106;

template <class Archive, class Record>
using Ref = std::conditional_t<Archive::kReads, Record&, const Record&>;

class RecordReader {
  public:
    static constexpr bool kReads = true;
    /// The name is for messages.
    explicit RecordReader(File& file, int file_version = kNewestSceneVersion, const char* name = "")
        : version(file_version), file_name(name), file_(file) {}

    /// Any record made of 4-byte numbers.
    template <class Record>
    void Words(Record& record) {
        static_assert(std::is_trivially_copyable_v<Record> && sizeof record % 4 == 0);
        std::uint8_t bytes[sizeof record];
        file_.Read(bytes, sizeof bytes);
        if constexpr (std::endian::native == std::endian::big)
            for (std::size_t i = 0; i < sizeof bytes; i += 4) std::reverse(bytes + i, bytes + i + 4);
        std::memcpy(static_cast<void*>(&record), bytes, sizeof record);
    }
    void U32(bool& flag) { flag = file_.ReadInt32() != 0; }
    void U8(bool& flag) { flag = file_.ReadByte() != 0; }
    void U16(std::uint16_t& value) { value = static_cast<std::uint16_t>(file_.ReadInt16()); }
    void Text(String& text) { file_.ReadString(text); }
    /// A count of elements that take at least `element_bytes` each. One that the rest of the file cannot hold is an
    /// error of the file.
    std::uint32_t Count(std::uint32_t element_bytes, const char* what) {
        std::uint32_t count = 0;
        Words(count);
        const auto left = static_cast<std::uint32_t>(file_.GetSize() - file_.Tell());
        if (count > left / element_bytes) file_.Error("%u %s do not fit into the %u bytes left", count, what, left);
        return count;
    }
    File& Source() { return file_; }

    const int version;   // of the file
    const String file_name;

  private:
    File& file_;
};

class RecordWriter {
  public:
    static constexpr bool kReads = false;
    static constexpr int version = kNewestSceneVersion;
    explicit RecordWriter(File& file) : file_(file) {}

    template <class Record>
    void Words(const Record& record) {
        static_assert(std::is_trivially_copyable_v<Record> && sizeof record % 4 == 0);
        std::uint8_t bytes[sizeof record];
        std::memcpy(bytes, &record, sizeof record);
        if constexpr (std::endian::native == std::endian::big)
            for (std::size_t i = 0; i < sizeof bytes; i += 4) std::reverse(bytes + i, bytes + i + 4);
        file_.Write(bytes, sizeof bytes);
    }
    void U32(bool flag) { file_.WriteInt32(flag); }
    void U8(bool flag) { file_.WriteByte(flag); }
    void U16(std::uint16_t value) { file_.WriteInt16(static_cast<std::int16_t>(value)); }
    void Text(const String& text) { file_.WriteString(text); }
    File& Target() { return file_; }

  private:
    File& file_;
};

}   // namespace sparkrig
