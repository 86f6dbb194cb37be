// Lists of records that come and go while the program runs, each known by its id.
//
//   DynaMem      owns its elements: made, looked up and deleted by id, walked by position or with GetNext
//   DynaMemSort  the same, with a position order that can be sorted
//   DynaPtrList  holds pointers that it does not own
#pragma once
#include <algorithm>
#include <functional>
#include <new>
#include <type_traits>
#include <utility>

#include "base/element_pool.h"
#include "base/slot_table.h"

namespace sparkrig {

/// T: the element; its address never changes. N: slots at first use. copy: an assigned list copies all elements.
template <class T, int N, int copy = 1>
class DynaMem : public SlotTable {
  public:
    DynaMem() : SlotTable(N) {}
    DynaMem(const DynaMem& other) : SlotTable(N) { *this = other; }
    ~DynaMem() { DestroyAll(); }
    DynaMem& operator=(const DynaMem& other);

    /// The id of a copy of item.
    int Add(const T& item) { return Emplace(item); }
    /// The id of a default-constructed element, to be filled through Get.
    int AddNew() { return Emplace(); }
    /// True, or the error that there is no such element.
    bool Delete(int id);
    bool DeleteAt(int position) { return Delete(GetIdAt(position)); }
    void Clear();

    /// Null for an id without an element.
    T* Get(int id) const { return static_cast<T*>(SlotAt(id)); }
    /// Null for a position outside 0 to count - 1.
    T* GetAt(int position) const { return static_cast<T*>(SlotAtPosition(position)); }
    /// The elements in ascending order of ids; null at the end. The current one may be deleted meanwhile.
    T* GetNext(int* id = nullptr) { return static_cast<T*>(NextSlot(id)); }

  private:
    template <class... Arguments>
    int Emplace(const Arguments&... arguments);
    template <class... Arguments>
    T* Make(const Arguments&... arguments);
    void DestroyAll();

    ElementPool<T> pool_;
};

template <class T, int N, int copy = 1>
class DynaMemSort : public DynaMem<T, N, copy> {
  public:
    /// Sorts the positions; ids stay. `before` is a strict weak order for every value that elements can have. Equal
    /// elements end up in any order.
    template <class Before = std::less<T>>
    void Sort(Before before = {});
};

/// T: a pointer type. Null is no element: adding it gives -1.
template <class T, int N, int copy = 1>
class DynaPtrList : public SlotTable {
    static_assert(std::is_pointer_v<T>);

  public:
    DynaPtrList() : SlotTable(N) {}

    int Add(T pointer);
    bool Delete(int id) { return Vacate(id) != nullptr; }
    bool DeleteAt(int position) { return Delete(GetIdAt(position)); }
    void Clear() { VacateAll(); }

    T Get(int id) const { return static_cast<T>(SlotAt(id)); }
    T GetAt(int position) const { return static_cast<T>(SlotAtPosition(position)); }
    T GetNext(int* id = nullptr) { return static_cast<T>(NextSlot(id)); }
};

// ---- DynaMem

template <class T, int N, int copy>
template <class... Arguments>
T* DynaMem<T, N, copy>::Make(const Arguments&... arguments) {
    void* memory = pool_.Take();
    try {
        return new (memory) T(arguments...);
    } catch (...) {   // passed on: the element's constructor may report
        pool_.Give(memory);
        throw;
    }
}

template <class T, int N, int copy>
template <class... Arguments>
int DynaMem<T, N, copy>::Emplace(const Arguments&... arguments) {
    const int id = FindFreeSlot();
    Occupy(id, Make(arguments...));
    return id;
}

template <class T, int N, int copy>
bool DynaMem<T, N, copy>::Delete(int id) {
    T* element = static_cast<T*>(Vacate(id));
    element->~T();
    pool_.Give(element);
    return true;
}

template <class T, int N, int copy>
void DynaMem<T, N, copy>::DestroyAll() {
    for (int id = 0; id < used_end_; ++id)
        if (T* element = Get(id)) element->~T();
}

template <class T, int N, int copy>
void DynaMem<T, N, copy>::Clear() {
    DestroyAll();
    VacateAll();
    pool_.GiveAll();
}

template <class T, int N, int copy>
DynaMem<T, N, copy>& DynaMem<T, N, copy>::operator=(const DynaMem& other) {
    static_assert(copy != 0, "this list is not made to be assigned");
    if (this == &other) return *this;
    Clear();
    if (other.slots_.empty()) return *this;
    fixed_ = false;   // the other's is taken over below
    slots_.assign(other.slots_.size(), nullptr);
    for (int id = 0; id < other.used_end_; ++id) {
        const T* element = other.Get(id);
        if (!element) continue;
        Occupy(id, Make(*element));
    }
    order_ = other.order_;
    order_stale_ = other.order_stale_;
    free_hint_ = other.free_hint_;
    capacity_ = other.capacity_;
    fixed_ = other.fixed_;
    return *this;
}

// ---- DynaMemSort

template <class T, int N, int copy>
template <class Before>
void DynaMemSort<T, N, copy>::Sort(Before before) {
    this->RebuildOrder();
    const auto element = [this](int id) -> const T& { return *this->Get(id); };
    std::sort(this->order_.begin(), this->order_.begin() + this->count_,
              [&](int a, int b) { return before(element(a), element(b)); });
}

// ---- DynaPtrList

template <class T, int N, int copy>
int DynaPtrList<T, N, copy>::Add(T pointer) {
    if (!pointer) return -1;
    const int id = FindFreeSlot();
    Occupy(id, const_cast<void*>(static_cast<const void*>(pointer)));
    return id;
}

}   // namespace sparkrig
