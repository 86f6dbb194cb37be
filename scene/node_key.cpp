#include "scene/node_key.h"

#include <cstring>
#include <utility>

#include "base/file.h"
#include "base/little_endian.h"

namespace sparkrig {
namespace {

// A key in a file: time (float), interpolation (2 bytes), the floats of its data, 1 when another key follows or 0.
template <class Data>
constexpr int kFloats = sizeof(Data) / sizeof(float);
static_assert(kFloats<KRN_PosKeyData> == 9 && kFloats<KRN_ScaleKeyData> == 9 && kFloats<KRN_RotKeyData> == 21);

template <class Data>
constexpr int kKeyBytes = 4 + 2 + 4 * kFloats<Data> + 1;

constexpr int kDataOffset = 6;

}   // namespace

template <class Data>
KRN_KeyBase<Data>::~KRN_KeyBase() {
    // One after the other: a million keys must not be a million nested destructors.
    while (next) next = std::move(next->next);
}

template <class Data>
void KRN_KeyBase<Data>::WriteAlone(File& file) const {
    std::uint8_t bytes[kKeyBytes<Data>];
    StoreLittleEndian(time, bytes);
    StoreLittleEndian(static_cast<std::uint16_t>(interpolation), bytes + 4);
    float floats[kFloats<Data>];
    std::memcpy(floats, &data, sizeof floats);
    for (int i = 0; i < kFloats<Data>; ++i) StoreLittleEndian(floats[i], bytes + kDataOffset + 4 * i);
    bytes[kKeyBytes<Data> - 1] = next ? 1 : 0;
    file.Write(bytes, kKeyBytes<Data>);
}

/// Whether another key follows.
template <class Data>
bool KRN_KeyBase<Data>::ReadAlone(File& file) {
    std::uint8_t bytes[kKeyBytes<Data>];
    file.Read(bytes, kKeyBytes<Data>);
    time = LoadLittleEndian<float>(bytes);
    interpolation = static_cast<KeyInterpolation>(LoadLittleEndian<std::uint16_t>(bytes + 4));
    float floats[kFloats<Data>];
    for (int i = 0; i < kFloats<Data>; ++i) floats[i] = LoadLittleEndian<float>(bytes + kDataOffset + 4 * i);
    std::memcpy(static_cast<void*>(&data), floats, sizeof floats);
    return bytes[kKeyBytes<Data> - 1] != 0;
}

template <class Data>
int KRN_KeyBase<Data>::Write(File& file) const {
    int count = 0;
    for (const KRN_KeyBase* key = this; key; key = key->next.get(), ++count) key->WriteAlone(file);
    return count;
}

template <class Data>
int KRN_KeyBase<Data>::Read(File& file) {
    next.reset();
    int count = 1;
    for (KRN_KeyBase* key = this; key->ReadAlone(file); ++count) {
        key->next = std::make_unique<KRN_KeyBase>();
        key->next->previous = key;
        key = key->next.get();
    }
    return count;
}

template class KRN_KeyBase<KRN_PosKeyData>;
template class KRN_KeyBase<KRN_RotKeyData>;
template class KRN_KeyBase<KRN_ScaleKeyData>;

}   // namespace sparkrig
