// A compiled effect from outside: it is refused, or everything in it is in range and it reads back as it was written.
#include <cstddef>
#include <cstdlib>

#include "platform/d3dx/effect_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    sparkrig::EffectFile effect;
    std::string error;
    if (!sparkrig::ReadEffectFile({data, size}, effect, error)) return 0;
    const std::vector<sparkrig::BYTE> written = sparkrig::WriteEffectFile(effect);
    sparkrig::EffectFile again;
    if (!sparkrig::ReadEffectFile(written, again, error)) std::abort();
    if (sparkrig::WriteEffectFile(again) != written) std::abort();
    return 0;
}
