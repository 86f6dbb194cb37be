// For a walk over more memory than the caches hold: what comes next is asked for ahead, and what is written goes to
// memory without its old contents being read first. A walk over less is faster without either.
#pragma once
#include <cstddef>

#include "effects/four.h"

namespace sparkrig {

/// `to` is a multiple of 16.
inline void StoreBeyondCache(Four four, void* to) {
#if defined(__SSE__) && defined(__GNUC__) && !defined(__clang__)
    __builtin_ia32_movntps(static_cast<float*>(to), four);
#else
    Store(four, to);
#endif
}

/// Before another thread reads what StoreBeyondCache has written.
inline void FinishStoresBeyondCache() {
#if defined(__SSE__) && defined(__GNUC__) && !defined(__clang__)
    __builtin_ia32_sfence();
#endif
}

inline void AskFor(const void* begin, std::size_t bytes) {
    constexpr std::size_t kLine = 64;
    for (std::size_t at = 0; at < bytes; at += kLine) __builtin_prefetch(static_cast<const char*>(begin) + at);
}

}   // namespace sparkrig
