// For the functions that are loops over lanes: built for every processor of the architecture, for those with AVX2 and
// for those with AVX-512, which the loader chooses from. All give equal bits, since no operation is contracted (but in
// special_shapes.cpp). With AVX2 an update of a hundred thousand particles takes three quarters of the time, with
// AVX-512 two thirds (docs/performance.md).
#pragma once

#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && !defined(__SANITIZE_ADDRESS__)
// flatten: what the loops call is built along with them.
#define SPARKRIG_VECTOR_CODE __attribute__((target_clones("arch=x86-64-v4", "arch=x86-64-v3", "default"), flatten))
#else
#define SPARKRIG_VECTOR_CODE
#endif
