// Shares loaded device resources by name, with a count of their users.
#pragma once
#include <cstdint>

#include "base/dyna_mem.h"
#include "base/error.h"

namespace sparkrig {

class KRN_ResourceBase;

struct KRN_Resource {
    KRN_ResourceBase* object = nullptr;   // not owned
    char name[256] = "";
    std::int32_t references = 0;
};

class KRN_ResourceManager : public KRN_Base {
  public:
    KRN_ResourceManager();

    /// Does not look for an entry of that name: acquire first.
    int Register(KRN_ResourceBase* object, const char* name);
    int Acquire(int id);
    /// The first entry of that name, ignoring letter case, or -1.
    int Acquire(const char* name);
    /// True when the last user is gone: the caller then frees the object.
    bool Unacquire(int id);
    bool IsValidId(int id) const;
    KRN_ResourceBase* GetObject(int id) const;
    KRN_Resource& GetAt(int position);
    int GetCount() const;

  private:
    DynaMem<KRN_Resource, 4096, 1> entries_;
};

/// An object that may live in a manager.
class KRN_ResourceBase : public KRN_Base {
  public:
    /// True when the manager holds a live entry with an object for it.
    virtual bool IsValid() const;
    void Attach(KRN_ResourceManager* manager, int id);
    int ResourceId() const { return resource_id_; }
    KRN_ResourceManager* Manager() const { return manager_; }

  protected:
    KRN_ResourceBase() = default;
    ~KRN_ResourceBase() = default;

  private:
    std::int32_t resource_id_ = -1;
    KRN_ResourceManager* manager_ = nullptr;
};

}   // namespace sparkrig
