// What the dynamic lists share: slots numbered by id, and the order of positions.
#pragma once
#include <cstddef>
#include <cstdint>
#include <vector>

#include "base/error.h"

namespace sparkrig {

/// An id is the number of an occupied slot and stays valid until its element is deleted; a new element takes the lowest
/// free slot. Positions 0 to count - 1 run through the ids: ascending, or as the last sort left them; every change
/// makes the order stale, and it is rebuilt, ascending, when it is next needed.
class SlotTable : public ErrorClassSimple {
  public:
    bool IsValid(int id) const { return SlotAt(id) != nullptr; }
    int GetCount() const { return count_; }
    int GetCapacity() const { return capacity_; }
    /// The id at a position; -1 outside 0 to count - 1.
    int GetIdAt(int position) const {
        if (position < 0 || position >= count_) return -1;
        if (order_stale_) RebuildOrder();
        return order_[static_cast<std::size_t>(position)];
    }

    /// Makes the capacity n (-1: the count) and packs the elements into slots 0 to count - 1 in position order: ids
    /// change where slots were empty or the order was sorted.
    void SetSize(int n);
    /// A fixed list never grows. Its positions are kept by every change instead of being rebuilt.
    void SetFixed(bool fixed);

    void ResetIteration() { cursor_ = -1; }

  protected:
    explicit SlotTable(int capacity) : capacity_(capacity) {}
    SlotTable(const SlotTable&) = default;
    SlotTable& operator=(const SlotTable&) = default;
    ~SlotTable() = default;

    void* SlotAt(int id) const {
        return static_cast<std::uint32_t>(id) < slots_.size() ? slots_[static_cast<std::size_t>(id)] : nullptr;
    }
    void* SlotAtPosition(int position) const { return SlotAt(GetIdAt(position)); }
    /// The lowest free slot, made by growing when there is none.
    int FindFreeSlot();
    void Occupy(int id, void* element);
    /// What the slot held; an empty slot is an error.
    void* Vacate(int id);
    void VacateAll();
    /// The next occupied slot above the cursor, or null at the end.
    void* NextSlot(int* id) {
        for (int i = cursor_ + 1; i < used_end_; ++i) {
            void* element = slots_[static_cast<std::size_t>(i)];
            if (!element) continue;
            cursor_ = i;
            if (id) *id = i;
            return element;
        }
        return nullptr;
    }
    void RebuildOrder() const;

    std::vector<void*> slots_;         // capacity entries from first use on
    mutable std::vector<int> order_;   // the first count entries are ids
    mutable bool order_stale_ = true;
    std::int32_t count_ = 0;
    std::int32_t free_hint_ = 0;   // no free slot lies below
    std::int32_t capacity_;
    std::int32_t used_end_ = 0;   // no occupied slot lies here or above
    std::int32_t cursor_ = -1;    // the id that the iteration returned last
    bool fixed_ = false;

  private:
    void MakeStorage();
};

}   // namespace sparkrig
