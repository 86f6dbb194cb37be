// Parameters that hold no numbers: textures, samplers, shaders and strings; and the elements of arrays of them.
#pragma once
#include "tools/fxc/cursor.h"
#include "tools/fxc/effect_syntax.h"

namespace sparkrig::fxc {

/// Takes the value, if there is one, of the parameter `index`: one object, or an array with a list of values.
void ParseObjects(Cursor& cursor, ParsedEffect& effect, const Type& type, const Token& name, DWORD index);

/// Takes the register of a sampler, "s3" in "register(s3)"; any other word stays where it is.
void ReadSamplerRegister(Cursor& cursor, ParsedEffect& effect, DWORD index);

/// Takes strings, which make one when they follow each other; braces around them are allowed.
std::string ParseString(Cursor& cursor);

/// Adds a parameter below another: a member of a structure, or an element of an array of structures or objects. Gives
/// its index.
DWORD AddChild(Cursor& cursor, ParsedEffect& effect, DWORD parent, EffectVariable variable, const Token& name);

/// Adds an element of an array, called NAME[0] and so on. Gives its index.
DWORD AddElement(Cursor& cursor, ParsedEffect& effect, DWORD array, DWORD element, const Token& name);

}   // namespace sparkrig::fxc
