// Bytes that grow without being cleared first: who resizes writes them.
#pragma once
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace sparkrig {

/// Leaves new elements of a vector as they are instead of setting them to 0.
template <class T>
struct UninitializedAllocator : std::allocator<T> {
    template <class U>
    struct rebind {   // NOLINT(readability-identifier-naming): the standard's name
        using other = UninitializedAllocator<U>;
    };
    template <class U>
    void construct(U* place) noexcept {
        ::new (static_cast<void*>(place)) U;
    }
    template <class U, class... Arguments>
    void construct(U* place, Arguments&&... arguments) {
        ::new (static_cast<void*>(place)) U(std::forward<Arguments>(arguments)...);
    }
};

using ByteBuffer = std::vector<std::uint8_t, UninitializedAllocator<std::uint8_t>>;

}   // namespace sparkrig
