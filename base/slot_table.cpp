#include "base/slot_table.h"

#include <algorithm>

namespace sparkrig {

void SlotTable::MakeStorage() {
    if (slots_.size() == static_cast<std::size_t>(capacity_)) return;
    slots_.assign(static_cast<std::size_t>(capacity_), nullptr);
    order_.assign(static_cast<std::size_t>(capacity_), 0);
}

void SlotTable::RebuildOrder() const {
    if (!order_stale_ || fixed_) return;
    auto next = order_.begin();
    for (int id = 0; id < used_end_; ++id)
        if (slots_[static_cast<std::size_t>(id)]) *next++ = id;
    order_stale_ = false;
}

void SlotTable::SetSize(int n) {
    if (fixed_) Error("Can not SetSize() of fixed list");
    RebuildOrder();
    const int new_capacity = n == -1 ? count_ : n;
    if (new_capacity < count_) Error("New size too small");

    std::vector<void*> packed(static_cast<std::size_t>(new_capacity), nullptr);
    std::vector<int> order(static_cast<std::size_t>(new_capacity), 0);
    for (int i = 0; i < count_; ++i) {
        const auto place = static_cast<std::size_t>(i);
        packed[place] = slots_[static_cast<std::size_t>(order_[place])];
        order[place] = i;
    }
    slots_.swap(packed);
    order_.swap(order);
    capacity_ = new_capacity;
    free_hint_ = used_end_ = count_;
    order_stale_ = false;
}

void SlotTable::SetFixed(bool fixed) {
    MakeStorage();
    RebuildOrder();
    fixed_ = fixed;
    order_stale_ = true;
}

int SlotTable::FindFreeSlot() {
    if (count_ == capacity_) {
        if (fixed_) Error("Can not expand fixed list");
        SetSize(capacity_ + capacity_ / 4 + 8);
    }
    MakeStorage();
    const auto free = std::find(slots_.begin() + std::min(free_hint_, capacity_), slots_.end(), nullptr);
    if (free == slots_.end()) Error("Maximum number of data elements reached: %i", capacity_);
    return static_cast<int>(free - slots_.begin());
}

void SlotTable::Occupy(int id, void* element) {
    slots_[static_cast<std::size_t>(id)] = element;
    free_hint_ = id + 1;
    used_end_ = std::max(used_end_, id + 1);
    if (fixed_) order_[static_cast<std::size_t>(count_)] = id;
    ++count_;
    order_stale_ = true;
}

void* SlotTable::Vacate(int id) {
    void* element = SlotAt(id);
    if (!element) Error("Can not delete object nr: %i", id);
    slots_[static_cast<std::size_t>(id)] = nullptr;
    free_hint_ = std::min(free_hint_, id);
    while (used_end_ > 0 && !slots_[static_cast<std::size_t>(used_end_) - 1]) --used_end_;
    if (fixed_) static_cast<void>(std::remove(order_.begin(), order_.begin() + count_, id));
    --count_;
    order_stale_ = true;
    return element;
}

void SlotTable::VacateAll() {
    std::fill(slots_.begin(), slots_.begin() + used_end_, nullptr);
    count_ = free_hint_ = used_end_ = 0;
    order_stale_ = true;
}

}   // namespace sparkrig
