#include "base/name_index.h"

#include "base/string.h"
#include "platform/system/ascii.h"

namespace sparkrig {
namespace {

constexpr std::size_t kFirstSize = 16;

/// FNV-1a over the lower-case characters, its high bits mixed into the low ones that choose the place.
std::uint32_t HashNoCase(const char* name) {
    std::uint64_t hash = 0xCBF29CE484222325u;
    for (; *name; ++name) hash = (hash ^ static_cast<unsigned char>(AsciiLower(*name))) * 0x100000001B3u;
    return static_cast<std::uint32_t>(hash ^ (hash >> 32));
}

}   // namespace

/// The entry of the name, or the free place where it belongs.
std::size_t NameIndex::FindPlace(const char* name, std::uint32_t hash) const {
    const std::size_t mask = entries_.size() - 1;
    std::size_t place = hash & mask;
    while (entries_[place].name && !(entries_[place].hash == hash && EqualNoCase(entries_[place].name, name)))
        place = (place + 1) & mask;
    return place;
}

int NameIndex::Find(const char* name) const {
    return entries_.empty() ? -1 : entries_[FindPlace(name, HashNoCase(name))].value;
}

bool NameIndex::Insert(const char* name, int value) {
    if (used_ + 1 > entries_.size() / 4 * 3) Grow();
    const std::uint32_t hash = HashNoCase(name);
    Entry& entry = entries_[FindPlace(name, hash)];
    if (entry.name) return false;
    entry = {name, hash, value};
    ++used_;
    return true;
}

void NameIndex::Grow() {
    std::vector<Entry> old(entries_.empty() ? kFirstSize : entries_.size() * 2);
    old.swap(entries_);
    for (const Entry& entry : old)
        if (entry.name) entries_[FindPlace(entry.name, entry.hash)] = entry;
}

void NameIndex::Clear() {
    entries_.clear();
    used_ = 0;
}

}   // namespace sparkrig
