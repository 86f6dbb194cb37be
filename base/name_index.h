// Finds names ignoring ASCII letter case: a hash table over texts that others own.
#pragma once
#include <cstddef>
#include <cstdint>
#include <vector>

namespace sparkrig {

class NameIndex {
  public:
    /// The value stored for the name, or -1.
    int Find(const char* name) const;
    /// False, and nothing stored, when the name is there already. The text stays where it is as long as the index.
    bool Insert(const char* name, int value);
    void Clear();

  private:
    struct Entry {
        const char* name = nullptr;   // null: free
        std::uint32_t hash = 0;
        std::int32_t value = -1;
    };

    std::size_t FindPlace(const char* name, std::uint32_t hash) const;
    void Grow();

    std::vector<Entry> entries_;   // a power of two, at most three quarters used
    std::size_t used_ = 0;
};

}   // namespace sparkrig
