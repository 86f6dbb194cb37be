// How a fuzz target says what must hold.
#pragma once
#include <cstdlib>

namespace sparkrig {

/// What must hold whatever the input is.
inline void Require(bool holds) {
    if (!holds) std::abort();
}

}   // namespace sparkrig
