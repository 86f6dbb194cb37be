// For the functions that are loops over lanes: built once for every processor of the architecture and once for those
// with AVX2, which the loader chooses from. Both give equal bits, since no operation is contracted. An update of a
// hundred thousand particles takes three quarters of the time (docs/performance.md).
#pragma once

#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && !defined(__SANITIZE_ADDRESS__)
// flatten: what the loops call is built along with them.
#define SPARKRIG_VECTOR_CODE __attribute__((target_clones("avx2", "default"), flatten))
#else
#define SPARKRIG_VECTOR_CODE
#endif
