// Memory for arrays that are walked as a whole: a large one lies on large pages, where the system has some. The tables
// that translate addresses then hold all of it, and fetching ahead does not end at each 4 KB.
#pragma once
#include <sys/mman.h>

#include <cstddef>
#include <new>
#include <vector>

namespace sparkrig {

template <class T>
struct LargePageAllocator {
    using value_type = T;

    LargePageAllocator() = default;
    template <class U>
    explicit LargePageAllocator(const LargePageAllocator<U>&) {}

    T* allocate(std::size_t count) {
        void* const memory = ::operator new(count * sizeof(T), Alignment(count));
        if (IsLarge(count)) madvise(memory, count * sizeof(T), MADV_HUGEPAGE);   // refused, the pages are small
        return static_cast<T*>(memory);
    }
    void deallocate(T* memory, std::size_t count) { ::operator delete(memory, Alignment(count)); }

    bool operator==(const LargePageAllocator&) const = default;

  private:
    static constexpr std::size_t kLargePage = 2 << 20;

    static bool IsLarge(std::size_t count) { return count * sizeof(T) >= kLargePage; }
    static std::align_val_t Alignment(std::size_t count) {
        return std::align_val_t{IsLarge(count) ? kLargePage : alignof(T)};
    }
};

/// Its elements move as it grows, as those of any vector.
template <class T>
using LargeVector = std::vector<T, LargePageAllocator<T>>;

}   // namespace sparkrig
