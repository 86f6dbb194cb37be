// The source of an effect from outside: it is refused with a message, or everything in the effect that it gives is in
// range, and its code can be rewritten and written out for the compiler of functions.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "platform/d3dx/effect_check.h"
#include "tools/fxc/code_adaption.h"
#include "tools/fxc/effect_description.h"
#include "tools/fxc/effect_parser.h"
#include "tools/fxc/entry_functions.h"
#include "tools/fxc/lexer.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace sparkrig;
    using namespace sparkrig::fxc;
    Diagnostics diagnostics;
    const int file = diagnostics.AddFile("t.fx");
    const Tokens tokens = ReadTokens({reinterpret_cast<const char*>(data), size}, file, diagnostics);
    ParsedEffect effect = ParseEffect(tokens, diagnostics);
    if (diagnostics.Failed()) return 0;
    AddEntryFunctions(effect, diagnostics);
    AdaptCode(effect, diagnostics);
    if (CodeText(effect.code).empty()) std::abort();
    if (FindEffectFault(effect.file).empty()) DescribeEffect(effect.file);
    return 0;
}
