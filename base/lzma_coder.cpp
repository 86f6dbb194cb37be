#include "base/lzma_coder.h"

#include <lzma.h>

#include <algorithm>
#include <cstdlib>

namespace sparkrig {
namespace {

constexpr std::size_t kFirstDictionary = std::size_t{1} << 24;
constexpr std::size_t kFirstOutput = std::size_t{1} << 16;

struct SettingRow {
    std::uint32_t dictionary_bytes;
    lzma_mode mode;   // the algorithm property: 0 fast, 1 normal
    std::uint32_t fast_bytes;
    lzma_match_finder match_finder;
    std::uint32_t match_finder_cycles;
};

// clang-format off
constexpr SettingRow kSettings[] = {
    {1u << 23, LZMA_MODE_FAST,   32,  LZMA_MF_HC4, 32},   // normal
    {1u << 16, LZMA_MODE_FAST,   5,   LZMA_MF_HC4, 18},   // fast
    {1u << 23, LZMA_MODE_NORMAL, 128, LZMA_MF_BT4, 80},   // strongest
};
// clang-format on

lzma_options_lzma Options(LzmaSetting setting) {
    const SettingRow& row = kSettings[static_cast<int>(setting)];
    lzma_options_lzma options{};
    options.dict_size = row.dictionary_bytes;
    options.lc = 3;
    options.lp = 0;
    options.pb = 2;
    options.mode = row.mode;
    options.nice_len = row.fast_bytes;
    options.mf = row.match_finder;
    options.depth = row.match_finder_cycles;
    return options;
}

struct Stream {
    lzma_stream lzma = LZMA_STREAM_INIT;
    Stream() = default;
    ~Stream() { lzma_end(&lzma); }
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;
};

const char* FaultText(lzma_ret result) {
    switch (result) {
        case LZMA_MEM_ERROR: return "not enough memory";
        case LZMA_BUF_ERROR: return "it is cut short";
        case LZMA_OPTIONS_ERROR: return "its properties are not supported";
        default: return "it is corrupt";
    }
}

/// Room behind the first `used` bytes, doubled when it is used up, never more than `limit` in all.
void OfferRoom(lzma_stream& stream, ByteBuffer& out, std::size_t used, std::size_t limit) {
    if (used == out.size()) out.resize(std::min(limit, std::max(2 * out.size(), kFirstOutput)));
    stream.next_out = out.data() + used;
    stream.avail_out = out.size() - used;
}

/// One attempt with a dictionary of the given size, until the coded data ends or is found wrong.
lzma_ret DecodeWith(lzma_options_lzma options, std::size_t dictionary, const std::uint8_t* coded, std::size_t size,
                    std::size_t n, ByteBuffer& out, std::size_t& decoded) {
    options.dict_size = static_cast<std::uint32_t>(std::max<std::size_t>(dictionary, LZMA_DICT_SIZE_MIN));
    // Behind n bytes the library takes an end mark or the coder's last state, and nothing that would give one byte
    // more.
    options.ext_flags = LZMA_LZMA1EXT_ALLOW_EOPM;
    lzma_set_ext_size(options, n);
    const lzma_filter filters[] = {{LZMA_FILTER_LZMA1EXT, &options}, {LZMA_VLI_UNKNOWN, nullptr}};
    Stream stream;
    decoded = 0;
    lzma_ret result = lzma_raw_decoder(&stream.lzma, filters);
    stream.lzma.next_in = coded;
    stream.lzma.avail_in = size;
    out.resize(std::min(n, std::max(kFirstOutput, 4 * size)));
    while (result == LZMA_OK) {
        OfferRoom(stream.lzma, out, decoded, n);
        result = lzma_code(&stream.lzma, LZMA_RUN);
        decoded = out.size() - stream.lzma.avail_out;
    }
    return result;
}

}   // namespace

void AppendLzmaProperties(LzmaSetting setting, ByteBuffer& out) {
    lzma_options_lzma options = Options(setting);
    const lzma_filter filter{LZMA_FILTER_LZMA1, &options};
    out.resize(out.size() + kLzmaPropertyBytes);
    lzma_properties_encode(&filter, out.data() + out.size() - kLzmaPropertyBytes);
}

const char* EncodeLzma(LzmaSetting setting, const std::uint8_t* data, std::size_t size, ByteBuffer& out) {
    lzma_options_lzma options = Options(setting);
    const lzma_filter filters[] = {{LZMA_FILTER_LZMA1, &options}, {LZMA_VLI_UNKNOWN, nullptr}};
    Stream stream;
    lzma_ret result = lzma_raw_encoder(&stream.lzma, filters);
    stream.lzma.next_in = data;
    stream.lzma.avail_in = size;
    std::size_t used = out.size();
    out.resize(used + kFirstOutput + size / 2);
    while (result == LZMA_OK) {
        OfferRoom(stream.lzma, out, used, SIZE_MAX);
        result = lzma_code(&stream.lzma, LZMA_FINISH);
        used = out.size() - stream.lzma.avail_out;
    }
    out.resize(used);
    return result == LZMA_STREAM_END ? nullptr : FaultText(result);
}

const char* DecodeLzma(const std::uint8_t* properties, const std::uint8_t* coded, std::size_t size, std::size_t n,
                       ByteBuffer& out) {
    lzma_filter filter{LZMA_FILTER_LZMA1, nullptr};
    if (lzma_properties_decode(&filter, nullptr, properties, kLzmaPropertyBytes) != LZMA_OK)
        return FaultText(LZMA_OPTIONS_ERROR);
    const lzma_options_lzma options = *static_cast<lzma_options_lzma*>(filter.options);
    std::free(filter.options);

    const std::size_t needed = std::min<std::size_t>(options.dict_size, n);
    std::size_t dictionary = std::min(needed, kFirstDictionary), decoded = 0;
    lzma_ret result = DecodeWith(options, dictionary, coded, size, n, out, decoded);
    // Data that filled the dictionary and then pointed behind it has earned a larger one.
    while (result == LZMA_DATA_ERROR && decoded >= dictionary && decoded < n && dictionary < needed) {
        dictionary = std::min(needed, 4 * dictionary);
        result = DecodeWith(options, dictionary, coded, size, n, out, decoded);
    }
    // Data that is cut within its end mark, or was written without one, is still whole.
    if (decoded == n && (result == LZMA_STREAM_END || result == LZMA_BUF_ERROR)) return nullptr;
    return decoded == n && result == LZMA_DATA_ERROR ? "it goes on behind its end" : FaultText(result);
}

}   // namespace sparkrig
