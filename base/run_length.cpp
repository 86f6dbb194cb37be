#include "base/run_length.h"

#include <cstring>
#include <type_traits>

namespace sparkrig {
namespace {

constexpr std::size_t kLongestRun = 255;
constexpr std::size_t kShortestRun = 3;   // shorter runs take less room as they are

struct Marker {
    std::uint8_t bytes[kMaxRecordSize];
    Marker() {
        for (int k = 0; k < kMaxRecordSize; ++k) bytes[k] = static_cast<std::uint8_t>(k + 10);
    }
};

/// Calls the action with the record size: as a constant for the 4 bytes of all packed files, so that a record is one
/// word to the processor.
template <class Action>
auto WithSize(std::size_t record_size, Action action) {
    if (record_size == 4) return action(std::integral_constant<std::size_t, 4>());
    return action(record_size);
}

template <class Size>
std::size_t RunLength(const std::uint8_t* record, std::size_t records_left, Size size) {
    std::size_t run = 1;
    while (run < records_left && std::memcmp(record, record + run * size, size) == 0) ++run;
    return run;
}

template <class Size>
void WriteRun(const std::uint8_t* record, std::size_t run, Size size, const Marker& marker, OutputBytes& out) {
    while (run > 0) {
        const std::size_t piece = std::min(run, kLongestRun);
        std::uint8_t* place = out.Grow(2 * size + 1);
        std::memcpy(place, marker.bytes, size);
        place[size] = static_cast<std::uint8_t>(piece);
        std::memcpy(place + size + 1, record, size);
        run -= piece;
    }
}

template <class Size>
void EncodeRecords(const std::uint8_t* record, std::size_t count, Size size, OutputBytes& out) {
    const Marker marker;
    while (count > 0) {
        std::size_t run = RunLength(record, count, size);
        if (run >= kShortestRun || std::memcmp(record, marker.bytes, size) == 0) {
            WriteRun(record, run, size, marker, out);
        } else {
            run = 1;
            out.Write(record, size);
        }
        record += run * size;
        count -= run;
    }
}

template <class Size>
void DecodeRecords(InputBytes& in, Size size, OutputBytes& out) {
    const Marker marker;
    while (out.Left() >= size && in.Left() >= size) {
        const std::uint8_t* record = in.Take(size);
        if (std::memcmp(record, marker.bytes, size) != 0) {
            out.Write(record, size);
            continue;
        }
        const std::size_t run = in.TakeByte();
        record = in.Take(size);
        std::uint8_t* place = out.Grow(run * size);
        for (std::size_t i = 0; i < run; ++i) std::memcpy(place + i * size, record, size);
    }
}

}   // namespace

std::size_t RunLengthCapacity(std::size_t data_bytes, std::size_t record_size) {
    const std::size_t records = data_bytes / record_size;
    return (3 * record_size * records + 1) / 2 + (records + 1) * record_size + 6;
}

std::size_t EncodeRuns(const std::uint8_t* data, std::size_t size, std::size_t record_size, OutputBytes& out) {
    const std::size_t records = size / record_size, tail = size % record_size;
    WithSize(record_size, [&](auto width) { EncodeRecords(data, records, width, out); });
    out.Write(data + records * record_size, tail);
    return records * record_size + tail;
}

void DecodeRuns(InputBytes& in, std::size_t record_size, OutputBytes& out) {
    WithSize(record_size, [&](auto width) { DecodeRecords(in, width, out); });
    const std::size_t tail = std::min({in.Left(), out.Left(), record_size - 1});
    out.Write(in.Take(tail), tail);
}

}   // namespace sparkrig
