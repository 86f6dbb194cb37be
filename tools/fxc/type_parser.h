#pragma once
#include <optional>

#include "tools/fxc/cursor.h"
#include "tools/fxc/effect_syntax.h"

namespace sparkrig::fxc {

/// Takes a type if one stands at the cursor.
std::optional<Type> AcceptType(Cursor& cursor, const Symbols& symbols);

enum class LetterCase { Exact, Any };

/// The type that a word names by itself, such as float4x3; none for other words.
std::optional<Type> BuiltInType(const std::string& word, LetterCase letters = LetterCase::Any);

}   // namespace sparkrig::fxc
