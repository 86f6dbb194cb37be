#include "base/resource_manager.h"

#include <cstdio>

#include "base/string.h"

namespace sparkrig {

KRN_ResourceManager::KRN_ResourceManager() { SetName("ResourceManager"); }

int KRN_ResourceManager::Register(KRN_ResourceBase* object, const char* name) {
    KRN_Resource entry;
    entry.object = object;
    entry.references = 1;
    std::snprintf(entry.name, sizeof entry.name, "%s", name);
    return entries_.Add(entry);
}

int KRN_ResourceManager::Acquire(int id) {
    if (id == -1) return -1;
    if (!IsValidId(id)) Error("Invalid ID number in Acquire:%i", id);
    ++entries_.Get(id)->references;
    return id;
}

int KRN_ResourceManager::Acquire(const char* name) {
    if (!name || !*name) Error("Invalid file name in Acquire!");
    char kept[sizeof KRN_Resource::name];   // as Register would have kept it
    std::snprintf(kept, sizeof kept, "%s", name);
    for (int position = 0; position < entries_.GetCount(); ++position)
        if (EqualNoCase(entries_.GetAt(position)->name, kept)) return Acquire(entries_.GetIdAt(position));
    return -1;
}

bool KRN_ResourceManager::Unacquire(int id) {
    if (id == -1) return true;
    if (!IsValidId(id)) Error("Invalid ID number in Unacquire");
    if (--entries_.Get(id)->references >= 1) return false;
    return entries_.Delete(id);
}

bool KRN_ResourceManager::IsValidId(int id) const { return entries_.IsValid(id); }

KRN_ResourceBase* KRN_ResourceManager::GetObject(int id) const {
    const KRN_Resource* entry = entries_.Get(id);
    return entry ? entry->object : nullptr;
}

KRN_Resource& KRN_ResourceManager::GetAt(int position) { return *entries_.GetAt(position); }
int KRN_ResourceManager::GetCount() const { return entries_.GetCount(); }

bool KRN_ResourceBase::IsValid() const {
    return manager_ && manager_->IsValidId(resource_id_) && manager_->GetObject(resource_id_);
}

void KRN_ResourceBase::Attach(KRN_ResourceManager* manager, int id) {
    manager_ = manager;
    resource_id_ = id;
}

}   // namespace sparkrig
