// The source of an effect from outside: it is refused with a message, or everything in the effect that it gives is in
// range, and its code can be rewritten and written out for the compiler of functions.
#include "fuzz/target.h"
#include "platform/d3dx/effect_check.h"
#include "tools/fxc/code_adaption.h"
#include "tools/fxc/effect_description.h"
#include "tools/fxc/effect_parser.h"
#include "tools/fxc/entry_functions.h"
#include "tools/fxc/lexer.h"

void sparkrig::Try(Input input) {
    using namespace sparkrig::fxc;
    Diagnostics diagnostics;
    const int file = diagnostics.AddFile("t.fx");
    const Tokens tokens = ReadTokens({reinterpret_cast<const char*>(input.data()), input.size()}, file, diagnostics);
    ParsedEffect effect = ParseEffect(tokens, diagnostics);
    if (diagnostics.Failed()) return;
    AddEntryFunctions(effect, diagnostics);
    AdaptCode(effect, diagnostics);
    Require(!CodeText(effect.code).empty());
    if (FindEffectFault(effect.file).empty()) DescribeEffect(effect.file);
}
