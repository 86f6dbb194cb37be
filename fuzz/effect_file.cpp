// A compiled effect from outside: it is refused, or everything in it is in range and it reads back as it was written.
#include "platform/d3dx/effect_file.h"
#include "fuzz/target.h"

void sparkrig::Try(Input input) {
    EffectFile effect;
    std::string error;
    if (!ReadEffectFile(input, effect, error)) return;
    const std::vector<BYTE> written = WriteEffectFile(effect);
    EffectFile again;
    Require(ReadEffectFile(written, again, error));
    Require(WriteEffectFile(again) == written);
}
