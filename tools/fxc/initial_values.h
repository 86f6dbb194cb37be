#pragma once
#include "tools/fxc/cursor.h"
#include "tools/fxc/effect_syntax.h"

namespace sparkrig::fxc {

/// The numbers of a constant as a variable keeps them. One number stands for all, a longer vector is cut; what is too
/// short is reported at `name`. An array without a size gets the one that its values fill.
void StoreValue(Cursor& cursor, const Token& name, const Constant& constant, bool listed, EffectVariable& variable);

/// The numbers of a list over the members of a structure parameter and those below it, in the order of the file.
void StoreMembers(Cursor& cursor, const Token& name, const Constant& constant, EffectFile& file, DWORD structure);

}   // namespace sparkrig::fxc
