// Four or eight numbers side by side, and how rows of them become columns.
#pragma once
#include <cstring>

namespace sparkrig {

using Four = float __attribute__((vector_size(16)));

/// Of floats, or of other numbers of their size, which are only carried along.
inline Four FourAt(const void* numbers) {
    Four four;
    std::memcpy(&four, numbers, sizeof four);
    return four;
}

inline void Store(Four four, void* to) { std::memcpy(to, &four, sizeof four); }

/// Four numbers of four lanes become the numbers of each lane, and back.
inline void Transpose(Four (&rows)[4]) {
    const Four low_01 = __builtin_shufflevector(rows[0], rows[1], 0, 4, 1, 5);
    const Four low_23 = __builtin_shufflevector(rows[2], rows[3], 0, 4, 1, 5);
    const Four high_01 = __builtin_shufflevector(rows[0], rows[1], 2, 6, 3, 7);
    const Four high_23 = __builtin_shufflevector(rows[2], rows[3], 2, 6, 3, 7);
    rows[0] = __builtin_shufflevector(low_01, low_23, 0, 1, 4, 5);
    rows[1] = __builtin_shufflevector(low_01, low_23, 2, 3, 6, 7);
    rows[2] = __builtin_shufflevector(high_01, high_23, 0, 1, 4, 5);
    rows[3] = __builtin_shufflevector(high_01, high_23, 2, 3, 6, 7);
}

/// Handed on by reference only: not every processor has registers for it.
using Eight = float __attribute__((vector_size(32)));

inline void Load(const void* low, const void* high, Eight& eight) {
    eight = __builtin_shufflevector(FourAt(low), FourAt(high), 0, 1, 2, 3, 4, 5, 6, 7);
}
inline void Store(const Eight& eight, void* low, void* high) {
    Store(__builtin_shufflevector(eight, eight, 0, 1, 2, 3), low);
    Store(__builtin_shufflevector(eight, eight, 4, 5, 6, 7), high);
}

/// The lower halves by themselves, and the upper ones.
inline void Transpose(Eight (&rows)[4]) {
    const Eight low_01 = __builtin_shufflevector(rows[0], rows[1], 0, 8, 1, 9, 4, 12, 5, 13);
    const Eight low_23 = __builtin_shufflevector(rows[2], rows[3], 0, 8, 1, 9, 4, 12, 5, 13);
    const Eight high_01 = __builtin_shufflevector(rows[0], rows[1], 2, 10, 3, 11, 6, 14, 7, 15);
    const Eight high_23 = __builtin_shufflevector(rows[2], rows[3], 2, 10, 3, 11, 6, 14, 7, 15);
    rows[0] = __builtin_shufflevector(low_01, low_23, 0, 1, 8, 9, 4, 5, 12, 13);
    rows[1] = __builtin_shufflevector(low_01, low_23, 2, 3, 10, 11, 6, 7, 14, 15);
    rows[2] = __builtin_shufflevector(high_01, high_23, 0, 1, 8, 9, 4, 5, 12, 13);
    rows[3] = __builtin_shufflevector(high_01, high_23, 2, 3, 10, 11, 6, 7, 14, 15);
}

}   // namespace sparkrig
