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
bool Equal(const std::uint8_t* a, const std::uint8_t* b, Size size) {
    return std::memcmp(a, b, size) == 0;
}

/// The records from here to the next marker: they stand for themselves.
template <class Size>
std::size_t RecordsBeforeMarker(const std::uint8_t* record, std::size_t count, Size size, const Marker& marker) {
    std::size_t plain = 0;
    while (plain < count && !Equal(record + plain * size, marker.bytes, size)) ++plain;
    return plain;
}

/// The records from here to the next marker or run that is worth coding.
template <class Size>
std::size_t RecordsBeforeRun(const std::uint8_t* record, std::size_t count, Size size, const Marker& marker) {
    std::size_t plain = 0;
    for (; plain + kShortestRun <= count; ++plain, record += size)
        if (Equal(record, marker.bytes, size) ||
            (Equal(record, record + size, size) && Equal(record, record + 2 * size, size)))
            return plain;
    return plain + RecordsBeforeMarker(record, count - plain, size, marker);
}

template <class Size>
void EncodeRecords(const std::uint8_t* record, std::size_t count, Size size, OutputBytes& out) {
    const Marker marker;
    while (count > 0) {
        const std::size_t plain = RecordsBeforeRun(record, count, size, marker);
        out.Write(record, plain * size);
        record += plain * size;
        count -= plain;
        if (count == 0) break;
        const std::size_t run = RunLength(record, count, size);
        WriteRun(record, run, size, marker, out);
        record += run * size;
        count -= run;
    }
}

template <class Size>
void DecodeRecords(InputBytes& in, Size size, OutputBytes& out) {
    const Marker marker;
    for (;;) {
        const std::size_t plain = RecordsBeforeMarker(in.Peek(), in.Left() / size, size, marker);
        if (plain * size > out.Left()) return;
        out.Write(in.Take(plain * size), plain * size);
        if (in.Left() < size) break;
        in.Take(size);
        const std::size_t run = in.TakeByte();
        const std::uint8_t* record = in.Take(size);
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
    const std::size_t tail = in.Left();
    if (tail <= out.Left()) out.Write(in.Take(tail), tail);
}

}   // namespace sparkrig
