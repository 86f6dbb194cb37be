// Four numbers side by side, and how rows of them become columns.
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

}   // namespace sparkrig
