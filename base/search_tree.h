// Records by name, ignoring ASCII letter case.
#pragma once
#include <memory>

#include "base/dyna_mem.h"
#include "base/name_index.h"
#include "base/string.h"
#include "platform/system/ascii.h"

namespace sparkrig {

/// Two levels: the first character chooses a bucket, the bucket holds the entries in the order of their insertion and
/// finds them by hash. A pointer to a value stays good until Clear.
template <class T>
class SearchTree : public ErrorClass {
  public:
    struct DataEntry {
        T value{};
        String name;
    };

    SearchTree() { SetName("SearchTree"); }
    SearchTree(const SearchTree&) = delete;
    SearchTree& operator=(const SearchTree&) = delete;

    /// The new entry's value, for the caller to fill; null when the name is there already.
    T* Insert(const char* name);
    T* Insert(const String& name) { return Insert(name.c_str()); }
    /// Null when there is none. Names are not empty and begin with a character from 32 to 127, or it is an error.
    T* Find(const char* name) const;
    T* Find(const String& name) const { return Find(name.c_str()); }

    /// Iteration by buckets in ascending order of the upper-case first character, then by insertion.
    void ResetIteration() { next_bucket_ = next_position_ = 0; }
    /// Null at the end. The name, cut to `size` bytes with its terminator, is copied into `name` if that is given.
    T* GetNext(char* name = nullptr, int size = 0);

    void Clear();

  private:
    static constexpr int kFirstCode = 32, kCodeCount = 96;

    struct Bucket {
        DynaMem<DataEntry, 8, 1> entries;
        NameIndex index;   // name to entry id
    };

    /// The bucket number of a name, or the error that it can have none.
    int BucketOf(const char* name) const;

    std::unique_ptr<Bucket> buckets_[kCodeCount];
    int next_bucket_ = 0, next_position_ = 0;
};

template <class T>
int SearchTree<T>::BucketOf(const char* name) const {
    if (!name || !*name) Error("Empty name string");
    const int code = static_cast<signed char>(*name);   // NOLINT(bugprone-signed-char-misuse): reported as it is
    if (code < kFirstCode || code >= kFirstCode + kCodeCount) Error("Character in name string out of range: %i", code);
    return AsciiUpper(*name) - kFirstCode;
}

template <class T>
T* SearchTree<T>::Insert(const char* name) {
    std::unique_ptr<Bucket>& bucket = buckets_[BucketOf(name)];
    if (!bucket) bucket = std::make_unique<Bucket>();
    if (bucket->index.Find(name) >= 0) return nullptr;
    const int id = bucket->entries.AddNew();
    DataEntry* entry = bucket->entries.Get(id);
    entry->name = name;
    bucket->index.Insert(entry->name.c_str(), id);
    return &entry->value;
}

template <class T>
T* SearchTree<T>::Find(const char* name) const {
    const std::unique_ptr<Bucket>& bucket = buckets_[BucketOf(name)];
    const int id = bucket ? bucket->index.Find(name) : -1;
    return id >= 0 ? &bucket->entries.Get(id)->value : nullptr;
}

template <class T>
T* SearchTree<T>::GetNext(char* name, int size) {
    for (; next_bucket_ < kCodeCount; ++next_bucket_, next_position_ = 0) {
        const std::unique_ptr<Bucket>& bucket = buckets_[next_bucket_];
        if (!bucket || next_position_ >= bucket->entries.GetCount()) continue;
        DataEntry* entry = bucket->entries.GetAt(next_position_++);
        if (name && size > 0) entry->name.Copy(name, size, entry->name.c_str());
        return &entry->value;
    }
    return nullptr;
}

template <class T>
void SearchTree<T>::Clear() {
    for (std::unique_ptr<Bucket>& bucket : buckets_) bucket.reset();
    ResetIteration();
}

}   // namespace sparkrig
